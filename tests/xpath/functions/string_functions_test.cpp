// The string and regular expression functions: values, kinds and collation effects.
#include "fn_test_support.h"

#include "vnxml/common/variant.h"

namespace vn::testing {
namespace {

TEST_F(FunctionTest, StringFunctionValuesAlsoUnderACaseSensitiveCollation) {
  ExpectShown({
      {uR"(substring("abcd", 2, 2))", "str bc"}, {uR"(substring("abcd", 2))", "str bcd"},
      {uR"(substring("abcd", 0, 2))", "str ab"}, {uR"(substring("abcd", 3, 99))", "str cd"},
      {uR"(substring("abcd"))", "str "}, {uR"(substring())", "str "}, {uR"(substring("abcd", 1.5))", "null"},
      {uR"(substring(1, 1))", "null"}, {uR"(string-length("abc"))", "int 3"},
      {uR"(normalize-space("  a   b  "))", "str a b"}, {uR"(normalize-space(@sp))", "str a b"},
      {u"normalize-unicode(\"e\u0301\")", "str \u00e9"},
      {u"normalize-unicode(\"\u00e9\", \"NFD\")", "str e\u0301"}, {uR"(simplify("Crème"))", "str Creme"},
      {uR"(simplify(1))", "null"}, {uR"(upper-case("aé"))", "str Aé"}, {uR"(lower-case("AÉ"))", "str aÉ"},
      {uR"(upper-case(1))", "null"}, {uR"(translate("abcabc", "ab", "x"))", "str xcxc"},
      {uR"(translate("abc", "", "x"))", "str abc"}, {uR"(contains("ABC", "b"))", "bool true"},
      {uR"(starts-with("ABC", "a"))", "bool true"}, {uR"(starts-with("ABC", "b"))", "bool false"},
      {uR"(ends-with("ABC", "c"))", "bool false"}, {uR"(ends-with("ABC", "C"))", "bool true"},
      {uR"(ends-with("C", "ABC"))", "bool false"}, {uR"(substring-before("abcd", "CD"))", "str ab"},
      {uR"(substring-before("abcd", "x"))", "str "}, {uR"(substring-after("abcd", "bc"))", "str d"},
      {uR"(substring-after("abcd", "x"))", "str "}, {uR"(string-to-codepoints("ab"))", "str (97, 98)"},
      {uR"(string-to-codepoints(""))", "str ()"}, {uR"(string-to-codepoints(5))", "null"},
      {uR"(codepoints-to-string((97, 98)))", "str ab"}, {uR"(codepoints-to-string((97, 1.5)))", "null"},
      {uR"(codepoints-to-string())", "null"}, {uR"(compare("a", "B"))", "int -1"},
      {uR"(compare("b", "B"))", "int 0"}, {uR"(compare("b", "a"))", "int 1"},
      {uR"(compare(@missing, "a"))", "null"},
      {uR"(compare("b", "B", "http://www.w3.org/2005/xpath-functions/collation/codepoint"))", "int -1"},
      {uR"(codepoint-equal("a", "a"))", "bool true"}, {uR"(codepoint-equal("a", "A"))", "bool false"},
      {uR"(codepoint-equal("1", 1))", "null"}, {uR"(concat("a", "b", "c"))", "str abc"},
      {uR"(concat(@b, "y"))", "str xy"}, {uR"(concat())", "str "},
      {uR"(string-join(("a", "b"), "-"))", "str a-b"}, {uR"(string-join("abc", "/"))", "str a/b/c"},
      {uR"(string-join(("a", "b")))", "str ab"}, {uR"(fn:concat("a", fn:upper-case("b")))", "str aB"},
      {uR"(concat(@missing, "a"))", "null"},
  });
  // Concatenation is the addition of Variants: texts join, but a text meeting a number is read as a number.
  for (const char16_t* expr : {uR"(concat("a", 1))", uR"(concat(1))"}) EXPECT_THROW(Eval(expr), EVariantTypeCastError);
  // Without an argument the candidate's own value counts.
  EXPECT_EQ(Eval(u"string-length()").AsInteger(), static_cast<Integer>(FItem->GetNodeValue().size()));

  // Without a case-insensitive collation the twins of ends-with turn case-sensitive too.
  TVnXPathCollationClass cs = TVnXPathCollationCodepoint::Class();
  for (const auto& [expr, shown] : {std::pair{uR"(contains("ABC", "b"))", "bool false"},
                                    {uR"(starts-with("ABC", "a"))", "bool false"}, {uR"(compare("b", "B"))", "int -1"},
                                    {uR"(matches("ABC", "b", "I"))", "bool false"},
                                    {uR"(matches("ABC", "b", "i"))", "bool true"}})
    EXPECT_EQ(ShowEval(expr, cs), shown) << UnicodeToUtf8(expr);
}

TEST_F(FunctionTest, RegularExpressionsAndStringArityErrors) {
  ExpectShown({
      {uR"(matches("abc", "^a.c$"))", "bool true"}, {uR"(matches("ABC", "b"))", "bool false"},
      {uR"(matches("ABC", "b", "i"))", "bool true"},
      {uR"(matches("ABC", "b", "I"))", "bool true"},  // flags are looked up through the collation
      {uR"(matches("a\nb", "a.b", "s"))", "bool false"},  // no escapes in literals: "\n" is two characters
      {uR"(replace("a1b22", "[0-9]+", "#"))", "str a#b#"},
      {uR"~(replace("abc", "(b)", "[$1]"))~", "str a[b]c"}, {uR"(replace("ABC", "b", "x", "i"))", "str AxC"},
      {uR"(tokenize("a b"))", "str (\"a\", \"b\")"}, {uR"(tokenize("  a   b "))", "str (\"a\", \"b\")"},
      {uR"(tokenize("a,b;c", "[,;]"))", "str (\"a\", \"b\", \"c\")"},
      {uR"(tokenize("aXbxc", "x", "i"))", "str (\"a\", \"b\", \"c\")"},
  });
  EXPECT_THROW(Eval(uR"(matches("a", "("))"), ERegularExpressionError);

  using namespace detail;
  ExpectSyntaxErrors({
      {u"string-to-codepoints()", cFnStringToCodepointsArity}, {uR"(compare("a"))", cFnCompareTooFew},
      {uR"(compare("a", "b", "c", "d"))", cFnCompareTooMany},
      {uR"(compare("a", "b", "urn:none"))", u"The collation \"urn:none\" is not supported!"},
      {uR"(codepoint-equal("a"))", cFnCodepointEqualArity}, {u"string-join()", cFnStringJoinTooFew},
      {uR"(string-join("a", "b", "c"))", cFnStringJoinTooMany}, {uR"(substring("a", 1, 1, 1))", cFnSubstringArity},
      {uR"(string-length("a", "b"))", cFnStringLengthArity}, {uR"(normalize-space("a", "b"))", cFnNormalizeSpaceArity},
      {u"normalize-unicode()", cFnNormalizeUnicodeArity}, {u"simplify()", cFnSimplifyArity},
      {uR"(normalize-unicode("a", "nfc"))", cFnNormalizeUnicodeForm}, {uR"(upper-case("a", "b"))", cFnUpperCaseArity},
      {u"lower-case()", cFnLowerCaseArity}, {uR"(translate("a", "b"))", cFnTranslateArity},
      {uR"(contains("a"))", cFnContainsArity}, {uR"(starts-with("a"))", cFnStartsWithArity},
      {uR"(ends-with("a"))", cFnEndsWithArity}, {uR"(substring-before("a"))", cFnSubstringBeforeArity},
      {uR"(substring-after("a"))", cFnSubstringAfterArity}, {uR"(matches("a"))", cFnMatchesArity},
      {uR"(replace("a", "b"))", cFnReplaceArity}, {u"tokenize()", cFnTokenizeArity},
      {uR"(codepoints-to-string("ab"))", cFnCodepointsToStringList},
      {uR"(codepoints-to-string((1), (2)))", cFnCodepointsToStringArity},
  });
}

}  // namespace
}  // namespace vn::testing
