// xml_serializer.h: objects as XML and back (unit uVnXMLSerializer).
// TVnXMLSerializer writes the walker's findings straight to the stream as elements: the root is
// <object>, <record> or <array>, each member an element of its name with an xsi:type attribute
// naming its type in XML Schema terms, enumerations and sets also with their ordinal in a value
// attribute, and nil values as xsi:nil="true". TVnXMLDeserializer reads such text through the SAX
// reader: attributes of the root element (and of array elements) are members too, an element
// member's class may be a descendant named by its xsi:type, and unknown elements raise while
// unknown attributes are passed over.
// Parameters (TVnCustomSerializer::SetParam): "excludenamespaces" ("true": no declarations and no
// type attributes), "xsi-namespace", "xsi-prefix", "xsd-namespace", "xsd-prefix", "xmlns" (the
// root's default namespace; "urn:" and the program's name unless given), "excluderoot",
// "excludechildren".
// Both register themselves as the XML pair of every type on the first use of the serializer
// registry, together with the classes for string lists, components and TValue below.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "vnxml/common/vn_component.h"
#include "vnxml/sax_contract.h"
#include "vnxml/serializer_builder.h"
#include "vnxml/serializer_walker.h"

namespace vn {

class TVnSAXXMLReader;
class TVnStringStream;

/// A failure of the XML text itself, with its place: "Line %d, column %d: %s".
VN_EXCEPTION(EParserError, Exception)

inline constexpr char16_t cVnXMLParseFailure[] = u"Line %d, column %d: %s";
/// The text ended with elements still open, or held no element at all.
inline constexpr char16_t cVnXMLTextCut[] = u"The XML text ended before the value was complete!";
inline constexpr char16_t cVnXMLBasicTypeNotAtRoot[] =
    u"Basic types are only allowed on the Root level (For serialing basic values)";
inline constexpr char16_t cVnXMLArraysNeedChild[] = u"XML Arrays must be serialized by a ChildSerializer!";
inline constexpr char16_t cVnXMLComplexNeedsChild[] = u"XML ComplexTypes must be serialized by a ChildSerializer!";
inline constexpr char16_t cVnXSINamespace[] = u"http://www.w3.org/2001/XMLSchema-instance";
inline constexpr char16_t cVnXSDNamespace[] = u"http://www.w3.org/2001/XMLSchema";

class TVnXMLSerializer : public TVnSerializer {
  VN_DECLARE_CLASS(TVnXMLSerializer, TVnSerializer)
 public:
  TVnDataSerializationFormatType Format() const override { return dsfXML; }
  /// At the root, fills in the defaults of the parameters; at every level reads them.
  void SetParent(TVnCustomSerializer* AParent) override;

  /// "record", "object", or "array" for any other kind.
  virtual UnicodeString GetRootElementName(TVnTypeKind AKind);
  /// Whether the root (AName empty) or a complex member gets its type attributes; true here.
  virtual bool WriteRootAttributes(std::u16string_view AName);
  /// Whether a value element gets its type attributes; true here.
  virtual bool WriteValueAttributes(std::u16string_view AName, Integer AIndex);

  void SerializeStartType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void SerializeEndType(std::u16string_view AName, const TVnTypeInfo* AType, Integer AIndex) override;
  void SerializeValue(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue, Integer AIndex,
                      TVnAttributes AAttributes) override;

 protected:
  bool FExcludeNamespaces = false;
  UnicodeString FDefaultNamespace;
  UnicodeString FXSINamespace;
  UnicodeString FXSIPrefix;
  UnicodeString FXSDNamespace;
  UnicodeString FXSDPrefix;

