// Tour: a typed view over an element. A schema class lists the children its element may hold;
// values are read and written as numbers and dates, and new elements go in schema order.
#include <cstdio>

#include "../purchase_order/purchase_order.h"
#include "sections.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"

namespace tour {

void Schema() {
  std::puts("== Schema: typed access in schema order ==");
  auto doc = vn::TVnDOMDocument::FromXML(u"<purchaseOrder><items/></purchaseOrder>");
  po::TPurchaseOrder order(doc->GetRootNode()->As<vn::IVnDOMElement>());

  // Set late rows first: each new element still lands in its place in the table.
  order.SetComment(u"Deliver after 5pm");
  order.ShipTo()->SetName(u"Alice Smith");
  order.SetOrderDate(vn::EncodeDate(2024, 3, 1));
  po::TItem* item = order.Items()->Add();
  item->SetQuantity(3);
  item->SetProductName(u"Rake");
  std::printf("%s\n", vn::UnicodeToUtf8(doc->GetXML()).c_str());

  // Typed reads convert the text; a missing optional row reads as zero and adds nothing.
  std::printf("quantity %u, ship date %g, comment \"%s\"\n", item->GetQuantity(), item->GetShipDate(),
              vn::UnicodeToUtf8(order.GetComment()).c_str());
  // A name outside the table is refused.
  try {
    order.GetNode(u"discount");
  } catch (const vn::EListError& e) {
    std::printf("GetNode(\"discount\"): %s\n", e.what());
  }
}

}  // namespace tour
