// dom_adapter_interfaces.h: the vendor-neutral DOM interfaces (unit uVnXMLDOM), through which
// code written for any registered DOM vendor runs on this library's trees (dom_adapter.h).
// The identifiers and the order of the slots are the binary contract shared by all vendors.
// Strings are UTF-16; Boolean results are WordBool, -1 for true and 0 for false. A failure
// inside an operation reaches the caller as the exception that was raised there, with its class
// and text unchanged. Nodes come back as IPtr (a new count): a node that only such a reference
// holds lives as long as it; one in a tree stays its tree's.
#pragma once

#include <functional>

#include "vnxml/common/interface.h"
#include "vnxml/common/types.h"

namespace vn {

class TObject;
class TStream;

struct IDOMImplementation;
struct IDOMNode;
struct IDOMNodeList;
struct IDOMNamedNodeMap;
struct IDOMAttr;
struct IDOMElement;
struct IDOMText;
struct IDOMComment;
struct IDOMCDATASection;
struct IDOMDocumentType;
struct IDOMProcessingInstruction;
struct IDOMDocument;
struct IDOMDocumentFragment;
struct IDOMEntityReference;

/// The node type numbers (1 element ... 12 notation).
using DOMNodeType = Word;
/// Told of the load state of a document; stored by set_OnAsyncLoad, never fired (loads are synchronous).
using TAsyncEventHandler = std::function<void(TObject* ASender, Integer AAsyncLoadState)>;

/// A sequential byte stream of the component world, as IDOMPersist reads and writes it.
struct IStream : IInterface {
  static constexpr TGUID IID = TGUID::Parse("0000000c-0000-0000-C000-000000000046");
  /// Reads up to ACount bytes; the number read goes to *ARead when it isn't nil.
  virtual HRESULT Read(void* ABuffer, uint32_t ACount, uint32_t* ARead) = 0;
  virtual HRESULT Write(const void* ABuffer, uint32_t ACount, uint32_t* AWritten) = 0;
  /// AOrigin: 0 from the start, 1 from the current position, 2 from the end.
  virtual HRESULT Seek(Int64 AMove, uint32_t AOrigin, UInt64* ANewPosition) = 0;

 protected:
  ~IStream() = default;
};

struct IDOMImplementation : IInterface {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e0-096e-11d4-83da-00c04f60b2dd");
  virtual WordBool hasFeature(std::u16string_view feature, std::u16string_view version) = 0;
  virtual IPtr<IDOMDocumentType> createDocumentType(std::u16string_view qualifiedName,
                                                    std::u16string_view publicId,
                                                    std::u16string_view systemId) = 0;
  virtual IPtr<IDOMDocument> createDocument(std::u16string_view namespaceURI,
                                            std::u16string_view qualifiedName,
                                            const IPtr<IDOMDocumentType>& doctype) = 0;

 protected:
  ~IDOMImplementation() = default;
};

struct IDOMNode : IInterface {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e1-096e-11d4-83da-00c04f60b2dd");
  virtual UnicodeString get_nodeName() = 0;
  virtual UnicodeString get_nodeValue() = 0;
  virtual void set_nodeValue(std::u16string_view value) = 0;
  virtual DOMNodeType get_nodeType() = 0;
  virtual IPtr<IDOMNode> get_parentNode() = 0;
  virtual IPtr<IDOMNodeList> get_childNodes() = 0;
  /// An element's attributes stand first among its children. A node without children has no
  /// first or last child: both raise EVnDomNotFound (test hasChildNodes first).
  virtual IPtr<IDOMNode> get_firstChild() = 0;
  virtual IPtr<IDOMNode> get_lastChild() = 0;
  virtual IPtr<IDOMNode> get_previousSibling() = 0;
  virtual IPtr<IDOMNode> get_nextSibling() = 0;
  virtual IPtr<IDOMNamedNodeMap> get_attributes() = 0;
  virtual IPtr<IDOMDocument> get_ownerDocument() = 0;
  virtual UnicodeString get_namespaceURI() = 0;
  virtual UnicodeString get_prefix() = 0;
  virtual UnicodeString get_localName() = 0;
  virtual IPtr<IDOMNode> insertBefore(const IPtr<IDOMNode>& newChild, const IPtr<IDOMNode>& refChild) = 0;
  /// A refused newChild leaves oldChild in its place. A node that is in a tree must be removed
  /// before it is added elsewhere (EVnDomHierarchyRequest).
  virtual IPtr<IDOMNode> replaceChild(const IPtr<IDOMNode>& newChild, const IPtr<IDOMNode>& oldChild) = 0;
  virtual IPtr<IDOMNode> removeChild(const IPtr<IDOMNode>& childNode) = 0;
  virtual IPtr<IDOMNode> appendChild(const IPtr<IDOMNode>& newChild) = 0;
  virtual WordBool hasChildNodes() = 0;
  virtual IPtr<IDOMNode> cloneNode(WordBool deep) = 0;
  virtual void normalize() = 0;
  virtual WordBool supports(std::u16string_view feature, std::u16string_view version) = 0;

