// DOM documents and elements as their own XML text.
#include "vnxml/xml_dom_serializer.h"

#include "vnxml/common/code_page.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_element.h"

namespace vn {

namespace {

template <class T>
T* InstanceAs(void* AInstance) {
  auto* object = CastObject<T>(static_cast<TObject*>(AInstance));
  VnAssert(object != nullptr, cVnNotADOMInstance);
  return object;
}

Word CodePageOf(TVnDOMElement* AElement) {
  TVnDOMDocument* document = AElement->Document();
  return document && document->GetCodePage() ? document->GetCodePage() : cVnCodePageUTF8;
}

}  // namespace

void TVnXMLDocSerializer::Serialize(TStream& AStream) {
  InstanceAs<TVnDOMDocument>(FInstancePtr)->SaveToStreamEx(AStream, false, false);
}

TObject* TVnXMLDocDeserializer::CreateInstance(const TVnTypeInfo*&) {
  auto* document = new TVnDOMDocument();
  RecordCreated(document);
  return document;
}

void TVnXMLDocDeserializer::Deserialize(TStream& AStream) {
  if (!FInstancePtr) {
    const TVnTypeInfo* type = FInstanceTypeInfo;
    FInstancePtr = CreateInstance(type);
  }
  InstanceAs<TVnDOMDocument>(FInstancePtr)->LoadFromStream(AStream);
}

void TVnDOMElementSerializer::Serialize(TStream& AStream) {
  auto* element = InstanceAs<TVnDOMElement>(FInstancePtr);
  element->SaveToStream(AStream, CodePageOf(element), false);
}

TObject* TVnDOMElementDeserializer::CreateInstance(const TVnTypeInfo*&) { throw Exception(cVnNotSupported); }

void TVnDOMElementDeserializer::Deserialize(TStream& AStream) {
  if (!FInstancePtr) throw Exception(cVnNotSupported);
  auto* element = InstanceAs<TVnDOMElement>(FInstancePtr);
  element->LoadFromStream(AStream, CodePageOf(element));
}

}  // namespace vn
