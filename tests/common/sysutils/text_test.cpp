// Text helpers: trimming, ASCII and Unicode case, comparison, quoting, search and replace.
#include <gtest/gtest.h>

#include <tuple>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

using namespace vn;

namespace {

using TextFn = UnicodeString (*)(std::u16string_view);
using CompareFn = Integer (*)(std::u16string_view, std::u16string_view);
int Sign(int AValue) { return (AValue > 0) - (AValue < 0); }

}  // namespace

TEST(Text, TrimAndCaseFolding) {
  const TextFn trim = Trim, upper = UpperCase, lower = LowerCase, ansiUpper = AnsiUpperCase,
               ansiLower = AnsiLowerCase;
  const std::tuple<TextFn, const char16_t*, const char16_t*> cases[] = {
      {trim, u"\t a b \r\n", u"a b"}, {trim, u"\x01\x1F x", u"x"}, {trim, u"   ", u""}, {trim, u"", u""},
      {trim, u"\u00A0x\u00A0", u"\u00A0x\u00A0"},  // only characters at or below the space
      {upper, u"abz\u00E4\u00DF", u"ABZ\u00E4\u00DF"}, {lower, u"ABZ\u00C4", u"abz\u00C4"},
      {ansiUpper, u"ab\u00E4", u"AB\u00C4"}, {ansiUpper, u"stra\u00DFe", u"STRASSE"},
      {ansiLower, u"\u00C4\u0391", u"\u00E4\u03B1"}};
  for (const auto& [fn, in, out] : cases) EXPECT_EQ(fn(in), out) << UnicodeToUtf8(in);
  EXPECT_EQ((std::tuple{TrimLeft(u"  x  "), TrimRight(u"  x  ")}), std::tuple(u"x  ", u"  x"));
  EXPECT_EQ((std::tuple{SameText(u"Hello", u"hELLO"), SameText(u"\u00C4", u"\u00E4"),
                        AnsiSameText(u"\u00C4x", u"\u00E4X"), AnsiSameText(u"a", u"ab")}),
            std::tuple(true, false, true, false));
}

TEST(Text, ComparisonSigns) {
  const CompareFn text = CompareText, str = CompareStr, ansiStr = AnsiCompareStr, ansiText = AnsiCompareText;
  const std::tuple<CompareFn, const char16_t*, const char16_t*, int> cases[] = {
      {text, u"abc", u"ABC", 0}, {text, u"abc", u"ABD", -1}, {text, u"ab", u"abc", -1},
      {text, u"_", u"a", 1},  // 'a' folds to 'A' (0x41), below '_' (0x5F)
      {str, u"B", u"a", -1}, {str, u"b", u"B", 1}, {str, u"", u"", 0},
      // The linguistic forms: lower case first, then the letter decides, not the code unit.
      {ansiStr, u"a", u"A", -1}, {ansiStr, u"A", u"b", -1}, {ansiStr, u"\u00E4", u"b", -1}, {ansiStr, u"x", u"x", 0},
      {ansiStr, u"a\u0001", u"a", 1},  // ignorable characters still tell texts apart
      {ansiText, u"Stra\u00DFe", u"STRASSE", 0}, {ansiText, u"apple", u"Banana", -1}, {ansiText, u"a\u0001", u"A", 1}};
  for (const auto& [cmp, a, b, sign] : cases)
    EXPECT_EQ(Sign(cmp(a, b)), sign) << UnicodeToUtf8(a) << " vs " << UnicodeToUtf8(b);
}

TEST(Text, PosCopyAffixesAndQuotes) {
  const std::tuple<const char16_t*, const char16_t*, Integer, Integer> positions[] = {
      {u"b", u"abcb", 1, 2}, {u"b", u"abcb", 3, 4}, {u"z", u"abc", 1, 0},
      {u"", u"abc", 1, 0},   {u"a", u"abc", 0, 0},  {u"a", u"abc", 4, 0}};
  for (const auto& [sub, text, from, at] : positions) EXPECT_EQ(Pos(sub, text, from), at) << from;
  const std::tuple<Integer, Integer, const char16_t*> copies[] = {
      {2, 3, u"bcd"}, {0, 2, u"ab"}, {5, 100, u"ef"}, {7, 1, u""}, {2, -1, u""}};
  for (const auto& [index, count, part] : copies) EXPECT_EQ(Copy(u"abcdef", index, count), part) << index;
  EXPECT_EQ((std::tuple{StartsText(u"AB", u"abc"), StartsStr(u"AB", u"abc"), EndsText(u"BC", u"abc"),
                        EndsText(u"abcd", u"abc"), EndsStr(u"", u"abc"), ContainsText(u"Hello World", u"lo w")}),
            std::tuple(true, false, true, false, true, true));
  EXPECT_EQ((std::tuple{StringOfChar(u'-', 3), StringOfChar(u'-', -1)}), std::tuple(u"---", u""));
  // Quoted and dequoted.
  EXPECT_EQ((std::tuple{QuotedStr(u"it's"), QuotedStr(u"", u'"')}), std::tuple(u"'it''s'", u"\"\""));
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"'abc'", u"abc"}, {u"'ab''c'", u"ab'c"}, {u"abc", u"abc"}, {u"'abc", u"'abc"}, {u"'abc'def", u"abc"},
      {u"''", u""},       {u"'", u""},           {u"", u""},       {u"abc'", u"abc'"}, {u"''''", u"'"}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(AnsiDequotedStr(text, u'\''), expected);
}

TEST(Text, StringReplaceFlagsDecideCountAndCase) {
  const auto all = rfReplaceAll;
  const std::tuple<const char16_t*, const char16_t*, const char16_t*, unsigned, const char16_t*> cases[] = {
      {u"a-b-c", u"-", u"+", 0, u"a+b-c"}, {u"a-b-c", u"-", u"+", all, u"a+b+c"},
      {u"aXbxc", u"x", u"", all | rfIgnoreCase, u"abc"}, {u"aXbxc", u"x", u"", all, u"aXbc"},
      {u"\u00C4\u00E4", u"\u00E4", u"a", all | rfIgnoreCase, u"aa"},
      {u"aaa", u"aa", u"b", all, u"ba"},  // no overlapping matches
      {u"abc", u"", u"x", all, u"abc"}, {u"xx", u"x", u"xx", all, u"xxxx"}};
  for (const auto& [text, from, to, flags, result] : cases)
    EXPECT_EQ(StringReplace(text, from, to, flags), result) << UnicodeToUtf8(text);
}

TEST(FileNames, SplitOnEitherSeparator) {
  const TextFn name = ExtractFileName, path = ExtractFilePath, ext = ExtractFileExt;
  const std::tuple<TextFn, const char16_t*, const char16_t*> parts[] = {
      {name, u"/tmp/dir/file.tar.gz", u"file.tar.gz"}, {path, u"/tmp/dir/file.tar.gz", u"/tmp/dir/"},
      {ext, u"/tmp/dir/file.tar.gz", u".gz"}, {ext, u"/tmp/dir.d/file", u""}, {name, u"C:\\data\\a.xml", u"a.xml"},
      {path, u"plain", u""}};
  for (const auto& [fn, in, out] : parts) EXPECT_EQ(fn(in), out) << UnicodeToUtf8(in);
  // A folder is not a file.
  EXPECT_EQ((std::tuple{FileExists(u""), FileExists(u"/"), FileExists(u"" VNXML_SOURCE_DIR "/CMakeLists.txt"),
                        FileExists(u"/nonexistent/x")}),
            std::tuple(false, false, true, false));
}
