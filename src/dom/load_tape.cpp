// LoadTape: records written front to back in blocks that never move.
#include "dom/load_tape.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "vnxml/dom_storage.h"

namespace vn::detail {

namespace {

constexpr size_t kFirstBlock = size_t{4} << 10;
constexpr size_t kBlock = size_t{1} << 20;

}  // namespace

LoadTape::~LoadTape() {
  for (const Block& b : FBlocks) std::free(b.Start);
}

size_t LoadTape::PayloadOffset(Kind AKind) noexcept {
  switch (AKind) {
    case kAttr:
    case kAttrUtf8:
    case kInstruction:
      return sizeof(Named);
    default:
      return sizeof(Head);
  }
}

void LoadTape::TooLong() { throw std::bad_alloc(); }

char* LoadTape::ReserveInNewBlock(size_t ABytes) {
  // small loads take small blocks; big ones get to kBlock soon
  const size_t grown = FBlocks.empty() ? kFirstBlock : std::min(kBlock, FBlocks.back().Size * 2);
  const size_t size = std::max(grown, ABytes + kJumpBytes);
  char* block = static_cast<char*>(std::malloc(size));
  if (!block) throw std::bad_alloc();
  try {
    FBlocks.push_back({block, size});
  } catch (...) {
    std::free(block);
    throw;
  }
  if (FNext) {
    auto* jump = reinterpret_cast<Head*>(FNext);
    jump->Word = kJump;
    std::memcpy(FNext + sizeof(Head), &block, sizeof(char*));
  }
  FNext = block + ABytes;
  FEnd = block + size;
  reinterpret_cast<Head*>(FNext)->Word = 0;
  return block;
}

void LoadTape::AddAttr(const NameRec* AName, std::u16string_view AValue, bool AMayHoldQuote) {
  const size_t bytes = AValue.size() * sizeof(char16_t);
  char* p = AddHead(kAttr, AMayHoldQuote ? kMayHoldQuote : 0, AValue.size(), sizeof(Named), bytes);
  reinterpret_cast<Named*>(p)->Name = AName;
  if (bytes) std::memcpy(p + sizeof(Named), AValue.data(), bytes);
}

void LoadTape::AddText(Kind AKind, std::u16string_view AValue) {
  const size_t bytes = AValue.size() * sizeof(char16_t);
  char* p = AddHead(AKind, 0, AValue.size(), sizeof(Head), bytes);
  if (bytes) std::memcpy(p + sizeof(Head), AValue.data(), bytes);
}

void LoadTape::AddInstruction(const NameRec* ATarget, std::u16string_view AData) {
  const size_t bytes = AData.size() * sizeof(char16_t);
  char* p = AddHead(kInstruction, 0, AData.size(), sizeof(Named), bytes);
  reinterpret_cast<Named*>(p)->Name = ATarget;
  if (bytes) std::memcpy(p + sizeof(Named), AData.data(), bytes);
}

void LoadTape::Truncate(const char* APosition) noexcept {
  while (!FBlocks.empty()) {
    Block& b = FBlocks.back();
    if (APosition >= b.Start && APosition <= b.Start + b.Size) {
      FNext = const_cast<char*>(APosition);
      FEnd = b.Start + b.Size;
      reinterpret_cast<Head*>(FNext)->Word = 0;
      return;
    }
    std::free(b.Start);
    FBlocks.pop_back();
  }
}

std::u16string_view LoadTape::Units(const Head* ARec) noexcept {
  return {reinterpret_cast<const char16_t*>(reinterpret_cast<const char*>(ARec) + PayloadOffset(ARec->GetKind())),
          ARec->Length()};
}

std::string_view LoadTape::Bytes(const Head* ARec) noexcept {
  return {reinterpret_cast<const char*>(ARec) + PayloadOffset(ARec->GetKind()), ARec->Length()};
}

std::u16string_view LoadTape::NameOf(const Head* ARec) noexcept {
  const NameRec* rec =
      ARec->GetKind() == kBegin ? reinterpret_cast<const Begin*>(ARec)->Name : reinterpret_cast<const Named*>(ARec)->Name;
  return rec ? std::u16string_view(rec->Chars, rec->Length) : std::u16string_view();
}

}  // namespace vn::detail
