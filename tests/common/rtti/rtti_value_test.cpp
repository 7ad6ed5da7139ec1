// TValue: typed copies, conversions, arrays and display text; enumeration and set names.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "shop_domain.h"
#include "vnxml/common/currency.h"
#include "vnxml/common/variant.h"

namespace {

using namespace vn;
using namespace shop;

TEST(TValueBasics, EmptyKindTypeInfoAndCopiesOwnTheirPayload) {
  TValue empty = TValue::GetEmpty();
  EXPECT_EQ((std::tuple{empty.IsEmpty(), empty.Kind(), empty.TypeInfo(), empty.GetReferenceToRawData(),
                        empty.ToString(), empty.AsObject()}),
            std::tuple(true, tkUnknown, nullptr, nullptr, u"(empty)", nullptr));

  // A nil reference is empty yet keeps its type.
  TValue nilShop = TValue::From<TShop*>(nullptr);
  EXPECT_EQ((std::tuple{nilShop.IsEmpty(), nilShop.TypeInfo(), TValue::From(IPtr<IInterface>()).IsEmpty(),
                        TValue::From(std::vector<TLine>{}).IsEmpty(), TValue::From<Integer>(0).IsEmpty()}),
            std::tuple(true, TypeInfoOf<TShop>(), true, true, false));
  // Large payloads live on the heap; copies and moves must not share or leak them.
  TValue a = TValue::From(TAddress{u"a long enough street name to leave small-string storage", 1});
  TValue b = a;
  static_cast<TAddress*>(b.GetReferenceToRawData())->Number = 2;
  EXPECT_EQ(static_cast<const TAddress*>(a.GetReferenceToRawData())->Number, 1);
  TValue c = std::move(b);
  // NOLINTNEXTLINE(bugprone-use-after-move)
  EXPECT_EQ((std::tuple{b.IsEmpty(), c.AsType<TAddress>().Number}), std::tuple(true, 2));
  c = a;
  c = TValue::From<Integer>(5);
  TAddress out;
  a.ExtractRawData(&out);
  EXPECT_EQ((std::tuple{c.AsInteger(), out.Number}), std::tuple(5, 1));

  // Objects are held by reference, not copied.
  TItem item;
  TValue v = TValue::From(&item);
  EXPECT_EQ((std::tuple{v.AsObject(), v.AsClass(), v.IsType<TNamed*>(), v.AsType<TNamed*>()}),
            std::tuple(&item, TItem::StaticClass(), true, &item));
}

TEST(TValueBasics, OrdinalsAndRanges) {
  EXPECT_EQ((std::tuple{TValue::FromOrdinal(TypeInfoOf<TColor>(), 2).ToString(),
                        TValue::FromOrdinal(TypeInfoOf<ShortInt>(), -5).AsInteger(),
                        TValue::FromOrdinal(TypeInfoOf<bool>(), 1).AsBoolean(), TValue::From(clGreen).AsOrdinal(),
                        TValue::From<UInt64>(UINT64_MAX).ToString(),
                        TValue::From<Integer>(300).Cast(TypeInfoOf<Word>()).AsInteger()}),
            std::tuple(u"clBlue", -5, true, 1, u"18446744073709551615", 300));
  // Ordinals out of range; an enumeration never becomes another one, a char never a number.
  const std::function<void()> refused[] = {
      [] { TValue::FromOrdinal(TypeInfoOf<TColor>(), 3); }, [] { TValue::FromOrdinal(TypeInfoOf<Byte>(), 256); },
      [] { TValue::FromOrdinal(TypeInfoOf<UnicodeString>(), 1); }, [] { TValue::From<UInt64>(UINT64_MAX).AsInt64(); },
      [] { TValue::From<Int64>(Int64{1} << 40).AsInteger(); },
      [] { TValue::From<Integer>(-1).Cast(TypeInfoOf<Cardinal>()); }, [] { TValue::From(clRed).AsBoolean(); },
      [] { TValue::From(u'A').AsInteger(); }};
  for (size_t i = 0; i < std::size(refused); ++i) EXPECT_THROW(refused[i](), EInvalidCast) << i;
}

TEST(TValueBasics, ConversionsBetweenKinds) {
  EXPECT_EQ((std::tuple{TValue::From<Integer>(3).AsExtended(), TValue::From<Single>(1.5f).AsExtended(),
                        TValue::From(Currency::FromRaw(12345)).AsExtended(), TValue::From<Double>(2.5).AsCurrency()}),
            std::tuple(3.0L, 1.5L, 1.2345L, Currency::FromRaw(25000)));
  EXPECT_EQ((std::tuple{TValue::From(u'z').AsString(), TValue::From(AnsiString("caf\xC3\xA9")).AsString(),
                        TValue::From(UnicodeString(u"x")).AsType<VnXMLString>(),
                        TValue::From(UnicodeString(u"\u00E9")).AsType<AnsiString>()}),
            std::tuple(u"z", u"caf\u00E9", VnXMLString(u"x"), "\xC3\xA9"));
  const std::function<void()> refused[] = {
      [] { TValue::From<Double>(2.5).AsInteger(); }, [] { TValue::From<Integer>(1).AsString(); },
      [] { TValue::From(TAddress{}).AsString(); },   [] { TValue::From(TAddress{}).AsObject(); },
      [] { TValue::From<Integer>(1).GetArrayLength(); }};
  for (size_t i = 0; i < std::size(refused); ++i) EXPECT_THROW(refused[i](), EInvalidCast) << i;

  // A TValue-typed target wraps the value; reading it back unwraps it.
  TValue wrapped = TValue::From<Integer>(8).Cast(TypeInfoOf<TValue>());
  EXPECT_EQ((std::tuple{wrapped.TypeInfo(), wrapped.AsType<TValue>().TypeInfo(), wrapped.AsInteger()}),
            std::tuple(TypeInfoOf<TValue>(), TypeInfoOf<Integer>(), 8));
}

TEST(TValueBasics, VariantsBothWays) {
  const std::pair<TValue, TVarType> types[] = {
      {TValue::From<Byte>(7), varByte}, {TValue::From<Int64>(7), varInt64}, {TValue::From(true), varBoolean},
      {TValue::From(UnicodeString(u"s")), varUString}, {TValue::From(Currency::FromRaw(1)), varCurrency},
      {TValue::Make(nullptr, FindTypeInfo(u"TDate")), varDate}, {TValue(), varEmpty}};
  for (const auto& [value, type] : types) EXPECT_EQ(VarType(value.AsVariant()), type);
  EXPECT_THROW(TValue::From(TAddress{}).AsVariant(), EInvalidCast);

  EXPECT_EQ((std::tuple{TValue::FromVariant(Variant::Null()).IsEmpty(), TValue::FromVariant(Variant(5)).TypeInfo(),
                        TValue::FromVariant(Variant::FromDate(2.0)).TypeInfo(),
                        TValue::FromVariant(Variant(u"t")).AsString()}),
            std::tuple(true, TypeInfoOf<Integer>(), FindTypeInfo(u"TDateTime"), u"t"));
  // A Variant-typed value converts through its content.
  EXPECT_EQ(TValue::From(Variant(12)).AsInteger(), 12);
  EXPECT_EQ(TValue::From<Integer>(4).AsType<Variant>().AsInteger(), 4);
}

TEST(TValueBasics, InterfacesAreCounted) {
  IPtr<IInterface> intf(new TInterfacedObject);
  auto* object = static_cast<TInterfacedObject*>(intf.Get());
  {
    TValue v = TValue::From(intf);
    EXPECT_EQ(object->GetRefCount(), 2);
    EXPECT_EQ(v.AsInterface(), intf);
    TValue copy = v;
    EXPECT_EQ(object->GetRefCount(), 3);
  }
  EXPECT_EQ(object->GetRefCount(), 1);
  TShop shop;
  TRttiField* service = TRttiContext::GetType(shop.ClassType())->GetField(u"Service");
  service->SetValue(&shop, TValue::From(intf));
  EXPECT_EQ((std::tuple{shop.FService, service->GetValue(&shop).AsInterface()}), std::tuple(intf, intf));
}

TEST(TValueText, EnumerationsAndSets) {
  const TTypeInfo* colors = TypeInfoOf<TColors>();
  EXPECT_EQ((std::tuple{TValue::From(TColors{}).ToString(), TValue::From(TColors{clBlue, clRed}).ToString(),
                        SetToString(colors, TColors{clGreen}.Bits())}),
            std::tuple(u"[]", u"[clRed,clBlue]", u"clGreen"));
  EXPECT_EQ((std::tuple{StringToSet(colors, u"[clblue, clRed]"), StringToSet(colors, u"")}),
            std::tuple(TColors{clRed, clBlue}.Bits(), 0u));
  EXPECT_THROW(StringToSet(colors, u"clRed,clPink"), EPropertyConvertError);

  const TTypeInfo* color = TypeInfoOf<TColor>();
  EXPECT_EQ((std::tuple{GetEnumName(color, 1), GetEnumName(color, 7)}), std::tuple(u"clGreen", u"7"));
  EXPECT_EQ((std::tuple{GetEnumValue(color, u"CLBLUE"), GetEnumValue(color, u"clPink"), GetEnumValue(color, u""),
                        GetEnumValue(TypeInfoOf<Integer>(), u"12")}),
            std::tuple(2, -1, -1, 12));

  const std::pair<TValue, const char16_t*> texts[] = {
      {TValue::From<Integer>(-3), u"-3"}, {TValue::From<Double>(0.5), u"0.5"}, {TValue::From(TAddress{}), u"(record)"},
      {TValue::From(std::vector<TLine>(1)), u"(dynamic array)"}};
  for (const auto& [value, text] : texts) EXPECT_EQ(value.ToString(), text);
  TItem item;
  EXPECT_EQ(TValue::From(&item).ToString().rfind(u"(TItem @ ", 0), 0u);
}

}  // namespace
