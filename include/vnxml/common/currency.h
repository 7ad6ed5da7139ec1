// currency.h: Currency, the platform's fixed-point money type (common platform layer).
// A Currency holds an Int64 scaled by 10000: four exact decimals, range about +/-9.22e14.
// Conversions out of range raise EInvalidOp; division by zero raises EZeroDivide.
#pragma once

#include <compare>

#include "vnxml/common/types.h"

namespace vn {

class Currency {
 public:
  static constexpr Int64 Scale = 10000;

  constexpr Currency() noexcept = default;
  /// A whole amount; raises EInvalidOp when it is out of range.
  static Currency FromInt64(Int64 AValue);
  /// Rounds to four decimals, ties to even; raises EInvalidOp when out of range or not a number.
  static Currency FromDouble(long double AValue);
  /// The scaled value as stored: FromRaw(15000) is 1.5.
  static constexpr Currency FromRaw(Int64 AScaled) noexcept {
    Currency c;
    c.FRaw = AScaled;
    return c;
  }

  constexpr Int64 Raw() const noexcept { return FRaw; }
  long double ToExtended() const noexcept { return static_cast<long double>(FRaw) / Scale; }
  double ToDouble() const noexcept { return static_cast<double>(ToExtended()); }
  /// Rounded to a whole amount, ties to even (the platform's Round).
  Int64 Round() const noexcept;
  /// The whole part, towards zero.
  constexpr Int64 Trunc() const noexcept { return FRaw / Scale; }

  friend constexpr bool operator==(Currency, Currency) noexcept = default;
  friend constexpr auto operator<=>(Currency, Currency) noexcept = default;

  // Arithmetic raises EIntOverflow when the result leaves the range.
  friend Currency operator+(Currency A, Currency B);
  friend Currency operator-(Currency A, Currency B);
  friend Currency operator*(Currency A, Currency B);
  friend Currency operator/(Currency A, Currency B);
  Currency operator-() const;
  Currency& operator+=(Currency B) { return *this = *this + B; }
  Currency& operator-=(Currency B) { return *this = *this - B; }
  Currency& operator*=(Currency B) { return *this = *this * B; }
  Currency& operator/=(Currency B) { return *this = *this / B; }

 private:
  Int64 FRaw = 0;
};

/// Shortest decimal text with '.', no exponent and no trailing zeros: "1.5", "-0.0001", "12".
UnicodeString CurrToStr(Currency AValue);
/// Reads an optionally signed decimal text ('.' separator, blanks around allowed), exact to four
/// decimals, or any float text rounded to four; false when it is no number or out of range.
bool TryStrToCurr(std::u16string_view AText, Currency& AValue);
/// As TryStrToCurr; raises EConvertError "'%s' is not a valid floating point value" on failure.
Currency StrToCurr(std::u16string_view AText);

}  // namespace vn
