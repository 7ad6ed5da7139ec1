// xpath.h: the path language's function library (unit uVnXPath).
// Filters call functions by name ("contains(@a, \"x\")", "fn:round(number(b))"); each name maps to
// a term class deriving from TVnXPathFunction, created per parse through the registry below.
// Arguments are Variants evaluated per candidate; sequences travel as comma-joined text.
// Hosts add functions with RegisterXPathFunction and collations with RegisterXPathCollation; both
// registries are filled with the library's own entries on first use. Registration is meant for
// start-up: the registries are not locked, and lookups only read them.
// Failures: arity and syntax errors raise EVnDomSyntax; errors that the functions define raise
// EVnXPathException with an error code such as "XPTY0004".
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "vnxml/dom_object.h"
#include "vnxml/xpath_terms.h"

namespace vn {

class TVnDOMNode;

/// An error that a function defines, with the code of the error ("FORG0006") and an error object.
class EVnXPathException : public EVnDomException {
  VN_DECLARE_CLASS(EVnXPathException, EVnDomException)
 public:
  EVnXPathException(UnicodeString AErrorCode, UnicodeString AErrorObject, UnicodeString AMessage);
  const UnicodeString& GetErrorCode() const noexcept { return FErrorCode; }
  const UnicodeString& GetErrorObject() const noexcept { return FErrorObject; }

 private:
  UnicodeString FErrorCode;
  UnicodeString FErrorObject;
};

// ---- collations by URI ----

/// The namespace of the functions; the URIs of the two built-in collations start with it.
inline constexpr char16_t cVnXPathFunctionsNS[] = u"http://www.w3.org/2005/xpath-functions";
inline constexpr char16_t cVnXPathCollationASCIICIURI[] =
    u"http://www.w3.org/2005/xpath-functions/collation/html-ascii-case-insensitive";
inline constexpr char16_t cVnXPathCollationCodepointURI[] =
    u"http://www.w3.org/2005/xpath-functions/collation/codepoint";

/// Makes ACollation known under ACollationNS; an earlier registration of the same URI stays in force.
void RegisterXPathCollation(std::u16string_view ACollationNS, TVnXPathCollationClass ACollation);
/// The collation registered under exactly AURI; raises EVnDomSyntax when there is none.
TVnXPathCollationClass VnFindXPathCollation(std::u16string_view AURI);

// ---- functions ----

/// The base of every registered function: owns the parameter terms read from the filter.
class TVnXPathFunction : public TVnXPathFunctionTerm {
  VN_DECLARE_CLASS(TVnXPathFunction, TVnXPathFunctionTerm)
 public:
  using TVnXPathFunctionTerm::TVnXPathFunctionTerm;

  /// Reads terms separated by "," up to the closing ")", which it steps over. Arity is not checked
  /// here but when the function is evaluated.
  void ParseParams(TVnXPathFilterParser& AParser) override;

  Integer ParamCount() const noexcept { return static_cast<Integer>(FParams.size()); }
  TVnXPathBaseTerm* GetParam(Integer AIndex) const noexcept { return FParams[static_cast<size_t>(AIndex)].get(); }
  /// Adds a parameter term; for functions built by program.
  void AddParam(std::unique_ptr<TVnXPathBaseTerm> AParam) { FParams.push_back(std::move(AParam)); }

 protected:
  /// Raises EVnDomSyntax AMessage unless the function has AMin to AMax parameters.
  void CheckParamCount(Integer AMin, Integer AMax, std::u16string_view AMessage) const;
  /// The value of parameter AParam for the candidate AList[AIndex].
  Variant ParamValue(Integer AParam, const TVnDOMObjectList& AList, Integer AIndex) const;
  /// The same as text; Null and values without text give "".
  UnicodeString ParamString(Integer AParam, const TVnDOMObjectList& AList, Integer AIndex) const;
  /// The text of an optional string argument: the candidate's node value without parameters.
  UnicodeString OptionalStringParam(const TVnDOMObjectList& AList, Integer AIndex) const;
  /// The collation of the selection in progress.
  TVnXPathCollationClass Collation() const noexcept;
  /// The node an optional node argument names: the candidate without parameters, the one node that
  /// a path parameter selects (EVnXPathException when it selects none or several), or nil for any
  /// other term. ASignature is the function as messages quote it, as "fn:node-name(node)".
  TVnDOMNode* NodeParam(const TVnDOMObjectList& AList, Integer AIndex, std::u16string_view ASignature) const;
  /// The value of an optional argument: the candidate's node value without parameters, the selected
  /// node's value for a path (one node only, as NodeParam), else the evaluated term.
  Variant NodeOrTermValue(const TVnDOMObjectList& AList, Integer AIndex, std::u16string_view ASignature) const;

  std::vector<std::unique_ptr<TVnXPathBaseTerm>> FParams;
};

/// The "class reference" of a function: its virtual constructor, as TVnXPathFunctionTerm::Create<T>.
using TVnXPathFunctionClass = std::unique_ptr<TVnXPathBaseTerm> (*)(TVnXPathEquation* AEquation,
                                                                    TVnXPathFilterParser* AParser);

/// Makes AFunctionClass callable in filters as AName (without "fn:"). Names are case-sensitive, and
/// an earlier registration of the same name stays in force.
void RegisterXPathFunction(std::u16string_view AName, TVnXPathFunctionClass AFunctionClass);
/// The registered names in registration order, the library's 66 first.
std::vector<UnicodeString> RegisteredXPathFunctions();

}  // namespace vn
