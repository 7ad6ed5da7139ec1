// Format: the platform's "%[index:][-][width][.precision]type" formatting of an argument list.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "internal/float_decimal.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {

namespace {

// Defaults of the platform under the locale-independent settings this library uses.
constexpr Integer cDefaultFloatPrecision = 15;
constexpr Integer cMaxFloatPrecision = 18;
constexpr Integer cDefaultFixedDecimals = 2;
constexpr char16_t cCurrencyString[] = u"$";

class Formatter {
 public:
  Formatter(std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs)
      : FFormat(AFormat), FArgs(AArgs.begin()), FArgCount(AArgs.size()) {}

  UnicodeString Run() {
    UnicodeString out;
    out.reserve(FFormat.size() + 16);
    size_t i = 0;
    const size_t n = FFormat.size();
    while (i < n) {
      const size_t next = FFormat.find(u'%', i);
      if (next == std::u16string_view::npos) {
        out.append(FFormat.substr(i));
        break;
      }
      out.append(FFormat.substr(i, next - i));
      i = next + 1;
      if (i >= n) Invalid();
      if (FFormat[i] == u'%') {
        out += u'%';
        ++i;
        continue;
      }
      i = Spec(i, out);
    }
    return out;
  }

 private:
  std::u16string_view FFormat;
  const TVarRec* FArgs;
  size_t FArgCount;
  size_t FArgIndex = 0;

  [[noreturn]] void Invalid() const { throw EConvertError(cRtlInvalidFormat, {FFormat}); }

  const TVarRec& NextArg() {
    if (FArgIndex >= FArgCount) throw EConvertError(cRtlArgumentMissing, {FFormat});
    return FArgs[FArgIndex++];
  }

  // A decimal number or '*' (taken from the arguments); -1 when neither is there.
  Integer Number(size_t& AIndex) {
    if (AIndex < FFormat.size() && FFormat[AIndex] == u'*') {
      ++AIndex;
      const TVarRec& a = NextArg();
      if (a.Kind() != TVarRec::vtInteger) Invalid();
      const Int64 v = a.AsInt64();
      return v < 0 ? -1 : static_cast<Integer>(std::min<Int64>(v, INT32_MAX));
    }
    Int64 v = -1;
    while (AIndex < FFormat.size() && FFormat[AIndex] >= u'0' && FFormat[AIndex] <= u'9') {
      v = (v < 0 ? 0 : v) * 10 + (FFormat[AIndex] - u'0');
      if (v > INT32_MAX) Invalid();
      ++AIndex;
    }
    return static_cast<Integer>(v);
  }

  size_t Spec(size_t i, UnicodeString& out) {
    const size_t n = FFormat.size();
    Integer width = Number(i);
    if (i < n && FFormat[i] == u':') {
      // What stood there was the argument index; the width follows.
      ++i;
      FArgIndex = static_cast<size_t>(width < 0 ? 0 : width);
      width = -1;
    }
    bool left = false;
    if (width < 0 && i < n && FFormat[i] == u'-') {
      left = true;
      ++i;
    }
    if (width < 0) width = Number(i);
    Integer precision = -1;
    if (i < n && FFormat[i] == u'.') {
      ++i;
      precision = Number(i);
      if (precision < 0) precision = 0;
    }
    if (i >= n) Invalid();
    char16_t type = FFormat[i++];
    if (type >= u'A' && type <= u'Z') type = static_cast<char16_t>(type + 32);

    UnicodeString text = Convert(type, precision);
    if (width > 0 && text.size() < static_cast<size_t>(width)) {
      const size_t pad = static_cast<size_t>(width) - text.size();
      if (left)
        text.append(pad, u' ');
      else
        text.insert(0, pad, u' ');
    }
    out += text;
    return i;
  }

  static UnicodeString ZeroPad(UnicodeString ADigits, Integer APrecision) {
    if (APrecision > 0 && ADigits.size() < static_cast<size_t>(APrecision))
      ADigits.insert(0, static_cast<size_t>(APrecision) - ADigits.size(), u'0');
    return ADigits;
  }

