// A document built, queried, edited and saved through the vendor-neutral interfaces alone gives
// the text of the same edits made through the library's own objects.
#include <gtest/gtest.h>

#include "support/raises.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"

namespace {

using namespace vn;
using test::U8;

// Written only against the vendor-neutral interfaces and the free functions over them.
std::string BuildThroughInterfaces() {
  IPtr<IDOMDocument> doc = GetDOM(u"Ondrel")->createDocument(u"urn:po", u"po:order", nullptr);
  IPtr<IDOMElement> root = doc->get_documentElement();
  root->setAttribute(u"id", u"7");
  IPtr<IDOMElement> first = VnAddElement(root, u"item");
  IPtr<IDOMText> text = VnAddText(first, u"a < b");
  IPtr<IDOMComment> note = VnAddComment(root, u"note");
  IPtr<IDOMElement> second = doc->createElement(u"item");
  root->appendChild(second);
  VnAddAttribute(second, u"n")->set_value(u"2");
  VnAddCDATA(second, u"x]y");
  root->appendChild(doc->createProcessingInstruction(u"pi", u"data"));

  // Queries.
  IPtr<IDOMNodeList> items = root.As<IDOMNodeSelect>()->selectNodes(u"item");
  EXPECT_EQ(items->get_length(), 2);
  EXPECT_EQ(U8(items->get_item(1).As<IDOMElement>()->getAttribute(u"n")), "2");
  EXPECT_EQ(doc->getElementsByTagName(u"item")->get_length(), 2);
  EXPECT_EQ(U8(doc.As<IDOMNodeSelect>()->selectNode(u"//item[@n]")->get_nodeName()), "item");
  EXPECT_EQ(U8(first->get_firstChild()->get_nodeValue()), "a < b");

  // Edits.
  text->appendData(u"!");
  root->replaceChild(doc->createTextNode(u"t"), note);
  root->insertBefore(doc->createElement(u"head"), first);
  root->removeChild(root->get_lastChild());
  second->removeAttribute(u"n");
  second->setAttributeNS(u"urn:po", u"po:n", u"3");

  TVnStringStream out(65001);
  doc.As<IDOMPersist>()->saveToStream(out);
  EXPECT_EQ(out.GetAsUTF8(), U8(doc.As<IDOMNodeEx>()->get_xml()));
  return out.GetAsUTF8();
}

std::string BuildThroughObjects() {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"po:order");
  root->SetAttribute(u"xmlns:po", u"urn:po");
  root->SetAttribute(u"id", u"7");
  root->AddElement(u"head");
  TVnDOMElement* first = root->AddElement(u"item");
  first->AddText(u"a < b!");
  root->AddText(u"t");
  TVnDOMElement* second = root->AddElement(u"item");
  second->AddCDATA(u"x]y");
  second->SetAttributeNS(u"urn:po", u"po:n", u"3");
  return U8(doc.GetXML());
}

TEST(PlatformDOM, EditsThroughInterfacesMatchEditsThroughObjects) {
  EXPECT_EQ(BuildThroughInterfaces(), BuildThroughObjects());
}

}  // namespace
