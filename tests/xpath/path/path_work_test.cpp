// Work of a selection: it stays within nodes x steps where a node is reached again with the same
// rest of the path, absolute paths in filters run once, and soCreate below a "//" search ends.
#include "xpath/path/select_helpers.h"
#include "vnxml/common/utf.h"
#include "xpath/path_engine.h"

namespace vn {
namespace {

using test::LoadDoc;

// A document whose root holds AN elements built by AAdd(root, i).
template <class F>
std::unique_ptr<TVnDOMDocument> Built(int AN, F&& AAdd) {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* root = doc->CreateRootNode(u"r");
  for (int i = 0; i < AN; ++i) AAdd(root, i);
  return doc;
}

std::unique_ptr<TVnDOMDocument> Nested(int AN) {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* e = doc->CreateRootNode(u"a");
  for (int i = 1; i < AN; ++i) e = e->AddElement(u"a");
  return doc;
}

std::unique_ptr<TVnDOMDocument> Wide(int AN) {
  return Built(AN, [](TVnDOMElement* ARoot, int) { ARoot->AddElement(u"c"); });
}

// Pairs <x><y/></x>: a filter that asks for "y" has something to find at every level.
std::unique_ptr<TVnDOMDocument> Pairs(int AN) {
  return Built(AN, [](TVnDOMElement* ARoot, int) { ARoot->AddElement(u"x")->AddElement(u"y"); });
}

struct Measure {
  uint64_t FWork;
  Integer FCount;
};

Measure Measured(TVnDOMDocument& ADoc, std::u16string_view APath) {
  uint64_t before = detail::PathWork();
  Integer count = CreateNodeList(&ADoc, APath)->Count();
  return {detail::PathWork() - before, count};
}

TEST(PathWork, GrowsLinearlyWhereNodesAreReachedAgain) {
  struct Case {
    const char16_t* FPath;
    std::unique_ptr<TVnDOMDocument> (*FBuild)(int);
    int FSize;
    Integer (*FCount)(int);
  };
  const Case cases[] = {
      // Every "a" below two others; the rest of the path ran again from each "a" above.
      {u"//a//a//a", Nested, 200, [](int n) { return n - 2; }},
      {u"//a//a//a//a", Nested, 60, [](int n) { return n - 3; }},
      {u"/a//a/../a//a", Nested, 200, [](int n) { return n - 2; }},
      // Siblings share their parent: the rest behind ".." ran once per sibling.
      {u"r/*/../*/../*", Wide, 100, [](int n) { return n; }},
      // An absolute path inside a filter gives the same nodes for every candidate.
      {u"//[//[//[//[y]]]]", Pairs, 10, [](int n) { return 1 + 2 * n; }},
      {u"//x[//y = \"\"][/r/x[//y]]", Pairs, 50, [](int n) { return n; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(c.FPath));
    auto small = c.FBuild(c.FSize);
    auto large = c.FBuild(2 * c.FSize);
    Measure s = Measured(*small, c.FPath);
    Measure l = Measured(*large, c.FPath);
    EXPECT_EQ(s.FCount, c.FCount(c.FSize));
    EXPECT_EQ(l.FCount, c.FCount(2 * c.FSize));
    // Twice the nodes, about twice the work; a power of two or more would give four times.
    EXPECT_LT(static_cast<double>(l.FWork), 2.6 * static_cast<double>(s.FWork));
  }
}

TEST(PathWork, NodesReachedAgainKeepTheOrderOfFirstDiscovery) {
  auto doc = LoadDoc(u"<r><a id='1'><a id='2'><b id='3'/></a><b id='4'/></a><a id='5'/></r>");
  EXPECT_EQ(test::Sel(doc.get(), u"//a//b"), u"4 3");
  EXPECT_EQ(test::Sel(doc.get(), u"//a//a//b"), u"3");
  EXPECT_EQ(test::Sel(doc.get(), u"//b/../../a"), u"1 5 2");
  EXPECT_EQ(test::Sel(doc.get(), u"//a[//b]/b"), u"4 3");
  EXPECT_EQ(test::Sel(doc.get(), u"//a[/r/a/b]"), u"1 5 2");
}

TEST(PathCreate, NothingIsCreatedWhileASearchRuns) {
  // What a step created below a "//" search would be searched in turn, without end.
  for (const char16_t* path : {u"//*/b", u".//*/b", u"//./x", u"*//./x", u"//a/b"}) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(path));
    auto doc = LoadDoc(u"<r><a/></r>");
    test::ExpectError<Exception>([&] { SelectSingleNode(doc->GetRootNode(), path, {soCreate}); },
                                 cVnPathCreateDeep);
    EXPECT_EQ(doc->GetXML(), u"<r><a /></r>");
  }
  // A search inside a filter is over before the step creates.
  auto doc = LoadDoc(u"<r><a><b/></a></r>");
  EXPECT_EQ(test::Sel(doc->GetRootNode(), u"a[.//b]/d", {soCreate}), u"d");
  EXPECT_EQ(doc->GetXML(), u"<r><a><b /><d /></a></r>");
}

}  // namespace
}  // namespace vn
