// TVnTextParser: one text in every encoding walks alike; skips, marks, selections and the end.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "support/files.h"

#include "vnxml/common/encoding.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"

using namespace vn;

namespace {

// The text in a code page's bytes; the parser then reads it from its own copy.
std::string Bytes(std::u16string_view AText, Word ACodePage) {
  return TVnEncoding::GetEncoding(ACodePage)->GetBytes(AText);
}
struct Parsed {
  std::string Data;
  TVnTextParser P;
  Parsed(std::u16string_view AText, Word ACodePage)
      : Data(Bytes(AText, ACodePage)), P(Data.data(), Data.size(), ACodePage) {}
};

// The character, line, column and position the parser stands at.
using Step = std::tuple<char16_t, int, int, int>;

std::vector<Step> Walk(TVnTextParser& p) {
  for (std::vector<Step> steps;; p.NextChar()) {
    steps.push_back({p.CurrCharW(), p.GetLineNr(), p.GetColNr(), p.GetPosition()});
    if (p._GetEOF()) return steps;
  }
}

}  // namespace

TEST(TextParser, EveryEncodingWalksAlike) {
  // Latin-1 repertoire, so that the ANSI form holds it too.
  const std::u16string text = u"a\u00e9<b>\n\tc\u00ff\r\n\nend";
  Parsed ansi(text, cVnCodePageLatin1), u8(text, cVnCodePageUTF8), u16(text, cVnCodePageUTF16LE),
      u16be(text, cVnCodePageUTF16BE), u32(text, cVnCodePageUTF32LE);
  EXPECT_EQ((std::tuple{ansi.P.GetCharacterSetType(), u8.P.GetCharacterSetType(), u32.P.GetCharacterSetType()}),
            std::tuple(csAnsi, csUTF8, csUTF16));

  std::vector<Step> expected = Walk(u16.P);
  ASSERT_EQ(expected.size(), text.size() + 1);
  EXPECT_EQ((std::tuple{expected[6], expected[10], expected[11], expected.back()}),
            std::tuple(Step{u'\t', 2, 1, 7}, Step{u'\n', 2, 5, 11}, Step{u'\n', 3, 1, 12}, Step{0, 4, 4, 16}));
  for (Parsed* other : {&ansi, &u8, &u16be, &u32}) EXPECT_EQ(Walk(other->P), expected);

  // Going back restarts the line count; a position asked twice gives the same answer.
  u8.P.First();
  EXPECT_EQ(u8.P.GetLineNr(), 1);
  u8.P.SkipWhile(soNotEqual, u'e');
  EXPECT_EQ((std::tuple{u8.P.GetLineNr(), u8.P.GetColNr(), u8.P.GetLineNr()}), std::tuple(4, 1, 4));
}

TEST(TextParser, BeyondTheBasicPlane) {
  // One UTF-8 sequence is one character, and counts two columns like its surrogate pair.
  const std::u16string text = u"x\U0001F600y\u20ACz";
  Parsed utf8(text, cVnCodePageUTF8), le(text, cVnCodePageUTF16LE);
  TVnTextParser &u8 = utf8.P, &u16 = le.P;
  u8.NextChar();
  EXPECT_EQ(u8.CurrCharW(), char16_t(0xD83D));
  u8.NextChar();
  u16.SkipChars(3);
  EXPECT_EQ((std::tuple{u8.CurrCharW(), u8.GetColNr(), u8.PrevCharW(), u16.GetColNr()}),
            std::tuple(u'y', 4, char16_t(0xD83D), 4));
  u8.SkipWhile(soNotEqual, u'\u20AC');  // a character beyond the bytes' reach
  EXPECT_EQ((std::tuple{u8.CurrCharW(), u8.PeekCharW(), u8.PeekStringW(2), u8.PeekString(1)}),
            std::tuple(u'\u20AC', u'z', u"\u20ACz", "\xE2\x82\xAC"));
}

