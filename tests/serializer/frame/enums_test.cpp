// Enumeration and set names with and without the prefix of a hint, inside and outside the range.
#include <gtest/gtest.h>

#include <tuple>

#include "frame_domain.h"
#include "vnxml/common/utf.h"

namespace {

using namespace vn;
using namespace framedomain;

TEST(SerializerEnums, NamesBothWays) {
  const TTypeInfo* color = TypeInfoOf<TColor>();
  EXPECT_EQ(std::tuple(VnEnumPrefix(color), VnEnumPrefix(TypeInfoOf<TColors>()), VnEnumPrefix(TypeInfoOf<bool>())),
            std::tuple(u"co", u"co", u""));
  // ordinal, prefix, name written, further texts that read as the ordinal
  const std::tuple<Int64, const char16_t*, const char16_t*, const char16_t*> cases[] = {
      {0, u"co", u"Red", u"coRed"},      {2, u"co", u"Blue", u"BLUE"},     {1, u"", u"coGreen", u"1"},
      {1, u"xx", u"coGreen", u"cogreen"}, {3, u"co", u"3", nullptr},        {-1, u"", u"-1", nullptr}};
  for (const auto& [ordinal, prefix, name, other] : cases) {
    SCOPED_TRACE(UnicodeToUtf8(name));
    EXPECT_EQ(VnEnumName(color, ordinal, prefix), name);
    const Int64 inRange = ordinal >= 0 && ordinal <= 2 ? ordinal : -1;
    EXPECT_EQ(VnEnumOrdinal(color, name, prefix), inRange);
    if (other) {
      EXPECT_EQ(VnEnumOrdinal(color, other, prefix), inRange);
    }
  }
  EXPECT_EQ(VnEnumOrdinal(color, u"", u"co"), 0);
  for (const char16_t* bad : {u"Purple", u"co", u"1x", u"99999999999999999999"})
    EXPECT_EQ(VnEnumOrdinal(color, bad, u"co"), -1) << UnicodeToUtf8(bad);
}

TEST(SerializerEnums, SetsBothWays) {
  const TTypeInfo* colors = TypeInfoOf<TColors>();
  EXPECT_EQ(std::tuple(VnSetNames(colors, 0b101, u"co"), VnSetNames(colors, 0b010, u"")),
            std::tuple(u"[Red,Blue]", u"[coGreen]"));
  const std::tuple<const char16_t*, UInt64> texts[] = {
      {u"[Red,Blue]", 0b101}, {u"Red, coGreen", 0b011}, {u"[]", 0}, {u" 6 ", 6}};
  for (const auto& [text, bits] : texts) {
    UInt64 read = 99;
    EXPECT_TRUE(VnSetBits(colors, text, u"co", read)) << UnicodeToUtf8(text);
    EXPECT_EQ(read, bits) << UnicodeToUtf8(text);
  }
  UInt64 untouched = 99;
  for (const char16_t* bad : {u"[Red,Purple]", u"[Red,7]", u"8"})  // "8": a bit beyond the elements
    EXPECT_FALSE(VnSetBits(colors, bad, u"co", untouched)) << UnicodeToUtf8(bad);
  EXPECT_EQ(untouched, 99u);
}

}  // namespace
