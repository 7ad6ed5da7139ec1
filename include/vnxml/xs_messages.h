// xs_messages.h: the fixed texts of the XS value records and their serializers (unit uVnXSTypes).
// Callers and tests compare against these constants.
#pragma once

namespace vn {

/// The text of FHasValue for a record that holds a value; any other text is null.
inline constexpr char16_t cVnXsHasValue[] = u"1";

inline constexpr char16_t cVnXsNegativeUnsigned[] =
    u"The negative operation is not allowed on unsigned integer types!";
inline constexpr char16_t cVnXsIntegerTypesOnly[] = u"The TXsInteger<T> only supports integer types!";
inline constexpr char16_t cVnXsRationalTypesOnly[] = u"The TXsRational<T> only supports float types!";
inline constexpr char16_t cVnXsMinExclusive[] =
    u"The specified value is smaller than, or equal to, the minimal value!";
/// Both maximum facets fail with this text, the inclusive one too.
inline constexpr char16_t cVnXsMaxExceeded[] =
    u"The specified value is greater than, or equal to, the maximal value!";
inline constexpr char16_t cVnXsMinInclusive[] = u"The specified value is smaller than the minimal value!";
inline constexpr char16_t cVnXsPattern[] = u"The specified value does not match the specified pattern!";
inline constexpr char16_t cVnXsTotalDigits[] =
    u"The value contains more digits than the maximum amount of allowed digits!";
inline constexpr char16_t cVnXsFractionDigits[] =
    u"The value contains more digits than the maximum amount of allowed fraction digits!";
/// Integer div and mod by zero (EDivByZero).
inline constexpr char16_t cVnXsDivByZero[] = u"Division by zero";
/// A hexadecimal binary text that is not whole bytes of two digits each (EConvertError).
inline constexpr char16_t cVnXsInvalidHex[] = u"'%s' is not a valid hexadecimal binary value";
/// A serializer of the XS family given a record of another type.
inline constexpr char16_t cVnXsNotAnXsType[] = u"The type is not an XsType!";

}  // namespace vn