 protected:
  ~IDOMNode() = default;
};

struct IDOMNodeEx : IDOMNode {
  static constexpr TGUID IID = TGUID::Parse("b06bffdd-337b-48da-980b-6f7aa8ade85c");
  virtual UnicodeString get_text() = 0;
  virtual UnicodeString get_xml() = 0;
  virtual void set_text(std::u16string_view value) = 0;
  virtual void transformNode(const IPtr<IDOMNode>& stylesheet, WideString& output) = 0;
  virtual void transformNode(const IPtr<IDOMNode>& stylesheet, const IPtr<IDOMDocument>& output) = 0;

 protected:
  ~IDOMNodeEx() = default;
};

struct IDOMNodeSelect : IInterface {
  static constexpr TGUID IID = TGUID::Parse("2a3602e0-2b39-11d4-83da-00c04f60b2dd");
  /// A path that finds nothing raises EVnDomNotFound.
  virtual IPtr<IDOMNode> selectNode(std::u16string_view nodePath) = 0;
  /// A path that finds nothing gives an empty list.
  virtual IPtr<IDOMNodeList> selectNodes(std::u16string_view nodePath) = 0;

 protected:
  ~IDOMNodeSelect() = default;
};

struct IDOMPersist : IInterface {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0f1-096e-11d4-83da-00c04f60b2dd");
  virtual UnicodeString get_xml() = 0;
  virtual Integer asyncLoadState() = 0;
  /// On a document: text beginning with "<" is XML, anything else the name of a file, and a
  /// file that doesn't exist loads nothing and gives false; a file adds to what the document
  /// holds, as file loads do throughout the library. On other nodes: the inner XML.
  virtual WordBool load(std::u16string_view source) = 0;
  virtual WordBool loadFromStream(TStream& stream) = 0;
  virtual WordBool loadxml(std::u16string_view value) = 0;
  /// Writes the node's text to the file named destination, in the code page saveToStream uses.
  virtual void save(std::u16string_view destination) = 0;
  virtual void saveToStream(TStream& stream) = 0;
  virtual void set_OnAsyncLoad(const IPtr<IInterface>& sender, TAsyncEventHandler eventHandler) = 0;
  virtual WordBool loadFromStream(const IPtr<IStream>& stream) = 0;
  virtual void saveToStream(const IPtr<IStream>& stream) = 0;

 protected:
  ~IDOMPersist() = default;
};

struct IDOMNodeList : IInterface {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e2-096e-11d4-83da-00c04f60b2dd");
  virtual IPtr<IDOMNode> get_item(Integer index) = 0;
  virtual Integer get_length() = 0;

