// Variants to XML text and back, and the Variant forms of the typed readers.
#include <cmath>
#include <type_traits>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/xml_escape.h"
#include "xml/xml_values_internal.h"

namespace vn {

namespace {

[[noreturn]] void Fail(const char16_t* AMessage) { throw EConvertError(UnicodeString(AMessage)); }

// Empty counts as Null here: neither has a value to convert.
bool HasNoValue(const Variant& AValue) { return VarIsNull(AValue) || VarIsEmpty(AValue); }

Int64 IntegerOf(const Variant& AValue) {
  return AValue.VarType() == varUInt64 ? static_cast<Int64>(AValue.RawUInt64()) : AValue.AsInt64();
}

// Integer kinds: the value cut to T; strings read as integer text; booleans 0 or 1.
template <class T>
T VariantToInteger(const Variant& AValue, T ADefault, const char16_t* AMessage) {
  if (HasNoValue(AValue)) return ADefault;
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
      return static_cast<T>(IntegerOf(AValue));
    case vmkString: {
      UnicodeString text = AValue.AsString();
      if constexpr (std::is_same_v<T, UInt64>)
        return detail::XMLTextToUInt64(text);
      else if constexpr (sizeof(T) >= 4 && !std::is_same_v<T, Integer>)
        return static_cast<T>(StrToInt64(text));
      else
        return static_cast<T>(StrToInt(text));
    }
    case vmkBoolean:
      return AValue.RawBoolean() ? 1 : 0;
    default:
      Fail(AMessage);
  }
}

template <class T>
T VariantToFloat(const Variant& AValue, T ADefault, const char16_t* AMessage) {
  if (HasNoValue(AValue)) return ADefault;
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
    case vmkFloat:
    case vmkDateTime:
      return detail::NarrowFloat<T>(AValue.AsExtended());
    case vmkString:
      return detail::NarrowFloat<T>(detail::XMLTextToFloat(AValue.AsString()));
    default:
      Fail(AMessage);
  }
}

// Date kinds: numbers are taken as TDateTime values; strings go through AFromText.
template <class FromText>
TDateTime VariantToDate(const Variant& AValue, TDateTime ADefault, const char16_t* AMessage,
                        FromText AFromText) {
  if (HasNoValue(AValue)) return ADefault;
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
    case vmkFloat:
    case vmkDateTime:
      return AValue.AsDouble();
    case vmkString:
      return AFromText(AValue.AsString());
    default:
      Fail(AMessage);
  }
}

// ---- Variant to text ----

void AppendHexBytes(UnicodeString& AText, const Variant& AValue) {
  static constexpr char16_t cHex[] = u"0123456789ABCDEF";
  std::span<const Byte> bytes = VarArrayBytes(AValue);
  AText.reserve(AText.size() + bytes.size() * 2);
  for (Byte b : bytes) {
    AText += cHex[b >> 4];
    AText += cHex[b & 15];
  }
}

void AppendArray(UnicodeString& AText, const Variant& AValue) {
  if (VarArrayDimCount(AValue) != 1) throw Exception(cVnVariantToXMLInvalidType, {Integer(AValue.VarType())});
  Integer low = VarArrayLowBound(AValue, 1);
  Integer high = VarArrayHighBound(AValue, 1);
  AText += Format(u"<array length=\"%d\">", {Int64(high) + 1});
  for (Integer i = low; i <= high; ++i) {
    AText += u"<element nr=\"";
    AText += IntToStr(i);
    AText += u"\">";
    AText += VnVariantToXML(VarArrayGet(AValue, {i}));
    AText += u"</element>";
  }
  AText += u"</array>";
}

// ---- text to Variant ----

Byte HexDigit(char16_t ACh, std::u16string_view APair) {
  if (ACh >= u'0' && ACh <= u'9') return Byte(ACh - u'0');
  if (ACh >= u'A' && ACh <= u'F') return Byte(ACh - u'A' + 10);
  if (ACh >= u'a' && ACh <= u'f') return Byte(ACh - u'a' + 10);
  throw EConvertError(cRtlInvalidInteger, {APair});
}

Variant ReadByteArray(std::u16string_view AText) {
  UnicodeString text = Trim(AText);
  if (text.empty()) return Variant::Null();
  if (text.size() % 2 != 0)
    throw EConvertError(cRtlInvalidInteger, {std::u16string_view(text).substr(text.size() - 1)});
  TBytes bytes(text.size() / 2);
  for (size_t i = 0; i < bytes.size(); ++i) {
    std::u16string_view pair = std::u16string_view(text).substr(i * 2, 2);
    bytes[i] = Byte(HexDigit(pair[0], pair) << 4 | HexDigit(pair[1], pair));
  }
  return VarArrayFromBytes(bytes);
}

