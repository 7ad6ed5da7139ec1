// Nodes of a load share one block of memory: these cases would read freed memory or leak under
// the sanitizers if a loaded node outlived its memory or the memory outlived every node.
#include <gtest/gtest.h>

#include <tuple>

#include "vnxml/dom.h"

namespace vn {
namespace {

std::unique_ptr<TVnDOMDocument> Load(std::u16string_view AXML) { return TVnDOMDocument::FromXML(AXML); }

TEST(DomLoadedMemory, HeldNodesOutliveTheirDocumentAndMoveBetweenLoads) {
  IPtr<IVnDOMElement> held;
  {
    auto doc = Load(u"<r><a k=\"v\">text<b/></a><c/></r>");
    TVnDOMElement* a = doc->GetRootNode()->FirstElement();
    held = a->As<IVnDOMElement>();
    doc->GetRootNode()->RemoveChild(a);
  }
  // The document and its other nodes are gone; the held subtree still reads and edits.
  TVnDOMElement* a = static_cast<TVnDOMElement*>(TVnDOMObjectImpl::Node(held.Get()));
  EXPECT_EQ(a->GetXML(), u"<a k=\"v\">text<b /></a>");
  a->SetAttribute(u"k", u"longer value than before");
  a->AddElement(u"d");
  a->FirstElement()->SetNodeValue(u"x");
  EXPECT_EQ(a->GetXML(), u"<a k=\"longer value than before\">text<b>x</b><d /></a>");
  held = nullptr;  // the last node of the load goes, and its memory with it

  // Nodes move between documents of different loads.
  auto first = Load(u"<r><item n=\"1\"><sub/></item><item n=\"2\"/></r>");
  auto second = Load(u"<s/>");
  TVnDOMElement* item = first->GetRootNode()->FirstElement();
  {
    IPtr<IVnDOMElement> keep = item->As<IVnDOMElement>();
    first->GetRootNode()->RemoveChild(item);
    second->GetRootNode()->AppendChild(item);
  }
  first.reset();
  // Arrays that started in the first load's memory grow on the heap from now on.
  for (int i = 0; i < 50; ++i) item->AddElement(u"more")->AddText(u"t");
  item->SetAttribute(u"n", u"moved");
  TVnDOMElement* moved = second->GetRootNode()->FirstElement();
  EXPECT_EQ((std::tuple{moved->GetAttribute(u"n"), moved->ElementCount()}), std::tuple(u"moved", 51));
}

TEST(DomLoadedMemory, RepeatedAndFailedLoadsLeaveNoOrphans) {
  TVnDOMDocument doc;
  for (int i = 0; i < 20; ++i) doc.LoadXML(u"<r><a x=\"1\">t</a><!--c--><?p d?><![CDATA[z]]></r>");
  EXPECT_EQ(doc.GetRootNode()->NodeCount(), 4);
  TVnDOMElement* a = doc.GetRootNode()->FirstElement();
  for (int i = 0; i < 20; ++i) a->SetInnerXML(u"<b y=\"2\">u</b><c />");
  EXPECT_EQ(a->GetInnerXML(), u"<b y=\"2\">u</b><c />");

  // A failed load leaves no orphans.
  TVnDOMDocument failed;
  EXPECT_THROW(failed.LoadXML(u"<r><a k=\"v\">text<b></a></r"), EVnDomSyntax);
  // Whatever the failed load left in the tree is the tree's, and goes with it.
  TVnDOMElement fragmentHost;
  fragmentHost.SetQualifiedName(u"host");
  EXPECT_THROW(fragmentHost.SetInnerXML(u"<x a=\"1\"><y>text</y><z b=\"2"), Exception);
}

TEST(DomLoadedMemory, LoadedTextAndNamesEditInPlace) {
  auto doc = Load(u"<r a=\"1\" xmlns:p=\"urn:p\"><p:e p:b=\"2\">one</p:e><e>two</e></r>");
  TVnDOMElement* r = doc->GetRootNode();
  auto* e = r->FirstElement();
  e->SetQualifiedName(u"p:renamed");
  static_cast<TVnDOMText*>(e->CharNodesView()[0])->SetNodeValue(u"changed");
  static_cast<TVnDOMText*>(e->CharNodesView()[0])->AppendStr(u" again");
  r->AttributeByName(u"a")->SetNodeValue(u"9");
  const UnicodeString edited =
      u"<r a=\"9\" xmlns:p=\"urn:p\"><p:renamed p:b=\"2\">changed again</p:renamed><e>two</e></r>";
  EXPECT_EQ((std::tuple{r->GetXML(), e->GetNamespaceURI()}), std::tuple(edited, u"urn:p"));
  auto clone = r->CloneNode(true);
  doc.reset();
  EXPECT_EQ(clone->GetXML(), edited);
}

}  // namespace
}  // namespace vn
