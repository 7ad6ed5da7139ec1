// The boolean functions: true, false, boolean and not.
#include "vnxml/common/vn_types.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace {

using namespace detail;

// The truth of a parameter judged by its term's class: a list by its first entry, a constant by
// its value. A path or a call has no truth here and raises.
bool TermTruth(TVnXPathBaseTerm* ATerm, const TVnDOMObjectList& AList, Integer AIndex) {
  if (auto* list = CastObject<TVnXPathListTerm>(ATerm))
    return list->Count() > 0 && CastObject<TVnXPathValueTerm>(list->GetTerm(0)) != nullptr;
  if (auto* constant = CastObject<TVnXPathConstantTerm>(ATerm)) {
    Variant value = constant->Value(AList, AIndex);
    switch (TVnTypes::VarMainTypeKind(value)) {
      case vmkInteger:
      case vmkFloat:
        return value.AsDouble() != 0;
      case vmkString:
        return !value.AsString().empty();
      case vmkBoolean:
        return value.AsBoolean();
      default:
        break;
    }
  }
  throw EVnXPathException(cFnCodeInvalidArgument, u"", cFnBooleanInvalid);
}

VN_XPATH_FUNCTION(TVnXPathFnTrue, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnFalse, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnBoolean, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnNot, TVnXPathFunction)

Variant TVnXPathFnTrue::Value(const TVnDOMObjectList&, Integer) { return true; }

Variant TVnXPathFnFalse::Value(const TVnDOMObjectList&, Integer) { return false; }

Variant TVnXPathFnBoolean::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 1, cFnBooleanArity);
  return TermTruth(GetParam(0), AList, AIndex);
}

// Reached only as a parameter of another function: at the start of an operand the filter reads
// "not" as its keyword.
Variant TVnXPathFnNot::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 1, cFnBooleanArity);
  return !Variant(TermTruth(GetParam(0), AList, AIndex));
}

const XPathFnEntry cBooleanFunctions[] = {
    {u"true", &TVnXPathFunctionTerm::Create<TVnXPathFnTrue>},
    {u"false", &TVnXPathFunctionTerm::Create<TVnXPathFnFalse>},
    {u"boolean", &TVnXPathFunctionTerm::Create<TVnXPathFnBoolean>},
    {u"not", &TVnXPathFunctionTerm::Create<TVnXPathFnNot>},
};

}  // namespace

std::span<const detail::XPathFnEntry> detail::BooleanFunctionTable() { return cBooleanFunctions; }

}  // namespace vn
