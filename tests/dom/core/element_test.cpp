// Elements: namespace declarations made on insertion, pending URIs, xml:space, lookups, text.
#include <gtest/gtest.h>

#include <tuple>

#include "vnxml/common/sysutils.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"
#include "support/work_counter.h"

VN_TEST_COUNT_ALLOCATIONS()

namespace vn {
namespace {

UnicodeString AttrNames(TVnDOMElement* AElement) {
  UnicodeString s;
  for (TVnDOMAttribute* a : *AElement->GetAttributes()) s += a->GetQualifiedName() + u"=" + a->GetNodeValue() + u",";
  return s;
}

TEST(DomElement, NamespaceDeclarationsOnInsertion) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"u", u"root");
  // An unprefixed child with no URI of its own stays out of the default namespace.
  TVnDOMElement* plain = root->AddElement(u"c");
  EXPECT_EQ(plain->GetNamespaceURI(), u"");
  // A new prefix gets its declaration on the new element.
  TVnDOMElement* p = root->AddElement(u"v", u"p:a");
  EXPECT_EQ(AttrNames(p), u"xmlns:p=v,");
  // A URI declared for the same prefix above needs no new attribute.
  TVnDOMElement* again = p->AddElement(u"v", u"p:b");
  EXPECT_EQ((std::tuple{again->AttributeCount(), again->GetNamespaces()->Count()}), std::tuple(0, 2));
  EXPECT_EQ(p->ElementByName(u"w", u"none", coReturnNil), nullptr);
}

TEST(DomElement, URIsAcrossDetachmentMovesAndRemovedDeclarations) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"root");
  TVnDOMElement* a = root->AddElement(u"v", u"p:a");
  IPtr<IVnDOMElement> held = a->As<IVnDOMElement>();
  root->AddElement(u"other");
  root->RemoveChild(a);
  EXPECT_EQ(a->GetNamespaceURI(), u"v");  // answered from the pending value now
  held->RemoveAttribute(u"xmlns:p");
  EXPECT_EQ(a->GetNamespaceURI(), u"v");
  held = nullptr;

  // An attribute moved keeps its URI.
  TVnDOMElement* from = root->AddElement(u"from");
  TVnDOMElement* to = root->AddElement(u"to");
  TVnDOMAttribute* attr = from->AttributeByName(u"urn:x", u"q:k", true);
  IPtr<IVnDOMAttribute> heldAttr = attr->As<IVnDOMAttribute>();
  from->RemoveChild(attr);
  EXPECT_EQ(attr->GetNamespaceURI(), u"urn:x");
  to->AppendChild(attr);
  EXPECT_EQ((std::tuple{AttrNames(to), attr->GetNamespaceURI()}), std::tuple(u"xmlns:q=urn:x,q:k=,", u"urn:x"));

  // Removing a declaration drops the links to it.
  root->SetAttribute(u"xmlns:p", u"v");
  TVnDOMElement* child = root->AddElement(u"p:c");
  TVnDOMAttribute* pa = child->AddAttribute(u"p:k");
  EXPECT_EQ(child->GetNamespaceURI(), u"v");
  root->RemoveAttribute(u"xmlns:p");  // freed: nothing may still point at it
  EXPECT_EQ((std::tuple{child->GetNamespaceURI(), pa->GetNamespaceURI(), child->GetNamespaces()->Count()}),
            std::tuple(u"", u"", 0));
}

TEST(DomElement, XmlSpaceInheritance) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"root");
  TVnDOMElement* keep = root->AddElement(u"keep");
  keep->SetPreseveSpace(true);
  EXPECT_EQ(keep->GetAttribute(u"xml:space"), u"preserve");
  EXPECT_TRUE(keep->AddElement(u"child")->GetPreserveSpace());
  EXPECT_FALSE(root->AddElement(u"other")->GetPreserveSpace());
  // An element with its own xml:space keeps it under any parent.
  auto moved = std::make_unique<TVnDOMElement>();
  moved->SetAttribute(u"xml:space", u"PRESERVE");
  TVnDOMElement* m = root->Append(std::move(moved));
  EXPECT_EQ((std::tuple{m->GetPreserveSpace(), m->AddText(u" ")->GetPreserveSpace()}), std::tuple(true, true));
}

TEST(DomElement, AttributesByNameElementListsAndNeighbours) {
  TVnDOMElement e;
  EXPECT_EQ(e.GetAttribute(u"absent"), u"");
  EXPECT_TRUE(e.HasAttribute(u"absent"));  // reading created it
  e.SetAttribute(u"k", u"a<b");
  EXPECT_THROW(e.GetAttributeNS(u"urn:n", u"k"), EVnDomNotFound);
  EXPECT_THROW(e.AttributeByName(u"zz", {soRaise}), EVnDomNotFound);
  EXPECT_THROW(e.NodeByName(e.GetAttributes(), u"zz", {soCreate}, nullptr), Exception);
  e.RemoveAttribute(u"k");
  EXPECT_FALSE(e.HasAttribute(u"k"));
  EXPECT_THROW(e.RemoveAttribute(u"urn:n", u"k"), EVnDomNotFound);

  // Element lists and neighbours.
  TVnDOMElement a;
  a.SetQualifiedName(u"a");
  TVnDOMElement* b = a.AddElement(u"b");
  TVnDOMElement* inner = b->AddElement(u"a");
  a.AddElement(u"x:a");
  auto all = a.CreateElementList(u"a", true);
  ASSERT_EQ(all->Count(), 2);
  EXPECT_EQ((std::tuple{all->GetItem(0), all->GetItem(1)}), std::tuple(&a, inner));  // itself first
  EXPECT_EQ((std::tuple{a.CreateElementList(u"*:a", true)->Count(), a.CreateElementList(u"a", false)->Count()}),
            std::tuple(3, 1));
  EXPECT_THROW(a.CreateElementList(u"a", true, {soRaise}), Exception);
  EXPECT_EQ((std::tuple{b->NextElement()->GetQualifiedName(), b->PreviousElement()}), std::tuple(u"x:a", nullptr));
  EXPECT_THROW(inner->FirstElement(), EVnDomNotFound);
}