// <array length="n"><element nr="0">text</element>...</array>. Text that starts with the markup is
// read as it stands and each element decoded on its own, so that an element holding "&lt;" keeps
// it; text in XML form ("&lt;array ...") is decoded first.
Variant ReadArray(std::u16string_view AText, TVarType AElementType) {
  UnicodeString decoded;
  std::u16string_view text = AText;
  UnicodeString trimmed = TrimLeft(AText);
  if (trimmed.rfind(u"<array", 0) != 0) {
    decoded = VnXMLToStr(AText);
    text = decoded;
  }
  size_t open = text.find(u'"');
  size_t close = open == text.npos ? text.npos : text.find(u'"', open + 1);
  if (close == text.npos) throw Exception(cVnXMLToVariantBadLength, {text});
  std::u16string_view lengthText = text.substr(open + 1, close - open - 1);
  Integer length = 0;
  // A length beyond the text's size cannot be meant, and would allocate without bound.
  if (!TryStrToInt(lengthText, length) || length < 0 || size_t(length) > text.size())
    throw Exception(cVnXMLToVariantBadLength, {lengthText});

  if (AElementType == varString || AElementType == varUString) AElementType = varOleStr;
  Variant result = VarArrayCreate({0, length - 1}, AElementType);
  size_t pos = close + 1;
  for (Integer index = 0;; ++index) {
    size_t element = text.find(u"<element", pos);
    if (element == text.npos) break;
    size_t start = text.find(u'>', element);
    if (start == text.npos) break;
    size_t end = text.find(u'<', start + 1);
    if (end == text.npos) end = text.size();
    if (index >= length) throw Exception(cVnXMLToVariantBadLength, {lengthText});
    VarArrayPut(result, VnXMLToVariant(text.substr(start + 1, end - start - 1), AElementType), {index});
    pos = end;
  }
  return result;
}

}  // namespace

// ---- Variant forms of the readers ----

ShortInt VnXMLToShortint(const Variant& AValue, ShortInt ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidShortint);
}
SmallInt VnXMLToSmallint(const Variant& AValue, SmallInt ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidSmallint);
}
Integer VnXMLToInt(const Variant& AValue, Integer ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidInteger);
}
Int64 VnXMLToInt64(const Variant& AValue, Int64 ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidInteger);
}
Byte VnXMLToByte(const Variant& AValue, Byte ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidByte);
}
Word VnXMLToWord(const Variant& AValue, Word ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidWord);
}
LongWord VnXMLToLongword(const Variant& AValue, LongWord ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidLongWord);
}
UInt64 VnXMLToUInt64(const Variant& AValue, UInt64 ADefault) {
  return VariantToInteger(AValue, ADefault, cVnInvalidInteger);
}
Single VnXMLToSingle(const Variant& AValue, Single ADefault) {
  return VariantToFloat(AValue, ADefault, cVnInvalidSingle);
}
Double VnXMLToDouble(const Variant& AValue, Double ADefault) {
  return VariantToFloat(AValue, ADefault, cVnInvalidDouble);
}
Extended VnXMLToExtended(const Variant& AValue, Extended ADefault) {
  return VariantToFloat(AValue, ADefault, cVnInvalidExtended);
}

TDateTime VnXMLToDate(const Variant& AValue, TDateTime ADefault) {
  return VariantToDate(AValue, ADefault, cVnInvalidDate,
                       [](const UnicodeString& AText) { return VnXMLToDate(AText); });
}
TTime VnXMLToTime(const Variant& AValue, TTime ADefault, TVnTimeZoneFormat AFormat) {
  return VariantToDate(AValue, ADefault, cVnInvalidTime,
                       [AFormat](const UnicodeString& AText) { return VnXMLToTime(AText, AFormat); });
}
TTime VnXMLToTime(const Variant& AValue, TTime ADefault, TVnXMLDateTimeFormat AFormat) {
  return VnXMLToTime(AValue, ADefault, VnTimeZoneFormatOf(AFormat));
}
TDateTime VnXMLToDateTime(const Variant& AValue, TDateTime ADefault, TVnTimeZoneFormat AFormat) {
  return VariantToDate(AValue, ADefault, cVnInvalidDateTime,
                       [AFormat](const UnicodeString& AText) { return VnXMLToDateTime(AText, AFormat); });
}
TDateTime VnXMLToDateTime(const Variant& AValue, TDateTime ADefault, TVnXMLDateTimeFormat AFormat) {
  return VnXMLToDateTime(AValue, ADefault, VnTimeZoneFormatOf(AFormat));
}

