// Local time and UTC through the operating system's zone (TZ and its tz database).
#include <cmath>
#include <ctime>

#include "vnxml/common/date_utils.h"

namespace vn {

namespace {

constexpr double cUnixEpoch = 25569.0;  // 1970-01-01 as a TDateTime
constexpr Int64 cMSecsPerDay = 86400000;
// Beyond years 1..9999 by a wide margin; such values are left as they are.
constexpr double cLimitDays = 3.0e6;

// A TDateTime before 1899-12-30 counts its days backwards but its time forwards (-1.25 is
// 1899-12-29 06:00), so zone shifts are done on a linear day count and mapped back.
double ToLinearDays(TDateTime AValue) {
  if (AValue >= 0) return AValue;
  double day = std::trunc(AValue);
  return day + (day - AValue);
}

TDateTime FromLinearDays(double ADays) {
  if (ADays >= 0) return ADays;
  double day = std::floor(ADays);
  return day - (ADays - day);
}

bool InRange(TDateTime AValue) { return std::isfinite(AValue) && std::fabs(AValue) < cLimitDays; }

// Whole seconds since 1970 of a clock reading, rounded to the millisecond first so that 10:00:00
// stored as 0.41666... does not fall into 09:59:59.
Int64 ToUnixSeconds(double ALinearDays) {
  auto ms = static_cast<Int64>(std::llround((ALinearDays - cUnixEpoch) * double(cMSecsPerDay)));
  Int64 seconds = ms / 1000;
  return ms % 1000 < 0 ? seconds - 1 : seconds;
}

// The zone's offset east of UTC in seconds at the UTC instant AUnixSeconds.
long OffsetAtUTC(Int64 AUnixSeconds) {
  time_t t = static_cast<time_t>(AUnixSeconds);
  struct tm local {};
  if (localtime_r(&t, &local) == nullptr) return 0;
  return local.tm_gmtoff;
}

// The offset in seconds that applies to a local clock reading. Zones change at most once a day,
// so the offsets a day before and after are the only candidates; a reading that matches neither
// (skipped by a switch) or both (repeated by a switch) takes the one before the switch.
long OffsetAtLocal(Int64 ALocalSeconds) {
  tzset();  // follow changes of TZ made by the host since the last call
  long before = OffsetAtUTC(ALocalSeconds - 86400);
  if (OffsetAtUTC(ALocalSeconds - before) == before) return before;
  long after = OffsetAtUTC(ALocalSeconds + 86400);
  if (OffsetAtUTC(ALocalSeconds - after) == after) return after;
  return before;
}

}  // namespace

Integer VnCalcTimeZoneOffset(TDateTime ALocalTime) {
  if (!InRange(ALocalTime)) return 0;
  return Integer(OffsetAtLocal(ToUnixSeconds(ToLinearDays(ALocalTime))) / 60);
}

void VnCalcTimeZoneOffset(TDateTime ALocalTime, bool& ANegative, Word& AHours, Word& AMinutes) {
  Integer offset = VnCalcTimeZoneOffset(ALocalTime);
  ANegative = offset < 0;
  if (ANegative) offset = -offset;
  AHours = Word(offset / 60);
  AMinutes = Word(offset % 60);
}

TDateTime VnLocalToUTC(TDateTime ALocalTime) {
  if (!InRange(ALocalTime)) return ALocalTime;
  double days = ToLinearDays(ALocalTime);
  long offset = OffsetAtLocal(ToUnixSeconds(days));
  return FromLinearDays(days - double(offset) / 86400.0);
}

TDateTime VnUTCToLocal(TDateTime AUTCTime) {
  if (!InRange(AUTCTime)) return AUTCTime;
  tzset();
  double days = ToLinearDays(AUTCTime);
  long offset = OffsetAtUTC(ToUnixSeconds(days));
  return FromLinearDays(days + double(offset) / 86400.0);
}

}  // namespace vn
