// Freeing a loaded tree whole: an untouched load goes without visiting its nodes; any edit,
// interface or move makes it go node by node, and nothing is lost or read after it is freed
// (the sanitizers report either).
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

#include "dom/node_extras.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

// A document with namespaces declared at two levels, attributes and text: every kind of thing
// the pool holds for its nodes (names, scopes) and extras made by the load itself.
std::string Xml(int AItems) {
  std::string s = R"(<?xml version="1.0"?><!--c--><r xmlns="urn:a" xmlns:p="urn:p">)";
  for (int i = 0; i < AItems; ++i)
    s += "<p:i id=\"" + std::to_string(i) + "\" xmlns:q=\"urn:q\"><q:t a='x'>v&amp;" + std::to_string(i) +
         "</q:t><![CDATA[d]]></p:i>";
  return s + "</r>";
}

uint64_t FreeWorkOf(int AItems, const std::function<void(TVnDOMDocument&)>& AEdit) {
  auto doc = std::make_unique<TVnDOMDocument>();
  doc->LoadFromAnsiXML(Xml(AItems));
  if (AEdit) AEdit(*doc);
  uint64_t before = detail::FreeWork();
  doc.reset();
  return detail::FreeWork() - before;
}

TVnDOMElement* Item(TVnDOMDocument& ADoc, int AIndex) {
  return static_cast<TVnDOMElement*>(ADoc.GetRootNode()->ElementsView()[static_cast<uint32_t>(AIndex)]);
}

TEST(DomBulkFree, AnUntouchedLoadIsFreedWithoutVisitingItsNodes) {
  EXPECT_EQ(FreeWorkOf(10, nullptr), FreeWorkOf(1000, nullptr));
  // Reading makes no difference, lists and pending URIs (extras) included.
  auto read = [](TVnDOMDocument& ADoc) {
    EXPECT_EQ(Item(ADoc, 3)->GetNamespaceURI(), u"urn:p");
    EXPECT_GT(Item(ADoc, 3)->GetChildNodes()->Count(), 0);
    EXPECT_FALSE(ADoc.GetRootNode()->GetXML().empty());
  };
  EXPECT_EQ(FreeWorkOf(10, read), FreeWorkOf(1000, read));
}

TEST(DomBulkFree, EditsMakeTheFreeGoNodeByNode) {
  struct Case {
    const char* Name;
    std::function<void(TVnDOMDocument&)> Edit;
  };
  const Case cases[] = {
      {"value", [](TVnDOMDocument& d) { Item(d, 1)->AttributeByName(u"id")->SetNodeValue(u"new"); }},
      {"stored value", [](TVnDOMDocument& d) { Item(d, 1)->AttributeByName(u"id")->SetStoredValue(u"n&amp;"); }},
      {"rename", [](TVnDOMDocument& d) { Item(d, 1)->SetQualifiedName(u"p:renamed"); }},
      {"prefix", [](TVnDOMDocument& d) { Item(d, 1)->SetPrefix(u"q"); }},
      {"add", [](TVnDOMDocument& d) { Item(d, 1)->AddElement(u"extra")->AddText(u"t"); }},
      {"remove", [](TVnDOMDocument& d) { d.GetRootNode()->RemoveElement(Item(d, 1)); }},
      {"interface", [](TVnDOMDocument& d) { (void)Item(d, 1)->As<IVnDOMElement>(); }},
      {"namespace", [](TVnDOMDocument& d) { d.GetRootNode()->SetNamespaceURI(u"urn:other"); }},
      {"declaration", [](TVnDOMDocument& d) { Item(d, 1)->SetAttribute(u"xmlns:z", u"urn:z"); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Name);
    EXPECT_LT(FreeWorkOf(10, c.Edit), FreeWorkOf(100, c.Edit));
  }
}

TEST(DomBulkFree, PiecesLargerThanAChunkLiveAndGoWithTheirLoad) {
  // A long value and a long child array do not fit the pool's chunks and get blocks of their own.
  const std::string big(10000, 'x');
  std::string xml = "<r a=\"" + big + "\"><t>" + big + "</t>";
  for (int i = 0; i < 1000; ++i) xml += "<e/>";
  xml += "</r>";
  for (bool edit : {false, true}) {
    auto doc = std::make_unique<TVnDOMDocument>();
    doc->LoadFromAnsiXML(xml);
    TVnDOMElement* root = doc->GetRootNode();
    EXPECT_EQ((std::tuple{root->GetAttribute(u"a").size(), root->ElementCount(), root->FirstElement()->GetText().size()}),
              std::tuple(big.size(), 1001, big.size()));
    if (edit) root->LastElement()->SetAttribute(u"k", u"v");  // freed node by node
    doc.reset();
  }
}

TEST(DomBulkFree, NodesOutliveTheirDocumentWhereTheyMustAndNowhereElse) {
  // Held by an interface: the element, its subtree and its names live on.
  IPtr<IVnDOMElement> held;
  {
    TVnDOMDocument doc;
    doc.LoadFromAnsiXML(Xml(5));
    held = Item(doc, 2)->As<IVnDOMElement>();
  }
  EXPECT_EQ(held->GetQualifiedName(), u"p:i");
  EXPECT_NE(TVnDOMObjectImpl::Node(held.Get())->GetXML().find(u"<q:t a=\"x\">v&amp;2</q:t>"), UnicodeString::npos);
  held = nullptr;

  // Moved into another document: the source goes, the moved subtree stays with its new owner.
  TVnDOMDocument target;
  target.CreateRootNode(u"t");
  {
    TVnDOMDocument source;
    source.LoadFromAnsiXML(Xml(5));
    TVnDOMElement* moving = Item(source, 4);
    auto clone = moving->CloneNode(true);
    target.GetRootNode()->AppendChild(clone.release());
    TVnDOMNode* taken = moving;
    IPtr<IVnDOMNode> pin = taken->As<IVnDOMNode>();
    source.GetRootNode()->RemoveChild(taken);
    target.GetRootNode()->AppendChild(taken);
  }
  ASSERT_EQ(target.GetRootNode()->ElementCount(), 2);
  for (TVnDOMElement* e : {target.GetRootNode()->FirstElement(), target.GetRootNode()->LastElement()}) {
    EXPECT_EQ(e->GetAttribute(u"id"), u"4");
    EXPECT_EQ(e->FirstElement()->GetText(), u"v&4");
  }

  // A load into a loaded element: both loads are freed, the inner one with the outer tree.
  for (bool editInner : {false, true}) {
    TVnDOMDocument doc;
    doc.LoadFromAnsiXML(Xml(3));
    TVnDOMElement* e = Item(doc, 1);
    TVnMemoryStream in("<x k='1'>y</x>", 14);
    e->LoadFromStream(in, 0);
    EXPECT_EQ(e->LastElement()->GetQualifiedName(), u"x");
    if (editInner) e->LastElement()->SetAttribute(u"k", u"2");
  }
}

}  // namespace
}  // namespace vn
