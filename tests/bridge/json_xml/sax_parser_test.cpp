// TVnSAXParser: the reader picked by the first character, events, and the entry points.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/sax.h"

using namespace vn;

namespace {

// A parser whose bound events write one trace.
struct Traced {
  TVnSAXParser Parser;
  std::string Trace;
  Traced() {
    auto add = [this](std::string s) { Trace += s + " "; };
    Parser.OnStart = [add](TObject*) { add("start"); };
    Parser.OnFinished = [add](TObject*) { add("finished"); };
    Parser.OnStartDocument = [add](TObject*) { add("<<"); };
    Parser.OnEndDocument = [add](TObject*) { add(">>"); };
    Parser.OnStartElement = [add](TObject*, std::u16string_view, std::u16string_view, std::u16string_view q,
                                  IVnSAXAttributes* a) {
      add("<" + UnicodeToUtf8(q) + (a->Count() ? "@" + std::to_string(a->Count()) : "") + ">");
    };
    Parser.OnEndElement = [add](TObject*, std::u16string_view, std::u16string_view, std::u16string_view q) {
      add("</" + UnicodeToUtf8(q) + ">");
    };
    Parser.OnCharacters = [add](TObject*, std::u16string_view t) { add("'" + UnicodeToUtf8(t) + "'"); };
    Parser.OnComment = [add](TObject*, std::u16string_view t) { add("#" + UnicodeToUtf8(t)); };
    Parser.OnProcessingInstruction = [add](TObject*, std::u16string_view t, std::u16string_view) {
      add("?" + UnicodeToUtf8(t));
    };
    Parser.OnStartCDATA = [add](TObject*) { add("[["); };
    Parser.OnEndCDATA = [add](TObject*) { add("]]"); };
    Parser.OnStartPrefixMapping = [add](TObject*, std::u16string_view p, std::u16string_view) {
      add("+" + UnicodeToUtf8(p));
    };
    Parser.OnEndPrefixMapping = [add](TObject*, std::u16string_view p) { add("-" + UnicodeToUtf8(p)); };
    Parser.OnFatalError = [add](IVnSAXLocator* l, std::u16string_view) {
      add("fatal@" + std::to_string(l->GetLineNr()) + ":" + std::to_string(l->GetColNr()));
    };
  }
};

TEST(SaxParser, FirstCharacterPicksTheReader) {
  const struct {
    const char* Text;
    const char* Trace;
  } kCases[] = {
      {" \r\n<?p d?><a xmlns:x=\"u\"><!--c-->t<![CDATA[d]]></a>",
       "start << ?p +x <a@1> #c 't' [[ 'd' ]] </a> -x >> finished "},
      {"\t{\"a\":[1]}", "start << <object@2> <aArray> <a@1> '1' </a> </aArray> </object> >> finished "},
      {"x", "start << fatal@1:2 "},  // JSON without a bracket
      {"<a><b c></b></a>", "start << <a> fatal@1:8 "},
  };
  for (const auto& c : kCases) {
    Traced t;
    try {
      t.Parser.ParseStream(*std::make_unique<TVnStringStream>(std::string(c.Text), cVnCodePageUTF8), cVnCodePageUTF8);
    } catch (const EVnException&) {
    }
    EXPECT_EQ(t.Trace, c.Trace) << c.Text;
    EXPECT_EQ(t.Parser.GetReader(), nullptr);
  }
}

// The wrapping entries fire OnStart and OnFinished around ParseStream as well.
TEST(SaxParser, EntriesFireStartAndFinishedAround) {
  Traced t;
  t.Parser.Parse(std::u16string_view(u"[1]"));
  EXPECT_EQ(t.Trace, "start start << <array@2> <array@1> '1' </array> </array> >> finished finished ");
  t.Trace.clear();
  t.Parser.Parse(std::string_view("<a/>"), cVnCodePageUTF8);
  EXPECT_EQ(t.Trace, "start start << <a> </a> >> finished finished ");
  t.Trace.clear();
  EXPECT_THROW(t.Parser.ParseBuffer("{\"a\":", 5, cVnCodePageUTF8), EVnJSONParseError);
  EXPECT_EQ(t.Trace, "start start << <object@2> fatal@1:6 ");

  // A UTF-16 file with its mark is read as UTF-16.
  const auto path = std::filesystem::temp_directory_path() / "vnxml_sax_parser_utf16.json";
  {
    const std::u16string text = u"\uFEFF  {\"\u00e9\":\"\u20ac\"}";
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(text.data()),
                                                static_cast<std::streamsize>(text.size() * 2));
  }
  t.Trace.clear();
  t.Parser.ParseFile(Utf8ToUnicode(path.string()), fmOpenRead);
  EXPECT_EQ(t.Trace, "start start << <object@2> <\xC3\xA9@1> '\xE2\x82\xAC' </\xC3\xA9> </object> >> finished finished ");
  std::filesystem::remove(path);
}

// Without events the whole text is read, and only bad text raises.
TEST(SaxParser, UnboundEventsDoNothing) {
  TVnSAXParser parser;
  parser.Parse(std::u16string_view(u"<a><b>x</b></a>"));
  parser.Parse(std::u16string_view(u"{\"a\":[1,{\"b\":null}]}"));
  EXPECT_THROW(parser.Parse(std::u16string_view(u"{\"a\":x}")), EVnJSONParseError);
  EXPECT_THROW(parser.Parse(std::u16string_view(u"<a b></a>")), EVnXMLParseError);
}

}  // namespace
