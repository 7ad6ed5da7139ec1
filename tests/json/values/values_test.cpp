// String escaping both ways, Variants to JSON, and the date readers.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant_array.h"
#include "vnxml/json_values.h"

using namespace vn;

namespace {

TEST(JsonValues, StrToJSONAndBack) {
  const std::pair<std::u16string_view, std::u16string_view> cases[] = {
      {u"", u""}, {u"plain text", u"plain text"}, {u"a/b", u"a\\/b"}, {u"q\"b\\", u"q\\\"b\\\\"},
      {u"\b\t\n\f\r", u"\\b\\t\\n\\f\\r"},
      {u"\a", u""},                                   // U+0001..U+0007 are dropped
      {u"x\x01y\x07z", u"xyz"},
      {std::u16string_view(u"\0\v\x1F", 3), std::u16string_view(u"\0\v\x1F", 3)},  // copied
      {u"\u00E9\u00FF", u"\u00E9\u00FF"},             // Latin-1 stays
      {u"\u0100\u20AC", u"\\u0100\\u20AC"},           // uppercase digits
      {u"\U0001F600", u"\\uD83D\\uDE00"},             // a pair as two escapes
      {u"\xD800", u"\\uD800"},                        // a lone surrogate too
  };
  for (const auto& [in, out] : cases) EXPECT_EQ(VnStrToJSON(in), out);

  // And back.
  struct Case { std::u16string_view In; TVnJSONDataType Type; std::u16string_view Out; };
  const Case back[] = {
      {u"", jdtString, u""}, {u"\\\"\\/\\\\\\b\\f\\n\\r\\t", jdtString, u"\"/\\\b\f\n\r\t"},
      {u"\\u00e9\\u00E9", jdtString, u"\u00E9\u00E9"}, {u"\\uD83D\\uDE00", jdtString, u"\U0001F600"},
      {u"\\uDE00x", jdtString, u"\xDE00x"},          // a lone surrogate stays alone
      {u"\\q", jdtString, u"q"}, {u"\\%41", jdtString, u"A"},
      {u"\\%e9", jdtString, u"\u00E9"},                // a byte widens to the character of its code
      {u"100%", jdtString, u"100%"}, {u"1%41", jdtNumber, u"1A"}, {u"-1.5e3", jdtNumber, u"-1.5e3"},
      {u"true", jdtBoolean, u"true"}, {u"ab\\", jdtString, u"ab\\"},
  };
  for (const Case& c : back) EXPECT_EQ(VnJSONtoStr(c.In, c.Type), c.Out) << UnicodeToUtf8(c.In);
  for (std::u16string_view bad : {u"\\uZZZZ", u"\\u", u"\\%g1", u"%zz"})
    EXPECT_THROW(VnJSONtoStr(bad, jdtNumber), EConvertError) << UnicodeToUtf8(bad);

  // Inverse of VnStrToJSON for every string without U+0001..U+0007.
  std::u16string all;
  for (char32_t c = 0; c < 0x10000; ++c)
    if (c == 0 || c > 7) all += static_cast<char16_t>(c);
  EXPECT_EQ(VnJSONtoStr(VnStrToJSON(all)), all);
}

TEST(JsonValues, VarToJSON) {
  Variant mixed = VarArrayCreate({1, 3}, varVariant);
  VarArrayPut(mixed, Variant(u"a/\u20AC"), {1});
  VarArrayPut(mixed, Variant(true), {2});
  VarArrayPut(mixed, Variant::Null(), {3});
  const std::tuple<Variant, std::u16string_view, TVnJSONDataType> cases[] = {
      {Variant(42), u"42", jdtNumber}, {Variant(Int64(-9007199254740993)), u"-9007199254740993", jdtNumber},
      {Variant(1.5), u"1.5", jdtNumber}, {Variant(-0.0), u"-0", jdtNumber},
      {Variant(std::numeric_limits<double>::infinity()), u"null", jdtNumber},
      {Variant(std::nan("")), u"null", jdtNumber}, {Variant(u"say \"hi\""), u"\"say \\\"hi\\\"\"", jdtString},
      {Variant(false), u"false", jdtBoolean},
      {Variant::FromDate(EncodeDate(2024, 2, 29) + 0.5), u"\"2024-02-29T12:00:00.000\"", jdtString},
      {VarArrayOf({Variant(1), Variant(2)}), u"[1,2]", jdtArray},
      {mixed, u"[\"a\\/\\u20AC\",true,null]", jdtArray},
      {Variant::Null(), u"null", jdtNull}, {Variant(), u"null", jdtNull},
  };
  for (const auto& [v, text, kind] : cases)
    EXPECT_EQ(std::tuple(VnVarToJSON(v), VnVarTypeToJSONType(v)), std::tuple(text, kind)) << UnicodeToUtf8(text);
}

TEST(JsonValues, Dates) {
  const TDateTime epoch = EncodeDate(1970, 1, 1), leap = EncodeDate(2024, 2, 29);
  using Fn = TDateTime (*)(std::u16string_view);
  const std::tuple<Fn, std::u16string_view, TDateTime> cases[] = {
      {VnJSONToDateTime, u"/Date(0)/", epoch}, {VnJSONToDateTime, u"/Date(-43200000)/", epoch - 0.5},
      {VnJSONToDate, u"/Date(129600000)/", epoch + 1},  // a day and a half: whole days
      {VnJSONToTime, u"/Date(3600000)/", 1.0 / 24},     // counted from 0
      {VnJSONToTime, u"/xxxx(3600000)x", 1.0 / 24},     // the letters aren't looked at
      {VnJSONToDateTime, u"", 0}, {VnJSONToDateTime, u"2024-02-29T12:00:00", leap + 0.5},
      {VnJSONToDate, u"2024-02-29", leap}, {VnJSONToTime, u"06:00:00", 0.25},
  };
  for (const auto& [fn, text, want] : cases) EXPECT_DOUBLE_EQ(fn(text), want) << UnicodeToUtf8(text);
  for (std::u16string_view bad : {u"/Date(0+0100)/", u"/Date()/"}) EXPECT_THROW(VnJSONToDateTime(bad), EConvertError);
  EXPECT_EQ(std::tuple(VnJSONToDateDef(u"garbage", 7), VnJSONToTimeDef(u"/Date(x)/", 7),
                       VnJSONToDateTimeDef(u"/Date(0)/", 7)), std::tuple(7.0, 7.0, epoch));
  // Variants: Null gives the default, numbers and dates their value, strings are read.
  EXPECT_EQ(std::tuple(VnJSONToDateTime(Variant::Null(), 7), VnJSONToDate(Variant(2.5), 7),
                       VnJSONToTime(Variant::FromDate(0.25), 7), VnJSONToDateTime(Variant(u"/Date(0)/"), 7)),
            std::tuple(7.0, 2.5, 0.25, epoch));
  const std::pair<TDateTime (*)(const Variant&, TDateTime), std::u16string_view> failing[] = {
      {&VnJSONToDate, cVnJSONInvalidDateValue}, {&VnJSONToTime, cVnJSONInvalidTimeValue},
      {&VnJSONToDateTime, cVnJSONInvalidDateTimeValue}};
  for (const auto& [fn, message] : failing)
    EXPECT_EQ(test::MessageOf<EConvertError>([&] { fn(Variant(true), 0); }), message);
}

}  // namespace
