// TStream and the memory streams: block copies, geometric growth, the platform's error texts.
#include "vnxml/common/stream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "vnxml/common/encoding.h"

namespace vn {

// ---- TStream ----

Int64 TStream::GetSize() {
  const Int64 pos = Seek(0, soCurrent);
  const Int64 size = Seek(0, soEnd);
  Seek(pos, soBeginning);
  return size;
}

void TStream::SetSize(Int64) {}

void TStream::ReadBuffer(void* ABuffer, Int64 ACount) {
  auto* p = static_cast<char*>(ABuffer);
  // A stream may return fewer bytes than asked before its end (pipes, adapters): keep asking.
  while (ACount > 0) {
    const Int64 n = Read(p, ACount);
    if (n <= 0) throw EReadError(UnicodeString(cSReadError));
    p += n;
    ACount -= n;
  }
}

void TStream::WriteBuffer(const void* ABuffer, Int64 ACount) {
  const auto* p = static_cast<const char*>(ABuffer);
  while (ACount > 0) {
    const Int64 n = Write(p, ACount);
    if (n <= 0) throw EWriteError(UnicodeString(cSWriteError));
    p += n;
    ACount -= n;
  }
}

Int64 TStream::CopyFrom(TStream* ASource, Int64 ACount, Int64 ABufferSize) {
  constexpr Int64 cDefaultBlock = 1 << 20;
  if (ACount <= 0) {
    ASource->SetPosition(0);
    ACount = ASource->GetSize();
  }
  // Memory sources are copied straight from their block.
  if (auto* mem = CastObject<TCustomMemoryStream>(ASource)) {
    const Int64 pos = mem->GetPosition();
    if (pos + ACount > mem->GetSize()) throw EReadError(UnicodeString(cSReadError));
    WriteBuffer(static_cast<const char*>(mem->GetMemory()) + pos, ACount);
    mem->Seek(ACount, soCurrent);
    return ACount;
  }
  const Int64 block = std::min(ACount, ABufferSize > 0 ? ABufferSize : cDefaultBlock);
  std::unique_ptr<char[]> buffer(new char[static_cast<size_t>(std::max<Int64>(block, 1))]);
  Int64 left = ACount;
  while (left > 0) {
    const Int64 n = std::min(left, block);
    ASource->ReadBuffer(buffer.get(), n);
    WriteBuffer(buffer.get(), n);
    left -= n;
  }
  return ACount;
}

// ---- TCustomMemoryStream ----

Int64 TCustomMemoryStream::Read(void* ABuffer, Int64 ACount) {
  if (ACount <= 0 || FPosition >= FSize) return 0;
  const Int64 n = std::min(ACount, FSize - FPosition);
  std::memcpy(ABuffer, static_cast<const char*>(FMemory) + FPosition, static_cast<size_t>(n));
  FPosition += n;
  return n;
}

Int64 TCustomMemoryStream::Seek(Int64 AOffset, TSeekOrigin AOrigin) {
  switch (AOrigin) {
    case soBeginning: FPosition = AOffset; break;
    case soCurrent: FPosition += AOffset; break;
    case soEnd: FPosition = FSize + AOffset; break;
  }
  // Before the start is meaningless; past the end is allowed, as the platform allows it.
  if (FPosition < 0) FPosition = 0;
  return FPosition;
}

void TCustomMemoryStream::SaveToStream(TStream* AStream) {
  if (FSize > 0) AStream->WriteBuffer(FMemory, FSize);
}

void TCustomMemoryStream::SaveToFile(std::u16string_view AFileName) {
  TFileStream file(AFileName, fmCreate);
  SaveToStream(&file);
}

// ---- TMemoryStream ----

TMemoryStream::~TMemoryStream() { ReleaseMemory(); }

void TMemoryStream::ReleaseMemory() {
  if (FOwnsMemory) std::free(GetMemory());
  SetPointer(nullptr, 0);
  FCapacity = 0;
  FOwnsMemory = true;
}

void TMemoryStream::SetForeignMemory(const void* AMemory, Int64 ASize) {
  ReleaseMemory();
  // The block stays const: only the owned mode ever writes through this pointer.
  SetPointer(const_cast<void*>(AMemory), ASize);
  FCapacity = ASize;
  FOwnsMemory = false;
  FPosition = 0;
}

void TMemoryStream::SetCapacity(Int64 ANewCapacity) {
  if (!FOwnsMemory) throw EStreamError(UnicodeString(cSWriteError));
  ANewCapacity = std::max(ANewCapacity, GetSize());
  if (ANewCapacity == FCapacity) return;
  void* block = ANewCapacity == 0 ? nullptr : std::realloc(GetMemory(), static_cast<size_t>(ANewCapacity));
  if (ANewCapacity == 0) std::free(GetMemory());
  if (ANewCapacity != 0 && !block) throw EOutOfMemory(UnicodeString(cSMemoryStreamError));
  FCapacity = ANewCapacity;
  SetPointer(block, GetSize());
}

void TMemoryStream::EnsureSize(Int64 ANewSize) {
  if (ANewSize < 0) throw EStreamError(UnicodeString(cSWriteError));
  if (ANewSize > FCapacity) {
    // Grow by half again, in whole 8 KiB pages, so that appends stay amortised O(1).
    Int64 grown = std::max(ANewSize, FCapacity + FCapacity / 2);
    grown = (grown + 0x1FFF) & ~Int64{0x1FFF};
    SetCapacity(grown);
  }
  SetPointer(GetMemory(), ANewSize);
}

void TMemoryStream::SetSize(Int64 ANewSize) {
  if (!FOwnsMemory) throw EStreamError(UnicodeString(cSWriteError));
  EnsureSize(ANewSize);
  if (FPosition > ANewSize) FPosition = ANewSize;
}

Int64 TMemoryStream::Write(const void* ABuffer, Int64 ACount) {
  if (ACount <= 0 || !FOwnsMemory) return 0;
  const Int64 end = FPosition + ACount;
  if (end > GetSize()) {
    const Int64 oldSize = GetSize();
    EnsureSize(end);
    // A write after a seek past the end leaves no undefined bytes behind.
    if (FPosition > oldSize) std::memset(static_cast<char*>(GetMemory()) + oldSize, 0, static_cast<size_t>(FPosition - oldSize));
  }
  std::memcpy(static_cast<char*>(GetMemory()) + FPosition, ABuffer, static_cast<size_t>(ACount));
  FPosition = end;
  return ACount;
}

void TMemoryStream::Clear() {
  ReleaseMemory();
  FPosition = 0;
}

void TMemoryStream::LoadFromStream(TStream* AStream) {
  AStream->SetPosition(0);
  const Int64 size = AStream->GetSize();
  if (!FOwnsMemory) ReleaseMemory();
  SetSize(size);
  if (size > 0) AStream->ReadBuffer(GetMemory(), size);
  FPosition = 0;
}

void TMemoryStream::LoadFromFile(std::u16string_view AFileName) {
  TFileStream file(AFileName, fmOpenRead | fmShareDenyWrite);
  LoadFromStream(&file);
}

// ---- TBytesStream ----

TBytesStream::TBytesStream(const TBytes& ABytes) {
  if (!ABytes.empty()) WriteBuffer(ABytes.data(), static_cast<Int64>(ABytes.size()));
  FPosition = 0;
}

TBytes TBytesStream::GetBytes() const {
  const auto* p = static_cast<const uint8_t*>(GetMemory());
  return TBytes(p, p + GetMemorySize());
}

}  // namespace vn
