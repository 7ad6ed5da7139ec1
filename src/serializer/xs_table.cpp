// The nineteen XS types: the plain type each hands to the base writer and the conversion that
// reads it back.
#include "serializer/xs_table.h"

#include <array>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/json_values.h"
#include "vnxml/xml_escape.h"
#include "vnxml/xml_values.h"
#include "vnxml/xs_types.h"

namespace vn::detail {

namespace {

/// The value's text with the notation's escapes decoded.
UnicodeString Plain(std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                    TVnJSONDataType AJSONType) {
  return AFormat == dsfJSON ? VnJSONtoStr(AText, AJSONType) : VnXMLToStr(AText);
}

template <class T>
T ReadNumber(std::u16string_view AText) {
  if constexpr (std::is_same_v<T, ShortInt>)
    return VnXMLToShortint(AText);
  else if constexpr (std::is_same_v<T, SmallInt>)
    return VnXMLToSmallint(AText);
  else if constexpr (std::is_same_v<T, Integer>)
    return VnXMLToInt(AText);
  else if constexpr (std::is_same_v<T, Int64>)
    return VnXMLToInt64(AText);
  else if constexpr (std::is_same_v<T, Byte>)
    return VnXMLToByte(AText);
  else if constexpr (std::is_same_v<T, Word>)
    return VnXMLToWord(AText);
  else if constexpr (std::is_same_v<T, Cardinal>)
    return VnXMLToLongword(AText);
  else if constexpr (std::is_same_v<T, UInt64>)
    return VnXMLToUInt64(AText);
  else if constexpr (std::is_same_v<T, Single>)
    return VnXMLToSingle(AText);
  else if constexpr (std::is_same_v<T, Double>)
    return VnXMLToDouble(AText);
  else
    return VnXMLToExtended(AText);
}

/// Per record type R: the plain value type V and the three operations.
template <class R>
struct Ops;

template <class R, class V>
struct ValueOps {
  static void Clear(void* ARecord) { static_cast<R*>(ARecord)->Clear(); }
  static const TVnTypeInfo* Type() { return TVnTypes::GetTypeInfo(TypeInfoOf<V>()); }
  static void Write(const void* ARecord, TVnDataSerializationFormatType, const TVnTypeInfo*& AType,
                    TValue& AValue) {
    const R& record = *static_cast<const R*>(ARecord);
    AType = Type();
    AValue = record.IsNull() ? TValue() : TValue::From(static_cast<V>(record));
  }
};

template <class T>
struct Ops<TXsInteger<T>> : ValueOps<TXsInteger<T>, T> {
  static void Read(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                   TVnJSONDataType AJSON) {
    *static_cast<TXsInteger<T>*>(ARecord) = TXsInteger<T>(ReadNumber<T>(Trim(Plain(AText, AFormat, AJSON))));
  }
};

template <class T>
struct Ops<TXsRational<T>> : ValueOps<TXsRational<T>, T> {
  static void Read(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                   TVnJSONDataType AJSON) {
    *static_cast<TXsRational<T>*>(ARecord) =
        TXsRational<T>(ReadNumber<T>(Trim(Plain(AText, AFormat, AJSON))));
  }
};

template <>
struct Ops<TXsBoolean> : ValueOps<TXsBoolean, bool> {
  static void Read(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                   TVnJSONDataType AJSON) {
    *static_cast<TXsBoolean*>(ARecord) = TXsBoolean(VnXMLToBool(Trim(Plain(AText, AFormat, AJSON))));
  }
};

template <>
struct Ops<TXsString> : ValueOps<TXsString, UnicodeString> {
  static void Read(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                   TVnJSONDataType AJSON) {
    *static_cast<TXsString*>(ARecord) = TXsString(Plain(AText, AFormat, AJSON));
  }
};

template <class E>
struct Ops<TXsBinaryString<E>> : ValueOps<TXsBinaryString<E>, RawByteString> {
  static void Read(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                   TVnJSONDataType AJSON) {
    // Kept encoded: the text is the value.
    *static_cast<TXsBinaryString<E>*>(ARecord) =
        TXsBinaryString<E>(UnicodeToUtf8(Plain(AText, AFormat, AJSON)));
  }
};

template <TVnTypeKind AKind>
struct Ops<TXsDateTimeRecord<AKind>> {
  using R = TXsDateTimeRecord<AKind>;
  static void Clear(void* ARecord) { static_cast<R*>(ARecord)->Clear(); }
  static void Write(const void* ARecord, TVnDataSerializationFormatType, const TVnTypeInfo*& AType,
                    TValue& AValue) {
    // The record's own text: the writers hand a date kind holding a string through as it is.
    const R& record = *static_cast<const R*>(ARecord);
    AType = TVnTypes::GetTypeInfo(FindTypeInfo(AKind == vtkDate   ? u"System.TDate"
                                               : AKind == vtkTime ? u"System.TTime"
                                                                  : u"System.TDateTime"));
    AValue = record.IsNull() ? TValue() : TValue::From(record.ToString(true));
  }
  static void Read(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                   TVnJSONDataType AJSON) {
    const UnicodeString text = Trim(Plain(AText, AFormat, AJSON));
    const TDateTime value = AKind == vtkDate   ? VnXMLToDate(text)
                            : AKind == vtkTime ? VnXMLToTime(text, tzfNone)
                                               : VnXMLToDateTime(text, tzfNone);
    *static_cast<R*>(ARecord) = R(value);
  }
};

template <>
struct Ops<TXsDuration> {
  static void Clear(void* ARecord) { static_cast<TXsDuration*>(ARecord)->Clear(); }
  static void Write(const void* ARecord, TVnDataSerializationFormatType AFormat, const TVnTypeInfo*& AType,
                    TValue& AValue) {
    const TXsDuration& record = *static_cast<const TXsDuration*>(ARecord);
    if (AFormat != dsfJSON) {
      AType = TVnTypes::GetTypeInfo<UnicodeString>();
      AValue = record.IsNull() ? TValue() : TValue::From(record.ToString());
      return;
    }
    // JSON: an object of the duration's parts, raw JSON; null is the empty object.
    AType = TVnTypes::GetTypeInfo(TypeInfoOf<TObject>());
    if (record.IsNull()) {
      AValue = TValue();
      return;
    }
    const TVnDuration d = record;
    const UnicodeString text = u"{\"className\":\"" + TVnTypes::GetTypeInfo<TVnDuration>()->SchemaName(u"") +
                               u"\",\"negative\":" + VnBoolToXML(d.Negative) + u",\"monthts\":" +
                               VnIntToXML(d.Months) + u",\"seconds\":" + VnExtToXML(d.Seconds) + u"}";
    AValue = TValue::From(VnJSONString(text));
  }
  static void Read(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
                   TVnJSONDataType AJSON) {
    *static_cast<TXsDuration*>(ARecord) =
        TXsDuration(std::u16string_view(Trim(Plain(AText, AFormat, AJSON))));
  }
};

template <class R>
XsTypeOps Entry() {
  return XsTypeOps{TypeInfoOf<R>(), &Ops<R>::Clear, &Ops<R>::Write, &Ops<R>::Read};
}

const std::array<XsTypeOps, 19>& Table() {
  static const std::array<XsTypeOps, 19> table = {
      Entry<TXsBoolean>(),
      Entry<TXsInteger<ShortInt>>(),
      Entry<TXsInteger<SmallInt>>(),
      Entry<TXsInteger<Integer>>(),
      Entry<TXsInteger<Int64>>(),
      Entry<TXsInteger<Byte>>(),
      Entry<TXsInteger<Word>>(),
      Entry<TXsInteger<Cardinal>>(),
      Entry<TXsInteger<UInt64>>(),
      Entry<TXsRational<Single>>(),
      Entry<TXsRational<Double>>(),
      Entry<TXsRational<Extended>>(),
      Entry<TXsString>(),
      Entry<TXsBase64Binary>(),
      Entry<TXsHexBinary>(),
      Entry<TXsDateTime>(),
      Entry<TXsDate>(),
      Entry<TXsTime>(),
      Entry<TXsDuration>(),
  };
  return table;
}

}  // namespace

const XsTypeOps* XsFindType(const TTypeInfo* AType) {
  for (const XsTypeOps& entry : Table())
    if (entry.Type == AType) return &entry;
  return nullptr;
}

std::span<const XsTypeOps> XsTypes() { return Table(); }

const XsTypeOps& XsTypeOf(const TVnTypeInfo* AType) {
  const XsTypeOps* entry = AType ? XsFindType(AType->Handle()) : nullptr;
  if (!entry) throw Exception(cVnXsNotAnXsType);
  return *entry;
}

}  // namespace vn::detail
