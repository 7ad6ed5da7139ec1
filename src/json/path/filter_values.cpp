// The operands of filter terms: existence of a node, and the comparison of two texts.
#include "json/path/path_program.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/common/text_utils.h"
#include "vnxml/common/var_utils.h"

namespace vn {

namespace detail::jsonpath {

void Comparand::Classify() {
  FQuoted = !FText.empty() && (FText.front() == u'\'' || FText.front() == u'"');
  FIsInt = TryStrToInt(FText, FInt);
  FIsFloat = FIsInt || TryStrToFloat(FText, FFloat);
  if (FIsInt) FFloat = FInt;
  FIsBool = !FIsFloat && TryStrToBool(FText, FBool);
}

std::unique_ptr<FilterOperand> MakeOperand(std::u16string_view AText, bool ACaseInsensitive, int ANesting,
                                           bool AAlwaysPath) {
  auto operand = std::make_unique<FilterOperand>();
  operand->FText = UnicodeString(AText);
  if (AAlwaysPath || (!AText.empty() && (AText.front() == u'$' || AText.front() == u'@'))) {
    operand->FProgram = CompilePath(operand->FText, ACaseInsensitive, ANesting);  // views of FText
  } else {
    operand->FLiteral.FText = operand->FText;
    operand->FLiteral.Classify();
  }
  return operand;
}

TVnJSONBase* FilterOperand::Select(TVnJSONBase* ACandidate, TVnJDOCSelectOptions AOptions) {
  // Nothing changes the tree while a filter runs, so a path from "$" is run once per run (a
  // term evaluated outside a run, by a caller of Evaluate, runs it each time).
  const uint64_t run = CurrentFilterRun();
  if (!FProgram->FRootOnly || run == 0) return FirstNode(*FProgram, ACandidate, AOptions);
  if (FRun != run) {
    FNode = FirstNode(*FProgram, ACandidate, AOptions);
    FRun = run;
  }
  return FNode;
}

TVnExpressionValueExists* FilterScope::MakeExists(TVnBoolExpression* ATerm, std::u16string_view APath,
                                                  bool ACaseInsensitive, int ANesting) {
  auto* value = new TVnExpressionValueExists(ATerm);
  value->FPath = UnicodeString(APath);
  value->FCaseInsensitive = ACaseInsensitive;
  value->FOperand = MakeOperand(APath, ACaseInsensitive, ANesting, true);
  return value;
}

TVnExpValueHasNodeWithValue* FilterScope::MakeCompare(TVnBoolExpression* ATerm, std::u16string_view AValue1,
                                                      std::u16string_view AValue2, TVnExpValueHasNodeWithValueOp AOp,
                                                      bool ACaseInsensitive, int ANesting) {
  auto* value = new TVnExpValueHasNodeWithValue(ATerm);
  value->FValue1 = UnicodeString(AValue1);
  value->FValue2 = UnicodeString(AValue2);
  value->FOperator = AOp;
  value->FCaseInsensitive = ACaseInsensitive;
  // Paths in a comparison always compare names exactly.
  value->FOperand1 = MakeOperand(AValue1, false, ANesting);
  value->FOperand2 = MakeOperand(AValue2, false, ANesting);
  return value;
}

}  // namespace detail::jsonpath

namespace {

// The text of an operand for ACandidate; nil when it has none (empty, or a path to no node).
using detail::jsonpath::Comparand;

const Comparand* OperandText(detail::jsonpath::FilterOperand& AOperand, TVnJSONBase* ACandidate,
                               Comparand& AScratch) {
  if (AOperand.FText.empty()) return nullptr;
  if (!AOperand.FProgram) return &AOperand.FLiteral;
  TVnJSONBase* node = AOperand.Select(ACandidate, {});
  if (!node) return nullptr;
  if (node->NodeClass() == detail::JSONNodeClass::Simple)
    AScratch.FText = VnVarToStr(node->GetAsVariant());
  else
    AScratch.FText = node->GetValueObj()->GetAsString();  // fails for a container
  AScratch.Classify();
  return &AScratch;
}

template <class T>
bool Holds(T A, T B, TVnExpValueHasNodeWithValueOp AOp) {
  switch (AOp) {
    case opUnequal: return A != B;
    case opEqual: return A == B;
    case opSmaller: return A < B;
    case opSmallerEqual: return A <= B;
    case opGreater: return A > B;
    case opGreaterEqual: return A >= B;
  }
  return false;
}

bool CompareStrings(std::u16string_view A, std::u16string_view B, TVnExpValueHasNodeWithValueOp AOp,
                    bool ACaseInsensitive) {
  if (!ACaseInsensitive) return Holds(A.compare(B), 0, AOp);
  if (AOp == opEqual) return SameText(A, B);
  if (AOp == opUnequal) return !SameText(A, B);
  return Holds(std::u16string_view(LowerCase(A)).compare(LowerCase(B)), 0, AOp);
}

}  // namespace

TVnExpressionValueExists::TVnExpressionValueExists(TVnBoolExpression* AExpression, std::u16string_view APath,
                                                   bool ACaseInsensitive)
    : TVnExpressionValue(AExpression),
      FPath(UnicodeString(APath)),
      FCaseInsensitive(ACaseInsensitive),
      FOperand(detail::jsonpath::MakeOperand(APath, ACaseInsensitive, 0, true)) {}

TVnExpressionValueExists::~TVnExpressionValueExists() = default;

bool TVnExpressionValueExists::Value(TVnJSONNodeList& AList, Integer AIndex, bool& /*AError*/) {
  TVnJSONBase* candidate = AList[AIndex];
  TVnJDOCSelectOptions options;
  if (FCaseInsensitive) options.Include(jsoCaseInsensitive);
  return FOperand->Select(candidate, options) != nullptr;
}

TVnExpValueHasNodeWithValue::TVnExpValueHasNodeWithValue(TVnBoolExpression* AExpression,
                                                         std::u16string_view AValue1, std::u16string_view AValue2,
                                                         TVnExpValueHasNodeWithValueOp AOperator,
                                                         bool ACaseInsensitive)
    : TVnExpressionValue(AExpression),
      FValue1(UnicodeString(AValue1)),
      FValue2(UnicodeString(AValue2)),
      FOperator(AOperator),
      FCaseInsensitive(ACaseInsensitive),
      FOperand1(detail::jsonpath::MakeOperand(AValue1, false, 0)),
      FOperand2(detail::jsonpath::MakeOperand(AValue2, false, 0)) {}

TVnExpValueHasNodeWithValue::~TVnExpValueHasNodeWithValue() = default;

bool TVnExpValueHasNodeWithValue::Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) {
  TVnJSONBase* candidate = AList[AIndex];
  Comparand scratch1, scratch2;
  const Comparand* a = OperandText(*FOperand1, candidate, scratch1);
  const Comparand* b = OperandText(*FOperand2, candidate, scratch2);
  if (!a || !b) {
    AError = true;
    return false;
  }
  if (a->FQuoted || b->FQuoted)
    return CompareStrings(VnStripLiterals(a->FText), VnStripLiterals(b->FText), FOperator, FCaseInsensitive);
  if (a->FIsInt && b->FIsInt) return Holds(a->FInt, b->FInt, FOperator);
  if (a->FIsFloat && b->FIsFloat) return Holds(a->FFloat, b->FFloat, FOperator);
  if (a->FIsBool && b->FIsBool) return Holds(a->FBool, b->FBool, FOperator);
  if (a->FIsFloat || b->FIsFloat) {
    AError = true;
    return false;
  }
  return CompareStrings(a->FText, b->FText, FOperator, FCaseInsensitive);
}

}  // namespace vn
