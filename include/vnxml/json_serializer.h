// json_serializer.h: the JSON notation of the object serializer (unit uVnJSONSerializer): the
// writer TVnJSONSerializer and its classes for streams, strings, components and JSON documents.
// The readers stand in json_serializer_reader.h. The classes register themselves for dsfJSON on
// the first use of the serializer registry.
//
// The writer puts no blank and no line end between tokens. An object or record is
// {"className":"<schema name>",...members}; member names start with a lower-case letter (the
// readers find members ignoring case); an array is [...]; an enumeration or set is the object
// {"className":"<schema name>","asString":"<name>","asInt":<ordinal>} (a set's name list in
// brackets, its bits as the ordinal); a nil object is {}; a date, time or date-time is a quoted
// XML form; a VnJSONString member is written as it stands, not escaped. Floats that are not
// finite have no JSON number: they are written null, as this system's own rule.
#pragma once

#include <string>

#include "vnxml/serializer_walker.h"

namespace vn {

/// Programming fault: a simple type given a start or end below the root.
inline constexpr char16_t cVnJSONBasicTypeNotAtRoot[] =
    u"Basic types are only allowed on the Root level (For serialing basic values)";
inline constexpr char16_t cVnJSONUnsupportedTypeKind[] = u"Unsupported TypeKind detected!";
inline constexpr char16_t cVnJSONArrayNeedsChild[] = u"JSON Arrays must be serialized by a ChildSerializer!";
inline constexpr char16_t cVnJSONObjectNeedsChild[] = u"JSON Ojbects must be serialized by a ChildSerializer!";
/// Programming fault: a notation class given an instance of another class.
inline constexpr char16_t cVnJSONInstanceNotA[] = u"The instance is not a %s!";

class TVnJSONSerializer : public TVnSerializer {
  VN_DECLARE_CLASS(TVnJSONSerializer, TVnSerializer)
 public:
  TVnJSONSerializer() = default;
  TVnDataSerializationFormatType Format() const override { return dsfJSON; }

  void SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  /// Writes the separator, the quoted name with a lower-case first letter (not escaped) and ":".
  void SerializeName(std::u16string_view AName, TVnSerializerMemberType AMemberType, TVnTypeKind AParentKind,
                     TVnTypeKind AMemberKind) override;
  /// Writes the value alone (the name came before); an element past the first gets its comma.
  void SerializeValue(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue, Integer AIndex,
                      TVnAttributes AAttributes) override;

 protected:
  /// Text before the next member: empty at the start of an object, "," afterwards.
  std::string FPrefix;

 private:
  void WriteValue(const TVnTypeInfo* AType, const TValue& AValue, TVnAttributes AAttributes);
  void WriteOrdinal(const TVnTypeInfo* AType, const TValue& AValue);
  void WriteDate(const TVnTypeInfo* AType, const TValue& AValue, TVnAttributes AAttributes);
  void WriteInteger(const TValue& AValue, bool AUnsigned);
  /// AText in quotes, escaped unless AEscape is false, in one write.
  void WriteQuoted(std::u16string_view AText, bool AEscape);
  std::string FText;
  UnicodeString FEscaped;
  /// "{" and the className member of a complex value.
  void WriteObjectStart(const TVnTypeInfo* AType);
};

/// A stream as {"className":"TMemoryStream","data":"<Base64 of its bytes>"}; its position is
/// kept.
class TVnJSONStreamSerializer : public TVnJSONSerializer {
  VN_DECLARE_CLASS(TVnJSONStreamSerializer, TVnJSONSerializer)
 public:
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
  void SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
};

/// A string list as {"className":"TStringList","items":["a","b"]}.
class TVnJSONStringsSerializer : public TVnJSONSerializer {
  VN_DECLARE_CLASS(TVnJSONStringsSerializer, TVnJSONSerializer)
 public:
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

/// A component: "owner" with the owner's name first, when it has one, then its members.
class TVnJSONComponentSerializer : public TVnJSONSerializer {
  VN_DECLARE_CLASS(TVnJSONComponentSerializer, TVnJSONSerializer)
 public:
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

/// A JSON document as its own text, in UTF-8; with "excluderoot" at "true" without the outer
/// brackets of its root value.
/// Below the root, as a member or array element, the document's text stands in the value's
/// place, {} for a document with no value.
class TVnJSONDocSerializer : public TVnJSONSerializer {
  VN_DECLARE_CLASS(TVnJSONDocSerializer, TVnJSONSerializer)
 public:
  void Serialize(TStream& AStream) override;
  using TVnJSONSerializer::Serialize;
  void SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

}  // namespace vn
