// dom_adapter.h: this library's trees as a vendor of the vendor-neutral DOM (unit uVnXMLDOM).
// Every node and list of the library answers the interfaces of dom_adapter_interfaces.h beside
// its own (IPtr<IVnDOMNode>::As<IDOMNode>() and back), each operation forwarding to the node
// object. Vendors register by name; GetDOM finds one and gives its IDOMImplementation. This
// library's vendor, "Ondrel", is registered before the first look-up and unregistered at exit.
// Nodes of another vendor, or objects that aren't nodes, given where a node of this library is
// needed fail the class cast (EInvalidCast). Refused operations raise EVnDomNotSupported.
// Each query for one of these interfaces gives a new small adapter over the node, so two
// interfaces of one node may differ as pointers: compare nodes by the object behind them
// (VnImplementor, or TVnDOMObjectImpl::Node), which is the same for all of them.
#pragma once

#include <memory>
#include <vector>

#include "vnxml/common/vn_object.h"
#include "vnxml/dom_adapter_interfaces.h"
#include "vnxml/dom_interfaces.h"

namespace vn {

class TStream;

inline constexpr char16_t cVnDomVendorName[] = u"Ondrel";
inline constexpr char16_t cVnDomNoAttributes[] = u"This node does not support attributes!";
inline constexpr char16_t cVnDomNoFragments[] = u"Document fragments are not supported by Ondrel XML DOM!";
inline constexpr char16_t cVnDomNoEntityRefs[] = u"Entity references are not supported by Ondrel XML DOM!";
inline constexpr char16_t cVnDomNotImplemented[] = u"Not implemented";
inline constexpr char16_t cVnDomNoDoctype[] = u"The doctype functionality is not implemented!";
inline constexpr char16_t cVnDomStreamIncomplete[] = u"Failed to get the contents of the stream.";
inline constexpr char16_t cVnDomNoSuchVendor[] = u"No DOM vendor of the name \"%s\" is registered.";

/// A vendor of the vendor-neutral DOM: a name and a factory of implementations.
class TDOMVendor : public TObject {
  VN_DECLARE_CLASS(TDOMVendor, TObject)
 public:
  virtual UnicodeString Description() const = 0;
  virtual IPtr<IDOMImplementation> DOMImplementation() const = 0;
};

/// The registered vendors, in the order they registered; the registry doesn't own them.
class TDOMVendorList {
 public:
  Integer Count() const noexcept { return static_cast<Integer>(FVendors.size()); }
  TDOMVendor* GetVendor(Integer AIndex) const;
  /// The vendor of that description (exact), or nil.
  TDOMVendor* Find(std::u16string_view AVendorName) const;
  /// Adds AVendor at the end unless it is there already (RegisterDOMVendor).
  void Add(TDOMVendor* AVendor);
  void Remove(TDOMVendor* AVendor);

 private:
  std::vector<TDOMVendor*> FVendors;
};

/// The registry; this library's vendor is in it from the first call on.
TDOMVendorList& DOMVendors();
/// Adds AVendor (kept, not owned) unless it is registered already.
void RegisterDOMVendor(TDOMVendor* AVendor);
void UnRegisterDOMVendor(TDOMVendor* AVendor);
/// The implementation of the vendor AVendorName; an empty name takes the first vendor. An
/// unknown name raises EVnDomNotFound.
IPtr<IDOMImplementation> GetDOM(std::u16string_view AVendorName = {});

/// This library's vendor: "Ondrel", a new TVnDOMImplementation at each request.
class TVnDOMVendor : public TDOMVendor {
  VN_DECLARE_CLASS(TVnDOMVendor, TDOMVendor)
 public:
  UnicodeString Description() const override { return cVnDomVendorName; }
  IPtr<IDOMImplementation> DOMImplementation() const override;
};

/// The implementation object of this library's vendor; stateless, counted like any TVnObject.
class TVnDOMImplementation : public TVnObject, public IDOMImplementation {
  VN_DECLARE_CLASS(TVnDOMImplementation, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IDOMImplementation)
 public:
  /// True for "xml" with "1.0" or "2.0", ignoring ASCII case.
  WordBool hasFeature(std::u16string_view feature, std::u16string_view version) override;
  /// Raises EVnDomNotSupported "Not implemented".
  IPtr<IDOMDocumentType> createDocumentType(std::u16string_view qualifiedName, std::u16string_view publicId,
                                            std::u16string_view systemId) override;
  /// A new document; a non-blank qualifiedName makes its root, declaring a non-blank
  /// namespaceURI for the root's prefix (or as the default). A doctype raises EVnDomNotSupported.
  IPtr<IDOMDocument> createDocument(std::u16string_view namespaceURI, std::u16string_view qualifiedName,
                                    const IPtr<IDOMDocumentType>& doctype) override;
};

// ---- free functions over the vendor-neutral interfaces (any vendor's nodes) ----

/// Creates the node in AElement's owner document, attaches it to AElement and returns it.
IPtr<IDOMElement> VnAddElement(const IPtr<IDOMElement>& AElement, std::u16string_view AName);
IPtr<IDOMElement> VnAddElement(const IPtr<IDOMElement>& AElement, std::u16string_view ANamespaceURI,
                               std::u16string_view AName);
IPtr<IDOMAttr> VnAddAttribute(const IPtr<IDOMElement>& AElement, std::u16string_view AName);
IPtr<IDOMAttr> VnAddAttribute(const IPtr<IDOMElement>& AElement, std::u16string_view ANamespaceURI,
                              std::u16string_view AName);
IPtr<IDOMText> VnAddText(const IPtr<IDOMElement>& AElement, std::u16string_view AValue);
IPtr<IDOMCDATASection> VnAddCDATA(const IPtr<IDOMElement>& AElement, std::u16string_view AValue);
IPtr<IDOMComment> VnAddComment(const IPtr<IDOMElement>& AElement, std::u16string_view AValue);

/// A document of this library loaded from AXML.
IPtr<IVnDOMDocument> VnCreateDOM(std::u16string_view AXML);
/// A document of the vendor AVendor whose root element is AName in ANamespaceURI.
IPtr<IDOMDocument> VnCreateDOM(std::u16string_view AVendor, std::u16string_view ANamespaceURI,
                               std::u16string_view AName);
/// The text of ADocument (any vendor's, read through IDOMNodeEx), loaded and written formatted.
UnicodeString VnFormatXML(const IPtr<IDOMDocument>& ADocument);

}  // namespace vn
