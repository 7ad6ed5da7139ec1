// The JSON readers of streams, string lists, JSON documents and TValue.
#include <cstring>
#include <memory>

#include "serializer/boxed_read.h"
#include "serializer/json_base64.h"
#include "serializer/json_event_text.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/json_document.h"
#include "vnxml/json_serializer_reader.h"
#include "vnxml/json_values.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {
bool IsFloatText(std::u16string_view AText) {
  for (char16_t c : AText)
    if (c == u'.' || c == u'e' || c == u'E') return true;
  return false;
}
}  // namespace

// ---- streams: a Base64 string, or the writer's object with "data" ----

void TVnJSONStreamDeserializer::Load(std::u16string_view AText) {
  auto* stream = dynamic_cast<TStream*>(static_cast<TObject*>(FInstancePtr));
  if (!stream) return;
  const std::string bytes = detail::Base64Decode(UnicodeToUtf8(VnJSONtoStr(AText, jdtNull)));
  stream->SetSize(0);
  stream->SetPosition(0);
  if (!bytes.empty()) stream->WriteBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
  stream->SetPosition(0);
}

TVnCanDeserialize TVnJSONStreamDeserializer::CanDeserialize(UnicodeString&, UnicodeString& AName, UnicodeString&,
                                                            bool) {
  return SameText(AName, u"data") ? desYes : desNo;
}

void TVnJSONStreamDeserializer::DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  if (FDisabledCnt > 0) return;
  if (!FOpened && AType == jdtString) {
    Load(AText);
    return Finish();
  }
  if (FOpened && AType == jdtString && FCanDeserialize == desYes) return Load(AText);
  if (FOpened && FCanDeserialize == desYes) RaiseShape(u"a Base64 string", u"a value of another kind");
  TVnJSONDeserializer::DoValue(AType, AText);
}

// ---- string lists: "items" ----

void TVnJSONStringsDeserializer::SetParent(TVnCustomSerializer* AParent) {
  TVnJSONDeserializer::SetParent(AParent);
  if (auto* strings = dynamic_cast<TStrings*>(static_cast<TObject*>(FInstancePtr))) strings->Clear();
}

TVnCanDeserialize TVnJSONStringsDeserializer::CanDeserialize(UnicodeString&, UnicodeString& AName, UnicodeString&,
                                                             bool) {
  return SameText(AName, u"items") ? desYes : desNo;
}

void TVnJSONStringsDeserializer::DoStartArray() {
  if (FDisabledCnt == 0 && FOpened && !FInItems && FCanDeserialize == desYes) {
    FInItems = true;
    return;
  }
  if (FInItems && FDisabledCnt == 0) RaiseShape(u"a string", u"an array");
  TVnJSONDeserializer::DoStartArray();
}

void TVnJSONStringsDeserializer::DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  if (FInItems && FDisabledCnt == 0) {
    if (auto* strings = dynamic_cast<TStrings*>(static_cast<TObject*>(FInstancePtr)))
      strings->Add(AType == jdtNull ? UnicodeString() : VnJSONtoStr(AText, jdtNull));
    return;
  }
  if (FOpened && FCanDeserialize == desYes && FDisabledCnt == 0) RaiseShape(u"an array of strings", u"a value");
  TVnJSONDeserializer::DoValue(AType, AText);
}

void TVnJSONStringsDeserializer::DoEndArray() {
  if (FInItems && FDisabledCnt == 0) {
    FInItems = false;
    return;
  }
  TVnJSONDeserializer::DoEndArray();
}

// ---- JSON documents: the text as it stands ----

TObject* TVnJSONDocDeserializer::CreateInstance(const TVnTypeInfo*& AType) {
  TObject* document = new TVnJSONDocument();
  if (TObjectList* created = GetCreatedObjects()) created->Add(document);
  AType = TVnTypes::GetTypeInfo(TVnJSONDocument::StaticClass());
  return document;
}

void TVnJSONDocDeserializer::Deserialize(TStream& AStream) {
  if (!FInstancePtr) FInstancePtr = CreateInstance(FInstanceTypeInfo);
  auto* document = dynamic_cast<TVnJSONDocument*>(static_cast<TObject*>(FInstancePtr));
  VnAssert(document != nullptr, u"The instance is not a TVnJSONDocument!");
  document->LoadFromStream(AStream, cVnCodePageUTF8, false);
}

TObject* TVnJSONDeserializer::CreateInstance(const TVnTypeInfo*& AType) {
  detail::CheckBoxedOwner(*this, GetPath());
  return TVnDeserializer::CreateInstance(AType);
}

// ---- TValue: a simple value, or an object of a type its className names ----

TVnJSONValueDeserializer::TVnJSONValueDeserializer() = default;
TVnJSONValueDeserializer::~TVnJSONValueDeserializer() = default;

void TVnJSONValueDeserializer::DoStartObject() {
  if (FDisabledCnt > 0) return Skip();
  if (!FCapture) {
    FOpened = true;
    FCapture.reset(new detail::JSONEventText());
  }
  FCapture->StartObject();
}

