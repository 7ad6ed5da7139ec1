// The XML reader's event sequences and failures. Every ASCII case runs through the three kinds
// of code units (UTF-8 bytes, UTF-16 units, 8-bit Latin-1) and must give the same trace.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "common/message_of.h"
#include "support/sax_handlers.h"
#include "vnxml/common/utf.h"

using vn::test::RecordingReader;

namespace {

struct Outcome {
  std::vector<std::string> Events;
  int Code = 0;  // EVnXMLParseError code, -1 for an end of text, 0 for success
  std::string Message;
  int Line = 0, Col = 0;  // the locator's report to FatalError
};

Outcome ReadWith(const std::function<void(vn::TVnSAXXMLReader&)>& AParse, bool ACheck, bool ALexical) {
  RecordingReader r(ALexical, ACheck);
  Outcome out;
  try {
    AParse(r.Reader);
  } catch (const vn::EVnXMLParseError& e) {
    out.Code = e.GetCode();
    out.Message = vn::UnicodeToUtf8(e.Message());
  } catch (const vn::EVnTextParserEOF& e) {
    out.Code = -1;
    out.Message = vn::UnicodeToUtf8(e.Message());
  }
  std::tie(out.Events, out.Line, out.Col) = std::tuple(r.Events(), r.Rec->FatalLine, r.Rec->FatalCol);
  return out;
}

// Reads ASCII text as UTF-8 (code page decided by the text), as UTF-16 and as Latin-1.
Outcome Read(std::string_view AXml, bool ACheck = true, bool ALexical = true) {
  Outcome utf8 = ReadWith([&](auto& r) { r.ParseBuffer(AXml.data(), AXml.size(), 0, u""); }, ACheck, ALexical);
  std::u16string wide = vn::Utf8ToUnicode(AXml);
  Outcome utf16 = ReadWith([&](auto& r) { r.Parse(wide, u""); }, ACheck, ALexical);
  Outcome ansi = ReadWith([&](auto& r) { r.Parse(AXml, 28591, u""); }, ACheck, ALexical);
  EXPECT_EQ((std::tuple{utf16.Events, utf16.Code}), std::tuple(utf8.Events, utf8.Code)) << "UTF-16 differs: " << AXml;
  EXPECT_EQ((std::tuple{ansi.Events, ansi.Code}), std::tuple(utf8.Events, utf8.Code)) << "Latin-1 differs: " << AXml;
  return utf8;
}

using Trace = std::vector<std::string>;

// AExpected leaves out the startDocument and endDocument that frame every successful read.
void ExpectTrace(std::string_view AXml, Trace AExpected, bool ACheck = true) {
  Outcome out = Read(AXml, ACheck);
  EXPECT_EQ(out.Code, 0) << AXml << ": " << out.Message;
  AExpected.insert(AExpected.begin(), "startDocument");
  AExpected.push_back("endDocument");
  EXPECT_EQ(out.Events, AExpected) << AXml;
}

void ExpectFailure(std::string_view AXml, int ACode, int ALine, int ACol, bool ACheck = true) {
  Outcome out = Read(AXml, ACheck);
  EXPECT_EQ(out.Code, ACode) << AXml;
  ASSERT_FALSE(out.Events.empty()) << AXml;
  EXPECT_EQ(out.Events.back().rfind("fatal(", 0), 0u) << AXml << " last: " << out.Events.back();
  EXPECT_EQ((std::tuple{out.Line, out.Col}), std::tuple(ALine, ACol)) << AXml;
}

// The trace of 8-bit text read with the code page its declaration (or UTF-8) gives.
Trace ReadBytes(std::string_view ABytes) {
  RecordingReader r;
  r.Reader.ParseBuffer(ABytes.data(), ABytes.size(), 0, u"");
  return r.Events();
}

}  // namespace

