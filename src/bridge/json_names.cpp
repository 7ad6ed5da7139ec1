// The two text rules of JSON read as XML events: member names made XML names, and value text
// put in XML form.
#include <array>

#include "bridge/json_events.h"
#include "vnxml/sax_xml_parser.h"

namespace vn::detail {

namespace {

// ASCII by table (1: may follow, 2: may also start a name); the rest by the ranges.
constexpr auto kAsciiName = [] {
  std::array<uint8_t, 128> t{};
  for (char16_t c = u'a'; c <= u'z'; ++c) t[c] = 2;
  for (char16_t c = u'A'; c <= u'Z'; ++c) t[c] = 2;
  t[u'_'] = 2;
  for (char16_t c = u'0'; c <= u'9'; ++c) t[c] = 1;
  t[u'-'] = t[u'.'] = 1;
  return t;
}();

bool IsBridgeNameChar(char16_t c) {
  if (c < 128) return kAsciiName[c] != 0;
  return TVnXMLParser::IsNameStartChar(c) || c == 0xB7 || (c >= 0x300 && c <= 0x36F) || (c >= 0x203F && c <= 0x2040);
}
bool IsBridgeNameStart(char16_t c) { return c < 128 ? kAsciiName[c] == 2 : TVnXMLParser::IsNameStartChar(c); }

}  // namespace

void AppendBridgeName(std::u16string& AOut, std::u16string_view AName) {
  // Characters are replaced first; then a name that is empty, or starts with a character that
  // may only follow (a digit, "-", "."), gets "_" in front. No JSON name yields a prefix.
  if (AName.empty() || (IsBridgeNameChar(AName.front()) && !IsBridgeNameStart(AName.front()))) AOut += u'_';
  const size_t at = AOut.size();
  AOut.append(AName);
  for (size_t i = at; i < AOut.size(); ++i)
    if (!IsBridgeNameChar(AOut[i])) AOut[i] = u'_';
}

std::u16string_view BridgeXmlText(std::u16string_view AText, std::u16string& AScratch) {
  size_t at = 0;
  // Markup characters are rare in values: one pass with a cheap test finds the first.
  while (at < AText.size() && (AText[at] > u'>' || (AText[at] != u'&' && AText[at] != u'<' && AText[at] != u'>'))) ++at;
  if (at == AText.size()) return AText;
  AScratch.assign(AText, 0, at);
  for (; at < AText.size(); ++at) {
    switch (AText[at]) {
      case u'&': AScratch += u"&amp;"; break;
      case u'<': AScratch += u"&lt;"; break;
      case u'>': AScratch += u"&gt;"; break;
      default: AScratch += AText[at];
    }
  }
  return AScratch;
}

}  // namespace vn::detail
