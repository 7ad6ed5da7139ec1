// Lists as a road into the tree: edits through a node's own lists keep the tree whole, lists
// follow their owner's document, and element lists hold elements only.
#include <gtest/gtest.h>

#include <functional>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"

namespace vn {
namespace {

// Every child points at its parent, stands in the one typed view that fits it, and every view
// item is a child: the invariant every edit must keep.
void ExpectConsistent(const TVnDOMElement& AElement) {
  uint32_t attrs = 0, elems = 0, chars = 0;
  for (TVnDOMNode* c : AElement.ChildrenView()) {
    EXPECT_EQ(c->GetParent(), &AElement);
    switch (c->GetNodeType()) {
      case ntAttribute: ++attrs; EXPECT_GE(AElement.AttributesView().IndexOf(c), 0); break;
      case ntElement: ++elems; EXPECT_GE(AElement.ElementsView().IndexOf(c), 0); break;
      default: ++chars; EXPECT_GE(AElement.CharNodesView().IndexOf(c), 0); break;
    }
  }
  EXPECT_EQ(attrs, AElement.AttributesView().size());
  EXPECT_EQ(elems, AElement.ElementsView().size());
  EXPECT_EQ(chars, AElement.CharNodesView().size());
}

std::unique_ptr<TVnDOMElement> Sample() {
  auto e = std::make_unique<TVnDOMElement>();
  e->SetQualifiedName(u"e");
  e->SetAttribute(u"k", u"1");
  e->AddElement(u"a");
  e->AddText(u"t");
  e->AddElement(u"b");
  return e;
}

using ListOf = std::function<TVnDOMNodeListBase*(TVnDOMElement&)>;
using Make = std::function<TVnDOMNode*()>;

struct View {
  const char* Name;
  ListOf List;
  Make Fits;              // a detached node of the kind the view shows
  TVnDOMNodeType Holds;  // ntUnknown: any kind
};

const View kViews[] = {
    {"children", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetChildNodes(); },
     [] { return new TVnDOMComment(); }, ntUnknown},
    {"attributes", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetAttributes(); },
     [] {
       auto* a = new TVnDOMAttribute();
       a->SetQualifiedName(u"n");
       return a;
     },
     ntAttribute},
    {"elements", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetElements(); },
     [] { return new TVnDOMElement(); }, ntElement},
    {"characters", [](TVnDOMElement& e) -> TVnDOMNodeListBase* { return e.GetCharNodes(); },
     [] { return new TVnDOMCDATA(); }, ntText},
};

TEST(DomListEdits, EditsThroughANodesOwnListsKeepTheTreeWhole) {
  for (const View& v : kViews) {
    SCOPED_TRACE(v.Name);
    // Add adopts: the node is a child, in its typed view, at the list's position.
    auto e = Sample();
    TVnDOMNodeListBase* list = v.List(*e);
    Integer before = e->NodeCount();
    TVnDOMNode* added = list->Add(v.Fits(), rdpFirst);
    EXPECT_EQ(added->GetParent(), e.get());
    EXPECT_EQ(list->GetItem(0), added);
    EXPECT_EQ(e->NodeCount(), before + 1);
    ExpectConsistent(*e);
    // A node that is already a child elsewhere stays where it is.
    EXPECT_THROW(list->Add(added), EVnDomHierarchyRequest);

    // Delete removes the child from the tree; without an interface on it, it is gone (LSan).
    Integer count = list->Count();
    EXPECT_EQ(list->Delete(list->Last()), nullptr);
    EXPECT_EQ(list->Count(), count - 1);
    ExpectConsistent(*e);
    // One held by an interface lives on, detached, and comes back.
    IPtr<IVnDOMNode> held = list->First()->As<IVnDOMNode>();
    TVnDOMNode* first = list->First();
    EXPECT_EQ(list->Delete(first), first);
    EXPECT_EQ(first->GetParent(), nullptr);
    ExpectConsistent(*e);
    held = nullptr;  // the interface owns it now and frees it

    // Clear takes only what the list shows; the rest of the tree stays.
    e = Sample();
    list = v.List(*e);
    Integer others = e->NodeCount() - list->Count();
    list->Clear();
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(e->NodeCount(), others);
    ExpectConsistent(*e);
  }
}

