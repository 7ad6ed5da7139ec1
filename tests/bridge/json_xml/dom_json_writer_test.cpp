// The XML tree written as JSON: shapes, typed values, names, attributes, forms, code pages,
// failures and depth.
#include <gtest/gtest.h>

#include <algorithm>
#include <span>

#include "dom/tree_builder.h"
#include "support/raises.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"
#include "vnxml/dom_messages.h"

using namespace vn;

namespace {

constexpr char16_t kNs[] =
    u" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"";

std::u16string WithNs(std::u16string AXml) {
  // The namespaces go on the root: after its name.
  return AXml.insert(AXml.find_first_of(u" >/"), kNs);
}

std::string ElementJSON(std::u16string_view AXml, bool AFormatted = false) {
  auto doc = TVnDOMDocument::FromXML(AXml);
  return test::U8(GetJSON(*doc->GetRootNode(), AFormatted));
}

/// The bytes SaveToJSONStream writes for ANode to a stream of ACodePage; AArgs follow the stream.
template <class N, class... A>
std::string Saved(N& ANode, Word ACodePage, A... AArgs) {
  TVnStringStream out(ACodePage);
  SaveToJSONStream(ANode, out, AArgs...);
  return std::string(out.GetBytesView());
}

/// The same from a tree loaded from UTF-8 bytes to UTF-8 output, which takes its own road.
std::string LoadedJSON(std::u16string_view AXml) {
  const std::string bytes = test::U8(AXml);
  TVnMemoryStream in(bytes.data(), Int64(bytes.size()));
  TVnDOMDocument doc;
  doc.LoadFromStream(in);
  return Saved(*doc.GetRootNode(), cVnCodePageUTF8, cVnCodePageUTF8, false);
}

struct Case { const char16_t* Xml; const char* Json; };

const Case kShapes[] = {
    {u"<root a=\"1\"><x>1</x><y>2</y><y>3</y></root>", R"({"root": {"root_a": "1","x": "1","y": ["2","3"]}})"},
    // Siblings gather at the place of the first of their name.
    {u"<r><a>1</a><b/><a>2</a><c>3</c><a>4</a></r>", R"({"r": {"a": ["1","2","4"],"b": null,"c": "3"}})"},
    // Text between child elements, comments and instructions write nothing.
    {u"<r>x<a>1</a>y<!--c--><?p d?></r>", R"({"r": {"a": "1"}})"},
    {u"<r><a/><b></b><c>  </c><d xml:space=\"preserve\">  </d></r>", R"({"r": {"a": null,"b": null,"c": null,"d": "  ", "d_space": "preserve"}})"},
    // The attributes of a leaf follow its value; in an array they are dropped.
    {u"<r><a id=\"5\" n=\"&quot;\">x</a></r>", R"({"r": {"a": "x", "a_id": "5", "a_n": "\""}})"},
    {u"<r><a id=\"5\">x</a><a id=\"6\">y</a></r>", R"({"r": {"a": ["x","y"]}})"},
    // An array item with children is an object in which repeated names are not gathered.
    {u"<r><p k=\"1\"><q>1</q><q>2</q></p><p/></r>", R"({"r": {"p": [{"p_k": "1","q": "1","q": "2"},null]}})"},
    {u"<r><p><q><s>1</s><s>2</s></q></p><p>3</p></r>", R"({"r": {"p": [{"q": {"s": ["1","2"]}},"3"]}})"},
    // Names: dots become "_" except in an array's name; prefixes go; a clash gets "_" in front.
    {u"<r><a.b>1</a.b><c.d>1</c.d><c.d>2</c.d></r>", R"({"r": {"a_b": "1","c.d": ["1","2"]}})"},
    {u"<p:r xmlns:p=\"u\" p:a=\"1\"><p:x>1</p:x></p:r>", R"({"r": {"r_a": "1","x": "1"}})"},
    {u"<x id=\"1\"><x_id>2</x_id><_x_id>3</_x_id></x>", R"({"x": {"__x_id": "1","x_id": "2","_x_id": "3"}})"},
    // A name that would break the JSON string is escaped as values are.
    {u"<r><a\\b>1</a\\b></r>", R"({"r": {"a\\b": "1"}})"},
    // Namespaces are told by their declarations' URIs, any case, not by prefixes.
    {u"<r><a xmlns:p=\"HTTP://WWW.W3.ORG/2001/XMLSCHEMA\" p:k=\"1\">x</a><b xmlns:p=\"urn:o\" p:k=\"2\">y</b></r>",
     R"({"r": {"a": "x","b": "y", "b_k": "2"}})"},
    // Strings are escaped for JSON; the stored references are decoded first.
    {u"<r><a>\"\\&lt;&#233;\t</a></r>", "{\"r\": {\"a\": \"\\\"\\\\<\xC3\xA9\\t\"}}"},
};

