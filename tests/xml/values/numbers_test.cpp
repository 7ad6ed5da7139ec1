#include <cmath>
#include <limits>
#include <tuple>

#include <gtest/gtest.h>

#include "vnxml/common/sysutils.h"
#include "vnxml/xml_values.h"
#include "support/raises.h"

namespace vn {
namespace {

using test::U8;

TEST(XMLIntegerText, EmptyBadCutAndFullRange) {
  // Empty means 0, not the default; narrow targets are cut to width without a range check;
  // values above the signed range of the wide types must not be lost on the way through the text.
  const std::pair<Int64, Int64> values[] = {
      {VnXMLToIntDef(u"", 5), 0}, {VnXMLToIntDef(u"x", 5), 5}, {VnXMLToIntDef(u"12", 5), 12}, {VnXMLToInt(u""), 0},
      {VnXMLToInt64Def(u"9223372036854775808", -1), -1}, {VnXMLToWordDef(u"", 9), 0},
      {VnXMLToByte(u"256"), 0}, {VnXMLToByte(u"-1"), 255}, {VnXMLToShortint(u"200"), -56},
      {VnXMLToSmallint(u"-32769"), 32767}, {VnXMLToWord(u"65537"), 1}, {VnXMLToShortintDef(u"300", 1), 44},
      {VnXMLToLongword(u"4294967295"), 4294967295}, {VnXMLToLongwordDef(u"4294967295", 0), 4294967295},
      {VnXMLToInt64(u"-9223372036854775808"), std::numeric_limits<Int64>::min()}};
  for (size_t i = 0; i < std::size(values); ++i) EXPECT_EQ(values[i].first, values[i].second) << "row " << i;
  EXPECT_EQ((std::tuple{VnXMLToUInt64Def(u"-", 9), VnXMLToUInt64(u"18446744073709551615"), VnXMLToUInt64(u"-1")}),
            std::tuple(9u, std::numeric_limits<UInt64>::max(), std::numeric_limits<UInt64>::max()));
  for (const char16_t* bad : {u"x", u"1.5", u"2147483648"}) EXPECT_THROW(VnXMLToInt(bad), EConvertError);
  EXPECT_THROW(VnXMLToInt64(u"9223372036854775808"), EConvertError);

  const std::pair<UnicodeString, const char16_t*> texts[] = {
      {VnShortIntToXML(-128), u"-128"}, {VnLongWordToXML(4294967295u), u"4294967295"},
      {VnCardinalToXML(4294967295u), u"4294967295"},
      {VnUInt64ToXML(std::numeric_limits<UInt64>::max()), u"18446744073709551615"},
      {VnInt64ToXML(std::numeric_limits<Int64>::min()), u"-9223372036854775808"}};
  for (const auto& [text, expected] : texts) EXPECT_EQ(text, expected);
}

TEST(XMLFloatAndBoolText, DotIsTheOnlySeparatorSpecialValuesRoundTripOnlyOneAndTrueAreTrue) {
  EXPECT_DOUBLE_EQ(VnXMLToDouble(u"1.5e3"), 1500);
  EXPECT_FLOAT_EQ(VnXMLToSingle(u"0.1"), 0.1f);
  EXPECT_EQ((std::tuple{VnXMLToDouble(u""), VnXMLToDoubleDef(u"1,5", 7), VnXMLToSingleDef(u"", 7)}),
            std::tuple(0.0, 7.0, 0.0f));
  EXPECT_THROW(VnXMLToDouble(u"1,5"), EConvertError);
  EXPECT_THROW(VnXMLToExtended(u"abc"), EConvertError);
  EXPECT_EQ((std::tuple{VnDoubleToXML(0.1), VnExtToXML(1e20L)}), std::tuple(u"0.1", u"1E20"));

  // Special values survive a round trip.
  // Out of the range of Single: infinity rather than an undefined narrowing.
  EXPECT_EQ((std::tuple{VnXMLToDouble(VnDoubleToXML(HUGE_VAL)), VnXMLToDouble(VnDoubleToXML(-HUGE_VAL)),
                        VnXMLToDouble(u"INF"), VnXMLToExtended(u"-INF"), VnXMLToSingle(u"1e300"),
                        VnXMLToSingle(u"-1e300")}),
            std::tuple(HUGE_VAL, -HUGE_VAL, HUGE_VAL, -HUGE_VALL, HUGE_VALF, -HUGE_VALF));
  EXPECT_TRUE(std::isnan(VnXMLToDouble(VnDoubleToXML(NAN))));
  EXPECT_TRUE(std::isnan(VnXMLToSingle(u"NaN")));
  for (double value : {0.1, 1.0 / 3, 123456789.125, 1e-5, -2.5e300})
    EXPECT_NEAR(VnXMLToDouble(VnDoubleToXML(value)), value, std::fabs(value) * 1e-14) << value;

  // Booleans: only "1" and "true" in any case are true.
  for (const char16_t* text : {u"1", u"true", u"TRUE", u"True", u"tRuE"})
    EXPECT_TRUE(VnXMLToBool(text)) << U8(text);
  for (const char16_t* text : {u"0", u"false", u"yes", u"", u" true", u"01", u"-1", u"truex"})
    EXPECT_FALSE(VnXMLToBool(text)) << U8(text);
  EXPECT_EQ(VnBoolToXML(true), u"true");
}

}  // namespace
}  // namespace vn
