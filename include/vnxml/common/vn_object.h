// vn_object.h: TVnObject and IVnObject, the counted base objects of the library (unit rVnCommon).
// A TVnObject frees itself when its interface count falls to 0, unless SetAutoDestroy(false)
// made it a plain object that its creator frees. Implementor() turns an interface back into
// the object behind it. TVnObjectEx adds Assign/AssignTo (EConvertError "Cannot assign a %s to a %s").
#pragma once

#include "vnxml/common/interface.h"
#include "vnxml/common/object.h"

namespace vn {

struct IVnObject : IInterface {
  static constexpr TGUID IID = TGUID::Parse("91404700-69C1-44B4-859F-2E82312C9A4E");
  /// The object that implements this interface.
  virtual TObject* Implementor() = 0;

 protected:
  ~IVnObject() = default;
};

class TVnObject : public TObject, public IVnObject {
  VN_DECLARE_CLASS(TVnObject, TObject)
 public:
  TVnObject() = default;
  TVnObject(const TVnObject&) = delete;
  TVnObject& operator=(const TVnObject&) = delete;

  /// Answers IVnObject and IInterface; descendants add theirs with VN_VNOBJECT_INTERFACES.
  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override;
  int32_t _AddRef() override { return ++FRefCount; }
  /// Counts down; at 0 deletes the object if GetAutoDestroy() is true.
  int32_t _Release() override;
  TObject* Implementor() override { return this; }

  /// True at first: the last released interface frees the object.
  virtual bool GetAutoDestroy() const { return FAutoDestroy; }
  /// With false, a count of 0 frees nothing and the creator frees the object.
  void SetAutoDestroy(bool AValue) { FAutoDestroy = AValue; }
  int32_t GetRefCount() const { return FRefCount; }

 protected:
  // Exact and single-threaded: a tree or reader is used by one thread at a time.
  int32_t FRefCount = 0;

 private:
  bool FAutoDestroy = true;
};

/// The object behind an interface that offers IVnObject; nullptr for anything else.
TObject* VnImplementor(IInterface* AIntf);

class TVnObjectEx : public TVnObject {
  VN_DECLARE_CLASS(TVnObjectEx, TVnObject)
 public:
  /// Copies ASource into this object; the base asks ASource->AssignTo(this).
  virtual void Assign(const TObject* ASource);

 protected:
  /// Copies this object into ADest; the base raises EConvertError "Cannot assign a %s to a %s".
  virtual void AssignTo(TObject* ADest) const;
  /// Raises EConvertError "Cannot assign a <source class> to a <this class>".
  [[noreturn]] void AssignError(const TObject* ASource) const;
};

}  // namespace vn

// In a TVnObject descendant that implements further interfaces, which may themselves derive from
// IVnObject: answers those interfaces first, then asks Base, and routes every inherited counting
// slot to Base, so that all interface pointers share one count.
#define VN_VNOBJECT_INTERFACES(Base, ...)                                                          \
 public:                                                                                           \
  ::vn::HRESULT QueryInterface(const ::vn::TGUID& AIID, void** AObj) override {                  \
    if (::vn::detail::QueryInterfaces<__VA_ARGS__>(this, AIID, AObj) == ::vn::S_OK) return ::vn::S_OK; \
    return Base::QueryInterface(AIID, AObj);                                                       \
  }                                                                                                \
  int32_t _AddRef() override { return Base::_AddRef(); }                                          \
  int32_t _Release() override { return Base::_Release(); }                                         \
  ::vn::TObject* Implementor() override { return Base::Implementor(); }                            \
                                                                                                   \
 private:
