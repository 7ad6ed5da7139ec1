// huge_pages.h: large blocks of a load on huge pages where the system gives them. A fresh page
// costs a fault on first touch, and on these machines the faults of a large load cost more than
// the load itself; a 2 MB page takes one fault where 4 KB pages take 512.
#pragma once

#include <cstddef>

namespace vn::detail {

inline constexpr size_t kHugePage = size_t(2) << 20;

/// ASize bytes rounded up to whole huge pages, aligned to one, zero-filled; nullptr when the
/// system refuses (the caller then takes ordinary memory). Under the address sanitizer always
/// nullptr, so that the sanitizer sees every block.
void* MapHugeBlock(size_t ASize) noexcept;
/// Gives back a block of MapHugeBlock with the size it was asked for.
void UnmapHugeBlock(void* ABlock, size_t ASize) noexcept;

}  // namespace vn::detail
