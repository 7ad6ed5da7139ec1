// UTF-8 <-> UTF-16 conversions with replacement of malformed input (the block codecs of encoding.h).
#include "vnxml/common/utf.h"

#include "vnxml/common/encoding.h"

namespace vn {

UnicodeString Utf8ToUnicode(std::string_view AText) {
  UnicodeString out;
  detail::AppendUtf8AsUtf16(AText, out);
  return out;
}

UTF8String UnicodeToUtf8(std::u16string_view AText) {
  UTF8String out;
  detail::AppendUtf16AsUtf8(AText, out);
  return out;
}

UnicodeString Latin1ToUnicode(std::string_view AText) {
  UnicodeString out(AText.size(), u'\0');
  for (size_t i = 0; i < AText.size(); ++i) out[i] = static_cast<uint8_t>(AText[i]);
  return out;
}

UnicodeString AsciiToUnicode(std::string_view AText) { return Latin1ToUnicode(AText); }

}  // namespace vn
