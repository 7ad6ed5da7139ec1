// The Impl halves: each interface operation turns interface arguments into objects, calls the
// object's operation of the same name, and turns an object result into its interface. No logic
// lives here beyond that.
#include "dom_adapter/query.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/value.h"
#include "vnxml/common/variant.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"
#include "vnxml/dom_messages.h"
#include "vnxml/dom_path.h"

namespace vn {

namespace {

template <class I>
TVnDOMNode* Obj(const IPtr<I>& AIntf) {
  return TVnDOMObjectImpl::Node(AIntf.Get());
}
template <class T, class I>
T* ObjAs(const IPtr<I>& AIntf) {
  TVnDOMNode* n = Obj(AIntf);
  if (n && !n->InheritsFrom(T::StaticClass())) throw EInvalidCast(cRtlInvalidCast);
  return static_cast<T*>(n);
}
template <class I>
IPtr<I> ToIntf(TVnDOMObject* AObject) {
  return AObject ? AObject->As<I>() : IPtr<I>();
}
template <class I, class T>
IPtr<I> Adopt(std::unique_ptr<T> AObject) {
  // The new object belongs to its interface from here on: its last release frees it.
  IPtr<I> r = AObject->template As<I>();
  AObject.release();
  return r;
}

// ---- nodes ----

template <class Intf, class O>
class NodeImplT : public TVnDOMObjectImpl, public Intf {
 public:
  explicit NodeImplT(TVnDOMObject* AObject) : TVnDOMObjectImpl(AObject) {}
  int32_t _AddRef() override { return TVnDOMObjectImpl::_AddRef(); }
  int32_t _Release() override { return TVnDOMObjectImpl::_Release(); }
  TObject* Implementor() override { return this; }

  bool CanSerialize(TVnDataSerializationFormatType AFormat) override {
    return AFormat == dsfXML || AFormat == dsfJSON;
  }
  TVnSerializedData Serialize(TVnDataSerializationFormatType AFormat, TObject*) override {
    TVnStringStream s(65001);
    if (AFormat == dsfJSON)
      SaveToJSONStream(static_cast<const TVnDOMNode&>(*Self()), s, Word{65001}, false);
    else
      Self()->SaveToStream(s, Word{65001}, false);
    return s.GetAString();
  }

