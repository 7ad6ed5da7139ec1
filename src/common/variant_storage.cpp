// Variant storage: construction, copy, release of the value kinds.
#include <new>

#include "common/variant_internal.h"

namespace vn {

using detail::VarArrayData;

Variant::Variant(const Variant& AOther) : FType(AOther.FType) {
  switch (FType) {
    case varOleStr:
    case varUString:
      new (&FData.WStr) UnicodeString(AOther.FData.WStr);
      break;
    case varString:
      new (&FData.AStr) std::string(AOther.FData.AStr);
      break;
    case varUnknown:
    case varDispatch:
      FData.Intf = AOther.FData.Intf;
      if (FData.Intf) FData.Intf->_AddRef();
      break;
    default:
      if (FType & varArray) {
        // A locked array hands out raw element pointers, so a copy must not share it.
        if (AOther.FData.Arr->Locks > 0) {
          FData.Arr = AOther.FData.Arr->Clone();
        } else {
          FData.Arr = AOther.FData.Arr;
          FData.Arr->Refs.fetch_add(1, std::memory_order_relaxed);
        }
      } else {
        FData.U = AOther.FData.U;
      }
  }
}

Variant::Variant(Variant&& AOther) noexcept : FType(AOther.FType) {
  switch (FType) {
    case varOleStr:
    case varUString:
      new (&FData.WStr) UnicodeString(std::move(AOther.FData.WStr));
      AOther.Clear();
      break;
    case varString:
      new (&FData.AStr) std::string(std::move(AOther.FData.AStr));
      AOther.Clear();
      break;
    default:
      // Scalars are copied; an interface or array reference changes owner.
      FData.U = AOther.FData.U;
      AOther.FType = varEmpty;
      AOther.FData.I = 0;
  }
}

Variant& Variant::operator=(const Variant& AOther) {
  if (this != &AOther) {
    Variant copy(AOther);
    *this = std::move(copy);
  }
  return *this;
}

Variant& Variant::operator=(Variant&& AOther) noexcept {
  if (this != &AOther) {
    Clear();  // leaves nothing to destroy, so the storage can take the moved value
    new (this) Variant(std::move(AOther));
  }
  return *this;
}

void Variant::Clear() noexcept {
  switch (FType) {
    case varOleStr:
    case varUString:
      FData.WStr.~UnicodeString();
      break;
    case varString:
      FData.AStr.~basic_string();
      break;
    case varUnknown:
    case varDispatch:
      if (FData.Intf) FData.Intf->_Release();
      break;
    default:
      if (FType & varArray) detail::ReleaseArray(FData.Arr);
  }
  FType = varEmpty;
  FData.I = 0;
}

Variant::Variant(char16_t AValue) : FType(varUString) { new (&FData.WStr) UnicodeString(1, AValue); }
Variant::Variant(const char16_t* AValue) : FType(varUString) {
  new (&FData.WStr) UnicodeString(AValue ? AValue : u"");
}
Variant::Variant(std::u16string_view AValue) : FType(varUString) { new (&FData.WStr) UnicodeString(AValue); }
Variant::Variant(const UnicodeString& AValue) : FType(varUString) { new (&FData.WStr) UnicodeString(AValue); }
Variant::Variant(UnicodeString&& AValue) noexcept : FType(varUString) {
  new (&FData.WStr) UnicodeString(std::move(AValue));
}
Variant::Variant(const char* AValue) : FType(varString) { new (&FData.AStr) std::string(AValue ? AValue : ""); }
Variant::Variant(std::string_view AValue) : FType(varString) { new (&FData.AStr) std::string(AValue); }
Variant::Variant(const std::string& AValue) : FType(varString) { new (&FData.AStr) std::string(AValue); }
Variant::Variant(std::string&& AValue) noexcept : FType(varString) {
  new (&FData.AStr) std::string(std::move(AValue));
}
Variant::Variant(const IPtr<IInterface>& AValue) : FType(varUnknown) {
  FData.Intf = AValue.Get();
  if (FData.Intf) FData.Intf->_AddRef();
}

Variant Variant::Null() noexcept {
  Variant v;
  v.FType = varNull;
  return v;
}

Variant Variant::FromDate(TDateTime AValue) noexcept {
  Variant v(AValue);
  v.FType = varDate;
  return v;
}

Variant Variant::FromOleStr(UnicodeString AValue) {
  Variant v(std::move(AValue));
  v.FType = varOleStr;
  return v;
}

Variant Variant::FromDispatch(const IPtr<IInterface>& AValue) {
  Variant v(AValue);
  v.FType = varDispatch;
  return v;
}

Variant Variant::FromError(int32_t ACode) noexcept {
  Variant v;
  v.FType = varError;
  v.FData.I = ACode;
  return v;
}

Variant Variant::AdoptArray(VarArrayData* AData) noexcept {
  Variant v;
  v.FType = static_cast<TVarType>(varArray | AData->ElemType);
  v.FData.Arr = AData;
  return v;
}

VarArrayData* Variant::UniqueArray() {
  if (!(FType & varArray)) detail::RaiseInvalidArg();
  if (FData.Arr->Refs.load(std::memory_order_acquire) > 1) {
    VarArrayData* own = FData.Arr->Clone();
    detail::ReleaseArray(FData.Arr);
    FData.Arr = own;
  }
  return FData.Arr;
}

namespace detail {

VarArrayData* VarArrayData::Clone() const {
  auto* copy = new VarArrayData;
  copy->ElemType = ElemType;
  copy->Bounds = Bounds;
  copy->Items = Items;
  copy->Bytes = Bytes;
  return copy;
}

void ReleaseArray(VarArrayData* AData) noexcept {
  if (AData && AData->Refs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete AData;
}

}  // namespace detail

// ---- predicates ----

bool VarIsClear(const Variant& V) noexcept {
  switch (V.VarType()) {
    case varEmpty:
      return true;
    case varUnknown:
    case varDispatch:
      return V.RawInterface() == nullptr;
    default:
      return false;
  }
}

bool VarIsOrdinal(const Variant& V) noexcept {
  return detail::IsIntegerType(V.VarType()) || V.VarType() == varBoolean;
}

bool VarIsFloat(const Variant& V) noexcept {
  TVarType t = V.VarType();
  return t == varSingle || t == varDouble || t == varCurrency;
}

bool VarIsNumeric(const Variant& V) noexcept { return VarIsOrdinal(V) || VarIsFloat(V); }

bool VarIsStr(const Variant& V) noexcept { return detail::IsStringType(V.VarType()); }

bool VarTypeIsValidElementType(TVarType AVarType) noexcept {
  switch (AVarType) {
    case varSmallint: case varInteger: case varSingle: case varDouble: case varCurrency:
    case varDate: case varOleStr: case varDispatch: case varError: case varBoolean:
    case varVariant: case varUnknown: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64: case varUInt64:
      return true;
    default:
      return false;
  }
}

}  // namespace vn
