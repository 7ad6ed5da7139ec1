// json_serializer_reader.h: the JSON readers of the object serializer (unit uVnJSONSerializer):
// TVnJSONDeserializer, a JSON content handler that feeds a reader's events to the builder, and
// its classes for streams, string lists, components, JSON documents and TValue. The object form
// of an enumeration or set ({"className":..,"asString":..,"asInt":..}) is read by the
// deserializer of its member itself, with no child of its own: "asString", then "asInt",
// whichever comes last decides; other names raise cVnJSONEnumMemberExpected.
//
// One reader serves a whole read. The deserializer that runs it stays the reader's handler and
// passes each event on to the deserializer that has the floor: a child takes it when it is made
// for a nested value and gives it back to its parent when that value ends. Nesting is a chain of
// children, not the call stack; a read deeper than cVnMaxNesting nested values ends with
// cVnJSONNestingTooDeep.
//
// The text must have the shape of the type, as this system's own rule: an object or record is an
// object (or a string holding one, or null for an object member, which leaves it as it is), an
// array an array (or a string holding one), an enumeration or set its object form, a name or a
// number; a simple member takes a string, number, boolean or null. Any other shape raises
// EVnSerializeException cVnJSONShapeMismatch with the path of the member. Unknown members raise
// the builder's message unless their name is reserved (className, parent, owner, type); a null
// for a Variant member reads as Null, for a string member as empty, for a floating-point member
// as NaN (the writer gives null for an infinity or NaN). Every failure of the builder
// or a conversion during a read comes out as EVnSerializeException with the path in front of
// its own message (cVnJSONFailureAtPrefix, the path in quotes, a line end, the message); the
// reader's own failures (text that is not JSON, text cut short) pass through as they are. Objects created for nil members are freed and unlinked again
// when the read fails (serializer_builder.h).
// Parameter "UrlEncoded" at "True" or "1" (any case): the text is form-URL-encoded.
#pragma once

#include <memory>
#include <string_view>

#include "vnxml/json_contract.h"
#include "vnxml/json_reader.h"
#include "vnxml/serializer_builder.h"

namespace vn {

inline constexpr char16_t cVnJSONRecordNotNillable[] =
    u"Records are not nillable! Use \"{}\" if you want to use empty records instead of \"Null\".";
inline constexpr char16_t cVnJSONObjectDataExpected[] = u"Record/Object data must start with \"{\".";
inline constexpr char16_t cVnJSONEnumMemberExpected[] =
    u"\"The JSON Enum Deserializer expected \"asString\" or \"asInt\", but the member \"%s\" was deserialized instead!";
/// Path, what the type needs, what the text holds.
inline constexpr char16_t cVnJSONShapeMismatch[] = u"Deserialization failure at \"%s\"\r\n%s expected, but %s found!";
/// What every failure during a read starts with: the path, then the cause's own message.
inline constexpr char16_t cVnJSONFailureAtPrefix[] = u"Deserialization failure at ";
inline constexpr char16_t cVnJSONNestingTooDeep[] = u"Deserialization failure at \"%s\"\r\nThe nesting is too deep!";

class TVnJSONDeserializer : public TVnDeserializer, public IVnJSONContentHandler, public IVnJSONErrorHandler {
  VN_DECLARE_CLASS(TVnJSONDeserializer, TVnDeserializer)
  VN_VNOBJECT_INTERFACES(TVnDeserializer, IVnJSONContentHandler, IVnJSONErrorHandler)
 public:
  TVnJSONDeserializer() = default;
  ~TVnJSONDeserializer() override;
  TVnDataSerializationFormatType Format() const override { return dsfJSON; }
  /// A child shares its parent's reader and takes the floor when a read is running.
  void SetParent(TVnCustomSerializer* AParent) override;

  // ---- IVnJSONContentHandler: the reader's events, passed on to the deserializer that has the floor ----
  void SetDocumentLocator(IVnJSONLocator*) override {}
  void StartDocument() override {}
  void StartObject() override;
  void StartMember(std::u16string_view AName) override;
  void StartArray() override;
  void Value(TVnJSONSimpleDataType AType, std::u16string_view AText) override;
  void EndArray() override;
  void EndMember() override {}
  void EndObject() override;
  void EndDocument() override {}
  // ---- IVnJSONErrorHandler: the reader raises by itself ----
  void Warning(IVnJSONLocator*, std::u16string_view) override {}
  void Error(IVnJSONLocator*, std::u16string_view) override {}
  void FatalError(IVnJSONLocator*, std::u16string_view) override {}

