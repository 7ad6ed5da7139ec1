// dom_element.h: TVnDOMElement, the working node of the XML tree (unit uVnXMLDOM).
// Beside the one child array of a node an element keeps typed views (attributes, elements,
// character data), the namespace declarations in scope (shared with the parent where they are
// the same, so wide and deep trees stay linear), and the xml:space setting it carries down.
// Nodes created here belong to the tree; lists made for a caller belong to the caller.
// Lookups by name raise EVnDomNotFound under soRaise/coRaise; Find forms return nil.
#pragma once

#include <memory>

#include "vnxml/dom_leaves.h"
#include "vnxml/dom_lists.h"

namespace vn {

class Variant;
class TValue;

namespace detail {
struct NsScope;
}

class TVnDOMElement : public TVnDOMNode {
  VN_DECLARE_CLASS(TVnDOMElement, TVnDOMNode)
 public:
  TVnDOMElement();
  ~TVnDOMElement() override;

  // ---- values ----
  bool GetPreserveSpace() const override { return FPreserveSpace; }
  /// The decoded text and CDATA children, comments left out; child elements not included.
  UnicodeString GetNodeValue() const override;
  /// All character data (comments too) in order, then the GetText of each child element.
  UnicodeString GetText() const override;
  /// Replaces text and comment children by one text node holding AValue escaped; CDATA stays.
  void SetNodeValue(std::u16string_view AValue) override;
  /// As SetNodeValue, with AValue stored as ready-made XML text.
  void SetNodeValueEx(std::u16string_view AValue);
  UnicodeString GetNamespaceURI() const override;
  void SetPrefix(std::u16string_view AValue) override;
  UnicodeString GetInnerXML() override;
  UnicodeString GetFormattedInnerXML() override;
  /// Removes the child elements; non-empty text needs the loader (EVnDomNotSupported until then).
  void SetInnerXML(std::u16string_view AXML) override;
  void NormalizeTextNodes() override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

  // ---- typed values (the text; in schema-instance mode also xsi:type and xsi:nil) ----
  /// The text converted; a bad form gives 0 (false).
  bool GetAsBoolean() const;
  TDateTime GetAsDateTime() const;
  Double GetAsDouble() const;
  Int64 GetAsInt64() const;
  Integer GetAsInteger() const;
  UnicodeString GetAsString() const { return GetNodeValue(); }
  /// The text as UTF-8 bytes.
  AnsiString GetAsAnsiString() const;
  /// Null with xsi:nil; with xsi:type a value of that type; else the text, Null when there is none.
  /// An empty xsi:type raises EVnDomException cVnDomInvalidTypeInfo.
  Variant GetAsVariant() const;
  /// The same as a TValue: empty with xsi:nil or without text (but an xsi:type of a string type
  /// gives its empty string); the text as a string without xsi:type.
  TValue GetAsValue() const;
  /// GetAsVariant of the child element at AIndex (a number) or of that name; Null when there is none.
  Variant GetChildElementValue(const Variant& AIndex);
  /// Set the text; in schema-instance mode through SetAsVariant, so that xsi:type is written.
  void SetAsBoolean(bool AValue);
  void SetAsDateTime(TDateTime AValue);
  void SetAsDouble(Double AValue);
  void SetAsInt64(Int64 AValue);
  void SetAsInteger(Integer AValue);
  void SetAsString(std::u16string_view AValue);
  /// Takes UTF-8 bytes.
  void SetAsAnsiString(std::string_view AValue);
  /// Sets the text of AValue; with the xsi and xsd declarations in scope in schema-instance mode,
  /// also xsi:type (or xsi:nil="true" and no text for Empty and Null).
  void SetAsVariant(const Variant& AValue);
  /// The same for a TValue; an empty value or nil reference counts as null.
  void SetAsValue(const TValue& AValue);

  // ---- attributes by name ----
  /// The decoded value; reading an absent attribute creates it, empty.
  UnicodeString GetAttribute(std::u16string_view AName);
  UnicodeString GetAttributeNS(std::u16string_view AURI, std::u16string_view AName);
  void SetAttribute(std::u16string_view AName, std::u16string_view AValue);
  void SetAttributeNS(std::u16string_view AURI, std::u16string_view AName, std::u16string_view AValue);

  // ---- white space ----
  /// Sets xml:space to "preserve" or "default"; descendants added later inherit.
  void SetPreseveSpace(bool AValue);

