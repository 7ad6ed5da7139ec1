// Tour, scanner: walk a text with TVnTextParser, skipping in bulk and cutting selections
// between marks; the same walk works on UTF-8 bytes and on UTF-16 units alike.
#include <cstdio>
#include <string>

#include "sections.h"
#include "vnxml/common.h"

namespace tour {

namespace {

// Lists "name = value" pairs, one per line, with where each value starts.
void ListPairs(vn::TVnTextParser& AParser, const char* AEncoding) {
  std::printf("  %s:\n", AEncoding);
  const vn::TVnAnsiCharSet nameEnd(" =\n");
  while (!AParser._GetEOF()) {
    AParser.SkipWhile(vn::soLessEqual, u' ');  // blanks and line ends
    if (AParser._GetEOF()) break;
    AParser.SetMark(vn::tpMark1);
    AParser.SkipWhileSet(vn::soNotInSet, nameEnd);
    vn::UnicodeString name = AParser.Selected(vn::tpMark1, vn::tpCurrent, true);
    AParser.SkipWhileSet(vn::soInSet, vn::TVnAnsiCharSet(" ="));
    int line = AParser.GetLineNr(), col = AParser.GetColNr();
    AParser.SetMark(vn::tpMark1);
    AParser.SkipWhile(vn::soNotEqual, u'\n');
    vn::UnicodeString value = AParser.Selected(vn::tpMark1, vn::tpCurrent, true);
    std::printf("    %-6s -> %-14s (line %d, column %d)\n", vn::UnicodeToUtf8(name).c_str(),
                vn::UnicodeToUtf8(value).c_str(), line, col);
  }
}

}  // namespace

void Scanner() {
  std::printf("== Scanner\n");
  const std::u16string text = u"dish = Crème brûlée\nprice = 12 €\nchef = Zoë\n";
  std::string utf8 = vn::UnicodeToUtf8(text);
  vn::TVnTextParser bytes(utf8.data(), utf8.size(), vn::cVnCodePageUTF8);
  ListPairs(bytes, "UTF-8");
  vn::TVnTextParser units(text.data(), text.size() * 2, vn::cVnCodePageUTF16LE);
  ListPairs(units, "UTF-16");
  // Moving past the end is an error of its own, which readers turn into "unexpected end".
  try {
    units.NextChar();
  } catch (const vn::EVnTextParserEOF& e) {
    std::printf("  past the end: %s\n", e.what());
  }
}

}  // namespace tour
