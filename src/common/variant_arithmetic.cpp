// Variant arithmetic and logic: the platform's operators and their result kinds.
// Null in an operand gives Null; arrays and interfaces raise EVariantInvalidOpError.
#include <cmath>
#include <limits>

#include "common/variant_internal.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {

using namespace detail;

namespace {

enum class Op : uint8_t { Add, Sub, Mul, Div };

bool IsOperand(TVarType t) {
  return !(t & varArray) && t != varUnknown && t != varDispatch && t != varError && t != varVariant &&
         (t <= varUInt64 || t == varString || t == varUString) && t != 14 && t != 15;
}

bool Is64Bit(TVarType t) { return t == varInt64 || t == varUInt64; }

/// Checks the kinds both operands of a binary operator; true when the result is Null.
bool CheckOperands(const Variant& A, const Variant& B) {
  if (!IsOperand(A.VarType()) || !IsOperand(B.VarType())) RaiseInvalidOp();
  return VarIsNull(A) || VarIsNull(B);
}

/// Integer result: Integer while both operands are 32 bits or less and the value fits.
Variant IntegerResult(Int64 AValue, bool AWide) {
  if (!AWide && AValue >= std::numeric_limits<Integer>::min() && AValue <= std::numeric_limits<Integer>::max())
    return Variant(static_cast<Integer>(AValue));
  return Variant(static_cast<long long>(AValue));
}

template <class F>
F FloatDivide(F A, F B) {
  if (B == 0) {
    if (A == 0 || std::isnan(A)) throw EInvalidOp(UnicodeString(cRtlInvalidOp));
    throw EZeroDivide(UnicodeString(cRtlZeroDivide));
  }
  return A / B;
}

template <class F>
F FloatOp(Op AOp, F A, F B) {
  switch (AOp) {
    case Op::Add: return A + B;
    case Op::Sub: return A - B;
    case Op::Mul: return A * B;
    default: return FloatDivide(A, B);
  }
}

/// A string operand of arithmetic becomes a Double (EVariantTypeCastError when it is no number).
Variant Numeric(const Variant& V) {
  switch (V.VarType()) {
    case varOleStr: case varUString: case varString: return Variant(V.AsDouble());
    case varEmpty: return Variant(0);
    case varBoolean: return Variant(V.RawBoolean() ? -1 : 0);
    default: return V;
  }
}

Variant Concatenate(const Variant& A, const Variant& B) {
  TVarType ta = A.VarType(), tb = B.VarType();
  if ((ta == varString || ta == varEmpty) && (tb == varString || tb == varEmpty))
    return Variant(A.AsAnsiString() + B.AsAnsiString());
  UnicodeString text = A.AsString() + B.AsString();
  if (ta != varUString && tb != varUString) return Variant::FromOleStr(std::move(text));
  return Variant(std::move(text));
}

Variant Arithmetic(Op AOp, const Variant& AL, const Variant& AR) {
  if (CheckOperands(AL, AR)) return Variant::Null();
  TVarType tl = AL.VarType(), tr = AR.VarType();
  if (AOp == Op::Add && (IsStringType(tl) || IsStringType(tr)) && (IsStringType(tl) || tl == varEmpty) &&
      (IsStringType(tr) || tr == varEmpty))
    return Concatenate(AL, AR);
  const Variant L = Numeric(AL), R = Numeric(AR);
  tl = L.VarType();
  tr = R.VarType();

  if (tl == varDate || tr == varDate) {
    double value = FloatOp(AOp, L.AsDouble(), R.AsDouble());
    bool isDate = AOp == Op::Add || (AOp == Op::Sub && !(tl == varDate && tr == varDate));
    return isDate ? Variant::FromDate(value) : Variant(value);
  }
  if (tl == varDouble || tr == varDouble || ((tl == varSingle) != (tr == varSingle)))
    return Variant(FloatOp(AOp, L.AsDouble(), R.AsDouble()));
  if (tl == varSingle)  // both Single
    return Variant(FloatOp(AOp, L.RawSingle(), R.RawSingle()));
  if (tl == varCurrency || tr == varCurrency) {
    Currency a = L.AsCurrency(), b = R.AsCurrency();
    switch (AOp) {
      case Op::Add: return Variant(a + b);
      case Op::Sub: return Variant(a - b);
      case Op::Mul: return Variant(a * b);
      default: return Variant(a / b);
    }
  }
  // Both integers of some width.
  if (AOp == Op::Div) return Variant(FloatDivide(L.AsDouble(), R.AsDouble()));
  const bool beyondInt64 = (tl == varUInt64 && L.RawUInt64() > INT64_MAX) ||
                           (tr == varUInt64 && R.RawUInt64() > INT64_MAX);
  Int64 a = L.RawInt64(), b = R.RawInt64(), result = 0;
  bool overflow = beyondInt64;
  if (!overflow) {
    switch (AOp) {
      case Op::Add: overflow = __builtin_add_overflow(a, b, &result); break;
      case Op::Sub: overflow = __builtin_sub_overflow(a, b, &result); break;
      default: overflow = __builtin_mul_overflow(a, b, &result); break;
    }
  }
  // Beyond 64 bits the platform carries on in floating point rather than wrap.
  if (overflow) return Variant(FloatOp(AOp, L.AsDouble(), R.AsDouble()));
  return IntegerResult(result, Is64Bit(tl) || Is64Bit(tr));
}

/// Integer operands of div, mod and the bitwise operators.
void IntegerOperands(const Variant& A, const Variant& B, Int64& AValueA, Int64& AValueB, bool& AWide) {
  AValueA = A.AsInt64();
  AValueB = B.AsInt64();
  AWide = Is64Bit(A.VarType()) || Is64Bit(B.VarType());
}

enum class Logic : uint8_t { And, Or, Xor };

Variant Logical(Logic AOp, const Variant& A, const Variant& B) {
  if (CheckOperands(A, B)) return Variant::Null();
  TVarType ta = A.VarType(), tb = B.VarType();
  // Booleans stay Booleans; a text beside a Boolean is read as one.
  if ((ta == varBoolean && (tb == varBoolean || IsStringType(tb))) || (tb == varBoolean && IsStringType(ta))) {
    bool a = A.AsBoolean(), b = B.AsBoolean();
    switch (AOp) {
      case Logic::And: return Variant(a && b);
      case Logic::Or: return Variant(a || b);
      default: return Variant(a != b);
    }
  }
  Int64 a, b;
  bool wide;
  IntegerOperands(A, B, a, b, wide);
  switch (AOp) {
    case Logic::And: return IntegerResult(a & b, wide);
    case Logic::Or: return IntegerResult(a | b, wide);
    default: return IntegerResult(a ^ b, wide);
  }
}

}  // namespace

