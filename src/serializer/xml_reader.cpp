// TVnXMLDeserializer: the SAX events of one deserializer's part of the text, and the value
// conversions of XML.
#include <cstring>
#include <memory>

#include "serializer/member_plan.h"
#include "serializer/short_decimal.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"
#include "vnxml/sax_reader.h"
#include "vnxml/serializer_enums.h"
#include "vnxml/xml_escape.h"
#include "vnxml/xml_reflected_values.h"
#include "vnxml/xml_serializer.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {

constexpr std::u16string_view kXsiNamespace = cVnXSINamespace;

bool IsXsiNamespace(std::u16string_view AURI) { return detail::SameName(AURI, kXsiNamespace); }

bool IsWhitespace(std::u16string_view AText) {
  for (char16_t c : AText)
    if (c != u' ' && c != u'\t' && c != u'\r' && c != u'\n') return false;
  return true;
}

bool IsTextKind(const TVnTypeInfo* AType) {
  return AType && AType->Kind() >= vtkText1 && AType->Kind() <= vtkText6;
}

/// Marks a building failure on its way through the reader, so that FatalError lets it pass.
template <class F>
void Guarded(bool& AFailed, F ACall) {
  try {
    ACall();
  } catch (...) {
    AFailed = true;
    throw;
  }
}

}  // namespace

TVnXMLDeserializer::TVnXMLDeserializer() = default;
TVnXMLDeserializer::~TVnXMLDeserializer() = default;

bool TVnXMLDeserializer::ResetForReuse() {
  if (ClassType() != StaticClass()) return false;
  ResetBuilderState();
  FSAXReader = nullptr;
  FLocalName.clear();
  FURI.clear();
  FDataType.clear();
  FDataTypeInfo = nullptr;
  FCanDeserialize = desNo;
  FLevel = 0;
  FAttribs = nullptr;
  FText.clear();
  FHasText = FNil = FProcessRootChars = FDeserializingAttribs = FInCDATA = false;
  FRootXml = FActive = nullptr;
  FBuildFailed = false;
  FLastTypeName = nullptr;
  FTypeNames.clear();
  return true;
}

void TVnXMLDeserializer::SetParent(TVnCustomSerializer* AParent) {
  TVnDeserializer::SetParent(AParent);
  auto* parent = CastObject<TVnXMLDeserializer>(AParent);
  if (!parent || !parent->FRootXml) return;
  // The child takes the events from here to the end of its element.
  FLevel = parent->FLevel - 1;
  FSAXReader = parent->FSAXReader;
  FRootXml = parent->FRootXml;
  FRootXml->FActive = this;
}

// ---- running the reader ----

void TVnXMLDeserializer::DoDeserialize() {
  FLevel = -1;
  FRootXml = this;
  FActive = this;
  FBuildFailed = false;
  std::unique_ptr<TVnSAXXMLReader> reader(new TVnSAXXMLReader());
  reader->SetAutoDestroy(false);
  FSAXReader = reader.get();
  reader->SetContentHandler(IPtr<IVnSAXContentHandler>(static_cast<IVnSAXContentHandler*>(this)));
  reader->SetLexicalHandler(IPtr<IVnSAXLexicalHandler>(static_cast<IVnSAXLexicalHandler*>(this)));
  reader->SetErrorHandler(IPtr<IVnSAXErrorHandler>(static_cast<IVnSAXErrorHandler*>(this)));
  try {
    reader->ParseStream(FStream, cVnCodePageUTF8, u"");
  } catch (...) {
    reader->SetContentHandler(nullptr);
    reader->SetLexicalHandler(nullptr);
    reader->SetErrorHandler(nullptr);
    FSAXReader = nullptr;
    throw;
  }
  reader->SetContentHandler(nullptr);
  reader->SetLexicalHandler(nullptr);
  reader->SetErrorHandler(nullptr);
  FSAXReader = nullptr;
  // The reader forgives elements left open at the end; a value cut short is no value.
  if (FActive != this || FLevel != -1) throw EParserError(cVnXMLTextCut);
}

void TVnXMLDeserializer::StartElement(std::u16string_view AURI, std::u16string_view ALocalName,
                                      std::u16string_view AQName, IVnSAXAttributes* AAttributes) {
  Guarded(FBuildFailed, [&] { FActive->DoStartElement(AURI, ALocalName, AQName, AAttributes); });
}

void TVnXMLDeserializer::Characters(std::u16string_view AText) {
  Guarded(FBuildFailed, [&] { FActive->DoCharacters(AText); });
}

