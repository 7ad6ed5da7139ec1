// dom_document.h: TVnDOMDocument, the top of an XML tree (unit uVnXMLDOM).
// The document owns the root element and the prolog's nodes, holds the settings that all nodes
// of its tree read (collation, match and check options), and the encoding used for output.
// It loads from streams, files and strings, and saves formatted or plain in any code page.
#pragma once

#include "vnxml/dom_element.h"
#include "vnxml/dom_messages.h"
#include "vnxml/dom_parser.h"

namespace vn {

class TVnDOMProcessingInstruction;
class TVnDOMDocument;

namespace detail {
/// The value against which lookups in ADocument's namespace scopes are cached (nodes outside
/// any document share one of their own); it changes whenever a declaration there changes.
uint64_t NamespaceEpoch(const TVnDOMDocument* ADocument) noexcept;
/// A declaration's name or value changed in ADocument (nullptr: outside any document).
void NamespacesChanged(TVnDOMDocument* ADocument) noexcept;
}  // namespace detail

inline constexpr char16_t cVnXSINamespaceURI[] = u"http://www.w3.org/2001/XMLSchema-instance";
inline constexpr char16_t cVnXSDNamespaceURI[] = u"http://www.w3.org/2001/XMLSchema";

class TVnDOMDocument : public TVnDOMNode {
  VN_DECLARE_CLASS(TVnDOMDocument, TVnDOMNode)
 public:
  /// An empty document with the unit-level defaults.
  TVnDOMDocument();
  /// A document loaded from the file AFileName opened with AMode (fmOpenRead ...).
  TVnDOMDocument(std::u16string_view AFileName, Word AMode);
  /// A document loaded from AStream in ACodePage (0: detected from the text).
  TVnDOMDocument(TStream& AStream, Word ACodePage);
  /// A document loaded from XML text.
  static std::unique_ptr<TVnDOMDocument> FromXML(std::u16string_view AXML);
  /// A document loaded from 8-bit XML text whose declaration tells the code page.
  static std::unique_ptr<TVnDOMDocument> FromAnsiXML(std::string_view AText);
  ~TVnDOMDocument() override;

  TVnDOMElement* GetRootNode() const noexcept { return FRootNode; }
  /// Raises EVnDomException when the document has a root element already.
  TVnDOMElement* CreateRootNode(std::u16string_view AName);
  /// The same, with a declaration of AURI (xmlns or xmlns:prefix) on the root.
  TVnDOMElement* CreateRootNode(std::u16string_view AURI, std::u16string_view AName);
  TVnDOMComment* AddComment(std::u16string_view AText);

  // ---- loading ----
  /// Clears the document and loads AXML; an empty text leaves it empty.
  void LoadXML(std::u16string_view AXML);
  /// Loads from AStream (no clearing), the code page found from a mark or the declaration.
  void LoadXML(TStream& AStream) { LoadFromStream(AStream); }
  void LoadXML(std::u16string_view AFileName, Word AMode);
  /// Clears the document and loads 8-bit text; the declaration decides the code page.
  void LoadFromAnsiXML(std::string_view AText);
  void LoadFromXML(std::u16string_view AText) { LoadXML(AText); }
  /// Adds what AStream holds to the document; the code page comes from a byte-order mark, the
  /// declaration's encoding in the first 1025 characters, or UTF-8.
  void LoadFromStream(TStream& AStream);
  /// Adds what AStream holds, read in ACodePage.
  void LoadFromStream(TStream& AStream, Word ACodePage) override;
  void LoadFromStreamEx(TStream& AStream) { LoadFromStream(AStream); }
  /// As LoadXML(file), and remembers AFileName as the document's URI.
  void LoadFromFile(std::u16string_view AFileName, Word AMode);

  // ---- saving ----
  /// Writes the tree in ACodePage, behind a byte-order mark for 1200 and 65001 if asked for.
  void SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, bool AWriteBOM);
  using TVnDOMNode::SaveToStream;
  /// The same in the code page of GetEncoding (a named overload: (stream, 1200, false) must
  /// stay unambiguous).
  void SaveToStreamEx(TStream& AStream, bool AFormatted, bool AWriteBOM);
  /// Creates (or replaces) AFileName with the document's text.
  void SaveToFile(std::u16string_view AFileName, bool AFormatted = false, bool AWriteBOM = false);