  // ---- the events as this deserializer takes them ----
  virtual void DoStartObject();
  virtual void DoStartMember(std::u16string_view AName);
  virtual void DoStartArray();
  virtual void DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText);
  virtual void DoEndArray();
  virtual void DoEndObject();
  /// Only this class itself: a descendant's own fields are unknown here.
  bool ResetForReuse() override;
  /// A form reader with "UrlEncoded" at "True" or "1", a JSON reader otherwise.
  virtual TVnJSONReader* CreateJSONReader();

  void ReadClassName(TVnTextParser& AParser, UnicodeString& AClassName) override;
  bool ReadClassName(UnicodeString& AClassName) override;
  /// Inside a record or array held by a TValue no object is made: nothing would own it
  /// (cVnBoxedObjectUnowned).
  TObject* CreateInstance(const TVnTypeInfo*& AType) override;
  void DoDeserialize() override;
  Integer ValueToInt(std::u16string_view AValue) override;
  Int64 ValueToInt64(std::u16string_view AValue) override;
  Extended ValueToFloat(std::u16string_view AValue) override;
  UnicodeString ValueToStr(std::u16string_view AValue) override;
  TDateTime ValueToDate(std::u16string_view AValue) override;
  TDateTime ValueToTime(std::u16string_view AValue) override;
  TDateTime ValueToDateTime(std::u16string_view AValue) override;
  bool ValueToBool(std::u16string_view AValue) override;
  Variant ValueToVar(std::u16string_view AValue, std::u16string_view ADataType) override;
  TValue ValueToVal(std::u16string_view AValue, std::u16string_view ADataType) override;

 protected:
  /// Gives the floor to ATarget (a child, or the parent when this value ends).
  void HandOver(TVnJSONDeserializer* ATarget);
  /// Ends this deserializer's value: its end, and the floor back to the parent.
  void Finish();
  /// Passes over the value that starts with the current event, to its end.
  void Skip() { ++FDisabledCnt; }
  [[noreturn]] void RaiseShape(std::u16string_view AExpected, std::u16string_view AFound);
  /// "an object of TItem", "an array of Integer", ... for shape messages.
  static UnicodeString ExpectedName(const TVnTypeInfo* AType);

  TVnJSONReader* FJSONReader = nullptr;
  TVnCanDeserialize FCanDeserialize = desNo;
  UnicodeString FDataType;
  UnicodeString FNamespace;
  /// Above 0: the events of a value being passed over, by depth.
  Integer FDisabledCnt = 0;
  /// Whether this deserializer's own value has started (its "{" or "[" was seen).
  bool FOpened = false;
  /// The value is the array of an object that a registered helper writes as one (a list).
  bool FContainerArray = false;
  /// Whether the value of the deserializer that runs the read has ended.
  bool FClosed = false;
  /// While a null literal is being stored: strings read it as empty, Variants as Null.
  bool FNullValue = false;
  /// The name of the current member, escapes decoded.
  UnicodeString FCurrentMember;
  /// The var arguments of CanDeserialize.
  UnicodeString FURIArg, FNameArg;
  /// The deserializer that runs the reader and passes the events on; and who has the floor.
  TVnJSONDeserializer* FDispatcher = nullptr;
  TVnJSONDeserializer* FActive = nullptr;
  Integer FDepth = 0;

 private:
  /// Whether the current member took a child (it has the floor now).
  bool ChildTookOver() const { return FDispatcher && FDispatcher->FActive != this; }
  /// IsArraySerializer without its checks, for the per-event paths.
  bool InArray() const noexcept {
    return GetParentDeserializer() && FInstanceTypeInfo &&
           (FInstanceTypeInfo->Kind() == vtkStaticArray || FInstanceTypeInfo->Kind() == vtkDynArray);
  }
  /// Who has the floor: the events go there.
  TVnJSONDeserializer& Target();
  /// Runs AEvent on the deserializer that has the floor; a failure comes out with its path.
  template <class F>
  void Dispatch(F AEvent);
  /// The path a failure names.
  UnicodeString PlaceForMessages() const;
  /// Starts reading the object form of the current enumeration or set member.
  void StartOrdinal();
  /// An object whose class a registered serializer helper writes, so that its text is an array.
  bool IsHelperContainer() const;
  /// An object inside such an array: its helper may make it and its child (helpers_json_reading.cpp).
  void ContainerElement();
  /// The member of an enumeration's object form being read.
  enum class OrdinalKey : uint8_t { None, ClassName, AsString, AsInt };
  bool FInOrdinal = false;
  OrdinalKey FOrdinalKey = OrdinalKey::None;
  void ValueAsObject(TVnJSONSimpleDataType AType, std::u16string_view AText);
  /// An array member written as a string that holds its JSON text ("[1,2]").
  void ArrayFromString(std::u16string_view AText);
  void OrdinalValue(TVnJSONSimpleDataType AType, std::u16string_view AText);
  bool ValueInArray(TVnJSONSimpleDataType AType, std::u16string_view AText);
};

