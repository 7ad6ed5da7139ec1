// vn_types.h: TVnTypes, the common package's type registry (unit rVnCommon).
// One TVnTypeInfo per type, found by type record, reflection type, class or name; the Variant
// type code that stands for a type and the type behind a Variant; aliases; and per type and
// serialization format one pair of serializer classes. Records are made on first use and live
// as long as the process; lookups are safe from several threads.
#pragma once

#include <initializer_list>
#include <string_view>

#include "vnxml/common/variant.h"
#include "vnxml/common/vn_type_info.h"

namespace vn {

/// The main kinds of a Variant, as TVnTypes::VarMainTypeKind gives them.
enum TVnVarMainTypeKind : uint8_t {
  vmkOther = 0,     ///< Empty, Null, Dispatch, Error, Unknown, ...
  vmkInteger = 1,   ///< Smallint, Integer, ShortInt, Byte, Word, LongWord, Int64, UInt64
  vmkFloat = 2,     ///< Single, Double, Currency
  vmkString = 3,    ///< OleStr, String, UString
  vmkBoolean = 4,
  vmkDateTime = 5,  ///< Date
  vmkArray = 6      ///< any variant array
};

/// Variant type codes that no Variant holds but that name what a type is: a record, an object.
inline constexpr TVarType varRecord = 0x0024;
inline constexpr TVarType varObject = 0x0049;

/// A serialization format by number (dsfJSON 0, dsfXML 1, ... up to 4).
using TVnSerializeFormat = uint8_t;
inline constexpr TVnSerializeFormat cVnSerializeFormatCount = 5;

/// The serializer and deserializer classes of one type and format; either may be nil.
struct TVnSerializerPair {
  TClass Serializer = nullptr;
  TClass Deserializer = nullptr;
};

class TVnTypes {
 public:
  /// The main kind of the value: 1 integer, 2 float, 3 string, 4 boolean, 5 date, 6 array, 0 other.
  static TVnVarMainTypeKind VarMainTypeKind(const Variant& AValue) noexcept;

  /// The one record of a type; nullptr for nullptr.
  static const TVnTypeInfo* GetTypeInfo(const TTypeInfo* AType);
  static const TVnTypeInfo* GetTypeInfo(const TRttiType* AType);
  static const TVnTypeInfo* GetTypeInfo(TClass AClass);
  template <class T>
  static const TVnTypeInfo* GetTypeInfo() {
    return GetTypeInfo(TypeInfoOf<T>());
  }
  /// The type of that name under ANameType (case is ignored), or nullptr. With ACreate, an
  /// "ArrayOf..." schema name whose element is known gives an array type even when no platform
  /// type exists for it. A type whose main kind is not AMainKind (unless mtkUnknown) gives nullptr.
  static const TVnTypeInfo* GetTypeInfo(std::u16string_view AName, TVnTypeNameType ANameType, bool ACreate,
                                        TVnMainTypeKind AMainKind);

  /// The Variant type code for the type of that name, or ADefault when the name is unknown or
  /// the type has no Variant form. Classes give varObject, records varRecord, arrays varArray
  /// (with the element's code when the element has one).
  static TVarType GetVarType(std::u16string_view AName, TVnTypeNameType ANameType, TVarType ADefault);
  static TVarType GetVarType(const TVnTypeInfo* AType, TVarType ADefault);
  /// The type of the value inside AValue; Empty, Null and errors give the Variant type.
  static const TVnTypeInfo* VarTypeInfo(const Variant& AValue);

  /// Gives records of AType the library kind AKind in place of the one its platform kind gives
  /// (GetKind stays). Must run before the type's first record is made: a type's own
  /// registration is the place.
  static void RegisterTypeKind(const TTypeInfo* AType, TVnTypeKind AKind);

  /// Further names for AType, found under every name kind; the first becomes its schema name.
  static void RegisterTypeAlias(const TTypeInfo* AType, std::initializer_list<std::u16string_view> ANames);

  /// Sets the pair of AType in AFormat; a nil AType sets the format's default pair.
  static void RegisterTypeSerializers(const TTypeInfo* AType, TVnSerializeFormat AFormat,
                                      const TVnSerializerPair& APair);
  /// The pair of AType itself, else of its nearest ancestor class with one, else the format's
  /// default; nullptr when none of these exists. A nil AType asks for the default. Only what is
  /// registered so far: the lookups of serializer.h run the built-in registrations first.
  static const TVnSerializerPair* FindSerializers(const TVnTypeInfo* AType, TVnSerializeFormat AFormat);
};

}  // namespace vn
