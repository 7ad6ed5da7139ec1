// The value helper: a TValue in the registry's terms, and conversions through text.
#include <cmath>
#include <cstring>

#include "vnxml/common/rtti_register.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_type_info_value.h"

namespace vn {

namespace {

bool IsTextKind(TTypeKind AKind) {
  switch (AKind) {
    case tkChar: case tkWChar: case tkString: case tkLString: case tkWString: case tkUString: return true;
    default: return false;
  }
}

bool IsNumberKind(TTypeKind AKind) {
  return AKind == tkInteger || AKind == tkInt64 || AKind == tkFloat || AKind == tkEnumeration;
}

bool TextToBoolean(const UnicodeString& AText, bool& AValue) {
  if (SameText(AText, u"true") || AText == u"1") {
    AValue = true;
    return true;
  }
  if (SameText(AText, u"false") || AText == u"0") {
    AValue = false;
    return true;
  }
  return TryStrToBool(AText, AValue);
}

bool TextToSet(const UnicodeString& AText, const TTypeInfo* AType, TValue& AResult) {
  UInt64 bits = 0;
  Int64 number = 0;
  if (!AText.empty() && AText[0] >= u'0' && AText[0] <= u'9' && TryStrToInt64(AText, number)) {
    bits = static_cast<UInt64>(number);
  } else {
    try {
      bits = StringToSet(AType, AText);
    } catch (const EPropertyConvertError&) {
      return false;
    }
  }
  TValue set = TValue::Make(nullptr, AType);
  std::memcpy(set.GetReferenceToRawData(), &bits, sizeof bits);
  AResult = std::move(set);
  return true;
}

bool TextToType(const UnicodeString& AText, const TTypeInfo* AType, TValue& AResult) {
  const UnicodeString text = Trim(AText);
  switch (AType->Kind) {
    case tkInteger:
    case tkInt64: {
      if (AType->IsUnsigned) {
        UInt64 value = 0;
        return TryStrToUInt64(text, value) && TValue::From(value).TryCast(AType, AResult);
      }
      Int64 value = 0;
      return TryStrToInt64(text, value) && TValue::From(value).TryCast(AType, AResult);
    }
    case tkEnumeration: {
      Int64 ordinal = 0;
      if (AType == TypeInfoOf<bool>()) {
        bool value = false;
        if (!TextToBoolean(text, value)) return false;
        ordinal = value;
      } else if (!TryStrToInt64(text, ordinal)) {
        ordinal = GetEnumValue(AType, text);
        if (ordinal < 0) return false;
      }
      if (ordinal < AType->MinValue || ordinal > AType->MaxValue) return false;
      AResult = TValue::FromOrdinal(AType, ordinal);
      return true;
    }
    case tkFloat: {
      Extended value = 0;
      return TryStrToFloat(text, value) && TValue::From(value).TryCast(AType, AResult);
    }
    case tkChar:
    case tkWChar:
      // A character is the first one of the text; the whole text, not its trimmed form.
      return TValue::From(AText.empty() ? char16_t(0) : AText[0]).TryCast(AType, AResult);
    case tkSet:
      return TextToSet(text, AType, AResult);
    default:
      return false;
  }
}

template <class T>
T ConvertTo(const TValue& AValue) {
  TValue result;
  if (!ToType(AValue, TypeInfoOf<T>(), result)) throw EInvalidCast(u"Invalid class typecast");
  return result.AsType<T>();
}

}  // namespace

const TVnTypeInfo* VnTypeInfo(const TValue& AValue) { return TVnTypes::GetTypeInfo(AValue.TypeInfo()); }

TVnTypeKind TypeKind(const TValue& AValue) {
  const TVnTypeInfo* info = VnTypeInfo(AValue);
  return info ? info->Kind() : vtkUnknown;
}

TVnMainTypeKind MainTypeKind(const TValue& AValue) {
  if (AValue.Kind() == tkVariant)
    return static_cast<TVnMainTypeKind>(
        TVnTypes::VarMainTypeKind(*static_cast<const Variant*>(AValue.GetReferenceToRawData())));
  const TVnTypeInfo* info = VnTypeInfo(AValue);
  return info ? info->GetMainTypeKind() : mtkUnknown;
}

bool IsNull(const TValue& AValue) {
  if (AValue.IsEmpty()) return true;
  if (AValue.Kind() == tkVariant) {
    const Variant& v = *static_cast<const Variant*>(AValue.GetReferenceToRawData());
    return VarIsEmpty(v) || VarIsNull(v);
  }
  return false;
}

bool ToType(const TValue& AValue, const TTypeInfo* AType, TValue& AResult) {
  if (!AType) return false;
  if (AValue.TryCast(AType, AResult)) return true;
  const TTypeInfo* source = AValue.TypeInfo();
  if (!source) return false;
  if (source->Kind == tkVariant) {
    const TValue inner = TValue::FromVariant(*static_cast<const Variant*>(AValue.GetReferenceToRawData()));
    return inner.TypeInfo() && inner.Kind() != tkVariant && ToType(inner, AType, AResult);
  }
  if (source == TypeInfoOf<TValue>())
    return ToType(*static_cast<const TValue*>(AValue.GetReferenceToRawData()), AType, AResult);
  if (IsTextKind(source->Kind)) return TextToType(AValue.AsString(), AType, AResult);
  if (IsNumberKind(source->Kind) && IsTextKind(AType->Kind) && AType->Kind != tkChar && AType->Kind != tkWChar)
    return TValue::From(AValue.ToString()).TryCast(AType, AResult);
  if (source->Kind == tkFloat && (AType->Kind == tkInteger || AType->Kind == tkInt64)) {
    // Only a whole number becomes an integer; no rounding happens behind the caller's back.
    const Extended value = AValue.AsExtended();
    if (!(std::fabs(value) < 9.2e18L) || value != std::trunc(value)) return false;
    return TValue::From(static_cast<Int64>(value)).TryCast(AType, AResult);
  }
  return false;
}

Byte ToByte(const TValue& AValue) { return ConvertTo<Byte>(AValue); }
Word ToWord(const TValue& AValue) { return ConvertTo<Word>(AValue); }
LongWord ToLongWord(const TValue& AValue) { return ConvertTo<LongWord>(AValue); }
UInt64 ToUInt64(const TValue& AValue) { return ConvertTo<UInt64>(AValue); }
ShortInt ToShortInt(const TValue& AValue) { return ConvertTo<ShortInt>(AValue); }
SmallInt ToSmallInt(const TValue& AValue) { return ConvertTo<SmallInt>(AValue); }
Integer ToInteger(const TValue& AValue) { return ConvertTo<Integer>(AValue); }
Int64 ToInt64(const TValue& AValue) { return ConvertTo<Int64>(AValue); }
Single ToSingle(const TValue& AValue) { return ConvertTo<Single>(AValue); }
Double ToDouble(const TValue& AValue) { return ConvertTo<Double>(AValue); }
Extended ToExtended(const TValue& AValue) { return ConvertTo<Extended>(AValue); }
bool ToBoolean(const TValue& AValue) { return ConvertTo<bool>(AValue); }

UnicodeString ToWideString(const TValue& AValue) {
  if (!AValue.TypeInfo()) return {};
  if (IsTextKind(AValue.Kind())) return AValue.AsString();
  if (AValue.Kind() == tkVariant) return VarToStr(*static_cast<const Variant*>(AValue.GetReferenceToRawData()));
  return AValue.ToString();
}

}  // namespace vn
