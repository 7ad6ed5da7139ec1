// The registries of functions and collations, and functions at work inside real filters.
#include "common/message_of.h"
#include "fn_test_support.h"
#include "vnxml/common/sysutils.h"
#include "xpath/fn_messages.h"

#include <algorithm>
#include <tuple>

namespace vn::testing {
namespace {

TEST(XPathRegistries, HoldFunctionsInOrderAndFindCollationsByExactURI) {
  std::vector<UnicodeString> names = RegisteredXPathFunctions();
  ASSERT_GE(names.size(), 66u);
  // The filter reads these four itself; they are no registry entries.
  for (const char16_t* own : {u"first", u"last", u"position", u"node"})
    EXPECT_EQ(std::count(names.begin(), names.begin() + 66, UnicodeString(own)), 0);
  std::vector<UnicodeString> sorted(names.begin(), names.begin() + 66);
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());

  // Collations are found by their exact URI.
  EXPECT_EQ((std::tuple{VnFindXPathCollation(cVnXPathCollationASCIICIURI),
                        VnFindXPathCollation(cVnXPathCollationCodepointURI)}),
            std::tuple(TVnXPathCollationASCIICI::Class(), TVnXPathCollationCodepoint::Class()));
  EXPECT_EQ(UnicodeToUtf8(test::MessageOf<EVnDomSyntax>(
                [] { VnFindXPathCollation(u"HTTP://www.w3.org/2005/xpath-functions/collation/codepoint"); })),
            "The collation \"HTTP://www.w3.org/2005/xpath-functions/collation/codepoint\" is not supported!");
  // A host's collation joins; a second registration of a URI does not replace the first.
  RegisterXPathCollation(u"urn:test:ci", TVnXPathCollationASCIICI::Class());
  RegisterXPathCollation(u"urn:test:ci", TVnXPathCollationCodepoint::Class());
  EXPECT_EQ(VnFindXPathCollation(u"urn:test:ci"), TVnXPathCollationASCIICI::Class());
}

// A host function: the count of its parameters.
struct TestFnArgCount : TVnXPathFunction {
  using TVnXPathFunction::TVnXPathFunction;
  Variant Value(const TVnDOMObjectList&, Integer) override { return ParamCount(); }
};

// A host function registered under a library name: never reached, the first registration wins.
struct TestFnShadow : TVnXPathFunction {
  using TVnXPathFunction::TVnXPathFunction;
  Variant Value(const TVnDOMObjectList&, Integer) override { return u"shadow"; }
};

TEST_F(FunctionTest, HostsRegisterFunctionsNamesAreExactNestingIsBounded) {
  RegisterXPathFunction(u"test-arg-count", &TVnXPathFunctionTerm::Create<TestFnArgCount>);
  RegisterXPathFunction(u"upper-case", &TVnXPathFunctionTerm::Create<TestFnShadow>);
  ExpectShown({{uR"(test-arg-count(1, "a", b))", "int 3"}, {uR"(upper-case("a"))", "str A"}});
  for (const char16_t* name : {u"ABS", u"no-such"})
    ExpectError<EVnDomSyntax>(UnicodeString(name) + u"(1)", Format(detail::cFnUnsupportedFunction, {name}));

  // Calls nest through their parameters; hostile nesting ends in an error, not in a stack overflow.
  UnicodeString call;
  for (int i = 0; i < 5000; ++i) call += u"abs(";
  call += u"1" + UnicodeString(5000, u')');
  ExpectError<EVnDomSyntax>(call, cVnPathTooDeep);
  EXPECT_EQ(ShowEval(u"abs(abs(abs(abs(abs(abs(abs(abs(1))))))))"), "int 1");
}

class FunctionsInFilters : public FunctionTest {
 protected:
  void SetUp() override {
    FDoc.LoadXML(uR"(<r><i n="Apple" p="2.5" d="P1Y2M"/><i n="banana" p="3.5" d="P2M"/>)"
                 uR"(<i n="Cherry" p="10" d="-P1Y"/></r>)");
  }
  std::string Names(std::u16string_view APath) {
    std::string result;
    auto list = CreateNodeList(FDoc.GetRootNode(), APath);
    for (TVnDOMNode* n : *list)
      result += (result.empty() ? "" : ",") + UnicodeToUtf8(static_cast<TVnDOMElement*>(n)->GetAttribute(u"n"));
    return result;
  }
};

TEST_F(FunctionsInFilters, SelectThroughFunctionsOrFail) {
  const std::pair<const char16_t*, const char*> cases[] = {
      {uR"(i[contains(@n, "AN")])", "banana"}, {uR"(i[round(number(@p)) = 2])", "Apple"},
      {uR"(i[string-length(@n) > 5])", "banana,Cherry"}, {uR"(i[months-from-duration(@d) < 0])", "Cherry"},
      {uR"(i[matches(@n, "^[A-Z]")])", "Apple,Cherry"},  // a bracket inside the filter
      {uR"(i[position() = 2 or upper-case(@n) = "APPLE"])", "Apple,banana"},
      {uR"(i[contains(@n, "an")][0])", "banana"},
      {uR"(i[adjust-date-to-timezone("2020-01-01")])", ""}};  // no result leaves the candidate out
  for (const auto& [path, names] : cases) EXPECT_EQ(Names(path), names) << UnicodeToUtf8(path);
  // A case-sensitive document changes contains.
  FDoc.SetCaseSensitive(true);
  EXPECT_EQ(Names(uR"(i[contains(@n, "AN")])") + "|" + Names(uR"(i[contains(@n, "an")])"), "|banana");
  // Errors abort the selection.
  for (const char16_t* path : {uR"(i[ABS(1)])", uR"(i[round()])"}) EXPECT_THROW(Names(path), EVnDomSyntax);
  EXPECT_THROW(Names(uR"(i[error()])"), EVnXPathException);
  // Arity is checked per candidate: with no candidate the fault stays hidden.
  EXPECT_EQ(Names(uR"(none[round()])"), "");
}

}  // namespace
}  // namespace vn::testing