TEST(SaxReader, Traces) {
  const std::pair<const char*, Trace> cases[] = {
      {R"(<?xml version="1.0"?><r xmlns="u" a="1"><c/> t </r>)",
       {"pi(xml|version=\"1.0\")", "startPrefix(=u)", "start({u}r xmlns=u {u}a=1)", "start({u}c)", "end({u}c)",
        "chars( t )", "end({u}r)", "endPrefix()"}},
      // Forgiving structure, attributes as written.
      {"<a></b>", {"start(a)", "end(b)"}}, {"<a><b>", {"start(a)", "start(b)"}}, {"x<a/>", {"start(a)", "end(a)"}},
      {"</x><a/>", {"end(x)", "start(a)", "end(a)"}},  // a stray end tag before the root only lowers the depth
      {R"(<a b="1"c="2"/>)", {"start(a b=1 c=2)", "end(a)"}}, {R"(<a b="1"" c="2"/>)", {"start(a b=1 c=2)", "end(a)"}},
      {"<a b = \"1\"\n\tc\n=\t'2'\n/>", {"start(a b=1 c=2)", "end(a)"}},
      // Namespaces.
      {"<a\nxmlns:p=\"u\"><p:b/></a>",
       {"startPrefix(p=u)", "start(a xmlns:p=u)", "start({u}p:b)", "end({u}p:b)", "end(a)", "endPrefix(p)"}},
      {R"(<P:a xmlns:p="u"/>)", {"startPrefix(p=u)", "start({u}P:a xmlns:p=u)", "end({u}P:a)", "endPrefix(p)"}},
      // An attribute's URI is taken when it is read, the element's after all its attributes.
      {R"(<a x="1" xmlns="u"/>)", {"startPrefix(=u)", "start({u}a x=1 xmlns=u)", "end({u}a)", "endPrefix()"}},
      {R"(<a xmlns="u" x="1"/>)", {"startPrefix(=u)", "start({u}a xmlns=u {u}x=1)", "end({u}a)", "endPrefix()"}},
      // A redeclaration hides the outer one until its level closes; mappings end newest first.
      {R"(<a xmlns:p="1" xmlns:q="2"><b xmlns:p="3"><p:c/></b><p:d/></a>)",
       {"startPrefix(p=1)", "startPrefix(q=2)", "start(a xmlns:p=1 xmlns:q=2)", "startPrefix(p=3)",
        "start(b xmlns:p=3)", "start({3}p:c)", "end({3}p:c)", "end(b)", "endPrefix(p)", "start({1}p:d)",
        "end({1}p:d)", "end(a)", "endPrefix(q)", "endPrefix(p)"}},
      // Text, character data, processing instructions and comments.
      {"<a>&amp;&#65;&e;</a>", {"start(a)", "chars(&amp;&#65;&e;)", "end(a)"}},
      {"<a> </a>", {"start(a)", "ws( )", "end(a)"}},
      {"<a><![CDATA[ ]]></a>", {"start(a)", "startCDATA", "chars( )", "endCDATA", "end(a)"}},
      {"<a><![CDATA[]]></a>", {"start(a)", "startCDATA", "chars()", "endCDATA", "end(a)"}},
      {"<a><![CDATA[a]b]]c]]></a>", {"start(a)", "startCDATA", "chars(a]b]]c)", "endCDATA", "end(a)"}},
      {"<a>x]]>y</a>", {"start(a)", "chars(x]]>y)", "end(a)"}},
      {"<?p a?b?><r/>", {"pi(p|a)", "start(r)", "end(r)"}}, {"<?p?><r/>", {"pi(p|)", "start(r)", "end(r)"}},
      {"<!-- a -- b --><r/>", {"comment( a -- b )", "start(r)", "end(r)"}},
      {"<r><!----></r>", {"start(r)", "comment()", "end(r)"}},
      // In the prolog a '<' followed by white space is dropped with what follows it.
      {"< junk <r/>", {"start(r)", "end(r)"}},
      // The document type is skipped.
      {R"(<!DOCTYPE a [<!ENTITY e "x>y">]><a/>)", {"startDTD", "endDTD", "start(a)", "end(a)"}}};
  for (const auto& [xml, trace] : cases) ExpectTrace(xml, trace);
}

TEST(SaxReader, LocalNamesPrefixesAndTheDocumentTypeWithoutLexicalHandler) {
  RecordingReader r;
  r.Reader.Parse(uR"(<x:a:b  y : z = "1" c="2"/>)", u"");
  // A second colon belongs to the local name; attribute names are trimmed around the colon.
  EXPECT_EQ(r.Rec->LocalNames, (std::vector<std::string>{"a:b", "@z", "@c"}));
  EXPECT_EQ(r.Events()[1], "start(x:a:b y : z=1 c=2)");

  // Without a lexical handler the document type leaves no trace.
  EXPECT_EQ(Read("<!DOCTYPE a><a>t</a>", true, false).Events,
            (Trace{"startDocument", "start(a)", "chars(t)", "end(a)", "endDocument"}));
}

