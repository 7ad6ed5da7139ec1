// The vendor-neutral operations where they differ from a plain forward: which kinds answer
// which interfaces, document creation, loading, child and attribute edits, refusals.
#include <gtest/gtest.h>

#include <functional>

#include "support/files.h"
#include "support/raises.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/xml_doc_hooks.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"
#include "vnxml/dom_messages.h"

namespace {

using namespace vn;
using test::ExpectRaises;
using test::U8;

IPtr<IDOMDocument> Load(std::u16string_view AXML) {
  IPtr<IDOMDocument> doc = GetDOM()->createDocument(u"", u"", nullptr);
  EXPECT_EQ(doc.As<IDOMPersist>()->loadxml(AXML), -1);
  return doc;
}
std::string XML(const IPtr<IDOMNode>& ANode) { return U8(ANode.As<IDOMNodeEx>()->get_xml()); }

using Edit = std::function<void(IPtr<IDOMDocument>, IPtr<IDOMElement>)>;

template <class I>
bool Answers(const IPtr<IDOMNode>& ANode) {
  return static_cast<bool>(ANode.As<I>());
}

TEST(PlatformDOM, EachKindAnswersItsInterfaces) {
  IPtr<IDOMDocument> doc = Load(u"<?pi d?><r a=\"1\">t<![CDATA[c]]><!--m--><e/></r>");
  IPtr<IDOMElement> root = doc->get_documentElement();
  IPtr<IDOMNodeList> kids = root->get_childNodes();  // the attribute stands first
  // E element, A attr, C character data, T text, S cdata, M comment, P pi, D document
  struct Case { IPtr<IDOMNode> Node; DOMNodeType Type; std::string Answered; } cases[] = {
      {doc, ntDocument, "D"}, {root, ntElement, "E"}, {kids->get_item(0), ntAttribute, "A"},
      {kids->get_item(1), ntText, "CT"}, {kids->get_item(2), ntCDATA, "CTS"},
      {kids->get_item(3), ntComment, "CM"}, {doc->get_firstChild(), ntProcessingInstruction, "P"},
  };
  using Answering = bool (*)(const IPtr<IDOMNode>&);
  const std::pair<char, Answering> kinds[] = {
      {'E', Answers<IDOMElement>}, {'A', Answers<IDOMAttr>}, {'C', Answers<IDOMCharacterData>},
      {'T', Answers<IDOMText>},    {'S', Answers<IDOMCDATASection>}, {'M', Answers<IDOMComment>},
      {'P', Answers<IDOMProcessingInstruction>},
      {'D', [](const IPtr<IDOMNode>& n) { return Answers<IDOMDocument>(n) && Answers<IDOMDocumentType>(n); }}};
  for (const Case& c : cases) {
    std::string answered;
    for (const auto& [letter, answers] : kinds)
      if (answers(c.Node)) answered += letter;
    EXPECT_EQ(std::tuple(answered, c.Node->get_nodeType()), std::tuple(c.Answered, c.Type)) << int(c.Type);
    EXPECT_TRUE(Answers<IDOMNodeEx>(c.Node) && Answers<IDOMNodeSelect>(c.Node) && Answers<IDOMPersist>(c.Node));
  }
  // Both ways between the library's interfaces and these, to the same object.
  IPtr<IVnDOMElement> own = root.As<IVnDOMElement>();
  ASSERT_TRUE(own);
  EXPECT_EQ(TVnDOMObjectImpl::Node(own.As<IDOMElement>().Get()), TVnDOMObjectImpl::Node(own.Get()));
  EXPECT_EQ(VnImplementor(doc->get_documentElement().Get()), VnImplementor(root.Get()));
  EXPECT_TRUE(kids.As<IDOMNamedNodeMap>() && root->get_attributes().As<IDOMNodeList>());
}

TEST(PlatformDOM, ImplementationFeaturesAndNewDocuments) {
  IPtr<IDOMImplementation> impl = GetDOM(cVnDomVendorName);
  const std::tuple<const char16_t*, const char16_t*, WordBool> features[] = {
      {u"XML", u"2.0", -1}, {u"xml", u"1.0", -1}, {u"xml", u"3.0", 0}};
  for (const auto& [name, version, has] : features)
    EXPECT_EQ(impl->hasFeature(name, version), has) << U8(name) << U8(version);

  const std::pair<const char16_t*, std::string> docs[] = {{u" ", ""}, {u"a", "<a xmlns=\"u\" />"}};
  for (const auto& [name, xml] : docs) {
    IPtr<IDOMDocument> doc = impl->createDocument(u"u", name, nullptr);
    EXPECT_EQ(std::tuple(XML(doc), static_cast<bool>(doc->get_documentElement())), std::tuple(xml, !xml.empty()))
        << U8(name);
  }
  IPtr<IDOMDocument> doc = impl->createDocument(u"", u"", nullptr);
  ExpectRaises<EVnDomNotSupported>([&] { impl->createDocument(u"", u"a", doc->get_doctype()); }, cVnDomNoDoctype);
  ExpectRaises<EVnDomNotSupported>([&] { impl->createDocumentType(u"a", u"", u""); }, cVnDomNotImplemented);
  ExpectRaises<EVnDomNotSupported>([&] { doc->createDocumentFragment(); }, cVnDomNoFragments);
  ExpectRaises<EVnDomNotSupported>([&] { doc->createEntityReference(u"e"); }, cVnDomNoEntityRefs);
  EXPECT_EQ(doc->get_doctype()->get_entities()->get_length(), 0);
}

TEST(PlatformDOM, VendorsAndFreeFunctions) {
  EXPECT_EQ(U8(DOMVendors().Find(cVnDomVendorName)->Description()), "Ondrel");
  ExpectRaises<EVnDomNotFound>([] { GetDOM(u"Other"); }, Format(cVnDomNoSuchVendor, {u"Other"}));
  struct TOtherVendor : TDOMVendor {
    UnicodeString Description() const override { return u"Other"; }
    IPtr<IDOMImplementation> DOMImplementation() const override { return GetDOM(); }
  } other;
  RegisterDOMVendor(&other);
  RegisterDOMVendor(&other);
  EXPECT_EQ(std::tuple(DOMVendors().Count(), static_cast<bool>(GetDOM(u"Other"))), std::tuple(2, true));
  UnRegisterDOMVendor(&other);
  EXPECT_EQ(DOMVendors().Find(u"Other"), nullptr);

  IPtr<IDOMDocument> doc = VnCreateDOM(u"Ondrel", u"u", u"p:a");
  IPtr<IDOMElement> root = doc->get_documentElement();
  VnAddAttribute(root, u"u", u"p:x")->set_value(u"1");
  VnAddElement(root, u"u", u"p:b");
  EXPECT_EQ(U8(VnFormatXML(doc)), "<p:a xmlns:p=\"u\" p:x=\"1\">\r\n  <p:b />\r\n</p:a>");
  EXPECT_EQ(U8(VnCreateDOM(u"<a>1</a>")->GetRootNode()->GetText()), "1");
  ExpectRaises<EInvalidCast>([] { VnAddText(nullptr, u"x"); }, cRtlInvalidCast);

  // The document hooks of the common package are in place before their first use.
  IPtr<IInterface> hooked = GetCreateXMLDoc()(u"<a><b>1</b></a>");
  EXPECT_EQ(U8(GetGetXMLDocValue()(hooked, u"/a/b").AsString()), "1");
  EXPECT_TRUE(VarIsEmpty(GetGetXMLDocValue()(hooked, u"/a/c")));
}

TEST(PlatformDOM, LoadingTakesTextFileNamesAndStreams) {
  IPtr<IDOMDocument> doc = Load(u"<a><b/></a>");
  IPtr<IDOMPersist> persist = doc.As<IDOMPersist>();
  EXPECT_EQ(persist->load(u"no such file"), 0);  // nothing loaded, nothing raised
  EXPECT_EQ((std::tuple{XML(doc), persist->asyncLoadState()}), std::tuple("<a><b /></a>", lsLoaded));
  // Other nodes take the text as their inner XML.
  doc->get_documentElement().As<IDOMPersist>()->load(u"<c/>text");
  EXPECT_EQ(XML(doc), "<a><c />text</a>");

  // A file adds to what the document holds, as loading a file does everywhere in the library.
  const test::TempFile file("platform_dom_saved.xml");
  persist->save(file.Name());
  IPtr<IDOMDocument> again = GetDOM()->createDocument(u"", u"", nullptr);
  EXPECT_EQ(again.As<IDOMPersist>()->load(file.Name()), -1);
  EXPECT_EQ(XML(again), "<a><c />text</a>");
}

TEST(PlatformDOM, ChildEditsAndSiblings) {
  struct Case { const char16_t* Start; Edit Call; const char* Expected; } cases[] = {
      {u"<r><a/></r>", [](auto d, auto r) { r->replaceChild(d->createElement(u"n"), r->get_firstChild()); },
       "<r><n /></r>"},
      {u"<r a=\"1\"/>", [](auto d, auto r) { r->setAttributeNode(d->createAttribute(u"a"))->set_value(u"2"); },
       "<r a=\"1\" a=\"2\" />"},
      {u"<r a=\"1\" b=\"2\"/>", [](auto, auto r) { r->removeAttributeNode(r->getAttributeNode(u"a")); },
       "<r b=\"2\" />"},
      {u"<r a=\"1\"/>", [](auto d, auto r) { r->get_attributes()->setNamedItem(d->createAttribute(u"a")); },
       "<r a=\"1\" a=\"\" />"},
      {u"<r a=\"1\" b=\"2\"/>",
       [](auto, auto r) { EXPECT_EQ(r->get_attributes()->removeNamedItem(u"b")->get_nodeValue(), u"2"); },
       "<r a=\"1\" />"},
      {u"<r><a/></r>", [](auto d, auto) { d->set_documentElement(d->createElement(u"n")); }, "<n />"},
      {u"<r>abc</r>",
       [](auto, auto r) { r->get_firstChild().template As<IDOMCharacterData>()->replaceData(2, 1, u"X"); },
       "<r>aXc</r>"},
  };
  for (const Case& c : cases) {
    IPtr<IDOMDocument> doc = Load(c.Start);
    c.Call(doc, doc->get_documentElement());
    EXPECT_EQ(XML(doc), c.Expected) << U8(c.Start);
  }
  // An element's attributes stand first among its children.
  IPtr<IDOMElement> r = Load(u"<r a=\"1\">t</r>")->get_documentElement();
  EXPECT_EQ((std::tuple{r->get_firstChild()->get_nodeType(), r->get_firstChild()->get_nextSibling()->get_nodeType(),
                        r->get_firstChild().As<IDOMAttr>()->get_ownerElement()->get_tagName()}),
            std::tuple(ntAttribute, ntText, u"r"));
}

TEST(PlatformDOM, LookupsAndRefusals) {
  IPtr<IDOMDocument> doc = Load(u"<r xmlns:p=\"u\" p:a=\"1\"><e id=\"x\"/><e id=\"y\">t</e></r>");
  IPtr<IDOMElement> root = doc->get_documentElement();
  IPtr<IDOMNamedNodeMap> attrs = root->get_attributes();
  ExpectRaises<EVnDomNotFound>([&] { attrs->getNamedItem(u"x"); }, Format(cVnDomNoNodeForName, {u"x"}));
  EXPECT_EQ((std::tuple{bool(attrs->getNamedItemNS(u"", u"x")), U8(attrs->getNamedItemNS(u"u", u"a")->get_nodeValue()),
                        root->hasAttributeNS(u"u", u"a"), U8(doc->getElementById(u"y").As<IDOMNodeEx>()->get_text()),
                        bool(doc->getElementById(u"z"))}),
            std::tuple(false, "1", -1, "t", false));
  EXPECT_EQ(GetDOM()->createDocument(u"", u"", nullptr)->getElementsByTagName(u"e")->get_length(), 0);

  IPtr<IDOMNode> text = doc->getElementById(u"y")->get_firstChild();
  ExpectRaises<EVnDomNotFound>([&] { text->get_attributes(); }, cVnDomNoAttributes);
  EXPECT_THROW(root.As<IDOMNodeSelect>()->selectNode(u"nothing"), EVnDomNotFound);
  EXPECT_EQ(root.As<IDOMNodeSelect>()->selectNodes(u"nothing")->get_length(), 0);
  // A document is not cloned, and a node in a tree must leave it before it goes elsewhere.
  EXPECT_THROW(doc->importNode(doc, -1), EVnDomNotSupported);
  // Names that aren't XML are refused where they would be written.
  IPtr<IDOMElement> bad = doc->createElement(u"1bad");
  VnAddAttribute(root, u"a=b");
  ExpectRaises<EVnDomInvalidCharacter>([&] { XML(bad); }, Format(cVnDomElementNameNotWritable, {u"1bad"}));
  ExpectRaises<EVnDomInvalidCharacter>([&] { XML(root); }, Format(cVnDomAttributeNameNotWritable, {u"a=b"}));
}

TEST(PlatformDOM, RefusedEditsLeaveTheTreeAsItWas) {
  // After: the tree afterwards, as it was unless given
  struct Case { Edit Call; const char* Class; const char* After = "<r a=\"1\">t<e /></r>"; } cases[] = {
      {[](auto, auto r) { r->replaceChild(nullptr, r->get_firstChild()); }, "EInvalidCast"},
      {[](auto, auto r) { r->replaceChild(r->get_lastChild(), r->get_firstChild()); }, "EVnDomHierarchyRequest"},
      {[](auto, auto r) { r->get_lastChild()->appendChild(r); }, "EVnDomHierarchyRequest"},
      {[](auto d, auto r) { r->appendChild(d); }, "EVnDomHierarchyRequest"},
      {[](auto d, auto r) { r->removeChild(d->createElement(u"e")); }, "EAssertionFailed"},
      {[](auto, auto r) { r->get_childNodes()->get_item(3); }, "EListError"},
      // A node without children has no first child: the list's First refuses.
      {[](auto, auto r) { r->get_lastChild()->get_firstChild(); }, "EVnDomNotFound"},
      // The old root goes before the new one fails the cast.
      {[](auto d, auto) { d->set_documentElement(nullptr); }, "EInvalidCast", ""},
  };
  for (const Case& c : cases) {
    IPtr<IDOMDocument> doc = Load(u"<r a=\"1\">t<e/></r>");
    std::string raised;
    try {
      c.Call(doc, doc->get_documentElement());
    } catch (const Exception& e) {
      raised = U8(e.ClassName());
    }
    EXPECT_EQ(std::tuple(raised, XML(doc)), std::tuple(c.Class, c.After));
  }
}

}  // namespace
