// The registry of collations by URI; only fn:compare looks collations up this way.
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {

void RegisterXPathCollation(std::u16string_view ACollationNS, TVnXPathCollationClass ACollation) {
  detail::GetXPathRegistry().Collations.push_back({UnicodeString(ACollationNS), ACollation});
}

TVnXPathCollationClass VnFindXPathCollation(std::u16string_view AURI) {
  // The first registration of a URI wins, so a host cannot shadow a built-in collation.
  for (const auto& reg : detail::GetXPathRegistry().Collations)
    if (reg.URI == AURI) return reg.Collation;
  throw EVnDomSyntax(detail::cFnUnsupportedCollation, {AURI});
}

}  // namespace vn
