// vn_exception.h: EVnException, the common package's exception: a message and an integer code.
// The SAX and JSON families derive from it (VN_EXCEPTION(EVnXMLException, EVnException) inherits
// these constructors). The code is the caller's; 0 when none is given.
#pragma once

#include <initializer_list>

#include "vnxml/common/exception.h"

namespace vn {

class EVnException : public Exception {
  VN_DECLARE_CLASS(EVnException, Exception)
 public:
  explicit EVnException(UnicodeString AMessage = {}) : Exception(std::move(AMessage)) {}
  /// The message is Format(AFormat, AArgs).
  EVnException(std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs) : Exception(AFormat, AArgs) {}
  // The code comes first so that a format with one integer argument can't be taken for a code.
  EVnException(Integer ACode, UnicodeString AMessage) : Exception(std::move(AMessage)), FCode(ACode) {}
  EVnException(Integer ACode, std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs)
      : Exception(AFormat, AArgs), FCode(ACode) {}

  Integer GetCode() const noexcept { return FCode; }
  void SetCode(Integer ACode) noexcept { FCode = ACode; }

 private:
  Integer FCode = 0;
};

}  // namespace vn
