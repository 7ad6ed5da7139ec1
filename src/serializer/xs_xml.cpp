// The XML serializer pair of the XS records: a record is its member's element with a bare value.
#include "serializer/xs_table.h"
#include "vnxml/xml_escape.h"
#include "vnxml/xs_serializer.h"

namespace vn {

void TVnXMLXsSerializer::SerializeStartType(std::u16string_view, const TVnTypeInfo*, Integer AIndex) {
  FIndex = AIndex;
}

void TVnXMLXsSerializer::SerializeValue(std::u16string_view AName, const TVnTypeInfo*, const TValue&,
                                        Integer AIndex, TVnAttributes) {
  const detail::XsTypeOps& type = detail::XsTypeOf(FInstanceTypeInfo);
  const TVnTypeInfo* written = nullptr;
  TValue value;
  if (FInstancePtr) type.Write(FInstancePtr, dsfXML, written, value);
  TVnXMLSerializer::SerializeValue(AName, written, value, AIndex >= 0 ? AIndex : FIndex, {});
}

TVnCanDeserialize TVnXMLXsDeserializer::CanDeserialize(UnicodeString&, UnicodeString&, UnicodeString&, bool) {
  const TVnTypeInfo* type = FInstanceTypeInfo;
  const detail::XsTypeOps* entry = type ? detail::XsFindType(type->Handle()) : nullptr;
  if (!entry) return desNo;
  if (FInstancePtr) entry->Clear(FInstancePtr);
  return desYes;
}

void TVnXMLXsDeserializer::DoCharacters(std::u16string_view AText) {
  if (FLevel != 0) return TVnXMLDeserializer::DoCharacters(AText);
  // A CDATA section's text joins the rest escaped, so that one decoding reads all of it.
  if (FInCDATA)
    FOwnText += VnStrToXML(AText, false, false);
  else
    FOwnText += AText;
  FHasOwnText = true;
}

void TVnXMLXsDeserializer::DeserializeEndType() {
  if (FHasOwnText) {
    FHasOwnText = false;
    const detail::XsTypeOps& type = detail::XsTypeOf(FInstanceTypeInfo);
    try {
      if (FInstancePtr) type.Read(FInstancePtr, FOwnText, dsfXML, jdtString);
    } catch (const Exception& e) {
      throw Exception(vn::Format(cVnFailedToSetValue, {FOwnText}) + e.Message());
    }
  }
  TVnXMLDeserializer::DeserializeEndType();
}

}  // namespace vn
