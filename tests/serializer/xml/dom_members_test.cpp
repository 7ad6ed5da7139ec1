// DOM documents and elements below the root of an object's XML, and an event's arguments.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "serializer/domain_support.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_element.h"
#include "vnxml/json_serializer.h"
#include "vnxml/xml_dom_serializer.h"

namespace domdomain {

using namespace vn;

class TPage : public TObject {
  VN_DECLARE_CLASS(TPage, TObject)
 public:
  TPage() : Home(new TVnDOMDocument()) { Part = Home->CreateRootNode(u"part"); }
  TPage(const TPage&) = delete;
  TPage& operator=(const TPage&) = delete;
  ~TPage() override { test::DeleteAll(Doc, Docs, Home); }
  TVnDOMDocument* Doc = nullptr;
  std::vector<TVnDOMDocument*> Docs;
  TVnDOMDocument* Home;
  TVnDOMElement* Part;  ///< an element of Home
  Integer After = 0;
  Integer Notify(Integer ACount, Double ARate) const { return static_cast<Integer>(ACount * ARate); }
};
VN_REGISTER_TYPE(TPage, u"uDomTest") {
  b VN_TEST_PUBLIC(TPage, Doc, Docs, Part, After).Method(mvPublic, u"Notify", &TPage::Notify, {u"ACount", u"ARate"});
}

TVnDOMDocument* NewDoc(std::u16string_view AXML) {
  auto* document = new TVnDOMDocument();
  document->LoadXML(AXML);
  return document;
}

std::string Plain(TObject* AObject, TVnDataSerializationFormatType AFormat = dsfXML) {
  return test::SerializeWith(AFormat, TValue::FromObject(AObject), {{u"excludenamespaces", u"true"}});
}

TEST(XMLDOMMembers, DocumentsAndElementsStandInTheirElementAndReadBack) {
  TPage page;
  page.Doc = NewDoc(u"<?xml version=\"1.0\"?><!-- out --><r a=\"1 &amp; 2\"><c>x &lt; y</c><![CDATA[<z>]]><e/></r>");
  page.Docs = {NewDoc(u"<one/>"), new TVnDOMDocument()};
  page.Part->SetAttribute(u"k", u"v\"w");
  page.Part->SetInnerXML(u"<p>t</p>");
  page.After = 3;
  const std::string text = Plain(&page);
  EXPECT_EQ(text, "<object><Doc><r a=\"1 &amp; 2\"><c>x &lt; y</c><![CDATA[<z>]]><e /></r></Doc>"
                  "<Docs><TVnDOMDocument><one /></TVnDOMDocument><TVnDOMDocument></TVnDOMDocument></Docs>"
                  "<Part><part k=\"v&quot;w\"><p>t</p></part></Part><After>3</After></object>");
  // Read into a page whose element has another name and content, and whose documents are nil.
  TPage copy;
  copy.Part->SetQualifiedName(u"old");
  copy.Part->SetAttribute(u"gone", u"1");
  copy.Part->SetInnerXML(u"<q/>");
  TObjectList created(false);
  VnDeserialize(dsfXML, TValue::FromObject(&copy), VnSerialize(dsfXML, &page), &created);
  ASSERT_NE(copy.Doc, nullptr);
  EXPECT_EQ(std::tuple(created.GetCount(), copy.Doc->GetRootNode()->SelectSingleNode(u"c")->GetText(),
                       copy.Part->GetAttribute(u"k"), copy.Part->HasAttribute(u"gone")),
            std::tuple(3, u"x < y", u"v\"w", false));
  EXPECT_EQ(copy.Part->Document(), copy.Home) << "the given element is filled in place";
  // A CDATA section comes back as the same text, escaped.
  std::string expected = text;
  expected.replace(expected.find("<![CDATA[<z>]]>"), 15, "&lt;z&gt;");
  EXPECT_EQ(Plain(&copy), expected);
}

TEST(XMLDOMMembers, MarkupThatDoesNotLoadAndElementsNeverMade) {
  const std::string head = "<object xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">";
  // Expected: the start of the message
  struct Case { const char* Inner; std::u16string Expected; } cases[] = {
      {"<Doc xsi:type=\"xsd:TVnDOMDocument\"><a/><b/></Doc>", u"Deserialization failure at \"Doc\"\r\n"},
      {"<Doc xsi:type=\"xsd:TVnDOMDocument\">text</Doc>", u"Deserialization failure at \"Doc\"\r\n"},
      {"<Part><x/></Part>", u"Not supported"},
  };
  for (const Case& c : cases) {
    TPage page;
    page.Part = nullptr;
    const UnicodeString failure =
        test::MessageOf([&] { VnDeserialize(dsfXML, TValue::FromObject(&page), head + c.Inner + "</object>"); });
    EXPECT_TRUE(failure.starts_with(c.Expected)) << c.Inner << UnicodeToUtf8(failure);
    EXPECT_EQ(page.Doc, nullptr) << "a failed read unlinks and frees the document it made";
  }
}

TEST(XMLDOMMembers, ADocumentInJSONIsTheDOMsJSONForm) {
  TPage page;
  page.Doc = NewDoc(u"<r a=\"1\"><c>x</c></r>");
  page.Docs = {new TVnDOMDocument()};
  const std::string text = VnSerialize(dsfJSON, &page);
  EXPECT_NE(text.find(R"("doc":{"r": {"r_a": "1","c": "x"}},"docs":[{}],)"), std::string::npos) << text;
  EXPECT_EQ(VnSerialize(dsfJSON, page.Doc), R"("r": {"r_a": "1","c": "x"})");
}

TEST(EventArguments, StandBareInBothNotations) {
  TPage page;
  TRttiMethod* notify = TRttiContext::GetType(TPage::StaticClass())->GetMethod(u"Notify");
  ASSERT_NE(notify, nullptr);
  const TValue args[] = {TValue::From<Integer>(3), TValue::From<Double>(0.5)};
  const std::pair<TVnDataSerializationFormatType, const char*> cases[] = {
      {dsfXML, "<ACount>3</ACount><ARate>0.5</ARate>"}, {dsfJSON, R"("aCount":3,"aRate":0.5)"}};
  for (const auto& [format, expected] : cases) {
    IPtr<IVnSerializer> intf = VnCreateSerializer(format, TValue::FromObject(&page));
    intf->SetParam(u"excludenamespaces", u"true");
    auto* s = CastObject<TVnSerializer>(VnImplementor(intf.Get()));
    TVnStringStream out(cVnCodePageUTF8);
    s->Serialize(out, *notify, u"OnNotify", args, 1);
    EXPECT_EQ(UnicodeToUtf8(out.GetWString()), expected);
    EXPECT_THROW(s->Serialize(out, *notify, u"OnNotify", args, 2), Exception);
  }
}

}  // namespace domdomain
