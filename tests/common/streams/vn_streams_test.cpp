// TVnMemoryStream views, TVnStringStream text in its code page, and the UTF-8 adapter's carries.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "common/message_of.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"

namespace vn {
namespace {

std::string ReadAll(TStream& AStream) {
  std::string bytes(static_cast<size_t>(AStream.GetSize()), '\0');
  AStream.SetPosition(0);
  AStream.ReadBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
  return bytes;
}

std::string Utf16Bytes(std::u16string_view AText) {
  return std::string(reinterpret_cast<const char*>(AText.data()), AText.size() * 2);
}

TEST(VnMemoryStream, ViewsCallerMemoryWithoutCopyAndRefusesWrites) {
  static const char block[] = "<a>view</a>";
  TVnMemoryStream view(block, 11);
  EXPECT_EQ((std::tuple{view.IsReadOnly(), view.GetMemory()}), std::tuple(true, block));
  char buf[3];
  view.Seek(3, soBeginning);
  view.ReadBuffer(buf, 3);
  EXPECT_EQ((std::tuple{std::string(buf, 3), view.Write("x", 1)}), std::tuple("vie", 0));
  EXPECT_EQ(test::MessageOf<EWriteError>([&] { view.WriteBuffer("x", 1); }), u"Stream write error");
  EXPECT_THROW(view.SetSize(3), EStreamError);
  EXPECT_EQ(std::string(block), "<a>view</a>");  // untouched
  // Clear drops the view; the stream then owns and grows its own block.
  view.Clear();
  view.WriteBuffer("ok", 2);
  EXPECT_EQ((std::tuple{ReadAll(view), TVnMemoryStream(1024).GetCapacity()}), std::tuple("ok", 1024));
}

TEST(VnStringStream, AddStoresTextInItsCodePageConstructorsConvertManySmallAddsOverwrite) {
  const std::u16string text = u"a<\u00E9>\u20AC\U0001F600";
  const std::pair<Word, std::string> cases[] = {
      {1200, Utf16Bytes(text)}, {65001, UnicodeToUtf8(text)},
      {0, UnicodeToUtf8(text)},  // the 8-bit default is UTF-8
      {1252, "a<\xE9>\x80?"},    // the emoji has no place in windows-1252
      {28591, "a<\xE9>??"},
  };
  for (const auto& [codePage, bytes] : cases) {
    SCOPED_TRACE(codePage);
    TVnStringStream s(codePage);
    s.Add(text.substr(0, 2));
    s.AddChar(text[2]);
    s.Add(text.substr(3));
    EXPECT_EQ((std::tuple{s.GetBytesView(), s.GetPosition()}), std::tuple(bytes, static_cast<Int64>(bytes.size())));
    if (codePage == 1200 || codePage == 65001 || codePage == 0) {
      EXPECT_EQ((std::tuple{s.GetWString(), s.GetAsUTF8(), s.StringData(1200)}),
                std::tuple(text, UnicodeToUtf8(text), Utf16Bytes(text)));
    }
  }

  TVnStringStream wide(u"<r>\u00E9</r>");
  // At the start, ready to be parsed.
  EXPECT_EQ((std::tuple{wide.GetPosition(), wide.GetWString(), wide.GetAString(), wide.StringData(28591)}),
            std::tuple(0, u"<r>\u00E9</r>", "<r>\xC3\xA9</r>", "<r>\xE9</r>"));

  TVnStringStream latin("caf\xE9", 28591);
  // An 8-bit stream gives its own bytes.
  EXPECT_EQ((std::tuple{latin.GetWString(), latin.GetAString()}), std::tuple(u"caf\u00E9", "caf\xE9"));

  // 8-bit text added to a UTF-16 stream is taken as UTF-8 and widened, to an 8-bit stream as bytes
  // of its code page.
  TVnStringStream mixed, ansi(1252);
  mixed.Add(std::string_view("\xC3\xA9"));
  mixed.Add(u"!");
  ansi.Add(std::string_view("\x80"));
  EXPECT_EQ((std::tuple{mixed.GetWString(), ansi.GetWString()}), std::tuple(u"\u00E9!", u"\u20AC"));
  // Many small adds, and overwrites.
  TVnStringStream utf16(1200, 16), utf8(65001, 16);
  std::u16string expected;
  for (int i = 0; i < 20000; ++i) {
    const char16_t c = static_cast<char16_t>(u'a' + i % 26);
    utf16.AddChar(c);
    utf8.AddChar(i % 3 ? c : u'\u00E9');
    expected.push_back(c);
    if (i % 100 == 0) {
      utf16.Add(u"\u4E2D");
      expected += u"\u4E2D";
    }
  }
  EXPECT_EQ((std::tuple{utf16.GetWString(), utf8.GetWString().size()}), std::tuple(expected, 20000u));

  // Adding after a rewind overwrites, and a seek past the end leaves NULs, in both fast paths.
  TVnStringStream s8(65001), s16(1200);
  s8.Add(u"abcdef");
  s8.SetPosition(1);
  s8.Add(u"\u00E9");
  s16.Add(u"ab");
  s16.SetPosition(6);
  s16.AddChar(u'z');
  EXPECT_EQ((std::tuple{s8.GetWString(), s16.GetWString()}), std::tuple(u"a\u00E9def", std::u16string(u"ab\0z", 4)));
}

// What an adapter over a memory stream writes when given ABytes in pieces cut at ACuts, and its
// position after the last piece. Each piece is a heap block of its exact size, so that the address
// sanitizer reports a read past it.
std::pair<std::string, Int64> ThroughAdapter(std::string_view ABytes, std::vector<size_t> ACuts, bool ABOM = false) {
  TMemoryStream target;
  Int64 position = 0;
  {
    TVnUTF8StreamAdapter adapter(&target, ABOM);
    ACuts.push_back(ABytes.size());
    for (size_t from = 0; size_t to : ACuts) {
      const std::unique_ptr<char[]> piece(new char[to - from]);
      std::copy(ABytes.begin() + from, ABytes.begin() + to, piece.get());
      adapter.WriteBuffer(piece.get(), static_cast<Int64>(to - from));
      from = to;
    }
    position = adapter.GetPosition();
  }
  return {ReadAll(target), position};
}

TEST(VnUTF8StreamAdapter, WritesUtf8WhateverTheSplitOfWritesBrokenTextAsReplacements) {
  const std::u16string text = u"x\u00E9\u20AC\U0001F600y\U00010348";
  const std::string bytes = Utf16Bytes(text);
  // Every split point, odd ones and those between the halves of a surrogate pair included.
  for (size_t cut = 0; cut <= bytes.size(); ++cut)
    EXPECT_EQ(ThroughAdapter(bytes, {cut}), std::pair(UnicodeToUtf8(text), static_cast<Int64>(bytes.size()))) << cut;
  // One byte at a time.
  std::vector<size_t> everyByte(bytes.size() - 1);
  std::iota(everyByte.begin(), everyByte.end(), 1);
  EXPECT_EQ(ThroughAdapter(bytes, everyByte, true).first, "\xEF\xBB\xBF" + UnicodeToUtf8(text));
  // Broken text: lone high, lone low, high at the end, then half a unit left over.
  const std::u16string broken = u"a\xD800" u"b\xDC00\xD801";
  EXPECT_EQ(ThroughAdapter(Utf16Bytes(broken) + "c", {broken.size() * 2}).first,
            "a\xEF\xBF\xBD" "b\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
  // Two high surrogates in a row: only the first is lone.
  EXPECT_EQ(ThroughAdapter(Utf16Bytes(u"\xD800\xD83D\xDE00"), {2}).first, "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(VnUTF8StreamAdapter, ReadsUtf8AsUtf16InAnyChunkSize) {
  std::u16string text;
  for (int i = 0; i < 30000; ++i) text += i % 7 ? u"\u00E9t\u20AC" : u"\U0001F600";
  const std::string utf8 = UnicodeToUtf8(text) + "\xE2\x82";  // ends in half a character
  for (Int64 chunk : {1, 3, 4096, 1 << 20}) {
    SCOPED_TRACE(chunk);
    TVnMemoryStream source(utf8.data(), static_cast<Int64>(utf8.size()));
    TVnUTF8StreamAdapter adapter(&source);
    std::string out;
    std::string buf(static_cast<size_t>(chunk), '\0');
    for (Int64 n; (n = adapter.Read(buf.data(), chunk)) > 0;) out.append(buf.data(), static_cast<size_t>(n));
    EXPECT_EQ(out, Utf16Bytes(text + u"\uFFFD"));
  }
  TVnMemoryStream source("", 0);
  TVnUTF8StreamAdapter adapter(&source);
  EXPECT_THROW(adapter.Seek(0, soEnd), EStreamError);
  EXPECT_EQ(adapter.Seek(0, soCurrent), 0);
  // LeakSanitizer reports the inner stream if an owning adapter doesn't free it.
  TVnUTF8StreamAdapter owning(new TMemoryStream, false, true);
  owning.WriteBuffer(u"ok", 4);
  EXPECT_EQ(owning.GetStream()->GetSize(), 2);
}


}  // namespace
}  // namespace vn
