// What a node needs only now and then: list objects made on request, a pending namespace URI
// and the events of loads.
#pragma once

#include <memory>

#include "dom/name_table.h"
#include "vnxml/dom_lists.h"

namespace vn::detail {

/// The failure events of loads into a node; few nodes have any.
struct ParseEvents {
  TVnDOMParseError Warning;
  TVnDOMParseError Error;
  TVnDOMParseError FatalError;
};

struct NodeExtras {
  std::unique_ptr<TVnDOMNodeList> ChildNodes;
  std::unique_ptr<TVnDOMAttrList> Attributes;
  std::unique_ptr<TVnDOMElementList> Elements;
  std::unique_ptr<TVnDOMNodeList> CharNodes;
  std::unique_ptr<TVnDOMAttrList> Namespaces;
  /// A URI held while there is nothing to attach it to (FNamespaceSet tells whether it counts).
  UnicodeString NamespaceURI;
  /// On a document: the names of its nodes.
  std::unique_ptr<NameTable> Names;
  std::unique_ptr<ParseEvents> Events;
};

/// Nodes this thread has freed one by one (a loaded tree dropped whole counts none); for tests
/// that compare the work of two frees.
uint64_t FreeWork() noexcept;

/// A static name record over a string literal.
constexpr NameRec FixedName(const char16_t* AText, uint32_t ALength) {
  return NameRec{NameRec::kStatic, ALength, NameRec::kNoColon, 0, nullptr, AText, nullptr};
}

/// Puts ANode into AItems by position and reference: a reference not in AItems counts as none.
void InsertByPosition(PtrVector<TVnDOMNode>& AItems, TVnDOMNode* ANode, TVnDOMNode* ARefNode,
                      TVnDOMPosition APosition);

/// The last node of AItems with the local name (and URI, when given), under ACtx's collation.
TVnDOMNode* FindInItems(const PtrVector<TVnDOMNode>& AItems, const TVnDOMObject& ACtx,
                        std::u16string_view ANamespaceURI, std::u16string_view ALocalName);
/// The last node of AItems named AName under AOptions (collation and match from ACtx by default).
TVnDOMNode* FindInItems(const PtrVector<TVnDOMNode>& AItems, const TVnDOMObject& ACtx, std::u16string_view AName,
                        TVnDOMSelectOptions AOptions);

}  // namespace vn::detail
