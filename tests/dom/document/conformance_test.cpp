// Every conformance file loads or fails with the library's own exception; what loads survives
// save, load, save unchanged.
#include <gtest/gtest.h>

#include <filesystem>

#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

TEST(DomConformance, LoadOrOwnFailureAndStableRoundTrip) {
  namespace fs = std::filesystem;
  const fs::path root = fs::path(VNXML_CORPORA_DIR) / "conformance";
  int loaded = 0, refused = 0;
  for (const char* folder : {"xmlconf", "tricky-xml"}) {
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      if (!entry.is_regular_file()) continue;
      auto ext = entry.path().extension().string();
      if (ext != ".xml" && ext != ".ent" && ext != ".dtd" && ext != ".xsl") continue;
      const std::string name = entry.path().string();
      UnicodeString first;
      try {
        TVnDOMDocument doc;
        doc.LoadFromFile(Utf8ToUnicode(name), fmOpenRead);
        first = doc.GetXML();
        ++loaded;
      } catch (const Exception&) {
        ++refused;
        continue;
      } catch (const std::exception& e) {
        ADD_FAILURE() << name << ": foreign exception " << e.what();
        continue;
      }
      TVnDOMDocument again;
      try {
        again.LoadXML(first);
      } catch (const Exception& e) {
        ADD_FAILURE() << name << ": own output refused: " << UnicodeToUtf8(e.Message());
        continue;
      }
      EXPECT_EQ(UnicodeToUtf8(again.GetXML()), UnicodeToUtf8(first)) << name;
    }
  }
  EXPECT_GT(loaded, 500);
  RecordProperty("loaded", loaded);
  RecordProperty("refused", refused);
}

}  // namespace
}  // namespace vn
