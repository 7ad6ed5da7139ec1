// The XML document hooks, filled by the DOM adapter before first use.
#include "vnxml/common/xml_doc_hooks.h"

#include "common/doc_hooks_store.h"

namespace vn {

namespace detail {
void RegisterXMLDocHooks();  // src/dom_adapter/doc_hooks.cpp
using XMLDocHooks = DocHooksStore<TVnCreateXMLDocFunc, TVnGetXMLDocValueFunc, &RegisterXMLDocHooks>;
}  // namespace detail

void SetCreateXMLDoc(TVnCreateXMLDocFunc AFunc) { detail::XMLDocHooks::SetCreate(AFunc); }
void SetGetXMLDocValue(TVnGetXMLDocValueFunc AFunc) { detail::XMLDocHooks::SetGetValue(AFunc); }
TVnCreateXMLDocFunc GetCreateXMLDoc() { return detail::XMLDocHooks::GetCreate(); }
TVnGetXMLDocValueFunc GetGetXMLDocValue() { return detail::XMLDocHooks::GetGetValue(); }

}  // namespace vn
