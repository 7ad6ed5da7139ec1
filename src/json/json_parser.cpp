// TVnJSONParser: a reader per call, handler calls forwarded to the bound events.
#include "vnxml/json_parser.h"

namespace vn {

TVnJSONParser::TVnJSONParser(TComponent* AOwner) : TComponent(AOwner) {}

TVnJSONParser::~TVnJSONParser() = default;

HRESULT TVnJSONParser::QueryInterface(const TGUID& AIID, void** AObj) {
  return detail::QueryInterfaces<IVnJSONContentHandler, IVnJSONErrorHandler>(this, AIID, AObj);
}

std::unique_ptr<TVnJSONReader> TVnJSONParser::CreateReader(bool AFormURLEncoded) {
  if (AFormURLEncoded)
    throw EVnJSONException(cVnJSONErrMethodNotSupported, _cVnJSONMethodNotSupported,
                           {UnicodeString(u"TVnJSONParser"), UnicodeString(u"FormURLEncoded")});
  return std::make_unique<TVnJSONReader>();
}

template <class F>
void TVnJSONParser::WithReader(bool AFormURLEncoded, F&& AParse) {
  struct ReaderScope {
    std::unique_ptr<TVnJSONReader>& Reader;
    ~ReaderScope() { Reader.reset(); }
  } scope{FReader};
  FReader = CreateReader(AFormURLEncoded);
  FReader->SetContentHandler(IPtr<IVnJSONContentHandler>(this));
  FReader->SetErrorHandler(IPtr<IVnJSONErrorHandler>(this));
  AParse(*FReader);
}

void TVnJSONParser::ParseStream(TStream* AStream, Word ACodePage, bool AFormURLEncoded, std::u16string_view APublicID) {
  WithReader(AFormURLEncoded, [&](TVnJSONReader& r) { r.ParseStream(AStream, ACodePage, APublicID); });
}

void TVnJSONParser::ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID) {
  WithReader(false, [&](TVnJSONReader& r) { r.ParseFile(AFileName, AMode, APublicID); });
}

void TVnJSONParser::ParseBuffer(const void* ABuffer, Cardinal ASize, Word ACodePage, bool AFormURLEncoded,
                                std::u16string_view APublicID) {
  WithReader(AFormURLEncoded, [&](TVnJSONReader& r) { r.ParseBuffer(ABuffer, ASize, ACodePage, APublicID); });
}

void TVnJSONParser::Parse(std::u16string_view AText, std::u16string_view APublicID) {
  WithReader(false, [&](TVnJSONReader& r) { r.Parse(AText, APublicID); });
}

void TVnJSONParser::Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID) {
  WithReader(false, [&](TVnJSONReader& r) { r.Parse(AText, ACodePage, APublicID); });
}

// ---- handler calls to events ----

void TVnJSONParser::Warning(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) {
  if (OnWarning) OnWarning(ALocator, AErrMsg);
}
void TVnJSONParser::Error(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) {
  if (OnError) OnError(ALocator, AErrMsg);
}
void TVnJSONParser::FatalError(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) {
  if (OnFatalError) OnFatalError(ALocator, AErrMsg);
}
void TVnJSONParser::StartDocument() {
  if (OnStartDocument) OnStartDocument();
}
void TVnJSONParser::StartObject() {
  if (OnStartObject) OnStartObject();
}
void TVnJSONParser::StartMember(std::u16string_view AName) {
  if (OnStartMember) OnStartMember(AName);
}
void TVnJSONParser::StartArray() {
  if (OnStartArray) OnStartArray();
}
void TVnJSONParser::Value(TVnJSONSimpleDataType AValueType, std::u16string_view AValue) {
  if (OnValue) OnValue(AValueType, AValue);
}
void TVnJSONParser::EndArray() {
  if (OnEndArray) OnEndArray();
}
void TVnJSONParser::EndMember() {
  if (OnEndMember) OnEndMember();
}
void TVnJSONParser::EndObject() {
  if (OnEndObject) OnEndObject();
}
void TVnJSONParser::EndDocument() {
  if (OnEndDocument) OnEndDocument();
}

}  // namespace vn
