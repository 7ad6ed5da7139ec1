// The Base64 text of stream members: the published alphabet with "=" padding, no line breaks.
#pragma once

#include <string>
#include <string_view>

namespace vn::detail {

std::string Base64Encode(std::string_view ABytes);
/// Blanks and line breaks are passed over; any other character outside the alphabet, or a
/// length that no padding explains, raises EConvertError.
std::string Base64Decode(std::string_view AText);

}  // namespace vn::detail
