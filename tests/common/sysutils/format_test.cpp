// Format: conversions, widths, precisions, indexes and the platform's failure texts.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

using namespace vn;

TEST(Format, IntegersAndStrings) {
  EXPECT_EQ(Format(u"%d", {42}), u"42");
  EXPECT_EQ(Format(u"%d", {-7}), u"-7");
  EXPECT_EQ(Format(u"[%5d]", {42}), u"[   42]");
  EXPECT_EQ(Format(u"[%-5d]", {42}), u"[42   ]");
  EXPECT_EQ(Format(u"%.5d", {-12}), u"-00012");
  EXPECT_EQ(Format(u"%d", {INT64_MIN}), u"-9223372036854775808");
  EXPECT_EQ(Format(u"%u", {-1}), u"4294967295");
  EXPECT_EQ(Format(u"%u", {INT64_C(-5000000000)}), u"18446744068709551616");
  EXPECT_EQ(Format(u"%x", {255}), u"FF");
  EXPECT_EQ(Format(u"%.4X", {255}), u"00FF");
  EXPECT_EQ(Format(u"%x", {-1}), u"FFFFFFFF");
  EXPECT_EQ(Format(u"%s and %s", {u"this", "that"}), u"this and that");
  EXPECT_EQ(Format(u"[%5s][%-5s][%.2s]", {u"abc", u"abc", u"abc"}), u"[  abc][abc  ][ab]");
  EXPECT_EQ(Format(u"%s", {u'x'}), u"x");
  EXPECT_EQ(Format(u"%c%c", {u'o', 107}), u"ok");
  EXPECT_EQ(Format(u"100%%", {}), u"100%");
  EXPECT_EQ(Format(u"no specs", {1}), u"no specs");
  EXPECT_EQ(Format(u"%p", {static_cast<const void*>(nullptr)}), UnicodeString(sizeof(void*) * 2, u'0'));
}

TEST(Format, IndexesAndStars) {
  EXPECT_EQ(Format(u"%1:s %0:s", {u"a", u"b"}), u"b a");
  EXPECT_EQ(Format(u"%1:s %s %0:s", {u"a", u"b", u"c"}), u"b c a");
  EXPECT_EQ(Format(u"[%*d]", {5, 42}), u"[   42]");
  EXPECT_EQ(Format(u"[%-*d]", {4, 1}), u"[1   ]");
  EXPECT_EQ(Format(u"%.*f", {1, 2.25}), u"2.3");
  EXPECT_EQ(Format(u"%0:s-%0:s", {u"r"}), u"r-r");
}

TEST(Format, Floats) {
  EXPECT_EQ(Format(u"%f", {3.14159}), u"3.14");
  EXPECT_EQ(Format(u"%.0f", {2.5}), u"3");  // decimal rounding: half away from zero
  EXPECT_EQ(Format(u"%.3f", {-0.0004}), u"0.000");
  EXPECT_EQ(Format(u"%.1f", {-1.25}), u"-1.3");
  EXPECT_EQ(Format(u"%.2f", {1e20}), u"1E20");
  EXPECT_EQ(Format(u"%8.2f", {1.5}), u"    1.50");
  EXPECT_EQ(Format(u"%e", {1.0}), u"1.00000000000000E+000");
  EXPECT_EQ(Format(u"%.3e", {-12345.678}), u"-1.23E+004");
  EXPECT_EQ(Format(u"%.2e", {0.000123}), u"1.2E-004");
  EXPECT_EQ(Format(u"%g", {0.5}), u"0.5");
  EXPECT_EQ(Format(u"%g", {1e20}), u"1E020");
  EXPECT_EQ(Format(u"%.3g", {1234.5}), u"1.23E003");
  EXPECT_EQ(Format(u"%n", {1234567.891}), u"1,234,567.89");
  EXPECT_EQ(Format(u"%.0n", {999.5}), u"1,000");
  EXPECT_EQ(Format(u"%m", {1234.5}), u"$1,234.50");
  EXPECT_EQ(Format(u"%m", {-3.0}), u"-$3.00");
}

TEST(Format, MisuseRaisesEConvertError) {
  struct Case {
    const char16_t* Fmt;
    std::initializer_list<TVarRec> Args;
    const char16_t* Message;
  };
  auto messageOf = [](const char16_t* AFmt, std::initializer_list<TVarRec> AArgs) {
    return test::MessageOf<EConvertError>([&] { Format(AFmt, AArgs); });
  };
  EXPECT_EQ(messageOf(u"%d", {u"abc"}), u"Format '%d' invalid or incompatible with argument");
  EXPECT_EQ(messageOf(u"%f", {1}), u"Format '%f' invalid or incompatible with argument");
  EXPECT_EQ(messageOf(u"%s", {1.5}), u"Format '%s' invalid or incompatible with argument");
  EXPECT_EQ(messageOf(u"%s %s", {u"one"}), u"No argument for format '%s %s'");
  EXPECT_EQ(messageOf(u"50%", {}), u"Format '50%' invalid or incompatible with argument");
  EXPECT_EQ(messageOf(u"%q", {1}), u"Format '%q' invalid or incompatible with argument");
  EXPECT_EQ(messageOf(u"%5", {1}), u"Format '%5' invalid or incompatible with argument");
  EXPECT_EQ(messageOf(u"%*d", {u"x", 1}), u"Format '%*d' invalid or incompatible with argument");
  EXPECT_EQ(messageOf(u"%3:s", {u"a"}), u"No argument for format '%3:s'");
}

TEST(Format, ExceptionConstructorFormats) {
  const EConvertError e(cRtlInvalidInteger, {u"zz"});
  EXPECT_EQ(e.Message(), u"'zz' is not a valid integer value");
  EXPECT_STREQ(e.what(), "'zz' is not a valid integer value");
}
