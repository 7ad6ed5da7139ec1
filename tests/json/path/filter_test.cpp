// Filters: comparison rules, existence and negation, the chain without precedence, the error
// flag, and the evaluation of long chains against the rule as written.
#include <random>

#include "json/path/path_helpers.h"

namespace vn {
namespace {

using test::Sel;

constexpr char16_t kItems[] =
    u"[{\"n\":\"abc\",\"p\":5,\"ok\":true},{\"n\":\"ABC\",\"p\":12.5,\"ok\":false},{\"n\":\"x\",\"p\":\"cheap\"},"
    u"{\"n\":\"y\",\"o\":{}}]";

// The "n" of each selected item.
std::string Names(TVnJSONDocument& ADoc, std::u16string_view AFilter, TVnJDOCSelectOptions AOptions = {}) {
  std::unique_ptr<TVnJSONArray> list = ADoc.CreateNodeList(u"$[" + UnicodeString(AFilter) + u"]", AOptions);
  std::string text;
  for (Integer i = 0; i < list->ChildCount(); ++i)
    text += (i ? " " : "") + UnicodeToUtf8(list->Child(i)->FindMember(u"n")->GetAsString());
  return text;
}

TEST(JsonPathFilter, ComparesAsIntegersFloatsBooleansOrTexts) {
  TVnJSONDocument doc(kItems);
  struct Case { const char16_t* FFilter; const char* FExpected; TVnJDOCSelectOptions FOptions = {}; };
  const Case cases[] = {
      // numbers; a missing or non-numeric operand drops the candidate
      {u"?(@.p<10)", "abc"}, {u"?(@.p >= 5)", "abc ABC"}, {u"?(@.p>12.4)", "ABC"},
      // texts: quoted or not, a quote on one side makes both texts
      {u"?(@.n=='abc')", "abc ABC", {jsoCaseInsensitive}}, {u"?(@.n<>abc)", "ABC x y"},
      {u"?(@.n>'B')", "x y", {jsoCaseInsensitive}},
      // booleans, existence, negation
      {u"?(@.ok==true)", "abc"}, {u"?(!(@.n==abc) && @.p)", "ABC x"},
      {u"?(@.n==$[?(@.p==12.5)].n)", "ABC"}, {u"?(@.n==)", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(Names(doc, c.FFilter, c.FOptions), c.FExpected) << UnicodeToUtf8(c.FFilter);
  // A filter keeps each node once per step; other items may repeat one.
  EXPECT_EQ(std::tuple(Names(doc, u"?(@.p), ?(@.ok)"), Names(doc, u"0, ?(@.p)"), Names(doc, u"0, 0")),
            std::tuple("abc ABC x", "abc ABC x", "abc abc"));
  // Members are candidates by their values.
  TVnJSONDocument nested(u"{\"a\":{\"v\":1},\"b\":{\"v\":2,\"c\":{\"d\":{\"v\":3}}}}");
  EXPECT_EQ(std::tuple(Sel(nested, u"$[?(@.v>1)]"), Sel(nested, u"$.b.*[?(@.v>=1)]")),
            std::tuple("{\"v\": 2, \"c\": {\"d\": {\"v\": 3}}}", "{\"v\": 3}"));
}

TEST(JsonPathFilter, TermsBuiltByHand) {
  TVnJSONDocument doc(u"[{\"a\":1},{\"a\":2},{\"b\":1}]");
  TVnJSONNodeList list;
  for (Integer i = 0; i < 3; ++i) list.Add(doc.GetRootValue()->Item(i));
  TVnBoolExpression top;
  top.SetValue(new TVnExpValueHasNodeWithValue(&top, u"@.a", u"$[0].a", opGreater));
  TVnBoolExpression* other = top.AddSibling(opOr);
  other->SetValue(new TVnExpressionValueExists(other, u"@.b"));
  // The third: "a" is missing, so false, though "b" exists.
  EXPECT_EQ(std::tuple(top.Evaluate(list, 0), top.Evaluate(list, 1), top.Evaluate(list, 2)),
            std::tuple(false, true, false));
  TVnBoolExpression negation;
  negation.SetValue(new TVnExpressionValueNot(&negation));
  test::ExpectFailure([&] { negation.Evaluate(list, 0); }, -1, UnicodeString(cVnJSONFilterNotNeedsChild), u"Exception");
  negation.AddFirstChild()->SetValue(new TVnExpressionValueExists(nullptr, u"@.b"));
  EXPECT_EQ(std::tuple(negation.Evaluate(list, 0), negation.Evaluate(list, 2)), std::tuple(true, false));
}

// The chain rule as written, term by term, for comparison with the library's evaluation.
bool Reference(const std::vector<int>& ATerms, const std::u16string& AOps, size_t AStart, bool& AError) {
  const auto value = [&](size_t k) {
    if (ATerms[k] == 2) AError = true;
    return ATerms[k] == 1;
  };
  bool v = value(AStart);
  for (size_t k = AStart; k + 1 < ATerms.size(); ++k)
    v = AOps[k] == u'&' ? v && Reference(ATerms, AOps, k + 1, AError) : v || Reference(ATerms, AOps, k + 1, AError);
  return v;
}

TEST(JsonPathFilter, ChainsMatchTheRuleAsWrittenAndStayLinear) {
  TVnJSONDocument doc(u"[{\"t\":1,\"f\":0}]");
  const char16_t* const kTerms[] = {u"@.f==1", u"@.t==1", u"@.t==x"};  // false, true, can't compare
  std::mt19937 random(7);
  for (int round = 0; round < 400; ++round) {
    const size_t n = 1 + random() % 10;
    std::vector<int> terms;
    std::u16string ops;
    UnicodeString filter = u"?(";
    for (size_t k = 0; k < n; ++k) {
      terms.push_back(static_cast<int>(random() % 3));
      ops += random() % 2 ? u'&' : u'|';
      if (k) filter += ops[k - 1] == u'&' ? u" && " : u" || ";
      filter += kTerms[terms.back()];
    }
    bool error = false;
    const bool expected = Reference(terms, ops, 0, error) && !error;
    EXPECT_EQ(doc.CreateNodeList(u"$[" + filter + u")]")->Count(), expected ? 1 : 0) << UnicodeToUtf8(filter);
  }
  // Thousands of terms: as written this would never end.
  UnicodeString filter = u"$[?(@.f==1";
  for (int k = 0; k < 5000; ++k) filter += k % 3 ? u" || @.f==1" : u" && @.f==1";
  EXPECT_EQ(doc.CreateNodeList(filter + u" || @.t==1)]")->Count(), 1);
}

}  // namespace
}  // namespace vn
