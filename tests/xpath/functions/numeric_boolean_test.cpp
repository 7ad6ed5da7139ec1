// The numeric and boolean functions: dispatch on the argument's kind, banker's rounding, and the
// boolean's judgement by the class of its parameter term.
#include "fn_test_support.h"

#include "vnxml/common/sysutils.h"

namespace vn::testing {
namespace {

TEST_F(FunctionTest, NumericAndBooleanFunctionValues) {
  FItem->SetAttribute(u"m", u"-2.5");
  FItem->SetAttribute(u"k", u"-1.1");
  ExpectShown({
      // Ties go to the even neighbour, unlike the W3C round.
      {u"round(2.5)", "int 2"}, {u"round(3.5)", "int 4"}, {u"round(2.4)", "int 2"}, {u"round(7)", "int 7"},
      {u"half-to-even(3.5)", "int 4"}, {u"half-to-even(0.5)", "int 0"}, {u"ceiling(1.1)", "int 2"},
      {u"ceiling(3)", "int 3"}, {u"floor(1.9)", "int 1"}, {u"abs(7)", "int 7"}, {u"abs(2.5)", "float 2.5"},
      {u"abs(true())", "int 1"}, {u"abs(false())", "int 0"}, {u"ceiling(true())", "int 1"},
      {uR"(abs("x"))", "null"}, {uR"(round("2.5"))", "null"},
      // A node value is text: it needs number() before it rounds.
      {u"round(@n)", "null"}, {u"round(number(@n))", "int 2"}, {u"floor(number(@n))", "int 2"},
      {u"number(@a)", "float 1"}, {uR"(number("1.25"))", "float 1.25"}, {u"abs(@missing)", "null"},
      // Negative numbers cannot be written in a filter ("-5" is a name), so they come from number().
      {u"round(number(@m))", "int -2"}, {u"floor(number(@k))", "int -2"}, {u"ceiling(number(@k))", "int -1"},
      {u"abs(number(@m))", "float 2.5"},
  });

  // Booleans.
  ExpectShown({
      {u"true()", "bool true"}, {u"false()", "bool false"},
      {u"true(1, 2)", "bool true"},  // parameters are ignored
      {u"boolean(1)", "bool true"}, {u"boolean(0)", "bool false"}, {u"boolean(0.0)", "bool false"},
      {uR"(boolean("x"))", "bool true"}, {uR"(boolean(""))", "bool false"}, {u"boolean((a, b))", "bool true"},
      {uR"(boolean(("a", b)))", "bool false"},  // only a path as first entry counts
      {u"boolean(())", "bool false"}, {u"boolean([c])", "bool true"}, {u"not(1)", "bool false"},
      {uR"(not(""))", "bool true"},
  });
  // A path or a call has no truth of its own here.
  for (const char16_t* expr : {u"boolean(@a)", u"boolean(true())", u"not(c)"})
    ExpectXPathError(expr, u"FORG0006", detail::cFnBooleanInvalid);
}

TEST_F(FunctionTest, NumericAndBooleanErrors) {
  using namespace detail;
  // A text that is no number raises; the candidate's own text is "text...".
  for (const char16_t* call : {u"number(@b)", u"number()"}) EXPECT_THROW(Eval(call), Exception);
  // A path must select exactly one node.
  ExpectXPathError(u"number(@missing)", cFnCodeNoContext, Format(cFnNodeMayNotBeNil, {u"fn:number(arg)"}));
  ExpectSyntaxErrors({{u"abs()", cFnAbsArity}, {u"ceiling(1, 2)", cFnCeilingArity}, {u"floor()", cFnFloorArity},
                      {u"round()", cFnRoundArity}, {u"half-to-even(1, 2)", cFnHalfToEvenArity},
                      {u"number(1, 2)", cFnNumberArity}, {u"boolean()", cFnBooleanArity},
                      {u"not(1, 2)", cFnBooleanArity}});
}

}  // namespace
}  // namespace vn::testing
