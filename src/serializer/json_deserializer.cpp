// TVnJSONDeserializer: the reader's events to the builder, the value conversions, and the look
// ahead for the class name of a nil member.
#include <limits>
#include <memory>

#include "serializer/short_decimal.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_form_reader.h"
#include "vnxml/json_reflected_values.h"
#include "vnxml/json_serializer_reader.h"
#include "vnxml/common/custom_simple_type.h"
#include "vnxml/json_values.h"
#include "vnxml/serializer_walker.h"
#include "vnxml/xml_reflected_values.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {

bool IsComplex(const TVnTypeInfo* AType) {
  if (!AType) return false;
  const TVnTypeKind k = AType->Kind();
  return k == vtkRecord || k == vtkClass || k == vtkInterface;
}
bool IsArray(const TVnTypeInfo* AType) {
  return AType && (AType->Kind() == vtkStaticArray || AType->Kind() == vtkDynArray);
}
bool IsOrdinalSet(const TVnTypeInfo* AType) {
  return AType && (AType->Kind() == vtkEnumeration || AType->Kind() == vtkSet);
}
bool IsFloatText(std::u16string_view AText) {
  for (char16_t c : AText)
    if (c == u'.' || c == u'e' || c == u'E') return true;
  return false;
}

std::u16string_view FoundName(TVnJSONSimpleDataType AType) {
  switch (AType) {
    case jdtNull: return u"null";
    case jdtString: return u"a string";
    case jdtNumber: return u"a number";
    case jdtBoolean: return u"a boolean";
    case jdtObject: return u"an object";
    default: return u"an array";
  }
}

bool IsBlank(char16_t c) { return c <= u' '; }

/// The text of the string that starts at AText[AIndex] (a quote), up to its closing quote;
/// AIndex stands behind it. False when the text ends first.
bool QuotedAt(std::u16string_view AText, size_t& AIndex, std::u16string_view& AResult) {
  if (AIndex >= AText.size() || AText[AIndex] != u'"') return false;
  const size_t start = ++AIndex;
  while (AIndex < AText.size() && AText[AIndex] != u'"') AIndex += AText[AIndex] == u'\\' ? 2 : 1;
  if (AIndex >= AText.size()) return false;
  AResult = AText.substr(start, AIndex - start);
  ++AIndex;
  return true;
}

void SkipBlanks(std::u16string_view AText, size_t& AIndex) {
  while (AIndex < AText.size() && IsBlank(AText[AIndex])) ++AIndex;
}

enum class ClassMark { NoObject, EmptyObject, Unnamed, Named };

/// What stands at AText[AIndex] (an object's "{"): its className when that is its first member.
ClassMark ObjectClassName(std::u16string_view AText, size_t AIndex, UnicodeString& AName) {
  SkipBlanks(AText, AIndex);
  if (AIndex >= AText.size() || AText[AIndex] != u'{') return ClassMark::NoObject;
  ++AIndex;
  SkipBlanks(AText, AIndex);
  if (AIndex < AText.size() && AText[AIndex] == u'}') return ClassMark::EmptyObject;
  std::u16string_view name, value;
  if (!QuotedAt(AText, AIndex, name) || !SameText(VnJSONtoStr(name, jdtNull), u"className")) return ClassMark::Unnamed;
  SkipBlanks(AText, AIndex);
  if (AIndex >= AText.size() || AText[AIndex] != u':') return ClassMark::Unnamed;
  ++AIndex;
  SkipBlanks(AText, AIndex);
  if (!QuotedAt(AText, AIndex, value)) return ClassMark::Unnamed;
  AName = VnJSONtoStr(value, jdtNull);
  return ClassMark::Named;
}

bool IsDocumentMember(const TVnTypeInfo* AMember) {
  return AMember && AMember->GetKind() == tkClass &&
         ClassInheritsFrom(AMember->Handle()->ClassType, TVnJSONDocument::StaticClass());
}

bool ArrayAt(std::u16string_view AText, size_t AIndex) {
  SkipBlanks(AText, AIndex);
  return AIndex < AText.size() && AText[AIndex] == u'[';
}

