// The simple-type wrappers: written as the value they hold, read back through SetAsValue.
#include "vnxml/common/sysutils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/serializer_builder.h"
#include "vnxml/serializer_containers.h"
#include "vnxml/serializer_walker.h"

namespace vn {

void TVnSimpleTypeSerializerHelper::Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName,
                                              const TVnTypeInfo* AType, const TValue& AValue, bool& AHandled) {
  auto* serializer = static_cast<TVnSerializer*>(ASerializer);
  // The declared class decides the type, so a nil member is written under it too.
  const TVnTypeInfo* simpleType = TVnCustomSimpleType::SimpleTypeInfoOf(AType->Handle()->ClassType);
  serializer->SerializeName(AName, smtProperty, vtkClass, simpleType ? simpleType->Kind() : vtkUnknown);
  TValue value;
  if (auto* wrapper = CastObject<TVnCustomSimpleType>(AValue.AsObject())) {
    Variant held;
    wrapper->GetAsVariant(held);
    if (!VnVarIsEmpty(held)) value = TValue::FromVariant(held);
  }
  serializer->SerializeValue(AName, simpleType, value, -1, {});
  AHandled = true;
}

TVnCanDeserialize TVnSimpleTypeDeserializerHelper::CanDeserialize(TVnCustomSerializer*, UnicodeString&,
                                                                  UnicodeString& AName, UnicodeString&) {
  // A JSON enumeration comes as an object: its type mark is no value, its other members are.
  return SameText(AName, u"className") ? desIgnore : desYes;
}

void TVnSimpleTypeDeserializerHelper::DeserializeValue(TVnCustomSerializer* ADeserializer, const UnicodeString&,
                                                       const UnicodeString&, const UnicodeString& AValue,
                                                       const UnicodeString&, bool& AHandled) {
  auto* deserializer = static_cast<TVnDeserializer*>(ADeserializer);
  auto* wrapper = CastObject<TVnCustomSimpleType>(static_cast<TObject*>(deserializer->GetInstancePtr()));
  if (!wrapper) return;
  const TVnTypeInfo* target = wrapper->SimpleTypeInfo();
  TValue value;
  AHandled = ToType(TValue::From(AValue), target->Handle(), value);
  if (!AHandled) value = deserializer->ValueToVal(AValue, target->QualifiedName());
  wrapper->SetAsValue(value);
  AHandled = true;
}

}  // namespace vn
