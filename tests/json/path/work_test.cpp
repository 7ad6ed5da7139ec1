// Size: recursive searches grow linearly with the tree, and deep trees, long paths and deep
// filters cost no call stack.
#include "json/path/path_helpers.h"
#include "json/path/path_program.h"
#include "vnxml/common/sysutils.h"

namespace vn {
namespace {

// An array of AN objects {"id":i,"price":i,"sub":{"price":i}}: 5 nodes and 2 prices each.
UnicodeString Wide(int AN) {
  UnicodeString text = u"[";
  for (int i = 0; i < AN; ++i) {
    const UnicodeString n = IntToStr(i);
    text += (i ? u"," : u"") + (u"{\"id\":" + n + u",\"price\":" + n + u",\"sub\":{\"price\":" + n + u"}}");
  }
  return text + u"]";
}

TEST(JsonPathWork, RecursiveSearchGrowsLinearly) {
  const char16_t* const paths[] = {u"$..price", u"$..*", u"$[?(@.id>=0)].sub.price"};
  for (const char16_t* path : paths) {
    SCOPED_TRACE(UnicodeToUtf8(path));
    uint64_t work[2];
    Integer found[2];
    for (int i = 0; i < 2; ++i) {
      TVnJSONDocument doc(Wide(100000 << i));  // 500,000 and 1,000,000 nodes
      const uint64_t before = detail::JSONPathWork();
      found[i] = doc.CreateNodeList(path)->Count();
      work[i] = detail::JSONPathWork() - before;
    }
    EXPECT_EQ(found[1], 2 * found[0]);
    EXPECT_LT(static_cast<double>(work[1]), 2.1 * static_cast<double>(work[0]));
  }
}

TEST(JsonPathWork, DeepTreesLongPathsAndDeepFiltersUseNoCallStack) {
  constexpr int kDepth = 100000;
  UnicodeString text;
  for (int i = 0; i < kDepth; ++i) text += u"{\"x\":";
  text += u"1" + UnicodeString(kDepth, u'}');
  TVnJSONDocument doc(text);
  EXPECT_EQ(doc.CreateNodeList(u"$..x")->Count(), kDepth);
  UnicodeString path = u"$";
  for (int i = 0; i < kDepth; ++i) path += u".x";
  EXPECT_EQ(doc.SelectSingleNode(path)->GetAsInteger(), 1);
  EXPECT_EQ(doc.CreateNodeList(u"$..*[?(@.x==1)]")->Count(), 1);
  // The nesting the library reads, at its limit.
  UnicodeString filter = u"$[?(";
  for (int i = 1; i < cVnJSONPathMaxNesting; ++i) filter += u"(";
  filter += u"@.x" + UnicodeString(cVnJSONPathMaxNesting - 1, u')') + u")]";
  EXPECT_EQ(doc.CreateNodeList(filter)->Count(), 1);
}

}  // namespace
}  // namespace vn
