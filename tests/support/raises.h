// raises.h: checks that a call raises one exception class with one message. Tests pass the
// library's message constants (formatted where they take arguments), never retyped texts.
#pragma once

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "vnxml/common/exception.h"
#include "vnxml/common/utf.h"

namespace vn::test {

inline std::string U8(std::u16string_view AText) { return UnicodeToUtf8(AText); }

/// Runs ACall and checks that it raises exactly class E (not a descendant of it) with AMessage.
template <class E, class F>
void ExpectRaises(F&& ACall, std::u16string_view AMessage) {
  try {
    ACall();
    ADD_FAILURE() << "no exception, expected: " << U8(AMessage);
  } catch (const Exception& e) {
    EXPECT_EQ(U8(e.ClassName()), U8(E::StaticClass()->Name));
    EXPECT_EQ(U8(e.Message()), U8(AMessage));
  }
}

}  // namespace vn::test
