// Integers, floats and booleans to XML text and back.
#include <cmath>
#include <limits>
#include <type_traits>

#include "vnxml/common/sysutils.h"
#include "xml/xml_values_internal.h"

namespace vn {

namespace {

// Cuts to the width of T without a range check: a value too wide for T keeps its low bits.
template <class T>
T ReadInteger(std::u16string_view AText) {
  if (AText.empty()) return 0;
  if constexpr (std::is_same_v<T, UInt64>)
    return detail::XMLTextToUInt64(AText);
  else if constexpr (sizeof(T) >= 4 && !std::is_same_v<T, Integer>)
    return static_cast<T>(StrToInt64(AText));
  else
    return static_cast<T>(StrToInt(AText));
}

template <class T>
T ReadIntegerDef(std::u16string_view AText, T ADefault) {
  if (AText.empty()) return 0;
  try {
    return ReadInteger<T>(AText);
  } catch (const EConvertError&) {
    return ADefault;
  }
}

template <class T>
T ReadFloatDef(std::u16string_view AText, T ADefault) {
  if (AText.empty()) return 0;
  Extended value = 0;
  if (!detail::TryXMLTextToFloat(AText, value)) return ADefault;
  return detail::NarrowFloat<T>(value);
}

bool SameAsciiNoCase(std::u16string_view AText, std::u16string_view ALower) {
  if (AText.size() != ALower.size()) return false;
  for (size_t i = 0; i < AText.size(); ++i) {
    char16_t ch = AText[i];
    if (ch >= u'A' && ch <= u'Z') ch = char16_t(ch + 32);
    if (ch != ALower[i]) return false;
  }
  return true;
}

}  // namespace

namespace detail {

UInt64 XMLTextToUInt64(std::u16string_view AText) {
  if (!AText.empty() && AText.front() == u'-') return static_cast<UInt64>(StrToInt64(AText));
  return StrToUInt64(AText);
}

bool TryXMLTextToFloat(std::u16string_view AText, Extended& AValue) {
  // The XML Schema spellings of the special values, which FloatToStr also writes.
  std::u16string_view text = AText;
  bool negative = false;
  if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) {
    negative = text.front() == u'-';
    text.remove_prefix(1);
  }
  if (SameAsciiNoCase(text, u"inf")) {
    AValue =
        negative ? -std::numeric_limits<Extended>::infinity() : std::numeric_limits<Extended>::infinity();
    return true;
  }
  if (SameAsciiNoCase(text, u"nan")) {
    AValue = std::numeric_limits<Extended>::quiet_NaN();
    return true;
  }
  return TryStrToFloat(AText, AValue);
}

Extended XMLTextToFloat(std::u16string_view AText) {
  Extended value = 0;
  if (!TryXMLTextToFloat(AText, value)) return StrToFloat(AText);  // raises the platform's message
  return value;
}

}  // namespace detail

// ---- value to text ----

UnicodeString VnShortIntToXML(ShortInt AValue) { return IntToStr(AValue); }
UnicodeString VnSmallIntToXML(SmallInt AValue) { return IntToStr(AValue); }
UnicodeString VnLongIntToXML(LongInt AValue) { return IntToStr(AValue); }
UnicodeString VnIntToXML(Integer AValue) { return IntToStr(AValue); }
UnicodeString VnInt64ToXML(Int64 AValue) { return IntToStr(AValue); }
UnicodeString VnByteToXML(Byte AValue) { return IntToStr(AValue); }
UnicodeString VnWordToXML(Word AValue) { return IntToStr(AValue); }
UnicodeString VnLongWordToXML(LongWord AValue) { return IntToStr(AValue); }
UnicodeString VnCardinalToXML(Cardinal AValue) { return IntToStr(AValue); }
UnicodeString VnUInt64ToXML(UInt64 AValue) { return UIntToStr(AValue); }
// FloatToStr of this platform layer always writes '.', so no separator needs replacing.
UnicodeString VnDoubleToXML(Double AValue) { return FloatToStr(AValue); }
UnicodeString VnExtToXML(Extended AValue) { return FloatToStr(AValue); }
UnicodeString VnBoolToXML(bool AValue) { return AValue ? u"true" : u"false"; }

// ---- text to value ----

ShortInt VnXMLToShortint(std::u16string_view AText) { return ReadInteger<ShortInt>(AText); }
ShortInt VnXMLToShortintDef(std::u16string_view AText, ShortInt ADefault) {
  return ReadIntegerDef(AText, ADefault);
}
SmallInt VnXMLToSmallint(std::u16string_view AText) { return ReadInteger<SmallInt>(AText); }
SmallInt VnXMLToSmallintDef(std::u16string_view AText, SmallInt ADefault) {
  return ReadIntegerDef(AText, ADefault);
}
Integer VnXMLToInt(std::u16string_view AText) { return ReadInteger<Integer>(AText); }
Integer VnXMLToIntDef(std::u16string_view AText, Integer ADefault) { return ReadIntegerDef(AText, ADefault); }
Int64 VnXMLToInt64(std::u16string_view AText) { return ReadInteger<Int64>(AText); }
Int64 VnXMLToInt64Def(std::u16string_view AText, Int64 ADefault) { return ReadIntegerDef(AText, ADefault); }
Byte VnXMLToByte(std::u16string_view AText) { return ReadInteger<Byte>(AText); }
Byte VnXMLToByteDef(std::u16string_view AText, Byte ADefault) { return ReadIntegerDef(AText, ADefault); }
Word VnXMLToWord(std::u16string_view AText) { return ReadInteger<Word>(AText); }
Word VnXMLToWordDef(std::u16string_view AText, Word ADefault) { return ReadIntegerDef(AText, ADefault); }
LongWord VnXMLToLongword(std::u16string_view AText) { return ReadInteger<LongWord>(AText); }
LongWord VnXMLToLongwordDef(std::u16string_view AText, LongWord ADefault) {
  return ReadIntegerDef(AText, ADefault);
}
UInt64 VnXMLToUInt64(std::u16string_view AText) { return ReadInteger<UInt64>(AText); }
UInt64 VnXMLToUInt64Def(std::u16string_view AText, UInt64 ADefault) {
  return ReadIntegerDef(AText, ADefault);
}

Single VnXMLToSingle(std::u16string_view AText) {
  return AText.empty() ? 0 : detail::NarrowFloat<Single>(detail::XMLTextToFloat(AText));
}
Single VnXMLToSingleDef(std::u16string_view AText, Single ADefault) { return ReadFloatDef(AText, ADefault); }
Double VnXMLToDouble(std::u16string_view AText) {
  return AText.empty() ? 0 : detail::NarrowFloat<Double>(detail::XMLTextToFloat(AText));
}
Double VnXMLToDoubleDef(std::u16string_view AText, Double ADefault) { return ReadFloatDef(AText, ADefault); }
Extended VnXMLToExtended(std::u16string_view AText) {
  return AText.empty() ? 0 : detail::XMLTextToFloat(AText);
}
Extended VnXMLToExtendedDef(std::u16string_view AText, Extended ADefault) {
  return ReadFloatDef(AText, ADefault);
}

bool VnXMLToBool(std::u16string_view AText) { return AText == u"1" || SameAsciiNoCase(AText, u"true"); }

}  // namespace vn
