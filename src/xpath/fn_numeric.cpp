// The numeric functions: abs, ceiling, floor, round, half-to-even and number.
// Each dispatches on the argument's main kind; a text (a node's value included) has no number
// here and gives Null, so "round(@a)" needs "round(number(@a))".
#include <cmath>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_types.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace {

using namespace detail;

enum class RoundKind : uint8_t { Ceiling, Floor, Round };

Variant BooleanAsNumber(const Variant& AValue) { return AValue.AsBoolean() ? 1 : 0; }

// The integer result of ceiling, floor or round over the argument's kind.
Variant RoundedValue(const Variant& AValue, RoundKind AKind) {
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
      // Ceiling and floor give a 32-bit Integer; a wider value raises the overflow error.
      return AKind == RoundKind::Round ? Variant(AValue.AsInt64()) : Variant(AValue.AsInteger());
    case vmkFloat:
    case vmkDateTime: {
      Extended value = AValue.AsExtended();
      if (AKind == RoundKind::Round) return Round(value);
      return Variant(AKind == RoundKind::Ceiling ? Ceil(value) : Floor(value)).AsInteger();
    }
    case vmkBoolean:
      return BooleanAsNumber(AValue);
    default:
      return Variant::Null();
  }
}

class NumericFunction : public TVnXPathFunction {
  VN_DECLARE_CLASS(NumericFunction, TVnXPathFunction)
 public:
  using TVnXPathFunction::TVnXPathFunction;

 protected:
  Variant Argument(const TVnDOMObjectList& AList, Integer AIndex, const char16_t* AArityMessage) const {
    CheckParamCount(1, 1, AArityMessage);
    return ParamValue(0, AList, AIndex);
  }
};

VN_XPATH_FUNCTION(TVnXPathFnAbs, NumericFunction)
VN_XPATH_FUNCTION(TVnXPathFnCeiling, NumericFunction)
VN_XPATH_FUNCTION(TVnXPathFnFloor, NumericFunction)
VN_XPATH_FUNCTION(TVnXPathFnRound, NumericFunction)
VN_XPATH_FUNCTION(TVnXPathFnRoundHalfToEven, NumericFunction)
VN_XPATH_FUNCTION(TVnXPathFnNumber, TVnXPathFunction)

Variant TVnXPathFnAbs::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  Variant value = Argument(AList, AIndex, cFnAbsArity);
  switch (TVnTypes::VarMainTypeKind(value)) {
    case vmkInteger: {
      Int64 number = value.AsInt64();
      if (number == INT64_MIN) throw EIntOverflow(u"Integer overflow");
      return number < 0 ? -number : number;
    }
    case vmkFloat:
    case vmkDateTime:
      return static_cast<double>(std::fabs(value.AsExtended()));
    case vmkBoolean:
      return BooleanAsNumber(value);
    default:
      return Variant::Null();
  }
}

Variant TVnXPathFnCeiling::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  return RoundedValue(Argument(AList, AIndex, cFnCeilingArity), RoundKind::Ceiling);
}

Variant TVnXPathFnFloor::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  return RoundedValue(Argument(AList, AIndex, cFnFloorArity), RoundKind::Floor);
}

// Ties go to the even neighbour: round(2.5) is 2, round(3.5) is 4.
Variant TVnXPathFnRound::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  return RoundedValue(Argument(AList, AIndex, cFnRoundArity), RoundKind::Round);
}

Variant TVnXPathFnRoundHalfToEven::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  return RoundedValue(Argument(AList, AIndex, cFnHalfToEvenArity), RoundKind::Round);
}

Variant TVnXPathFnNumber::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 1, cFnNumberArity);
  Variant value = NodeOrTermValue(AList, AIndex, u"fn:number(arg)");
  if (VnVarIsEmpty(value)) return value;
  // A text that is no number raises the conversion error rather than giving NaN.
  return static_cast<double>(VnVarToExtended(value, 0, true));
}

const XPathFnEntry cNumericFunctions[] = {
    {u"abs", &TVnXPathFunctionTerm::Create<TVnXPathFnAbs>},
    {u"ceiling", &TVnXPathFunctionTerm::Create<TVnXPathFnCeiling>},
    {u"floor", &TVnXPathFunctionTerm::Create<TVnXPathFnFloor>},
    {u"round", &TVnXPathFunctionTerm::Create<TVnXPathFnRound>},
    {u"half-to-even", &TVnXPathFunctionTerm::Create<TVnXPathFnRoundHalfToEven>},
    {u"number", &TVnXPathFunctionTerm::Create<TVnXPathFnNumber>},
};

}  // namespace

std::span<const detail::XPathFnEntry> detail::NumericFunctionTable() { return cNumericFunctions; }

}  // namespace vn
