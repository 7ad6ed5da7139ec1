// The value helper: what a TValue is in the registry's terms, and conversions through text.
#include <gtest/gtest.h>

#include <tuple>

#include "types_domain.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"

namespace {

using namespace vn;
using namespace typesdomain;

TEST(ValueHelper, KindsAndNullOfValues) {
  EXPECT_EQ((std::tuple{VnTypeInfo(TValue()), TypeKind(TValue::From<Word>(1))}), std::tuple(nullptr, vtkWord));
  // A Variant value counts by what it holds.
  EXPECT_EQ((std::tuple{MainTypeKind(TValue::From(Variant(u"x"))), MainTypeKind(TValue::From(Variant(3)))}),
            std::tuple(mtkString, mtkInteger));

  TBase object;
  const std::pair<TValue, bool> nulls[] = {
      {TValue(), true}, {TValue::FromObject(nullptr, TypeInfoOf<TBase>()), true}, {TValue::From(Variant::Null()), true},
      {TValue::From(Variant()), true}, {TValue::FromObject(&object), false}, {TValue::From<Integer>(0), false}};
  for (const auto& [value, null] : nulls) EXPECT_EQ(IsNull(value), null) << UnicodeToUtf8(value.ToString());
}

/// ToType of AValue to T; EXPECTs success and gives the result.
template <class T>
T Converted(const TValue& AValue) {
  TValue result;
  EXPECT_TRUE(ToType(AValue, TypeInfoOf<T>(), result)) << UnicodeToUtf8(AValue.ToString());
  return result.TypeInfo() ? result.AsType<T>() : T{};
}

template <class T>
bool Fails(const TValue& AValue) {
  TValue result;
  return !ToType(AValue, TypeInfoOf<T>(), result);
}

TEST(ValueHelper, ToTypeReadsTextAndWritesNumbersAsText) {
  using S = UnicodeString;
  EXPECT_EQ(Converted<Integer>(TValue::From<S>(u" 42 ")), 42);
  EXPECT_EQ((std::tuple{Fails<Byte>(TValue::From<S>(u"300")), Fails<Integer>(TValue::From<S>(u"1.5")),
                        Fails<TFruit>(TValue::From<S>(u"frKiwi")), Fails<TFruit>(TValue::From<S>(u"3"))}),
            std::tuple(true, true, true, true));
  // A Variant is looked into (the fourth).
  EXPECT_EQ((std::tuple{Converted<TFruit>(TValue::From<S>(u"frplum")), Converted<TFruit>(TValue::From<S>(u"1")),
                        Converted<TFruits>(TValue::From<S>(u"[frApple,frPlum]")).Bits(),
                        Converted<Integer>(TValue::From(Variant(u"12"))), Converted<S>(TValue::From<TFruit>(frPear))}),
            std::tuple(frPlum, frPear, 5u, 12, u"frPear"));
  // Only a whole float becomes an integer: nothing is rounded behind the caller's back.
  // The empty value gives the zero of any type.
  EXPECT_EQ((std::tuple{Converted<Integer>(TValue::From<Double>(2.0)), Fails<Integer>(TValue::From<Double>(2.5)),
                        Fails<Integer>(TValue())}),
            std::tuple(2, true, false));

  EXPECT_EQ(ToInteger(TValue::From<UnicodeString>(u"15")), 15);
  EXPECT_THROW(ToInteger(TValue::From<UnicodeString>(u"abc")), EInvalidCast);
  EXPECT_THROW(ToByte(TValue::From<Integer>(-1)), EInvalidCast);
  EXPECT_EQ((std::tuple{ToWideString(TValue()), ToWideString(TValue::From(Variant::Null()))}), std::tuple(u"", u""));
}

}  // namespace
