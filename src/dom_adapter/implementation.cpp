// TVnDOMImplementation and TVnDOMVendor: this library's implementation object and vendor.
#include "vnxml/common/sysutils.h"
#include "vnxml/dom.h"
#include "vnxml/dom_adapter.h"

namespace vn {

WordBool TVnDOMImplementation::hasFeature(std::u16string_view feature, std::u16string_view version) {
  bool yes = SameText(feature, u"xml") && (SameText(version, u"1.0") || SameText(version, u"2.0"));
  return yes ? WordBool(-1) : WordBool(0);
}

IPtr<IDOMDocumentType> TVnDOMImplementation::createDocumentType(std::u16string_view, std::u16string_view,
                                                                std::u16string_view) {
  throw EVnDomNotSupported(cVnDomNotImplemented);
}

IPtr<IDOMDocument> TVnDOMImplementation::createDocument(std::u16string_view namespaceURI,
                                                        std::u16string_view qualifiedName,
                                                        const IPtr<IDOMDocumentType>& doctype) {
  if (doctype) throw EVnDomNotSupported(cVnDomNoDoctype);
  // A failure while the root is made frees the new document on its way out.
  auto doc = std::make_unique<TVnDOMDocument>();
  if (!Trim(qualifiedName).empty()) {
    TVnDOMElement* root = doc->CreateRootNode(qualifiedName);
    if (!Trim(namespaceURI).empty()) {
      UnicodeString prefix = root->GetPrefix();
      root->SetAttribute(prefix.empty() ? UnicodeString(u"xmlns") : u"xmlns:" + prefix, namespaceURI);
    }
  }
  IPtr<IDOMDocument> result = doc->As<IDOMDocument>();
  doc.release();
  return result;
}

IPtr<IDOMImplementation> TVnDOMVendor::DOMImplementation() const {
  return IPtr<IDOMImplementation>(new TVnDOMImplementation());
}

}  // namespace vn
