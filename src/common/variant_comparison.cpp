// Variant comparison: numbers across kinds, texts as texts, a text against a number as a number.
#include <cmath>

#include "common/variant_internal.h"
#include "vnxml/common/sysutils.h"

namespace vn {

using namespace detail;

namespace {

/// A number of any kind, kept exact where the kind allows.
struct Number {
  enum KindT : uint8_t { kSigned, kUnsigned, kFloat };
  KindT Kind;
  Int64 I = 0;
  UInt64 U = 0;
  long double F = 0;
};

Number NumberOf(const Variant& V) {
  switch (V.VarType()) {
    case varEmpty: return {Number::kSigned, 0};
    case varBoolean: return {Number::kSigned, V.RawBoolean() ? -1 : 0};
    case varUInt64: return {Number::kUnsigned, 0, V.RawUInt64()};
    case varSingle: return {Number::kFloat, 0, 0, V.RawSingle()};
    case varDouble: case varDate: return {Number::kFloat, 0, 0, V.RawDouble()};
    case varCurrency: return {Number::kFloat, 0, 0, Currency::FromRaw(V.RawInt64()).ToExtended()};
    default: return {Number::kSigned, V.RawInt64()};
  }
}

template <class T>
TVariantRelationship Order(T A, T B) {
  return A < B ? vrLessThan : (B < A ? vrGreaterThan : vrEqual);
}

TVariantRelationship CompareNumbers(const Number& A, const Number& B) {
  if (A.Kind == Number::kFloat || B.Kind == Number::kFloat) {
    auto widen = [](const Number& n) {
      return n.Kind == Number::kFloat ? n.F : n.Kind == Number::kSigned ? static_cast<long double>(n.I)
                                                                         : static_cast<long double>(n.U);
    };
    long double a = widen(A), b = widen(B);
    if (std::isnan(a) || std::isnan(b)) return vrNotEqual;
    return Order(a, b);
  }
  if (A.Kind == Number::kSigned && B.Kind == Number::kSigned) return Order(A.I, B.I);
  if (A.Kind == Number::kSigned) return A.I < 0 ? vrLessThan : Order(static_cast<UInt64>(A.I), B.U);
  if (B.Kind == Number::kSigned) return B.I < 0 ? vrGreaterThan : Order(A.U, static_cast<UInt64>(B.I));
  return Order(A.U, B.U);
}

/// A text met by a number becomes a number: exact when it is an integer text.
Number TextAsNumber(const Variant& AText) {
  Int64 i;
  if (TryStrToInt64(StringOf(AText), i)) return {Number::kSigned, i};
  return {Number::kFloat, 0, 0, AText.AsExtended()};
}

bool IsInterfaceType(TVarType t) { return t == varUnknown || t == varDispatch; }

/// AEquality: Null equals Null only; otherwise Null orders as Unassigned.
TVariantRelationship Compare(const Variant& A, const Variant& B, bool AEquality) {
  TVarType ta = A.VarType(), tb = B.VarType();
  if (ta == varNull || tb == varNull) {
    if (AEquality) return ta == tb ? vrEqual : vrNotEqual;
    return Compare(ta == varNull ? Variant() : A, tb == varNull ? Variant() : B, false);
  }
  if ((ta | tb) & varArray) RaiseInvalidOp();
  if (IsInterfaceType(ta) || IsInterfaceType(tb) || ta == varError || tb == varError) {
    // Identity is all that interfaces and error codes offer.
    if (AEquality && IsInterfaceType(ta) && IsInterfaceType(tb))
      return A.RawInterface() == B.RawInterface() ? vrEqual : vrNotEqual;
    if (AEquality && ta == varError && tb == varError) return A.RawInt64() == B.RawInt64() ? vrEqual : vrNotEqual;
    RaiseInvalidOp();
  }
  const bool sa = IsStringType(ta), sb = IsStringType(tb);
  if ((sa || ta == varEmpty) && (sb || tb == varEmpty)) {
    UnicodeString a = sa ? StringOf(A) : UnicodeString(), b = sb ? StringOf(B) : UnicodeString();
    int c = std::u16string_view(a).compare(b);
    return c < 0 ? vrLessThan : (c > 0 ? vrGreaterThan : vrEqual);
  }
  if (sa || sb) {
    const Variant& text = sa ? A : B;
    const Variant& other = sa ? B : A;
    Number t, o = NumberOf(other);
    if (other.VarType() == varBoolean)
      t = {Number::kSigned, text.AsBoolean() ? -1 : 0};
    else if (other.VarType() == varDate)
      t = {Number::kFloat, 0, 0, text.AsDateTime()};
    else
      t = TextAsNumber(text);
    return sa ? CompareNumbers(t, o) : CompareNumbers(o, t);
  }
  if (ta == varCurrency && tb == varCurrency) return Order(A.RawInt64(), B.RawInt64());
  return CompareNumbers(NumberOf(A), NumberOf(B));
}

}  // namespace

TVariantRelationship VarCompareValue(const Variant& A, const Variant& B) { return Compare(A, B, true); }

bool operator==(const Variant& A, const Variant& B) { return Compare(A, B, true) == vrEqual; }
bool operator<(const Variant& A, const Variant& B) { return Compare(A, B, false) == vrLessThan; }
bool operator>(const Variant& A, const Variant& B) { return Compare(A, B, false) == vrGreaterThan; }
bool operator<=(const Variant& A, const Variant& B) {
  TVariantRelationship r = Compare(A, B, false);
  return r == vrLessThan || r == vrEqual;
}
bool operator>=(const Variant& A, const Variant& B) {
  TVariantRelationship r = Compare(A, B, false);
  return r == vrGreaterThan || r == vrEqual;
}

}  // namespace vn
