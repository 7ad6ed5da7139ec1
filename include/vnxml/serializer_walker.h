// serializer_walker.h: TVnSerializer, the walk over an object, record, array or value (unit uVnSerializer).
// The walker knows no notation: it reports what it finds to its virtual writers (start and end of
// a type, a member's name, a value), which the XML and JSON serializers fill. Each nested object,
// record and array gets a child serializer of the class the registry gives for its type, so a
// TStrings inside a plain object is written by the strings serializer of the same notation.
// Members: published properties (unless hidden by an empty shoName), public properties with a
// non-empty shoName, public and published fields; the first member of a name wins. An object
// already being written further up the chain is left out, so cycles end.
// Output is UTF-8 without byte-order mark, written straight to the stream.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "vnxml/serializer.h"

namespace vn {

class TRttiMethod;

inline constexpr char16_t cVnArrayNotAMember[] =
    u"Serialization failure at \"%s\"\r\nArrays are only supported as a field or property of another object/record!";
inline constexpr char16_t cVnArrayTypeMismatch[] =
    u"Serialization failure at \"%s\"\r\nThe type of the value does not match the type of the instanceinfo!";
inline constexpr char16_t cVnFieldCannotBeSerialized[] =
    u"Serialization failure at \"%s\"\r\nThe field \"%s\" of type \"%s\" cannot be serialized!";
inline constexpr char16_t cVnFieldCannotBeSerializedRecord[] =
    u"Serialization failure at \"%s\"\r\nThe field \"%s\" of type \"%s\" cannot be serialized (Record)!";
inline constexpr char16_t cVnEventParamCount[] =
    u"Failed to trigger the event!\r\nThe paramatercount does not match the count of the prototype.";
/// Objects nested deeper than cVnMaxNesting levels end the walk with this (and the path): the
/// walk recurses per level, and a chain that deep is no document anyone reads.
inline constexpr char16_t cVnNestingTooDeep[] = u"Serialization failure at \"%s\"\r\nThe nesting is too deep!";
inline constexpr int cVnMaxNesting = 512;

/// The attributes of a member as the writers get them; empty for elements and values.
using TVnAttributes = std::span<TCustomAttribute* const>;

class TVnSerializer : public TVnCustomSerializer, public IVnSerializer {
  VN_DECLARE_CLASS(TVnSerializer, TVnCustomSerializer)
  VN_VNOBJECT_INTERFACES(TVnCustomSerializer, IVnSerializer)
  VN_CUSTOM_SERIALIZER_SLOTS
 public:
  TVnSerializer() = default;
  ~TVnSerializer() override;

  /// Also takes the instance's IVnSerializerHelper when it is an object that offers one.
  void Create(void* AInstance, const TTypeInfo* AType) override;
  /// A parent also lends its stream.
  void SetParent(TVnCustomSerializer* AParent) override;

  // ---- the walk ----
  /// Writes the instance's content: members of a record or class, elements of an array, or
  /// the value itself for a simple type. AParent is the serializer whose member this is.
  virtual void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath);

  // ---- the writers; empty here, filled by the notation ----
  /// The start of a complex value; AIndex is the element's position in an array, else -1.
  virtual void SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex);
  virtual void SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex);
  /// A member's name, ahead of its value; kinds are those of the parent and of the member.
  virtual void SerializeName(std::u16string_view AName, TVnSerializerMemberType AMemberType, TVnTypeKind AParentKind,
                             TVnTypeKind AMemberKind);
  /// A value; AAttributes are the member's (hints), empty for elements. An empty AName writes
  /// the bare value (a simple root).
  virtual void SerializeValue(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                              Integer AIndex, TVnAttributes AAttributes);

  // ---- entry points ----
  TVnSerializedData Serialize() override;
  /// The root's entry: start, the instance's helper, a registered helper or the walk, end.
  void Serialize(TStream& AStream) override;
  /// Writes the arguments of a call of AMethod (the prototype) as one value named AName;
  /// AHighIndex must be the prototype's last parameter index.
  virtual void Serialize(TStream& AStream, const TRttiMethod& AMethod, std::u16string_view AName,
                         std::span<const TValue> AValues, Integer AHighIndex);

  // ---- output ----
  /// Bytes, as they are (UTF-8 expected).
  void Write(std::string_view ABytes);
  /// Text, as UTF-8.
  void Write(std::u16string_view AText);
  void Write(char AChar) { Write(std::string_view(&AChar, 1)); }

  // ---- children ----
  /// A serializer of the class the registry gives for AType, with this one as parent (the
  /// caller's; it also holds a count).
  IPtr<IVnSerializer> CreateChildSerializer(void* AInstance, const TVnTypeInfo* AType, TVnSerializer*& AChild);
  void SerializeChild(std::u16string_view AName, std::u16string_view ATypeName, void* AInstance,
                      const TVnTypeInfo* AType, Integer AIndex);
  void SerializeClass(std::u16string_view AName, TClass AClass, TObject* AObject, Integer AIndex);
  void SerializeInterface(std::u16string_view AName, const TVnTypeInfo* AType, IInterface* AIntf, Integer AIndex);
  void SerializeRecord(std::u16string_view AName, const TVnTypeInfo* AType, void* AInstance,
                       const TVnTypeInfo* AValueType, Integer AIndex);
  void SerializeArray(std::u16string_view AName, const TVnTypeInfo* AType, void* AInstance,
                      const TVnTypeInfo* AValueType, Integer AIndex);
  void SerializeFieldOrProp(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                            TVnAttributes AAttributes);

  const UnicodeString& GetMemberName() const noexcept { return FMemberName; }
  /// The dotted path from the root to this value, for messages.
  const UnicodeString& GetPath() const noexcept { return FPath; }
  /// True when the parameter AName is "true".
  bool ParamIsTrue(std::u16string_view AName);

 protected:
  /// Whether AObject is the instance of this serializer or of one up the parent chain.
  bool IsOnChain(const TObject* AObject) const;
  void CheckNesting() const;

  UnicodeString FMemberName;
  UnicodeString FPath;
  /// The instance's own helper, not counted: counting a host object would free it.
  IVnSerializerHelper* FHelper = nullptr;
  /// "excludechildren", read once per serializer.
  bool FExcludeChildren = false;
  /// Levels below the root; bounded by cVnMaxNesting.
  int FDepth = 0;
  /// UTF-8 of the text being written (kept to reuse its room).
  std::string FScratch;
  /// The root's texts of type attributes, made once per type and walk; shared by the children.
  std::unordered_map<const TVnTypeInfo*, std::string>* FTypeAttributes = nullptr;
  std::unordered_map<const TVnTypeInfo*, std::string> FOwnTypeAttributes;

 private:
  void WalkMembers();
  void WalkArray();
  /// Conditions shared by properties and fields: what may be written at all.
  bool MemberPasses(const TVnTypeInfo* AType, const TValue& AValue) const;
};

}  // namespace vn
