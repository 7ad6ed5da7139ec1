// Text helpers: trimming, ASCII and Unicode case, comparison, quoting, search and replace.
#include <gtest/gtest.h>

#include "vnxml/common/sysutils.h"

using namespace vn;

TEST(Trim, ControlCharactersAndSpaces) {
  EXPECT_EQ(Trim(u"\t a b \r\n"), u"a b");
  EXPECT_EQ(Trim(u"\x01\x1F x"), u"x");
  EXPECT_EQ(Trim(u"\u00A0x\u00A0"), u"\u00A0x\u00A0");  // only characters at or below the space
  EXPECT_EQ(Trim(u"   "), u"");
  EXPECT_EQ(Trim(u""), u"");
  EXPECT_EQ(TrimLeft(u"  x  "), u"x  ");
  EXPECT_EQ(TrimRight(u"  x  "), u"  x");
}

TEST(CaseFolding, AsciiOnlyVersusUnicode) {
  EXPECT_EQ(UpperCase(u"abz\u00E4\u00DF"), u"ABZ\u00E4\u00DF");
  EXPECT_EQ(LowerCase(u"ABZ\u00C4"), u"abz\u00C4");
  EXPECT_EQ(AnsiUpperCase(u"ab\u00E4"), u"AB\u00C4");
  EXPECT_EQ(AnsiUpperCase(u"stra\u00DFe"), u"STRASSE");
  EXPECT_EQ(AnsiLowerCase(u"\u00C4\u0391"), u"\u00E4\u03B1");
  EXPECT_TRUE(SameText(u"Hello", u"hELLO"));
  EXPECT_FALSE(SameText(u"\u00C4", u"\u00E4"));
  EXPECT_TRUE(AnsiSameText(u"\u00C4x", u"\u00E4X"));
  EXPECT_FALSE(AnsiSameText(u"a", u"ab"));
}

TEST(Compare, SignsFollowUpperCasedUnits) {
  EXPECT_EQ(CompareText(u"abc", u"ABC"), 0);
  EXPECT_LT(CompareText(u"abc", u"ABD"), 0);
  EXPECT_LT(CompareText(u"ab", u"abc"), 0);
  EXPECT_GT(CompareText(u"_", u"a"), 0);  // 'a' folds to 'A' (0x41), below '_' (0x5F)
  EXPECT_LT(CompareStr(u"B", u"a"), 0);
  EXPECT_GT(CompareStr(u"b", u"B"), 0);
  EXPECT_EQ(CompareStr(u"", u""), 0);
}

TEST(Compare, AnsiFormsFollowLinguisticOrder) {
  EXPECT_LT(AnsiCompareStr(u"a", u"A"), 0);  // lower case first
  EXPECT_LT(AnsiCompareStr(u"A", u"b"), 0);  // then the letter decides, not the code unit
  EXPECT_LT(AnsiCompareStr(u"\u00E4", u"b"), 0);
  EXPECT_EQ(AnsiCompareStr(u"x", u"x"), 0);
  EXPECT_NE(AnsiCompareStr(u"a\u0001", u"a"), 0);  // ignorable characters still tell texts apart
  EXPECT_EQ(AnsiCompareText(u"Stra\u00DFe", u"STRASSE"), 0);
  EXPECT_LT(AnsiCompareText(u"apple", u"Banana"), 0);
  EXPECT_GT(AnsiCompareText(u"a\u0001", u"A"), 0);
}

TEST(Quoting, QuotedAndDequoted) {
  EXPECT_EQ(QuotedStr(u"it's"), u"'it''s'");
  EXPECT_EQ(QuotedStr(u"", u'"'), u"\"\"");
  struct Case {
    const char16_t* Text;
    const char16_t* Expected;
  };
  const Case cases[] = {
      {u"'abc'", u"abc"},    {u"'ab''c'", u"ab'c"}, {u"abc", u"abc"},  {u"'abc", u"'abc"},
      {u"'abc'def", u"abc"}, {u"''", u""},          {u"'", u""},       {u"", u""},
      {u"abc'", u"abc'"},    {u"''''", u"'"},
  };
  for (const auto& c : cases) EXPECT_EQ(AnsiDequotedStr(c.Text, u'\''), c.Expected);
}