const Case kTypedValues[] = {
    {u"<r><a>12</a></r>", R"({"r": {"a": "12"}})"},  // no xsi:type: a string
    {u"<r><a xsi:type=\"xsd:int\">12</a><b xsi:type=\"xsd:int\">12</b><b xsi:type=\"xsd:long\">-3</b></r>",
     R"({"r": {"a": 12,"b": [12,-3]}})"},
    {u"<r><a xsi:type=\"xsd:double\">1.5E3</a><b xsi:type=\"xsd:double\">INF</b></r>", R"({"r": {"a": 1.5E3,"b": "INF"}})"},
    {u"<r><a xsi:type=\"xsd:boolean\">1</a><b xsi:type=\"xsd:boolean\">false</b></r>", R"({"r": {"a": true,"b": false}})"},
    {u"<r><a xsi:type=\"xsd:string\"></a><b xsi:type=\"xsd:string\">x</b></r>", R"({"r": {"a": "","b": "x"}})"},
    {u"<r><a xsi:type=\"xsd:dateTime\">2024-01-02T03:04:05</a></r>", R"({"r": {"a": "2024-01-02T03:04:05"}})"},
    // xsi:nil gives null whatever the text, but isn't looked at on an element with children.
    {u"<r><a xsi:nil=\"false\">x</a><b xsi:nil=\"true\"><c>1</c></b></r>", R"({"r": {"a": null,"b": {"c": "1"}}})"},
    // Type marks and namespace declarations are no members.
    {u"<r><a xsi:type=\"xsd:int\" k=\"v\">1</a></r>", R"({"r": {"a": 1, "a_k": "v"}})"},
};

// Typed values go in with the schema namespaces on the root.
TEST(DomJsonWriter, ShapesNamesAttributesAndTypedValues) {
  using Table = std::pair<std::span<const Case>, bool>;
  for (const auto& [cases, typed] : {Table(kShapes, false), Table(kTypedValues, true)})
    for (const Case& c : cases) {
      const std::u16string xml = typed ? WithNs(c.Xml) : std::u16string(c.Xml);
      EXPECT_EQ(std::tuple(ElementJSON(xml), LoadedJSON(xml)), std::tuple(c.Json, c.Json)) << test::U8(c.Xml);
    }
}

TEST(DomJsonWriter, EmptyTypeRaisesAndKeepsWhatWasWritten) {
  auto doc = TVnDOMDocument::FromXML(WithNs(u"<r><a>1</a><b xsi:type=\"\">2</b></r>"));
  TVnStringStream stream(cVnCodePageUTF8);
  test::ExpectRaises<EVnDomException>([&] { SaveToJSONStream(*doc->GetRootNode(), stream, cVnCodePageUTF8, false); },
                                      cVnDomInvalidTypeInfo);
  EXPECT_EQ(stream.GetAString(), R"({"r": {"a": "1","b": )");
}

