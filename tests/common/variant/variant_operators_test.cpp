// Variant comparison and arithmetic: the platform's coercion and result kinds, failures included.
#include <array>
#include <cmath>
#include <tuple>
#include <limits>

#include "variant_test_support.h"
#include "vnxml/common/interfaced_object.h"

namespace vn {
namespace {

using namespace test;  // the Variant checks of variant_test_support.h

const char* RelText(TVariantRelationship r) {
  static const char* const kNames[] = {"vrEqual", "vrLessThan", "vrGreaterThan", "vrNotEqual"};
  return kNames[r];
}

TEST(VariantComparison, TableAndOperators) {
  const double nan = std::nan("");
  const std::tuple<Variant, Variant, TVariantRelationship> rows[] = {
      // numbers across kinds
      {1, 1.0, vrEqual}, {int8_t(-1), uint64_t(UINT64_MAX), vrLessThan},
      {uint64_t(UINT64_MAX), int64_t(-1), vrGreaterThan},
      {int64_t(INT64_MAX), int64_t(INT64_MAX - 1), vrGreaterThan},  // beyond a double's precision
      {Currency::FromRaw(15000), 1.5f, vrEqual}, {Currency::FromRaw(1), Currency::FromRaw(2), vrLessThan},
      {Variant::FromDate(2), 2, vrEqual}, {nan, nan, vrNotEqual},
      // texts compare as texts, code unit by code unit
      {u"2", u"10", vrGreaterThan}, {u"abc", u"abd", vrLessThan}, {u"B", u"a", vrLessThan},
      {"abc", u"abc", vrEqual}, {Variant::FromOleStr(u"x"), u"x", vrEqual},
      // a text against a number becomes a number
      {2, u"10", vrLessThan}, {u"5.0", 5, vrEqual}, {u"9223372036854775807", int64_t(INT64_MAX), vrEqual},
      {u" 7", 7, vrEqual},
      // True is -1 as a number; a text against a Boolean is read as a Boolean
      {true, -1, vrEqual}, {true, false, vrLessThan}, {u"True", true, vrEqual}, {u"0", false, vrEqual},
      {u"2024-02-29", Variant::FromDate(EncodeDate(2024, 2, 29)), vrEqual},
      // Empty is 0 or "" as the other side needs; Null equals only Null
      {Variant(), 0, vrEqual}, {Variant(), u"", vrEqual}, {Variant(), u"a", vrLessThan},
      {Variant(), Variant(), vrEqual}, {Variant::Null(), Variant::Null(), vrEqual},
      {Variant::Null(), 1, vrNotEqual}, {Variant::Null(), Variant(), vrNotEqual},
      {u"", Variant::Null(), vrNotEqual},
  };
  for (const auto& [a, b, expected] : rows) {
    TVariantRelationship got = VarCompareValue(a, b);
    EXPECT_EQ(got, expected) << testing::PrintToString(a) << " vs " << testing::PrintToString(b) << ": "
                             << RelText(got);
  }

  // Two texts compare as texts, a text against a number as numbers.
  EXPECT_EQ((std::array{Variant(1) == Variant(1.0), Variant(u"10") < Variant(u"9"), Variant(10) > Variant(u"9.5"),
                        Variant(3) >= Variant(u"3")}),
            (std::array{true, true, true, true}));
  // Null equals only Null, yet in ordering it stands for Unassigned; NaN equals nothing.
  const Variant null = Variant::Null(), notANumber = nan;
  EXPECT_EQ((std::array{null == null, null != 1, null == Variant(), null < 1, null <= Variant(),
                        notANumber == notANumber, notANumber < 1}),
            (std::array{true, true, false, true, true, false, false}));
}

TEST(VariantComparison, FailuresAndInterfaces) {
  // The failure a path filter relies on: a text without number against a number.
  ExpectCast([] { (void)(Variant(u"x") == Variant(5)); }, u"UnicodeString", u"Double");
  ExpectCast([] { (void)(Variant(5) < Variant("x")); }, u"String", u"Double");
  ExpectCast([] { (void)(Variant(u"yes") == Variant(true)); }, u"UnicodeString", u"Boolean");
  ExpectRaise<EVariantInvalidOpError>([] { (void)(VarArrayOf({1}) == Variant(1)); }, test::U8(cRtlVarInvalidOp));

  IPtr<IInterface> a(new TInterfacedObject), b(new TInterfacedObject);
  EXPECT_EQ((std::tuple{Variant(a) == Variant(a), Variant(a) == Variant(b), VarCompareValue(Variant(a), Variant(b))}),
            std::tuple(true, false, vrNotEqual));
  ExpectRaise<EVariantInvalidOpError>([&] { (void)(Variant(a) < Variant(b)); });
  ExpectRaise<EVariantInvalidOpError>([&] { (void)(Variant(a) == Variant(1)); });
}

TEST(VariantArithmetic, ResultKindsAndCompoundAssignment) {
  const Variant date = Variant::FromDate(EncodeDate(2024, 2, 28));
  const std::tuple<Variant, TVarType, Variant> rows[] = {
      {Variant(1) + 2, varInteger, 3}, {Variant(int16_t(1)) + uint8_t(2), varInteger, 3},
      {Variant(INT32_MAX) + 1, varInt64, int64_t(2147483648LL)},  // grows rather than wraps
      {Variant(int64_t(1)) + 1, varInt64, int64_t(2)},
      {Variant(int64_t(INT64_MAX)) + 1, varDouble, 9223372036854775808.0},
      {Variant(INT32_MIN) * -1, varInt64, int64_t(2147483648LL)}, {Variant(1) + 2.5, varDouble, 3.5},
      {Variant(1.5f) + 1.5f, varSingle, 3.0f}, {Variant(1.5f) + 1, varDouble, 2.5},
      {Variant(3e38f) * 10.0f, varSingle, std::numeric_limits<float>::infinity()},
      {Variant(Currency::FromRaw(15000)) + 1, varCurrency, Currency::FromRaw(25000)},
      {Variant(Currency::FromRaw(15000)) * Currency::FromRaw(15000), varCurrency, Currency::FromRaw(22500)},
      {Variant(Currency::FromRaw(10000)) / 3, varCurrency, Currency::FromRaw(3333)},
      {Variant(Currency::FromRaw(15000)) + 0.25, varDouble, 1.75}, {Variant(7) / 2, varDouble, 3.5},
      {Variant(u"1") + 2, varDouble, 3},  // the text becomes a number
      {Variant(u"1.5") * u"2", varDouble, 3}, {Variant(u"a") + u"b", varUString, u"ab"},
      {Variant("a") + "b", varString, "ab"}, {Variant::FromOleStr(u"a") + "b", varOleStr, u"ab"},
      {Variant() + u"b", varUString, u"b"}, {Variant() + 1, varInteger, 1},
      {Variant() + Variant(), varInteger, 0}, {Variant(true) + 1, varInteger, 0},
      {date + 1, varDate, Variant::FromDate(EncodeDate(2024, 2, 29))},
      {date - 1.5, varDate, Variant::FromDate(EncodeDate(2024, 2, 26) + 0.5)},
      {Variant::FromDate(EncodeDate(2024, 3, 1)) - date, varDouble, 2}, {VarIntDiv(7, 2), varInteger, 3},
      {VarIntDiv(-7, 2), varInteger, -3},
      {VarIntDiv(7.5, 2), varInteger, 4},  // 7.5 rounds to 8 first
      {VarIntDiv(int64_t(10), u"3"), varInt64, int64_t(3)}, {Variant(7) % 3, varInteger, 1},
      {Variant(-7) % 3, varInteger, -1}, {-Variant(5), varInteger, -5},
      {-Variant(INT32_MIN), varInt64, int64_t(2147483648LL)}, {-Variant(u"2.5"), varDouble, -2.5},
      {-Variant(Currency::FromRaw(1)), varCurrency, Currency::FromRaw(-1)},
      {-Variant(uint64_t(9223372036854775808ULL)), varInt64, int64_t(INT64_MIN)},
      {-Variant(true), varInteger, 1},
      // logic: Booleans stay Booleans, numbers go bitwise
      {Variant(true) & false, varBoolean, false}, {Variant(true) | u"False", varBoolean, true},
      {Variant(true) ^ true, varBoolean, false}, {Variant(6) & 3, varInteger, 2},
      {Variant(6) | int64_t(1), varInt64, int64_t(7)}, {Variant(6) ^ 3, varInteger, 5},
      {Variant(true) & 3, varInteger, 3},  // -1 and 3
      {!Variant(true), varBoolean, false}, {!Variant(0), varInteger, -1},
      {!Variant(u"False"), varBoolean, true}, {!Variant(u"5"), varInteger, -6},
  };
  for (size_t i = 0; i < std::size(rows); ++i) {
    SCOPED_TRACE(i);
    std::apply(ExpectVariant, rows[i]);
  }
  // Compound assignment concatenates from an empty text, as a sequence of additions builds it.
  Variant text = u"";
  for (const Variant& part : {Variant(u"a"), Variant(u"b"), Variant(u"c")}) text += part;
  EXPECT_EQ(text.AsString(), u"abc");
  Variant sum = 0;
  for (int i = 1; i <= 4; ++i) sum += i;
  ExpectVariant(sum, varInteger, 10);
}

TEST(VariantArithmetic, NullPropagatesAndFailuresRaise) {
  const Variant null = Variant::Null();
  for (const Variant& v : {!null, null + 1, Variant(u"x") * null, VarIntDiv(null, 0), -null})
    EXPECT_TRUE(VarIsNull(v)) << testing::PrintToString(v);
  ExpectCast([] { (void)!Variant(u"x"); }, u"UnicodeString", u"Boolean");

  ExpectCast([] { (void)(Variant(u"a") + 1); }, u"UnicodeString", u"Double");
  ExpectCast([] { (void)(Variant(u"a") % 2); }, u"UnicodeString", u"Int64");
  ExpectRaise<EVariantInvalidOpError>([] { (void)(VarArrayOf({1}) + 1); }, test::U8(cRtlVarInvalidOp));
  ExpectRaise<EVariantInvalidOpError>([] { (void)(Variant(IPtr<IInterface>()) + 1); });
  ExpectRaise<EVariantInvalidOpError>([] { (void)-VarArrayOf({1}); });
  ExpectRaise<EDivByZero>([] { (void)VarIntDiv(1, 0); }, test::U8(cRtlDivByZero));
  ExpectRaise<EDivByZero>([] { (void)(Variant(1) % 0); });
  ExpectRaise<EZeroDivide>([] { (void)(Variant(1) / 0); }, test::U8(cRtlZeroDivide));
  ExpectRaise<EInvalidOp>([] { (void)(Variant(0.0) / 0); });
  ExpectRaise<EZeroDivide>([] { (void)(Variant(Currency::FromRaw(1)) / 0); });
  // The edges of 64-bit division neither trap nor wrap.
  ExpectVariant(Variant(int64_t(INT64_MIN)) % -1, varInt64, int64_t(0));
  ExpectVariant(VarIntDiv(int64_t(INT64_MIN), -1), varDouble, 9223372036854775808.0);
}

}  // namespace
}  // namespace vn
