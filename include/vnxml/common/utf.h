// utf.h: conversions between UTF-8 and UTF-16 (common platform layer).
// Invalid input never fails: a bad UTF-8 sequence or a lone surrogate becomes U+FFFD.
#pragma once

#include "vnxml/common/types.h"

namespace vn {

/// UTF-8 bytes to UTF-16; malformed sequences become U+FFFD, one per maximal bad subpart.
UnicodeString Utf8ToUnicode(std::string_view AText);
/// UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD.
UTF8String UnicodeToUtf8(std::u16string_view AText);
/// Latin-1 bytes to UTF-16 (each byte is its code point).
UnicodeString Latin1ToUnicode(std::string_view AText);
/// ASCII literal helper for messages built at run time: bytes are widened one by one.
UnicodeString AsciiToUnicode(std::string_view AText);

}  // namespace vn
