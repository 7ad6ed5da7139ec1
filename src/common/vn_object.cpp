// TInterfacedObject, TVnObject and TVnObjectEx: counting, self-destruction and Assign.
#include "vnxml/common/vn_object.h"

#include "vnxml/common/exception.h"
#include "vnxml/common/interfaced_object.h"

namespace vn {

HRESULT TInterfacedObject::QueryInterface(const TGUID& AIID, void** AObj) {
  return detail::QueryInterfaces<IInterface>(this, AIID, AObj);
}

int32_t TInterfacedObject::_Release() {
  const int32_t count = --FRefCount;
  if (count == 0) delete this;
  return count;
}

HRESULT TVnObject::QueryInterface(const TGUID& AIID, void** AObj) {
  return detail::QueryInterfaces<IVnObject>(this, AIID, AObj);
}

int32_t TVnObject::_Release() {
  const int32_t count = --FRefCount;
  if (count == 0 && GetAutoDestroy()) delete this;
  return count;
}

TObject* VnImplementor(IInterface* AIntf) {
  if (!AIntf) return nullptr;
  void* obj = nullptr;
  if (AIntf->QueryInterface(IVnObject::IID, &obj) != S_OK || !obj) return nullptr;
  auto* vnObject = static_cast<IVnObject*>(obj);
  TObject* result = vnObject->Implementor();
  // The caller holds AIntf, so giving back the query's own reference frees nothing.
  vnObject->_Release();
  return result;
}

void TVnObjectEx::Assign(const TObject* ASource) {
  if (ASource && ASource->InheritsFrom(TVnObjectEx::StaticClass())) {
    const auto* source = static_cast<const TVnObjectEx*>(ASource);
    source->AssignTo(this);
    return;
  }
  AssignError(ASource);
}

void TVnObjectEx::AssignTo(TObject* ADest) const {
  throw EConvertError(u"Cannot assign a %s to a %s",
                      {ClassName(), ADest ? ADest->ClassName() : UnicodeString(u"nil")});
}

void TVnObjectEx::AssignError(const TObject* ASource) const {
  throw EConvertError(u"Cannot assign a %s to a %s",
                      {ASource ? ASource->ClassName() : UnicodeString(u"nil"), ClassName()});
}

}  // namespace vn
