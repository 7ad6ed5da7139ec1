// Shared helpers of the TValue sources: raw ordinal, float and string access by type record.
#pragma once

#include "vnxml/common/value.h"

namespace vn::detail {

/// The ordinal stored at AData by the type's storage size and sign.
Int64 ReadOrdinal(const void* AData, const TTypeInfo* AType);
/// Stores AValue into the ordinal at AData, truncated to its storage.
void WriteOrdinal(void* AData, const TTypeInfo* AType, Int64 AValue);
/// True when AValue lies in the type's range (an unsigned 64-bit type takes any bits).
bool OrdinalInRange(const TTypeInfo* AType, Int64 AValue);
Extended ReadFloat(const void* AData, const TTypeInfo* AType);
/// Stores AValue into the float at AData; false when it does not fit (Currency out of range).
bool WriteFloat(void* AData, const TTypeInfo* AType, Extended AValue);
bool IsStringKind(TTypeKind AKind);
/// The text of a string or char value at AData.
UnicodeString ReadString(const void* AData, const TTypeInfo* AType);
/// Stores AText into the (constructed) string at AData.
void WriteString(void* AData, const TTypeInfo* AType, const UnicodeString& AText);

}  // namespace vn::detail
