// TVnSAXJSONReader: the JSON reading loop with the SAX handlers as the output of its events.
#include "vnxml/sax_json_reader.h"

#include "bridge/json_events.h"
#include "vnxml/dom_document.h"

namespace vn {


namespace {

// The handler's side: attribute sets made once per reader stand for the type marks.
class HandlerOut {
 public:
  HandlerOut(IVnSAXContentHandler* AContent, TVnSAXXMAttributes* ARoot, std::unique_ptr<TVnSAXXMAttributes>* AValues,
             TVnSAXXMAttributes* AEmpty)
      : Content(AContent), Root(ARoot), Values(AValues), Empty(AEmpty) {}

  void StartDocument() { Content->StartDocument(); }
  void EndDocument() { Content->EndDocument(); }
  void StartRoot(std::u16string_view AName) { Content->StartElement({}, AName, AName, Root); }
  void StartElement(std::u16string_view ALocalName, std::u16string_view AQName, int AKind) {
    Content->StartElement({}, ALocalName, AQName, AKind == detail::kNoValue ? Empty : Values[AKind].get());
  }
  void Characters(std::u16string_view AText) { Content->Characters(AText); }
  void EndElement(std::u16string_view AName) { Content->EndElement({}, AName, AName); }

 private:
  IVnSAXContentHandler* Content;
  TVnSAXXMAttributes* Root;
  std::unique_ptr<TVnSAXXMAttributes>* Values;
  TVnSAXXMAttributes* Empty;
};

}  // namespace

TVnSAXJSONReader::TVnSAXJSONReader() : FRootAttributes(std::make_unique<TVnSAXXMAttributes>()) {
  FRootAttributes->Add(detail::cVnBridgeXsiPrefix, detail::cVnBridgeXsiDeclaration, {}, cVnXSINamespaceURI,
                       TVnSAXAttributeType::CDATA);
  FRootAttributes->Add(detail::cVnBridgeXsdPrefix, detail::cVnBridgeXsdDeclaration, {}, cVnXSDNamespaceURI,
                       TVnSAXAttributeType::CDATA);
  for (int kind = 0; kind < 4; ++kind) {
    const detail::BridgeTypeMark& mark = detail::kBridgeTypeMarks[kind];
    FValueAttributes[kind] = std::make_unique<TVnSAXXMAttributes>();
    FValueAttributes[kind]->Add(mark.LocalName, mark.QName, mark.Xsi ? cVnXSINamespaceURI : cVnXSDNamespaceURI,
                                mark.Value, TVnSAXAttributeType::CDATA);
  }
}

TVnSAXJSONReader::~TVnSAXJSONReader() = default;

std::unique_ptr<TVnTextParser> TVnSAXJSONReader::CreateParser(TStream* AStream, bool AOwnsStream, bool,
                                                              Word ACodePage) {
  return std::make_unique<TVnJSONTextParserEx>(AStream, AOwnsStream, ACodePage);
}

void TVnSAXJSONReader::InternalParse() {
  // Raised outside the failure path: no handler hears of them.
  if (!FContentHandler)
    throw EVnJSONException(cVnJSONErrNoContentHandler, UnicodeString(_cVnJSONNoContentHandler));
  if (!FErrorHandler) throw EVnJSONException(cVnJSONErrNoErrorHandler, UnicodeString(_cVnJSONNoErrorHandler));
  VnAssert(FParser != nullptr, u"TVnSAXJSONReader.InternalParse: no parser");
  // The handlers are held for the whole parse even if one of them replaces another.
  IPtr<IVnSAXContentHandler> content = FContentHandler;
  IPtr<IVnSAXErrorHandler> errors = FErrorHandler;
  try {
    ReadContent();
  } catch (const std::exception& e) {
    // Where the scan stands: after an early end of the text, the place where it ended.
    const detail::TextCursor& cursor = FParser->Cursor();
    MarkConstructStart((cursor.Cur - cursor.Begin) / FParser->UnitSize());
    ReportFailure(e);
    throw;
  }
}

void TVnSAXJSONReader::ReadContent() {
  HandlerOut out(FContentHandler.Get(), FRootAttributes.get(), FValueAttributes, FEmptyAttributes.get());
  detail::RunXmlEventLoop(*GetJSONParser(), out);
}

}  // namespace vn