/// The class a form text names with "[className]=" (or its escaped brackets) before the next pair.
bool FormClassName(std::u16string_view AText, UnicodeString& AName) {
  for (std::u16string_view key : {std::u16string_view(u"[className]="), std::u16string_view(u"%5BclassName%5D=")}) {
    const size_t at = AText.find(key);
    if (at == std::u16string_view::npos) continue;
    const size_t start = at + key.size();
    const size_t stop = AText.find(u'&', start);
    AName = AText.substr(start, stop == std::u16string_view::npos ? std::u16string_view::npos : stop - start);
    return true;
  }
  return false;
}

/// Clears the reader's hold on the handlers, also when the parse fails.
struct ReaderScope {
  std::unique_ptr<TVnJSONReader> Reader;
  ~ReaderScope() {
    if (!Reader) return;
    Reader->SetContentHandler(nullptr);
    Reader->SetErrorHandler(nullptr);
  }
};

}  // namespace

TVnJSONDeserializer::~TVnJSONDeserializer() = default;

bool TVnJSONDeserializer::ResetForReuse() {
  if (ClassType() != StaticClass()) return false;
  ResetBuilderState();
  FJSONReader = nullptr;
  FCanDeserialize = desNo;
  FDataType.clear();
  FNamespace.clear();
  FDisabledCnt = 0;
  FOpened = FContainerArray = FClosed = FNullValue = false;
  FCurrentMember.clear();
  FURIArg.clear();
  FNameArg.clear();
  FDispatcher = FActive = nullptr;
  FDepth = 0;
  FInOrdinal = false;
  FOrdinalKey = OrdinalKey::None;
  return true;
}

void TVnJSONDeserializer::SetParent(TVnCustomSerializer* AParent) {
  TVnDeserializer::SetParent(AParent);
  auto* parent = CastObject<TVnJSONDeserializer>(AParent);
  if (!parent) return;
  FJSONReader = parent->FJSONReader;
  FDispatcher = parent->FDispatcher;
  FDepth = parent->FDepth + 1;
  if (FDepth > cVnMaxNesting) throw EVnSerializeException(cVnJSONNestingTooDeep, {parent->GetPath()});
  if (FJSONReader && FDispatcher) HandOver(this);
}

void TVnJSONDeserializer::HandOver(TVnJSONDeserializer* ATarget) {
  if (FDispatcher) FDispatcher->FActive = ATarget;
}

void TVnJSONDeserializer::Finish() {
  auto* parent = dynamic_cast<TVnJSONDeserializer*>(GetParentDeserializer());
  if (!parent || !FDispatcher || FDispatcher == this) {
    // The value of the deserializer that runs the read: its end is the entry point's.
    FOpened = false;
    FClosed = true;
    return;
  }
  DeserializeEndType();
  HandOver(parent);
}

void TVnJSONDeserializer::RaiseShape(std::u16string_view AExpected, std::u16string_view AFound) {
  throw EVnSerializeException(cVnJSONShapeMismatch, {PlaceForMessages(), AExpected, AFound});
}

UnicodeString TVnJSONDeserializer::ExpectedName(const TVnTypeInfo* AType) {
  if (!AType) return u"nothing";
  if (IsArray(AType)) return u"an array of " + (AType->ElementType() ? AType->ElementType()->Name() : UnicodeString());
  if (IsOrdinalSet(AType)) return u"a value of " + AType->Name();
  if (IsComplex(AType)) return u"an object of " + AType->Name();
  return u"a value of " + AType->Name();
}

// ---- the reader's events, passed to whoever has the floor ----

TVnJSONDeserializer& TVnJSONDeserializer::Target() {
  return FDispatcher && FDispatcher->FActive ? *FDispatcher->FActive : *this;
}

template <class F>
void TVnJSONDeserializer::Dispatch(F AEvent) {
  TVnJSONDeserializer& target = Target();
  try {
    AEvent(target);
  } catch (const EAssertionFailed&) {
    throw;
  } catch (const Exception& e) {
    // Every failure names where in the object graph it happened, once.
    if (e.Message().starts_with(cVnJSONFailureAtPrefix)) throw;
    throw EVnSerializeException(UnicodeString(cVnJSONFailureAtPrefix) + u"\"" + target.PlaceForMessages() + u"\"\r\n" +
                                e.Message());
  }
}

