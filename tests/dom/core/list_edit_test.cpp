// Lists as a road into the tree: edits through a node's own lists keep the tree whole, lists
// follow their owner's document, and element lists hold elements only.
#include <gtest/gtest.h>

#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"

namespace vn {
namespace {

// Every child points at its parent and stands in the one typed view that fits it, and every
// view item is a child: the invariant every edit must keep.
void ExpectConsistent(const TVnDOMElement& AElement) {
  uint32_t typed = 0;
  for (TVnDOMNode* c : AElement.ChildrenView()) {
    EXPECT_EQ(c->GetParent(), &AElement);
    const auto& view = c->GetNodeType() == ntAttribute ? AElement.AttributesView()
                       : c->GetNodeType() == ntElement ? AElement.ElementsView()
                                                       : AElement.CharNodesView();
    typed += view.IndexOf(c) >= 0;
  }
  EXPECT_EQ(typed, AElement.NodeCount());
  EXPECT_EQ(AElement.AttributesView().size() + AElement.ElementsView().size() + AElement.CharNodesView().size(),
            typed);
}

std::unique_ptr<TVnDOMElement> Sample() {
  auto e = std::make_unique<TVnDOMElement>();
  e->SetAttribute(u"k", u"1");
  e->AddElement(u"a");
  e->AddText(u"t");
  e->AddElement(u"b");
  return e;
}

TVnDOMNode* Make(TClass AClass) { return static_cast<TVnDOMNode*>(CreateInstance(AClass)); }

struct View {
  const char* Name;
  TVnDOMNodeListBase* (*List)(TVnDOMElement&);
  TClass Fits;           // a kind the view shows
  TVnDOMNodeType Holds;  // ntUnknown: any kind
};
const View kViews[] = {
    {"children", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetChildNodes(); },
     TVnDOMComment::StaticClass(), ntUnknown},
    {"attributes", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetAttributes(); },
     TVnDOMAttribute::StaticClass(), ntAttribute},
    {"elements", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetElements(); },
     TVnDOMElement::StaticClass(), ntElement},
    {"characters", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetCharNodes(); },
     TVnDOMCDATA::StaticClass(), ntText},
};

TEST(DomListEdits, EditsThroughANodesOwnListsKeepTheTreeWholeOthersAreRefused) {
  for (const View& v : kViews) {
    SCOPED_TRACE(v.Name);
    // Add adopts: the node is a child, in its typed view, at the list's position.
    auto e = Sample();
    TVnDOMNodeListBase* list = v.List(*e);
    Integer before = e->NodeCount();
    TVnDOMNode* added = list->Add(Make(v.Fits), rdpFirst);
    EXPECT_EQ((std::tuple{added->GetParent(), list->GetItem(0), e->NodeCount()}),
              std::tuple(e.get(), added, before + 1));
    EXPECT_THROW(list->Add(added), EVnDomHierarchyRequest);  // a child stays where it is
    ExpectConsistent(*e);

    // Delete takes the child out of the tree: gone without an interface on it (LSan), else
    // detached and given back.
    Integer count = list->Count();
    EXPECT_EQ((std::tuple{list->Delete(list->Last()), list->Count()}), std::tuple(nullptr, count - 1));
    IPtr<IVnDOMNode> held = list->First()->As<IVnDOMNode>();
    TVnDOMNode* first = list->First();
    EXPECT_EQ((std::tuple{list->Delete(first), first->GetParent()}), std::tuple(first, nullptr));
    ExpectConsistent(*e);
    held = nullptr;  // the interface owns it now and frees it

    // Clear takes only what the list shows.
    e = Sample();
    list = v.List(*e);
    Integer others = e->NodeCount() - list->Count();
    list->Clear();
    EXPECT_EQ((std::tuple{list->Count(), e->NodeCount()}), std::tuple(0, others));
    ExpectConsistent(*e);
  }

  // A typed view refuses what AddChild would put into another view, or into none.
  for (const View& v : kViews) {
    if (v.Holds == ntUnknown) continue;
    auto e = Sample();
    for (TClass kind : {TVnDOMAttribute::StaticClass(), TVnDOMElement::StaticClass(), TVnDOMText::StaticClass(),
                        TVnDOMProcessingInstruction::StaticClass()}) {
      std::unique_ptr<TVnDOMNode> n(Make(kind));
      if (n->GetNodeType() == v.Holds) continue;
      SCOPED_TRACE(std::string(v.Name) + " refuses " + UnicodeToUtf8(VnDOMNodeTypes[n->GetNodeType()]));
      EXPECT_EQ(test::MessageOf<EVnDomHierarchyRequest>([&] { v.List(*e)->Add(n.get()); }),
                Format(cVnDomListWrongKind, {VnDOMNodeTypes[n->GetNodeType()]}));
      EXPECT_EQ(n->GetParent(), nullptr);
    }
    ExpectConsistent(*e);
  }
  // No list of children takes a document, and nil adds nothing.
  auto e = Sample();
  TVnDOMDocument other;
  EXPECT_THROW(e->GetChildNodes()->Add(&other), EVnDomHierarchyRequest);
  EXPECT_EQ(e->GetChildNodes()->Add(nullptr), nullptr);
  ExpectConsistent(*e);
  // A caller's lists are typed too; the namespaces in scope are a read-only snapshot.
  TVnDOMElementList mine;
  TVnDOMText text;
  EXPECT_EQ(mine.Add(nullptr), nullptr);
  EXPECT_THROW(mine.Add(&text), EVnDomHierarchyRequest);
  EXPECT_EQ(mine.Count(), 0);
  auto doc = TVnDOMDocument::FromXML(u"<r xmlns:p=\"urn:p\"/>");
  TVnDOMAttrList* ns = doc->GetRootNode()->GetNamespaces();
  EXPECT_THROW(ns->Clear(), EVnDomNotSupported);
  EXPECT_THROW(ns->Delete(ns->First()), EVnDomNotSupported);
  EXPECT_EQ(doc->GetRootNode()->GetNamespaces()->Count(), 1);
}

