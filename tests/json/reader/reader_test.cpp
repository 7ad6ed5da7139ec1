// The reader's accepted language, its failures and positions, encodings and entry points,
// depth, and the parser component.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "json_recorder.h"
#include "support/raises.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_parser.h"

using namespace vn;
using vntest::RecordingJsonReader;

namespace {

struct Case { const char* Text; const char* Trace; };

// Traces end with !line:col when the parse failed; -1:-1 marks the end of text coming too early.
const Case kLanguage[] = {
    {"", "< >"}, {"   ", "< >"}, {"{}", "< { } >"}, {"[]", "< [ ] >"}, {"  [1]", "< [ n:1 ] >"},
    {"12 ", "< n:12 >"}, {"\"a\" ", "< s:a >"},
    {"truex", "< b:true >"},  // the character after a top-level literal is passed over unseen
    {"[1][2]{}", "< [ n:1 ] [ n:2 ] { } >"},
    {"{\"a\":[1,{\"b\":null}],\"c\":false}", "< { m:a [ n:1 { m:b z:null /m } ] /m m:c b:false /m } >"},
    {"{\"a\" junk : 1 junk }", "< { m:a n:1 /m } >"}, {"{ junk \"a\":1}", "< { m:a n:1 /m } >"},
    {"{\"a\":1,junk\"b\":2}", "< { m:a n:1 /m m:b n:2 /m } >"},
    {"{\"a\":1,\"a\":2}", "< { m:a n:1 /m m:a n:2 /m } >"}, {"[1}]", "< [ n:1 ] >"},
    {"{\"a\":[1]]}", "< { m:a [ n:1 ] /m } >"}, {"[1 2]", "< [ n:1 ] >"},
    {"[truex, nullnull]", "< [ b:true z:null ] >"}, {"[1,]", "< [ n:1 ] >"},
    {"[[],[[]]]", "< [ [ ] [ [ ] ] ] >"},
    {"[+1,.5,007,1e,e5,1-2,-]", "< [ n:+1 n:.5 n:007 n:1e n:e5 n:1-2 n:- ] >"},
    {"[\"\",\"a\\tb\",\"\\\"\\\\\",\"\\u00e9\\/\"]", "< [ s: s:a\\tb s:\\\"\\\\ s:\\u00e9\\/ ] >"},
    {"[\"\\u\"abc\"]", "< [ s:\\u\"abc ] >"},  // the quote after \u belongs to the escape
    {"[\"\\uD800x\",\"a\nb\x01\"]", "< [ s:\\uD800x s:a\nb\x01 ] >"},
    {"{\"a\\tb\":1}", "< { m:a\\tb n:1 /m } >"},
    {"[\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\"]", "< [ s:\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 ] >"},
    // Text cut short: a string at the top level ends quietly; a container fires its end, then
    // the step past its bracket meets the end.
    {"\"abc", "< s:abc >"}, {"[1", "< [ n:1 ] !-1:-1"}, {"{\"a\":1", "< { m:a n:1 /m } !-1:-1"},
    {"{\"a", "< { m:a !-1:-1"}, {"{\"a\" 1}", "< { m:a !-1:-1"}, {"[\"\\u12", "< [ !-1:-1"},
    {"{", "< { } !-1:-1"},
    // Failures: the scanner stands at the character found.
    {"\t1", "< !1:1"}, {"{}\n", "< { } !1:3"}, {"[1] ", "< [ n:1 ] !1:4"}, {"12,3", "< n:12 !1:4"},
    {"\"a\"x", "< s:a !1:4"}, {"\"a\"  \"b\"", "< s:a !1:6"}, {"{\"a\":}", "< { m:a !1:6"},
    {"{\"a\":1,}", "< { m:a n:1 /m !1:9"},  // no trailing comma in an object: a name is due
    {"[,]", "< [ !1:2"}, {"[}", "< [ !1:2"}, {"[", "< [ !1:2"}, {"[\"\\q\"]", "< [ !1:4"},
    {"[\"\\", "< [ !1:4"}, {"[tru]", "< [ !1:6"}, {"[True]", "< [ !1:2"}, {"[\n1,\n x]", "< [ n:1 !3:2"},
    {"x", "< !1:1"},
};

TEST(JsonReader, AcceptedLanguageFailuresAndCutsAnywhere) {
  RecordingJsonReader r;
  for (const Case& c : kLanguage) EXPECT_EQ(r.Read(c.Text), c.Trace) << "input: " << c.Text;
  EXPECT_EQ(r.Reader.GetPublicID(), u"t");

  // A text cut anywhere ends quietly or with the reader's own exceptions, never past the buffer.
  const std::string text = "{\"a\\u00e9\":[1.5e3,true,\"x\\\"\xC3\xA9\",{\"n\":null}], \"b\" :false}";
  const UnicodeString wide = Utf8ToUnicode(text);
  for (size_t n = 0; n <= text.size(); ++n) {
    std::string cut = text.substr(0, n);
    EXPECT_NO_THROW(r.Run([&](TVnJSONReader& x) { x.ParseBuffer(cut.data(), Cardinal(n), 65001, u""); }));
    UnicodeString wideCut = wide.substr(0, std::min(n, wide.size()));
    EXPECT_NO_THROW(r.Run([&](TVnJSONReader& x) { x.Parse(wideCut, u""); }));
  }
}

struct Failure { const char* Text; std::u16string_view Expected; std::u16string_view Found; };

TEST(JsonReader, NotWellFormedNamesExpectedAndFound) {
  const Failure failures[] = {
      {"{}\n", cVnJSONValueStartExpected, u"\n"}, {"[\xC3\xA9]", cVnJSONValueStartExpected, u"\u00E9"},
      {"[\xF0\x9F\x98\x80]", cVnJSONValueStartExpected, u"\U0001F600"}, {"12,3", u"", u"3"},
      {"[\"\\q\"]", cVnJSONEscapeExpected, u"q"},
      {"[tru]", u"e", u""},   // the wrong letter was read: what follows it is shown
      {"[trux1]", u"e", u"1"}, {"{\"a\":1,}", u"\"", u""},
  };
  for (const Failure& f : failures) {
    SCOPED_TRACE(f.Text);
    RecordingJsonReader r;
    const auto parse = [&] { r.Reader.Parse(std::string_view(f.Text), 65001, u""); };
    const UnicodeString want = Format(_cVnJSONNotWellFormed, {UnicodeString(f.Expected), UnicodeString(f.Found)});
    test::ExpectRaises<EVnJSONParseError>(parse, want);
    EXPECT_EQ(test::CodeOf<EVnJSONParseError>(parse), cVnJSONErrNotWellFormed);
    EXPECT_EQ(r.Rec.FatalMessage, want) << "the error handler hears the same text";
  }
  // An end of text is the scanner's exception; the locator then says -1.
  RecordingJsonReader r;
  EXPECT_THROW(r.Reader.Parse(std::string_view("[1"), 0, u""), EVnTextParserEOF);
  EXPECT_EQ(std::tuple(r.Reader.GetUnexpectedEOF(), r.Reader.GetLineNr()), std::tuple(true, -1));
}

TEST(JsonReader, EncodingDecision) {
  // Trace: "" for the encoding failure, raised before StartDocument
  struct Enc { std::string Bytes; Word CodePage; const char* Trace; };
  using namespace std::string_literals;
  const Enc cases[] = {
      {"[\0001\000]\000"s, 0, "< [ n:1 ] >"},           // NUL pattern of UTF-16LE
      {"[\0001\000]\000"s, 1252, "< [ n:1 ] >"},        // a single-byte page is never used
      {"[\"\xC3\xA9\"]"s, 1252, "< [ s:\xC3\xA9 ] >"},  // ... so its bytes are read as UTF-8
      {"\0[\0001"s, 0, ""},                              // UTF-16BE
      {"\0\0\0["s, 0, ""},                               // UTF-32BE
      {"[\0\0\0"s, 0, ""},                               // UTF-32LE
      {"1"s, 0, ""},                                     // one byte: the missing three read as NUL
      {"\0[\0]"s, 1201, "< [ ] >"},                      // a wide page the caller names is kept
      {"[\0]\0"s, 1200, "< [ ] >"},
  };
  for (const Enc& c : cases) {
    RecordingJsonReader r;
    const UnicodeString failure = test::MessageOf(
        [&] { r.Reader.ParseBuffer(c.Bytes.data(), static_cast<Cardinal>(c.Bytes.size()), c.CodePage, u""); });
    EXPECT_EQ(std::tuple(r.Rec.Trace, failure == _cVnJSONEncodingNotSupported), std::tuple(c.Trace, *c.Trace == 0))
        << c.Bytes.size() << " bytes, code page " << c.CodePage;
  }
}

// Handlers see positions through the locator; failures of the frame reach nobody.
TEST(JsonReader, LocatorAndHandlerChecks) {
  struct Throwing : vntest::JsonRecorder {
    IVnJSONLocator* Loc = nullptr;
    int Line = 0, Col = 0;
    void StartMember(std::u16string_view) override {
      Line = Loc->GetLineNr(), Col = Loc->GetColNr();
      throw EConvertError(u"boom");
    }
  } thrower;
  vntest::JsonRecorder rec;
  TVnJSONReader reader;
  EXPECT_EQ(reader.GetLineNr(), -1);  // no parse yet
  EXPECT_EQ(test::CodeOf<EVnJSONException>([&] { reader.Parse(u"[]"); }), cVnJSONErrNoContentHandler);
  EXPECT_EQ(test::MessageOf<EVnJSONException>([&] { reader.Parse(u"[]"); }), _cVnJSONNoContentHandler);
  reader.SetContentHandler(IPtr<IVnJSONContentHandler>(&rec));
  EXPECT_EQ(test::CodeOf<EVnJSONException>([&] { reader.Parse(u"[]"); }), cVnJSONErrNoErrorHandler);
  EXPECT_EQ(rec.Trace, "");

  // A handler's own exception goes to FatalError with the position, then on.
  thrower.Loc = &reader;
  reader.SetContentHandler(IPtr<IVnJSONContentHandler>(&thrower));
  reader.SetErrorHandler(IPtr<IVnJSONErrorHandler>(&thrower));
  EXPECT_THROW(reader.Parse(u"[\n\n  {\"ab\":1}]"), EConvertError);
  // column 7: the member's closing quote
  EXPECT_EQ(std::tuple(thrower.Line, thrower.Col, thrower.FatalMessage, reader.GetParser()),
            std::tuple(3, 7, u"boom", nullptr));
}

// Depth costs no call stack: a million levels of arrays, objects, or both alternating.
TEST(JsonReader, MillionLevelsDeep) {
  constexpr size_t kDepth = 1000000;
  for (int shape = 0; shape < 3; ++shape) {
    std::string text;
    text.reserve(kDepth * 6 + 8);
    for (size_t i = 0; i < kDepth; ++i) text += (shape == 0 || (shape == 2 && i % 2)) ? "[" : "{\"a\":";
    text += "1";
    for (size_t i = kDepth; i-- > 0;) text += (shape == 0 || (shape == 2 && i % 2)) ? "]" : "}";
    vntest::RecordingReader<TVnJSONReader, false, vntest::JsonCounter> r;
    vntest::JsonCounter& c = r.Rec;
    r.Reader.Parse(std::string_view(text), 65001, u"");
    EXPECT_EQ(std::tuple(c.Opened, c.Closed, c.Values), std::tuple(kDepth, kDepth, 1u));
    // The last bracket cut off: every container still fires its end, then the step past the
    // outermost one meets the end of the text.
    c.Opened = c.Closed = 0;
    EXPECT_THROW(r.Reader.Parse(std::string_view(text).substr(0, text.size() - 1), 65001, u""), EVnTextParserEOF);
    EXPECT_EQ(c.Closed, kDepth);
  }
}

TEST(JsonParserComponent, EventsAndFailures) {
  TVnJSONParser parser;
  // Nothing bound: the text is consumed silently, and ill-formed text still raises.
  EXPECT_NO_THROW(parser.Parse(u"{\"a\":[1,\"x\",null]}"));
  EXPECT_THROW(parser.Parse(u"[,]"), EVnJSONParseError);
  EXPECT_EQ(parser.GetReader(), nullptr);

  std::string log;
  auto add = [&](const std::string& s) { log += s + " "; };
  parser.OnStartDocument = [&] { add("<"); };
  parser.OnStartObject = [&] { add("{"); };
  parser.OnStartMember = [&](std::u16string_view n) { add("m:" + UnicodeToUtf8(n)); };
  parser.OnStartArray = [&] { add("["); };
  parser.OnValue = [&](TVnJSONSimpleDataType k, std::u16string_view v) { add(std::to_string(k) + ":" + test::U8(v)); };
  parser.OnEndArray = [&] { add("]"); };
  parser.OnEndMember = [&] { add("/m"); };
  parser.OnEndObject = [&] { add("}"); };
  parser.OnEndDocument = [&] { add(">"); };
  parser.OnFatalError = [&](IVnJSONLocator* loc, std::u16string_view m) {
    add("!" + std::to_string(loc->GetColNr()) + (m == Format(_cVnJSONNotWellFormed, {u"", u"2"}) ? "ok" : "?"));
  };
  parser.Parse(std::string_view("{\"a\":[1,\"x\",null,true]}"), 0, u"");
  EXPECT_EQ(log, "< { m:a [ 2:1 1:x 0:null 3:true ] /m } > ");
  log.clear();
  // A bound OnFatalError can't stop the failure.
  EXPECT_THROW(parser.Parse(u"1,2"), EVnJSONParseError);
  EXPECT_EQ(log, "< 2:1 !3ok ");
}

}  // namespace
