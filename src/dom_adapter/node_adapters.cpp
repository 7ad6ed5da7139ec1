// The adapters of elements, attributes, character data and processing instructions.
#include "dom_adapter/node_adapter.h"

namespace vn::detail {

namespace {

class ElementAdapter final : public NodeAdapter<IDOMElement> {
 public:
  using NodeAdapter::NodeAdapter;
  void* Own(const TGUID& AIID) override {
    if (AIID == IDOMElement::IID) return static_cast<IDOMElement*>(this);
    return NodeAdapter::Own(AIID);
  }

  UnicodeString get_tagName() override { return Self()->GetQualifiedName(); }
  UnicodeString getAttribute(std::u16string_view name) override { return Self()->GetAttribute(name); }
  void setAttribute(std::u16string_view name, std::u16string_view value) override {
    Self()->SetAttribute(name, value);
  }
  void removeAttribute(std::u16string_view name) override { Self()->RemoveAttribute(name); }
  IPtr<IDOMAttr> getAttributeNode(std::u16string_view name) override {
    return Wrap<IDOMAttr>(Self()->AttributeByName(name, {soQualifiedName}));
  }
  IPtr<IDOMAttr> setAttributeNode(const IPtr<IDOMAttr>& newAttr) override {
    Self()->AddChild(NodeArgAs<TVnDOMAttribute>(newAttr.Get()), nullptr, rdpAfter);
    return newAttr;
  }
  IPtr<IDOMAttr> removeAttributeNode(const IPtr<IDOMAttr>& oldAttr) override {
    Self()->RemoveAttribute(NodeArgAs<TVnDOMAttribute>(oldAttr.Get()));
    return oldAttr;
  }
  IPtr<IDOMNodeList> getElementsByTagName(std::u16string_view name) override {
    return Adopt<IDOMNodeList>(Self()->CreateElementList(name, true));
  }
  UnicodeString getAttributeNS(std::u16string_view namespaceURI, std::u16string_view localName) override {
    return Self()->GetAttributeNS(namespaceURI, localName);
  }
  void setAttributeNS(std::u16string_view namespaceURI, std::u16string_view qualifiedName,
                      std::u16string_view value) override {
    Self()->SetAttributeNS(namespaceURI, qualifiedName, value);
  }
  void removeAttributeNS(std::u16string_view namespaceURI, std::u16string_view localName) override {
    Self()->RemoveAttribute(namespaceURI, localName);
  }
  IPtr<IDOMAttr> getAttributeNodeNS(std::u16string_view namespaceURI,
                                    std::u16string_view localName) override {
    return Wrap<IDOMAttr>(Self()->AttributeByName(namespaceURI, localName));
  }
  IPtr<IDOMAttr> setAttributeNodeNS(const IPtr<IDOMAttr>& newAttr) override {
    return setAttributeNode(newAttr);
  }
  IPtr<IDOMNodeList> getElementsByTagNameNS(std::u16string_view namespaceURI,
                                            std::u16string_view localName) override {
    return Adopt<IDOMNodeList>(Self()->CreateElementList(namespaceURI, localName, true));
  }
  WordBool hasAttribute(std::u16string_view name) override {
    return WB(Self()->HasAttribute(name, {soQualifiedName}));
  }
  WordBool hasAttributeNS(std::u16string_view namespaceURI, std::u16string_view localName) override {
    return WB(Self()->HasAttribute(namespaceURI, localName));
  }

