// Every conformance file loads or fails with the library's own exception; what loads survives
// save, load, save unchanged, and builds the same tree whether the parser reads straight from
// the scan or hears the reader's events.
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

TEST(DomConformance, LoadOrOwnFailureAndStableRoundTrip) {
  int loaded = 0, refused = 0;
  ForEachConformanceFile([&](const std::string& name) {
    UnicodeString first;
    try {
      TVnDOMDocument doc;
      doc.LoadFromFile(Utf8ToUnicode(name), fmOpenRead);
      first = doc.GetXML();
      ++loaded;
    } catch (const Exception&) {
      ++refused;
      return;
    } catch (const std::exception& e) {
      ADD_FAILURE() << name << ": foreign exception " << e.what();
      return;
    }
    TVnDOMDocument again;
    try {
      again.LoadXML(first);
    } catch (const Exception& e) {
      ADD_FAILURE() << name << ": own output refused: " << UnicodeToUtf8(e.Message());
      return;
    }
    EXPECT_EQ(UnicodeToUtf8(again.GetXML()), UnicodeToUtf8(first)) << name;
  });
  EXPECT_GT(loaded, 500);
  RecordProperty("loaded", loaded);
  RecordProperty("refused", refused);
}

// A parser of another class hears every event through the handler interfaces.
class EventParser : public TVnDOMParser {
 public:
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

// Both trees, node by node: kinds, names, values, namespaces, space handling and every list.
// Some files nest deeply: the walk keeps its own stack.
void ExpectSameTree(TVnDOMNode* ARootA, TVnDOMNode* ARootB, const std::string& AWhere) {
  std::vector<std::pair<TVnDOMNode*, TVnDOMNode*>> stack{{ARootA, ARootB}};
  while (!stack.empty()) {
    auto [a, b] = stack.back();
    stack.pop_back();
    ASSERT_EQ(a->GetNodeType(), b->GetNodeType()) << AWhere;
    EXPECT_EQ(a->GetQualifiedName(), b->GetQualifiedName()) << AWhere;
    EXPECT_EQ(a->GetNamespaceURI(), b->GetNamespaceURI()) << AWhere;
    EXPECT_EQ(a->GetPreserveSpace(), b->GetPreserveSpace()) << AWhere;
    if (a->GetNodeType() == ntElement) {
      auto* ea = static_cast<TVnDOMElement*>(a);
      auto* eb = static_cast<TVnDOMElement*>(b);
      EXPECT_EQ(ea->AttributeCount(), eb->AttributeCount()) << AWhere;
      EXPECT_EQ(ea->ElementCount(), eb->ElementCount()) << AWhere;
      EXPECT_EQ(ea->CharNodesView().size(), eb->CharNodesView().size()) << AWhere;
    } else if (a->GetNodeType() != ntDocument) {
      // The text as stored: decoding may rightly fail on a bad reference.
      EXPECT_EQ(a->GetXML(), b->GetXML()) << AWhere;
    }
    ASSERT_EQ(a->NodeCount(), b->NodeCount()) << AWhere;
    for (Integer i = 0; i < a->NodeCount(); ++i) stack.emplace_back(a->ChildAt(i), b->ChildAt(i));
  }
}

TEST(DomConformance, EventsAndDirectReadingBuildTheSameTree) {
  int compared = 0;
  ForEachConformanceFile([&](const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    auto [direct, directError] = Build<TVnDOMParser>(bytes);
    auto [events, eventsError] = Build<EventParser>(bytes);
    EXPECT_EQ(UnicodeToUtf8(directError), UnicodeToUtf8(eventsError)) << name;
    ExpectSameTree(direct.get(), events.get(), name);
    ++compared;
  });
  EXPECT_GT(compared, 500);
}

}  // namespace
}  // namespace vn
