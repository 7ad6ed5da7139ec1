// The JSON writer of the object serializer: structure, names and the value forms.
#include <charconv>
#include <cmath>
#include <unordered_map>
#include <vector>

#include "json/json_escape.h"
#include "serializer/walker_output.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/json_serializer.h"
#include "vnxml/json_values.h"
#include "vnxml/serializer_enums.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {

bool IsComplexKind(TVnTypeKind AKind) {
  return AKind == vtkRecord || AKind == vtkClass || AKind == vtkInterface || AKind == vtkPointer;
}
bool IsArrayKind(TVnTypeKind AKind) { return AKind == vtkStaticArray || AKind == vtkDynArray; }
bool IsTextKind(TVnTypeKind AKind) { return AKind >= vtkText1 && AKind <= vtkText6; }
bool IsRawJSON(const TVnTypeInfo* AType) { return AType && SameText(AType->Name(), u"VnJSONString"); }

/// The zone format a shoTimezoneFormat hint names ("tzfUTC", or its ordinal); none without one.
TVnTimeZoneFormat HintedZone(TVnAttributes AAttributes) {
  SerializerHint* hint = nullptr;
  if (!GetSerializerHint(AAttributes, shoTimezoneFormat, hint)) return tzfNone;
  const UnicodeString& v = hint->GetValue();
  if (SameText(v, u"tzfOffset") || v == u"1") return tzfOffset;
  if (SameText(v, u"tzfUTC") || v == u"2") return tzfUTC;
  return tzfNone;
}

}  // namespace

namespace {

/// Texts that depend on a type alone, made once per type and thread: type records live as long
/// as the process.
struct TypeTexts {
  std::string ObjectStart;                ///< {"className":"<schema name>"
  std::vector<std::string> Enumeration;  ///< the whole object form per ordinal, from 0
};

TypeTexts& TextsOf(const TVnTypeInfo* AType) {
  thread_local std::unordered_map<const TVnTypeInfo*, TypeTexts> cache;
  auto [it, added] = cache.try_emplace(AType);
  if (added) {
    it->second.ObjectStart = "{\"className\":\"";
    detail::AppendUtf8(it->second.ObjectStart, AType->SchemaName());
    it->second.ObjectStart += '"';
  }
  return it->second;
}

}  // namespace

void TVnJSONSerializer::WriteObjectStart(const TVnTypeInfo* AType) {
  if (AType && !AType->GetIsSimpleType()) {
    Write(std::string_view(TextsOf(AType).ObjectStart));
    FPrefix = ",";
  } else {
    Write('{');
  }
}

void TVnJSONSerializer::SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) {
  const TVnTypeKind kind = AType ? AType->Kind() : vtkUnknown;
  const TVnCustomSerializer* parent = GetParent();
  if (kind == vtkInterface && parent && parent->GetInstanceTypeInfo() &&
      parent->GetInstanceTypeInfo()->Kind() == vtkRecord)
    return;
  if (!IsArrayKind(kind) && !IsComplexKind(kind)) {
    VnAssert(parent == nullptr, cVnJSONBasicTypeNotAtRoot);
    return;
  }
  if (IsArrayKind(kind)) {
    Write('[');
    FPrefix.clear();
    return;
  }
  if (!AName.empty() && AIndex >= 1) Write(',');
  else if (!AName.empty()) Write(FPrefix);
  WriteObjectStart(AType);
}

void TVnJSONSerializer::SerializeEndType(std::u16string_view, const TVnTypeInfo* AType, Integer) {
  const TVnTypeKind kind = AType ? AType->Kind() : vtkUnknown;
  const TVnCustomSerializer* parent = GetParent();
  if (kind == vtkInterface && parent && parent->GetInstanceTypeInfo() &&
      parent->GetInstanceTypeInfo()->Kind() == vtkRecord)
    return;
  if (!IsArrayKind(kind) && !IsComplexKind(kind)) {
    VnAssert(parent == nullptr, cVnJSONBasicTypeNotAtRoot);
    return;
  }
  Write(IsArrayKind(kind) ? ']' : '}');
  FPrefix = ",";
}

