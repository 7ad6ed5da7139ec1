// xs_serializer.h: the serializers of the XS value records in XML and JSON (units
// uVnXMLSerializer and uVnJSONSerializer).
// An XS member is written as its bare value, typed as the plain type it holds: a
// TXsInteger<Integer> member "Amount" is <Amount xsi:type="xsd:int">42</Amount> and "amount":42;
// a null record is xsi:nil="true" and null. Date records are written from their own text
// (ToString(true)), a duration as its lexical form in XML and in JSON as the object
// {"className":"TVnDuration","negative":false,"monthts":1,"seconds":2.5} ({} when null).
// Reading makes a fresh record from the text and copies it over the member, so the member's
// facets are replaced by empty ones and nothing is checked: facets bind code, not text. An empty
// XML element leaves the member as it was (so an empty TXsString reads back as no change); JSON
// null clears it. A JSON object in place of a
// value clears the record when it has a member; the duration's own object form reads back.
// Any record type outside the nineteen raises Exception cVnXsNotAnXsType.
// The four classes are registered for the nineteen XS types in both notations at start-up.
#pragma once

#include "vnxml/json_serializer.h"
#include "vnxml/json_serializer_reader.h"
#include "vnxml/xml_serializer.h"
#include "vnxml/xs_types.h"

namespace vn {

class TVnXMLXsSerializer : public TVnXMLSerializer {
  VN_DECLARE_CLASS(TVnXMLXsSerializer, TVnXMLSerializer)
 public:
  /// No element of its own: the value is the member's element. Keeps the index of an element.
  void SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void SerializeEndType(std::u16string_view, const TVnTypeInfo*, Integer) override {}
  /// Writes the record at the instance as its plain value; AType and AValue are not used.
  void SerializeValue(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                      Integer AIndex, TVnAttributes AAttributes) override;

 private:
  Integer FIndex = -1;
};

class TVnXMLXsDeserializer : public TVnXMLDeserializer {
  VN_DECLARE_CLASS(TVnXMLXsDeserializer, TVnXMLDeserializer)
 public:
  /// Something inside the record's element: the record is cleared, and the rest passed over.
  TVnCanDeserialize CanDeserialize(UnicodeString& AURI, UnicodeString& AName, UnicodeString& ADataType,
                                   bool ARaiseOnUnknown) override;
  /// The record's own text is gathered and read at the element's end.
  void DoCharacters(std::u16string_view AText) override;
  void DeserializeEndType() override;

 private:
  UnicodeString FOwnText;
  bool FHasOwnText = false;
};

class TVnJSONXsSerializer : public TVnJSONSerializer {
  VN_DECLARE_CLASS(TVnJSONXsSerializer, TVnJSONSerializer)
 public:
  void SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void SerializeEndType(std::u16string_view, const TVnTypeInfo*, Integer) override {}
  void SerializeValue(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                      Integer AIndex, TVnAttributes AAttributes) override;

 private:
  Integer FIndex = -1;
};

/// Takes one value and gives the floor back: a string, number or boolean is read into the
/// record, null clears it.
class TVnJSONXsDeserializer : public TVnJSONDeserializer {
  VN_DECLARE_CLASS(TVnJSONXsDeserializer, TVnJSONDeserializer)
 public:
  TVnCanDeserialize CanDeserialize(UnicodeString& AURI, UnicodeString& AName, UnicodeString& ADataType,
                                   bool ARaiseOnUnknown) override;
  void DoStartObject() override;
  void DoStartMember(std::u16string_view AName) override;
  void DoStartArray() override;
  void DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) override;
  void DoEndArray() override;
  void DoEndObject() override;

 private:
  /// The duration's object form, as far as it came.
  UnicodeString FKey;
  TVnDuration FDuration;
  bool FHasDuration = false;
};

}  // namespace vn
