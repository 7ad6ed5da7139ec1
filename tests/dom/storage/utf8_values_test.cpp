// Values loaded from UTF-8 are kept as the input's bytes. Nothing a caller sees may depend on
// that: a load of the same text from UTF-16 reads, saves and edits the same, and a malformed
// input keeps what its decoding gave.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "dom/stored_text.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

constexpr char kDecl[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

std::string Save(TVnDOMDocument& ADoc, Word ACodePage) {
  TVnStringStream out(ACodePage);
  ADoc.SaveToStream(out, ACodePage, false, false);
  return std::string(out.GetBytesView());
}

// Every node below ANode in document order, attributes included.
std::vector<TVnDOMNode*> Nodes(TVnDOMNode* ANode) {
  std::vector<TVnDOMNode*> out, stack{ANode};
  while (!stack.empty()) {
    TVnDOMNode* n = stack.back();
    stack.pop_back();
    out.push_back(n);
    const auto& kids = n->ChildrenView();
    for (uint32_t i = kids.size(); i-- > 0;) stack.push_back(kids[i]);
  }
  return out;
}

UnicodeString Stored(TVnDOMNode* ANode) {
  if (auto* t = dynamic_cast<TVnDOMCharacterData*>(ANode)) return t->GetStoredValue();
  if (auto* a = dynamic_cast<TVnDOMAttribute*>(ANode)) return a->GetStoredValue();
  return {};
}

TEST(DomUtf8Values, ReadAndSavedAsTheSameTextLoadedFromUtf16) {
  const char* const texts[] = {
      "<r a=\"plain\">text</r>",
      // two-, three- and four-byte sequences, references, a quote kept as a reference
      "<r a='\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E' b='say \"hi\"'>\xC3\xA9 &amp; &#x20AC; &lt;\xF0\x9D\x84\x9E</r>",
      // a run longer than a step of the ASCII scans, with a sequence near its end
      "<r><k v='0123456789abcdef0123456789\xC3\xA9'>0123456789abcdef0123456789abcdef\xE2\x82\xAC</k></r>",
      // values of seven bytes and less are kept in place, from eight on in a block
      "<r a='1234567' b='12345678' c='\xC3\xA9\xE2\x82\xAC&lt;' d='x' e='0123456789abcdef say \"hi\"'>"
      "<k>\xF0\x9D\x84\x9E" "12</k><k>1234567</k>12345678</r>",
      // white space kept, declarations with non-ASCII URIs, comments and sections
      "<r xml:space='preserve' xmlns='urn:\xC3\xA9' xmlns:p='urn:p'> <p:k p:a='v'>  </p:k><!--\xC3\xA9-->"
      "<![CDATA[<\xC3\xA9>]]> </r>",
  };
  for (const char* text : texts) {
    SCOPED_TRACE(text);
    TVnDOMDocument wide, narrow;
    narrow.LoadFromAnsiXML(std::string(kDecl) + text);
    wide.LoadFromXML(Utf8ToUnicode(std::string(kDecl) + text));
    const std::vector<TVnDOMNode*> a = Nodes(&narrow), b = Nodes(&wide);
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i) {
      EXPECT_EQ(a[i]->GetQualifiedName(), b[i]->GetQualifiedName());
      EXPECT_EQ(a[i]->GetNodeValue(), b[i]->GetNodeValue());
      EXPECT_EQ(Stored(a[i]), Stored(b[i]));
      EXPECT_EQ(a[i]->GetNamespaceURI(), b[i]->GetNamespaceURI());
    }
    for (Word page : {cVnCodePageUTF8, cVnCodePageUTF16LE, cVnCodePageLatin1})
      EXPECT_EQ(Save(narrow, page), Save(wide, page)) << page;
    EXPECT_EQ(narrow.GetRootNode()->GetFormattedXML(), wide.GetRootNode()->GetFormattedXML());
  }
  // The design holds: a UTF-8 load keeps its text as bytes, others as UTF-16; a section beyond
  // ASCII is decoded once at load.
  TVnDOMDocument narrow, wide;
  narrow.LoadFromAnsiXML(std::string(kDecl) + "<r>t<![CDATA[a]]><![CDATA[\xC3\xA9]]></r>");
  wide.LoadFromXML(u"<r>t</r>");
  auto utf8 = [](TVnDOMDocument& ADoc, uint32_t AIndex) {
    return static_cast<TVnDOMCharacterData*>(ADoc.GetRootNode()->CharNodesView()[AIndex])->StoredText().IsUtf8();
  };
  EXPECT_EQ((std::tuple{utf8(narrow, 0), utf8(narrow, 1), utf8(narrow, 2)}), std::tuple(true, true, false));
  EXPECT_FALSE(utf8(wide, 0));
}