TEST(SaxReader, SingleRootCheckAndFailures) {
  // Without the check, white space between top-level items vanishes and text is delivered.
  ExpectTrace("<a>text", {"start(a)", "chars(text)", "ws()"}, false);
  ExpectTrace("<a/> x <b> y </b>\n<c/>",
              {"start(a)", "end(a)", "chars(x )", "start(b)", "chars( y )", "end(b)", "start(c)", "end(c)"}, false);

  // Codes (-1: the text ended), and where the locator stands when FatalError hears of them: at the
  // end of text, the start of the construct in which the text ended.
  const std::tuple<const char*, int, int, int> cases[] = {
      {"<a/>x", vn::cVnXMLErrInvalidTextAtRoot, 1, 5}, {"<a/><b/>", vn::cVnXMLErrMultipleRoot, 1, 5},
      {"", vn::cVnXMLErrNotWellFormed, 1, 1}, {"<a></a\n>", vn::cVnXMLErrNotWellFormed, 1, 7},
      {"<a b/>", vn::cVnXMLErrMissingAttribute, 1, 6}, {"<r>\n  <a<b/></r>", vn::cVnXMLErrELMNotClosed, 2, 5},
      {"<1a/>", vn::cVnXMLErrInvalidNameStartChar, 1, 2}, {"<!ENTITY x><a/>", vn::cVnXMLErrDOCTypeExpected, 1, 9},
      {"<a><!DOCTYPE a></a>", vn::cVnXMLErrCDATAExpected, 1, 12},
      {"<a>text", -1, 1, 4},
      {"<r>\n  <a>text", -1, 2, 6},         // text running to the end
      {"<r>\n<!-- open", -1, 2, 2},          // comment (it stands on the '!')
      {"<r>\n <![CDATA[x", -1, 2, 3},        // CDATA section
      {"<r>\n<?pi data", -1, 2, 1},          // processing instruction
      {"<r>\n <a b=\"1", -1, 2, 5},          // attribute list
      {"<r>\n<a", -1, 2, 3},                 // the attribute list that never began
      {"<!DOCTYPE r [\n<!ELEMENT r>", -1, 1, 2},
  };
  for (const auto& [xml, code, line, col] : cases) ExpectFailure(xml, code, line, col);

  const std::string rowCol = Read("<r>\n<a<b/></r>").Message;
  EXPECT_NE(rowCol.find("(Row: 2, Col: 1)"), std::string::npos) << rowCol;
  EXPECT_EQ(Read("<:a/>").Message,
            "The current character \":\" is only a valid NameStartChar when NameSpaces are not supported!");
  EXPECT_EQ(Read("<a></a\n>").Message, "The document is not wellformed!\r\n\">\" expected, but \"\n\" found!");
  EXPECT_EQ(Read("<a><![CDATX[x]]></a>").Message, "![CDATA[ expected, but \"![CDATX[\" found");
  EXPECT_EQ(Read("<!DOCTYPE\na><a/>").Code, vn::cVnXMLErrDOCTypeExpected);
  // StartDocument went out before the failure, EndDocument never does.
  Outcome out = Read("");
  EXPECT_EQ(out.Events.front(), "startDocument");
  for (const auto& e : out.Events) EXPECT_NE(e, "endDocument");
}

TEST(SaxReader, HandlersFailurePathAndEncodingsOfTheSource) {
  vn::TVnSAXXMLReader reader;
  EXPECT_EQ(vn::test::CodeOf<vn::EVnXMLParseError>([&] { reader.Parse(u"<a/>", u""); }), vn::cVnXMLErrNoContentHandler);
  vn::IPtr<vn::test::SaxRecorder> rec(new vn::test::SaxRecorder);
  reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(rec.Get()));
  EXPECT_EQ(vn::test::CodeOf<vn::EVnXMLParseError>([&] { reader.Parse(u"<a/>", u""); }), vn::cVnXMLErrNoErrorHandler);
  EXPECT_TRUE(rec->Events.empty());  // neither reached a handler

  // A handler's own exception goes through FatalError and comes out unchanged.
  struct Throwing : vn::test::SaxRecorder {
    void Characters(std::u16string_view) override { throw vn::EConvertError(u"handler says no"); }
  };
  RecordingReader r;
  vn::IPtr<Throwing> throwing(new Throwing);
  r.Reader.SetContentHandler(vn::IPtr<vn::IVnSAXContentHandler>(throwing.Get()));
  EXPECT_THROW(r.Reader.Parse(u"<a>x</a>", u""), vn::EConvertError);
  EXPECT_EQ(r.Events().back(), "fatal(1:5 handler says no)");
  EXPECT_EQ(r.Reader.GetParser(), nullptr);  // the scanner is gone whatever happened

  // The declaration decides for 8-bit text without a code page.
  const Trace latin = ReadBytes("<?xml version='1.0' encoding='ISO-8859-1'?><a v='\xE9'>\xE0</a>");
  EXPECT_EQ((std::tuple{latin[2], latin[3]}), std::tuple("start(a v=\xC3\xA9)", "chars(\xC3\xA0)"));
  EXPECT_EQ(ReadBytes("<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\x80</a>")[3], "chars(\xE2\x82\xAC)");
  // Multi-byte UTF-8 in names, values and text; a name may start with a non-ASCII letter.
  EXPECT_EQ(ReadBytes("<\xC3\xA9l a='\xE2\x82\xAC'>\xF0\x9F\x98\x80</\xC3\xA9l>"),
            (Trace{"startDocument", "start(\xC3\xA9l a=\xE2\x82\xAC)", "chars(\xF0\x9F\x98\x80)", "end(\xC3\xA9l)",
                   "endDocument"}));

  // A surrogate can't start a name, in UTF-16 and in UTF-8 alike.
  EXPECT_THROW(RecordingReader().Reader.Parse(u"<\U0001F600/>", u""), vn::EVnXMLParseError);
  EXPECT_THROW(ReadBytes("<\xF0\x9F\x98\x80/>"), vn::EVnXMLParseError);
}
