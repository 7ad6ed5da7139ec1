// Variant conversions: construction kinds, text <-> number coercion, range checks, Null and Empty.
#include <cmath>
#include <functional>
#include <limits>
#include <tuple>

#include "variant_test_support.h"
#include "vnxml/common/interfaced_object.h"

namespace vn {
namespace {

using test::ExpectCast;
using test::ExpectOverflow;
using test::ExpectRaise;

TEST(VariantConversion, EachCppTypeGetsTheKindOfItsWidthAndSign) {
  struct Row {
    Variant V;
    TVarType Type;
  };
  const Row rows[] = {
      {true, varBoolean}, {int8_t(-1), varShortInt}, {int16_t(-1), varSmallint}, {-1, varInteger},
      {int64_t(-1), varInt64}, {-1LL, varInt64}, {uint8_t(1), varByte}, {uint16_t(1), varWord},
      {1u, varLongWord}, {uint64_t(1), varUInt64}, {1ULL, varUInt64}, {1.5f, varSingle}, {1.5, varDouble},
      {1.5L, varDouble}, {Currency::FromRaw(15000), varCurrency}, {u'x', varUString}, {u"text", varUString},
      {UnicodeString(u"text"), varUString}, {VnXMLString(u"<a/>"), varUString},
      {std::string("bytes"), varString}, {"bytes", varString}, {Variant::FromDate(1.5), varDate},
      {Variant::FromOleStr(u"x"), varOleStr}, {Variant::Null(), varNull}, {Variant::Unassigned(), varEmpty},
  };
  for (const Row& r : rows) EXPECT_EQ(r.V.VarType(), r.Type) << test::U8(VarTypeAsText(r.Type));
}

TEST(VariantConversion, TextToNumbers) {
  // Integer text first (with hex forms), then float text rounded half to even.
  EXPECT_EQ(Variant(u"42").AsInteger(), 42);
  EXPECT_EQ(Variant(u"-42").AsInt64(), -42);
  EXPECT_EQ(Variant(u"$1F").AsInteger(), 31);
  EXPECT_EQ(Variant(u"2.5").AsInteger(), 2);
  EXPECT_EQ(Variant(u"3.5").AsInteger(), 4);
  EXPECT_EQ(Variant(u" 7 ").AsInteger(), 7);
  EXPECT_EQ(Variant(u"9223372036854775807").AsInt64(), INT64_MAX);
  EXPECT_EQ(Variant(u"18446744073709551615").AsUInt64(), UINT64_MAX);
  EXPECT_DOUBLE_EQ(Variant(u"-1.25E2").AsDouble(), -125);
  EXPECT_EQ(Variant(u"1.23456").AsCurrency().Raw(), 12346);

  ExpectCast([] { (void)Variant(u"abc").AsInteger(); }, u"UnicodeString", u"Integer");
  ExpectCast([] { (void)Variant(u"").AsInteger(); }, u"UnicodeString", u"Integer");
  ExpectCast([] { (void)Variant(u"1,5").AsDouble(); }, u"UnicodeString", u"Double");
  ExpectCast([] { (void)Variant("x").AsInt64(); }, u"String", u"Int64");
  ExpectCast([] { (void)Variant::FromOleStr(u"x").AsCurrency(); }, u"OleStr", u"Currency");
  // A number too large is an overflow, not a bad text.
  ExpectOverflow([] { (void)Variant(u"1e30").AsInt64(); }, u"UnicodeString", u"Int64");
}

TEST(VariantConversion, NumbersToText) {
  EXPECT_EQ(Variant(-3).AsString(), u"-3");
  EXPECT_EQ(Variant(uint64_t(UINT64_MAX)).AsString(), u"18446744073709551615");
  EXPECT_EQ(Variant(0.1).AsString(), u"0.1");
  // A Single is written with its own precision, not with the noise of its double widening.
  EXPECT_EQ(Variant(0.1f).AsString(), u"0.1");
  EXPECT_EQ(Variant(Currency::FromRaw(-5)).AsString(), u"-0.0005");
  EXPECT_EQ(Variant(Currency::FromRaw(1234500)).AsString(), u"123.45");
  EXPECT_EQ(Variant(int16_t(7)).AsAnsiString(), "7");
  EXPECT_EQ(Variant(u"\u00e9").AsAnsiString(), "\xC3\xA9");
}

TEST(VariantConversion, BooleansAreMinusOneAndTrueText) {
  EXPECT_EQ(Variant(true).AsInteger(), -1);
  EXPECT_EQ(Variant(false).AsInteger(), 0);
  EXPECT_DOUBLE_EQ(Variant(true).AsDouble(), -1);
  EXPECT_EQ(Variant(true).AsString(), u"True");
  EXPECT_EQ(Variant(false).AsString(), u"False");
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
  EXPECT_EQ(VarToStr(null), u"");
  EXPECT_EQ(VarToStrDef(null, u"none"), u"none");
  EXPECT_EQ(VarToStrDef(Variant(), u"none"), u"");

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
  EXPECT_EQ(Variant(-128).AsShortInt(), -128);
  EXPECT_EQ(Variant(65535).AsWord(), 65535);
  EXPECT_EQ(Variant(1e19).AsUInt64(), 10000000000000000000ULL);
  EXPECT_EQ(Variant(2.5).AsInteger(), 2);  // half to even
  EXPECT_EQ(Variant(Currency::FromRaw(35000)).AsInteger(), 4);
  // Infinity has no Single range problem: it stays infinite.
  EXPECT_TRUE(std::isinf(Variant(std::numeric_limits<double>::infinity()).AsSingle()));
}

TEST(VariantConversion, DatesAsText) {
  const TDateTime stamp = EncodeDateTime(2024, 2, 29, 13, 5, 9, 0);
  EXPECT_EQ(Variant::FromDate(stamp).AsString(), u"2024-02-29 13:05:09");
  EXPECT_EQ(Variant::FromDate(EncodeDate(2024, 2, 29)).AsString(), u"2024-02-29");
  EXPECT_EQ(Variant::FromDate(EncodeTime(6, 0, 0, 0)).AsString(), u"06:00:00");
  EXPECT_EQ(Variant::FromDate(0).AsString(), u"1899-12-30");
  EXPECT_EQ(Variant::FromDate(EncodeDateTime(2024, 1, 2, 3, 4, 5, 60)).AsString(), u"2024-01-02 03:04:05.060");

  // Every text VarToStr writes reads back to the same date, before 1899 too.
  for (TDateTime d : {stamp, EncodeDate(2024, 2, 29), EncodeTime(6, 0, 0, 0), -1.25,
                      EncodeDateTime(2024, 1, 2, 3, 4, 5, 60)}) {
    const UnicodeString text = Variant::FromDate(d).AsString();
    EXPECT_NEAR(Variant(text).AsDateTime(), d, 1e-9) << test::U8(text);
  }
  EXPECT_NEAR(Variant(u"2024-02-29T13:05:09").AsDateTime(), stamp, 1e-9);
  EXPECT_DOUBLE_EQ(Variant(u"45000.5").AsDateTime(), 45000.5);
  ExpectCast([] { (void)Variant(u"2024-02-30").AsDateTime(); }, u"UnicodeString", u"Date");
  ExpectCast([] { (void)Variant(u"29.02.2024").AsDateTime(); }, u"UnicodeString", u"Date");
  EXPECT_EQ(Variant::FromDate(1.5).AsInteger(), 2);
}

TEST(VariantConversion, EightBitStringsHoldBytes) {
  EXPECT_EQ(Variant("caf\xC3\xA9").AsString(), u"caf\u00e9");
  // Bytes that are no UTF-8 are kept one for one rather than turned into U+FFFD.
  EXPECT_EQ(Variant("caf\xE9").AsString(), u"caf\u00e9");
  EXPECT_EQ(Variant(std::string("\x00\xFF", 2)).AsAnsiString(), std::string("\x00\xFF", 2));
}

TEST(VariantConversion, VarAsType) {
  struct Row {
    Variant From;
    TVarType To;
    Variant Expected;
  };
  const Row rows[] = {
      {u"12", varInteger, 12}, {u"12", varByte, uint8_t(12)}, {12, varUString, u"12"}, {12, varOleStr, u"12"},
      {12, varString, "12"}, {u"1.5", varCurrency, Currency::FromRaw(15000)}, {1.25, varSingle, 1.25f},
      {true, varInt64, -1}, {u"True", varBoolean, true},
      {u"2024-02-29", varDate, Variant::FromDate(EncodeDate(2024, 2, 29))},
      {int64_t(5), varVariant, int64_t(5)},
  };
  for (const Row& r : rows) test::ExpectVariant(VarAsType(r.From, r.To), r.To == varVariant ? varInt64 : r.To, r.Expected);

  EXPECT_TRUE(VarIsEmpty(VarAsType(5, varEmpty)));
  EXPECT_TRUE(VarIsNull(VarAsType(5, varNull)));
  ExpectRaise<EVariantBadVarTypeError>([] { (void)VarAsType(5, 0x42); }, test::U8(cRtlVarBadType));
  ExpectCast([] { (void)VarAsType(VarArrayOf({1}), varInteger); }, u"Array Variant", u"Integer");
  ExpectCast([] { (void)VarAsType(1, varArray | varInteger); }, u"Integer", u"Array Integer");
  ExpectCast([] { (void)Variant::FromError(5).AsInteger(); }, u"Error", u"Integer");
}

TEST(VariantConversion, TypeNamesAndPredicates) {
  EXPECT_EQ(VarTypeAsText(varArray | varByte), u"Array Byte");
  EXPECT_EQ(VarTypeAsText(0x42), u"$0042");

  // Booleans count as ordinal, hence numeric; a date is neither float nor numeric.
  EXPECT_TRUE(VarIsNumeric(Variant(true)));
  EXPECT_TRUE(VarIsOrdinal(Variant(uint64_t(1))));
  EXPECT_TRUE(VarIsFloat(Variant(Currency())));
  EXPECT_FALSE(VarIsFloat(Variant::FromDate(1)));
  EXPECT_FALSE(VarIsNumeric(Variant::FromDate(1)));
  EXPECT_FALSE(VarIsNumeric(Variant(u"1")));
  EXPECT_TRUE(VarIsStr(Variant("a")));
  EXPECT_TRUE(VarIsClear(Variant()));
  EXPECT_TRUE(VarIsClear(Variant(IPtr<IInterface>())));
  EXPECT_FALSE(VarIsClear(Variant::Null()));
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
    EXPECT_EQ(object->GetRefCount(), 3);
    EXPECT_TRUE(VarIsEmpty(copy));  // NOLINT(bugprone-use-after-move): moved-from is Unassigned
    EXPECT_EQ(moved.AsInterface().Get(), intf.Get());
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
  EXPECT_EQ(StrToCurr(u"1.5").Raw(), 15000);
  EXPECT_EQ(StrToCurr(u"-0.0001").Raw(), -1);
  EXPECT_EQ(StrToCurr(u"0.00015").Raw(), 2);   // tie goes to even
  EXPECT_EQ(StrToCurr(u"0.00025").Raw(), 2);
  EXPECT_EQ(StrToCurr(u"0.000251").Raw(), 3);
  EXPECT_EQ(StrToCurr(u" 922337203685477.5807 ").Raw(), INT64_MAX);
  EXPECT_EQ(StrToCurr(u"1e2").Raw(), 1000000);
  ExpectRaise<EConvertError>([] { (void)StrToCurr(u"abc"); }, test::U8(Format(cRtlInvalidFloat, {u"abc"})));
  Currency c;
  EXPECT_FALSE(TryStrToCurr(u"922337203685477.5808", c));

  EXPECT_EQ(CurrToStr(StrToCurr(u"1.5") * StrToCurr(u"1.5")), u"2.25");
  EXPECT_EQ(CurrToStr(Currency::FromInt64(2) / Currency::FromInt64(3)), u"0.6667");
  EXPECT_EQ(Currency::FromDouble(2.5).Round(), 2);
  EXPECT_EQ(Currency::FromDouble(0.1).Raw(), 1000);
  ExpectRaise<EZeroDivide>([] { (void)(Currency::FromInt64(1) / Currency()); });
  ExpectRaise<EIntOverflow>([] { (void)(Currency::FromRaw(INT64_MAX) + Currency::FromRaw(1)); });
  ExpectRaise<EInvalidOp>([] { (void)Currency::FromDouble(1e20); });
  ExpectRaise<EInvalidOp>([] { (void)Currency::FromDouble(std::nan("")); });
}

}  // namespace
}  // namespace vn
