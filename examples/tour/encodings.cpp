// Tour, encodings: find how each sample file is encoded, decode it, and write it back as UTF-8.
#include <cstdio>
#include <string>

#include "sections.h"
#include "vnxml/common.h"

namespace tour {

namespace {

// Without a byte-order mark the XML declaration names the encoding; it is plain ASCII in every
// 8-bit encoding, so the raw bytes can be searched for it.
vn::Word DeclaredCodePage(const std::string& AHead) {
  const size_t at = AHead.find("encoding=\"");
  if (at == std::string::npos) return vn::cVnCodePageUTF8;
  const size_t start = at + 10, end = AHead.find('"', start);
  return vn::VnCodePage(vn::AsciiToUnicode(AHead.substr(start, end - start)));
}

}  // namespace

void Encodings() {
  std::printf("== Encodings\n");
  for (const char* name : {"menu-utf8.xml", "menu-utf16le-bom.xml", "menu-latin1.xml", "menu-cp1252.xml"}) {
    vn::TFileStream file(vn::Utf8ToUnicode(DataDir() + "/" + name), vn::fmOpenRead | vn::fmShareDenyWrite);
    vn::Word codePage = vn::VnGetCodePage(&file);  // passes the mark, if there is one
    const bool hasMark = codePage != 0;
    std::string bytes(static_cast<size_t>(file.GetSize() - file.GetPosition()), '\0');
    file.ReadBuffer(bytes.data(), static_cast<vn::Int64>(bytes.size()));
    if (!hasMark) codePage = DeclaredCodePage(bytes.substr(0, 200));

    const vn::UnicodeString text = vn::TVnEncoding::ConvertA(bytes, codePage);
    const size_t dish = text.find(u"<dish"), dishEnd = text.find(u'\r', dish);
    std::printf("%-22s %-5s code page %5u (%s): %zu bytes, %zu characters\n", name, hasMark ? "BOM," : "",
                codePage, vn::UnicodeToUtf8(vn::VnCodePage(codePage)).c_str(), bytes.size(), text.size());
    std::printf("  first dish: %s\n", vn::UnicodeToUtf8(text.substr(dish, dishEnd - dish)).c_str());

    // Writers produce UTF-16; the adapter stores it as UTF-8, here with a byte-order mark.
    vn::TMemoryStream utf8;
    {
      vn::TVnUTF8StreamAdapter adapter(&utf8, true);
      adapter.WriteBuffer(text.data(), static_cast<vn::Int64>(text.size() * 2));
    }
    std::printf("  as UTF-8 with a mark: %lld bytes\n", static_cast<long long>(utf8.GetSize()));
  }

  // What a code page can't hold becomes '?'; what can't be decoded becomes U+FFFD.
  std::printf("  \"\xE4\xB8\xAD \xE2\x82\xAC\" in windows-1252: %s\n",
              vn::TVnEncoding::ConvertW(u"\u4E2D \u20AC", 1252) == "? \x80" ? "\"? \\x80\"" : "unexpected");
  const vn::UnicodeString broken = vn::TVnEncoding::ConvertA("ok\xC3(", vn::cVnCodePageUTF8);
  std::printf("  bytes \"ok\\xC3(\" as UTF-8: %s\n", vn::UnicodeToUtf8(broken).c_str());
}

}  // namespace tour
