#include <cmath>
#include <tuple>

#include <gtest/gtest.h>

#include "common/dates/tz_scope.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/xml_values.h"
#include "support/raises.h"

namespace vn {
namespace {

using test::ExpectRaises;
using test::TimeZoneScope;
using test::U8;

constexpr double cMoment = 0.5 / 86400000;  // half a millisecond

TDateTime At(Word AYear, Word AMonth, Word ADay, Word AHour, Word AMinute, Word ASecond = 0,
             Word AMilli = 0) {
  return EncodeDateTime(AYear, AMonth, ADay, AHour, AMinute, ASecond, AMilli);
}

// ---- value to text ----

TEST(XMLDateText, ZoneFormatsInSummerAndWinterAndOtherZones) {
  TimeZoneScope zone(test::cZoneBerlin);
  TDateTime summer = At(2020, 7, 1, 12, 34, 56, 789);
  EXPECT_EQ(U8(VnDateTimeToXML(summer)), "2020-07-01T12:34:56.789");
  EXPECT_EQ(U8(VnDateTimeToXML(summer, tzfUTC)), "2020-07-01T10:34:56Z");  // no milliseconds in UTC
  EXPECT_EQ(U8(VnDateTimeToXML(summer, tzfOffset)), "2020-07-01T12:34:56.789+02:00");
  EXPECT_EQ(U8(VnDateTimeToXML(summer, xdtfTimezone)), "2020-07-01T12:34:56.789+02:00");
  EXPECT_EQ(U8(VnDateTimeToXML(summer, xdtfUTC)), "2020-07-01T10:34:56Z");

  TDateTime winter = At(2020, 1, 1, 0, 30, 5, 7);
  EXPECT_EQ(U8(VnDateTimeToXML(winter, tzfOffset)), "2020-01-01T00:30:05.007+01:00");

  // A date is local midnight: in UTC it is the evening before.
  EXPECT_EQ(U8(VnDateToXML(At(2020, 7, 1, 0, 0))), "2020-07-01");
  EXPECT_EQ(U8(VnDateToXML(At(2020, 7, 1, 0, 0), tzfUTC)), "2020-06-30Z");
  EXPECT_EQ(U8(VnDateToXML(At(2020, 1, 1, 0, 0), xdtfTimezone)), "2020-01-01+01:00");
  EXPECT_EQ(U8(VnDateToXML(At(5, 3, 9, 0, 0))), "0005-03-09");

  EXPECT_EQ(U8(VnTimeToXML(EncodeTime(9, 5, 3, 40))), "09:05:03.040");
  EXPECT_EQ(U8(VnTimeToXML(At(2020, 7, 1, 9, 5, 3, 40), xdtfLocal)), "09:05:03.040");

  TimeZoneScope newfoundland(test::cZoneNewfoundland);
  EXPECT_EQ(U8(VnDateTimeToXML(At(2020, 1, 1, 22, 0), tzfOffset)), "2020-01-01T22:00:00.000-03:30");
  EXPECT_EQ(U8(VnDateTimeToXML(At(2020, 1, 1, 22, 0), tzfUTC)), "2020-01-02T01:30:00Z");
  TimeZoneScope utc(test::cZoneUTC);
  EXPECT_EQ(U8(VnDateTimeToXML(At(2020, 1, 1, 22, 0), tzfOffset)), "2020-01-01T22:00:00.000+00:00");
  EXPECT_EQ(U8(VnTimeToXML(EncodeTime(22, 0, 0, 5), tzfUTC)), "22:00:00.005Z");
  EXPECT_EQ(U8(VnTimeToXML(EncodeTime(22, 0, 0, 5), tzfOffset)), "22:00:00.005+00:00");
}

TEST(XMLDateText, MomentsAroundTheDaylightSavingSwitchAndReadingByTheZoneTable) {
  TimeZoneScope zone(test::cZoneBerlin);
  // The last minute of winter time and the first of summer time are an hour apart on the
  // clock but a minute apart in UTC.
  EXPECT_EQ(U8(VnDateTimeToXML(At(2020, 3, 29, 1, 59), tzfUTC)), "2020-03-29T00:59:00Z");
  EXPECT_EQ(U8(VnDateTimeToXML(At(2020, 3, 29, 3, 0), tzfUTC)), "2020-03-29T01:00:00Z");
  EXPECT_EQ(U8(VnDateTimeToXML(At(2020, 3, 29, 3, 0), tzfOffset)), "2020-03-29T03:00:00.000+02:00");
  // 02:30 does not exist that night; it is read with the winter offset.
  EXPECT_EQ(U8(VnDateTimeToXML(At(2020, 3, 29, 2, 30), tzfOffset)), "2020-03-29T02:30:00.000+01:00");
  EXPECT_NEAR(VnXMLToDateTime(u"2020-03-29T02:30:00+01:00"), At(2020, 3, 29, 3, 30), cMoment);

  // 02:30 happens twice in October: both UTC moments read back as 02:30 local.
  for (const char16_t* text : {u"2020-10-25T00:30:00Z", u"2020-10-25T01:30:00Z", u"2020-10-25T02:30:00+01:00"})
    EXPECT_NEAR(VnXMLToDateTime(text), At(2020, 10, 25, 2, 30), cMoment) << U8(text);
  EXPECT_NEAR(VnXMLToDateTime(u"2020-10-25T03:30:00+02:00", tzfUTC), At(2020, 10, 25, 1, 30), cMoment);

  // Reading follows the zone table.
  const TDateTime noon = At(2020, 7, 1, 12, 0);
  // Text without zone: local as it stands; other formats need a zone.
  EXPECT_NEAR(VnXMLToDateTime(u"2020-07-01T12:00:00"), noon, cMoment);
  ExpectRaises<Exception>([] { VnXMLToDateTime(u"2020-07-01T12:00:00", tzfOffset); },
                          cVnXMLDateTimeNoTimezone);
  ExpectRaises<Exception>([] { VnXMLToDateTime(u"2020-07-01T12:00:00", xdtfUTC); }, cVnXMLDateTimeNoTimezone);
  // Text with an offset: shifted to UTC, then to local unless UTC is asked for.
  EXPECT_NEAR(VnXMLToDateTime(u"2020-07-01T15:00:00+05:00"), noon, cMoment);
  EXPECT_NEAR(VnXMLToDateTime(u"2020-07-01T15:00:00+05:00", tzfUTC), noon - 2.0 / 24, cMoment);
  EXPECT_NEAR(VnXMLToDateTime(u"2020-07-01T07:00:00-03:00", xdtfUTC), At(2020, 7, 1, 10, 0), cMoment);
  // UTC text: local for the first two formats, unchanged for UTC.
  EXPECT_NEAR(VnXMLToDateTime(u"2020-07-01T10:00:00Z"), noon, cMoment);
  EXPECT_NEAR(VnXMLToDateTime(u"2020-07-01T10:00:00Z", tzfUTC), noon - 2.0 / 24, cMoment);

  EXPECT_NEAR(VnXMLToDateTime(u"2020-07-01"), At(2020, 7, 1, 0, 0), cMoment);
  EXPECT_NEAR(VnXMLToDateTime(u"12:00:00.250"), EncodeTime(12, 0, 0, 250), cMoment);
  for (const char16_t* zero : {u"0", u""}) EXPECT_EQ(VnXMLToDateTime(zero), 0) << U8(zero);
  EXPECT_THROW(VnXMLToDateTime(u"2020-07-01T25:00:00"), EConvertError);
  // The format a text was written in.
  for (const auto& [text, format] : {std::pair{u"2020-01-01T00:00:00+02:00", xdtfTimezone},
                                     {u"2020-01-01T00:00:00Z", xdtfUTC}, {u"2020-01-01T00:00:00", xdtfLocal}})
    EXPECT_EQ(VnXMLDateTimeFormat(VnDecodeXMLDateTime(text)), format) << U8(text);
  EXPECT_THROW(VnDecodeXMLDateTime(u"noon"), EConvertError);
}

// ---- text to value ----

TEST(XMLDateText, DatesIgnoreZoneAndTimeTimesKeepToOneDay) {
  TimeZoneScope zone(test::cZoneBerlin);
  for (const auto& [text, day] : {std::pair{u"0", TDateTime(0)}, {u"", 0}, {u"2020-01-01", 43831},
                                  {u"2020-01-01T23:59:59+14:00", 43831}, {u"-0001-01-01", -EncodeDate(1, 1, 1)}})
    EXPECT_EQ(VnXMLToDate(text), day) << U8(text);
  EXPECT_THROW(VnXMLToDate(u"12:00:00"), EConvertError);  // no day to encode
  EXPECT_THROW(VnXMLToDate(u"2020-02-30"), EConvertError);
  EXPECT_EQ((std::tuple{VnXMLToDateDef(u"2020-02-30", 7), VnXMLToDateDef(u"", 7)}), std::tuple(7.0, 0.0));

  // Times keep to one day.
  TimeZoneScope utc(test::cZoneUTC);
  EXPECT_NEAR(VnXMLToTime(u"10:00:00.250"), EncodeTime(10, 0, 0, 250), cMoment);
  EXPECT_NEAR(VnXMLToTime(u"2020-07-01T10:00:00"), EncodeTime(10, 0, 0, 0), cMoment);
  // Shifting across midnight wraps around instead of leaving [0, 1).
  EXPECT_NEAR(VnXMLToTime(u"22:30:00-02:00"), EncodeTime(0, 30, 0, 0), cMoment);
  EXPECT_NEAR(VnXMLToTime(u"01:00:00+02:00", xdtfUTC), EncodeTime(23, 0, 0, 0), cMoment);
  EXPECT_NEAR(VnXMLToTime(u"10:00:00Z", tzfUTC), EncodeTime(10, 0, 0, 0), cMoment);
  ExpectRaises<Exception>([] { VnXMLToTime(u"10:00:00", tzfUTC); }, cVnXMLDateTimeNoTimezone);
  EXPECT_EQ((std::tuple{VnXMLToTimeDef(u"10:00:00", 5, tzfUTC), VnXMLToTimeDef(u"10:00:00", 5, xdtfTimezone),
                        VnXMLToTime(u"0"), VnXMLToDateTimeDef(u"garbage", 5),
                        VnXMLToDateTimeDef(u"2020-01-01T00:00:00", 5, xdtfUTC)}),
            std::tuple(5.0, 5.0, 0.0, 5.0, 5.0));

  // A time shifts by the offset in force today: the zone has no daylight saving, so it is fixed.
  TimeZoneScope newfoundland("NST3:30");
  EXPECT_NEAR(VnXMLToTime(u"01:00:00Z"), EncodeTime(21, 30, 0, 0), cMoment);
  EXPECT_EQ(U8(VnTimeToXML(EncodeTime(21, 30, 0, 0), tzfUTC) + u" " + VnTimeToXML(EncodeTime(21, 30, 0, 0), tzfOffset)),
            "01:00:00.000Z 21:30:00.000-03:30");
}

TEST(XMLDateText, EachFormatReadsBackWhatItWrites) {
  for (const char* name : {test::cZoneUTC, test::cZoneBerlin, test::cZoneNewfoundland}) {
    TimeZoneScope zone(name);
    for (TDateTime value :
         {At(2020, 1, 1, 0, 0, 0, 1), At(2020, 7, 1, 23, 59, 59, 999), At(2020, 3, 29, 3, 0),
          At(2020, 10, 25, 3, 0), At(1999, 12, 31, 12, 0, 0, 500), At(2400, 2, 29, 6, 0)}) {
      SCOPED_TRACE(std::string(name) + " " + U8(VnDateTimeToXML(value)));
      EXPECT_NEAR(VnXMLToDateTime(VnDateTimeToXML(value)), value, cMoment);
      EXPECT_NEAR(VnXMLToDateTime(VnDateTimeToXML(value, tzfOffset), tzfOffset), value, cMoment);
      // The UTC form drops the milliseconds.
      double whole = std::floor(value * 86400 + 1e-6) / 86400;
      EXPECT_NEAR(VnXMLToDateTime(VnDateTimeToXML(value, tzfUTC)), whole, cMoment);
      EXPECT_NEAR(VnXMLToDate(VnDateToXML(value)), std::floor(value), cMoment);
    }
  }
}

}  // namespace
}  // namespace vn
