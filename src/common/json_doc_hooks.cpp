// The JSON document hooks: two function pointers, filled by the JSON unit before first use.
#include "vnxml/common/json_doc_hooks.h"

namespace vn {

namespace detail {
void RegisterJSONDocHooks();  // src/json/doc_hooks.cpp
}

namespace {
struct Hooks {
  TVnCreateJSONDocFunc Create = nullptr;
  TVnGetJSONDocValueFunc GetValue = nullptr;
};
Hooks& Storage() {
  static Hooks hooks;
  return hooks;
}
// The unit's registration runs once, before the first Set or Get: a host's own Set then
// replaces the unit's hook instead of being replaced by it.
void EnsureRegistered() {
  static bool done = false;
  if (done) return;
  done = true;
  detail::RegisterJSONDocHooks();
}
}  // namespace

void SetCreateJSONDoc(TVnCreateJSONDocFunc AFunc) {
  EnsureRegistered();
  Storage().Create = AFunc;
}
void SetGetJSONDocValue(TVnGetJSONDocValueFunc AFunc) {
  EnsureRegistered();
  Storage().GetValue = AFunc;
}
TVnCreateJSONDocFunc GetCreateJSONDoc() {
  EnsureRegistered();
  return Storage().Create;
}
TVnGetJSONDocValueFunc GetGetJSONDocValue() {
  EnsureRegistered();
  return Storage().GetValue;
}

}  // namespace vn
