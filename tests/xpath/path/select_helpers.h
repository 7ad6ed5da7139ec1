// Helpers for selection tests: documents from text, and selections printed as short signatures.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "common/message_of.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"

namespace vn::test {

inline std::unique_ptr<TVnDOMDocument> LoadDoc(std::u16string_view AXML) {
  auto doc = std::make_unique<TVnDOMDocument>();
  doc->LoadXML(AXML);
  return doc;
}

/// An element by its "id" attribute if it has one, else by its qualified name; an attribute as
/// "@name"; other nodes by their node name ("#text", "#comment").
inline UnicodeString Signature(TVnDOMNode* ANode) {
  if (auto* e = CastObject<TVnDOMElement>(ANode)) {
    if (TVnDOMAttribute* id = e->FindAttribute(u"id")) return id->GetNodeValue();
    return e->GetQualifiedName();
  }
  if (ANode->GetNodeType() == ntAttribute) return u"@" + ANode->GetQualifiedName();
  return ANode->GetQualifiedName();
}

/// The nodes that APath selects from ANode, as signatures joined with " ".
inline UnicodeString Sel(TVnDOMNode* ANode, std::u16string_view APath, TVnDOMSelectOptions AOptions = {}) {
  std::unique_ptr<TVnDOMNodeList> list = CreateNodeList(ANode, APath, AOptions);
  UnicodeString s;
  for (TVnDOMNode* n : *list) s += (s.empty() ? u"" : u" ") + Signature(n);
  return s;
}

/// Runs AAction and expects an exception of class E whose message is AMessage.
template <class E, class F>
void ExpectError(F&& AAction, std::u16string_view AMessage) { EXPECT_EQ(MessageOf<E>(AAction), AMessage); }

}  // namespace vn::test
