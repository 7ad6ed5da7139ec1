// dom_leaves.h: the leaf nodes of the XML tree: attributes, text, comments, CDATA sections and
// processing instructions (unit uVnXMLDOM).
// Text and attribute values are stored escaped, as XML text: GetNodeValue decodes, SetNodeValue
// escapes, and loading and saving copy the stored form untouched. Comments, CDATA sections and
// processing-instruction data are stored as they are. Offsets of the editing operations count
// from 1, in characters of the decoded value.
#pragma once

#include "vnxml/dom_node.h"

namespace vn {

class TVnDOMCharacterData : public TVnDOMNode {
  VN_DECLARE_CLASS(TVnDOMCharacterData, TVnDOMNode)
 public:
  TVnDOMCharacterData();
  /// The decoded value.
  UnicodeString GetNodeValue() const override;
  /// Escapes AValue (apostrophes and quotes too) and stores it.
  void SetNodeValue(std::u16string_view AValue) override;
  /// The stored text, escaped for text nodes, plain for comments and CDATA sections, in UTF-16.
  UnicodeString GetStoredValue() const { return FNodeValue.str(); }
  /// The stored text in the form it is kept in, without a copy (see CompactString).
  const detail::CompactString& StoredText() const noexcept { return FNodeValue; }
  /// Stores ready-made text as it is.
  void SetStoredValue(std::u16string_view AValue) {
    Changing();
    FNodeValue.assign(AValue);
  }
  std::unique_ptr<TVnDOMNode> CreateClone() const override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

  UnicodeString Substring(Integer AOffset, Integer ACount) const;
  void AppendStr(std::u16string_view AText);
  void InsertStr(Integer AOffset, std::u16string_view AText);
  void DeleteStr(Integer AOffset, Integer ACount);
  void ReplaceStr(Integer AOffset, Integer ACount, std::u16string_view AText);

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  detail::CompactString FNodeValue;
  friend class detail::TreeBuilder;
};

class TVnDOMText : public TVnDOMCharacterData {
  VN_DECLARE_CLASS(TVnDOMText, TVnDOMCharacterData)
 public:
  TVnDOMText();
  /// Keeps the first AOffset characters and moves the rest into a new text node behind this one.
  TVnDOMText* SplitText(Integer AOffset);

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
};

class TVnDOMComment : public TVnDOMCharacterData {
  VN_DECLARE_CLASS(TVnDOMComment, TVnDOMCharacterData)
 public:
  TVnDOMComment();
  /// The stored text, as it is.
  UnicodeString GetNodeValue() const override;
  void SetNodeValue(std::u16string_view AValue) override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
};

class TVnDOMCDATA : public TVnDOMText {
  VN_DECLARE_CLASS(TVnDOMCDATA, TVnDOMText)
 public:
  TVnDOMCDATA();
  UnicodeString GetNodeValue() const override;
  void SetNodeValue(std::u16string_view AValue) override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
};

class TVnDOMAttribute : public TVnDOMNode {
  VN_DECLARE_CLASS(TVnDOMAttribute, TVnDOMNode)
 public:
  TVnDOMAttribute();
  UnicodeString GetNodeValue() const override;
  /// Escapes AValue (quotes, not apostrophes) and stores it.
  void SetNodeValue(std::u16string_view AValue) override;
  /// The stored (escaped) value in UTF-16.
  UnicodeString GetStoredValue() const { return FNodeValue.str(); }
  /// The stored value in the form it is kept in, without a copy (see CompactString).
  const detail::CompactString& StoredText() const noexcept { return FNodeValue; }
  /// Stores ready-made XML text as it is.
  void SetStoredValue(std::u16string_view AValue);
  /// The declaration's URI; the XML namespace for "xml:"; else empty in a tree, pending outside.
  UnicodeString GetNamespaceURI() const override;
  void SetNamespaceURI(std::u16string_view AURI);
  void SetPrefix(std::u16string_view AValue) override;
  void SetQualifiedName(std::u16string_view AName) override;
  void SetParentNode(TVnDOMObject* AParent) override;
  std::unique_ptr<TVnDOMNode> CreateClone() const override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

  /// "xmlns" (any case) or a prefix "xmlns" (any case).
  bool IsNamespace() const;
  /// The declared prefix: empty for "xmlns"; an assertion for attributes that declare nothing.
  UnicodeString NamespacePrefix() const;
  TVnDOMAttribute* NextAttribute() const;
  TVnDOMAttribute* PreviousAttribute() const;
  /// The declaration that gives this attribute its namespace, or nil.
  TVnDOMAttribute* GetNamespaceDecl() const noexcept { return FNamespace; }
  /// The owner element, or nil.
  TVnDOMElement* OwnerElement() const;

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  void RefreshNamespacesSelf() override;
  detail::CompactString FNodeValue;
  TVnDOMAttribute* FNamespace = nullptr;
  friend class TVnDOMElement;
  friend class detail::TreeBuilder;
};

class TVnDOMProcessingInstruction : public TVnDOMNode {
  VN_DECLARE_CLASS(TVnDOMProcessingInstruction, TVnDOMNode)
 public:
  TVnDOMProcessingInstruction();
  std::u16string_view GetData() const noexcept { return FData.Wide(); }
  void SetData(std::u16string_view AValue) {
    Changing();
    FData.assign(AValue);
  }
  std::unique_ptr<TVnDOMNode> CreateClone() const override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  detail::CompactString FData;
  friend class detail::TreeBuilder;
};

}  // namespace vn
