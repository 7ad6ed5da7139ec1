// Pieces of the reference decoder shared by the UTF-16 and 8-bit forms of VnXMLToStr.
#pragma once

#include <string_view>

namespace vn::detail {

/// Position of the ';' or space that ends the reference opened by the '&' at AAmp, or the text's size.
/// A further '&' does not end it: "&foo&amp;" is one unknown name.
template <typename C>
size_t FindReferenceEnd(std::basic_string_view<C> AText, size_t AAmp) noexcept {
  size_t i = AAmp + 1;
  while (i < AText.size() && AText[i] != C(';') && AText[i] != C(' ')) ++i;
  return i;
}

/// Value of the text behind "&#" (decimal, or 'x'/'X' and hexadecimal), cut to 16 bits.
/// Raises EConvertError when the text holds no valid number.
char16_t DecodeNumericReference(std::u16string_view ADigits);

}  // namespace vn::detail
