// type_info.h: type records of the reflection service (common platform layer).
// A TTypeInfo exists once per registered type for the life of the process: kind, names, ordinal
// range and value names, element type, class and the operations that copy a value of the type.
// TypeInfoOf<T>() gives the record of a C++ type; the built-in types are declared here, host
// types come from rtti_register.h. Records are never freed or moved, so pointers to them stay.
#pragma once

#include <cstddef>
#include <vector>

#include "vnxml/common/exception.h"
#include "vnxml/common/object.h"
#include "vnxml/common/types.h"

namespace vn {

/// The value kinds the reflection tells apart (the platform's order).
enum TTypeKind : uint8_t {
  tkUnknown, tkInteger, tkChar, tkEnumeration, tkFloat, tkString, tkSet, tkClass, tkMethod,
  tkWChar, tkLString, tkWString, tkVariant, tkArray, tkRecord, tkInterface, tkInt64, tkDynArray,
  tkUString, tkClassRef, tkPointer, tkProcedure, tkMRecord
};
/// Storage of an ordinal of kind tkInteger, tkChar, tkWChar or tkEnumeration.
enum TOrdType : uint8_t { otSByte, otUByte, otSWord, otUWord, otSLong, otULong };
enum TFloatType : uint8_t { ftSingle, ftDouble, ftExtended, ftComp, ftCurr };

/// The platform's 8-bit short string, distinct from AnsiString so that reflection can tell them apart.
struct ShortString : std::string {
  using std::string::basic_string;
  ShortString() = default;
  ShortString(const std::string& AText) : std::string(AText) {}
};

/// Raised when a text names no value of an enumeration or set.
VN_EXCEPTION(EPropertyConvertError, Exception)
/// Raised when a property is read without getter or written without setter.
VN_EXCEPTION(EPropertyError, Exception)
/// Raised by Invoke on a wrong argument count.
VN_EXCEPTION(EInvocationError, Exception)

class TRttiType;
class TValue;
class Variant;
class Currency;

namespace detail {
/// How values of one type are made, copied and freed, and how containers and references are
/// reached inside them; built from the C++ type at registration.
struct TypeOps {
  size_t Size = 0;
  size_t Align = 1;
  /// Copyable with memcpy, no destructor: such values of up to 16 bytes live inside a TValue.
  bool Trivial = false;
  void (*Construct)(void* AData) = nullptr;
  void (*CopyConstruct)(void* AData, const void* ASource) = nullptr;
  void (*Assign)(void* AData, const void* ASource) = nullptr;
  void (*Destroy)(void* AData) = nullptr;
  // Arrays: static arrays have no SetLength.
  size_t (*Length)(const void* AArray) = nullptr;
  void (*SetLength)(void* AArray, size_t ALength) = nullptr;
  void* (*Element)(void* AArray, size_t AIndex) = nullptr;
  // Class kind: the stored T* seen as TObject* and back (a T* and its TObject* may differ).
  TObject* (*ToObject)(const void* AData) = nullptr;
  void (*FromObject)(void* AData, TObject* AObject) = nullptr;
  // Interface kind: the stored IPtr<I> seen as IInterface*, and filled by QueryInterface.
  IInterface* (*ToInterface)(const void* AData) = nullptr;
  bool (*FromInterface)(void* AData, IInterface* AIntf) = nullptr;
};
}  // namespace detail

/// The type record: what reflection knows of one type.
struct TTypeInfo {
  TTypeKind Kind = tkUnknown;
  /// Short name ("Integer", "TItem", "TObjectList<uShop.TItem>").
  UnicodeString Name;
  /// Unit-qualified name ("System.Integer", "uShop.TItem").
  UnicodeString QualifiedName;
  UnicodeString UnitName;
  const detail::TypeOps* Ops = nullptr;

