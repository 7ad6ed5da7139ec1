// vn_type_info_value.h: the value helper of the type registry, over TValue (unit rVnCommon).
// What a value is in the registry's terms, and conversions that go further than TValue's own
// casts: text to numbers, enumerations and sets, and numbers to text. The To... conversions
// raise EInvalidCast "Invalid class typecast" when the value does not convert; the empty value
// gives the target's zero.
#pragma once

#include "vnxml/common/vn_types.h"

namespace vn {

/// The record of the value's type; nullptr for the empty value.
const TVnTypeInfo* VnTypeInfo(const TValue& AValue);
/// The kind of the value's type; vtkUnknown for the empty value.
TVnTypeKind TypeKind(const TValue& AValue);
/// The main kind; a Variant value gives the main kind of what it holds.
TVnMainTypeKind MainTypeKind(const TValue& AValue);
/// Empty, a nil reference, or a Variant holding Empty or Null.
bool IsNull(const TValue& AValue);

/// AValue converted to AType: TValue's casts, then text read as a number, boolean, character,
/// enumeration value (name or ordinal) or set, and numbers written as text. False when it does
/// not convert (a number out of the target's range, a name the enumeration lacks, ...).
bool ToType(const TValue& AValue, const TTypeInfo* AType, TValue& AResult);

Byte ToByte(const TValue& AValue);
Word ToWord(const TValue& AValue);
LongWord ToLongWord(const TValue& AValue);
UInt64 ToUInt64(const TValue& AValue);
ShortInt ToShortInt(const TValue& AValue);
SmallInt ToSmallInt(const TValue& AValue);
Integer ToInteger(const TValue& AValue);
Int64 ToInt64(const TValue& AValue);
Single ToSingle(const TValue& AValue);
Double ToDouble(const TValue& AValue);
Extended ToExtended(const TValue& AValue);
bool ToBoolean(const TValue& AValue);
/// The text of any value: strings as they are, a Variant's text (Null gives ""), the empty value
/// "", anything else the generic text of TValue::ToString.
UnicodeString ToWideString(const TValue& AValue);

}  // namespace vn
