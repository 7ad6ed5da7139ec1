// The two halves of DOM objects: Impls made on demand, counted up the parent chain, and freed
// with the last release. Chains are created and released with loops, never by recursion, so a
// node a million levels deep can be held as an interface.
#include "vnxml/dom_object.h"

#include <mutex>
#include <unordered_map>
#include <vector>

#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"
#include "vnxml/dom_node.h"

namespace vn {

const char16_t* const VnDOMNodeTypes[13] = {u"Unknown",  u"Element",  u"Attribute",
                                            u"Text",     u"CDATA",    u"EntityRef",
                                            u"Entity",   u"ProcessingInstruction", u"Comment",
                                            u"Document", u"DocumentType", u"DocumentFragment",
                                            u"Notation"};

TVnDOMSelectMatchOption DefaultSelectMatchOption = soQualifiedName;
bool DefaultPreserveCase = false;
TVnDOMSelectCheckOption DefaultSelectCheckOption = coRaise;
TVnXPathCollationClass DefaultXPathCollation = TVnXPathCollationASCIICI::Class();

// ---- TVnDOMObject ----

namespace {
// Impls of objects that have one. Few objects ever get an interface, so a table beats a
// pointer in every node; trees of different threads may use it at once.
struct ImplTable {
  std::mutex Lock;
  std::unordered_map<const TVnDOMObject*, TVnDOMObjectImpl*> Map;
};
ImplTable& Impls() {
  // Never destroyed: documents held in static storage are freed after function-local statics.
  static ImplTable& table = *new ImplTable;
  return table;
}
}  // namespace

TVnDOMObjectImpl* TVnDOMObject::LookupImpl() const noexcept {
  ImplTable& t = Impls();
  std::lock_guard<std::mutex> guard(t.Lock);
  auto it = t.Map.find(this);
  return it == t.Map.end() ? nullptr : it->second;
}

void TVnDOMObject::SetDOMImpl(TVnDOMObjectImpl* AImpl) {
  if (!AImpl && !FHasImpl) return;
  ImplTable& t = Impls();
  std::lock_guard<std::mutex> guard(t.Lock);
  if (AImpl)
    t.Map[this] = AImpl;
  else
    t.Map.erase(this);
  FHasImpl = AImpl != nullptr;
}

TVnDOMObject::TVnDOMObject() { SetAutoDestroy(false); }

TVnDOMObject::~TVnDOMObject() {
  if (TVnDOMObjectImpl* impl = GetDOMImpl()) {
    TVnDOMObject::SetDOMImpl(nullptr);
    impl->FDOMObject = nullptr;
    // An Impl nobody counts on goes with its object; one still counted from outside is cut loose
    // and frees itself at its last release.
    if (impl->GetRefCount() == 0) {
      TVnDOMObjectImpl::ReleaseChain(impl->FParent);
      impl->FParent = nullptr;
      delete impl;
    }
  }
}

TVnDOMObjectImpl* TVnDOMObject::EnsureImpl() {
  if (FHasImpl) return LookupImpl();
  // Ancestors without an Impl get theirs first, top down, each counting on its parent's.
  std::vector<TVnDOMObject*> chain;
  TVnDOMObjectImpl* parentImpl = nullptr;
  for (TVnDOMObject* o = this; o; o = o->FParent) {
    if (o->FHasImpl) {
      parentImpl = o->LookupImpl();
      break;
    }
    chain.push_back(o);
  }
  TVnDOMObjectImpl* impl = nullptr;
  for (size_t i = chain.size(); i-- > 0;) {
    TVnDOMObject* o = chain[i];
    impl = o->CreateDOMImpl();
    o->SetDOMImpl(impl);
    if (o->FParent) impl->SetParentImpl(parentImpl);
    parentImpl = impl;
  }
  return impl;
}

HRESULT TVnDOMObject::QueryInterface(const TGUID& AIID, void** AObj) {
  HRESULT r = EnsureImpl()->QueryInterface(AIID, AObj);
  if (r != E_NOINTERFACE) return r;
  return QueryObjectInterface(AIID, AObj);
}

HRESULT TVnDOMObject::QueryObjectInterface(const TGUID& AIID, void** AObj) {
  return TVnObject::QueryInterface(AIID, AObj);
}

int32_t TVnDOMObject::_AddRef() { return EnsureImpl()->_AddRef(); }

int32_t TVnDOMObject::_Release() {
  TVnDOMObjectImpl* impl = GetDOMImpl();
  if (!impl) throw Exception(cVnDomNoImpl);
  return impl->_Release();
}

void TVnDOMObject::Free() {
  TVnDOMObjectImpl* impl = GetDOMImpl();
  if (impl && impl->GetRefCount() > 0) throw Exception(cVnDomDestroyedWhileCounted, {ClassName()});
  delete this;
}

bool TVnDOMObject::CanAutoDestroy() const {
  if (FParent && !FParent->FDestroying) return false;
  if (GetRefCount() != 0) return false;
  return !FDestroying;
}

bool TVnDOMObject::GetCaseSensitive() const { return GetCollation() != TVnXPathCollationASCIICI::Class(); }

TVnXPathCollationClass TVnDOMObject::GetCollation() const {
  return FDOMDocument ? FDOMDocument->GetCollation() : DefaultXPathCollation;
}

TVnDOMSelectMatchOption TVnDOMObject::GetSelectMatchOption() const {
  return FDOMDocument ? FDOMDocument->GetSelectMatchOption() : DefaultSelectMatchOption;
}

void TVnDOMObject::SetDOMDocument(TVnDOMDocument* ADocument) { FDOMDocument = ADocument; }

void TVnDOMObject::SetParentNode(TVnDOMObject* AParent) {
  FParent = AParent;
  if (FDestroying) return;
  if (AParent) {
    if (AParent->FDOMDocument != FDOMDocument) SetDOMDocument(AParent->FDOMDocument);
  } else {
    SetDOMDocument(nullptr);
  }
  if (TVnDOMObjectImpl* impl = GetDOMImpl()) impl->SetParentImpl(AParent ? AParent->EnsureImpl() : nullptr);
}

void TVnDOMObject::BeforeDestruction() { FDestroying = true; }

void TVnDOMObject::EnsureBeforeDestruction() {
  if (FBeforeDestructionDone) return;
  FBeforeDestructionDone = true;
  BeforeDestruction();
}

// ---- TVnDOMObjectImpl ----

TVnDOMObjectImpl::TVnDOMObjectImpl(TVnDOMObject* AObject) : FDOMObject(AObject) { SetAutoDestroy(false); }

TVnDOMObjectImpl::~TVnDOMObjectImpl() {
  if (TVnDOMObject* o = FDOMObject) {
    FDOMObject = nullptr;
    o->SetDOMImpl(nullptr);
  }
}

void TVnDOMObjectImpl::SetParentImpl(TVnDOMObjectImpl* AParent) {
  if (AParent == FParent) return;
  if (AParent) ++AParent->FRefCount;
  TVnDOMObjectImpl* old = FParent;
  FParent = AParent;
  ReleaseChain(old);
}

int32_t TVnDOMObjectImpl::_AddRef() {
  FOwnsObject = true;
  return ++FRefCount;
}

int32_t TVnDOMObjectImpl::_Release() {
  if (FRefCount > 1) return --FRefCount;
  ReleaseChain(this);
  return 0;
}

void TVnDOMObjectImpl::ReleaseChain(TVnDOMObjectImpl* AImpl) {
  while (AImpl && --AImpl->FRefCount <= 0) {
    AImpl->FRefCount = 0;
    TVnDOMObjectImpl* parent = AImpl->FParent;
    AImpl->FParent = nullptr;
    if (TVnDOMObject* o = AImpl->FDOMObject) {
      AImpl->FDOMObject = nullptr;
      o->SetDOMImpl(nullptr);
      if (AImpl->FOwnsObject && o->CanAutoDestroy()) {
        // Freeing the object may release counts on this very chain (children held elsewhere
        // are detached and let go of their parent); keep our parent counted until it is done.
        if (parent) ++parent->FRefCount;
        delete o;
        if (parent) --parent->FRefCount;
      }
    }
    delete AImpl;
    AImpl = parent;
  }
}

TVnDOMObject* TVnDOMObjectImpl::GetDOMObject() const {
  if (!FDOMObject) throw EVnDomException(cVnDomObjectGone);
  return FDOMObject;
}

TVnDOMNode* TVnDOMObjectImpl::Node(IInterface* AInterface) {
  if (!AInterface) return nullptr;
  TObject* impl = VnImplementor(AInterface);
  if (!impl) return nullptr;
  if (auto* domImpl = CastObject<TVnDOMObjectImpl>(impl)) return CastObject<TVnDOMNode>(domImpl->GetDOMObject());
  return CastObject<TVnDOMNode>(impl);
}

}  // namespace vn
