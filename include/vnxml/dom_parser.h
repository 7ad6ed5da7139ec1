// dom_parser.h: TVnDOMParser, the road from XML text to a tree of DOM nodes (unit uVnXMLDOM).
// It hears the reader's events and appends a node for each, keeping text in its escaped form.
// A parser lives for one load; the node it fills frees it. This class itself builds straight
// from the reader's scan; a parser of a derived class hears every event through its handlers.
#pragma once

#include <functional>
#include <memory>

#include "vnxml/dom_node.h"
#include "vnxml/sax_contract.h"

namespace vn {

class TVnSAXReader;
namespace detail {
class LoadRecorder;
class TreeBuilder;
}

class TVnDOMParser : public TVnObject,
                     public IVnSAXErrorHandler,
                     public IVnSAXContentHandler,
                     public IVnSAXLexicalHandler {
  VN_DECLARE_CLASS(TVnDOMParser, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IVnSAXErrorHandler, IVnSAXContentHandler, IVnSAXLexicalHandler)
 public:
  /// A parser that fills ANode (a document takes one root, an element a fragment).
  explicit TVnDOMParser(TVnDOMNode* ANode);
  ~TVnDOMParser() override;

  /// Reads AStream from its position (white space before the first "<" skipped) into the node;
  /// code page 0 leaves the choice to the text's declaration. Memory streams are read in place.
  void Parse(TStream& AStream, Word ACodePage);
  /// The same over ASize bytes at AText, which stay the caller's and are scanned in place.
  void Parse(const void* AText, Int64 ASize, Word ACodePage);

  /// A load into a document keeps its root element's content as compact records and makes its
  /// nodes on first access (any read of child nodes, or a change that decides how they read);
  /// off, every node is made during the load. The tree is the same either way.
  bool DeferChildren = true;

  TVnDOMParseError OnParseWarning;
  TVnDOMParseError OnParseError;
  TVnDOMParseError OnParseFatalError;

  // IVnSAXErrorHandler
  void Warning(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) override;
  void Error(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) override;
  void FatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) override;
  // IVnSAXContentHandler
  void SetDocumentLocator(IVnSAXLocator* ALocator) override { FLocator = ALocator; }
  void Characters(std::u16string_view AText) override;
  void EndDocument() override;
  void EndElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName,
                  std::u16string_view AQName) override;
  void EndPrefixMapping(std::u16string_view) override {}
  void IgnorableWhitespace(std::u16string_view AWhiteSpace) override;
  void ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) override;
  void SkippedEntity(std::u16string_view) override {}
  void StartDocument() override {}
  void StartElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName, std::u16string_view AQName,
                    IVnSAXAttributes* AAttributes) override;
  void StartPrefixMapping(std::u16string_view, std::u16string_view) override {}
  // IVnSAXLexicalHandler
  void Comment(std::u16string_view AComment) override;
  void StartCDATA() override { FInCDATA = true; }
  void StartDTD() override {}
  void StartEntity(std::u16string_view) override {}
  void EndCDATA() override { FInCDATA = false; }
  void EndDTD() override {}
  void EndEntity(std::u16string_view) override {}

 private:
  /// The builder of this parse, made on the first event for a reader not run by Parse.
  detail::TreeBuilder& Builder();
  /// Ends the load: what was read becomes a whole tree.
  void Finish();

  TVnDOMNode* FTarget;
  IVnSAXLocator* FLocator = nullptr;
  std::unique_ptr<detail::TreeBuilder> FBuilder;
  std::unique_ptr<detail::LoadRecorder> FRecorder;  // deferring loads: the sink before FBuilder
  bool FInCDATA = false;
};

}  // namespace vn
