// dom_interfaces.h: the counted interfaces of the XML document object model (unit uVnXMLDOM).
// Each is answered by the Impl half of a node or list (dom_object.h); every call forwards to the
// object. Nodes come back as IPtr (a new count); node arguments may be nil where the object form
// takes nil. The order of the slots is part of the binary contract: new slots go at the end.
#pragma once

#include "vnxml/common/interface.h"
#include "vnxml/common/types.h"
#include "vnxml/dom_names.h"
#include "vnxml/dom_object.h"
#include "vnxml/serializer_formats.h"

namespace vn {

class TStream;
class TObject;
class Variant;
class TValue;

struct IVnDOMNode;
struct IVnDOMNodeList;
struct IVnDOMElementList;
struct IVnDOMAttrList;
struct IVnDOMElement;
struct IVnDOMAttribute;
struct IVnDOMText;
struct IVnDOMComment;
struct IVnDOMCDATA;
struct IVnDOMDocument;

struct IVnDOMNode : IVnSerializable {
  static constexpr TGUID IID = TGUID::Parse("5ba39f9d-b914-4685-9d31-0c7d618ff832");
  virtual bool GetPreserveSpace() = 0;
  virtual UnicodeString GetNodeValue() = 0;
  virtual UnicodeString GetText() = 0;
  virtual UnicodeString GetNamespaceURI() = 0;
  virtual UnicodeString GetLocalName() = 0;
  virtual UnicodeString GetPrefix() = 0;
  virtual UnicodeString GetQualifiedName() = 0;
  virtual UnicodeString GetFormattedInnerXML() = 0;
  virtual UnicodeString GetFormattedXML() = 0;
  virtual UnicodeString GetInnerXML() = 0;
  virtual UnicodeString GetXML() = 0;
  virtual IPtr<IVnDOMNodeList> GetChildNodes() = 0;
  virtual TVnDOMNodeType GetNodeType() = 0;
  virtual void SetNodeValue(std::u16string_view AValue) = 0;
  virtual void SetPrefix(std::u16string_view AValue) = 0;
  virtual void SetQualifiedName(std::u16string_view AValue) = 0;
  virtual void SetInnerXML(std::u16string_view AValue) = 0;
  virtual void NormalizeTextNodes() = 0;
  virtual void LoadFromStream(TStream& AStream, Word ACodePage) = 0;
  virtual void SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted) = 0;
  virtual void Clear() = 0;
  /// AClone receives a new detached copy; its last release frees it.
  virtual void CloneNode(bool ADeep, IPtr<IVnDOMNode>& AClone) = 0;
  virtual Integer NodeCount() = 0;
  virtual IPtr<IVnDOMNode> AddChild(const IPtr<IVnDOMNode>& ANode, const IPtr<IVnDOMNode>& ARefNode,
                                    TVnDOMPosition APosition) = 0;
  virtual void RemoveChild(const IPtr<IVnDOMNode>& ANode) = 0;
  virtual IPtr<IVnDOMNode> InsertBefore(const IPtr<IVnDOMNode>& ANode, const IPtr<IVnDOMNode>& ARefNode) = 0;
  virtual IPtr<IVnDOMNode> AppendChild(const IPtr<IVnDOMNode>& ANode) = 0;
  virtual IPtr<IVnDOMNode> SelectSingleNode(std::u16string_view APath, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMNodeList> CreateNodeList(std::u16string_view APath, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMNode> NextSibling() = 0;
  virtual IPtr<IVnDOMNode> PreviousSibling() = 0;
  virtual bool HasChilds() = 0;
  virtual bool HasAttributes() = 0;
  virtual void Transform(const IPtr<IVnDOMNode>& AXSL, WideString& AResult) = 0;
  virtual IPtr<IVnDOMDocument> Transform(const IPtr<IVnDOMNode>& AXSL) = 0;
  virtual IPtr<IVnDOMDocument> Document() = 0;
  virtual IPtr<IVnDOMNode> ParentNode() = 0;
  virtual UnicodeString NodePath(bool AUseLocalName, std::u16string_view AKeyAttribute) = 0;

 protected:
  ~IVnDOMNode() = default;
};

struct IVnDOMNodeList : IInterface {
  static constexpr TGUID IID = TGUID::Parse("d7121e5a-eb0a-49d1-8e27-7ae65bd913ca");
  virtual IPtr<IVnDOMNode> GetItem(Integer AIndex) = 0;
  virtual void Clear() = 0;
  virtual IPtr<IVnDOMNode> Add(const IPtr<IVnDOMNode>& ANode, const IPtr<IVnDOMNode>& ARefNode,
                               TVnDOMPosition APosition) = 0;
  virtual IPtr<IVnDOMNode> Add(const IPtr<IVnDOMNode>& ANode, TVnDOMPosition APosition) = 0;
  virtual IPtr<IVnDOMNode> Add(const IPtr<IVnDOMNode>& ANode, TVnDOMPosition APosition,
                               const IPtr<IVnDOMNode>& ARefNode) = 0;
  virtual IPtr<IVnDOMNode> Delete(const IPtr<IVnDOMNode>& ANode) = 0;
  virtual Integer Count() = 0;
  virtual IPtr<IVnDOMNode> First() = 0;
  virtual IPtr<IVnDOMNode> Last() = 0;
  virtual IPtr<IVnDOMNode> Next(const IPtr<IVnDOMNode>& ANode) = 0;
  virtual IPtr<IVnDOMNode> Previous(const IPtr<IVnDOMNode>& ANode) = 0;
  virtual bool ContainsNode(const IPtr<IVnDOMNode>& ANode) = 0;

 protected:
  ~IVnDOMNodeList() = default;
};

struct IVnDOMNamedNodeList : IVnDOMNodeList {
  static constexpr TGUID IID = TGUID::Parse("097b7f7f-8c68-41a0-bbdf-39262a80488e");
  virtual IPtr<IVnDOMNode> Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMNode> Find(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) = 0;
  virtual IPtr<IVnDOMNode> Delete(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMNode> Delete(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) = 0;
  using IVnDOMNodeList::Delete;

 protected:
  ~IVnDOMNamedNodeList() = default;
};

struct IVnDOMElementList : IVnDOMNamedNodeList {
  static constexpr TGUID IID = TGUID::Parse("9d2f0ebc-7df0-489e-adcc-46acb997589a");
  /// By number or by name (a Variant holding an integer or a string).
  virtual IPtr<IVnDOMElement> GetElement(const Variant& AIndex) = 0;

 protected:
  ~IVnDOMElementList() = default;
};

struct IVnDOMAttrList : IVnDOMNamedNodeList {
  static constexpr TGUID IID = TGUID::Parse("7734b7c6-cdc5-49cd-ace0-3cb47decb269");
  virtual IPtr<IVnDOMAttribute> GetAttribute(Integer AIndex) = 0;
  virtual IPtr<IVnDOMAttribute> FindNamespace(std::u16string_view AURI) = 0;

 protected:
  ~IVnDOMAttrList() = default;
};

struct IVnDOMCharacterData : IVnDOMNode {
  static constexpr TGUID IID = TGUID::Parse("6db6c03e-1155-4bc2-a344-86f1285423be");
  virtual UnicodeString Substring(Integer AOffset, Integer ACount) = 0;
  virtual void AppendStr(std::u16string_view AText) = 0;
  virtual void InsertStr(Integer AOffset, std::u16string_view AText) = 0;
  virtual void DeleteStr(Integer AOffset, Integer ACount) = 0;
  virtual void ReplaceStr(Integer AOffset, Integer ACount, std::u16string_view AText) = 0;

 protected:
  ~IVnDOMCharacterData() = default;
};

struct IVnDOMText : IVnDOMCharacterData {
  static constexpr TGUID IID = TGUID::Parse("7ecbbd06-4665-4435-9bc7-cf2e1fc1a5f4");
  virtual IPtr<IVnDOMText> SplitText(Integer AOffset) = 0;

 protected:
  ~IVnDOMText() = default;
};

struct IVnDOMComment : IVnDOMCharacterData {
  static constexpr TGUID IID = TGUID::Parse("da0d0710-a101-49d2-9d82-b30b63b9096f");

 protected:
  ~IVnDOMComment() = default;
};

struct IVnDOMCDATA : IVnDOMText {
  static constexpr TGUID IID = TGUID::Parse("e619a337-648c-4cab-bc08-6e2fc36da606");

 protected:
  ~IVnDOMCDATA() = default;
};

struct IVnDOMAttribute : IVnDOMNode {
  static constexpr TGUID IID = TGUID::Parse("ebfbbd41-12cf-4a7a-8435-f65508fe0fff");
  virtual bool IsNamespace() = 0;
  virtual UnicodeString NamespacePrefix() = 0;
  virtual IPtr<IVnDOMAttribute> NextAttribute() = 0;
  virtual IPtr<IVnDOMAttribute> PreviousAttribute() = 0;

 protected:
  ~IVnDOMAttribute() = default;
};

struct IVnDOMProcessingInstruction : IVnDOMNode {
  static constexpr TGUID IID = TGUID::Parse("85f62362-3762-47d2-a308-1f1368e68150");
  virtual UnicodeString GetData() = 0;
  virtual void SetData(std::u16string_view AValue) = 0;

 protected:
  ~IVnDOMProcessingInstruction() = default;
};

struct IVnDOMElement : IVnDOMNode {
  static constexpr TGUID IID = TGUID::Parse("5124eebc-8073-47c0-9c06-db02b4a7e93c");
  virtual bool GetAsBoolean() = 0;
  virtual TDateTime GetAsDateTime() = 0;
  virtual Double GetAsDouble() = 0;
  virtual Int64 GetAsInt64() = 0;
  virtual Integer GetAsInteger() = 0;
  virtual UnicodeString GetAsString() = 0;
  virtual AnsiString GetAsAnsiString() = 0;
  virtual Variant GetAsVariant() = 0;
  virtual TValue GetAsValue() = 0;
  virtual Variant GetChildElementValue(const Variant& AIndex) = 0;
  virtual UnicodeString GetAttrib(std::u16string_view AName) = 0;
  virtual UnicodeString GetAttribNS(std::u16string_view AURI, std::u16string_view AName) = 0;
  virtual bool GetPreserveSpace() override = 0;
  virtual void SetAsBoolean(bool AValue) = 0;
  virtual void SetAsDateTime(TDateTime AValue) = 0;
  virtual void SetAsDouble(Double AValue) = 0;
  virtual void SetAsInt64(Int64 AValue) = 0;
  virtual void SetAsInteger(Integer AValue) = 0;
  virtual void SetAsString(std::u16string_view AValue) = 0;
  virtual void SetAsVariant(const Variant& AValue) = 0;
  virtual void SetAsAnsiString(std::string_view AValue) = 0;
  virtual void SetAsValue(const TValue& AValue) = 0;
  virtual void SetAttrib(std::u16string_view AName, std::u16string_view AValue) = 0;
  virtual void SetAttribNS(std::u16string_view AURI, std::u16string_view AName, std::u16string_view AValue) = 0;
  virtual void SetPreseveSpace(bool AValue) = 0;
  virtual IPtr<IVnDOMCDATA> GetCDATA(Integer AIndex) = 0;
  virtual IPtr<IVnDOMAttrList> GetAttributes() = 0;
  virtual IPtr<IVnDOMElementList> GetElements() = 0;
  virtual IPtr<IVnDOMNodeList> GetCharNodes() = 0;
  virtual IPtr<IVnDOMAttrList> GetNamespaces() = 0;
  virtual Integer ElementCount() = 0;
  virtual Integer AttributeCount() = 0;
  virtual IPtr<IVnDOMComment> AddComment(std::u16string_view AText) = 0;
  virtual IPtr<IVnDOMText> AddText(std::u16string_view AText) = 0;
  virtual IPtr<IVnDOMCDATA> AddCDATA(std::u16string_view AText) = 0;
  virtual IPtr<IVnDOMElement> AddElement(std::u16string_view AName) = 0;
  virtual IPtr<IVnDOMElement> AddElement(std::u16string_view AURI, std::u16string_view AName) = 0;
  virtual IPtr<IVnDOMAttribute> AddAttribute(std::u16string_view AName) = 0;
  virtual IPtr<IVnDOMAttribute> AddAttribute(std::u16string_view AURI, std::u16string_view AName) = 0;
  virtual IPtr<IVnDOMComment> InsertComment(std::u16string_view AText, TVnDOMPosition APosition,
                                            const IPtr<IVnDOMNode>& ARefNode) = 0;
  virtual IPtr<IVnDOMText> InsertText(std::u16string_view AText, TVnDOMPosition APosition,
                                      const IPtr<IVnDOMNode>& ARefNode) = 0;
  virtual IPtr<IVnDOMCDATA> InsertCDATA(std::u16string_view AText, TVnDOMPosition APosition,
                                        const IPtr<IVnDOMNode>& ARefNode) = 0;
  virtual IPtr<IVnDOMElement> InsertElement(std::u16string_view AName, TVnDOMPosition APosition,
                                            const IPtr<IVnDOMNode>& ARefNode) = 0;
  virtual IPtr<IVnDOMElement> InsertElement(std::u16string_view AURI, std::u16string_view AName,
                                            TVnDOMPosition APosition, const IPtr<IVnDOMNode>& ARefNode) = 0;
  virtual void RemoveElement(const IPtr<IVnDOMElement>& AElement) = 0;
  virtual void RemoveElement(std::u16string_view AName) = 0;
  virtual void RemoveElement(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual void RemoveAttribute(const IPtr<IVnDOMAttribute>& AAttribute) = 0;
  virtual void RemoveAttribute(std::u16string_view AName) = 0;
  virtual void RemoveAttribute(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual IPtr<IVnDOMElement> FindElement(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMElement> FindElement(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual IPtr<IVnDOMElement> ElementByName(std::u16string_view AURI, std::u16string_view ALocalName,
                                            TVnDOMSelectCheckOption ACheck) = 0;
  virtual IPtr<IVnDOMElement> ElementByName(std::u16string_view AURI, std::u16string_view AQName, bool ACreate) = 0;
  virtual IPtr<IVnDOMElement> ElementByName(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMAttribute> FindAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMAttribute> FindAttribute(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual IPtr<IVnDOMAttribute> AttributeByName(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual IPtr<IVnDOMAttribute> AttributeByName(std::u16string_view AURI, std::u16string_view AQName,
                                                bool ACreate) = 0;
  virtual IPtr<IVnDOMAttribute> AttributeByName(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual bool HasChildElement(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual bool HasChildElement(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual bool HasChildElements() = 0;
  virtual IPtr<IVnDOMElement> FirstElement() = 0;
  virtual IPtr<IVnDOMElement> LastElement() = 0;
  virtual bool HasAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions) = 0;
  virtual bool HasAttribute(std::u16string_view AURI, std::u16string_view ALocalName) = 0;
  virtual bool HasAttributes() override = 0;
  virtual IPtr<IVnDOMAttribute> FirstAttribute() = 0;
  virtual IPtr<IVnDOMAttribute> LastAttribute() = 0;
  /// The parent node unchecked: for the root element, the document.
  virtual IPtr<IVnDOMElement> ParentElement() = 0;
  virtual IPtr<IVnDOMElement> NextElement() = 0;
  virtual IPtr<IVnDOMElement> PreviousElement() = 0;
  virtual IPtr<IVnDOMElementList> CreateElementList(std::u16string_view AQName, bool ARecursive) = 0;
  virtual IPtr<IVnDOMElementList> CreateElementList(std::u16string_view AURI, std::u16string_view ALocalName,
                                                    bool ARecursive) = 0;
  virtual IPtr<IVnDOMElementList> CreateElementList(std::u16string_view APath, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMElement> SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions) = 0;

 protected:
  ~IVnDOMElement() = default;
};

/// The document's interface. Loads that add (LoadXML of a stream or file, LoadFromStreamEx,
/// LoadFromFile) keep what the document holds; LoadXML of a text and LoadFromXML clear it first.
struct IVnDOMDocument : IVnDOMNode {
  static constexpr TGUID IID = TGUID::Parse("d45d3d71-6b97-4fcd-96a6-dfbbaa9849b8");
  virtual IPtr<IVnDOMElement> GetRootNode() = 0;
  /// The data of that processing instruction; raises EVnDomNotFound when there is none.
  virtual UnicodeString GetProcessingInstruction(std::u16string_view ATarget) = 0;
  virtual bool GetCaseSensitive() = 0;
  virtual TVnXPathCollationClass GetCollation() = 0;
  virtual TVnDOMSelectMatchOption GetSelectMatchOption() = 0;
  virtual TVnDOMSelectCheckOption GetSelectCheckOption() = 0;
  virtual bool GetUseSchemaInstance() = 0;
  virtual UnicodeString GetEncoding() = 0;
  virtual Word GetCodePage() = 0;
  virtual UnicodeString GetDocumentURI() = 0;
  virtual void SetEncoding(std::u16string_view AValue) = 0;
  virtual void SetCodePage(Word AValue) = 0;
  virtual void SetProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) = 0;
  virtual void SetCaseSensitive(bool AValue) = 0;
  virtual void SetCollation(TVnXPathCollationClass AValue) = 0;
  virtual void SetSelectMatchOption(TVnDOMSelectMatchOption AValue) = 0;
  virtual void SetSelectCheckOption(TVnDOMSelectCheckOption AValue) = 0;
  virtual void SetUseSchemaInstance(bool AValue) = 0;
  virtual void SetDocumentURI(std::u16string_view AValue) = 0;
  virtual IPtr<IVnDOMElement> CreateRootNode(std::u16string_view AName) = 0;
  virtual IPtr<IVnDOMElement> CreateRootNode(std::u16string_view AURI, std::u16string_view AName) = 0;
  virtual IPtr<IVnDOMComment> AddComment(std::u16string_view AText) = 0;
  virtual void LoadXML(std::u16string_view AXML) = 0;
  virtual void LoadXML(TStream& AStream) = 0;
  virtual void LoadXML(std::u16string_view AFileName, Word AMode) = 0;
  /// 8-bit text: its declaration tells the code page.
  virtual void LoadFromXML(std::string_view AText) = 0;
  virtual void LoadFromXML(std::u16string_view AText) = 0;
  virtual void LoadFromStreamEx(TStream& AStream) = 0;
  virtual void SaveToStreamEx(TStream& AStream, bool AFormatted, bool AWriteBOM) = 0;
  virtual void LoadFromFile(std::u16string_view AFileName, Word AMode) = 0;
  virtual void SaveToFile(std::u16string_view AFileName, bool AFormatted, bool AWriteBOM) = 0;
  /// A new list that the interface owns.
  virtual IPtr<IVnDOMElementList> CreateElementList(std::u16string_view APath, TVnDOMSelectOptions AOptions) = 0;
  virtual IPtr<IVnDOMElement> SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions) = 0;

 protected:
  ~IVnDOMDocument() = default;
};

}  // namespace vn
