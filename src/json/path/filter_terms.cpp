// The terms of a filter: TVnBoolExpression chains and their evaluation per candidate.
#include <vector>

#include "json/path/path_program.h"

namespace vn {

void TVnJSONNodeList::Assign(const TVnJSONNodeList& ASource) {
  if (&ASource == this) return;
  Clear();
  SetCapacity(ASource.Count());
  for (TVnJSONBase* node : ASource) Add(node);
}

TVnBoolExpression::~TVnBoolExpression() {
  // Chains can be as long as the filter text: the terms below and beside are freed from a
  // work list, not by their own destructors in turn.
  std::vector<TVnBoolExpression*> work;
  const auto take = [&](TVnBoolExpression* ATerm) {
    if (ATerm) work.push_back(ATerm);
  };
  take(std::exchange(FSibling, nullptr));
  take(std::exchange(FChild, nullptr));
  delete std::exchange(FValue, nullptr);
  while (!work.empty()) {
    TVnBoolExpression* term = work.back();
    work.pop_back();
    take(std::exchange(term->FSibling, nullptr));
    take(std::exchange(term->FChild, nullptr));
    delete term;
  }
}

TVnBoolExpression* TVnBoolExpression::AddFirstChild() {
  delete std::exchange(FChild, new TVnBoolExpression(this));
  return FChild;
}

TVnBoolExpression* TVnBoolExpression::AddSibling(TVnBoolExpressionOperator AOperation) {
  FOperation = AOperation;
  delete std::exchange(FSibling, new TVnBoolExpression(FParent));
  return FSibling;
}

void TVnBoolExpression::SetValue(TVnExpressionValue* AValue) { delete std::exchange(FValue, AValue); }

bool TVnBoolExpression::Evaluate(TVnJSONNodeList& AList, Integer AIndex) {
  bool error = false;
  const bool value = EvaluateChain(AList, AIndex, error);
  return !error && value;
}

namespace {
bool TermValue(TVnBoolExpression* ATerm, TVnJSONNodeList& AList, Integer AIndex, bool& AError) {
  // An empty term ("?()", "a &&") is a fault of the filter text.
  if (!ATerm->GetValue())
    throw EVnJSONException(cVnJSONErrScriptExprTooComplex, UnicodeString(_cVnJSONScriptExprTooComplex));
  return ATerm->GetValue()->Value(AList, AIndex, AError);
}
}  // namespace

// A term joins the whole rest of its chain: v = x[k], then for each later position j, v = v op[j]
// (value of the chain from j + 1), skipped where v already decides. Evaluated as written that is
// exponential in the chain's length; but the rest of the work from position j with value v
// depends on (j, v) alone, so each pair is worked out once and remembered. The terms reached, in
// the order first reached, are the same as without remembering.
bool TVnBoolExpression::EvaluateChain(TVnJSONNodeList& AList, Integer AIndex, bool& AError) {
  if (!FSibling) return TermValue(this, AList, AIndex, AError);
  std::vector<TVnBoolExpression*> terms;
  for (TVnBoolExpression* t = this; t; t = t->FSibling) terms.push_back(t);
  const size_t n = terms.size();
  std::vector<int8_t> values(n, -1), rests(2 * n, -1);
  const auto value = [&](size_t k) -> bool {
    if (values[k] < 0) values[k] = TermValue(terms[k], AList, AIndex, AError) ? 1 : 0;
    return values[k] != 0;
  };
  // A frame works out rest(k, v); stage 1 waits for the chain from k + 1, stage 2 for rest(k + 1, ...).
  struct Frame {
    size_t k;
    bool v;
    uint8_t stage;
  };
  std::vector<Frame> frames{{0, value(0), 0}};
  bool result = false;
  while (!frames.empty()) {
    const Frame f = frames.back();
    int8_t& known = rests[2 * f.k + (f.v ? 1 : 0)];
    if (f.stage == 2) {
      known = result ? 1 : 0;
      frames.pop_back();
      continue;
    }
    const TVnBoolExpressionOperator op = terms[f.k]->FOperation;
    if (f.stage == 1) {
      const bool v = op == opAnd ? (f.v && result) : (f.v || result);
      frames.back().stage = 2;
      frames.push_back({f.k + 1, v, 0});
      continue;
    }
    if (known >= 0 || f.k + 1 == n) {
      result = known >= 0 ? known != 0 : f.v;
      known = result ? 1 : 0;
      frames.pop_back();
      continue;
    }
    if (op == opNA) throw Exception(UnicodeString(cVnJSONFilterInvalidOperation));
    if ((op == opAnd && !f.v) || (op == opOr && f.v)) {
      frames.back().stage = 2;
      frames.push_back({f.k + 1, f.v, 0});
    } else {
      frames.back().stage = 1;
      frames.push_back({f.k + 1, value(f.k + 1), 0});
    }
  }
  return result;
}

bool TVnExpressionValueChild::Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) {
  if (!FExpression || !FExpression->GetChild()) throw Exception(UnicodeString(cVnJSONFilterCheckParenthesis));
  return FExpression->GetChild()->EvaluateChain(AList, AIndex, AError);
}

bool TVnExpressionValueNot::Value(TVnJSONNodeList& AList, Integer AIndex, bool& AError) {
  if (!FExpression || !FExpression->GetChild()) throw Exception(UnicodeString(cVnJSONFilterNotNeedsChild));
  return !FExpression->GetChild()->EvaluateChain(AList, AIndex, AError);
}

}  // namespace vn
