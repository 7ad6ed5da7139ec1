// Every corpus file loads or fails with the library's own exception; what loads passes the
// round-trip oracle, compact and formatted, in UTF-8 and UTF-16.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "json/json_roundtrip_oracle.h"
#include "support/files.h"
#include "vnxml/common/utf.h"

namespace vn {
namespace {

std::vector<std::filesystem::path> CorpusFiles() {
  namespace fs = std::filesystem;
  const fs::path root = test::Corpora();
  std::vector<fs::path> files;
  for (const char* dir : {"conformance/json-test-suite", "conformance/tricky-json"})
    for (const auto& e : fs::recursive_directory_iterator(root / dir))
      if (e.is_regular_file() && e.path().extension() == ".json") files.push_back(e.path());
  for (const char* name : {"canada.json", "citm_catalog.json", "twitter.json"}) files.push_back(root / "perf" / name);
  std::sort(files.begin(), files.end());
  return files;
}

TEST(JsonRoundTrip, CorpusFilesLoadAndSaveToAFixedPoint) {
  size_t loaded = 0, refused = 0;
  for (const auto& path : CorpusFiles()) {
    SCOPED_TRACE(path.string());
    TVnJSONDocument doc;
    const auto load = [&] {
      if (path.parent_path().filename() != "perf") return doc.LoadFromFile(Utf8ToUnicode(path.string()), fmOpenRead);
      // The reader takes no white space after a top-level object; these files end in a line end.
      std::string bytes = test::ReadFile(path);
      while (!bytes.empty() && static_cast<unsigned char>(bytes.back()) <= ' ') bytes.pop_back();
      TVnStringStream stream(bytes, cVnCodePageUTF8);
      doc.LoadFromStream(stream, cVnCodePageUTF8, false);
    };
    // Any exception not of the library's fails the test.
    if (test::MessageOf(load) != u"(nothing raised)") {
      ++refused;
      continue;
    }
    ++loaded;
    const bool shallow = testing_support::TreeDepth(doc) <= testing_support::cFormattedDepthLimit;
    for (bool formatted : {false, true}) {
      if (formatted && !shallow) continue;
      for (Word codePage : {cVnCodePageUTF8, cVnCodePageUTF16LE})
        EXPECT_EQ(testing_support::CheckJSONRoundTrip(doc, formatted, codePage), "")
            << (formatted ? "formatted " : "compact ") << codePage;
    }
  }
  EXPECT_GT(loaded, 300u);  // the three perf files among them
  EXPECT_GT(refused, 100u);
}

}  // namespace
}  // namespace vn
