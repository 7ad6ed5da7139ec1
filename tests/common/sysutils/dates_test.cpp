// TDateTime encoding, decoding (also before 1899-12-30), stepping and the clock.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <tuple>
#include <ctime>

#include "common/message_of.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

using namespace vn;

namespace {

// Year, month, day, hour, minute, second, millisecond.
using Parts = std::array<Word, 7>;

Parts Decode(TDateTime AValue) {
  Parts p{};
  DecodeDateTime(AValue, p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
  return p;
}

}  // namespace

TEST(EncodeDateTime, SerialNumbersFractionsAndInvalidArguments) {
  // Year, month, day and the serial number.
  const std::tuple<Word, Word, Word, double> cases[] = {
      {1899, 12, 30, 0},   {1899, 12, 31, 1},    {1900, 1, 1, 2},    {1900, 3, 1, 61},
      {2000, 1, 1, 36526}, {2024, 2, 29, 45351}, {1, 1, 1, -693593}, {9999, 12, 31, 2958465}};
  for (const auto& [y, m, d, serial] : cases) {
    EXPECT_EQ(EncodeDate(y, m, d), serial) << y << "-" << m << "-" << d;
    EXPECT_EQ(Decode(serial), (Parts{y, m, d, 0, 0, 0, 0}));
  }

  const Word bad[][3] = {{0, 1, 1},    {10000, 1, 1}, {2023, 2, 29}, {1900, 2, 29},
                         {2000, 13, 1}, {2000, 0, 1},  {2000, 4, 31}};
  TDateTime d = 0;
  for (const auto& b : bad)
    EXPECT_EQ((std::tuple{TryEncodeDate(b[0], b[1], b[2], d),
                          test::MessageOf<EConvertError>([&] { EncodeDate(b[0], b[1], b[2]); })}),
              std::tuple(false, cRtlDateEncodeError));
  EXPECT_EQ((std::tuple{IsLeapYear(2000), IsLeapYear(1900), DaysInAMonth(2024, 2)}),
            std::tuple(true, false, 29));

  EXPECT_EQ(EncodeTime(12, 0, 0, 0), 0.5);
  EXPECT_EQ(Decode(EncodeTime(23, 59, 59, 999)), (Parts{1899, 12, 30, 23, 59, 59, 999}));
  for (const auto& [h, n, s, ms] : {std::array<Word, 4>{24, 0, 0, 0}, {0, 60, 0, 0}, {0, 0, 0, 1000}})
    EXPECT_THROW(EncodeTime(h, n, s, ms), EConvertError) << h << ":" << n << ":" << s << "." << ms;
}

TEST(DecodeDateTime, NegativeValuesCountTimeForwardSundayIsOneStepsCrossTheOrigin) {
  // The whole part counts days back from 1899-12-30; the fraction is still the time of day.
  EXPECT_EQ(Decode(-1.25), (Parts{1899, 12, 29, 6, 0, 0, 0}));
  EXPECT_EQ(Decode(-0.5), (Parts{1899, 12, 30, 12, 0, 0, 0}));
  EXPECT_EQ(Decode(EncodeDateTime(1800, 6, 15, 18, 30, 0, 0)), (Parts{1800, 6, 15, 18, 30, 0, 0}));
  EXPECT_LT(EncodeDateTime(1800, 6, 15, 18, 30, 0, 0), EncodeDate(1800, 6, 15));
  // Times within half a millisecond of midnight round into the next day.
  EXPECT_EQ(Decode(1.9999999999), (Parts{1900, 1, 1, 0, 0, 0, 0}));
  Word y = 1, m = 1, d = 1;
  DecodeDate(-700000, y, m, d);  // before 0001-01-01
  EXPECT_EQ(y + m + d, 0);

  // 1899-12-30 was a Saturday, 2024-01-01 a Monday; then a Sunday evening.
  EXPECT_EQ((std::tuple{DayOfWeek(0), DayOfWeek(EncodeDate(2024, 1, 1)), DayOfWeek(EncodeDate(2023, 12, 31) + 0.9)}),
            std::tuple(7, 2, 1));
  // Steps across the origin.
  EXPECT_EQ(Decode(IncMilliSecond(0, -1)), (Parts{1899, 12, 29, 23, 59, 59, 999}));
  EXPECT_EQ(Decode(IncMilliSecond(-1.25, 1)), (Parts{1899, 12, 29, 6, 0, 0, 1}));
  EXPECT_EQ(Decode(IncSecond(-0.0, -3600)), (Parts{1899, 12, 29, 23, 0, 0, 0}));
  EXPECT_EQ(Decode(IncMinute(EncodeDate(2024, 12, 31) + EncodeTime(23, 59, 0, 0), 2)), (Parts{2025, 1, 1, 0, 1, 0, 0}));
  EXPECT_EQ(Decode(IncHour(EncodeDate(2000, 1, 1), -25)), (Parts{1999, 12, 30, 23, 0, 0, 0}));
  EXPECT_EQ(Decode(IncYear(EncodeDate(2024, 2, 29), 1)), (Parts{2025, 2, 28, 0, 0, 0, 0}));
  EXPECT_EQ(IncDay(10.5, 3), 13.5);
  EXPECT_EQ(Decode(IncMonth(EncodeDate(2024, 1, 31) + 0.5, 1)), (Parts{2024, 2, 29, 12, 0, 0, 0}));
  EXPECT_EQ(Decode(IncMonth(EncodeDate(2024, 3, 15), -15)), (Parts{2022, 12, 15, 0, 0, 0, 0}));
}

TEST(Clock, NowIsLocalTime) {
  const std::time_t t = std::time(nullptr);
  std::tm local{};
  localtime_r(&t, &local);
  auto w = [](int APart) { return static_cast<Word>(APart); };
  const TDateTime expected = EncodeDateTime(w(local.tm_year + 1900), w(local.tm_mon + 1), w(local.tm_mday),
                                            w(local.tm_hour), w(local.tm_min), w(local.tm_sec), 0);
  EXPECT_NEAR(Now(), expected, 5.0 / 86400);
  EXPECT_EQ(Date(), std::trunc(Date()));
  EXPECT_LT(Time(), 1.0);
}
