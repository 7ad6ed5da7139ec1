// order_model.h: a small order model registered for reflection, as an application would.
// Each type joins with VN_REGISTER_TYPE beside its declaration; the serializers need nothing else.
#pragma once

#include <vector>

#include "vnxml/common/rtti_register.h"
#include "vnxml/common/variant.h"
#include "vnxml/serializer_hints.h"
#include "vnxml/xs_types.h"

namespace orders {

using namespace vn;

// An enumeration whose names share a prefix: the hint keeps "os" out of the text.
enum TOrderStatus : uint8_t { osDraft, osPaid, osShipped };
VN_REGISTER_TYPE(TOrderStatus, u"uOrders") {
  b.Values({u"osDraft", u"osPaid", u"osShipped"}).TypeAttr<SerializerHint>(shoEnumPrefix, u"os");
}

enum TOrderFlag : uint8_t { ofGift, ofExpress, ofFragile };
VN_REGISTER_TYPE(TOrderFlag, u"uOrders") {
  b.Values({u"ofGift", u"ofExpress", u"ofFragile"}).TypeAttr<SerializerHint>(shoEnumPrefix, u"of");
}
using TOrderFlags = TSet<TOrderFlag>;
VN_REGISTER_TYPE(TOrderFlags, u"uOrders") {}

/// A line: a record, copied by value; its options are a nested list.
struct TOrderLine {
  UnicodeString Product;
  Integer Quantity = 0;
  Double Price = 0;
  std::vector<UnicodeString> Options;
  bool operator==(const TOrderLine&) const = default;
};
VN_REGISTER_TYPE(TOrderLine, u"uOrders") {
  b.Public(u"Product", &TOrderLine::Product)
      .Public(u"Quantity", &TOrderLine::Quantity)
      .Public(u"Price", &TOrderLine::Price)
      .Public(u"Options", &TOrderLine::Options);
}

class TCustomer : public TObject {
  VN_DECLARE_CLASS(TCustomer, TObject)
 public:
  UnicodeString Name;
  UnicodeString Email;
};
VN_REGISTER_TYPE(TCustomer, u"uOrders") { b.Public(u"Name", &TCustomer::Name).Public(u"Email", &TCustomer::Email); }

/// A customer with a company: the text names the class, and reading makes one again.
class TBusinessCustomer : public TCustomer {
  VN_DECLARE_CLASS(TBusinessCustomer, TCustomer)
 public:
  UnicodeString VatNumber;
};
VN_REGISTER_TYPE(TBusinessCustomer, u"uOrders") { b.Public(u"VatNumber", &TBusinessCustomer::VatNumber); }

/// The order owns its customer. Reading creates the customer when the member is nil.
class TOrder : public TObject {
  VN_DECLARE_CLASS(TOrder, TObject)
 public:
  TOrder() = default;
  TOrder(const TOrder&) = delete;
  TOrder& operator=(const TOrder&) = delete;
  ~TOrder() override { delete Customer; }

  Integer GetNumber() const { return FNumber; }
  void SetNumber(Integer AValue) { FNumber = AValue; }

  TOrderStatus Status = osDraft;
  TOrderFlags Flags;
  TDateTime Placed = 0;
  TCustomer* Customer = nullptr;
  std::vector<TOrderLine> Lines;
  /// Optional: Null when there is no discount.
  Variant Discount;
  /// Kept in memory only.
  UnicodeString Scratch;
  // xs-types: members that may be absent without a pointer, one with the facets of a schema
  // restriction. Both are written as bare values; a null one as nil (XML) or null (JSON).
  /// 1 to 5 when set; an assignment outside raises and keeps the old value.
  TXsInteger<Integer> Priority = PriorityFacets();
  /// Absent until the order ships.
  TXsDate Delivery;

  static TXsInteger<Integer> PriorityFacets() {
    TXsInteger<Integer> priority;
    priority.Restrictions.MinInclusive = 1;
    priority.Restrictions.MaxInclusive = 5;
    return priority;
  }

 private:
  Integer FNumber = 0;
};
VN_REGISTER_TYPE(TOrder, u"uOrders") {
  b.Published(u"Number", &TOrder::GetNumber, &TOrder::SetNumber)
      .Public(u"Status", &TOrder::Status)
      .Public(u"Flags", &TOrder::Flags)
      .Public(u"Placed", &TOrder::Placed).OfType(u"TDate")
      .Public(u"Customer", &TOrder::Customer)
      .Public(u"Lines", &TOrder::Lines)
      .Public(u"Discount", &TOrder::Discount)
      .Public(u"Scratch", &TOrder::Scratch).Attr<SerializerHint>(shoDoNotSerialize);
  // xs-types
  b.Public(u"Priority", &TOrder::Priority).Public(u"Delivery", &TOrder::Delivery);
}

}  // namespace orders
