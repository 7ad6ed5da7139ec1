// Loading documents: the ways in, encoding detection, root handling, failures and their place.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "common/message_of.h"
#include "support/files.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"
#include "vnxml/dom_parser.h"
#include "vnxml/sax_reader.h"

namespace vn {
namespace {

// A document loaded from a stream of ABytes.
std::unique_ptr<TVnDOMDocument> FromBytes(std::string_view ABytes) {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnStringStream s(ABytes, cVnCodePageDefault);
  doc->LoadFromStream(s);
  return doc;
}

TEST(DomLoad, StreamSkipsMarkAndBlanksReadsDeclaredEncodingAndShapesTheTree) {
  // A UTF-8 mark then blanks: the parse starts on "<".
  auto doc = FromBytes("\xEF\xBB\xBF \r\n\t<a>\xC3\xA9</a>");
  ASSERT_NE(doc->GetRootNode(), nullptr);
  EXPECT_EQ(doc->GetRootNode()->GetText(), u"\u00e9");
  // Blanks around attribute names go, in a whole load and in a deferred one's records alike.
  for (bool whole : {false, true}) {
    TVnDOMDocument blanks;
    blanks.SetDeferChildren(!whole);
    blanks.LoadFromAnsiXML("<r\ta =\"1\"><e b= '2'  c\n=\"3\" \xC3\xA9 =\"4\"/></r>");
    EXPECT_EQ(blanks.GetRootNode()->GetXML(), u"<r a=\"1\"><e b=\"2\" c=\"3\" \u00e9=\"4\" /></r>");
  }
  // No mark, a Latin-1 declaration: the byte E9 is one character; the document keeps "UTF-8" for output.
  doc = FromBytes("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xE9</a>");
  EXPECT_EQ((std::tuple{doc->GetRootNode()->GetText(), doc->GetEncoding()}), std::tuple(u"\u00e9", u"UTF-8"));
  EXPECT_EQ(doc->GetProcessingInstruction(u"xml"), u"version=\"1.0\" encoding=\"ISO-8859-1\"");
  // UTF-16 with its mark.
  const std::u16string text = u"\uFEFF  <a>\u4e2d</a>";
  doc = FromBytes(std::string_view(reinterpret_cast<const char*>(text.data()), text.size() * 2));
  EXPECT_EQ(doc->GetRootNode()->GetText(), u"\u4e2d");
  // 8-bit text through the Ansi entry: the declaration decides.
  doc = TVnDOMDocument::FromAnsiXML("<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\x80</a>");
  EXPECT_EQ(doc->GetRootNode()->GetText(), u"\u20ac");

  // The tree's shape follows the events.
  doc = TVnDOMDocument::FromXML(
      u"<?xml version=\"1.0\"?>\r\n<!--c1--><?pi data?><!DOCTYPE a><a xmlns=\"u\" x=\"1&amp;2\">"
      u"<b/>  <c xml:space=\"preserve\">  <d/></c><![CDATA[<raw>]]></a><!--after-->");
  TVnDOMElement* a = doc->GetRootNode();
  ASSERT_NE(a, nullptr);
  // Prolog nodes stay in order; the DOCTYPE leaves nothing.
  ASSERT_EQ(doc->NodeCount(), 5);
  EXPECT_EQ((std::tuple{doc->ChildAt(0)->GetQualifiedName(), doc->ChildAt(1)->GetNodeType(),
                        doc->ChildAt(4)->GetNodeType()}),
            std::tuple(u"xml", ntComment, ntComment));
  // Values are stored escaped and decoded on demand.
  TVnDOMAttribute* x = a->FindAttribute(u"x");
  EXPECT_EQ((std::tuple{x->GetStoredValue(), x->GetNodeValue()}), std::tuple(u"1&amp;2", u"1&2"));
  // Blank text between elements goes, unless xml:space keeps it.
  EXPECT_EQ((std::tuple{a->ElementCount(), a->FindElement(u"c")->CharNodesView().size(), a->GetCDATACount(),
                        a->GetCDATA(0)->GetNodeValue()}),
            std::tuple(2, 1u, 1, u"<raw>"));
  // The default namespace belongs to the declaring element; the unprefixed child has none.
  EXPECT_EQ((std::tuple{a->GetNamespaceURI(), a->FindElement(u"b")->GetNamespaceURI()}), std::tuple(u"u", u""));
}

TEST(DomLoad, RootAndRepeatedLoads) {
  TVnDOMDocument doc;
  for (int i = 0; i < 2; ++i) {
    TVnStringStream s(u"<a/>");
    doc.LoadFromStream(s, cVnCodePageUTF16LE);
  }
  // A second load adds; the first root stays the root.
  ASSERT_EQ(doc.NodeCount(), 2);
  EXPECT_EQ(doc.GetRootNode(), doc.ChildAt(0));
  doc.RemoveChild(doc.GetRootNode());
  EXPECT_EQ(doc.GetRootNode(), nullptr);
  // The element left behind is not promoted; a new root can be made beside it.
  TVnDOMElement* made = doc.CreateRootNode(u"x");
  EXPECT_EQ(made, doc.ChildAt(1));
  EXPECT_THROW(doc.CreateRootNode(u"y"), EVnDomException);
  doc.LoadXML(u"");
  EXPECT_EQ(doc.NodeCount(), 0);
  doc.LoadXML(u"<r xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"/>");
  EXPECT_TRUE(doc.GetUseSchemaInstance());
}

TEST(DomLoad, FailuresCarryLineAndColumn) {
  TVnDOMDocument doc;
  const UnicodeString message = test::MessageOf<EVnDomSyntax>([&] { doc.LoadXML(u"<a>\r\n  <b x=></b></a>"); });
  EXPECT_EQ(message.rfind(u"Line 2, column ", 0), 0u) << UnicodeToUtf8(message);
  // What was built before the failure stays.
  EXPECT_EQ(doc.GetLoadState(), lsLoaded);
  EXPECT_NE(doc.GetRootNode(), nullptr);

  // A handler that sets Handled gets the reader's own exception.
  TVnDOMDocument handled;
  int calls = 0;
  handled.SetOnParseFatalError([&](IVnSAXLocator*, std::u16string_view, bool& AHandled) {
    ++calls;
    AHandled = true;
  });
  EXPECT_THROW(handled.LoadXML(u"<a><b></a"), EVnXMLParseError);
  EXPECT_EQ(calls, 1);

  // Stray end tags, a second root, text at the top and an unclosed element all end in an exception.
  for (const char16_t* bad : {u"<a></a></b>", u"<a/><b/>", u"<a/>text", u"</a>", u"<a/><![CDATA[x]]>",
                              u"just text", u"<a x='1' x=>"})
    EXPECT_THROW(TVnDOMDocument().LoadXML(bad), Exception) << UnicodeToUtf8(bad);
}

TEST(DomLoad, FailedLoadLeavesAWholeTree) {
  // Open elements keep every child they got, in every list, both for the failure handler and
  // after; the start tag cut short leaves nothing.
  auto check = [](TVnDOMDocument& ADoc) {
    TVnDOMElement* a = ADoc.GetRootNode();
    ASSERT_NE(a, nullptr);
    ASSERT_EQ(a->ElementCount(), 1);
    TVnDOMElement* b = static_cast<TVnDOMElement*>(a->ElementsView()[0]);
    // The attribute, c, the comment, the text.
    EXPECT_EQ((std::tuple{b->AttributeCount(), b->NodeCount()}), std::tuple(1, 4));
    EXPECT_EQ(b->GetXML(), u"<b x=\"1\"><c>t</c><!--n-->u</b>");
  };
  const char16_t* text = u"<a><b x=\"1\"><c>t</c><!--n-->u<d y=\"2\" z";
  TVnDOMDocument seen;
  int calls = 0;
  seen.SetOnParseFatalError([&](IVnSAXLocator*, std::u16string_view, bool&) {
    ++calls;
    check(seen);
  });
  EXPECT_THROW(seen.LoadXML(text), EVnDomSyntax);
  EXPECT_EQ(calls, 1);
  check(seen);
  // The tree stays editable where the load stopped.
  TVnDOMElement* b = static_cast<TVnDOMElement*>(seen.GetRootNode()->ElementsView()[0]);
  b->AddElement(u"e");
  EXPECT_EQ(b->GetXML(), u"<b x=\"1\"><c>t</c><!--n-->u<e /></b>");

  // A declaration that fails to decode fails while its element joins: the element stays, closed
  // with its attribute, and is freed with the document (a leak shows under the sanitizer).
  for (const char16_t* bad : {u"<a xmlns=\"&#;\"/>", u"<r><b/><a xmlns:p=\"&#;\"><c/></a></r>"}) {
    TVnDOMDocument doc;
    EXPECT_THROW(doc.LoadXML(bad), EVnDomSyntax);
    ASSERT_NE(doc.GetRootNode(), nullptr);
    TVnDOMElement* a = doc.GetRootNode()->ElementCount() ? doc.GetRootNode()->LastElement() : doc.GetRootNode();
    EXPECT_EQ((std::tuple{a->AttributeCount(), a->NodeCount()}), std::tuple(1, 1));
  }
}

TEST(DomLoad, ParserBuildsFromAnotherReadersEventsAndFragments) {
  const char16_t* text = u"<a xmlns:p=\"u\"><p:b x='1\"'>t</p:b> <!--c--><![CDATA[d]]><e/></a>";
  TVnDOMDocument heard;
  {
    TVnDOMParser parser(&heard);
    TVnSAXXMLReader reader;
    reader.SetAutoDestroy(false);
    reader.SetContentHandler(IPtr<IVnSAXContentHandler>(&parser));
    reader.SetLexicalHandler(IPtr<IVnSAXLexicalHandler>(&parser));
    reader.SetErrorHandler(IPtr<IVnSAXErrorHandler>(&parser));
    reader.Parse(text);
  }
  auto loaded = TVnDOMDocument::FromXML(text);
  EXPECT_EQ(heard.GetXML(), loaded->GetXML());

  // Inner XML parses a fragment.
  auto doc = TVnDOMDocument::FromXML(u"<r><old/>keep</r>");
  TVnDOMElement* r = doc->GetRootNode();
  r->SetInnerXML(u"<x a=\"1\"/><y>t</y><z/>");
  EXPECT_EQ(r->GetXML(), u"<r>keep<x a=\"1\" /><y>t</y><z /></r>");
  // A failing fragment keeps what it built and raises.
  EXPECT_THROW(r->SetInnerXML(u"<p/><q"), EVnDomSyntax);
  EXPECT_EQ(r->ElementCount(), 1);
  // A stray end tag inside a fragment cannot climb out of the element.
  EXPECT_THROW(r->SetInnerXML(u"<p/></r><s/>"), Exception);
  EXPECT_EQ(doc->NodeCount(), 1);
}

TEST(DomLoad, FilesRoundTripWithURI) {
  auto file = std::make_unique<test::TempFile>("doc.xml");
  const UnicodeString name = file->Name();
  auto doc = TVnDOMDocument::FromXML(u"<a><b>\u00e9</b></a>");
  doc->SetEncoding(u"ISO-8859-1");
  doc->SaveToFile(name, true, false);
  TVnDOMDocument back(name, fmOpenRead);
  EXPECT_EQ((std::tuple{back.GetDocumentURI(), back.GetRootNode()->FindElement(u"b")->GetText()}),
            std::tuple(name, u"\u00e9"));
  file.reset();
  EXPECT_THROW(TVnDOMDocument(name, fmOpenRead), Exception);
}

}  // namespace
}  // namespace vn
