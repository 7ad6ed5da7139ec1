// Filters: keywords and their reach, strict left-to-right and/or, empty values, existential and
// numeric-versus-text comparison, the parser's messages, and nesting limits.
#include <tuple>

#include "vnxml/common/utf.h"
#include "vnxml/common/variant.h"
#include "vnxml/xpath_terms.h"
#include "xpath/fn_messages.h"
#include "xpath/path/select_helpers.h"

namespace vn {
namespace {

using test::ExpectError;
using test::LoadDoc;
using test::Sel;

constexpr char16_t cItems[] =
    u"<r>"
    u"<i id='1' a='1' b='2'><v>x</v><v>y</v></i>"
    u"<i id='2' a='5.0'><v>X</v></i>"
    u"<i id='3' b='2'/>"
    u"<i id='4' a='10' b='9'><notes>1</notes></i>"
    u"</r>";

class Filter : public ::testing::Test {
 protected:
  void SetUp() override { FDoc = LoadDoc(cItems); }
  UnicodeString Items(std::u16string_view AFilter, TVnDOMSelectOptions AOptions = {}) {
    return Sel(FDoc->GetRootNode(), u"i" + UnicodeString(AFilter), AOptions);
  }
  /// Each filter keeps the items of the ids given.
  void ExpectItems(std::initializer_list<std::pair<const char16_t*, const char16_t*>> ARows) {
    for (const auto& [filter, ids] : ARows) EXPECT_EQ(Items(filter), ids) << UnicodeToUtf8(filter);
  }
  std::unique_ptr<TVnDOMDocument> FDoc;
};

TEST_F(Filter, PresenceIndexesLogicAndComparisons) {
  ExpectItems({{u"[@a]", u"1 2 4"}, {u"[not(@a)]", u"3"}, {u"[v]", u"1 2"}, {u"[0]", u"1"},
               {u"[first()]", u"1"}, {u"[last()]", u"4"}, {u"[position() = 2]", u"2"},
               {u"[node()]", u"1 2 3 4"},
               {u"[@a][1]", u"2"}});  // the index counts in the list the first filter left

  // Logic: and/or run left to right with equal rank; not reaches to the end of its group.
  EXPECT_EQ(Items(u"[@b and (@a = 1 or @a = 10)]"), u"1 4");
  // (@a or @b) and v: item 3 has b but no v.
  ExpectItems({{u"[@a or @b and v]", u"1 2"}, {u"[v and @b or @id = 3]", u"1 3"},
               {u"[@b aND v]", u"1"}});  // keywords: first letter lower-case, the rest any case
  ExpectError<Exception>([&] { Items(u"[@a AND @b]"); }, Format(cVnFilterInvalid, {u"[@a AND @b]"}));
  // not(@a and @b): items without both.
  ExpectItems({{u"[not @a and @b]", u"2 3"}, {u"[(not @a) or @id = 1]", u"1 3"},
               {u"[notes = 1]", u"4"},  // a name beginning with "not"
               {u"[android]", u""}});

  // Empty values, existential comparisons.
  // A comparison with a missing value is empty: not(...) stays false, and so does the chain.
  ExpectItems({{u"[not(@a = 1)]", u"2 4"}, {u"[@a = 1 or @b = 2]", u"1"}, {u"[(@a = 1) or (@b = 2)]", u"1 3"},
               {u"[@a != 1]", u"2 4"}, {u"[missing != 1]", u""}});
  // Comparisons over several nodes are existential.
  ExpectItems({{u"[v = \"y\"]", u"1"},
               {u"[v != \"x\"]", u"1"},  // item 1 has a "y"; item 2's "X" equals "x" here
               {u"[v = v]", u"1 2"},
               {u"[v = (\"q\", \"y\")]", u""}});  // a sequence compares as its joined text

  // Numbers against texts and texts against texts.
  ExpectItems({{u"[@a = 5]", u"2"},  // "5.0" reads as a float
               {u"[@a > 9]", u"4"},  // numerically, not as text
               {u"[@a = \"5\"]", u""},  // two texts compare as texts
               {u"[@a > @b]", u""},  // "10" < "9" as text
               {u"[@a &gt;= 5.0]", u"2 4"}, {u"[@b <> 2]", u"4"},
               {u"[v = \"X\"]", u"1 2"}});  // default collation ignores case
  EXPECT_EQ((std::tuple{Items(u"[v = \"X\"]", {soCaseSensitive}), Items(u"[v < \"Y\"]", {soCaseSensitive})}),
            std::tuple(u"2", u"1 2"));
  EXPECT_THROW(Items(u"[v = 1]"), EVariantError);  // a text without number against a number
}

TEST(FilterCompare, CompareValuesDispatchesByKind) {
  auto cmp = [](const Variant& A, const Variant& B, TVnXPathValueComparisonOperator AOp) {
    return TVnXPathValueComparison::CompareValues(A, B, AOp, TVnXPathCollationASCIICI::Class());
  };
  EXPECT_TRUE(VarIsNull(cmp(Variant::Null(), 1, opEqual)));
  EXPECT_TRUE(cmp(Variant(u"12"), 9, opGreater).AsBoolean());
  EXPECT_TRUE(cmp(Variant(u".5"), 0.5, opEqual).AsBoolean());
  EXPECT_TRUE(cmp(Variant(u"abc"), Variant(u"ABD"), opSmaller).AsBoolean());
  EXPECT_TRUE(cmp(Int64(1) << 60, (Int64(1) << 60) + 1, opSmaller).AsBoolean());  // no float rounding
}

TEST_F(Filter, ParserMessagesPathsAndFunctionsInsideFiltersNesting) {
  auto filter = [&](std::u16string_view AFilter) { return [this, AFilter] { Items(AFilter); }; };
  for (const char16_t* text : {u"[a b]", u"[1 = 1]", u"[a)]"})
    ExpectError<Exception>(filter(text), Format(cVnFilterInvalid, {text}));
  for (const auto& [text, op] : {std::pair{u"[@a == 1]", u"=="}, {u"[@a =< 1]", u"=<"}})
    ExpectError<EVnDomSyntax>(filter(text), Format(cVnFilterInvalidCompare, {text, op}));
  for (const char16_t* text : {u"[]", u"[@a = ]", u"[@a = (1 ,2)]"})
    ExpectError<EVnDomSyntax>(filter(text), cVnFilterStatementInvalid);
  ExpectError<EVnDomSyntax>(filter(u"[@a = 1.2.3]"), cVnFilterNumberExpected);
  ExpectItems({{u"[@a = (1, 2)]", u""},
               {u"[-5]", u""},  // a sign is no part of a literal: a name
               {u"['1']", u""},  // nor is the apostrophe a quote
               {u"[fn:last()]", u"4"}});
  ExpectError<EVnDomSyntax>(filter(u"[nosuchfunction(1)]"), Format(detail::cFnUnsupportedFunction, {u"nosuchfunction"}));

  ExpectItems({{u"[v[1]]", u"1"}, {u"[../i[3]]", u"1 2 3 4"}, {u"[contains(@a, \".\")][0]", u"2"},
               {u"[contains(v, \"x\")]", u"2"},  // several v give an array, which is no text
               {u"[string-length(@a) = 3]", u"2"}});
  // A slash behind a nested "]" separates steps: "notes = 1]" becomes a step that matches nothing.
  EXPECT_EQ(Items(u"[../i[3]/notes = 1]"), u"");
  EXPECT_EQ(Sel(FDoc->GetRootNode(), u"i[v[@x]]"), u"");
  // A "]" inside a string literal ends the filter early.
  EXPECT_THROW(Items(u"[v = \"a]b\"]"), EVnDomSyntax);

  // Nesting is bounded and long chains work.
  UnicodeString deep = u"[";
  for (int i = 0; i < 5000; ++i) deep += u"(";
  deep += u"@a]";
  EXPECT_THROW(Items(deep), EVnDomSyntax);
  // Sequences and arrays nest inside terms, apart from groups.
  for (const char16_t* open : {u"string-join(", u"[", u"count(("}) {
    UnicodeString nested = u"[" + UnicodeString(open);
    for (int i = 0; i < 20000; ++i) nested += open[0] == u'[' ? u"[" : u"(";
    nested += u"1]";
    EXPECT_THROW(Items(nested), EVnDomSyntax) << "nesting with " << UnicodeToUtf8(open);
  }
  UnicodeString chain = u"[@a";
  for (int i = 0; i < 20000; ++i) chain += u" and @a";
  chain += u"]";
  EXPECT_EQ(Items(chain), u"1 2 4");
}

}  // namespace
}  // namespace vn
