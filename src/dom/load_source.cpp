// LoadSource: where the text of a load stands, and what a document reads of it before parsing.
#include "dom/load_source.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "internal/huge_pages.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/vn_streams.h"
#include "xml/declared_encoding.h"

namespace vn::detail {

namespace {
constexpr size_t kReadBlock = size_t(1) << 20;

size_t UnitSize(Word ACodePage) {
  switch (ACodePage) {
    case cVnCodePageUTF16LE:
    case cVnCodePageUTF16BE: return 2;
    case cVnCodePageUTF32LE:
    case cVnCodePageUTF32BE: return 4;
    default: return 1;
  }
}

// The value of the unit at AAt; a big-endian unit is read as such.
uint32_t UnitAt(const Byte* AAt, size_t AUnit, bool ABigEndian) {
  uint32_t v = 0;
  for (size_t i = 0; i < AUnit; ++i) v |= uint32_t(AAt[ABigEndian ? AUnit - 1 - i : i]) << (8 * i);
  return v;
}
}  // namespace

LoadSource::LoadSource(TStream& AStream) {
  if (auto* mem = CastObject<TCustomMemoryStream>(&AStream)) {
    Int64 pos = std::clamp<Int64>(mem->GetPosition(), 0, mem->GetSize());
    FData = static_cast<const Byte*>(mem->GetMemory()) + pos;
    FSize = static_cast<size_t>(mem->GetSize() - pos);
    return;
  }
  // Sized by what the stream says is left; grown only for a stream that doesn't know its size.
  Own(static_cast<size_t>(std::max<Int64>(AStream.GetSize() - AStream.GetPosition(), 0)) + 1);
  size_t have = 0;
  for (;;) {
    if (have == FOwnedSize) {
      Byte* old = FOwned;
      const size_t oldSize = FOwnedSize;
      const bool oldHuge = FOwnedHuge;
      FOwned = nullptr;
      try {
        Own(oldSize * 2 + kReadBlock);
      } catch (...) {
        FOwned = old, FOwnedSize = oldSize, FOwnedHuge = oldHuge;
        throw;
      }
      std::memcpy(FOwned, old, have);
      if (oldHuge)
        UnmapHugeBlock(old, oldSize);
      else
        delete[] old;
    }
    Int64 got = AStream.Read(FOwned + have, static_cast<Int64>(std::min(FOwnedSize - have, kReadBlock)));
    if (got <= 0) break;
    have += static_cast<size_t>(got);
  }
  FData = FOwned;
  FSize = have;
}

LoadSource::~LoadSource() {
  if (FOwnedHuge)
    UnmapHugeBlock(FOwned, FOwnedSize);
  else
    delete[] FOwned;
}

void LoadSource::Own(size_t ASize) {
  FOwnedHuge = false;
  if (ASize >= kHugePage && (FOwned = static_cast<Byte*>(MapHugeBlock(ASize)))) {
    FOwnedHuge = true;
  } else {
    FOwned = new Byte[ASize];
  }
  FOwnedSize = ASize;
}

Word LoadSource::DetectCodePage() {
  TVnMemoryStream view(FData, static_cast<Int64>(FSize));
  Word codePage = VnGetCodePage(&view);
  const auto mark = static_cast<size_t>(view.GetPosition());
  FData += mark;
  FSize -= mark;
  if (codePage) return codePage;
  std::string_view text(reinterpret_cast<const char*>(FData), FSize);
  while (!text.empty() && static_cast<unsigned char>(text.front()) <= 32) text.remove_prefix(1);
  UnicodeString name = DeclaredEncoding(text, DeclarationRule::FirstTag);
  return name.empty() ? Word(0) : VnCodePage(name);
}

void LoadSource::SkipBlanks(Word ACodePage) {
  const size_t unit = UnitSize(ACodePage);
  const bool bigEndian = ACodePage == cVnCodePageUTF16BE || ACodePage == cVnCodePageUTF32BE;
  size_t at = 0;
  while (at + unit <= FSize && UnitAt(FData + at, unit, bigEndian) <= 32) at += unit;
  FData += at;
  FSize -= at;
}

}  // namespace vn::detail
