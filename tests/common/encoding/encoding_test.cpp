// TVnEncoding: the code pages callers meet, and bad input decoded inside its buffer.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>

#include "common/message_of.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_exception.h"

namespace vn {
namespace {

// Decodes from a heap block of exactly the input's size, so that AddressSanitizer reports any
// read past the end (a std::string would hide it behind its terminator or inline buffer).
UnicodeString DecodeExact(Word ACodePage, std::string_view ABytes) {
  std::unique_ptr<char[]> block(new char[ABytes.size()]);
  std::copy(ABytes.begin(), ABytes.end(), block.get());
  return TVnEncoding::GetEncoding(ACodePage)->GetString(std::string_view(block.get(), ABytes.size()));
}

// Bytes in a code page and the text they stand for.
using Case = std::tuple<Word, std::string, std::u16string>;

TEST(VnEncoding, CodePagesDecodeAndEncodeTheirCharactersOthersAsQuestionMarks) {
  const Case cases[] = {
      {65001, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"a\u00E9\u20AC\U0001F600"},
      {1200, std::string("a\0\xAC\x20=\xD8\0\xDE", 8), u"a\u20AC\U0001F600"},
      {1201, std::string("\0a\x20\xAC\xD8=\xDE\0", 8), u"a\u20AC\U0001F600"},
      {12000, std::string("a\0\0\0\0\xF6\x01\0", 8), u"a\U0001F600"},
      {12001, std::string("\0\0\0a\0\x01\xF6\0", 8), u"a\U0001F600"},
      {28591, "a\xA4\xE9\xFF", u"a\u00A4\u00E9\u00FF"},
      {28605, "a\xA4\xE9", u"a\u20AC\u00E9"},  // latin-9 puts the euro where latin-1 has the currency sign
      {1250, "\x8A\xB9", u"\u0160\u0105"}, {1252, "\x80\x93\xE9", u"\u20AC\u201C\u00E9"},
      {20127, "plain", u"plain"}, {932, "\x93\xFA\x96\x7B", u"\u65E5\u672C"},
      {936, "\xD6\xD0", u"\u4E2D"}, {20866, "\xE1\xC2", u"\u0410\u0431"},
  };
  for (const auto& [codePage, bytes, text] : cases) {
    const TVnEncoding* encoding = TVnEncoding::GetEncoding(codePage);
    EXPECT_EQ((std::tuple{encoding->GetCodePage(), DecodeExact(codePage, bytes), encoding->GetBytes(text),
                          TVnEncoding::ConvertW(text, codePage), TVnEncoding::ConvertA(bytes, codePage)}),
              std::tuple(codePage, text, bytes, bytes, text));
  }
  // 0 is the 8-bit default; encodings are cached.
  EXPECT_EQ((std::tuple{TVnEncoding::GetEncoding(0), TVnEncoding::GetEncoding(1252)}),
            std::tuple(TVnEncoding::UTF8(), TVnEncoding::GetEncoding(1252)));
  EXPECT_EQ((std::tuple{TVnEncoding::UTF8()->GetPreamble(), TVnEncoding::GetEncoding(1252)->GetPreamble()}),
            std::tuple("\xEF\xBB\xBF", ""));
  // An unknown code page raises, and again: failures aren't cached.
  EXPECT_EQ(test::MessageOf<EVnException>([] { TVnEncoding::GetEncoding(4); }), u"Unsupported code page 4");
  EXPECT_EQ(test::CodeOf<EVnException>([] { TVnEncoding::ConvertA("x", 4); }), cVnErrUnknownEncoding);

  // Unrepresentable characters become question marks; lone surrogates can't be encoded as Unicode either.
  const Case unrepresentable[] = {
      {1252, "a?b?c", u"a\u4E2Db\U0001F600c"}, {28591, "a?b?c", u"a\u0100b\U0001F600c"}, {20127, "?", u"\u00E9"},
      {932, "??", u"\u00E9\u0E01"}, {65001, "a\xEF\xBF\xBD", u"a\xD800"},
      {12000, std::string("\xFD\xFF\0\0a\0\0\0", 8), u"\xDC00" u"a"}};
  for (const auto& [codePage, bytes, text] : unrepresentable)
    EXPECT_EQ(TVnEncoding::ConvertW(text, codePage), bytes) << codePage;
}

TEST(VnEncoding, InvalidInputDecodesToReplacementsWithinTheBuffer) {
  const Case cases[] = {
      // UTF-8: one U+FFFD per maximal bad subpart.
      {65001, "\x80", u"\uFFFD"}, {65001, "\xF0\x9F\x98", u"\uFFFD"}, {65001, "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},
      {65001, "a\xC3", u"a\uFFFD"},                 // truncated at the end
      {65001, "\xE2\x82", u"\uFFFD"},               // truncated three-byte sequence: one subpart
      {65001, "\xC0\xAF", u"\uFFFD\uFFFD"},         // overlong
      {65001, "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},  // an encoded surrogate
      {65001, "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
      {65001, "\xF5\xFF", u"\uFFFD\uFFFD"}, {65001, "\xC3(\xC3\xA9", u"\uFFFD(\u00E9"},
      {65001, std::string(40, 'a') + "\xFF" + std::string(20, 'b'),
       std::u16string(40, u'a') + u"\uFFFD" + std::u16string(20, u'b')},  // across the 16-byte blocks
      // UTF-16/32: a truncated tail is one replacement, lone surrogates stay as they are.
      {1200, "a", u"\uFFFD"}, {1200, std::string("a\0b", 3), u"a\uFFFD"},
      {1201, std::string("\0a\0", 3), u"a\uFFFD"}, {1200, std::string("\0\xD8", 2), u"\xD800"},
      {12000, std::string("a\0\0\0b\0", 6), u"a\uFFFD"}, {20127, "a\x80", u"a\uFFFD"}, {20932, "\xC6", u"\uFFFD"},
      {12000, std::string("\0\0\x11\0", 4), u"\uFFFD"},  // beyond U+10FFFF
      {12001, std::string("\0\0\xD8\0", 4), u"\uFFFD"},  // a surrogate code point
      {932, "\x81", u"\uFFFD"},                     // a lead byte with nothing behind it
  };
  for (const auto& [codePage, bytes, text] : cases)
    EXPECT_EQ(DecodeExact(codePage, bytes), text) << codePage << " " << testing::PrintToString(bytes);
  // Undefined bytes of a single-byte code page decode to something, never fail.
  EXPECT_EQ(DecodeExact(1252, "\x81").size(), 1u);
}

// The UTF-8 decoder against the converter library's, on random bytes biased towards
// sequences that are almost valid: both must agree on every replacement.
TEST(VnEncoding, Utf8DecoderAgreesWithIcuOnRandomInput) {
  UErrorCode err = U_ZERO_ERROR;
  UConverter* icu = ucnv_open("UTF-8", &err);
  ASSERT_TRUE(U_SUCCESS(err));
  std::mt19937 rng(42);
  const uint8_t pieces[] = {'a',  0x80, 0xBF, 0xC2, 0xC3, 0xDF, 0xE0, 0xE2, 0xED,
                            0xEF, 0xF0, 0xF4, 0xF5, 0x9F, 0xA0, 0x90, 0x8F};
  for (int round = 0; round < 2000; ++round) {
    std::string bytes(rng() % 40, '\0');
    for (char& b : bytes) b = static_cast<char>(pieces[rng() % sizeof(pieces)]);
    std::u16string expected(bytes.size() * 2 + 4, u'\0');
    err = U_ZERO_ERROR;
    const int32_t n = ucnv_toUChars(icu, reinterpret_cast<UChar*>(expected.data()),
                                    static_cast<int32_t>(expected.size()), bytes.data(),
                                    static_cast<int32_t>(bytes.size()), &err);
    ASSERT_TRUE(U_SUCCESS(err));
    expected.resize(static_cast<size_t>(n));
    ASSERT_EQ(DecodeExact(65001, bytes), expected) << testing::PrintToString(bytes);
    ASSERT_EQ(Utf8ToUnicode(bytes), expected) << testing::PrintToString(bytes);
  }
  ucnv_close(icu);
}

TEST(VnEncoding, Utf8RoundTripsEveryCodePointCompletePrefixStopsBeforeAnUnfinishedOne) {
  std::u16string text;
  for (uint32_t cp = 1; cp <= 0x10FFFF; cp += cp < 0x800 ? 1 : 61) {
    if (cp >= 0xD800 && cp <= 0xDFFF) continue;
    if (cp >= 0x10000) {
      text.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
      text.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
    } else {
      text.push_back(static_cast<char16_t>(cp));
    }
  }
  const RawByteString utf8 = TVnEncoding::UTF8()->GetBytes(text);
  EXPECT_EQ((std::tuple{utf8, DecodeExact(65001, utf8)}), std::tuple(UnicodeToUtf8(text), text));
  // ASCII whose length is a multiple of the encoder's block once read one unit past its end.
  for (size_t n : {8u, 16u, 24u, 40u}) {
    std::unique_ptr<char16_t[]> block(new char16_t[n]);
    std::fill(block.get(), block.get() + n, u'a');
    EXPECT_EQ(UnicodeToUtf8(std::u16string_view(block.get(), n)), std::string(n, 'a'));
  }
  // The complete prefix stops before an unfinished character.
  const std::pair<std::string, size_t> cases[] = {
      {"", 0},           {"abc", 3},           {"a\xC3", 1},        {"a\xC3\xA9", 3},   {"a\xE2\x82", 1},
      {"a\xF0\x9F\x98", 1}, {"a\xF0\x9F\x98\x80", 5}, {"a\x80", 2},  // a stray continuation byte isn't waited for
      {"a\xE0\x80", 3},  // can never become valid: decode it now
      {"a\xFF", 2},
  };
  for (const auto& [bytes, prefix] : cases)
    EXPECT_EQ(detail::Utf8CompletePrefix(bytes), prefix) << testing::PrintToString(bytes);
}

}  // namespace
}  // namespace vn
