// Work of a selection: it stays within nodes x steps where a node is reached again with the same
// rest of the path, absolute paths in filters run once, and soCreate below a "//" search ends.
#include <tuple>

#include "vnxml/common/utf.h"
#include "xpath/path/select_helpers.h"
#include "xpath/path_engine.h"

namespace vn {
namespace {

using test::LoadDoc;
using test::Sel;

// AN nested "a" (AWide false), or a root "r" holding AN pairs <x><y/></x>.
std::unique_ptr<TVnDOMDocument> Tree(int AN, bool AWide) {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* e = doc->CreateRootNode(AWide ? u"r" : u"a");
  for (int i = AWide ? 0 : 1; i < AN; ++i)
    AWide ? (void)e->AddElement(u"x")->AddElement(u"y") : (void)(e = e->AddElement(u"a"));
  return doc;
}

TEST(PathWork, NodesReachedAgainCostLinearWorkAndKeepTheOrderOfFirstDiscovery) {
  // Path, wide tree, size, and the nodes it selects: perNode * size - less.
  const std::tuple<const char16_t*, bool, int, int, int> cases[] = {
      // The rest of the path ran again from every "a" above a node.
      {u"//a//a//a", false, 200, 1, 2},
      {u"//a//a//a//a", false, 60, 1, 3},
      {u"/a//a/../a//a", false, 200, 1, 2},
      // Siblings share their parent: the rest behind ".." ran once per sibling.
      {u"r/*/../*/../*", true, 100, 1, 0},
      // An absolute path inside a filter gives the same nodes for every candidate.
      {u"//[//[//[//[y]]]]", true, 10, 2, -1},
      {u"//x[//y = \"\"][/r/x[//y]]", true, 50, 1, 0},
      // A group below "//" searched from every node, each nesting level another factor.
      {u"//((((a))))", false, 200, 1, 0},
      {u"//((x))/y", true, 100, 1, 0},
  };
  for (const auto& [path, wide, size, perNode, less] : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(path));
    uint64_t work[2];
    for (int i = 0; i < 2; ++i) {
      const int n = size << i;
      auto doc = Tree(n, wide);
      const uint64_t before = detail::PathWork();
      EXPECT_EQ(CreateNodeList(doc.get(), path)->Count(), perNode * n - less);
      work[i] = detail::PathWork() - before;
    }
    // Twice the nodes, about twice the work; a power of two or more would give four times.
    EXPECT_LT(static_cast<double>(work[1]), 2.6 * static_cast<double>(work[0]));
  }

  // Nodes reached again keep the order of their first discovery.
  auto doc = LoadDoc(u"<r><a id='1'><a id='2'><b id='3'/></a><b id='4'/></a><a id='5'/></r>");
  for (const auto& [path, ids] : {std::pair{u"//a//b", u"4 3"}, {u"//a//a//b", u"3"}, {u"//((b))", u"4 3"},
                                  {u"//b/../../a", u"1 5 2"}, {u"//a[//b]/b", u"4 3"}, {u"//a[/r/a/b]", u"1 5 2"}})
    EXPECT_EQ(Sel(doc.get(), path), ids) << UnicodeToUtf8(path);
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
  EXPECT_EQ(Sel(doc->GetRootNode(), u"a[.//b]/d", {soCreate}), u"d");
  EXPECT_EQ(doc->GetXML(), u"<r><a><b /><d /></a></r>");
}

}  // namespace
}  // namespace vn
