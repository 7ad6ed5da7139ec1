// The form reader: how keys build one structure, how values decode, the shapes it gives its own
// meaning, its failures and positions, and its entry points.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "json/reader/json_recorder.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_form_reader.h"
#include "vnxml/json_parser.h"

using namespace vn;
using vntest::JsonRecorder;

namespace {

using FormReader = vntest::RecordingReader<TVnFormURLEncodedJSONReader, true>;

struct Case { const char* Text; const char* Trace; };

const Case kForms[] = {
    {"a=1&b=2", "< { m:a s:1 /m m:b s:2 /m } >"}, {"a=1&a=2", "< { m:a s:1 /m m:a s:2 /m } >"},
    {"a[b]=1&a[c]=2&d=3", "< { m:a { m:b s:1 /m m:c s:2 /m } /m m:d s:3 /m } >"},
    {"a[b][c]=1&a[d]=2", "< { m:a { m:b { m:c s:1 /m } /m m:d s:2 /m } /m } >"},
    {"a%5Bb%5D=1", "< { m:a { m:b s:1 /m } /m } >"},
    {"a%5bb=1&c[d%5de]=2", "< { m:a[b s:1 /m m:c { m:d]e s:2 /m } /m } >"},
    {"a[]=1&a[]=2&b=3", "< { m:a [ s:1 s:2 ] /m m:b s:3 /m } >"},
    {"a[0]=1&a[1]=2&a[1]=3&", "< { m:a [ s:1 s:2 s:3 ] /m } >"},  // the same index goes on
    {"a[][x]=1&a[][y]=2", "< { m:a [ { m:x s:1 /m m:y s:2 /m } ] /m } >"},
    {"a[0][x]=1&a[2][x]=2", "< { m:a [ { m:x s:1 /m } { m:x s:2 /m } ] /m } >"},
    {"a[0][x]=1&a[0][y]=2&a[1][x]=3&b=4", "< { m:a [ { m:x s:1 /m m:y s:2 /m } { m:x s:3 /m } ] /m m:b s:4 /m } >"},
    {"a[0][0]=1&a[0][1]=2&a[1][0]=3", "< { m:a [ [ s:1 s:2 ] [ s:3 ] ] /m } >"},
    {"a[b]", "< { m:a { m:b s: /m } /m } >"},
    // Values: "+" and escapes decode, control characters and raw line breaks drop out, the
    // text is given as JSON string text unless it looks like JSON.
    {"a=x+y%20z&b=x%0Ay%09&c=1=2&d=x\r\ny", "< { m:a s:x y z /m m:b s:xy /m m:c s:1=2 /m m:d s:xy /m } >"},
    {"a=%C3%A9%E2%82%AC%F0%9F%98%80&b=%41%7e", "< { m:a s:\xC3\xA9\\u20AC\\uD83D\\uDE00 /m m:b s:A~ /m } >"},
    {"a={\"b\":1}&b=[x&c=\"q\\", "< { m:a s:{\"b\":1} /m m:b s:[x /m m:c s:\\\"q\\\\ /m } >"},
    {"a=%80%C3%A9", "< { m:a s:\\uFFFD\xC3\xA9 /m } >"},  // a stray continuation byte stands alone
    // Keys: "+", "&" and line breaks are plain, escapes decode as they are, raw UTF-8 too.
    {"a+b%26c%0A=1&\xC3\xA9=\xE2\x82\xAC", "< { m:a+b&c\n s:1 /m m:\xC3\xA9 s:\\u20AC /m } >"},
    {"=1&a=1&&b=2&c&d=3", "< { m: s:1 /m m:a s:1 /m m:&b s:2 /m m:c&d s:3 /m } >"},
    // "_" behind "&" ends the form; the first pair is exempt unless it is a bare name.
    {"a=1&_=123&b=2", "< { m:a s:1 /m } >"}, {"_=1", "< { m:_ s:1 /m } >"}, {"%5Fx", "< { } >"},
    // Shapes this reader gives a meaning of its own, within the event grammar.
    {"a[5]=x&b[1st]=y", "< { m:a [ s:x ] /m m:b [ s:y ] /m } >"},
    {"a[1]=x&a[0]=y", "< { m:a [ s:x s:y ] /m } >"},
    {"a[b]=1&a=2", "< { m:a { m:b s:1 /m } /m m:a s:2 /m } >"},
    {"a[]=1&a=2", "< { m:a [ s:1 ] /m m:a s:2 /m } >"},
    {"a[]=1&a[x]=2", "< { m:a [ s:1 ] /m m:a { m:x s:2 /m } /m } >"},
    {"a[b]=1&a[]=2", "< { m:a { m:b s:1 /m } /m m:a [ s:2 ] /m } >"},
    {"a[0]=1&a[0][y]=2", "< { m:a [ s:1 { m:y s:2 /m } ] /m } >"},
    {"a[][x]=1&a[]=2", "< { m:a [ { m:x s:1 /m } s:2 ] /m } >"},
    {"a[][x]=1&a[][]=2", "< { m:a [ { m:x s:1 /m } [ s:2 ] ] /m } >"},
    {"a[0]=1&a[]=2", "< { m:a [ s:1 ] /m m:a [ s:2 ] /m } >"},
};

TEST(FormReader, KeysAndValuesBuildOneObjectDeepKeysWithoutRecursion) {
  FormReader r;
  for (const Case& c : kForms) EXPECT_EQ((std::tuple{r.Read(c.Text), r.Failure}), std::tuple(c.Trace, u"")) << c.Text;
  // A key of many levels, then a pair that closes them all: the close walks a list.
  constexpr size_t kDepth = 100000;
  std::string text = "a";
  for (size_t i = 0; i < kDepth; ++i) text += i % 2 ? "[x]" : "[]";
  text += "=1&b=2";
  vntest::RecordingReader<TVnFormURLEncodedJSONReader, false, vntest::JsonCounter> deep;
  deep.Reader.Parse(std::string_view(text), 65001);
  EXPECT_EQ(std::tuple(deep.Rec.Opened, deep.Rec.Closed), std::tuple(kDepth + 1, kDepth + 1));
}

// Trace: ends with the place of the failure, !line:col
struct Failure { const char* Text; const char* Trace; UnicodeString Message; };

TEST(FormReader, FailuresReachTheErrorHandlerWithTheirPlace) {
  auto mark = [](std::u16string_view found) { return Format(cVnFormOpeningMarkExpected, {UnicodeString(found)}); };
  const UnicodeString eof = u"Unexpected end of the text!";
  const Failure kFailures[] = {
      {"", "< { m: !1:1", mark(u"")}, {"a", "< { m:a !1:2", mark(u"")},
      {"a[b=1", "< { m:a { m:b !1:5", mark(u"1")},  // the "=" closed the segment
      {"a]=1", "< { m:a !1:2", mark(u"]=1")}, {"a[b]c=1", "< { m:a { m:b !1:5", mark(u"c=1")},
      {"a=%C3x", "< { m:a !1:6", UnicodeString(cVnFormInvalidUTF8)},
      {"a=%E2%82", "< { m:a !1:9", UnicodeString(cVnFormInvalidUTF8)},
      {"a=%zz", "< { m:a !1:6", u"'$zz' is not a valid integer value"}, {"a=%4", "< { m:a !1:5", eof},
      {"a[b", "< { m:a !1:4", eof},
  };
  FormReader r;
  for (const Failure& c : kFailures)
    EXPECT_EQ((std::tuple{r.Read(c.Text), r.Failure, r.Rec.FatalMessage}), std::tuple(c.Trace, c.Message, c.Message))
        << c.Text;
  // The end-of-text flag is the JSON reader's own.
  EXPECT_FALSE(r.Reader.GetUnexpectedEOF());
  EXPECT_THROW(r.Reader.Parse(std::string_view("a=%G0"), 65001), EConvertError);
}

TEST(FormReader, HandlersAndEntryPoints) {
  // No content handler fails before any event; no error handler is needed.
  JsonRecorder rec;  // outlives the reader, which holds it
  TVnFormURLEncodedJSONReader bare;
  EXPECT_EQ(test::CodeOf<EVnJSONException>([&] { bare.Parse(u"a=1"); }), cVnJSONErrNoContentHandler);
  bare.SetContentHandler(IPtr<IVnJSONContentHandler>(&rec));
  EXPECT_NO_THROW(bare.Parse(u"a=1"));

  // The parser component's flag picks this reader; UTF-16 text reads like UTF-8 (the fuzz target
  // compares every entry point).
  const std::string text = "a[\xC3\xA9][]=%C3%A9+1&a[\xC3\xA9][]=2";
  const std::string expected = "< { m:a { m:\xC3\xA9 [ s:\xC3\xA9 1 s:2 ] /m } /m } >";
  FormReader r;
  EXPECT_EQ(r.Read(text), expected);
  EXPECT_EQ(r.Run([&](TVnJSONReader& x) { x.Parse(Utf8ToUnicode(text)); }), expected);
  TVnJSONParser parser;
  std::string values;
  parser.OnValue = [&](TVnJSONSimpleDataType, std::u16string_view v) { values += UnicodeToUtf8(v) + ";"; };
  parser.ParseBuffer(text.data(), Cardinal(text.size()), 65001, true);
  EXPECT_EQ(values, "\xC3\xA9 1;2;");

  // So does the document's.
  auto load = [](const std::string& AForm) {
    TVnMemoryStream form(AForm.data(), Int64(AForm.size()));
    TVnJSONDocument doc;
    doc.LoadFromStream(form, 65001, true);
    return UnicodeToUtf8(doc.GetAsJSON());
  };
  EXPECT_EQ(load(text), "{\"a\": {\"\xC3\xA9\": [\"\xC3\xA9 1\", \"2\"]}}");
  // Form values are no JSON text: their quotes are escaped when the tree is saved.
  EXPECT_EQ(load("q=%22x%22&r=%7B%22d%22%3A1%2C%22e%22%3A%22a+long+value%22%7D"),
            R"({"q": "\"x\"", "r": "{\"d\":1,\"e\":\"a long value\"}"})");
  // A value that starts like JSON goes on unescaped; the document decodes it as it stores it,
  // so a backslash-u that names no code fails there, though the reader took it.
  EXPECT_EQ(r.Read("a=[%5Cu12zz"), "< { m:a s:[\\u12zz /m } >");
  EXPECT_THROW(load("a=[%5Cu12zz"), EConvertError);
}

}  // namespace
