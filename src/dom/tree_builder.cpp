// TreeBuilder: nodes of a load, made from the load's pool and joined without re-checking.
#include "dom/tree_builder.h"

#include "dom/ns_scope.h"

namespace vn::detail {

TreeBuilder::TreeBuilder(TVnDOMNode* ATarget)
    : FTarget(ATarget),
      FDocument(ATarget->FDOMDocument),
      FNames(TVnDOMNode::NameTableOf(ATarget->FDOMDocument)),
      FPool(NodePool::Create()) {}

TreeBuilder::~TreeBuilder() { FPool->Seal(); }

template <class T>
T* TreeBuilder::Make() {
  T* node = new (*FPool) T();
  // Set now rather than by a walk when the node joins: the document its parent will have.
  node->FDOMDocument = FDocument;
  return node;
}

TVnDOMElement* TreeBuilder::NewElement(std::u16string_view AQName, uint32_t AAttributeCount) {
  auto* e = Make<TVnDOMElement>();
  e->FName.Set(AQName, FNames);
  if (AAttributeCount) {
    e->FAttrs.reserve(AAttributeCount, FPool);
    e->FChildren.reserve(AAttributeCount + 1, FPool);
  }
  return e;
}

void TreeBuilder::AddAttribute(TVnDOMElement* AElement, std::u16string_view AQName, std::u16string_view AStoredValue) {
  auto* a = Make<TVnDOMAttribute>();
  a->FName.Set(AQName, FNames);
  a->FNodeValue.AssignIn(*FPool, AStoredValue);
  if (a->IsNamespace()) gNamespaceEpoch.fetch_add(1, std::memory_order_relaxed);
  AElement->FChildren.push_back(a, FPool);
  AElement->FAttrs.push_back(a, FPool);
  // A detached element: joining it is all an attribute's SetParentNode would do.
  a->FParent = AElement;
}

TVnDOMText* TreeBuilder::NewText(std::u16string_view AStoredValue) {
  auto* t = Make<TVnDOMText>();
  t->FNodeValue.AssignIn(*FPool, AStoredValue);
  return t;
}

TVnDOMCDATA* TreeBuilder::NewCDATA(std::u16string_view AText) {
  auto* c = Make<TVnDOMCDATA>();
  c->FNodeValue.AssignIn(*FPool, AText);
  return c;
}

TVnDOMComment* TreeBuilder::NewComment(std::u16string_view AText) {
  auto* c = Make<TVnDOMComment>();
  c->FNodeValue.AssignIn(*FPool, AText);
  return c;
}

TVnDOMProcessingInstruction* TreeBuilder::NewInstruction(std::u16string_view ATarget, std::u16string_view AData) {
  auto* pi = Make<TVnDOMProcessingInstruction>();
  pi->FName.Set(ATarget, FNames);
  pi->FData.AssignIn(*FPool, AData);
  return pi;
}

void TreeBuilder::Append(TVnDOMNode* AParent, TVnDOMNode* AChild) {
  NodePool* pool = AParent == FTarget ? nullptr : FPool;
  AParent->FChildren.push_back(AChild, pool);
  if (AParent->FNodeType == ntElement) {
    if (PtrVector<TVnDOMNode>* typed = static_cast<TVnDOMElement*>(AParent)->TypedListFor(AChild))
      typed->push_back(AChild, pool);
  }
  if (AChild->FNodeType == ntElement) {
    AChild->SetParentNode(AParent);
  } else {
    // A leaf made here, of this library's own class, already knows its document and has no
    // interface half or namespace to refresh: joining is all that SetParentNode would do.
    AChild->FParent = AParent;
  }
  if (AParent->FNodeType == ntDocument && AChild->FNodeType == ntElement) {
    auto* doc = static_cast<TVnDOMDocument*>(AParent);
    if (!doc->FRootNode) doc->FRootNode = static_cast<TVnDOMElement*>(AChild);
  }
}

}  // namespace vn::detail
