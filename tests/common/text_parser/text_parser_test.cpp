// TVnTextParser: one text in every encoding walks alike; skips, marks, selections and the end.
#include <gtest/gtest.h>

#include <memory>

#include "support/files.h"

#include "vnxml/common/encoding.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"

using namespace vn;

namespace {

std::string Utf16Bytes(std::u16string_view s, bool bigEndian) {
  std::string out;
  for (char16_t c : s) {
    char lo = static_cast<char>(c & 0xFF), hi = static_cast<char>(c >> 8);
    out += bigEndian ? std::string{hi, lo} : std::string{lo, hi};
  }
  return out;
}

std::string Utf32Bytes(std::u16string_view s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    uint32_t c = s[i];
    if (c >= 0xD800 && c < 0xDC00) c = 0x10000 + ((c - 0xD800) << 10) + (s[++i] - 0xDC00);
    for (int b = 0; b < 4; ++b) out += static_cast<char>((c >> (8 * b)) & 0xFF);
  }
  return out;
}

struct Step {
  char16_t Char;
  int Line, Col, Pos;
  bool operator==(const Step&) const = default;
};

std::vector<Step> Walk(TVnTextParser& p) {
  std::vector<Step> steps;
  while (!p._GetEOF()) {
    steps.push_back({p.CurrCharW(), p.GetLineNr(), p.GetColNr(), p.GetPosition()});
    p.NextChar();
  }
  steps.push_back({p.CurrCharW(), p.GetLineNr(), p.GetColNr(), p.GetPosition()});
  return steps;
}

}  // namespace

TEST(TextParser, EveryEncodingWalksAlike) {
  // Latin-1 repertoire, so that the ANSI form holds it too.
  const std::u16string text = u"a\u00e9<b>\n\tc\u00ff\r\n\nend";
  std::string latin1;
  for (char16_t c : text) latin1 += static_cast<char>(c);
  std::string utf8 = UnicodeToUtf8(text);
  std::string le = Utf16Bytes(text, false), be = Utf16Bytes(text, true), utf32 = Utf32Bytes(text);

  TVnTextParser ansi(latin1.data(), latin1.size(), cVnCodePageLatin1);
  TVnTextParser u8(utf8.data(), utf8.size(), cVnCodePageUTF8);
  TVnTextParser u16(le.data(), le.size(), cVnCodePageUTF16LE);
  TVnTextParser u16be(be.data(), be.size(), cVnCodePageUTF16BE);
  TVnTextParser u32(utf32.data(), utf32.size(), cVnCodePageUTF32LE);
  EXPECT_EQ(ansi.GetCharacterSetType(), csAnsi);
  EXPECT_EQ(u8.GetCharacterSetType(), csUTF8);
  EXPECT_EQ(u32.GetCharacterSetType(), csUTF16);

  std::vector<Step> expected = Walk(u16);
  ASSERT_EQ(expected.size(), text.size() + 1);
  EXPECT_EQ(expected[6], (Step{u'\t', 2, 1, 7}));
  EXPECT_EQ(expected[10], (Step{u'\n', 2, 5, 11}));
  EXPECT_EQ(expected[11], (Step{u'\n', 3, 1, 12}));
  EXPECT_EQ(expected.back(), (Step{0, 4, 4, 16}));
  EXPECT_EQ(Walk(ansi), expected);
  EXPECT_EQ(Walk(u8), expected);
  EXPECT_EQ(Walk(u16be), expected);
  EXPECT_EQ(Walk(u32), expected);

  // Going back restarts the line count; a position asked twice gives the same answer.
  u8.First();
  EXPECT_EQ(u8.GetLineNr(), 1);
  u8.SkipWhile(soNotEqual, u'e');
  EXPECT_EQ(u8.GetLineNr(), 4);
  EXPECT_EQ(u8.GetColNr(), 1);
  EXPECT_EQ(u8.GetLineNr(), 4);
}

TEST(TextParser, BeyondTheBasicPlane) {
  // One UTF-8 sequence is one character, and counts two columns like its surrogate pair.
  const std::u16string text = u"x\U0001F600y\u20ACz";
  std::string utf8 = UnicodeToUtf8(text);
  std::string le = Utf16Bytes(text, false);
  TVnTextParser u8(utf8.data(), utf8.size(), cVnCodePageUTF8);
  TVnTextParser u16(le.data(), le.size(), cVnCodePageUTF16LE);
  u8.NextChar();
  EXPECT_EQ(u8.CurrCharW(), char16_t(0xD83D));
  u8.NextChar();
  EXPECT_EQ(u8.CurrCharW(), u'y');
  EXPECT_EQ(u8.GetColNr(), 4);
  EXPECT_EQ(u8.PrevCharW(), char16_t(0xD83D));
  u16.SkipChars(3);
  EXPECT_EQ(u16.GetColNr(), 4);
  u8.SkipWhile(soNotEqual, u'\u20AC');  // a character beyond the bytes' reach
  EXPECT_EQ(u8.CurrCharW(), u'\u20AC');
  EXPECT_EQ(u8.PeekCharW(), u'z');
  EXPECT_EQ(u8.PeekStringW(2), u"\u20ACz");
  EXPECT_EQ(u8.PeekString(1), "\xE2\x82\xAC");
}

