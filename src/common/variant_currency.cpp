// Currency: fixed-point arithmetic over Int64 scaled by 10000, and its decimal text.
#include <cmath>

#include "vnxml/common/currency.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/variant.h"

namespace vn {

namespace {

__extension__ typedef __int128 Int128;

constexpr Int128 kMax = INT64_MAX;
constexpr Int128 kMin = INT64_MIN;

[[noreturn]] void RaiseOutOfRange() { throw EInvalidOp(UnicodeString(cRtlInvalidOp)); }
[[noreturn]] void RaiseOverflow() { throw EIntOverflow(u"Arithmetic overflow"); }

Int64 Checked(Int128 AValue) {
  if (AValue > kMax || AValue < kMin) RaiseOverflow();
  return static_cast<Int64>(AValue);
}

/// ANumerator / ADenominator rounded half to even.
Int128 DivRound(Int128 ANumerator, Int128 ADenominator) {
  Int128 q = ANumerator / ADenominator;
  Int128 r = ANumerator % ADenominator;
  if (r < 0) r = -r;
  Int128 d = ADenominator < 0 ? -ADenominator : ADenominator;
  bool negative = (ANumerator < 0) != (ADenominator < 0);
  if (2 * r > d || (2 * r == d && (q & 1) != 0)) q += negative ? -1 : 1;
  return q;
}

}  // namespace

Currency Currency::FromInt64(Int64 AValue) {
  if (AValue > INT64_MAX / Scale || AValue < INT64_MIN / Scale) RaiseOutOfRange();
  return FromRaw(AValue * Scale);
}

Currency Currency::FromDouble(long double AValue) {
  long double scaled = std::nearbyintl(AValue * Scale);
  if (!(scaled >= -9223372036854775808.0L && scaled < 9223372036854775808.0L)) RaiseOutOfRange();
  return FromRaw(static_cast<Int64>(scaled));
}

Int64 Currency::Round() const noexcept { return static_cast<Int64>(DivRound(FRaw, Scale)); }

Currency operator+(Currency A, Currency B) { return Currency::FromRaw(Checked(Int128(A.FRaw) + B.FRaw)); }
Currency operator-(Currency A, Currency B) { return Currency::FromRaw(Checked(Int128(A.FRaw) - B.FRaw)); }
Currency operator*(Currency A, Currency B) {
  return Currency::FromRaw(Checked(DivRound(Int128(A.FRaw) * B.FRaw, Currency::Scale)));
}
Currency operator/(Currency A, Currency B) {
  if (B.FRaw == 0) {
    if (A.FRaw == 0) throw EInvalidOp(UnicodeString(cRtlInvalidOp));
    throw EZeroDivide(UnicodeString(cRtlZeroDivide));
  }
  return Currency::FromRaw(Checked(DivRound(Int128(A.FRaw) * Currency::Scale, B.FRaw)));
}
Currency Currency::operator-() const { return FromRaw(Checked(-Int128(FRaw))); }

UnicodeString CurrToStr(Currency AValue) {
  Int128 raw = AValue.Raw();
  bool negative = raw < 0;
  if (negative) raw = -raw;
  UnicodeString text = UIntToStr(static_cast<UInt64>(raw / Currency::Scale));
  auto fraction = static_cast<unsigned>(raw % Currency::Scale);
  if (fraction) {
    char16_t digits[4];
    for (int i = 3; i >= 0; --i) {
      digits[i] = static_cast<char16_t>(u'0' + fraction % 10);
      fraction /= 10;
    }
    size_t used = 4;
    while (digits[used - 1] == u'0') --used;
    text += u'.';
    text.append(digits, used);
  }
  return negative ? u"-" + text : text;
}

bool TryStrToCurr(std::u16string_view AText, Currency& AValue) {
  UnicodeString trimmed = Trim(AText);
  std::u16string_view text = trimmed;
  size_t pos = 0;
  bool negative = false;
  if (pos < text.size() && (text[pos] == u'-' || text[pos] == u'+')) negative = text[pos++] == u'-';
  // Plain decimals are read exactly; anything else (exponents) goes through the float reader.
  Int128 raw = 0;
  int fractionDigits = 0;
  bool any = false, point = false, roundUp = false, sticky = false;
  int roundDigit = -1;
  for (; pos < text.size(); ++pos) {
    char16_t c = text[pos];
    if (c == u'.' && !point) {
      point = true;
      continue;
    }
    if (c < u'0' || c > u'9') break;
    any = true;
    if (point && fractionDigits == 4) {
      if (roundDigit < 0)
        roundDigit = c - u'0';
      else if (c != u'0')
        sticky = true;
      continue;
    }
    raw = raw * 10 + (c - u'0');
    if (point) ++fractionDigits;
    if (raw > kMax + 1) return false;
  }
  if (pos != text.size() || !any) {
    Extended f;
    if (!TryStrToFloat(AText, f)) return false;
    long double scaled = std::nearbyintl(f * Currency::Scale);
    if (!(scaled >= -9223372036854775808.0L && scaled < 9223372036854775808.0L)) return false;
    AValue = Currency::FromRaw(static_cast<Int64>(scaled));
    return true;
  }
  for (; fractionDigits < 4; ++fractionDigits) raw *= 10;
  roundUp = roundDigit > 5 || (roundDigit == 5 && (sticky || (raw & 1) != 0));
  if (roundUp) ++raw;
  if (negative) raw = -raw;
  if (raw > kMax || raw < kMin) return false;
  AValue = Currency::FromRaw(static_cast<Int64>(raw));
  return true;
}

Currency StrToCurr(std::u16string_view AText) {
  Currency value;
  if (!TryStrToCurr(AText, value)) throw EConvertError(cRtlInvalidFloat, {AText});
  return value;
}

}  // namespace vn
