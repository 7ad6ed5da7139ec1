// work_counter.h: counts the heap work of a piece of code, so that tests of hostile shapes compare
// two sizes by work done instead of by a clock (which flakes under sanitizers on a busy machine).
// One file of a test executable says VN_TEST_COUNT_ALLOCATIONS() at namespace scope; it replaces
// the global operator new and delete of that executable.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>

#include <gtest/gtest.h>

namespace vn::test {

struct HeapWork {
  size_t Calls = 0;
  size_t Bytes = 0;
};

inline HeapWork& HeapCounter() {
  static HeapWork counter;
  return counter;
}

/// The allocations (count and bytes, freed ones included) that ARun makes.
inline HeapWork CountHeapWork(const std::function<void()>& ARun) {
  const HeapWork before = HeapCounter();
  ARun();
  return {HeapCounter().Calls - before.Calls, HeapCounter().Bytes - before.Bytes};
}

/// Doubling the input may at most double the work, with some slack for fixed costs and growth
/// steps; a quadratic step shows as a factor near four.
inline void ExpectLinearWork(const std::function<void(size_t)>& ARun, size_t AN) {
  const HeapWork small = CountHeapWork([&] { ARun(AN); });
  const HeapWork large = CountHeapWork([&] { ARun(AN * 2); });
  ASSERT_GT(small.Calls, 0u) << "no allocation counted: VN_TEST_COUNT_ALLOCATIONS() missing";
  EXPECT_LE(large.Calls, small.Calls * 5 / 2 + 16) << "allocations for n and 2n";
  EXPECT_LE(large.Bytes, small.Bytes * 5 / 2 + 4096) << "bytes allocated for n and 2n";
}

}  // namespace vn::test

#define VN_TEST_COUNT_ALLOCATIONS()                                              \
  void* operator new(std::size_t ASize) {                                        \
    ++vn::test::HeapCounter().Calls;                                             \
    vn::test::HeapCounter().Bytes += ASize;                                      \
    if (void* p = std::malloc(ASize ? ASize : 1)) return p;                      \
    throw std::bad_alloc();                                                      \
  }                                                                              \
  void* operator new[](std::size_t ASize) { return operator new(ASize); }        \
  void operator delete(void* APtr) noexcept { std::free(APtr); }                 \
  void operator delete[](void* APtr) noexcept { std::free(APtr); }               \
  void operator delete(void* APtr, std::size_t) noexcept { std::free(APtr); }    \
  void operator delete[](void* APtr, std::size_t) noexcept { std::free(APtr); }
