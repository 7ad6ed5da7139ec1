// text_parser_scan.h: the scanner's inner loops, shared with the readers that walk its cursor.
// Every loop is bounded by an end pointer; none reads past it.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "vnxml/common/text_parser.h"

namespace vn::detail {

/// A 256-entry class table for bytes or units below 256; units above 255 take AHigh.
struct ByteClass {
  bool In[256] = {};
  bool High = false;
  constexpr ByteClass() = default;
  constexpr ByteClass(std::string_view AChars, bool AWhite, bool AHigh) : High(AHigh) {
    for (char c : AChars) In[static_cast<uint8_t>(c)] = true;
    if (AWhite)
      for (int c = 0; c <= 0x20; ++c) In[c] = true;
  }
  constexpr bool Has(uint8_t AByte) const { return In[AByte]; }
  constexpr bool Has(char16_t AUnit) const { return AUnit < 256 ? In[AUnit] : High; }
};

// ---- find one code unit ----
inline const uint8_t* FindUnit(const uint8_t* p, const uint8_t* e, uint8_t c) {
  if (p >= e) return e;  // also keeps a null empty text away from memchr
  const void* hit = std::memchr(p, c, static_cast<size_t>(e - p));
  return hit ? static_cast<const uint8_t*>(hit) : e;
}

/// What the bytes before the unit that FindUnitNoting found hold.
struct ScanNotes {
  bool High = false;   // a byte from 0x80 up: the run is not plain ASCII
  bool Quote = false;  // a double quote
};

/// As FindUnit, noting what the bytes on the way hold, so that a reader of the run needs no
/// second pass to learn it.
inline const uint8_t* FindUnitNoting(const uint8_t* p, const uint8_t* e, uint8_t c, ScanNotes& ANotes) {
#if defined(__SSE2__)
  const __m128i stop = _mm_set1_epi8(static_cast<char>(c)), quote = _mm_set1_epi8('"');
  for (; e - p >= 16; p += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const auto hit = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, stop)));
    const unsigned before = hit ? (hit & (0u - hit)) - 1 : 0xFFFFu;  // the bytes before the unit
    if (static_cast<unsigned>(_mm_movemask_epi8(v)) & before) ANotes.High = true;
    if (static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, quote))) & before) ANotes.Quote = true;
    if (hit) return p + std::countr_zero(hit);
  }
#endif
  for (; p < e && *p != c; ++p) {
    ANotes.High |= *p >= 0x80;
    ANotes.Quote |= *p == '"';
  }
  return p;
}

inline const char16_t* FindUnit(const char16_t* p, const char16_t* e, char16_t c) {
  while (e - p >= 4) {
    if (p[0] == c) return p;
    if (p[1] == c) return p + 1;
    if (p[2] == c) return p + 2;
    if (p[3] == c) return p + 3;
    p += 4;
  }
  while (p < e && *p != c) ++p;
  return p;
}

/// First unit that is in the class, or e.
template <class U>
inline const U* FindInClass(const U* p, const U* e, const ByteClass& k) {
  while (e - p >= 4) {
    if (k.Has(p[0])) return p;
    if (k.Has(p[1])) return p + 1;
    if (k.Has(p[2])) return p + 2;
    if (k.Has(p[3])) return p + 3;
    p += 4;
  }
  while (p < e && !k.Has(*p)) ++p;
  return p;
}

/// First unit that is not in the class, or e.
template <class U>
inline const U* SkipInClass(const U* p, const U* e, const ByteClass& k) {
  while (p < e && k.Has(*p)) ++p;
  return p;
}

/// First unit above ALimit, or e.
template <class U>
inline const U* SkipAtMost(const U* p, const U* e, unsigned ALimit) {
  while (p < e && static_cast<unsigned>(*p) <= ALimit) ++p;
  return p;
}

/// As above for bytes: the indentation between tags is mostly passed in one step of sixteen.
inline const uint8_t* SkipAtMost(const uint8_t* p, const uint8_t* e, unsigned ALimit) {
#if defined(__SSE2__)
  if (ALimit < 0xFF) {
    const __m128i limit = _mm_set1_epi8(static_cast<char>(ALimit));
    while (e - p >= 16) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      // bytes at or below the limit are those the unsigned minimum leaves as they are
      const auto above = ~static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(v, limit), v))) & 0xFFFFu;
      if (above) return p + std::countr_zero(above);
      p += 16;
    }
  }
#endif
  while (p < e && *p <= ALimit) ++p;
  return p;
}

template <class U>
inline const U* SkipEqual(const U* p, const U* e, U c) {
  while (p < e && *p == c) ++p;
  return p;
}

