// Variant conversions: construction kinds, text <-> number coercion, range checks, Null and Empty.
#include <cmath>
#include <functional>
#include <limits>
#include <tuple>
#include <utility>

#include "variant_test_support.h"
#include "vnxml/common/interfaced_object.h"

namespace vn {
namespace {

using namespace test;  // the Variant checks of variant_test_support.h

TEST(VariantConversion, EachCppTypeGetsTheKindOfItsWidthAndSignKindNamesAndPredicates) {
  const std::pair<Variant, TVarType> rows[] = {
      {true, varBoolean}, {int8_t(-1), varShortInt}, {int16_t(-1), varSmallint}, {-1, varInteger},
      {int64_t(-1), varInt64}, {-1LL, varInt64}, {uint8_t(1), varByte}, {uint16_t(1), varWord},
      {1u, varLongWord}, {uint64_t(1), varUInt64}, {1ULL, varUInt64}, {1.5f, varSingle}, {1.5, varDouble},
      {1.5L, varDouble}, {Currency::FromRaw(15000), varCurrency}, {u'x', varUString}, {u"text", varUString},
      {UnicodeString(u"text"), varUString}, {VnXMLString(u"<a/>"), varUString},
      {std::string("bytes"), varString}, {"bytes", varString}, {Variant::FromDate(1.5), varDate},
      {Variant::FromOleStr(u"x"), varOleStr}, {Variant::Null(), varNull}, {Variant::Unassigned(), varEmpty},
  };
  for (const auto& [value, type] : rows) EXPECT_EQ(value.VarType(), type) << test::U8(VarTypeAsText(type));
  EXPECT_EQ((std::tuple{VarTypeAsText(varArray | varByte), VarTypeAsText(0x42)}), std::tuple(u"Array Byte", u"$0042"));

  // Booleans count as ordinal, hence numeric; a date is neither float nor numeric.
  const Variant date = Variant::FromDate(1);
  EXPECT_EQ((std::tuple{VarIsNumeric(true), VarIsOrdinal(uint64_t(1)), VarIsFloat(Currency()), VarIsFloat(date),
                        VarIsNumeric(date), VarIsNumeric(u"1"), VarIsStr("a")}),
            std::tuple(true, true, true, false, false, false, true));
  EXPECT_EQ((std::tuple{VarIsClear(Variant()), VarIsClear(IPtr<IInterface>()), VarIsClear(Variant::Null())}),
            std::tuple(true, true, false));
}

TEST(VariantConversion, TextToNumbers) {
  // Integer text first (with hex forms), then float text rounded half to even.
  for (const auto& [text, number] : {std::pair{u"42", 42}, {u"$1F", 31}, {u"2.5", 2}, {u"3.5", 4}, {u" 7 ", 7}})
    EXPECT_EQ(Variant(text).AsInteger(), number) << test::U8(text);
  EXPECT_EQ((std::tuple{Variant(u"-42").AsInt64(), Variant(u"9223372036854775807").AsInt64(),
                        Variant(u"18446744073709551615").AsUInt64(), Variant(u"1.23456").AsCurrency().Raw()}),
            std::tuple(-42, INT64_MAX, UINT64_MAX, 12346));
  EXPECT_DOUBLE_EQ(Variant(u"-1.25E2").AsDouble(), -125);

  for (auto bad : {u"abc", u""}) ExpectCast([&] { (void)Variant(bad).AsInteger(); }, u"UnicodeString", u"Integer");
  ExpectCast([] { (void)Variant(u"1,5").AsDouble(); }, u"UnicodeString", u"Double");
  ExpectCast([] { (void)Variant("x").AsInt64(); }, u"String", u"Int64");
  ExpectCast([] { (void)Variant::FromOleStr(u"x").AsCurrency(); }, u"OleStr", u"Currency");
  // A number too large is an overflow, not a bad text.
  ExpectOverflow([] { (void)Variant(u"1e30").AsInt64(); }, u"UnicodeString", u"Int64");
}

TEST(VariantConversion, NumbersAndEightBitStringsToText) {
  // A Single is written with its own precision, not with the noise of its double widening. 8-bit
  // bytes that are no UTF-8 are kept one for one rather than turned into U+FFFD.
  const std::pair<Variant, const char16_t*> texts[] = {
      {-3, u"-3"}, {uint64_t(UINT64_MAX), u"18446744073709551615"}, {0.1, u"0.1"}, {0.1f, u"0.1"},
      {Currency::FromRaw(-5), u"-0.0005"}, {Currency::FromRaw(1234500), u"123.45"}, {true, u"True"}, {false, u"False"},
      {"caf\xC3\xA9", u"caf\u00e9"}, {"caf\xE9", u"caf\u00e9"}};
  for (const auto& [value, text] : texts) EXPECT_EQ(value.AsString(), text) << testing::PrintToString(value);
  const std::string bytes("\x00\xFF", 2);
  const std::pair<Variant, std::string> ansi[] = {{int16_t(7), "7"}, {u"\u00e9", "\xC3\xA9"}, {bytes, bytes}};
  for (const auto& [value, text] : ansi) EXPECT_EQ(value.AsAnsiString(), text);
}

TEST(VariantConversion, BooleansAreMinusOneAndTrueText) {
  EXPECT_EQ((std::tuple{Variant(true).AsInteger(), Variant(false).AsInteger(), Variant(true).AsDouble()}),
            std::tuple(-1, 0, -1.0));
  for (const Variant& v : {Variant(u"true"), Variant(u"1"), Variant(2), Variant(Currency::FromRaw(1))})
    EXPECT_TRUE(v.AsBoolean()) << ::testing::PrintToString(v);
  for (const Variant& v : {Variant(u"FALSE"), Variant(u"0"), Variant(0.0)})
    EXPECT_FALSE(v.AsBoolean()) << ::testing::PrintToString(v);
  ExpectCast([] { (void)Variant(u"yes").AsBoolean(); }, u"UnicodeString", u"Boolean");
  // -1 does not fit an unsigned type.
  ExpectOverflow([] { (void)Variant(true).AsByte(); }, u"Boolean", u"Byte");
}

TEST(VariantConversion, NullRefusesEveryConversionAndEmptyIsZero) {
  const Variant null = Variant::Null();
  const std::pair<std::function<void()>, const char16_t*> refusals[] = {
      {[&] { (void)null.AsInteger(); }, u"Integer"},  {[&] { (void)null.AsDouble(); }, u"Double"},
      {[&] { (void)null.AsBoolean(); }, u"Boolean"},  {[&] { (void)null.AsString(); }, u"UnicodeString"},
      {[&] { (void)null.AsDateTime(); }, u"Date"},    {[&] { (void)VarAsType(null, varInteger); }, u"Integer"}};
  for (const auto& [call, to] : refusals) ExpectCast(call, u"Null", to);
  EXPECT_EQ((std::tuple{VarToStr(null), VarToStrDef(null, u"none"), VarToStrDef(Variant(), u"none")}),
            std::tuple(u"", u"none", u""));

  const Variant empty;
  EXPECT_EQ(std::tuple(empty.AsInteger(), empty.AsDouble(), empty.AsString(), empty.AsBoolean(), empty.AsDateTime()),
            std::tuple(0, 0.0, UnicodeString(), false, 0.0));
  EXPECT_FALSE(empty.AsInterface());
}

TEST(VariantConversion, RangeChecks) {
  ExpectOverflow([] { (void)Variant(int64_t(1) << 40).AsInteger(); }, u"Int64", u"Integer");
  ExpectOverflow([] { (void)Variant(300).AsByte(); }, u"Integer", u"Byte");
  ExpectOverflow([] { (void)Variant(-1).AsCardinal(); }, u"Integer", u"LongWord");
  ExpectOverflow([] { (void)Variant(40000).AsSmallInt(); }, u"Integer", u"Smallint");
  ExpectOverflow([] { (void)Variant(uint64_t(UINT64_MAX)).AsInt64(); }, u"UInt64", u"Int64");
  ExpectOverflow([] { (void)Variant(1e300).AsSingle(); }, u"Double", u"Single");
  ExpectOverflow([] { (void)Variant(1e19).AsInt64(); }, u"Double", u"Int64");
  ExpectOverflow([] { (void)Variant(std::nan("")).AsInteger(); }, u"Double", u"Integer");
  ExpectOverflow([] { (void)Variant(1e16).AsCurrency(); }, u"Double", u"Currency");
  // Half to even.
  EXPECT_EQ((std::tuple{Variant(-128).AsShortInt(), Variant(65535).AsWord(), Variant(1e19).AsUInt64(),
                        Variant(2.5).AsInteger(), Variant(Currency::FromRaw(35000)).AsInteger()}),
            std::tuple(-128, 65535, 10000000000000000000ULL, 2, 4));
  // Infinity has no Single range problem: it stays infinite.
  EXPECT_TRUE(std::isinf(Variant(std::numeric_limits<double>::infinity()).AsSingle()));
}

TEST(VariantConversion, DatesAsText) {
  const TDateTime stamp = EncodeDateTime(2024, 2, 29, 13, 5, 9, 0);
  const std::pair<TDateTime, const char16_t*> texts[] = {
      {stamp, u"2024-02-29 13:05:09"}, {EncodeDate(2024, 2, 29), u"2024-02-29"}, {EncodeTime(6, 0, 0, 0), u"06:00:00"},
      {0, u"1899-12-30"}, {EncodeDateTime(2024, 1, 2, 3, 4, 5, 60), u"2024-01-02 03:04:05.060"},
      {-1.25, u"1899-12-29 06:00:00"}};
  // Every text VarToStr writes reads back to the same date, before 1899 too.
  for (const auto& [date, text] : texts) {
    EXPECT_EQ(Variant::FromDate(date).AsString(), text);
    EXPECT_NEAR(Variant(text).AsDateTime(), date, 1e-9) << test::U8(text);
  }
  EXPECT_NEAR(Variant(u"2024-02-29T13:05:09").AsDateTime(), stamp, 1e-9);
  EXPECT_DOUBLE_EQ(Variant(u"45000.5").AsDateTime(), 45000.5);
  ExpectCast([] { (void)Variant(u"2024-02-30").AsDateTime(); }, u"UnicodeString", u"Date");
  ExpectCast([] { (void)Variant(u"29.02.2024").AsDateTime(); }, u"UnicodeString", u"Date");
  EXPECT_EQ(Variant::FromDate(1.5).AsInteger(), 2);
}

TEST(VariantConversion, VarAsType) {
  const std::tuple<Variant, TVarType, Variant> rows[] = {
      {u"12", varInteger, 12}, {u"12", varByte, uint8_t(12)}, {12, varUString, u"12"}, {12, varOleStr, u"12"},
      {12, varString, "12"}, {u"1.5", varCurrency, Currency::FromRaw(15000)}, {1.25, varSingle, 1.25f},
      {true, varInt64, -1}, {u"True", varBoolean, true},
      {u"2024-02-29", varDate, Variant::FromDate(EncodeDate(2024, 2, 29))},
      {int64_t(5), varVariant, int64_t(5)},
  };
  for (const auto& [from, to, expected] : rows)
    test::ExpectVariant(VarAsType(from, to), to == varVariant ? varInt64 : to, expected);
  EXPECT_EQ((std::tuple{VarIsEmpty(VarAsType(5, varEmpty)), VarIsNull(VarAsType(5, varNull))}), std::tuple(true, true));
  ExpectRaise<EVariantBadVarTypeError>([] { (void)VarAsType(5, 0x42); }, test::U8(cRtlVarBadType));
  ExpectCast([] { (void)VarAsType(VarArrayOf({1}), varInteger); }, u"Array Variant", u"Integer");
  ExpectCast([] { (void)VarAsType(1, varArray | varInteger); }, u"Integer", u"Array Integer");
  ExpectCast([] { (void)Variant::FromError(5).AsInteger(); }, u"Error", u"Integer");
}

TEST(VariantStorage, CopiesAndMovesKeepValuesAndInterfaceCountsExact) {
  auto* object = new TInterfacedObject;
  IPtr<IInterface> intf(object);
  {
    Variant v(intf);
    EXPECT_EQ(object->GetRefCount(), 2);
    Variant copy = v;
    EXPECT_EQ(object->GetRefCount(), 3);
    Variant moved = std::move(copy);
    // The moved-from one is Unassigned.
    // NOLINTNEXTLINE(bugprone-use-after-move)
    EXPECT_EQ((std::tuple{object->GetRefCount(), VarIsEmpty(copy), moved.AsInterface().Get()}),
              std::tuple(3, true, intf.Get()));
    moved = 5;  // releases
    EXPECT_EQ(object->GetRefCount(), 2);
    v = Variant::FromDispatch(intf);
    EXPECT_EQ(object->GetRefCount(), 2);
    ExpectCast([&] { (void)v.AsString(); }, u"Dispatch", u"UnicodeString");
  }
  EXPECT_EQ(object->GetRefCount(), 1);

  Variant text(u"a long enough text to live on the heap, not in the small buffer");
  Variant other = text;
  Variant& alias = other;
  other = alias;  // self-assignment keeps the value
  EXPECT_EQ(other.AsString(), text.AsString());
  text = std::move(other);
  EXPECT_EQ(text.AsString(), u"a long enough text to live on the heap, not in the small buffer");
  text.Clear();
  EXPECT_TRUE(VarIsEmpty(text));
}

TEST(Currency, ExactDecimalsAndRounding) {
  // A tie goes to even.
  const std::pair<const char16_t*, Int64> raws[] = {
      {u"1.5", 15000}, {u"-0.0001", -1}, {u"0.00015", 2}, {u"0.00025", 2}, {u"0.000251", 3},
      {u" 922337203685477.5807 ", INT64_MAX}, {u"1e2", 1000000}};
  for (const auto& [text, raw] : raws) EXPECT_EQ(StrToCurr(text).Raw(), raw) << test::U8(text);
  ExpectRaise<EConvertError>([] { (void)StrToCurr(u"abc"); }, test::U8(Format(cRtlInvalidFloat, {u"abc"})));
  Currency c;
  EXPECT_FALSE(TryStrToCurr(u"922337203685477.5808", c));

  EXPECT_EQ((std::tuple{CurrToStr(StrToCurr(u"1.5") * StrToCurr(u"1.5")),
                        CurrToStr(Currency::FromInt64(2) / Currency::FromInt64(3)), Currency::FromDouble(2.5).Round(),
                        Currency::FromDouble(0.1).Raw()}),
            std::tuple(u"2.25", u"0.6667", 2, 1000));
  ExpectRaise<EZeroDivide>([] { (void)(Currency::FromInt64(1) / Currency()); });
  ExpectRaise<EIntOverflow>([] { (void)(Currency::FromRaw(INT64_MAX) + Currency::FromRaw(1)); });
  for (double outside : {1e20, std::nan("")}) ExpectRaise<EInvalidOp>([&] { (void)Currency::FromDouble(outside); });
}

}  // namespace
}  // namespace vn
