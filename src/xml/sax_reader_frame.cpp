// TVnSAXReader: the five entry points, the scanner's life and position reporting.
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/sax_reader.h"

namespace vn {

TVnSAXReader::TVnSAXReader() : FEmptyAttributes(std::make_unique<TVnSAXXMAttributes>()) { SetAutoDestroy(false); }

TVnSAXReader::~TVnSAXReader() = default;

void TVnSAXReader::Run(TStream* AStream, bool ADetectBOM, Word ACodePage) {
  struct ParserScope {
    std::unique_ptr<TVnTextParser>& Parser;
    ~ParserScope() { Parser.reset(); }
  } scope{FParser};
  FParser = CreateParser(AStream, false, ADetectBOM, ACodePage);
  InternalParse();
}

void TVnSAXReader::ParseStream(TStream* AStream, Word ACodePage, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  Run(AStream, false, ACodePage);
}

void TVnSAXReader::ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  TFileStream stream(AFileName, AMode);
  Run(&stream, true, 0);
}

void TVnSAXReader::ParseBuffer(const void* ABuffer, Int64 ASize, Word ACodePage, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  TVnMemoryStream stream(ABuffer, ABuffer ? ASize : 0);
  Run(&stream, false, ACodePage);
}

void TVnSAXReader::Parse(std::u16string_view AText, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  // The caller's text is scanned where it stands.
  TVnMemoryStream stream(AText.data(), static_cast<Int64>(AText.size() * sizeof(char16_t)));
  Run(&stream, false, cVnCodePageUTF16LE);
}

void TVnSAXReader::Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  TVnMemoryStream stream(AText.data(), static_cast<Int64>(AText.size()));
  Run(&stream, false, ACodePage);
}

// ---- position reporting ----

void TVnSAXReader::ConstructLineCol(Integer& ALine, Integer& ACol) const {
  if (FParser)
    FParser->GetLineCol(FConstructPos, ALine, ACol);
  else
    ALine = ACol = -1;
}

Integer TVnSAXReader::GetPosition() { return FParser ? FParser->GetPosition() : -1; }

Integer TVnSAXReader::GetLineNr() {
  if (FUnexpectedEOF) return FLineNr;
  return FParser ? FParser->GetLineNr() : -1;
}

Integer TVnSAXReader::GetColNr() {
  if (FUnexpectedEOF) return FColNr;
  return FParser ? FParser->GetColNr() : -1;
}

void TVnSAXReader::ReportFailure(const std::exception& AError) {
  auto* error = dynamic_cast<const Exception*>(&AError);
  FUnexpectedEOF = dynamic_cast<const EVnTextParserEOF*>(&AError) != nullptr;
  if (FUnexpectedEOF) ConstructLineCol(FLineNr, FColNr);
  if (FErrorHandler) {
    UnicodeString message = error ? error->Message() : Utf8ToUnicode(AError.what());
    FErrorHandler->FatalError(this, message);
  }
}

}  // namespace vn
