// The free functions over the vendor-neutral interfaces: they use nothing but those interfaces,
// so they work on any vendor's nodes.
#include "vnxml/common/rtl_messages.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"

namespace vn {

namespace {
IPtr<IDOMDocument> OwnerOf(const IPtr<IDOMElement>& AElement) {
  if (!AElement) throw EInvalidCast(cRtlInvalidCast);
  IPtr<IDOMDocument> doc = AElement->get_ownerDocument();
  if (!doc) throw EInvalidCast(cRtlInvalidCast);
  return doc;
}
template <class I>
IPtr<I> Appended(const IPtr<IDOMElement>& AElement, const IPtr<I>& ANode) {
  AElement->appendChild(ANode);
  return ANode;
}
}  // namespace

IPtr<IDOMElement> VnAddElement(const IPtr<IDOMElement>& AElement, std::u16string_view AName) {
  return Appended(AElement, OwnerOf(AElement)->createElement(AName));
}
IPtr<IDOMElement> VnAddElement(const IPtr<IDOMElement>& AElement, std::u16string_view ANamespaceURI,
                               std::u16string_view AName) {
  return Appended(AElement, OwnerOf(AElement)->createElementNS(ANamespaceURI, AName));
}
IPtr<IDOMAttr> VnAddAttribute(const IPtr<IDOMElement>& AElement, std::u16string_view AName) {
  IPtr<IDOMAttr> attr = OwnerOf(AElement)->createAttribute(AName);
  AElement->setAttributeNode(attr);
  return attr;
}
IPtr<IDOMAttr> VnAddAttribute(const IPtr<IDOMElement>& AElement, std::u16string_view ANamespaceURI,
                              std::u16string_view AName) {
  IPtr<IDOMAttr> attr = OwnerOf(AElement)->createAttributeNS(ANamespaceURI, AName);
  AElement->setAttributeNode(attr);
  return attr;
}
IPtr<IDOMText> VnAddText(const IPtr<IDOMElement>& AElement, std::u16string_view AValue) {
  return Appended(AElement, OwnerOf(AElement)->createTextNode(AValue));
}
IPtr<IDOMCDATASection> VnAddCDATA(const IPtr<IDOMElement>& AElement, std::u16string_view AValue) {
  return Appended(AElement, OwnerOf(AElement)->createCDATASection(AValue));
}
IPtr<IDOMComment> VnAddComment(const IPtr<IDOMElement>& AElement, std::u16string_view AValue) {
  return Appended(AElement, OwnerOf(AElement)->createComment(AValue));
}

IPtr<IVnDOMDocument> VnCreateDOM(std::u16string_view AXML) {
  std::unique_ptr<TVnDOMDocument> doc = TVnDOMDocument::FromXML(AXML);
  IPtr<IVnDOMDocument> result = doc->As<IVnDOMDocument>();
  doc.release();
  return result;
}

IPtr<IDOMDocument> VnCreateDOM(std::u16string_view AVendor, std::u16string_view ANamespaceURI,
                               std::u16string_view AName) {
  IPtr<IDOMDocument> doc = GetDOM(AVendor)->createDocument(ANamespaceURI, AName, nullptr);
  if (!doc->get_documentElement()) doc->set_documentElement(doc->createElementNS(ANamespaceURI, AName));
  return doc;
}

UnicodeString VnFormatXML(const IPtr<IDOMDocument>& ADocument) {
  IPtr<IDOMNodeEx> node = ADocument.As<IDOMNodeEx>();
  if (!node) throw EInvalidCast(cRtlInvalidCast);
  return VnFormatXML(std::u16string_view(node->get_xml()));
}

}  // namespace vn
