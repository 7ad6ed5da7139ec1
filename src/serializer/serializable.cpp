// The serializable base classes and the serialization operations of every object.
#include "vnxml/serializer_serializable.h"

#include "vnxml/common/rtti.h"
#include "vnxml/serializer.h"

namespace vn {

// Both base classes steer alike; only their bases differ.
#define VN_SERIALIZABLE_STEERING(Class)                                                                        \
  bool Class::CanSerializeChild(IVnSerializer*, TObject*, TClass, UnicodeString&) { return true; }             \
  void Class::BeforeSerialize(IVnSerializer*, bool&) {                                                         \
    FCritSection.Enter();                                                                                      \
    FSerializing = true;                                                                                       \
  }                                                                                                            \
  void Class::AfterSerialize(IVnSerializer*) {                                                                 \
    FSerializing = false;                                                                                      \
    FCritSection.Leave();                                                                                      \
  }                                                                                                            \
  void Class::BeforeDeserialize(IVnDeserializer*) {                                                            \
    FCritSection.Enter();                                                                                      \
    FDeserializing = true;                                                                                     \
  }                                                                                                            \
  void Class::AfterDeserialize(IVnDeserializer*) {                                                             \
    FDeserializing = false;                                                                                    \
    FCritSection.Leave();                                                                                      \
  }                                                                                                            \
  TVnCanDeserialize Class::CanDeserialize(IVnDeserializer*, UnicodeString&, UnicodeString&, UnicodeString&) {  \
    return desNo;                                                                                              \
  }                                                                                                            \
  void Class::DeserializeValue(IVnDeserializer*, const UnicodeString&, const UnicodeString&,                   \
                               const UnicodeString&, const UnicodeString&, bool&) {}

VN_SERIALIZABLE_STEERING(TVnSerializableObject)
VN_SERIALIZABLE_STEERING(TVnSerializableComponent)

#undef VN_SERIALIZABLE_STEERING

TVnSerializedData Serialize(TObject& AObject, TVnDataSerializationFormatType AFormat) {
  return VnSerialize(AFormat, &AObject);
}

void Deserialize(TObject& AObject, TVnDataSerializationFormatType AFormat, const TVnSerializedData& AData) {
  VnDeserialize(AFormat, &AObject, ClassTypeInfo(AObject.ClassType()), AData);
}

TVnSerializedData AsJSON(TObject& AObject) { return Serialize(AObject, dsfJSON); }

TVnSerializedData AsXML(TObject& AObject, std::u16string_view ANamespace, bool AExcludeNamespaces) {
  IPtr<IVnSerializer> serializer = VnCreateSerializer(dsfXML, TValue::FromObject(&AObject));
  if (AExcludeNamespaces)
    serializer->SetParam(u"excludenamespaces", u"true");
  else if (!ANamespace.empty())
    serializer->SetParam(u"xmlns", ANamespace);
  return serializer->Serialize();
}

}  // namespace vn
