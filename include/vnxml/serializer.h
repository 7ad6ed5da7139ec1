// serializer.h: the frame of the object serializer (unit uVnSerializer).
// Built-in serializers and helpers register themselves on the first use of the lookups, the
// one-call functions or the registration functions; a host calls no initialiser.
// Serializer classes are registered per type and format in TVnTypes; the lookups find the class
// for a type (its own, its nearest ancestor class's, or the format's default), create it through
// its virtual constructor and run it. A serializer keeps name/value parameters, and objects
// under a name, and asks its parent for those it lacks. The XML and JSON notations register
// their classes in their own units; until then a lookup finds nothing and raises the messages
// below (plain Exception).
#pragma once

#include <memory>
#include <string_view>

#include "vnxml/common/string_list.h"
#include "vnxml/common/vn_object.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/serializer_enums.h"
#include "vnxml/serializer_formats.h"
#include "vnxml/serializer_helpers.h"
#include "vnxml/serializer_hints.h"
#include "vnxml/serializer_serializable.h"

namespace vn {

class TStream;
class TObjectList;
class TComponent;

inline constexpr char16_t cVnNoSerializerForValue[] = u"There is no registered serializer for \"%s\"!";
inline constexpr char16_t cVnNoSerializerForType[] = u"There is no \"%s\" registered serializer for %s!";
inline constexpr char16_t cVnNoDeserializerForValue[] = u"There is no registered deserializer for \"%s\"!";
inline constexpr char16_t cVnNoDeserializerForType[] = u"There is no registered %s deserializer for %s!";
inline constexpr char16_t cVnValueCannotBeSerialized[] = u"Values of type \"%s\" cannot be serialized!";
/// Programming fault: a serializer registered for no class.
inline constexpr char16_t cVnClassInfoUnknown[] = u"The ClassInfo of the class %s is unknown!";
/// Programming fault: a registered class that is no TVnCustomSerializer of the asked direction.
inline constexpr char16_t cVnNotASerializerClass[] = u"The class %s is not a serializer of this kind!";

/// Failures of the walker and the builder.
VN_EXCEPTION(EVnSerializeException, Exception)

/// The display names of the formats, for messages.
inline constexpr const char16_t* VnDataSerializationFormatType[cVnSerializeFormatCount] = {
    u"JSON", u"XML", u"Format2", u"Format3", u"Format4"};

/// The parameters and the instance of a serializer, whichever its direction.
struct IVnCustomSerializer : IInterface {
  static constexpr TGUID IID = TGUID::Parse("8a411e1c-4227-4c97-b9bc-0704a2215768");
  /// The object, or the address of the value, being written or read.
  virtual void* GetInstancePtr() = 0;
  virtual TObject* GetObjParam(std::u16string_view AName) = 0;
  virtual UnicodeString GetParam(std::u16string_view AName) = 0;
  virtual void SetParam(std::u16string_view AName, std::u16string_view AValue) = 0;
  virtual void SetObjParam(std::u16string_view AName, TObject* AObject) = 0;

 protected:
  ~IVnCustomSerializer() = default;
};

struct IVnSerializer : IVnCustomSerializer {
  static constexpr TGUID IID = TGUID::Parse("50458569-8419-4dbc-bf78-d7ac5a927c04");
  /// The instance as text, UTF-8.
  virtual TVnSerializedData Serialize() = 0;
  /// Writes the instance's text to AStream.
  virtual void Serialize(TStream& AStream) = 0;

 protected:
  ~IVnSerializer() = default;
};

struct IVnDeserializer : IVnCustomSerializer {
  static constexpr TGUID IID = TGUID::Parse("adf0eea2-f6a1-459a-b917-b4a3481c9791");
  /// The objects the reading created, or nil.
  virtual TObjectList* GetCreatedObjects() = 0;
  /// Reads AData (UTF-8) into the instance.
  virtual void Deserialize(const TVnSerializedData& AData) = 0;
  virtual void Deserialize(TStream& AStream) = 0;

 protected:
  ~IVnDeserializer() = default;
};

/// An object that takes its own text in a notation.
struct IVnDeserializable : IInterface {
  static constexpr TGUID IID = TGUID::Parse("0c9f95a5-bd08-4a7d-a5f1-fa604a19e4a2");
  virtual bool CanDeserialize(TVnDataSerializationFormatType AFormat) = 0;
  /// AParams: the deserializer's parameter list (a TStringList), or nil.
  virtual void Deserialize(TVnDataSerializationFormatType AFormat, const TVnSerializedData& AData, TObject* AParams) = 0;

