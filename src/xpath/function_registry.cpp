// The registry of functions by name, and the factory that filters call for a function term.
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace detail {

namespace {

XPathRegistry BuildRegistry() {
  XPathRegistry reg;
  reg.Collations.push_back({cVnXPathCollationASCIICIURI, TVnXPathCollationASCIICI::Class()});
  reg.Collations.push_back({cVnXPathCollationCodepointURI, TVnXPathCollationCodepoint::Class()});
  // The families in the library's fixed order: "text" comes first, the date functions last.
  for (auto table : {NodeFunctionTable(), StringFunctionTable(), RegexFunctionTable(), NumericFunctionTable(),
                     BooleanFunctionTable(), DurationFunctionTable(), DateTimeFunctionTable()})
    for (const auto& entry : table) reg.Functions.push_back({entry.Name, entry.Class});
  return reg;
}

}  // namespace

XPathRegistry& GetXPathRegistry() {
  static XPathRegistry registry = BuildRegistry();
  return registry;
}

}  // namespace detail

void RegisterXPathFunction(std::u16string_view AName, TVnXPathFunctionClass AFunctionClass) {
  VnAssert(AFunctionClass != nullptr, u"RegisterXPathFunction needs a function class");
  detail::GetXPathRegistry().Functions.push_back({UnicodeString(AName), AFunctionClass});
}

std::vector<UnicodeString> RegisteredXPathFunctions() {
  std::vector<UnicodeString> names;
  for (const auto& reg : detail::GetXPathRegistry().Functions) names.push_back(reg.Name);
  return names;
}

std::unique_ptr<TVnXPathBaseTerm> CreateFunctionTerm(std::u16string_view AName, TVnXPathEquation* AEquation,
                                                     TVnXPathFilterParser& AParser) {
  // The search stops at the first hit, so a later registration never replaces a name.
  for (const auto& reg : detail::GetXPathRegistry().Functions)
    if (reg.Name == AName) return reg.Class(AEquation, &AParser);
  throw EVnDomSyntax(detail::cFnUnsupportedFunction, {AName});
}

}  // namespace vn
