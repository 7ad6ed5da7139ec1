// Escaping of plain text into XML character data: one pass that copies runs of plain characters
// as blocks and writes a replacement only for the characters that need one.
#include <cstdint>
#include <string>

#include "escape_encode.h"
#include "vnxml/xml_escape.h"

namespace vn {
namespace detail {

uint64_t EscapeMask(bool AEscapeApostrophe, bool AEscapeQuote, bool ADropNul) noexcept {
  // Characters 1 to 31 and < > & always; every special character lies below 64.
  uint64_t mask = 0xFFFFFFFEull | (1ull << '<') | (1ull << '>') | (1ull << '&');
  if (AEscapeApostrophe) mask |= 1ull << '\'';
  if (AEscapeQuote) mask |= 1ull << '"';
  if (ADropNul) mask |= 1ull;
  return mask;
}

}  // namespace detail

namespace {

template <typename C>
std::basic_string<C> Escape(std::basic_string_view<C> AText, uint64_t AMask) {
  const size_t first = detail::FindEscaped(AText.data(), AText.size(), AMask);
  if (first == AText.size()) return std::basic_string<C>(AText);
  std::basic_string<C> out;
  // A few escapes are typical; one reallocation at most for heavily escaped text.
  out.reserve(AText.size() + AText.size() / 8 + 16);
  out.append(AText.data(), first);
  detail::EscapeRuns(AText.data() + first, AText.size() - first, AMask,
                     [&](const C* APiece, size_t ALength) { out.append(APiece, ALength); });
  return out;
}

}  // namespace

UnicodeString VnStrToXML(std::u16string_view S, bool EscapeApostrophe, bool EscapeQuote) {
  return Escape(S, detail::EscapeMask(EscapeApostrophe, EscapeQuote, true));
}

AnsiString VnStrToXML(std::string_view S, bool EscapeApostrophe, bool EscapeQuote) {
  return Escape(S, detail::EscapeMask(EscapeApostrophe, EscapeQuote, false));
}

}  // namespace vn
