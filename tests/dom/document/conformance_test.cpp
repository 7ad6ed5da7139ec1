// Every file of the W3C suite gets the verdict its manifest gives, but for the files listed beside
// this test that the forgiving reader decides otherwise on purpose. Every conformance file loads
// or fails with the library's own exception; what loads survives save, load, save unchanged, and
// builds the same tree whether the parser reads straight from the scan or hears the reader's events.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <utility>
#include <vector>

#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_parser.h"
#include "dom/tree_builder.h"
#include "support/files.h"
#include "support/same_tree.h"
#include "common/message_of.h"

namespace vn {
namespace {

namespace fs = std::filesystem;

void ForEachConformanceFile(const std::function<void(const std::string&)>& AVisit) {
  const fs::path root = fs::path(VNXML_CORPORA_DIR) / "conformance";
  for (const char* folder : {"xmlconf", "tricky-xml"}) {
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      if (!entry.is_regular_file()) continue;
      auto ext = entry.path().extension().string();
      if (ext != ".xml" && ext != ".ent" && ext != ".dtd" && ext != ".xsl") continue;
      AVisit(entry.path().string());
    }
  }
}

// Loads a file; a failure other than the library's own is a test failure.
bool Loads(const std::string& AName, UnicodeString& AXML) {
  try {
    TVnDOMDocument doc;
    doc.LoadFromFile(Utf8ToUnicode(AName), fmOpenRead);
    AXML = doc.GetXML();
    return true;
  } catch (const Exception&) {
  } catch (const std::exception& e) {
    ADD_FAILURE() << AName << ": foreign exception " << e.what();
  }
  return false;
}

TEST(DomConformance, ManifestVerdictsOwnFailuresAndStableRoundTrips) {
  const fs::path suite = test::Corpora() / "conformance" / "xmlconf";
  const fs::path here = fs::path(VNXML_SOURCE_DIR) / "tests" / "dom" / "document";
  const auto accepted = test::ReadList(here / "xmlconf_accepted.txt");
  const auto refused = test::ReadList(here / "xmlconf_refused.txt");
  std::ifstream manifest(suite / "manifest.tsv");
  std::string line;
  std::getline(manifest, line);  // the column names
  size_t decided = 0, listed = 0;
  while (std::getline(manifest, line)) {
    const std::string path = line.substr(0, line.find('\t'));
    const std::string type = line.substr(path.size() + 1, line.find('\t', path.size() + 1) - path.size() - 1);
    if (type == "error") continue;  // the suite leaves these to the reader
    const bool wellFormed = type != "not-wf";
    const bool exception = wellFormed ? refused.count(path) > 0 : accepted.count(path) > 0;
    listed += exception;
    UnicodeString xml;
    EXPECT_EQ(Loads((suite / path).string(), xml), wellFormed != exception) << path << " (" << type << ")";
    ++decided;
  }
  EXPECT_GT(decided, 350u);
  EXPECT_EQ(listed, accepted.size() + refused.size()) << "a listed file is not in the manifest";

  // Every file loads or fails with the library's own exception; what loads survives a round trip.
  int loaded = 0;
  ForEachConformanceFile([&](const std::string& name) {
    UnicodeString first;
    if (!Loads(name, first)) return;
    ++loaded;
    TVnDOMDocument again;
    const UnicodeString ownRefusal = test::MessageOf([&] { again.LoadXML(first); });
    ASSERT_EQ(UnicodeToUtf8(ownRefusal), "(nothing raised)") << name << ": own output refused";
    EXPECT_EQ(UnicodeToUtf8(again.GetXML()), UnicodeToUtf8(first)) << name;
  });
  EXPECT_GT(loaded, 500);
}

// A parser of another class hears every event through the handler interfaces.
struct EventParser : TVnDOMParser {
  using TVnDOMParser::TVnDOMParser;
};

// The tree of ABytes as AParser builds it, or the message it fails with.
template <class AParser>
std::pair<std::unique_ptr<TVnDOMDocument>, UnicodeString> Build(const std::string& ABytes) {
  auto doc = std::make_unique<TVnDOMDocument>();
  try {
    TVnStringStream in(ABytes, cVnCodePageDefault);
    in.SetPosition(0);
    AParser parser(doc.get());
    parser.Parse(in, cVnCodePageUTF8);
  } catch (const Exception& e) {
    return {std::move(doc), e.Message()};
  }
  return {std::move(doc), UnicodeString()};
}

TEST(DomConformance, EventsAndDirectReadingBuildTheSameTree) {
  // The direct reader defers the root's content, and the small files here open level by level.
  const ptrdiff_t small = std::exchange(detail::SmallContentBytes, 0);
  int compared = 0;
  ForEachConformanceFile([&](const std::string& name) {
    const std::string bytes = test::ReadFile(name);
    auto [direct, directError] = Build<TVnDOMParser>(bytes);
    auto [events, eventsError] = Build<EventParser>(bytes);
    EXPECT_EQ(UnicodeToUtf8(directError), UnicodeToUtf8(eventsError)) << name;
    test::ExpectSameTree(direct.get(), events.get(), name);
    ++compared;
  });
  EXPECT_GT(compared, 500);
  detail::SmallContentBytes = small;
}

}  // namespace
}  // namespace vn
