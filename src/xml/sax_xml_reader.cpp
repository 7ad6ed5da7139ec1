// TVnSAXXMLReader: the reading loop with the handlers as its sink.
#include "xml/xml_read_loop.h"

namespace vn {

namespace {

// The reader's own sink: every event goes to the handlers, a start tag's attributes into the
// reader's reused attribute records.
class HandlerSink {
 public:
  static constexpr bool kNamespaces = true;
  static constexpr bool kEndTagNames = true;

  HandlerSink(IVnSAXContentHandler* AContent, IVnSAXLexicalHandler* ALexical, TVnSAXXMAttributes* ATagAttributes,
              TVnSAXXMAttributes* AEmptyAttributes)
      : Content(AContent), Lexical(ALexical), Attributes(ATagAttributes), Empty(AEmptyAttributes) {}

  void StartDocument() { Content->StartDocument(); }
  void EndDocument() { Content->EndDocument(); }
  void StartTag(std::u16string_view) { Attributes->Clear(); }
  void Attribute(std::u16string_view ALocal, std::u16string_view AQName, std::u16string_view AURI,
                 std::u16string_view AValue, bool) {
    Attributes->Add(ALocal, AQName, AURI, AValue, TVnSAXAttributeType::CDATA);
  }
  void StartElement(std::u16string_view AURI, std::u16string_view ALocal, std::u16string_view AQName,
                    bool AHasAttributes) {
    Content->StartElement(AURI, ALocal, AQName, AHasAttributes ? Attributes : Empty);
  }
  void EndElement(std::u16string_view AURI, std::u16string_view ALocal, std::u16string_view AQName) {
    Content->EndElement(AURI, ALocal, AQName);
  }
  bool KeepsWhitespace() const { return true; }
  void Characters(std::u16string_view AText) { Content->Characters(AText); }
  void IgnorableWhitespace(std::u16string_view AText) { Content->IgnorableWhitespace(AText); }
  void ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) {
    Content->ProcessingInstruction(ATarget, AData);
  }
  void StartCDATA() {
    if (Lexical) Lexical->StartCDATA();
  }
  void EndCDATA() {
    if (Lexical) Lexical->EndCDATA();
  }
  bool WantsComments() const { return Lexical != nullptr; }
  void Comment(std::u16string_view AText) { Lexical->Comment(AText); }
  void StartDTD() {
    if (Lexical) Lexical->StartDTD();
  }
  void EndDTD() {
    if (Lexical) Lexical->EndDTD();
  }

 private:
  IVnSAXContentHandler* Content;
  IVnSAXLexicalHandler* Lexical;
  TVnSAXXMAttributes* Attributes;
  TVnSAXXMAttributes* Empty;
};

}  // namespace

// ---- TVnSAXXMLReader ----

TVnSAXXMLReader::TVnSAXXMLReader() : FNamespaceList(this) {}

TVnSAXXMLReader::~TVnSAXXMLReader() = default;

std::unique_ptr<TVnTextParser> TVnSAXXMLReader::CreateParser(TStream* AStream, bool AOwnsStream, bool ADetectBOM,
                                                             Word ACodePage) {
  return std::make_unique<TVnXMLParser>(AStream, AOwnsStream, ADetectBOM, ACodePage);
}

void TVnSAXXMLReader::InternalParse() {
  // Raised outside the failure path: no handler hears of them.
  if (!FContentHandler) throw EVnXMLParseError(cVnXMLErrNoContentHandler, UnicodeString(_cVnXMLNoContentHandler));
  if (!FErrorHandler) throw EVnXMLParseError(cVnXMLErrNoErrorHandler, UnicodeString(_cVnXMLNoErrorHandler));
  VnAssert(FParser != nullptr, cVnXMLNoParser);
  // The handlers are held for the whole parse even if one of them replaces another.
  IPtr<IVnSAXContentHandler> content = FContentHandler;
  IPtr<IVnSAXErrorHandler> errors = FErrorHandler;
  IPtr<IVnSAXLexicalHandler> lexical = FLexicalHandler;
  try {
    ReadContent();
  } catch (const std::exception& e) {
    ReportFailure(e);
    throw;
  }
}

void TVnSAXXMLReader::ReadContent() {
  if (!FTagAttributes) FTagAttributes = std::make_unique<TVnSAXXMAttributes>();
  HandlerSink sink(FContentHandler.Get(), FLexicalHandler.Get(), FTagAttributes.get(), FEmptyAttributes.get());
  detail::RunXmlReadLoop(*this, sink);
}

}  // namespace vn
