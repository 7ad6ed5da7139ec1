// The ways into a load: how each finds the encoding, and that none copies the caller's text.
#include <gtest/gtest.h>

#include <string>

#include "alloc_counter.h"
#include "support/files.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

TEST(DomLoadPaths, DeclaredEncodingOfStreamsAndFiles) {
  // Each text holds the byte E9: one character in ISO-8859-1, a broken sequence in UTF-8.
  const char* const texts[] = {
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xE9</a>",
      "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>",
      "<?xml version=\"1.0\" encoding='ISO-8859-1'?><a>\xE9</a>",
      // A later double-quoted value is no encoding name.
      "<?xml version='1.0' encoding='ISO-8859-1' standalone=\"yes\"?><a>\xE9</a>",
      // The first tag is searched in any case, after blanks.
      " \r\n<?XML version=\"1.0\" encoding=\"iso-8859-1\"?><a>\xE9</a>",
      "<a>\xC3\xA9</a>",
      "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xC3\xA9</a>",
  };
  const test::TempFile file("paths.xml");
  const UnicodeString name = file.Name();
  for (const char* text : texts) {
    SCOPED_TRACE(text);
    file.Write(text);
    TVnDOMDocument fromMemory, fromFileStream, fromFile;
    TVnStringStream memory(std::string_view(text), cVnCodePageDefault);
    fromMemory.LoadFromStream(memory);
    TFileStream stream(name, fmOpenRead);
    fromFileStream.LoadFromStream(stream);
    fromFile.LoadFromFile(name, fmOpenRead);
    for (TVnDOMDocument* doc : {&fromMemory, &fromFileStream, &fromFile}) {
      ASSERT_NE(doc->GetRootNode(), nullptr);
      EXPECT_EQ(doc->GetRootNode()->GetText(), u"\u00e9");
    }
  }
}

TEST(DomLoadPaths, CallersTextIsScannedInPlace) {
  // White space between tags is dropped: a load that copied the text would ask for its size.
  const std::u16string wide = u"<r>" + std::u16string(1 << 20, u' ') + u"<e/></r>";
  const std::string narrow = "<r>" + std::string(1 << 20, ' ') + "<e/></r>";
  const size_t bound = narrow.size() / 2;
  auto expectSmall = [&](const char* AWay, auto ALoad) {
    TVnDOMDocument doc;
    doc.LoadXML(u"<h/>");
    const size_t before = test::AllocatedBytes();
    ALoad(doc);
    EXPECT_LT(test::AllocatedBytes() - before, bound) << AWay;
    EXPECT_EQ(doc.GetRootNode()->ElementCount(), 1) << AWay;
  };
  expectSmall("LoadXML", [&](TVnDOMDocument& d) { d.LoadXML(wide); });
  expectSmall("LoadFromAnsiXML", [&](TVnDOMDocument& d) { d.LoadFromAnsiXML(narrow); });
  const std::u16string fragment = u"<e/>" + std::u16string(1 << 20, u' ');
  expectSmall("SetInnerXML", [&](TVnDOMDocument& d) { d.GetRootNode()->SetInnerXML(fragment); });
  TVnMemoryStream view(narrow.data(), static_cast<Int64>(narrow.size()));
  expectSmall("LoadFromStream", [&](TVnDOMDocument& d) {
    d.Clear();
    d.LoadFromStream(view);
  });
}

}  // namespace
}  // namespace vn
