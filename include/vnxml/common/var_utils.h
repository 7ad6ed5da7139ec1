// var_utils.h: the common package's lenient Variant helpers (unit rVnCommon).
// Each VnVarToX gives ADefault for an Unassigned or Null value; a value that does not convert
// gives ADefault too, unless ARaise is set, when the conversion's own exception leaves.
#pragma once

#include "vnxml/common/variant.h"

namespace vn {

/// True for Unassigned and for Null.
bool VnVarIsEmpty(const Variant& AValue) noexcept;
/// Booleans as they are, numbers true when not 0, texts "True"/"False" (any case) or numeric.
bool VnVarToBool(const Variant& AValue, bool ADefault = false, bool ARaise = false);
/// The value's text; a date gives its ISO 8601 form "yyyy-mm-ddThh:nn:ss.zzz".
UnicodeString VnVarToStr(const Variant& AValue, std::u16string_view ADefault = {}, bool ARaise = false);
Extended VnVarToExtended(const Variant& AValue, Extended ADefault = 0, bool ARaise = false);
Integer VnVarToInt(const Variant& AValue, Integer ADefault = 0, bool ARaise = false);
Int64 VnVarToInt64(const Variant& AValue, Int64 ADefault = 0, bool ARaise = false);
Double VnVarToDouble(const Variant& AValue, Double ADefault = 0, bool ARaise = false);

}  // namespace vn
