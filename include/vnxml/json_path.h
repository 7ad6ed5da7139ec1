// json_path.h: the JSON path language of unit uVnJSON: TVnJSONNodeList, TVnBoolExpression and the
// TVnExpressionValue family. The selection operations themselves are members of TVnJSONBase
// (CreateNodeList, SelectSingleNode, SelectIntf, json_document.h).
//
// A path is "$" (the document's root value) or "@" (the node called on), then steps: ".name",
// "..name" (this node and every descendant), "[items]" with names ('quoted' or bare), indexes
// (negative from the end), computed indexes "(@.length-1)", slices "start:end:step", "*", and
// filters "?(expression)". Alternatives are joined by " | ". Results come in pre-order and may
// repeat a node; a result list owns none of its nodes.
//
// Filters: terms are operands ("@.a", "$.b", literals) alone (a node exists) or compared with
// == != <> < <= > >=, grouped by "( )", negated by "!", joined by && and || without precedence:
// a term joins the whole rest of its chain, so "a && b || c" is "(a && (b || c)) || c". Two
// texts compare as 32-bit integers, else as floats, else as booleans, else as texts; a quote on
// either side makes both texts. A comparison that can't be made (a missing node, a number
// against a word) makes the whole filter false for that candidate.
//
// Rules of this library where the language leaves room or could not be used safely:
// - A path and its filters are read once per call; a filter runs per candidate. Errors in a
//   step or item are raised when a selection first reaches it, as if it were read there.
// - A path with no node to start from (no document, a document without root) selects nothing.
// - A "[" without its "]" raises EVnJSONException 14, "]" expected and nothing found.
// - An item ends with its filter; members without a value are passed over.
// - A filter term without a value (such as "?()" or "?(@.a &&)") raises EVnJSONException 17
//   when it is evaluated, as does a nesting of "(", "!" and filters inside filters deeper than
//   cVnJSONPathMaxNesting when the filter is read.
// - An index item that is no integer ("1-2") raises the platform's EConvertError on any
//   container it runs on; a computed index beyond the 32-bit range selects nothing.
// - A chain of terms is evaluated with each sub-chain's value remembered, so its cost is
//   linear in its length; which terms are reached, and so which fail, is unchanged.
// - Repeats multiply: unions and ".." steps select a node once for each way that reaches it, so
//   a short path can name more nodes than memory holds. A selection that would hold more than
//   the selection limit (cVnJSONPathMaxSelected unless VnSetJSONPathSelectionLimit changed it),
//   counting repeats and the nodes still to be worked on, raises EVnJSONException 17 with
//   cVnJSONPathTooManyNodes.
#pragma once

#include <memory>

#include "vnxml/common/generics.h"
#include "vnxml/json_document.h"
#include "vnxml/xpath_terms.h"

namespace vn {

class TVnBoolExpression;

namespace detail::jsonpath {
struct FilterOperand;
struct FilterScope;
}  // namespace detail::jsonpath

// ---- messages of the filter evaluation (plain Exception) ----
inline constexpr char16_t cVnJSONFilterInvalidOperation[] = u"An invalid operation has been detected!";
inline constexpr char16_t cVnJSONFilterCheckParenthesis[] = u"An invalid expression was detected!\r\nCheck the parenthesis.";
inline constexpr char16_t cVnJSONFilterNotNeedsChild[] =
    u"An invalid expression was detected!\r\nA \"not\" operator must have a child value.";
/// The expected texts of _cVnJSONInvalidCharInPath1.
inline constexpr char16_t cVnJSONPathStepExpected[] = u". or [";
inline constexpr char16_t cVnJSONPathFilterExpected[] = u"?(";
/// Deepest nesting of "(", "!" and filters within filters that a path may hold.
inline constexpr int cVnJSONPathMaxNesting = 128;
/// Most nodes one selection may hold, repeats included.
inline constexpr Cardinal cVnJSONPathMaxSelected = Cardinal{1} << 26;
inline constexpr char16_t cVnJSONPathTooManyNodes[] = u"The specified path selects more than %d nodes.";
/// Sets the selection limit of the calling thread (0 restores cVnJSONPathMaxSelected) and
/// returns the one it replaces.
Cardinal VnSetJSONPathSelectionLimit(Cardinal ALimit);

/// The working list of one step: nodes in order, owned elsewhere.
class TVnJSONNodeList : public generics::TList<TVnJSONBase*> {
  VN_DECLARE_CLASS(TVnJSONNodeList, generics::TList<TVnJSONBase*>)
 public:
  /// Clears the list and appends every node of ASource.
  void Assign(const TVnJSONNodeList& ASource);
};

// The operators have the names and numbers of those of the XML filter language, whose
// enumerations they are: one namespace can hold each name once.
using TVnBoolExpressionOperator = TVnXPathBoolOperator;               // opNA, opAnd, opOr
using TVnExpValueHasNodeWithValueOp = TVnXPathValueComparisonOperator;  // opUnequal ... opGreaterEqual

/// The value of one term of a filter, for the candidate AList[AIndex]. AError is set when a
/// comparison can't be made; the filter is then false for that candidate.
class TVnExpressionValue : public TObject {
  VN_DECLARE_CLASS(TVnExpressionValue, TObject)
 public:
  explicit TVnExpressionValue(TVnBoolExpression* AExpression = nullptr) : FExpression(AExpression) {}
  virtual bool Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) = 0;
  TVnBoolExpression* GetExpression() const noexcept { return FExpression; }

