// Floating-point text conversions (FloatToStr, StrToFloat) and the platform's rounding functions.
// Digits come from std::to_chars / std::from_chars: exact and independent of the C locale.
#include <charconv>
#include <cmath>
#include <limits>

#include "internal/float_decimal.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {

namespace detail {

namespace {

// Enough digits that rounding to at most 18 significant digits decides ties as the exact value would.
constexpr int cExactDigits = 40;

void AppendDigits(UnicodeString& AOut, const std::string& ADigits, size_t AFrom, size_t ACount) {
  for (size_t i = 0; i < ACount; ++i) AOut += AFrom + i < ADigits.size() ? char16_t(ADigits[AFrom + i]) : u'0';
}

void AppendExponent(UnicodeString& AOut, Integer AExp, bool APlus, Integer AMinDigits) {
  AOut += u'E';
  if (AExp < 0) {
    AOut += u'-';
    AExp = -AExp;
  } else if (APlus) {
    AOut += u'+';
  }
  UnicodeString digits = IntToStr(AExp);
  if (static_cast<Integer>(digits.size()) < AMinDigits) AOut.append(static_cast<size_t>(AMinDigits) - digits.size(), u'0');
  AOut += digits;
}

bool AppendSpecial(UnicodeString& AOut, const FloatDecimal& AValue) {
  if (AValue.Kind == FloatDecimal::fdNaN) {
    AOut += u"NAN";
    return true;
  }
  if (AValue.Kind == FloatDecimal::fdInf) {
    AOut += AValue.Negative ? u"-INF" : u"INF";
    return true;
  }
  return false;
}

/// The digits of a normal double that needs at most APrecision (up to 15) significant digits to
/// read back exactly: the shortest such digits are then also the correctly rounded ones, because
/// the double lies nearer to them than half a step of the APrecision-digit grid. Saves the long
/// exact expansion for the values a writer meets most. False when the rule does not apply.
bool ShortestDigits(Extended AValue, Integer APrecision, Integer ADecimals, FloatDecimal& AResult) {
  if (ADecimals >= 0 || APrecision < 1 || APrecision > 15) return false;
  const double value = static_cast<double>(AValue);
  if (static_cast<Extended>(value) != AValue || !std::isnormal(value)) return false;
  char buf[32];
  const auto res = std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific);
  const std::string_view text(buf, static_cast<size_t>(res.ptr - buf));
  const size_t e = text.find('e');
  std::string digits(1, text[0]);
  if (e > 2) digits.append(text.substr(2, e - 2));
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
  if (static_cast<Integer>(digits.size()) > APrecision) return false;
  int exp10 = 0;
  std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), text.data() + text.size(), exp10);
  AResult.Digits = std::move(digits);
  AResult.Exponent = exp10 + 1;
  return true;
}

}  // namespace

FloatDecimal ToFloatDecimal(Extended AValue, Integer APrecision, Integer ADecimals) {
  FloatDecimal r;
  if (std::isnan(AValue)) {
    r.Kind = FloatDecimal::fdNaN;
    return r;
  }
  r.Negative = std::signbit(AValue);
  if (std::isinf(AValue)) {
    r.Kind = FloatDecimal::fdInf;
    return r;
  }
  if (AValue == 0) return r;
  if (ShortestDigits(AValue, APrecision, ADecimals, r)) return r;

  char buf[96];
  auto res = std::to_chars(buf, buf + sizeof buf, std::fabs(AValue), std::chars_format::scientific, cExactDigits);
  std::string_view text(buf, static_cast<size_t>(res.ptr - buf));
  const size_t e = text.find('e');
  std::string digits;
  digits += text[0];
  digits.append(text.substr(2, e - 2));
  int exp10 = 0;
  std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), text.data() + text.size(), exp10);
  Integer exponent = exp10 + 1;

  Integer keep = APrecision;
  if (ADecimals >= 0 && exponent + ADecimals < keep) keep = exponent + ADecimals;
  if (keep < 0) return r;  // rounds to zero
  bool carry = static_cast<size_t>(keep) < digits.size() && digits[static_cast<size_t>(keep)] >= '5';
  digits.resize(static_cast<size_t>(keep));
  for (size_t i = digits.size(); carry && i > 0; --i) {
    if (digits[i - 1] == '9') {
      digits[i - 1] = '0';
    } else {
      ++digits[i - 1];
      carry = false;
    }
  }
  if (carry) {
    digits.insert(digits.begin(), '1');
    ++exponent;
    if (static_cast<Integer>(digits.size()) > APrecision) digits.pop_back();
  }
  while (!digits.empty() && digits.back() == '0') digits.pop_back();
  if (digits.empty()) return r;
  r.Digits = std::move(digits);
  r.Exponent = exponent;
  return r;
}

