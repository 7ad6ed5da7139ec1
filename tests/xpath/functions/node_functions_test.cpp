// The node functions and the rules for a node argument, error and trace.
#include "fn_test_support.h"

#include <tuple>
#include <vector>

#include "vnxml/common/logger.h"
#include "vnxml/common/sysutils.h"

namespace vn::testing {
namespace {

TEST_F(FunctionTest, NodeFunctionValuesAndTheirNodeArguments) {
  ExpectShown({
      {u"text()", "bool true"}, {u"node-name()", "str item"}, {u"node-name(p:g)", "str p:g"},
      {u"node-name(@a)", "str a"}, {u"string(@a)", "str 1"}, {u"string(7)", "str 7"}, {u"data(@b)", "str x"},
      {u"data(3)", "str 3"},
      {u"nilled(e)", "bool true"},  // found in the xsi namespace, its value compared by the collation
      {u"nilled(f)", "bool false"}, {u"nilled(@a)", "null"}, {u"document-uri()", "str "},
      {u"base-uri()", "str "},
  });
  EXPECT_EQ(Show(Eval(u"node-name(p:g)", nullptr, soLocalName)), "str g");
  // Matching by local name finds any attribute called nil.
  EXPECT_EQ(Show(Eval(u"nilled(f)", nullptr, soLocalName)), "bool true");
  // The namespace declaration answers with its prefix.
  EXPECT_EQ(Show(EvalOn(FDoc.GetRootNode()->FindAttribute(u"xmlns:p"), u"node-name()")), "str p");
  // An element without namespace falls back to the document's URI.
  FDoc.SetDocumentURI(u"file:///data/doc.xml");
  ExpectShown({{u"base-uri()", "str file:///data/doc.xml"}, {u"base-uri(p:g)", "str urn:p"},
               {u"document-uri(p:g)", "str file:///data/doc.xml"}});

  // A node argument must be one node.
  using namespace detail;
  const std::tuple<const char16_t*, const char16_t*, const char16_t*, const char16_t*> cases[] = {
      {u"node-name(missing)", cFnCodeNoContext, cFnNodeMayNotBeNil, u"fn:node-name(node)"},
      {u"node-name(c)", cFnCodeType, cFnNodeMustBeSingle, u"fn:node-name(node)"},
      {u"string(c)", cFnCodeType, cFnNodeMustBeSingle, u"fn:string(arg)"},
      {u"number(missing)", cFnCodeNoContext, cFnNodeMayNotBeNil, u"fn:number(arg)"},
      {uR"(node-name("x"))", cFnCodeType, cFnNodeMustBeNode, u"fn:node-name(node)"},
      {u"nilled(1)", cFnCodeType, cFnNodeMustBeNode, u"fn:nilled(node)"},
      {u"base-uri(1)", cFnCodeType, cFnArgMustBeNode, u"fn:base-uri(arg)"},
      {u"document-uri(1)", cFnCodeType, cFnArgMustBeNode, u"fn:document-uri(arg)"}};
  for (const auto& [expr, code, message, function] : cases) ExpectXPathError(expr, code, Format(message, {function}));
  ExpectSyntaxErrors({{u"node-name(a, b)", cFnNodeNameArity}, {u"nilled(a, b)", cFnNilledArity},
                      {u"string(a, b)", cFnStringArity}, {u"data(a, b)", cFnDataArity},
                      {u"base-uri(a, b)", cFnBaseUriArity}, {u"document-uri(a, b)", cFnDocumentUriArity}});

  // string() refuses a sequence or an array while the filter is parsed.
  TVnXPathEquation equation(soQualifiedName, FDoc.GetCollation());
  using F = std::pair<const char16_t*, UnicodeString>;
  for (const auto& [expr, failure] : {F(u"string( (1, 2))", UnicodeString(u"XPTY0004: ") + detail::cFnStringNoSequence),
                                      F(u"string([1])", UnicodeString(u"FOTY0014: ") + detail::cFnStringNoArray)}) {
    TVnXPathFilterParser parser(expr);
    EXPECT_EQ(XPathFailure([&] { equation.ReadTerm(parser); }), UnicodeToUtf8(failure));
  }
}

TEST_F(FunctionTest, ErrorRaisesTraceLogsToTheXPathLogger) {
  for (const auto& [expr, code] : {std::pair{u"error()", u"FOER0000"}, {uR"(error("MY01"))", u"MY01"}})
    ExpectXPathError(expr, code, u"An exception was raised");
  ExpectXPathError(uR"(error("MY01", "boom"))", u"MY01", u"boom");
  try {
    Eval(uR"(error("MY01", "boom", @b))");
    ADD_FAILURE();
  } catch (const EVnXPathException& e) {
    EXPECT_EQ(UnicodeToUtf8(e.GetErrorObject()), "x");
  }
  ExpectError<EVnDomSyntax>(u"error(1, 2, 3, 4)", detail::cFnErrorArity);

  // trace() logs to the XPath logger and gives its value.
  std::vector<std::string> lines;
  Logger::SetSink([&](TVnLogLevel, std::u16string_view AName, std::u16string_view AMessage) {
    lines.push_back(UnicodeToUtf8(AName) + ": " + UnicodeToUtf8(AMessage));
  });
  ExpectShown({{uR"(trace(@b, "b is"))", "str x"}, {uR"(trace(5, ""))", "int 5"}});
  Logger::SetSink({});
  EXPECT_EQ(lines, (std::vector<std::string>{"XPath: b is; value=x", "XPath: 5"}));
  ExpectError<EVnDomSyntax>(u"trace(1)", detail::cFnTraceArity);
}

}  // namespace
}  // namespace vn::testing