  // Ordinal kinds (and tkInt64): storage and range; value names of enumerations by ordinal.
  TOrdType OrdType = otSLong;
  bool IsUnsigned = false;
  Int64 MinValue = 0;
  Int64 MaxValue = 0;
  std::vector<UnicodeString> EnumNames;
  // tkFloat
  TFloatType FloatType = ftDouble;
  /// Set: its enumeration; arrays: the element; class reference: nullptr.
  const TTypeInfo* ElementType = nullptr;
  /// Static arrays: the element count.
  size_t ElementCount = 0;
  /// Class: the class itself; class reference: the class referred to.
  TClass ClassType = nullptr;
  /// Interface: its identifier.
  TGUID Guid{};
  /// The reflection object of the type, with members and attributes.
  TRttiType* RttiType = nullptr;
};
using PTypeInfo = const TTypeInfo*;

/// The record of a C++ type. Built-in types are declared below; the others need rtti_register.h.
template <class T>
const TTypeInfo* TypeInfoOf();

template <> const TTypeInfo* TypeInfoOf<Integer>();
template <> const TTypeInfo* TypeInfoOf<Cardinal>();
template <> const TTypeInfo* TypeInfoOf<ShortInt>();
template <> const TTypeInfo* TypeInfoOf<SmallInt>();
template <> const TTypeInfo* TypeInfoOf<Byte>();
template <> const TTypeInfo* TypeInfoOf<Word>();
template <> const TTypeInfo* TypeInfoOf<Int64>();
template <> const TTypeInfo* TypeInfoOf<UInt64>();
template <> const TTypeInfo* TypeInfoOf<Single>();
template <> const TTypeInfo* TypeInfoOf<Double>();
template <> const TTypeInfo* TypeInfoOf<Extended>();
template <> const TTypeInfo* TypeInfoOf<Currency>();
template <> const TTypeInfo* TypeInfoOf<bool>();
template <> const TTypeInfo* TypeInfoOf<char16_t>();
template <> const TTypeInfo* TypeInfoOf<char>();
template <> const TTypeInfo* TypeInfoOf<UnicodeString>();
template <> const TTypeInfo* TypeInfoOf<AnsiString>();
template <> const TTypeInfo* TypeInfoOf<ShortString>();
template <> const TTypeInfo* TypeInfoOf<VnXMLString>();
template <> const TTypeInfo* TypeInfoOf<VnJSONString>();
template <> const TTypeInfo* TypeInfoOf<Variant>();
template <> const TTypeInfo* TypeInfoOf<TValue>();
template <> const TTypeInfo* TypeInfoOf<TGUID>();
template <> const TTypeInfo* TypeInfoOf<void*>();
template <> const TTypeInfo* TypeInfoOf<TClass>();
template <> const TTypeInfo* TypeInfoOf<TObject>();
template <> const TTypeInfo* TypeInfoOf<TObject*>();

/// The record of a registered type by unit-qualified or short name ("System.TDateTime",
/// "TDateTime"; case is ignored); nullptr when unknown. Types that share a C++ type (TDateTime,
/// TDate, TTime, WideString, Comp) are reached this way.
const TTypeInfo* FindTypeInfo(std::u16string_view AName);

/// The name of an enumeration's value; other ordinals and unknown values give the number as text.
UnicodeString GetEnumName(const TTypeInfo* ATypeInfo, Integer AValue);
/// The ordinal of a value name (case ignored), -1 when the enumeration has no such value.
Integer GetEnumValue(const TTypeInfo* ATypeInfo, std::u16string_view AName);
/// The value names of the set's members in ordinal order, comma-separated, in brackets on request.
UnicodeString SetToString(const TTypeInfo* ASetType, UInt64 ABits, bool ABrackets = false);
/// The bits of "a,b" or "[a, b]"; raises EPropertyConvertError "Invalid property element: %s".
UInt64 StringToSet(const TTypeInfo* ASetType, std::u16string_view AText);

/// Resizes the dynamic array at AArray (of type ADynArrayType), keeping its first elements.
void DynArraySetLength(void* AArray, const TTypeInfo* ADynArrayType, NativeInt ALength);
/// The element count of the dynamic or static array at AArray.
NativeInt DynArraySize(const void* AArray, const TTypeInfo* AArrayType);

}  // namespace vn
