// float_decimal.h: a floating-point value as rounded decimal digits, shared by FloatToStr and Format.
#pragma once

#include <string>

#include "vnxml/common/types.h"

namespace vn::detail {

/// The value is 0.Digits x 10^Exponent; Digits has no trailing zeros and is empty for zero.
struct FloatDecimal {
  enum TKind : uint8_t { fdNumber, fdNaN, fdInf };
  TKind Kind = fdNumber;
  bool Negative = false;
  Integer Exponent = 0;
  std::string Digits;
};

/// Rounds AValue (half away from zero) to at most APrecision significant digits and at most
/// ADecimals digits behind the decimal point (ADecimals < 0: no such limit).
FloatDecimal ToFloatDecimal(Extended AValue, Integer APrecision, Integer ADecimals = -1);

/// The platform's general format: fixed unless the exponent exceeds APrecision or the value is
/// below 1E-4; the exponent form has no '+' and at least AExpDigits digits.
UnicodeString FormatGeneral(const FloatDecimal& AValue, Integer APrecision, Integer AExpDigits);
/// Scientific form with exactly APrecision digits and a signed exponent of at least AExpDigits digits.
UnicodeString FormatExponent(const FloatDecimal& AValue, Integer APrecision, Integer AExpDigits);
/// Fixed form with exactly ADecimals digits behind the point, optionally with ',' grouping.
UnicodeString FormatFixed(const FloatDecimal& AValue, Integer ADecimals, bool AThousands);

}  // namespace vn::detail
