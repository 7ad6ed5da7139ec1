// The loader's way of making nodes: from one pool per load, named through the document's name
// table, and joined to their parent with the same effects as AppendChild but none of the
// checks that a fresh node cannot fail.
#pragma once

#include <string_view>

#include "vnxml/dom_document.h"

namespace vn::detail {

class NameTable;

class TreeBuilder {
 public:
  /// Builds below ATarget. The nodes made here come from a new pool; ATarget's own arrays stay
  /// on the heap, as ATarget may outlive every node of the load.
  explicit TreeBuilder(TVnDOMNode* ATarget);
  /// The pool is left to the nodes.
  ~TreeBuilder();
  TreeBuilder(const TreeBuilder&) = delete;
  TreeBuilder& operator=(const TreeBuilder&) = delete;

  /// A detached element with room for AAttributeCount attributes.
  TVnDOMElement* NewElement(std::u16string_view AQName, uint32_t AAttributeCount);
  /// Adds an attribute to AElement, a new element of this builder that has not joined its parent.
  void AddAttribute(TVnDOMElement* AElement, std::u16string_view AQName, std::u16string_view AStoredValue);
  TVnDOMText* NewText(std::u16string_view AStoredValue);
  TVnDOMCDATA* NewCDATA(std::u16string_view AText);
  TVnDOMComment* NewComment(std::u16string_view AText);
  TVnDOMProcessingInstruction* NewInstruction(std::u16string_view ATarget, std::u16string_view AData);
  /// Makes AChild, a node of this builder, the last child of AParent.
  void Append(TVnDOMNode* AParent, TVnDOMNode* AChild);

 private:
  template <class T>
  T* Make();

  TVnDOMNode* FTarget;
  TVnDOMDocument* FDocument;
  NameTable* FNames;
  NodePool* FPool;
};

}  // namespace vn::detail
