// node_adapter.h: the vendor-neutral face of a node: IDOMNode, IDOMNodeEx, IDOMNodeSelect and
// IDOMPersist, which every kind of node offers, plus the interfaces Extra of its own kind.
// Each operation is a forwarding line onto the node object.
#pragma once

#include "dom_adapter/adapter_support.h"
#include "dom_adapter/persist.h"
#include "vnxml/dom_adapter.h"
#include "vnxml/dom_messages.h"

namespace vn::detail {

inline WordBool WB(bool AValue) { return AValue ? WordBool(-1) : WordBool(0); }

template <class... Extra>
class NodeAdapter : public DOMAdapter,
                    public IDOMNodeEx,
                    public IDOMNodeSelect,
                    public IDOMPersist,
                    public Extra... {
 public:
  explicit NodeAdapter(TVnDOMNode* ANode) : DOMAdapter(ANode->As<IVnDOMNode>()) {}

  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override { return Query(AIID, AObj); }
  int32_t _AddRef() override { return AddRef(); }
  int32_t _Release() override { return Release(); }
  void* Own(const TGUID& AIID) override {
    if (AIID == IDOMNode::IID || AIID == IInterface::IID) return AsNode();
    if (AIID == IDOMNodeEx::IID) return static_cast<IDOMNodeEx*>(this);
    if (AIID == IDOMNodeSelect::IID) return static_cast<IDOMNodeSelect*>(this);
    if (AIID == IDOMPersist::IID) return static_cast<IDOMPersist*>(this);
    return nullptr;
  }

  // ---- IDOMNode ----
  UnicodeString get_nodeName() override { return Self()->GetQualifiedName(); }
  UnicodeString get_nodeValue() override { return Self()->GetNodeValue(); }
  void set_nodeValue(std::u16string_view value) override { Self()->SetNodeValue(value); }
  DOMNodeType get_nodeType() override { return Self()->GetNodeType(); }
  IPtr<IDOMNode> get_parentNode() override { return Wrap<IDOMNode>(Self()->ParentNode()); }
  IPtr<IDOMNodeList> get_childNodes() override { return Wrap<IDOMNodeList>(Self()->GetChildNodes()); }
  /// On a node without children these raise EVnDomNotFound, as First and Last of the list do.
  IPtr<IDOMNode> get_firstChild() override { return Wrap<IDOMNode>(Self()->GetChildNodes()->First()); }
  IPtr<IDOMNode> get_lastChild() override { return Wrap<IDOMNode>(Self()->GetChildNodes()->Last()); }
  IPtr<IDOMNode> get_previousSibling() override { return Wrap<IDOMNode>(Self()->PreviousSibling()); }
  IPtr<IDOMNode> get_nextSibling() override { return Wrap<IDOMNode>(Self()->NextSibling()); }
  IPtr<IDOMNamedNodeMap> get_attributes() override {
    auto* element = CastObject<TVnDOMElement>(Self());
    if (!element) throw EVnDomNotFound(cVnDomNoAttributes);
    return Wrap<IDOMNamedNodeMap>(element->GetAttributes());
  }
  IPtr<IDOMDocument> get_ownerDocument() override { return Wrap<IDOMDocument>(Self()->Document()); }
  UnicodeString get_namespaceURI() override { return Self()->GetNamespaceURI(); }
  UnicodeString get_prefix() override { return Self()->GetPrefix(); }
  UnicodeString get_localName() override { return Self()->GetLocalName(); }
  IPtr<IDOMNode> insertBefore(const IPtr<IDOMNode>& newChild, const IPtr<IDOMNode>& refChild) override {
    return Wrap<IDOMNode>(Self()->InsertBefore(NodeArg(newChild.Get()), NodeArg(refChild.Get())));
  }
  IPtr<IDOMNode> replaceChild(const IPtr<IDOMNode>& newChild, const IPtr<IDOMNode>& oldChild) override {
    ReplaceChild(Self(), NodeArg(newChild.Get()), NodeArg(oldChild.Get()));
    return newChild;
  }
  IPtr<IDOMNode> removeChild(const IPtr<IDOMNode>& childNode) override {
    Self()->RemoveChild(NodeArg(childNode.Get()));
    return childNode;
  }
  IPtr<IDOMNode> appendChild(const IPtr<IDOMNode>& newChild) override {
    return Wrap<IDOMNode>(Self()->AppendChild(NodeArg(newChild.Get())));
  }
  WordBool hasChildNodes() override { return WB(Self()->HasChilds()); }
  IPtr<IDOMNode> cloneNode(WordBool deep) override { return Adopt<IDOMNode>(Self()->CloneNode(deep != 0)); }
  void normalize() override { Self()->NormalizeTextNodes(); }
  WordBool supports(std::u16string_view, std::u16string_view) override { return WB(false); }

  // ---- IDOMNodeEx ----
  UnicodeString get_text() override { return Self()->GetText(); }
  UnicodeString get_xml() override { return Self()->GetXML(); }
  void set_text(std::u16string_view value) override { Self()->SetNodeValue(value); }
  void transformNode(const IPtr<IDOMNode>& stylesheet, WideString& output) override {
    output = Self()->Transform(NodeArg(stylesheet.Get()));
  }
  void transformNode(const IPtr<IDOMNode>& stylesheet, const IPtr<IDOMDocument>& output) override {
    UnicodeString text = Self()->Transform(NodeArg(stylesheet.Get()));
    IPtr<IDOMPersist> persist = output.template As<IDOMPersist>();
    if (!persist) throw EInvalidCast(cRtlInvalidCast);
    persist->loadxml(text);
  }

  // ---- IDOMNodeSelect ----
  IPtr<IDOMNode> selectNode(std::u16string_view nodePath) override {
    return Wrap<IDOMNode>(Self()->SelectSingleNode(nodePath, {soRaise}));
  }
  IPtr<IDOMNodeList> selectNodes(std::u16string_view nodePath) override {
    return Adopt<IDOMNodeList>(Self()->CreateNodeList(nodePath, {}));
  }

  // ---- IDOMPersist ----
  Integer asyncLoadState() override { return AsyncLoadState(Self()); }
  WordBool load(std::u16string_view source) override { return WB(Load(Self(), source)); }
  WordBool loadFromStream(TStream& stream) override {
    Self()->LoadFromStream(stream, Word{65001});
    return WB(true);
  }
  WordBool loadxml(std::u16string_view value) override { return load(value); }
  void save(std::u16string_view destination) override { SaveToFile(Self(), destination); }
  void saveToStream(TStream& stream) override { SaveToStream(Self(), stream); }
  void set_OnAsyncLoad(const IPtr<IInterface>&, TAsyncEventHandler eventHandler) override {
    FEventHandler = std::move(eventHandler);
  }
  WordBool loadFromStream(const IPtr<IStream>& stream) override {
    LoadFromInterfaceStream(Self(), stream);
    return WB(true);
  }
  void saveToStream(const IPtr<IStream>& stream) override { SaveToInterfaceStream(Self(), stream); }

 protected:
  IDOMNode* AsNode() { return static_cast<IDOMNodeEx*>(this); }
  TVnDOMNode* Self() const { return static_cast<TVnDOMNode*>(Object()); }

 private:
  // Kept and never fired: loading is synchronous.
  TAsyncEventHandler FEventHandler;
};

/// A node that is none of the kinds below.
class PlainNodeAdapter final : public NodeAdapter<> {
 public:
  using NodeAdapter::NodeAdapter;
};

}  // namespace vn::detail
