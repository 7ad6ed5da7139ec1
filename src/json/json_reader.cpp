// TVnJSONReader: the five entry points, the scanner's life, the handler sink and the failure path.
#include "json/json_read_loop.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"

namespace vn {

namespace {

// The reader's own sink: spans become UTF-16 views, valid for the handler's call. UTF-8 takes
// the fast decoder, and numbers and literals, which are ASCII by the loop's rules, are widened
// without a look at their bytes.
class HandlerSink {
 public:
  HandlerSink(const TVnTextParser& AParser, IVnJSONContentHandler* AContent)
      : P(AParser), Content(AContent), Utf8(AParser.GetCharacterSetType() == csUTF8) {}

  void StartDocument() { Content->StartDocument(); }
  void EndDocument() { Content->EndDocument(); }
  void StartObject() { Content->StartObject(); }
  void EndObject() { Content->EndObject(); }
  void StartArray() { Content->StartArray(); }
  void EndArray() { Content->EndArray(); }
  void EndMember() { Content->EndMember(); }
  template <class U>
  void StartMember(std::basic_string_view<U> AName) {
    Content->StartMember(Text(AName));
  }
  template <class U>
  void Value(TVnJSONSimpleDataType AKind, std::basic_string_view<U> AText) {
    if constexpr (std::is_same_v<U, uint8_t>)
      if (AKind != jdtString) return Content->Value(AKind, Widen(AText));
    Content->Value(AKind, Text(AText));
  }

 private:
  std::u16string_view Text(std::u16string_view ASpan) { return ASpan; }
  std::u16string_view Text(std::basic_string_view<uint8_t> ASpan) {
    if (Utf8) return detail::DecodeUtf8(ASpan.data(), ASpan.data() + ASpan.size(), Buffer);
    return detail::SpanView(P, ASpan, Buffer);
  }
  std::u16string_view Widen(std::basic_string_view<uint8_t> ASpan) {
    if (Buffer.size() < ASpan.size()) Buffer.resize(std::max(ASpan.size(), 2 * Buffer.size()));
    char16_t* d = Buffer.data();
    for (uint8_t c : ASpan) *d++ = c;
    return {Buffer.data(), ASpan.size()};
  }

  const TVnTextParser& P;
  IVnJSONContentHandler* Content;
  bool Utf8;
  std::u16string Buffer;
};

}  // namespace

TVnJSONReader::TVnJSONReader() : FPublicID(IntToStr(static_cast<Int64>(reinterpret_cast<uintptr_t>(this)))) {
  SetAutoDestroy(false);
}

TVnJSONReader::~TVnJSONReader() = default;

void TVnJSONReader::Run(TStream* AStream, Word ACodePage) {
  struct ParserScope {
    std::unique_ptr<TVnJSONTextParser>& Parser;
    ~ParserScope() { Parser.reset(); }
  } scope{FParser};
  FParser = std::make_unique<TVnJSONTextParser>(AStream, false, ACodePage);
  InternalParse();
}

void TVnJSONReader::ParseStream(TStream* AStream, Word ACodePage, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  Run(AStream, ACodePage);
}

void TVnJSONReader::ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  TFileStream stream(AFileName, AMode);
  Run(&stream, VnGetCodePage(&stream));
}

void TVnJSONReader::ParseBuffer(const void* ABuffer, Cardinal ASize, Word ACodePage, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  TVnMemoryStream stream(ABuffer, ABuffer ? ASize : 0);
  Run(&stream, ACodePage);
}

void TVnJSONReader::Parse(std::u16string_view AText, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  // An empty text takes the empty stream's constructor: the copying one doesn't expect it.
  TVnStringStream stream = AText.empty() ? TVnStringStream(cVnCodePageUTF16LE) : TVnStringStream(AText);
  Run(&stream, cVnCodePageUTF16LE);
}

void TVnJSONReader::Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID) {
  FPublicID.assign(APublicID);
  TVnStringStream stream = AText.empty() ? TVnStringStream(ACodePage) : TVnStringStream(AText, ACodePage);
  Run(&stream, ACodePage);
}

void TVnJSONReader::InternalParse() {
  // Raised outside the failure path: no handler hears of them.
  if (!FContentHandler)
    throw EVnJSONException(cVnJSONErrNoContentHandler, UnicodeString(_cVnJSONNoContentHandler));
  if (!FErrorHandler) throw EVnJSONException(cVnJSONErrNoErrorHandler, UnicodeString(_cVnJSONNoErrorHandler));
  VnAssert(FParser != nullptr, u"TVnJSONReader.InternalParse: no parser");
  // The handlers are held for the whole parse even if one of them replaces another.
  IPtr<IVnJSONContentHandler> content = FContentHandler;
  IPtr<IVnJSONErrorHandler> errors = FErrorHandler;
  try {
    if (FLoopOverride.Run) {
      FLoopOverride.Run(*this, FLoopOverride.Context);
    } else {
      HandlerSink sink(*FParser, content.Get());
      detail::RunJSONReadLoop(*this, sink);
    }
  } catch (const std::exception& e) {
    ReportFailure(e);
    throw;
  }
}

void TVnJSONReader::ReportFailure(const std::exception& AError) {
  auto* error = dynamic_cast<const Exception*>(&AError);
  FUnexpectedEOF = dynamic_cast<const EVnTextParserEOF*>(&AError) != nullptr;
  UnicodeString message = error ? error->Message() : Utf8ToUnicode(AError.what());
  FErrorHandler->FatalError(this, message);
}

// ---- position reporting ----

Integer TVnJSONReader::GetLineNr() {
  if (FUnexpectedEOF) return FLineNr;
  return FParser ? FParser->GetLineNr() : -1;
}

Integer TVnJSONReader::GetColNr() {
  if (FUnexpectedEOF) return FColNr;
  return FParser ? FParser->GetColNr() : -1;
}

}  // namespace vn
