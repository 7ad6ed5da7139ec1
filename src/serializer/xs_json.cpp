// The JSON serializer pair of the XS records: a record is its member's bare value.
#include "serializer/xs_table.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/json_values.h"
#include "vnxml/xml_values.h"
#include "vnxml/xs_serializer.h"

namespace vn {

void TVnJSONXsSerializer::SerializeStartType(std::u16string_view, const TVnTypeInfo*, Integer AIndex) {
  FIndex = AIndex;
}

void TVnJSONXsSerializer::SerializeValue(std::u16string_view AName, const TVnTypeInfo*, const TValue&,
                                         Integer AIndex, TVnAttributes) {
  const detail::XsTypeOps& type = detail::XsTypeOf(FInstanceTypeInfo);
  const TVnTypeInfo* written = nullptr;
  TValue value;
  if (FInstancePtr) type.Write(FInstancePtr, dsfJSON, written, value);
  TVnJSONSerializer::SerializeValue(AName, written, value, AIndex >= 0 ? AIndex : FIndex, {});
}

TVnCanDeserialize TVnJSONXsDeserializer::CanDeserialize(UnicodeString&, UnicodeString&, UnicodeString&,
                                                        bool) {
  const detail::XsTypeOps* entry =
      FInstanceTypeInfo ? detail::XsFindType(FInstanceTypeInfo->Handle()) : nullptr;
  if (!entry) return desNo;
  if (FInstancePtr) entry->Clear(FInstancePtr);
  return desYes;
}

void TVnJSONXsDeserializer::DoStartObject() {
  // An object in place of the value: its members clear the record, nested values are passed over.
  if (FDisabledCnt > 0 || FOpened) return Skip();
  detail::XsTypeOf(FInstanceTypeInfo);
  FOpened = true;
  FDuration = TVnDuration();
  FHasDuration = false;
}

void TVnJSONXsDeserializer::DoStartMember(std::u16string_view AName) {
  if (FDisabledCnt > 0) return;
  FKey = VnJSONtoStr(AName, jdtNull);
  UnicodeString uri, name = FKey, dataType;
  CanDeserialize(uri, name, dataType, false);
}

void TVnJSONXsDeserializer::DoStartArray() {
  if (FDisabledCnt > 0 || FOpened) return Skip();
  RaiseShape(ExpectedName(FInstanceTypeInfo), u"an array");
}

void TVnJSONXsDeserializer::DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) {
  if (FDisabledCnt > 0) return;
  const detail::XsTypeOps& type = detail::XsTypeOf(FInstanceTypeInfo);
  if (FOpened) {
    // The duration's own object form: its parts come back.
    if (FInstanceTypeInfo->Handle() != TypeInfoOf<TXsDuration>()) return;
    if (SameText(FKey, u"negative"))
      FDuration.Negative = VnXMLToBool(AText);
    else if (SameText(FKey, u"monthts"))
      FDuration.Months = VnXMLToInt(AText);
    else if (SameText(FKey, u"seconds"))
      FDuration.Seconds = VnXMLToDouble(AText);
    else
      return;
    FHasDuration = true;
    return;
  }
  if (FInstancePtr) {
    if (AType == jdtNull)
      type.Clear(FInstancePtr);
    else
      type.Read(FInstancePtr, AText, dsfJSON, AType);
  }
  Finish();
}

void TVnJSONXsDeserializer::DoEndArray() {
  if (FDisabledCnt > 0) --FDisabledCnt;
}

void TVnJSONXsDeserializer::DoEndObject() {
  if (FDisabledCnt > 0) {
    --FDisabledCnt;
    return;
  }
  if (FHasDuration && FInstancePtr) *static_cast<TXsDuration*>(FInstancePtr) = TXsDuration(FDuration);
  Finish();
}

}  // namespace vn
