// JSON string escapes written straight into an output block, in UTF-8: from UTF-16 units or
// from UTF-8 text, the same bytes either way as VnStrToJSON and an encode would give.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "json/json_escape.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vn::detail {

inline constexpr char kHex[] = "0123456789ABCDEF";

/// The JSON escape of one UTF-16 unit at AOut, as VnStrToJSON makes it, in UTF-8; the end.
inline char* PutEscapedUnit(char* AOut, char16_t c) noexcept {
  const char16_t e = kStrToJSONEscapes[c];
  if (e == 0) {
    if (c < 0x80) {
      *AOut++ = static_cast<char>(c);
    } else {
      *AOut++ = static_cast<char>(0xC0 | (c >> 6));
      *AOut++ = static_cast<char>(0x80 | (c & 0x3F));
    }
  } else if (e == 0xFFFF) {
    const char escape[6] = {'\\', 'u', kHex[c >> 12], kHex[(c >> 8) & 15], kHex[(c >> 4) & 15], kHex[c & 15]};
    std::memcpy(AOut, escape, 6);
    AOut += 6;
  } else if (e != 1) {
    *AOut++ = '\\';
    *AOut++ = static_cast<char>(e);
  }
  return AOut;
}

/// The bytes of UTF-8 text that go out as they are: ASCII that needs no escape, and no "&".
struct StaysInUtf8 {
  bool Of[256] = {};
  constexpr StaysInUtf8() {
    for (int c = 0x20; c < 0x80; ++c) Of[c] = kStrToJSONEscapes[static_cast<char16_t>(c)] == 0 && c != '&';
  }
  constexpr bool operator[](uint8_t AByte) const noexcept { return Of[AByte]; }
};
inline constexpr StaysInUtf8 kStaysInUtf8;

/// Well-formed UTF-8 text escaped as VnStrToJSON escapes its UTF-16 form, at AOut, which has
/// room for 6 bytes a byte; the end, or nil at a "&": text with references must be decoded
/// first. What stays as it is goes in runs, sixteen bytes a step.
inline char* PutJSONFromUtf8(char* AOut, std::string_view AText) noexcept {
  const auto* p = reinterpret_cast<const uint8_t*>(AText.data());
  const uint8_t* const end = p + AText.size();
  while (p < end) {
#if defined(__SSE2__)
    // a byte stays when it lies in 0x20..0x7F and is none of " / backslash &; signed, bytes from
    // 0x80 up compare below the blank
    const __m128i space = _mm_set1_epi8(0x20);
    const __m128i quote = _mm_set1_epi8('"'), slash = _mm_set1_epi8('/'), backslash = _mm_set1_epi8('\\');
    const __m128i amp = _mm_set1_epi8('&');
    while (end - p >= 16) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      __m128i stop = _mm_or_si128(_mm_cmplt_epi8(v, space), _mm_cmpeq_epi8(v, quote));
      stop = _mm_or_si128(stop, _mm_or_si128(_mm_cmpeq_epi8(v, slash), _mm_cmpeq_epi8(v, backslash)));
      stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, amp));
      const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(stop));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(AOut), v);
      if (mask != 0) {
        const unsigned keep = static_cast<unsigned>(__builtin_ctz(mask));
        p += keep;
        AOut += keep;
        break;
      }
      p += 16;
      AOut += 16;
    }
#endif
    while (p < end && kStaysInUtf8[*p]) *AOut++ = static_cast<char>(*p++);
    if (p == end) break;
    const uint8_t c = *p;
    if (c == '&') return nullptr;
    if (c < 0x80) {
      AOut = PutEscapedUnit(AOut, c);
      ++p;
    } else if (c < 0xE0) {
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(((c & 0x1F) << 6) | (p[1] & 0x3F)));
      p += 2;
    } else if (c < 0xF0) {
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(((c & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F)));
      p += 3;
    } else {
      const uint32_t cp = ((c & 0x07u) << 18) | ((p[1] & 0x3Fu) << 12) | ((p[2] & 0x3Fu) << 6) | (p[3] & 0x3Fu);
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
      AOut = PutEscapedUnit(AOut, static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
      p += 4;
    }
  }
  return AOut;
}

/// AText escaped as VnStrToJSON does, encoded as UTF-8 at AOut, which has room for 6 bytes a
/// unit; the end. Plain ASCII goes eight units a step.
inline char* PutJSONUtf8(char* AOut, std::u16string_view AText) noexcept {
  const char16_t* p = AText.data();
  const char16_t* const end = p + AText.size();
  while (p < end) {
#if defined(__SSE2__)
    // a unit is plain when it lies in 0x20..0x7F and is none of " / backslash
    const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i space = _mm_set1_epi16(0x20);
    const __m128i quote = _mm_set1_epi16('"'), slash = _mm_set1_epi16('/'), backslash = _mm_set1_epi16('\\');
    while (end - p >= 8) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      __m128i stop = _mm_cmpeq_epi16(_mm_and_si128(v, high), _mm_setzero_si128());  // below 0x80
      stop = _mm_andnot_si128(_mm_cmplt_epi16(v, space), stop);
      stop = _mm_andnot_si128(_mm_cmpeq_epi16(v, quote), stop);
      stop = _mm_andnot_si128(_mm_cmpeq_epi16(v, slash), stop);
      stop = _mm_andnot_si128(_mm_cmpeq_epi16(v, backslash), stop);
      if (_mm_movemask_epi8(stop) != 0xFFFF) break;
      _mm_storel_epi64(reinterpret_cast<__m128i*>(AOut), _mm_packus_epi16(v, v));
      p += 8;
      AOut += 8;
    }
    if (p == end) break;
#endif
    AOut = PutEscapedUnit(AOut, *p++);
  }
  return AOut;
}

/// Whether a member name must be escaped to stay inside its JSON string.
inline bool NeedsEscape(std::u16string_view AName) noexcept {
  return std::any_of(AName.begin(), AName.end(), [](char16_t c) { return c == u'"' || c == u'\\' || c < 0x20; });
}

}  // namespace vn::detail