UnicodeString TVnJSONDeserializer::PlaceForMessages() const {
  // Before its own value starts, a child stands for its parent's member.
  const TVnDeserializer* parent = GetParentDeserializer();
  return !FOpened && parent ? parent->GetPath() : GetPath();
}

void TVnJSONDeserializer::StartObject() {
  Dispatch([](TVnJSONDeserializer& t) { t.DoStartObject(); });
}
void TVnJSONDeserializer::StartMember(std::u16string_view AName) {
  Dispatch([AName](TVnJSONDeserializer& t) { t.DoStartMember(AName); });
}
void TVnJSONDeserializer::StartArray() {
  Dispatch([](TVnJSONDeserializer& t) { t.DoStartArray(); });
}
void TVnJSONDeserializer::Value(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  Dispatch([AType, AText](TVnJSONDeserializer& t) { t.DoValue(AType, AText); });
}
void TVnJSONDeserializer::EndArray() {
  Dispatch([](TVnJSONDeserializer& t) { t.DoEndArray(); });
}
void TVnJSONDeserializer::EndObject() {
  Dispatch([](TVnJSONDeserializer& t) { t.DoEndObject(); });
}

// ---- the events as this deserializer takes them ----

void TVnJSONDeserializer::DoStartObject() {
  if (FDisabledCnt > 0) return Skip();
  if (FInOrdinal) RaiseShape(ExpectedName(FMemberTypeInfo), u"an object");
  if (FClosed) RaiseShape(u"the end of the text", u"a further value");
  if (!FOpened) {
    if (IsComplex(FInstanceTypeInfo)) {
      FOpened = true;
      return;
    }
    if (!FInstanceTypeInfo || FInstanceTypeInfo->GetIsSimpleType()) return Skip();  // a simple root reads nothing
    RaiseShape(ExpectedName(FInstanceTypeInfo), u"an object");
  }
  if (FContainerArray) return ContainerElement();
  if (InArray()) {
    InitializeArrayElement(u"", u"");
    if (ChildTookOver()) {
      FDispatcher->FActive->FOpened = true;
      return;
    }
    if (IsOrdinalSet(FMemberTypeInfo)) return StartOrdinal();
    if (FMemberTypeInfo && FMemberTypeInfo->Kind() == vtkClass) return Skip();  // a nil element that names no class
    RaiseShape(ExpectedName(FMemberTypeInfo), u"an object");
  }
  if (FCanDeserialize != desYes || !FMemberTypeInfo) return Skip();
  if (IsOrdinalSet(FMemberTypeInfo)) return StartOrdinal();
  // A nil object member that got no child (the text names no class) passes its object over.
  if (FMemberTypeInfo->Kind() == vtkClass || FMemberTypeInfo->Kind() == vtkInterface) return Skip();
  RaiseShape(ExpectedName(FMemberTypeInfo), u"an object");
}

void TVnJSONDeserializer::StartOrdinal() {
  FInOrdinal = true;
  FOrdinalKey = OrdinalKey::None;
}

void TVnJSONDeserializer::DoStartMember(std::u16string_view AName) {
  if (FDisabledCnt > 0) return;
  if (FInOrdinal) {
    if (SameText(AName, u"className")) FOrdinalKey = OrdinalKey::ClassName;
    else if (SameText(AName, u"asString")) FOrdinalKey = OrdinalKey::AsString;
    else if (SameText(AName, u"asInt")) FOrdinalKey = OrdinalKey::AsInt;
    else throw Exception(cVnJSONEnumMemberExpected, {AName});
    return;
  }
  FCanDeserialize = desNo;
  FDataType.clear();
  // The buffers are kept from member to member: a record of short names allocates nothing.
  if (AName.find(u'\\') == std::u16string_view::npos)
    FCurrentMember.assign(AName);
  else
    FCurrentMember = VnJSONtoStr(AName, jdtNull);
  if (InArray()) return;
  FURIArg.assign(FNamespace);
  FNameArg.assign(FCurrentMember);
  FCanDeserialize = CanDeserialize(FURIArg, FNameArg, FDataType, true);
}