  bool GetPreserveSpace() override { return Self()->GetPreserveSpace(); }
  UnicodeString GetNodeValue() override { return Self()->GetNodeValue(); }
  UnicodeString GetText() override { return Self()->GetText(); }
  UnicodeString GetNamespaceURI() override { return Self()->GetNamespaceURI(); }
  UnicodeString GetLocalName() override { return Self()->GetLocalName(); }
  UnicodeString GetPrefix() override { return Self()->GetPrefix(); }
  UnicodeString GetQualifiedName() override { return Self()->GetQualifiedName(); }
  UnicodeString GetFormattedInnerXML() override { return Self()->GetFormattedInnerXML(); }
  UnicodeString GetFormattedXML() override { return Self()->GetFormattedXML(); }
  UnicodeString GetInnerXML() override { return Self()->GetInnerXML(); }
  UnicodeString GetXML() override { return Self()->GetXML(); }
  IPtr<IVnDOMNodeList> GetChildNodes() override { return ToIntf<IVnDOMNodeList>(Self()->GetChildNodes()); }
  TVnDOMNodeType GetNodeType() override { return Self()->GetNodeType(); }
  void SetNodeValue(std::u16string_view AValue) override { Self()->SetNodeValue(AValue); }
  void SetPrefix(std::u16string_view AValue) override { Self()->SetPrefix(AValue); }
  void SetQualifiedName(std::u16string_view AValue) override { Self()->SetQualifiedName(AValue); }
  void SetInnerXML(std::u16string_view AValue) override { Self()->SetInnerXML(AValue); }
  void NormalizeTextNodes() override { Self()->NormalizeTextNodes(); }
  void LoadFromStream(TStream& AStream, Word ACodePage) override { Self()->LoadFromStream(AStream, ACodePage); }
  void SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted) override {
    Self()->SaveToStream(AStream, ACodePage, AFormatted);
  }
  void Clear() override { Self()->Clear(); }
  void CloneNode(bool ADeep, IPtr<IVnDOMNode>& AClone) override {
    AClone = Adopt<IVnDOMNode>(Self()->CloneNode(ADeep));
  }
  Integer NodeCount() override { return Self()->NodeCount(); }
  IPtr<IVnDOMNode> AddChild(const IPtr<IVnDOMNode>& ANode, const IPtr<IVnDOMNode>& ARefNode,
                            TVnDOMPosition APosition) override {
    return ToIntf<IVnDOMNode>(Self()->AddChild(Obj(ANode), Obj(ARefNode), APosition));
  }
  void RemoveChild(const IPtr<IVnDOMNode>& ANode) override { Self()->RemoveChild(Obj(ANode)); }
  IPtr<IVnDOMNode> InsertBefore(const IPtr<IVnDOMNode>& ANode, const IPtr<IVnDOMNode>& ARefNode) override {
    return ToIntf<IVnDOMNode>(Self()->InsertBefore(Obj(ANode), Obj(ARefNode)));
  }
  IPtr<IVnDOMNode> AppendChild(const IPtr<IVnDOMNode>& ANode) override {
    return ToIntf<IVnDOMNode>(Self()->AppendChild(Obj(ANode)));
  }
  IPtr<IVnDOMNode> SelectSingleNode(std::u16string_view APath, TVnDOMSelectOptions AOptions) override {
    return ToIntf<IVnDOMNode>(vn::SelectSingleNode(Self(), APath, AOptions));
  }
  IPtr<IVnDOMNodeList> CreateNodeList(std::u16string_view APath, TVnDOMSelectOptions AOptions) override {
    return Adopt<IVnDOMNodeList>(vn::CreateNodeList(Self(), APath, AOptions));
  }
  IPtr<IVnDOMNode> NextSibling() override { return ToIntf<IVnDOMNode>(Self()->NextSibling()); }
  IPtr<IVnDOMNode> PreviousSibling() override { return ToIntf<IVnDOMNode>(Self()->PreviousSibling()); }
  bool HasChilds() override { return Self()->HasChilds(); }
  bool HasAttributes() override { return Self()->HasAttributes(); }
  void Transform(const IPtr<IVnDOMNode>& AXSL, WideString& AResult) override {
    AResult = Self()->Transform(Obj(AXSL));
  }
  IPtr<IVnDOMDocument> Transform(const IPtr<IVnDOMNode>& AXSL) override {
    return Adopt<IVnDOMDocument>(Self()->TransformToDocument(Obj(AXSL)));
  }
  IPtr<IVnDOMDocument> Document() override { return ToIntf<IVnDOMDocument>(Self()->Document()); }
  IPtr<IVnDOMNode> ParentNode() override { return ToIntf<IVnDOMNode>(Self()->ParentNode()); }
  UnicodeString NodePath(bool AUseLocalName, std::u16string_view AKeyAttribute) override {
    return Self()->NodePath(AUseLocalName, AKeyAttribute);
  }

 protected:
  O* Self() const { return static_cast<O*>(GetDOMObject()); }
};

#define VN_IMPL_QI(...)                                                                        \
  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override {                            \
    if (detail::QueryInterfaces<__VA_ARGS__>(this, AIID, AObj) == S_OK) return S_OK;           \
    if (detail::QueryInterfaces<IVnObject>(static_cast<TVnObject*>(this), AIID, AObj) == S_OK) \
      return S_OK;                                                                             \
    return detail::QueryDOMAdapter(this, AIID, AObj);                                          \
  }

using NodeImplBase = NodeImplT<IVnDOMNode, TVnDOMNode>;
class TVnDOMNodeImpl final : public NodeImplBase {
  VN_DECLARE_CLASS(TVnDOMNodeImpl, NodeImplBase)
 public:
  using NodeImplBase::NodeImplBase;
  VN_IMPL_QI(IVnDOMNode, IVnSerializable)
};

template <class Intf, class O>
class CharDataImplT : public NodeImplT<Intf, O> {
 public:
  using NodeImplT<Intf, O>::NodeImplT;
  UnicodeString Substring(Integer AOffset, Integer ACount) override { return this->Self()->Substring(AOffset, ACount); }
  void AppendStr(std::u16string_view AText) override { this->Self()->AppendStr(AText); }
  void InsertStr(Integer AOffset, std::u16string_view AText) override { this->Self()->InsertStr(AOffset, AText); }
  void DeleteStr(Integer AOffset, Integer ACount) override { this->Self()->DeleteStr(AOffset, ACount); }
  void ReplaceStr(Integer AOffset, Integer ACount, std::u16string_view AText) override {
    this->Self()->ReplaceStr(AOffset, ACount, AText);
  }
};

template <class Intf, class O>
class TextImplT : public CharDataImplT<Intf, O> {
 public:
  using CharDataImplT<Intf, O>::CharDataImplT;
  IPtr<IVnDOMText> SplitText(Integer AOffset) override { return Intf_(this->Self()->SplitText(AOffset)); }

