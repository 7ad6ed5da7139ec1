// Lists of values: written as "ArrayOf..." with each element under its own type, read back by Add.
#include "serializer/helpers_common.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/serializer_builder.h"
#include "vnxml/serializer_containers.h"
#include "vnxml/serializer_walker.h"

namespace vn {

namespace {

UnicodeString UpperFirst(UnicodeString AText) {
  if (!AText.empty() && AText[0] >= u'a' && AText[0] <= u'z') AText[0] = static_cast<char16_t>(AText[0] - 32);
  return AText;
}

}  // namespace

void TVnListSerializerHelper::Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName,
                                        const TVnTypeInfo* AType, const TValue& AValue, bool& AHandled) {
  TObject* list = AValue.AsObject();
  if (!list) return;  // the walk writes it as any nil object
  auto* serializer = static_cast<TVnSerializer*>(ASerializer);
  const UnicodeString elementName = detail::ContainerElementName(AType->Name());
  const TVnTypeInfo* arrayType = TVnTypes::GetTypeInfo(u"ArrayOf" + UpperFirst(elementName), tntSchemaName, true, mtkArray);
  if (!arrayType) arrayType = TVnTypes::GetTypeInfo(AType->VirtualType(sdtArray));
  const Integer count = detail::ContainerProperty(list, u"Count")->GetValue(list).AsInteger();
  const TRttiIndexedProperty* items = detail::ContainerIndexed(list, u"Items");

  serializer->SerializeName(AName, smtProperty, vtkClass, vtkDynArray);
  TVnSerializer* child = nullptr;
  IPtr<IVnSerializer> hold = serializer->CreateChildSerializer(list, AType, child);
  child->SerializeStartType(AName, arrayType, -1);
  for (Integer i = 0; i < count; ++i) {
    const TValue value = items->GetValue(list, TValue::From(i));
    child->SerializeValue(elementName, VnTypeInfo(value), value, i, {});
  }
  child->SerializeEndType(AName, arrayType, -1);
  AHandled = true;
}

TVnCanDeserialize TVnListDeserializerHelper::CanDeserialize(TVnCustomSerializer*, UnicodeString&, UnicodeString&,
                                                            UnicodeString&) {
  return desYes;
}

void TVnListDeserializerHelper::DeserializeValue(TVnCustomSerializer* ADeserializer, const UnicodeString&,
                                                 const UnicodeString&, const UnicodeString& AValue,
                                                 const UnicodeString& ADataType, bool& AHandled) {
  auto* deserializer = static_cast<TVnDeserializer*>(ADeserializer);
  auto* list = static_cast<TObject*>(deserializer->GetInstancePtr());
  if (!list) return;
  const TRttiMethod* add = detail::ContainerMethod(deserializer->GetInstanceTypeInfo(), u"Add");
  // A text without a type mark is text; it, or a narrower type, still fits a typed Add.
  TValue element = ADataType.empty() ? TValue::From(deserializer->ValueToStr(AValue))
                                     : deserializer->ValueToVal(AValue, ADataType);
  if (add->GetParameters().size() == 1) {
    TValue converted;
    const TTypeInfo* parameter = add->GetParameters()[0]->ParamTypeInfo();
    if (element.TypeInfo() != parameter && ToType(element, parameter, converted)) element = std::move(converted);
  }
  add->Invoke(list, {element});
  AHandled = true;
}

}  // namespace vn
