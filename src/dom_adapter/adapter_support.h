// adapter_support.h: what every adapter needs: its count, the object it stands for, and the
// conversions between node objects and the vendor-neutral interfaces.
#pragma once

#include <memory>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter_interfaces.h"

namespace vn::detail {

/// The part every adapter shares: a count of its own, and a counted reference on the library
/// interface of the object it stands for, so that the object lives by the rules of its tree.
class DOMAdapter {
 public:
  explicit DOMAdapter(IPtr<IInterface> ATarget);
  virtual ~DOMAdapter() = default;
  DOMAdapter(const DOMAdapter&) = delete;
  DOMAdapter& operator=(const DOMAdapter&) = delete;

  /// The vendor-neutral interface AIID of this adapter, or nil; no count is added.
  virtual void* Own(const TGUID& AIID) = 0;

 protected:
  HRESULT Query(const TGUID& AIID, void** AObj);
  int32_t AddRef() noexcept { return ++FRefCount; }
  int32_t Release() noexcept;
  /// The object; raises EVnDomException when it was freed while this adapter held it.
  TVnDOMObject* Object() const { return FImpl->GetDOMObject(); }

 private:
  int32_t FRefCount = 0;
  IPtr<IInterface> FTarget;
  TVnDOMObjectImpl* FImpl;
};

/// The node behind an interface of any kind; nil for nil. Anything that isn't a node of this
/// library fails the class cast.
TVnDOMNode* NodeArg(IInterface* AInterface);
template <class T>
T* NodeArgAs(IInterface* AInterface) {
  TVnDOMNode* node = NodeArg(AInterface);
  if (node && !node->InheritsFrom(T::StaticClass())) throw EInvalidCast(cRtlInvalidCast);
  return static_cast<T*>(node);
}

/// An adapter over AObject (a node or a list) answering AIID, with one count; nil when the
/// object's kind doesn't offer AIID.
IInterface* NewAdapter(TVnDOMObject* AObject, const TGUID& AIID);

/// ANode (or nil) as I; an empty result when the node's kind doesn't offer I.
template <class I>
IPtr<I> Wrap(TVnDOMObject* AObject) {
  if (!AObject) return {};
  return IPtr<I>::Attach(static_cast<I*>(NewAdapter(AObject, I::IID)));
}
/// A new detached node or list, which from now on belongs to the returned interface.
template <class I, class T>
IPtr<I> Adopt(std::unique_ptr<T> AObject) {
  IPtr<I> result = Wrap<I>(AObject.get());
  if (result) AObject.release();
  return result;
}

}  // namespace vn::detail
