// Evaluates one function call of the filter language against a small document, for the tests of
// the function library. Values are shown as "kind text" so that tables compare kind and value.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "common/message_of.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"
#include "vnxml/xpath.h"
#include "xpath/fn_messages.h"

namespace vn::testing {

// "null", "empty", "int 2", "float 2.5", "str ab", "bool true", "date ...".
inline std::string Show(const Variant& AValue) {
  if (VarIsNull(AValue)) return "null";
  if (VarIsEmpty(AValue)) return "empty";
  static const char* const kinds[] = {"other", "int", "float", "str", "bool", "date", "array"};
  std::string text = VarIsArray(AValue) ? std::string() : UnicodeToUtf8(VnVarToStr(AValue));
  if (TVnTypes::VarMainTypeKind(AValue) == vmkBoolean) text = AValue.AsBoolean() ? "true" : "false";
  return std::string(kinds[TVnTypes::VarMainTypeKind(AValue)]) + " " + text;
}

struct ValueCase {
  const char16_t* Expr;
  const char* Expected;
};

class FunctionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    FDoc.LoadXML(uR"(<root xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:p="urn:p">)"
                 uR"(<item a="1" b="x" n="2.5" sp="  a   b  ">text<c>cv</c><c>cw</c>)"
                 uR"(<e xsi:nil="TRUE"/><f nil="true"/><p:g/></item></root>)");
    FItem = FDoc.GetRootNode()->FindElement(u"item");
    ASSERT_NE(FItem, nullptr);
  }

  /// The value of the call AExpr (as a filter would read it) for the candidate FItem.
  Variant Eval(std::u16string_view AExpr, TVnXPathCollationClass ACollation = nullptr,
               TVnDOMSelectMatchOption AMatch = soQualifiedName) {
    return EvalOn(FItem, AExpr, ACollation, AMatch);
  }

  /// The same for the candidate ANode.
  Variant EvalOn(TVnDOMNode* ANode, std::u16string_view AExpr, TVnXPathCollationClass ACollation = nullptr,
                 TVnDOMSelectMatchOption AMatch = soQualifiedName) {
    TVnXPathEquation equation(AMatch, ACollation ? ACollation : FDoc.GetCollation());
    TVnXPathFilterParser parser(AExpr);
    auto term = equation.ReadTerm(parser);
    TVnDOMObjectList list;
    list.Add(ANode);
    return term->Value(list, 0);
  }

  std::string ShowEval(std::u16string_view AExpr, TVnXPathCollationClass ACollation = nullptr) {
    return Show(Eval(AExpr, ACollation));
  }

  /// Each call of the table shows as given.
  void ExpectShown(std::initializer_list<ValueCase> ACases) {
    for (const auto& c : ACases) EXPECT_EQ(ShowEval(c.Expr), c.Expected) << UnicodeToUtf8(c.Expr);
  }

  /// Evaluates AExpr, expecting exception E with the text AMessage.
  template <class E>
  void ExpectError(std::u16string_view AExpr, std::u16string_view AMessage) {
    EXPECT_EQ(UnicodeToUtf8(test::MessageOf<E>([&] { Eval(AExpr); })), UnicodeToUtf8(AMessage)) << UnicodeToUtf8(AExpr);
  }

  /// Each call of the table is refused while the filter is parsed, with the message given.
  void ExpectSyntaxErrors(std::initializer_list<std::pair<const char16_t*, std::u16string_view>> ARows) {
    for (const auto& [expr, message] : ARows) ExpectError<EVnDomSyntax>(expr, message);
  }

  /// "code: message" of the EVnXPathException that AAction raises.
  template <class F>
  static std::string XPathFailure(F&& AAction) {
    try {
      AAction();
    } catch (const EVnXPathException& e) {
      return UnicodeToUtf8(e.GetErrorCode() + u": " + e.Message());
    }
    return "(nothing raised)";
  }

  /// Evaluates AExpr, expecting EVnXPathException with code ACode.
  void ExpectXPathError(std::u16string_view AExpr, std::u16string_view ACode, std::u16string_view AMessage) {
    EXPECT_EQ(XPathFailure([&] { Eval(AExpr); }), UnicodeToUtf8(UnicodeString(ACode) + u": " + UnicodeString(AMessage)))
        << UnicodeToUtf8(AExpr);
  }

  TVnDOMDocument FDoc;
  TVnDOMElement* FItem = nullptr;
};

}  // namespace vn::testing
