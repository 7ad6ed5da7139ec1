// serializer_builder.h: TVnDeserializer, the building of an object, record or array from reader
// events (unit uVnSerializer).
// A notation translates its reader's events into four calls: CanDeserialize (a member starts),
// DeserializeStartType (a nested value starts), DeserializeValue (a member's text) and
// DeserializeEndType (a nested value ends). Each member is stored into the host the moment its
// text arrives; a nested object, record or array gets a child deserializer that takes the
// events until its value ends. No tree is built in between.
// Objects are created only for nil members and only of registered classes: the class the text
// names (which must be the member's class or a descendant) or the member's own class.
// Ownership of created objects (the library's rule): each is stored in its member and recorded
// in the created-objects list. When the read succeeds they belong to the host's members (or to
// a list the caller passed). When it fails, every member that received one is reset to nil and
// the objects are freed: a failed read never leaves the host linked to freed or half-read objects.
// A dynamic array of objects read again over a longer one is shortened only over nil slots: the
// objects beyond its new length stay in it, so none is dropped unfreed.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "vnxml/common/classes.h"
#include "vnxml/common/variant.h"
#include "vnxml/serializer.h"

namespace vn {

class TVnTextParser;
class TVnDeserializer;

inline constexpr char16_t cVnDeserializeNotOnRoot[] = u"The \"Deserialize\" method may only be called on the root!";
inline constexpr char16_t cVnNoTypeInfo[] = u"No TypeInfo available!";
inline constexpr char16_t cVnMemberValueTypeNil[] = u"The MemberValueType is NIL!";
inline constexpr char16_t cVnInstanceTypeInfoNil[] = u"The InstanceTypeInfo is NIL!";
inline constexpr char16_t cVnMemberValueTypeDiffers[] = u"The MemberValueType (%s) is different than the InstanceTypeInfo (%s)!";
inline constexpr char16_t cVnNoClassNameInStream[] = u"Failed to read the ClassName from the stream!";
inline constexpr char16_t cVnFailedToCreateRoot[] = u"Failed to create an instance of the requested object!";
inline constexpr char16_t cVnNoClassOfType[] = u"Failed to retrieve the Class of type \"%s\"!";
inline constexpr char16_t cVnUnknownMember[] = u"Failed to find a property or field with the name %s.%s!";
inline constexpr char16_t cVnUnknownSerializerName[] = u"Unknown Serializer Name";
inline constexpr char16_t cVnFailedToCreateMember[] = u"Failed to create an instance of %s!";
inline constexpr char16_t cVnEnumValueUnknown[] = u"Failed to get the EnumValue for ";
inline constexpr char16_t cVnValueNotSupported[] = u"The value \"%s\" of type \"%s\" is not supported!";
inline constexpr char16_t cVnFailedToSetValue[] = u"Failed to set propertyvalue %s!\r\n";
inline constexpr char16_t cVnParentIsArray[] = u"The parent is the array field";
inline constexpr char16_t cVnParentMemberTypeUnset[] = u"The FMemberTypeInfo of the parent is not set!!";
inline constexpr char16_t cVnArrayMemberTypeUnset[] =
    u"The FMemberTypeInfo should have been calculated in the \"DeserializeStartType\"!";
/// A class the text names that is registered but is not the member's class or a descendant.
inline constexpr char16_t cVnClassNotADescendant[] = u"The class %s is not a descendant of %s!";
/// An element past the end of a fixed-size array.
inline constexpr char16_t cVnArrayFull[] = u"The array at \"%s\" has no element %s!";
/// An object would be made inside a record or array that a TValue holds: nothing would own it.
inline constexpr char16_t cVnBoxedObjectUnowned[] =
    u"Deserialization failure at \"%s\"\r\nA record or array held by a TValue cannot take a new object!";
inline constexpr char16_t cVnArrayExpected[] =
    u"Deserialization failure at \"%s\"\r\nAn array expected, but the text \"%s\" found!";
inline constexpr char16_t cVnOwnerNotAComponent[] = u"The object parameter \"Owner\" is not a TComponent!";

/// A created-objects list that a deserializer made for itself.
class TVnDeserializerObjectList : public TObjectList {
  VN_DECLARE_CLASS(TVnDeserializerObjectList, TObjectList)
 public:
  TVnDeserializerObjectList(TVnDeserializer* AOwner, bool AOwnsObjects) : TObjectList(AOwnsObjects), FOwner(AOwner) {}
  TVnDeserializer* FOwner;
};

class TVnDeserializer : public TVnCustomSerializer, public IVnDeserializer {
  VN_DECLARE_CLASS(TVnDeserializer, TVnCustomSerializer)
  VN_VNOBJECT_INTERFACES(TVnCustomSerializer, IVnDeserializer)
  VN_CUSTOM_SERIALIZER_SLOTS
 public:
  TVnDeserializer();
  ~TVnDeserializer() override;

