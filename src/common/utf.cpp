// UTF-8 <-> UTF-16 conversions with replacement of malformed input.
#include "vnxml/common/utf.h"

namespace vn {

UnicodeString Utf8ToUnicode(std::string_view AText) {
  UnicodeString out;
  out.reserve(AText.size());
  const auto* p = reinterpret_cast<const uint8_t*>(AText.data());
  const auto* end = p + AText.size();
  while (p < end) {
    uint8_t c = *p;
    if (c < 0x80) {
      // ASCII runs are the common case: copy them without the decoder's branches.
      const uint8_t* run = p;
      while (p < end && *p < 0x80) ++p;
      out.append(run, p);
      continue;
    }
    uint32_t cp;
    int need;
    uint8_t lo = 0x80, hi = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) { cp = c & 0x1F; need = 1; }
    else if (c >= 0xE0 && c <= 0xEF) {
      cp = c & 0x0F; need = 2;
      if (c == 0xE0) lo = 0xA0;
      if (c == 0xED) hi = 0x9F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      cp = c & 0x07; need = 3;
      if (c == 0xF0) lo = 0x90;
      if (c == 0xF4) hi = 0x8F;
    } else {
      out.push_back(u'\uFFFD');
      ++p;
      continue;
    }
    ++p;
    bool ok = true;
    for (int i = 0; i < need; ++i) {
      if (p >= end || *p < lo || *p > hi) { ok = false; break; }
      cp = (cp << 6) | (*p & 0x3F);
      ++p;
      lo = 0x80; hi = 0xBF;
    }
    if (!ok) { out.push_back(u'\uFFFD'); continue; }
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
  }
  return out;
}

UTF8String UnicodeToUtf8(std::u16string_view AText) {
  UTF8String out;
  out.reserve(AText.size());
  for (size_t i = 0, n = AText.size(); i < n; ++i) {
    uint32_t c = AText[i];
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
      continue;
    }
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n && AText[i + 1] >= 0xDC00 && AText[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (AText[i + 1] - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
  return out;
}

UnicodeString Latin1ToUnicode(std::string_view AText) {
  UnicodeString out(AText.size(), u'\0');
  for (size_t i = 0; i < AText.size(); ++i) out[i] = static_cast<uint8_t>(AText[i]);
  return out;
}

UnicodeString AsciiToUnicode(std::string_view AText) { return Latin1ToUnicode(AText); }

}  // namespace vn
