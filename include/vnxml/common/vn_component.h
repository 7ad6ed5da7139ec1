// vn_component.h: TVnComponent, a TComponent counted like a TVnObject (unit rVnCommon).
// Its last released interface frees it unless SetAutoDestroy(false); an owner still frees it
// with itself, so don't keep interfaces on an owned component beyond its owner's life.
#pragma once

#include "vnxml/common/classes.h"
#include "vnxml/common/vn_object.h"

namespace vn {

class TVnComponent : public TComponent, public IVnObject {
  VN_DECLARE_CLASS(TVnComponent, TComponent)
 public:
  explicit TVnComponent(TComponent* AOwner = nullptr) : TComponent(AOwner) {}

  /// Answers IVnObject and IInterface; descendants add theirs with VN_VNOBJECT_INTERFACES.
  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override;
  int32_t _AddRef() override { return ++FRefCount; }
  /// Counts down; at 0 deletes the component if GetAutoDestroy() is true.
  int32_t _Release() override;
  TObject* Implementor() override { return this; }

  /// True at first: the last released interface frees the component.
  virtual bool GetAutoDestroy() const { return FAutoDestroy; }
  /// With false, a count of 0 frees nothing and the creator (or owner) frees the component.
  void SetAutoDestroy(bool AValue) { FAutoDestroy = AValue; }
  int32_t GetRefCount() const { return FRefCount; }

 protected:
  int32_t FRefCount = 0;

 private:
  bool FAutoDestroy = true;
};

}  // namespace vn
