// purchase_order: builds an order through its typed schema classes, then reads a stored order.
#include <cstdio>
#include <exception>

#include "purchase_order.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/xml_values.h"

namespace {
void Print(const vn::UnicodeString& AText) { std::printf("%s\n", vn::UnicodeToUtf8(AText).c_str()); }
}  // namespace

int main() {
  try {
    // Building: rows fill in schema order whatever order the program sets them in.
    vn::TVnDOMDocument doc;
    po::TPurchaseOrder order(doc.CreateRootNode(u"purchaseOrder")->As<vn::IVnDOMElement>());
    order.SetComment(u"Hurry, my lawn is going wild!");
    po::TItem* mower = order.Items()->Add();
    mower->SetPartNum(u"872-AA");
    mower->SetProductName(u"Lawnmower");
    mower->SetQuantity(1);
    mower->SetUSPrice(148.95);
    order.BillTo()->SetName(u"Robert Smith");
    order.ShipTo()->SetName(u"Alice Smith");
    order.ShipTo()->SetCountry(u"US");
    order.SetOrderDate(vn::EncodeDate(1999, 10, 20));
    Print(order.AsElement()->GetFormattedXML());
    // Reading a row of at least one occurrence creates it, in its place.
    std::printf("street \"%s\"\n", vn::UnicodeToUtf8(order.BillTo()->GetStreet()).c_str());
    Print(order.BillTo()->GetXML());

    // Reading: a loaded order answers through the same classes.
    auto loaded = vn::TVnDOMDocument::FromXML(
        u"<purchaseOrder orderDate=\"2001-02-03\"><items>"
        u"<item partNum=\"926-AA\"><productName>Baby Monitor</productName><quantity>2</quantity>"
        u"<USPrice>39.98</USPrice><shipDate>1999-05-21</shipDate></item></items></purchaseOrder>");
    po::TPurchaseOrder stored(loaded->GetRootNode()->As<vn::IVnDOMElement>());
    po::TItem* item = stored.Items()->GetItem(0);
    std::printf("%d item(s); first: %s x%u at %.2f, ships %s\n", stored.Items()->Count(),
                vn::UnicodeToUtf8(item->GetProductName()).c_str(), item->GetQuantity(), item->GetUSPrice(),
                vn::UnicodeToUtf8(vn::VnDateToXML(item->GetShipDate())).c_str());
  } catch (const std::exception& e) {
    std::fprintf(stderr, "purchase_order failed: %s\n", e.what());
    return 1;
  }
  return 0;
}