TEST(DomElement, TextValuesAndNormalizing) {
  TVnDOMElement a;
  a.AddText(u"x");
  a.AddComment(u" c ");
  a.AddElement(u"b")->AddText(u"y");
  a.AddText(u"z");
  a.AddCDATA(u"<d>");
  EXPECT_EQ((std::tuple{a.GetNodeValue(), a.GetText()}), std::tuple(u"xz<d>", u"x c z<d>y"));
  a.SetNodeValue(u"new & old");
  // The CDATA section stays; reading one past the last adds one.
  EXPECT_EQ((std::tuple{a.GetCharNodes()->Count(), a.GetNodeValue(), a.GetCDATA(0)->GetNodeValue(),
                        a.GetCDATA(1)->GetNodeValue()}),
            std::tuple(2, u"<d>new & old", u"<d>", u""));
  EXPECT_THROW(a.GetCDATA(5), EListError);
  a.SetAsInteger(42);
  EXPECT_EQ(a.GetAsInteger(), 0);  // the CDATA sections stay part of the value: "<d>42"
  TVnDOMElement n;
  n.SetAsInteger(42);
  EXPECT_EQ(n.GetAsInteger(), 42);
  a.SetInnerXML(u"");
  EXPECT_EQ(a.ElementCount(), 0);
  EXPECT_NE(a.GetCharNodes()->Count(), 0);

  // Normalizing merges neighbouring text only.
  TVnDOMElement m;
  m.AddText(u"a");
  m.AddText(u"&");
  m.AddComment(u"c");
  m.AddText(u"b");
  m.AddCDATA(u"d");
  m.AddText(u"e");
  m.NormalizeTextNodes();
  EXPECT_EQ((std::tuple{m.GetChildNodes()->Count(), m.GetCharNodes()->GetItem(0)->GetNodeValue()}),
            std::tuple(5, u"a&"));
}

TEST(DomElement, OutputOfElementsAndLeaves) {
  TVnDOMDocument doc;
  TVnDOMElement* a = doc.CreateRootNode(u"a");
  a->AddElement(u"b")->AddText(u"x");
  a->AddElement(u"c");
  EXPECT_EQ((std::tuple{a->GetXML(), a->GetFormattedXML(), a->GetInnerXML()}),
            std::tuple(u"<a><b>x</b><c /></a>", u"<a>\r\n  <b>x</b>\r\n  <c />\r\n</a>", u"<b>x</b><c />"));
  a->SetAttribute(u"k", u"v\"");
  EXPECT_EQ(a->FindAttribute(u"k")->GetXML(), u" k=\"v&quot;\"");
}

// The hostile shapes. Declarations and elements grow together: work that grows with their
// product (each element copying the declarations in force) shows as a factor near four.
TEST(DomScale, WideTreeUnderManyDeclarationsAndManyAttributesOnOneElement) {
  test::ExpectLinearWork([](size_t n) {
    auto root = std::make_unique<TVnDOMElement>();
    root->SetQualifiedName(u"root");
    for (Integer i = 0; i < static_cast<Integer>(n); ++i)
      root->AddAttribute(u"xmlns:p" + IntToStr(i))->SetNodeValue(u"urn:" + IntToStr(i));
    TVnDOMDocument doc;
    TVnDOMElement* r = static_cast<TVnDOMElement*>(doc.AppendChild(root.release()));
    for (size_t i = 0; i < 2 * n; ++i) r->AddElement(u"urn:99", u"p99:c");
    EXPECT_EQ(r->ElementCount(), static_cast<Integer>(2 * n));
    TVnDOMElement* last = r->LastElement();
    EXPECT_EQ((std::tuple{last->AttributeCount(), last->GetNamespaceURI(), last->GetNamespaces()->Count()}),
              std::tuple(0, u"urn:99", static_cast<Integer>(n)));
  }, 5000);

  test::ExpectLinearWork([](size_t n) {
    TVnDOMDocument doc;
    TVnDOMElement* r = doc.CreateRootNode(u"root");
    for (size_t i = 0; i < n; ++i) r->AddAttribute(u"a" + IntToStr(static_cast<Integer>(i)))->SetNodeValue(u"v");
    EXPECT_EQ(r->AttributeCount(), static_cast<Integer>(n));
  }, 50000);
}

}  // namespace
}  // namespace vn
