// value.h: TValue, a typed copy of any value (common platform layer, reflection).
// A TValue owns its copy: values of trivial types up to 16 bytes sit inside it, larger ones on
// the heap. Objects are held by reference (the object is not copied), interfaces are counted.
// A conversion that does not fit raises EInvalidCast; a bad array index raises
// EArgumentOutOfRangeException.
#pragma once

#include <cstddef>

#include "vnxml/common/interface.h"
#include "vnxml/common/type_info.h"

namespace vn {

class TValue {
 public:
  /// The empty value: no type.
  TValue() noexcept = default;
  TValue(const TValue& AOther);
  TValue(TValue&& AOther) noexcept;
  TValue& operator=(const TValue& AOther);
  TValue& operator=(TValue&& AOther) noexcept;
  ~TValue() { Clear(); }

  /// A copy of the value of type ATypeInfo at AData; AData nullptr gives the type's default value.
  static TValue Make(const void* AData, const TTypeInfo* ATypeInfo);
  template <class T>
  static TValue From(const T& AValue) {
    return Make(&AValue, TypeInfoOf<T>());
  }
  /// AObject under the type of its class (or under AType, a class it inherits from); a nil
  /// object needs AType and gives an empty value of that type.
  static TValue FromObject(TObject* AObject, const TTypeInfo* AType = nullptr);
  /// A value of an ordinal type (integer, enumeration, char) from its ordinal.
  static TValue FromOrdinal(const TTypeInfo* ATypeInfo, Int64 AValue);
  /// The value inside AValue under its own type; Empty and Null give the empty value.
  static TValue FromVariant(const Variant& AValue);
  static TValue GetEmpty() noexcept { return TValue(); }

  /// No type, or a nil object, interface, class reference or pointer.
  bool IsEmpty() const noexcept;
  /// tkUnknown for the empty value.
  TTypeKind Kind() const noexcept;
  const TTypeInfo* TypeInfo() const noexcept { return FTypeInfo; }
  bool IsObject() const noexcept { return Kind() == tkClass; }
  bool IsClass() const noexcept { return Kind() == tkClassRef; }
  bool IsOrdinal() const noexcept;
  bool IsArray() const noexcept { return Kind() == tkArray || Kind() == tkDynArray; }

  /// The object of a class-kind value; nullptr when empty.
  TObject* AsObject() const;
  /// The interface of an interface-kind value; empty when empty.
  IPtr<IInterface> AsInterface() const;
  /// The class of a class reference, or of the object of a class-kind value.
  TClass AsClass() const;
  Integer AsInteger() const;
  Int64 AsInt64() const;
  UInt64 AsUInt64() const;
  /// The ordinal of an integer, enumeration, char or set value (a set gives its bits).
  Int64 AsOrdinal() const;
  bool AsBoolean() const;
  /// Floats and integers.
  Extended AsExtended() const;
  Currency AsCurrency() const;
  /// Strings and characters only; use ToString for a display text of anything.
  UnicodeString AsString() const;
  /// The value as a Variant: the type code follows the value's type (TDateTime gives varDate).
  Variant AsVariant() const;

  /// Element count of a static or dynamic array value.
  NativeInt GetArrayLength() const;
  TValue GetArrayElement(NativeInt AIndex) const;
  /// Writes the element into this value's own copy of the array.
  void SetArrayElement(NativeInt AIndex, const TValue& AValue);
  /// Resizes a dynamic array value.
  void SetArrayLength(NativeInt ALength);

  /// Address of the payload (for a class kind: of the object reference); valid while the value
  /// lives and is not assigned; nullptr for the empty value.
  void* GetReferenceToRawData() noexcept { return FTypeInfo ? Payload() : nullptr; }
  const void* GetReferenceToRawData() const noexcept { return FTypeInfo ? Payload() : nullptr; }
  /// Assigns the payload to the constructed value of the same type at ADest.
  void ExtractRawData(void* ADest) const;

  /// Display text: numbers and strings as text, an enumeration's value name, a set as "[a,b]",
  /// "(empty)" for the empty value, "(TName @ address)" for an object.
  UnicodeString ToString() const;

  /// This value converted to ATypeInfo, when the kinds allow it (same type; integers within range;
  /// integers to floats and enumerations; strings and chars among themselves; an object to its
  /// class or an ancestor; anything to and from Variant; anything into a TValue-typed value).
  bool TryCast(const TTypeInfo* ATypeInfo, TValue& AResult) const;
  /// As TryCast; raises EInvalidCast when the conversion does not fit.
  TValue Cast(const TTypeInfo* ATypeInfo) const;

  template <class T>
  bool IsType() const {
    TValue converted;
    return TryCast(TypeInfoOf<T>(), converted);
  }
  template <class T>
  bool TryAsType(T& AResult) const {
    TValue converted;
    if (!TryCast(TypeInfoOf<T>(), converted)) return false;
    AResult = *static_cast<const T*>(converted.Payload());
    return true;
  }
  /// The value as T; raises EInvalidCast when it does not convert.
  template <class T>
  T AsType() const {
    TValue converted = Cast(TypeInfoOf<T>());
    return *static_cast<const T*>(converted.Payload());
  }

 private:
  static constexpr size_t kInlineSize = 16;

  void* Payload() noexcept { return FOnHeap ? FHeap : static_cast<void*>(FInline); }
  const void* Payload() const noexcept { return FOnHeap ? FHeap : static_cast<const void*>(FInline); }
  /// Sets the type and makes room for a payload, not yet constructed.
  void* Allocate(const TTypeInfo* ATypeInfo);
  void Clear() noexcept;

  const TTypeInfo* FTypeInfo = nullptr;
  bool FOnHeap = false;
  union {
    alignas(16) unsigned char FInline[kInlineSize];
    void* FHeap;
  };
};

}  // namespace vn