void TVnXMLDeserializer::EndElement(std::u16string_view AURI, std::u16string_view ALocalName,
                                    std::u16string_view AQName) {
  Guarded(FBuildFailed, [&] { FActive->DoEndElement(AURI, ALocalName, AQName); });
}

void TVnXMLDeserializer::StartCDATA() { FActive->FInCDATA = true; }
void TVnXMLDeserializer::EndCDATA() { FActive->FInCDATA = false; }

void TVnXMLDeserializer::FatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) {
  if (FBuildFailed) return;
  throw EParserError(cVnXMLParseFailure, {ALocator ? ALocator->GetLineNr() : -1, ALocator ? ALocator->GetColNr() : -1,
                                          UnicodeString(AErrMsg)});
}

// ---- the events of this part ----

void TVnXMLDeserializer::DoStartElement(std::u16string_view AURI, std::u16string_view ALocalName,
                                        std::u16string_view AQName, IVnSAXAttributes* AAttributes) {
  ++FLevel;
  if (FLevel == 0) {
    if (AAttributes && AAttributes->Count() > 0) ReadAttributesAsMembers(AAttributes);
    return;
  }
  if (FLevel == 1) {
    FCanDeserialize = desNo;
    FURI = AURI;
    FLocalName = ALocalName;
    FDataType.clear();
    FDataTypeInfo = nullptr;
    FText.clear();
    FHasText = false;
    FNil = false;
    FAttribs = AAttributes;
    struct ClearAttribs {
      IVnSAXAttributes*& Ref;
      ~ClearAttribs() { Ref = nullptr; }
    } clear{FAttribs};
    if (AAttributes) {
      for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) {
        if (a->LocalName.size() != 4 && a->LocalName.size() != 3) continue;
        if (!IsXsiNamespace(a->URI)) continue;
        if (detail::SameName(a->LocalName, u"type") && FDataType.empty()) {
          const auto& named = FRootXml->NamedType(a->Value);
          FDataType = named.first;
          FDataTypeInfo = named.second;
        } else if (detail::SameName(a->LocalName, u"nil")) {
          FNil = VnXMLToBool(a->Value);
        }
      }
    }
    if (IsArraySerializer()) {
      FCanDeserialize = desYes;
      InitializeArrayElement(AURI, ALocalName);
      auto* element = CastObject<TVnXMLDeserializer>(FChild);
      if (element && AAttributes && AAttributes->Count() > 0) element->ReadAttributesAsMembers(AAttributes);
    } else {
      FCanDeserialize = CanDeserialize(FURI, FLocalName, FDataType, !FDeserializingAttribs);
    }
    return;
  }
  // Deeper: the inside of a member, kept as text.
  FText += u'<';
  FText += AQName;
  if (AAttributes) {
    for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) {
      FText += u' ';
      FText += a->QName;
      FText += u"=\"";
      FText += a->Value;
      FText += u'"';
    }
  }
  FText += u'>';
  FHasText = true;
}

void TVnXMLDeserializer::DoCharacters(std::u16string_view AText) {
  if (FLevel >= 1) {
    if (FInCDATA && FLevel == 1) {
      // A CDATA section's text is not escaped; it joins the escaped text escaped.
      FText += VnStrToXML(AText, false, false);
    } else {
      FText += AText;
    }
    FHasText = true;
    return;
  }
  if (FLevel < 0) return;
  if (FProcessRootChars) {
    DeserializeValue(FURI, FLocalName, AText, FDataType);
    return;
  }
  const detail::NamedMember* member =
      FInstanceTypeInfo && (FInstanceTypeInfo->Kind() == vtkClass || FInstanceTypeInfo->Kind() == vtkRecord)
          ? &detail::PlanOf(FInstanceTypeInfo).NodeValue
          : nullptr;
  if (member && (member->Field || member->Prop)) {
    UnicodeString name(member->Name);
    UnicodeString uri = FURI;
    UnicodeString dataType = FDataType;
    if (CanDeserialize(uri, name, dataType, false) == desYes) {
      DeserializeValue(uri, name, AText, dataType);
      return;
    }
  }
  if (IsWhitespace(AText)) return;
  bool handled = false;
  const UnicodeString text(AText);
  const UnicodeString dataType = FInstanceTypeInfo ? FInstanceTypeInfo->QualifiedName() : UnicodeString();
  if (FCHelper) FCHelper->DeserializeValue(this, FURI, FLocalName, text, dataType, handled);
  if (!handled && FIHelper) FIHelper->DeserializeValue(this, FURI, FLocalName, text, dataType, handled);
}

