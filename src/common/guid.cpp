// GUIDToString and StringToGUID: the braced, upper-case text form of a TGUID.
#include "vnxml/common/guid.h"

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {

namespace {

constexpr char16_t cHexDigits[] = u"0123456789ABCDEF";

void AppendHex(UnicodeString& AOut, uint32_t AValue, int ADigits) {
  for (int shift = (ADigits - 1) * 4; shift >= 0; shift -= 4) AOut += cHexDigits[(AValue >> shift) & 15];
}

int HexValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

}  // namespace

UnicodeString GUIDToString(const TGUID& AGUID) {
  UnicodeString s;
  s.reserve(38);
  s += u'{';
  AppendHex(s, AGUID.D1, 8);
  s += u'-';
  AppendHex(s, AGUID.D2, 4);
  s += u'-';
  AppendHex(s, AGUID.D3, 4);
  s += u'-';
  for (int i = 0; i < 8; ++i) {
    if (i == 2) s += u'-';
    AppendHex(s, AGUID.D4[i], 2);
  }
  s += u'}';
  return s;
}

TGUID StringToGUID(std::u16string_view AText) {
  // Exactly "{8-4-4-4-12}" hex digits; case of the digits is free.
  auto fail = [&]() -> TGUID { throw EConvertError(cRtlInvalidGUID, {AText}); };
  if (AText.size() != 38 || AText.front() != u'{' || AText.back() != u'}') return fail();
  size_t i = 1;
  auto take = [&](int ADigits) -> uint32_t {
    uint32_t v = 0;
    for (int k = 0; k < ADigits; ++k) {
      const int d = HexValue(AText[i++]);
      if (d < 0) fail();
      v = (v << 4) | static_cast<uint32_t>(d);
    }
    return v;
  };
  auto dash = [&] {
    if (AText[i++] != u'-') fail();
  };
  TGUID g;
  g.D1 = take(8);
  dash();
  g.D2 = static_cast<uint16_t>(take(4));
  dash();
  g.D3 = static_cast<uint16_t>(take(4));
  dash();
  g.D4[0] = static_cast<uint8_t>(take(2));
  g.D4[1] = static_cast<uint8_t>(take(2));
  dash();
  for (int k = 2; k < 8; ++k) g.D4[k] = static_cast<uint8_t>(take(2));
  return g;
}

}  // namespace vn
