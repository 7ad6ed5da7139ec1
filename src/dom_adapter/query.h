// query.h: the road from the DOM's Impl halves to the vendor-neutral interfaces. An Impl asks
// here for every interface it doesn't answer itself.
#pragma once

#include "vnxml/common/interface.h"

namespace vn {
class TVnDOMObjectImpl;
}

namespace vn::detail {

/// Answers AIID with a new adapter over AImpl's object when AIID is a vendor-neutral DOM
/// interface that the object's kind offers; E_NOINTERFACE otherwise (also for a freed object).
HRESULT QueryDOMAdapter(TVnDOMObjectImpl* AImpl, const TGUID& AIID, void** AObj) noexcept;

}  // namespace vn::detail
