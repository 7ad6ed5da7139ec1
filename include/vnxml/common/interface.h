// interface.h: IInterface, the counted interface root, and IPtr<I>, its smart pointer.
// Counts are exact: IPtr adds a reference on copy and releases on destruction, nothing more.
#pragma once

#include <cstddef>
#include <utility>

#include "vnxml/common/guid.h"

namespace vn {

using HRESULT = int32_t;
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);

struct IInterface {
  static constexpr TGUID IID = TGUID::Parse("00000000-0000-0000-C000-000000000046");
  virtual HRESULT QueryInterface(const TGUID& AIID, void** AObj) = 0;
  virtual int32_t _AddRef() = 0;
  virtual int32_t _Release() = 0;

 protected:
  ~IInterface() = default;
};

/// Intrusive pointer to a counted interface.
template <class I>
class IPtr {
 public:
  IPtr() noexcept = default;
  IPtr(std::nullptr_t) noexcept {}
  /// Takes a new reference to AIntf.
  IPtr(I* AIntf) noexcept : FIntf(AIntf) {
    if (FIntf) FIntf->_AddRef();
  }
  IPtr(const IPtr& AOther) noexcept : IPtr(AOther.FIntf) {}
  IPtr(IPtr&& AOther) noexcept : FIntf(std::exchange(AOther.FIntf, nullptr)) {}
  template <class J>
    requires std::is_convertible_v<J*, I*>
  IPtr(const IPtr<J>& AOther) noexcept : IPtr(static_cast<I*>(AOther.Get())) {}
  ~IPtr() { Reset(); }

  IPtr& operator=(const IPtr& AOther) noexcept {
    IPtr(AOther).Swap(*this);
    return *this;
  }
  IPtr& operator=(IPtr&& AOther) noexcept {
    IPtr(std::move(AOther)).Swap(*this);
    return *this;
  }
  IPtr& operator=(std::nullptr_t) noexcept {
    Reset();
    return *this;
  }

  void Reset() noexcept {
    if (I* p = std::exchange(FIntf, nullptr)) p->_Release();
  }
  void Swap(IPtr& AOther) noexcept { std::swap(FIntf, AOther.FIntf); }
  /// Adopts an interface whose reference the caller already holds.
  static IPtr Attach(I* AIntf) noexcept {
    IPtr p;
    p.FIntf = AIntf;
    return p;
  }
  /// Gives up the reference without releasing it.
  I* Detach() noexcept { return std::exchange(FIntf, nullptr); }

  I* Get() const noexcept { return FIntf; }
  I* operator->() const noexcept { return FIntf; }
  I& operator*() const noexcept { return *FIntf; }
  explicit operator bool() const noexcept { return FIntf != nullptr; }
  friend bool operator==(const IPtr& a, const IPtr& b) noexcept { return a.FIntf == b.FIntf; }
  friend bool operator==(const IPtr& a, std::nullptr_t) noexcept { return a.FIntf == nullptr; }

  /// QueryInterface for J; empty when the object doesn't implement it.
  template <class J>
  IPtr<J> As() const {
    IPtr<J> result;
    if (FIntf) {
      void* obj = nullptr;
      if (FIntf->QueryInterface(J::IID, &obj) == S_OK && obj) result = IPtr<J>::Attach(static_cast<J*>(obj));
    }
    return result;
  }

 private:
  I* FIntf = nullptr;
};

/// True, with AResult set, when AIntf implements J.
template <class I, class J>
bool Supports(const IPtr<I>& AIntf, IPtr<J>& AResult) {
  AResult = AIntf.template As<J>();
  return static_cast<bool>(AResult);
}
template <class J, class I>
bool Supports(const IPtr<I>& AIntf) {
  return static_cast<bool>(AIntf.template As<J>());
}

namespace detail {
/// QueryInterface over the interfaces Is... of an object; the first also answers IInterface.
template <class First, class... Rest, class Self>
HRESULT QueryInterfaces(Self* ASelf, const TGUID& AIID, void** AObj) {
  void* found = nullptr;
  if (AIID == First::IID || AIID == IInterface::IID) {
    found = static_cast<First*>(ASelf);
  } else {
    [[maybe_unused]] auto tryOne = [&]<class J>(J*) {
      if (!found && AIID == J::IID) found = static_cast<J*>(ASelf);
    };
    (tryOne(static_cast<Rest*>(nullptr)), ...);
  }
  if (!found) {
    *AObj = nullptr;
    return E_NOINTERFACE;
  }
  static_cast<First*>(ASelf)->_AddRef();
  *AObj = found;
  return S_OK;
}
}  // namespace detail

}  // namespace vn
