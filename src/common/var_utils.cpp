// The lenient VnVar* helpers: a default for empty values and, unless asked to raise, for failures.
#include "vnxml/common/var_utils.h"

#include "common/variant_internal.h"

namespace vn {

namespace {

/// Runs AConvert on a value that is not empty; failures give ADefault unless ARaise.
template <class T, class F>
T Lenient(const Variant& AValue, T ADefault, bool ARaise, F AConvert) {
  if (VnVarIsEmpty(AValue)) return ADefault;
  if (ARaise) return AConvert();
  try {
    return AConvert();
  } catch (const Exception&) {
    return ADefault;
  }
}

}  // namespace

bool VnVarIsEmpty(const Variant& AValue) noexcept { return VarIsEmpty(AValue) || VarIsNull(AValue); }

bool VnVarToBool(const Variant& AValue, bool ADefault, bool ARaise) {
  return Lenient(AValue, ADefault, ARaise, [&] { return AValue.AsBoolean(); });
}

UnicodeString VnVarToStr(const Variant& AValue, std::u16string_view ADefault, bool ARaise) {
  return Lenient(AValue, UnicodeString(ADefault), ARaise, [&] {
    return AValue.VarType() == varDate ? detail::DateToISOText(AValue.RawDouble()) : AValue.AsString();
  });
}

Extended VnVarToExtended(const Variant& AValue, Extended ADefault, bool ARaise) {
  return Lenient(AValue, ADefault, ARaise, [&] { return AValue.AsExtended(); });
}

Integer VnVarToInt(const Variant& AValue, Integer ADefault, bool ARaise) {
  return Lenient(AValue, ADefault, ARaise, [&] { return AValue.AsInteger(); });
}

Int64 VnVarToInt64(const Variant& AValue, Int64 ADefault, bool ARaise) {
  return Lenient(AValue, ADefault, ARaise, [&] { return AValue.AsInt64(); });
}

Double VnVarToDouble(const Variant& AValue, Double ADefault, bool ARaise) {
  return Lenient(AValue, ADefault, ARaise, [&] { return AValue.AsDouble(); });
}

}  // namespace vn
