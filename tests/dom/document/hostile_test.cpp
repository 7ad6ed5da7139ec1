// Hostile shapes load, save and free in linear time and without deep recursion.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>

#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

using Clock = std::chrono::steady_clock;

// Loads AText, saves it, checks the saved length, frees it; returns the seconds it took.
double LoadSaveFree(const std::u16string& AText, size_t AExpectedLength) {
  auto start = Clock::now();
  {
    TVnDOMDocument doc;
    doc.LoadXML(AText);
    TVnStringStream out(cVnCodePageUTF8);
    doc.SaveToStream(out, cVnCodePageUTF8, false, false);
    EXPECT_EQ(out.GetBytesView().size(), AExpectedLength);
  }
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// A quadratic step shows as a time ratio near 4 between n and 2n; linear stays near 2.
void ExpectLinear(const std::function<std::pair<std::u16string, size_t>(size_t)>& AMake, size_t AN) {
  auto [small, smallLen] = AMake(AN);
  auto [large, largeLen] = AMake(AN * 2);
  // The faster of two runs each, so that a burst of load from other tests doesn't decide.
  double t1 = std::min(LoadSaveFree(small, smallLen), LoadSaveFree(small, smallLen));
  double t2 = std::min(LoadSaveFree(large, largeLen), LoadSaveFree(large, largeLen));
  EXPECT_LT(t2, t1 * 3.2 + 0.05) << "n: " << t1 << "s, 2n: " << t2 << "s";
}

TEST(DomHostile, ManySiblings) {
  ExpectLinear(
      [](size_t n) {
        std::u16string s = u"<r>";
        for (size_t i = 0; i < n; ++i) s += u"<e/>";
        s += u"</r>";
        return std::pair{s, 7 + n * 5};
      },
      500000);
}

TEST(DomHostile, ManyAttributes) {
  ExpectLinear(
      [](size_t n) {
        std::u16string s = u"<r";
        for (size_t i = 0; i < n; ++i) s += u" a" + std::u16string(1, u'a' + i % 26) + Utf8ToUnicode(std::to_string(i)) + u"=\"v\"";
        s += u"/>";
        return std::pair{s, s.size() + 1};
      },
      100000);
}

TEST(DomHostile, ManyNamespaceDeclarationsOverManyElements) {
  // The declarations stay 10,000; the cost must grow with the elements alone.
  ExpectLinear(
      [](size_t n) {
        std::u16string s = u"<r";
        for (size_t i = 0; i < 10000; ++i) {
          auto k = Utf8ToUnicode(std::to_string(i));
          s += u" xmlns:p" + k + u"=\"urn:" + k + u"\"";
        }
        s += u">";
        size_t head = s.size();
        for (size_t i = 0; i < n; ++i) s += u"<p7:e/>";
        s += u"</r>";
        return std::pair{s, head + n * 8 + 4};
      },
      5000);
}

TEST(DomHostile, LongTextRun) {
  std::u16string s = u"<r>";
  s.append(50u << 20, u'x');
  s += u"</r>";
  LoadSaveFree(s, s.size());
}

TEST(DomHostile, DeepNesting) {
  const size_t depth = 1000000;
  std::u16string s;
  s.reserve(depth * 7);
  for (size_t i = 0; i < depth; ++i) s += u"<d>";
  for (size_t i = 0; i < depth; ++i) s += u"</d>";
  TVnDOMDocument doc;
  doc.LoadXML(s);
  TVnDOMNode* n = doc.GetRootNode();
  size_t levels = 0;
  while (n && n->HasChilds()) {
    n = n->ChildAt(0);
    ++levels;
  }
  EXPECT_EQ(levels, depth - 1);
  EXPECT_EQ(doc.GetXML().size(), depth * 7 - 2);  // the innermost is "<d />"
}

}  // namespace
}  // namespace vn