 private:
  static IPtr<IVnDOMText> Intf_(TVnDOMText* AText) { return AText ? AText->As<IVnDOMText>() : IPtr<IVnDOMText>(); }
};

using CharDataImplBase = CharDataImplT<IVnDOMCharacterData, TVnDOMCharacterData>;
class TVnDOMCharacterDataImpl final : public CharDataImplBase {
  VN_DECLARE_CLASS(TVnDOMCharacterDataImpl, CharDataImplBase)
 public:
  using CharDataImplBase::CharDataImplBase;
  VN_IMPL_QI(IVnDOMCharacterData, IVnDOMNode, IVnSerializable)
};

using TextImplBase = TextImplT<IVnDOMText, TVnDOMText>;
class TVnDOMTextImpl final : public TextImplBase {
  VN_DECLARE_CLASS(TVnDOMTextImpl, TextImplBase)
 public:
  using TextImplBase::TextImplBase;
  VN_IMPL_QI(IVnDOMText, IVnDOMCharacterData, IVnDOMNode, IVnSerializable)
};

using CDATAImplBase = TextImplT<IVnDOMCDATA, TVnDOMCDATA>;
class TVnDOMCDATAImpl final : public CDATAImplBase {
  VN_DECLARE_CLASS(TVnDOMCDATAImpl, CDATAImplBase)
 public:
  using CDATAImplBase::CDATAImplBase;
  VN_IMPL_QI(IVnDOMCDATA, IVnDOMText, IVnDOMCharacterData, IVnDOMNode, IVnSerializable)
};

using CommentImplBase = CharDataImplT<IVnDOMComment, TVnDOMComment>;
class TVnDOMCommentImpl final : public CommentImplBase {
  VN_DECLARE_CLASS(TVnDOMCommentImpl, CommentImplBase)
 public:
  using CommentImplBase::CommentImplBase;
  VN_IMPL_QI(IVnDOMComment, IVnDOMCharacterData, IVnDOMNode, IVnSerializable)
};

using AttributeImplBase = NodeImplT<IVnDOMAttribute, TVnDOMAttribute>;
class TVnDOMAttributeImpl final : public AttributeImplBase {
  VN_DECLARE_CLASS(TVnDOMAttributeImpl, AttributeImplBase)
 public:
  using AttributeImplBase::AttributeImplBase;
  VN_IMPL_QI(IVnDOMAttribute, IVnDOMNode, IVnSerializable)
  bool IsNamespace() override { return Self()->IsNamespace(); }
  UnicodeString NamespacePrefix() override { return Self()->NamespacePrefix(); }
  IPtr<IVnDOMAttribute> NextAttribute() override { return ToIntf<IVnDOMAttribute>(Self()->NextAttribute()); }
  IPtr<IVnDOMAttribute> PreviousAttribute() override { return ToIntf<IVnDOMAttribute>(Self()->PreviousAttribute()); }
};

using PIImplBase = NodeImplT<IVnDOMProcessingInstruction, TVnDOMProcessingInstruction>;
class TVnDOMProcessingInstructionImpl final : public PIImplBase {
  VN_DECLARE_CLASS(TVnDOMProcessingInstructionImpl, PIImplBase)
 public:
  using PIImplBase::PIImplBase;
  VN_IMPL_QI(IVnDOMProcessingInstruction, IVnDOMNode, IVnSerializable)
  UnicodeString GetData() override { return UnicodeString(Self()->GetData()); }
  void SetData(std::u16string_view AValue) override { Self()->SetData(AValue); }
};

using ElementImplBase = NodeImplT<IVnDOMElement, TVnDOMElement>;
class TVnDOMElementImpl final : public ElementImplBase {
  VN_DECLARE_CLASS(TVnDOMElementImpl, ElementImplBase)
 public:
  using ElementImplBase::ElementImplBase;
  VN_IMPL_QI(IVnDOMElement, IVnDOMNode, IVnSerializable)
  using P = IPtr<IVnDOMNode>;
  bool GetAsBoolean() override { return Self()->GetAsBoolean(); }
  TDateTime GetAsDateTime() override { return Self()->GetAsDateTime(); }
  Double GetAsDouble() override { return Self()->GetAsDouble(); }
  Int64 GetAsInt64() override { return Self()->GetAsInt64(); }
  Integer GetAsInteger() override { return Self()->GetAsInteger(); }
  UnicodeString GetAsString() override { return Self()->GetAsString(); }
  AnsiString GetAsAnsiString() override { return Self()->GetAsAnsiString(); }
  Variant GetAsVariant() override { return Self()->GetAsVariant(); }
  TValue GetAsValue() override { return Self()->GetAsValue(); }
  Variant GetChildElementValue(const Variant& AIndex) override { return Self()->GetChildElementValue(AIndex); }
  UnicodeString GetAttrib(std::u16string_view AName) override { return Self()->GetAttribute(AName); }
  UnicodeString GetAttribNS(std::u16string_view AURI, std::u16string_view AName) override {
    return Self()->GetAttributeNS(AURI, AName);
  }
  bool GetPreserveSpace() override { return Self()->GetPreserveSpace(); }
  void SetAsBoolean(bool AValue) override { Self()->SetAsBoolean(AValue); }
  void SetAsDateTime(TDateTime AValue) override { Self()->SetAsDateTime(AValue); }
  void SetAsDouble(Double AValue) override { Self()->SetAsDouble(AValue); }
  void SetAsInt64(Int64 AValue) override { Self()->SetAsInt64(AValue); }
  void SetAsInteger(Integer AValue) override { Self()->SetAsInteger(AValue); }
  void SetAsString(std::u16string_view AValue) override { Self()->SetAsString(AValue); }
  void SetAsVariant(const Variant& AValue) override { Self()->SetAsVariant(AValue); }
  void SetAsAnsiString(std::string_view AValue) override { Self()->SetAsAnsiString(AValue); }
  void SetAsValue(const TValue& AValue) override { Self()->SetAsValue(AValue); }
  void SetAttrib(std::u16string_view AName, std::u16string_view AValue) override { Self()->SetAttribute(AName, AValue); }
  void SetAttribNS(std::u16string_view AURI, std::u16string_view AName, std::u16string_view AValue) override {
    Self()->SetAttributeNS(AURI, AName, AValue);
  }
  void SetPreseveSpace(bool AValue) override { Self()->SetPreseveSpace(AValue); }
  IPtr<IVnDOMCDATA> GetCDATA(Integer AIndex) override { return ToIntf<IVnDOMCDATA>(Self()->GetCDATA(AIndex)); }
  IPtr<IVnDOMAttrList> GetAttributes() override { return ToIntf<IVnDOMAttrList>(Self()->GetAttributes()); }
  IPtr<IVnDOMElementList> GetElements() override { return ToIntf<IVnDOMElementList>(Self()->GetElements()); }
  IPtr<IVnDOMNodeList> GetCharNodes() override { return ToIntf<IVnDOMNodeList>(Self()->GetCharNodes()); }
  IPtr<IVnDOMAttrList> GetNamespaces() override { return ToIntf<IVnDOMAttrList>(Self()->GetNamespaces()); }
  Integer ElementCount() override { return Self()->ElementCount(); }
  Integer AttributeCount() override { return Self()->AttributeCount(); }
  IPtr<IVnDOMComment> AddComment(std::u16string_view AText) override {
    return ToIntf<IVnDOMComment>(Self()->AddComment(AText));
  }
  IPtr<IVnDOMText> AddText(std::u16string_view AText) override { return ToIntf<IVnDOMText>(Self()->AddText(AText)); }
  IPtr<IVnDOMCDATA> AddCDATA(std::u16string_view AText) override { return ToIntf<IVnDOMCDATA>(Self()->AddCDATA(AText)); }
  IPtr<IVnDOMElement> AddElement(std::u16string_view AName) override {
    return ToIntf<IVnDOMElement>(Self()->AddElement(AName));
  }
  IPtr<IVnDOMElement> AddElement(std::u16string_view AURI, std::u16string_view AName) override {
    return ToIntf<IVnDOMElement>(Self()->AddElement(AURI, AName));
  }
  IPtr<IVnDOMAttribute> AddAttribute(std::u16string_view AName) override {
    return ToIntf<IVnDOMAttribute>(Self()->AddAttribute(AName));
  }
  IPtr<IVnDOMAttribute> AddAttribute(std::u16string_view AURI, std::u16string_view AName) override {
    return ToIntf<IVnDOMAttribute>(Self()->AddAttribute(AURI, AName));
  }
  IPtr<IVnDOMComment> InsertComment(std::u16string_view AText, TVnDOMPosition APosition, const P& ARef) override {
    return ToIntf<IVnDOMComment>(Self()->InsertComment(AText, APosition, Obj(ARef)));
  }
  IPtr<IVnDOMText> InsertText(std::u16string_view AText, TVnDOMPosition APosition, const P& ARef) override {
    return ToIntf<IVnDOMText>(Self()->InsertText(AText, APosition, Obj(ARef)));
  }
  IPtr<IVnDOMCDATA> InsertCDATA(std::u16string_view AText, TVnDOMPosition APosition, const P& ARef) override {
    return ToIntf<IVnDOMCDATA>(Self()->InsertCDATA(AText, APosition, Obj(ARef)));
  }
  IPtr<IVnDOMElement> InsertElement(std::u16string_view AName, TVnDOMPosition APosition, const P& ARef) override {
    return ToIntf<IVnDOMElement>(Self()->InsertElement(AName, APosition, Obj(ARef)));
  }
  IPtr<IVnDOMElement> InsertElement(std::u16string_view AURI, std::u16string_view AName, TVnDOMPosition APosition,
                                    const P& ARef) override {
    return ToIntf<IVnDOMElement>(Self()->InsertElement(AURI, AName, APosition, Obj(ARef)));
  }
  void RemoveElement(const IPtr<IVnDOMElement>& AElement) override {
    Self()->RemoveElement(ObjAs<TVnDOMElement>(AElement));
  }
  void RemoveElement(std::u16string_view AName) override { Self()->RemoveElement(AName); }
  void RemoveElement(std::u16string_view AURI, std::u16string_view ALocalName) override {
    Self()->RemoveElement(AURI, ALocalName);
  }
  void RemoveAttribute(const IPtr<IVnDOMAttribute>& AAttribute) override {
    Self()->RemoveAttribute(ObjAs<TVnDOMAttribute>(AAttribute));
  }
  void RemoveAttribute(std::u16string_view AName) override { Self()->RemoveAttribute(AName); }
  void RemoveAttribute(std::u16string_view AURI, std::u16string_view ALocalName) override {
    Self()->RemoveAttribute(AURI, ALocalName);
  }
  IPtr<IVnDOMElement> FindElement(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return ToIntf<IVnDOMElement>(Self()->FindElement(AName, AOptions));
  }
  IPtr<IVnDOMElement> FindElement(std::u16string_view AURI, std::u16string_view ALocalName) override {
    return ToIntf<IVnDOMElement>(Self()->FindElement(AURI, ALocalName));
  }
  IPtr<IVnDOMElement> ElementByName(std::u16string_view AURI, std::u16string_view ALocalName,
                                    TVnDOMSelectCheckOption ACheck) override {
    return ToIntf<IVnDOMElement>(Self()->ElementByName(AURI, ALocalName, ACheck));
  }
  IPtr<IVnDOMElement> ElementByName(std::u16string_view AURI, std::u16string_view AQName, bool ACreate) override {
    return ToIntf<IVnDOMElement>(Self()->ElementByName(AURI, AQName, ACreate));
  }
  IPtr<IVnDOMElement> ElementByName(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return ToIntf<IVnDOMElement>(Self()->ElementByName(AName, AOptions));
  }
  IPtr<IVnDOMAttribute> FindAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return ToIntf<IVnDOMAttribute>(Self()->FindAttribute(AName, AOptions));
  }
  IPtr<IVnDOMAttribute> FindAttribute(std::u16string_view AURI, std::u16string_view ALocalName) override {
    return ToIntf<IVnDOMAttribute>(Self()->FindAttribute(AURI, ALocalName));
  }
  IPtr<IVnDOMAttribute> AttributeByName(std::u16string_view AURI, std::u16string_view ALocalName) override {
    return ToIntf<IVnDOMAttribute>(Self()->AttributeByName(AURI, ALocalName));
  }
  IPtr<IVnDOMAttribute> AttributeByName(std::u16string_view AURI, std::u16string_view AQName, bool ACreate) override {
    return ToIntf<IVnDOMAttribute>(Self()->AttributeByName(AURI, AQName, ACreate));
  }
  IPtr<IVnDOMAttribute> AttributeByName(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return ToIntf<IVnDOMAttribute>(Self()->AttributeByName(AName, AOptions));
  }
  bool HasChildElement(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return Self()->HasChildElement(AName, AOptions);
  }
  bool HasChildElement(std::u16string_view AURI, std::u16string_view ALocalName) override {
    return Self()->HasChildElement(AURI, ALocalName);
  }
  bool HasChildElements() override { return Self()->HasChildElements(); }
  IPtr<IVnDOMElement> FirstElement() override { return ToIntf<IVnDOMElement>(Self()->FirstElement()); }
  IPtr<IVnDOMElement> LastElement() override { return ToIntf<IVnDOMElement>(Self()->LastElement()); }
  bool HasAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return Self()->HasAttribute(AName, AOptions);
  }
  bool HasAttribute(std::u16string_view AURI, std::u16string_view ALocalName) override {
    return Self()->HasAttribute(AURI, ALocalName);
  }
  bool HasAttributes() override { return Self()->HasAttributes(); }
  IPtr<IVnDOMAttribute> FirstAttribute() override { return ToIntf<IVnDOMAttribute>(Self()->FirstAttribute()); }
  IPtr<IVnDOMAttribute> LastAttribute() override { return ToIntf<IVnDOMAttribute>(Self()->LastAttribute()); }
  IPtr<IVnDOMElement> ParentElement() override { return ToIntf<IVnDOMElement>(Self()->ParentElement()); }
  IPtr<IVnDOMElement> NextElement() override { return ToIntf<IVnDOMElement>(Self()->NextElement()); }
  IPtr<IVnDOMElement> PreviousElement() override { return ToIntf<IVnDOMElement>(Self()->PreviousElement()); }
  IPtr<IVnDOMElementList> CreateElementList(std::u16string_view AQName, bool ARecursive) override {
    return Adopt<IVnDOMElementList>(Self()->CreateElementList(AQName, ARecursive));
  }
  IPtr<IVnDOMElementList> CreateElementList(std::u16string_view AURI, std::u16string_view ALocalName,
                                            bool ARecursive) override {
    return Adopt<IVnDOMElementList>(Self()->CreateElementList(AURI, ALocalName, ARecursive));
  }
  IPtr<IVnDOMElementList> CreateElementList(std::u16string_view APath, TVnDOMSelectOptions AOptions) override {
    return Adopt<IVnDOMElementList>(vn::CreateElementList(Self(), APath, AOptions));
  }
  IPtr<IVnDOMElement> SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions) override {
    return ToIntf<IVnDOMElement>(vn::SelectSingleElement(Self(), APath, AOptions));
  }
};

