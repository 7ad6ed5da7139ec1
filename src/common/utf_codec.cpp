// Bulk UTF-8 <-> UTF-16 conversion: the decoder runs on every document read as UTF-8, so plain
// ASCII is widened 16 bytes at a time and only the rest goes through the sequence decoder.
#include <cstring>

#include "vnxml/common/encoding.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vn::detail {

namespace {

// Decodes one non-ASCII sequence at p (p < end); returns U+FFFD for a maximal bad subpart.
inline uint32_t DecodeSequence(const uint8_t*& p, const uint8_t* end) {
  const uint8_t c = *p++;
  uint32_t cp;
  int need;
  uint8_t lo = 0x80, hi = 0xBF;
  if (c >= 0xC2 && c <= 0xDF) {
    cp = c & 0x1Fu;
    need = 1;
  } else if (c >= 0xE0 && c <= 0xEF) {
    cp = c & 0x0Fu;
    need = 2;
    if (c == 0xE0) lo = 0xA0;  // overlong
    if (c == 0xED) hi = 0x9F;  // surrogates
  } else if (c >= 0xF0 && c <= 0xF4) {
    cp = c & 0x07u;
    need = 3;
    if (c == 0xF0) lo = 0x90;  // overlong
    if (c == 0xF4) hi = 0x8F;  // above U+10FFFF
  } else {
    return 0xFFFD;
  }
  for (int i = 0; i < need; ++i) {
    if (p >= end || *p < lo || *p > hi) return 0xFFFD;
    cp = (cp << 6) | (*p & 0x3Fu);
    ++p;
    lo = 0x80;
    hi = 0xBF;
  }
  return cp;
}

}  // namespace

void AppendUtf8AsUtf16(std::string_view ABytes, UnicodeString& AOut) {
  const size_t base = AOut.size();
  // A byte never yields more than one UTF-16 unit (four bytes give at most two).
  AOut.resize(base + ABytes.size());
  char16_t* out = AOut.data() + base;
  const auto* p = reinterpret_cast<const uint8_t*>(ABytes.data());
  const auto* end = p + ABytes.size();
  while (p < end) {
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    while (end - p >= 16) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      if (_mm_movemask_epi8(v) != 0) break;
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(v, zero));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(v, zero));
      p += 16;
      out += 16;
    }
#endif
    while (p < end && *p < 0x80) *out++ = *p++;
    if (p == end) break;
    // A run of non-ASCII text (most of a Cyrillic or CJK document) stays in this loop.
    while (p < end && *p >= 0x80) {
      uint32_t cp = DecodeSequence(p, end);
      if (cp >= 0x10000) {
        cp -= 0x10000;
        *out++ = static_cast<char16_t>(0xD800 + (cp >> 10));
        *out++ = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
      } else {
        *out++ = static_cast<char16_t>(cp);
      }
    }
  }
  AOut.resize(static_cast<size_t>(out - AOut.data()));
}

char* EncodeUtf16AsUtf8(const char16_t* p, const char16_t* end, char* AOut) {
  auto* out = reinterpret_cast<uint8_t*>(AOut);
  while (p < end) {
#if defined(__SSE2__)
    const __m128i highBits = _mm_set1_epi16(static_cast<short>(0xFF80));
    while (end - p >= 8) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, highBits), _mm_setzero_si128())) != 0xFFFF) break;
      _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(v, v));
      p += 8;
      out += 8;
    }
    if (p == end) break;
#endif
    uint32_t c = *p++;
    if (c < 0x80) {
      *out++ = static_cast<uint8_t>(c);
      continue;
    }
    if (c >= 0xD800 && c <= 0xDBFF && p < end && *p >= 0xDC00 && *p <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (*p++ - 0xDC00u);
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x800) {
      *out++ = static_cast<uint8_t>(0xC0 | (c >> 6));
      *out++ = static_cast<uint8_t>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      *out++ = static_cast<uint8_t>(0xE0 | (c >> 12));
      *out++ = static_cast<uint8_t>(0x80 | ((c >> 6) & 0x3F));
      *out++ = static_cast<uint8_t>(0x80 | (c & 0x3F));
    } else {
      *out++ = static_cast<uint8_t>(0xF0 | (c >> 18));
      *out++ = static_cast<uint8_t>(0x80 | ((c >> 12) & 0x3F));
      *out++ = static_cast<uint8_t>(0x80 | ((c >> 6) & 0x3F));
      *out++ = static_cast<uint8_t>(0x80 | (c & 0x3F));
    }
  }
  return reinterpret_cast<char*>(out);
}

void AppendUtf16AsUtf8(std::u16string_view AText, RawByteString& AOut) {
  const size_t base = AOut.size();
  AOut.resize(base + AText.size() * 3);
  char* end = EncodeUtf16AsUtf8(AText.data(), AText.data() + AText.size(), AOut.data() + base);
  AOut.resize(static_cast<size_t>(end - AOut.data()));
}

size_t Utf8CompletePrefix(std::string_view ABytes) {
  const auto* b = reinterpret_cast<const uint8_t*>(ABytes.data());
  const size_t n = ABytes.size();
  // An incomplete sequence is a lead byte and at most two continuation bytes at the very end.
  size_t i = n;
  while (i > 0 && n - i < 3 && (b[i - 1] & 0xC0) == 0x80) --i;
  if (i == 0) return n;
  const uint8_t lead = b[i - 1];
  size_t need;
  if (lead >= 0xC2 && lead <= 0xDF) need = 2;
  else if (lead >= 0xE0 && lead <= 0xEF) need = 3;
  else if (lead >= 0xF0 && lead <= 0xF4) need = 4;
  else return n;
  const size_t have = n - (i - 1);
  if (have >= need) return n;
  // Only a prefix that could still become valid waits for the next block; the second byte
  // carries the lead's extra limits.
  if (have >= 2) {
    const uint8_t second = b[i];
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
        (lead == 0xF4 && second > 0x8F))
      return n;
  }
  return i - 1;
}

}  // namespace vn::detail