void TVnJSONDeserializer::DoStartArray() {
  if (FDisabledCnt > 0) return Skip();
  if (FInOrdinal) RaiseShape(ExpectedName(FMemberTypeInfo), u"an array");
  if (FClosed) RaiseShape(u"the end of the text", u"a further value");
  if (!FOpened) {
    if (IsArray(FInstanceTypeInfo)) {
      FOpened = true;
      FCanDeserialize = desYes;
      return;
    }
    if (!FInstanceTypeInfo || FInstanceTypeInfo->GetIsSimpleType()) return Skip();
    if (IsHelperContainer()) {
      FOpened = true;
      FContainerArray = true;
      return;
    }
    RaiseShape(ExpectedName(FInstanceTypeInfo), u"an array");
  }
  if (FContainerArray) return Skip();  // no list element is an array
  if (InArray()) RaiseShape(ExpectedName(FMemberTypeInfo), u"an array");
  if (FCanDeserialize != desYes || !FMemberTypeInfo) return Skip();
  RaiseShape(ExpectedName(FMemberTypeInfo), u"an array");
}

void TVnJSONDeserializer::DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  if (FDisabledCnt > 0) return;
  if (FInOrdinal) return OrdinalValue(AType, AText);
  if (FClosed) RaiseShape(u"the end of the text", u"a further value");
  if (FContainerArray) {
    // A value of a list goes to its helper; null, or a list that takes no values, passes it over.
    bool handled = false;
    const UnicodeString text(AText), empty;
    const UnicodeString dataType = AType == jdtString    ? u"System.string"
                                   : AType == jdtNumber  ? (IsFloatText(AText) ? u"System.Extended" : u"System.Int64")
                                   : AType == jdtBoolean ? u"System.Boolean"
                                                         : u"";
    if (FCHelper && AType != jdtNull) FCHelper->DeserializeValue(this, empty, empty, text, dataType, handled);
    return;
  }
  if (!FOpened) {
    if (IsComplex(FInstanceTypeInfo)) return ValueAsObject(AType, AText);
    if (IsArray(FInstanceTypeInfo)) {
      // null leaves the array as it is; a string may hold the array's own text.
      if (AType == jdtString && GetParentDeserializer()) ArrayFromString(AText);
      else if (AType != jdtNull) RaiseShape(ExpectedName(FInstanceTypeInfo), FoundName(AType));
      return Finish();
    }
    return;  // a simple root reads nothing
  }
  if (InArray()) {
    if (AType == jdtString && AText.empty()) {
      // An excluded element: it takes its place and keeps its default.
      InitializeArrayElement(u"", u"");
      FCanDeserialize = desIgnore;
      return;
    }
    InitializeArrayElement(u"", u"");
    // An element written as one value but read by a child of its own (an XS record).
    if (ChildTookOver()) return FDispatcher->FActive->DoValue(AType, AText);
    FCanDeserialize = desYes;
  }
  if (FCanDeserialize == desIgnore) return;
  // null on an object member leaves the object as it is.
  if (AType == jdtNull && FMemberTypeInfo && FMemberTypeInfo->Kind() == vtkClass) return;
  std::u16string_view dataType;
  switch (AType) {
    case jdtString: dataType = u"System.string"; break;
    case jdtNumber: dataType = IsFloatText(AText) ? u"System.Extended" : u"System.Int64"; break;
    case jdtBoolean: dataType = u"System.Boolean"; break;
    default: dataType = FDataType; break;
  }
  FNullValue = AType == jdtNull;
  struct Reset {
    bool& Flag;
    ~Reset() { Flag = false; }
  } reset{FNullValue};
  DeserializeValue(u"", FCurrentMember, AText, dataType);
}

void TVnJSONDeserializer::ValueAsObject(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  if (AType == jdtNull) {
    if (FInstanceTypeInfo->Kind() == vtkRecord) throw Exception(cVnJSONRecordNotNillable);
    return Finish();
  }
  // A registered helper takes any scalar (a simple wrapper's number); others take strings only.
  if (AType != jdtString && !FCHelper) RaiseShape(ExpectedName(FInstanceTypeInfo), FoundName(AType));
  bool handled = false;
  const UnicodeString qualified = FInstanceTypeInfo->QualifiedName(), empty, text(AText);
  if (FCHelper) FCHelper->DeserializeValue(this, empty, empty, text, qualified, handled);
  if (!handled && FIHelper) FIHelper->DeserializeValue(this, empty, empty, text, qualified, handled);
  if (!handled && AType != jdtString) RaiseShape(ExpectedName(FInstanceTypeInfo), FoundName(AType));
  if (!handled) {
    // An object written into a string: read that text into the same instance.
    const UnicodeString decoded = ValueToStr(AText);
    size_t i = 0;
    SkipBlanks(decoded, i);
    if (i >= decoded.size() || decoded[i] != u'{') throw Exception(cVnJSONObjectDataExpected);
    VnDeserializeEx(dsfJSON, FInstancePtr, FInstanceTypeInfo, UnicodeToUtf8(decoded));
  }
  Finish();
}

