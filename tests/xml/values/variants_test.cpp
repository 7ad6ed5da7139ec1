#include <cmath>
#include <limits>
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

Variant IntArray(std::initializer_list<Integer> AValues) {
  Variant result = VarArrayCreate({0, Integer(AValues.size()) - 1}, varInteger);
  Integer i = 0;
  for (Integer v : AValues) VarArrayPut(result, v, {i++});
  return result;
}

// ---- VnVariantToXML ----

TEST(VariantToXML, ScalarsAndArrays) {
  TimeZoneScope zone(test::cZoneBerlin);
  const std::pair<Variant, const char*> cases[] = {
      {Variant(), ""}, {Variant::Null(), ""}, {Variant(ShortInt(-5)), "-5"}, {Variant(4294967295u), "4294967295"},
      {Variant(std::numeric_limits<Int64>::min()), "-9223372036854775808"},
      {Variant(std::numeric_limits<UInt64>::max()), "18446744073709551615"}, {Variant(2.5), "2.5"},
      {Variant(Currency::FromRaw(12345)), "1.2345"}, {Variant(true), "true"},
      {Variant::FromDate(EncodeDateTime(2020, 7, 1, 12, 0, 0, 5)), "2020-07-01T12:00:00.005"},
      // Strings are escaped for any place in a document, quotes included.
      {Variant(u"a<b & \"c\" 'd'"), "a&lt;b &amp; &quot;c&quot; &apos;d&apos;"},
      {Variant::FromOleStr(u"x>y"), "x&gt;y"}, {Variant(std::string("caf\xC3\xA9")), "caf\xC3\xA9"},
      // Arrays: bytes as hex, others as markup.
      {IntArray({1, 2, 3}),
       "<array length=\"3\"><element nr=\"0\">1</element><element nr=\"1\">2</element>"
       "<element nr=\"2\">3</element></array>"},
      {IntArray({}), "<array length=\"0\"></array>"}, {VarArrayFromBytes(TBytes{0x0A, 0xFF}), "0AFF"},
      {VarArrayFromBytes({}), ""},
      {VarArrayOf({u"<", true}),
       "<array length=\"2\"><element nr=\"0\">&lt;</element><element nr=\"1\">true</element></array>"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(U8(VnVariantToXML(value)), text);
  ExpectRaises<Exception>([] { VnVariantToXML(Variant::FromError(5)); },
                          Format(cVnVariantToXMLInvalidType, {10}));
  ExpectRaises<Exception>([] { VnVariantToXML(Variant(IPtr<IInterface>())); },
                          Format(cVnVariantToXMLInvalidType, {13}));
  // Only one dimension has a text.
  ExpectRaises<Exception>([] { VnVariantToXML(VarArrayCreate({0, 1, 0, 1}, varInteger)); },
                          Format(cVnVariantToXMLInvalidType, {varArray | varInteger}));
}

// ---- VnXMLToVariant ----

TEST(XMLToVariant, ScalarsAndArrays) {
  TimeZoneScope zone(test::cZoneBerlin);
  const std::tuple<const char16_t*, TVarType, Variant> cases[] = {
      {u"-7", varSmallint, Variant(SmallInt(-7))}, {u"70000", varInteger, Variant(70000)},
      {u"300", varShortInt, Variant(ShortInt(44))}, {u"255", varByte, Variant(Byte(255))},
      {u"65535", varWord, Variant(Word(65535))}, {u"4294967295", varLongWord, Variant(LongWord(4294967295u))},
      {u"-9223372036854775808", varInt64, Variant(std::numeric_limits<Int64>::min())},
      {u"18446744073709551615", varUInt64, Variant(std::numeric_limits<UInt64>::max())},
      {u"0.5", varSingle, Variant(0.5f)}, {u"1.5e3", varDouble, Variant(1500.0)},
      {u"1.2345", varCurrency, Variant(Currency::FromRaw(12345))}, {u"TRUE", varBoolean, Variant(true)},
      {u"a&lt;b", varUString, Variant(u"a<b")},
      {u"a&amp;b", varVariant, Variant(u"a&amp;b")},  // kept as it stands
      {u"", varInteger, Variant(0)},
  };
  for (const auto& [text, type, expected] : cases) {
    SCOPED_TRACE(U8(text));
    Variant v = VnXMLToVariant(text, type);
    EXPECT_EQ(v.VarType(), expected.VarType());
    EXPECT_TRUE(v == expected) << U8(VarToStr(v));
  }
  EXPECT_TRUE(VarIsEmpty(VnXMLToVariant(u"x", varEmpty)));
  EXPECT_TRUE(VarIsNull(VnXMLToVariant(u"x", varNull)));
  Variant date = VnXMLToVariant(u"2020-07-01T10:00:00Z", varDate);
  EXPECT_EQ(date.VarType(), varDate);
  EXPECT_NEAR(date.RawDouble(), EncodeDateTime(2020, 7, 1, 12, 0, 0, 0), 1e-9);
  EXPECT_EQ(VnXMLToVariant(u"&#233;", varOleStr).VarType(), varOleStr);
  EXPECT_EQ(U8(VnXMLToVariant(u"&#233;", varString).AsString()), "\xC3\xA9");

  EXPECT_THROW(VnXMLToVariant(u"x", varInteger), EConvertError);
  ExpectRaises<Exception>([] { VnXMLToVariant(u"x", varDispatch); },
                          Format(cVnXMLToVariantUnsupported, {VarTypeAsText(varDispatch)}));
  ExpectRaises<Exception>([] { VnXMLToVariant(u"x", varError); },
                          Format(cVnXMLToVariantUnsupported, {VarTypeAsText(varError)}));

  // Arrays: bytes from hex, others from the markup VnVariantToXML writes.
  Variant v = VnXMLToVariant(u"  0aFF10\r\n", varArray | varByte);
  ASSERT_EQ(v.VarType(), varArray | varByte);
  EXPECT_EQ(VarArrayToBytes(v), (TBytes{0x0A, 0xFF, 0x10}));
  EXPECT_TRUE(VarIsNull(VnXMLToVariant(u"  ", varArray | varByte)));
  for (const char16_t* text : {u"0AF", u"0G"}) EXPECT_THROW(VnXMLToVariant(text, varArray | varByte), EConvertError);
  const Byte bytes[] = {0, 1, 0x7F, 0x80, 0xFE};
  EXPECT_EQ(VarArrayToBytes(VnXMLToVariant(VnVariantToXML(VarArrayFromBytes(bytes)), varArray | varByte)),
            TBytes(std::begin(bytes), std::end(bytes)));

  // Other arrays read back what VnVariantToXML writes.
  v = VnXMLToVariant(VnVariantToXML(IntArray({1, -2, 3})), varArray | varInteger);
  ASSERT_EQ(v.VarType(), varArray | varInteger);
  ASSERT_EQ(VarArrayHighBound(v, 1), 2);
  EXPECT_EQ((std::tuple{VarArrayGet(v, {0}).AsInteger(), VarArrayGet(v, {1}).AsInteger()}), std::tuple(1, -2));

  // String elements become OleStr and keep their markup characters.
  Variant strings = VarArrayCreate({0, 1}, varOleStr);
  VarArrayPut(strings, u"a<b", {0});
  VarArrayPut(strings, u"", {1});
  v = VnXMLToVariant(VnVariantToXML(strings), varArray | varUString);
  ASSERT_EQ(v.VarType(), varArray | varOleStr);
  EXPECT_EQ(U8(VarArrayGet(v, {0}).AsString()), "a<b");

  // The same text once more in XML form, as a DOM value holds it.
  v = VnXMLToVariant(
      u"&lt;array length=&quot;2&quot;&gt;&lt;element nr=&quot;0&quot;&gt;7&lt;/element&gt;"
      u"&lt;/array&gt;",
      varArray | varInteger);
  EXPECT_EQ((std::tuple{VarArrayHighBound(v, 1), VarArrayGet(v, {0}).AsInteger(), VarArrayGet(v, {1}).AsInteger()}),
            std::tuple(1, 7, 0));

  EXPECT_TRUE(VarIsNull(VnXMLToVariant(u"", varArray | varInteger)));
}

TEST(XMLToVariant, BrokenArraysFailCleanly) {
  // A length that no text of this size can fill would only allocate.
  const std::pair<const char16_t*, const char16_t*> badLengths[] = {
      {u"<array length=\"999999999\"></array>", u"999999999"}, {u"<array length=\"-1\"></array>", u"-1"},
      {u"<array length=\"x\"></array>", u"x"}, {u"<array>", u"<array>"},
      {u"<array length=\"1\"><element>1</element><element>2</element></array>", u"1"}};
  for (const auto& [text, length] : badLengths)
    ExpectRaises<Exception>([&] { VnXMLToVariant(text, varArray | varInteger); },
                            Format(cVnXMLToVariantBadLength, {length}));
  EXPECT_THROW(VnXMLToVariant(u"<array length=\"1\"><element>x</element></array>", varArray | varInteger),
               EConvertError);
}

// ---- Variant forms of the readers ----

TEST(VariantReaders, NullGivesTheDefaultAndIntegerTargetsByKind) {
  EXPECT_EQ((std::tuple{VnXMLToInt(Variant::Null(), 5), VnXMLToInt(Variant(), 5), VnXMLToDouble(Variant::Null(), 2.5),
                        VnXMLToDateTime(Variant::Null(), 3.0), VnXMLToBool(Variant::Null(), true),
                        U8(VnXMLToStr(Variant::Null(), u"d"))}),
            std::tuple(5, 5, 2.5, 3.0, true, "d"));

  // An Int64 is cut to 32 bits, 300 to a byte.
  EXPECT_EQ((std::tuple{VnXMLToInt(Variant(Int64(1) << 40 | 7), 0), VnXMLToByte(Variant(300), 0),
                        VnXMLToUInt64(Variant(std::numeric_limits<UInt64>::max()), 0), VnXMLToInt(Variant(u"42"), 0),
                        VnXMLToLongword(Variant(u"4294967295"), 0), VnXMLToInt(Variant(true), 0),
                        VnXMLToWord(Variant(false), 9)}),
            std::tuple(7, 44, std::numeric_limits<UInt64>::max(), 42, 4294967295u, 1, 0));
  EXPECT_THROW(VnXMLToInt(Variant(u"4x"), 0), EConvertError);

  ExpectRaises<EConvertError>([] { VnXMLToInt(Variant(1.5), 0); }, cVnInvalidInteger);
  ExpectRaises<EConvertError>([] { VnXMLToShortint(Variant(1.5), 0); }, cVnInvalidShortint);
  ExpectRaises<EConvertError>([] { VnXMLToSmallint(Variant::FromDate(1), 0); }, cVnInvalidSmallint);
  ExpectRaises<EConvertError>([] { VnXMLToInt64(Variant(1.5f), 0); }, cVnInvalidInteger);
  ExpectRaises<EConvertError>([] { VnXMLToUInt64(Variant(1.5), 0); }, cVnInvalidInteger);
  ExpectRaises<EConvertError>([] { VnXMLToByte(IntArray({1}), 0); }, cVnInvalidByte);
  ExpectRaises<EConvertError>([] { VnXMLToWord(Variant::FromError(1), 0); }, cVnInvalidWord);
  ExpectRaises<EConvertError>([] { VnXMLToLongword(Variant(1.5), 0); }, cVnInvalidLongWord);
}

TEST(VariantReaders, FloatAndDateTargetsByKind) {
  EXPECT_EQ((std::tuple{VnXMLToDouble(Variant(std::numeric_limits<UInt64>::max()), 0),
                        VnXMLToExtended(Variant(Currency::FromRaw(15000)), 0),
                        VnXMLToDouble(Variant::FromDate(43831.5), 0), VnXMLToSingle(Variant(u"2.5"), 0),
                        VnXMLToDouble(Variant(u"INF"), 0)}),
            std::tuple(18446744073709551615.0, 1.5L, 43831.5, 2.5f, HUGE_VAL));
  EXPECT_THROW(VnXMLToDouble(Variant(u"2,5"), 0), EConvertError);

  ExpectRaises<EConvertError>([] { VnXMLToSingle(Variant(true), 0); }, cVnInvalidSingle);
  ExpectRaises<EConvertError>([] { VnXMLToDouble(Variant(true), 0); }, cVnInvalidDouble);
  ExpectRaises<EConvertError>([] { VnXMLToExtended(IntArray({}), 0); }, cVnInvalidExtended);

  // Dates.
  TimeZoneScope zone(test::cZoneBerlin);
  EXPECT_EQ((std::tuple{VnXMLToDate(Variant(43831), 0), VnXMLToTime(Variant::FromDate(0.5), 0)}),
            std::tuple(43831, 0.5));
  EXPECT_NEAR(VnXMLToDateTime(Variant(u"2020-01-01T11:00:00Z"), 0), 43831.5, 1e-9);
  EXPECT_NEAR(VnXMLToDateTime(Variant(u"2020-01-01T11:00:00Z"), 0, xdtfUTC), 43831 + 11.0 / 24, 1e-9);
  EXPECT_NEAR(VnXMLToTime(Variant(u"11:00:00+01:00"), 0, tzfUTC), 10.0 / 24, 1e-9);
  ExpectRaises<Exception>([] { VnXMLToTime(Variant(u"11:00:00"), 0, xdtfTimezone); },
                          cVnXMLDateTimeNoTimezone);

  ExpectRaises<EConvertError>([] { VnXMLToDate(Variant(true), 0); }, cVnInvalidDate);
  ExpectRaises<EConvertError>([] { VnXMLToTime(Variant(true), 0); }, cVnInvalidTime);
  ExpectRaises<EConvertError>([] { VnXMLToDateTime(IntArray({1}), 0); }, cVnInvalidDateTime);
}

TEST(VariantReaders, BooleanAndStringTargets) {
  for (const Variant& v : {Variant(-3), Variant(u"1"), Variant(u"True"), Variant(true)})
    EXPECT_TRUE(VnXMLToBool(v, false)) << U8(VarToStr(v));
  for (const Variant& v : {Variant(0), Variant(u"yes")}) EXPECT_FALSE(VnXMLToBool(v, true)) << U8(VarToStr(v));
  for (const Variant& v : {Variant(1.0), Variant::FromDate(1)})
    ExpectRaises<EConvertError>([&] { VnXMLToBool(v, false); }, cVnInvalidBoolean);

  // Strings of any kind.
  TimeZoneScope zone(test::cZoneBerlin);
  const std::pair<Variant, const char*> cases[] = {
      {Variant(-12), "-12"}, {Variant(std::numeric_limits<UInt64>::max()), "18446744073709551615"},
      {Variant(0.25), "0.25"}, {Variant(u"a&amp;b"), "a&b"}, {Variant(false), "false"},
      {Variant::FromDate(43831.5), "2020-01-01T12:00:00.000"},
      {VarArrayOf({1, u"x&lt;", Variant::Null()}), "1\r\nx<\r\n\r\n"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(U8(VnXMLToStr(value, u"")), text);
  ExpectRaises<EConvertError>([] { VnXMLToStr(VarArrayCreate({0, 1, 0, 1}, varInteger), u""); }, cVnInvalidString);
  ExpectRaises<EConvertError>([] { VnXMLToStr(Variant::FromError(1), u""); }, cVnInvalidString);
}

}  // namespace
}  // namespace vn