/// A stream member written as a Base64 string, or as the writer's object with "data".
class TVnJSONStreamDeserializer : public TVnJSONDeserializer {
  VN_DECLARE_CLASS(TVnJSONStreamDeserializer, TVnJSONDeserializer)
 public:
  TVnCanDeserialize CanDeserialize(UnicodeString& AURI, UnicodeString& AName, UnicodeString& ADataType,
                                   bool ARaiseOnUnknown) override;
  void DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) override;

 private:
  void Load(std::u16string_view AText);
};

/// A string list, cleared first; its strings come from "items".
class TVnJSONStringsDeserializer : public TVnJSONDeserializer {
  VN_DECLARE_CLASS(TVnJSONStringsDeserializer, TVnJSONDeserializer)
 public:
  void SetParent(TVnCustomSerializer* AParent) override;
  TVnCanDeserialize CanDeserialize(UnicodeString& AURI, UnicodeString& AName, UnicodeString& ADataType,
                                   bool ARaiseOnUnknown) override;
  void DoStartArray() override;
  void DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) override;
  void DoEndArray() override;

 private:
  bool FInItems = false;
};

class TVnJSONComponentDeserializer : public TVnJSONDeserializer {
  VN_DECLARE_CLASS(TVnJSONComponentDeserializer, TVnJSONDeserializer)
};

namespace detail {
class JSONEventText;
}

/// A JSON document loaded from the text as it stands (UTF-8). Below the root the value in the
/// member's place, of any shape, becomes the document's content; a nil document member is made
/// for an object that names no class, or for an array.
class TVnJSONDocDeserializer : public TVnJSONDeserializer {
  VN_DECLARE_CLASS(TVnJSONDocDeserializer, TVnJSONDeserializer)
 public:
  TVnJSONDocDeserializer();
  ~TVnJSONDocDeserializer() override;
  TObject* CreateInstance(const TVnTypeInfo*& AType) override;
  void Deserialize(TStream& AStream) override;
  using TVnJSONDeserializer::Deserialize;
  void DoStartObject() override;
  void DoStartMember(std::u16string_view AName) override;
  void DoStartArray() override;
  void DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) override;
  void DoEndArray() override;
  void DoEndObject() override;

 private:
  void Load();
  std::unique_ptr<detail::JSONEventText> FCapture;
};

/// A TValue member: a string, number (with a point: Extended, without: Int64), boolean or null
/// (a Null Variant). An object whose first member "className" names a registered type is read
/// as that type: an enumeration or set from its "asInt", a record filled from the object. An
/// object of a class is made only when the read was given a list of created objects
/// (VnDeserialize's last argument): the TValue does not own it, the caller does, and the list
/// names it (a TValue inside that object takes none). Each such value is read by a reader of its
/// own; reads nested deeper than 64 raise cVnJSONNestingTooDeep. Any other object, and an array
/// (whose text names no type), is passed over and leaves the value empty. A member given again
/// keeps the later value, and an object this read made for it before is freed and leaves the
/// caller's list.
class TVnJSONValueDeserializer : public TVnJSONDeserializer {
  VN_DECLARE_CLASS(TVnJSONValueDeserializer, TVnJSONDeserializer)
 public:
  TVnJSONValueDeserializer();
  ~TVnJSONValueDeserializer() override;
  TVnCanDeserialize CanDeserialize(UnicodeString&, UnicodeString&, UnicodeString&, bool) override { return desNo; }
  void DoStartObject() override;
  void DoStartMember(std::u16string_view AName) override;
  void DoStartArray() override;
  void DoValue(TVnJSONSimpleDataType AType, std::u16string_view AText) override;
  void DoEndArray() override;
  void DoEndObject() override;

 private:
  /// Reads the collected object text into the TValue by the type its className names.
  void ReadObject(const UnicodeString& AText);
  std::unique_ptr<detail::JSONEventText> FCapture;
};

}  // namespace vn