UnicodeString FormatGeneral(const FloatDecimal& AValue, Integer APrecision, Integer AExpDigits) {
  UnicodeString s;
  if (AppendSpecial(s, AValue)) return s;
  if (AValue.Digits.empty()) return u"0";
  if (AValue.Negative) s += u'-';
  const Integer count = static_cast<Integer>(AValue.Digits.size());
  if (AValue.Exponent > APrecision || AValue.Exponent < -3) {
    s += char16_t(AValue.Digits[0]);
    if (count > 1) {
      s += u'.';
      AppendDigits(s, AValue.Digits, 1, static_cast<size_t>(count - 1));
    }
    AppendExponent(s, AValue.Exponent - 1, false, AExpDigits);
    return s;
  }
  if (AValue.Exponent <= 0) {
    s += u"0.";
    s.append(static_cast<size_t>(-AValue.Exponent), u'0');
    AppendDigits(s, AValue.Digits, 0, static_cast<size_t>(count));
    return s;
  }
  AppendDigits(s, AValue.Digits, 0, static_cast<size_t>(AValue.Exponent));
  if (count > AValue.Exponent) {
    s += u'.';
    AppendDigits(s, AValue.Digits, static_cast<size_t>(AValue.Exponent), static_cast<size_t>(count - AValue.Exponent));
  }
  return s;
}

UnicodeString FormatExponent(const FloatDecimal& AValue, Integer APrecision, Integer AExpDigits) {
  UnicodeString s;
  if (AppendSpecial(s, AValue)) return s;
  if (AValue.Negative && !AValue.Digits.empty()) s += u'-';
  if (APrecision < 1) APrecision = 1;
  AppendDigits(s, AValue.Digits, 0, 1);
  if (APrecision > 1) {
    s += u'.';
    AppendDigits(s, AValue.Digits, 1, static_cast<size_t>(APrecision - 1));
  }
  AppendExponent(s, AValue.Digits.empty() ? 0 : AValue.Exponent - 1, true, AExpDigits);
  return s;
}

UnicodeString FormatFixed(const FloatDecimal& AValue, Integer ADecimals, bool AThousands) {
  UnicodeString s;
  if (AppendSpecial(s, AValue)) return s;
  if (AValue.Negative && !AValue.Digits.empty()) s += u'-';
  const Integer intDigits = AValue.Exponent > 0 ? AValue.Exponent : 0;
  if (intDigits == 0) {
    s += u'0';
  } else {
    for (Integer i = 0; i < intDigits; ++i) {
      if (AThousands && i > 0 && (intDigits - i) % 3 == 0) s += u',';
      s += static_cast<size_t>(i) < AValue.Digits.size() ? char16_t(AValue.Digits[static_cast<size_t>(i)]) : u'0';
    }
  }
  if (ADecimals > 0) {
    s += u'.';
    for (Integer i = 0; i < ADecimals; ++i) {
      const Integer pos = AValue.Exponent + i;  // index into Digits of the i-th decimal
      s += pos >= 0 && static_cast<size_t>(pos) < AValue.Digits.size() ? char16_t(AValue.Digits[static_cast<size_t>(pos)]) : u'0';
    }
  }
  return s;
}

}  // namespace detail

// ---- FloatToStr, StrToFloat ----

UnicodeString FloatToStr(Extended AValue) {
  return detail::FormatGeneral(detail::ToFloatDecimal(AValue, 15), 15, 0);
}