 protected:
  TVnBoolExpression* FExpression;  ///< the term that holds this value
};

/// The value of the chain in FExpression's FChild: a parenthesised group.
class TVnExpressionValueChild : public TVnExpressionValue {
  VN_DECLARE_CLASS(TVnExpressionValueChild, TVnExpressionValue)
 public:
  using TVnExpressionValue::TVnExpressionValue;
  bool Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) override;
};

/// The negated value of the chain in FExpression's FChild.
class TVnExpressionValueNot : public TVnExpressionValueChild {
  VN_DECLARE_CLASS(TVnExpressionValueNot, TVnExpressionValueChild)
 public:
  using TVnExpressionValueChild::TVnExpressionValueChild;
  bool Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) override;
};

/// True when FPath selects a node from the candidate.
class TVnExpressionValueExists : public TVnExpressionValue {
  VN_DECLARE_CLASS(TVnExpressionValueExists, TVnExpressionValue)
 public:
  TVnExpressionValueExists(TVnBoolExpression* AExpression = nullptr, std::u16string_view APath = {},
                           bool ACaseInsensitive = false);
  ~TVnExpressionValueExists() override;
  bool Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) override;
  const VnJSONString& GetPath() const noexcept { return FPath; }
  bool GetCaseInsensitive() const noexcept { return FCaseInsensitive; }

 private:
  friend struct detail::jsonpath::FilterScope;
  VnJSONString FPath;
  bool FCaseInsensitive;
  std::unique_ptr<detail::jsonpath::FilterOperand> FOperand;  // FPath, read once
};

/// Compares two operands: paths from the candidate ("@..." or "$...") or literal texts.
class TVnExpValueHasNodeWithValue : public TVnExpressionValue {
  VN_DECLARE_CLASS(TVnExpValueHasNodeWithValue, TVnExpressionValue)
 public:
  TVnExpValueHasNodeWithValue(TVnBoolExpression* AExpression = nullptr, std::u16string_view AValue1 = {},
                              std::u16string_view AValue2 = {}, TVnExpValueHasNodeWithValueOp AOperator = opEqual,
                              bool ACaseInsensitive = false);
  ~TVnExpValueHasNodeWithValue() override;
  bool Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) override;
  const VnJSONString& GetValue1() const noexcept { return FValue1; }
  const VnJSONString& GetValue2() const noexcept { return FValue2; }
  TVnExpValueHasNodeWithValueOp GetOperator() const noexcept { return FOperator; }
  bool GetCaseInsensitive() const noexcept { return FCaseInsensitive; }

 private:
  friend struct detail::jsonpath::FilterScope;
  VnJSONString FValue1, FValue2;
  TVnExpValueHasNodeWithValueOp FOperator;
  bool FCaseInsensitive;
  std::unique_ptr<detail::jsonpath::FilterOperand> FOperand1, FOperand2;  // read once
};

/// One term of a filter: a value, and how it joins the next term of its chain.
class TVnBoolExpression : public TObject {
  VN_DECLARE_CLASS(TVnBoolExpression, TObject)
 public:
  explicit TVnBoolExpression(TVnBoolExpression* AParent = nullptr) : FParent(AParent) {}
  /// Frees the terms below and beside it without recursion.
  ~TVnBoolExpression() override;
  TVnBoolExpression(const TVnBoolExpression&) = delete;
  TVnBoolExpression& operator=(const TVnBoolExpression&) = delete;

  /// A new first term of a nested chain, replacing any there was; returns it.
  TVnBoolExpression* AddFirstChild();
  /// Joins a new term by AOperation and returns it; it shares this term's parent.
  TVnBoolExpression* AddSibling(TVnBoolExpressionOperator AOperation);
  /// Takes AValue (owned), freeing the value there was.
  void SetValue(TVnExpressionValue* AValue);
  /// The filter's value for AList[AIndex]: false when a comparison couldn't be made.
  bool Evaluate(TVnJSONNodeList& AList, Integer AIndex);
  /// The value of the chain that starts at this term.
  bool EvaluateChain(TVnJSONNodeList& AList, Integer AIndex, bool& AError);

  TVnBoolExpressionOperator GetOperation() const noexcept { return FOperation; }
  TVnBoolExpression* GetParent() const noexcept { return FParent; }
  TVnBoolExpression* GetSibling() const noexcept { return FSibling; }
  TVnBoolExpression* GetChild() const noexcept { return FChild; }
  TVnExpressionValue* GetValue() const noexcept { return FValue; }

 private:
  friend struct detail::jsonpath::FilterScope;
  TVnBoolExpressionOperator FOperation = opNA;
  TVnBoolExpression* FParent;
  TVnBoolExpression* FSibling = nullptr;  // owned
  TVnBoolExpression* FChild = nullptr;    // owned
  TVnExpressionValue* FValue = nullptr;   // owned
  bool FNotOperand = false;               // the operand of a "!": complete after one operand or group
};

}  // namespace vn
