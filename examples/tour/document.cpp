// Tour: a document loaded from a file, edited and saved in another code page.
#include <cstdio>

#include "sections.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace tour {

void Document() {
  std::puts("== Document: load, edit, save ==");
  // The file declares ISO-8859-1; the loader reads the declaration and decodes accordingly.
  vn::TVnDOMDocument doc(vn::Utf8ToUnicode(DataDir() + "/menu-latin1.xml"), vn::fmOpenRead);
  vn::TVnDOMElement* root = doc.GetRootNode();
  std::printf("root <%s> with %d child elements\n", vn::UnicodeToUtf8(root->GetQualifiedName()).c_str(),
              root->ElementCount());

  // Edit: a new element with an attribute and text that needs escaping, and a comment.
  vn::TVnDOMElement* dish = root->AddElement(u"dish");
  dish->SetAttribute(u"price", u"4.50");
  dish->SetNodeValue(u"Cr\u00eape & jam");
  root->AddComment(u" added by the tour ");

  // Save: formatted UTF-8 with a declaration that says so.
  doc.SetEncoding(u"UTF-8");
  vn::TVnStringStream out(vn::cVnCodePageUTF8);
  doc.SaveToStream(out, vn::cVnCodePageUTF8, true, false);
  std::fwrite(out.GetBytesView().data(), 1, out.GetBytesView().size(), stdout);
  std::puts("");

  // A load keeps what the root holds as compact records and makes nodes as they are first read,
  // so a large document costs little until it is read. Reading makes nodes, so a program whose
  // threads read one document makes them all during the load instead.
  vn::TVnDOMDocument shared;
  shared.SetDeferChildren(false);
  shared.LoadXML(u"<menu><dish>tea</dish><dish>cake</dish></menu>");
  std::printf("made during the load: %d dishes, the last \"%s\"\n", shared.GetRootNode()->ElementCount(),
              vn::UnicodeToUtf8(shared.GetRootNode()->LastElement()->GetText()).c_str());

  // Failures say where: line and column of the offending construct.
  try {
    doc.LoadXML(u"<menu>\r\n  <dish price=>x</dish>\r\n</menu>");
  } catch (const vn::Exception& e) {
    std::printf("refused: %s\n", vn::UnicodeToUtf8(e.Message()).c_str());
  }
}

}  // namespace tour
