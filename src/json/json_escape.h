// The string escaping of JSON text, appending to a caller's buffer: the writer of the JSON
// document and VnStrToJSON share it.
#pragma once

#include <string>
#include <string_view>

#include "vnxml/json_contract.h"

namespace vn::detail {

/// What VnStrToJSON makes of each unit below U+0100: 0 copied, 1 dropped, else the letter after
/// a backslash. Every unit from U+0100 up becomes a \uXXXX escape.
struct StrToJSONEscapes {
  char16_t Of[256] = {};
  constexpr StrToJSONEscapes() {
    for (int c = 1; c <= 7; ++c) Of[c] = 1;
    Of[0x08] = u'b', Of[0x09] = u't', Of[0x0A] = u'n', Of[0x0C] = u'f', Of[0x0D] = u'r';
    Of[u'"'] = u'"', Of[u'/'] = u'/', Of[u'\\'] = u'\\';
  }
  /// The escape of AUnit as above, 0xFFFF for a \uXXXX escape.
  constexpr char16_t operator[](char16_t AUnit) const noexcept { return AUnit < 0x100 ? Of[AUnit] : 0xFFFF; }
};
inline constexpr StrToJSONEscapes kStrToJSONEscapes;

/// Appends AText escaped as VnStrToJSON does; unchanged runs are copied whole.
void AppendStrToJSON(std::u16string_view AText, std::u16string& AOut);
/// Appends AText decoded as VnJSONtoStr does.
void AppendJSONtoStr(std::u16string_view AText, TVnJSONDataType AType, std::u16string& AOut);

}  // namespace vn::detail
