// date_utils.h: ISO date-time parsing, durations and time zones of the common package (unit rVnCommon).
// Dates are TDateTime values (days since 1899-12-30) read as local time unless a name says UTC;
// local time is the operating system's zone (TZ), looked up per moment, so daylight saving counts.
// Failures: VnDecodeISODateTime raises EConvertError with cVnInvalidISODateTime and the text.
#pragma once

#include <string_view>

#include "vnxml/common/types.h"

namespace vn {

/// How a date-time text carries its zone; the order is fixed (VnXMLDateTimeFormat relies on it).
enum TVnTimeZoneFormat : uint8_t {
  tzfNone,    ///< no zone: a clock reading in local time
  tzfOffset,  ///< an explicit offset such as +02:00
  tzfUTC      ///< "Z"
};

/// The fields of a parsed date-time text. Absent parts are 0.
struct TVnDateTimeParts {
  Word Year = 0;  ///< magnitude; the sign is in NegativeYear
  Word Month = 0;
  Word Day = 0;
  Word Hour = 0;
  Word Minute = 0;
  Word Second = 0;
  Word MilliSecond = 0;  ///< the first three fraction digits; further digits are dropped
  bool NegativeYear = false;
  bool HasDate = false;
  bool HasTime = false;
  TVnTimeZoneFormat TimeZone = tzfNone;  ///< 0 none, 1 offset, 2 UTC
  bool TimeZoneNegative = false;         ///< sign of the offset (tzfOffset only)
  Word TimeZoneHour = 0;
  Word TimeZoneMinute = 0;

  /// The offset east of UTC in minutes, signed; 0 unless TimeZone is tzfOffset.
  Integer TimeZoneOffset() const;
};

/// A duration as XML Schema splits it: year and month parts in Months, the rest in Seconds.
struct TVnDuration {
  bool Negative = false;
  Integer Months = 0;
  double Seconds = 0;
};

/// Message of VnDecodeISODateTime; %s is the text.
inline constexpr char16_t cVnInvalidISODateTime[] = u"'%s' is not a valid ISO 8601 date and time value";

/// Parses the XML Schema / ISO 8601 extended forms, each with an optional zone (Z, +hh:mm, +hhmm, +hh):
///   dateTime  [-]yyyy-mm-ddThh:mm:ss[.f*]   (a space may stand for T; seconds may be left out)
///   date      [-]yyyy-mm-dd
///   time      hh:mm:ss[.f*]  or  hh:mm
///   gYearMonth [-]yyyy-mm, gYear [-]yyyy, gMonthDay --mm-dd, gDay ---dd, gMonth --mm
/// Years have 4 or 5 digits (at most 65535). Fields are range-checked (day against its month and
/// year, hour 0-23, offset up to 14:00). Blanks around the text are ignored. Anything else raises
/// EConvertError.
TVnDateTimeParts VnDecodeISODateTime(std::u16string_view AText);

/// Builds a duration from its parts; each part may exceed its usual range (90 minutes is fine).
TVnDuration VnEncodeDuration(Integer AYears, Integer AMonths, Integer ADays, Integer AHours, Integer AMinutes,
                             Integer ASeconds, Integer AMilliSeconds, bool ANegative);

/// The local zone's offset east of UTC, in minutes, in force at the local moment ALocalTime.
/// Note: a clock reading skipped by a switch to daylight saving, or repeated by the switch back,
/// takes the offset in force before the switch.
Integer VnCalcTimeZoneOffset(TDateTime ALocalTime);
/// The same offset split into sign, hours and minutes.
void VnCalcTimeZoneOffset(TDateTime ALocalTime, bool& ANegative, Word& AHours, Word& AMinutes);

/// Converts a local clock reading to UTC (same rule as VnCalcTimeZoneOffset for skipped readings).
TDateTime VnLocalToUTC(TDateTime ALocalTime);
/// Converts a UTC moment to the local clock reading.
TDateTime VnUTCToLocal(TDateTime AUTCTime);

}  // namespace vn
