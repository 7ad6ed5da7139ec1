// xs_integer.h: TXsInteger<T>, a nullable integer with the facets of a schema restriction
// (unit uVnXSTypes). T is one of ShortInt, SmallInt, Integer, Int64, Byte, Word, Cardinal,
// UInt64; any other T raises ENotSupportedException cVnXsIntegerTypesOnly when a value is set
// or computed.
//
// Facets bind assignments and operators, not reading: Create(v) and FromString store without a
// check, while construction from T, assignment of a T, and every arithmetic result run
// Restrictions.CheckLimits first, so a failure (EArgumentOutOfRangeException) leaves the target
// as it was. Assigning a T keeps the target's own Restrictions; assigning a record copies the
// record whole, Restrictions included. A result that is a record starts as a copy of the left
// operand. An operation on a null record gives a null result without computing.
//
// The operations in C++: unary - (ENotSupportedException cVnXsNegativeUnsigned for an unsigned
// T), unary +, ++ and -- (the platform's Inc and Dec), + - * with a right operand of an integer
// type, Div(v) for the integer quotient (div), % (mod), << and >> (shl, shr), & | ^ (and, or,
// xor); / gives a TValue holding the quotient as Extended (empty for a null record); == != > >=
// < <= give a TXsBoolean, null for a null record.
// Results are computed at the width of T and wrap around: 255 + 1 in a Byte is 0. Shifts take
// their count modulo 32 (modulo 64 for the 64-bit types) and shift T's bits, so >> brings in
// zero bits also for a negative value. Div and % by zero raise EDivByZero; the one quotient
// that does not fit (the lowest Int64 by -1) wraps to itself.
#pragma once

#include <concepts>
#include <limits>

#include "vnxml/common/exception.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/value.h"
#include "vnxml/xs_simple.h"

namespace vn {

namespace detail {

/// T's kind from the type registry; raises cVnXsIntegerTypesOnly outside the eight integer kinds.
TVnTypeKind XsIntegerKind(const TTypeInfo* AType);

/// A bound of a facet as 64 bits: the signed value sign-extended.
struct XsIntegerBound {
  bool Set = false;
  UInt64 Bits = 0;
};

/// The checks of CheckLimits in their order; AValue and the bounds compare unsigned for
/// AUnsigned, else signed.
void XsCheckIntegerLimits(bool AUnsigned, UInt64 AValue, const XsIntegerBound (&ABounds)[4],
                          std::u16string_view APattern);

template <class T>
UInt64 XsBits(T AValue) {
  if constexpr (std::is_signed_v<T>)
    return static_cast<UInt64>(static_cast<Int64>(AValue));
  else
    return static_cast<UInt64>(AValue);
}

}  // namespace detail

template <class T>
struct TXsIntegerRestrictions {
  TXsAnySimpleType<T> MinExclusive;
  TXsAnySimpleType<T> MaxExclusive;
  TXsAnySimpleType<T> MinInclusive;
  TXsAnySimpleType<T> MaxInclusive;
  UnicodeString Pattern;

  /// Raises EArgumentOutOfRangeException for the first facet that AValue breaks; AKind says
  /// whether the values compare unsigned (vtkByte to vtkUInt64) or signed.
  void CheckLimits(TVnTypeKind AKind, T AValue) const {
    const auto bound = [](const TXsAnySimpleType<T>& AFacet) {
      return detail::XsIntegerBound{!AFacet.IsNull(), detail::XsBits(AFacet.FValue)};
    };
    const detail::XsIntegerBound bounds[4] = {bound(MinExclusive), bound(MaxExclusive), bound(MinInclusive),
                                              bound(MaxInclusive)};
    detail::XsCheckIntegerLimits(AKind >= vtkByte && AKind <= vtkUInt64, detail::XsBits(AValue), bounds,
                                 Pattern);
  }
  void Clear() {
    MinExclusive.Clear();
    MaxExclusive.Clear();
    MinInclusive.Clear();
    MaxInclusive.Clear();
    Pattern.clear();
  }
};

template <class T>
struct TXsInteger {
  UnicodeString FHasValue;
  T FValue{};
  TXsIntegerRestrictions<T> Restrictions;

