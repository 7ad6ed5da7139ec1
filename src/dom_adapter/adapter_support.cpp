// The adapters' shared part, the conversion of arguments, and the Impls' road to the adapters.
#include "dom_adapter/adapter_support.h"

#include "dom_adapter/query.h"

namespace vn::detail {

namespace {
TVnDOMObjectImpl* ImplOf(IInterface* AInterface) {
  return CastObject<TVnDOMObjectImpl>(VnImplementor(AInterface));
}

// Only these are answered by adapters: a query for anything else never builds one.
bool IsAdapterInterface(const TGUID& AIID) {
  for (const TGUID& iid : {IDOMNode::IID, IDOMNodeEx::IID, IDOMNodeSelect::IID, IDOMPersist::IID,
                           IDOMNodeList::IID, IDOMNamedNodeMap::IID, IDOMCharacterData::IID, IDOMAttr::IID,
                           IDOMElement::IID, IDOMText::IID, IDOMComment::IID, IDOMCDATASection::IID,
                           IDOMDocumentType::IID, IDOMProcessingInstruction::IID, IDOMDocument::IID})
    if (iid == AIID) return true;
  return false;
}
}  // namespace

DOMAdapter::DOMAdapter(IPtr<IInterface> ATarget)
    : FTarget(std::move(ATarget)), FImpl(ImplOf(FTarget.Get())) {}

HRESULT DOMAdapter::Query(const TGUID& AIID, void** AObj) {
  if (void* own = Own(AIID)) {
    AddRef();
    *AObj = own;
    return S_OK;
  }
  // The library's own interfaces (and IVnObject, which turns this adapter back into its node)
  // come from the object.
  return FTarget->QueryInterface(AIID, AObj);
}

int32_t DOMAdapter::Release() noexcept {
  int32_t count = --FRefCount;
  if (count == 0) delete this;
  return count;
}

TVnDOMNode* NodeArg(IInterface* AInterface) {
  if (!AInterface) return nullptr;
  void* found = nullptr;
  TVnDOMNode* node = nullptr;
  if (AInterface->QueryInterface(IVnDOMNode::IID, &found) == S_OK && found) {
    IPtr<IVnDOMNode> held = IPtr<IVnDOMNode>::Attach(static_cast<IVnDOMNode*>(found));
    node = TVnDOMObjectImpl::Node(held.Get());
  }
  if (!node) throw EInvalidCast(cRtlInvalidCast);
  return node;
}

HRESULT QueryDOMAdapter(TVnDOMObjectImpl* AImpl, const TGUID& AIID, void** AObj) noexcept {
  *AObj = nullptr;
  if (!IsAdapterInterface(AIID)) return E_NOINTERFACE;
  try {
    *AObj = NewAdapter(AImpl->GetDOMObject(), AIID);
  } catch (...) {
    // A freed object, or no memory: a query answers with a code, never an exception.
    *AObj = nullptr;
  }
  return *AObj ? S_OK : E_NOINTERFACE;
}

}  // namespace vn::detail

namespace vn::detail {

DOMAdapter* NewNodeAdapter(TVnDOMNode* ANode);              // node_adapters.cpp
DOMAdapter* NewDocumentAdapter(TVnDOMDocument* ADocument);  // document_adapter.cpp
DOMAdapter* NewListAdapter(TVnDOMNodeListBase* AList);      // list_adapter.cpp

IInterface* NewAdapter(TVnDOMObject* AObject, const TGUID& AIID) {
  std::unique_ptr<DOMAdapter> adapter;
  if (auto* list = CastObject<TVnDOMNodeListBase>(AObject))
    adapter.reset(NewListAdapter(list));
  else if (auto* doc = CastObject<TVnDOMDocument>(AObject))
    adapter.reset(NewDocumentAdapter(doc));
  else if (auto* node = CastObject<TVnDOMNode>(AObject))
    adapter.reset(NewNodeAdapter(node));
  else
    return nullptr;
  // Every adapter interface derives from IInterface alone, which sits at its start.
  auto* found = static_cast<IInterface*>(adapter->Own(AIID));
  if (!found) return nullptr;
  adapter.release();
  found->_AddRef();
  return found;
}

}  // namespace vn::detail
