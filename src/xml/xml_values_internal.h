// xml_values_internal.h: helpers shared by the files of the typed value conversions.
#pragma once

#include <cmath>
#include <limits>
#include <string_view>

#include "vnxml/xml_values.h"

namespace vn::detail {

/// Unsigned 64-bit text; a negative text is read signed and cut. Raises EConvertError.
UInt64 XMLTextToUInt64(std::u16string_view AText);
/// Float text with '.', or INF, -INF, NaN in any case.
bool TryXMLTextToFloat(std::u16string_view AText, Extended& AValue);
/// As TryXMLTextToFloat; raises EConvertError with the platform's message.
Extended XMLTextToFloat(std::u16string_view AText);

/// Narrows a float; values beyond the range of T become infinities instead of undefined behaviour.
/// A value less than half a unit in the last place above the largest one rounds to it, as the
/// shortest text of that largest value ("3.4028235E38") does.
template <class T>
T NarrowFloat(Extended AValue) {
  constexpr T max = std::numeric_limits<T>::max();
  if (std::isfinite(AValue) && std::fabs(AValue) > max) {
    const Extended limit = Extended(max) + (Extended(max) - Extended(std::nextafter(max, T(0)))) / 2;
    if (std::fabs(AValue) < limit) return AValue < 0 ? -max : max;
    return AValue < 0 ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
  }
  return static_cast<T>(AValue);
}

/// The clock reading of parsed parts as a TTime in [0, 1).
TTime EncodeClock(const TVnDateTimeParts& AParts);
/// The date of parsed parts (0 when the text had none), negated for a negative year.
TDateTime EncodeCalendarDate(const TVnDateTimeParts& AParts);

}  // namespace vn::detail
