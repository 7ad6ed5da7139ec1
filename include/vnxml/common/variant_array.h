// variant_array.h: variant arrays, the platform's Variant holding a bounded array (common platform layer).
// An array has 1 or more dimensions, each with its own low and high bound, and one element type;
// a stored element is converted to that type (varVariant elements take anything).
// Failures: EVariantArrayCreateError (bad bounds or element type), EVariantBadIndexError (index or
// dimension out of range), EVariantInvalidArgError (not an array), EVariantArrayLockedError.
// Included by variant.h; include that one.
#pragma once

#include <initializer_list>
#include <span>

#include "vnxml/common/variant.h"

namespace vn {

/// A new array of AVarType; ABounds holds low and high bound per dimension: {0, 9} or {1, 3, 0, 4}.
/// An array may take at most 1 GiB (EVariantArrayCreateError beyond).
/// Elements start as Unassigned for varVariant, else as the element type's zero or empty text.
Variant VarArrayCreate(std::initializer_list<Integer> ABounds, TVarType AVarType);
Variant VarArrayCreate(std::span<const Integer> ABounds, TVarType AVarType);
/// A one-dimensional varVariant array indexed from 0 holding the values.
Variant VarArrayOf(std::initializer_list<Variant> AValues);
Variant VarArrayOf(std::span<const Variant> AValues);
/// A one-dimensional byte array (varArray | varByte) indexed from 0 holding a copy of the bytes.
Variant VarArrayFromBytes(std::span<const Byte> ABytes);

/// Number of dimensions; 0 for a value that is no array.
Integer VarArrayDimCount(const Variant& A) noexcept;
/// Bounds of dimension ADim (1-based).
Integer VarArrayLowBound(const Variant& A, Integer ADim);
Integer VarArrayHighBound(const Variant& A, Integer ADim);

/// The element at the indices, one per dimension.
Variant VarArrayGet(const Variant& A, std::initializer_list<Integer> AIndices);
Variant VarArrayGet(const Variant& A, std::span<const Integer> AIndices);
/// Stores AValue, converted to the element type, at the indices.
void VarArrayPut(Variant& A, const Variant& AValue, std::initializer_list<Integer> AIndices);
void VarArrayPut(Variant& A, const Variant& AValue, std::span<const Integer> AIndices);
/// Changes the high bound of the last dimension, keeping the elements that remain.
void VarArrayRedim(Variant& A, Integer AHighBound);

/// Direct access to the elements while the array is locked: a Byte* for a byte array, a Variant*
/// for any other (first dimension varies fastest). Redim fails while a lock is held.
void* VarArrayLock(Variant& A);
void VarArrayUnlock(Variant& A);
/// The bytes of a byte array, without copying; valid until the array is resized or released.
/// Writes through it reach copies of A made meanwhile unless A is locked (VarArrayLock).
std::span<Byte> VarArrayBytes(Variant& A);
std::span<const Byte> VarArrayBytes(const Variant& A);
/// A copy of the bytes of a byte array.
TBytes VarArrayToBytes(const Variant& A);

}  // namespace vn
