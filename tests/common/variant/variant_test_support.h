// Helpers shared by the Variant tests: readable failure output and exception checks.
#pragma once

#include <gtest/gtest.h>

#include <ostream>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/variant.h"

namespace vn {

inline void PrintTo(const Variant& V, std::ostream* os) {
  *os << UnicodeToUtf8(VarTypeAsText(V.VarType()));
  if (!VarIsArray(V) && V.VarType() != varUnknown && V.VarType() != varDispatch && !VarIsNull(V))
    *os << " " << UnicodeToUtf8(V.AsString());
}

}  // namespace vn

namespace vn::test {

inline std::string U8(std::u16string_view s) { return UnicodeToUtf8(s); }

/// Runs AAction and expects exception E with the message AText (any message when empty).
template <class E, class F>
void ExpectRaise(F AAction, const std::string& AText = {}) {
  try {
    AAction();
    ADD_FAILURE() << "nothing raised, expected " << AText;
  } catch (const E& e) {
    if (!AText.empty()) {
      EXPECT_EQ(U8(e.Message()), AText);
    }
  }
}

/// A cast or overflow failure, with the platform's text for the two type names.
template <class F>
void ExpectCast(F AAction, std::u16string_view AFrom, std::u16string_view ATo) {
  ExpectRaise<EVariantTypeCastError>(AAction, U8(Format(cRtlVarTypeCouldNotConvert, {AFrom, ATo})));
}
template <class F>
void ExpectOverflow(F AAction, std::u16string_view AFrom, std::u16string_view ATo) {
  ExpectRaise<EVariantOverflowError>(AAction, U8(Format(cRtlVarTypeConvertOverflow, {AFrom, ATo})));
}

/// Same kind and same value (by the Variant's own equality).
inline void ExpectVariant(const Variant& AActual, TVarType AType, const Variant& AValue) {
  EXPECT_EQ(AActual.VarType(), AType) << U8(VarTypeAsText(AActual.VarType()));
  if (AActual.VarType() == AType && !VarIsNull(AActual) && !VarIsArray(AActual)) {
    EXPECT_EQ(AActual, AValue);
  }
}

}  // namespace vn::test
