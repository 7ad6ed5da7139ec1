// compare_values.cpp: comparing two filter values: texts through the collation, numbers as
// numbers, a text that reads as a number against a number numerically, the rest by Variant rules.
#include "vnxml/common/sysutils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/dom_object.h"
#include "vnxml/xpath_terms.h"

namespace vn {

namespace {

struct Number {
  enum Kind : uint8_t { None, Int, Float } FKind = None;
  Int64 FInt = 0;
  Extended FFloat = 0;
};

Number Classify(const Variant& V) {
  Number n;
  switch (TVnTypes::VarMainTypeKind(V)) {
    case vmkInteger:
      n.FKind = Number::Int;
      n.FInt = V.AsInt64();
      return n;
    case vmkFloat:
      n.FKind = Number::Float;
      n.FFloat = V.AsExtended();
      return n;
    default:
      break;
  }
  // Only a text that starts like an unsigned number takes the numeric road.
  UnicodeString text = VnVarToStr(V, u"", false);
  if (text.empty() || !((text[0] >= u'0' && text[0] <= u'9') || text[0] == u'.')) return n;
  if (TryStrToInt64(text, n.FInt)) {
    n.FKind = Number::Int;
  } else if (TryStrToFloat(text, n.FFloat)) {
    n.FKind = Number::Float;
  }
  return n;
}

template <class T>
Variant Order(const T& A, const T& B, TVnXPathValueComparisonOperator AOperator) {
  switch (AOperator) {
    case opUnequal: return A != B;
    case opEqual: return A == B;
    case opSmaller: return A < B;
    case opSmallerEqual: return A <= B;
    case opGreater: return A > B;
    case opGreaterEqual: return A >= B;
  }
  return Variant::Null();
}

Variant ByRelationship(TVariantRelationship ARel, TVnXPathValueComparisonOperator AOperator) {
  switch (AOperator) {
    case opUnequal: return ARel != vrEqual;
    case opEqual: return ARel == vrEqual;
    case opSmaller: return ARel == vrLessThan;
    case opSmallerEqual: return ARel == vrLessThan || ARel == vrEqual;
    case opGreater: return ARel == vrGreaterThan;
    case opGreaterEqual: return ARel == vrGreaterThan || ARel == vrEqual;
  }
  return Variant::Null();
}

bool IsTrue(const Variant& V) { return V.VarType() == varBoolean && V.AsBoolean(); }

}  // namespace

Variant TVnXPathValueComparison::CompareValues(const Variant& V1, const Variant& V2,
                                               TVnXPathValueComparisonOperator AOperator,
                                               TVnXPathCollationClass ACollation) {
  if (VarIsNull(V1) || VarIsNull(V2)) return Variant::Null();
  if (TVnTypes::VarMainTypeKind(V1) == vmkString && TVnTypes::VarMainTypeKind(V2) == vmkString) {
    UnicodeString s1 = V1.AsString(), s2 = V2.AsString();
    if (AOperator == opEqual) return ACollation->SameText(s1, s2);
    if (AOperator == opUnequal) return !ACollation->SameText(s1, s2);
    return Order(ACollation->Compare(s1, s2), 0, AOperator);
  }
  Number n1 = Classify(V1), n2 = Classify(V2);
  if (n1.FKind == Number::Int && n2.FKind == Number::Int) return Order(n1.FInt, n2.FInt, AOperator);
  if (n1.FKind != Number::None && n2.FKind != Number::None) {
    Extended f1 = n1.FKind == Number::Int ? static_cast<Extended>(n1.FInt) : n1.FFloat;
    Extended f2 = n2.FKind == Number::Int ? static_cast<Extended>(n2.FInt) : n2.FFloat;
    return Order(f1, f2, AOperator);
  }
  return ByRelationship(VarCompareValue(V1, V2), AOperator);
}

Variant TVnXPathValueComparison::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  Variant v1 = FValue1->Value(AList, AIndex);
  Variant v2 = FValue2->Value(AList, AIndex);
  TVnXPathCollationClass collation = FEquation ? FEquation->GetCollation() : DefaultXPathCollation;
  auto items = [](const Variant& V) {
    std::vector<Variant> values;
    Integer low = VarArrayLowBound(V, 1), high = VarArrayHighBound(V, 1);
    for (Integer i = low; i <= high; ++i) values.push_back(VarArrayGet(V, {i}));
    return values;
  };
  // Over arrays the comparison is existential: the first pair that gives true decides, and
  // otherwise the last comparison made gives the result.
  Variant result = false;
  const bool array1 = VarIsArray(v1), array2 = VarIsArray(v2);
  if (array1 && array2) {
    std::vector<Variant> a = items(v1), b = items(v2);
    for (const Variant& x : a)
      for (const Variant& y : b)
        if (IsTrue(result = CompareValues(x, y, FOperator, collation))) return result;
  } else if (array1) {
    for (const Variant& x : items(v1))
      if (IsTrue(result = CompareValues(x, v2, FOperator, collation))) return result;
  } else if (array2) {
    for (const Variant& y : items(v2))
      if (IsTrue(result = CompareValues(v1, y, FOperator, collation))) return result;
  } else {
    result = CompareValues(v1, v2, FOperator, collation);
  }
  return result;
}

}  // namespace vn
