// JSON read as XML events, through the SAX component that picks the reader by the first
// character: the element and attribute mapping, names, text, the top level, failures with their
// positions, encodings and the component's entry points. Depth: json_dom_load_test.cpp.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "support/files.h"
#include "support/raises.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/sax.h"

using namespace vn;

namespace {

// A component whose events write the XML they stand for: "|" for the document's start and
// end, <q:local> where the local name differs, no namespace declarations, [ and ] for OnStart
// and OnFinished, and !line:col for a fatal error.
struct Traced {
  TVnSAXParser Parser;
  std::string Trace;
  explicit Traced(bool AStartAndFinish = false) {
    auto u8 = [](std::u16string_view s) { return UnicodeToUtf8(s); };
    if (AStartAndFinish) {
      Parser.OnStart = [this](TObject*) { Trace += "["; };
      Parser.OnFinished = [this](TObject*) { Trace += "]"; };
    }
    Parser.OnStartDocument = Parser.OnEndDocument = [this](TObject*) { Trace += "|"; };
    Parser.OnStartElement = [=, this](TObject*, auto, std::u16string_view l, std::u16string_view q,
                                      IVnSAXAttributes* a) {
      Trace += "<" + u8(q) + (l != q ? ":" + u8(l) : "");
      for (auto* at = a->FirstAttribute(); at; at = at->Next)
        if (at->QName.rfind(u"xmlns:", 0) != 0) Trace += " " + u8(at->QName) + "=\"" + u8(at->Value) + "\"";
      Trace += ">";
    };
    Parser.OnEndElement = [=, this](TObject*, auto, auto, std::u16string_view q) { Trace += "</" + u8(q) + ">"; };
    Parser.OnCharacters = [=, this](TObject*, std::u16string_view t) { Trace += u8(t); };
    Parser.OnFatalError = [this](IVnSAXLocator* l, std::u16string_view) {
      Trace += "!" + std::to_string(l->GetLineNr()) + ":" + std::to_string(l->GetColNr());
    };
  }
};

/// The trace, and the class and code of what the parse raised (empty when nothing).
std::tuple<std::string, std::string> Parse(std::string_view AText, Word ACodePage = cVnCodePageUTF8) {
  Traced t;
  std::string error;
  try {
    t.Parser.Parse(AText, ACodePage);
  } catch (const EVnException& e) {
    error = test::U8(e.ClassName()) + " " + std::to_string(e.GetCode());
  }
  return {t.Trace, error};
}

struct Case { const char* Json; const char* Xml; };

const Case kMapping[] = {
    {R"({"a":1,"b":[true,null],"c":{"d":"x"}})",
     R"(|<object><a xsd:type="decimal">1</a><bArray:bArr><b xsd:type="boolean">true</b><b xsi:nil="true">null</b>)"
     R"(</bArray><c><d xsd:type="string">x</d></c></object>|)"},
    {"[1,[2]]",
     R"(|<array><array xsd:type="decimal">1</array><arrayArray><array xsd:type="decimal">2</array></arrayArray></array>|)"},
    {"{}", "|<object></object>|"},
    {R"({"a":[]})", "|<object><aArray:aArr></aArray></object>|"},
    // An array in an array keeps the item name; an object in an array is an item.
    {R"({"a":[[1],{"b":2}]})",
     R"(|<object><aArray:aArr><aArray><a xsd:type="decimal">1</a></aArray><a><b xsd:type="decimal">2</b></a>)"
     R"(</aArray></object>|)"},
    // Names: replaced one for one, "_" in front of what can't start a name, "_" for nothing.
    {R"({"first name":1,"1a":2,"":3,"a:b":4,"-x":5,"\u00e9":6,"é.b":7})",
     R"(|<object><first_name xsd:type="decimal">1</first_name><_1a xsd:type="decimal">2</_1a><_ xsd:type="decimal">3</_>)"
     R"(<a_b xsd:type="decimal">4</a_b><_-x xsd:type="decimal">5</_-x><_u00e9 xsd:type="decimal">6</_u00e9>)"
     R"(<é.b xsd:type="decimal">7</é.b></object>|)"},
    // Text keeps its escapes; markup characters come as references.
    {R"({"a":"x\ny","b":"<&>","c":""})",
     R"(|<object><a xsd:type="string">x\ny</a><b xsd:type="string">&lt;&amp;&gt;</b><c xsd:type="string"></c></object>|)"},
    // Before the first bracket anything is skipped; after a container white space or one stray
    // character may come before the next, and they all go into the one root.
    {"\r\n// note\n{\"a\":1} \r\n{\"b\":2}x[3]",
     R"(|<object><a xsd:type="decimal">1</a><b xsd:type="decimal">2</b><object xsd:type="decimal">3</object></object>|)"},
    {"{\"a\":false} \t\r\n", R"(|<object><a xsd:type="boolean">false</a></object>|)"},
    // The reader's own forgiveness: junk between tokens, a trailing comma in an array.
    {R"({"a" junk : [1 2,] junk })", R"(|<object><aArray:aArr><a xsd:type="decimal">1</a></aArray></object>|)"},
};

TEST(SaxJsonReader, MapsJsonOntoElements) {
  for (const Case& c : kMapping) EXPECT_EQ(Parse(c.Json), std::tuple(c.Xml, "")) << c.Json;
}

// Failures reach FatalError with the position, then the caller; "!line:col" ends the trace.
TEST(SaxJsonReader, FailuresReportPositionThenRaise) {
  const struct { const char* Json; const char* Trace; const char* Error; } kFailures[] = {
      {"5", "|!1:2", "EVnJSONParseError 2"},  // no bracket at all
      {"", "|!1:1", "EVnJSONParseError 2"}, {"{} 5", "|<object>!1:4", "EVnJSONParseError 2"},
      {"{}xy{}", "|<object>!1:4", "EVnJSONParseError 2"},
      {R"({"a":tru})", R"(|<object>!1:10)", "EVnJSONParseError 2"},  // behind the wrong letter
      {R"({"a":"\q"})", R"(|<object>!1:8)", "EVnJSONParseError 2"},
      {"{\"a\":\n1", R"(|<object><a xsd:type="decimal">1</a>!2:2)", "EVnTextParserEOF 0"},
      {"[[1", R"(|<array><arrayArray><array xsd:type="decimal">1</array></arrayArray>!1:4)", "EVnTextParserEOF 0"},
  };
  for (const auto& f : kFailures) EXPECT_EQ(Parse(f.Json), std::tuple(f.Trace, f.Error)) << f.Json;
  // The handler checks come before the parse, unheard.
  Traced t;  // outlives the reader, which holds it
  TVnSAXJSONReader reader;
  test::ExpectRaises<EVnJSONException>([&] { reader.Parse(std::u16string_view(u"{}")); }, _cVnJSONNoContentHandler);
  reader.SetContentHandler(IPtr<IVnSAXContentHandler>(&t.Parser));
  test::ExpectRaises<EVnJSONException>([&] { reader.Parse(std::u16string_view(u"{}")); }, _cVnJSONNoErrorHandler);
  EXPECT_EQ(t.Trace, "");
}

// The same events from UTF-8, UTF-16 with and without a code page, and a file with a mark.
TEST(SaxJsonReader, ReadsEveryEncodingAlike) {
  const std::string expected = R"(|<object><a xsd:type="string">é€😀</a></object>|)";
  EXPECT_EQ(Parse("{\"a\":\"é€😀\"}"), std::tuple(expected, ""));
  const std::u16string wide = u"{\"a\":\"é€😀\"}";
  const std::string bytes(reinterpret_cast<const char*>(wide.data()), wide.size() * 2);
  // With no code page, the NUL pattern tells UTF-16.
  EXPECT_EQ(std::tuple(Parse(bytes, cVnCodePageUTF16LE), Parse(bytes, 0)),
            std::tuple(std::tuple(expected, ""), std::tuple(expected, "")));
  const std::u16string marked = u"\uFEFF  " + wide;
  const test::TempFile file("sax_parser_utf16.json", {reinterpret_cast<const char*>(marked.data()), marked.size() * 2});
  Traced t(true);
  t.Parser.ParseFile(file.Name(), fmOpenRead);
  EXPECT_EQ(t.Trace, "[[" + expected + "]]");  // the wrapping entries fire around ParseStream too
}

// ParseStream stands on the first character above the blank: "<" is XML, anything else JSON;
// a failed parse fires no OnFinished; without events the text is still read.
TEST(SaxParser, FirstCharacterPicksTheReader) {
  const Case kCases[] = {
      {" \r\n<a>t</a>", "[|<a>t</a>|]"},
      {"\t[1]", R"([|<array><array xsd:type="decimal">1</array></array>|])"},
      {"<a><b c></b></a>", "[|<a>!1:8"},
  };
  for (const Case& c : kCases) {
    Traced t(true);
    TVnStringStream stream{std::string(c.Json), cVnCodePageUTF8};
    test::MessageOf<EVnException>([&] { t.Parser.ParseStream(stream, cVnCodePageUTF8); });  // the trace tells
    EXPECT_EQ(std::tuple(t.Trace, t.Parser.GetReader()), std::tuple(c.Xml, nullptr)) << c.Json;
  }
  TVnSAXParser bare;
  bare.Parse(std::u16string_view(u"{\"a\":[1,{\"b\":null}]}"));
  EXPECT_THROW(bare.Parse(std::u16string_view(u"{\"a\":x}")), EVnJSONParseError);
}

}  // namespace
