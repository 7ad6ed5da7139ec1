// The message of the exception an action must raise, so that a test compares it in one line.
#pragma once

#include "vnxml/common/sysutils.h"

namespace vn::test {

/// AAction's E message; a marker text when it raises nothing (any other exception escapes).
template <class E, class F>
UnicodeString MessageOf(F&& AAction) {
  try {
    AAction();
  } catch (const E& e) {
    return e.Message();
  }
  return u"(nothing raised)";
}

}  // namespace vn::test