TEST(TextParser, SelectionsAcrossMarks) {
  const std::u16string text = u"key = \u00e9t\u00e9;rest";
  Parsed parsed[] = {{text, cVnCodePageLatin1}, {text, cVnCodePageUTF8}, {text, cVnCodePageUTF16LE}};
  for (auto& [bytes, p] : parsed) {
    p.SetMark(tpMark1);
    p.SkipWhileSet(soNotInSet, TVnAnsiCharSet(" ="));
    p.SetMark(tpMark2);
    EXPECT_EQ(p.Selected(tpMark1, tpMark2, false), u"key");
    p.SkipWhileSet(soInSet, TVnAnsiCharSet(" ="));
    p.SetMark(tpMark3);
    p.SkipWhile(soNotEqual, u';');
    EXPECT_EQ(p.SelectedW(tpMark3, tpCurrent, true), u"\u00e9t\u00e9");
    EXPECT_FALSE(p.IsMarkSet(tpMark3));
    // A forgotten mark selects nothing, nor does a span that runs backwards.
    EXPECT_EQ((std::tuple{p.Selected(tpMark3, tpCurrent, false), p.Selected(tpMark2, tpMark1, false),
                          p.Selected(tpMark1, tpCurrent, false), p.Selected(tpCurrent, tpNext, false),
                          p.Selected(tpPrev, tpCurrent, false), p.GetPos(tpMark1)}),
              std::tuple(u"", u"", u"key = \u00e9t\u00e9", u";", u"\u00e9", 0));
    p.ClearMark(tpMark1);
    EXPECT_EQ(p.GetPos(tpMark1), -1);
  }
  // SelectedA gives the bytes as they stand; UTF-16 comes as UTF-8.
  TVnTextParser &latin1 = parsed[0].P, &le = parsed[2].P;
  latin1.SetMark(tpMark1);
  latin1.SkipWhileSet(soNotInSet, TVnAnsiCharSet("r"));
  EXPECT_EQ(latin1.SelectedA(tpMark1, tpCurrent, true), ";");
  le.First();
  le.SetMark(tpMark1);
  le.SkipWhile(soNotEqual, u';');
  EXPECT_EQ(le.SelectedA(tpMark1, tpCurrent, true), "key = \xC3\xA9t\xC3\xA9");
}

TEST(TextParser, SkipOperators) {
  std::string text = "  \t\nabc===<x>";
  for (Word cp : {cVnCodePageLatin1, cVnCodePageUTF8}) {
    TVnTextParser p(text.data(), text.size(), cp);
    p.SkipWhile(soLessEqual, u' ');
    EXPECT_EQ(p.CurrCharW(), u'a');
    p.SkipWhileSet(soInSet, TVnAnsiCharSet().AddRange('a', 'z'));
    EXPECT_EQ(p.CurrCharW(), u'=');
    p.SkipWhile(soEqual, u'=');
    EXPECT_EQ(p.CurrCharW(), u'<');
    p.SkipWhile(soNotEqual, u'#');  // stops at the end, without raising
    EXPECT_TRUE(p._GetEOF());
  }
  std::u16string wide = u"\u4e2d\u6587<\u00e9";
  TVnTextParser w(wide.data(), wide.size() * 2, cVnCodePageUTF16LE);
  w.SkipWhileSet(soNotInSet, TVnAnsiCharSet("<"));
  EXPECT_EQ(w.CurrCharW(), u'<');
  w.SrcWSkipWhileW(soNotEqual, u'\u00e9');
  EXPECT_EQ(w.GetCurPos(), 3);
}

