// TVnXPathFunction: parameter reading and the argument rules that all functions share.
#include <vector>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/dom_lists.h"
#include "vnxml/dom_node.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"
#include "xpath/path_engine.h"

namespace vn {

EVnXPathException::EVnXPathException(UnicodeString AErrorCode, UnicodeString AErrorObject, UnicodeString AMessage)
    : EVnDomException(std::move(AMessage)), FErrorCode(std::move(AErrorCode)), FErrorObject(std::move(AErrorObject)) {}

void TVnXPathFunction::ParseParams(TVnXPathFilterParser& AParser) {
  // Calls nest through their parameters; the shared guard ends hostile nesting with an error
  // instead of exhausting the stack, and it bounds evaluation, which recurses as deep.
  detail::DepthGuard guard;
  FParams.clear();
  AParser.SkipBlanks();
  // Missing commas go undetected: "f(a b)" reads two parameters.
  while (!AParser.Eof() && AParser.Peek() != u')') {
    FParams.push_back(FEquation->ReadTerm(AParser));
    AParser.SkipChar(u',');
  }
  AParser.SkipChar(u')');
}

void TVnXPathFunction::CheckParamCount(Integer AMin, Integer AMax, std::u16string_view AMessage) const {
  if (ParamCount() < AMin || ParamCount() > AMax) throw EVnDomSyntax(UnicodeString(AMessage));
}

Variant TVnXPathFunction::ParamValue(Integer AParam, const TVnDOMObjectList& AList, Integer AIndex) const {
  return GetParam(AParam)->Value(AList, AIndex);
}

UnicodeString TVnXPathFunction::ParamString(Integer AParam, const TVnDOMObjectList& AList, Integer AIndex) const {
  return VnVarToStr(ParamValue(AParam, AList, AIndex), u"", false);
}

UnicodeString TVnXPathFunction::OptionalStringParam(const TVnDOMObjectList& AList, Integer AIndex) const {
  if (ParamCount() > 0) return ParamString(0, AList, AIndex);
  const TVnDOMNode* node = Candidate(AList, AIndex);
  return node ? node->GetNodeValue() : UnicodeString();
}

TVnXPathCollationClass TVnXPathFunction::Collation() const noexcept { return FEquation->GetCollation(); }

TVnDOMNode* TVnXPathFunction::NodeParam(const TVnDOMObjectList& AList, Integer AIndex,
                                        std::u16string_view ASignature) const {
  if (ParamCount() == 0) return Candidate(AList, AIndex);
  auto* path = CastObject<TVnXPathValueTerm>(GetParam(0));
  if (!path) return nullptr;
  std::vector<TVnDOMNode*> nodes;
  path->SelectNodes(AList, AIndex, nodes);
  if (nodes.empty())
    throw EVnXPathException(detail::cFnCodeNoContext, u"", Format(detail::cFnNodeMayNotBeNil, {ASignature}));
  if (nodes.size() > 1)
    throw EVnXPathException(detail::cFnCodeType, u"", Format(detail::cFnNodeMustBeSingle, {ASignature}));
  return nodes.front();
}

Variant TVnXPathFunction::NodeOrTermValue(const TVnDOMObjectList& AList, Integer AIndex,
                                          std::u16string_view ASignature) const {
  TVnDOMNode* node = NodeParam(AList, AIndex, ASignature);
  if (node) return node->GetNodeValue();
  return ParamCount() > 0 ? ParamValue(0, AList, AIndex) : Variant::Null();
}

}  // namespace vn
