// Dates and times as TDateTime (days since 1899-12-30, the fraction the time of day).
// Values before 1899-12-30 are stored as the platform does: the whole part counts days back,
// the fraction still counts time forward (-1.25 is 1899-12-29 06:00).
#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {

namespace {

constexpr Int64 cMSecsPerDay = 86400000;
// Days from 0001-01-01 (day 1) to 1899-12-30, the platform's time stamp origin.
constexpr Int64 cDateDelta = 693594;

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's days_from_civil).
Int64 DaysFromCivil(Int64 y, unsigned m, unsigned d) {
  y -= m <= 2;
  const Int64 era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<Int64>(doe) - 719468;
}

void CivilFromDays(Int64 z, Int64& y, unsigned& m, unsigned& d) {
  z += 719468;
  const Int64 era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  y = static_cast<Int64>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = doy - (153 * mp + 2) / 5 + 1;
  m = mp < 10 ? mp + 3 : mp - 9;
  y += m <= 2;
}

// 1899-12-30 is 25569 days before 1970-01-01.
constexpr Int64 cUnixDateDelta = 25569;

// The platform's time stamp: days since 0001-01-01 counted from 1, and milliseconds of the day.
struct TimeStamp {
  Int64 Date;
  Int64 Time;
};

TimeStamp ToTimeStamp(TDateTime AValue) {
  const Int64 ms = static_cast<Int64>(std::nearbyint(AValue * static_cast<double>(cMSecsPerDay)));
  return {cDateDelta + ms / cMSecsPerDay, (ms < 0 ? -ms : ms) % cMSecsPerDay};
}

TDateTime FromTimeStamp(const TimeStamp& ATs) {
  const double date = static_cast<double>(ATs.Date - cDateDelta);
  const double time = static_cast<double>(ATs.Time) / static_cast<double>(cMSecsPerDay);
  return date < 0 ? date - time : date + time;
}

}  // namespace

bool IsLeapYear(Word AYear) { return AYear % 4 == 0 && (AYear % 100 != 0 || AYear % 400 == 0); }

Word DaysInAMonth(Word AYear, Word AMonth) {
  static constexpr Word days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (AMonth < 1 || AMonth > 12) return 0;
  return AMonth == 2 && IsLeapYear(AYear) ? 29 : days[AMonth - 1];
}

bool TryEncodeDate(Word AYear, Word AMonth, Word ADay, TDateTime& ADate) {
  if (AYear < 1 || AYear > 9999 || AMonth < 1 || AMonth > 12 || ADay < 1 || ADay > DaysInAMonth(AYear, AMonth))
    return false;
  ADate = static_cast<TDateTime>(DaysFromCivil(AYear, AMonth, ADay) + cUnixDateDelta);
  return true;
}

TDateTime EncodeDate(Word AYear, Word AMonth, Word ADay) {
  TDateTime d = 0;
  if (!TryEncodeDate(AYear, AMonth, ADay, d)) throw EConvertError(UnicodeString(cRtlDateEncodeError));
  return d;
}

bool TryEncodeTime(Word AHour, Word AMin, Word ASec, Word AMSec, TDateTime& ATime) {
  if (AHour >= 24 || AMin >= 60 || ASec >= 60 || AMSec >= 1000) return false;
  const Int64 ms = ((AHour * 60 + AMin) * 60 + ASec) * Int64(1000) + AMSec;
  ATime = static_cast<double>(ms) / static_cast<double>(cMSecsPerDay);
  return true;
}

TDateTime EncodeTime(Word AHour, Word AMin, Word ASec, Word AMSec) {
  TDateTime t = 0;
  if (!TryEncodeTime(AHour, AMin, ASec, AMSec, t)) throw EConvertError(UnicodeString(cRtlTimeEncodeError));
  return t;
}

TDateTime EncodeDateTime(Word AYear, Word AMonth, Word ADay, Word AHour, Word AMin, Word ASec, Word AMSec) {
  const TDateTime date = EncodeDate(AYear, AMonth, ADay);
  const TDateTime time = EncodeTime(AHour, AMin, ASec, AMSec);
  return date < 0 ? date - time : date + time;
}

void DecodeDate(TDateTime ADate, Word& AYear, Word& AMonth, Word& ADay) {
  const TimeStamp ts = ToTimeStamp(ADate);
  if (ts.Date <= 0) {  // before 0001-01-01
    AYear = AMonth = ADay = 0;
    return;
  }
  Int64 y = 0;
  unsigned m = 0, d = 0;
  CivilFromDays(ts.Date - cDateDelta - cUnixDateDelta, y, m, d);
  AYear = static_cast<Word>(y);
  AMonth = static_cast<Word>(m);
  ADay = static_cast<Word>(d);
}

void DecodeTime(TDateTime ATime, Word& AHour, Word& AMin, Word& ASec, Word& AMSec) {
  Int64 ms = ToTimeStamp(ATime).Time;
  AMSec = static_cast<Word>(ms % 1000);
  ms /= 1000;
  ASec = static_cast<Word>(ms % 60);
  ms /= 60;
  AMin = static_cast<Word>(ms % 60);
  AHour = static_cast<Word>(ms / 60);
}

void DecodeDateTime(TDateTime AValue, Word& AYear, Word& AMonth, Word& ADay, Word& AHour, Word& AMin, Word& ASec,
                    Word& AMSec) {
  DecodeDate(AValue, AYear, AMonth, ADay);
  DecodeTime(AValue, AHour, AMin, ASec, AMSec);
}

Word DayOfWeek(TDateTime ADate) { return static_cast<Word>(ToTimeStamp(ADate).Date % 7 + 1); }

// ---- arithmetic ----

TDateTime IncMilliSecond(TDateTime AValue, Int64 ANumberOf) {
  // Through the time stamp, so that the step crosses 1899-12-30 correctly.
  const TimeStamp ts = ToTimeStamp(AValue);
  const Int64 ms = ts.Date * cMSecsPerDay + ts.Time + ANumberOf;
  const Int64 date = ms / cMSecsPerDay, time = ms % cMSecsPerDay;
  return FromTimeStamp(time < 0 ? TimeStamp{date - 1, time + cMSecsPerDay} : TimeStamp{date, time});
}

TDateTime IncSecond(TDateTime AValue, Int64 ANumberOf) { return IncMilliSecond(AValue, ANumberOf * 1000); }
TDateTime IncMinute(TDateTime AValue, Int64 ANumberOf) { return IncMilliSecond(AValue, ANumberOf * 60000); }
TDateTime IncHour(TDateTime AValue, Int64 ANumberOf) { return IncMilliSecond(AValue, ANumberOf * 3600000); }
TDateTime IncDay(TDateTime AValue, Integer ANumberOf) { return AValue + ANumberOf; }

TDateTime IncMonth(TDateTime AValue, Integer ANumberOf) {
  Word y = 0, m = 0, d = 0;
  DecodeDate(AValue, y, m, d);
  Int64 months = Int64(y) * 12 + (m - 1) + ANumberOf;
  const Word ny = static_cast<Word>(months / 12);
  const Word nm = static_cast<Word>(months % 12 + 1);
  const Word nd = std::min(d, DaysInAMonth(ny, nm));
  const TDateTime date = EncodeDate(ny, nm, nd);
  const double time = std::fabs(AValue - std::trunc(AValue));
  return date < 0 ? date - time : date + time;
}

TDateTime IncYear(TDateTime AValue, Integer ANumberOf) { return IncMonth(AValue, ANumberOf * 12); }

// ---- clock ----

TDateTime Now() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t secs = std::chrono::system_clock::to_time_t(now);
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&secs, &local);
  return EncodeDate(static_cast<Word>(local.tm_year + 1900), static_cast<Word>(local.tm_mon + 1),
                    static_cast<Word>(local.tm_mday)) +
         EncodeTime(static_cast<Word>(local.tm_hour), static_cast<Word>(local.tm_min),
                    static_cast<Word>(std::min(local.tm_sec, 59)), static_cast<Word>(ms < 0 ? 0 : ms));
}

TDateTime Date() { return std::trunc(Now()); }

TDateTime Time() {
  const TDateTime n = Now();
  return n - std::trunc(n);
}

}  // namespace vn
