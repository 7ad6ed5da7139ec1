// Variant arrays: bounds and dimensions, element conversion, copy by value, redim, byte arrays.
#include <tuple>
#include <vector>

#include "variant_test_support.h"

namespace vn {
namespace {

using namespace test;  // the Variant checks of variant_test_support.h

const std::string kBounds = test::U8(cRtlVarArrayBounds);

TEST(VariantArray, OneDimensionConvertsElementsToItsType) {
  Variant a = VarArrayCreate({1, 3}, varInteger);
  EXPECT_EQ((std::tuple{a.VarType(), VarArrayDimCount(a), VarArrayLowBound(a, 1), VarArrayHighBound(a, 1)}),
            std::tuple(varArray | varInteger, 1, 1, 3));
  ExpectVariant(a.GetItem(2), varInteger, 0);

  a.SetItem(1, u"5");
  a.SetItem(3, 2.5);
  ExpectVariant(a.GetItem(1), varInteger, 5);
  ExpectVariant(a.GetItem(3), varInteger, 2);
  // A failed conversion leaves the element as it was.
  ExpectCast([&] { a.SetItem(1, u"x"); }, u"UnicodeString", u"Integer");
  ExpectVariant(a.GetItem(1), varInteger, 5);

  ExpectRaise<EVariantBadIndexError>([&] { (void)a.GetItem(0); }, kBounds);
  ExpectRaise<EVariantBadIndexError>([&] { a.SetItem(4, 1); }, kBounds);
  ExpectRaise<EVariantBadIndexError>([&] { (void)VarArrayGet(a, {1, 1}); }, kBounds);
  ExpectRaise<EVariantBadIndexError>([&] { (void)VarArrayHighBound(a, 2); }, kBounds);

  Variant texts = VarArrayCreate({0, 1}, varOleStr);
  ExpectVariant(texts.GetItem(0), varOleStr, u"");
  texts.SetItem(1, 42);
  ExpectVariant(texts.GetItem(1), varOleStr, u"42");
}

TEST(VariantArray, TwoDimensionsRedimShrinksAndGrows) {
  Variant grid = VarArrayCreate({1, 2, -1, 1}, varVariant);
  EXPECT_EQ((std::tuple{VarArrayDimCount(grid), VarArrayLowBound(grid, 2), VarArrayHighBound(grid, 2)}),
            std::tuple(2, -1, 1));
  for (Integer i = 1; i <= 2; ++i)
    for (Integer j = -1; j <= 1; ++j) VarArrayPut(grid, i * 10 + j, {i, j});
  for (Integer i = 1; i <= 2; ++i)
    for (Integer j = -1; j <= 1; ++j) EXPECT_EQ(VarArrayGet(grid, {i, j}).AsInteger(), i * 10 + j);
  EXPECT_TRUE(VarIsEmpty(VarArrayGet(VarArrayCreate({0, 0, 0, 0}, varVariant), {0, 0})));
  ExpectRaise<EVariantBadIndexError>([&] { (void)VarArrayGet(grid, {1}); });

  // Growing the last dimension keeps every element at its indices.
  VarArrayRedim(grid, 3);
  EXPECT_EQ((std::tuple{VarArrayHighBound(grid, 2), VarArrayGet(grid, {2, 1}).AsInteger(),
                        VarArrayGet(grid, {1, -1}).AsInteger(), VarIsEmpty(VarArrayGet(grid, {2, 3}))}),
            std::tuple(3, 21, 9, true));
  // One dimension shrinks and grows.
  Variant a = VarArrayCreate({0, 2}, varDouble);
  for (Integer i = 0; i <= 2; ++i) a.SetItem(i, i + 0.5);
  VarArrayRedim(a, 0);
  EXPECT_EQ(VarArrayHighBound(a, 1), 0);
  VarArrayRedim(a, 3);
  ExpectVariant(a.GetItem(0), varDouble, 0.5);
  ExpectVariant(a.GetItem(3), varDouble, 0.0);
  VarArrayRedim(a, -1);  // empty is allowed
  EXPECT_EQ(VarArrayHighBound(a, 1), -1);
  ExpectRaise<EVariantArrayCreateError>([&] { VarArrayRedim(a, -2); });
}

TEST(VariantArray, VarArrayOfKeepsEachKind) {
  Variant a = VarArrayOf({1, u"a", true, Variant::Null(), VarArrayOf({2})});
  EXPECT_EQ((std::tuple{a.VarType(), VarArrayHighBound(a, 1)}), std::tuple(varArray | varVariant, 4));
  ExpectVariant(a.GetItem(0), varInteger, 1);
  ExpectVariant(a.GetItem(1), varUString, u"a");
  ExpectVariant(a.GetItem(2), varBoolean, true);
  EXPECT_EQ((std::tuple{VarIsNull(a.GetItem(3)), a.GetItem(4).GetItem(0).AsInteger(),
                        VarArrayHighBound(VarArrayOf({}), 1)}),
            std::tuple(true, 2, -1));
}

TEST(VariantArray, CopiesAreIndependent) {
  Variant a = VarArrayOf({1, 2});
  Variant b = a;
  b.SetItem(0, 10);
  Variant c = a;
  VarArrayRedim(c, 0);
  Variant nested = VarArrayOf({a});
  a.SetItem(1, 20);
  EXPECT_EQ((std::tuple{a.GetItem(0).AsInteger(), b.GetItem(0).AsInteger(), VarArrayHighBound(a, 1),
                        nested.GetItem(0).GetItem(1).AsInteger()}),
            std::tuple(1, 10, 1, 2));
}

TEST(VariantArray, ByteArraysGiveTheirBytes) {
  const Byte raw[] = {0x0A, 0xFF};
  Variant bytes = VarArrayFromBytes(raw);
  EXPECT_EQ((std::tuple{bytes.VarType(), VarArrayToBytes(bytes)}), std::tuple(varArray | varByte, TBytes{0x0A, 0xFF}));
  ExpectVariant(bytes.GetItem(1), varByte, uint8_t(0xFF));
  ExpectOverflow([&] { bytes.SetItem(0, 256); }, u"Integer", u"Byte");

  Variant copy = bytes;
  VarArrayBytes(copy)[0] = 0x0B;  // a write detaches the copy first
  EXPECT_EQ(VarArrayBytes(std::as_const(bytes))[0], 0x0A);

  auto* data = static_cast<Byte*>(VarArrayLock(bytes));
  data[1] = 0x7F;
  Variant whileLocked = bytes;  // locked storage is not shared
  data[0] = 0x01;
  ExpectRaise<EVariantArrayLockedError>([&] { VarArrayRedim(bytes, 5); }, test::U8(cRtlVarArrayLocked));
  VarArrayUnlock(bytes);
  EXPECT_EQ((std::tuple{VarArrayToBytes(bytes), VarArrayToBytes(whileLocked)}),
            std::tuple(TBytes{0x01, 0x7F}, TBytes{0x0A, 0x7F}));
  VarArrayRedim(bytes, 2);
  EXPECT_EQ(VarArrayToBytes(bytes), (TBytes{0x01, 0x7F, 0x00}));
  ExpectRaise<EVariantInvalidArgError>([&] { VarArrayUnlock(bytes); });

  Variant items = VarArrayOf({1, 2});
  auto* elements = static_cast<Variant*>(VarArrayLock(items));
  elements[1] = u"two";
  VarArrayUnlock(items);
  EXPECT_EQ(items.GetItem(1).AsString(), u"two");
  ExpectRaise<EVariantInvalidArgError>([&] { (void)VarArrayBytes(items); });
}

TEST(VariantArray, BadCreationAndNonArrays) {
  const std::string create = test::U8(cRtlVarArrayCreate);
  // Odd or reversed bounds, types no array holds, and bounds whose element count no memory could hold.
  const std::pair<std::vector<Integer>, TVarType> bad[] = {
      {{0}, varInteger}, {{}, varInteger}, {{5, 2}, varInteger}, {{0, 1}, varUString}, {{0, 1}, varEmpty},
      {{0, 1 << 20, 0, 1 << 20}, varByte}, {{1, 2000000000}, varVariant}};
  for (const auto& [bounds, type] : bad)
    ExpectRaise<EVariantArrayCreateError>([&] { (void)VarArrayCreate(bounds, type); }, create);
  Variant grow = VarArrayCreate({0, 0}, varInteger);
  ExpectRaise<EVariantArrayCreateError>([&] { VarArrayRedim(grow, 2000000000); }, create);
  EXPECT_EQ((std::tuple{VarArrayHighBound(grow, 1), VarArrayHighBound(VarArrayCreate({0, -1}, varInteger), 1),
                        VarArrayDimCount(Variant(1))}),
            std::tuple(0, -1, 0));
  const std::string invalid = test::U8(cRtlVarInvalidArg);
  ExpectRaise<EVariantInvalidArgError>([] { (void)VarArrayLowBound(Variant(1), 1); }, invalid);
  ExpectRaise<EVariantInvalidArgError>([] { (void)Variant(u"ab").GetItem(0); }, invalid);
  ExpectRaise<EVariantInvalidArgError>([] { Variant text(u"ab"); VarArrayRedim(text, 3); }, invalid);
  ExpectCast([] { (void)VarArrayOf({1}).AsString(); }, u"Array Variant", u"UnicodeString");
}

}  // namespace
}  // namespace vn
