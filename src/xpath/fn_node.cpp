// The node functions (text, node-name, nilled, string, data, base-uri, document-uri) and the two
// diagnostic ones (error, trace).
#include "vnxml/common/logger.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_leaves.h"
#include "vnxml/dom_lists.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace {

using namespace detail;

// For the functions whose argument must name a node: any term other than a path is refused.
void RequirePathParam(const TVnXPathFunction& AFunction, const char16_t* AMessage, std::u16string_view ASignature) {
  if (AFunction.ParamCount() > 0 && !CastObject<TVnXPathValueTerm>(AFunction.GetParam(0)))
    throw EVnXPathException(cFnCodeType, u"", Format(AMessage, {ASignature}));
}

UnicodeString DocumentURIOf(TVnDOMNode* ANode) {
  const TVnDOMDocument* doc = ANode->GetDOMDocument();
  if (!doc) doc = CastObject<TVnDOMDocument>(ANode);
  return doc ? doc->GetDocumentURI() : UnicodeString();
}

VN_XPATH_FUNCTION(TVnXPathFnText, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnNodeName, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnNilled, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnData, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnBaseUri, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnDocumentUri, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnError, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnTrace, TVnXPathFunction)

class TVnXPathFnString : public TVnXPathFunction {
  VN_DECLARE_CLASS(TVnXPathFnString, TVnXPathFunction)
 public:
  using TVnXPathFunction::TVnXPathFunction;
  // Refuses a sequence or array argument while parsing, before any candidate is seen.
  void ParseParams(TVnXPathFilterParser& AParser) override {
    AParser.SkipBlanks();
    if (AParser.Peek() == u'(') throw EVnXPathException(cFnCodeType, u"", cFnStringNoSequence);
    if (AParser.Peek() == u'[') throw EVnXPathException(cFnCodeMapOrArray, u"", cFnStringNoArray);
    TVnXPathFunction::ParseParams(AParser);
  }
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
};

Variant TVnXPathFnText::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  const TVnDOMNode* node = Candidate(AList, AIndex);
  if (node)
    for (Integer i = 0; i < node->NodeCount(); ++i)
      if (node->ChildAt(i)->GetNodeType() == ntText) return true;
  return false;
}

Variant TVnXPathFnNodeName::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  static constexpr char16_t signature[] = u"fn:node-name(node)";
  CheckParamCount(0, 1, cFnNodeNameArity);
  RequirePathParam(*this, cFnNodeMustBeNode, signature);
  TVnDOMNode* node = NodeParam(AList, AIndex, signature);
  if (!node) throw EVnXPathException(cFnCodeNoContext, u"", Format(cFnNodeMayNotBeNil, {signature}));
  if (const auto* attr = CastObject<TVnDOMAttribute>(node); attr && attr->IsNamespace())
    return attr->NamespacePrefix();
  return FEquation->GetMatchOption() == soQualifiedName ? node->GetQualifiedName() : node->GetLocalName();
}

Variant TVnXPathFnNilled::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  static constexpr char16_t signature[] = u"fn:nilled(node)";
  CheckParamCount(0, 1, cFnNilledArity);
  RequirePathParam(*this, cFnNodeMustBeNode, signature);
  auto* element = CastObject<TVnDOMElement>(NodeParam(AList, AIndex, signature));
  if (!element) return Variant::Null();
  TVnDOMAttribute* nil = FEquation->GetMatchOption() == soLocalName
                             ? element->FindAttribute(u"nil", TVnDOMSelectOptions{soLocalName})
                             : element->FindAttribute(cVnXSINamespaceURI, u"nil");
  return nil != nullptr && Collation()->SameText(nil->GetNodeValue(), u"true");
}

Variant TVnXPathFnString::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 1, cFnStringArity);
  return VnVarToStr(NodeOrTermValue(AList, AIndex, u"fn:string(arg)"), u"", false);
}

Variant TVnXPathFnData::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 1, cFnDataArity);
  return VnVarToStr(NodeOrTermValue(AList, AIndex, u"fn:data(arg)"), u"", false);
}

Variant TVnXPathFnBaseUri::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  static constexpr char16_t signature[] = u"fn:base-uri(arg)";
  CheckParamCount(0, 1, cFnBaseUriArity);
  RequirePathParam(*this, cFnArgMustBeNode, signature);
  TVnDOMNode* node = NodeParam(AList, AIndex, signature);
  if (!node) return Variant::Null();
  UnicodeString uri = node->GetNamespaceURI();
  return uri.empty() ? DocumentURIOf(node) : uri;
}

Variant TVnXPathFnDocumentUri::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  static constexpr char16_t signature[] = u"fn:document-uri(arg)";
  CheckParamCount(0, 1, cFnDocumentUriArity);
  RequirePathParam(*this, cFnArgMustBeNode, signature);
  TVnDOMNode* node = NodeParam(AList, AIndex, signature);
  if (!node) return Variant::Null();
  return DocumentURIOf(node);
}

Variant TVnXPathFnError::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 3, cFnErrorArity);
  UnicodeString code = cFnCodeUserError;
  UnicodeString message = cFnErrorDefault;
  UnicodeString object;
  if (ParamCount() > 0) code = ParamString(0, AList, AIndex);
  if (ParamCount() > 1) message = ParamString(1, AList, AIndex);
  if (ParamCount() > 2) object = ParamString(2, AList, AIndex);
  throw EVnXPathException(std::move(code), std::move(object), std::move(message));
}

// Gives its value back, so that a filter can test a traced value as if trace were not there.
Variant TVnXPathFnTrace::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnTraceArity);
  Variant value = ParamValue(0, AList, AIndex);
  UnicodeString label = ParamString(1, AList, AIndex);
  TVnLogger& logger = Logger::GetLogger(u"XPath");
  if (logger.IsEnabled(llInfo)) {
    UnicodeString text = VnVarToStr(value, u"", false);
    logger.Info(label.empty() ? text : label + u"; value=" + text);
  }
  return value;
}

const XPathFnEntry cNodeFunctions[] = {
    {u"text", &TVnXPathFunctionTerm::Create<TVnXPathFnText>},
    {u"node-name", &TVnXPathFunctionTerm::Create<TVnXPathFnNodeName>},
    {u"nilled", &TVnXPathFunctionTerm::Create<TVnXPathFnNilled>},
    {u"string", &TVnXPathFunctionTerm::Create<TVnXPathFnString>},
    {u"data", &TVnXPathFunctionTerm::Create<TVnXPathFnData>},
    {u"base-uri", &TVnXPathFunctionTerm::Create<TVnXPathFnBaseUri>},
    {u"document-uri", &TVnXPathFunctionTerm::Create<TVnXPathFnDocumentUri>},
    {u"error", &TVnXPathFunctionTerm::Create<TVnXPathFnError>},
    {u"trace", &TVnXPathFunctionTerm::Create<TVnXPathFnTrace>},
};

}  // namespace

std::span<const detail::XPathFnEntry> detail::NodeFunctionTable() { return cNodeFunctions; }

}  // namespace vn
