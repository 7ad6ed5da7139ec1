// vn_type_info.h: TVnTypeInfo, the type registry's record of one type (unit rVnCommon).
// TVnTypes (vn_types.h) makes one record per type on first use and keeps it for the life of the
// process, so pointers to records stay valid. A record sorts its type into the kinds the
// serializers dispatch on and names it in XML Schema terms.
#pragma once

#include "vnxml/common/rtti.h"

namespace vn {

/// The library's kinds of a type. The order is fixed: callers compare ranges of it.
enum TVnTypeKind : uint8_t {
  vtkUnknown,
  vtkByte,       ///< unsigned 8 bits
  vtkWord,       ///< unsigned 16 bits
  vtkLongWord,   ///< unsigned 32 bits
  vtkUInt64,     ///< unsigned 64 bits
  vtkShortInt,   ///< signed 8 bits
  vtkSmallInt,   ///< signed 16 bits
  vtkInteger,    ///< signed 32 bits
  vtkInt64,      ///< signed 64 bits
  vtkSingle,
  vtkDouble,
  vtkExtended,   ///< also Currency and Comp
  vtkText1,      ///< Char (16 bits)
  vtkText2,      ///< AnsiChar
  vtkText3,      ///< a second 16-bit character kind; no type of this library has it
  vtkText4,      ///< ShortString
  vtkText5,      ///< AnsiString
  vtkText6,      ///< string, WideString, VnXMLString, VnJSONString
  vtkBoolean,
  vtkEnumeration,
  vtkSet,
  vtkDate,
  vtkTime,
  vtkDateTime,
  vtkVariant,
  vtkStaticArray,
  vtkDynArray,
  vtkRecord,
  vtkClass,
  vtkInterface,
  vtkOther30,    ///< methods: not serializable
  vtkPointer,
  vtkOther32,    ///< procedures: not serializable
  vtkOther33,
  vtkClassRef
};

/// The main kinds: what a value is, whatever its width.
enum TVnMainTypeKind : uint8_t { mtkUnknown, mtkInteger, mtkFloat, mtkString, mtkBoolean, mtkDateTime, mtkArray };

/// Which name a lookup by name compares with.
enum TVnTypeNameType : uint8_t {
  tntName,           ///< the short name ("Integer", "TItem")
  tntQualifiedName,  ///< the unit-qualified name ("System.Integer"); short names are taken too
  tntSchemaName      ///< the XML Schema name ("int", "xsd:int"; a prefix is ignored)
};

/// The XML Schema type a type stands for; sdtNone for types with no built-in schema type.
enum TVnSchemaDataType : uint8_t {
  sdtNone, sdtAnyType, sdtArray,
  sdtByte, sdtShort, sdtInt, sdtLong,                                  // signed 8 to 64 bits
  sdtUnsignedByte, sdtUnsignedShort, sdtUnsignedInt, sdtUnsignedLong,  // unsigned 8 to 64 bits
  sdtFloat, sdtDouble, sdtDecimal, sdtString, sdtBase64Binary, sdtHexBinary, sdtBoolean,
  sdtDate, sdtTime, sdtDateTime, sdtDuration
};

namespace detail {
class VnTypeRegistry;
}

class TVnTypeInfo {
 public:
  TVnTypeInfo(const TVnTypeInfo&) = delete;
  TVnTypeInfo& operator=(const TVnTypeInfo&) = delete;

  /// The reflection object of the type.
  TRttiType* RttiType() const noexcept { return FHandle->RttiType; }
  /// The platform's type record.
  const TTypeInfo* Handle() const noexcept { return FHandle; }
  /// The short name; for a class its class name, generics included.
  const UnicodeString& Name() const noexcept { return FHandle->Name; }
  /// The unit-qualified name ("System.string", "uShop.TItem").
  const UnicodeString& QualifiedName() const noexcept { return FHandle->QualifiedName; }
  /// The library's kind of the type.
  TVnTypeKind Kind() const noexcept { return FKind; }
  /// The reflection's kind of the type.
  TTypeKind GetKind() const noexcept { return FHandle->Kind; }
  /// True for the kinds written as one value: everything but arrays, records, classes and interfaces.
  bool GetIsSimpleType() const noexcept;
  TVnMainTypeKind GetMainTypeKind() const noexcept;
  /// The name in XML Schema terms, behind APrefix and a colon when APrefix is not empty; a
  /// lookup with tntSchemaName finds this type again under it.
  UnicodeString SchemaName(std::u16string_view APrefix = {}) const;
  /// The built-in schema type this type stands for (sdtArray for arrays of no platform type).
  TVnSchemaDataType SchemaType() const noexcept { return FSchemaType; }
  /// The element's record for arrays and sets; nullptr for other kinds.
  const TVnTypeInfo* ElementType() const noexcept { return FElementType; }
  /// What the array holds as it is stored: ElementType, except for an array of no platform type,
  /// which stores Variants whatever its elements are named after; walks over its slots use this.
  const TVnTypeInfo* StoredElementType() const;
  /// A type record for ASchemaType with no platform type behind it: sdtArray gives an array of
  /// this type, the other schema types the built-in type that stands for them (nullptr if none).
  const TTypeInfo* VirtualType(TVnSchemaDataType ASchemaType) const;

 private:
  friend class detail::VnTypeRegistry;
  TVnTypeInfo() = default;

  const TTypeInfo* FHandle = nullptr;
  TVnTypeKind FKind = vtkUnknown;
  TVnSchemaDataType FSchemaType = sdtNone;
  const TVnTypeInfo* FElementType = nullptr;
  UnicodeString FSchemaName;
};

}  // namespace vn
