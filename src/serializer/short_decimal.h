// Integer members are mostly short plain decimals: those are read here without the general
// conversion's per-digit overflow checks, which they can never need.
#pragma once

#include <string_view>

#include "vnxml/common/types.h"

namespace vn::detail {

/// The value of "[+-]digits" with at most AMaxDigits digits (at most 18, so it always fits an
/// Int64); false for any other text, which then takes the general conversion and its messages.
inline bool ShortDecimal(std::u16string_view AText, Int64& AValue, size_t AMaxDigits = 18) noexcept {
  size_t i = 0;
  const bool negative = !AText.empty() && AText[0] == u'-';
  if (!AText.empty() && (AText[0] == u'-' || AText[0] == u'+')) i = 1;
  const size_t digits = AText.size() - i;
  if (digits == 0 || digits > AMaxDigits) return false;
  Int64 value = 0;
  for (; i < AText.size(); ++i) {
    const char16_t c = AText[i];
    if (c < u'0' || c > u'9') return false;
    value = value * 10 + (c - u'0');
  }
  AValue = negative ? -value : value;
  return true;
}

}  // namespace vn::detail
