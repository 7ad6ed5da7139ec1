// The adapter of a node list: IDOMNodeList and IDOMNamedNodeMap over one TVnDOMNodeListBase.
#include "dom_adapter/adapter_support.h"
#include "vnxml/dom_adapter.h"

namespace vn::detail {

namespace {

class ListAdapter final : public DOMAdapter, public IDOMNodeList, public IDOMNamedNodeMap {
 public:
  explicit ListAdapter(TVnDOMNodeListBase* AList) : DOMAdapter(AList->As<IVnDOMNodeList>()) {}

  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override { return Query(AIID, AObj); }
  int32_t _AddRef() override { return AddRef(); }
  int32_t _Release() override { return Release(); }
  void* Own(const TGUID& AIID) override {
    if (AIID == IDOMNodeList::IID || AIID == IInterface::IID) return static_cast<IDOMNodeList*>(this);
    if (AIID == IDOMNamedNodeMap::IID) return static_cast<IDOMNamedNodeMap*>(this);
    return nullptr;
  }

  IPtr<IDOMNode> get_item(Integer index) override { return Wrap<IDOMNode>(Self()->GetItem(index)); }
  Integer get_length() override { return Self()->Count(); }
  IPtr<IDOMNode> getNamedItem(std::u16string_view name) override {
    return Wrap<IDOMNode>(Self()->Find(name, {soRaise, soQualifiedName}));
  }
  IPtr<IDOMNode> setNamedItem(const IPtr<IDOMNode>& arg) override {
    return Wrap<IDOMNode>(Self()->Add(NodeArg(arg.Get()), rdpLast));
  }
  IPtr<IDOMNode> removeNamedItem(std::u16string_view name) override {
    return Removed(Self()->Find(name, {soQualifiedName}));
  }
  IPtr<IDOMNode> getNamedItemNS(std::u16string_view namespaceURI, std::u16string_view localName) override {
    return Wrap<IDOMNode>(Self()->Find(namespaceURI, localName));
  }
  IPtr<IDOMNode> setNamedItemNS(const IPtr<IDOMNode>& arg) override { return setNamedItem(arg); }
  IPtr<IDOMNode> removeNamedItemNS(std::u16string_view namespaceURI, std::u16string_view localName) override {
    return Removed(Self()->Find(namespaceURI, localName));
  }

 private:
  // The node is held before it leaves the list, so the caller gets it back instead of a freed one.
  IPtr<IDOMNode> Removed(TVnDOMNode* ANode) {
    IPtr<IDOMNode> held = Wrap<IDOMNode>(ANode);
    if (ANode) Self()->Delete(ANode);
    return held;
  }
  TVnDOMNodeListBase* Self() const { return static_cast<TVnDOMNodeListBase*>(Object()); }
};

}  // namespace

DOMAdapter* NewListAdapter(TVnDOMNodeListBase* AList) { return new ListAdapter(AList); }

}  // namespace vn::detail
