// Tour: application objects to XML and back, by reflection alone (the order model of examples/orders).
#include <cstdio>

#include "../orders/order_model.h"
#include "sections.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/serializer.h"
#include "vnxml/serializer_serializable.h"

namespace tour {

void Objects() {
  std::puts("== Objects: a registered model to XML and back ==");
  using namespace orders;
  TOrder order;
  order.SetNumber(7);
  order.Status = osShipped;
  order.Flags = TOrderFlags{ofExpress};
  order.Placed = vn::EncodeDate(2024, 1, 31);
  order.Customer = new TCustomer();
  order.Customer->Name = u"Bo";
  order.Lines = {TOrderLine{u"Pen", 3, 1.5, {u"blue"}}};
  order.Discount = vn::Variant(0.1);
  // containers: an owning object list (a property) is written element by element
  order.SetParcels(new TParcels());
  order.GetParcels()->Add(new TInsuredParcel());
  // XS values: a priority held to 1..5 by its facets, a delivery date that stays null
  // (written as an empty element, read back as nothing).
  order.Priority = 2;

  // Plain text, without namespaces or type attributes; enumeration and set names lose the
  // prefix their type's hint names.
  std::printf("%s\n", vn::AsXML(order, {}, true).c_str());

  // The full text carries types, so reading it back needs nothing but the target object:
  // the nil customer is created, the Variant keeps its type.
  const vn::TVnSerializedData xml = vn::AsXML(order);
  TOrder copy;
  vn::VnDeserialize(vn::dsfXML, vn::TValue::FromObject(&copy), xml);
  std::printf("read back: order %d for %s, %zu line(s), discount %s\n", copy.GetNumber(),
              vn::UnicodeToUtf8(copy.Customer->Name).c_str(), copy.Lines.size(),
              vn::UnicodeToUtf8(vn::VarToStr(copy.Discount)).c_str());
  // containers: each parcel comes back as its own class
  std::printf("parcels: %d, the first a %s\n", copy.GetParcels()->Count(),
              vn::UnicodeToUtf8(copy.GetParcels()->GetItem(0)->ClassName()).c_str());

  // A facet refuses a value before it is stored. Facets bind code, not text: the copy read
  // back holds the value without them.
  try {
    order.Priority = 9;
  } catch (const vn::Exception& e) {
    std::printf("priority 9: %s (still %s; read back %s)\n", e.what(), vn::UnicodeToUtf8(order.Priority.ToString()).c_str(),
                vn::UnicodeToUtf8(copy.Priority.ToString()).c_str());
  }

  // Bad text names the member and what went wrong; the target keeps nothing the read created.
  TOrder broken;
  try {
    vn::VnDeserialize(vn::dsfXML, vn::TValue::FromObject(&broken),
                      "<object><Customer><Name>x</Name></Customer><Number>many</Number></object>");
  } catch (const vn::Exception& e) {
    std::printf("bad text: %s (customer %s)\n", e.what(), broken.Customer ? "kept" : "not kept");
  }
}

}  // namespace tour
