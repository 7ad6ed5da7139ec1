// json_parser.h: TVnJSONParser, the component that turns a reader's handler calls into
// bindable events (unit uVnJSON).
// Each parse operation creates a reader for the one call, makes the component its content and
// error handler, and frees it afterwards, on failure too. An event that isn't bound is
// skipped; a failure reaches OnFatalError and then the caller all the same.
// Text parameters of the events are views valid for the call only.
#pragma once

#include <functional>
#include <memory>

#include "vnxml/common/classes.h"
#include "vnxml/json_reader.h"

namespace vn {

using TVnJSONOnError = std::function<void(IVnJSONLocator* ALocator, std::u16string_view ErrMsg)>;
using TVnJSONOnStartDocument = std::function<void()>;
using TVnJSONOnStartObject = std::function<void()>;
using TVnJSONOnStartMember = std::function<void(std::u16string_view AName)>;
using TVnJSONOnStartArray = std::function<void()>;
using TVnJSONOnValue = std::function<void(TVnJSONSimpleDataType AValueType, std::u16string_view AValue)>;
using TVnJSONOnEndArray = std::function<void()>;
using TVnJSONOnEndMember = std::function<void()>;
using TVnJSONOnEndObject = std::function<void()>;
using TVnJSONOnEndDocument = std::function<void()>;

/// A component: its owner (or creator) frees it; its interfaces don't count references.
class TVnJSONParser : public TComponent, public IVnJSONErrorHandler, public IVnJSONContentHandler {
  VN_DECLARE_CLASS(TVnJSONParser, TComponent)
 public:
  explicit TVnJSONParser(TComponent* AOwner = nullptr);
  ~TVnJSONParser() override;

  /// AFormURLEncoded reads form text through the form reader (see CreateReader).
  void ParseStream(TStream* AStream, Word ACodePage, bool AFormURLEncoded = false, std::u16string_view APublicID = {});
  void ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID = {});
  void ParseBuffer(const void* ABuffer, Cardinal ASize, Word ACodePage, bool AFormURLEncoded = false,
                   std::u16string_view APublicID = {});
  void Parse(std::u16string_view AText, std::u16string_view APublicID = {});
  void Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID = {});

  // IInterface: no counting, as for every component.
  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override;
  int32_t _AddRef() override { return -1; }
  int32_t _Release() override { return -1; }

  // IVnJSONErrorHandler
  void Warning(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) override;
  void Error(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) override;
  void FatalError(IVnJSONLocator* ALocator, std::u16string_view AErrMsg) override;

  // IVnJSONContentHandler
  void SetDocumentLocator(IVnJSONLocator* ALocator) override { FLocator = ALocator; }
  void StartDocument() override;
  void StartObject() override;
  void StartMember(std::u16string_view AName) override;
  void StartArray() override;
  void Value(TVnJSONSimpleDataType AValueType, std::u16string_view AValue) override;
  void EndArray() override;
  void EndMember() override;
  void EndObject() override;
  void EndDocument() override;

  /// The locator a reader gave with SetDocumentLocator (the JSON reader gives none).
  const IPtr<IVnJSONLocator>& GetLocator() const { return FLocator; }
  /// The reader of the running parse, nullptr outside one.
  TVnJSONReader* GetReader() const { return FReader.get(); }

  // Events. No operation of this class fires OnStart or OnFinished.
  TVnJSONOnError OnWarning, OnError, OnFatalError;
  TNotifyEvent OnStart, OnFinished;
  TVnJSONOnStartDocument OnStartDocument;
  TVnJSONOnStartObject OnStartObject;
  TVnJSONOnStartMember OnStartMember;
  TVnJSONOnStartArray OnStartArray;
  TVnJSONOnValue OnValue;
  TVnJSONOnEndArray OnEndArray;
  TVnJSONOnEndMember OnEndMember;
  TVnJSONOnEndObject OnEndObject;
  TVnJSONOnEndDocument OnEndDocument;

 protected:
  /// The reader of one parse. The form reader is not part of this build: asking for it raises
  /// EVnJSONException code 9 (_cVnJSONMethodNotSupported); a subclass may supply one.
  virtual std::unique_ptr<TVnJSONReader> CreateReader(bool AFormURLEncoded);

 private:
  template <class F>
  void WithReader(bool AFormURLEncoded, F&& AParse);

  IPtr<IVnJSONLocator> FLocator;
  std::unique_ptr<TVnJSONReader> FReader;
};

}  // namespace vn
