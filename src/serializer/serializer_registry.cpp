// The serializer lookups, creation, the one-call functions and registration.
#include "serializer/serializer_startup.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/persistent.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/serializer.h"

namespace vn {

namespace {

const char16_t* FormatName(TVnDataSerializationFormatType AFormat) {
  return AFormat < cVnSerializeFormatCount ? VnDataSerializationFormatType[AFormat] : u"?";
}

UnicodeString TypeName(const TVnTypeInfo* AType) { return AType ? AType->Name() : UnicodeString(u"nil"); }

/// Creates an object of AClass and hands it out through I; the interface holds the only count,
/// so a failure in AInitialize frees the object.
template <class I, class Initialize>
IPtr<I> CreateCounted(TClass AClass, Initialize AInitialize) {
  std::unique_ptr<TObject> object(CreateInstance(AClass));
  auto* serializer = CastObject<TVnCustomSerializer>(object.get());
  void* found = nullptr;
  if (!serializer || serializer->QueryInterface(I::IID, &found) != S_OK || !found)
    throw EAssertionFailed(cVnNotASerializerClass, {ClassNameOf(AClass)});
  object.release();
  IPtr<I> result = IPtr<I>::Attach(static_cast<I*>(found));
  AInitialize(*serializer);
  return result;
}

/// The serializer object behind a created serializer's interface.
TVnCustomSerializer* CustomSerializerOf(IInterface* ASerializer) {
  return CastObject<TVnCustomSerializer>(VnImplementor(ASerializer));
}

/// The object a value form read into; the copy of any other value dies with the deserializer.
void* ObjectInstance(IVnDeserializer& ADeserializer, const TValue& AValue) {
  return AValue.Kind() == tkClass ? ADeserializer.GetInstancePtr() : nullptr;
}

TClass SerializerOf(TVnDataSerializationFormatType AFormat, const TVnTypeInfo* AType) {
  detail::EnsureSerializerStartup();
  const TVnSerializerPair* pair = TVnTypes::FindSerializers(AType, AFormat);
  return pair ? pair->Serializer : nullptr;
}

TClass DeserializerOf(TVnDataSerializationFormatType AFormat, const TVnTypeInfo* AType) {
  detail::EnsureSerializerStartup();
  const TVnSerializerPair* pair = TVnTypes::FindSerializers(AType, AFormat);
  return pair ? pair->Deserializer : nullptr;
}

}  // namespace

// ---- lookups ----

TClass VnFindSerializerClass(TVnDataSerializationFormatType AFormat, const TTypeInfo* AType) {
  return SerializerOf(AFormat, TVnTypes::GetTypeInfo(AType));
}
TClass VnFindDeserializerClass(TVnDataSerializationFormatType AFormat, const TTypeInfo* AType) {
  return DeserializerOf(AFormat, TVnTypes::GetTypeInfo(AType));
}
TClass VnFindSerializerClassEx(TVnDataSerializationFormatType AFormat, const TVnTypeInfo* AType) {
  return SerializerOf(AFormat, AType);
}
TClass VnFindDeserializerClassEx(TVnDataSerializationFormatType AFormat, const TVnTypeInfo* AType) {
  return DeserializerOf(AFormat, AType);
}

// ---- creation ----

IPtr<IVnSerializer> VnCreateSerializer(TVnDataSerializationFormatType AFormat, const TValue& AValue) {
  TClass c = VnFindSerializerClass(AFormat, AValue.TypeInfo());
  if (!c) throw Exception(cVnNoSerializerForValue, {FormatName(AFormat)});
  return CreateCounted<IVnSerializer>(c, [&](TVnCustomSerializer& s) { s.Create(AValue); });
}

IPtr<IVnSerializer> VnCreateSerializer(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType) {
  return VnCreateSerializerEx(AFormat, AInstance, TVnTypes::GetTypeInfo(AType));
}

IPtr<IVnSerializer> VnCreateSerializerEx(TVnDataSerializationFormatType AFormat, void* AInstance,
                                         const TVnTypeInfo* AType) {
  TClass c = VnFindSerializerClassEx(AFormat, AType);
  if (!c) throw Exception(cVnNoSerializerForType, {FormatName(AFormat), TypeName(AType)});
  const TTypeInfo* handle = AType ? AType->Handle() : nullptr;
  return CreateCounted<IVnSerializer>(c, [&](TVnCustomSerializer& s) { s.Create(AInstance, handle); });
}

IPtr<IVnDeserializer> VnCreateDeserializer(TVnDataSerializationFormatType AFormat, const TValue& AValue) {
  TClass c = VnFindDeserializerClass(AFormat, AValue.TypeInfo());
  if (!c) throw Exception(cVnNoDeserializerForValue, {FormatName(AFormat)});
  return CreateCounted<IVnDeserializer>(c, [&](TVnCustomSerializer& s) { s.Create(AValue); });
}

IPtr<IVnDeserializer> VnCreateDeserializer(TVnDataSerializationFormatType AFormat, void* AInstance,
                                           const TTypeInfo* AType) {
  return VnCreateDeserializerEx(AFormat, AInstance, TVnTypes::GetTypeInfo(AType));
}

IPtr<IVnDeserializer> VnCreateDeserializerEx(TVnDataSerializationFormatType AFormat, void* AInstance,
                                             const TVnTypeInfo* AType) {
  TClass c = VnFindDeserializerClassEx(AFormat, AType);
  if (!c) throw Exception(cVnNoDeserializerForType, {FormatName(AFormat), TypeName(AType)});
  const TTypeInfo* handle = AType ? AType->Handle() : nullptr;
  return CreateCounted<IVnDeserializer>(c, [&](TVnCustomSerializer& s) { s.Create(AInstance, handle); });
}

// ---- one call ----

TVnSerializedData VnSerialize(TVnDataSerializationFormatType AFormat, const TValue& AValue) {
  return VnCreateSerializer(AFormat, AValue)->Serialize();
}

TVnSerializedData VnSerialize(TVnDataSerializationFormatType AFormat, TObject* AObject) {
  return VnSerialize(AFormat, TValue::FromObject(AObject));
}

TVnSerializedData VnSerialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType) {
  return VnCreateSerializer(AFormat, AInstance, AType)->Serialize();
}