// ---- UTF-8 ----
/// Length of the UTF-8 sequence that starts at p (1 for an invalid or cut one), bounded by e.
inline const uint8_t* Utf8Next(const uint8_t* p, const uint8_t* e) {
  uint8_t c = *p++;
  if (c < 0xC2) return p;
  int more = c < 0xE0 ? 1 : c < 0xF0 ? 2 : c < 0xF5 ? 3 : 0;
  while (more-- > 0 && p < e && (*p & 0xC0) == 0x80) ++p;
  return p;
}

/// Appends the UTF-8 bytes [p, e) to AOut as UTF-16; ASCII runs take the fast path.
void AppendUtf8(const uint8_t* p, const uint8_t* e, std::u16string& AOut);
/// The UTF-8 bytes [p, e) as UTF-16 in AScratch, whose size is kept (not the text's length).
std::u16string_view DecodeUtf8(const uint8_t* p, const uint8_t* e, std::u16string& AScratch);

/// As DecodeUtf8 for a span [AStart, e) whose first AKept units already stand decoded in
/// AScratch, up to p: only [p, e) is decoded, unless it holds a sequence the fast decoder leaves
/// to the shared one, in which case the whole span is decoded again.
std::u16string_view DecodeUtf8Rest(const uint8_t* AStart, const uint8_t* p, const uint8_t* e,
                                   std::u16string& AScratch, size_t AKept);

// ---- ASCII runs, sixteen bytes at a time ----
// Names, values and text are nearly always ASCII; these loops find the end of such a run and
// widen it into a scratch buffer in the same pass, so the bytes are read once.

/// Stops at any of the bytes Cs; with AWhite also at every byte from NUL to the space.
template <bool AWhite, char... Cs>
struct StopAt {
#if defined(__SSE2__)
  static uint32_t Mask(__m128i v) {
    uint32_t m = (0u | ... | static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8(Cs)))));
    if constexpr (AWhite)
      m |= static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(v, _mm_set1_epi8(0x20)), v)));
    return m;
  }
#endif
  static bool At(uint8_t c) { return (AWhite && c <= 0x20) || (false || ... || (c == static_cast<uint8_t>(Cs))); }
};

/// Stops at one byte chosen at run time (the quote that closes a value).
struct StopAtByte {
  uint8_t C;
#if defined(__SSE2__)
  __m128i V;
  explicit StopAtByte(uint8_t AByte) : C(AByte), V(_mm_set1_epi8(static_cast<char>(AByte))) {}
  uint32_t Mask(__m128i v) const { return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, V))); }
#else
  explicit StopAtByte(uint8_t AByte) : C(AByte) {}
#endif
  bool At(uint8_t c) const { return c == C; }
};

/// Stops at the first byte above the space.
struct StopAtNonWhite {
#if defined(__SSE2__)
  static uint32_t Mask(__m128i v) {
    return ~static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(v, _mm_set1_epi8(0x20)), v))) &
           0xFFFFu;
  }
#endif
  static bool At(uint8_t c) { return c > 0x20; }
};

/// Widens the ASCII bytes from p into AScratch from unit AUnits on, until the first byte that
/// AStop names or the first byte above 0x7F, whichever comes first; returns where it stopped
/// and leaves the count of units decoded so far in AUnits. The scratch only grows, and may hold
/// up to sixteen units more than were decoded.
template <class Stop>
inline const uint8_t* ScanAscii(const uint8_t* p, const uint8_t* e, const Stop& AStop, std::u16string& AScratch,
                                size_t& AUnits) {
  size_t n = AUnits;
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  while (e - p >= 16) {
    if (AScratch.size() < n + 16) AScratch.resize(std::max(n + 16, 2 * AScratch.size()));
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const uint32_t stop = AStop.Mask(v) | static_cast<uint32_t>(_mm_movemask_epi8(v));
    char16_t* d = AScratch.data() + n;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_unpacklo_epi8(v, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 8), _mm_unpackhi_epi8(v, zero));
    if (stop) {
      const auto k = static_cast<unsigned>(std::countr_zero(stop));
      AUnits = n + k;
      return p + k;
    }
    p += 16;
    n += 16;
  }
#endif
  // Fewer than sixteen bytes before the end of the text (or no vector unit): one at a time.
  if (AScratch.size() < n + static_cast<size_t>(e - p))
    AScratch.resize(std::max(n + static_cast<size_t>(e - p), 2 * AScratch.size()));
  while (p < e && *p < 0x80 && !AStop.At(*p)) AScratch[n++] = *p++;
  AUnits = n;
  return p;
}

/// Widens bytes one to one (Latin-1, and ASCII text of any ASCII-compatible page).
inline void AppendLatin1(const uint8_t* p, const uint8_t* e, std::u16string& AOut) {
  size_t base = AOut.size();
  AOut.resize(base + static_cast<size_t>(e - p));
  char16_t* d = AOut.data() + base;
  while (p < e) *d++ = *p++;
}

}  // namespace vn::detail
