// xs_simple.h: the nullable value records of the common package (unit uVnXSTypes): the facet
// holder TXsAnySimpleType<T>, TXsBoolean, TXsString, the date records TXsDateTime, TXsDate and
// TXsTime, and TXsDuration.
// A record holds a value or nothing. FHasValue is a string, not a flag: it is "1" when a value
// is set and anything else (empty in a fresh record) means null. Records are plain values,
// copied whole by assignment.
// The date records' ToString(AWithZone): the XML Schema lexical form, with the local zone's
// offset when AWithZone is true ("2024-05-01T10:00:00+02:00"); null gives "". A duration is
// read from and written as its lexical form ("P1MT2.5S").
// Each record registers itself for reflection as a record whose library kind is vtkOther33, so
// the serializers give it a child of its own that writes it as one bare value (xs_serializer.h).
#pragma once

#include "vnxml/common/date_utils.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/variant.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/xs_messages.h"

// Registers an XS record: its names, and its kind in the type registry.
#define VN_XS_REGISTER_TYPE(Type, NameText)                                 \
  inline ::vn::detail::TypeNames VnTypeNames(::vn::detail::TypeTag<Type>) { \
    return {NameText, u"uVnXSTypes"};                                       \
  }                                                                         \
  inline void VnRegisterType(::vn::TTypeBuilder<Type>& b) {                 \
    ::vn::TVnTypes::RegisterTypeKind(b.Info(), ::vn::vtkOther33);           \
  }

namespace vn {

/// A value of T or nothing, with no checks: the holder of a facet's bound.
template <class T>
struct TXsAnySimpleType {
  T FValue{};
  UnicodeString FHasValue;

  TXsAnySimpleType() = default;
  TXsAnySimpleType(T AValue) : FValue(AValue), FHasValue(cVnXsHasValue) {}
  static TXsAnySimpleType Create(T AValue) { return TXsAnySimpleType(AValue); }
  void Clear() {
    FValue = T{};
    FHasValue.clear();
  }
  bool IsNull() const noexcept { return FHasValue != cVnXsHasValue; }
  operator T() const { return FValue; }
};

/// The shape shared by the records of the common package: a value of T or nothing.
template <class T>
struct TXsValueRecord {
  T FValue{};
  UnicodeString FHasValue;

  void Clear() {
    FValue = T{};
    FHasValue.clear();
  }
  bool IsNull() const noexcept { return FHasValue != cVnXsHasValue; }
  /// The value; T's empty value for a null record.
  operator T() const { return IsNull() ? T{} : FValue; }

 protected:
  void Set(T AValue) {
    FValue = std::move(AValue);
    FHasValue = cVnXsHasValue;
  }
};

struct TXsBoolean : TXsValueRecord<bool> {
  TXsBoolean() = default;
  TXsBoolean(bool AValue) { Set(AValue); }
  static TXsBoolean Create(bool AValue) { return TXsBoolean(AValue); }
  /// "true" or "false"; "" for a null record.
  UnicodeString ToString() const;
  /// A boolean Variant, Null for a null record.
  Variant ToVariant() const;
};

struct TXsString : TXsValueRecord<UnicodeString> {
  TXsString() = default;
  TXsString(UnicodeString AValue) { Set(std::move(AValue)); }
  TXsString(const char16_t* AValue) { Set(UnicodeString(AValue)); }
  static TXsString Create(UnicodeString AValue) { return TXsString(std::move(AValue)); }
  /// The text; "" for a null record.
  UnicodeString ToString() const { return *this; }
  Variant ToVariant() const;
};

/// TXsDateTime, TXsDate and TXsTime: a TDateTime of the kind AKind (vtkDateTime, vtkDate, vtkTime).
template <TVnTypeKind AKind>
struct TXsDateTimeRecord : TXsValueRecord<TDateTime> {
  TXsDateTimeRecord() = default;
  TXsDateTimeRecord(TDateTime AValue) { Set(AValue); }
  static TXsDateTimeRecord Create(TDateTime AValue) { return TXsDateTimeRecord(AValue); }
  /// The lexical form of the kind; with the local zone's offset when AWithZone. "" when null.
  UnicodeString ToString(bool AWithZone = false) const;
  /// A date Variant, Null for a null record.
  Variant ToVariant() const;
};
using TXsDateTime = TXsDateTimeRecord<vtkDateTime>;
using TXsDate = TXsDateTimeRecord<vtkDate>;
using TXsTime = TXsDateTimeRecord<vtkTime>;
extern template struct TXsDateTimeRecord<vtkDateTime>;
extern template struct TXsDateTimeRecord<vtkDate>;
extern template struct TXsDateTimeRecord<vtkTime>;

struct TXsDuration : TXsValueRecord<TVnDuration> {
  TXsDuration() = default;
  TXsDuration(const TVnDuration& AValue) { Set(AValue); }
  /// From the lexical form; "" gives a null record, a text of no duration raises as VnXMLToDuration.
  TXsDuration(std::u16string_view AText) { FromString(AText); }
  TXsDuration(const char16_t* AText) : TXsDuration(std::u16string_view(AText)) {}
  static TXsDuration Create(const TVnDuration& AValue) { return TXsDuration(AValue); }
  void FromString(std::u16string_view AText);
  /// The lexical form; "" for a null record.
  UnicodeString ToString() const;
  operator UnicodeString() const { return ToString(); }
  /// The lexical form as a string Variant, Null for a null record.
  Variant ToVariant() const;
};

VN_REGISTER_TYPE(TVnDuration, u"rVnCommon") {
  b.Public(u"Negative", &TVnDuration::Negative)
      .Public(u"Months", &TVnDuration::Months)
      .Public(u"Seconds", &TVnDuration::Seconds);
}
VN_XS_REGISTER_TYPE(TXsBoolean, u"TXsBoolean")
VN_XS_REGISTER_TYPE(TXsString, u"TXsString")
VN_XS_REGISTER_TYPE(TXsDateTime, u"TXsDateTime")
VN_XS_REGISTER_TYPE(TXsDate, u"TXsDate")
VN_XS_REGISTER_TYPE(TXsTime, u"TXsTime")
VN_XS_REGISTER_TYPE(TXsDuration, u"TXsDuration")

}  // namespace vn
