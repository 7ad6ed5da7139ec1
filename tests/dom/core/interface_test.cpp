// The interface forms: a tree built and read through IPtr only, casts between the node
// interfaces, and Transform through an XSLT processor.
#include <gtest/gtest.h>

#include <tuple>

#include "support/files.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

TEST(DomInterfaces, TreeBuiltAndReadThroughInterfaces) {
  // An interface taken on the document makes it the interfaces' own: it goes with the last one.
  IPtr<IVnDOMDocument> doc = (new TVnDOMDocument())->As<IVnDOMDocument>();
  IPtr<IVnDOMElement> root = doc->CreateRootNode(u"root");
  IPtr<IVnDOMElement> item = root->AddElement(u"item");
  item->SetAttrib(u"id", u"7");
  item->AddText(u"a<b");
  item->AddComment(u"c");
  IPtr<IVnDOMCDATA> cdata = item->AddCDATA(u"]]");
  root->InsertElement(u"first", rdpFirst, nullptr);

  EXPECT_EQ((std::tuple{root->ElementCount(), root->FirstElement()->GetQualifiedName(),
                        item->PreviousElement()->GetQualifiedName(), item->GetAttrib(u"id"), item->GetNodeValue(),
                        root->Document()->GetRootNode()->GetQualifiedName()}),
            std::tuple(2, u"first", u"first", u"7", u"a<b]]", u"root"));
  EXPECT_EQ(item->GetXML() + u" " + item->NodePath(false, u"id"),
            u"<item id=\"7\">a&lt;b<!--c--><![CDATA[]]]]></item> /root/item[@id=\"7\"]");

  // Lists: counts, positions and neighbours; the attribute stands among the children.
  IPtr<IVnDOMNodeList> children = item->GetChildNodes();
  ASSERT_EQ(children->Count(), 4);
  EXPECT_EQ((std::tuple{children->First()->GetNodeType(), children->Last()->GetNodeType(),
                        children->Next(children->First())->GetNodeType()}),
            std::tuple(ntAttribute, ntCDATA, ntText));
  EXPECT_TRUE(children->ContainsNode(cdata.As<IVnDOMNode>()));
  EXPECT_EQ(item->GetAttributes()->GetAttribute(0)->GetNodeValue(), u"7");

  // Casts between the interfaces of one node, and the serializable base.
  IPtr<IVnDOMNode> asNode = children->GetItem(1);
  IPtr<IVnDOMText> text = asNode.As<IVnDOMText>();
  ASSERT_TRUE(text);
  EXPECT_EQ((std::tuple{bool(asNode.As<IVnDOMCharacterData>()), bool(asNode.As<IVnDOMElement>()),
                        bool(item->FirstAttribute()->NextAttribute())}),
            std::tuple(true, false, false));
  IPtr<IVnSerializable> ser = item.As<IVnSerializable>();
  ASSERT_TRUE(ser);
  EXPECT_TRUE(ser->CanSerialize(dsfXML));
  EXPECT_EQ(ser->Serialize(dsfXML, nullptr), "<item id=\"7\">a&lt;b<!--c--><![CDATA[]]]]></item>");

  // A clone made through the interface is the interface's; removing through it frees nothing held.
  IPtr<IVnDOMNode> clone;
  item->CloneNode(true, clone);
  EXPECT_EQ(clone->GetXML(), item->GetXML());
  root->RemoveElement(item);
  EXPECT_EQ(root->ElementCount(), 1);
  root->AppendChild(clone);
  EXPECT_EQ(root->LastElement()->GetAttrib(u"id"), u"7");
}

TEST(DomInterfaces, ReleasingEveryInterfaceLeavesNoHalfBehind) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"root");
  TVnDOMElement* item = root->AddElement(u"item");
  {
    IPtr<IVnDOMElementList> list = root->As<IVnDOMElement>()->GetElements();
    IPtr<IVnDOMNode> first = list->GetItem(0);
    EXPECT_NE(item->GetDOMImpl(), nullptr);
  }
  for (TVnDOMNode* n : std::initializer_list<TVnDOMNode*>{item, root, &doc})
    EXPECT_EQ(n->GetDOMImpl(), nullptr) << UnicodeToUtf8(n->GetQualifiedName());
}