using DocumentImplBase = NodeImplT<IVnDOMDocument, TVnDOMDocument>;
class TVnDOMDocumentImpl final : public DocumentImplBase {
  VN_DECLARE_CLASS(TVnDOMDocumentImpl, DocumentImplBase)
 public:
  using DocumentImplBase::DocumentImplBase;
  VN_IMPL_QI(IVnDOMDocument, IVnDOMNode, IVnSerializable)
  using DocumentImplBase::LoadFromStream;
  using DocumentImplBase::SaveToStream;
  IPtr<IVnDOMElement> GetRootNode() override { return ToIntf<IVnDOMElement>(Self()->GetRootNode()); }
  UnicodeString GetProcessingInstruction(std::u16string_view ATarget) override {
    return Self()->GetProcessingInstruction(ATarget);
  }
  bool GetCaseSensitive() override { return Self()->GetCaseSensitive(); }
  TVnXPathCollationClass GetCollation() override { return Self()->GetCollation(); }
  TVnDOMSelectMatchOption GetSelectMatchOption() override { return Self()->GetSelectMatchOption(); }
  TVnDOMSelectCheckOption GetSelectCheckOption() override { return Self()->GetSelectCheckOption(); }
  bool GetUseSchemaInstance() override { return Self()->GetUseSchemaInstance(); }
  UnicodeString GetEncoding() override { return Self()->GetEncoding(); }
  Word GetCodePage() override { return Self()->GetCodePage(); }
  UnicodeString GetDocumentURI() override { return Self()->GetDocumentURI(); }
  void SetEncoding(std::u16string_view AValue) override { Self()->SetEncoding(AValue); }
  void SetCodePage(Word AValue) override { Self()->SetCodePage(AValue); }
  void SetProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) override {
    Self()->SetProcessingInstruction(ATarget, AData);
  }
  void SetCaseSensitive(bool AValue) override { Self()->SetCaseSensitive(AValue); }
  void SetCollation(TVnXPathCollationClass AValue) override { Self()->SetCollation(AValue); }
  void SetSelectMatchOption(TVnDOMSelectMatchOption AValue) override { Self()->SetSelectMatchOption(AValue); }
  void SetSelectCheckOption(TVnDOMSelectCheckOption AValue) override { Self()->SetSelectCheckOption(AValue); }
  void SetUseSchemaInstance(bool AValue) override { Self()->SetUseSchemaInstance(AValue); }
  void SetDocumentURI(std::u16string_view AValue) override { Self()->SetDocumentURI(AValue); }
  IPtr<IVnDOMElement> CreateRootNode(std::u16string_view AName) override {
    return ToIntf<IVnDOMElement>(Self()->CreateRootNode(AName));
  }
  IPtr<IVnDOMElement> CreateRootNode(std::u16string_view AURI, std::u16string_view AName) override {
    return ToIntf<IVnDOMElement>(Self()->CreateRootNode(AURI, AName));
  }
  IPtr<IVnDOMComment> AddComment(std::u16string_view AText) override {
    return ToIntf<IVnDOMComment>(Self()->AddComment(AText));
  }
  void LoadXML(std::u16string_view AXML) override { Self()->LoadXML(AXML); }
  void LoadXML(TStream& AStream) override { Self()->LoadXML(AStream); }
  void LoadXML(std::u16string_view AFileName, Word AMode) override { Self()->LoadXML(AFileName, AMode); }
  void LoadFromXML(std::string_view AText) override { Self()->LoadFromAnsiXML(AText); }
  void LoadFromXML(std::u16string_view AText) override { Self()->LoadFromXML(AText); }
  void LoadFromStreamEx(TStream& AStream) override { Self()->LoadFromStreamEx(AStream); }
  void SaveToStreamEx(TStream& AStream, bool AFormatted, bool AWriteBOM) override {
    Self()->SaveToStreamEx(AStream, AFormatted, AWriteBOM);
  }
  void LoadFromFile(std::u16string_view AFileName, Word AMode) override { Self()->LoadFromFile(AFileName, AMode); }
  void SaveToFile(std::u16string_view AFileName, bool AFormatted, bool AWriteBOM) override {
    Self()->SaveToFile(AFileName, AFormatted, AWriteBOM);
  }
  IPtr<IVnDOMElementList> CreateElementList(std::u16string_view APath, TVnDOMSelectOptions AOptions) override {
    return Adopt<IVnDOMElementList>(Self()->CreateElementList(APath, AOptions));
  }
  IPtr<IVnDOMElement> SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions) override {
    return ToIntf<IVnDOMElement>(Self()->SelectSingleElement(APath, AOptions));
  }
};