 protected:
  ~IVnDeserializable() = default;
};

/// Base of the serializers and deserializers of every notation. A registered class is created
/// through its virtual constructor, then one of the two Create operations sets its instance.
class TVnCustomSerializer : public TVnObject, public IVnCustomSerializer {
  VN_DECLARE_CLASS(TVnCustomSerializer, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IVnCustomSerializer)
 public:
  TVnCustomSerializer();
  ~TVnCustomSerializer() override;

  void* GetInstancePtr() override { return FInstancePtr; }
  /// The object under AName here, else from the parent; nil when nobody has one.
  TObject* GetObjParam(std::u16string_view AName) override;
  /// The value of AName here, else from the parent; empty when nobody has it.
  UnicodeString GetParam(std::u16string_view AName) override;
  void SetParam(std::u16string_view AName, std::u16string_view AValue) override;
  /// Replaces the object under AName, or adds the name with AObject (not owned).
  void SetObjParam(std::u16string_view AName, TObject* AObject) override;
  /// True when this serializer or one of its parents has AName.
  bool HasParam(std::u16string_view AName) const;
  /// Copies the names, values and objects of AList into the parameters.
  void SetParams(const TStrings& AList);
  /// The serializer whose parameters this one falls back to; nil for the root.
  virtual void SetParent(TVnCustomSerializer* AParent);
  TVnCustomSerializer* GetParent() const noexcept { return FParent; }

  /// Keeps a copy of AValue and takes its address (the object for classes, nil for strings)
  /// as the instance; raises cVnValueCannotBeSerialized for interfaces, pointers and the like.
  virtual void Create(const TValue& AValue);
  /// Sets the instance and its type; a simple value at AInstance is copied into the value.
  virtual void Create(void* AInstance, const TTypeInfo* AType);
  /// The notation this class writes or reads.
  virtual TVnDataSerializationFormatType Format() const = 0;
  /// A deserializer records the objects it creates in AList (nil: a list of its own); a
  /// serializer has none and ignores it.
  virtual void SetCreatedObjects(TObjectList* AList) { (void)AList; }

  const TVnTypeInfo* GetInstanceTypeInfo() const noexcept { return FInstanceTypeInfo; }
  const TValue& GetValue() const noexcept { return FValue; }
  const UnicodeString& GetName() const noexcept { return FName; }

 protected:
  TVnCustomSerializer* FParent = nullptr;
  void* FInstancePtr = nullptr;
  const TVnTypeInfo* FInstanceTypeInfo = nullptr;
  TStream* FStream = nullptr;
  std::unique_ptr<TStringList> FParams;
  UnicodeString FName;
  TValue FValue;
};

// ---- lookups: the class registered for a type in a format, or nil ----
TClass VnFindSerializerClass(TVnDataSerializationFormatType AFormat, const TTypeInfo* AType);
TClass VnFindDeserializerClass(TVnDataSerializationFormatType AFormat, const TTypeInfo* AType);
TClass VnFindSerializerClassEx(TVnDataSerializationFormatType AFormat, const TVnTypeInfo* AType);
TClass VnFindDeserializerClassEx(TVnDataSerializationFormatType AFormat, const TVnTypeInfo* AType);

// ---- creation: a new serializer, counted by the interface; no class raises cVnNo... ----
IPtr<IVnSerializer> VnCreateSerializer(TVnDataSerializationFormatType AFormat, const TValue& AValue);
IPtr<IVnSerializer> VnCreateSerializer(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType);
IPtr<IVnSerializer> VnCreateSerializerEx(TVnDataSerializationFormatType AFormat, void* AInstance,
                                         const TVnTypeInfo* AType);
IPtr<IVnDeserializer> VnCreateDeserializer(TVnDataSerializationFormatType AFormat, const TValue& AValue);
IPtr<IVnDeserializer> VnCreateDeserializer(TVnDataSerializationFormatType AFormat, void* AInstance,
                                           const TTypeInfo* AType);
IPtr<IVnDeserializer> VnCreateDeserializerEx(TVnDataSerializationFormatType AFormat, void* AInstance,
                                             const TVnTypeInfo* AType);

// ---- one call: create, run, free ----
TVnSerializedData VnSerialize(TVnDataSerializationFormatType AFormat, const TValue& AValue);
/// The object under the type of its class.
TVnSerializedData VnSerialize(TVnDataSerializationFormatType AFormat, TObject* AObject);
TVnSerializedData VnSerialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType);
TVnSerializedData VnSerializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType);
void VnSerialize(TVnDataSerializationFormatType AFormat, const TValue& AValue, TStream& AStream);
void VnSerialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType, TStream& AStream);
void VnSerializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType,
                   TStream& AStream);