void TVnJSONSerializer::SerializeName(std::u16string_view AName, TVnSerializerMemberType, TVnTypeKind, TVnTypeKind) {
  // One write for separator, name and colon; a lower-case first letter, since the readers look
  // members up ignoring case.
  FText.assign(FPrefix);
  FText += '"';
  if (!AName.empty()) {
    const char16_t first = AName[0] >= u'A' && AName[0] <= u'Z' ? static_cast<char16_t>(AName[0] + 32) : AName[0];
    detail::AppendUtf8(FText, std::u16string_view(&first, 1));
    detail::AppendUtf8(FText, AName.substr(1));
  }
  FText += "\":";
  Write(std::string_view(FText));
  FPrefix = ",";
}

void TVnJSONSerializer::WriteQuoted(std::u16string_view AText, bool AEscape) {
  FText.assign(1, '"');
  if (AEscape) {
    FEscaped.clear();
    detail::AppendStrToJSON(AText, FEscaped);
    detail::AppendUtf8(FText, FEscaped);
  } else {
    detail::AppendUtf8(FText, AText);
  }
  FText += '"';
  Write(std::string_view(FText));
}

void TVnJSONSerializer::WriteInteger(const TValue& AValue, bool AUnsigned) {
  // Decimal digits are the XML form of every integer kind.
  char digits[24];
  const Int64 ordinal = AValue.IsOrdinal() ? AValue.AsOrdinal() : ToInt64(AValue);
  const auto end = AUnsigned ? std::to_chars(digits, digits + sizeof digits,
                                             AValue.IsOrdinal() ? static_cast<UInt64>(ordinal) : ToUInt64(AValue))
                             : std::to_chars(digits, digits + sizeof digits, ordinal);
  Write(std::string_view(digits, static_cast<size_t>(end.ptr - digits)));
}

void TVnJSONSerializer::SerializeValue(std::u16string_view, const TVnTypeInfo* AType, const TValue& AValue,
                                       Integer AIndex, TVnAttributes AAttributes) {
  if (AIndex > 0) Write(',');
  WriteValue(AType, AValue, AAttributes);
  FPrefix = ",";
}

void TVnJSONSerializer::WriteValue(const TVnTypeInfo* AType, const TValue& AValue, TVnAttributes AAttributes) {
  const TVnTypeKind kind = AType ? AType->Kind() : vtkUnknown;
  const bool null = IsNull(AValue);
  if (null && ((kind >= vtkByte && kind <= vtkBoolean) || (kind >= vtkDate && kind <= vtkVariant))) {
    Write(std::string_view("null"));
    return;
  }
  switch (kind) {
    case vtkByte:
    case vtkWord:
    case vtkLongWord:
    case vtkUInt64: return WriteInteger(AValue, true);
    case vtkShortInt:
    case vtkSmallInt:
    case vtkInteger:
    case vtkInt64: return WriteInteger(AValue, false);
    case vtkSingle:
    case vtkDouble:
    case vtkExtended: {
      const Extended e = ToExtended(AValue);
      if (!std::isfinite(e)) return Write(std::string_view("null"));
      return Write(kind == vtkExtended ? VnExtToXML(e) : VnDoubleToXML(ToDouble(AValue)));
    }
    case vtkBoolean: return Write(std::string_view(ToBoolean(AValue) ? "true" : "false"));
    case vtkEnumeration:
    case vtkSet: return WriteOrdinal(AType, AValue);
    case vtkDate:
    case vtkTime:
    case vtkDateTime: return WriteDate(AType, AValue, AAttributes);
    case vtkVariant: {
      const Variant v = AValue.AsVariant();
      const TValue inner = TValue::FromVariant(v);
      const TVnTypeInfo* innerType = VnTypeInfo(inner);
      if (!innerType || innerType->Kind() == vtkVariant) innerType = TVnTypes::VarTypeInfo(v);
      if (!innerType || innerType->Kind() == vtkVariant) return Write(std::string_view("null"));
      return WriteValue(innerType, inner, AAttributes);
    }
    case vtkStaticArray:
    case vtkDynArray:
      if (null || AValue.GetArrayLength() == 0) return Write(std::string_view("[]"));
      throw Exception(cVnJSONArrayNeedsChild);
    case vtkRecord:
    case vtkClass:
    case vtkInterface:
    case vtkPointer:
    case vtkClassRef: {
      const TVnMainTypeKind main = MainTypeKind(AValue);
      if (main == mtkInteger) return null ? Write(std::string_view("null")) : Write(ToWideString(AValue));
      if (main == mtkString) {
        if (null) return Write(std::string_view("null"));
        if (IsRawJSON(VnTypeInfo(AValue)) || IsRawJSON(AType)) return Write(ToWideString(AValue));
        return WriteQuoted(ToWideString(AValue), true);
      }
      if (null) return Write(std::string_view("{}"));
      throw Exception(cVnJSONObjectNeedsChild);
    }
    default:
      if (IsTextKind(kind)) {
        if (AValue.Kind() == tkUString) return WriteQuoted(*static_cast<const UnicodeString*>(AValue.GetReferenceToRawData()), !IsRawJSON(AType));
        return WriteQuoted(ToWideString(AValue), !IsRawJSON(AType));
      }
      if (IsRawJSON(AType) || IsRawJSON(VnTypeInfo(AValue))) return Write(ToWideString(AValue));
      throw Exception(cVnJSONUnsupportedTypeKind);
  }
}

