// xs_rational.h: TXsRational<T>, a nullable float with the facets of a schema restriction
// (unit uVnXSTypes). T is Single, Double or Extended; any other T raises
// ENotSupportedException cVnXsRationalTypesOnly when a value is set or computed.
//
// Facets bind as for TXsInteger (xs_integer.h): Create(v) and FromString store without a check;
// construction from T, assignment of a number and every arithmetic result run
// Restrictions.CheckLimits first. Arithmetic is done in Extended and stored as T; + - * / take a
// right operand of any arithmetic type, / gives a TXsRational here. Unary - and +, the six
// comparisons (a TXsBoolean, null for a null record), Trunc (a TXsInteger<Int64>) and Round (a
// TXsRational, halves to even) complete the set; a null record gives a null result.
// Text: ToString is FloatToStr with "." as decimal separator whatever the locale ("NaN" when
// null); FromString reads "." as the decimal separator and refuses any other ("" clears).
#pragma once

#include <cmath>
#include <concepts>

#include "vnxml/xs_integer.h"

namespace vn {

namespace detail {

/// T's kind from the type registry; raises cVnXsRationalTypesOnly outside Single, Double, Extended.
TVnTypeKind XsRationalKind(const TTypeInfo* AType);

struct XsRationalBound {
  bool Set = false;
  Extended Value = 0;
};

/// The checks of CheckLimits in their order. ADigits: TotalDigits and FractionDigits, -1 when unset.
void XsCheckRationalLimits(Extended AValue, const int (&ADigits)[2], const XsRationalBound (&ABounds)[4],
                           std::u16string_view APattern);
/// FloatToStr with "." as decimal separator, and its reverse.
UnicodeString XsFloatToStr(Extended AValue);
Extended XsStrToFloat(std::u16string_view AText);

}  // namespace detail

template <class T>
struct TXsRationalRestrictions {
  TXsAnySimpleType<Byte> TotalDigits;
  TXsAnySimpleType<Byte> FractionDigits;
  TXsAnySimpleType<T> MinExclusive;
  TXsAnySimpleType<T> MaxExclusive;
  TXsAnySimpleType<T> MinInclusive;
  TXsAnySimpleType<T> MaxInclusive;
  UnicodeString Pattern;

  /// Raises EArgumentOutOfRangeException for the first facet that AValue breaks.
  void CheckLimits(T AValue) const {
    const auto digits = [](const TXsAnySimpleType<Byte>& AFacet) {
      return AFacet.IsNull() ? -1 : int(AFacet.FValue);
    };
    const auto bound = [](const TXsAnySimpleType<T>& AFacet) {
      return detail::XsRationalBound{!AFacet.IsNull(), static_cast<Extended>(AFacet.FValue)};
    };
    const int limits[2] = {digits(TotalDigits), digits(FractionDigits)};
    const detail::XsRationalBound bounds[4] = {bound(MinExclusive), bound(MaxExclusive), bound(MinInclusive),
                                               bound(MaxInclusive)};
    detail::XsCheckRationalLimits(static_cast<Extended>(AValue), limits, bounds, Pattern);
  }
  void Clear() { *this = TXsRationalRestrictions(); }
};

template <class T>
struct TXsRational {
  T FValue{};
  UnicodeString FHasValue;
  TXsRationalRestrictions<T> Restrictions;

  TXsRational() = default;
  /// A value, checked against the (empty) facets of a fresh record.
  TXsRational(T AValue) { Assign(AValue); }
  /// An integer record's value; null stays null. No facets to check.
  template <class U>
  TXsRational(const TXsInteger<U>& AValue) {
    Kind();
    if (AValue.IsNull()) return;
    FValue = static_cast<T>(static_cast<U>(AValue));
    FHasValue = cVnXsHasValue;
  }
  static TXsRational Create(T AValue) {
    TXsRational result;
    result.FValue = AValue;
    result.FHasValue = cVnXsHasValue;
    return result;
  }
  /// Checks AValue against this record's facets, then stores it; the facets stay.
  template <class U>
  requires std::is_arithmetic_v<U> TXsRational& operator=(U AValue) {
    Assign(static_cast<T>(AValue));
    return *this;
  }
  void Clear() {
    FValue = 0;
    FHasValue.clear();
  }
  bool IsNull() const noexcept { return FHasValue != cVnXsHasValue; }
  /// The value; 0 for a null record.
  operator T() const noexcept { return IsNull() ? T{} : FValue; }

