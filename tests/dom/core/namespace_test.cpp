// Names and namespaces made on request, removal checks, and the side tables that hold the rare
// parts of nodes (interface halves, list objects) when addresses are reused or threads share them.
#include <gtest/gtest.h>

#include <thread>
#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"

namespace vn {
namespace {

TEST(DomNamespaces, ElementsAndAttributesMadeByURI) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"urn:a", u"a:root");
  ASSERT_TRUE(root->GetNamespaceDecl());

  // A URI in scope lends its prefix; an unknown one gets a declaration on the new element.
  auto* known = root->ElementByName(u"urn:a", u"item", coCreate);
  EXPECT_EQ(known->GetQualifiedName(), u"a:item");
  auto* fresh = root->ElementByName(u"urn:b", u"other", coCreate);
  EXPECT_EQ(fresh->FindNamespace(u"urn:b"), fresh->GetNamespaceDecl());
  EXPECT_EQ(root->ElementByName(u"urn:b", u"other", coReturnNil), fresh);
  EXPECT_THROW(root->ElementByName(u"urn:c", u"other", coRaise), EVnDomNotFound);

  // An attribute in a new namespace gets its declaration just before it.
  TVnDOMAttribute* at = known->AttributeByName(u"urn:q", u"q:x", true);
  ASSERT_TRUE(at->PreviousAttribute());
  EXPECT_EQ(at->PreviousAttribute()->GetQualifiedName(), u"xmlns:q");
  EXPECT_EQ(known->AttributeByName(u"urn:q", u"x"), at);
  EXPECT_THROW(known->AttributeByName(u"urn:none", u"x"), EVnDomNotFound);

  // Renaming the prefix moves the element to the namespace of the new prefix.
  known->SetPrefix(u"q");
  // The shared name of the others stays.
  EXPECT_EQ((std::tuple{known->GetNamespaceURI(), root->GetQualifiedName()}), std::tuple(u"urn:q", u"a:root"));
}

TEST(DomNamespaces, FindNamespaceWalksDeclarationsNearestFirstForeignNodesStay) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"r");
  root->SetAttribute(u"xmlns:p", u"urn:1");
  TVnDOMElement* mid = root->AddElement(u"m");
  mid->SetAttribute(u"xmlns:s", u"urn:1");
  TVnDOMElement* leaf = mid->AddElement(u"p:l");
  EXPECT_EQ((std::tuple{leaf->FindNamespace(u"urn:1"), leaf->GetNamespaces()->Count()}),
            std::tuple(mid->FindAttribute(u"xmlns:s"), 2));
  // Removing the declaration leaves the prefix without a namespace.
  root->RemoveAttribute(u"xmlns:p");
  EXPECT_EQ(leaf->GetNamespaceURI(), u"");

  // Removing a foreign node is an assertion.
  TVnDOMElement a, b;
  TVnDOMElement* child = b.AddElement(u"c");
  EXPECT_NE(test::MessageOf<EAssertionFailed>([&] { a.RemoveChild(child); }).find(cVnDomNotAChild), UnicodeString::npos);
  EXPECT_EQ(b.ElementCount(), 1);
  a.RemoveChild(nullptr);  // nothing happens
}

TEST(DomNamespaces, DeepCloneIsDetachedAndKeepsOrder) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"urn:a", u"a:r");
  root->SetAttribute(u"k", u"1");
  root->AddText(u"t");
  root->AddElement(u"a:c")->SetAttribute(u"z", u"2");
  std::unique_ptr<TVnDOMNode> clone = root->CloneNode(true);
  EXPECT_EQ(clone->GetXML(), root->GetXML());
  auto* e = static_cast<TVnDOMElement*>(clone.get());
  // A shallow clone has no attributes either: they are children too.
  EXPECT_EQ((std::tuple{clone->GetDOMDocument(), e->AttributeCount(), e->FirstElement()->GetAttribute(u"z"),
                        root->CloneNode(false)->NodeCount()}),
            std::tuple(nullptr, 2, u"2", 0));
}

TEST(DomSideTables, ReusedAddressesStartCleanAndThreadsShareTheTables) {
  // Freed nodes hand their address to the next ones: nothing of the old node may stick to it.
  for (int i = 0; i < 50; ++i) {
    auto* e = new TVnDOMElement();
    e->SetQualifiedName(u"e");
    e->AddElement(u"c");
    EXPECT_EQ(e->GetChildNodes()->Count(), 1);
    e->As<IVnDOMElement>();  // an interface taken and dropped frees e, its Impl and its list object
    TVnDOMElement fresh;
    EXPECT_EQ((std::tuple{fresh.GetDOMImpl(), fresh.GetChildNodes()->Count(), fresh.GetNamespaceURI()}),
              std::tuple(nullptr, 0, u""));
  }

  // Trees of different threads at once.
  auto work = [](int ASeed, size_t& ATotal) {
    auto doc = std::make_unique<TVnDOMDocument>();
    TVnDOMElement* root = doc->CreateRootNode(u"r" + IntToStr(ASeed));
    for (int i = 0; i < 2000; ++i) root->AddElement(u"e")->SetAttribute(u"n", IntToStr(i));
    IPtr<IVnDOMElementList> list = root->As<IVnDOMElement>()->GetElements();
    for (Integer i = 0; i < list->Count(); ++i)
      ATotal += list->GetItem(i).As<IVnDOMElement>()->GetAttrib(u"n").size() + root->GetChildNodes()->Count();
  };
  size_t totals[4] = {};
  std::thread threads[4];
  for (int t = 0; t < 4; ++t) threads[t] = std::thread(work, t, std::ref(totals[t]));
  for (auto& t : threads) t.join();
  for (size_t total : totals) EXPECT_EQ(total, totals[0]);
  EXPECT_GT(totals[0], 2000u * 2000u);
}

}  // namespace
}  // namespace vn
