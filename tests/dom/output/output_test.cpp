// Writing trees: plain and formatted layout, marks and line ends at the start, code pages.
#include <gtest/gtest.h>

#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

std::string Saved(TVnDOMDocument& ADoc, Word ACodePage, bool AFormatted, bool ABOM) {
  TVnStringStream s(ACodePage);
  ADoc.SaveToStream(s, ACodePage, AFormatted, ABOM);
  return std::string(s.GetBytesView());
}

TEST(DomOutput, PlainAndFormattedLayout) {
  const std::pair<const char16_t*, const char16_t*> formatted[] = {
      {u"<a><b>x</b><c/><d></d></a>", u"<a>\r\n  <b>x</b>\r\n  <c />\r\n  <d />\r\n</a>"},
      // Mixed content: formatting breaks before the child element and the end tag...
      {u"<a>t<b/></a>", u"<a>t\r\n  <b />\r\n</a>"},
      // ...but not under xml:space="preserve".
      {u"<a xml:space=\"preserve\">t<b/></a>", u"<a xml:space=\"preserve\">t<b /></a>"},
      // The declaration opens the text with no line end; a comment always starts a line...
      {u"<?xml version=\"1.0\"?><!--c--><a><!--in--><?p d?></a><?q?>",
       u"<?xml version=\"1.0\"?>\r\n<!--c-->\r\n<a>\r\n  <!--in-->\r\n  <?p d?></a>\r\n<?q?>"},
      // ...and one first in a document gets a leading line end.
      {u"<!--c--><a/>", u"\r\n<!--c-->\r\n<a />"}};
  for (const auto& [xml, text] : formatted)
    EXPECT_EQ(TVnDOMDocument::FromXML(xml)->GetFormattedXML(), text) << UnicodeToUtf8(xml);
  // Plain output writes the prolog back as it was read.
  EXPECT_EQ(TVnDOMDocument::FromXML(formatted[3].first)->GetXML(), formatted[3].first);
  auto doc = TVnDOMDocument::FromXML(u"<a><b>x</b><c/><d></d></a>");
  EXPECT_EQ(doc->GetXML(), u"<a><b>x</b><c /><d /></a>");
  // An empty text child keeps the long form.
  TVnDOMElement* e = doc->GetRootNode()->AddElement(u"e");
  e->AddText(u"");
  EXPECT_EQ(e->GetXML(), u"<e></e>");
  // Inner XML holds the child elements only.
  doc->LoadXML(u"<a>t<b />u<!--c--></a>");
  EXPECT_EQ(doc->GetRootNode()->GetInnerXML(), u"<b />");
  // An attribute node and a text node write what they store.
  doc->LoadXML(u"<a n=\"v&amp;w\">x &lt; y</a>");
  EXPECT_EQ(doc->GetRootNode()->FirstAttribute()->GetXML(), u" n=\"v&amp;w\"");
  EXPECT_EQ(doc->GetRootNode()->ChildAt(1)->GetXML(), u"x &lt; y");
}

TEST(DomOutput, ByteOrderMarksLineEndsCodePagesAndTheDeclaration) {
  auto doc = TVnDOMDocument::FromXML(u"<a><b/></a>");
  // UTF-16: the two-byte mark is recognised, no line end behind it.
  std::string wide = Saved(*doc, cVnCodePageUTF16LE, true, true);
  EXPECT_EQ(wide.substr(0, 4), std::string("\xFF\xFE<\0", 4));
  // UTF-8: the three-byte mark is not, so a line end follows it.
  EXPECT_EQ(Saved(*doc, cVnCodePageUTF8, true, true), "\xEF\xBB\xBF\r\n<a>\r\n  <b />\r\n</a>");
  // Other code pages get no mark.
  EXPECT_EQ(Saved(*doc, cVnCodePageLatin1, false, true), "<a><b /></a>");
  // A declaration right behind the UTF-8 mark gets no line end either.
  doc->SetEncoding(u"");
  EXPECT_EQ(Saved(*doc, cVnCodePageUTF8, true, true).substr(0, 10), "\xEF\xBB\xBF<?xml v");
  // A formatted element appended to a stream with content starts a new line.
  TVnStringStream s(cVnCodePageUTF8);
  s.Add(std::string_view("x"));
  doc->GetRootNode()->SaveToStream(s, cVnCodePageUTF8, true);
  EXPECT_EQ(std::string(s.GetBytesView()).substr(0, 4), "x\r\n<");

  // Code pages and the declaration.
  doc = TVnDOMDocument::FromXML(u"<a>\u00e9\u20ac\U0001F600</a>");
  EXPECT_EQ(Saved(*doc, cVnCodePageUTF8, false, false), "<a>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80</a>");
  EXPECT_EQ(Saved(*doc, 1252, false, false).substr(0, 5), "<a>\xE9\x80");
  // SetEncoding writes the name into a new declaration at the front, then updates it in place.
  doc->SetEncoding(u"ISO-8859-1");
  EXPECT_EQ(doc->GetProcessingInstruction(u"xml"), u"version=\"1.0\" encoding=\"ISO-8859-1\"");
  EXPECT_EQ(doc->GetCodePage(), cVnCodePageLatin1);
  doc->SetEncoding(u"windows-1252");
  EXPECT_EQ(doc->GetProcessingInstruction(u"xml"), u"version=\"1.0\" encoding=\"windows-1252\"");
  TVnStringStream ansi(1252);
  doc->SaveToStreamEx(ansi, false, true);
  EXPECT_EQ(std::string(ansi.GetBytesView()).substr(0, 45), "<?xml version=\"1.0\" encoding=\"windows-1252\"?>");
  // A declaration without encoding gets one appended; the instruction setter recomputes it.
  doc->SetProcessingInstruction(u"xml", u"version=\"1.0\"");
  EXPECT_EQ(doc->GetEncoding(), u"UTF-8");
  doc->SetEncoding(u"UTF-16");
  EXPECT_EQ(doc->GetProcessingInstruction(u"xml"), u"version=\"1.0\" encoding=\"UTF-16\"");
  doc->SetProcessingInstruction(u"xml", u"version=\"1.0\" encoding=\"ISO-8859-1\"");
  EXPECT_EQ(doc->GetEncoding(), u"iso-8859-1");
  // Other instructions go behind the declaration.
  doc->SetProcessingInstruction(u"style", u"x");
  EXPECT_EQ(doc->ChildAt(1)->GetQualifiedName(), u"style");
  EXPECT_THROW(doc->GetProcessingInstruction(u"none"), EVnDomNotFound);
  EXPECT_EQ(VnFormatXML(std::u16string_view(u"<a><b/></a>")), u"<a>\r\n  <b />\r\n</a>");
}

}  // namespace
}  // namespace vn