  // ---- encoding and processing instructions ----
  /// The output encoding's name, "UTF-8" when none was set.
  UnicodeString GetEncoding() const { return FEncoding.empty() ? UnicodeString(u"UTF-8") : FEncoding; }
  Word GetCodePage() const noexcept { return FCodePage; }
  /// Sets the encoding and writes it into the XML declaration, creating one if needed.
  void SetEncoding(std::u16string_view AValue);
  /// Sets the code page and its name; the declaration is left alone.
  void SetCodePage(Word AValue);
  /// The data of the processing instruction ATarget; raises EVnDomNotFound when there is none.
  UnicodeString GetProcessingInstruction(std::u16string_view ATarget) const;
  /// Sets (or creates, near the front) the processing instruction ATarget.
  void SetProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData);
  /// The processing instruction ATarget at document level, or nil.
  TVnDOMProcessingInstruction* FindProcessingInstruction(std::u16string_view ATarget) const;
  const UnicodeString& GetDocumentURI() const noexcept { return FDocumentURI; }
  void SetDocumentURI(std::u16string_view AValue) { FDocumentURI.assign(AValue); }

  // ---- settings ----
  bool GetCaseSensitive() const override;
  /// False chooses TVnXPathCollationASCIICI; true leaves a case-sensitive collation in place.
  void SetCaseSensitive(bool AValue);
  TVnXPathCollationClass GetCollation() const override { return FCollation; }
  /// The load's records still waiting below are read by the collation they were loaded with.
  void SetCollation(TVnXPathCollationClass AValue) {
    OpenSubtree();
    FCollation = AValue;
  }
  TVnDOMSelectMatchOption GetSelectMatchOption() const override { return FSelectMatchOption; }
  void SetSelectMatchOption(TVnDOMSelectMatchOption AValue) { FSelectMatchOption = AValue; }
  TVnDOMSelectCheckOption GetSelectCheckOption() const noexcept { return FSelectCheckOption; }
  void SetSelectCheckOption(TVnDOMSelectCheckOption AValue) { FSelectCheckOption = AValue; }
  /// Loads, of XML or of JSON through the bridge, keep the root element's content as compact
  /// records and make child nodes on first access (the default): a loaded document costs little
  /// until it is read, and a part never read costs no nodes; the tree is the same either way. As
  /// reading makes nodes, threads that share a document read it under one lock, or load it with
  /// this off (every node made during the load).
  bool GetDeferChildren() const noexcept { return FDeferChildren; }
  void SetDeferChildren(bool AValue) noexcept { FDeferChildren = AValue; }
  bool GetUseSchemaInstance() const noexcept { return FUseSchemaInstance; }
  /// True also declares the xsi and xsd namespaces on the root when they are missing.
  void SetUseSchemaInstance(bool AValue);
  TVnDOMLoadState GetLoadState() const noexcept { return FLoadState; }
  /// For the loader: lsLoading while a load runs, lsLoaded after it.
  void SetLoadState(TVnDOMLoadState AValue) noexcept { FLoadState = AValue; }

  // ---- selection by path (the messages stand in dom_path.h) ----
  /// The elements at APath below the root; with no root an empty list (or the failure AOptions ask for).
  std::unique_ptr<TVnDOMElementList> CreateElementList(std::u16string_view APath, TVnDOMSelectOptions AOptions = {});
  /// The element at APath, or nil; with no root nil (or the failure AOptions ask for).
  TVnDOMElement* SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions = {});

  /// The first element to join the document, by any road, becomes its root.
  TVnDOMNode* AddChild(TVnDOMNode* ANode, TVnDOMNode* ARefNode = nullptr, TVnDOMPosition APosition = rdpLast) override;
  using TVnDOMNode::AddChild;
  TVnDOMNode* AppendChild(TVnDOMNode* ANode) override;
  void RemoveChild(TVnDOMNode* ANode) override;
  void Clear() override;
  /// Raises EVnDomNotSupported: a document is not cloned by CloneNode.
  std::unique_ptr<TVnDOMNode> CreateClone() const override;
  void _SaveToStream(TStream& AStream, Word ACodePage, bool AFormatted, Integer& ALevel) override;

 protected:
  TVnDOMObjectImpl* CreateDOMImpl() override;
  /// Called after each load that succeeded; nothing here.
  virtual void DoXMLLoaded() {}
  /// Reads the encoding from the xml declaration into FEncoding and FCodePage.
  void ReCalcEncoding();

  TVnXPathCollationClass FCollation;
  TVnDOMSelectMatchOption FSelectMatchOption;
  TVnDOMSelectCheckOption FSelectCheckOption;
  TVnDOMElement* FRootNode = nullptr;
  bool FUseSchemaInstance = false;
  bool FDeferChildren = true;
  UnicodeString FEncoding;
  Word FCodePage = 0;
  UnicodeString FDocumentURI;
  // Per document, so that declarations changed in one tree leave the caches of others valid.
  uint64_t FNamespaceEpoch;

  friend class TVnDOMParser;
  friend uint64_t detail::NamespaceEpoch(const TVnDOMDocument*) noexcept;
  friend void detail::NamespacesChanged(TVnDOMDocument*) noexcept;
  friend class detail::TreeBuilder;
};

/// The text AXML loaded and written again, formatted.
UnicodeString VnFormatXML(std::u16string_view AXML);
/// The same for 8-bit text (its declaration tells the code page).
UnicodeString VnFormatXML(std::string_view AXML);

}  // namespace vn
