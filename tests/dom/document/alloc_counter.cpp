// Counts the bytes the test program asks of the heap: through the sanitizer's allocation hooks
// where it runs (so that malloc counts too), else through operator new alone.
#include "alloc_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define VNXML_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VNXML_TEST_ASAN 1
#endif
#endif

namespace {
std::atomic<size_t> gAllocatedBytes{0};
}  // namespace

size_t vn::test::AllocatedBytes() { return gAllocatedBytes.load(std::memory_order_relaxed); }

#ifdef VNXML_TEST_ASAN
// From the sanitizer's allocator interface, whose header isn't installed everywhere.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*AMalloc)(const volatile void*, size_t),
                                                         void (*AFree)(const volatile void*));

namespace {
void OnMalloc(const volatile void*, size_t ASize) { gAllocatedBytes.fetch_add(ASize, std::memory_order_relaxed); }
void OnFree(const volatile void*) {}
const int gHooks = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);
}  // namespace
#else
void* operator new(size_t ASize) {
  gAllocatedBytes.fetch_add(ASize, std::memory_order_relaxed);
  if (void* p = std::malloc(ASize ? ASize : 1)) return p;
  throw std::bad_alloc();
}
void operator delete(void* APtr) noexcept { std::free(APtr); }
void operator delete(void* APtr, size_t) noexcept { std::free(APtr); }
#endif
