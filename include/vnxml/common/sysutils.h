// sysutils.h: the platform's conversions and text helpers, behaving as the platform documents them.
// Numbers are read and written with '.' as decimal separator, whatever the process locale.
// Failures raise EConvertError with the platform's messages ("'%s' is not a valid integer value").
#pragma once

#include <initializer_list>

#include "vnxml/common/exception.h"
#include "vnxml/common/types.h"
#include "vnxml/common/varrec.h"

namespace vn {

// ---- integers ----
UnicodeString IntToStr(Int64 AValue);
UnicodeString UIntToStr(UInt64 AValue);
/// Upper-case hexadecimal, left-padded with '0' to ADigits.
UnicodeString IntToHex(UInt64 AValue, Integer ADigits);
/// Leading spaces, an optional sign, then decimal digits, or hex digits behind '$', 'x' or '0x'.
/// Anything else (trailing blanks, tabs, a fraction) raises EConvertError. Decimal text must fit the
/// type; hex text may fill its unsigned range and wraps ("$FFFFFFFF" is -1 for StrToInt).
Integer StrToInt(std::u16string_view AText);
Int64 StrToInt64(std::u16string_view AText);
UInt64 StrToUInt64(std::u16string_view AText);
Integer StrToIntDef(std::u16string_view AText, Integer ADefault);
Int64 StrToInt64Def(std::u16string_view AText, Int64 ADefault);
bool TryStrToInt(std::u16string_view AText, Integer& AValue);
bool TryStrToInt64(std::u16string_view AText, Int64& AValue);
bool TryStrToUInt64(std::u16string_view AText, UInt64& AValue);

// ---- floating point ----
/// General format, 15 significant digits rounded half away from zero; fixed notation unless the
/// exponent is above 14 or below -5, then "1E15", "1E-5". Zero (also -0) is "0"; NAN, INF, -INF.
UnicodeString FloatToStr(Extended AValue);
/// Decimal text with '.' separator and optional exponent; spaces around it are allowed, and
/// "INF", "-INF", "NAN" (any case) read back what FloatToStr writes. A value too small reads as 0.
Extended StrToFloat(std::u16string_view AText);
Extended StrToFloatDef(std::u16string_view AText, Extended ADefault);
bool TryStrToFloat(std::u16string_view AText, Extended& AValue);
bool TryStrToFloat(std::u16string_view AText, Double& AValue);

// ---- booleans ----
/// "True"/"False", or "-1"/"0" when AUseBoolStrs is false, as the platform does.
UnicodeString BoolToStr(bool AValue, bool AUseBoolStrs = false);
bool StrToBool(std::u16string_view AText);
bool TryStrToBool(std::u16string_view AText, bool& AValue);

// ---- formatting ----
/// %s %d %u %x %f %g %e %n %m %p %c and %%, with index, '-', width and precision (also '*').
/// Floats use '.' and ',' (thousands) and '$' for %m. Misuse raises EConvertError.
UnicodeString Format(std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs);

// ---- text ----
/// Removes characters at or below the space from both ends (one end for the Left/Right forms).
UnicodeString Trim(std::u16string_view AText);
UnicodeString TrimLeft(std::u16string_view AText);
UnicodeString TrimRight(std::u16string_view AText);
/// Case folding of A-Z only.
UnicodeString UpperCase(std::u16string_view AText);
UnicodeString LowerCase(std::u16string_view AText);
bool SameText(std::u16string_view A, std::u16string_view B);
Integer CompareText(std::u16string_view A, std::u16string_view B);
Integer CompareStr(std::u16string_view A, std::u16string_view B);
/// Full Unicode case mapping (ICU), as the platform's Ansi* forms.
UnicodeString AnsiUpperCase(std::u16string_view AText);
UnicodeString AnsiLowerCase(std::u16string_view AText);
bool AnsiSameText(std::u16string_view A, std::u16string_view B);
/// Linguistic order (ICU root collation, lower case before upper); distinct texts never compare equal.
Integer AnsiCompareStr(std::u16string_view A, std::u16string_view B);
/// Linguistic order ignoring case; 0 exactly when AnsiSameText holds.
Integer AnsiCompareText(std::u16string_view A, std::u16string_view B);
UnicodeString QuotedStr(std::u16string_view AText, char16_t AQuote = u'\'');
/// Removes the quotes of a quoted text and halves doubled quotes inside.
UnicodeString AnsiDequotedStr(std::u16string_view AText, char16_t AQuote);

enum TReplaceFlag : uint8_t { rfReplaceAll = 1, rfIgnoreCase = 2 };
UnicodeString StringReplace(std::u16string_view AText, std::u16string_view AOld, std::u16string_view ANew,
                            unsigned AFlags);
/// 1-based position of ASub in AText from AOffset, 0 when absent.
Integer Pos(std::u16string_view ASub, std::u16string_view AText, Integer AOffset = 1);
/// 1-based copy as the platform's Copy: out-of-range indexes are clipped.
UnicodeString Copy(std::u16string_view AText, Integer AIndex, Integer ACount);
bool StartsText(std::u16string_view ASubText, std::u16string_view AText);
bool EndsText(std::u16string_view ASubText, std::u16string_view AText);
bool ContainsText(std::u16string_view AText, std::u16string_view ASubText);
bool StartsStr(std::u16string_view ASubText, std::u16string_view AText);
bool EndsStr(std::u16string_view ASubText, std::u16string_view AText);
UnicodeString StringOfChar(char16_t ACh, Integer ACount);

// ---- math ----
/// Banker's rounding: ties go to the even neighbour.
Int64 Round(Extended AValue);
Int64 Trunc(Extended AValue);
Int64 Ceil(Extended AValue);
Int64 Floor(Extended AValue);

// ---- dates (TDateTime = days since 1899-12-30) ----
TDateTime EncodeDate(Word AYear, Word AMonth, Word ADay);
bool TryEncodeDate(Word AYear, Word AMonth, Word ADay, TDateTime& ADate);
TDateTime EncodeTime(Word AHour, Word AMin, Word ASec, Word AMSec);
bool TryEncodeTime(Word AHour, Word AMin, Word ASec, Word AMSec, TDateTime& ATime);
TDateTime EncodeDateTime(Word AYear, Word AMonth, Word ADay, Word AHour, Word AMin, Word ASec, Word AMSec);
void DecodeDate(TDateTime ADate, Word& AYear, Word& AMonth, Word& ADay);
void DecodeTime(TDateTime ATime, Word& AHour, Word& AMin, Word& ASec, Word& AMSec);
void DecodeDateTime(TDateTime AValue, Word& AYear, Word& AMonth, Word& ADay, Word& AHour, Word& AMin,
                    Word& ASec, Word& AMSec);
bool IsLeapYear(Word AYear);
Word DaysInAMonth(Word AYear, Word AMonth);
/// 1 = Sunday ... 7 = Saturday.
Word DayOfWeek(TDateTime ADate);
/// Steps through the platform's time stamp, so that steps across 1899-12-30 stay exact.
TDateTime IncMilliSecond(TDateTime AValue, Int64 ANumberOf = 1);
TDateTime IncSecond(TDateTime AValue, Int64 ANumberOf = 1);
TDateTime IncMinute(TDateTime AValue, Int64 ANumberOf = 1);
TDateTime IncHour(TDateTime AValue, Int64 ANumberOf = 1);
TDateTime IncDay(TDateTime AValue, Integer ANumberOf = 1);
/// Same day in the target month, clipped to its last day; the time of day is kept.
TDateTime IncMonth(TDateTime AValue, Integer ANumberOf = 1);
TDateTime IncYear(TDateTime AValue, Integer ANumberOf = 1);
/// Local date and time of the operating system's clock.
TDateTime Now();
TDateTime Date();
TDateTime Time();

// ---- files ----
bool FileExists(std::u16string_view AFileName);
UnicodeString ExtractFileName(std::u16string_view AFileName);
UnicodeString ExtractFileExt(std::u16string_view AFileName);
UnicodeString ExtractFilePath(std::u16string_view AFileName);

}  // namespace vn