TEST(Search, PosCopyAndAffixes) {
  EXPECT_EQ(Pos(u"b", u"abcb"), 2);
  EXPECT_EQ(Pos(u"b", u"abcb", 3), 4);
  EXPECT_EQ(Pos(u"z", u"abc"), 0);
  EXPECT_EQ(Pos(u"", u"abc"), 0);
  EXPECT_EQ(Pos(u"a", u"abc", 0), 0);
  EXPECT_EQ(Pos(u"a", u"abc", 4), 0);
  EXPECT_EQ(Copy(u"abcdef", 2, 3), u"bcd");
  EXPECT_EQ(Copy(u"abcdef", 0, 2), u"ab");
  EXPECT_EQ(Copy(u"abcdef", 5, 100), u"ef");
  EXPECT_EQ(Copy(u"abcdef", 7, 1), u"");
  EXPECT_EQ(Copy(u"abcdef", 2, -1), u"");
  EXPECT_TRUE(StartsText(u"AB", u"abc"));
  EXPECT_FALSE(StartsStr(u"AB", u"abc"));
  EXPECT_TRUE(EndsText(u"BC", u"abc"));
  EXPECT_FALSE(EndsText(u"abcd", u"abc"));
  EXPECT_TRUE(EndsStr(u"", u"abc"));
  EXPECT_TRUE(ContainsText(u"Hello World", u"lo w"));
  EXPECT_EQ(StringOfChar(u'-', 3), u"---");
  EXPECT_EQ(StringOfChar(u'-', -1), u"");
}

TEST(StringReplace, FlagsDecideCountAndCase) {
  EXPECT_EQ(StringReplace(u"a-b-c", u"-", u"+", 0), u"a+b-c");
  EXPECT_EQ(StringReplace(u"a-b-c", u"-", u"+", rfReplaceAll), u"a+b+c");
  EXPECT_EQ(StringReplace(u"aXbxc", u"x", u"", rfReplaceAll | rfIgnoreCase), u"abc");
  EXPECT_EQ(StringReplace(u"aXbxc", u"x", u"", rfReplaceAll), u"aXbc");
  EXPECT_EQ(StringReplace(u"\u00C4\u00E4", u"\u00E4", u"a", rfReplaceAll | rfIgnoreCase), u"aa");
  EXPECT_EQ(StringReplace(u"aaa", u"aa", u"b", rfReplaceAll), u"ba");  // no overlapping matches
  EXPECT_EQ(StringReplace(u"abc", u"", u"x", rfReplaceAll), u"abc");
  EXPECT_EQ(StringReplace(u"xx", u"x", u"xx", rfReplaceAll), u"xxxx");
}

TEST(FileNames, SplitOnEitherSeparator) {
  EXPECT_EQ(ExtractFileName(u"/tmp/dir/file.tar.gz"), u"file.tar.gz");
  EXPECT_EQ(ExtractFilePath(u"/tmp/dir/file.tar.gz"), u"/tmp/dir/");
  EXPECT_EQ(ExtractFileExt(u"/tmp/dir/file.tar.gz"), u".gz");
  EXPECT_EQ(ExtractFileExt(u"/tmp/dir.d/file"), u"");
  EXPECT_EQ(ExtractFileName(u"C:\\data\\a.xml"), u"a.xml");
  EXPECT_EQ(ExtractFilePath(u"plain"), u"");
  EXPECT_FALSE(FileExists(u""));
  EXPECT_FALSE(FileExists(u"/"));  // a folder is not a file
  EXPECT_TRUE(FileExists(u"" VNXML_SOURCE_DIR "/CMakeLists.txt"));
  EXPECT_FALSE(FileExists(u"/nonexistent/x"));
}
