// Lifetimes through the vendor-neutral interfaces. Each case would read freed memory or leak
// under the sanitizers if a rule broke.
#include <gtest/gtest.h>

#include "support/raises.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"
#include "vnxml/dom_messages.h"

namespace {

using namespace vn;
using test::ExpectRaises;
using test::U8;

TEST(PlatformDOMLifetime, ReferencesKeepWhatTheyReachAHeldInterfaceItsSubtree) {
  // A document that only an interface on its root holds lives as long as that interface.
  IPtr<IDOMElement> root = GetDOM()->createDocument(u"", u"r", nullptr)->get_documentElement();
  IPtr<IDOMElement> child = VnAddElement(root, u"c");
  EXPECT_EQ(U8(root->get_ownerDocument().As<IDOMNodeEx>()->get_xml()), "<r><c /></r>");

  // A removed node lives on in its interface and may join another tree.
  root->removeChild(child);
  IPtr<IDOMDocument> other = GetDOM()->createDocument(u"", u"o", nullptr);
  other->get_documentElement()->appendChild(child);
  child = nullptr;
  EXPECT_EQ(U8(other.As<IDOMNodeEx>()->get_xml()), "<o><c /></o>");

  // Nodes made and never attached go with their last interface.
  IPtr<IDOMDocument> doc = root->get_ownerDocument();
  doc->createElement(u"lost")->appendChild(doc->createTextNode(u"t"));
  doc->importNode(root, -1);
  doc->createAttribute(u"a");
  root = nullptr;
  EXPECT_TRUE(doc->get_documentElement());

  // An interface held when the tree is freed keeps its subtree.
  auto tree = TVnDOMDocument::FromXML(u"<r><c/></r>");
  IPtr<IDOMElement> held = tree->GetRootNode()->FirstElement()->As<IDOMElement>();
  ASSERT_TRUE(held);
  VnAddText(held, u"t");
  // The checked free refuses while an interface counts; deleting leaves the held node and its
  // ancestors below the document, detached.
  ExpectRaises<Exception>([&] { tree->Free(); }, Format(cVnDomDestroyedWhileCounted, {u"TVnDOMDocument"}));
  tree.reset();
  EXPECT_FALSE(held->get_parentNode()->get_parentNode());
  EXPECT_FALSE(held->get_ownerDocument());
  EXPECT_EQ(U8(held->get_parentNode().As<IDOMNodeEx>()->get_xml()), "<r><c>t</c></r>");

  // A node deleted under its interface leaves an interface that answers with an exception.
  auto lone = std::make_unique<TVnDOMElement>();
  IPtr<IDOMElement> orphan = lone->As<IDOMElement>();
  lone.reset();
  ExpectRaises<EVnDomException>([&] { orphan->get_tagName(); }, cVnDomObjectGone);
}

}  // namespace
