// vn_types.h: TVnTypes, the common package's type registry (unit rVnCommon).
// For now it groups Variants into the main kinds the library dispatches on.
#pragma once

#include "vnxml/common/variant.h"

namespace vn {

/// The main kinds of a Variant, as TVnTypes::VarMainTypeKind gives them.
enum TVnVarMainTypeKind : uint8_t {
  vmkOther = 0,     ///< Empty, Null, Dispatch, Error, Unknown, ...
  vmkInteger = 1,   ///< Smallint, Integer, ShortInt, Byte, Word, LongWord, Int64, UInt64
  vmkFloat = 2,     ///< Single, Double, Currency
  vmkString = 3,    ///< OleStr, String, UString
  vmkBoolean = 4,
  vmkDateTime = 5,  ///< Date
  vmkArray = 6      ///< any variant array
};

class TVnTypes {
 public:
  /// The main kind of the value: 1 integer, 2 float, 3 string, 4 boolean, 5 date, 6 array, 0 other.
  static TVnVarMainTypeKind VarMainTypeKind(const Variant& AValue) noexcept;
};

}  // namespace vn
