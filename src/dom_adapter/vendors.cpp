// The registry of DOM vendors; this library's vendor joins it on first use and leaves at exit.
#include <algorithm>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"

namespace vn {

namespace {
struct Registry {
  TDOMVendorList List;
  std::unique_ptr<TVnDOMVendor> Own;
  Registry() {
    if (!List.Find(cVnDomVendorName)) {
      Own = std::make_unique<TVnDOMVendor>();
      List.Add(Own.get());
    }
  }
  ~Registry() {
    if (Own) List.Remove(Own.get());
  }
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}
}  // namespace

TDOMVendor* TDOMVendorList::GetVendor(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= Count()) throw EListError(cRtlListIndexError, {AIndex});
  return FVendors[static_cast<size_t>(AIndex)];
}

TDOMVendor* TDOMVendorList::Find(std::u16string_view AVendorName) const {
  for (TDOMVendor* vendor : FVendors)
    if (vendor->Description() == AVendorName) return vendor;
  return nullptr;
}

TDOMVendorList& DOMVendors() { return TheRegistry().List; }

void TDOMVendorList::Add(TDOMVendor* AVendor) {
  if (AVendor && std::find(FVendors.begin(), FVendors.end(), AVendor) == FVendors.end())
    FVendors.push_back(AVendor);
}

void TDOMVendorList::Remove(TDOMVendor* AVendor) {
  FVendors.erase(std::remove(FVendors.begin(), FVendors.end(), AVendor), FVendors.end());
}

void RegisterDOMVendor(TDOMVendor* AVendor) { DOMVendors().Add(AVendor); }
void UnRegisterDOMVendor(TDOMVendor* AVendor) { DOMVendors().Remove(AVendor); }

IPtr<IDOMImplementation> GetDOM(std::u16string_view AVendorName) {
  TDOMVendorList& vendors = DOMVendors();
  TDOMVendor* vendor =
      AVendorName.empty() ? (vendors.Count() ? vendors.GetVendor(0) : nullptr) : vendors.Find(AVendorName);
  if (!vendor) throw EVnDomNotFound(cVnDomNoSuchVendor, {AVendorName});
  return vendor->DOMImplementation();
}

}  // namespace vn
