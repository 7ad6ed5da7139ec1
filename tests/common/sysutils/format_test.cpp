// Format: conversions, widths, precisions, indexes and the platform's failure texts.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

using namespace vn;

namespace {

struct FormatCase {
  const char16_t* Fmt;
  std::initializer_list<TVarRec> Args;
  UnicodeString Expected;
};

}  // namespace

TEST(Format, IntegersStringsIndexesStarsAndFloats) {
  const FormatCase cases[] = {
      {u"%d", {42}, u"42"}, {u"%d", {-7}, u"-7"}, {u"[%5d]", {42}, u"[   42]"}, {u"[%-5d]", {42}, u"[42   ]"},
      {u"%.5d", {-12}, u"-00012"}, {u"%d", {INT64_MIN}, u"-9223372036854775808"}, {u"%u", {-1}, u"4294967295"},
      {u"%u", {INT64_C(-5000000000)}, u"18446744068709551616"}, {u"%x", {255}, u"FF"}, {u"%.4X", {255}, u"00FF"},
      {u"%x", {-1}, u"FFFFFFFF"}, {u"%s and %s", {u"this", "that"}, u"this and that"}, {u"%s", {u'x'}, u"x"},
      {u"[%5s][%-5s][%.2s]", {u"abc", u"abc", u"abc"}, u"[  abc][abc  ][ab]"}, {u"%c%c", {u'o', 107}, u"ok"},
      {u"100%%", {}, u"100%"}, {u"no specs", {1}, u"no specs"},
      {u"%p", {static_cast<const void*>(nullptr)}, UnicodeString(sizeof(void*) * 2, u'0')},
      {u"%1:s %0:s", {u"a", u"b"}, u"b a"}, {u"%1:s %s %0:s", {u"a", u"b", u"c"}, u"b c a"},
      {u"[%*d]", {5, 42}, u"[   42]"}, {u"[%-*d]", {4, 1}, u"[1   ]"}, {u"%.*f", {1, 2.25}, u"2.3"},
      {u"%0:s-%0:s", {u"r"}, u"r-r"},
      // Floats.
      {u"%f", {3.14159}, u"3.14"}, {u"%.0f", {2.5}, u"3"},  // decimal rounding: half away from zero
      {u"%.3f", {-0.0004}, u"0.000"}, {u"%.1f", {-1.25}, u"-1.3"}, {u"%.2f", {1e20}, u"1E20"},
      {u"%8.2f", {1.5}, u"    1.50"}, {u"%e", {1.0}, u"1.00000000000000E+000"},
      {u"%.3e", {-12345.678}, u"-1.23E+004"}, {u"%.2e", {0.000123}, u"1.2E-004"}, {u"%g", {0.5}, u"0.5"},
      {u"%g", {1e20}, u"1E020"}, {u"%.3g", {1234.5}, u"1.23E003"}, {u"%n", {1234567.891}, u"1,234,567.89"},
      {u"%.0n", {999.5}, u"1,000"}, {u"%m", {1234.5}, u"$1,234.50"}, {u"%m", {-3.0}, u"-$3.00"},
  };
  for (const FormatCase& c : cases) EXPECT_EQ(Format(c.Fmt, c.Args), c.Expected) << UnicodeToUtf8(c.Fmt);
}

TEST(Format, MisuseRaisesEConvertError) {
  auto messageOf = [](const char16_t* AFmt, std::initializer_list<TVarRec> AArgs) {
    return test::MessageOf<EConvertError>([&] { Format(AFmt, AArgs); });
  };
  const FormatCase invalid[] = {{u"%d", {u"abc"}, {}}, {u"%f", {1}, {}},  {u"%s", {1.5}, {}}, {u"50%", {}, {}},
                                 {u"%q", {1}, {}},       {u"%5", {1}, {}}, {u"%*d", {u"x", 1}, {}}};
  for (const auto& c : invalid)
    EXPECT_EQ(messageOf(c.Fmt, c.Args), Format(cRtlInvalidFormat, {c.Fmt})) << UnicodeToUtf8(c.Fmt);
  EXPECT_EQ(messageOf(u"%s %s", {u"one"}), Format(cRtlArgumentMissing, {u"%s %s"}));
  EXPECT_EQ(messageOf(u"%3:s", {u"a"}), u"No argument for format '%3:s'");
  const EConvertError e(cRtlInvalidInteger, {u"zz"});
  EXPECT_EQ(e.Message(), u"'zz' is not a valid integer value");
  EXPECT_STREQ(e.what(), "'zz' is not a valid integer value");
}
