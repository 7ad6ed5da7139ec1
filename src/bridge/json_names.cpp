// The two text rules of JSON read as XML events: member names made XML names, and value text
// put in XML form.
#include "bridge/json_events.h"
#include "vnxml/sax_xml_parser.h"

namespace vn::detail {

namespace {
bool IsBridgeNameChar(char16_t c) {
  return TVnXMLParser::IsNameStartChar(c) || c == u'-' || c == u'.' || (c >= u'0' && c <= u'9') || c == 0xB7 ||
         (c >= 0x300 && c <= 0x36F) || (c >= 0x203F && c <= 0x2040);
}
}  // namespace

void AppendBridgeName(std::u16string& AOut, std::u16string_view AName) {
  // Characters are replaced first; then a name that is empty, or starts with a character that
  // may only follow (a digit, "-", "."), gets "_" in front. No JSON name yields a prefix.
  if (AName.empty() || (IsBridgeNameChar(AName.front()) && !TVnXMLParser::IsNameStartChar(AName.front())))
    AOut += u'_';
  for (char16_t c : AName) AOut += IsBridgeNameChar(c) ? c : u'_';
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
