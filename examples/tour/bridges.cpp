// Tour, bridges: JSON read as XML events by the SAX component, loaded into the XML tree and
// queried by path there, and an XML document written out as JSON.
#include <cstdio>
#include <string>

#include "sections.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"
#include "vnxml/sax.h"

namespace tour {

void Bridges() {
  std::printf("== Bridges between XML and JSON ==\n");
  const std::u16string order = u"{\"id\": 7, \"items\": [{\"sku\": \"A-1\", \"qty\": 2}, {\"sku\": \"B-2\", \"qty\": 1}],"
                               u" \"note\": null}";

  // One component reads XML and JSON: the first significant character picks the reader.
  vn::TVnSAXParser parser;
  std::string outline;
  parser.OnStartElement = [&](vn::TObject*, std::u16string_view, std::u16string_view, std::u16string_view AQName,
                              vn::IVnSAXAttributes*) { outline += "<" + vn::UnicodeToUtf8(AQName) + ">"; };
  parser.Parse(std::u16string_view(order));
  std::printf("JSON as XML events: %s\n", outline.c_str());

  // The DOM loads the same text as a tree; paths and typed reads work as on any document.
  vn::TVnDOMDocument doc;
  doc.LoadXML(order);
  std::printf("loaded: %s\n", vn::UnicodeToUtf8(doc.GetRootNode()->GetXML()).c_str());
  auto skus = doc.GetRootNode()->CreateNodeList(u"itemsArray/items/sku");
  for (vn::Integer i = 0; i < skus->Count(); ++i)
    std::printf("  sku %d: %s\n", i, vn::UnicodeToUtf8(skus->GetItem(i)->GetNodeValue()).c_str());

  // And back: an XML document written as JSON, typed by xsi:type where it says so.
  auto shop = vn::TVnDOMDocument::FromXML(
      u"<shop xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\""
      u" name=\"Corner\"><item><title>Tea</title><price xsi:type=\"xsd:double\">3.5</price></item>"
      u"<item><title>Coffee</title><price xsi:type=\"xsd:double\">2</price></item></shop>");
  std::printf("as JSON: %s\n", vn::UnicodeToUtf8(vn::GetJSON(*shop->GetRootNode())).c_str());
  std::printf("formatted:\n%s\n", vn::UnicodeToUtf8(vn::GetJSON(*shop->GetRootNode(), true)).c_str());

  // A load keeps the root's content as what it read until somebody looks; written as JSON, a
  // document without typed values is read from there, and its tree is never built.
  vn::TVnDOMDocument catalog;
  catalog.LoadXML(u"<catalog><book id=\"1\">Dune</book><book id=\"2\">Emma</book><shelf>A</shelf></catalog>");
  const vn::UnicodeString json = vn::GetJSON(*catalog.GetRootNode());
  std::printf("catalog as JSON: %s (tree built: %s)\n", vn::UnicodeToUtf8(json).c_str(),
              catalog.GetRootNode()->IsDeferred() ? "no" : "yes");
}

}  // namespace tour