void TVnJSONValueDeserializer::DoStartMember(std::u16string_view AName) {
  if (FDisabledCnt == 0 && FCapture) FCapture->Member(AName);
}

void TVnJSONValueDeserializer::DoStartArray() {
  if (FDisabledCnt > 0 || !FCapture) {
    // An array names no type: it is passed over.
    FOpened = true;
    return Skip();
  }
  FCapture->StartArray();
}

void TVnJSONValueDeserializer::DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  if (FDisabledCnt > 0) return;
  if (FCapture) return FCapture->Value(AType, AText);
  auto* target = static_cast<TValue*>(FInstancePtr);
  if (target) {
    // A member given twice keeps the later value; an object this read made for it before goes.
    FreeIfCreated(*target);
    switch (AType) {
      case jdtNumber:
        *target = IsFloatText(AText) ? TValue::From<Extended>(VnXMLToExtended(AText))
                                     : TValue::From<Int64>(VnXMLToInt64(AText));
        break;
      case jdtBoolean: *target = TValue::From<bool>(VnXMLToBool(AText)); break;
      case jdtNull: *target = TValue::From(Variant::Null()); break;
      default: *target = TValue::From(VnJSONtoStr(AText, jdtNull)); break;
    }
  }
  Finish();
}

void TVnJSONValueDeserializer::DoEndObject() {
  if (FDisabledCnt > 0) {
    if (--FDisabledCnt == 0) Finish();
    return;
  }
  if (!FCapture || !FCapture->Close()) return;
  const UnicodeString text = FCapture->Text();
  FCapture.reset();
  ReadObject(text);
  Finish();
}
void TVnJSONValueDeserializer::DoEndArray() { DoEndObject(); }

void TVnJSONValueDeserializer::ReadObject(const UnicodeString& AText) {
  auto* target = static_cast<TValue*>(FInstancePtr);
  // The text is the reader's own, rebuilt compact: a className first stands right behind "{".
  static constexpr std::u16string_view kMark = u"{\"className\":\"";
  if (!target || !AText.starts_with(kMark)) return;
  size_t end = kMark.size();
  while (end < AText.size() && AText[end] != u'"') end += AText[end] == u'\\' ? 2 : 1;
  const UnicodeString name = VnJSONtoStr(std::u16string_view(AText).substr(kMark.size(), end - kMark.size()), jdtNull);
  const TVnTypeInfo* type = TVnTypes::GetTypeInfo(name, tntSchemaName, false, mtkUnknown);
  if (!type) return;
  const Integer depth = detail::BoxedReadDepth(*this, cVnJSONNestingTooDeep, GetPath());
  FreeIfCreated(*target);
  switch (type->Kind()) {
    case vtkEnumeration:
    case vtkSet: {
      TVnJSONDocument document(std::u16string_view{AText});
      TVnJSONMember* asInt = document.FindMember(u"asInt", true);
      const Int64 ordinal = asInt ? asInt->GetAsLargeInt() : 0;
      // Only ordinals the type has: a value out of range has no name to write.
      const TTypeInfo* range = type->Kind() == vtkEnumeration ? type->Handle() : type->Handle()->ElementType;
      const bool valid = type->Kind() == vtkEnumeration
                             ? ordinal >= range->MinValue && ordinal <= range->MaxValue
                             : ordinal >= 0 && range && (range->MaxValue >= 62 || (ordinal >> (range->MaxValue + 1)) == 0);
      if (!valid) throw EVnSerializeException(cVnEnumValueUnknown + IntToStr(ordinal));
      if (type->Kind() == vtkEnumeration) {
        *target = TValue::FromOrdinal(type->Handle(), ordinal);
      } else {
        TValue value = TValue::Make(nullptr, type->Handle());
        const size_t size = type->Handle()->Ops->Size;
        std::memcpy(value.GetReferenceToRawData(), &ordinal, size < sizeof ordinal ? size : sizeof ordinal);
        *target = std::move(value);
      }
      break;
    }
    case vtkRecord:
      *target = detail::ReadBoxed(dsfJSON, TValue::Make(nullptr, type->Handle()), UnicodeToUtf8(AText), depth);
      break;
    case vtkClass: {
      // The member must be one a failed read can reset: a field or property of an object.
      TVnDeserializer* parent = GetParentDeserializer();
      if (!CallerListsCreated() || !parent || !parent->GetInstanceTypeInfo() ||
          parent->GetInstanceTypeInfo()->GetKind() != tkClass || (!parent->GetMemberField() && !parent->GetMemberProp()))
        break;
      const TVnTypeInfo* made = type;
      TObject* object = TVnDeserializer::CreateInstance(made);
      *target = TValue::FromObject(object);
      RecordLink(parent->GetInstancePtr(), parent->GetMemberField(), parent->GetMemberProp());
      detail::ReadBoxed(dsfJSON, *target, UnicodeToUtf8(AText), depth);
      break;
    }
    default:
      break;
  }
}

}  // namespace vn