// ---- lists ----

template <class Intf, class O>
class ListImplT : public TVnDOMObjectImpl, public Intf {
 public:
  explicit ListImplT(TVnDOMObject* AObject) : TVnDOMObjectImpl(AObject) {}
  int32_t _AddRef() override { return TVnDOMObjectImpl::_AddRef(); }
  int32_t _Release() override { return TVnDOMObjectImpl::_Release(); }
  TObject* Implementor() override { return this; }
  using P = IPtr<IVnDOMNode>;

  IPtr<IVnDOMNode> GetItem(Integer AIndex) override { return Intf_(Self()->GetItem(AIndex)); }
  void Clear() override { Self()->Clear(); }
  P Add(const P& ANode, const P& ARefNode, TVnDOMPosition APosition) override {
    return Intf_(Self()->Add(Obj(ANode), Obj(ARefNode), APosition));
  }
  P Add(const P& ANode, TVnDOMPosition APosition) override { return Intf_(Self()->Add(Obj(ANode), APosition)); }
  P Add(const P& ANode, TVnDOMPosition APosition, const P& ARefNode) override {
    return Intf_(Self()->Add(Obj(ANode), APosition, Obj(ARefNode)));
  }
  P Delete(const P& ANode) override { return Intf_(Self()->Delete(Obj(ANode))); }
  Integer Count() override { return Self()->Count(); }
  P First() override { return Intf_(Self()->First()); }
  P Last() override { return Intf_(Self()->Last()); }
  P Next(const P& ANode) override { return Intf_(Self()->Next(Obj(ANode))); }
  P Previous(const P& ANode) override { return Intf_(Self()->Previous(Obj(ANode))); }
  bool ContainsNode(const P& ANode) override { return Self()->ContainsNode(Obj(ANode)); }

