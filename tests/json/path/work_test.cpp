// Size: recursive searches grow linearly with the tree, and deep trees, long paths and deep
// filters cost no call stack.
#include "json/path/path_helpers.h"
#include "json/path/path_program.h"
#include "vnxml/common/sysutils.h"
#include <iterator>
#include <string>

namespace vn {
namespace {

// An array of AN objects {"id":i,"price":i,"sub":{"price":i}}: 9 nodes and 2 prices each.
std::string Wide(int AN) {
  std::string text = "[";
  for (int i = 0; i < AN; ++i) {
    const std::string n = std::to_string(i);
    text += (i ? ",{\"id\":" : "{\"id\":") + n + ",\"price\":" + n + ",\"sub\":{\"price\":" + n + "}}";
  }
  return text + "]";
}

TEST(JsonPathWork, RecursiveSearchGrowsLinearly) {
  const char16_t* const paths[] = {u"$..price", u"$..*", u"$[?(@.id>=0)].sub.price"};
  constexpr size_t kPaths = std::size(paths);
  uint64_t work[2][kPaths];
  Integer found[2][kPaths];
  for (int i = 0; i < 2; ++i) {
    TVnJSONDocument doc(Wide(55556 << i), 65001);  // 500,000 and 1,000,000 nodes
    for (size_t p = 0; p < kPaths; ++p) {
      const uint64_t before = detail::jsonpath::JSONPathWork();
      found[i][p] = doc.CreateNodeList(paths[p])->Count();
      work[i][p] = detail::jsonpath::JSONPathWork() - before;
    }
  }
  for (size_t p = 0; p < kPaths; ++p) {
    SCOPED_TRACE(UnicodeToUtf8(paths[p]));
    EXPECT_EQ(found[1][p], 2 * found[0][p]);
    EXPECT_LT(static_cast<double>(work[1][p]), 2.1 * static_cast<double>(work[0][p]));
  }
}

TEST(JsonPathWork, DeepTreesLongPathsAndDeepFiltersUseNoCallStack) {
  constexpr int kDepth = 100000;
  UnicodeString text;
  for (int i = 0; i < kDepth; ++i) text += u"{\"x\":";
  text += u"1" + UnicodeString(kDepth, u'}');
  TVnJSONDocument doc(text);
  UnicodeString path = u"$";
  for (int i = 0; i < kDepth; ++i) path += u".x";
  EXPECT_EQ(std::tuple(doc.CreateNodeList(u"$..x")->Count(), doc.SelectSingleNode(path)->GetAsInteger(),
                       doc.CreateNodeList(u"$..x[?(@.x)]")->Count()), std::tuple(kDepth, 1, kDepth - 2));
  // The nesting the library reads, at its limit.
  UnicodeString filter = u"$[?(";
  for (int i = 1; i < cVnJSONPathMaxNesting; ++i) filter += u"(";
  filter += u"@.x" + UnicodeString(cVnJSONPathMaxNesting - 1, u')') + u")]";
  EXPECT_EQ(doc.CreateNodeList(filter)->Count(), 1);
}

// Repeats multiply (each union of ten names every node ten times over), so a selection stops at
// the limit, counting what is still to be worked on, and a path within it selects everything.
TEST(JsonPathWork, RepeatsStopAtTheSelectionLimit) {
  TVnJSONDocument doc(u"[[[[[1]]]]]");
  const Cardinal previous = VnSetJSONPathSelectionLimit(10000);
  EXPECT_EQ(doc.CreateNodeList(u"$[0,0,0,0,0,0,0,0,0,0][0,0,0,0,0,0,0,0,0,0][0,0,0,0,0,0,0,0,0,0][0,0,0,0,0,0,0,0,0,0]")->Count(), 10000);
  const UnicodeString over = u"$[0,0,0,0,0,0,0,0,0,0][0,0,0,0,0,0,0,0,0,0][0,0,0,0,0,0,0,0,0,0][0,0,0,0,0,0,0,0,0,0][0,0]";
  test::ExpectFailure([&] { doc.CreateNodeList(over); }, cVnJSONErrScriptExprTooComplex,
                Format(cVnJSONPathTooManyNodes, {Int64{10000}}));
  EXPECT_EQ(VnSetJSONPathSelectionLimit(previous), 10000u);
  EXPECT_EQ(doc.CreateNodeList(over)->Count(), 20000);
}

}  // namespace
}  // namespace vn