  // Negative 32-bit values print as their 32-bit pattern, wider ones as 64-bit, as on the platform.
  static UInt64 UnsignedOf(const TVarRec& a) {
    if (a.Kind() == TVarRec::vtUInt64) return a.AsUInt64();
    const Int64 v = a.AsInt64();
    if (v < 0 && v >= INT32_MIN) return static_cast<uint32_t>(static_cast<int32_t>(v));
    return static_cast<UInt64>(v);
  }

  UnicodeString Convert(char16_t type, Integer precision) {
    switch (type) {
      case u'd': {
        const TVarRec& a = NextArg();
        if (a.Kind() == TVarRec::vtUInt64) return ZeroPad(UIntToStr(a.AsUInt64()), precision);
        if (a.Kind() != TVarRec::vtInteger) Invalid();
        const Int64 v = a.AsInt64();
        if (v < 0) return u"-" + ZeroPad(UIntToStr(UInt64(0) - static_cast<UInt64>(v)), precision);
        return ZeroPad(IntToStr(v), precision);
      }
      case u'u': {
        const TVarRec& a = NextArg();
        if (a.Kind() != TVarRec::vtInteger && a.Kind() != TVarRec::vtUInt64) Invalid();
        return ZeroPad(UIntToStr(UnsignedOf(a)), precision);
      }
      case u'x': {
        const TVarRec& a = NextArg();
        if (a.Kind() != TVarRec::vtInteger && a.Kind() != TVarRec::vtUInt64) Invalid();
        return IntToHex(UnsignedOf(a), precision);
      }
      case u'e':
      case u'f':
      case u'g':
      case u'n':
      case u'm': {
        const TVarRec& a = NextArg();
        if (a.Kind() != TVarRec::vtExtended) Invalid();
        return FloatText(type, a.AsExtended(), precision);
      }
      case u'p': {
        const TVarRec& a = NextArg();
        if (a.Kind() != TVarRec::vtPointer) Invalid();
        return IntToHex(reinterpret_cast<uintptr_t>(a.AsPointer()), static_cast<Integer>(sizeof(void*) * 2));
      }
      case u's': {
        const TVarRec& a = NextArg();
        UnicodeString s;
        if (a.Kind() == TVarRec::vtString)
          s = a.AsString();
        else if (a.Kind() == TVarRec::vtChar)
          s = UnicodeString(1, static_cast<char16_t>(a.AsInt64()));
        else
          Invalid();
        if (precision >= 0 && s.size() > static_cast<size_t>(precision)) s.resize(static_cast<size_t>(precision));
        return s;
      }
      case u'c': {
        const TVarRec& a = NextArg();
        if (a.Kind() != TVarRec::vtChar && a.Kind() != TVarRec::vtInteger) Invalid();
        return UnicodeString(1, static_cast<char16_t>(a.AsInt64()));
      }
      default:
        Invalid();
    }
  }

  static UnicodeString FloatText(char16_t type, Extended v, Integer precision) {
    using namespace detail;
    if (type == u'e' || type == u'g') {
      if (precision < 0) precision = cDefaultFloatPrecision;
      precision = std::clamp(precision, 1, cMaxFloatPrecision);
      const FloatDecimal d = ToFloatDecimal(v, precision);
      return type == u'e' ? FormatExponent(d, precision, 3) : FormatGeneral(d, precision, 3);
    }
    if (precision < 0) precision = cDefaultFixedDecimals;
    precision = std::min(precision, cMaxFloatPrecision);
    const FloatDecimal d = ToFloatDecimal(v, cMaxFloatPrecision, precision);
    // Too many integer digits for fixed notation: the platform falls back to the general form.
    if (d.Kind == FloatDecimal::fdNumber && d.Exponent > cMaxFloatPrecision)
      return FormatGeneral(d, cMaxFloatPrecision, 0);
    if (type == u'f') return FormatFixed(d, precision, false);
    UnicodeString s = FormatFixed(d, precision, true);
    if (type == u'm' && d.Kind == FloatDecimal::fdNumber) {
      if (!s.empty() && s[0] == u'-')
        s.insert(1, cCurrencyString);
      else
        s.insert(0, cCurrencyString);
    }
    return s;
  }
};

}  // namespace

UnicodeString Format(std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs) {
  return Formatter(AFormat, AArgs).Run();
}

}  // namespace vn