void TVnJSONDeserializer::ArrayFromString(std::u16string_view AText) {
  const UnicodeString decoded = ValueToStr(AText);
  size_t i = 0;
  SkipBlanks(decoded, i);
  if (i >= decoded.size() || decoded[i] != u'[') RaiseShape(ExpectedName(FInstanceTypeInfo), u"a string");
  VnDeserializeEx(dsfJSON, FInstancePtr, FInstanceTypeInfo, UnicodeToUtf8(decoded));
}

void TVnJSONDeserializer::DoEndArray() {
  if (FDisabledCnt > 0) {
    --FDisabledCnt;
    return;
  }
  Finish();
}

void TVnJSONDeserializer::DoEndObject() {
  if (FDisabledCnt > 0) {
    --FDisabledCnt;
    return;
  }
  if (FInOrdinal) {
    FInOrdinal = false;
    return;
  }
  Finish();
}

void TVnJSONDeserializer::OrdinalValue(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  // Both forms are stored in turn: the one that comes last decides.
  if (FOrdinalKey == OrdinalKey::AsString && AType == jdtString)
    DeserializeValue(u"", u"asString", AText, u"System.string");
  else if (FOrdinalKey == OrdinalKey::AsInt && (AType == jdtString || AType == jdtNumber))
    DeserializeValue(u"", u"asInt", AText, u"System.Integer");
  else if (FOrdinalKey != OrdinalKey::ClassName)
    RaiseShape(ExpectedName(FMemberTypeInfo), FoundName(AType));
}

// ---- the read ----

TVnJSONReader* TVnJSONDeserializer::CreateJSONReader() {
  const UnicodeString form = GetParam(u"UrlEncoded");
  if (SameText(form, u"True") || form == u"1") return new TVnFormURLEncodedJSONReader();
  return new TVnJSONReader();
}

void TVnJSONDeserializer::DoDeserialize() {
  ReaderScope scope{std::unique_ptr<TVnJSONReader>(CreateJSONReader())};
  FJSONReader = scope.Reader.get();
  FDispatcher = this;
  FActive = this;
  FOpened = FClosed = false;
  struct Done {
    TVnJSONDeserializer& D;
    ~Done() {
      D.FJSONReader = nullptr;
      D.FActive = nullptr;
    }
  } done{*this};
  scope.Reader->SetContentHandler(IPtr<IVnJSONContentHandler>(this));
  scope.Reader->SetErrorHandler(IPtr<IVnJSONErrorHandler>(this));
  scope.Reader->ParseStream(FStream, cVnCodePageUTF8, u"");
  // A text that ends inside a nested value, or holds no value where one is needed.
  if (FActive != this || FOpened || (!FClosed && (IsComplex(FInstanceTypeInfo) || IsArray(FInstanceTypeInfo))))
    FActive->RaiseShape(ExpectedName(FActive->FInstanceTypeInfo), u"the end of the text");
}

