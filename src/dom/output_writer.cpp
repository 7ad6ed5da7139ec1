// The XML writer's output: in-place writing into memory streams, block writes to the others,
// and the conversion of pieces for code pages other than UTF-8 and UTF-16.
#include "output_writer.h"

#include <algorithm>
#include <typeinfo>

#include "vnxml/common/vn_streams.h"

namespace vn::detail {

namespace {

constexpr size_t cBufferSize = 64 * 1024;
// The least room taken in a memory stream's block at a time; growth is geometric above it.
constexpr Int64 cMinRoom = 8 * 1024;

// The memory streams whose writes only copy into their block, by exact dynamic class: a
// subclass may do more in Write (count, mirror, refuse), so it gets its bytes through Write.
TMemoryStream* PlainMemoryStream(TStream& AStream) {
  const std::type_info& type = typeid(AStream);
  if (type == typeid(TVnStringStream) || type == typeid(TVnMemoryStream))
    return static_cast<TVnMemoryStream&>(AStream).IsReadOnly() ? nullptr : &static_cast<TMemoryStream&>(AStream);
  if (type == typeid(TMemoryStream) || type == typeid(TBytesStream) || type == typeid(TStringStream))
    return &static_cast<TMemoryStream&>(AStream);
  return nullptr;
}

}  // namespace

// ---- OutputSink ----

OutputSink::~OutputSink() = default;

bool OutputSink::AttachInPlace(size_t ABytes) {
  TMemoryStream* memory = PlainMemoryStream(FStream);
  if (!memory) return false;
  const Int64 size = memory->GetSize();
  // Writing inside the content or behind a seek past the end is left to Write.
  if (memory->GetPosition() != size) return false;
  const Int64 needed = size + static_cast<Int64>(ABytes);
  const Int64 capacity = memory->GetCapacity();
  if (needed > capacity) memory->SetCapacity(std::max({needed, capacity + capacity / 2, size + cMinRoom}));
  char* block = static_cast<char*>(memory->GetMemory());
  FMemory = memory;
  FStart = FCursor = block + size;
  FEnd = block + memory->GetCapacity();
  FBase = size;
  return true;
}

void OutputSink::AttachBuffer(size_t ABytes) {
  if (FBufferSize < ABytes || !FBuffer) {
    // A piece longer than the buffer gets a buffer of its size: pieces are never split.
    FBufferSize = std::max(ABytes, cBufferSize);
    FBuffer = std::make_unique<char[]>(FBufferSize);
  }
  FStart = FCursor = FBuffer.get();
  FEnd = FStart + FBufferSize;
}

void OutputSink::MakeRoom(size_t ABytes) {
  Flush();
  if (FMode != Mode::Buffered && AttachInPlace(ABytes)) {
    FMode = Mode::InPlace;
    return;
  }
  FMode = Mode::Buffered;
  FMemory = nullptr;
  AttachBuffer(ABytes);
}

void OutputSink::Flush() {
  if (FCursor == FStart) return;
  const Int64 count = FCursor - FStart;
  if (FMode == Mode::InPlace) {
    // The bytes are in the block already: the stream only learns its new size.
    FMemory->SetSize(FBase + count);
    FMemory->SetPosition(FBase + count);
  } else {
    FStream.WriteBuffer(FStart, count);
  }
  if (FBase >= 0) FBase += count;
  FStart = FCursor;
}

void OutputSink::Resync() noexcept {
  FMode = Mode::Undecided;
  FMemory = nullptr;
  FStart = FCursor = FEnd = nullptr;
  FBase = -1;
}

Int64 OutputSink::Position() {
  if (FBase < 0) {
    Flush();
    FBase = FStream.GetPosition();
  }
  return FBase + (FCursor - FStart);
}

// ---- ConvertingOutput ----

void ConvertingOutput::Text(std::u16string_view AText) {
  if (AText.empty()) return;
  if (!FEncoding) FEncoding = TVnEncoding::GetEncoding(FCodePage);
  FBytes.clear();
  FEncoding->AppendBytes(AText, FBytes);
  Put(FBytes.data(), FBytes.size());
}

void ConvertingOutput::Ascii(std::string_view AText) {
  FWide.assign(AText.begin(), AText.end());
  Text(FWide);
}

void ConvertingOutput::Indent(size_t ACopies) {
  for (size_t i = 0; i < ACopies; ++i) Text(u"  ");
}

}  // namespace vn::detail
