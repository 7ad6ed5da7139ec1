// JSON read as XML events: the element and attribute mapping, names, text, the top level,
// failures with their positions, encodings, and depth.
#include <gtest/gtest.h>

#include "support/raises.h"
#include "support/sax_handlers.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/sax_json_reader.h"
#include "xml_echo.h"

using namespace vn;

namespace {

struct Outcome {
  std::string Trace;
  std::string Error;  // class and code of what the parse raised, empty when nothing
};

Outcome Parse(std::string_view AText, Word ACodePage = 65001) {
  TVnSAXJSONReader reader;
  IPtr<test::XmlEcho> echo(new test::XmlEcho);
  reader.SetContentHandler(IPtr<IVnSAXContentHandler>(echo.Get()));
  reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(echo.Get()));
  Outcome run;
  try {
    reader.Parse(AText, ACodePage);
  } catch (const EVnException& e) {
    run.Error = test::U8(e.ClassName()) + " " + std::to_string(e.GetCode());
  }
  run.Trace = echo->Text;
  return run;
}

struct Case {
  const char* Json;
  const char* Xml;
};

// Each trace starts and ends a document with "|"; values carry their type marks.
const Case kMapping[] = {
    {R"({"a":1,"b":[true,null],"c":{"d":"x"}})",
     R"(|<object><a xsd:type="decimal">1</a><bArray:bArr><b xsd:type="boolean">true</b><b xsi:nil="true">null</b>)"
     R"(</bArray><c><d xsd:type="string">x</d></c></object>|)"},
    {"[1,[2]]",
     R"(|<array><array xsd:type="decimal">1</array><arrayArray><array xsd:type="decimal">2</array></arrayArray></array>|)"},
    {"{}", "|<object></object>|"},
    {"[]", "|<array></array>|"},
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
    {R"({"a":1,"a":2})", R"(|<object><a xsd:type="decimal">1</a><a xsd:type="decimal">2</a></object>|)"},
    {"{\"a\":false} \t\r\n", R"(|<object><a xsd:type="boolean">false</a></object>|)"},
    // The reader's own forgiveness: junk between tokens, a trailing comma in an array.
    {R"({"a" junk : [1 2,] junk })", R"(|<object><aArray:aArr><a xsd:type="decimal">1</a></aArray></object>|)"},
};

TEST(SaxJsonReader, MapsJsonOntoElements) {
  for (const Case& c : kMapping) {
    const Outcome run = Parse(c.Json);
    EXPECT_EQ(run.Trace, c.Xml) << c.Json;
    EXPECT_EQ(run.Error, "") << c.Json;
  }
}

// The root declares both namespaces as plain attributes; the type marks carry their URIs.
TEST(SaxJsonReader, RootDeclaresNamespacesAndMarksCarryURIs) {
  TVnSAXJSONReader reader;
  IPtr<test::SaxRecorder> rec(new test::SaxRecorder);
  reader.SetContentHandler(IPtr<IVnSAXContentHandler>(rec.Get()));
  reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(rec.Get()));
  reader.SetLexicalHandler(IPtr<IVnSAXLexicalHandler>(rec.Get()));
  reader.Parse(std::u16string_view(u"[null]"));
  const std::vector<std::string> expected = {
      "startDocument",
      "start(array xmlns:xsi=http://www.w3.org/2001/XMLSchema-instance xmlns:xsd=http://www.w3.org/2001/XMLSchema)",
      "start(array {http://www.w3.org/2001/XMLSchema-instance}xsi:nil=true)",
      "chars(null)",
      "end(array)",
      "end(array)",
      "endDocument"};
  EXPECT_EQ(rec->Events, expected);
  EXPECT_EQ(rec->LocalNames, (std::vector<std::string>{"array", "@xsi", "@xsd", "array", "@nil"}));
}

// Failures reach FatalError with the position, then the caller; "!line:col" ends the trace.
TEST(SaxJsonReader, FailuresReportPositionThenRaise) {
  const struct {
    const char* Json;
    const char* Trace;
    const char* Error;
  } kFailures[] = {
      {"5", "|!1:2", "EVnJSONParseError 2"},  // no bracket at all
      {"", "|!1:1", "EVnJSONParseError 2"},
      {"{} 5", "|<object>!1:4", "EVnJSONParseError 2"},
      {"{}xy{}", "|<object>!1:4", "EVnJSONParseError 2"},
      {R"({"a":tru})", R"(|<object>!1:10)", "EVnJSONParseError 2"},  // behind the wrong letter
      {R"({"a":"\q"})", R"(|<object>!1:8)", "EVnJSONParseError 2"},
      {"{\"a\":\n1", R"(|<object><a xsd:type="decimal">1</a>!2:2)", "EVnTextParserEOF 0"},
      {"[[1", R"(|<array><arrayArray><array xsd:type="decimal">1</array></arrayArray>!1:4)", "EVnTextParserEOF 0"},
  };
  for (const auto& f : kFailures) {
    const Outcome run = Parse(f.Json);
    EXPECT_EQ(run.Trace, f.Trace) << f.Json;
    EXPECT_EQ(run.Error, f.Error) << f.Json;
  }
}

TEST(SaxJsonReader, MissingHandlersRaiseBeforeTheParse) {
  TVnSAXJSONReader reader;
  test::ExpectRaises<EVnJSONException>([&] { reader.Parse(std::u16string_view(u"{}")); },
                                       _cVnJSONNoContentHandler);
  IPtr<test::XmlEcho> echo(new test::XmlEcho);
  reader.SetContentHandler(IPtr<IVnSAXContentHandler>(echo.Get()));
  test::ExpectRaises<EVnJSONException>([&] { reader.Parse(std::u16string_view(u"{}")); }, _cVnJSONNoErrorHandler);
  EXPECT_EQ(echo->Text, "");
}

// The same events from UTF-8, UTF-16 with and without a code page, and a file with a mark.
TEST(SaxJsonReader, ReadsEveryEncodingAlike) {
  const std::string expected = R"(|<object><a xsd:type="string">é€😀</a></object>|)";
  EXPECT_EQ(Parse("{\"a\":\"é€😀\"}").Trace, expected);
  const std::u16string wide = u"{\"a\":\"é€😀\"}";
  const std::string bytes(reinterpret_cast<const char*>(wide.data()), wide.size() * 2);
  EXPECT_EQ(Parse(bytes, 1200).Trace, expected);
  EXPECT_EQ(Parse(bytes, 0).Trace, expected);  // the NUL pattern tells UTF-16
}

// Depth costs no call stack: a million levels end in order, and in the one failure at the end.
TEST(SaxJsonReader, MillionDeepEndsInOrder) {
  struct Counter : test::NullSaxHandler {
    size_t Starts = 0, Ends = 0;
    void StartElement(SV, SV, SV, IVnSAXAttributes*) override { ++Starts; }
    void EndElement(SV, SV, SV) override { ++Ends; }
  };
  const size_t depth = 1000000;
  for (const bool closed : {true, false}) {
    TVnSAXJSONReader reader;
    IPtr<Counter> counter(new Counter);
    reader.SetContentHandler(IPtr<IVnSAXContentHandler>(counter.Get()));
    reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(counter.Get()));
    const std::string text = std::string(depth, '[') + std::string(closed ? depth : 0, ']');
    if (closed) {
      reader.Parse(text, 65001);
    } else {  // no value at the end
      EXPECT_THROW(reader.Parse(text, 65001), EVnJSONParseError);
    }
    EXPECT_EQ(counter->Starts, depth);  // the root, and an element per nested level
    EXPECT_EQ(counter->Ends, closed ? depth : 0);
  }
}

}  // namespace
