// The DOM unit's two hooks for the common package: a document from text, a value by path.
#include "vnxml/common/xml_doc_hooks.h"
#include "vnxml/dom.h"

namespace vn::detail {

namespace {
IPtr<IInterface> CreateXMLDoc(std::u16string_view AText) {
  std::unique_ptr<TVnDOMDocument> doc = TVnDOMDocument::FromXML(AText);
  IPtr<IInterface> result = doc->As<IVnDOMDocument>();
  doc.release();  // its last interface frees it
  return result;
}

Variant GetXMLDocValue(const IPtr<IInterface>& ADoc, std::u16string_view APath) {
  IPtr<IVnDOMDocument> doc = ADoc.As<IVnDOMDocument>();
  if (!doc) return Variant();
  IPtr<IVnDOMNode> node = doc->SelectSingleNode(APath, {});
  return node ? Variant(node->GetNodeValue()) : Variant();
}
}  // namespace

void RegisterXMLDocHooks() {
  SetCreateXMLDoc(&CreateXMLDoc);
  SetGetXMLDocValue(&GetXMLDocValue);
}

}  // namespace vn::detail
