// Which loaded text the writer may copy as it stands: the text that decoding and encoding
// again would give unchanged. The loader finds it once, the writer asks when nobody did.
#pragma once

#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "vnxml/json_document.h"

namespace vn::detail {

// True when a loaded string's raw text comes out of decode-then-encode unchanged: printable
// ASCII other than "/", and only the escapes the encoder itself writes.
template <class U>
inline bool IsPlainString(const U* p, uint32_t n) noexcept {
  for (uint32_t i = 0; i < n; ++i) {
    const auto c = static_cast<uint32_t>(p[i]);
    if (c < 0x20 || c > 0x7F || c == '/' || c == '"') return false;  // a bare quote comes from form text
    if (c == '\\') {
      if (++i == n) return false;
      switch (static_cast<uint32_t>(p[i])) {
        case '"': case '\\': case '/': case 'b': case 'f': case 'n': case 'r': case 't': break;
        default: return false;
      }
    }
  }
  return true;
}

// True when a raw name or number is written as it stands: printable ASCII with nothing the
// encoder escapes (a name is encoded again as it was read) and nothing the decoder changes.
template <class U>
inline bool IsPlainToken(const U* p, uint32_t n) noexcept {
  for (uint32_t i = 0; i < n; ++i) {
    const auto c = static_cast<uint32_t>(p[i]);
    if (c < 0x20 || c > 0x7F || c == '/' || c == '\\' || c == '"' || c == '%') return false;
  }
  return true;
}

#if defined(__SSE2__)
// Bytes that keep a one-byte text from being copied: below U+0020 or above U+007F (both below
// 0x20 as signed bytes), "/", the quote, and for tokens also the backslash and "%".
inline int StopMask(__m128i v, bool AToken) noexcept {
  __m128i stop = _mm_cmplt_epi8(v, _mm_set1_epi8(0x20));
  stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('/')));
  stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('"')));
  if (AToken) {
    stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('\\')));
    stop = _mm_or_si128(stop, _mm_cmpeq_epi8(v, _mm_set1_epi8('%')));
  }
  return _mm_movemask_epi8(stop);
}
#endif

// IsPlainString and IsPlainToken for one-byte text, sixteen bytes a step where there are
// that many: most names and values are plain and short runs of them.
inline bool IsPlainBytes(const uint8_t* p, uint32_t n, bool AString) noexcept {
  uint32_t i = 0;
#if defined(__SSE2__)
  for (; i + 16 <= n; i += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    if (StopMask(v, !AString)) return false;
    // a backslash in a string needs a look at its escape: leave it to the loop below
    if (AString && _mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8('\\')))) break;
  }
#endif
  return AString ? IsPlainString(p + i, n - i) : IsPlainToken(p + i, n - i);
}

inline bool IsPlain(const JSONText& AText, bool AString) noexcept {
  if (AText.Width == 1) return IsPlainBytes(static_cast<const uint8_t*>(AText.Data), AText.Length, AString);
  auto* p = static_cast<const char16_t*>(AText.Data);
  return AString ? IsPlainString(p, AText.Length) : IsPlainToken(p, AText.Length);
}

/// IsPlain, from the text's own mark when the loader set one.
inline bool IsPlainText(const JSONText& AText, bool AString) noexcept {
  if (AText.Plain != JSONText::kPlainUnknown) return AText.Plain == JSONText::kPlainYes;
  return IsPlain(AText, AString);
}

}  // namespace vn::detail
