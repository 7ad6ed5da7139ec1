// json_values.h: conversions between native values and JSON text (unit uVnJSON): string
// escaping and unescaping, Variants to JSON, and JSON texts to dates and times.
// Numbers, booleans and date forms share their lexical forms with XML (xml_values.h).
#pragma once

#include <string_view>

#include "vnxml/common/types.h"
#include "vnxml/common/variant.h"
#include "vnxml/json_contract.h"

namespace vn {

/// Failures of the Variant forms of the date readers (EConvertError).
inline constexpr std::u16string_view cVnJSONInvalidDateValue = u"The given value is not a valid Date value!";
inline constexpr std::u16string_view cVnJSONInvalidTimeValue = u"The given value is not a valid Time value!";
inline constexpr std::u16string_view cVnJSONInvalidDateTimeValue = u"The given value is not a valid DateTime value!";

/// The text of a JSON string without its quotes: \b \t \n \f \r for those controls, \" \\ \/,
/// \uXXXX (uppercase digits) from U+0100 up, surrogates one by one. U+0001 to U+0007 are
/// dropped; U+0000, U+000B, U+000E to U+001F and U+0020 to U+00FF stay as they are.
UnicodeString VnStrToJSON(std::u16string_view AText);

/// Decodes the escapes of a raw JSON text: \" \/ \\ \b \f \n \r \t; \u and four characters (a
/// pair of escapes gives the pair; a lone surrogate stays alone); \% and two characters, and a
/// "%" and two characters when AType is jdtNumber, give the character with that byte's code;
/// a backslash before anything else is dropped (a backslash that ends the text is kept).
/// Bad hexadecimal digits raise EConvertError. Null, number and boolean texts hold no escapes.
UnicodeString VnJSONtoStr(std::u16string_view AText, TVnJSONDataType AType = jdtString);

/// JSON text of a Variant: integers in decimal; floats as XML writes them, "-0" for negative
/// zero and "null" for infinities and NaN; strings quoted and escaped; booleans "true"/"false";
/// dates quoted as yyyy-mm-ddThh:nn:ss.zzz; arrays as "[a,b]" without blanks; else "null".
UnicodeString VnVarToJSON(const Variant& AValue);
/// jdtNumber for integers and floats, jdtString for strings and dates, jdtBoolean, jdtArray for
/// variant arrays, jdtNull for everything else.
TVnJSONDataType VnVarTypeToJSONType(const Variant& AValue);

/// An empty text gives 0. "/Date(n)/" counts n milliseconds from 1970-01-01 (the date form
/// keeps whole days, the time form counts from 0); the letters around n aren't looked at.
/// Any other text is an XML date, time or date-time without zone.
TDateTime VnJSONToDate(std::u16string_view AText);
TDateTime VnJSONToTime(std::u16string_view AText);
TDateTime VnJSONToDateTime(std::u16string_view AText);
/// Null gives ADefault; numbers and dates give their value; strings are read as above;
/// anything else raises EConvertError (cVnJSONInvalid...Value).
TDateTime VnJSONToDate(const Variant& AValue, TDateTime ADefault);
TDateTime VnJSONToTime(const Variant& AValue, TDateTime ADefault);
TDateTime VnJSONToDateTime(const Variant& AValue, TDateTime ADefault);
/// The string forms, giving ADefault on any failure.
TDateTime VnJSONToDateDef(std::u16string_view AText, TDateTime ADefault);
TDateTime VnJSONToTimeDef(std::u16string_view AText, TDateTime ADefault);
TDateTime VnJSONToDateTimeDef(std::u16string_view AText, TDateTime ADefault);

}  // namespace vn
