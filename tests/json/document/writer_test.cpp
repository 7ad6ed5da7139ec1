// The writer, to the byte: compact and formatted text, code pages and marks, and the copy of
// loaded text that must give what decoding and encoding again would.
#include <gtest/gtest.h>

#include "json/json_roundtrip_oracle.h"
#include "support/files.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"

namespace vn {
namespace {

using testing_support::SaveJSON;

TEST(JsonWriter, CompactAndFormattedShapes) {
  struct Case { const char16_t* Input; const char16_t* Compact; const char16_t* Formatted; };
  const Case cases[] = {
      {u"{\"a\":1,\"b\":[1,2],\"c\":{\"d\":true}}", u"{\"a\": 1, \"b\": [1, 2], \"c\": {\"d\": true}}",
       u"{ \r\n  \"a\": 1, \"b\": [\r\n    1, 2\r\n  ], \"c\": { \r\n    \"d\": true\r\n  }\r\n}"},
      {u"{}", u"{}", u"{ \r\n\r\n}"}, {u"[]", u"[]", u"[\r\n\r\n]"},
  };
  for (const Case& c : cases) {
    TVnJSONDocument doc(c.Input);
    EXPECT_EQ(std::tuple(doc.GetAsJSON(), doc.GetFormattedJSON()), std::tuple(c.Compact, c.Formatted));
  }
}

TEST(JsonWriter, LoadedTextGoesThroughDecodeThenEncode) {
  // Each input once as UTF-16 text and once as UTF-8 bytes: the copy-through of plain text
  // and the long way must agree with what a decoded string gives.
  // Input: UTF-8, one string value or a name
  struct Case { const char* Input; const char16_t* Saved; };
  const Case cases[] = {
      {R"(["plain text"])", uR"(["plain text"])"},
      // \u escapes of every kind of unit, in either case of hexadecimal digits
      {R"(["\u0041\u00E9\u0001\u002f\u005c\u0022\u000a\u000B\ud83d\ude00\uDC00"])",
       u"[\"A\u00e9\\/\\\\\\\"\\n\u000b\\uD83D\\uDE00\\uDC00\"]"},
      // names stay raw, so their escapes are encoded again
      {R"({"a\tb":1,"c/d":2,"\u00e9":3})", uR"({"a\\tb": 1, "c\/d": 2, "\\u00e9": 3})"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Input);
    TVnJSONDocument fromBytes(RawByteString(c.Input), cVnCodePageUTF8);
    TVnStringStream bytes(std::string_view(c.Input), cVnCodePageUTF8);
    TVnJSONDocument fromStream(bytes, cVnCodePageUTF8);
    EXPECT_EQ(std::tuple(fromBytes.GetAsJSON(), fromStream.GetAsJSON()), std::tuple(c.Saved, c.Saved));
    // UTF-8 output writes loaded UTF-8 strings straight from their bytes
    EXPECT_EQ(SaveJSON(fromStream, false, cVnCodePageUTF8, false), UnicodeToUtf8(c.Saved));
  }
}

TEST(JsonWriter, ValuesSetByCallers) {
  TVnJSONDocument doc;
  TVnJSONBase* object = doc.CreateRootValue(jdtObject);
  object->AddMember(u"s", jdtString);                              // kind stays null until set
  object->AddMember(u"m");                                         // no value at all
  object->AddMember(u"a", jdtArray)->GetValueObj()->AddValue(jdtString);  // a string from a null Variant
  object->AddMember(u"d", jdtNumber)->SetAsDouble(0.1);
  object->AddMember(u"x", jdtNumber, u"0x1F");                     // text of a number goes as it is
  object->AddMember(u"b", jdtBoolean, u"yes");
  EXPECT_EQ(doc.GetAsJSON(), u"{\"s\": null, \"m\": null, \"a\": [\"\"], \"d\": 0.1, \"x\": 0x1F, \"b\": yes}");
}

TEST(JsonWriter, CodePagesAndMarksFilesInUtf8WithMark) {
  TVnJSONDocument doc(u"{\"k\":\"\u00e9\u20ac\"}");
  const std::string text = "{\"k\": \"\xC3\xA9\\u20AC\"}";
  EXPECT_EQ(std::tuple(SaveJSON(doc, false, cVnCodePageUTF8, false), SaveJSON(doc, false, cVnCodePageUTF8, true)),
            std::tuple(text, "\xEF\xBB\xBF" + text));
  std::string wide = SaveJSON(doc, false, cVnCodePageUTF16LE, true);
  ASSERT_EQ(wide.size(), 2 + 2 * 16u);
  EXPECT_EQ(wide.substr(0, 4), std::string("\xFF\xFE{\0", 4));
  EXPECT_EQ(SaveJSON(doc, false, cVnCodePageUTF16LE, false), wide.substr(2));
  // any other code page: the text's bytes there, never a mark
  EXPECT_EQ(std::tuple(SaveJSON(doc, false, 28591, true), SaveJSON(doc, true, 1252, false)),
            std::tuple("{\"k\": \"\xE9\\u20AC\"}", "{ \r\n  \"k\": \"\xE9\\u20AC\"\r\n}"));
  // A file: UTF-8 with a mark.
  TVnJSONDocument one(u"[1]");
  const test::TempFile file("json_writer.json");
  one.SaveToFile(file.Name(), false);
  TVnJSONDocument again(file.Name(), fmOpenRead);
  EXPECT_EQ(again.GetAsJSON(), u"[1]");
  TVnMemoryStream saved;  // read back through the library's own file stream
  saved.LoadFromFile(file.Name());
  EXPECT_EQ(std::string(static_cast<const char*>(saved.GetMemory()), 6), "\xEF\xBB\xBF[1]");
  EXPECT_THROW(TVnJSONDocument(u"no-such-file.json", fmOpenRead), EReadError);
}

}  // namespace
}  // namespace vn
