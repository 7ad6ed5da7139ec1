// Tour: the vendor-neutral DOM. Code written against IDOMNode and its relatives, with a vendor
// chosen by name, runs on the library's trees; both families of interfaces reach each other.
#include <cstdio>

#include "sections.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"

namespace tour {

void PlatformDom() {
  std::puts("== Vendor-neutral DOM: the library as a DOM vendor ==");
  vn::IPtr<vn::IDOMDocument> doc = vn::VnCreateDOM(u"Ondrel", u"urn:notes", u"n:notes");
  vn::IPtr<vn::IDOMElement> root = doc->get_documentElement();
  vn::IPtr<vn::IDOMElement> note = vn::VnAddElement(root, u"urn:notes", u"n:note");
  note->setAttribute(u"id", u"1");
  vn::VnAddText(note, u"Buy milk");
  vn::VnAddComment(root, u"more to come");
  std::printf("%s\n", vn::UnicodeToUtf8(vn::VnFormatXML(doc)).c_str());

  // Paths through IDOMNodeSelect, and the library's own interface of the same node.
  vn::IPtr<vn::IDOMNode> found = doc.As<vn::IDOMNodeSelect>()->selectNode(u"//n:note[@id=\"1\"]");
  vn::IPtr<vn::IVnDOMElement> own = found.As<vn::IVnDOMElement>();
  std::printf("found %s, text \"%s\"\n", vn::UnicodeToUtf8(found->get_nodeName()).c_str(),
              vn::UnicodeToUtf8(own->GetText()).c_str());
}

}  // namespace tour
