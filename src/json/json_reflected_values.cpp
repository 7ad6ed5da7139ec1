// Reflected values in JSON: a TValue to text, text to a TValue by type, and JSON-schema names.
#include "vnxml/json_reflected_values.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/json_values.h"
#include "vnxml/serializer.h"
#include "vnxml/xml_reflected_values.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {

UnicodeString Decoded(std::u16string_view AText, bool ADecode) {
  return ADecode ? VnJSONtoStr(AText, jdtNull) : UnicodeString(AText);
}

TValue CharacterValue(const UnicodeString& AText, const TTypeInfo* AType) {
  char16_t c = AText.empty() ? u'\0' : AText[0];
  if (AType->Kind == tkChar && c > 0xFF) c = u'?';
  return TValue::From(c).Cast(AType);
}

TValue DateValue(TDateTime AValue, const TTypeInfo* AType) { return TValue::Make(&AValue, AType); }

struct NamedSchemaType {
  const char16_t* Name;
  TVnSchemaDataType SchemaType;
};

/// The schema type of an integer type by its name; sdtInt for names not listed.
TVnSchemaDataType IntegerSchemaType(const UnicodeString& AName) {
  static constexpr NamedSchemaType kNames[] = {
      {u"ShortInt", sdtByte},          {u"Int8", sdtByte},           {u"SmallInt", sdtShort},
      {u"Int16", sdtShort},            {u"LongInt", sdtInt},         {u"Integer", sdtInt},
      {u"Int32", sdtInt},              {u"Int64", sdtLong},          {u"Byte", sdtUnsignedByte},
      {u"UInt8", sdtUnsignedByte},     {u"Word", sdtUnsignedShort},  {u"UInt16", sdtUnsignedShort},
      {u"LongWord", sdtUnsignedInt},   {u"Cardinal", sdtUnsignedInt}, {u"UInt32", sdtUnsignedInt},
      {u"UInt64", sdtUnsignedLong},    {u"NativeInt", sdtLong},      {u"NativeUInt", sdtUnsignedLong}};
  for (const NamedSchemaType& n : kNames)
    if (SameText(AName, n.Name)) return n.SchemaType;
  return sdtInt;
}

}  // namespace

UnicodeString VnValToJSON(const TValue& AValue) {
  switch (AValue.Kind()) {
    case tkEnumeration:
      // A boolean is a JSON literal ("true", "false"), not an object.
      if (TypeKind(AValue) == vtkBoolean) return VnValToXML(AValue);
      [[fallthrough]];
    case tkSet: case tkClass: case tkArray: case tkRecord: case tkMRecord: case tkDynArray:
      return Utf8ToUnicode(VnSerialize(dsfJSON, AValue));
    case tkChar: case tkWChar: case tkString: case tkLString: case tkWString: case tkUString:
      return VnStrToJSON(AValue.AsString());
    default:
      return VnValToXML(AValue);
  }
}

TValue VnJSONToVal(std::u16string_view AText, const TTypeInfo* AType, bool ADecode) {
  const TVnTypeInfo* info = TVnTypes::GetTypeInfo(AType);
  if (!info) throw Exception(cVnJSONToValueUnsupported, {AText, u"nil"});
  switch (info->Kind()) {
    case vtkText1: case vtkText2: case vtkText3: return CharacterValue(Decoded(AText, ADecode), AType);
    case vtkText4: case vtkText5: case vtkText6: return TValue::From(Decoded(AText, ADecode)).Cast(AType);
    case vtkDate: return DateValue(VnJSONToDate(AText), AType);
    case vtkTime: return DateValue(VnJSONToTime(AText), AType);
    case vtkDateTime: return DateValue(VnJSONToDateTime(AText), AType);
    case vtkVariant: {
      const Variant v = VnXMLToVariant(AText, varString);
      return TValue::Make(&v, AType);
    }
    case vtkEnumeration: {
      // Digits convert as text (the ordinal); a name through its ordinal. Both must be in range.
      const UnicodeString text = Trim(AText);
      const bool digits = !text.empty() && text[0] >= u'0' && text[0] <= u'9';
      TValue result;
      const TValue source = digits ? TValue::From(text) : TValue::From<Int64>(GetEnumValue(AType, text));
      if (!ToType(source, AType, result)) throw Exception(cVnJSONToValueFailed, {AText, info->Name()});
      return result;
    }
    default:
      // Numbers, booleans and sets read as in XML; that raises for the complex kinds.
      if ((info->Kind() >= vtkByte && info->Kind() <= vtkExtended) || info->Kind() == vtkBoolean ||
          info->Kind() == vtkSet)
        return VnXMLToValue(AText, AType);
      throw Exception(cVnJSONToValueUnsupported, {AText, info->Name()});
  }
}

TValue VnJSONToVal(std::u16string_view AText, std::u16string_view ATypeName, bool ADecode) {
  const TVnTypeInfo* info = TVnTypes::GetTypeInfo(ATypeName, tntQualifiedName, false, mtkUnknown);
  if (!info) throw Exception(cVnJSONToValueUnsupported, {AText, ATypeName});
  return VnJSONToVal(AText, info->Handle(), ADecode);
}

UnicodeString VnJSONType(const TVnTypeInfo* AType, UnicodeString& AFormat, TVnSchemaDataType* ASchemaType) {
  AFormat.clear();
  TVnSchemaDataType schema = sdtNone;
  UnicodeString result;
  if (AType) {
    const UnicodeString& name = AType->Name();
    switch (AType->GetKind()) {
      case tkInteger:
        result = u"integer";
        AFormat = ContainsText(name, u"64") ? u"int64" : u"int32";
        schema = IntegerSchemaType(name);
        break;
      case tkInt64:
        result = u"integer";
        AFormat = u"int64";
        schema = SameText(name, u"UInt64") ? sdtUnsignedLong : sdtLong;
        break;
      case tkFloat:
        if (SameText(name, u"TDate")) {
          result = AFormat = u"date";
          schema = sdtDate;
        } else if (SameText(name, u"TTime") || SameText(name, u"TDateTime")) {
          result = u"dateTime";
          AFormat = u"date-time";
          schema = SameText(name, u"TTime") ? sdtTime : sdtDateTime;
        } else if (SameText(name, u"Single")) {
          result = AFormat = u"float";
          schema = sdtFloat;
        } else {
          result = AFormat = u"double";
          schema = sdtDouble;
        }
        break;
      case tkChar: case tkWChar: case tkString: case tkLString: case tkWString: case tkUString:
        if (SameText(name, u"VnXMLString")) {
          result = u"xml";
        } else if (SameText(name, u"VnJSONString")) {
          result = u"json";
        } else {
          result = u"string";
          schema = sdtString;
        }
        break;
      case tkEnumeration: case tkSet:
        if (SameText(name, u"Boolean") || SameText(name, u"WordBool")) {
          result = u"boolean";
          schema = sdtBoolean;
        } else {
          result = AType->SchemaName();
        }
        break;
      case tkInterface:
        result = u"any";
        break;
      default:
        result = AType->SchemaName();
        schema = AType->SchemaType();
        break;
    }
  }
  if (ASchemaType) *ASchemaType = schema;
  return result;
}

UnicodeString VnJSONType(const TRttiType* AType, UnicodeString& AFormat, TVnSchemaDataType* ASchemaType) {
  return VnJSONType(TVnTypes::GetTypeInfo(AType), AFormat, ASchemaType);
}

}  // namespace vn
