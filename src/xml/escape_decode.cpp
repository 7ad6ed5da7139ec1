// Decoding of XML character data: character references and entity names. What is not recognised
// stays in the text unchanged, so a stray '&' in hand-written text never loses data.
#include <string>

#include "escape_decode.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/xml_escape.h"

namespace vn {
namespace detail {

char16_t DecodeNumericReference(std::u16string_view ADigits) {
  if (ADigits.empty() || (ADigits[0] != u'x' && ADigits[0] != u'X'))
    return static_cast<char16_t>(static_cast<uint32_t>(StrToInt(ADigits)) & 0xFFFFu);
  // Hexadecimal goes to the conversion in its '$' notation, so it reports the text it rejects.
  char16_t small[24];
  UnicodeString large;
  std::u16string_view text;
  if (ADigits.size() < std::size(small)) {
    small[0] = u'$';
    ADigits.substr(1).copy(small + 1, ADigits.size() - 1);
    text = std::u16string_view(small, ADigits.size());
  } else {
    large.reserve(ADigits.size());
    large.push_back(u'$');
    large.append(ADigits.substr(1));
    text = large;
  }
  return static_cast<char16_t>(static_cast<uint32_t>(StrToInt(text)) & 0xFFFFu);
}

}  // namespace detail

UnicodeString VnXMLToStr(std::u16string_view S) {
  size_t amp = S.find(u'&');
  if (amp == std::u16string_view::npos) return UnicodeString(S);
  UnicodeString out;
  out.reserve(S.size());
  size_t runStart = 0;
  while (amp != std::u16string_view::npos) {
    const size_t stop = detail::FindReferenceEnd(S, amp);
    if (stop < S.size() && S[stop] == u';') {
      const std::u16string_view name = S.substr(amp + 1, stop - amp - 1);
      char16_t decoded = 0;
      bool hit = false;
      if (!name.empty() && name[0] == u'#') {
        decoded = detail::DecodeNumericReference(name.substr(1));
        hit = true;
      } else if (name.size() <= 8) {
        hit = detail::FindXMLEntity(detail::XMLEntityKey(name), decoded);
      }
      if (hit) {
        out.append(S.data() + runStart, amp - runStart);
        out.push_back(decoded);
        runStart = stop + 1;
      }
    }
    // The stop character is never '&', so the next search may start on it.
    amp = S.find(u'&', stop);
  }
  out.append(S.data() + runStart, S.size() - runStart);
  return out;
}

}  // namespace vn
