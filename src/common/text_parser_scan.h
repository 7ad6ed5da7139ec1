// text_parser_scan.h: the scanner's inner loops, shared with the readers that walk its cursor.
// Every loop is bounded by an end pointer; none reads past it.
#pragma once

#include <cstring>
#include <string>

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

/// Widens bytes one to one (Latin-1, and ASCII text of any ASCII-compatible page).
inline void AppendLatin1(const uint8_t* p, const uint8_t* e, std::u16string& AOut) {
  size_t base = AOut.size();
  AOut.resize(base + static_cast<size_t>(e - p));
  char16_t* d = AOut.data() + base;
  while (p < e) *d++ = *p++;
}

}  // namespace vn::detail
