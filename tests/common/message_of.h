// The message or code of the exception an action must raise, so that a test compares it in one line.
#pragma once

#include "vnxml/common/sysutils.h"

namespace vn::test {

/// AAction's E message (any exception of the library's by default); a marker text when it raises
/// nothing (any other exception escapes).
template <class E = Exception, class F>
UnicodeString MessageOf(F&& AAction) {
  try {
    AAction();
  } catch (const E& e) {
    return e.Message();
  }
  return u"(nothing raised)";
}

/// AAction's E code; -1 when it raises nothing (any other exception escapes).
template <class E, class F>
Integer CodeOf(F&& AAction) {
  try {
    AAction();
  } catch (const E& e) {
    return e.GetCode();
  }
  return -1;
}

}  // namespace vn::test
