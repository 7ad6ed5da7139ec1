// Counts the bytes the test program asks of the heap: through the sanitizer's allocation hooks
// where it runs (so that malloc counts too), else through the executable's counting operator new
// (VN_TEST_COUNT_ALLOCATIONS, which a second replacement here would clash with at link time).
#include "alloc_counter.h"

#include <atomic>
#include <cstdlib>

#include "support/work_counter.h"

#if defined(__SANITIZE_ADDRESS__)
#define VNXML_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VNXML_TEST_ASAN 1
#endif
#endif

#ifdef VNXML_TEST_ASAN
// From the sanitizer's allocator interface, whose header isn't installed everywhere.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*AMalloc)(const volatile void*, size_t),
                                                         void (*AFree)(const volatile void*));

namespace {
std::atomic<size_t> gAllocatedBytes{0};
void OnMalloc(const volatile void*, size_t ASize) { gAllocatedBytes.fetch_add(ASize, std::memory_order_relaxed); }
void OnFree(const volatile void*) {}
const int gHooks = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);
}  // namespace

size_t vn::test::AllocatedBytes() { return gAllocatedBytes.load(std::memory_order_relaxed); }
#else
size_t vn::test::AllocatedBytes() { return HeapCounter().Bytes; }
#endif
