// serializer_containers.h: the helpers that give containers their own form (unit uVnSerializerHelpers).
// The walker writes published properties and public fields, and a container's elements are
// neither. These helpers, registered at start-up, write (and some read) four kinds of container
// through the notation-free writer operations, so one helper serves XML and JSON:
//   class TVnCustomSimpleType   the wrapped value alone, under the value's type; read back
//   class TList                 "ArrayOf..." of values, each under its own type; read back (Add)
//   class TObjectList           an array of objects, each tagged by the declared element type
//   pattern "TObjectList<T>"    and typed by its run-time class; read back when the list owns
//                               its objects (Add), elements of unknown classes passed over
//   pattern "TObjectDictionary<T,T>"  an array of "item" pairs (KeyValuePair: Key, Value, each
//                               under its value's type), also found as "ArrayOfKeysAndValues"
// What the library adds to that:
// - Helpers run for properties (published, or public with an shoName hint) and for the root,
//   never for fields: a container in a field is walked as a plain object, without elements.
// - A nil list, object list or dictionary is written as any nil object (xsi:nil, null); a nil
//   element of an object list as a nil value in its place.
// - A TList reads "Count", "Items" and "Add" by reflection of its run-time class; a class
//   without them is a programming fault (cVnContainerMemberMissing). A value list reads an
//   element without a type mark as text, and converts each element to Add's parameter type when
//   its own type does not fit it.
// - Generic object lists and dictionaries get their reflection by themselves
//   (common/generics_rtti.h); a dictionary's Keys and Values are dynamic arrays.
// - Reading: the text of a simple wrapper, a value list and an owning object list reads back in
//   both notations, into the member's object or a new one of the member's class. A nil element
//   of an object list keeps its place in both ("{}" in JSON). A dictionary's text does not read
//   back: in XML its "item" elements meet the plain member lookup and raise "Failed to find a
//   property or field with the name ...item!"; in JSON its pairs are passed over. Values that
//   JSON writes as objects (enumerations, sets) are passed over inside a value list.
#pragma once

#include <vector>

#include "vnxml/common/custom_simple_type.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/serializer_helpers.h"

namespace vn {

/// Programming fault: a container class registered without a member its helper reaches.
inline constexpr char16_t cVnContainerMemberMissing[] = u"The class %s has no reflected member \"%s\"!";

/// One key and its value, as a dictionary is written.
struct TSchemaPair {
  TValue Key;
  TValue Value;
};
VN_REGISTER_TYPE(TSchemaPair, u"uVnSerializerHelpers") {
  b.Public(u"Key", &TSchemaPair::Key).Public(u"Value", &TSchemaPair::Value);
}
/// The type a dictionary is written under.
using TSchemaDictionary = std::vector<TSchemaPair>;

class TVnSimpleTypeSerializerHelper : public TVnSerializerHelper {
  VN_DECLARE_CLASS(TVnSimpleTypeSerializerHelper, TVnSerializerHelper)
 public:
  void Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName, const TVnTypeInfo* AType,
                 const TValue& AValue, bool& AHandled) override;
};

/// Converts the text straight to the wrapper's type, and only when that fails through the
/// notation's own conversion of that type. A member named "className" (the type mark of a JSON
/// enumeration's object form) is no value and is passed over.
class TVnSimpleTypeDeserializerHelper : public TVnDeserializerHelper {
  VN_DECLARE_CLASS(TVnSimpleTypeDeserializerHelper, TVnDeserializerHelper)
 public:
  TVnCanDeserialize CanDeserialize(TVnCustomSerializer* ADeserializer, UnicodeString& AURI, UnicodeString& AName,
                                   UnicodeString& ADataType) override;
  void DeserializeValue(TVnCustomSerializer* ADeserializer, const UnicodeString& AURI, const UnicodeString& AName,
                        const UnicodeString& AValue, const UnicodeString& ADataType, bool& AHandled) override;
};

/// A root TList keeps its empty name: its array stands bare inside the root element.
class TVnListSerializerHelper : public TVnSerializerHelper {
  VN_DECLARE_CLASS(TVnListSerializerHelper, TVnSerializerHelper)
 public:
  void Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName, const TVnTypeInfo* AType,
                 const TValue& AValue, bool& AHandled) override;
};

/// Appends every element that arrives, in order; failures of the conversion or of Add pass out.
class TVnListDeserializerHelper : public TVnDeserializerHelper {
  VN_DECLARE_CLASS(TVnListDeserializerHelper, TVnDeserializerHelper)
 public:
  TVnCanDeserialize CanDeserialize(TVnCustomSerializer* ADeserializer, UnicodeString& AURI, UnicodeString& AName,
                                   UnicodeString& ADataType) override;
  void DeserializeValue(TVnCustomSerializer* ADeserializer, const UnicodeString& AURI, const UnicodeString& AName,
                        const UnicodeString& AValue, const UnicodeString& ADataType, bool& AHandled) override;
};

/// A root object list is written under the name "Items".
class TVnObjectListSerializerHelper : public TVnSerializerHelper {
  VN_DECLARE_CLASS(TVnObjectListSerializerHelper, TVnSerializerHelper)
 public:
  void Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName, const TVnTypeInfo* AType,
                 const TValue& AValue, bool& AHandled) override;
};

/// Each element makes an object of the class its type mark names and adds it; the element's tag
/// plays no part, so a list of a base class takes descendants. A list that owns nothing, a
/// class the registry does not know, or one that Add refuses: the element is passed over.
class TVnObjectListDeserializerHelper : public TVnDeserializerHelper {
  VN_DECLARE_CLASS(TVnObjectListDeserializerHelper, TVnDeserializerHelper)
 public:
  TVnCanDeserialize CanDeserialize(TVnCustomSerializer* ADeserializer, UnicodeString& AURI, UnicodeString& AName,
                                   UnicodeString& ADataType) override;
};

/// A root dictionary is written under the name "Items"; keys and values pair up by index.
class TVnDictionarySerializerHelper : public TVnSerializerHelper {
  VN_DECLARE_CLASS(TVnDictionarySerializerHelper, TVnSerializerHelper)
 public:
  void Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName, const TVnTypeInfo* AType,
                 const TValue& AValue, bool& AHandled) override;
};

// Findable by qualified name, so a hint can name them for one property. The base reader takes
// nothing: named by an shoDeserializerHelper hint on a dictionary property, it passes the pairs
// over, so that an object holding a dictionary reads back from XML.
VN_REGISTER_TYPE(TVnDeserializerHelper, u"uVnSerializer") {}
VN_REGISTER_TYPE(TVnSimpleTypeSerializerHelper, u"uVnSerializerHelpers") {}
VN_REGISTER_TYPE(TVnSimpleTypeDeserializerHelper, u"uVnSerializerHelpers") {}
VN_REGISTER_TYPE(TVnListSerializerHelper, u"uVnSerializerHelpers") {}
VN_REGISTER_TYPE(TVnListDeserializerHelper, u"uVnSerializerHelpers") {}
VN_REGISTER_TYPE(TVnObjectListSerializerHelper, u"uVnSerializerHelpers") {}
VN_REGISTER_TYPE(TVnObjectListDeserializerHelper, u"uVnSerializerHelpers") {}
VN_REGISTER_TYPE(TVnDictionarySerializerHelper, u"uVnSerializerHelpers") {}

}  // namespace vn