 protected:
  ~IDOMNodeList() = default;
};

struct IDOMNamedNodeMap : IInterface {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e3-096e-11d4-83da-00c04f60b2dd");
  virtual IPtr<IDOMNode> get_item(Integer index) = 0;
  virtual Integer get_length() = 0;
  /// An absent name raises EVnDomNotFound.
  virtual IPtr<IDOMNode> getNamedItem(std::u16string_view name) = 0;
  /// Adds arg at the end; an entry of the same name stays.
  virtual IPtr<IDOMNode> setNamedItem(const IPtr<IDOMNode>& arg) = 0;
  virtual IPtr<IDOMNode> removeNamedItem(std::u16string_view name) = 0;
  /// Nil when absent.
  virtual IPtr<IDOMNode> getNamedItemNS(std::u16string_view namespaceURI, std::u16string_view localName) = 0;
  virtual IPtr<IDOMNode> setNamedItemNS(const IPtr<IDOMNode>& arg) = 0;
  virtual IPtr<IDOMNode> removeNamedItemNS(std::u16string_view namespaceURI,
                                           std::u16string_view localName) = 0;

 protected:
  ~IDOMNamedNodeMap() = default;
};

/// Offsets count from 1, as in the library's own character data operations.
struct IDOMCharacterData : IDOMNode {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e4-096e-11d4-83da-00c04f60b2dd");
  virtual UnicodeString get_data() = 0;
  virtual void set_data(std::u16string_view data) = 0;
  virtual Integer get_length() = 0;
  virtual UnicodeString substringData(Integer offset, Integer count) = 0;
  virtual void appendData(std::u16string_view data) = 0;
  virtual void insertData(Integer offset, std::u16string_view data) = 0;
  virtual void deleteData(Integer offset, Integer count) = 0;
  virtual void replaceData(Integer offset, Integer count, std::u16string_view data) = 0;

 protected:
  ~IDOMCharacterData() = default;
};

struct IDOMAttr : IDOMNode {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e5-096e-11d4-83da-00c04f60b2dd");
  virtual UnicodeString get_name() = 0;
  virtual WordBool get_specified() = 0;
  virtual UnicodeString get_value() = 0;
  virtual void set_value(std::u16string_view value) = 0;
  virtual IPtr<IDOMElement> get_ownerElement() = 0;

 protected:
  ~IDOMAttr() = default;
};

struct IDOMElement : IDOMNode {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e6-096e-11d4-83da-00c04f60b2dd");
  virtual UnicodeString get_tagName() = 0;
  virtual UnicodeString getAttribute(std::u16string_view name) = 0;
  virtual void setAttribute(std::u16string_view name, std::u16string_view value) = 0;
  virtual void removeAttribute(std::u16string_view name) = 0;
  virtual IPtr<IDOMAttr> getAttributeNode(std::u16string_view name) = 0;
  /// Adds newAttr at the end; an attribute of the same name stays.
  virtual IPtr<IDOMAttr> setAttributeNode(const IPtr<IDOMAttr>& newAttr) = 0;
  virtual IPtr<IDOMAttr> removeAttributeNode(const IPtr<IDOMAttr>& oldAttr) = 0;
  virtual IPtr<IDOMNodeList> getElementsByTagName(std::u16string_view name) = 0;
  virtual UnicodeString getAttributeNS(std::u16string_view namespaceURI, std::u16string_view localName) = 0;
  virtual void setAttributeNS(std::u16string_view namespaceURI, std::u16string_view qualifiedName,
                              std::u16string_view value) = 0;
  virtual void removeAttributeNS(std::u16string_view namespaceURI, std::u16string_view localName) = 0;
  virtual IPtr<IDOMAttr> getAttributeNodeNS(std::u16string_view namespaceURI,
                                            std::u16string_view localName) = 0;
  virtual IPtr<IDOMAttr> setAttributeNodeNS(const IPtr<IDOMAttr>& newAttr) = 0;
  virtual IPtr<IDOMNodeList> getElementsByTagNameNS(std::u16string_view namespaceURI,
                                                    std::u16string_view localName) = 0;
  virtual WordBool hasAttribute(std::u16string_view name) = 0;
  virtual WordBool hasAttributeNS(std::u16string_view namespaceURI, std::u16string_view localName) = 0;

