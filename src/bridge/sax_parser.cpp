// TVnSAXParser: the reader picked by the first significant character, and handler calls
// turned into events.
#include "vnxml/sax_parser.h"

#include <memory>

#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/sax_json_reader.h"
#include "vnxml/sax_reader.h"

namespace vn {

namespace {

// Stands AStream on its first unit above the blank (or on its last unit, when there is none)
// and gives that unit; 0 for an empty stream. Read in blocks, not unit by unit.
uint32_t StandOnFirstSignificant(TStream& AStream, Word ACodePage) {
  const bool wide = ACodePage == cVnCodePageUTF16LE || ACodePage == cVnCodePageUTF16BE;
  const Int64 unit = wide ? 2 : 1;
  Byte block[4096];
  Int64 at = AStream.GetPosition();
  uint32_t last = 0;
  for (;;) {
    const Int64 got = AStream.Read(block, sizeof(block)) / unit * unit;
    if (got <= 0) break;
    for (Int64 i = 0; i < got; i += unit) {
      last = wide ? (ACodePage == cVnCodePageUTF16LE ? block[i] | block[i + 1] << 8 : block[i] << 8 | block[i + 1])
                  : block[i];
      if (last > 32) {
        AStream.SetPosition(at + i);
        return last;
      }
    }
    at += got;
    AStream.SetPosition(at);  // a block cut inside a unit is read again from the unit
  }
  AStream.SetPosition(at >= unit ? at - unit : at);
  return last;
}

}  // namespace

TVnSAXParser::TVnSAXParser(TComponent* AOwner) : TVnComponent(AOwner) {
  // The reader's interface references hold no count: the creator or owner frees the component.
  SetAutoDestroy(false);
}

TVnSAXParser::~TVnSAXParser() = default;

// ---- entry points ----

void TVnSAXParser::ParseStream(TStream& AStream, Word ACodePage, std::u16string_view APublicID) {
  Fire(OnStart);
  std::unique_ptr<TVnSAXReader> reader;
  if (StandOnFirstSignificant(AStream, ACodePage) == '<')
    reader = std::make_unique<TVnSAXXMLReader>();
  else
    reader = std::make_unique<TVnSAXJSONReader>();
  {
    struct Detach {
      TVnSAXParser& Parser;
      TVnSAXReader& Reader;
      ~Detach() {
        Reader.SetErrorHandler(nullptr);
        Reader.SetLexicalHandler(nullptr);
        Reader.SetContentHandler(nullptr);
        Parser.FReader = nullptr;
      }
    } detach{*this, *reader};
    FReader = reader.get();
    reader->SetErrorHandler(IPtr<IVnSAXErrorHandler>(this));
    reader->SetLexicalHandler(IPtr<IVnSAXLexicalHandler>(this));
    reader->SetContentHandler(IPtr<IVnSAXContentHandler>(this));
    reader->ParseStream(&AStream, ACodePage, APublicID);
  }
  Fire(OnFinished);
}

void TVnSAXParser::ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID) {
  Fire(OnStart);
  TFileStream stream(AFileName, AMode);
  const Word codePage = VnGetCodePage(&stream);
  ParseStream(stream, codePage, APublicID);
  Fire(OnFinished);
}

void TVnSAXParser::ParseBuffer(const void* ABuffer, Int64 ASize, Word ACodePage, std::u16string_view APublicID) {
  Fire(OnStart);
  TVnMemoryStream stream(ABuffer, ABuffer ? ASize : 0);
  ParseStream(stream, ACodePage, APublicID);
  Fire(OnFinished);
}

void TVnSAXParser::Parse(std::u16string_view AText, std::u16string_view APublicID) {
  Fire(OnStart);
  TVnMemoryStream stream(AText.data(), static_cast<Int64>(AText.size() * sizeof(char16_t)));
  ParseStream(stream, cVnCodePageUTF16LE, APublicID);
  Fire(OnFinished);
}

void TVnSAXParser::Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID) {
  Fire(OnStart);
  TVnMemoryStream stream(AText.data(), static_cast<Int64>(AText.size()));
  ParseStream(stream, ACodePage, APublicID);
  Fire(OnFinished);
}

// ---- handlers: each fires its event when one is bound ----

void TVnSAXParser::Warning(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) {
  if (OnWarning) OnWarning(ALocator, AErrMsg);
}

void TVnSAXParser::Error(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) {
  if (OnError) OnError(ALocator, AErrMsg);
}

void TVnSAXParser::FatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) {
  if (OnFatalError) OnFatalError(ALocator, AErrMsg);
}

void TVnSAXParser::Characters(std::u16string_view AText) {
  if (OnCharacters) OnCharacters(this, AText);
}

void TVnSAXParser::EndDocument() { Fire(OnEndDocument); }

void TVnSAXParser::EndElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName,
                              std::u16string_view AQName) {
  if (OnEndElement) OnEndElement(this, ANamespaceURI, ALocalName, AQName);
}

void TVnSAXParser::EndPrefixMapping(std::u16string_view APrefix) {
  if (OnEndPrefixMapping) OnEndPrefixMapping(this, APrefix);
}

void TVnSAXParser::IgnorableWhitespace(std::u16string_view AWhiteSpace) {
  if (OnIgnorableWhitespace) OnIgnorableWhitespace(this, AWhiteSpace);
}

void TVnSAXParser::ProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) {
  if (OnProcessingInstruction) OnProcessingInstruction(this, ATarget, AData);
}

void TVnSAXParser::StartDocument() { Fire(OnStartDocument); }

void TVnSAXParser::StartElement(std::u16string_view ANamespaceURI, std::u16string_view ALocalName,
                                std::u16string_view AQName, IVnSAXAttributes* AAttributes) {
  if (OnStartElement) OnStartElement(this, ANamespaceURI, ALocalName, AQName, AAttributes);
}

void TVnSAXParser::StartPrefixMapping(std::u16string_view APrefix, std::u16string_view AURI) {
  if (OnStartPrefixMapping) OnStartPrefixMapping(this, APrefix, AURI);
}

void TVnSAXParser::Comment(std::u16string_view AComment) {
  if (OnComment) OnComment(this, AComment);
}

void TVnSAXParser::StartCDATA() { Fire(OnStartCDATA); }
void TVnSAXParser::StartDTD() { Fire(OnStartDTD); }
void TVnSAXParser::EndCDATA() { Fire(OnEndCDATA); }
void TVnSAXParser::EndDTD() { Fire(OnEndDTD); }

}  // namespace vn
