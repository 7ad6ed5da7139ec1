#include <tuple>

#include <gtest/gtest.h>

#include "vnxml/common/sysutils.h"
#include "vnxml/xml_values.h"
#include "support/raises.h"

namespace vn {
namespace {

using test::ExpectRaises;
using test::U8;

TVnDuration Duration(bool ANegative, Integer AMonths, double ASeconds) {
  TVnDuration d;
  d.Negative = ANegative;
  d.Months = AMonths;
  d.Seconds = ASeconds;
  return d;
}

TEST(DurationToXML, Parts) {
  const std::tuple<bool, Integer, double, const char*> cases[] = {
      {false, 0, 0, "P0Y"}, {true, 0, 0, "-P0Y"}, {false, 0, 90, "PT1M30S"}, {false, 0, 1.5, "PT1.5S"},
      {false, 0, 0.25, "PT0.25S"}, {true, 14, 0, "-P1Y2M"},
      {false, 25, 3 * 86400 + 4 * 3600 + 5 * 60 + 6.007, "P2Y1M3DT4H5M6.007S"},
      // Leading zeros of the fraction stay; a fraction that rounds to a whole second carries over.
      {false, 0, 1.05, "PT1.05S"}, {false, 0, 59.9996, "PT1M"},
      // Negative parts are magnitudes with the sign flipped.
      {false, -14, 0, "-P1Y2M"}, {true, 0, -60, "PT1M"}};
  for (const auto& [negative, months, seconds, text] : cases)
    EXPECT_EQ(U8(VnDurationToXML(Duration(negative, months, seconds))), text);
}

TEST(XMLToDuration, MonthsBeforeTMinutesAfterRoundTripsAndMessages) {
  const std::tuple<const char16_t*, bool, Integer, double> cases[] = {
      {u"P1Y2MT3M", false, 14, 180}, {u"-P1DT2H3M4.5S", true, 0, 86400 + 7200 + 180 + 4.5},
      // Order is free, a repeated part keeps its last value, and fractions past milliseconds drop.
      {u"PT5M1D2Y3Y", false, 36, 86400 + 300}, {u"PT0.12345S", false, 0, 0.123}, {u"PT65535S", false, 0, 65535},
      {u"P", false, 0, 0}};
  for (const auto& [text, negative, months, seconds] : cases) {
    SCOPED_TRACE(U8(text));
    const TVnDuration d = VnXMLToDuration(text);
    EXPECT_EQ((std::tuple{d.Negative, d.Months}), std::tuple(negative, months));
    EXPECT_DOUBLE_EQ(d.Seconds, seconds);
  }

  // A round trip.
  for (const char16_t* text :
       {u"PT0.25S", u"P0Y", u"-P1Y2M", u"P1Y2M3DT4H5M6.007S", u"PT1.05S", u"-PT59M59.999S", u"P3DT1S"}) {
    SCOPED_TRACE(U8(text));
    EXPECT_EQ(U8(VnDurationToXML(VnXMLToDuration(text))), U8(text));
  }
  // Parts beyond their usual range come back normalised.
  EXPECT_EQ(U8(VnDurationToXML(VnXMLToDuration(u"P13MT90M"))), "P1Y1MT1H30M");

  // Messages of bad texts.
  ExpectRaises<Exception>([] { VnXMLToDuration(u""); }, cVnDurationEmpty);
  for (const char16_t* text : {u"1Y", u"-1Y", u"-", u"p1Y", u" P1Y"})
    ExpectRaises<Exception>([text] { VnXMLToDuration(text); }, cVnDurationNoP);
  for (const char16_t* text : {u"P1X", u"P1", u"PY", u"P1.5Y", u"PT1.S", u"PT.5S", u"P-1Y", u"P1Y ",
                               u"P70000D", u"PT99999999999999999999S"}) {
    SCOPED_TRACE(U8(text));
    ExpectRaises<Exception>([text] { VnXMLToDuration(text); }, Format(cVnDurationInvalid, {text}));
  }
}

}  // namespace
}  // namespace vn