 protected:
  ~IDOMElement() = default;
};

struct IDOMText : IDOMCharacterData {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e7-096e-11d4-83da-00c04f60b2dd");
  virtual IPtr<IDOMText> splitText(Integer offset) = 0;

 protected:
  ~IDOMText() = default;
};

struct IDOMComment : IDOMCharacterData {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e8-096e-11d4-83da-00c04f60b2dd");

 protected:
  ~IDOMComment() = default;
};

struct IDOMCDATASection : IDOMText {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0e9-096e-11d4-83da-00c04f60b2dd");

 protected:
  ~IDOMCDATASection() = default;
};

struct IDOMDocumentType : IDOMNode {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0ea-096e-11d4-83da-00c04f60b2dd");
  virtual UnicodeString get_name() = 0;
  virtual IPtr<IDOMNamedNodeMap> get_entities() = 0;
  virtual IPtr<IDOMNamedNodeMap> get_notations() = 0;
  virtual UnicodeString get_publicId() = 0;
  virtual UnicodeString get_systemId() = 0;
  virtual UnicodeString get_internalSubset() = 0;

 protected:
  ~IDOMDocumentType() = default;
};

struct IDOMProcessingInstruction : IDOMNode {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0ee-096e-11d4-83da-00c04f60b2dd");
  virtual UnicodeString get_target() = 0;
  virtual UnicodeString get_data() = 0;
  virtual void set_data(std::u16string_view value) = 0;

 protected:
  ~IDOMProcessingInstruction() = default;
};

/// Fragments and entity references are refused by this library's vendor; the types exist for
/// the operations that name them.
struct IDOMDocumentFragment : IDOMNode {
 protected:
  ~IDOMDocumentFragment() = default;
};
struct IDOMEntityReference : IDOMNode {
 protected:
  ~IDOMEntityReference() = default;
};

struct IDOMDocument : IDOMNode {
  static constexpr TGUID IID = TGUID::Parse("2bf4c0f0-096e-11d4-83da-00c04f60b2dd");
  virtual IPtr<IDOMDocumentType> get_doctype() = 0;
  virtual IPtr<IDOMImplementation> get_domImplementation() = 0;
  virtual IPtr<IDOMElement> get_documentElement() = 0;
  /// The old root goes first; an element that isn't this library's then fails the class cast.
  virtual void set_documentElement(const IPtr<IDOMElement>& element) = 0;
  virtual IPtr<IDOMElement> createElement(std::u16string_view tagName) = 0;
  virtual IPtr<IDOMDocumentFragment> createDocumentFragment() = 0;
  virtual IPtr<IDOMText> createTextNode(std::u16string_view data) = 0;
  virtual IPtr<IDOMComment> createComment(std::u16string_view data) = 0;
  virtual IPtr<IDOMCDATASection> createCDATASection(std::u16string_view data) = 0;
  virtual IPtr<IDOMProcessingInstruction> createProcessingInstruction(std::u16string_view target,
                                                                      std::u16string_view data) = 0;
  virtual IPtr<IDOMAttr> createAttribute(std::u16string_view name) = 0;
  virtual IPtr<IDOMEntityReference> createEntityReference(std::u16string_view name) = 0;
  virtual IPtr<IDOMNodeList> getElementsByTagName(std::u16string_view tagName) = 0;
  /// A detached copy that belongs to no document until it is added.
  virtual IPtr<IDOMNode> importNode(const IPtr<IDOMNode>& importedNode, WordBool deep) = 0;
  virtual IPtr<IDOMElement> createElementNS(std::u16string_view namespaceURI,
                                            std::u16string_view qualifiedName) = 0;
  virtual IPtr<IDOMAttr> createAttributeNS(std::u16string_view namespaceURI,
                                           std::u16string_view qualifiedName) = 0;
  virtual IPtr<IDOMNodeList> getElementsByTagNameNS(std::u16string_view namespaceURI,
                                                    std::u16string_view localName) = 0;
  virtual IPtr<IDOMElement> getElementById(std::u16string_view elementId) = 0;

 protected:
  ~IDOMDocument() = default;
};

}  // namespace vn
