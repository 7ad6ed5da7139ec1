// serializer_enums.h: enumeration and set values as the notations name them (unit uVnSerializer).
// An shoEnumPrefix hint on an enumeration type (for a set: on its element type) names a prefix
// that the text leaves out: with the prefix "lv", lvHigh is written "High" and "High" reads as
// lvHigh. The walker and the builder of both notations share these rules.
#pragma once

#include <string_view>

#include "vnxml/common/type_info.h"

namespace vn {

/// The prefix of AType's value names from its shoEnumPrefix hint (a set's from its element
/// type); empty without a hint.
UnicodeString VnEnumPrefix(const TTypeInfo* AType);
/// The name of AOrdinal without APrefix. A name that does not start with APrefix keeps every
/// character, and an ordinal outside AType's range is written as a number, so nothing is lost.
UnicodeString VnEnumName(const TTypeInfo* AType, Int64 AOrdinal, std::u16string_view APrefix);
/// The names of the elements in ABits, each as VnEnumName gives it, in brackets: "[Low,High]".
UnicodeString VnSetNames(const TTypeInfo* ASetType, UInt64 ABits, std::u16string_view APrefix);
/// The ordinal a text gives: digits are the ordinal; a name is looked up with APrefix put back,
/// then as it stands (case is ignored); an empty text is 0. -1 when nothing in AType's range fits.
Int64 VnEnumOrdinal(const TTypeInfo* AType, std::u16string_view AText, std::u16string_view APrefix);
/// The bits a set text gives: a number, or names as VnEnumOrdinal reads them, separated by
/// commas, in brackets or not. False, with ABits untouched, when a name or number does not fit.
bool VnSetBits(const TTypeInfo* ASetType, std::u16string_view AText, std::u16string_view APrefix, UInt64& ABits);

}  // namespace vn