TVnSerializedData VnSerializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType) {
  return VnCreateSerializerEx(AFormat, AInstance, AType)->Serialize();
}

void VnSerialize(TVnDataSerializationFormatType AFormat, const TValue& AValue, TStream& AStream) {
  VnCreateSerializer(AFormat, AValue)->Serialize(AStream);
}

void VnSerialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType, TStream& AStream) {
  VnCreateSerializer(AFormat, AInstance, AType)->Serialize(AStream);
}

void VnSerializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType,
                   TStream& AStream) {
  VnCreateSerializerEx(AFormat, AInstance, AType)->Serialize(AStream);
}

void* VnDeserialize(TVnDataSerializationFormatType AFormat, const TValue& AValue, const TVnSerializedData& AData,
                    TObjectList* ACreatedObjects) {
  IPtr<IVnDeserializer> d = VnCreateDeserializer(AFormat, AValue);
  if (ACreatedObjects) CustomSerializerOf(d.Get())->SetCreatedObjects(ACreatedObjects);
  d->Deserialize(AData);
  return ObjectInstance(*d, AValue);
}

void* VnDeserialize(TVnDataSerializationFormatType AFormat, const TValue& AValue, TStream& AStream,
                    TObjectList* ACreatedObjects) {
  IPtr<IVnDeserializer> d = VnCreateDeserializer(AFormat, AValue);
  if (ACreatedObjects) CustomSerializerOf(d.Get())->SetCreatedObjects(ACreatedObjects);
  d->Deserialize(AStream);
  return ObjectInstance(*d, AValue);
}

void* VnDeserialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType,
                    const TVnSerializedData& AData) {
  return VnDeserializeEx(AFormat, AInstance, TVnTypes::GetTypeInfo(AType), AData);
}

void* VnDeserializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType,
                      const TVnSerializedData& AData) {
  IPtr<IVnDeserializer> d = VnCreateDeserializerEx(AFormat, AInstance, AType);
  d->Deserialize(AData);
  return d->GetInstancePtr();
}

void* VnDeserialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType, TStream& AStream) {
  return VnDeserializeEx(AFormat, AInstance, TVnTypes::GetTypeInfo(AType), AStream);
}

void* VnDeserializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType,
                      TStream& AStream) {
  IPtr<IVnDeserializer> d = VnCreateDeserializerEx(AFormat, AInstance, AType);
  d->Deserialize(AStream);
  return d->GetInstancePtr();
}

namespace {

/// Reads AData with no instance, so that the class comes from the text; the parameters name
/// the owner and parent of what is created.
TObject* CreateFrom(TVnDataSerializationFormatType AFormat, TComponent* AOwner, TComponent* AParent,
                    const TVnSerializedData& AData) {
  IPtr<IVnDeserializer> d = VnCreateDeserializerEx(AFormat, nullptr, nullptr);
  if (AOwner) d->SetObjParam(u"Owner", AOwner);
  if (AParent) d->SetObjParam(u"Parent", AParent);
  d->Deserialize(AData);
  return static_cast<TObject*>(d->GetInstancePtr());
}

}  // namespace

std::unique_ptr<TObject> VnCreateFrom(TVnDataSerializationFormatType AFormat, const TVnSerializedData& AData) {
  return std::unique_ptr<TObject>(CreateFrom(AFormat, nullptr, nullptr, AData));
}

TObject* VnCreateFrom(TVnDataSerializationFormatType AFormat, TComponent* AOwner, const TVnSerializedData& AData) {
  return CreateFrom(AFormat, AOwner, nullptr, AData);
}

TObject* VnCreateFrom(TVnDataSerializationFormatType AFormat, TComponent* AOwner, TComponent* AParent,
                      const TVnSerializedData& AData) {
  return CreateFrom(AFormat, AOwner, AParent, AData);
}

// ---- registration ----

void VnRegisterSerializer(TVnDataSerializationFormatType AFormat, TClass AClass, TClass ASerializer,
                          TClass ADeserializer) {
  detail::EnsureSerializerStartup();
  VnAssert(AClass != nullptr, Format(cVnClassInfoUnknown, {u"nil"}));
  VnRegisterType(AClass);
  TVnTypes::RegisterTypeSerializers(ClassTypeInfo(AClass), AFormat, TVnSerializerPair{ASerializer, ADeserializer});
}

void VnRegisterSerializer(TVnDataSerializationFormatType AFormat, const TTypeInfo* AType, TClass ASerializer,
                          TClass ADeserializer) {
  detail::EnsureSerializerStartup();
  if (AType && AType->Kind == tkClass) VnRegisterType(AType->ClassType);
  TVnTypes::RegisterTypeSerializers(AType, AFormat, TVnSerializerPair{ASerializer, ADeserializer});
}

void VnRegisterType(TClass AClass) {
  if (AClass && ClassInheritsFrom(AClass, TPersistent::StaticClass())) RegisterClass(AClass);
}

void VnRegisterType(const TTypeInfo* AType) {
  if (AType && AType->Kind == tkClass) VnRegisterType(AType->ClassType);
}

}  // namespace vn
