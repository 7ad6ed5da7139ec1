// Namespaces of loaded elements: own default declarations below the root, work per declaration
// that stays the same at any depth, and lookup caches that one document's edits leave alone.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "alloc_counter.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

// The first element named ALocal below AFrom, depth first.
TVnDOMElement* Find(TVnDOMElement* AFrom, std::u16string_view ALocal) {
  std::vector<TVnDOMElement*> stack{AFrom};
  while (!stack.empty()) {
    TVnDOMElement* e = stack.back();
    stack.pop_back();
    if (e->LocalNameView() == ALocal) return e;
    for (TVnDOMNode* c : e->ElementsView()) stack.push_back(static_cast<TVnDOMElement*>(c));
  }
  return nullptr;
}

TEST(DomNamespacesLoad, OwnDefaultNamespacesBelowTheRootAndUnprefixedChildrenWithout) {
  const char16_t* texts[] = {
      u"<r><b xmlns=\"v\"/></r>",
      u"<r xmlns=\"u\"><b xmlns=\"v\"/></r>",
      u"<r xmlns=\"u\"><x><b xmlns=\"v\"/></x></r>",
      u"<p:r xmlns:p=\"u\"><b xmlns=\"v\"/></p:r>",
      // Declared with a reference, and below a declaration of "" by another name.
      u"<r><b xmlns=\"&#118;\"/></r>",
      u"<r xmlns:=\"\" xmlns=\"\"><b xmlns=\"&#x76;\"/></r>",
  };
  // Every way into the builder: text, bytes through a stream, a fragment into an element.
  enum Way { kText, kStream, kFragment };
  for (const char16_t* text : texts)
    for (Way way : {kText, kStream, kFragment}) {
      SCOPED_TRACE(UnicodeToUtf8(text) + " way " + std::to_string(way));
      TVnDOMDocument doc;
      if (way == kFragment) {
        doc.LoadXML(u"<h xmlns=\"u\"/>");
        doc.GetRootNode()->SetInnerXML(text);
      } else if (way == kText) {
        doc.LoadXML(text);
      } else {
        TVnStringStream s(UnicodeToUtf8(text), cVnCodePageDefault);
        doc.LoadFromStream(s);
      }
      TVnDOMElement* top = doc.GetRootNode();
      TVnDOMElement* b = Find(top, u"b");
      ASSERT_NE(b, nullptr);
      ASSERT_NE(b->GetNamespaceDecl(), nullptr);
      EXPECT_EQ((std::tuple{b->GetNamespaceURI(), b->GetNamespaceDecl()->OwnerElement(),
                            static_cast<TVnDOMElement*>(b->ParentNode())->FindElement(u"v", u"b"),
                            top->CreateElementList(u"v", u"b", true)->Count()}),
                std::tuple(u"v", b, b, 1));
      // A child in the same namespace needs no declaration of its own.
      TVnDOMElement* c = b->AddElement(u"v", u"c");
      EXPECT_EQ((std::tuple{c->GetNamespaceURI(), c->GetXML()}), std::tuple(u"v", u"<c />"));
      // A later refresh of the subtree keeps the declaration and its value.
      top->SetAttribute(u"xmlns:gone", u"x");
      top->RemoveAttribute(u"xmlns:gone");
      EXPECT_EQ((std::tuple{b->GetNamespaceURI(), b->GetAttribute(u"xmlns")}), std::tuple(u"v", u"v"));
    }

  // An unprefixed child of an unprefixed parent does not inherit the default.
  auto doc = TVnDOMDocument::FromXML(u"<a xmlns=\"u\"><b/><p:c xmlns:p=\"u\"><d/></p:c></a>");
  TVnDOMElement* a = doc->GetRootNode();
  // A prefix between them puts the default in force again: d is in "u".
  EXPECT_EQ((std::tuple{a->GetNamespaceURI(), Find(a, u"b")->GetNamespaceURI(), Find(a, u"c")->GetNamespaceURI(),
                        Find(a, u"d")->GetNamespaceURI()}),
            std::tuple(u"u", u"", u"u", u"u"));
  EXPECT_EQ(doc->GetXML(), u"<a xmlns=\"u\"><b /><p:c xmlns:p=\"u\"><d /></p:c></a>");
}

