// Compact storage: names shared per document, stored values in one block, walks without Impls.
#include <gtest/gtest.h>

#include <tuple>

#include "vnxml/dom.h"

namespace vn {
namespace {

TEST(DomStorage, NamesAreSharedWithinADocumentAndSurviveIt) {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* root = doc->CreateRootNode(u"root");
  TVnDOMElement* a = root->AddElement(u"p:item");
  TVnDOMElement* b = root->AddElement(u"p:item");
  EXPECT_EQ(a->QualifiedNameView().data(), b->QualifiedNameView().data());
  EXPECT_EQ((std::tuple{a->PrefixView(), a->LocalNameView()}), std::tuple(u"p", u"item"));

  // Renaming one leaves the other alone.
  b->SetQualifiedName(u"q:other");
  EXPECT_EQ((std::tuple{a->GetQualifiedName(), b->GetPrefix()}), std::tuple(u"p:item", u"q"));

  // A node built outside joins with its own record and then shares the document's.
  auto loose = std::make_unique<TVnDOMElement>();
  loose->SetQualifiedName(u"p:item");
  EXPECT_NE(loose->QualifiedNameView().data(), a->QualifiedNameView().data());
  TVnDOMNode* joined = root->AppendChild(loose.release());
  EXPECT_EQ(joined->QualifiedNameView().data(), a->QualifiedNameView().data());

  // The held node outlives its document and its name table: ASan reads freed memory otherwise.
  IPtr<IVnDOMElement> held = a->As<IVnDOMElement>();
  doc.reset();
  EXPECT_EQ((std::tuple{held->GetQualifiedName(), held->GetLocalName()}), std::tuple(u"p:item", u"item"));
  // Its old parent lives on, detached, as long as the chain is counted.
  IPtr<IVnDOMNode> oldParent = held->ParentNode();
  ASSERT_TRUE(oldParent);
  EXPECT_EQ(oldParent->GetQualifiedName(), u"root");
  oldParent->RemoveChild(held.As<IVnDOMNode>());
  oldParent = nullptr;

  // Moved into another document, it shares that document's record.
  TVnDOMDocument other;
  TVnDOMElement* otherRoot = other.CreateRootNode(u"r");
  TVnDOMElement* native = otherRoot->AddElement(u"p:item");
  TVnDOMNode* moved = TVnDOMObjectImpl::Node(held.Get());
  otherRoot->AppendChild(moved);
  EXPECT_EQ(moved->QualifiedNameView().data(), native->QualifiedNameView().data());
  held = nullptr;
  EXPECT_EQ(otherRoot->ElementCount(), 2);
}

TEST(DomStorage, NamesSplitAtTheFirstColonValuesMayBeSetFromThemselves) {
  TVnDOMElement e;
  e.SetQualifiedName(u"a:b:c");
  EXPECT_EQ((std::tuple{e.GetPrefix(), e.GetLocalName()}), std::tuple(u"a", u"b:c"));
  e.SetQualifiedName(u":x");  // an empty prefix is none
  EXPECT_EQ((std::tuple{e.GetQualifiedName(), e.GetPrefix()}), std::tuple(u"x", u""));
  e.SetPrefix(u"n");
  EXPECT_EQ(e.GetQualifiedName(), u"n:x");
  e.SetPrefix(u"");
  EXPECT_EQ(e.GetQualifiedName(), u"x");

  // Stored values may be set from themselves.
  e.SetQualifiedName(u"e");
  TVnDOMText* t = e.AddText(u"abcdef");
  t->SetStoredValue(t->GetStoredValue().substr(2));  // the source lies in the block being replaced
  EXPECT_EQ(t->GetNodeValue(), u"cdef");
  t->SetStoredValue(u"");
  EXPECT_TRUE(t->GetStoredValue().empty());
  TVnDOMAttribute* a = e.AddAttribute(u"x");
  a->SetNodeValue(u"\"q\"");
  a->SetStoredValue(a->GetStoredValue());
  EXPECT_EQ(a->GetNodeValue(), u"\"q\"");
  auto pi = std::make_unique<TVnDOMProcessingInstruction>();
  pi->SetData(u"data");
  pi->SetData(pi->GetData().substr(1));
  EXPECT_EQ(pi->GetData(), u"ata");
  auto clone = pi->CloneNode(false);
  EXPECT_EQ(static_cast<TVnDOMProcessingInstruction*>(clone.get())->GetData(), u"ata");
}

TEST(DomStorage, WalkingThroughObjectsMakesNoInterfaceHalf) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"root");
  for (int i = 0; i < 20; ++i) {
    TVnDOMElement* item = root->AddElement(u"item");
    item->SetAttribute(u"id", u"1");
    item->AddText(u"t");
  }
  size_t seen = 0;
  for (TVnDOMNode* n : *root->GetElements()) {
    auto* e = static_cast<TVnDOMElement*>(n);
    seen += e->GetAttribute(u"id").size() + e->GetText().size();
    if (e->PreviousSibling()) ++seen;
    if (e->NextElement()) ++seen;
    EXPECT_FALSE(e->FindAttribute(u"none"));
    EXPECT_EQ(e->GetDOMImpl(), nullptr);
    for (TVnDOMNode* c : e->ChildrenView()) EXPECT_EQ(c->GetDOMImpl(), nullptr);
  }
  EXPECT_EQ(seen, 20u * 2 + 19 + 19);
  EXPECT_EQ((std::tuple{root->GetDOMImpl(), doc.GetDOMImpl()}), std::tuple(nullptr, nullptr));
}

}  // namespace
}  // namespace vn
