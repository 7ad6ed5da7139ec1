// "//*[@name]" searches test each element's attributes in place and remember the outcome per
// shared name record; they must select exactly what the general road selects ("[@a][@a]" runs
// the same test through the full filter machinery), whatever the tree's names look like.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vnxml/dom.h"
#include "vnxml/dom_path.h"

namespace vn {
namespace {

std::vector<TVnDOMNode*> Nodes(TVnDOMNode* AContext, std::u16string_view APath, TVnDOMSelectOptions AOptions = {}) {
  std::unique_ptr<TVnDOMNodeList> list = CreateNodeList(AContext, APath, AOptions);
  std::vector<TVnDOMNode*> out;
  for (Integer i = 0; i < list->Count(); ++i) out.push_back(list->GetItem(i));
  return out;
}

TEST(DomAttributeSearch, SelectsWhatTheGeneralRoadSelects) {
  TVnDOMDocument doc;
  doc.LoadFromAnsiXML(
      R"(<r id="0" xmlns:p="urn:p"><a id="1"><b ID="2"/><p:c id="3" p:id="4"/></a>)"
      R"(<a xmlns="urn:d"><b id="5"/>text</a><p:c p:id="6"><b id="7" xmlns:id="urn:x"/></p:c></r>)");
  struct Case {
    const char16_t* Fast;
    const char16_t* General;
    TVnDOMSelectOptions Options;
  };
  const Case cases[] = {
      {u"//*[@id]", u"//*[@id][@id]", {}},
      {u"//*[@id]", u"//*[@id][@id]", {soCaseSensitive}},
      {u"//*[@p:id]", u"//*[@p:id][@p:id]", {}},
      {u"//p:*[@id]", u"//p:*[@id][@id]", {}},
      {u"//*[@id]", u"//*[@id][@id]", {soLocalName}},
      {u"//*[@xmlns:id]", u"//*[@xmlns:id][@xmlns:id]", {}},  // declarations are no attributes here
      {u"//*[@xmlns:id]", u"//*[@xmlns:id][@xmlns:id]", {soLocalName}},
      {u"a | //*[@id]", u"a | //*[@id][@id]", {}},  // with a result found before it
      {u"//*[@id] | //b", u"//*[@id][@id] | //b", {}},
  };
  for (const Case& c : cases) {
    std::vector<TVnDOMNode*> general = Nodes(doc.GetRootNode(), c.General, c.Options);
    EXPECT_EQ(Nodes(doc.GetRootNode(), c.Fast, c.Options), general) << "case " << (&c - cases);
    EXPECT_EQ(Nodes(&doc, c.Fast, c.Options), Nodes(&doc, c.General, c.Options));
  }
  // From the document the root element is a candidate too, and a relative search starts below.
  EXPECT_EQ(Nodes(&doc, u"//*[@id]").size(), 6u);
  EXPECT_EQ(Nodes(doc.GetRootNode()->FirstElement(), u".//*[@id]").size(), 2u);
}

TEST(DomAttributeSearch, NamesWithoutASharedRecord) {
  // Nodes outside a document own their names; an unnamed attribute has no record at all.
  TVnDOMElement root;
  root.SetQualifiedName(u"r");
  for (const char16_t* name : {u"id", u"", u"x", u"id"}) {
    TVnDOMElement* e = root.AddElement(u"e");
    e->AddAttribute(name);
  }
  EXPECT_EQ(Nodes(&root, u"//*[@id]"), Nodes(&root, u"//*[@id][@id]"));
  EXPECT_EQ(Nodes(&root, u"//*[@id]").size(), 2u);
}

}  // namespace
}  // namespace vn