// Bytes allocated by loading AText and freeing the tree.
size_t LoadWork(const std::u16string& AText, std::u16string_view ADeepestURI) {
  size_t before = test::AllocatedBytes();
  {
    TVnDOMDocument doc;
    doc.LoadXML(AText);
    TVnDOMElement* e = doc.GetRootNode();
    while (e->HasChildElements()) e = e->FirstElement();
    EXPECT_EQ(e->GetNamespaceURI(), ADeepestURI);
  }
  return test::AllocatedBytes() - before;
}

TEST(DomNamespacesLoad, NestedDeclarationsCostTheSameAtAnyDepthOtherDocumentsKeepTheirLookups) {
  // One new prefix per level, and the twin that redeclares the default namespace per level.
  using Tag = std::u16string (*)(const std::u16string& AIndex);
  const std::tuple<const char*, Tag, Tag> shapes[] = {
      {"prefix per level", [](const std::u16string& k) { return u"<p" + k + u":a xmlns:p" + k + u"=\"urn:n" + k + u"\">"; },
       [](const std::u16string& k) { return u"</p" + k + u":a>"; }},
      {"default per level", [](const std::u16string& k) { return u"<a xmlns=\"urn:n" + k + u"\">"; },
       [](const std::u16string&) { return std::u16string(u"</a>"); }},
  };
  for (const auto& [name, open, close] : shapes) {
    SCOPED_TRACE(name);
    size_t work[2];
    for (size_t levels : {50000u, 100000u}) {
      std::u16string text;
      for (size_t i = 0; i < levels; ++i) text += open(Utf8ToUnicode(std::to_string(i)));
      for (size_t i = levels; i-- > 0;) text += close(Utf8ToUnicode(std::to_string(i)));
      work[levels == 100000u] = LoadWork(text, u"urn:n" + Utf8ToUnicode(std::to_string(levels - 1)));
    }
    EXPECT_LT(work[1], work[0] * 5 / 2) << work[0] << " bytes at n, " << work[1] << " at 2n";
    RecordProperty(std::string(name) + " bytes at n, 2n", std::to_string(work[0]) + ", " + std::to_string(work[1]));
  }

  // Declaration changes in one document keep another's lookups.
  std::u16string text = u"<r";
  for (int i = 0; i < 40; ++i) text += u" xmlns:p" + IntToStr(i) + u"=\"urn:" + IntToStr(i) + u"\"";
  text += u"><c/></r>";
  auto kept = TVnDOMDocument::FromXML(text);
  auto edited = TVnDOMDocument::FromXML(text);
  TVnDOMElement* c = kept->GetRootNode()->FirstElement();
  ASSERT_NE(c->FindScopeDeclaration(u"xmlns:p1"), nullptr);
  // A lookup among many declarations, with nothing changed and with the other tree changed.
  size_t before = test::AllocatedBytes();
  EXPECT_EQ(c->FindScopeDeclaration(u"xmlns:p2")->GetNodeValue(), u"urn:2");
  const size_t quiet = test::AllocatedBytes() - before;
  edited->GetRootNode()->SetAttribute(u"xmlns:p3", u"urn:changed");
  before = test::AllocatedBytes();
  EXPECT_EQ(c->FindScopeDeclaration(u"xmlns:p3")->GetNodeValue(), u"urn:3");
  EXPECT_LE(test::AllocatedBytes() - before, quiet + 64);
  // Its own changes are seen at once.
  kept->GetRootNode()->SetAttribute(u"xmlns:p3", u"urn:new");
  EXPECT_EQ(c->FindScopeDeclaration(u"xmlns:p3")->GetNodeValue(), u"urn:new");
}

}  // namespace
}  // namespace vn
