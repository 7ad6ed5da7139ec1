// Integer and boolean text conversions: IntToStr, StrToInt and their relatives.
#include <charconv>
#include <limits>
#include <type_traits>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {

namespace {

UnicodeString Widen(const char* AFirst, const char* ALast) { return UnicodeString(AFirst, ALast); }

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

// Reads integer text the way the platform does: leading spaces skipped, then an optional sign,
// then decimal digits or hex digits behind '$', 'x', 'X', '0x' or '0X'; nothing may follow.
// Decimal text must fit the signed range given by AMaxMagnitude; hex text may use the whole
// unsigned range of AHexMask and wraps into the signed type (as "$FFFFFFFF" gives -1).
struct ParsedInteger {
  bool Negative = false;
  bool Hex = false;
  UInt64 Magnitude = 0;
};

bool ParseInteger(std::u16string_view AText, UInt64 ALimit, ParsedInteger& AOut) {
  size_t i = 0;
  const size_t n = AText.size();
  while (i < n && AText[i] == u' ') ++i;
  if (i < n && (AText[i] == u'+' || AText[i] == u'-')) AOut.Negative = AText[i++] == u'-';
  if (i < n && (AText[i] == u'$' || AText[i] == u'x' || AText[i] == u'X')) {
    AOut.Hex = true;
    ++i;
  } else if (i + 1 < n && AText[i] == u'0' && (AText[i + 1] == u'x' || AText[i + 1] == u'X')) {
    AOut.Hex = true;
    i += 2;
  }
  if (i == n) return false;
  const UInt64 base = AOut.Hex ? 16 : 10;
  UInt64 value = 0;
  for (; i < n; ++i) {
    const int d = AOut.Hex ? HexDigit(AText[i]) : (AText[i] >= u'0' && AText[i] <= u'9' ? AText[i] - u'0' : -1);
    if (d < 0) return false;
    if (value > (ALimit - static_cast<UInt64>(d)) / base) return false;
    value = value * base + static_cast<UInt64>(d);
  }
  AOut.Magnitude = value;
  return true;
}

template <class T>
bool TryStrToSigned(std::u16string_view AText, T& AValue) {
  using U = std::make_unsigned_t<T>;
  ParsedInteger p;
  if (!ParseInteger(AText, static_cast<U>(-1), p)) return false;
  const UInt64 maxPositive = static_cast<U>(std::numeric_limits<T>::max());
  if (p.Hex) {
    // Hex text is a bit pattern of the type's width; a sign negates that pattern.
    U bits = static_cast<U>(p.Magnitude);
    if (p.Negative) bits = static_cast<U>(U(0) - bits);
    AValue = static_cast<T>(bits);
    return true;
  }
  if (p.Negative) {
    if (p.Magnitude > maxPositive + 1) return false;
    AValue = static_cast<T>(U(0) - static_cast<U>(p.Magnitude));
  } else {
    if (p.Magnitude > maxPositive) return false;
    AValue = static_cast<T>(p.Magnitude);
  }
  return true;
}

[[noreturn]] void RaiseInvalidInteger(std::u16string_view AText) { throw EConvertError(cRtlInvalidInteger, {AText}); }

}  // namespace

UnicodeString IntToStr(Int64 AValue) {
  char buf[24];
  auto r = std::to_chars(buf, buf + sizeof buf, AValue);
  return Widen(buf, r.ptr);
}

UnicodeString UIntToStr(UInt64 AValue) {
  char buf[24];
  auto r = std::to_chars(buf, buf + sizeof buf, AValue);
  return Widen(buf, r.ptr);
}

UnicodeString IntToHex(UInt64 AValue, Integer ADigits) {
  static constexpr char16_t digits[] = u"0123456789ABCDEF";
  UnicodeString s;
  do {
    s.insert(s.begin(), digits[AValue & 15]);
    AValue >>= 4;
  } while (AValue);
  if (ADigits > 0 && s.size() < static_cast<size_t>(ADigits)) s.insert(0, static_cast<size_t>(ADigits) - s.size(), u'0');
  return s;
}

bool TryStrToInt(std::u16string_view AText, Integer& AValue) { return TryStrToSigned(AText, AValue); }
bool TryStrToInt64(std::u16string_view AText, Int64& AValue) { return TryStrToSigned(AText, AValue); }

bool TryStrToUInt64(std::u16string_view AText, UInt64& AValue) {
  ParsedInteger p;
  if (!ParseInteger(AText, ~UInt64(0), p)) return false;
  // A minus sign is refused except on zero, which has no sign.
  if (p.Negative && p.Magnitude != 0 && !p.Hex) return false;
  AValue = p.Negative ? UInt64(0) - p.Magnitude : p.Magnitude;
  return true;
}

Integer StrToInt(std::u16string_view AText) {
  Integer v = 0;
  if (!TryStrToInt(AText, v)) RaiseInvalidInteger(AText);
  return v;
}

Int64 StrToInt64(std::u16string_view AText) {
  Int64 v = 0;
  if (!TryStrToInt64(AText, v)) RaiseInvalidInteger(AText);
  return v;
}

UInt64 StrToUInt64(std::u16string_view AText) {
  UInt64 v = 0;
  if (!TryStrToUInt64(AText, v)) RaiseInvalidInteger(AText);
  return v;
}

Integer StrToIntDef(std::u16string_view AText, Integer ADefault) {
  Integer v = 0;
  return TryStrToInt(AText, v) ? v : ADefault;
}

Int64 StrToInt64Def(std::u16string_view AText, Int64 ADefault) {
  Int64 v = 0;
  return TryStrToInt64(AText, v) ? v : ADefault;
}

// ---- booleans ----

UnicodeString BoolToStr(bool AValue, bool AUseBoolStrs) {
  if (AUseBoolStrs) return AValue ? u"True" : u"False";
  return AValue ? u"-1" : u"0";
}

bool TryStrToBool(std::u16string_view AText, bool& AValue) {
  Extended number = 0;
  if (TryStrToFloat(AText, number)) {
    AValue = number != 0;
    return true;
  }
  if (SameText(AText, u"True")) {
    AValue = true;
    return true;
  }
  if (SameText(AText, u"False")) {
    AValue = false;
    return true;
  }
  return false;
}

bool StrToBool(std::u16string_view AText) {
  bool v = false;
  if (!TryStrToBool(AText, v)) throw EConvertError(cRtlInvalidBoolean, {AText});
  return v;
}

}  // namespace vn
