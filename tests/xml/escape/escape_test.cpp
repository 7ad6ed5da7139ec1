// Escaping and decoding of XML character data: the replacement table, the lenient decoder, the
// entity keys, the 8-bit and stream forms, and round trips.
#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "vnxml/common/exception.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/xml_escape.h"

namespace vn {
namespace {

// ---- escaping ----

TEST(VnStrToXML, ReplacesMarkupAndControlCharacters) {
  // Input, apostrophe, quote, expected.
  const std::tuple<std::u16string_view, bool, bool, std::u16string_view> cases[] = {
      {u"", true, true, u""}, {u"plain text", true, true, u"plain text"},
      {u"a<b>c&d", false, false, u"a&lt;b&gt;c&amp;d"},
      {u"]]>", false, false, u"]]&gt;"},  // '>' always, not only after "]]"
      {u"a'b", false, true, u"a'b"}, {u"a'b", true, false, u"a&apos;b"}, {u"a\"b", true, false, u"a\"b"},
      {u"a\"b", false, true, u"a&quot;b"}, {u"\t\n\r", true, true, u"&#9;&#10;&#13;"},
      {u"\x01x\x1F", true, true, u"&#1;x&#31;"},
      {u"\x7F \u00E9\u20AC", true, true, u"\x7F \u00E9\u20AC"},  // DEL and anything above stay
      {u"\U0001F600\xD800", true, true, u"\U0001F600\xD800"},    // pairs and lone surrogates too
      {u"<<", true, true, u"&lt;&lt;"},
      {u"&amp;", true, true, u"&amp;amp;"},  // already escaped text is escaped again
  };
  for (const auto& [input, apostrophe, quote, expected] : cases)
    EXPECT_EQ(VnStrToXML(input, apostrophe, quote), expected) << std::string(input.begin(), input.end());
}

TEST(VnStrToXML, StringFormDropsCharacterZeroOtherFormsKeepItAndWorkOnBytes) {
  const std::u16string withNul(u"a\0b<", 4);
  EXPECT_EQ(VnStrToXML(withNul, true, true), u"ab&lt;");
  EXPECT_EQ(VnStrToXML(std::string_view("a\0b<", 4), true, true), std::string("a\0b&lt;", 7));
  TVnStringStream stream;
  VnStrToXML(withNul.data(), static_cast<Integer>(withNul.size()), stream, true, true);
  EXPECT_EQ(stream.GetWString(), std::u16string(u"a\0b&lt;", 7));
  // The 8-bit form works on bytes.
  EXPECT_EQ(VnStrToXML("x<'\"\n", true, true), "x&lt;&apos;&quot;&#10;");
  EXPECT_EQ(VnStrToXML("x'\"", false, false), "x'\"");
  EXPECT_EQ(VnStrToXML("caf\xC3\xA9 \xFF", true, true), "caf\xC3\xA9 \xFF");  // bytes above 127 pass
  EXPECT_EQ(VnStrToXML("", true, true), "");
}

TEST(VnStrToXML, StreamFormAppendsInTheStreamsCodePage) {
  TVnStringStream utf16;
  utf16.Add(u"<p>");
  const std::u16string text = u"\u00E9 & \"x\"\n'";
  VnStrToXML(text.data(), static_cast<Integer>(text.size()), utf16, false, true);
  EXPECT_EQ(utf16.GetWString(), u"<p>\u00E9 &amp; &quot;x&quot;&#10;'");

  TVnStringStream utf8(cVnCodePageUTF8);
  VnStrToXML(text.data(), static_cast<Integer>(text.size()), utf8, true, false);
  EXPECT_EQ(utf8.GetAsUTF8(), "\xC3\xA9 &amp; \"x\"&#10;&apos;");

  // A length cuts the text, and nothing at all is written for an empty one.
  TVnStringStream cut;
  VnStrToXML(u"ab<cd", 3, cut, true, true);
  VnStrToXML(u"<", 0, cut, true, true);
  VnStrToXML(nullptr, 0, cut, true, true);
  EXPECT_EQ(cut.GetWString(), u"ab&lt;");
}

// ---- decoding ----

TEST(VnXMLToStr, DecodesWhatItKnowsLeavesTheRestAndRaisesOnEmptyNumbers) {
  const std::pair<std::u16string_view, std::u16string_view> cases[] = {
      {u"", u""}, {u"no references", u"no references"}, {u"x&", u"x&"}, {u"&amp", u"&amp"}, {u"&;", u"&;"},
      {u"a & b", u"a & b"},          // the space stops the scan
      {u"AT&T; x", u"AT&T; x"},      // T is no entity
      {u"&foo&amp;", u"&foo&amp;"},  // the scan runs over the second '&': one unknown name
      {u"& amp;", u"& amp;"}, {u"&AMP;&Amp;", u"&AMP;&Amp;"}, {u"&#65", u"&#65"}, {u"&#6 5;", u"&#6 5;"},
      {u"&a &amp;", u"&a &"},  // the scan resumes at the space, so the next one decodes
      {u"&thetasymx;", u"&thetasymx;"},  // 9 characters are never looked up
      {u"&unknown;&amp;", u"&unknown;&"}, {u"&zwj;&zwnj;", u"\u200D\u200C"},
      // names of the whole entity table
      {u"&lt;&gt;&amp;&quot;&apos;", u"<>&\"'"},
      {u"&nbsp;&yuml;", u"\u00A0\u00FF"},                 // Latin-1 set, first and last
      {u"&fnof;&diams;", u"\u0192\u2666"},                // Symbols
      {u"&OElig;&euro;&rsaquo;", u"\u0152\u20AC\u203A"},  // Special
      {u"&lang;&rang;", u"\u2329\u232A"},                 // the HTML 4.01 code points
      {u"&Alpha;&alpha;", u"\u0391\u03B1"},               // case tells entries apart
      {u"&thetasym;", u"\u03D1"},                         // exactly 8 characters
      {u"a&amp;lt;b", u"a&lt;b"},  // one level of decoding only
      {u"&iexlc;", u"\u00A1"},     // folds to the key of iexcl
      {u"&\u0161mp;", u"&"},       // only the low byte counts: U+0161 is 'a' here
      // numeric references give one code unit
      {u"&#65;&#x41;&#X41;", u"AAA"}, {u"&#+66;", u"B"}, {u"&#x20ac;", u"\u20AC"},
      {u"&#-1;", u"\xFFFF"},      // the sign is accepted and the value cut to 16 bits
      {u"&#x1F600;", u"\xF600"},  // never a surrogate pair
      {u"&#65601;", u"A"},        // 0x10041
      {u"&#0000000067;", u"C"},  // the 8-character limit is for names only
  };
  for (const auto& [input, expected] : cases)
    EXPECT_EQ(VnXMLToStr(input), expected) << std::string(input.begin(), input.end());
  EXPECT_EQ(VnXMLToStr(u"&#0;"), std::u16string(1, u'\0'));
  // Entity keys fold mirrored characters.
  EXPECT_EQ(detail::XMLEntityKey(u"iexlc"), detail::XMLEntityKey(u"iexcl"));
  char16_t ch = 0;
  EXPECT_FALSE(detail::FindXMLEntity(detail::XMLEntityKey(u""), ch));
  ASSERT_TRUE(detail::FindXMLEntity(detail::XMLEntityKey(u"apos"), ch));
  EXPECT_EQ(ch, u'\'');

  // A numeric reference without digits raises.
  for (std::u16string_view bad : {u"&#;", u"&#x;", u"&#12a;", u"&#xZZ;", u"a &#-;", u"&#99999999999;"})
    EXPECT_THROW(VnXMLToStr(bad), EConvertError) << std::string(bad.begin(), bad.end());
  for (std::string_view bad : {"&#;", "&#x;", "&#12a;", "&#xZZ;"})
    EXPECT_THROW(VnXMLToStr(bad), EConvertError) << bad;
}

TEST(VnXMLToStr, AnsiFormKnowsFiveEntitiesByTheirFirstLetter) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"a &amp; b", "a & b"}, {"&AMP;&Amp;", "&&"}, {"&apos;&axe;&A;", "'''"}, {"&gt;&GT;&gone;", ">>>"},
      {"&lambda;&lt;", "<<"},  // no length limit and no table here
      {"&quot;&Q;", "\"\""}, {"&foo;&;& amp;&amp", "&foo;&;& amp;&amp"}, {"&#65;&#x42;", "AB"},
      {"&#233;", "\xC3\xA9"},  // written in the 8-bit default, UTF-8
      {"no references", "no references"},
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(VnXMLToStr(input), expected) << input;
}