 protected:
  O* Self() const { return static_cast<O*>(GetDOMObject()); }
  static P Intf_(TVnDOMNode* ANode) { return ToIntf<IVnDOMNode>(ANode); }
};

template <class Intf, class O>
class NamedListImplT : public ListImplT<Intf, O> {
 public:
  using ListImplT<Intf, O>::ListImplT;
  using P = IPtr<IVnDOMNode>;
  using ListImplT<Intf, O>::Delete;
  P Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return this->Intf_(this->Self()->Find(AName, AOptions));
  }
  P Find(std::u16string_view AURI, std::u16string_view ALocalName) override {
    return this->Intf_(this->Self()->Find(AURI, ALocalName));
  }
  P Delete(std::u16string_view AName, TVnDOMSelectOptions AOptions) override {
    return this->Intf_(this->Self()->Delete(AName, AOptions));
  }
  P Delete(std::u16string_view AURI, std::u16string_view ALocalName) override {
    return this->Intf_(this->Self()->Delete(AURI, ALocalName));
  }
};

using NodeListImplBase = ListImplT<IVnDOMNodeList, TVnDOMNodeListBase>;
class TVnDOMNodeListImpl final : public NodeListImplBase {
  VN_DECLARE_CLASS(TVnDOMNodeListImpl, NodeListImplBase)
 public:
  using NodeListImplBase::NodeListImplBase;
  VN_IMPL_QI(IVnDOMNodeList)
};

