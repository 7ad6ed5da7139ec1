// TVnJSONSimpleType: a string, number, boolean or null. A loaded value keeps its raw text and
// reads as the string variant the tree handler would have stored; a value set by a caller is a
// native Variant.
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/json_document.h"
#include "vnxml/json_values.h"

namespace vn {

TVnJSONSimpleType::~TVnJSONSimpleType() { ClearValue(); }

void TVnJSONSimpleType::ClearValue() noexcept {
  FRaw.Free();
  delete FVar;
  FVar = nullptr;
}

Variant TVnJSONSimpleType::CurrentValue() const {
  if (FVar) return *FVar;
  if (FRaw.IsSet()) return Variant(VnJSONtoStr(FRaw.Wide(), FJSONType));
  return Variant::Null();
}

void TVnJSONSimpleType::StoreVariant(const Variant& AValue, TVnJSONDataType AKind) {
  auto* value = new Variant(AValue);
  ClearValue();
  FVar = value;
  FJSONType = AKind;
}

void TVnJSONSimpleType::StoreRaw(const detail::JSONText& AText, TVnJSONDataType AKind) {
  ClearValue();
  FRaw = AText;
  FJSONType = AKind;
}

bool TVnJSONSimpleType::GetAsBoolean() { return VnVarToBool(CurrentValue(), false, false); }
double TVnJSONSimpleType::GetAsDouble() { return VnVarToDouble(CurrentValue(), 0, false); }
Integer TVnJSONSimpleType::GetAsInteger() { return VnVarToInt(CurrentValue(), 0, false); }
Int64 TVnJSONSimpleType::GetAsLargeInt() { return VnVarToInt64(CurrentValue(), 0, false); }
Variant TVnJSONSimpleType::GetAsVariant() { return CurrentValue(); }

UnicodeString TVnJSONSimpleType::GetAsString() {
  if (!FVar && FRaw.IsSet()) return VnJSONtoStr(FRaw.Wide(), FJSONType);
  Variant v = CurrentValue();
  TVnVarMainTypeKind main = TVnTypes::VarMainTypeKind(v);
  if (main == vmkString) return VarToUStr(v);
  switch (FJSONType) {
    case jdtNull: return {};
    case jdtString: return main == vmkDateTime ? VnVarToStr(v) : VarToUStr(v);
    case jdtNumber: return VnVarToJSON(v);
    case jdtBoolean: return VnVarToBool(v) ? u"true" : u"false";
    default: throw EVnJSONException(cVnJSONErrUnexpectedType, UnicodeString(_cVnJSONUnexpectedType));
  }
}

void TVnJSONSimpleType::SetAsBoolean(bool AValue) { StoreVariant(Variant(AValue), jdtBoolean); }
void TVnJSONSimpleType::SetAsDouble(double AValue) { StoreVariant(Variant(AValue), jdtNumber); }
void TVnJSONSimpleType::SetAsInteger(Integer AValue) { StoreVariant(Variant(AValue), jdtNumber); }
void TVnJSONSimpleType::SetAsLargeInt(Int64 AValue) { StoreVariant(Variant(AValue), jdtNumber); }
void TVnJSONSimpleType::SetAsString(std::u16string_view AValue) { StoreVariant(Variant(AValue), jdtString); }

void TVnJSONSimpleType::SetAsVariant(const Variant& AValue) {
  TVnJSONDataType kind = jdtNull;
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    case vmkInteger:
    case vmkFloat: kind = jdtNumber; break;
    case vmkString:
    case vmkDateTime: kind = jdtString; break;
    case vmkBoolean: kind = jdtBoolean; break;
    default: break;
  }
  StoreVariant(AValue, kind);
}

UnicodeString TVnJSONSimpleType::ValueText() {
  Variant v = CurrentValue();
  TVnVarMainTypeKind main = TVnTypes::VarMainTypeKind(v);
  switch (FJSONType) {
    case jdtNull: return u"null";
    case jdtString:
      if (main == vmkDateTime) return VnVarToStr(v);
      return u"\"" + VnStrToJSON(VarToUStr(v)) + u"\"";
    case jdtNumber: return main == vmkString ? VarToUStr(v) : VnVarToJSON(v);
    case jdtBoolean:
      if (main == vmkString) return VarToUStr(v);
      return VnVarToBool(v) ? u"true" : u"false";
    default: throw EVnJSONException(cVnJSONErrUnexpectedType, UnicodeString(_cVnJSONUnexpectedType));
  }
}

}  // namespace vn