Variant operator+(const Variant& A, const Variant& B) { return Arithmetic(Op::Add, A, B); }
Variant operator-(const Variant& A, const Variant& B) { return Arithmetic(Op::Sub, A, B); }
Variant operator*(const Variant& A, const Variant& B) { return Arithmetic(Op::Mul, A, B); }
Variant operator/(const Variant& A, const Variant& B) { return Arithmetic(Op::Div, A, B); }

Variant VarIntDiv(const Variant& A, const Variant& B) {
  if (CheckOperands(A, B)) return Variant::Null();
  Int64 a, b;
  bool wide;
  IntegerOperands(A, B, a, b, wide);
  if (b == 0) throw EDivByZero(UnicodeString(cRtlDivByZero));
  if (a == INT64_MIN && b == -1) return Variant(-static_cast<double>(a));
  return IntegerResult(a / b, wide);
}

Variant operator%(const Variant& A, const Variant& B) {
  if (CheckOperands(A, B)) return Variant::Null();
  Int64 a, b;
  bool wide;
  IntegerOperands(A, B, a, b, wide);
  if (b == 0) throw EDivByZero(UnicodeString(cRtlDivByZero));
  if (b == -1) return IntegerResult(0, wide);
  return IntegerResult(a % b, wide);
}

Variant operator&(const Variant& A, const Variant& B) { return Logical(Logic::And, A, B); }
Variant operator|(const Variant& A, const Variant& B) { return Logical(Logic::Or, A, B); }
Variant operator^(const Variant& A, const Variant& B) { return Logical(Logic::Xor, A, B); }

Variant operator!(const Variant& A) {
  TVarType t = A.VarType();
  if (!IsOperand(t)) RaiseInvalidOp();
  switch (t) {
    case varNull: return A;
    case varBoolean: return Variant(!A.RawBoolean());
    case varOleStr: case varUString: case varString: {
      Int64 i;
      if (TryStrToInt64(StringOf(A), i)) return IntegerResult(~i, false);
      return Variant(!A.AsBoolean());
    }
    default: return IntegerResult(~A.AsInt64(), Is64Bit(t));
  }
}

Variant operator-(const Variant& A) {
  TVarType t = A.VarType();
  if (!IsOperand(t)) RaiseInvalidOp();
  switch (t) {
    case varNull: return A;
    case varSingle: return Variant(-A.RawSingle());
    case varDouble: return Variant(-A.RawDouble());
    case varDate: return Variant::FromDate(-A.RawDouble());
    case varCurrency: return Variant(-A.AsCurrency());
    case varOleStr: case varUString: case varString: return Variant(-A.AsDouble());
    case varUInt64:
      if (A.RawUInt64() > static_cast<UInt64>(INT64_MAX) + 1) return Variant(-static_cast<double>(A.RawUInt64()));
      return Variant(static_cast<long long>(0 - A.RawUInt64()));
    default: {
      Int64 value = A.AsInt64();
      if (value == INT64_MIN) return Variant(-static_cast<double>(value));
      return IntegerResult(-value, t == varInt64);
    }
  }
}

}  // namespace vn
