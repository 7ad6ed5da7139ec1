// The XS records: null state, facets binding assignments and operators but not text, arithmetic
// at the width of T, text forms, and the two binary encodings.
#include <gtest/gtest.h>

#include <limits>

#include "common/message_of.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/xs_types.h"

namespace {

using namespace vn;

using test::MessageOf;

TEST(XsRecords, UnassignedAndClearedRecordsAreNull) {
  TXsInteger<Integer> i;
  TXsRational<Double> r;
  EXPECT_EQ(std::tuple(i.IsNull(), i.ToString(), r.ToString()), std::tuple(true, u"NaN", u"NaN"));
  for (const Variant& v : {i.ToVariant(), r.ToVariant(), TXsBase64Binary().ToVariant()}) EXPECT_TRUE(VarIsNull(v));
  EXPECT_THROW(TXsDuration(u"1M"), Exception);
  EXPECT_EQ(std::tuple(TXsDuration(u"").IsNull(), Integer(i)), std::tuple(true, 0));
  i.FHasValue = u"true";  // only "1" counts
  i.FValue = 7;
  EXPECT_EQ(std::tuple(i.IsNull(), Integer(i)), std::tuple(true, 0));
  i = 7;
  i.Restrictions.MaxInclusive = 9;
  i.Clear();
  EXPECT_EQ(std::tuple(i.IsNull(), i.Restrictions.MaxInclusive.IsNull()), std::tuple(true, false));  // facets stay
  i.FromString(u"12");
  EXPECT_EQ(i.ToVariant().AsString(), u"12");
  i.FromString(u"");
  EXPECT_TRUE(i.IsNull());
  TXsInteger<Byte> b;
  b.FromString(u"300");  // the low bits
  EXPECT_EQ(Byte(b), 44);
  EXPECT_THROW(b.FromString(u"12a"), EConvertError);
  EXPECT_EQ(Byte(b), 44);
}

TEST(XsRecords, FacetsBindAssignmentsAndOperatorsNotCreateOrText) {
  TXsInteger<Integer> x;
  x.Restrictions.MaxInclusive = 10;
  x = 10;
  EXPECT_EQ(std::tuple(MessageOf([&] { x = 11; }), MessageOf([&] { ++x; }), MessageOf([&] { x = x + 5; })),
            std::tuple(cVnXsMaxExceeded, cVnXsMaxExceeded, cVnXsMaxExceeded));
  EXPECT_EQ(Integer(x), 10);             // each failure left the target as it was
  TXsInteger<Integer> y = x.Create(50);  // Create checks nothing
  x.FromString(u"99");                   // neither does reading text
  EXPECT_EQ(std::tuple(Integer(y), Integer(x)), std::tuple(50, 99));
  TXsInteger<Integer> copy = x - 90;  // a result carries the left operand's facets
  EXPECT_FALSE(copy.Restrictions.MaxInclusive.IsNull());
  EXPECT_THROW(x - 0, EArgumentOutOfRangeException);
}

TEST(XsRecords, IntegerFacetsInOrder) {
  using Facet = TXsAnySimpleType<Int64> TXsIntegerRestrictions<Int64>::*;
  using R = TXsIntegerRestrictions<Int64>;
  // F nullptr: the pattern "^[0-9]{2}$"
  const struct { Facet F; Int64 Bound, Value; const char16_t* Message; } cases[] = {
      {&R::MinExclusive, 0, 0, cVnXsMinExclusive}, {&R::MinExclusive, 0, 1, nullptr},
      {&R::MaxExclusive, 10, 10, cVnXsMaxExceeded}, {&R::MaxExclusive, 10, 9, nullptr},
      {&R::MinInclusive, 0, -1, cVnXsMinInclusive}, {&R::MinInclusive, 0, 0, nullptr},
      {&R::MaxInclusive, 10, 11, cVnXsMaxExceeded}, {&R::MaxInclusive, 10, 10, nullptr},
      {nullptr, 0, 5, cVnXsPattern}, {nullptr, 0, 42, nullptr},
  };
  for (const auto& c : cases) {
    TXsInteger<Int64> x;
    if (c.F) x.Restrictions.*c.F = c.Bound;
    else x.Restrictions.Pattern = u"^[0-9]{2}$";
    EXPECT_EQ(MessageOf([&] { x = c.Value; }), c.Message ? c.Message : u"(nothing raised)") << c.Value;
  }
  // Unsigned kinds compare unsigned: 2^63 is above 10, not below 1.
  TXsInteger<UInt64> big;
  big.Restrictions.MaxInclusive = 10;
  EXPECT_THROW(big = UInt64(1) << 63, EArgumentOutOfRangeException);
  big.Restrictions.Clear();
  big.Restrictions.MinInclusive = 1;
  EXPECT_NO_THROW(big = UInt64(1) << 63);
}

TEST(XsRecords, ArithmeticWrapsAtTheWidthOfT) {
  TXsInteger<Byte> b = 255;
  ++b;
  EXPECT_EQ(std::tuple(Byte(b), Byte(TXsInteger<Byte>(1) << 8), Byte(TXsInteger<Byte>(0) - 1)), std::tuple(0, 0, 255));
  EXPECT_EQ(std::tuple(ShortInt(TXsInteger<ShortInt>(127) + 1), ShortInt(TXsInteger<ShortInt>(-128).Div(-1)),
                       ShortInt(TXsInteger<ShortInt>(-1) >> 1)),  // T's bits, zero-filled
            std::tuple(-128, -128, 127));
  EXPECT_EQ(Integer(TXsInteger<Integer>(1) << 32), 1);      // counts modulo 32
  const Int64 min = std::numeric_limits<Int64>::min();
  EXPECT_EQ(std::tuple(Int64(TXsInteger<Int64>(std::numeric_limits<Int64>::max()) + 1),
                       Int64(TXsInteger<Int64>(min).Div(-1)), Int64(TXsInteger<Int64>(min) % -1),
                       Int64(-TXsInteger<Int64>(min))), std::tuple(min, min, 0, min));
  EXPECT_EQ(std::tuple(UInt64(TXsInteger<UInt64>(~UInt64(0)) * 2), Integer(TXsInteger<Integer>(-7) % 2),
                       Word(((TXsInteger<Word>(0xF0F1) & 0xFF) | 0x100) ^ 0x1)), std::tuple(~UInt64(0) - 1, -1, 0x1F0));
  EXPECT_EQ((TXsInteger<Integer>(5) / 2).AsExtended(), 2.5L);
  EXPECT_THROW(TXsInteger<Integer>(5).Div(0), EDivByZero);
  EXPECT_THROW(TXsInteger<Cardinal>(5) % 0, EDivByZero);
}

TEST(XsRecords, NullOperandsAndSignedness) {
  TXsInteger<Byte> nullByte;
  EXPECT_EQ(std::tuple((-nullByte).IsNull(), (nullByte + 1).IsNull(), (nullByte / 2).IsEmpty(),
                       (nullByte > 1).IsNull()), std::tuple(true, true, true, true));
  EXPECT_EQ(MessageOf([] { (void)-TXsInteger<Byte>(1); }), cVnXsNegativeUnsigned);
  EXPECT_EQ(std::tuple(Byte(+TXsInteger<Byte>(200)), TXsInteger<Integer>(5) > 3, TXsInteger<Integer>(5) != 5),
            std::tuple(200, true, false));
}

TEST(XsRecords, OnlyTheirOwnKindsOfT) {
  EXPECT_EQ(std::tuple(MessageOf([] { TXsInteger<bool> b = true; }), MessageOf([] { TXsInteger<char16_t> c = u'a'; }),
                       MessageOf([] { TXsRational<Integer> r = 1; })),
            std::tuple(cVnXsIntegerTypesOnly, cVnXsIntegerTypesOnly, cVnXsRationalTypesOnly));
}

TEST(XsRecords, RationalFacetsAndText) {
  struct Case { int Total, Fraction; Double Value; const char16_t* Message; };
  const Case cases[] = {
      {3, -1, 12.5, nullptr}, {3, -1, 123.4, cVnXsTotalDigits},    {3, -1, -12.5, cVnXsTotalDigits},
      {-1, 2, 1.25, nullptr}, {-1, 2, 1.255, cVnXsFractionDigits}, {-1, 0, 3, nullptr},
  };
  for (const Case& c : cases) {
    TXsRational<Double> r;
    if (c.Total >= 0) r.Restrictions.TotalDigits = Byte(c.Total);
    if (c.Fraction >= 0) r.Restrictions.FractionDigits = Byte(c.Fraction);
    EXPECT_EQ(MessageOf([&] { r = c.Value; }), c.Message ? c.Message : u"(nothing raised)") << c.Value;
  }
  TXsRational<Double> bounded;
  bounded.Restrictions.MinExclusive = 0.0;
  EXPECT_EQ(MessageOf([&] { bounded = 0.0; }), cVnXsMinExclusive);
  bounded.Restrictions.MaxInclusive = 1.5;
  bounded = 1.5;
  EXPECT_THROW(bounded = bounded * 2, EArgumentOutOfRangeException);
  EXPECT_EQ(Double(bounded), 1.5);

  TXsRational<Double> t;
  t.FromString(u"2.5");
  EXPECT_EQ(t.ToString(), u"2.5");
  EXPECT_THROW(t.FromString(u"1,5"), EConvertError);
  // Round: halves to even, still a rational
  EXPECT_EQ(std::tuple(Double(t.Round()), Int64(TXsRational<Double>(-2.7).Trunc()), Double(TXsRational<Double>(1) / 4)),
            std::tuple(2.0, -2, 0.25));
  const TXsRational<Extended> fromNull = TXsInteger<Integer>(), fromInt = TXsInteger<Integer>(-3);
  EXPECT_EQ(std::tuple(TXsRational<Double>().Trunc().IsNull(), fromNull.IsNull(), Extended(fromInt)),
            std::tuple(true, true, -3.0L));
}

TEST(XsRecords, BinaryStringsKeepTheirTextAndDecodeOnlyToStreams) {
  const std::string bytes("\x00\x01\xFE\xFFxyz", 7);
  TXsHexBinary hex;
  TXsBase64Binary b64;
  TVnMemoryStream in(bytes.data(), static_cast<Int64>(bytes.size()));
  hex.LoadBinaryData(in);
  in.SetPosition(0);
  b64.LoadBinaryData(in);
  EXPECT_EQ(std::tuple(RawByteString(hex), RawByteString(b64)), std::tuple("0001FEFF78797A", "AAH+/3h5eg=="));
  auto saved = [](const auto& ARecord) {
    TVnMemoryStream out;
    ARecord.SaveBinaryData(out);
    return std::string(static_cast<const char*>(out.GetMemory()), static_cast<size_t>(out.GetSize()));
  };
  EXPECT_EQ(std::tuple(saved(hex), saved(b64), saved(TXsHexBinary())), std::tuple(bytes, bytes, ""));
  TVnMemoryStream out;
  for (const char* bad : {"ABC", "zz"}) EXPECT_THROW(TXsHexBinary(bad).SaveBinaryData(out), EConvertError) << bad;
  EXPECT_EQ(std::tuple(out.GetSize(), RawByteString(TXsHexBinary("AB") + "CD"), (TXsHexBinary() + "CD").IsNull()),
            std::tuple(0, "ABCD", true));
}

}  // namespace