namespace {

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

bool SameAscii(std::u16string_view AText, std::string_view AUpper) {
  if (AText.size() != AUpper.size()) return false;
  for (size_t i = 0; i < AText.size(); ++i) {
    char16_t c = AText[i];
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
    if (c != static_cast<char16_t>(AUpper[i])) return false;
  }
  return true;
}

// The platform's reading of a number: blanks around it, an optional sign, digits with at most one
// '.', an optional exponent; also the words INF and NAN that FloatToStr writes.
bool ParseFloat(std::u16string_view AText, Extended& AValue) {
  size_t b = 0, e = AText.size();
  while (b < e && AText[b] == u' ') ++b;
  while (e > b && AText[e - 1] == u' ') --e;
  std::u16string_view t = AText.substr(b, e - b);
  if (t.empty()) return false;

  bool negative = false;
  std::u16string_view body = t;
  if (body[0] == u'+' || body[0] == u'-') {
    negative = body[0] == u'-';
    body.remove_prefix(1);
  }
  if (SameAscii(body, "INF")) {
    AValue = negative ? -std::numeric_limits<Extended>::infinity() : std::numeric_limits<Extended>::infinity();
    return true;
  }
  if (SameAscii(body, "NAN")) {
    AValue = std::numeric_limits<Extended>::quiet_NaN();
    return true;
  }

  std::string ascii;
  ascii.reserve(t.size());
  size_t i = 0;
  const size_t n = body.size();
  size_t mantissaDigits = 0;
  Int64 firstSignificant = 0;  // decimal position of the first non-zero digit, for range decisions
  bool seenNonZero = false;
  Int64 intDigits = 0;
  for (; i < n && IsDigit(body[i]); ++i, ++mantissaDigits, ++intDigits) {
    if (!seenNonZero && body[i] != u'0') {
      seenNonZero = true;
      firstSignificant = intDigits;
    }
    ascii += static_cast<char>(body[i]);
  }
  Int64 pointPos = intDigits;
  if (i < n && body[i] == u'.') {
    ascii += '.';
    ++i;
    for (Int64 k = 0; i < n && IsDigit(body[i]); ++i, ++mantissaDigits, ++k) {
      if (!seenNonZero && body[i] != u'0') {
        seenNonZero = true;
        firstSignificant = intDigits + k;
      }
      ascii += static_cast<char>(body[i]);
    }
  }
  if (mantissaDigits == 0) return false;
  Int64 exponent = 0;
  if (i < n && (body[i] == u'e' || body[i] == u'E')) {
    ascii += 'e';
    ++i;
    bool negativeExp = false;
    if (i < n && (body[i] == u'+' || body[i] == u'-')) {
      negativeExp = body[i] == u'-';
      ascii += static_cast<char>(body[i++]);
    }
    const size_t expStart = i;
    for (; i < n && IsDigit(body[i]); ++i) {
      ascii += static_cast<char>(body[i]);
      if (exponent < 1000000000) exponent = exponent * 10 + (body[i] - u'0');  // saturates far beyond any range
    }
    if (i == expStart) return false;
    if (negativeExp) exponent = -exponent;
  }
  if (i != n) return false;

  Extended v = 0;
  auto res = std::from_chars(ascii.data(), ascii.data() + ascii.size(), v);
  if (res.ec == std::errc::result_out_of_range) {
    // Too small to represent reads as zero; too large is refused.
    const Int64 magnitude = pointPos - firstSignificant + exponent;
    if (magnitude > 0) return false;
    v = 0;
  } else if (res.ec != std::errc() || res.ptr != ascii.data() + ascii.size()) {
    return false;
  }
  AValue = negative ? -v : v;
  return true;
}

}  // namespace

bool TryStrToFloat(std::u16string_view AText, Extended& AValue) { return ParseFloat(AText, AValue); }

bool TryStrToFloat(std::u16string_view AText, Double& AValue) {
  Extended v = 0;
  if (!ParseFloat(AText, v)) return false;
  if (std::isfinite(v) && std::fabs(v) > std::numeric_limits<Double>::max()) return false;
  AValue = static_cast<Double>(v);
  return true;
}

Extended StrToFloat(std::u16string_view AText) {
  Extended v = 0;
  if (!ParseFloat(AText, v)) throw EConvertError(cRtlInvalidFloat, {AText});
  return v;
}

Extended StrToFloatDef(std::u16string_view AText, Extended ADefault) {
  Extended v = 0;
  return ParseFloat(AText, v) ? v : ADefault;
}

// ---- rounding ----

namespace {

Int64 CheckedInt64(Extended AValue) {
  // 2^63 is exact in long double; anything at or beyond it (or NaN) has no Int64 form.
  constexpr Extended limit = 9223372036854775808.0L;
  if (!(AValue >= -limit && AValue < limit)) throw EInvalidOp(UnicodeString(cRtlInvalidOp));
  return static_cast<Int64>(AValue);
}

}  // namespace

Int64 Round(Extended AValue) { return CheckedInt64(std::nearbyint(AValue)); }
Int64 Trunc(Extended AValue) { return CheckedInt64(std::trunc(AValue)); }
Int64 Ceil(Extended AValue) { return CheckedInt64(std::ceil(AValue)); }
Int64 Floor(Extended AValue) { return CheckedInt64(std::floor(AValue)); }

}  // namespace vn
