// MapHugeBlock: anonymous mappings aligned to a huge page and advised to use them.
#include "internal/huge_pages.h"

#include <sys/mman.h>

#include <cstdint>

#if defined(__SANITIZE_ADDRESS__)
#define VNXML_HUGE_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VNXML_HUGE_ASAN 1
#endif
#endif

namespace vn::detail {

namespace {
size_t Rounded(size_t ASize) { return (ASize + kHugePage - 1) & ~(kHugePage - 1); }
}  // namespace

void* MapHugeBlock([[maybe_unused]] size_t ASize) noexcept {
#ifdef VNXML_HUGE_ASAN
  return nullptr;
#else
  const size_t size = Rounded(ASize);
  if (size < ASize) return nullptr;
  // Map one huge page more than needed and cut the ends away: mmap aligns to 4 KB only.
  void* raw = mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) return nullptr;
  const auto start = reinterpret_cast<uintptr_t>(raw);
  const uintptr_t aligned = (start + kHugePage - 1) & ~(kHugePage - 1);
  if (aligned > start) munmap(raw, aligned - start);
  const uintptr_t tail = start + size + kHugePage - (aligned + size);
  if (tail) munmap(reinterpret_cast<void*>(aligned + size), tail);
#ifdef MADV_HUGEPAGE
  madvise(reinterpret_cast<void*>(aligned), size, MADV_HUGEPAGE);
#endif
  return reinterpret_cast<void*>(aligned);
#endif
}

void UnmapHugeBlock(void* ABlock, size_t ASize) noexcept {
  if (ABlock) munmap(ABlock, Rounded(ASize));
}

}  // namespace vn::detail
