// A small shop domain registered for reflection: the sample the reflection tests walk.
#pragma once

#include <array>
#include <vector>

#include "vnxml/common/interfaced_object.h"
#include "vnxml/common/rtti_register.h"

namespace shop {

using namespace vn;

/// A hint attribute with one text, as serializer hints carry.
class THint : public TCustomAttribute {
  VN_DECLARE_CLASS(THint, TCustomAttribute)
 public:
  explicit THint(UnicodeString AValue = {}) : FValue(std::move(AValue)) {}
  UnicodeString FValue;
};

enum TColor : uint8_t { clRed, clGreen, clBlue };
VN_REGISTER_TYPE(TColor, u"uShop") { b.Values({u"clRed", u"clGreen", u"clBlue"}).Attr<THint>(u"cl"); }

using TColors = TSet<TColor>;
VN_REGISTER_TYPE(TColors, u"uShop") {}

struct TAddress {
  UnicodeString Street;
  Integer Number = 0;
};
VN_REGISTER_TYPE(TAddress, u"uShop") { b.Public(u"Street", &TAddress::Street).Public(u"Number", &TAddress::Number); }

struct TLine {
  UnicodeString Sku;
  Integer Qty = 0;
  Byte Discount = 0;
};
VN_REGISTER_TYPE(TLine, u"uShop") {
  b.Public(u"Sku", &TLine::Sku).Public(u"Qty", &TLine::Qty).Public(u"Discount", &TLine::Discount);
}

class TNamed : public TObject {
  VN_DECLARE_CLASS(TNamed, TObject)
 public:
  const UnicodeString& GetName() const { return FName; }
  void SetName(const UnicodeString& AName) { FName = AName; }
  Integer FTag = 0;

 private:
  UnicodeString FName;
};
VN_REGISTER_TYPE(TNamed, u"uShop") {
  b.Published(u"Name", &TNamed::GetName, &TNamed::SetName).Public(u"Tag", &TNamed::FTag).Attr<THint>(u"tag");
}

class TItem : public TNamed {
  VN_DECLARE_CLASS(TItem, TNamed)
 public:
  Double FPrice = 0;
  TColor FColor = clRed;
  /// Redeclares Name with a hint: the derived one is listed first.
  UnicodeString GetCaption() const { return u"Item " + GetName(); }
};
VN_REGISTER_TYPE(TItem, u"uShop") {
  b.Published(u"Name", &TItem::GetCaption, nullptr)
      .Attr<THint>(u"first")
      .Attr<THint>(u"second")
      .Published(u"Price", &TItem::FPrice, &TItem::FPrice)
      .Published(u"Color", &TItem::FColor, &TItem::FColor);
}

class TSpecialItem : public TItem {
  VN_DECLARE_CLASS(TSpecialItem, TItem)
};

class TShop : public TNamed {
  VN_DECLARE_CLASS(TShop, TNamed)
  VN_REFLECTION_FRIEND(TShop)

 public:
  TShop() = default;
  explicit TShop(const UnicodeString& AName) { SetName(AName); }
  ~TShop() override {
    for (TItem* item : FItems) delete item;
  }

  TAddress FAddress;
  std::vector<TLine> FLines;
  std::array<Integer, 3> FRatings{};
  TColors FColors;
  TClassRef<TItem> FItemClass;
  TDateTime FOpened = 0;
  TShop* FPartner = nullptr;
  IPtr<IInterface> FService;

  TItem* GetItem(Integer AIndex) const { return FItems.at(static_cast<size_t>(AIndex)); }
  void SetItem(Integer AIndex, TItem* AItem) { FItems.at(static_cast<size_t>(AIndex)) = AItem; }
  Integer GetCount() const { return static_cast<Integer>(FItems.size()); }
  /// Adopts AItem; gives its index.
  Integer Add(TItem* AItem) {
    FItems.push_back(AItem);
    return GetCount() - 1;
  }
  Double Total(Double ARate) const {
    Double sum = 0;
    for (const TItem* item : FItems) sum += item->FPrice;
    return sum * ARate;
  }
  static UnicodeString Motto() { return u"cheap"; }

 protected:
  Integer GetInternal() const { return FSecret; }

 private:
  std::vector<TItem*> FItems;
  Integer FSecret = 42;
};
VN_REGISTER_TYPE(TShop, u"uShop") {
  b.TypeAttr<THint>(u"shop")
      .Public(u"Address", &TShop::FAddress)
      .Public(u"Lines", &TShop::FLines)
      .Public(u"Ratings", &TShop::FRatings)
      .Published(u"Colors", &TShop::FColors, &TShop::FColors)
      .Public(u"ItemClass", &TShop::FItemClass)
      .Public(u"Opened", &TShop::FOpened)
      .OfType(u"TDateTime")
      .Public(u"Partner", &TShop::FPartner)
      .Public(u"Service", &TShop::FService)
      .Private(u"Secret", &TShop::FSecret)
      .Protected(u"Internal", &TShop::GetInternal)
      .Public(u"Count", &TShop::GetCount)
      .Indexed(mvPublic, u"Items", &TShop::GetItem, &TShop::SetItem)
      .Method(mvPublic, u"Add", &TShop::Add, {u"AItem"})
      .Method(mvPublic, u"Total", &TShop::Total)
      .Method(mvPublic, u"Motto", &TShop::Motto)
      .Constructor<UnicodeString>({u"AName"});
}

/// A class with members of its own type: its registration must not wait for itself.
class TNode : public TObject {
  VN_DECLARE_CLASS(TNode, TObject)
 public:
  TNode* FNext = nullptr;
  std::vector<TNode*> FChildren;
};
VN_REGISTER_TYPE(TNode, u"uTree") { b.Public(u"Next", &TNode::FNext).Public(u"Children", &TNode::FChildren); }

}  // namespace shop