TEST(DomUtf8Values, MalformedBytesKeepTheirDecodingThroughASave) {
  // an overlong form, a lone surrogate, a cut sequence and a stray byte (in a section too)
  TVnDOMDocument doc;
  doc.LoadFromAnsiXML(std::string(kDecl) +
                      "<r a='\xC0\x80' b='\xED\xA0\x80'>0123456789abcdefx\xE2\x82<k><![CDATA[\xFF\xC3\xA9]]></k></r>"
                      "<!--\xFF-->");
  TVnDOMElement* r = doc.GetRootNode();
  auto section = [](TVnDOMElement* ARoot) { return ARoot->FirstElement()->CharNodesView()[0]; };
  const UnicodeString a = r->GetAttribute(u"a"), b = r->GetAttribute(u"b"), text = r->GetNodeValue(),
                      cdata = section(r)->GetNodeValue();
  EXPECT_FALSE(a.empty());
  EXPECT_EQ(cdata.substr(1), u"\u00e9");
  EXPECT_FALSE(static_cast<TVnDOMText*>(r->CharNodesView()[0])->StoredText().IsUtf8());
  EXPECT_FALSE(static_cast<TVnDOMCharacterData*>(section(r))->StoredText().IsUtf8());
  TVnDOMDocument again;
  again.LoadFromAnsiXML(Save(doc, cVnCodePageUTF8));
  TVnDOMElement* back = again.GetRootNode();
  EXPECT_EQ((std::tuple{back->GetAttribute(u"a"), back->GetAttribute(u"b"), back->GetNodeValue(),
                        section(back)->GetNodeValue()}),
            std::tuple(a, b, text, cdata));
}

TEST(DomUtf8Values, LoadedValuesEditCloneAndMoveAsBefore) {
  const std::string text = std::string(kDecl) + "<r a='\xC3\xA9&amp;'><k>\xE2\x82\xAC&lt;1</k><k>2</k></r>";
  TVnDOMDocument doc, other;
  doc.LoadFromAnsiXML(text);
  other.LoadFromXML(u"<o/>");
  TVnDOMElement* r = doc.GetRootNode();
  auto* k0 = static_cast<TVnDOMElement*>(r->ElementsView()[0]);
  auto* t0 = static_cast<TVnDOMText*>(k0->CharNodesView()[0]);
  t0->AppendStr(u"\u00e9");
  t0->InsertStr(1, u">");
  EXPECT_EQ((std::tuple{t0->GetNodeValue(), t0->Substring(2, 2)}), std::tuple(u">\u20ac<1\u00e9", u"\u20ac<"));
  r->AttributeByName(u"a")->SetNodeValue(r->GetAttribute(u"a") + u"\"");
  EXPECT_EQ(r->GetAttribute(u"a"), u"\u00e9&\"");
  // a clone and a moved node keep their values in the other document, after this one is gone
  other.GetRootNode()->AppendChild(k0->CloneNode(true).release());
  auto* k1 = static_cast<TVnDOMElement*>(r->ElementsView()[1]);
  IPtr<IVnDOMNode> held = k1->CharNodesView()[0]->As<IVnDOMNode>();
  r->RemoveChild(k1);
  other.GetRootNode()->AppendChild(k1);
  doc.Clear();
  EXPECT_EQ(held->GetNodeValue(), u"2");
  EXPECT_EQ(Utf8ToUnicode(Save(other, cVnCodePageUTF8)),
            u"<o><k>&gt;\u20ac&lt;1\u00e9</k><k>2</k></o>");
}

TEST(DomUtf8Values, WellFormedUtf8IsTheStrictForm) {
  const std::pair<const char*, bool> cases[] = {
      {"", true},
      {"plain ascii, longer than eight bytes", true},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E\xF4\x8F\xBF\xBF", true},
      {"\xC0\x80", false},          // overlong
      {"\xE0\x80\x80", false},      // overlong
      {"\xF0\x80\x80\x80", false},  // overlong
      {"\xED\xA0\x80", false},      // surrogate
      {"\xF4\x90\x80\x80", false},  // above U+10FFFF
      {"abcdefgh\xE2\x82", false},  // cut at the end
      {"\xE2\x28\xA1", false},      // a continuation missing
      {"\x80", false},
      {"\xFF", false},
  };
  for (const auto& [bytes, ok] : cases) EXPECT_EQ(detail::IsWellFormedUtf8(bytes), ok) << bytes;
}

}  // namespace
}  // namespace vn