/// Reads AData into AValue's object and gives the deserializer's object back (a new one when
/// AValue held nil); ACreatedObjects, when given, records every object created. A value of
/// another kind is read into the deserializer's copy, which dies with it: the result is nil.
void* VnDeserialize(TVnDataSerializationFormatType AFormat, const TValue& AValue, const TVnSerializedData& AData,
                    TObjectList* ACreatedObjects = nullptr);
void* VnDeserialize(TVnDataSerializationFormatType AFormat, const TValue& AValue, TStream& AStream,
                    TObjectList* ACreatedObjects = nullptr);
/// Reads AData into the instance and gives the deserializer's instance back.
void* VnDeserialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType,
                    const TVnSerializedData& AData);
void* VnDeserializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType,
                      const TVnSerializedData& AData);
void* VnDeserialize(TVnDataSerializationFormatType AFormat, void* AInstance, const TTypeInfo* AType, TStream& AStream);
void* VnDeserializeEx(TVnDataSerializationFormatType AFormat, void* AInstance, const TVnTypeInfo* AType,
                      TStream& AStream);

/// A new object of the class the text names (the caller's).
std::unique_ptr<TObject> VnCreateFrom(TVnDataSerializationFormatType AFormat, const TVnSerializedData& AData);
/// The same with AOwner as owner of every component created, so the new object is AOwner's when
/// it is a component; AParent becomes the parent of each control created.
TObject* VnCreateFrom(TVnDataSerializationFormatType AFormat, TComponent* AOwner, const TVnSerializedData& AData);
TObject* VnCreateFrom(TVnDataSerializationFormatType AFormat, TComponent* AOwner, TComponent* AParent,
                      const TVnSerializedData& AData);

// ---- registration ----
/// The pair for AClass in AFormat; a TPersistent descendant is also registered with RegisterClass.
void VnRegisterSerializer(TVnDataSerializationFormatType AFormat, TClass AClass, TClass ASerializer,
                          TClass ADeserializer);
/// The pair for the type AType; a nil AType makes the pair the format's default.
void VnRegisterSerializer(TVnDataSerializationFormatType AFormat, const TTypeInfo* AType, TClass ASerializer,
                          TClass ADeserializer);
/// Makes a TPersistent descendant findable by name (RegisterClass); nothing else.
void VnRegisterType(TClass AClass);
void VnRegisterType(const TTypeInfo* AType);

}  // namespace vn

// In a descendant of TVnCustomSerializer that also implements IVnSerializer or IVnDeserializer:
// that interface brings a second IVnCustomSerializer, whose slots these forward to the base.
#define VN_CUSTOM_SERIALIZER_SLOTS                                                                      \
 public:                                                                                                \
  void* GetInstancePtr() override { return ::vn::TVnCustomSerializer::GetInstancePtr(); }               \
  ::vn::TObject* GetObjParam(std::u16string_view AName) override {                                      \
    return ::vn::TVnCustomSerializer::GetObjParam(AName);                                               \
  }                                                                                                     \
  ::vn::UnicodeString GetParam(std::u16string_view AName) override {                                    \
    return ::vn::TVnCustomSerializer::GetParam(AName);                                                  \
  }                                                                                                     \
  void SetParam(std::u16string_view AName, std::u16string_view AValue) override {                       \
    ::vn::TVnCustomSerializer::SetParam(AName, AValue);                                                 \
  }                                                                                                     \
  void SetObjParam(std::u16string_view AName, ::vn::TObject* AObject) override {                        \
    ::vn::TVnCustomSerializer::SetObjParam(AName, AObject);                                             \
  }                                                                                                     \
                                                                                                        \
 private:
