// The kind checks and facet checks of the XS records, shared by every T.
#include <cmath>

#include "vnxml/common/regex.h"
#include "vnxml/xs_rational.h"

namespace vn::detail {

namespace {

bool KindIn(TVnTypeKind AKind, TVnTypeKind AFirst, TVnTypeKind ALast) {
  return AKind >= AFirst && AKind <= ALast;
}

TVnTypeKind KindOf(const TTypeInfo* AType) {
  const TVnTypeInfo* info = TVnTypes::GetTypeInfo(AType);
  return info ? info->Kind() : vtkUnknown;
}

void CheckPattern(std::u16string_view APattern, const UnicodeString& AText) {
  if (!APattern.empty() && !TRegEx::IsMatch(AText, APattern))
    throw EArgumentOutOfRangeException(cVnXsPattern);
}

}  // namespace

TVnTypeKind XsIntegerKind(const TTypeInfo* AType) {
  const TVnTypeKind kind = KindOf(AType);
  if (!KindIn(kind, vtkByte, vtkInt64)) throw ENotSupportedException(cVnXsIntegerTypesOnly);
  return kind;
}

TVnTypeKind XsRationalKind(const TTypeInfo* AType) {
  const TVnTypeKind kind = KindOf(AType);
  if (!KindIn(kind, vtkSingle, vtkExtended)) throw ENotSupportedException(cVnXsRationalTypesOnly);
  return kind;
}

void XsCheckIntegerLimits(bool AUnsigned, UInt64 AValue, const XsIntegerBound (&ABounds)[4],
                          std::u16string_view APattern) {
  // -1: below, 0: equal, 1: above the bound.
  const auto order = [&](const XsIntegerBound& ABound) {
    if (AUnsigned) return AValue < ABound.Bits ? -1 : AValue == ABound.Bits ? 0 : 1;
    const auto v = static_cast<Int64>(AValue), b = static_cast<Int64>(ABound.Bits);
    return v < b ? -1 : v == b ? 0 : 1;
  };
  const auto& [minExclusive, maxExclusive, minInclusive, maxInclusive] = ABounds;
  if (minExclusive.Set && order(minExclusive) <= 0) throw EArgumentOutOfRangeException(cVnXsMinExclusive);
  if (maxExclusive.Set && order(maxExclusive) >= 0) throw EArgumentOutOfRangeException(cVnXsMaxExceeded);
  if (minInclusive.Set && order(minInclusive) < 0) throw EArgumentOutOfRangeException(cVnXsMinInclusive);
  if (maxInclusive.Set && order(maxInclusive) > 0) throw EArgumentOutOfRangeException(cVnXsMaxExceeded);
  if (!APattern.empty())
    CheckPattern(APattern, AUnsigned ? UIntToStr(AValue) : IntToStr(static_cast<Int64>(AValue)));
}

void XsCheckRationalLimits(Extended AValue, const int (&ADigits)[2], const XsRationalBound (&ABounds)[4],
                           std::u16string_view APattern) {
  const UnicodeString text = FloatToStr(AValue);
  if (ADigits[0] >= 0) {
    // Every character but the separators counts, a sign too.
    size_t digits = 0;
    for (char16_t c : text) digits += c != u'.' && c != u',';
    if (digits > static_cast<size_t>(ADigits[0])) throw EArgumentOutOfRangeException(cVnXsTotalDigits);
  }
  if (ADigits[1] >= 0 && std::isfinite(AValue)) {
    // The fraction's text behind its leading "0.".
    const UnicodeString fraction = FloatToStr(AValue - std::trunc(AValue));
    if (fraction.size() > 2 && fraction.size() - 2 > static_cast<size_t>(ADigits[1]))
      throw EArgumentOutOfRangeException(cVnXsFractionDigits);
  }
  const auto& [minExclusive, maxExclusive, minInclusive, maxInclusive] = ABounds;
  if (minExclusive.Set && !(AValue > minExclusive.Value))
    throw EArgumentOutOfRangeException(cVnXsMinExclusive);
  if (maxExclusive.Set && !(AValue < maxExclusive.Value))
    throw EArgumentOutOfRangeException(cVnXsMaxExceeded);
  if (minInclusive.Set && AValue < minInclusive.Value) throw EArgumentOutOfRangeException(cVnXsMinInclusive);
  if (maxInclusive.Set && AValue > maxInclusive.Value) throw EArgumentOutOfRangeException(cVnXsMaxExceeded);
  CheckPattern(APattern, text);
}

UnicodeString XsFloatToStr(Extended AValue) {
  // The platform's text already uses "."; a "," can only come from a locale, never from here.
  return FloatToStr(AValue);
}

Extended XsStrToFloat(std::u16string_view AText) { return StrToFloat(AText); }

}  // namespace vn::detail