using ElementListImplBase = NamedListImplT<IVnDOMElementList, TVnDOMElementList>;
class TVnDOMElementListImpl final : public ElementListImplBase {
  VN_DECLARE_CLASS(TVnDOMElementListImpl, ElementListImplBase)
 public:
  using ElementListImplBase::ElementListImplBase;
  VN_IMPL_QI(IVnDOMElementList, IVnDOMNamedNodeList, IVnDOMNodeList)
  IPtr<IVnDOMElement> GetElement(const Variant& AIndex) override {
    return ToIntf<IVnDOMElement>(Self()->GetItem(AIndex));
  }
};

using AttrListImplBase = NamedListImplT<IVnDOMAttrList, TVnDOMAttrList>;
class TVnDOMAttrListImpl final : public AttrListImplBase {
  VN_DECLARE_CLASS(TVnDOMAttrListImpl, AttrListImplBase)
 public:
  using AttrListImplBase::AttrListImplBase;
  VN_IMPL_QI(IVnDOMAttrList, IVnDOMNamedNodeList, IVnDOMNodeList)
  IPtr<IVnDOMAttribute> GetAttribute(Integer AIndex) override {
    return ToIntf<IVnDOMAttribute>(Self()->GetAttribute(AIndex));
  }
  IPtr<IVnDOMAttribute> FindNamespace(std::u16string_view AURI) override {
    return ToIntf<IVnDOMAttribute>(Self()->FindNamespace(AURI));
  }
};

}  // namespace

