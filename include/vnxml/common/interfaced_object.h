// interfaced_object.h: the platform's TInterfacedObject, a TObject counted through IInterface.
// The object starts with a count of 0 and deletes itself when the last IPtr lets go; don't
// delete it directly once an interface on it has been handed out.
#pragma once

#include "vnxml/common/interface.h"
#include "vnxml/common/object.h"

namespace vn {

class TInterfacedObject : public TObject, public IInterface {
  VN_DECLARE_CLASS(TInterfacedObject, TObject)
 public:
  TInterfacedObject() = default;
  TInterfacedObject(const TInterfacedObject&) = delete;
  TInterfacedObject& operator=(const TInterfacedObject&) = delete;

  /// Answers IInterface only; descendants with more interfaces override it.
  HRESULT QueryInterface(const TGUID& AIID, void** AObj) override;
  int32_t _AddRef() override { return ++FRefCount; }
  /// Deletes the object when the count reaches 0.
  int32_t _Release() override;
  int32_t GetRefCount() const { return FRefCount; }

 protected:
  // Counts are exact and single-threaded: a tree or reader is used by one thread at a time.
  int32_t FRefCount = 0;
};

}  // namespace vn