void TVnXMLDeserializer::DoEndElement(std::u16string_view AURI, std::u16string_view ALocalName,
                                      std::u16string_view AQName) {
  if (FLevel >= 2) {
    FText += u"</";
    FText += AQName;
    FText += u'>';
  } else if (FLevel == 1 && FCanDeserialize != desIgnore) {
    if (!FNil) {
      MemberText(FText, FHasText);
    } else if (FMemberTypeInfo && FMemberTypeInfo->Kind() == vtkVariant) {
      // A nil Variant is Null: an optional value stays absent.
      FMemberValue = TValue::From(Variant::Null());
      StoreMemberValue();
    }
  }
  (void)AURI;
  (void)ALocalName;
  --FLevel;
  if (FLevel < 0 && FRootXml != this) {
    auto* parent = CastObject<TVnXMLDeserializer>(FParentDeserializer);
    DeserializeEndType();
    FRootXml->FActive = parent;
    --parent->FLevel;
  }
}

void TVnXMLDeserializer::MemberText(std::u16string_view AText, bool AHasText) {
  // An empty element is an empty text for a string member; other members keep their value.
  // So is an element typed as text that a container's helper takes.
  if (AHasText || IsTextKind(FMemberTypeInfo) || (FCHelper && IsTextKind(FDataTypeInfo)))
    DeserializeValue(FURI, FLocalName, AText, FDataType);
}

void TVnXMLDeserializer::ReadAttributesAsMembers(IVnSAXAttributes* AAttributes) {
  FDeserializingAttribs = true;
  struct Restore {
    bool& Flag;
    ~Restore() { Flag = false; }
  } restore{FDeserializingAttribs};
  for (PVnSAXXMAttribute a = AAttributes->FirstAttribute(); a; a = a->Next) {
    if (a->URI.find(u"www.w3.org") != std::u16string::npos || a->QName == u"xmlns" || a->QName.starts_with(u"xmlns:"))
      continue;
    const Integer level = FLevel;
    try {
      DoStartElement(a->URI, a->LocalName, a->QName, nullptr);
      if (FRootXml && FRootXml->FActive != this) {
        // A nested value has no text form in an attribute.
        FRootXml->FActive = this;
        ReleaseChild();
        FCanDeserialize = desIgnore;
      }
      DoCharacters(a->Value);
      DoEndElement(a->URI, a->LocalName, a->QName);
    } catch (const EVnSerializeException&) {
      FLevel = level;
    }
  }
}

const std::pair<UnicodeString, const TVnTypeInfo*>& TVnXMLDeserializer::NamedType(std::u16string_view ASchemaName) {
  // Documents name few types many times: each is looked up in the registry once per read.
  if (FLastTypeName && FLastTypeName->first == ASchemaName) return FLastTypeName->second;
  // A few names alternate: comparing them costs less than hashing a copy of the text.
  if (FTypeNames.size() <= 16) {
    for (auto& entry : FTypeNames) {
      if (entry.first == ASchemaName) {
        FLastTypeName = &entry;
        return entry.second;
      }
    }
  }
  auto it = FTypeNames.find(ASchemaName);
  if (it == FTypeNames.end()) {
    const TVnTypeInfo* type = TVnTypes::GetTypeInfo(ASchemaName, tntSchemaName, false, mtkUnknown);
    it = FTypeNames.emplace(UnicodeString(ASchemaName),
                            std::pair(type ? type->QualifiedName() : UnicodeString(), type)).first;
  }
  FLastTypeName = &*it;
  return it->second;
}

// ---- the builder's operations ----

void TVnXMLDeserializer::ReadClassName(TVnTextParser& AParser, UnicodeString& AClassName) {
  AClassName.clear();
  static constexpr std::u16string_view kMark = u"xsi:type";
  while (!AParser._GetEOF()) {
    if (AParser.CurrCharW() != u'x') {
      AParser.ReadCharW();
      continue;
    }
    if (AParser.PeekStringW(static_cast<Integer>(kMark.size())) != kMark) {
      AParser.ReadCharW();
      continue;
    }
    while (!AParser._GetEOF() && AParser.ReadCharW() != u'"') {
    }
    while (!AParser._GetEOF()) {
      const char16_t c = AParser.ReadCharW();
      if (c == u'"') return;
      AClassName += c;
    }
    AClassName.clear();
    return;
  }
}

bool TVnXMLDeserializer::ReadClassName(UnicodeString& AClassName) {
  AClassName.clear();
  if (!FAttribs) return false;
  bool found = false;
  for (PVnSAXXMAttribute a = FAttribs->FirstAttribute(); a; a = a->Next) {
    if (detail::SameName(a->LocalName, u"type")) {
      AClassName = a->Value;
      found = true;
    } else if (detail::SameName(a->LocalName, u"nil") && VnXMLToBool(a->Value)) {
      AClassName.clear();
      return true;
    }
  }
  return found;
}