  /// Also keeps the value as the current member value (a root array read through a value).
  void Create(const TValue& AValue) override;
  /// Also takes the instance's IVnDeserializerHelper when it is an object that offers one.
  void Create(void* AInstance, const TTypeInfo* AType) override;
  /// A parent lends its stream and its created-objects list.
  void SetParent(TVnCustomSerializer* AParent) override;

  TObjectList* GetCreatedObjects() override { return FCreatedObjs; }
  /// AList receives the objects created from now on (nil: a list that owns nothing).
  void SetCreatedObjects(TObjectList* AList) override;

  // ---- entry points (the root only) ----
  void Deserialize(const TVnSerializedData& AData) override;
  void Deserialize(TStream& AStream) override;

  // ---- what the notation fills ----
  /// The class name at the start of the raw text, or empty.
  virtual void ReadClassName(TVnTextParser& AParser, UnicodeString& AClassName) = 0;
  /// The class the current element names: true with the name (empty for a nil mark), false
  /// when it names none. The base names none.
  virtual bool ReadClassName(UnicodeString& AClassName);
  /// Runs the reader over FStream.
  virtual void DoDeserialize() = 0;
  virtual Integer ValueToInt(std::u16string_view AValue) = 0;
  virtual Int64 ValueToInt64(std::u16string_view AValue) = 0;
  virtual Extended ValueToFloat(std::u16string_view AValue) = 0;
  virtual UnicodeString ValueToStr(std::u16string_view AValue) = 0;
  virtual TDateTime ValueToDate(std::u16string_view AValue) = 0;
  virtual TDateTime ValueToTime(std::u16string_view AValue) = 0;
  virtual TDateTime ValueToDateTime(std::u16string_view AValue) = 0;
  virtual bool ValueToBool(std::u16string_view AValue) = 0;
  virtual Variant ValueToVar(std::u16string_view AValue, std::u16string_view ADataType) = 0;
  virtual TValue ValueToVal(std::u16string_view AValue, std::u16string_view ADataType) = 0;

  // ---- the building ----
  /// A new object of AType's class (the created-objects list records it).
  virtual TObject* CreateInstance(const TVnTypeInfo*& AType);
  /// What receives the events: this deserializer, or a sub-root for a root array or for a
  /// class named by the text.
  virtual TVnDeserializer* CheckInstance();
  /// The child for the current member when it is an object, record or array; nil otherwise.
  virtual TVnDeserializer* CreateChildDeserializerIfNeeded(std::u16string_view AName);
  /// Whether the member AName can be read; finds it and makes its child. Unknown names raise
  /// cVnUnknownMember when ARaiseOnUnknown, except the reserved className, parent, owner, type.
  virtual TVnCanDeserialize CanDeserialize(UnicodeString& AURI, UnicodeString& AName, UnicodeString& ADataType,
                                           bool ARaiseOnUnknown);
  virtual void DeserializeStartType();
  /// Converts AValue to the current member's type and stores it; failures come out as
  /// cVnFailedToSetValue followed by the cause.
  virtual void DeserializeValue(std::u16string_view AURI, std::u16string_view AName, std::u16string_view AValue,
                                std::u16string_view ADataType);
  virtual void DeserializeEndType();

  /// True for an array deserializer below a parent; AKind receives the element's kind.
  bool IsArraySerializer(TVnTypeKind* AKind = nullptr) const;
  /// Makes the next element current in an array deserializer; the address of its value, or nil.
  void* InitializeArrayElement(std::u16string_view AURI, std::u16string_view AName);
  /// Whether a dynamic array of objects holds one at AIndex or beyond (kept when read again).
  bool HoldsObjectsFrom(Int64 AIndex) const;
  /// A child of the class the registry gives for AType, with its helper (from AHint, or the
  /// registered one of a class), this deserializer as parent, and its start run. The child lives
  /// as long as this deserializer or until the next child.
  TVnDeserializer* CreateChildDeserializer(std::u16string_view AName, void* AInstance, const TVnTypeInfo* AType,
                                           const SerializerHint* AHint);
  /// The same for a copy of AValue, kept as the child's member value.
  TVnDeserializer* CreateChildDeserializer(std::u16string_view AName, const TValue& AValue,
                                           const SerializerHint* AHint);
  /// The same with a given deserializer class.
  TVnDeserializer* CreateChildDeserializer(TClass AClass, std::u16string_view AName, void* AInstance,
                                           const TVnTypeInfo* AType, const SerializerHint* AHint);

