// guid.h: TGUID, the 16-byte identifier of an interface (common platform layer).
#pragma once

#include "vnxml/common/types.h"

namespace vn {

struct TGUID {
  uint32_t D1 = 0;
  uint16_t D2 = 0;
  uint16_t D3 = 0;
  uint8_t D4[8] = {};

  /// Parses "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", with or without braces, at compile time.
  static consteval TGUID Parse(const char* AText) {
    TGUID g;
    const char* p = AText;
    if (*p == '{') ++p;
    auto hex = [](char c) consteval -> uint32_t {
      if (c >= '0' && c <= '9') return static_cast<uint32_t>(c - '0');
      if (c >= 'a' && c <= 'f') return static_cast<uint32_t>(c - 'a' + 10);
      if (c >= 'A' && c <= 'F') return static_cast<uint32_t>(c - 'A' + 10);
      throw "bad GUID digit";
    };
    auto take = [&](int digits) consteval -> uint32_t {
      uint32_t v = 0;
      for (int i = 0; i < digits; ++i) {
        if (*p == '-') ++p;
        v = (v << 4) | hex(*p++);
      }
      return v;
    };
    g.D1 = take(8);
    g.D2 = static_cast<uint16_t>(take(4));
    g.D3 = static_cast<uint16_t>(take(4));
    for (auto& b : g.D4) b = static_cast<uint8_t>(take(2));
    return g;
  }

  friend constexpr bool operator==(const TGUID& a, const TGUID& b) {
    if (a.D1 != b.D1 || a.D2 != b.D2 || a.D3 != b.D3) return false;
    for (int i = 0; i < 8; ++i)
      if (a.D4[i] != b.D4[i]) return false;
    return true;
  }
};

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper case, as the platform writes it.
UnicodeString GUIDToString(const TGUID& AGUID);
/// Reads the braced form; raises EConvertError on anything else.
TGUID StringToGUID(std::u16string_view AText);

}  // namespace vn
