// same_tree.h: two DOM trees compared node by node.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "vnxml/dom.h"

namespace vn::test {

// Both trees, node by node: kinds, names, values, namespaces, space handling and every list.
// Some files nest deeply: the walk keeps its own stack.
inline void ExpectSameTree(TVnDOMNode* ARootA, TVnDOMNode* ARootB, const std::string& AWhere) {
  std::vector<std::pair<TVnDOMNode*, TVnDOMNode*>> stack{{ARootA, ARootB}};
  while (!stack.empty()) {
    auto [a, b] = stack.back();
    stack.pop_back();
    ASSERT_EQ(a->GetNodeType(), b->GetNodeType()) << AWhere;
    EXPECT_EQ(a->GetQualifiedName(), b->GetQualifiedName()) << AWhere;
    EXPECT_EQ(a->GetNamespaceURI(), b->GetNamespaceURI()) << AWhere;
    EXPECT_EQ(a->GetPreserveSpace(), b->GetPreserveSpace()) << AWhere;
    if (a->GetNodeType() == ntElement) {
      auto* ea = static_cast<TVnDOMElement*>(a);
      auto* eb = static_cast<TVnDOMElement*>(b);
      EXPECT_EQ(ea->AttributeCount(), eb->AttributeCount()) << AWhere;
      EXPECT_EQ(ea->ElementCount(), eb->ElementCount()) << AWhere;
      EXPECT_EQ(ea->CharNodesView().size(), eb->CharNodesView().size()) << AWhere;
    } else if (a->GetNodeType() != ntDocument) {
      // The text as stored: decoding may rightly fail on a bad reference.
      EXPECT_EQ(a->GetXML(), b->GetXML()) << AWhere;
    }
    ASSERT_EQ(a->NodeCount(), b->NodeCount()) << AWhere;
    for (Integer i = 0; i < a->NodeCount(); ++i) stack.emplace_back(a->ChildAt(i), b->ChildAt(i));
  }
}

}  // namespace vn::test
