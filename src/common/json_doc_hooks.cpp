// The JSON document hooks, filled by the JSON unit before first use.
#include "vnxml/common/json_doc_hooks.h"

#include "common/doc_hooks_store.h"

namespace vn {

namespace detail {
void RegisterJSONDocHooks();  // src/json/doc_hooks.cpp
using JSONDocHooks = DocHooksStore<TVnCreateJSONDocFunc, TVnGetJSONDocValueFunc, &RegisterJSONDocHooks>;
}  // namespace detail

void SetCreateJSONDoc(TVnCreateJSONDocFunc AFunc) { detail::JSONDocHooks::SetCreate(AFunc); }
void SetGetJSONDocValue(TVnGetJSONDocValueFunc AFunc) { detail::JSONDocHooks::SetGetValue(AFunc); }
TVnCreateJSONDocFunc GetCreateJSONDoc() { return detail::JSONDocHooks::GetCreate(); }
TVnGetJSONDocValueFunc GetGetJSONDocValue() { return detail::JSONDocHooks::GetGetValue(); }

}  // namespace vn