  // ---- typed children ----
  TVnDOMAttrList* GetAttributes();
  TVnDOMElementList* GetElements();
  TVnDOMNodeList* GetCharNodes();
  /// The declarations in scope here, parent's first (a snapshot refreshed at each call).
  TVnDOMAttrList* GetNamespaces();
  Integer ElementCount() const { return static_cast<Integer>(ElementsView().size()); }
  Integer AttributeCount() const noexcept { return static_cast<Integer>(FAttrs.size()); }
  bool HasAttributes() const override { return !FAttrs.empty(); }
  bool HasChildElements() const { return !ElementsView().empty(); }
  const detail::PtrVector<TVnDOMNode>& AttributesView() const noexcept { return FAttrs; }
  const detail::PtrVector<TVnDOMNode>& ElementsView() const {
    EnsureOpen();
    return FElems;
  }
  const detail::PtrVector<TVnDOMNode>& CharNodesView() const {
    EnsureOpen();
    return FChars;
  }
  /// The AIndex-th CDATA child; one past the last adds an empty one.
  TVnDOMCDATA* GetCDATA(Integer AIndex);
  Integer GetCDATACount() const;

  // ---- building ----
  TVnDOMComment* AddComment(std::u16string_view AText);
  TVnDOMText* AddText(std::u16string_view AText);
  TVnDOMCDATA* AddCDATA(std::u16string_view AText);
  TVnDOMElement* AddElement(std::u16string_view AName);
  /// Declares AURI on the new element when it joins, unless a fitting declaration is in scope.
  TVnDOMElement* AddElement(std::u16string_view AURI, std::u16string_view AName);
  TVnDOMAttribute* AddAttribute(std::u16string_view AName);
  TVnDOMAttribute* AddAttribute(std::u16string_view AURI, std::u16string_view AName);
  TVnDOMComment* InsertComment(std::u16string_view AText, TVnDOMPosition APosition, TVnDOMNode* ARefNode);
  TVnDOMText* InsertText(std::u16string_view AText, TVnDOMPosition APosition, TVnDOMNode* ARefNode);
  TVnDOMCDATA* InsertCDATA(std::u16string_view AText, TVnDOMPosition APosition, TVnDOMNode* ARefNode);
  TVnDOMElement* InsertElement(std::u16string_view AName, TVnDOMPosition APosition, TVnDOMNode* ARefNode);
  TVnDOMElement* InsertElement(std::u16string_view AURI, std::u16string_view AName, TVnDOMPosition APosition,
                               TVnDOMNode* ARefNode);
  void RemoveElement(TVnDOMElement* AElement);
  void RemoveElement(std::u16string_view AName);
  /// Raises EVnDomNotFound when there is no such element.
  void RemoveElement(std::u16string_view AURI, std::u16string_view ALocalName);
  void RemoveAttribute(TVnDOMAttribute* AAttribute);
  void RemoveAttribute(std::u16string_view AName);
  void RemoveAttribute(std::u16string_view AURI, std::u16string_view ALocalName);

