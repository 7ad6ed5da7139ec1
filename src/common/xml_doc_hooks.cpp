// The XML document hooks: two function pointers, filled by the DOM unit before first use.
#include "vnxml/common/xml_doc_hooks.h"

namespace vn {

namespace detail {
void RegisterXMLDocHooks();  // src/dom_adapter/doc_hooks.cpp
}

namespace {
struct Hooks {
  TVnCreateXMLDocFunc Create = nullptr;
  TVnGetXMLDocValueFunc GetValue = nullptr;
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
  detail::RegisterXMLDocHooks();
}
}  // namespace

void SetCreateXMLDoc(TVnCreateXMLDocFunc AFunc) {
  EnsureRegistered();
  Storage().Create = AFunc;
}
void SetGetXMLDocValue(TVnGetXMLDocValueFunc AFunc) {
  EnsureRegistered();
  Storage().GetValue = AFunc;
}
TVnCreateXMLDocFunc GetCreateXMLDoc() {
  EnsureRegistered();
  return Storage().Create;
}
TVnGetXMLDocValueFunc GetGetXMLDocValue() {
  EnsureRegistered();
  return Storage().GetValue;
}

}  // namespace vn