 private:
  /// Appends ` xsi:type="xsd:NAME"` for AType to FOut.
  void AppendTypeAttribute(const TVnTypeInfo* AType);
  /// Appends the text of AValue written as AType to FOut.
  void AppendValueText(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                       TVnAttributes AAttributes);
  void Flush();
  /// The bytes of the element being written, put on the stream in one write.
  std::string FOut;
};

/// Reads XML through the SAX reader. Only the root of a read runs the reader; each nested
/// value's deserializer takes the events from its element's start to its end.
class TVnXMLDeserializer : public TVnDeserializer,
                           public IVnSAXContentHandler,
                           public IVnSAXErrorHandler,
                           public IVnSAXLexicalHandler {
  VN_DECLARE_CLASS(TVnXMLDeserializer, TVnDeserializer)
  VN_VNOBJECT_INTERFACES(TVnDeserializer, IVnSAXContentHandler, IVnSAXErrorHandler, IVnSAXLexicalHandler)
 public:
  TVnXMLDeserializer();
  ~TVnXMLDeserializer() override;

  TVnDataSerializationFormatType Format() const override { return dsfXML; }
  void SetParent(TVnCustomSerializer* AParent) override;
  /// Only this class itself: a descendant's own fields are unknown here.
  bool ResetForReuse() override;

  // ---- the builder's operations in XML ----
  /// The value between the quotes after the first "xsi:type" of the raw text.
  void ReadClassName(TVnTextParser& AParser, UnicodeString& AClassName) override;
  /// From the attributes of the current element: its type, or empty for a nil mark.
  bool ReadClassName(UnicodeString& AClassName) override;
  void DoDeserialize() override;
  TVnDeserializer* CreateChildDeserializerIfNeeded(std::u16string_view AName) override;
  /// A DOM element is never made for a nil member: it belongs to a document (cVnNotSupported).
  TObject* CreateInstance(const TVnTypeInfo*& AType) override;
  void DeserializeValue(std::u16string_view AURI, std::u16string_view AName, std::u16string_view AValue,
                        std::u16string_view ADataType) override;
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

  // ---- the events of this deserializer's part of the text ----
  virtual void DoStartElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName,
                              IVnSAXAttributes* AAttributes);
  virtual void DoCharacters(std::u16string_view AText);
  virtual void DoEndElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName);

  // ---- the reader's handlers: passed to the deserializer whose part is being read ----
  void SetDocumentLocator(IVnSAXLocator*) override {}
  void Characters(std::u16string_view AText) override;
  void EndDocument() override {}
  void EndElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName) override;
  void EndPrefixMapping(std::u16string_view) override {}
  void IgnorableWhitespace(std::u16string_view) override {}
  void ProcessingInstruction(std::u16string_view, std::u16string_view) override {}
  void SkippedEntity(std::u16string_view) override {}
  void StartDocument() override {}
  void StartElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName,
                    IVnSAXAttributes* AAttributes) override;
  void StartPrefixMapping(std::u16string_view, std::u16string_view) override {}
  void Warning(IVnSAXLocator*, std::u16string_view) override {}
  void Error(IVnSAXLocator*, std::u16string_view) override {}
  /// Raises EParserError with the place, unless the failure came from building (which the
  /// reader raises again unchanged).
  void FatalError(IVnSAXLocator* ALocator, std::u16string_view AErrMsg) override;
  void Comment(std::u16string_view) override {}
  void StartCDATA() override;
  void StartDTD() override {}
  void StartEntity(std::u16string_view) override {}
  void EndCDATA() override;
  void EndDTD() override {}
  void EndEntity(std::u16string_view) override {}

  Integer GetLevel() const noexcept { return FLevel; }
  /// The type the current member's xsi:type names, or nil.
  const TVnTypeInfo* GetDataTypeInfo() const noexcept { return FDataTypeInfo; }
  const UnicodeString& GetLocalName() const noexcept { return FLocalName; }

 protected:
  /// Plays the attributes of the own element as members; those with no member are passed over.
  void ReadAttributesAsMembers(IVnSAXAttributes* AAttributes);
  /// The text of a member element, once it has ended.
  virtual void MemberText(std::u16string_view AText, bool AHasText);

  TVnSAXXMLReader* FSAXReader = nullptr;
  UnicodeString FLocalName;
  UnicodeString FURI;
  UnicodeString FDataType;
  /// The type its xsi:type names, when it names one.
  const TVnTypeInfo* FDataTypeInfo = nullptr;
  TVnCanDeserialize FCanDeserialize = desNo;
  Integer FLevel = 0;
  IVnSAXAttributes* FAttribs = nullptr;
  /// The text and inner markup of the current member (or the own text at level 0).
  UnicodeString FText;
  bool FHasText = false;
  /// The current member is marked xsi:nil.
  bool FNil = false;
  bool FProcessRootChars = false;
  bool FDeserializingAttribs = false;
  /// Inside a CDATA section: its text is not decoded.
  bool FInCDATA = false;
  /// The deserializer that runs the reader, and the one whose part of the text is being read.
  TVnXMLDeserializer* FRootXml = nullptr;
  TVnXMLDeserializer* FActive = nullptr;
  /// A building failure is on its way through the reader.
  bool FBuildFailed = false;

 private:
  /// The qualified name and the type an xsi:type value names (empty and nil when none); cached per read.
  const std::pair<UnicodeString, const TVnTypeInfo*>& NamedType(std::u16string_view ASchemaName);
  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::u16string_view AName) const noexcept { return std::hash<std::u16string_view>()(AName); }
  };
  std::unordered_map<UnicodeString, std::pair<UnicodeString, const TVnTypeInfo*>, NameHash, std::equal_to<>> FTypeNames;
  const std::pair<const UnicodeString, std::pair<UnicodeString, const TVnTypeInfo*>>* FLastTypeName = nullptr;
};