TEST(DomListEdits, DocumentListsKeepTheRootPointer) {
  TVnDOMDocument doc;
  TVnDOMNode* root = doc.GetChildNodes()->Add(new TVnDOMElement(), rdpFirst);
  EXPECT_EQ((std::tuple{doc.GetRootNode(), doc.GetChildNodes()->Delete(root), doc.GetRootNode()}),
            std::tuple(root, nullptr, nullptr));
  doc.CreateRootNode(u"r");
  doc.GetChildNodes()->Clear();
  EXPECT_EQ(doc.GetRootNode(), nullptr);
}

TEST(DomListOwner, ListsFollowTheDocumentOfTheirOwnerPathListsHoldElementsOnly) {
  // The case rule and check option of GetItemEx are the owner's document's, read at the call:
  // after a move to another document and after the first one is freed (ASan sees stale reads).
  auto first = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* a = first->CreateRootNode(u"r")->AddElement(u"a");
  a->AddElement(u"Item");
  IPtr<IVnDOMElement> held = a->As<IVnDOMElement>();
  IPtr<IVnDOMElementList> list = held->GetElements();
  EXPECT_TRUE(list->GetElement(Variant(u"item")));

  TVnDOMDocument second;
  second.SetCaseSensitive(true);
  second.SetSelectCheckOption(coReturnNil);
  a->ParentNode()->RemoveChild(a);
  second.CreateRootNode(u"r")->AppendChild(a);
  EXPECT_EQ((std::tuple{bool(list->GetElement(Variant(u"item"))), bool(list->GetElement(Variant(u"Item")))}),
            std::tuple(false, true));

  second.GetRootNode()->RemoveChild(a);
  first.reset();
  // Detached: the unit's defaults (case-insensitive, raising).
  EXPECT_TRUE(list->GetElement(Variant(u"item")));
  EXPECT_THROW(list->GetElement(Variant(u"none")), EListError);

  // A path that selects anything but elements is refused, whatever else it selects.
  auto doc = TVnDOMDocument::FromXML(u"<r id=\"1\"><a/>t<b/></r>");
  TVnDOMElement* r = doc->GetRootNode();
  EXPECT_EQ(r->CreateElementList(u"*", TVnDOMSelectOptions{})->Count(), 2);
  EXPECT_EQ(r->CreateElementList(u"none", TVnDOMSelectOptions{})->Count(), 0);
  for (const char16_t* path : {u"@id", u"text()", u"node()"}) {
    SCOPED_TRACE(UnicodeToUtf8(path));
    EXPECT_THROW(r->CreateElementList(path, TVnDOMSelectOptions{}), EVnDomHierarchyRequest);
    EXPECT_THROW(r->As<IVnDOMElement>()->CreateElementList(path, TVnDOMSelectOptions{}), EVnDomHierarchyRequest);
  }
}

}  // namespace
}  // namespace vn
