// The adapter of a document, which also stands for its (always empty) document type.
#include <vector>

#include "dom_adapter/node_adapter.h"

namespace vn::detail {

namespace {

template <class T>
std::unique_ptr<T> NewNamed(std::u16string_view AName) {
  auto node = std::make_unique<T>();
  node->SetQualifiedName(AName);
  return node;
}

template <class T>
std::unique_ptr<T> NewWithValue(std::u16string_view AValue) {
  auto node = std::make_unique<T>();
  node->SetNodeValue(AValue);
  return node;
}

class DocumentAdapter final : public NodeAdapter<IDOMDocument, IDOMDocumentType> {
 public:
  using NodeAdapter::NodeAdapter;
  void* Own(const TGUID& AIID) override {
    if (AIID == IDOMDocument::IID) return static_cast<IDOMDocument*>(this);
    if (AIID == IDOMDocumentType::IID) return static_cast<IDOMDocumentType*>(this);
    return NodeAdapter::Own(AIID);
  }

  // ---- IDOMDocumentType ----
  UnicodeString get_name() override { return {}; }
  IPtr<IDOMNamedNodeMap> get_entities() override {
    return Adopt<IDOMNamedNodeMap>(std::make_unique<TVnDOMNodeList>());
  }
  IPtr<IDOMNamedNodeMap> get_notations() override { return get_entities(); }
  UnicodeString get_publicId() override { return {}; }
  UnicodeString get_systemId() override { return {}; }
  UnicodeString get_internalSubset() override { return {}; }

  // ---- IDOMDocument ----
  IPtr<IDOMDocumentType> get_doctype() override { return static_cast<IDOMDocumentType*>(this); }
  IPtr<IDOMImplementation> get_domImplementation() override {
    return IPtr<IDOMImplementation>(new TVnDOMImplementation());
  }
  IPtr<IDOMElement> get_documentElement() override { return Wrap<IDOMElement>(Self()->GetRootNode()); }
  void set_documentElement(const IPtr<IDOMElement>& element) override {
    TVnDOMDocument* doc = Self();
    if (TVnDOMElement* root = doc->GetRootNode()) doc->RemoveChild(root);
    // The old root is gone even when the new one fails the cast.
    auto* newRoot = NodeArgAs<TVnDOMElement>(element.Get());
    if (!newRoot) throw EInvalidCast(cRtlInvalidCast);
    doc->AppendChild(newRoot);
  }
  IPtr<IDOMElement> createElement(std::u16string_view tagName) override {
    return Adopt<IDOMElement>(NewNamed<TVnDOMElement>(tagName));
  }
  IPtr<IDOMDocumentFragment> createDocumentFragment() override {
    throw EVnDomNotSupported(cVnDomNoFragments);
  }
  IPtr<IDOMText> createTextNode(std::u16string_view data) override {
    return Adopt<IDOMText>(NewWithValue<TVnDOMText>(data));
  }
  IPtr<IDOMComment> createComment(std::u16string_view data) override {
    return Adopt<IDOMComment>(NewWithValue<TVnDOMComment>(data));
  }
  IPtr<IDOMCDATASection> createCDATASection(std::u16string_view data) override {
    return Adopt<IDOMCDATASection>(NewWithValue<TVnDOMCDATA>(data));
  }
  IPtr<IDOMProcessingInstruction> createProcessingInstruction(std::u16string_view target,
                                                              std::u16string_view data) override {
    auto pi = NewNamed<TVnDOMProcessingInstruction>(target);
    pi->SetData(data);
    return Adopt<IDOMProcessingInstruction>(std::move(pi));
  }
  IPtr<IDOMAttr> createAttribute(std::u16string_view name) override {
    return Adopt<IDOMAttr>(NewNamed<TVnDOMAttribute>(name));
  }
  IPtr<IDOMEntityReference> createEntityReference(std::u16string_view) override {
    throw EVnDomNotSupported(cVnDomNoEntityRefs);
  }
  IPtr<IDOMNodeList> getElementsByTagName(std::u16string_view tagName) override {
    TVnDOMElement* root = Self()->GetRootNode();
    return root ? Adopt<IDOMNodeList>(root->CreateElementList(tagName, true))
                : Adopt<IDOMNodeList>(std::make_unique<TVnDOMElementList>());
  }
  IPtr<IDOMNode> importNode(const IPtr<IDOMNode>& importedNode, WordBool deep) override {
    TVnDOMNode* node = NodeArg(importedNode.Get());
    if (!node) throw EInvalidCast(cRtlInvalidCast);
    return Adopt<IDOMNode>(node->CloneNode(deep != 0));
  }
  IPtr<IDOMElement> createElementNS(std::u16string_view namespaceURI,
                                    std::u16string_view qualifiedName) override {
    auto element = NewNamed<TVnDOMElement>(qualifiedName);
    element->SetNamespaceURI(namespaceURI);
    return Adopt<IDOMElement>(std::move(element));
  }
  IPtr<IDOMAttr> createAttributeNS(std::u16string_view namespaceURI,
                                   std::u16string_view qualifiedName) override {
    auto attribute = NewNamed<TVnDOMAttribute>(qualifiedName);
    attribute->SetNamespaceURI(namespaceURI);
    return Adopt<IDOMAttr>(std::move(attribute));
  }
  IPtr<IDOMNodeList> getElementsByTagNameNS(std::u16string_view namespaceURI,
                                            std::u16string_view localName) override {
    TVnDOMElement* root = Self()->GetRootNode();
    return root ? Adopt<IDOMNodeList>(root->CreateElementList(namespaceURI, localName, true))
                : Adopt<IDOMNodeList>(std::make_unique<TVnDOMElementList>());
  }
  /// The first element in document order whose attribute "id" has that value, or nil.
  IPtr<IDOMElement> getElementById(std::u16string_view elementId) override {
    std::vector<TVnDOMElement*> pending;
    if (TVnDOMElement* root = Self()->GetRootNode()) pending.push_back(root);
    while (!pending.empty()) {
      TVnDOMElement* element = pending.back();
      pending.pop_back();
      TVnDOMAttribute* id = element->FindAttribute(u"id", {soQualifiedName, soCaseSensitive});
      if (id && id->GetNodeValue() == elementId) return Wrap<IDOMElement>(element);
      const auto& children = element->ElementsView();
      for (size_t i = children.size(); i > 0; --i)
        pending.push_back(static_cast<TVnDOMElement*>(children[i - 1]));
    }
    return {};
  }

 private:
  TVnDOMDocument* Self() const { return static_cast<TVnDOMDocument*>(NodeAdapter::Self()); }
};

}  // namespace

DOMAdapter* NewDocumentAdapter(TVnDOMDocument* ADocument) { return new DocumentAdapter(ADocument); }

}  // namespace vn::detail