  TXsRational operator-() const {
    return Compute([](Extended a) { return -a; });
  }
  TXsRational operator+() const {
    return Compute([](Extended a) { return a; });
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsRational operator+(U ARight) const {
    return Compute([b = Extended(ARight)](Extended a) { return a + b; });
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsRational operator-(U ARight) const {
    return Compute([b = Extended(ARight)](Extended a) { return a - b; });
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsRational operator*(U ARight) const {
    return Compute([b = Extended(ARight)](Extended a) { return a * b; });
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsRational operator/(U ARight) const {
    return Compute([b = Extended(ARight)](Extended a) { return a / b; });
  }

  template <class U>
  requires std::is_arithmetic_v<U> TXsBoolean operator==(U ARight) const {
    return Compare(FValue == static_cast<T>(ARight));
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsBoolean operator!=(U ARight) const {
    return Compare(FValue != static_cast<T>(ARight));
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsBoolean operator>(U ARight) const {
    return Compare(FValue > static_cast<T>(ARight));
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsBoolean operator>=(U ARight) const {
    return Compare(FValue >= static_cast<T>(ARight));
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsBoolean operator<(U ARight) const {
    return Compare(FValue < static_cast<T>(ARight));
  }
  template <class U>
  requires std::is_arithmetic_v<U> TXsBoolean operator<=(U ARight) const {
    return Compare(FValue <= static_cast<T>(ARight));
  }

  /// The truncated value; EInvalidOp... as Trunc when it has no Int64 (infinite, NaN, too large).
  TXsInteger<Int64> Trunc() const {
    if (IsNull()) return TXsInteger<Int64>();
    return TXsInteger<Int64>(vn::Trunc(static_cast<Extended>(FValue)));
  }
  /// The value rounded to an integral number, halves to even; still a rational.
  TXsRational Round() const {
    return Compute([](Extended a) { return std::nearbyint(a); });
  }

  UnicodeString ToString() const { return IsNull() ? UnicodeString(u"NaN") : detail::XsFloatToStr(FValue); }
  Variant ToVariant() const { return IsNull() ? Variant::Null() : Variant(ToString()); }
  /// "" clears the record; any other text is read with "." as decimal separator (EConvertError
  /// otherwise) and stored without checking the facets.
  void FromString(std::u16string_view AValue) {
    if (AValue.empty()) return Clear();
    Kind();
    FValue = static_cast<T>(detail::XsStrToFloat(AValue));
    FHasValue = cVnXsHasValue;
  }

 private:
  static TVnTypeKind Kind() {
    static const TVnTypeKind kind = detail::XsRationalKind(TypeInfoOf<T>());
    return kind;
  }
  void Assign(T AValue) {
    Kind();
    Restrictions.CheckLimits(AValue);
    FValue = AValue;
    FHasValue = cVnXsHasValue;
  }
  template <class F>
  TXsRational Compute(F AOperation) const {
    TXsRational result(*this);
    if (IsNull()) return result;
    Kind();
    const T value = static_cast<T>(AOperation(static_cast<Extended>(FValue)));
    result.Restrictions.CheckLimits(value);
    result.FValue = value;
    return result;
  }
  TXsBoolean Compare(bool AResult) const { return IsNull() ? TXsBoolean() : TXsBoolean(AResult); }
};

VN_XS_REGISTER_TYPE(TXsRational<Single>, u"TXsRational<System.Single>")
VN_XS_REGISTER_TYPE(TXsRational<Double>, u"TXsRational<System.Double>")
VN_XS_REGISTER_TYPE(TXsRational<Extended>, u"TXsRational<System.Extended>")

}  // namespace vn
