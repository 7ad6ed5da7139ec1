// tracked.h: a test object that counts its own destruction, to check who frees what.
#pragma once

#include "vnxml/common/object.h"

namespace vn::test {

class TTracked : public TObject {
  VN_DECLARE_CLASS(TTracked, TObject)
 public:
  TTracked() = default;
  explicit TTracked(int* AFreed, int AId = 0) : FFreed(AFreed), FId(AId) {}
  ~TTracked() override {
    if (FFreed) ++*FFreed;
  }
  int Id() const { return FId; }

 private:
  int* FFreed = nullptr;
  int FId = 0;
};

}  // namespace vn::test
