// Hostile shapes load, save and free with work linear in their size and without deep recursion.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

#include "support/work_counter.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

VN_TEST_COUNT_ALLOCATIONS()

namespace vn {
namespace {

// Loads AText, saves it, checks the saved length, frees it.
void LoadSaveFree(const std::u16string& AText, size_t AExpectedLength) {
  TVnDOMDocument doc;
  doc.LoadXML(AText);
  TVnStringStream out(cVnCodePageUTF8);
  doc.SaveToStream(out, cVnCodePageUTF8, false, false);
  EXPECT_EQ(out.GetBytesView().size(), AExpectedLength);
}

// The text is made outside the counted run: only the library's work is compared.
void ExpectLinear(const std::function<std::pair<std::u16string, size_t>(size_t)>& AMake, size_t AN) {
  auto small = AMake(AN), large = AMake(AN * 2);
  test::ExpectLinearWork([&](size_t n) {
    const auto& [text, length] = n == AN ? small : large;
    LoadSaveFree(text, length);
  }, AN);
}

TEST(DomHostile, ManySiblingsAttributesAndElementsUnderManyDeclarations) {
  ExpectLinear(
      [](size_t n) {
        std::u16string s = u"<r>";
        for (size_t i = 0; i < n; ++i) s += u"<e/>";
        s += u"</r>";
        return std::pair{s, 7 + n * 5};
      },
      200000);

  ExpectLinear(
      [](size_t n) {
        std::u16string s = u"<r";
        for (size_t i = 0; i < n; ++i) s += u" a" + std::u16string(1, u'a' + i % 26) + IntToStr(Integer(i)) + u"=\"v\"";
        s += u"/>";
        return std::pair{s, s.size() + 1};
      },
      50000);

  // The declarations stay 10,000; the cost must grow with the elements alone.
  ExpectLinear(
      [](size_t n) {
        std::u16string s = u"<r";
        for (Integer i = 0; i < 10000; ++i) s += u" xmlns:p" + IntToStr(i) + u"=\"urn:" + IntToStr(i) + u"\"";
        s += u">";
        size_t head = s.size();
        for (size_t i = 0; i < n; ++i) s += u"<p7:e/>";
        s += u"</r>";
        return std::pair{s, head + n * 8 + 4};
      },
      5000);

  // A declaration at every level: the nodes made as the save reads down work each level once.
  ExpectLinear(
      [](size_t n) {
        std::u16string s;
        for (size_t i = 0; i < n; ++i) s += u"<d xmlns:p=\"u\">";
        for (size_t i = 0; i < n; ++i) s += u"</d>";
        return std::pair{s, n * 19 - 2};
      },
      20000);
}

TEST(DomHostile, LongTextRunAndDeepNesting) {
  const std::u16string run = u"<r>" + std::u16string(50u << 20, u'x') + u"</r>";
  LoadSaveFree(run, run.size());
  const size_t depth = 1000000;
  std::u16string s;
  s.reserve(depth * 7);
  for (size_t i = 0; i < depth; ++i) s += u"<d>";
  for (size_t i = 0; i < depth; ++i) s += u"</d>";
  auto doc = TVnDOMDocument::FromXML(s);
  TVnDOMNode* n = doc->GetRootNode();
  size_t levels = 0;
  for (; n && n->HasChilds(); ++levels) n = n->ChildAt(0);
  EXPECT_EQ((std::tuple{levels, doc->GetXML().size()}), std::tuple(depth - 1, depth * 7 - 2));  // innermost "<d />"
}

}  // namespace
}  // namespace vn
