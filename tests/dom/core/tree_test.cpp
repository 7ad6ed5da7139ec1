// Nodes, lists, names and leaves: positions, lookups, paths, stored values and edits.
#include <gtest/gtest.h>

#include <tuple>

#include "support/raises.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/variant.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"

namespace vn {
namespace {

UnicodeString Names(const TVnDOMNodeListBase& AList) {
  UnicodeString s;
  for (TVnDOMNode* n : AList) s += n->GetQualifiedName() + u",";
  return s;
}

TEST(DomList, InsertionByPositionAndReferenceTypedListsAtTheirEnds) {
  TVnDOMElement parent, other;
  parent.SetQualifiedName(u"p");
  TVnDOMElement* a = parent.AddElement(u"a");
  TVnDOMElement* b = parent.AddElement(u"b");
  TVnDOMElement* foreign = other.AddElement(u"f");
  parent.InsertElement(u"first", rdpFirst, b);
  parent.InsertElement(u"beforeB", rdpBefore, b);
  parent.InsertElement(u"afterA", rdpAfter, a);
  parent.InsertElement(u"frontForeign", rdpBefore, foreign);  // a reference from another list: front
  parent.InsertElement(u"endForeign", rdpAfter, foreign);     // ... or end
  parent.InsertElement(u"frontNil", rdpBefore, nullptr);
  EXPECT_EQ(Names(*parent.GetChildNodes()), u"frontNil,frontForeign,first,a,afterA,beforeB,b,endForeign,");

  TVnDOMElement e;
  e.SetQualifiedName(u"e");
  TVnDOMText* t = e.AddText(u"t");
  e.AddElement(u"x");
  // t is no element: the element list puts the new one at its front, the child list before t.
  e.InsertElement(u"y", rdpBefore, t);
  EXPECT_EQ(Names(*e.GetChildNodes()), u"y,#text,x,");
  e.InsertElement(u"z", rdpAfter, t);
  EXPECT_EQ(Names(*e.GetElements()) + u"|" + Names(*e.GetChildNodes()), u"y,x,z,|y,#text,z,x,");
}

TEST(DomList, NeighboursAndEmptyLists) {
  TVnDOMElement e;
  TVnDOMNodeList* list = e.GetChildNodes();
  EXPECT_THROW(list->First(), EVnDomNotFound);
  test::ExpectRaises<EVnDomNotFound>([&] { list->Last(); }, cVnDomListEmpty);
  TVnDOMElement* a = e.AddElement(u"a");
  TVnDOMElement* b = e.AddElement(u"b");
  TVnDOMElement stranger;
  // A node not in the list gives the first.
  EXPECT_EQ((std::tuple{list->Next(b), list->Previous(a), list->Next(&stranger)}), (std::tuple{nullptr, nullptr, a}));
  EXPECT_THROW(list->Previous(&stranger), EListError);
  EXPECT_THROW(list->GetItem(2), EListError);
  EXPECT_EQ(a->NextSibling(), b);
}

TEST(DomList, FindTakesTheLastMatchGetItemExByNumberNameAndDot) {
  TVnDOMElement e;
  TVnDOMElement* first = e.AddElement(u"item");
  TVnDOMElement* second = e.AddElement(u"ITEM");
  TVnDOMElementList* list = e.GetElements();
  // The default collation ignores case.
  EXPECT_EQ((std::tuple{list->Find(u"item", TVnDOMSelectOptions{}), list->Find(u"item", {soCaseSensitive})}),
            std::tuple(second, first));
  EXPECT_THROW(list->Find(u"a", {soCaseSensitive, soCaseInsensitive}), Exception);
  EXPECT_THROW(list->Find(u"a", {soCreate}), Exception);
  test::ExpectRaises<EVnDomNotFound>([&] { list->Find(u"none", {soRaise}); }, Format(cVnDomNoNodeForName, {u"none"}));
  TVnDOMElement* px = e.AddElement(u"p:x");
  // A qualified match by default.
  EXPECT_EQ((std::tuple{list->Find(u"x", TVnDOMSelectOptions{}), list->Find(u"x", {soLocalName})}),
            std::tuple(nullptr, px));

  // GetItemEx by number, name and dot.
  TVnDOMElement g;
  TVnDOMElementList* items = g.GetElements();
  EXPECT_EQ(items->GetItemEx(Variant(u"."), coRaise), &g);  // even on an empty list
  TVnDOMElement* ga = g.AddElement(u"a");
  EXPECT_EQ((std::tuple{items->GetItemEx(Variant(0), coRaise), items->GetItemEx(Variant(u"A"), coRaise),
                        items->GetItemEx(Variant(u"b"), coReturnNil)}),
            (std::tuple{ga, ga, nullptr}));
  EXPECT_THROW(items->GetItemEx(Variant(u"b"), coRaise), EListError);
  ASSERT_NE(items->GetItemEx(Variant(u"b"), coCreate), nullptr);
  EXPECT_THROW(items->GetItemEx(Variant(1.5), coRaise), EListError);
}

TEST(DomNode, ClearCloneChildrenRefusedAddsAndNodePaths) {
  TVnDOMElement e;
  e.SetQualifiedName(u"e");
  e.SetAttribute(u"k", u"1");
  EXPECT_TRUE(e.HasChilds());  // attributes are children
  e.SetAttribute(u"j", u"2");
  e.AddElement(u"c")->AddText(u"x");
  auto shallow = e.CloneNode(false);
  EXPECT_FALSE(shallow->HasChilds());
  auto deep = e.CloneNode(true);
  auto* de = static_cast<TVnDOMElement*>(deep.get());
  EXPECT_EQ(Names(*de->GetAttributes()) + u" " + de->FirstElement()->GetText(), u"k,j, x");
  e.Clear();
  EXPECT_EQ((std::tuple{e.AttributeCount(), e.HasChilds()}), std::tuple(0, false));

  // Adding refuses nodes that are in a tree or above the target.
  TVnDOMElement* c = e.AddElement(u"c");
  TVnDOMElement* g = c->AddElement(u"g");
  EXPECT_THROW(g->AddChild(c), EVnDomHierarchyRequest);
  auto loose = std::make_unique<TVnDOMElement>();
  loose->AddElement(u"x");
  TVnDOMElement* l = loose.get();
  g->AppendChild(loose.release());
  EXPECT_THROW(l->FirstElement()->AppendChild(l), EVnDomHierarchyRequest);

  // Node paths.
  TVnDOMDocument doc;
  TVnDOMElement* a = doc.CreateRootNode(u"a");
  TVnDOMElement* b = a->AddElement(u"x:b");
  b->SetAttribute(u"id", u"7 & 8");
  TVnDOMElement* plain = a->AddElement(u"b");
  TVnDOMElement detached;
  detached.SetQualifiedName(u"root");
  EXPECT_EQ(doc.NodePath(false, u"") + u"|" + a->NodePath(false, u"") + u"|" + b->NodePath(false, u"id") + u"|" +
                b->NodePath(true, u"ID") + u"|" + plain->NodePath(false, u"id") + u"|" +
                b->FindAttribute(u"id")->NodePath(false, u"") + u"|" + detached.AddElement(u"c")->NodePath(),
            u"|/a|/a/x:b[@id=\"7 & 8\"]|/a/b[@ID=\"7 & 8\"]|/a/b|/a/x:b/@id|root/c");
}

TEST(DomNames, CollationsFollowTheLinguisticOrder) {
  auto ci = TVnXPathCollationASCIICI::Class();
  auto cs = TVnXPathCollationCodepoint::Class();
  // "a" < "B": not code point order. Compare folds case beyond ASCII, Pos folds A-Z only.
  EXPECT_EQ((std::tuple{cs->Compare(u"a", u"B"), cs->Compare(u"a", u"A"), ci->Compare(u"a", u"A"),
                        ci->Compare(u"\u00E9t\u00E9", u"\u00C9T\u00C9")}),
            std::tuple(-1, -1, 0, 0));
  EXPECT_EQ((std::tuple{ci->Pos(u"\u00C9", u"x\u00E9"), ci->Pos(u"B", u"abc"), cs->Pos(u"B", u"abc")}),
            std::tuple(0, 2, 0));
  EXPECT_TRUE(ci->SameText(u"Name", u"nAME"));
  EXPECT_TRUE(ci->SameText(u"a\x01", u"a"));  // ignorable controls go through the collator
  EXPECT_EQ(ci->SortKey(u"ABC"), ci->SortKey(u"abc"));
}

TEST(DomLeaves, StoredFormsEditsOfCharacterDataAndAttributeNames) {
  TVnDOMElement e;
  TVnDOMAttribute* a = e.AddAttribute(u"a");
  a->SetStoredValue(u"x &amp; y");
  EXPECT_EQ(a->GetNodeValue(), u"x & y");
  a->SetNodeValue(u"it's \"a\"");
  EXPECT_EQ(a->GetStoredValue(), u"it's &quot;a&quot;");
  EXPECT_EQ(e.AddText(u"<")->GetStoredValue(), u"&lt;");
  TVnDOMText* t = e.AddText(u"");
  t->SetStoredValue(u"&#65;b");
  t->AppendStr(u"c");
  EXPECT_EQ(t->GetStoredValue(), u"Abc");  // decoded and encoded once: the reference is gone

  TVnDOMText* s = e.AddText(u"abcdef");
  EXPECT_EQ(s->Substring(2, 3) + u"|" + s->Substring(5, 10), u"bcd|ef");
  TVnDOMText* rest = s->SplitText(3);
  EXPECT_EQ((std::tuple{s->GetNodeValue(), s->NextSibling()}), std::tuple(u"abc", rest));
  s->InsertStr(2, u"X");
  s->DeleteStr(1, 1);
  s->ReplaceStr(2, 1, u"YZ");
  EXPECT_EQ(s->GetNodeValue(), u"XYZc");
  TVnDOMText lone;
  EXPECT_THROW(lone.SplitText(1), EVnDomException);

  // Attribute names.
  EXPECT_TRUE(e.AddAttribute(u"XMLNS")->IsNamespace());
  EXPECT_TRUE(e.AddAttribute(u"xmlns:p")->IsNamespace());
  EXPECT_EQ(e.FindAttribute(u"xmlns:p")->NamespacePrefix(), u"p");
  TVnDOMAttribute* lang = e.AddAttribute(u"xml:lang");
  EXPECT_FALSE(lang->IsNamespace());
  EXPECT_THROW(lang->NamespacePrefix(), EAssertionFailed);
  EXPECT_EQ(lang->GetNamespaceURI(), u"http://www.w3.org/XML/1998/namespace");
  TVnDOMProcessingInstruction pi;
  pi.SetQualifiedName(u"a:b");
  pi.SetData(u"d");
  EXPECT_EQ(pi.GetLocalName() + u"|" + pi.CloneNode(false)->GetQualifiedName(), u"b|a:b");
}

}  // namespace
}  // namespace vn
