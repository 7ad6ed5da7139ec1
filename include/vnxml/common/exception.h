// exception.h: the platform's Exception and its standard descendants (common platform layer).
// Exception derives from TObject and std::exception; what() gives the message as UTF-8.
// Declare a descendant with VN_EXCEPTION(Name, Parent) in a header; nothing else is needed.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

#include "vnxml/common/object.h"
#include "vnxml/common/varrec.h"

namespace vn {

class Exception : public TObject, public std::exception {
  VN_DECLARE_CLASS(Exception, TObject)
 public:
  explicit Exception(UnicodeString AMessage = {});
  /// The platform's CreateFmt: the message is Format(AFormat, AArgs).
  Exception(std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs);

  const UnicodeString& Message() const noexcept { return FMessage; }
  void SetMessage(UnicodeString AMessage);
  const char* what() const noexcept override { return FWhat.c_str(); }

 private:
  UnicodeString FMessage;
  std::string FWhat;
};

// Declares an exception class with the constructors of its parent.
#define VN_EXCEPTION(Name, Parent)        \
  class Name : public Parent {            \
    VN_DECLARE_CLASS(Name, Parent)        \
   public:                                \
    using Parent::Parent;                 \
  };

VN_EXCEPTION(EAbort, Exception)
VN_EXCEPTION(EAssertionFailed, Exception)
VN_EXCEPTION(EAbstractError, Exception)
VN_EXCEPTION(EArgumentException, Exception)
VN_EXCEPTION(EArgumentOutOfRangeException, EArgumentException)
VN_EXCEPTION(EConvertError, Exception)
VN_EXCEPTION(EListError, Exception)
VN_EXCEPTION(EStringListError, Exception)
VN_EXCEPTION(EInvalidCast, Exception)
VN_EXCEPTION(EInvalidOperation, Exception)
VN_EXCEPTION(EInvalidPointer, Exception)
VN_EXCEPTION(ENotSupportedException, Exception)
VN_EXCEPTION(ENotImplemented, Exception)
VN_EXCEPTION(EOutOfMemory, Exception)
VN_EXCEPTION(EIntError, Exception)
VN_EXCEPTION(EDivByZero, EIntError)
VN_EXCEPTION(ERangeError, EIntError)
VN_EXCEPTION(EIntOverflow, EIntError)
VN_EXCEPTION(EMathError, Exception)
VN_EXCEPTION(EInvalidOp, EMathError)
VN_EXCEPTION(EZeroDivide, EMathError)
VN_EXCEPTION(EOverflow, EMathError)
VN_EXCEPTION(EUnderflow, EMathError)
VN_EXCEPTION(EVariantError, Exception)
VN_EXCEPTION(EVariantTypeCastError, EVariantError)
VN_EXCEPTION(EVariantOverflowError, EVariantError)
VN_EXCEPTION(EVariantInvalidArgError, EVariantError)
VN_EXCEPTION(EVariantBadVarTypeError, EVariantError)
VN_EXCEPTION(EVariantBadIndexError, EVariantError)
VN_EXCEPTION(EVariantArrayLockedError, EVariantError)
VN_EXCEPTION(EVariantInvalidOpError, EVariantError)
VN_EXCEPTION(EStreamError, Exception)
VN_EXCEPTION(EReadError, EStreamError)
VN_EXCEPTION(EWriteError, EStreamError)
VN_EXCEPTION(EFilerError, EStreamError)
VN_EXCEPTION(EFOpenError, EFilerError)
VN_EXCEPTION(EFCreateError, EFilerError)
VN_EXCEPTION(EInOutError, Exception)
VN_EXCEPTION(EComponentError, Exception)
VN_EXCEPTION(EClassNotFound, EFilerError)
VN_EXCEPTION(EEncodingError, Exception)
VN_EXCEPTION(ERegularExpressionError, Exception)

/// A programming fault: raises EAssertionFailed with AMessage when ACondition is false, in every build.
inline void VnAssert(bool ACondition, std::u16string_view AMessage) {
  if (!ACondition) [[unlikely]] throw EAssertionFailed(UnicodeString(AMessage));
}
/// The same for a message constant, whose length is known: checks on hot paths measure nothing
/// unless they fail.
template <size_t N>
inline void VnAssert(bool ACondition, const char16_t (&AMessage)[N]) {
  if (!ACondition) [[unlikely]] throw EAssertionFailed(UnicodeString(AMessage, N - 1));
}

}  // namespace vn
