// UTF-8 selections decode sixteen ASCII bytes at a time and stop at a sequence wherever it
// stands in a block; the result must equal the shared decoder's for every length and place.
#include <gtest/gtest.h>

#include <memory>

#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"

using namespace vn;

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
