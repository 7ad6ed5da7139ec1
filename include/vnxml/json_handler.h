// json_handler.h: TVnJSONHandler, the consumer of JSON events that builds a tree (unit uVnJSON).
// Each event becomes an operation on the node that receives it: a container opens as the root
// of a document, a value of an array or the value of an object's last member; a member is added
// with a null value that its value replaces. Names and values are kept as read (raw).
// Events a node cannot take raise EVnJSONException 0 "oeps?" (a top-level string, number,
// boolean or null into a document, for one), and a member outside an object raises Exception
// "Invalid objecttype".
#pragma once

#include "vnxml/json_contract.h"
#include "vnxml/json_document.h"

namespace vn {

class TVnJSONReader;

class TVnJSONHandler : public TVnObject, public IVnJSONErrorHandler, public IVnJSONContentHandler {
  VN_DECLARE_CLASS(TVnJSONHandler, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IVnJSONErrorHandler, IVnJSONContentHandler)

 public:
  /// ATarget receives the first event; neither is owned.
  TVnJSONHandler(TVnJSONReader* AReader, TVnJSONBase* ATarget) : FReader(AReader), FCurrValue(ATarget) {}

  /// The node that receives the next event.
  TVnJSONBase* GetCurrValue() const noexcept { return FCurrValue; }
  TVnJSONReader* GetReader() const noexcept { return FReader; }

  // IVnJSONErrorHandler: the reader raises its failures itself.
  void Warning(IVnJSONLocator*, std::u16string_view) override {}
  void Error(IVnJSONLocator*, std::u16string_view) override {}
  void FatalError(IVnJSONLocator*, std::u16string_view) override {}

  // IVnJSONContentHandler
  void SetDocumentLocator(IVnJSONLocator*) override {}
  void StartDocument() override {}
  void StartObject() override { OpenContainer(jdtObject); }
  void StartMember(std::u16string_view AName) override;
  void StartArray() override { OpenContainer(jdtArray); }
  void Value(TVnJSONSimpleDataType AValueType, std::u16string_view AValue) override;
  void EndArray() override { CloseContainer(); }
  void EndMember() override {}
  void EndObject() override { CloseContainer(); }
  void EndDocument() override {}

 private:
  void OpenContainer(TVnJSONDataType AKind);
  void CloseContainer();

  TVnJSONReader* FReader;
  TVnJSONBase* FCurrValue;
};

}  // namespace vn
