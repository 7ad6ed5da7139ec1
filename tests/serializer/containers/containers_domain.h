// Host types of the container tests: an item class tree, value lists of several element kinds,
// object lists, dictionaries with simple and object keys and values, simple wrappers, and one
// basket that holds them all as properties.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/message_of.h"
#include "serializer/domain_support.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/generics.h"
#include "vnxml/common/string_list.h"
#include "vnxml/serializer.h"
#include "vnxml/serializer_containers.h"

namespace containersdomain {

using namespace vn;
using test::MessageOf;

enum TTone : uint8_t { toLow, toMid, toHigh };
VN_REGISTER_TYPE(TTone, u"uBox") { b.Values({u"toLow", u"toMid", u"toHigh"}); }

class TItem : public TObject {
  VN_DECLARE_CLASS(TItem, TObject)
 public:
  TItem() = default;
  TItem(UnicodeString ASku, Integer AQty) : Sku(std::move(ASku)), Qty(AQty) {}
  UnicodeString Sku;
  Integer Qty = 0;
};
VN_REGISTER_TYPE(TItem, u"uBox") { b.Public(u"Sku", &TItem::Sku).Public(u"Qty", &TItem::Qty); }
class TGift : public TItem {
  VN_DECLARE_CLASS(TGift, TItem)
 public:
  UnicodeString Note;
};
VN_REGISTER_TYPE(TGift, u"uBox") { b.Public(u"Note", &TGift::Note); }
/// Registered, but no item: an object list of items refuses it.
class TStone : public TObject { VN_DECLARE_CLASS(TStone, TObject) };
VN_REGISTER_TYPE(TStone, u"uBox") {}

using TItemList = generics::TObjectList<TItem>;
using TTextMap = generics::TObjectDictionary<UnicodeString, UnicodeString>;
using TItemMap = generics::TObjectDictionary<Integer, TItem*>;
using TItemKeys = generics::TObjectDictionary<TItem*, Double>;

/// A list of values: a TList descendant named after its element type, as a generic would be.
template <class T>
class TValueList : public TList {
  VN_DECLARE_CLASS(TValueList, TList)
 public:
  std::vector<T> Values;
  Integer Count() const { return static_cast<Integer>(Values.size()); }
  T Item(Integer AIndex) const { return Values.at(static_cast<size_t>(AIndex)); }
  Integer Add(const T& AValue) {
    Values.push_back(AValue);
    return Count() - 1;
  }
};
template <class T>
void ValueListMembers(TTypeBuilder<TValueList<T>>& b) {
  b.Name(GenericTypeName(u"TValueList", {TypeInfoOf<T>()}), u"uBox").Public(u"Count", &TValueList<T>::Count)
      .Indexed(mvPublic, u"Items", &TValueList<T>::Item).Method(mvPublic, u"Add", &TValueList<T>::Add);
}
#define CONTAINERS_VALUE_LIST(Alias, T) \
  using Alias = TValueList<T>;          \
  VN_REGISTER_TYPE(Alias, u"uBox") { ValueListMembers(b); }
CONTAINERS_VALUE_LIST(TIntList, Integer)
CONTAINERS_VALUE_LIST(TInt64List, Int64)
CONTAINERS_VALUE_LIST(TFloatList, Double)
CONTAINERS_VALUE_LIST(TTextList, UnicodeString)
CONTAINERS_VALUE_LIST(TFlagList, Boolean)
CONTAINERS_VALUE_LIST(TToneList, TTone)

/// A price that may be unset.
class TMoney : public TVnCustomSimpleType {
  VN_DECLARE_CLASS(TMoney, TVnCustomSimpleType)
 public:
  std::optional<Double> Amount;
  void GetAsVariant(Variant& AValue) const override { AValue = Amount ? Variant(*Amount) : Variant(); }
  const TVnTypeInfo* SimpleTypeInfo() const override { return TVnTypes::GetTypeInfo<Double>(); }
  void SetAsValue(const TValue& AValue) override {
    Amount = AValue.IsEmpty() ? std::nullopt : std::optional(AValue.AsType<Double>());
  }
};
VN_REGISTER_TYPE(TMoney, u"uBox") {}
/// A tone held as a wrapper: its text is the value's name.
class TToneBox : public TVnCustomSimpleType {
  VN_DECLARE_CLASS(TToneBox, TVnCustomSimpleType)
 public:
  TTone Tone = toLow;
  void GetAsVariant(Variant& AValue) const override { AValue = Variant(static_cast<Integer>(Tone)); }
  const TVnTypeInfo* SimpleTypeInfo() const override { return TVnTypes::GetTypeInfo<TTone>(); }
  void SetAsValue(const TValue& AValue) override { Tone = AValue.AsType<TTone>(); }
};
VN_REGISTER_TYPE(TToneBox, u"uBox") {}

/// Owns every container it holds; each is a published property, as helpers run for properties.
class TBasket : public TObject {
  VN_DECLARE_CLASS(TBasket, TObject)
 public:
  TBasket() = default;
  TBasket(const TBasket&) = delete;
  TBasket& operator=(const TBasket&) = delete;
  ~TBasket() override {
    test::DeleteAll(Items, Plain, Ints, Int64s, Floats, Texts, Flags, Tones, Lines, Price, Tone, Notes, ById, ByItem);
  }
  // clang-format off
  TItemList* Items = nullptr; TObjectList* Plain = nullptr; TIntList* Ints = nullptr; TInt64List* Int64s = nullptr;
  TFloatList* Floats = nullptr; TTextList* Texts = nullptr; TFlagList* Flags = nullptr; TToneList* Tones = nullptr;
  TStringList* Lines = nullptr; TMoney* Price = nullptr; TToneBox* Tone = nullptr; TTextMap* Notes = nullptr;
  TItemMap* ById = nullptr; TItemKeys* ByItem = nullptr;
  // clang-format on
};
#define CONTAINERS_PROPERTY(Name) Published(u"" #Name, &TBasket::Name, &TBasket::Name)
VN_REGISTER_TYPE(TBasket, u"uBox") {
  b.CONTAINERS_PROPERTY(Items).CONTAINERS_PROPERTY(Plain).CONTAINERS_PROPERTY(Ints).CONTAINERS_PROPERTY(Int64s)
      .CONTAINERS_PROPERTY(Floats).CONTAINERS_PROPERTY(Texts).CONTAINERS_PROPERTY(Flags)
      .CONTAINERS_PROPERTY(Tones).CONTAINERS_PROPERTY(Lines).CONTAINERS_PROPERTY(Price)
      .CONTAINERS_PROPERTY(Tone).CONTAINERS_PROPERTY(Notes).CONTAINERS_PROPERTY(ById).CONTAINERS_PROPERTY(ByItem);
}
#undef CONTAINERS_PROPERTY

/// A container in a public field: no helper runs for it.
class TShelf : public TObject {
  VN_DECLARE_CLASS(TShelf, TObject)
 public:
  TShelf() = default;
  TShelf(const TShelf&) = delete;
  TShelf& operator=(const TShelf&) = delete;
  ~TShelf() override { delete Items; }
  TItemList* Items = new TItemList();
};
VN_REGISTER_TYPE(TShelf, u"uBox") { b.Public(u"Items", &TShelf::Items); }
/// A TList descendant registered without Count and Items.
class TBareList : public TList { VN_DECLARE_CLASS(TBareList, TList) };
VN_REGISTER_TYPE(TBareList, u"uBox") {}

/// The text of AObject in AFormat.
inline std::string Text(TVnDataSerializationFormatType AFormat, TObject& AObject) {
  return test::SerializeWith(AFormat, TValue::FromObject(&AObject), {{u"xmlns", u"urn:box"}});
}
inline void Read(TVnDataSerializationFormatType AFormat, TObject& ATarget, const std::string& AText) {
  VnDeserialize(AFormat, TValue::FromObject(&ATarget), AText);
}
/// The notation of a test text: XML when it starts with "<".
inline TVnDataSerializationFormatType FormatOf(const std::string& AText) {
  return !AText.empty() && AText[0] == '<' ? dsfXML : dsfJSON;
}

}  // namespace containersdomain
