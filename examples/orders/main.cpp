// orders: a small order model goes to XML and to JSON and comes back equal.
// Usage: orders          (prints the text and checks the round trip; exit code 1 on a mismatch)
#include <cstdio>
#include <exception>
#include <string>

#include "order_model.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/serializer.h"
#include "vnxml/serializer_serializable.h"

namespace {

using namespace orders;

void Fill(TOrder& AOrder) {
  AOrder.SetNumber(1042);
  AOrder.Status = osPaid;
  AOrder.Flags = TOrderFlags{ofGift, ofFragile};
  AOrder.Placed = EncodeDate(2024, 5, 17);
  auto* customer = new TBusinessCustomer();
  customer->Name = u"Ada & Partners";
  customer->Email = u"ada@example.org";
  customer->VatNumber = u"IT-123";
  AOrder.Customer = customer;
  AOrder.Lines = {TOrderLine{u"Tea <green>", 2, 4.5, {u"loose", u"organic"}}, TOrderLine{u"Cup", 1, 12.25, {}}};
  AOrder.Scratch = u"not written";
  // xs-types: a priority within its facets; the delivery date stays null.
  AOrder.Priority = 2;
}

bool Same(const TOrder& A, const TOrder& B) {
  const auto* ca = static_cast<const TBusinessCustomer*>(A.Customer);
  const auto* cb = CastObject<TBusinessCustomer>(B.Customer);
  return A.GetNumber() == B.GetNumber() && A.Status == B.Status && A.Flags == B.Flags && A.Placed == B.Placed &&
         cb && ca->Name == cb->Name && ca->Email == cb->Email && ca->VatNumber == cb->VatNumber && A.Lines == B.Lines &&
         VarIsNull(B.Discount) && B.Scratch.empty() &&
         // xs-types
         Integer(A.Priority) == Integer(B.Priority) && B.Delivery.IsNull();
}

}  // namespace

int main() {
  try {
    TOrder order;
    Fill(order);
    order.Discount = Variant::Null();

    // Out: one call. The text names each member's type; the customer's class is the subclass.
    const TVnSerializedData xml = AsXML(order, u"urn:orders");
    std::printf("XML:\n%s\n", xml.c_str());

    // Back: into a fresh order; the customer is created from the class the text names.
    TOrder copy;
    VnDeserialize(dsfXML, TValue::FromObject(&copy), xml);
    const bool same = Same(order, copy) && AsXML(copy, u"urn:orders") == xml;
    std::printf("XML round trip: %s\n", same ? "equal" : "DIFFERENT");

    // Without namespaces the text is plain; reading it creates the declared class.
    std::printf("plain: %s\n", AsXML(order, {}, true).c_str());

    // the same order as JSON
    // Out: one line; objects and enumerations carry their "className", so the customer comes
    // back as the subclass.
    const TVnSerializedData json = AsJSON(order);
    std::printf("JSON:\n%s\n", json.c_str());
    TOrder fromJSON;
    VnDeserialize(dsfJSON, TValue::FromObject(&fromJSON), json);
    const bool sameJSON = Same(order, fromJSON) && AsJSON(fromJSON) == json;
    std::printf("JSON round trip: %s\n", sameJSON ? "equal" : "DIFFERENT");
    // xs-types: a facet binds assignments in code: 9 is refused and the priority stays 2.
    try {
      order.Priority = 9;
    } catch (const EArgumentOutOfRangeException& e) {
      std::printf("priority 9: %s (still %s)\n", e.what(), UTF8String(UnicodeToUtf8(order.Priority.ToString())).c_str());
    }
    return same && sameJSON ? 0 : 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orders failed: %s\n", e.what());
    return 1;
  }
}
