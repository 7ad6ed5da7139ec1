// JSON loaded into the XML tree through the bridge, failures of such loads, the trip through
// both bridges, and the shared corpora.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/files.h"
#include "support/raises.h"
#include "support/same_tree.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"
#include "vnxml/dom_messages.h"
#include "vnxml/dom_parser.h"
#include "vnxml/sax_json_reader.h"

using namespace vn;

namespace {

const std::string kRootNs =
    " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"";

// The tree's XML with the root's namespace declarations left out.
std::string XmlOf(TVnDOMNode& ANode) {
  std::string xml = test::U8(ANode.GetXML());
  if (size_t at = xml.find(kRootNs); at != std::string::npos) xml.erase(at, kRootNs.size());
  return xml;
}

struct Case { const char* Json; const char* Xml; };

struct HearingParser : TVnDOMParser { using TVnDOMParser::TVnDOMParser; };

// Every road builds the same tree: the loader's own, a derived parser (which hears every
// event), a UTF-16 string, a stream with a byte-order mark, and a fragment in an element.
TEST(JsonDomLoad, EveryRoadBuildsTheSameTree) {
  const Case kLoads[] = {
      {R"({"a":1,"b":[true,null],"c":{"d":"é"}})",
       R"(<object><a xsd:type="decimal">1</a><bArray><b xsd:type="boolean">true</b><b xsi:nil="true">null</b>)"
       R"(</bArray><c><d xsd:type="string">é</d></c></object>)"},
      {R"([{"a":"<&>\n"}])", R"(<array><array><a xsd:type="string">&lt;&amp;&gt;\n</a></array></array>)"},
      {"{}", "<object />"},
  };
  for (const Case& c : kLoads) {
    const std::string json = c.Json;
    TVnDOMDocument plain, heard, wide, streamed;
    plain.LoadFromAnsiXML(json);
    HearingParser(&heard).Parse(json.data(), static_cast<Int64>(json.size()), cVnCodePageUTF8);
    wide.LoadXML(Utf8ToUnicode("\r\n\t" + json));
    const std::string marked = std::string(cVnUTF8) + "  " + json;
    TVnMemoryStream stream(marked.data(), static_cast<Int64>(marked.size()));
    streamed.LoadFromStream(stream);
    auto fragment = TVnDOMDocument::FromXML(u"<r/>");
    fragment->GetRootNode()->SetInnerXML(Utf8ToUnicode(json));
    for (TVnDOMNode* doc : {&plain, &heard, &wide, &streamed}) EXPECT_EQ(XmlOf(*doc), c.Xml) << c.Json;
    EXPECT_EQ(XmlOf(*fragment), "<r>" + std::string(c.Xml) + "</r>") << c.Json;
    EXPECT_TRUE(plain.GetUseSchemaInstance());
  }
  // The text reads back as the JSON wrote it, escapes and all.
  auto doc = TVnDOMDocument::FromAnsiXML(kLoads[1].Json);
  EXPECT_EQ(test::U8(doc->GetRootNode()->SelectSingleElement(u"//a")->GetNodeValue()), "<&>\\n");
}

// A document load keeps what lies inside the root on the side until it is read, and keeps
// UTF-8 text as its bytes: the tree read is the one a whole load or a hearing parser builds.
TEST(JsonDomLoad, DeferredLoadsReadAsWholeOnes) {
  const char* const kTexts[] = {
      R"({"a":[[1,2],[3]],"b":[[{"c":[[4]]}]],"bb":[["x"]]})",  // arrays in arrays, names alike
      // items and inner arrays mixed at every depth, a member without a name, an item's member
      // named as its array
      R"({"p":[[1,[2,[3]],4],{"q":[5]},[6],7],"":[[8],9],"r":[{"r":[[10]]},[11]]})",
      "{\"s\":\"\xC3\xA9 <&> \xF0\x9D\x84\x9E\",\"e\":\"\",\"n\":null,\"t\":false,\"d\":-1.5e3}",
      "[\"\xFF\xC3\xA9\", \"a\xE2\x82\", \"\xED\xA0\x80&\"]",  // malformed bytes, beside markup too
  };
  for (const char* text : kTexts) {
    const std::string json = text;
    TVnDOMDocument deferred, whole, heard;
    whole.SetDeferChildren(false);
    deferred.LoadFromAnsiXML(json);
    whole.LoadFromAnsiXML(json);
    HearingParser(&heard).Parse(json.data(), static_cast<Int64>(json.size()), cVnCodePageUTF8);
    test::ExpectSameTree(&deferred, &whole, json);
    test::ExpectSameTree(&deferred, &heard, json);
  }
}

// A failed load raises EVnDomSyntax with the position, keeps what was built and ends the load;
// a handler that takes the failure gets the reader's own exception.
TEST(JsonDomLoad, FailuresKeepWhatWasBuilt) {
  const char* json = R"({"a":1,"b":tru})";
  TVnDOMDocument doc;
  const UnicodeString message = Format(_cVnJSONNotWellFormed, {u"e", u""});
  test::ExpectRaises<EVnDomSyntax>([&] { doc.LoadFromAnsiXML(json); }, Format(cVnDomSyntaxAt, {1, 16, message}));
  EXPECT_EQ(XmlOf(doc), R"(<object><a xsd:type="decimal">1</a></object>)");
  EXPECT_EQ(doc.GetLoadState(), lsLoaded);

  TVnDOMDocument handled;
  handled.SetOnParseFatalError([](IVnSAXLocator*, std::u16string_view, bool& AHandled) { AHandled = true; });
  EXPECT_THROW(handled.LoadFromAnsiXML("[1,"), EVnJSONParseError);
  EXPECT_EQ(XmlOf(handled), R"(<array><array xsd:type="decimal">1</array></array>)");
}

// JSON through both bridges, root and all: what keeps its shape and what doesn't.
TEST(JsonDomLoad, TripThroughBothBridges) {
  const Case kTrips[] = {
      {R"({"a":"x"})", R"({"object": {"a": "x"}})"}, {R"([1])", R"({"array": {"array": "1"}})"},
      {R"({"a.b":1,"c d":2})", R"({"object": {"a_b": "1","c_d": "2"}})"},
      {R"({"a":"x\ny"})", R"({"object": {"a": "x\\ny"}})"},
      {R"({"n":1.5,"t":true,"z":null})", R"({"object": {"n": "1.5","t": "true","z": null}})"},
      {R"({"a":[1,2]})", R"({"object": {"aArray": {"a": ["1","2"]}}})"},
      {R"({"a":[1]})", R"({"object": {"aArray": {"a": "1"}}})"},
      {R"({"a":[]})", R"({"object": {"aArray": null}})"}, {R"({"a":{}})", R"({"object": {"a": null}})"},
  };
  for (const Case& c : kTrips)
    EXPECT_EQ(test::U8(GetJSON(*TVnDOMDocument::FromAnsiXML(c.Json)->GetRootNode())), c.Xml) << c.Json;
  // The other way: attributes become elements, and prefixes, declarations, comments,
  // instructions, text beside child elements and the order of repeated names are lost.
  auto xml = TVnDOMDocument::FromXML(u"<p:r xmlns:p=\"u\" id=\"7\"><!--c--><?i d?><x>t<y>1</y></x><z/><x>2</x></p:r>");
  TVnDOMDocument back;
  back.LoadXML(GetJSON(*xml->GetRootNode()));
  EXPECT_EQ(XmlOf(back),
            R"(<object><r><r_id xsd:type="string">7</r_id><xArray><x><y xsd:type="string">1</y></x>)"
            R"(<x xsd:type="string">2</x></xArray><z xsi:nil="true">null</z></r></object>)");
}

// Every JSON text of the corpora loads, or fails with one of the library's exceptions.
TEST(JsonDomLoad, CorporaLoadOrFailInOrder) {
  size_t loaded = 0, failed = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(test::Corpora())) {
    if (entry.path().extension() != ".json") continue;
    TVnDOMDocument doc;
    try {
      doc.LoadFromFile(Utf8ToUnicode(entry.path().string()), fmOpenRead);
      ++loaded;
      TVnStringStream out(cVnCodePageUTF8);
      SaveToJSONStream(doc, out, false, false);  // formatted text of deep input grows with depth squared
    } catch (const Exception&) {
      ++failed;
    }
  }
  EXPECT_GT(loaded, 300u);
  EXPECT_GT(failed, 0u);
}

// A million levels load and write back without call stack; the cut text fails in order.
TEST(JsonDomLoad, MillionDeepLoadsAndWrites) {
  const size_t depth = 1000000;
  auto doc = TVnDOMDocument::FromAnsiXML(std::string(depth, '[') + "1" + std::string(depth, ']'));
  const UnicodeString json = GetJSON(*doc->GetRootNode());
  // The object around it, the root and 999,999 levels of arrayArray around "array": "1".
  EXPECT_EQ(std::count(json.begin(), json.end(), u'{'), static_cast<std::ptrdiff_t>(depth + 1));
  EXPECT_EQ(json.find(u"\"array\": \"1\"}"), json.size() - depth - 1 - 12);
  EXPECT_THROW(TVnDOMDocument::FromAnsiXML(std::string(depth, '[')), EVnDomSyntax);
}

}  // namespace