TEST(DomJsonWriter, FormattedAndDocumentForms) {
  const char16_t* xml = u"<root a=\"1\"><x>1</x><y>2</y><y>3</y></root>";
  EXPECT_EQ(ElementJSON(xml, true),
            "{\r\n  \"root\": {\r\n    \"root_a\": \"1\",\r\n    \"x\": \"1\",\r\n    \"y\": [\r\n      \"2\",\r\n"
            "      \"3\"\r\n    ]\r\n  }\r\n}");
  EXPECT_EQ(ElementJSON(u"<r><p k=\"1\"><q>1</q></p><p/><a v=\"2\">x</a></r>", true),
            "{\r\n  \"r\": {\r\n    \"p\": [\r\n      {\r\n        \"p_k\": \"1\",\r\n        \"q\": \"1\"\r\n"
            "      },\r\n      null\r\n    ],\r\n    \"a\": \"x\", \r\n    \"a_v\": \"2\"\r\n  }\r\n}");
  auto doc = TVnDOMDocument::FromXML(u"<?xml version=\"1.0\"?><!--c--><r><a>1</a></r>");
  for (const bool formatted : {false, true})
    for (const bool bom : {false, true}) {
      const std::string body = formatted ? "  \"r\": {\r\n    \"a\": \"1\"\r\n  }" : R"("r": {"a": "1"})";
      EXPECT_EQ(Saved(*doc, cVnCodePageUTF8, formatted, bom), (bom ? std::string(cVnUTF8) : "") + body);
    }
  // A node form: an attribute alone, and a text node, which writes nothing.
  TVnDOMElement* a = doc->GetRootNode()->FirstElement();
  a->SetAttribute(u"k", u"v");
  EXPECT_EQ(std::tuple(test::U8(GetJSON(*a->FirstAttribute())), test::U8(GetJSON(*a->ChildAt(0)))),
            std::tuple(R"("a_k": "v")", ""));
  // The serializable face of a node gives the element's JSON in UTF-8.
  EXPECT_EQ(doc->GetRootNode()->As<IVnSerializable>()->Serialize(dsfJSON, nullptr), R"({"r": {"a": "1", "a_k": "v"}})");
}

// Every code page escapes alike: JSON escapes what Latin-1 lacks and drops U+0001..U+0007, and
// UTF-8, written by a road of its own, gives what the others give.
TEST(DomJsonWriter, CodePagesEscapeAlike) {
  auto doc = TVnDOMDocument::FromXML(u"<r><a>\u00e9\u20ac</a><b/></r>");
  doc->GetRootNode()->LastElement()->SetNodeValue(u"a run of plain text, \"q\" \\ / \t\u0001\u000b< & \u00ff\U0001F600");
  const std::u16string wide =
      u"{\"r\": {\"a\": \"\u00e9\\u20AC\",\"b\": \"a run of plain text, \\\"q\\\" \\\\ \\/ \\t\u000b< & \u00ff\\uD83D\\uDE00\"}}";
  EXPECT_EQ(GetJSON(*doc->GetRootNode()), wide);
  // A loaded UTF-8 tree keeps its texts in UTF-8, which go to UTF-8 output on a road of their
  // own: it gives what the UTF-16 road gives, references or not.
  const std::string bytes = "<r a='x/\xC3\xA9'><b>plain text long enough, \"q\" \\ / \t\xC3\xBF\xE2\x82\xAC\xF0\x9F\x98\x80</b>"
                            "<c>&lt;&amp;\xC3\xA9</c></r>";
  TVnMemoryStream in(bytes.data(), Int64(bytes.size()));
  TVnDOMDocument loaded;
  loaded.LoadFromStream(in);
  const std::string utf8 = Saved(*loaded.GetRootNode(), cVnCodePageUTF8, cVnCodePageUTF8, false);
  EXPECT_EQ(utf8, test::U8(GetJSON(*loaded.GetRootNode())));
  EXPECT_EQ(Utf8ToUnicode(utf8),
            u"{\"r\": {\"r_a\": \"x\\/\u00e9\",\"b\": \"plain text long enough, \\\"q\\\" \\\\ \\/ \\t\u00ff\\u20AC\\uD83D\\uDE00\",\"c\": \"<&\u00e9\"}}");
  std::string latin1;  // every unit of the output is below U+0100
  for (const char16_t c : wide) latin1 += static_cast<char>(c);
  for (const Word page : {Word(1252), cVnCodePageUTF8, cVnCodePageUTF16LE})
    EXPECT_EQ(Saved(*doc->GetRootNode(), page, page, false),
              page == 1252 ? latin1
              : page == cVnCodePageUTF8 ? test::U8(wide)
                                        : std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2))
        << page;
}

