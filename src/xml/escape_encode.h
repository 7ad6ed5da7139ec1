// The escaping loop shared by the string, 8-bit and stream forms of VnStrToXML.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace vn::detail {

/// Bit c is set when character c (below 64) must be replaced; nothing at or above 64 ever is.
uint64_t EscapeMask(bool AEscapeApostrophe, bool AEscapeQuote, bool ADropNul) noexcept;

template <typename C>
inline bool NeedsEscape(C ACh, uint64_t AMask) noexcept {
  const auto code = static_cast<std::make_unsigned_t<C>>(ACh);
  return code < 64 && ((AMask >> code) & 1u) != 0;
}

/// Index of the first character that must be replaced, or ALength.
template <typename C>
size_t FindEscaped(const C* AText, size_t ALength, uint64_t AMask) noexcept {
  for (size_t i = 0; i < ALength; ++i)
    if (NeedsEscape(AText[i], AMask)) return i;
  return ALength;
}

/// Writes the replacement of a character that NeedsEscape into ABuffer and gives its length;
/// 0 for a dropped character 0.
template <typename C>
inline size_t EscapeText(unsigned ACode, C (&ABuffer)[8]) noexcept {
  const char* named = nullptr;
  switch (ACode) {
    case '<':
      named = "&lt;";
      break;
    case '>':
      named = "&gt;";
      break;
    case '&':
      named = "&amp;";
      break;
    case '\'':
      named = "&apos;";
      break;
    case '"':
      named = "&quot;";
      break;
    case 0:
      return 0;
    default:
      break;
  }
  size_t n = 0;
  if (named != nullptr) {
    while (named[n] != 0) {
      ABuffer[n] = static_cast<C>(named[n]);
      ++n;
    }
    return n;
  }
  // Control characters 1 to 31 as decimal references.
  ABuffer[n++] = C('&');
  ABuffer[n++] = C('#');
  if (ACode >= 10) ABuffer[n++] = static_cast<C>('0' + ACode / 10);
  ABuffer[n++] = static_cast<C>('0' + ACode % 10);
  ABuffer[n++] = C(';');
  return n;
}

/// Walks AText once: plain runs and replacements go to AAppend(pointer, length) in order, runs as
/// whole blocks.
template <typename C, typename AppendFn>
void EscapeRuns(const C* AText, size_t ALength, uint64_t AMask, AppendFn&& AAppend) {
  size_t runStart = 0;
  C buffer[8];
  for (size_t i = 0; i < ALength; ++i) {
    if (!NeedsEscape(AText[i], AMask)) continue;
    if (i > runStart) AAppend(AText + runStart, i - runStart);
    const size_t n = EscapeText(static_cast<std::make_unsigned_t<C>>(AText[i]), buffer);
    if (n != 0) AAppend(static_cast<const C*>(buffer), n);
    runStart = i + 1;
  }
  if (ALength > runStart) AAppend(AText + runStart, ALength - runStart);
}

}  // namespace vn::detail