TVnDeserializer* TVnXMLDeserializer::CreateChildDeserializerIfNeeded(std::u16string_view AName) {
  TVnDeserializer* child = TVnDeserializer::CreateChildDeserializerIfNeeded(AName);
  if (auto* xmlChild = CastObject<TVnXMLDeserializer>(child); xmlChild && !FDataType.empty()) {
    // The data type is the xsi:type's, or else the member's own, which has a child only when
    // it is not simple.
    const TVnTypeInfo* type = FDataTypeInfo ? FDataTypeInfo : FMemberTypeInfo;
    if (type && type->GetIsSimpleType()) {
      xmlChild->FProcessRootChars = true;
      xmlChild->FDataType = FDataType;
    }
  }
  return child;
}

void TVnXMLDeserializer::DeserializeValue(std::u16string_view AURI, std::u16string_view AName,
                                          std::u16string_view AValue, std::u16string_view ADataType) {
  // Ready-made XML stays as it came: it is written unescaped too.
  if (FMemberTypeInfo && !FCHelper && !FIHelper && FMemberTypeInfo->Name() == u"VnXMLString") {
    FMemberValue = TValue::From(VnXMLString(UnicodeString(AValue)));
    StoreMemberValue();
    return;
  }
  TVnDeserializer::DeserializeValue(AURI, AName, AValue, ADataType);
}

Integer TVnXMLDeserializer::ValueToInt(std::u16string_view AValue) {
  Int64 value = 0;
  return detail::ShortDecimal(AValue, value, 9) ? static_cast<Integer>(value) : VnXMLToInt(Trim(AValue));
}
Int64 TVnXMLDeserializer::ValueToInt64(std::u16string_view AValue) {
  Int64 value = 0;
  return detail::ShortDecimal(AValue, value) ? value : VnXMLToInt64(Trim(AValue));
}
Extended TVnXMLDeserializer::ValueToFloat(std::u16string_view AValue) { return VnXMLToExtended(Trim(AValue)); }
UnicodeString TVnXMLDeserializer::ValueToStr(std::u16string_view AValue) { return VnXMLToStr(AValue); }
TDateTime TVnXMLDeserializer::ValueToDate(std::u16string_view AValue) { return VnXMLToDate(Trim(AValue)); }
TDateTime TVnXMLDeserializer::ValueToTime(std::u16string_view AValue) { return VnXMLToTime(Trim(AValue)); }
TDateTime TVnXMLDeserializer::ValueToDateTime(std::u16string_view AValue) { return VnXMLToDateTime(Trim(AValue)); }
bool TVnXMLDeserializer::ValueToBool(std::u16string_view AValue) { return VnXMLToBool(Trim(AValue)); }
Variant TVnXMLDeserializer::ValueToVar(std::u16string_view AValue, std::u16string_view ADataType) {
  return VnXMLToVariant(AValue, ADataType);
}
TValue TVnXMLDeserializer::ValueToVal(std::u16string_view AValue, std::u16string_view ADataType) {
  // The writer drops the prefix that a type's hint names from enumeration and set names, so a
  // boxed value of such a type is read with it put back, as a member of that type is.
  const TVnTypeInfo* info = TVnTypes::GetTypeInfo(ADataType, tntQualifiedName, false, mtkUnknown);
  const TVnTypeKind kind = info ? info->Kind() : vtkUnknown;
  const UnicodeString prefix = kind == vtkEnumeration || kind == vtkSet ? VnEnumPrefix(info->Handle()) : UnicodeString();
  if (prefix.empty()) return VnXMLToValue(AValue, ADataType);
  const TTypeInfo* type = info->Handle();
  if (kind == vtkEnumeration) {
    const Int64 ordinal = VnEnumOrdinal(type, AValue, prefix);
    if (ordinal < 0) throw Exception(cVnXMLToValueFailed, {AValue, info->Name()});
    return TValue::FromOrdinal(type, ordinal);
  }
  UInt64 bits = 0;
  if (!VnSetBits(type, AValue, prefix, bits)) throw Exception(cVnXMLToValueFailed, {AValue, info->Name()});
  TValue value = TValue::Make(nullptr, type);
  std::memcpy(value.GetReferenceToRawData(), &bits, type->Ops->Size < sizeof bits ? type->Ops->Size : sizeof bits);
  return value;
}

}  // namespace vn