void TVnJSONSerializer::WriteOrdinal(const TVnTypeInfo* AType, const TValue& AValue) {
  // The type may come as the enumeration while the value is a number or a Variant of one.
  const TTypeInfo* type = AType->Handle();
  Int64 ordinal = 0;
  if (!IsNull(AValue)) ordinal = AValue.Kind() == tkVariant ? ToInt64(AValue) : AValue.IsOrdinal() || AValue.Kind() == tkSet ? AValue.AsOrdinal() : ToInt64(AValue);
  TypeTexts& texts = TextsOf(AType);
  // An enumeration's forms are few: each is made once.
  const bool cached = AType->Kind() == vtkEnumeration && ordinal >= 0 && ordinal < 256;
  if (cached && static_cast<size_t>(ordinal) < texts.Enumeration.size() && !texts.Enumeration[ordinal].empty())
    return Write(std::string_view(texts.Enumeration[ordinal]));
  const UnicodeString prefix = VnEnumPrefix(type);
  UnicodeString text;
  if (AType->Kind() == vtkSet)
    text = IsNull(AValue) ? UnicodeString() : VnSetNames(type, static_cast<UInt64>(ordinal), prefix);
  else
    text = VnEnumName(type, ordinal, prefix);
  std::string out = texts.ObjectStart;
  out += ",\"asString\":\"";
  detail::AppendUtf8(out, VnStrToJSON(text));
  out += "\",\"asInt\":";
  char digits[24];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, ordinal).ptr);
  out += '}';
  Write(std::string_view(out));
  if (cached) {
    if (texts.Enumeration.size() <= static_cast<size_t>(ordinal)) texts.Enumeration.resize(ordinal + 1);
    texts.Enumeration[ordinal] = std::move(out);
  }
}

void TVnJSONSerializer::WriteDate(const TVnTypeInfo* AType, const TValue& AValue, TVnAttributes AAttributes) {
  Write('"');
  if (MainTypeKind(AValue) == mtkString) {
    Write(VnStrToJSON(ToWideString(AValue)));
    return Write('"');
  }
  const TDateTime d = ToDouble(AValue);
  const UnicodeString& name = AType->Name();
  const bool utc = SameText(name, u"TVnUTCDate") || SameText(name, u"TVnUTCTime") || SameText(name, u"TVnUTCDateTime");
  const TVnTimeZoneFormat zone = utc ? tzfNone : HintedZone(AAttributes);
  switch (AType->Kind()) {
    case vtkDate: Write(VnDateToXML(d, zone)); break;
    case vtkTime: Write(VnTimeToXML(d, zone)); break;
    default: Write(VnDateTimeToXML(d, zone)); break;
  }
  if (utc) Write('Z');
  Write('"');
}

}  // namespace vn