TEST(TextParser, TheEndOfTheTextAndOddInput) {
  std::string text = "ab";
  TVnTextParser p(text.data(), text.size(), cVnCodePageUTF8);
  EXPECT_EQ((std::tuple{p.PrevCharW(), p.ReadCharA(), p.PeekCharW()}), std::tuple(0, 'a', 0));
  p.NextChar();
  EXPECT_TRUE(p._GetEOF());
  // Reads at the end give NUL and don't raise.
  EXPECT_EQ((std::tuple{p.CurrCharW(), p.CurrCharA(), p.ReadCharW(), p.PeekString(3)}), std::tuple(0, 0, 0, ""));
  EXPECT_THROW(p.NextChar(), EVnTextParserEOF);
  EXPECT_THROW(p.CheckEOF(), EVnTextParserEOF);
  p.First();
  EXPECT_NO_THROW(p.CheckEOF());
  EXPECT_THROW(p.SkipChars(3), EVnTextParserEOF);
  p.Last();
  EXPECT_TRUE(p._GetEOF());

  TVnTextParser empty(static_cast<const void*>(nullptr), 0, 0);
  EXPECT_EQ((std::tuple{empty._GetEOF(), empty.GetLineNr(), empty.Selected(tpCurrent, tpNext, false)}),
            std::tuple(true, 1, u""));
  // A UTF-16 text cut in the middle of a unit, and one that starts on an odd address.
  std::string le = Bytes(u"ab", cVnCodePageUTF16LE) + "c";
  TVnTextParser cut(le.data(), le.size(), cVnCodePageUTF16LE);
  cut.SkipChars(2);
  std::string shifted = "x" + Bytes(u"<a>", cVnCodePageUTF16LE);
  TVnTextParser odd(shifted.data() + 1, shifted.size() - 1, cVnCodePageUTF16LE);
  odd.SkipWhile(soNotEqual, u'>');
  EXPECT_EQ((std::tuple{cut.CurrCharW(), odd.GetColNr()}), std::tuple(u'\uFFFD', 3));
  // Malformed UTF-8 moves on one byte at a time and reads as U+FFFD.
  std::string bad = "a\xC3(\xFF\xE2\x82z";
  TVnTextParser u8(bad.data(), bad.size(), cVnCodePageUTF8);
  std::u16string seen;
  while (!u8._GetEOF()) seen += u8.ReadCharW();
  u8.First();
  EXPECT_EQ((std::tuple{seen, u8.Selected(tpCurrent, tpMark1, false)}), std::tuple(u"a\uFFFD(\uFFFD\uFFFDz", u""));
  u8.Last();
  u8.SetMark(tpMark1);
  u8.First();
  EXPECT_EQ(u8.Selected(tpCurrent, tpMark1, false), u"a\uFFFD(\uFFFD\uFFFDz");
  // Switching an 8-bit text to UTF-16 afterwards, as a caller that sniffed NULs does.
  std::string sniffed = Bytes(u"{\"k\"}", cVnCodePageUTF16LE);
  TVnTextParser late(sniffed.data(), sniffed.size(), 0);
  late.SetCharacterSetType(csUTF16);
  late.SetContentCodePage(cVnCodePageUTF16LE);
  late.SkipWhile(soNotEqual, u'}');
  EXPECT_EQ(late.GetPosition(), 5);
}

TEST(TextParser, Streams) {
  std::string text = "skip<in place>";
  TMemoryStream mem;
  mem.WriteBuffer(text.data(), static_cast<Int64>(text.size()));
  mem.SetPosition(4);
  TVnTextParser inPlace(&mem, false, cVnCodePageUTF8);
  EXPECT_EQ(inPlace.CurrCharW(), u'<');  // starts where the stream stands
  EXPECT_EQ(inPlace.Cursor().Begin, static_cast<const Byte*>(mem.GetMemory()) + 4);

  const test::TempFile file("text_parser.txt", text);
  TVnTextParser owning(new TFileStream(file.Name(), fmOpenRead), true, cVnCodePageUTF8);  // frees the stream
  owning.SkipWhile(soNotEqual, u' ');
  EXPECT_EQ((std::tuple{owning.GetCurPos(), owning.Selected(tpPrev, tpNext, false)}), std::tuple(7, u"n "));
}

// UTF-8 selections decode sixteen ASCII bytes at a time and stop at a sequence wherever it
// stands in a block; the result must equal the shared decoder's for every length and place.
TEST(TextParserUtf8, SelectionsAtEveryOffset) {
  // Valid sequences of two, three and four bytes, then a lone continuation byte, a cut lead and
  // an overlong form, which the shared decoder replaces.
  const std::string_view kSequences[] = {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                         "\x80",     "\xE2\x82",     "\xC0\xAF"};
  for (std::string_view seq : kSequences) {
    for (size_t len = 0; len <= 40; ++len) {
      for (size_t at = 0; at <= len; ++at) {
        std::string text;
        for (size_t i = 0; i < len; ++i) text += i == at ? std::string(seq) : std::string(1, char('a' + i % 26));
        // An exact block, so that a read past its end shows under the address sanitizer.
        std::unique_ptr<char[]> exact(new char[text.size()]);
        text.copy(exact.get(), text.size());
        TVnTextParser parser(exact.get(), text.size(), 65001);
        parser.SetMark(tpMark1);
        parser.Last();
        EXPECT_EQ(parser.Selected(tpMark1, tpCurrent, true), Utf8ToUnicode(text)) << len << " " << at;
      }
    }
  }
}