  TXsInteger() = default;
  /// A value, checked against the (empty) facets of a fresh record.
  TXsInteger(T AValue) { Assign(AValue); }
  /// A value, stored without any check.
  static TXsInteger Create(T AValue) {
    TXsInteger result;
    result.FValue = AValue;
    result.FHasValue = cVnXsHasValue;
    return result;
  }
  /// Checks AValue against this record's facets, then stores it; the facets stay.
  template <std::integral U>
  TXsInteger& operator=(U AValue) {
    Assign(static_cast<T>(AValue));
    return *this;
  }
  /// FValue 0 and null; the facets stay.
  void Clear() {
    FValue = 0;
    FHasValue.clear();
  }
  bool IsNull() const noexcept { return FHasValue != cVnXsHasValue; }
  /// The value; 0 for a null record.
  operator T() const noexcept { return IsNull() ? T{} : FValue; }

  // ---- arithmetic ----
  TXsInteger operator-() const {
    if (IsNull()) return *this;
    if (Unsigned()) throw ENotSupportedException(cVnXsNegativeUnsigned);
    return Compute([](UInt64 a) { return 0 - a; });
  }
  TXsInteger operator+() const {
    return Compute([](UInt64 a) { return a; });
  }
  TXsInteger& operator++() {
    return *this = Compute([](UInt64 a) { return a + 1; });
  }
  TXsInteger& operator--() {
    return *this = Compute([](UInt64 a) { return a - 1; });
  }
  TXsInteger operator++(int) {
    TXsInteger old(*this);
    ++*this;
    return old;
  }
  TXsInteger operator--(int) {
    TXsInteger old(*this);
    --*this;
    return old;
  }
  template <std::integral U>
  TXsInteger operator+(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return a + b; });
  }
  template <std::integral U>
  TXsInteger operator-(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return a - b; });
  }
  template <std::integral U>
  TXsInteger operator*(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return a * b; });
  }
  /// The integer quotient, truncated toward zero (div).
  template <std::integral U>
  TXsInteger Div(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return Divide(a, b, false); });
  }
  /// The remainder, with the sign of the left operand (mod).
  template <std::integral U>
  TXsInteger operator%(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return Divide(a, b, true); });
  }
  template <std::integral U>
  TXsInteger operator<<(U ARight) const {
    return Compute([n = ShiftCount(ARight)](UInt64 a) { return a << n; });
  }
  template <std::integral U>
  TXsInteger operator>>(U ARight) const {
    return Compute([n = ShiftCount(ARight)](UInt64 a) { return (a & kWidthMask) >> n; });
  }
  template <std::integral U>
  TXsInteger operator&(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return a & b; });
  }
  template <std::integral U>
  TXsInteger operator|(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return a | b; });
  }
  template <std::integral U>
  TXsInteger operator^(U ARight) const {
    return Compute([b = Bits(ARight)](UInt64 a) { return a ^ b; });
  }
  /// The quotient as Extended in a TValue; an empty TValue for a null record.
  template <std::integral U>
  TValue operator/(U ARight) const {
    if (IsNull()) return TValue();
    Kind();
    const Extended right = static_cast<Extended>(static_cast<T>(ARight));
    if (right == 0) throw EZeroDivide(u"Floating point division by zero");
    return TValue::From(static_cast<Extended>(FValue) / right);
  }

  // ---- comparisons ----
  template <std::integral U>
  TXsBoolean operator==(U ARight) const {
    return Compare(FValue == static_cast<T>(ARight));
  }
  template <std::integral U>
  TXsBoolean operator!=(U ARight) const {
    return Compare(FValue != static_cast<T>(ARight));
  }
  template <std::integral U>
  TXsBoolean operator>(U ARight) const {
    return Compare(FValue > static_cast<T>(ARight));
  }
  template <std::integral U>
  TXsBoolean operator>=(U ARight) const {
    return Compare(FValue >= static_cast<T>(ARight));
  }
  template <std::integral U>
  TXsBoolean operator<(U ARight) const {
    return Compare(FValue < static_cast<T>(ARight));
  }
  template <std::integral U>
  TXsBoolean operator<=(U ARight) const {
    return Compare(FValue <= static_cast<T>(ARight));
  }

  // ---- text ----
  /// The decimal text, signed or unsigned by T; "NaN" for a null record.
  UnicodeString ToString() const {
    if (IsNull()) return u"NaN";
    return Unsigned() ? UIntToStr(detail::XsBits(FValue))
                      : IntToStr(static_cast<Int64>(detail::XsBits(FValue)));
  }
  /// The decimal text as a string Variant; Null for a null record.
  Variant ToVariant() const { return IsNull() ? Variant::Null() : Variant(ToString()); }
  /// "" clears the record; any other text is read as an integer (EConvertError if it is none),
  /// kept to T's low bits, and stored without checking the facets.
  void FromString(std::u16string_view AValue) {
    if (AValue.empty()) return Clear();
    Kind();
    const UInt64 bits =
        Unsigned() && sizeof(T) == 8 ? StrToUInt64(AValue) : static_cast<UInt64>(StrToInt64(AValue));
    FValue = static_cast<T>(bits);
    FHasValue = cVnXsHasValue;
  }

 private:
  static constexpr UInt64 kWidthMask = sizeof(T) >= 8 ? ~UInt64(0) : (UInt64(1) << (sizeof(T) * 8)) - 1;

  static TVnTypeKind Kind() {
    static const TVnTypeKind kind = detail::XsIntegerKind(TypeInfoOf<T>());
    return kind;
  }
  static bool Unsigned() { return Kind() <= vtkUInt64; }
  template <class U>
  static UInt64 Bits(U AValue) {
    return detail::XsBits(static_cast<T>(AValue));
  }
  template <class U>
  static unsigned ShiftCount(U AValue) {
    return static_cast<unsigned>(static_cast<UInt64>(AValue) & (sizeof(T) >= 8 ? 63 : 31));
  }
  /// div or mod of two values of T given as 64 bits.
  static UInt64 Divide(UInt64 A, UInt64 B, bool ARemainder) {
    if (B == 0 || static_cast<T>(B) == 0) throw EDivByZero(cVnXsDivByZero);
    if (Unsigned()) return ARemainder ? A % B : A / B;
    const auto a = static_cast<Int64>(A), b = static_cast<Int64>(B);
    if (b == -1) return ARemainder ? 0 : 0 - A;  // the lowest Int64 by -1 wraps instead of trapping
    return static_cast<UInt64>(ARemainder ? a % b : a / b);
  }
  void Assign(T AValue) {
    Restrictions.CheckLimits(Kind(), AValue);
    FValue = AValue;
    FHasValue = cVnXsHasValue;
  }
  template <class F>
  TXsInteger Compute(F AOperation) const {
    TXsInteger result(*this);
    if (IsNull()) return result;
    const T value = static_cast<T>(AOperation(detail::XsBits(FValue)));
    result.Restrictions.CheckLimits(Kind(), value);
    result.FValue = value;
    return result;
  }
  TXsBoolean Compare(bool AResult) const { return IsNull() ? TXsBoolean() : TXsBoolean(AResult); }
};

VN_XS_REGISTER_TYPE(TXsInteger<ShortInt>, u"TXsInteger<System.ShortInt>")
VN_XS_REGISTER_TYPE(TXsInteger<SmallInt>, u"TXsInteger<System.SmallInt>")
VN_XS_REGISTER_TYPE(TXsInteger<Integer>, u"TXsInteger<System.Integer>")
VN_XS_REGISTER_TYPE(TXsInteger<Int64>, u"TXsInteger<System.Int64>")
VN_XS_REGISTER_TYPE(TXsInteger<Byte>, u"TXsInteger<System.Byte>")
VN_XS_REGISTER_TYPE(TXsInteger<Word>, u"TXsInteger<System.Word>")
VN_XS_REGISTER_TYPE(TXsInteger<Cardinal>, u"TXsInteger<System.Cardinal>")
VN_XS_REGISTER_TYPE(TXsInteger<UInt64>, u"TXsInteger<System.UInt64>")

}  // namespace vn