TEST(DomListEdits, NodesOfAnotherKindAreRefused) {
  // Each typed view refuses what AddChild would put into another view, or into none.
  const Make kinds[] = {[] { return new TVnDOMAttribute(); }, [] { return new TVnDOMElement(); },
                        [] { return new TVnDOMText(); }, [] { return new TVnDOMProcessingInstruction(); }};
  for (const View& v : kViews) {
    if (v.Holds == ntUnknown) continue;
    auto e = Sample();
    TVnDOMNodeListBase* list = v.List(*e);
    for (const Make& make : kinds) {
      std::unique_ptr<TVnDOMNode> n(make());
      if (n->GetNodeType() == v.Holds) continue;
      SCOPED_TRACE(std::string(v.Name) + " refuses " + UnicodeToUtf8(VnDOMNodeTypes[n->GetNodeType()]));
      try {
        list->Add(n.get());
        FAIL() << "no exception";
      } catch (const EVnDomHierarchyRequest& ex) {
        EXPECT_EQ(ex.Message(), Format(cVnDomListWrongKind, {VnDOMNodeTypes[n->GetNodeType()]}));
      }
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
  EXPECT_EQ(mine.Add(nullptr), nullptr);
  EXPECT_EQ(mine.Count(), 0);
  TVnDOMText text;
  EXPECT_THROW(mine.Add(&text), EVnDomHierarchyRequest);
  TVnDOMAttrList attrs;
  EXPECT_THROW(attrs.Add(&text), EVnDomHierarchyRequest);
  auto doc = TVnDOMDocument::FromXML(u"<r xmlns:p=\"urn:p\"/>");
  TVnDOMAttrList* ns = doc->GetRootNode()->GetNamespaces();
  ASSERT_EQ(ns->Count(), 1);
  EXPECT_THROW(ns->Clear(), EVnDomNotSupported);
  EXPECT_THROW(ns->Delete(ns->First()), EVnDomNotSupported);
  EXPECT_EQ(doc->GetRootNode()->GetNamespaces()->Count(), 1);
}

TEST(DomListEdits, DocumentListsKeepTheRootPointer) {
  TVnDOMDocument doc;
  auto* root = new TVnDOMElement();
  root->SetQualifiedName(u"r");
  doc.GetChildNodes()->Add(root, rdpFirst);
  EXPECT_EQ(doc.GetRootNode(), root);
  EXPECT_EQ(doc.GetChildNodes()->Delete(root), nullptr);
  EXPECT_EQ(doc.GetRootNode(), nullptr);
  doc.CreateRootNode(u"r2");
  doc.GetChildNodes()->Clear();
  EXPECT_EQ(doc.GetRootNode(), nullptr);
  EXPECT_EQ(doc.NodeCount(), 0);
}

TEST(DomListOwner, ListsFollowTheDocumentOfTheirOwner) {
  // The case rule of GetItemEx is the owner's document's, read at the call: after a move to
  // another document and after the first one is freed (ASan sees any stale read).
  auto first = std::make_unique<TVnDOMDocument>();
  first->SetCaseSensitive(false);
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
  EXPECT_FALSE(list->GetElement(Variant(u"item")));  // case-sensitive, and nil instead of raising
  EXPECT_TRUE(list->GetElement(Variant(u"Item")));

  second.GetRootNode()->RemoveChild(a);
  first.reset();
  second.Clear();
  // Detached: the unit's defaults (case-insensitive, raising).
  EXPECT_TRUE(list->GetElement(Variant(u"item")));
  EXPECT_THROW(list->GetElement(Variant(u"none")), EListError);
}

TEST(DomListOwner, PathElementListsHoldElementsOnly) {
  // A path that selects anything but elements is refused, whatever else it selects.
  auto doc = TVnDOMDocument::FromXML(u"<r id=\"1\"><a/>t<b/></r>");
  TVnDOMElement* r = doc->GetRootNode();
  struct Case {
    const char16_t* Path;
    Integer Count;  // -1: refused
  };
  for (Case c : {Case{u"*", 2}, Case{u"@id", -1}, Case{u"text()", -1}, Case{u"node()", -1}, Case{u"nothing", 0}}) {
    SCOPED_TRACE(UnicodeToUtf8(c.Path));
    if (c.Count < 0) {
      try {
        r->CreateElementList(c.Path, TVnDOMSelectOptions{});
        FAIL() << "no exception";
      } catch (const EVnDomHierarchyRequest& ex) {
        EXPECT_EQ(ex.Message().rfind(u"A node of type ", 0), 0u);
      }
      EXPECT_THROW(r->As<IVnDOMElement>()->CreateElementList(c.Path, TVnDOMSelectOptions{}), EVnDomHierarchyRequest);
    } else {
      EXPECT_EQ(r->CreateElementList(c.Path, TVnDOMSelectOptions{})->Count(), c.Count);
    }
  }
}

}  // namespace
}  // namespace vn
