// TVnComponent: TVnObject's counting on a component.
#include "vnxml/common/vn_component.h"

namespace vn {

HRESULT TVnComponent::QueryInterface(const TGUID& AIID, void** AObj) {
  return detail::QueryInterfaces<IVnObject>(this, AIID, AObj);
}

int32_t TVnComponent::_Release() {
  const int32_t count = --FRefCount;
  if (count == 0 && GetAutoDestroy()) delete this;
  return count;
}

}  // namespace vn
