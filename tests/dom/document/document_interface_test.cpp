// The document held as an interface alone: every road in and out, settings, instructions and
// selection, with no object call in between.
#include <gtest/gtest.h>

#include <functional>

#include "support/files.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

constexpr char16_t kText[] = u"<r a=\"1\"><b>\u00e9</b></r>";

TEST(DomDocumentInterface, EveryRoadInGivesTheSameTreeSettingsAndSavedBytes) {
  const test::TempFile temp("doc_interface.xml");
  const UnicodeString file = temp.Name();
  TVnDOMDocument::FromXML(kText)->SaveToFile(file);
  // The 8-bit form names its code page: é is one byte, which UTF-8 would refuse.
  const std::string latin1 = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r a=\"1\"><b>\xe9</b></r>";
  using Load = std::function<void(IVnDOMDocument&)>;
  const std::pair<const char*, Load> roads[] = {
      {"LoadXML text", [](IVnDOMDocument& d) { d.LoadXML(kText); }},
      {"LoadFromXML 8-bit", [&](IVnDOMDocument& d) { d.LoadFromXML(std::string_view(latin1)); }},
      {"LoadXML stream",
       [](IVnDOMDocument& d) {
         // A stream without a byte-order mark reads as 8-bit text.
         TVnStringStream s(UnicodeToUtf8(kText), cVnCodePageUTF8);
         d.LoadXML(s);
       }},
      {"LoadFromFile", [&](IVnDOMDocument& d) { d.LoadFromFile(file, fmOpenRead); }},
  };
  for (const auto& [name, load] : roads) {
    SCOPED_TRACE(name);
    IPtr<IVnDOMDocument> doc = (new TVnDOMDocument())->As<IVnDOMDocument>();
    load(*doc);
    ASSERT_TRUE(doc->GetRootNode());
    EXPECT_EQ(doc->GetRootNode()->GetXML(), kText);
    EXPECT_EQ(doc->SelectSingleElement(u"b", {})->GetText(), u"\u00e9");
    EXPECT_EQ(doc->GetDocumentURI(), std::string(name) == "LoadFromFile" ? file : UnicodeString());
  }

  IPtr<IVnDOMDocument> doc = (new TVnDOMDocument())->As<IVnDOMDocument>();
  // Without a root: an empty list, the failures the options ask for.
  EXPECT_EQ(doc->CreateElementList(u"a", {})->Count(), 0);
  EXPECT_THROW(doc->SelectSingleElement(u"", {}), EVnDomNotFound);
  EXPECT_THROW(doc->GetProcessingInstruction(u"xml"), EVnDomNotFound);

  doc->LoadXML(u"<r><a/></r>");
  doc->SetEncoding(u"ISO-8859-1");
  EXPECT_EQ(doc->GetCodePage(), 28591);
  EXPECT_EQ(doc->GetProcessingInstruction(u"xml"), u"version=\"1.0\" encoding=\"ISO-8859-1\"");
  doc->SetProcessingInstruction(u"style", u"x");
  doc->SetUseSchemaInstance(true);
  EXPECT_TRUE(doc->GetRootNode()->HasAttribute(u"xmlns:xsi", TVnDOMSelectOptions{}));
  doc->GetRootNode()->SetNodeValue(u"\u00e9");
  doc->SetCaseSensitive(true);
  EXPECT_FALSE(doc->SelectSingleElement(u"A", {}));
  doc->SetCaseSensitive(false);
  EXPECT_EQ(doc->CreateElementList(u"A", {})->Count(), 1);

  // Saved in the document's encoding: é as one byte, the instructions in front.
  TVnStringStream out(cVnCodePageLatin1);
  doc->SaveToStreamEx(out, false, false);
  std::string_view bytes = out.GetBytesView();
  EXPECT_EQ(bytes.rfind("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>", 0), 0u);
  EXPECT_NE(bytes.find("<?style x?>"), std::string_view::npos);
  EXPECT_NE(bytes.find("\xe9</r>"), std::string_view::npos);
}

}  // namespace
}  // namespace vn
