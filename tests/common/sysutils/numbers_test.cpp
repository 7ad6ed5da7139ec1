// Integer and floating-point text conversions against the platform's documented results.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

#include "common/message_of.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

using namespace vn;

namespace {

template <class F>
UnicodeString ConvertErrorOf(F AFunc) { return test::MessageOf<EConvertError>(AFunc); }

}  // namespace

TEST(StrToInt, AcceptedFormsRefusedOnesAndSixtyFourBitRange) {
  const std::pair<const char16_t*, Int64> cases[] = {
      {u"0", 0},           {u"42", 42},       {u"+42", 42},         {u"-42", -42},
      {u"007", 7},         {u"$1F", 31},      {u"0x1f", 31},        {u"0X1F", 31},
      {u"x10", 16},        {u"-$10", -16},    {u"  12", 12},        {u"2147483647", 2147483647},
      {u"-2147483648", INT32_MIN},            {u"$FFFFFFFF", -1},   {u"$80000000", INT32_MIN},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(StrToInt(text), expected) << UnicodeToUtf8(text);

  // Refused forms leave the target alone.
  const char16_t* bad[] = {u"",          u" ",     u"12 ",      u"1a",  u"$",  u"0x",      u"--1", u"+",
                           u"2147483648", u"-2147483649", u"$100000000", u"1.0", u"1e3", u"\t12", u"12\n"};
  for (const char16_t* text : bad) {
    Integer v = 99;
    EXPECT_EQ((std::tuple{TryStrToInt(text, v), v}), std::tuple(false, 99)) << UnicodeToUtf8(text);
  }
  EXPECT_EQ((std::tuple{ConvertErrorOf([] { StrToInt(u"12x"); }), StrToIntDef(u"nope", -7)}),
            std::tuple(Format(cRtlInvalidInteger, {u"12x"}), -7));
  // 64-bit: range and hex.
  EXPECT_EQ((std::tuple{StrToInt64(u"9223372036854775807"), StrToInt64(u"-9223372036854775808"),
                        StrToInt64(u"$FFFFFFFFFFFFFFFF"), StrToInt64(u"$FFFFFFFF")}),
            std::tuple(INT64_MAX, INT64_MIN, -1, 4294967295LL));
  for (const char16_t* text : {u"9223372036854775808", u"99999999999999999999"})
    EXPECT_THROW(StrToInt64(text), EConvertError) << UnicodeToUtf8(text);
  EXPECT_EQ(StrToInt64Def(u"", 5), 5);

  EXPECT_EQ((std::tuple{StrToUInt64(u"18446744073709551615"), StrToUInt64(u"0x8000000000000000")}),
            std::tuple(UINT64_MAX, 0x8000000000000000ULL));
  for (const char16_t* text : {u"18446744073709551616", u"-1"})
    EXPECT_THROW(StrToUInt64(text), EConvertError) << UnicodeToUtf8(text);
}

TEST(IntToStr, ExtremesAndBooleansBothWays) {
  const std::pair<UnicodeString, const char16_t*> cases[] = {
      {IntToStr(0), u"0"},         {IntToStr(-17), u"-17"},      {IntToStr(INT64_MIN), u"-9223372036854775808"},
      {IntToHex(255, 4), u"00FF"}, {IntToHex(0x1234, 2), u"1234"}, {UIntToStr(UINT64_MAX), u"18446744073709551615"},
      {IntToHex(0, 0), u"0"},      {BoolToStr(true), u"-1"},      {BoolToStr(false), u"0"},
      {BoolToStr(true, true), u"True"}, {BoolToStr(false, true), u"False"}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(text, expected);
  // Back: numbers and words.
  for (const char16_t* text : {u"true", u"TRUE", u"-1", u"0.5"}) EXPECT_TRUE(StrToBool(text)) << UnicodeToUtf8(text);
  for (const char16_t* text : {u"False", u"0"}) EXPECT_FALSE(StrToBool(text)) << UnicodeToUtf8(text);
  EXPECT_EQ(ConvertErrorOf([] { StrToBool(u"yes"); }), Format(cRtlInvalidBoolean, {u"yes"}));
}

TEST(FloatToStr, PlatformTable) {
  const std::pair<Extended, const char16_t*> cases[] = {
      {0.0, u"0"}, {-0.0, u"0"}, {0.1, u"0.1"}, {1.0 / 3.0, u"0.333333333333333"},
      {2.0 / 3.0, u"0.666666666666667"}, {100.0, u"100"}, {-2.5, u"-2.5"}, {1e15, u"1E15"},
      {1e14, u"100000000000000"}, {999999999999999.0, u"999999999999999"}, {9999999999999999.0, u"1E16"},
      {1e-5, u"1E-5"}, {0.0001, u"0.0001"}, {1.5e-7, u"1.5E-7"},
      {1.7976931348623157e308, u"1.79769313486232E308"},
      {-1.7976931348623157e308, u"-1.79769313486232E308"}, {5e-324, u"4.94065645841247E-324"},
      {2.2250738585072014e-308, u"2.2250738585072E-308"}, {1.0L / 3.0L, u"0.333333333333333"},
      {std::numeric_limits<double>::quiet_NaN(), u"NAN"}, {std::numeric_limits<double>::infinity(), u"INF"},
      {-std::numeric_limits<double>::infinity(), u"-INF"},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(FloatToStr(value), expected) << static_cast<double>(value);
  // What FloatToStr writes reads back to the same text.
  for (double v : {0.1, 1.0 / 7.0, 123.456, 6.02214076e23, 1e-300})
    EXPECT_EQ(FloatToStr(StrToFloat(FloatToStr(v))), FloatToStr(v));
}

TEST(StrToFloat, AcceptedAndRefusedForms) {
  const std::pair<const char16_t*, double> cases[] = {
      {u"0", 0.0},         {u"-1.5", -1.5},     {u"+2", 2.0},        {u".5", 0.5},
      {u"5.", 5.0},        {u"1E+3", 1000.0},   {u"2.5e-3", 0.0025}, {u"  7.25  ", 7.25},
      {u"1e-5000", 0.0},   {u"1e-99999999999999999999", 0.0},        {u"0e99999", 0.0},    {u"0.1", 0.1},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(static_cast<double>(StrToFloat(text)), expected) << UnicodeToUtf8(text);
  // FloatToStr of the largest double reads back as an Extended just above it.
  EXPECT_EQ((std::tuple{StrToFloat(u"1.79769313486232E308"), std::isnan(StrToFloat(u"NAN")), StrToFloat(u"-inf")}),
            std::tuple(1.79769313486232e308L, true, -std::numeric_limits<Extended>::infinity()));

  const char16_t* bad[] = {u"", u" ", u".", u"e5", u"1e", u"1e+", u"1,5", u"1.2.3", u"0x10", u"1 2", u"--1", u"1e5000",
                           u"1e99999999999999999999", u"INFINITY", u"+-1"};
  Extended v = 42;
  for (const char16_t* text : bad) EXPECT_FALSE(TryStrToFloat(text, v)) << UnicodeToUtf8(text);
  Double d = 0;  // 1e400 fits Extended, not Double
  EXPECT_EQ((std::tuple{TryStrToFloat(u"1e400", d), StrToFloatDef(u"x", 2.5)}), std::tuple(false, 2.5));
  EXPECT_EQ(ConvertErrorOf([] { StrToFloat(u"1,5"); }), Format(cRtlInvalidFloat, {u"1,5"}));
}

TEST(Rounding, BankersRoundAndFriends) {
  // Value, then its Round, Trunc, Ceil and Floor.
  const std::tuple<Extended, Int64, Int64, Int64, Int64> cases[] = {
      {0.5, 0, 0, 1, 0},     {1.5, 2, 1, 2, 1},     {2.5, 2, 2, 3, 2},   {-0.5, 0, 0, 0, -1},
      {-2.5, -2, -2, -2, -3}, {-2.6, -3, -2, -2, -3}, {7.0, 7, 7, 7, 7},
  };
  for (const auto& [value, round, trunc, ceil, floor] : cases)
    EXPECT_EQ((std::tuple{Round(value), Trunc(value), Ceil(value), Floor(value)}),
              std::tuple(round, trunc, ceil, floor))
        << static_cast<double>(value);
  EXPECT_THROW(Round(1e30), EInvalidOp);
  EXPECT_THROW(Trunc(std::numeric_limits<Extended>::quiet_NaN()), EInvalidOp);
}
