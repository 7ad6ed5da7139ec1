// serializer_helpers.h: helpers that steer the serialization of a class (unit uVnSerializer).
// A helper is registered for a class (and so for its descendants) or for a generic pattern such
// as "TObjectList<T>"; the walker creates one per object it writes or reads. Objects that steer
// their own serialization implement IVnSerializerHelper and IVnDeserializerHelper instead.
#pragma once

#include <memory>
#include <string_view>

#include "vnxml/common/interface.h"
#include "vnxml/common/value.h"
#include "vnxml/common/vn_type_info.h"
#include "vnxml/serializer_hints.h"

namespace vn {

struct IVnSerializer;
struct IVnDeserializer;
class TVnCustomSerializer;

/// Programming fault: one class and serializer helper registered with two deserializer helpers.
inline constexpr char16_t cVnInvalidHelperCombination[] = u"Invalid Serializer/Deserializer combination!";
/// Programming fault: a helper class given to registration that has the wrong base.
inline constexpr char16_t cVnNotAHelperClass[] = u"The class %s is not a helper of this kind!";

/// Steers the writing of the object that implements it.
struct IVnSerializerHelper : IInterface {
  static constexpr TGUID IID = TGUID::Parse("5b60bfe6-724b-4454-af3a-1d3c10c530e5");
  /// Whether the child AObject of class AClass is written; AName may be changed.
  virtual bool CanSerializeChild(IVnSerializer* ASerializer, TObject* AObject, TClass AClass, UnicodeString& AName) = 0;
  /// Before the members are written; AHandled true skips the normal walk.
  virtual void BeforeSerialize(IVnSerializer* ASerializer, bool& AHandled) = 0;
  virtual void AfterSerialize(IVnSerializer* ASerializer) = 0;

 protected:
  ~IVnSerializerHelper() = default;
};

/// Steers the reading of the object that implements it.
struct IVnDeserializerHelper : IInterface {
  static constexpr TGUID IID = TGUID::Parse("53720f69-818c-4d30-b2ab-3fb01712d3c0");
  virtual void BeforeDeserialize(IVnDeserializer* ADeserializer) = 0;
  virtual void AfterDeserialize(IVnDeserializer* ADeserializer) = 0;
  /// Whether the member AName (namespace AURI, data type ADataType) is read here; all three may be changed.
  virtual TVnCanDeserialize CanDeserialize(IVnDeserializer* ADeserializer, UnicodeString& AURI, UnicodeString& AName,
                                           UnicodeString& ADataType) = 0;
  /// Takes the text of a member CanDeserialize answered desYes for; AHandled true when taken.
  virtual void DeserializeValue(IVnDeserializer* ADeserializer, const UnicodeString& AURI, const UnicodeString& AName,
                                const UnicodeString& AValue, const UnicodeString& ADataType, bool& AHandled) = 0;

 protected:
  ~IVnDeserializerHelper() = default;
};

/// Base of the registered helpers that write a class. Created through its virtual constructor.
class TVnSerializerHelper : public TObject {
  VN_DECLARE_CLASS(TVnSerializerHelper, TObject)
 public:
  /// Writes AValue (named AName, of type AType) through ASerializer; AHandled false leaves it to
  /// the normal walk. The base writes nothing and claims the value.
  virtual void Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName, const TVnTypeInfo* AType,
                         const TValue& AValue, bool& AHandled);
};

/// Base of the registered helpers that read a class. The base reads nothing.
class TVnDeserializerHelper : public TObject {
  VN_DECLARE_CLASS(TVnDeserializerHelper, TObject)
 public:
  /// Whether a member is read here; the base answers desNo.
  virtual TVnCanDeserialize CanDeserialize(TVnCustomSerializer* ADeserializer, UnicodeString& AURI,
                                           UnicodeString& AName, UnicodeString& ADataType);
  virtual void DeserializeStartType(TVnCustomSerializer* ADeserializer);
  virtual void DeserializeValue(TVnCustomSerializer* ADeserializer, const UnicodeString& AURI,
                                const UnicodeString& AName, const UnicodeString& AValue,
                                const UnicodeString& ADataType, bool& AHandled);
  virtual void DeserializeEndType(TVnCustomSerializer* ADeserializer);
};

/// Class references of the helpers: a TClass of a descendant of the base.
using TVnSerializerHelperClass = TClass;
using TVnDeserializerHelperClass = TClass;

/// Registers helpers for AClass and its descendants; either helper may be nil. Nearer classes
/// are found first whatever the order of registration. Registering the same class and
/// serializer helper again sets the deserializer helper, which must not differ from one set
/// before (cVnInvalidHelperCombination). Wrong bases are EAssertionFailed; nothing is stored then.
void VnRegisterSerializerHelper(TClass AClass, TVnSerializerHelperClass ASerializerHelper,
                                TVnDeserializerHelperClass ADeserializerHelper);
/// Registers helpers for the generic classes of a pattern: "TObjectList<T>", "TDictionary<T,T>".
void VnRegisterSerializerHelper(std::u16string_view APattern, TVnSerializerHelperClass ASerializerHelper,
                                TVnDeserializerHelperClass ADeserializerHelper);

/// A new serializer helper for an object of AClass (the caller's), or nullptr when no
/// registration fits. A generic class is first matched by its pattern, then any class by its
/// nearest registered ancestor; the first registration that fits decides, even without a helper.
std::unique_ptr<TVnSerializerHelper> VnCreateSerializerHelper(TClass AClass);
/// The same for reading.
std::unique_ptr<TVnDeserializerHelper> VnCreateDeserializerHelper(TClass AClass);
/// The pattern of a generic name: "TObjectDictionary<string,uShop.TItem>" gives "TObjectDictionary<T,T>".
UnicodeString VnGenericPattern(std::u16string_view AName);

}  // namespace vn
