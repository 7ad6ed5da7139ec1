#include <array>
#include <cmath>
#include <tuple>

#include <gtest/gtest.h>

#include "common/message_of.h"
#include "common/dates/tz_scope.h"
#include "vnxml/common/date_utils.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/utf.h"

namespace vn {
namespace {

using test::TimeZoneScope;

constexpr double cHour = 1.0 / 24;
constexpr double cMinute = cHour / 60;
constexpr TDateTime c2020Jan1 = 43831;
constexpr TDateTime c2020Jul1 = 44013;
constexpr TDateTime c2020Mar29 = 43919;  // clocks go forward in Central Europe
constexpr TDateTime c2020Oct25 = 44129;  // clocks go back

// Half a millisecond: the resolution TDateTime callers rely on.
constexpr double cMoment = 0.5 / 86400000;

// ---- parsing and durations ----

// A text, its year to millisecond, whether the year is negative, it has a date, a time; its zone and offset.
using PartsCase = std::tuple<const char16_t*, std::array<Word, 7>, bool, bool, bool, TVnTimeZoneFormat, int>;

TEST(DecodeISODateTime, AcceptedFormsRejectedTextsAndDurationsSummedIntoMonthsAndSeconds) {
  const PartsCase cases[] = {
      {u"2020-03-04T05:06:07", {2020, 3, 4, 5, 6, 7, 0}, false, true, true, tzfNone, 0},
      {u"2020-03-04T05:06:07.1239+02:30", {2020, 3, 4, 5, 6, 7, 123}, false, true, true, tzfOffset, 150},
      {u"2020-03-04T05:06:07.5Z", {2020, 3, 4, 5, 6, 7, 500}, false, true, true, tzfUTC, 0},
      {u"2020-03-04 05:06", {2020, 3, 4, 5, 6, 0, 0}, false, true, true, tzfNone, 0},
      {u"  2020-02-29-05:00 ", {2020, 2, 29, 0, 0, 0, 0}, false, true, false, tzfOffset, -300},
      {u"-0044-03-15", {44, 3, 15, 0, 0, 0, 0}, true, true, false, tzfNone, 0},
      {u"12345-01-01", {12345, 1, 1, 0, 0, 0, 0}, false, true, false, tzfNone, 0},
      {u"23:59:59.05-0330", {0, 0, 0, 23, 59, 59, 50}, false, false, true, tzfOffset, -210},
      {u"00:00+14", {0, 0, 0, 0, 0, 0, 0}, false, false, true, tzfOffset, 840},
      {u"2020", {2020, 0, 0, 0, 0, 0, 0}, false, true, false, tzfNone, 0},
      {u"2020-05", {2020, 5, 0, 0, 0, 0, 0}, false, true, false, tzfNone, 0},
      // A signed "hh:" after a year or month is a zone, not a month or day.
      {u"2020-05:00", {2020, 0, 0, 0, 0, 0, 0}, false, true, false, tzfOffset, -300},
      {u"2020-11-05:00", {2020, 11, 0, 0, 0, 0, 0}, false, true, false, tzfOffset, -300},
      {u"--02-29Z", {0, 2, 29, 0, 0, 0, 0}, false, true, false, tzfUTC, 0},
      {u"--12", {0, 12, 0, 0, 0, 0, 0}, false, true, false, tzfNone, 0},
      {u"---31", {0, 0, 31, 0, 0, 0, 0}, false, true, false, tzfNone, 0},
  };
  for (const auto& [text, fields, negativeYear, hasDate, hasTime, zone, offset] : cases) {
    const TVnDateTimeParts p = VnDecodeISODateTime(text);
    EXPECT_EQ((std::tuple{std::array{p.Year, p.Month, p.Day, p.Hour, p.Minute, p.Second, p.MilliSecond}, p.NegativeYear,
                          p.HasDate, p.HasTime, p.TimeZone, p.TimeZoneOffset(), p.TimeZoneNegative,
                          p.TimeZoneHour * 60 + p.TimeZoneMinute}),
              std::tuple(fields, negativeYear, hasDate, hasTime, zone, offset, offset < 0, std::abs(offset)))
        << UnicodeToUtf8(text);
  }

  const char16_t* texts[] = {
      u"", u"   ", u"T", u"Z", u"2021-02-29", u"1900-02-29", u"2020-04-31", u"2020-13-01", u"2020-00-10",
      u"2020-01-00", u"24:00:00", u"10:60:00", u"10:00:60", u"10:00:00.", u"10", u"10:0", u"2020-01-01T",
      u"2020-01-01T10", u"2020-01-01X10:00:00", u"2020-01-01T10:00:00+15:00", u"2020-01-01T10:00:00+14:30",
      u"2020-01-01T10:00:00+02:60", u"2020-01-01T10:00:00+2", u"2020-01-01T10:00:00Zjunk",
      u"2020-01-01T10:00:00ZZ", u"123-01-01", u"123456-01-01", u"99999", u"2020-1-01", u"2020/01/01",
      u"20200101", u"--13", u"---32", u"--02-30", u"-", u"--", u"---", u"+2020-01-01",
  };
  for (const char16_t* text : texts) EXPECT_THROW(VnDecodeISODateTime(text), EConvertError) << UnicodeToUtf8(text);
  // The message names the text.
  const UnicodeString message = test::MessageOf<EConvertError>([] { VnDecodeISODateTime(u"2020-02-30"); });
  EXPECT_NE(message.find(u"'2020-02-30'"), UnicodeString::npos) << UnicodeToUtf8(message);
  // Durations sum their parts into months and seconds.
  TVnDuration d = VnEncodeDuration(1, 14, 2, 25, 61, 59, 250, true);
  EXPECT_EQ((std::tuple{d.Negative, d.Months}), std::tuple(true, 26));
  EXPECT_DOUBLE_EQ(d.Seconds, 2 * 86400.0 + 25 * 3600.0 + 61 * 60.0 + 59.25);
  // The largest parts a duration text can carry do not overflow.
  TVnDuration big = VnEncodeDuration(65535, 65535, 65535, 65535, 65535, 65535, 999, false);
  EXPECT_EQ(big.Months, 65535 * 13);
  EXPECT_DOUBLE_EQ(big.Seconds, 65535.0 * (86400 + 3600 + 60 + 1) + 0.999);
}

// ---- time zones ----

/// The sign, hours and minutes VnCalcTimeZoneOffset gives for a local moment.
std::tuple<bool, Word, Word> OffsetParts(TDateTime ALocalTime) {
  bool negative = false;
  Word hours = 0, minutes = 0;
  VnCalcTimeZoneOffset(ALocalTime, negative, hours, minutes);
  return {negative, hours, minutes};
}

TEST(TimeZone, OffsetsFollowTheMomentAndConvertBothWays) {
  const std::tuple<const char*, TDateTime, Integer> cases[] = {
      {test::cZoneBerlin, c2020Jan1 + 12 * cHour, 60}, {test::cZoneBerlin, c2020Jul1 + 12 * cHour, 120},
      // Spring: 01:59:59 CET, then 03:00 CEST; 02:30 never shows on a clock and takes the offset before.
      {test::cZoneBerlin, c2020Mar29 + 2 * cHour - cMinute, 60}, {test::cZoneBerlin, c2020Mar29 + 3 * cHour, 120},
      {test::cZoneBerlin, c2020Mar29 + 2.5 * cHour, 60},
      // Autumn: a local 02:30 shows twice and means the first, in summer time.
      {test::cZoneBerlin, c2020Oct25 + 2.5 * cHour, 120}, {test::cZoneBerlin, c2020Oct25 + 3 * cHour, 60},
      {test::cZoneNewfoundland, c2020Jan1, -210}, {test::cZoneBerlin, INFINITY, 0}};
  for (const auto& [zoneName, moment, minutes] : cases) {
    TimeZoneScope zone(zoneName);
    EXPECT_EQ(VnCalcTimeZoneOffset(moment), minutes) << zoneName << " " << moment;
  }
  TimeZoneScope berlin(test::cZoneBerlin);
  EXPECT_EQ(OffsetParts(c2020Jul1), std::tuple(false, 2, 0));
  TimeZoneScope newfoundland(test::cZoneNewfoundland);
  EXPECT_EQ(OffsetParts(c2020Jul1), std::tuple(true, 2, 30));

  const auto toUTC = VnLocalToUTC, toLocal = VnUTCToLocal;
  const std::tuple<const char*, TDateTime (*)(TDateTime), TDateTime, TDateTime> conversions[] = {
      {test::cZoneBerlin, toUTC, c2020Jul1 + 12 * cHour, c2020Jul1 + 10 * cHour},
      // Spring: 03:00 CEST is 01:00 UTC; a skipped 02:30 is read with the offset before the switch.
      {test::cZoneBerlin, toUTC, c2020Mar29 + 3 * cHour, c2020Mar29 + 1 * cHour},
      {test::cZoneBerlin, toLocal, c2020Mar29 + 1 * cHour, c2020Mar29 + 3 * cHour},
      {test::cZoneBerlin, toLocal, c2020Mar29 + 1 * cHour - cMinute, c2020Mar29 + 2 * cHour - cMinute},
      {test::cZoneBerlin, toUTC, c2020Mar29 + 2.5 * cHour, c2020Mar29 + 1.5 * cHour},
      // Autumn: 00:30 and 01:30 UTC both show 02:30; a local 02:30 means the first of them.
      {test::cZoneBerlin, toLocal, c2020Oct25 + 0.5 * cHour, c2020Oct25 + 2.5 * cHour},
      {test::cZoneBerlin, toLocal, c2020Oct25 + 1.5 * cHour, c2020Oct25 + 2.5 * cHour},
      {test::cZoneBerlin, toUTC, c2020Oct25 + 2.5 * cHour, c2020Oct25 + 0.5 * cHour},
      {test::cZoneBerlin, toUTC, c2020Oct25 + 3 * cHour, c2020Oct25 + 2 * cHour},
      // A negative offset with minutes: local 22:00 is already the next day in UTC.
      {test::cZoneNewfoundland, toUTC, c2020Jan1 + 22 * cHour, c2020Jan1 + 1 + 1.5 * cHour},
      // Before 1900 time still counts forwards: -1.25 is 1899-12-29 06:00, 05:00 UTC is -1.2083...,
      // not -1.2916... as plain subtraction gives; 1899-12-30 00:30 local is 1899-12-29 23:30 UTC.
      {test::cZoneBerlin, toUTC, -1.25, -(1 + 5 * cHour)},
      {test::cZoneBerlin, toLocal, -(1 + 5 * cHour), -1.25},
      {test::cZoneBerlin, toUTC, 0.5 * cHour, -(1 + 23.5 * cHour)},
      // Values no clock shows pass through.
      {test::cZoneBerlin, toUTC, 1e300, 1e300}};
  for (const auto& [zoneName, convert, from, to] : conversions) {
    TimeZoneScope zone(zoneName);
    EXPECT_NEAR(convert(from), to, cMoment) << zoneName << " " << from;
  }
  EXPECT_TRUE(std::isnan(VnUTCToLocal(NAN)));
}

}  // namespace
}  // namespace vn
