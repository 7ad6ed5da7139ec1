// domain_support.h: what the host types of the serializer tests share. VN_TEST_PUBLIC registers
// public fields under their own names, so that a type with many members lists each once:
// b VN_TEST_PUBLIC(TAll, I32, U32) is b.Public(u"I32", &TAll::I32).Public(u"U32", &TAll::U32).
#pragma once

#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "vnxml/serializer.h"

#define VN_TEST_PUBLIC(C, ...) __VA_OPT__(VN_TEST_EXPAND(VN_TEST_PUBLIC_ONE(C, __VA_ARGS__)))
#define VN_TEST_PUBLIC_ONE(C, M, ...) \
  .Public(u"" #M, &C::M) __VA_OPT__(VN_TEST_PUBLIC_AGAIN VN_TEST_PARENS(C, __VA_ARGS__))
#define VN_TEST_PUBLIC_AGAIN() VN_TEST_PUBLIC_ONE
#define VN_TEST_PARENS ()
// 64 rescans: up to 64 members in one list.
#define VN_TEST_EXPAND(...) VN_TEST_EXPAND3(VN_TEST_EXPAND3(VN_TEST_EXPAND3(VN_TEST_EXPAND3(__VA_ARGS__))))
#define VN_TEST_EXPAND3(...) VN_TEST_EXPAND2(VN_TEST_EXPAND2(VN_TEST_EXPAND2(VN_TEST_EXPAND2(__VA_ARGS__))))
#define VN_TEST_EXPAND2(...) VN_TEST_EXPAND1(VN_TEST_EXPAND1(VN_TEST_EXPAND1(VN_TEST_EXPAND1(__VA_ARGS__))))
#define VN_TEST_EXPAND1(...) __VA_ARGS__

namespace vn::test {

/// The text of AValue in AFormat, written with the serializer parameters given as (name, value).
inline std::string SerializeWith(TVnDataSerializationFormatType AFormat, const TValue& AValue,
                                 std::initializer_list<std::pair<const char16_t*, const char16_t*>> AParams) {
  IPtr<IVnSerializer> s = VnCreateSerializer(AFormat, AValue);
  for (auto [name, value] : AParams) s->SetParam(name, value);
  return s->Serialize();
}

/// Deletes owned members in the order given: objects, and the objects of lists.
template <class... T>
void DeleteAll(const T&... AMembers) {
  const auto deleteOwned = []<class M>(const M& AMember) {
    if constexpr (std::is_pointer_v<M>) delete AMember;
    else for (auto* object : AMember) delete object;
  };
  (deleteOwned(AMembers), ...);
}

/// Deletes the chain AHead starts, link by link: a long chain must not recurse in destructors.
template <class T>
void DeleteChain(T*& AHead, T* T::*ANext) {
  while (T* link = AHead) {
    AHead = link->*ANext;
    link->*ANext = nullptr;
    delete link;
  }
}

}  // namespace vn::test
