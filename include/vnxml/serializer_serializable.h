// serializer_serializable.h: base classes for host objects that steer their own serialization,
// and the serialization operations of every object (unit uVnSerializer).
// C++ has no class helpers: the operations the platform adds to every object are free functions
// here that take the object first (Serialize(obj, dsfXML), AsJSON(obj), AsXML(obj)).
#pragma once

#include <string_view>

#include "vnxml/common/sync_objs.h"
#include "vnxml/common/vn_component.h"
#include "vnxml/common/vn_object.h"
#include "vnxml/serializer_formats.h"
#include "vnxml/serializer_helpers.h"

namespace vn {

/// A host object that takes part in its own serialization. From BeforeSerialize to AfterSerialize,
/// and from BeforeDeserialize to AfterDeserialize, it holds its critical section, so that two
/// threads writing or reading one object wait for each other.
class TVnSerializableObject : public TVnObjectEx, public IVnSerializerHelper, public IVnDeserializerHelper {
  VN_DECLARE_CLASS(TVnSerializableObject, TVnObjectEx)
  VN_VNOBJECT_INTERFACES(TVnObjectEx, IVnSerializerHelper, IVnDeserializerHelper)
 public:
  /// True: every child is written.
  bool CanSerializeChild(IVnSerializer* ASerializer, TObject* AObject, TClass AClass, UnicodeString& AName) override;
  /// Enters the critical section and sets the serializing flag.
  void BeforeSerialize(IVnSerializer* ASerializer, bool& AHandled) override;
  /// Clears the flag and leaves the critical section.
  void AfterSerialize(IVnSerializer* ASerializer) override;
  void BeforeDeserialize(IVnDeserializer* ADeserializer) override;
  void AfterDeserialize(IVnDeserializer* ADeserializer) override;
  /// desNo: the normal member lookup runs.
  TVnCanDeserialize CanDeserialize(IVnDeserializer* ADeserializer, UnicodeString& AURI, UnicodeString& AName,
                                   UnicodeString& ADataType) override;
  /// Takes nothing.
  void DeserializeValue(IVnDeserializer* ADeserializer, const UnicodeString& AURI, const UnicodeString& AName,
                        const UnicodeString& AValue, const UnicodeString& ADataType, bool& AHandled) override;

  bool GetSerializing() const noexcept { return FSerializing; }
  bool GetDeserializing() const noexcept { return FDeserializing; }

 protected:
  bool FSerializing = false;
  bool FDeserializing = false;
  TCriticalSection FCritSection;
};

/// The same for components.
class TVnSerializableComponent : public TVnComponent, public IVnSerializerHelper, public IVnDeserializerHelper {
  VN_DECLARE_CLASS(TVnSerializableComponent, TVnComponent)
  VN_VNOBJECT_INTERFACES(TVnComponent, IVnSerializerHelper, IVnDeserializerHelper)
 public:
  explicit TVnSerializableComponent(TComponent* AOwner = nullptr) : TVnComponent(AOwner) {}

  bool CanSerializeChild(IVnSerializer* ASerializer, TObject* AObject, TClass AClass, UnicodeString& AName) override;
  void BeforeSerialize(IVnSerializer* ASerializer, bool& AHandled) override;
  void AfterSerialize(IVnSerializer* ASerializer) override;
  void BeforeDeserialize(IVnDeserializer* ADeserializer) override;
  void AfterDeserialize(IVnDeserializer* ADeserializer) override;
  TVnCanDeserialize CanDeserialize(IVnDeserializer* ADeserializer, UnicodeString& AURI, UnicodeString& AName,
                                   UnicodeString& ADataType) override;
  void DeserializeValue(IVnDeserializer* ADeserializer, const UnicodeString& AURI, const UnicodeString& AName,
                        const UnicodeString& AValue, const UnicodeString& ADataType, bool& AHandled) override;

  bool GetSerializing() const noexcept { return FSerializing; }
  bool GetDeserializing() const noexcept { return FDeserializing; }

 protected:
  bool FSerializing = false;
  bool FDeserializing = false;
  TCriticalSection FCritSection;
};

// ---- the operations of every object; each raises the "no registered serializer" texts of
// serializer.h while no serializer of the format is registered ----

/// The object's text in AFormat: VnSerialize on the object.
TVnSerializedData Serialize(TObject& AObject, TVnDataSerializationFormatType AFormat);
/// Reads AData into the object: VnDeserialize on it.
void Deserialize(TObject& AObject, TVnDataSerializationFormatType AFormat, const TVnSerializedData& AData);
/// Serialize(AObject, dsfJSON).
TVnSerializedData AsJSON(TObject& AObject);
/// The object as XML: with AExcludeNamespaces no namespace declarations nor type attributes,
/// otherwise a non-empty ANamespace as the root's default namespace.
TVnSerializedData AsXML(TObject& AObject, std::u16string_view ANamespace = {}, bool AExcludeNamespaces = false);

}  // namespace vn
