// Tour: selecting nodes by path: names, attributes, filters with functions, alternatives, and
// soCreate building the elements a path names.
#include <cstdio>
#include <memory>

#include "sections.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"

namespace tour {

namespace {

void Show(vn::TVnDOMNode* AContext, std::u16string_view APath) {
  std::unique_ptr<vn::TVnDOMNodeList> nodes = vn::CreateNodeList(AContext, APath);
  std::printf("%-40s ->", vn::UnicodeToUtf8(APath).c_str());
  for (vn::TVnDOMNode* n : *nodes) std::printf(" [%s]", vn::UnicodeToUtf8(n->GetNodeValue()).c_str());
  std::printf("\n");
}

}  // namespace

void Paths() {
  std::puts("== Paths: select, filter, create ==");
  vn::TVnDOMDocument doc(vn::Utf8ToUnicode(DataDir() + "/menu-utf8.xml"), vn::fmOpenRead);

  // Names ignore ASCII case in a document with default settings; "@" reaches attributes.
  Show(&doc, u"/MENU/Dish");
  Show(&doc, u"/menu/dish/@price");
  // Filters: indexes count from 0, position() from 1; functions come from the library.
  Show(&doc, u"/menu/dish[1]");
  Show(&doc, u"/menu/dish[position() = 1]");
  Show(&doc, u"/menu/dish[contains(@price, \"12\")]");
  Show(&doc, u"//dish[not(starts-with(., \"Cr\"))]");
  // Alternatives run in order into one list, each node once.
  Show(&doc, u"/menu/@lang | //dish[0]");

  // soCreate adds what the path names and the tree lacks; a second call finds it.
  vn::TVnDOMElement* root = doc.GetRootNode();
  vn::TVnDOMNode* made = vn::SelectSingleNode(root, u"drinks/drink", {vn::soCreate});
  made->SetNodeValue(u"Cidre");
  std::printf("created: %s\n", vn::UnicodeToUtf8(vn::SelectSingleNode(root, u"drinks")->GetXML()).c_str());

  // A path that cannot be taken says why.
  try {
    vn::SelectSingleNode(root, u"dish/", {});
  } catch (const vn::Exception& e) {
    std::printf("error: %s\n", e.what());
  }
}

}  // namespace tour
