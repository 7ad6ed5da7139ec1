// The purchase order example: rows set in any order land in schema order, and a stored order
// reads back through the same classes.
#include <gtest/gtest.h>

#include "../../../examples/purchase_order/purchase_order.h"
#include "support/raises.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom.h"

namespace {

using namespace vn;

TEST(PurchaseOrder, BuildsInSchemaOrderAndReadsBack) {
  TVnDOMDocument doc;
  po::TPurchaseOrder order(doc.CreateRootNode(u"purchaseOrder")->As<IVnDOMElement>());
  po::TItem* item = order.Items()->Add();
  item->SetShipDate(EncodeDate(1999, 5, 21));
  item->SetUSPrice(39.98);
  item->SetPartNum(u"926-AA");
  order.SetComment(u"fast & cheap");
  order.BillTo()->SetZip(90952);
  order.ShipTo()->SetCountry(u"US");
  order.SetOrderDate(EncodeDate(1999, 10, 20));
  EXPECT_EQ(test::U8(doc.GetXML()),
            "<purchaseOrder orderDate=\"1999-10-20\"><shipTo country=\"US\" /><billTo><zip>90952</zip></billTo>"
            "<comment>fast &amp; cheap</comment><items><item partNum=\"926-AA\"><USPrice>39.98</USPrice>"
            "<shipDate>1999-05-21</shipDate></item></items></purchaseOrder>");

  // Reading rows of one occurrence fills in what the order lacks, each in its place.
  EXPECT_EQ(std::tuple(item->GetQuantity(), order.ShipTo()->GetCity()), std::tuple(0u, u""));
  EXPECT_EQ(test::U8(order.ShipTo()->GetXML()), "<shipTo country=\"US\"><city /></shipTo>");
  EXPECT_EQ(test::U8(item->GetXML()),
            "<item partNum=\"926-AA\"><quantity /><USPrice>39.98</USPrice><shipDate>1999-05-21</shipDate></item>");

  // Made again through the class reference, as a host that picks classes at run time would.
  TVnXMLSchemaElementClass orderClass = &TVnXMLSchemaElement::Create<po::TPurchaseOrder>;
  std::unique_ptr<TVnXMLSchemaElement> made = orderClass(doc.GetRootNode()->As<IVnDOMElement>());
  auto* again = static_cast<po::TPurchaseOrder*>(made.get());
  ASSERT_EQ(again->Items()->Count(), 1);
  EXPECT_EQ(std::tuple(again->GetOrderDate(), again->GetComment(), again->Items()->GetItem(0)->GetUSPrice(),
                       again->BillTo()->GetZip()),
            std::tuple(EncodeDate(1999, 10, 20), u"fast & cheap", 39.98, 90952.0));
}

}  // namespace