TEST(DomInterfaces, NamedListsThroughInterfaces) {
  IPtr<IVnDOMDocument> doc = (new TVnDOMDocument())->As<IVnDOMDocument>();
  IPtr<IVnDOMElement> root = doc->CreateRootNode(u"urn:r", u"r:root");
  IPtr<IVnDOMElement> b = root->AddElement(u"b");
  root->AddElement(u"c");
  IPtr<IVnDOMElementList> elements = root->GetElements();

  // Inserting by reference, then reading by number and by name through a Variant.
  IPtr<IVnDOMNode> loose = (new TVnDOMElement())->As<IVnDOMNode>();
  loose->SetQualifiedName(u"a");
  root->InsertBefore(loose, b.As<IVnDOMNode>());
  // Then Find.
  EXPECT_EQ((std::tuple{elements->Count(), elements->GetElement(Variant(0))->GetQualifiedName(),
                        elements->GetElement(Variant(UnicodeString(u"c")))->GetQualifiedName(),
                        elements->Find(u"C", {soCaseInsensitive})->GetQualifiedName()}),
            std::tuple(3, u"a", u"c", u"c"));

  // Delete by name takes the child out of the tree; held by b, it lives on.
  IPtr<IVnDOMNode> removed = elements->Delete(u"b", TVnDOMSelectOptions{});
  ASSERT_TRUE(removed);
  EXPECT_EQ((std::tuple{bool(removed->ParentNode()), root->GetChildNodes()->ContainsNode(removed)}),
            std::tuple(false, false));

  IPtr<IVnDOMAttrList> attrs = root->GetAttributes();
  EXPECT_EQ(attrs->FindNamespace(u"urn:r")->GetQualifiedName(), u"xmlns:r");
  EXPECT_FALSE(attrs->FindNamespace(u"urn:other"));
}

constexpr char16_t kSheet[] =
    u"<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    u"<xsl:output method=\"xml\" omit-xml-declaration=\"yes\"/>"
    u"<xsl:template match=\"/\"><list><xsl:for-each select=\"//b\">"
    u"<i><xsl:value-of select=\"@n\"/>=<xsl:value-of select=\".\"/></i>"
    u"</xsl:for-each></list></xsl:template></xsl:stylesheet>";

std::unique_ptr<TVnDOMDocument> Source() {
  auto doc = std::make_unique<TVnDOMDocument>();
  TVnDOMElement* a = doc->CreateRootNode(u"a");
  TVnDOMElement* b1 = a->AddElement(u"b");
  b1->SetAttribute(u"n", u"1");
  b1->AddText(u"x & y");
  a->AddElement(u"c")->AddElement(u"b")->AddText(u"z");
  return doc;
}

TEST(DomTransform, StyleSheetFromANodeAFileAndThroughTheInterface) {
  auto source = Source();
  TVnDOMDocument sheet;
  sheet.LoadXML(kSheet);
  UnicodeString result = source->Transform(sheet.GetRootNode());
  EXPECT_NE(result.find(u"<list><i>1=x &amp; y</i><i>=z</i></list>"), UnicodeString::npos) << UnicodeToUtf8(result);

  // A sub-tree is transformed on its own: "/" is the node itself.
  UnicodeString part = source->GetRootNode()->FirstElement()->Transform(sheet.GetRootNode());
  EXPECT_NE(part.find(u"<list><i>1=x &amp; y</i></list>"), UnicodeString::npos) << UnicodeToUtf8(part);

  const test::TempFile file("transform_sheet.xsl", UnicodeToUtf8(kSheet));
  EXPECT_EQ(source->Transform(file.Name()), result);
  std::unique_ptr<TVnDOMDocument> out = source->TransformToDocument(file.Name());
  ASSERT_TRUE(out->GetRootNode());
  EXPECT_EQ(out->GetRootNode()->ElementCount(), 2);

  IPtr<IVnDOMNode> src = source.release()->As<IVnDOMNode>();  // the interface owns it from here
  IPtr<IVnDOMNode> xsl = TVnDOMDocument::FromXML(kSheet).release()->As<IVnDOMNode>();
  IPtr<IVnDOMDocument> asDoc = src->Transform(xsl);
  EXPECT_EQ(asDoc->GetRootNode()->LastElement()->GetText(), u"=z");

  // A sheet that is no style sheet, or none at all, raises.
  TVnDOMDocument notXslt;
  notXslt.CreateRootNode(u"plain");
  for (TVnDOMNode* bad : {static_cast<TVnDOMNode*>(notXslt.GetRootNode()), static_cast<TVnDOMNode*>(nullptr)})
    EXPECT_THROW(Source()->Transform(bad), EVnDomException);
}

}  // namespace
}  // namespace vn