// ---- round trips ----

TEST(VnXMLToStr, UndoesVnStrToXMLAndDecodesOrRaisesOnArbitraryInput) {
  std::u16string every;
  for (char16_t c = 1; c < 128; ++c) every.push_back(c);
  every += u"\u00E9\u2329\U0001F600&amp;&#65;&lt";
  EXPECT_EQ(VnXMLToStr(VnStrToXML(every, true, true)), every);

  // Random texts over the characters that matter to both directions.
  std::u16string alphabet = u"&;# xX<>'\"\t\nampltg0123456789A\u00E9";
  std::mt19937 random(42);
  for (int round = 0; round < 2000; ++round) {
    std::u16string text(random() % 24, u' ');
    for (char16_t& c : text) c = alphabet[random() % alphabet.size()];
    ASSERT_EQ(VnXMLToStr(VnStrToXML(text, true, true)), text) << round;
  }

  // Arbitrary input decodes or raises EConvertError.
  alphabet = u"&;#xX-+ 0129aAfFgltmpquo\xD800\U0001F600";
  random.seed(7);
  for (int round = 0; round < 3000; ++round) {
    std::u16string text(random() % 20, u' ');
    for (char16_t& c : text) c = alphabet[random() % alphabet.size()];
    const std::string bytes(text.begin(), text.end());
    try { ASSERT_LE(VnXMLToStr(text).size(), text.size()); } catch (const EConvertError&) {}
    try { VnXMLToStr(bytes); } catch (const EConvertError&) {}
  }
}

}  // namespace
}  // namespace vn