  // ---- lookups ----
  TVnDOMElement* FindElement(std::u16string_view AName, TVnDOMSelectOptions AOptions = {});
  TVnDOMElement* FindElement(std::u16string_view AURI, std::u16string_view ALocalName);
  TVnDOMElement* ElementByName(std::u16string_view AURI, std::u16string_view ALocalName,
                               TVnDOMSelectCheckOption ACheck);
  TVnDOMElement* ElementByName(std::u16string_view AURI, std::u16string_view AQName, bool ACreate);
  TVnDOMElement* ElementByName(std::u16string_view AName, TVnDOMSelectOptions AOptions = {},
                               TClass ANodeClass = nullptr);
  TVnDOMAttribute* FindAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions = {});
  TVnDOMAttribute* FindAttribute(std::u16string_view AURI, std::u16string_view ALocalName);
  TVnDOMAttribute* AttributeByName(std::u16string_view AURI, std::u16string_view ALocalName);
  TVnDOMAttribute* AttributeByName(std::u16string_view AURI, std::u16string_view AQName, bool ACreate);
  TVnDOMAttribute* AttributeByName(std::u16string_view AName, TVnDOMSelectOptions AOptions = {});
  bool HasChildElement(std::u16string_view AName, TVnDOMSelectOptions AOptions = {});
  bool HasChildElement(std::u16string_view AURI, std::u16string_view ALocalName);
  bool HasAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions = {});
  bool HasAttribute(std::u16string_view AURI, std::u16string_view ALocalName);
  /// Raise EVnDomNotFound on an empty list.
  TVnDOMElement* FirstElement() const;
  TVnDOMElement* LastElement() const;
  TVnDOMAttribute* FirstAttribute() const;
  TVnDOMAttribute* LastAttribute() const;
  /// The parent unchecked: the document for the root element.
  TVnDOMNode* ParentElement() const noexcept { return ParentNode(); }
  TVnDOMElement* NextElement() const;
  TVnDOMElement* PreviousElement() const;
  /// Elements (this one first) whose qualified name matches; "*" matches any prefix or local name.
  std::unique_ptr<TVnDOMElementList> CreateElementList(std::u16string_view AQName, bool ARecursive,
                                                       TVnDOMSelectOptions AOptions = {});
  /// Elements (this one first) with that namespace URI and local name.
  std::unique_ptr<TVnDOMElementList> CreateElementList(std::u16string_view AURI, std::u16string_view ALocalName,
                                                       bool ARecursive);
  /// The elements that APath selects from this element; the caller owns the list. A path that
  /// selects any other kind of node raises EVnDomHierarchyRequest.
  std::unique_ptr<TVnDOMElementList> CreateElementList(std::u16string_view APath, TVnDOMSelectOptions AOptions);
  /// The first element that APath selects, or nil; a selected node that is no element raises EInvalidCast.
  TVnDOMElement* SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions = {});

  /// The node of AList named AName; under soCreate a new ANodeClass child is added.
  TVnDOMNode* NodeByName(TVnDOMNodeListBase* AList, std::u16string_view AName, TVnDOMSelectOptions AOptions,
                         TClass ANodeClass);
  TVnDOMNode* NodeByName(TVnDOMNodeListBase* AList, std::u16string_view ANamespaceURI,
                         std::u16string_view ALocalName, TVnDOMSelectCheckOption ACheckOption);
  TVnDOMNode* NodeByName(TVnDOMNodeListBase* AList, std::u16string_view ANamespaceURI,
                         std::u16string_view ALocalName, bool ACreate, TClass ANodeClass);

  // ---- namespaces ----
  /// A declaration of AURI on this element or an ancestor element, nearest first.
  TVnDOMAttribute* FindNamespace(std::u16string_view AURI) const;
  /// Gives the element the namespace AURI: pending while detached, declared when needed in a tree.
  void SetNamespaceURI(std::u16string_view AURI);
  /// The declaration that gives this element its namespace, or nil.
  TVnDOMAttribute* GetNamespaceDecl() const noexcept { return FNamespace; }
  /// The declaration in scope with that qualified name ("xmlns", "xmlns:p"), last one wins.
  TVnDOMAttribute* FindScopeDeclaration(std::u16string_view AQName) const;
  /// The first declaration in scope whose decoded value is AURI.
  TVnDOMAttribute* FindScopeNamespace(std::u16string_view AURI) const;

  // ---- the object model ----
  TVnDOMNode* AddChild(TVnDOMNode* ANode, TVnDOMNode* ARefNode = nullptr, TVnDOMPosition APosition = rdpLast) override;
  using TVnDOMNode::AddChild;
  void RemoveChild(TVnDOMNode* ANode) override;
  void SetParentNode(TVnDOMObject* AParent) override;

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  void RefreshNamespacesSelf() override;
  void ForgetAllChildren() override;
  /// Sets FPreserveSpace down the tree, stopping at elements with their own xml:space.
  void _SetPreseveSpace(bool AValue);
  /// Space handling on joining a parent: an own xml:space attribute rules, else the parent
  /// element's (nullptr: not an element) or the default.
  void InheritPreserveSpace(const TVnDOMElement* AParentElement);
  void _GetChildElements(TVnDOMElementList& AList, std::u16string_view APrefix, TVnDOMSelectOptions AOptions,
                         bool ARecursive, std::u16string_view ALocalName);
  /// Before AChild joins or leaves the child lists.
  void OpenFor(const TVnDOMNode* AChild);
  /// The list beside FChildren that holds ANode's kind, or nullptr.
  detail::PtrVector<TVnDOMNode>* TypedListFor(const TVnDOMNode* ANode) noexcept {
    switch (ANode->GetNodeType()) {
      case ntAttribute:
        return &FAttrs;
      case ntElement:
        return &FElems;
      case ntText:
      case ntCDATA:
      case ntComment:
        return &FChars;
      default:
        return nullptr;
    }
  }

  detail::PtrVector<TVnDOMNode> FAttrs;
  detail::PtrVector<TVnDOMNode> FElems;
  detail::PtrVector<TVnDOMNode> FChars;
  detail::NsScope* FScope = nullptr;
  TVnDOMAttribute* FNamespace = nullptr;

  friend class TVnDOMAttribute;
  friend class detail::TreeBuilder;
};

}  // namespace vn