// A load that defers its nodes is written from its records while they answer for the JSON
// (no declaration below the root, none of the xsi or xsd namespace in scope), and then makes no
// node; either way it writes what the whole load writes, compact and formatted, as read and
// with only the root opened.
struct DeferredCase {
  std::string_view Xml;
  bool FromRecords;
};
const DeferredCase kDeferred[] = {
    // white space kept by xml:space, any case, nested and taken back; and dropped
    {R"(<r xml:space="preserve"><a> </a><b xml:space="default"><c> </c><c>x</c></b><d XML:SPACE="Preserve"> <e> </e></d></r>)", true},
    {"<r>\n  <a> </a>\n  <b>\t<c/>\n</b></r>", true},
    // the name as the collation matches it (a soft hyphen is ignored), the
    // value as stored
    {"<r><a xml:spa\xC2\xAD" "ce=\"preserve\"> </a><b xml:space=\"&#112;reserve\"> </b></r>", true},
    // leaves of several text nodes: comments count as nodes but add no text
    {"<r><a>x<!--c-->y</a><b><![CDATA[<&>]]></b><c>t<![CDATA[u]]>&amp;</c><d><!--only--></d><e><?p x?></e></r>", true},
    // references, and double quotes read from single quotes beside them
    {R"(<r a='say "&amp;" &quot;' b="&#233;"><c d='&amp"x' e="&lt;">&#233;&lt;&amp</c><c>&#x1F600;</c></r>)", true},
    // malformed UTF-8 in text and attribute values, and well-formed text beyond ASCII
    {"<r a=\"\xC3(\"><b>\xE2\x82</b><c>\xC3\xA9\xF0\x9F\x98\x80</c></r>", true},
    // names: prefixes, dots, clashes with child names
    {R"(<r><p:c k="2">3</p:c><q:c>4</q:c><e.f>6</e.f><e.f>7</e.f></r>)", true},
    {R"(<x id="1" p:id="0"><x_id>2</x_id><_x_id>3</_x_id><y k="1"><y_k/></y></x>)", true},
    // arrays gathered at their first place, items with children, attributes of items dropped
    {R"(<r><a i="1">1</a><b/><a><c>2</c><c>3</c></a><a/></r>)", true},
    // declarations on the root only: they are no members, their prefixes are no namespace of schemas
    {R"(<r xmlns="urn:d" xmlns:p="urn:p" p:a="1"><p:b p:c="2">x</p:b></r>)", true},
    // the schema namespaces declared on the root, their attributes on the root only: left out
    {R"(<r xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:xsd="http://www.w3.org/2001/XMLSchema")"
     R"( xsi:noNamespaceSchemaLocation="s.xsd" k="1"><a>1</a><b t="2"><c>3</c></b></r>)", true},
    // from nodes: a declaration below the root; an attribute in the schema instance namespace
    // below the root, its prefix in any case, or on a root without child elements; the schema
    // namespace as the default one
    {R"(<r><a xmlns:p="urn:p" p:k="1">x</a></r>)", false},
    {R"(<r xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><a xsi:nil="true">x</a></r>)", false},
    {R"(<r xmlns:XSI="http://www.w3.org/2001/XMLSchema-instance"><a xsi:nil="true">x</a></r>)", false},
    {R"(<r xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:xsd="http://www.w3.org/2001/XMLSchema")"
     R"( xsi:type="xsd:int">5</r>)", false},
    {R"(<r xmlns="http://www.w3.org/2001/XMLSchema-instance"><a k="1">x</a></r>)", false},
};

/// AXml loaded whole or deferred, the root opened first when AOpenRoot; its JSON in ACodePage,
/// and whether the root's children still wait on the load's records after the write.
std::pair<std::string, bool> JSONOfLoad(std::string_view AXml, bool ADefer, bool AOpenRoot, bool AFormatted,
                                        Word ACodePage = cVnCodePageUTF8) {
  TVnDOMDocument doc;
  doc.SetDeferChildren(ADefer);
  TVnMemoryStream in(AXml.data(), Int64(AXml.size()));
  doc.LoadFromStream(in);
  if (AOpenRoot) (void)doc.GetRootNode()->ElementCount();
  const std::string json = Saved(static_cast<TVnDOMNode&>(doc), ACodePage, ACodePage, AFormatted);
  return {json, doc.GetRootNode()->IsDeferred()};
}

TEST(DomJsonWriter, DeferredLoadsWriteWhatWholeLoadsWrite) {
  const ptrdiff_t small = std::exchange(detail::SmallContentBytes, 0);  // opening the root leaves its children
  for (const DeferredCase& c : kDeferred)
    for (const bool formatted : {false, true}) {
      const std::string whole = JSONOfLoad(c.Xml, false, false, formatted).first;
      EXPECT_EQ(JSONOfLoad(c.Xml, true, false, formatted), std::pair(whole, c.FromRecords)) << c.Xml;
      EXPECT_EQ(JSONOfLoad(c.Xml, true, true, formatted).first, whole) << c.Xml;
      for (const Word page : {cVnCodePageUTF16LE, Word(1252)})
        EXPECT_EQ(JSONOfLoad(c.Xml, true, false, formatted, page),
                  std::pair(JSONOfLoad(c.Xml, false, false, formatted, page).first, c.FromRecords))
            << c.Xml << page;
    }
  detail::SmallContentBytes = small;
  // UTF-16 input keeps its records in UTF-16
  const std::u16string wide = u"<r a=\"&amp;\u00e9\"><b> x&lt;</b><b>\U0001F600</b><c><![CDATA[&]]>y</c></r>";
  std::string bytes = "\xFF\xFE" + std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2);
  EXPECT_EQ(JSONOfLoad(bytes, true, false, false), std::pair(JSONOfLoad(bytes, false, false, false).first, true));
}

// Width costs no quadratic work: a hundred thousand siblings of distinct names beside as many
// of one name. Depth costs no call stack, from records as from nodes.
TEST(DomJsonWriter, WideAndDeepTrees) {
  const int depth = 100000;
  std::string deep;
  for (int i = 0; i < depth; ++i) deep += "<a>";
  for (int i = 0; i < depth; ++i) deep += "</a>";
  for (const bool defer : {true, false}) {
    const std::string json = JSONOfLoad(deep, defer, false, false).first;
    // "a": { a level, and the last one's null
    EXPECT_EQ(json.size(), size_t(depth) * 7 + 2);
    EXPECT_EQ(json.substr(size_t(depth - 1) * 6, 10), R"("a": null})");
  }
  std::u16string wide = u"<r>";
  for (int i = 0; i < 100000; ++i) wide += u"<n" + Utf8ToUnicode(std::to_string(i)) + u"/><s/>";
  auto doc = TVnDOMDocument::FromXML(wide + u"</r>");
  const UnicodeString flat = GetJSON(*doc->GetRootNode());
  EXPECT_EQ(flat.substr(0, 23), u"{\"r\": {\"n0\": null,\"s\": ");
  EXPECT_EQ(std::count(flat.begin(), flat.end(), u','), 2 * 100000 - 1);
}

}  // namespace
