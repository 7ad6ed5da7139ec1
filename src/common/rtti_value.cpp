// TValue: storage, construction and the typed accessors.
#include <cstring>
#include <new>

#include "rtti_registry.h"
#include "rtti_value_internal.h"
#include "vnxml/common/currency.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant.h"

namespace vn {

namespace {

[[noreturn]] void InvalidCast() { throw EInvalidCast(u"Invalid class typecast"); }

bool FitsInline(const detail::TypeOps* AOps) {
  return AOps->Trivial && AOps->Size <= 16 && AOps->Align <= 16;
}

size_t HeapAlign(const detail::TypeOps* AOps) {
  return AOps->Align > alignof(std::max_align_t) ? AOps->Align : alignof(std::max_align_t);
}

}  // namespace

// ---- storage ----

void* TValue::Allocate(const TTypeInfo* ATypeInfo) {
  Clear();
  const detail::TypeOps* ops = ATypeInfo->Ops;
  if (FitsInline(ops)) {
    FOnHeap = false;
  } else {
    FHeap = ::operator new(ops->Size, std::align_val_t(HeapAlign(ops)));
    FOnHeap = true;
  }
  FTypeInfo = ATypeInfo;
  return Payload();
}

void TValue::Clear() noexcept {
  if (!FTypeInfo) return;
  const detail::TypeOps* ops = FTypeInfo->Ops;
  if (!ops->Trivial) ops->Destroy(Payload());
  if (FOnHeap) ::operator delete(FHeap, std::align_val_t(HeapAlign(ops)));
  FTypeInfo = nullptr;
  FOnHeap = false;
}

TValue::TValue(const TValue& AOther) {
  if (AOther.FTypeInfo) AOther.FTypeInfo->Ops->CopyConstruct(Allocate(AOther.FTypeInfo), AOther.Payload());
}

TValue::TValue(TValue&& AOther) noexcept {
  if (!AOther.FTypeInfo) return;
  FTypeInfo = AOther.FTypeInfo;
  FOnHeap = AOther.FOnHeap;
  if (FOnHeap)
    FHeap = AOther.FHeap;
  else
    std::memcpy(FInline, AOther.FInline, kInlineSize);
  AOther.FTypeInfo = nullptr;
  AOther.FOnHeap = false;
}

TValue& TValue::operator=(const TValue& AOther) {
  if (this != &AOther) {
    TValue copy(AOther);
    *this = std::move(copy);
  }
  return *this;
}

TValue& TValue::operator=(TValue&& AOther) noexcept {
  if (this == &AOther) return *this;
  Clear();
  if (!AOther.FTypeInfo) return *this;
  FTypeInfo = AOther.FTypeInfo;
  FOnHeap = AOther.FOnHeap;
  if (FOnHeap)
    FHeap = AOther.FHeap;
  else
    std::memcpy(FInline, AOther.FInline, kInlineSize);
  AOther.FTypeInfo = nullptr;
  AOther.FOnHeap = false;
  return *this;
}

TValue TValue::Make(const void* AData, const TTypeInfo* ATypeInfo) {
  TValue v;
  if (!ATypeInfo) return v;
  void* payload = v.Allocate(ATypeInfo);
  try {
    if (AData)
      ATypeInfo->Ops->CopyConstruct(payload, AData);
    else
      ATypeInfo->Ops->Construct(payload);
  } catch (...) {
    v.FTypeInfo = nullptr;  // nothing was constructed: free the room only
    if (v.FOnHeap) ::operator delete(v.FHeap, std::align_val_t(HeapAlign(ATypeInfo->Ops)));
    v.FOnHeap = false;
    throw;
  }
  return v;
}

TValue TValue::FromObject(TObject* AObject, const TTypeInfo* AType) {
  if (!AObject) {
    if (!AType) return TValue();
    if (AType->Kind != tkClass) InvalidCast();
    return Make(nullptr, AType);
  }
  if (!AType) AType = ClassTypeInfo(AObject->ClassType());
  if (AType->Kind != tkClass || !AObject->InheritsFrom(AType->ClassType)) InvalidCast();
  TValue v = Make(nullptr, AType);
  AType->Ops->FromObject(v.Payload(), AObject);
  return v;
}

TValue TValue::FromOrdinal(const TTypeInfo* ATypeInfo, Int64 AValue) {
  if (!ATypeInfo) InvalidCast();
  switch (ATypeInfo->Kind) {
    case tkInteger: case tkChar: case tkWChar: case tkEnumeration: case tkInt64: break;
    default: InvalidCast();
  }
  if (!detail::OrdinalInRange(ATypeInfo, AValue)) InvalidCast();
  TValue v = Make(nullptr, ATypeInfo);
  detail::WriteOrdinal(v.Payload(), ATypeInfo, AValue);
  return v;
}

// ---- questions ----

TTypeKind TValue::Kind() const noexcept { return FTypeInfo ? FTypeInfo->Kind : tkUnknown; }

bool TValue::IsEmpty() const noexcept {
  if (!FTypeInfo) return true;
  const void* p = Payload();
  switch (FTypeInfo->Kind) {
    case tkClass: return FTypeInfo->Ops->ToObject(p) == nullptr;
    case tkInterface: return FTypeInfo->Ops->ToInterface(p) == nullptr;
    case tkClassRef: return *static_cast<const TClass*>(p) == nullptr;
    case tkPointer: return *static_cast<void* const*>(p) == nullptr;
    case tkDynArray: return FTypeInfo->Ops->Length(p) == 0;
    default: return false;
  }
}

bool TValue::IsOrdinal() const noexcept {
  switch (Kind()) {
    case tkInteger: case tkChar: case tkWChar: case tkEnumeration: case tkInt64: return true;
    default: return false;
  }
}

// ---- accessors ----

TObject* TValue::AsObject() const {
  if (!FTypeInfo) return nullptr;
  if (FTypeInfo->Kind != tkClass) InvalidCast();
  return FTypeInfo->Ops->ToObject(Payload());
}

IPtr<IInterface> TValue::AsInterface() const {
  if (!FTypeInfo) return {};
  if (FTypeInfo->Kind != tkInterface) InvalidCast();
  return IPtr<IInterface>(FTypeInfo->Ops->ToInterface(Payload()));
}

TClass TValue::AsClass() const {
  if (!FTypeInfo) return nullptr;
  if (FTypeInfo->Kind == tkClassRef) return *static_cast<const TClass*>(Payload());
  if (FTypeInfo->Kind == tkClass) {
    TObject* object = AsObject();
    return object ? object->ClassType() : FTypeInfo->ClassType;
  }
  InvalidCast();
}

Int64 TValue::AsOrdinal() const {
  if (IsOrdinal()) return detail::ReadOrdinal(Payload(), FTypeInfo);
  if (Kind() == tkSet) return static_cast<Int64>(*static_cast<const UInt64*>(Payload()));
  InvalidCast();
}

Integer TValue::AsInteger() const { return AsType<Integer>(); }
Int64 TValue::AsInt64() const { return AsType<Int64>(); }
UInt64 TValue::AsUInt64() const { return AsType<UInt64>(); }
bool TValue::AsBoolean() const { return AsType<bool>(); }
Currency TValue::AsCurrency() const { return AsType<Currency>(); }

Extended TValue::AsExtended() const {
  if (Kind() == tkFloat) return detail::ReadFloat(Payload(), FTypeInfo);
  if (Kind() == tkInteger || Kind() == tkInt64) {
    if (FTypeInfo->IsUnsigned) return static_cast<Extended>(*static_cast<const UInt64*>(Payload()));
    return static_cast<Extended>(detail::ReadOrdinal(Payload(), FTypeInfo));
  }
  return AsType<Extended>();
}

UnicodeString TValue::AsString() const {
  if (FTypeInfo && detail::IsStringKind(FTypeInfo->Kind)) return detail::ReadString(Payload(), FTypeInfo);
  return AsType<UnicodeString>();
}

// ---- arrays ----

NativeInt TValue::GetArrayLength() const {
  if (!IsArray()) InvalidCast();
  return static_cast<NativeInt>(FTypeInfo->Ops->Length(Payload()));
}

TValue TValue::GetArrayElement(NativeInt AIndex) const {
  if (AIndex < 0 || AIndex >= GetArrayLength()) throw EArgumentOutOfRangeException(u"Argument out of range");
  void* element = FTypeInfo->Ops->Element(const_cast<void*>(Payload()), static_cast<size_t>(AIndex));
  return Make(element, FTypeInfo->ElementType);
}

void TValue::SetArrayElement(NativeInt AIndex, const TValue& AValue) {
  if (AIndex < 0 || AIndex >= GetArrayLength()) throw EArgumentOutOfRangeException(u"Argument out of range");
  const TValue converted = AValue.Cast(FTypeInfo->ElementType);
  FTypeInfo->ElementType->Ops->Assign(FTypeInfo->Ops->Element(Payload(), static_cast<size_t>(AIndex)),
                                      converted.Payload());
}

void TValue::SetArrayLength(NativeInt ALength) {
  if (Kind() != tkDynArray) InvalidCast();
  DynArraySetLength(Payload(), FTypeInfo, ALength);
}

void TValue::ExtractRawData(void* ADest) const {
  if (FTypeInfo) FTypeInfo->Ops->Assign(ADest, Payload());
}

void DynArraySetLength(void* AArray, const TTypeInfo* ADynArrayType, NativeInt ALength) {
  if (!AArray || !ADynArrayType || ADynArrayType->Kind != tkDynArray) InvalidCast();
  if (ALength < 0) throw ERangeError(u"Range check error");
  ADynArrayType->Ops->SetLength(AArray, static_cast<size_t>(ALength));
}

NativeInt DynArraySize(const void* AArray, const TTypeInfo* AArrayType) {
  if (!AArray || !AArrayType || (AArrayType->Kind != tkDynArray && AArrayType->Kind != tkArray)) InvalidCast();
  return static_cast<NativeInt>(AArrayType->Ops->Length(AArray));
}

// ---- raw helpers ----

namespace detail {

Int64 ReadOrdinal(const void* AData, const TTypeInfo* AType) {
  switch (AType->Ops->Size) {
    case 1: {
      uint8_t b;
      std::memcpy(&b, AData, 1);
      return AType->OrdType == otSByte ? static_cast<Int64>(static_cast<int8_t>(b)) : b;
    }
    case 2: {
      uint16_t w;
      std::memcpy(&w, AData, 2);
      return AType->OrdType == otSWord ? static_cast<Int64>(static_cast<int16_t>(w)) : w;
    }
    case 4: {
      uint32_t d;
      std::memcpy(&d, AData, 4);
      return AType->OrdType == otSLong ? static_cast<Int64>(static_cast<int32_t>(d)) : d;
    }
    default: {
      Int64 q;
      std::memcpy(&q, AData, 8);
      return q;
    }
  }
}

void WriteOrdinal(void* AData, const TTypeInfo* AType, Int64 AValue) {
  switch (AType->Ops->Size) {
    case 1: {
      // A bool must hold 0 or 1 only.
      auto b = static_cast<uint8_t>(AType->Kind == tkEnumeration && AType->MaxValue == 1 ? AValue != 0 : AValue);
      std::memcpy(AData, &b, 1);
      break;
    }
    case 2: {
      auto w = static_cast<uint16_t>(AValue);
      std::memcpy(AData, &w, 2);
      break;
    }
    case 4: {
      auto d = static_cast<uint32_t>(AValue);
      std::memcpy(AData, &d, 4);
      break;
    }
    default: std::memcpy(AData, &AValue, 8);
  }
}

bool OrdinalInRange(const TTypeInfo* AType, Int64 AValue) {
  if (AType->Kind == tkInt64) return true;
  return AValue >= AType->MinValue && AValue <= AType->MaxValue;
}

Extended ReadFloat(const void* AData, const TTypeInfo* AType) {
  switch (AType->FloatType) {
    case ftSingle: return *static_cast<const float*>(AData);
    case ftDouble: return *static_cast<const double*>(AData);
    case ftExtended: return *static_cast<const long double*>(AData);
    case ftComp: return static_cast<Extended>(*static_cast<const Int64*>(AData));
    case ftCurr: return static_cast<const Currency*>(AData)->ToExtended();
  }
  return 0;
}

bool WriteFloat(void* AData, const TTypeInfo* AType, Extended AValue) {
  switch (AType->FloatType) {
    case ftSingle: *static_cast<float*>(AData) = static_cast<float>(AValue); return true;
    case ftDouble: *static_cast<double*>(AData) = static_cast<double>(AValue); return true;
    case ftExtended: *static_cast<long double*>(AData) = AValue; return true;
    case ftComp:
      if (!(AValue >= -9.2233720368547758e18L && AValue < 9.2233720368547758e18L)) return false;
      *static_cast<Int64*>(AData) = static_cast<Int64>(AValue);
      return true;
    case ftCurr:
      try {
        *static_cast<Currency*>(AData) = Currency::FromDouble(AValue);
      } catch (const EInvalidOp&) {
        return false;
      }
      return true;
  }
  return false;
}

bool IsStringKind(TTypeKind AKind) {
  switch (AKind) {
    case tkChar: case tkWChar: case tkString: case tkLString: case tkWString: case tkUString: return true;
    default: return false;
  }
}

UnicodeString ReadString(const void* AData, const TTypeInfo* AType) {
  switch (AType->Kind) {
    case tkChar: return Latin1ToUnicode(std::string_view(static_cast<const char*>(AData), 1));
    case tkWChar: return UnicodeString(1, *static_cast<const char16_t*>(AData));
    case tkString: return Utf8ToUnicode(*static_cast<const ShortString*>(AData));
    case tkLString: return Utf8ToUnicode(*static_cast<const AnsiString*>(AData));
    default: {
      const BuiltinTypes& b = Builtins();
      if (AType == b.XMLString) return *static_cast<const VnXMLString*>(AData);
      if (AType == b.JSONString) return *static_cast<const VnJSONString*>(AData);
      return *static_cast<const UnicodeString*>(AData);
    }
  }
}

void WriteString(void* AData, const TTypeInfo* AType, const UnicodeString& AText) {
  switch (AType->Kind) {
    case tkString: static_cast<ShortString*>(AData)->assign(UnicodeToUtf8(AText)); break;
    case tkLString: static_cast<AnsiString*>(AData)->assign(UnicodeToUtf8(AText)); break;
    default: {
      const BuiltinTypes& b = Builtins();
      if (AType == b.XMLString)
        static_cast<VnXMLString*>(AData)->assign(AText);
      else if (AType == b.JSONString)
        static_cast<VnJSONString*>(AData)->assign(AText);
      else
        static_cast<UnicodeString*>(AData)->assign(AText);
    }
  }
}

}  // namespace detail
}  // namespace vn