TEST(TextParser, SelectionsAcrossMarks) {
  const std::u16string text = u"key = \u00e9t\u00e9;rest";
  std::string latin1;
  for (char16_t c : text) latin1 += static_cast<char>(c);
  std::string utf8 = UnicodeToUtf8(text), le = Utf16Bytes(text, false);
  TVnTextParser parsers[] = {{latin1.data(), latin1.size(), cVnCodePageLatin1},
                             {utf8.data(), utf8.size(), cVnCodePageUTF8},
                             {le.data(), le.size(), cVnCodePageUTF16LE}};
  for (TVnTextParser& p : parsers) {
    p.SetMark(tpMark1);
    p.SkipWhileSet(soNotInSet, TVnAnsiCharSet(" ="));
    p.SetMark(tpMark2);
    EXPECT_EQ(p.Selected(tpMark1, tpMark2, false), u"key");
    p.SkipWhileSet(soInSet, TVnAnsiCharSet(" ="));
    p.SetMark(tpMark3);
    p.SkipWhile(soNotEqual, u';');
    EXPECT_EQ(p.SelectedW(tpMark3, tpCurrent, true), u"\u00e9t\u00e9");
    EXPECT_FALSE(p.IsMarkSet(tpMark3));
    EXPECT_EQ(p.Selected(tpMark3, tpCurrent, false), u"");  // a forgotten mark selects nothing
    EXPECT_EQ(p.Selected(tpMark2, tpMark1, false), u"");    // nor does a span that runs backwards
    EXPECT_EQ(p.Selected(tpMark1, tpCurrent, false), u"key = \u00e9t\u00e9");
    EXPECT_EQ(p.Selected(tpCurrent, tpNext, false), u";");
    EXPECT_EQ(p.Selected(tpPrev, tpCurrent, false), u"\u00e9");
    EXPECT_EQ(p.GetPos(tpMark1), 0);
    p.ClearMark(tpMark1);
    EXPECT_EQ(p.GetPos(tpMark1), -1);
  }
  // SelectedA gives the bytes as they stand; UTF-16 comes as UTF-8.
  parsers[0].SetMark(tpMark1);
  parsers[0].SkipWhileSet(soNotInSet, TVnAnsiCharSet("r"));
  EXPECT_EQ(parsers[0].SelectedA(tpMark1, tpCurrent, true), ";");
  parsers[2].First();
  parsers[2].SetMark(tpMark1);
  parsers[2].SkipWhile(soNotEqual, u';');
  EXPECT_EQ(parsers[2].SelectedA(tpMark1, tpCurrent, true), "key = \xC3\xA9t\xC3\xA9");
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

TEST(TextParser, TheEndOfTheText) {
  std::string text = "ab";
  TVnTextParser p(text.data(), text.size(), cVnCodePageUTF8);
  EXPECT_EQ(p.PrevCharW(), 0);
  EXPECT_EQ(p.ReadCharA(), 'a');
  EXPECT_EQ(p.PeekCharW(), 0);
  p.NextChar();
  EXPECT_TRUE(p._GetEOF());
  EXPECT_EQ(p.CurrCharW(), 0);  // reads at the end give NUL and don't raise
  EXPECT_EQ(p.CurrCharA(), 0);
  EXPECT_EQ(p.ReadCharW(), 0);
  EXPECT_EQ(p.PeekString(3), "");
  EXPECT_THROW(p.NextChar(), EVnTextParserEOF);
  EXPECT_THROW(p.CheckEOF(), EVnTextParserEOF);
  p.First();
  EXPECT_NO_THROW(p.CheckEOF());
  EXPECT_THROW(p.SkipChars(3), EVnTextParserEOF);
  p.Last();
  EXPECT_TRUE(p._GetEOF());

  TVnTextParser empty(static_cast<const void*>(nullptr), 0, 0);
  EXPECT_TRUE(empty._GetEOF());
  EXPECT_EQ(empty.GetLineNr(), 1);
  EXPECT_EQ(empty.Selected(tpCurrent, tpNext, false), u"");
}

TEST(TextParser, OddInput) {
  // A UTF-16 text cut in the middle of a unit, and one that starts on an odd address.
  std::string le = Utf16Bytes(u"ab", false) + "c";
  TVnTextParser cut(le.data(), le.size(), cVnCodePageUTF16LE);
  cut.SkipChars(2);
  EXPECT_EQ(cut.CurrCharW(), u'\uFFFD');
  std::string shifted = "x" + Utf16Bytes(u"<a>", false);
  TVnTextParser odd(shifted.data() + 1, shifted.size() - 1, cVnCodePageUTF16LE);
  odd.SkipWhile(soNotEqual, u'>');
  EXPECT_EQ(odd.GetColNr(), 3);
  // Malformed UTF-8 moves on one byte at a time and reads as U+FFFD.
  std::string bad = "a\xC3(\xFF\xE2\x82z";
  TVnTextParser u8(bad.data(), bad.size(), cVnCodePageUTF8);
  std::u16string seen;
  while (!u8._GetEOF()) seen += u8.ReadCharW();
  EXPECT_EQ(seen, u"a\uFFFD(\uFFFD\uFFFDz");
  u8.First();
  EXPECT_EQ(u8.Selected(tpCurrent, tpMark1, false), u"");
  u8.Last();
  u8.SetMark(tpMark1);
  u8.First();
  EXPECT_EQ(u8.Selected(tpCurrent, tpMark1, false), u"a\uFFFD(\uFFFD\uFFFDz");
  // Switching an 8-bit text to UTF-16 afterwards, as a caller that sniffed NULs does.
  std::string sniffed = Utf16Bytes(u"{\"k\"}", false);
  TVnTextParser late(sniffed.data() + 0, sniffed.size(), 0);
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
  auto* stream = new TFileStream(file.Name(), fmOpenRead);
  {
    TVnTextParser owning(stream, true, cVnCodePageUTF8);  // frees the stream with itself
    owning.SkipWhile(soNotEqual, u' ');
    EXPECT_EQ(owning.GetCurPos(), 7);
    EXPECT_EQ(owning.Selected(tpPrev, tpNext, false), u"n ");
  }
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