TVnDOMObjectImpl* TVnDOMNode::CreateDOMImpl() { return new TVnDOMNodeImpl(this); }
TVnDOMObjectImpl* TVnDOMCharacterData::CreateDOMImpl() { return new TVnDOMCharacterDataImpl(this); }
TVnDOMObjectImpl* TVnDOMText::CreateDOMImpl() { return new TVnDOMTextImpl(this); }
TVnDOMObjectImpl* TVnDOMCDATA::CreateDOMImpl() { return new TVnDOMCDATAImpl(this); }
TVnDOMObjectImpl* TVnDOMComment::CreateDOMImpl() { return new TVnDOMCommentImpl(this); }
TVnDOMObjectImpl* TVnDOMAttribute::CreateDOMImpl() { return new TVnDOMAttributeImpl(this); }
TVnDOMObjectImpl* TVnDOMProcessingInstruction::CreateDOMImpl() { return new TVnDOMProcessingInstructionImpl(this); }
TVnDOMObjectImpl* TVnDOMElement::CreateDOMImpl() { return new TVnDOMElementImpl(this); }
TVnDOMObjectImpl* TVnDOMDocument::CreateDOMImpl() { return new TVnDOMDocumentImpl(this); }
TVnDOMObjectImpl* TVnDOMNodeListBase::CreateDOMImpl() { return new TVnDOMNodeListImpl(this); }
TVnDOMObjectImpl* TVnDOMNodeList::CreateDOMImpl() { return new TVnDOMNodeListImpl(this); }
TVnDOMObjectImpl* TVnDOMElementList::CreateDOMImpl() { return new TVnDOMElementListImpl(this); }
TVnDOMObjectImpl* TVnDOMAttrList::CreateDOMImpl() { return new TVnDOMAttrListImpl(this); }

}  // namespace vn