  TVnDeserializer* GetParentDeserializer() const noexcept { return FParentDeserializer; }
  TVnDeserializer* GetChild() const noexcept { return FChild; }
  /// Drops the current child (it has ended).
  void ReleaseChild();
  Integer GetArrIdx() const noexcept { return FArrIdx; }
  const TVnTypeInfo* GetMemberTypeInfo() const noexcept { return FMemberTypeInfo; }
  const TValue& GetMemberValue() const noexcept { return FMemberValue; }
  TRttiField* GetMemberField() const noexcept { return FMemberField; }
  TRttiProperty* GetMemberProp() const noexcept { return FMemberProp; }
  /// The dotted path from the root to the current member, for messages.
  UnicodeString GetPath() const;

 protected:
  /// Stores FMemberValue through the member field or property, or into the array being read.
  void StoreMemberValue();
  /// Records a new object in the root's lists (undone on failure).
  void RecordCreated(TObject* AObject);
  /// Records that the member of AInstance now holds what this read created (undone on failure).
  void RecordLink(void* AInstance, TRttiField* AField, TRttiProperty* AProp);
  /// How many objects the read has created so far.
  size_t CreatedCount();
  /// Frees the object AValue holds when this read created it (a later value of the same member
  /// replaces it), taking it out of the read's lists and emptying AValue; any other value is left
  /// alone.
  void FreeIfCreated(TValue& AValue) noexcept;
  /// Whether the caller gave the read its list of created objects (and so takes what no
  /// member owns).
  bool CallerListsCreated() { return !Root()->FOwnList && Root()->FCreatedObjs; }
  /// Frees what a failed read created and unlinks it from the members that got it.
  void RollBack() noexcept;
  TVnDeserializer* Root();
  /// Brings a child that has ended back to the state of a new one, so that the next nested value
  /// of its class reuses it instead of a new deserializer; false when this class cannot (the
  /// base, and every descendant that does not reset its own fields).
  virtual bool ResetForReuse();
  /// The reset of this class's and its bases' fields, for the ResetForReuse of descendants.
  void ResetBuilderState();
  /// Makes AChild the current child: name, helper, parent, start.
  TVnDeserializer* AdoptChild(IPtr<IVnDeserializer> AChild, std::u16string_view AName, const TVnTypeInfo* AType,
                              const SerializerHint* AHint);

  TObjectList* FCreatedObjs = nullptr;
  Integer FArrIdx = -1;
  /// The instance's own helper, not counted: counting a host object would free it.
  IVnDeserializerHelper* FIHelper = nullptr;
  std::unique_ptr<TVnDeserializerHelper> FCHelper;
  TRttiField* FMemberField = nullptr;
  TRttiProperty* FMemberProp = nullptr;
  const TVnTypeInfo* FMemberTypeInfo = nullptr;
  TValue FMemberValue;
  /// The name of the current member, for paths.
  UnicodeString FMemberName;
  TVnDeserializer* FParentDeserializer = nullptr;
  /// The child of the current member; this deserializer holds its only count.
  TVnDeserializer* FChild = nullptr;
  IPtr<IVnDeserializer> FChildRef;
  /// An ended child, already reset, kept for the next nested value of its class.
  TVnDeserializer* FSpare = nullptr;
  IPtr<IVnDeserializer> FSpareRef;

 private:
  struct Link {
    void* Instance;
    TRttiField* Field;
    TRttiProperty* Prop;
  };
  // Kept by the root: the objects created, and the members that received them.
  std::vector<TObject*> FCreated;
  std::vector<Link> FLinks;
  /// Objects created before this child started: more at its end means its copy holds new ones.
  size_t FCreatedAtStart = 0;
  /// Where the next member of the text is looked for first among the instance's fields.
  size_t FNextField = 0;
  /// Levels below the root; bounded like the walker's.
  int FDepth = 0;
  /// Between DeserializeStartType and DeserializeEndType.
  bool FStarted = false;
  /// The instance is a static or dynamic array.
  bool FIsArray = false;
  bool FOwnList = false;
};

}  // namespace vn
