// The 8-bit VnXMLToStr. Numeric references go through the stream's character write, so they come
// out in its code page; names are recognised by their first letter only, as the five XML entities.
#include "escape_decode.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/xml_escape.h"

namespace vn {
namespace {

// The five XML entities told apart by their first letters; 0 when the name is none of them.
char AnsiEntityChar(std::string_view AName) {
  if (AName.empty()) return 0;
  switch (AName[0]) {
    case 'a':
    case 'A':
      return AName.size() > 1 && (AName[1] == 'm' || AName[1] == 'M') ? '&' : '\'';
    case 'g':
    case 'G':
      return '>';
    case 'l':
    case 'L':
      return '<';
    case 'q':
    case 'Q':
      return '"';
    default:
      return 0;
  }
}

}  // namespace

AnsiString VnXMLToStr(std::string_view S) {
  size_t amp = S.find('&');
  if (amp == std::string_view::npos) return AnsiString(S);
  TVnStringStream out(cVnCodePageDefault, static_cast<Int64>(S.size()));
  size_t runStart = 0;
  while (amp != std::string_view::npos) {
    const size_t stop = detail::FindReferenceEnd(S, amp);
    if (stop < S.size() && S[stop] == ';') {
      const std::string_view name = S.substr(amp + 1, stop - amp - 1);
      if (!name.empty() && name[0] == '#') {
        // The digits are ASCII; widen them for the shared numeric conversion.
        const std::string_view digits = name.substr(1);
        std::u16string wide(digits.size(), u'\0');
        for (size_t i = 0; i < digits.size(); ++i) wide[i] = static_cast<unsigned char>(digits[i]);
        const char16_t decoded = detail::DecodeNumericReference(wide);
        out.Add(S.substr(runStart, amp - runStart));
        out.AddChar(decoded);
        runStart = stop + 1;
      } else if (const char decoded = AnsiEntityChar(name); decoded != 0) {
        out.Add(S.substr(runStart, amp - runStart));
        out.Add(std::string_view(&decoded, 1));
        runStart = stop + 1;
      }
    }
    amp = S.find('&', stop);
  }
  out.Add(S.substr(runStart));
  return out.GetAString();
}

}  // namespace vn
