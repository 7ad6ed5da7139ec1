// TVnUTF8StreamAdapter: UTF-16LE on this side, UTF-8 in the wrapped stream, in blocks, with
// characters split across calls carried over.
#include <algorithm>
#include <cstring>

#include "vnxml/common/encoding.h"
#include "vnxml/common/vn_streams.h"

namespace vn {

namespace {

constexpr size_t cBlockUnits = 32 * 1024;
constexpr Int64 cReadBlock = 64 * 1024;

inline char16_t UnitAt(const char* ABytes) {
  char16_t unit;
  std::memcpy(&unit, ABytes, 2);
  return unit;
}
inline bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
inline bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void WriteUtf8(TStream* AStream, std::u16string_view AUnits) {
  const RawByteString bytes = TVnEncoding::ConvertW(AUnits, cVnCodePageUTF8);
  AStream->WriteBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
}

}  // namespace

TVnUTF8StreamAdapter::TVnUTF8StreamAdapter(TStream* AStream, bool AWriteBOM, bool AOwnsStream)
    : FStream(AStream), FOwnsStream(AOwnsStream) {
  if (AWriteBOM) FStream->WriteBuffer(cVnUTF8.data(), static_cast<Int64>(cVnUTF8.size()));
}

TVnUTF8StreamAdapter::~TVnUTF8StreamAdapter() {
  try {
    Flush();
  } catch (...) {
    // A destructor can't report a failed write; Flush first to see it.
  }
  if (FOwnsStream) delete FStream;
}

void TVnUTF8StreamAdapter::Flush() {
  if (FPendingIn.empty()) return;
  UnicodeString units;
  if (FPendingIn.size() >= 2) units.push_back(UnitAt(FPendingIn.data()));
  if (FPendingIn.size() % 2) units.push_back(u'\uFFFD');  // half a code unit can't be decoded
  FPendingIn.clear();
  WriteUtf8(FStream, units);
}

Int64 TVnUTF8StreamAdapter::Write(const void* ABuffer, Int64 ACount) {
  if (ACount <= 0) return 0;
  const auto* p = static_cast<const char*>(ABuffer);
  const char* end = p + ACount;
  FPosition += ACount;

  // Finish what the last call left: a half unit, or a high surrogate waiting for its pair.
  while (!FPendingIn.empty()) {
    const size_t need = FPendingIn.size() >= 2 && IsHighSurrogate(UnitAt(FPendingIn.data())) ? 4 : 2;
    while (FPendingIn.size() < need && p < end) FPendingIn.push_back(*p++);
    if (FPendingIn.size() < need) return ACount;
    if (need == 2 && IsHighSurrogate(UnitAt(FPendingIn.data()))) continue;  // now wants its pair
    const char16_t first = UnitAt(FPendingIn.data());
    if (need == 4 && !IsLowSurrogate(UnitAt(FPendingIn.data() + 2))) {
      WriteUtf8(FStream, std::u16string_view(&first, 1));  // a lone surrogate: U+FFFD
      FPendingIn.erase(0, 2);  // the second unit starts over
      continue;
    }
    const char16_t pair[2] = {first, need == 4 ? UnitAt(FPendingIn.data() + 2) : u'\0'};
    WriteUtf8(FStream, std::u16string_view(pair, need / 2));
    FPendingIn.clear();
  }

  UnicodeString units;
  while (end - p >= 2) {
    const size_t n = std::min(cBlockUnits, static_cast<size_t>(end - p) / 2);
    units.resize(n);
    std::memcpy(units.data(), p, n * 2);  // p may be odd-aligned
    p += n * 2;
    // A high surrogate at the end of the block may pair with the next unit, here or later.
    if (IsHighSurrogate(units.back())) {
      p -= 2;
      units.pop_back();
      if (units.empty()) break;
    }
    WriteUtf8(FStream, units);
  }
  FPendingIn.assign(p, end);
  return ACount;
}

Int64 TVnUTF8StreamAdapter::Read(void* ABuffer, Int64 ACount) {
  auto* out = static_cast<char*>(ABuffer);
  Int64 done = 0;
  while (done < ACount) {
    const size_t available = FDecoded.size() * 2 - FDecodedPos;
    if (available > 0) {
      const size_t n = std::min(available, static_cast<size_t>(ACount - done));
      std::memcpy(out + done, reinterpret_cast<const char*>(FDecoded.data()) + FDecodedPos, n);
      FDecodedPos += n;
      done += static_cast<Int64>(n);
      continue;
    }
    if (FInnerAtEnd) break;
    const size_t old = FReadBytes.size();
    FReadBytes.resize(old + cReadBlock);
    const Int64 got = FStream->Read(FReadBytes.data() + old, cReadBlock);
    FReadBytes.resize(old + static_cast<size_t>(std::max<Int64>(got, 0)));
    if (got <= 0) FInnerAtEnd = true;
    // Decode whole characters only, unless the inner stream has ended.
    const size_t complete = FInnerAtEnd ? FReadBytes.size() : detail::Utf8CompletePrefix(FReadBytes);
    FDecoded.clear();
    FDecodedPos = 0;
    detail::AppendUtf8AsUtf16(std::string_view(FReadBytes.data(), complete), FDecoded);
    FReadBytes.erase(0, complete);
  }
  FPosition += done;
  return done;
}

Int64 TVnUTF8StreamAdapter::Seek(Int64 AOffset, TSeekOrigin AOrigin) {
  if ((AOrigin == soCurrent && AOffset == 0) || (AOrigin == soBeginning && AOffset == FPosition)) return FPosition;
  throw EStreamError(u"Invalid stream operation");
}

}  // namespace vn
