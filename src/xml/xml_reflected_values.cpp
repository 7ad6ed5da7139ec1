// Reflected values in XML: a TValue to text, text to a TValue or Variant by type.
#include "vnxml/xml_reflected_values.h"

#include <cmath>
#include <iterator>
#include <limits>

#include "internal/float_decimal.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/serializer.h"
#include "vnxml/xml_escape.h"
#include "vnxml/xml_values.h"

namespace vn {

namespace {

const char16_t* const kTypeKindNames[] = {
    u"vtkUnknown",  u"vtkByte",        u"vtkWord",      u"vtkLongWord",  u"vtkUInt64",      u"vtkShortInt",
    u"vtkSmallInt", u"vtkInteger",     u"vtkInt64",     u"vtkSingle",    u"vtkDouble",      u"vtkExtended",
    u"vtkText1",    u"vtkText2",       u"vtkText3",     u"vtkText4",     u"vtkText5",       u"vtkText6",
    u"vtkBoolean",  u"vtkEnumeration", u"vtkSet",       u"vtkDate",      u"vtkTime",        u"vtkDateTime",
    u"vtkVariant",  u"vtkStaticArray", u"vtkDynArray",  u"vtkRecord",    u"vtkClass",       u"vtkInterface",
    u"vtkOther30",  u"vtkPointer",     u"vtkOther32",   u"vtkOther33",   u"vtkClassRef"};

UnicodeString KindName(TVnTypeKind AKind) {
  return AKind < std::size(kTypeKindNames) ? UnicodeString(kTypeKindNames[AKind]) : IntToStr(AKind);
}

bool StartsWithDigit(std::u16string_view AText) { return !AText.empty() && AText[0] >= u'0' && AText[0] <= u'9'; }

/// AResult, a value of the kind's own type, as a value of AType.
template <class T>
TValue Typed(const T& AValue, const TTypeInfo* AType) {
  return TValue::From(AValue).Cast(AType);
}

TValue DateValue(TDateTime AValue, const TTypeInfo* AType) { return TValue::Make(&AValue, AType); }

TValue CharacterValue(std::u16string_view AText, const TTypeInfo* AType) {
  const UnicodeString text = VnXMLToStr(AText);
  char16_t c = text.empty() ? u'\0' : text[0];
  // An 8-bit character holds what Latin-1 holds; anything else cannot be stored.
  if (AType->Kind == tkChar && c > 0xFF) c = u'?';
  return TValue::From(c).Cast(AType);
}

TValue EnumerationValue(std::u16string_view AText, const TVnTypeInfo* AType) {
  const UnicodeString text = Trim(AText);
  Int64 ordinal = -1;
  if (!StartsWithDigit(text))
    ordinal = GetEnumValue(AType->Handle(), text);
  else if (!TryStrToInt64(text, ordinal))
    ordinal = -1;
  TValue result;
  if (ordinal < 0 || !ToType(TValue::From(ordinal), AType->Handle(), result))
    throw Exception(cVnXMLToValueFailed, {AText, AType->Name()});
  return result;
}

TValue SetValue(std::u16string_view AText, const TTypeInfo* AType) {
  const UnicodeString text = Trim(AText);
  Int64 number = 0;
  UInt64 bits = 0;
  if (StartsWithDigit(text) && TryStrToInt64(text, number))
    bits = static_cast<UInt64>(number);
  else
    bits = StringToSet(AType, text);
  TValue result = TValue::Make(nullptr, AType);
  *static_cast<UInt64*>(result.GetReferenceToRawData()) = bits;
  return result;
}

/// The shortest text in the general format that reads back as the same value of its own width:
/// as many digits as the type holds for sure (15 for a Double, like FloatToStr), more only when
/// they don't suffice (up to 9, 17, 21).
template <class T, T (*Read)(std::u16string_view, T)>
UnicodeString ExactFloatText(T AValue) {
  constexpr Integer maxDigits = std::numeric_limits<T>::max_digits10;
  UnicodeString text;
  for (Integer digits = std::numeric_limits<T>::digits10; digits <= maxDigits; ++digits) {
    text = detail::FormatGeneral(detail::ToFloatDecimal(AValue, digits), digits, 0);
    // A text beyond the range fails and reads as NaN, which equals nothing.
    if (!std::isfinite(AValue) || Read(text, std::numeric_limits<T>::quiet_NaN()) == AValue) break;
  }
  return text;
}

UnicodeString FloatText(const TValue& AValue) {
  const void* p = AValue.GetReferenceToRawData();
  switch (AValue.TypeInfo()->FloatType) {
    case ftSingle: return ExactFloatText<Single, &VnXMLToSingleDef>(*static_cast<const Single*>(p));
    case ftDouble: return ExactFloatText<Double, &VnXMLToDoubleDef>(*static_cast<const Double*>(p));
    case ftExtended: return ExactFloatText<Extended, &VnXMLToExtendedDef>(*static_cast<const Extended*>(p));
    case ftComp: return IntToStr(*static_cast<const Int64*>(p));
    default: return ToWideString(AValue);  // Currency: four decimals, exact
  }
}

}  // namespace

UnicodeString VnValToXML(const TValue& AValue) {
  switch (AValue.Kind()) {
    case tkChar: case tkWChar: case tkString: case tkLString: case tkWString: case tkUString:
      return VnStrToXML(AValue.AsString(), true, true);
    case tkEnumeration: {
      const TTypeInfo* type = AValue.TypeInfo();
      // A boolean takes the schema's lexical form, not its value name.
      if (TypeKind(AValue) == vtkBoolean) return VnBoolToXML(AValue.AsOrdinal() != 0);
      const Int64 ordinal = AValue.AsOrdinal();
      if (ordinal >= type->MinValue && ordinal <= type->MaxValue &&
          static_cast<size_t>(ordinal - type->MinValue) < type->EnumNames.size())
        return type->EnumNames[static_cast<size_t>(ordinal - type->MinValue)];
      return ToWideString(AValue);
    }
    case tkVariant:
      return VnVariantToXML(*static_cast<const Variant*>(AValue.GetReferenceToRawData()));
    case tkClass: case tkArray: case tkDynArray: case tkRecord: case tkMRecord:
      return Utf8ToUnicode(VnSerialize(dsfXML, AValue));
    case tkFloat:
      // Dates are written so that VnXMLToValue reads them back; other floats as numbers.
      switch (TypeKind(AValue)) {
        case vtkDate: return VnDateToXML(*static_cast<const TDateTime*>(AValue.GetReferenceToRawData()));
        case vtkTime: return VnTimeToXML(*static_cast<const TDateTime*>(AValue.GetReferenceToRawData()));
        case vtkDateTime: return VnDateTimeToXML(*static_cast<const TDateTime*>(AValue.GetReferenceToRawData()));
        default: return FloatText(AValue);
      }
    default:
      return ToWideString(AValue);
  }
}

TValue VnXMLToValue(std::u16string_view AText, const TTypeInfo* AType) {
  const TVnTypeInfo* info = TVnTypes::GetTypeInfo(AType);
  if (!info) throw Exception(cVnXMLToValueUnsupported, {AText, u"nil"});
  switch (info->Kind()) {
    case vtkByte: return Typed(VnXMLToByte(AText), AType);
    case vtkWord: return Typed(VnXMLToWord(AText), AType);
    case vtkLongWord: return Typed(VnXMLToLongword(AText), AType);
    case vtkUInt64: return Typed(VnXMLToUInt64(AText), AType);
    case vtkShortInt: return Typed(VnXMLToShortint(AText), AType);
    case vtkSmallInt: return Typed(VnXMLToSmallint(AText), AType);
    case vtkInteger: return Typed(VnXMLToInt(AText), AType);
    case vtkInt64: return Typed(VnXMLToInt64(AText), AType);
    case vtkSingle: return Typed(VnXMLToSingle(AText), AType);
    case vtkDouble: return Typed(VnXMLToDouble(AText), AType);
    case vtkExtended: return Typed(VnXMLToExtended(AText), AType);
    case vtkBoolean: return Typed(VnXMLToBool(AText), AType);
    case vtkDate: return DateValue(VnXMLToDate(AText), AType);
    case vtkTime: return DateValue(VnXMLToTime(AText, tzfNone), AType);
    case vtkDateTime: return DateValue(VnXMLToDateTime(AText, tzfNone), AType);
    case vtkText1: case vtkText2: case vtkText3: return CharacterValue(AText, AType);
    case vtkText4: case vtkText5: case vtkText6: return Typed(VnXMLToStr(AText), AType);
    case vtkVariant: {
      const Variant v = VnXMLToVariant(AText, varUString);
      return TValue::Make(&v, AType);
    }
    case vtkEnumeration: return EnumerationValue(AText, info);
    case vtkSet: return SetValue(AText, AType);
    default: throw Exception(cVnXMLToValueUnsupported, {AText, info->Name()});
  }
}

TValue VnXMLToValue(std::u16string_view AText, std::u16string_view ATypeName) {
  const TVnTypeInfo* info = TVnTypes::GetTypeInfo(ATypeName, tntQualifiedName, false, mtkUnknown);
  if (!info) throw Exception(cVnXMLToValueUnsupported, {AText, ATypeName});
  return VnXMLToValue(AText, info->Handle());
}

Variant VnXMLToVariant(std::u16string_view AText, std::u16string_view ATypeName) {
  return VnXMLToVariant(AText, TVnTypes::GetVarType(ATypeName, tntQualifiedName, varUnknown));
}

Variant VnXMLToVariant(std::u16string_view AText, TVnTypeKind ATypeKind) {
  switch (ATypeKind) {
    case vtkByte: return Variant(VnXMLToByte(AText));
    case vtkWord: return Variant(VnXMLToWord(AText));
    case vtkLongWord: return Variant(VnXMLToLongword(AText));
    case vtkUInt64: return Variant(VnXMLToUInt64(AText));
    case vtkShortInt: return Variant(static_cast<signed char>(VnXMLToShortint(AText)));
    case vtkSmallInt: return Variant(VnXMLToSmallint(AText));
    case vtkInteger: return Variant(VnXMLToInt(AText));
    case vtkInt64: return Variant(static_cast<long long>(VnXMLToInt64(AText)));
    case vtkSingle: return Variant(VnXMLToSingle(AText));
    case vtkDouble: return Variant(VnXMLToDouble(AText));
    case vtkExtended: return Variant(VnXMLToExtended(AText));
    case vtkText1: case vtkText2: case vtkText3: case vtkText4: case vtkText5: case vtkText6:
      return Variant(VnXMLToStr(AText));
    case vtkBoolean: return Variant(VnXMLToBool(AText));
    case vtkDate: return Variant::FromDate(VnXMLToDate(AText));
    case vtkTime: return Variant::FromDate(VnXMLToTime(AText, tzfNone));
    case vtkDateTime: return Variant::FromDate(VnXMLToDateTime(AText, tzfNone));
    default: throw Exception(cVnXMLToVariantFailed, {AText, KindName(ATypeKind)});
  }
}

}  // namespace vn
