// Byte-order marks and the two directions of VnCodePage.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "common/message_of.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_exception.h"
#include "vnxml/common/vn_streams.h"

namespace vn {
namespace {

TEST(VnCodePage, MarksPassedOrStreamLeftAloneNamesWithAliasesAndCase) {
  const std::tuple<std::string, Word, Int64> cases[] = {
      {"\xEF\xBB\xBF<a/>", 65001, 3}, {"\xFF\xFE<\0", 1200, 2}, {"\xFE\xFF\0<", 1201, 2},
      {std::string("\xFF\xFE\0\0<\0\0\0", 8), 12000, 4}, {std::string("\0\0\xFE\xFF\0\0\0<", 8), 12001, 4},
      {"<a/>", 0, 0},
      {"\xEF\xBB", 0, 0},  // a mark cut short is no mark
      {"\xFF", 0, 0}, {"", 0, 0},
  };
  for (const auto& [bytes, codePage, after] : cases) {
    // Prefixed so that the detection is seen to work from the current position.
    const std::string data = "xx" + bytes;
    TVnMemoryStream s(data.data(), static_cast<Int64>(data.size()));
    s.SetPosition(2);
    EXPECT_EQ((std::tuple{VnGetCodePage(&s), s.GetPosition()}), std::tuple(codePage, 2 + after)) << bytes.size();
  }

  // Names: aliases and case are accepted, empty and unknown ones are not.
  const std::pair<const char16_t*, Word> names[] = {
      {u"utf-8", 65001},      {u"UTF8", 65001},   {u"ucs-2", 1200},    {u"latin1", 28591},
      {u"ISO_8859-1", 28591}, {u"cp1252", 1252},  {u"ibm-1047", 1047}, {u"cp437", 437},
      {u"x-mac-cyrillic", 10007},  // known to ICU only
  };
  for (const auto& [name, codePage] : names) EXPECT_EQ(VnCodePage(name), codePage) << UnicodeToUtf8(name);
  // Numbers only the converter library knows get a "cpN" name that maps back.
  EXPECT_EQ((std::tuple{VnCodePage(Word{10007}), VnCodePage(u"cp10007")}), std::tuple(u"cp10007", 10007));

  EXPECT_EQ((std::tuple{VnCodePage(u""), VnCodePage(Word{0}), VnCodePage(Word{4})}), std::tuple(0, u"", u""));
  EXPECT_EQ(test::MessageOf<EVnException>([] { VnCodePage(u"no-such-charset"); }),
            u"Unsupported encoding \"no-such-charset\"");
  EXPECT_EQ(test::CodeOf<EVnException>([] { VnCodePage(u"no-such-charset"); }), cVnErrUnknownEncoding);
  // A name is matched whole, not by its prefix.
  for (const char16_t* name : {u"UTF-8x", u"cp"}) EXPECT_THROW(VnCodePage(name), EVnException) << UnicodeToUtf8(name);
}

}  // namespace
}  // namespace vn
