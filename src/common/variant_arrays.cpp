// Variant arrays: creation, bounds, element access, redim and locking.
#include "common/variant_internal.h"

namespace vn {

using detail::VarArrayBound;
using detail::VarArrayData;

namespace {

const VarArrayData& ArrayOf(const Variant& A) {
  if (!VarIsArray(A)) detail::RaiseInvalidArg();
  return *A.RawArray();
}

/// The zero value a new element of the type starts with.
Variant InitialElement(TVarType AVarType) {
  switch (AVarType) {
    case varVariant: return Variant();
    case varOleStr: return Variant::FromOleStr({});
    case varDispatch: return Variant::FromDispatch({});
    case varUnknown: return Variant(IPtr<IInterface>());
    case varError: return Variant::FromError(0);
    default: return VarAsType(Variant(0), AVarType);
  }
}

/// Position of an element; the first dimension varies fastest, as the platform stores them.
size_t Offset(const VarArrayData& AData, std::span<const Integer> AIndices) {
  if (AIndices.size() != AData.Bounds.size()) detail::RaiseBadIndex();
  size_t offset = 0, stride = 1;
  for (size_t i = 0; i < AIndices.size(); ++i) {
    const VarArrayBound& b = AData.Bounds[i];
    Int64 at = Int64(AIndices[i]) - b.Low;
    if (at < 0 || at >= b.Count) detail::RaiseBadIndex();
    offset += static_cast<size_t>(at) * stride;
    stride *= static_cast<size_t>(b.Count);
  }
  return offset;
}

const VarArrayBound& BoundOf(const Variant& A, Integer ADim) {
  const VarArrayData& data = ArrayOf(A);
  if (ADim < 1 || static_cast<size_t>(ADim) > data.Bounds.size()) detail::RaiseBadIndex();
  return data.Bounds[static_cast<size_t>(ADim - 1)];
}

void Resize(VarArrayData& AData, size_t ACount) {
  if (AData.ElemType == varByte)
    AData.Bytes.resize(ACount);
  else
    AData.Items.resize(ACount, InitialElement(AData.ElemType));
}

// Bounds read from a document must not ask for more memory than an array may take: 1 GiB.
constexpr Int64 kMaxArrayBytes = Int64(1) << 30;

Int64 MaxElements(TVarType AElemType) {
  return kMaxArrayBytes / static_cast<Int64>(AElemType == varByte ? sizeof(Byte) : sizeof(Variant));
}

}  // namespace

Variant VarArrayCreate(std::initializer_list<Integer> ABounds, TVarType AVarType) {
  return VarArrayCreate(std::span<const Integer>(ABounds.begin(), ABounds.size()), AVarType);
}

Variant VarArrayCreate(std::span<const Integer> ABounds, TVarType AVarType) {
  if (ABounds.empty() || ABounds.size() % 2 != 0 || !VarTypeIsValidElementType(AVarType))
    detail::RaiseArrayCreate();
  auto* data = new VarArrayData;
  data->ElemType = AVarType;
  Variant result = Variant::AdoptArray(data);  // owns data from here on, also when raising
  Int64 count = 1;
  for (size_t i = 0; i < ABounds.size(); i += 2) {
    Int64 n = Int64(ABounds[i + 1]) - ABounds[i] + 1;
    if (n < 0) detail::RaiseArrayCreate();
    count *= n;
    if (count > MaxElements(AVarType)) detail::RaiseArrayCreate();
    data->Bounds.push_back({ABounds[i], static_cast<Integer>(n)});
  }
  Resize(*data, static_cast<size_t>(count));
  return result;
}

Variant VarArrayOf(std::initializer_list<Variant> AValues) {
  return VarArrayOf(std::span<const Variant>(AValues.begin(), AValues.size()));
}

Variant VarArrayOf(std::span<const Variant> AValues) {
  if (AValues.size() > static_cast<size_t>(MaxElements(varVariant))) detail::RaiseArrayCreate();
  auto* data = new VarArrayData;
  Variant result = Variant::AdoptArray(data);
  data->Bounds.push_back({0, static_cast<Integer>(AValues.size())});
  data->Items.assign(AValues.begin(), AValues.end());
  return result;
}

Variant VarArrayFromBytes(std::span<const Byte> ABytes) {
  if (ABytes.size() > static_cast<size_t>(MaxElements(varByte))) detail::RaiseArrayCreate();
  auto* data = new VarArrayData;
  data->ElemType = varByte;
  Variant result = Variant::AdoptArray(data);
  data->Bounds.push_back({0, static_cast<Integer>(ABytes.size())});
  data->Bytes.assign(ABytes.begin(), ABytes.end());
  return result;
}

Integer VarArrayDimCount(const Variant& A) noexcept {
  return VarIsArray(A) ? static_cast<Integer>(A.RawArray()->Bounds.size()) : 0;
}

Integer VarArrayLowBound(const Variant& A, Integer ADim) { return BoundOf(A, ADim).Low; }

Integer VarArrayHighBound(const Variant& A, Integer ADim) {
  const VarArrayBound& b = BoundOf(A, ADim);
  return static_cast<Integer>(Int64(b.Low) + b.Count - 1);
}

Variant VarArrayGet(const Variant& A, std::initializer_list<Integer> AIndices) {
  return VarArrayGet(A, std::span<const Integer>(AIndices.begin(), AIndices.size()));
}

Variant VarArrayGet(const Variant& A, std::span<const Integer> AIndices) {
  const VarArrayData& data = ArrayOf(A);
  size_t at = Offset(data, AIndices);
  return data.ElemType == varByte ? Variant(data.Bytes[at]) : data.Items[at];
}

void VarArrayPut(Variant& A, const Variant& AValue, std::initializer_list<Integer> AIndices) {
  VarArrayPut(A, AValue, std::span<const Integer>(AIndices.begin(), AIndices.size()));
}

void VarArrayPut(Variant& A, const Variant& AValue, std::span<const Integer> AIndices) {
  const VarArrayData& shared = ArrayOf(A);
  size_t at = Offset(shared, AIndices);
  // Convert before detaching, so a failed conversion leaves the array untouched.
  if (shared.ElemType == varByte) {
    Byte b = AValue.AsByte();
    A.UniqueArray()->Bytes[at] = b;
  } else if (shared.ElemType == varVariant) {
    Variant copy(AValue);
    A.UniqueArray()->Items[at] = std::move(copy);
  } else {
    Variant converted = VarAsType(AValue, shared.ElemType);
    A.UniqueArray()->Items[at] = std::move(converted);
  }
}

void VarArrayRedim(Variant& A, Integer AHighBound) {
  const VarArrayData& shared = ArrayOf(A);
  if (shared.Locks > 0) detail::RaiseArrayLocked();
  Int64 n = Int64(AHighBound) - shared.Bounds.back().Low + 1;
  if (n < 0) detail::RaiseArrayCreate();
  Int64 count = n;
  for (size_t i = 0; i + 1 < shared.Bounds.size(); ++i) count *= shared.Bounds[i].Count;
  if (count > MaxElements(shared.ElemType)) detail::RaiseArrayCreate();
  VarArrayData* data = A.UniqueArray();
  data->Bounds.back().Count = static_cast<Integer>(n);
  Resize(*data, static_cast<size_t>(count));
}

void* VarArrayLock(Variant& A) {
  ArrayOf(A);
  VarArrayData* data = A.UniqueArray();
  ++data->Locks;
  return data->ElemType == varByte ? static_cast<void*>(data->Bytes.data()) : data->Items.data();
}

void VarArrayUnlock(Variant& A) {
  if (ArrayOf(A).Locks == 0) detail::RaiseInvalidArg();
  --A.RawArray()->Locks;
}

std::span<Byte> VarArrayBytes(Variant& A) {
  if (A.VarType() != (varArray | varByte)) detail::RaiseInvalidArg();
  VarArrayData* data = A.UniqueArray();
  return data->Bytes;
}

std::span<const Byte> VarArrayBytes(const Variant& A) {
  if (A.VarType() != (varArray | varByte)) detail::RaiseInvalidArg();
  return A.RawArray()->Bytes;
}

TBytes VarArrayToBytes(const Variant& A) {
  std::span<const Byte> bytes = VarArrayBytes(A);
  return TBytes(bytes.begin(), bytes.end());
}

// ---- one-dimensional shortcuts ----

Variant Variant::GetItem(Integer AIndex) const { return VarArrayGet(*this, {AIndex}); }

void Variant::SetItem(Integer AIndex, const Variant& AValue) { VarArrayPut(*this, AValue, {AIndex}); }

}  // namespace vn
