// sax_parser.h: TVnSAXParser, the event face of the SAX layer (unit uVnSAX). A component that
// is its reader's three handlers and turns each handler call into a bound event, for a host
// that would rather set callbacks than write handler classes. It reads XML and JSON alike: a
// text whose first character above the blank is "<" goes to the XML reader, any other to the
// JSON reader, which gives it as XML events (sax_json_reader.h).
// An event left empty does nothing. A handler's text and attribute set live for the call only.
// Failures: the reader reports to FatalError, which fires OnFatalError, then raises on to the
// caller; OnFinished isn't fired then, and the event can't stop the exception.
// Lifetime: a component, not counted: the reader's references to it hold nothing, its creator
// (or owner) frees it.
#pragma once

#include <functional>
#include <string_view>

#include "vnxml/common/classes.h"
#include "vnxml/common/vn_component.h"
#include "vnxml/sax_contract.h"

namespace vn {

class TVnSAXReader;

using TVnSAXOnStartDocument = std::function<void(TObject* Sender)>;
using TVnSAXOnEndDocument = std::function<void(TObject* Sender)>;
using TVnSAXOnProcessingInstruction =
    std::function<void(TObject* Sender, std::u16string_view ATarget, std::u16string_view AData)>;
using TVnSAXOnStartPrefixMapping =
    std::function<void(TObject* Sender, std::u16string_view APrefix, std::u16string_view AURI)>;
using TVnSAXOnEndPrefixMapping = std::function<void(TObject* Sender, std::u16string_view APrefix)>;
using TVnSAXOnStartElement =
    std::function<void(TObject* Sender, std::u16string_view ANamespaceURI, std::u16string_view ALocalName,
                       std::u16string_view AQName, IVnSAXAttributes* Attributes)>;
using TVnSAXOnCharacters = std::function<void(TObject* Sender, std::u16string_view AText)>;
using TVnSAXOnIgnorableWhitespace = std::function<void(TObject* Sender, std::u16string_view AWhiteSpace)>;
using TVnSAXOnEndElement = std::function<void(TObject* Sender, std::u16string_view ANamespaceURI,
                                              std::u16string_view ALocalName, std::u16string_view AQName)>;
using TVnSAXOnComment = std::function<void(TObject* Sender, std::u16string_view AComment)>;
using TVnSAXOnStartDTD = std::function<void(TObject* Sender)>;
using TVnSAXOnEndDTD = std::function<void(TObject* Sender)>;
using TVnSAXOnStartCDATA = std::function<void(TObject* Sender)>;
using TVnSAXOnEndCDATA = std::function<void(TObject* Sender)>;
using TVnSAXOnError = std::function<void(IVnSAXLocator* ALocator, std::u16string_view ErrMsg)>;

class TVnSAXParser : public TVnComponent,
                     public IVnSAXErrorHandler,
                     public IVnSAXContentHandler,
                     public IVnSAXLexicalHandler {
  VN_DECLARE_CLASS(TVnSAXParser, TVnComponent)
  VN_VNOBJECT_INTERFACES(TVnComponent, IVnSAXErrorHandler, IVnSAXContentHandler, IVnSAXLexicalHandler)
 public:
  explicit TVnSAXParser(TComponent* AOwner = nullptr);
  ~TVnSAXParser() override;

  // ---- entry points ----
  /// Fires OnStart, stands AStream on its first character above the blank (in units of
  /// ACodePage: two bytes for UTF-16 of either order), reads from there with the reader that character picks,
  /// and fires OnFinished. The stream stays the caller's.
  void ParseStream(TStream& AStream, Word ACodePage, std::u16string_view APublicID = {});
  /// The file, in the code page its byte-order mark gives (0 without one: the text decides).
  void ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID = {});
  /// ASize bytes at ABuffer, which stay the caller's.
  void ParseBuffer(const void* ABuffer, Int64 ASize, Word ACodePage, std::u16string_view APublicID = {});
  void Parse(std::u16string_view AText, std::u16string_view APublicID = {});
  void Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID = {});
  // The other entries wrap ParseStream and fire OnStart and OnFinished around it as well: a
  // successful parse through them fires each twice.

  /// The reader of the running parse, nullptr outside one.
  TVnSAXReader* GetReader() const { return FReader; }
  /// The locator a reader or host gave with SetDocumentLocator.
  IVnSAXLocator* GetLocator() const { return FLocator; }

  // ---- events ----
  TVnSAXOnStartDocument OnStartDocument;
  TVnSAXOnEndDocument OnEndDocument;
  /// Kept for hosts that bind it; no reader fires it.
  TVnSAXOnEndDocument OnEndProlog;
  TVnSAXOnProcessingInstruction OnProcessingInstruction;
  TVnSAXOnStartPrefixMapping OnStartPrefixMapping;
  TVnSAXOnEndPrefixMapping OnEndPrefixMapping;
  TVnSAXOnStartElement OnStartElement;
  TVnSAXOnCharacters OnCharacters;
  TVnSAXOnIgnorableWhitespace OnIgnorableWhitespace;
  TVnSAXOnEndElement OnEndElement;
  TVnSAXOnComment OnComment;
  TVnSAXOnStartDTD OnStartDTD;
  TVnSAXOnEndDTD OnEndDTD;
  TVnSAXOnStartCDATA OnStartCDATA;
  TVnSAXOnEndCDATA OnEndCDATA;
  TVnSAXOnError OnWarning;
  TVnSAXOnError OnError;
  TVnSAXOnError OnFatalError;
  TNotifyEvent OnStart;
  TNotifyEvent OnFinished;

  // ---- IVnSAXErrorHandler ----
  void Warning(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) override;
  void Error(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) override;
  void FatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) override;
  // ---- IVnSAXContentHandler ----
  void SetDocumentLocator(IVnSAXLocator* ALocator) override { FLocator = ALocator; }
  void Characters(std::u16string_view AText) override;
  void EndDocument() override;
  void EndElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName,
                  std::u16string_view AQName) override;
  void EndPrefixMapping(std::u16string_view APrefix) override;
  void IgnorableWhitespace(std::u16string_view AWhiteSpace) override;
  void ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) override;
  void SkippedEntity(std::u16string_view) override {}
  void StartDocument() override;
  void StartElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName, std::u16string_view AQName,
                    IVnSAXAttributes* AAttributes) override;
  void StartPrefixMapping(std::u16string_view APrefix, std::u16string_view AURI) override;
  // ---- IVnSAXLexicalHandler ----
  void Comment(std::u16string_view AComment) override;
  void StartCDATA() override;
  void StartDTD() override;
  void StartEntity(std::u16string_view) override {}
  void EndCDATA() override;
  void EndDTD() override;
  void EndEntity(std::u16string_view) override {}

 private:
  void Fire(const TNotifyEvent& AEvent) {
    if (AEvent) AEvent(this);
  }

  IVnSAXLocator* FLocator = nullptr;
  TVnSAXReader* FReader = nullptr;
};

}  // namespace vn