bool TVnJSONDeserializer::ReadClassName(UnicodeString& AClassName) {
  AClassName.clear();
  TVnTextParser* parser = FJSONReader ? FJSONReader->GetParser() : nullptr;
  if (!parser) return false;
  const UnicodeString ahead = parser->PeekStringW(255);
  if (dynamic_cast<TVnFormURLEncodedJSONReader*>(FJSONReader)) return FormClassName(ahead, AClassName);
  // At a member the reader stands on the closing quote of its name.
  size_t i = 0;
  if (!ahead.empty() && ahead[0] == u'"') {
    i = 1;
    SkipBlanks(ahead, i);
    if (i < ahead.size() && ahead[i] == u':') ++i;
  }
  // A container is written as an array and a simple wrapper as its value: for a class that a
  // helper writes, such a text makes the member's own class, whose helper then reads it.
  size_t first = i;
  SkipBlanks(ahead, first);
  if (first < ahead.size() && ahead[first] != u'{' && !ahead.substr(first).starts_with(u"null") && FMemberTypeInfo &&
      FMemberTypeInfo->Kind() == vtkClass && VnCreateSerializerHelper(FMemberTypeInfo->Handle()->ClassType) &&
      (ahead[first] == u'[') != ClassInheritsFrom(FMemberTypeInfo->Handle()->ClassType, TVnCustomSimpleType::StaticClass()))
    return false;
  const ClassMark mark = ObjectClassName(ahead, i, AClassName);
  if (IsDocumentMember(FMemberTypeInfo)) {
    // A document holds any value, a className member too: one is made for an object or array.
    AClassName.clear();
    return mark == ClassMark::EmptyObject || (mark == ClassMark::NoObject && !ArrayAt(ahead, i));
  }
  switch (mark) {
    case ClassMark::Named: return true;
    case ClassMark::Unnamed: return false;  // the member's own class
    default: return true;                   // no object, or {}: the member stays nil
  }
}

void TVnJSONDeserializer::ReadClassName(TVnTextParser& AParser, UnicodeString& AClassName) {
  AClassName.clear();
  const UnicodeString ahead = AParser.PeekStringW(255);
  if (SameText(GetParam(u"UrlEncoded"), u"True") || GetParam(u"UrlEncoded") == u"1") {
    // The root of a form: className=... as its first pair, or a bracketed key.
    if (StartsText(u"className=", ahead)) {
      const size_t stop = ahead.find(u'&');
      AClassName = ahead.substr(10, stop == UnicodeString::npos ? UnicodeString::npos : stop - 10);
      return;
    }
    FormClassName(ahead, AClassName);
    return;
  }
  ObjectClassName(ahead, 0, AClassName);
}

// ---- value conversions: the lexical forms of XML, strings with JSON escapes ----

Integer TVnJSONDeserializer::ValueToInt(std::u16string_view AValue) {
  Int64 value = 0;
  return detail::ShortDecimal(AValue, value, 9) ? static_cast<Integer>(value) : VnXMLToInt(AValue);
}
Int64 TVnJSONDeserializer::ValueToInt64(std::u16string_view AValue) {
  Int64 value = 0;
  return detail::ShortDecimal(AValue, value) ? value : VnXMLToInt64(AValue);
}
Extended TVnJSONDeserializer::ValueToFloat(std::u16string_view AValue) {
  // The writer gives null for an infinity or NaN, which JSON has no number for.
  if (FNullValue) return std::numeric_limits<Extended>::quiet_NaN();
  return VnXMLToDouble(AValue);
}
UnicodeString TVnJSONDeserializer::ValueToStr(std::u16string_view AValue) {
  // A null for a string member is the empty string, not the text "null".
  if (FNullValue) return {};
  return VnJSONtoStr(AValue, jdtNull);
}
TDateTime TVnJSONDeserializer::ValueToDate(std::u16string_view AValue) { return VnXMLToDate(AValue); }
TDateTime TVnJSONDeserializer::ValueToTime(std::u16string_view AValue) { return VnXMLToTime(AValue, tzfNone); }
TDateTime TVnJSONDeserializer::ValueToDateTime(std::u16string_view AValue) {
  return VnXMLToDateTime(AValue, tzfNone);
}
bool TVnJSONDeserializer::ValueToBool(std::u16string_view AValue) { return VnXMLToBool(AValue); }

Variant TVnJSONDeserializer::ValueToVar(std::u16string_view AValue, std::u16string_view ADataType) {
  if (FNullValue) return Variant::Null();
  const TVarType type = TVnTypes::GetVarType(ADataType, tntQualifiedName, varUnknown);
  if (type == varUString || type == varString || type == varOleStr || type == varUnknown || type == varVariant)
    return Variant(ValueToStr(AValue));
  return VnXMLToVariant(AValue, type);
}

TValue TVnJSONDeserializer::ValueToVal(std::u16string_view AValue, std::u16string_view ADataType) {
  return VnJSONToVal(AValue, ADataType, true);
}

}  // namespace vn
