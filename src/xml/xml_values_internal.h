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
template <class T>
T NarrowFloat(Extended AValue) {
  if (std::isfinite(AValue) && std::fabs(AValue) > std::numeric_limits<T>::max())
    return AValue < 0 ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
  return static_cast<T>(AValue);
}

/// The clock reading of parsed parts as a TTime in [0, 1).
TTime EncodeClock(const TVnDateTimeParts& AParts);
/// The date of parsed parts (0 when the text had none), negated for a negative year.
TDateTime EncodeCalendarDate(const TVnDateTimeParts& AParts);

}  // namespace vn::detail
