// persistent.h: TPersistent, the platform's base of objects that can copy each other's state.
#pragma once

#include "vnxml/common/exception.h"
#include "vnxml/common/object.h"

namespace vn {

class TPersistent : public TObject {
  VN_DECLARE_CLASS(TPersistent, TObject)
 public:
  TPersistent() = default;
  /// Copies the state of ASource; raises EConvertError "Cannot assign a X to a Y" when no side knows how.
  virtual void Assign(const TPersistent* ASource);
  /// The name that identifies the object to a designer or a message; the class name by default.
  virtual UnicodeString GetNamePath() const;

 protected:
  /// Copies this object into ADest; called by ADest->Assign when ADest does not know this class.
  virtual void AssignTo(TPersistent* ADest) const;
  /// Raises the EConvertError of a failed Assign from ASource into this object.
  [[noreturn]] void AssignError(const TPersistent* ASource) const;
};

}  // namespace vn
