// The lenient VnVar* helpers and the main kinds of TVnTypes.
#include <tuple>

#include "variant_test_support.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_types.h"

namespace vn {
namespace {

using namespace test;  // the Variant checks of variant_test_support.h

TEST(VnVarHelpers, EmptyValuesAndFailuresGiveTheDefaultUnlessRaising) {
  EXPECT_EQ((std::tuple{VnVarIsEmpty(Variant()), VnVarIsEmpty(Variant::Null()), VnVarIsEmpty(Variant(u"")),
                        VnVarIsEmpty(VarArrayOf({}))}),
            std::tuple(true, true, false, false));
  for (const Variant& empty : {Variant(), Variant::Null()}) {
    EXPECT_EQ((std::tuple{VnVarToBool(empty, true, true), VnVarToStr(empty, u"d", true),
                          VnVarToExtended(empty, 1.5L, true), VnVarToInt(empty, 7, true), VnVarToInt64(empty, -7, true),
                          VnVarToDouble(empty, 2.5, true)}),
              std::tuple(true, u"d", 1.5L, 7, -7, 2.5));
  }
  EXPECT_EQ((std::tuple{VnVarToBool(Variant(u"yes"), true), VnVarToStr(VarArrayOf({1}), u"d"),
                        VnVarToExtended(Variant(u"x"), 3), VnVarToInt(Variant(1e10), 3), VnVarToInt64(Variant(u"x"), 4),
                        VnVarToDouble(Variant(IPtr<IInterface>()), 5)}),
            std::tuple(true, u"d", 3.0L, 3, 4, 5.0));

  ExpectCast([] { (void)VnVarToBool(Variant(u"yes"), false, true); }, u"UnicodeString", u"Boolean");
  ExpectCast([] { (void)VnVarToStr(VarArrayOf({1}), u"", true); }, u"Array Variant", u"UnicodeString");
  ExpectCast([] { (void)VnVarToExtended(Variant(u"x"), 0, true); }, u"UnicodeString", u"Double");
  ExpectOverflow([] { (void)VnVarToInt(Variant(1e10), 0, true); }, u"Double", u"Integer");
  ExpectRaise<EVariantTypeCastError>([] { (void)VnVarToInt64(Variant(u"x"), 0, true); });
  ExpectRaise<EVariantTypeCastError>([] { (void)VnVarToDouble(Variant::FromError(1), 0, true); });
}

TEST(VnVarHelpers, Conversions) {
  // The truth a path filter asks for: booleans, non-zero numbers, true texts.
  EXPECT_EQ((std::tuple{VnVarToBool(Variant(true)), VnVarToBool(Variant(-3)), VnVarToBool(Variant(0.0), true),
                        VnVarToBool(Variant(u"TRUE")), VnVarToBool(Variant(u"false"), true)}),
            std::tuple(true, true, false, true, false));
  // Dates take the ISO form here, where VarToStr gives the platform's date text.
  const Variant date = Variant::FromDate(EncodeDateTime(2024, 2, 29, 13, 5, 9, 7));
  EXPECT_EQ((std::tuple{VnVarToStr(Variant(1.5)), VnVarToStr(Variant(true)), VnVarToStr(Variant("bytes")),
                        VnVarToStr(date)}),
            std::tuple(u"1.5", u"True", u"bytes", u"2024-02-29T13:05:09.007"));
  EXPECT_EQ((std::tuple{VnVarToExtended(Variant(u"2.5")), VnVarToExtended(Variant(int64_t(INT64_MAX))),
                        VnVarToInt(Variant(u"12")), VnVarToDouble(Variant(Currency::FromRaw(5)))}),
            std::tuple(2.5L, static_cast<long double>(INT64_MAX), 12, 0.0005));
}

TEST(TVnTypes, VarMainTypeKind) {
  const std::pair<Variant, int> rows[] = {
      {int8_t(1), 1}, {int16_t(1), 1}, {1, 1}, {int64_t(1), 1}, {uint8_t(1), 1}, {uint16_t(1), 1},
      {1u, 1}, {uint64_t(1), 1}, {1.0f, 2}, {1.0, 2}, {Currency(), 2}, {u"s", 3}, {"s", 3},
      {Variant::FromOleStr(u"s"), 3}, {true, 4}, {Variant::FromDate(1), 5}, {VarArrayOf({1}), 6},
      {VarArrayCreate({0, 1}, varByte), 6}, {Variant(), 0}, {Variant::Null(), 0},
      {Variant(IPtr<IInterface>()), 0}, {Variant::FromDispatch({}), 0}, {Variant::FromError(0), 0},
  };
  for (const auto& [value, kind] : rows)
    EXPECT_EQ(TVnTypes::VarMainTypeKind(value), kind) << testing::PrintToString(value);
}

}  // namespace
}  // namespace vn
