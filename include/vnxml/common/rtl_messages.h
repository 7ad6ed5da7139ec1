// rtl_messages.h: the fixed texts of the platform layer's exceptions (common platform layer).
// Callers that raise the same failures, and tests, use these constants rather than copied literals.
#pragma once

namespace vn {

// ---- conversions ----
inline constexpr char16_t cRtlInvalidInteger[] = u"'%s' is not a valid integer value";
inline constexpr char16_t cRtlInvalidFloat[] = u"'%s' is not a valid floating point value";
inline constexpr char16_t cRtlInvalidBoolean[] = u"'%s' is not a valid boolean value";
inline constexpr char16_t cRtlInvalidGUID[] = u"'%s' is not a valid GUID value";
inline constexpr char16_t cRtlInvalidFormat[] = u"Format '%s' invalid or incompatible with argument";
inline constexpr char16_t cRtlArgumentMissing[] = u"No argument for format '%s'";
inline constexpr char16_t cRtlDateEncodeError[] = u"Invalid argument to date encode";
inline constexpr char16_t cRtlTimeEncodeError[] = u"Invalid argument to time encode";
inline constexpr char16_t cRtlInvalidOp[] = u"Invalid floating point operation";

// ---- lists and classes ----
inline constexpr char16_t cRtlListIndexError[] = u"List index out of bounds (%d)";
inline constexpr char16_t cRtlListCapacityError[] = u"List capacity out of bounds (%d)";
inline constexpr char16_t cRtlListCountError[] = u"List count out of bounds (%d)";
inline constexpr char16_t cRtlDuplicateString[] = u"String list does not allow duplicates";
inline constexpr char16_t cRtlSortedListError[] = u"Operation not allowed on sorted list";
inline constexpr char16_t cRtlDuplicateItem[] = u"Duplicates not allowed";
inline constexpr char16_t cRtlItemNotFound[] = u"Item not found";
inline constexpr char16_t cRtlArgumentOutOfRange[] = u"Argument out of range";
inline constexpr char16_t cRtlAssignError[] = u"Cannot assign a %s to a %s";
inline constexpr char16_t cRtlDuplicateName[] = u"A component named %s already exists";
inline constexpr char16_t cRtlInvalidName[] = u"'%s' is not a valid component name";
inline constexpr char16_t cRtlInvalidCast[] = u"Invalid class typecast";

}  // namespace vn