/// A string list: each string an <item> element; its members are not written.
class TVnXMLStringsSerializer : public TVnXMLSerializer {
  VN_DECLARE_CLASS(TVnXMLStringsSerializer, TVnXMLSerializer)
 public:
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

/// Clears the list and adds the text of each <item>.
class TVnXMLStringsDeserializer : public TVnXMLDeserializer {
  VN_DECLARE_CLASS(TVnXMLStringsDeserializer, TVnXMLDeserializer)
 public:
  /// Clears the list: the text gives all of it, at the root as well as below.
  void DeserializeStartType() override;
  TVnCanDeserialize CanDeserialize(UnicodeString& AURI, UnicodeString& AName, UnicodeString& ADataType,
                                   bool ARaiseOnUnknown) override;

 protected:
  void MemberText(std::u16string_view AText, bool AHasText) override;
};

/// A component: its owner's name first, as "Owner", then the walk.
class TVnXMLComponentSerializer : public TVnXMLSerializer {
  VN_DECLARE_CLASS(TVnXMLComponentSerializer, TVnXMLSerializer)
 public:
  void DoSerialize(TVnSerializer* AParent, std::u16string_view AName, std::u16string_view APath) override;
};

class TVnXMLComponentDeserializer : public TVnXMLDeserializer {
  VN_DECLARE_CLASS(TVnXMLComponentDeserializer, TVnXMLDeserializer)
};

/// A TValue member: its text, typed by the element's xsi:type when that names a simple type,
/// else a string. Elements inside, under an xsi:type that names a record or array type, are read
/// as a value of that type; under a class, an object of that class is made only when the read
/// was given a list of created objects (VnDeserialize's last argument): the TValue does not own
/// it, the caller does, and the list names it (a TValue inside that object takes none). Each such
/// value is read by a reader of its own; reads nested deeper than 64 raise cVnNestingTooDeep, and
/// an object that would be made inside a boxed record or array raises cVnBoxedObjectUnowned.
/// An "ArrayOf..." type of no platform type holds its elements as Variants, and an object named
/// as its element raises the same. Elements under no such type are passed over and leave the value
/// empty. A member given again keeps the later value, and an object this read made for it before
/// is freed and leaves the caller's list.
class TVnXMLValueDeserializer : public TVnXMLDeserializer {
  VN_DECLARE_CLASS(TVnXMLValueDeserializer, TVnXMLDeserializer)
 public:
  void DoStartElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName,
                      IVnSAXAttributes* AAttributes) override;
  void DoCharacters(std::u16string_view AText) override;
  void DoEndElement(std::u16string_view AURI, std::u16string_view ALocalName, std::u16string_view AQName) override;
  void DeserializeEndType() override;

 private:
  /// Reads the markup collected inside the element as a value of AType.
  void ReadComplex(const TVnTypeInfo* AType);
  UnicodeString FMarkup;
};

}  // namespace vn