bool VnXMLToBool(const Variant& AValue, bool ADefault) {
  if (HasNoValue(AValue)) return ADefault;
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
      return IntegerOf(AValue) != 0;
    case vmkString:
      return VnXMLToBool(AValue.AsString());
    case vmkBoolean:
      return AValue.RawBoolean();
    default:
      Fail(cVnInvalidBoolean);
  }
}

UnicodeString VnXMLToStr(const Variant& AValue, const UnicodeString& ADefault) {
  if (HasNoValue(AValue)) return ADefault;
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
      return AValue.VarType() == varUInt64 ? UIntToStr(AValue.RawUInt64()) : IntToStr(AValue.AsInt64());
    case vmkFloat:
      return VnDoubleToXML(AValue.AsDouble());
    case vmkString:
      return VnXMLToStr(AValue.AsString());
    case vmkBoolean:
      return VnBoolToXML(AValue.RawBoolean());
    case vmkDateTime:
      return VnDateTimeToXML(AValue.AsDouble(), tzfNone);
    case vmkArray: {
      if (VarArrayDimCount(AValue) != 1) break;
      UnicodeString text;
      for (Integer i = VarArrayLowBound(AValue, 1), high = VarArrayHighBound(AValue, 1); i <= high; ++i) {
        text += VnXMLToStr(VarArrayGet(AValue, {i}), UnicodeString());
        text += u"\r\n";
      }
      return text;
    }
    default:
      break;
  }
  Fail(cVnInvalidString);
}

// ---- Variant to text and back ----

UnicodeString VnVariantToXML(const Variant& AValue) {
  TVarType type = AValue.VarType();
  UnicodeString text;
  if (type == (varArray | varByte)) {
    AppendHexBytes(text, AValue);
    return text;
  }
  if ((type & varArray) != 0) {
    AppendArray(text, AValue);
    return text;
  }
  switch (type) {
    case varEmpty:
    case varNull:
      return text;
    case varSmallint:
    case varInteger:
    case varShortInt:
    case varByte:
    case varWord:
    case varLongWord:  // through 64 bits, so that LongWord values above 2^31 stay positive
    case varInt64:
      return VnInt64ToXML(AValue.AsInt64());
    case varUInt64:
      return VnUInt64ToXML(AValue.RawUInt64());
    case varSingle:
    case varDouble:
    case varCurrency:
      return VnDoubleToXML(AValue.AsDouble());
    case varDate:
      return VnDateTimeToXML(AValue.RawDouble(), tzfNone);
    case varOleStr:
    case varString:
    case varUString:
      return VnStrToXML(AValue.AsString(), true, true);
    case varBoolean:
      return VnBoolToXML(AValue.RawBoolean());
    default:
      throw Exception(cVnVariantToXMLInvalidType, {Integer(type)});
  }
}

Variant VnXMLToVariant(std::u16string_view AText, TVarType AVarType) {
  if (AVarType == (varArray | varByte)) return ReadByteArray(AText);
  if ((AVarType & varArray) != 0) {
    if (Trim(AText).empty()) return Variant::Null();
    return ReadArray(AText, AVarType & varTypeMask);
  }
  switch (AVarType) {
    case varEmpty:
      return Variant::Unassigned();
    case varNull:
      return Variant::Null();
    case varSmallint:
      return Variant(VnXMLToSmallint(AText));
    case varInteger:
      return Variant(VnXMLToInt(AText));
    case varSingle:
      return Variant(VnXMLToSingle(AText));
    case varDouble:
      return Variant(VnXMLToDouble(AText));
    case varCurrency:
      return Variant(Currency::FromDouble(VnXMLToExtended(AText)));
    case varDate:
      return Variant::FromDate(VnXMLToDateTime(AText, tzfNone));
    case varShortInt:
      return Variant(VnXMLToShortint(AText));
    case varByte:
      return Variant(VnXMLToByte(AText));
    case varWord:
      return Variant(VnXMLToWord(AText));
    case varLongWord:
      return Variant(VnXMLToLongword(AText));
    case varInt64:
      return Variant(VnXMLToInt64(AText));
    case varUInt64:
      return Variant(VnXMLToUInt64(AText));
    case varOleStr:
      return Variant::FromOleStr(VnXMLToStr(AText));
    case varString:
      return Variant(UnicodeToUtf8(VnXMLToStr(AText)));
    case varUString:
      return Variant(VnXMLToStr(AText));
    case varBoolean:
      return Variant(VnXMLToBool(AText));
    case varVariant:
    case varUnknown:
      return Variant(UnicodeString(AText));
    default:
      throw Exception(cVnXMLToVariantUnsupported, {VarTypeAsText(AVarType)});
  }
}

}  // namespace vn
