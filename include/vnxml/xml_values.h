// xml_values.h: typed value conversions (unit uVnXMLUtils).
// Native values to their XML Schema lexical forms and back, in four families: VnXXXToXML (value to
// text), VnXMLToXXX (text to value), VnXMLToXXXDef (text to value or a default) and VnXMLToXXX of a
// Variant with a default. Numbers use '.' as decimal separator whatever the locale; dates are local
// time unless a zone format says otherwise. Failures: text forms raise EConvertError on bad digits,
// Variant forms EConvertError with the cVnInvalid... texts below, the date forms what
// VnDecodeISODateTime raises, and the zone, duration and Variant-type failures a plain Exception.
#pragma once

#include <string_view>

#include "vnxml/common/date_utils.h"
#include "vnxml/common/types.h"
#include "vnxml/common/variant.h"

namespace vn {

/// The zone form of a date-time text: xdtfLocal has no zone, xdtfUTC ends in "Z", xdtfTimezone
/// carries the local offset ("+02:00").
enum TVnXMLDateTimeFormat : uint8_t { xdtfLocal, xdtfUTC, xdtfTimezone };

// ---- messages ----
inline constexpr char16_t cVnInvalidShortint[] = u"The given value is not a valid shortint value!";
inline constexpr char16_t cVnInvalidSmallint[] = u"The given value is not a valid smallint value!";
inline constexpr char16_t cVnInvalidInteger[] = u"The given value is not a valid integer value!";
inline constexpr char16_t cVnInvalidByte[] = u"The given value is not a valid Byte value!";
inline constexpr char16_t cVnInvalidWord[] = u"The given value is not a valid Word value!";
inline constexpr char16_t cVnInvalidLongWord[] = u"The given value is not a valid LongWord value!";
inline constexpr char16_t cVnInvalidSingle[] = u"The given value is not a valid Single value!";
inline constexpr char16_t cVnInvalidDouble[] = u"The given value is not a valid Double value!";
inline constexpr char16_t cVnInvalidExtended[] = u"The given value is not a valid Extended value!";
inline constexpr char16_t cVnInvalidDate[] = u"The given value is not a valid Date value!";
inline constexpr char16_t cVnInvalidTime[] = u"The given value is not a valid Time value!";
inline constexpr char16_t cVnInvalidDateTime[] = u"The given value is not a valid DateTime value!";
inline constexpr char16_t cVnInvalidBoolean[] = u"The given value is not a valid Boolean value!";
inline constexpr char16_t cVnInvalidString[] = u"The given value is not a valid String value!";
inline constexpr char16_t cVnXMLDateTimeNoTimezone[] =
    u"The XMLDateTime value did not contain timezone information!";
inline constexpr char16_t cVnDurationEmpty[] =
    u"VnXMLToDuration; An empty string cannot be converted to a xs:duration!";
inline constexpr char16_t cVnDurationNoP[] = u"VnXMLToDuration; A duration must start with a \"P\"!";
inline constexpr char16_t cVnDurationInvalid[] =
    u"VnXMLToDuration; The provided argument (%s) is not a valid duration!";
inline constexpr char16_t cVnVariantToXMLInvalidType[] = u"VnVariantToXml; invalid variant type %d!";
inline constexpr char16_t cVnXMLToVariantUnsupported[] = u"VnXMLToVariant(%s); Unsupported VarType";
inline constexpr char16_t cVnXMLToVariantBadLength[] = u"VnXMLToVariant; invalid array length (%s)";

// ---- zone formats and parsed date-times ----
/// The format of a parsed date-time: an offset gives xdtfTimezone, "Z" xdtfUTC, none xdtfLocal.
TVnXMLDateTimeFormat VnXMLDateTimeFormat(const TVnDateTimeParts& AParts);
/// The fields of a date-time text (VnDecodeISODateTime).
TVnDateTimeParts VnDecodeXMLDateTime(std::u16string_view AText);
/// xdtfLocal is tzfNone, xdtfUTC is tzfUTC, xdtfTimezone is tzfOffset.
TVnTimeZoneFormat VnTimeZoneFormatOf(TVnXMLDateTimeFormat AFormat);

// ---- value to text ----
/// Decimal digits, with '-' when negative.
UnicodeString VnShortIntToXML(ShortInt AValue);
UnicodeString VnSmallIntToXML(SmallInt AValue);
UnicodeString VnLongIntToXML(LongInt AValue);
UnicodeString VnIntToXML(Integer AValue);
UnicodeString VnInt64ToXML(Int64 AValue);
UnicodeString VnByteToXML(Byte AValue);
UnicodeString VnWordToXML(Word AValue);
UnicodeString VnLongWordToXML(LongWord AValue);
UnicodeString VnCardinalToXML(Cardinal AValue);
UnicodeString VnUInt64ToXML(UInt64 AValue);
/// FloatToStr with '.': 15 significant digits, "1E15" exponent form, "INF", "-INF", "NAN".
UnicodeString VnDoubleToXML(Double AValue);
UnicodeString VnExtToXML(Extended AValue);
/// "true" or "false".
UnicodeString VnBoolToXML(bool AValue);

/// yyyy-mm-dd of a local date; UTC converts it first and appends "Z", an offset appends "+hh:mm".
UnicodeString VnDateToXML(TDateTime AValue, TVnTimeZoneFormat AFormat = tzfNone);
UnicodeString VnDateToXML(TDateTime AValue, TVnXMLDateTimeFormat AFormat);
/// hh:nn:ss.zzz of a local time, with "Z" or "+hh:mm" as the format asks.
/// Note: the date part is ignored; zones are taken as they are today.
UnicodeString VnTimeToXML(TDateTime AValue, TVnTimeZoneFormat AFormat = tzfNone);
UnicodeString VnTimeToXML(TDateTime AValue, TVnXMLDateTimeFormat AFormat);
/// yyyy-mm-ddThh:nn:ss.zzz of a local date-time; the UTC form is converted and has no milliseconds.
UnicodeString VnDateTimeToXML(TDateTime AValue, TVnTimeZoneFormat AFormat = tzfNone);
UnicodeString VnDateTimeToXML(TDateTime AValue, TVnXMLDateTimeFormat AFormat);

/// The xs:duration text: "P1Y2M3DT4H5M6.5S", "-P1M", and "P0Y" for zero.
/// Note: negative Months or Seconds count as their magnitude with the sign flipped.
UnicodeString VnDurationToXML(const TVnDuration& ADuration);
/// Reads an xs:duration text; M counts months before "T" and minutes after it. A part may repeat
/// (the last counts) and the order is free. Raises Exception with the cVnDuration... texts.
TVnDuration VnXMLToDuration(std::u16string_view AText);

/// The text of a Variant: numbers, booleans and dates as above, strings escaped (quotes and
/// apostrophes too), byte arrays as hexadecimal, other arrays as <array length="n"><element nr="i">.
/// Raises Exception cVnVariantToXMLInvalidType for kinds without a text (interfaces, errors).
UnicodeString VnVariantToXML(const Variant& AValue);

// ---- text to value ----
// VnXMLToT(Text): "" gives 0; bad text raises EConvertError; values are cut to the width of T
// without a range check ("256" is 0 as a Byte). VnXMLToTDef(Text, Default): "" gives 0, bad text
// gives Default. VnXMLToT(Value, Default): Null (and Unassigned) gives Default; a value of a kind that does
// not convert raises EConvertError with the type's cVnInvalid... text.

ShortInt VnXMLToShortint(std::u16string_view AText);
ShortInt VnXMLToShortintDef(std::u16string_view AText, ShortInt ADefault);
ShortInt VnXMLToShortint(const Variant& AValue, ShortInt ADefault);

SmallInt VnXMLToSmallint(std::u16string_view AText);
SmallInt VnXMLToSmallintDef(std::u16string_view AText, SmallInt ADefault);
SmallInt VnXMLToSmallint(const Variant& AValue, SmallInt ADefault);

Integer VnXMLToInt(std::u16string_view AText);
Integer VnXMLToIntDef(std::u16string_view AText, Integer ADefault);
Integer VnXMLToInt(const Variant& AValue, Integer ADefault);

Int64 VnXMLToInt64(std::u16string_view AText);
Int64 VnXMLToInt64Def(std::u16string_view AText, Int64 ADefault);
Int64 VnXMLToInt64(const Variant& AValue, Int64 ADefault);

Byte VnXMLToByte(std::u16string_view AText);
Byte VnXMLToByteDef(std::u16string_view AText, Byte ADefault);
Byte VnXMLToByte(const Variant& AValue, Byte ADefault);

Word VnXMLToWord(std::u16string_view AText);
Word VnXMLToWordDef(std::u16string_view AText, Word ADefault);
Word VnXMLToWord(const Variant& AValue, Word ADefault);

/// Reads 64-bit text so that values above 2^31 survive.
LongWord VnXMLToLongword(std::u16string_view AText);
LongWord VnXMLToLongwordDef(std::u16string_view AText, LongWord ADefault);
LongWord VnXMLToLongword(const Variant& AValue, LongWord ADefault);

/// Reads unsigned 64-bit text; a negative text is read signed and cut.
UInt64 VnXMLToUInt64(std::u16string_view AText);
UInt64 VnXMLToUInt64Def(std::u16string_view AText, UInt64 ADefault);
UInt64 VnXMLToUInt64(const Variant& AValue, UInt64 ADefault);

// Floats: '.' separator, optional exponent; "INF", "-INF" and "NaN" (any case) as in XML Schema.
// ',' is never a decimal separator: "1,5" is bad text.
Single VnXMLToSingle(std::u16string_view AText);
Single VnXMLToSingleDef(std::u16string_view AText, Single ADefault);
Single VnXMLToSingle(const Variant& AValue, Single ADefault);

Double VnXMLToDouble(std::u16string_view AText);
Double VnXMLToDoubleDef(std::u16string_view AText, Double ADefault);
Double VnXMLToDouble(const Variant& AValue, Double ADefault);

Extended VnXMLToExtended(std::u16string_view AText);
Extended VnXMLToExtendedDef(std::u16string_view AText, Extended ADefault);
Extended VnXMLToExtended(const Variant& AValue, Extended ADefault);

/// The date of a date or date-time text; "" and "0" give 0, a zone is ignored, a negative year
/// negates the result.
TDateTime VnXMLToDate(std::u16string_view AText);
/// Gives ADefault on any failure.
TDateTime VnXMLToDateDef(std::u16string_view AText, TDateTime ADefault);
TDateTime VnXMLToDate(const Variant& AValue, TDateTime ADefault);

/// The clock reading of a time or date-time text in the zone AFormat asks for: no zone gives local
/// time, UTC gives UTC; a text with a zone is converted, a text without one is taken as it stands
/// for tzfNone and raises cVnXMLDateTimeNoTimezone otherwise. "" and "0" give 0.
/// Note: the result has no date part, and lies in [0, 1) even when a zone shift crosses midnight.
TTime VnXMLToTime(std::u16string_view AText, TVnTimeZoneFormat AFormat = tzfNone);
TTime VnXMLToTime(std::u16string_view AText, TVnXMLDateTimeFormat AFormat);
/// Gives ADefault on any failure.
TTime VnXMLToTimeDef(std::u16string_view AText, TTime ADefault, TVnTimeZoneFormat AFormat = tzfNone);
TTime VnXMLToTimeDef(std::u16string_view AText, TTime ADefault, TVnXMLDateTimeFormat AFormat);
TTime VnXMLToTime(const Variant& AValue, TTime ADefault, TVnTimeZoneFormat AFormat = tzfNone);
TTime VnXMLToTime(const Variant& AValue, TTime ADefault, TVnXMLDateTimeFormat AFormat);

/// As VnXMLToTime with the date; a time-only text has date 0 (1899-12-30).
TDateTime VnXMLToDateTime(std::u16string_view AText, TVnTimeZoneFormat AFormat = tzfNone);
TDateTime VnXMLToDateTime(std::u16string_view AText, TVnXMLDateTimeFormat AFormat);
/// Gives ADefault on any failure.
TDateTime VnXMLToDateTimeDef(std::u16string_view AText, TDateTime ADefault,
                             TVnTimeZoneFormat AFormat = tzfNone);
TDateTime VnXMLToDateTimeDef(std::u16string_view AText, TDateTime ADefault, TVnXMLDateTimeFormat AFormat);
TDateTime VnXMLToDateTime(const Variant& AValue, TDateTime ADefault, TVnTimeZoneFormat AFormat = tzfNone);
TDateTime VnXMLToDateTime(const Variant& AValue, TDateTime ADefault, TVnXMLDateTimeFormat AFormat);

/// True for "1" and for "true" in any case; anything else is false, never an error.
bool VnXMLToBool(std::u16string_view AText);
bool VnXMLToBool(const Variant& AValue, bool ADefault);

/// The decoded text of any Variant: Null gives ADefault, strings are decoded (VnXMLToStr), a
/// one-dimensional array gives each element's text followed by "\r\n".
UnicodeString VnXMLToStr(const Variant& AValue, const UnicodeString& ADefault);

/// A Variant of type AVarType read from XML text; reads back what VnVariantToXML writes, arrays
/// and byte arrays included. Array text may come as markup or once more in XML form ("&lt;array");
/// elements are stored in order, String elements as OleStr. An empty array text gives Null.
/// Raises Exception cVnXMLToVariantUnsupported for types without a text form (Dispatch, Error),
/// cVnXMLToVariantBadLength for a length that is no number, negative, too large or exceeded.
Variant VnXMLToVariant(std::u16string_view AText, TVarType AVarType);

}  // namespace vn