 private:
  TVnDOMElement* Self() const { return static_cast<TVnDOMElement*>(NodeAdapter::Self()); }
};

class AttrAdapter final : public NodeAdapter<IDOMAttr> {
 public:
  using NodeAdapter::NodeAdapter;
  void* Own(const TGUID& AIID) override {
    if (AIID == IDOMAttr::IID) return static_cast<IDOMAttr*>(this);
    return NodeAdapter::Own(AIID);
  }
  UnicodeString get_name() override { return Self()->GetQualifiedName(); }
  WordBool get_specified() override { return WB(true); }
  UnicodeString get_value() override { return Self()->GetNodeValue(); }
  void set_value(std::u16string_view value) override { Self()->SetNodeValue(value); }
  IPtr<IDOMElement> get_ownerElement() override { return Wrap<IDOMElement>(Self()->ParentNode()); }
};

class PIAdapter final : public NodeAdapter<IDOMProcessingInstruction> {
 public:
  using NodeAdapter::NodeAdapter;
  void* Own(const TGUID& AIID) override {
    if (AIID == IDOMProcessingInstruction::IID) return static_cast<IDOMProcessingInstruction*>(this);
    return NodeAdapter::Own(AIID);
  }
  UnicodeString get_target() override { return Self()->GetQualifiedName(); }
  UnicodeString get_data() override { return UnicodeString(Self()->GetData()); }
  void set_data(std::u16string_view value) override { Self()->SetData(value); }

 private:
  TVnDOMProcessingInstruction* Self() const {
    return static_cast<TVnDOMProcessingInstruction*>(NodeAdapter::Self());
  }
};

// Character data of every kind; I is the most derived interface of the kind.
template <class I>
class CharDataAdapter : public NodeAdapter<I> {
 public:
  using NodeAdapter<I>::NodeAdapter;
  void* Own(const TGUID& AIID) override {
    if (AIID == I::IID) return static_cast<I*>(this);
    if (AIID == IDOMCharacterData::IID) return static_cast<IDOMCharacterData*>(this);
    return NodeAdapter<I>::Own(AIID);
  }
  UnicodeString get_data() override { return Self()->GetNodeValue(); }
  void set_data(std::u16string_view data) override { Self()->SetNodeValue(data); }
  Integer get_length() override { return static_cast<Integer>(Self()->GetNodeValue().size()); }
  UnicodeString substringData(Integer offset, Integer count) override {
    return Self()->Substring(offset, count);
  }
  void appendData(std::u16string_view data) override { Self()->AppendStr(data); }
  void insertData(Integer offset, std::u16string_view data) override { Self()->InsertStr(offset, data); }
  void deleteData(Integer offset, Integer count) override { Self()->DeleteStr(offset, count); }
  void replaceData(Integer offset, Integer count, std::u16string_view data) override {
    Self()->ReplaceStr(offset, count, data);
  }

 protected:
  TVnDOMCharacterData* Self() const { return static_cast<TVnDOMCharacterData*>(NodeAdapter<I>::Self()); }
};

// Text and CDATA sections: character data that splits.
template <class I>
class TextAdapter final : public CharDataAdapter<I> {
 public:
  using CharDataAdapter<I>::CharDataAdapter;
  void* Own(const TGUID& AIID) override {
    if (AIID == IDOMText::IID) return static_cast<IDOMText*>(this);
    return CharDataAdapter<I>::Own(AIID);
  }
  IPtr<IDOMText> splitText(Integer offset) override {
    return Wrap<IDOMText>(static_cast<TVnDOMText*>(this->Self())->SplitText(offset));
  }
};

}  // namespace

DOMAdapter* NewNodeAdapter(TVnDOMNode* ANode) {
  if (auto* e = CastObject<TVnDOMElement>(ANode)) return new ElementAdapter(e);
  if (auto* a = CastObject<TVnDOMAttribute>(ANode)) return new AttrAdapter(a);
  if (auto* p = CastObject<TVnDOMProcessingInstruction>(ANode)) return new PIAdapter(p);
  if (CastObject<TVnDOMCDATA>(ANode)) return new TextAdapter<IDOMCDATASection>(ANode);
  if (CastObject<TVnDOMText>(ANode)) return new TextAdapter<IDOMText>(ANode);
  if (CastObject<TVnDOMComment>(ANode)) return new CharDataAdapter<IDOMComment>(ANode);
  if (CastObject<TVnDOMCharacterData>(ANode)) return new CharDataAdapter<IDOMCharacterData>(ANode);
  return new PlainNodeAdapter(ANode);
}

}  // namespace vn::detail
