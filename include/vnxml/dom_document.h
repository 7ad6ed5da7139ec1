// dom_document.h: TVnDOMDocument, the top of an XML tree (unit uVnXMLDOM).
// The document owns the root element and the prolog's nodes, and holds the settings that all
// nodes of its tree read (collation, match and check options). Loading and saving arrive with
// the document loader; what is here builds and configures a tree by program.
#pragma once

#include "vnxml/dom_element.h"

namespace vn {

class TVnDOMDocument : public TVnDOMNode {
  VN_DECLARE_CLASS(TVnDOMDocument, TVnDOMNode)
 public:
  /// An empty document with the unit-level defaults.
  TVnDOMDocument();
  ~TVnDOMDocument() override;

  TVnDOMElement* GetRootNode() const noexcept { return FRootNode; }
  /// Raises EVnDomException when the document has a root element already.
  TVnDOMElement* CreateRootNode(std::u16string_view AName);
  /// The same, with a declaration of AURI (xmlns or xmlns:prefix) on the root.
  TVnDOMElement* CreateRootNode(std::u16string_view AURI, std::u16string_view AName);
  TVnDOMComment* AddComment(std::u16string_view AText);

  bool GetCaseSensitive() const override;
  /// False chooses TVnXPathCollationASCIICI; true leaves a case-sensitive collation in place.
  void SetCaseSensitive(bool AValue);
  TVnXPathCollationClass GetCollation() const override { return FCollation; }
  void SetCollation(TVnXPathCollationClass AValue) { FCollation = AValue; }
  TVnDOMSelectMatchOption GetSelectMatchOption() const override { return FSelectMatchOption; }
  void SetSelectMatchOption(TVnDOMSelectMatchOption AValue) { FSelectMatchOption = AValue; }
  TVnDOMSelectCheckOption GetSelectCheckOption() const noexcept { return FSelectCheckOption; }
  void SetSelectCheckOption(TVnDOMSelectCheckOption AValue) { FSelectCheckOption = AValue; }
  bool GetUseSchemaInstance() const noexcept { return FUseSchemaInstance; }
  TVnDOMLoadState GetLoadState() const noexcept { return FLoadState; }
  /// For the loader: lsLoading while a load runs, lsLoaded after it.
  void SetLoadState(TVnDOMLoadState AValue) noexcept { FLoadState = AValue; }

  TVnDOMNode* AppendChild(TVnDOMNode* ANode) override;
  void RemoveChild(TVnDOMNode* ANode) override;
  void Clear() override;
  /// Raises EVnDomNotSupported: a document is not cloned by CloneNode.
  std::unique_ptr<TVnDOMNode> CreateClone() const override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;

  TVnXPathCollationClass FCollation;
  TVnDOMSelectMatchOption FSelectMatchOption;
  TVnDOMSelectCheckOption FSelectCheckOption;
  TVnDOMElement* FRootNode = nullptr;
  bool FUseSchemaInstance = false;
};

}  // namespace vn
