// Documents below the root of an object's JSON: a JSON document's own text, and a DOM document
// in its JSON form, stand in the member's place; a JSON document member reads back whatever
// value stands there.
#include "serializer/json_event_text.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_json_writer.h"
#include "vnxml/json_document.h"
#include "vnxml/json_serializer.h"
#include "vnxml/json_serializer_reader.h"
#include "vnxml/xml_dom_serializer.h"

namespace vn {

namespace {

template <class T>
T* InstanceAs(void* AInstance, const char16_t* AName) {
  auto* object = dynamic_cast<T*>(static_cast<TObject*>(AInstance));
  VnAssert(object != nullptr, vn::Format(cVnJSONInstanceNotA, {AName}));
  return object;
}

}  // namespace

// ---- a JSON document ----

void TVnJSONDocSerializer::SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) {
  if (AName.empty()) return TVnJSONSerializer::SerializeStartType(AName, AType, AIndex);
  // The separator alone: the document writes its own brackets.
  Write(AIndex >= 1 ? std::string_view(",") : std::string_view(FPrefix));
}

void TVnJSONDocSerializer::SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) {
  if (AName.empty()) return TVnJSONSerializer::SerializeEndType(AName, AType, AIndex);
  FPrefix = ",";
}

void TVnJSONDocSerializer::DoSerialize(TVnSerializer*, std::u16string_view, std::u16string_view) {
  auto* document = InstanceAs<TVnJSONDocument>(FInstancePtr, u"TVnJSONDocument");
  if (!document->GetRootValue()) return Write(std::string_view("{}"));
  document->SaveToStream(*FStream, false, cVnCodePageUTF8, false);
}

TVnJSONDocDeserializer::TVnJSONDocDeserializer() = default;
TVnJSONDocDeserializer::~TVnJSONDocDeserializer() = default;

void TVnJSONDocDeserializer::DoStartObject() {
  if (!FCapture) FCapture.reset(new detail::JSONEventText());
  FOpened = true;
  FCapture->StartObject();
}

void TVnJSONDocDeserializer::DoStartMember(std::u16string_view AName) {
  if (FCapture) FCapture->Member(AName);
}

void TVnJSONDocDeserializer::DoStartArray() {
  if (!FCapture) FCapture.reset(new detail::JSONEventText());
  FOpened = true;
  FCapture->StartArray();
}

void TVnJSONDocDeserializer::DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  if (!FCapture) FCapture.reset(new detail::JSONEventText());
  FCapture->Value(AType, AText);
  if (FCapture->Depth() == 0) Load();
}

void TVnJSONDocDeserializer::DoEndArray() {
  if (FCapture && FCapture->Depth() > 0 && FCapture->Close()) Load();
}

void TVnJSONDocDeserializer::DoEndObject() { DoEndArray(); }

void TVnJSONDocDeserializer::Load() {
  const UnicodeString text = FCapture->Text();
  FCapture.reset();
  InstanceAs<TVnJSONDocument>(FInstancePtr, u"TVnJSONDocument")->SetAsJSON(text);
  Finish();
}

// ---- a DOM document as JSON ----

void TVnXMLDocJSONSerializer::Serialize(TStream& AStream) {
  SaveToJSONStream(*InstanceAs<TVnDOMDocument>(FInstancePtr, u"TVnDOMDocument"), AStream, false, false);
}

void TVnXMLDocJSONSerializer::SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType,
                                                 Integer AIndex) {
  if (AName.empty()) return TVnJSONSerializer::SerializeStartType(AName, AType, AIndex);
  Write(AIndex >= 1 ? std::string_view(",") : std::string_view(FPrefix));
}

void TVnXMLDocJSONSerializer::SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) {
  if (AName.empty()) return TVnJSONSerializer::SerializeEndType(AName, AType, AIndex);
  FPrefix = ",";
}

void TVnXMLDocJSONSerializer::DoSerialize(TVnSerializer*, std::u16string_view, std::u16string_view) {
  // The DOM's JSON form of a document is the bare pair of its root: braces make it a value.
  auto* document = InstanceAs<TVnDOMDocument>(FInstancePtr, u"TVnDOMDocument");
  Write('{');
  if (document->GetRootNode()) SaveToJSONStream(*document, *FStream, false, false);
  Write('}');
}

}  // namespace vn
