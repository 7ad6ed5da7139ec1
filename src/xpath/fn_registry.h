// fn_registry.h: the registries behind the function library, shared by its source files.
// Both lists live in one function-local static whose first use registers the two collations and
// then each family's functions in the library's fixed order, so a host that links the static
// library gets all of them without relying on static initialization.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "vnxml/xpath.h"

namespace vn::detail {

/// One row of a family's registration table.
struct XPathFnEntry {
  const char16_t* Name;
  TVnXPathFunctionClass Class;
};

struct XPathCollationEntry {
  UnicodeString URI;
  TVnXPathCollationClass Collation;
};

struct XPathFunctionReg {
  UnicodeString Name;
  TVnXPathFunctionClass Class;
};

/// The registries; filled on first use.
struct XPathRegistry {
  std::vector<XPathCollationEntry> Collations;
  std::vector<XPathFunctionReg> Functions;
};
XPathRegistry& GetXPathRegistry();

// Each family's table, in registration order; defined at the end of its fn_*.cpp file.
std::span<const XPathFnEntry> NodeFunctionTable();
std::span<const XPathFnEntry> StringFunctionTable();
std::span<const XPathFnEntry> RegexFunctionTable();
std::span<const XPathFnEntry> NumericFunctionTable();
std::span<const XPathFnEntry> BooleanFunctionTable();
std::span<const XPathFnEntry> DurationFunctionTable();
std::span<const XPathFnEntry> DateTimeFunctionTable();

}  // namespace vn::detail

// Declares a function class of the library: a TVnXPathFunction (or ABase) that overrides Value.
#define VN_XPATH_FUNCTION(Name, Base)                                                   \
  class Name : public Base {                                                            \
    VN_DECLARE_CLASS(Name, Base)                                                        \
   public:                                                                              \
    using Base::Base;                                                                   \
    ::vn::Variant Value(const ::vn::TVnDOMObjectList& AList, ::vn::Integer AIndex) override; \
  };
