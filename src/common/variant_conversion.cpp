// Variant conversions: the As* accessors, VarAsType, VarToStr and the platform's failure texts.
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>

#include "common/variant_internal.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

namespace vn {

using namespace detail;

// ---- failures ----

namespace detail {

void RaiseCastError(TVarType AFrom, TVarType ATo) {
  throw EVariantTypeCastError(cRtlVarTypeCouldNotConvert, {VarTypeAsText(AFrom), VarTypeAsText(ATo)});
}
void RaiseOverflow(TVarType AFrom, TVarType ATo) {
  throw EVariantOverflowError(cRtlVarTypeConvertOverflow, {VarTypeAsText(AFrom), VarTypeAsText(ATo)});
}
void RaiseInvalidOp() { throw EVariantInvalidOpError(UnicodeString(cRtlVarInvalidOp)); }
void RaiseBadIndex() { throw EVariantBadIndexError(UnicodeString(cRtlVarArrayBounds)); }
void RaiseInvalidArg() { throw EVariantInvalidArgError(UnicodeString(cRtlVarInvalidArg)); }
void RaiseArrayCreate() { throw EVariantArrayCreateError(UnicodeString(cRtlVarArrayCreate)); }
void RaiseArrayLocked() { throw EVariantArrayLockedError(UnicodeString(cRtlVarArrayLocked)); }
void RaiseBadVarType() { throw EVariantBadVarTypeError(UnicodeString(cRtlVarBadType)); }

UnicodeString StringOf(const Variant& V) {
  if (V.VarType() != varString) return V.RawUString();
  const std::string& bytes = V.RawAnsiString();
  UnicodeString text = Utf8ToUnicode(bytes);
  // Bytes that are no UTF-8 came from some 8-bit code page; Latin-1 keeps every byte.
  if (text.find(u'\uFFFD') != UnicodeString::npos && bytes.find("\xEF\xBF\xBD") == std::string::npos)
    return Latin1ToUnicode(bytes);
  return text;
}

}  // namespace detail

UnicodeString VarTypeAsText(TVarType AVarType) {
  static constexpr const char16_t* kNames[] = {
      u"Empty", u"Null",    u"Smallint", u"Integer", u"Single",  u"Double",   u"Currency", u"Date",
      u"OleStr", u"Dispatch", u"Error",  u"Boolean", u"Variant", u"Unknown",  u"Decimal",  u"$000F",
      u"ShortInt", u"Byte", u"Word",     u"LongWord", u"Int64",  u"UInt64"};
  TVarType base = AVarType & varTypeMask;
  UnicodeString result;
  if (base <= varUInt64)
    result = kNames[base];
  else if (base == varString)
    result = u"String";
  else if (base == varUString)
    result = u"UnicodeString";
  else if (base == 0x0101)
    result = u"Any";
  else
    result = u"$" + IntToHex(base, 4);
  if (AVarType & varArray) result = u"Array " + result;
  if (AVarType & varByRef) result = u"ByRef " + result;
  return result;
}

// ---- numbers ----

namespace {

constexpr long double kInt64Limit = 9223372036854775808.0L;  // 2^63

/// Rounds half to even, as the platform turns a float into an integer.
bool TryRoundToInt64(long double AValue, Int64& AResult) {
  long double r = std::nearbyintl(AValue);
  if (!(r >= -kInt64Limit && r < kInt64Limit)) return false;
  AResult = static_cast<Int64>(r);
  return true;
}

/// Text to a 64-bit integer: integer text first ('$' and '0x' hex too), then float text rounded.
bool TryTextToInt64(std::u16string_view AText, Int64& AResult) {
  if (TryStrToInt64(AText, AResult)) return true;
  Extended f;
  return TryStrToFloat(AText, f) && TryRoundToInt64(f, AResult);
}

Int64 IntegerOf(const Variant& V, TVarType ATo, Int64 AMin, Int64 AMax) {
  const TVarType t = V.VarType();
  Int64 value = 0;
  switch (t) {
    case varEmpty:
      return 0;
    case varBoolean:
      value = V.RawBoolean() ? -1 : 0;
      break;
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64:
      value = V.RawInt64();
      break;
    case varUInt64:
      if (V.RawUInt64() > static_cast<UInt64>(AMax)) RaiseOverflow(t, ATo);
      value = static_cast<Int64>(V.RawUInt64());
      break;
    case varSingle:
      if (!TryRoundToInt64(V.RawSingle(), value)) RaiseOverflow(t, ATo);
      break;
    case varDouble: case varDate:
      if (!TryRoundToInt64(V.RawDouble(), value)) RaiseOverflow(t, ATo);
      break;
    case varCurrency:
      value = Currency::FromRaw(V.RawInt64()).Round();
      break;
    case varOleStr: case varUString: case varString: {
      UnicodeString text = StringOf(V);
      if (!TryTextToInt64(text, value)) {
        // A number too large for 64 bits is an overflow, not a bad text.
        Extended f;
        if (TryStrToFloat(text, f)) RaiseOverflow(t, ATo);
        RaiseCastError(t, ATo);
      }
      break;
    }
    default:
      RaiseCastError(t, ATo);
  }
  if (value < AMin || value > AMax) RaiseOverflow(t, ATo);
  return value;
}

UInt64 UnsignedOf(const Variant& V, TVarType ATo) {
  const TVarType t = V.VarType();
  switch (t) {
    case varUInt64:
      return V.RawUInt64();
    case varSingle: case varDouble: case varDate: {
      long double r = std::nearbyintl(t == varSingle ? V.RawSingle() : V.RawDouble());
      if (!(r >= 0 && r < kInt64Limit * 2)) RaiseOverflow(t, ATo);
      return static_cast<UInt64>(r);
    }
    case varOleStr: case varUString: case varString: {
      UInt64 u;
      if (TryStrToUInt64(StringOf(V), u)) return u;
      break;
    }
    default:
      break;
  }
  Int64 value = IntegerOf(V, ATo, 0, std::numeric_limits<Int64>::max());
  return static_cast<UInt64>(value);
}

long double ExtendedOf(const Variant& V, TVarType ATo) {
  const TVarType t = V.VarType();
  switch (t) {
    case varEmpty:
      return 0;
    case varBoolean:
      return V.RawBoolean() ? -1 : 0;
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64:
      return static_cast<long double>(V.RawInt64());
    case varUInt64:
      return static_cast<long double>(V.RawUInt64());
    case varSingle:
      return V.RawSingle();
    case varDouble: case varDate:
      return V.RawDouble();
    case varCurrency:
      return Currency::FromRaw(V.RawInt64()).ToExtended();
    case varOleStr: case varUString: case varString: {
      Extended f;
      if (!TryStrToFloat(StringOf(V), f)) RaiseCastError(t, ATo);
      return f;
    }
    default:
      RaiseCastError(t, ATo);
  }
}

/// Narrows to a float type, raising on finite values beyond its range.
template <class F>
F NarrowFloat(long double AValue, TVarType AFrom, TVarType ATo) {
  if (std::isfinite(AValue) && std::fabs(AValue) > static_cast<long double>(std::numeric_limits<F>::max()))
    RaiseOverflow(AFrom, ATo);
  return static_cast<F>(AValue);
}

/// The platform writes a Single with its own 7 significant digits, not the double's 15.
UnicodeString SingleToText(float AValue) {
  if (!std::isfinite(AValue)) return FloatToStr(AValue);
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.7g", static_cast<double>(AValue));
  return FloatToStr(std::strtod(buf, nullptr));
}

}  // namespace

bool Variant::AsBoolean() const {
  switch (FType) {
    case varEmpty:
      return false;
    case varBoolean:
      return FData.B;
    case varUInt64:
      return FData.U != 0;
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64: case varCurrency:
      return FData.I != 0;
    case varSingle:
      return FData.S != 0;
    case varDouble: case varDate:
      return FData.D != 0;
    case varOleStr: case varUString: case varString: {
      bool b;
      if (!TryStrToBool(StringOf(*this), b)) RaiseCastError(FType, varBoolean);
      return b;
    }
    default:
      RaiseCastError(FType, varBoolean);
  }
}

ShortInt Variant::AsShortInt() const { return static_cast<ShortInt>(IntegerOf(*this, varShortInt, INT8_MIN, INT8_MAX)); }
SmallInt Variant::AsSmallInt() const {
  return static_cast<SmallInt>(IntegerOf(*this, varSmallint, INT16_MIN, INT16_MAX));
}
Integer Variant::AsInteger() const { return static_cast<Integer>(IntegerOf(*this, varInteger, INT32_MIN, INT32_MAX)); }
Int64 Variant::AsInt64() const { return IntegerOf(*this, varInt64, INT64_MIN, INT64_MAX); }
Byte Variant::AsByte() const { return static_cast<Byte>(IntegerOf(*this, varByte, 0, UINT8_MAX)); }
Word Variant::AsWord() const { return static_cast<Word>(IntegerOf(*this, varWord, 0, UINT16_MAX)); }
Cardinal Variant::AsCardinal() const { return static_cast<Cardinal>(IntegerOf(*this, varLongWord, 0, UINT32_MAX)); }
UInt64 Variant::AsUInt64() const { return UnsignedOf(*this, varUInt64); }

Single Variant::AsSingle() const { return NarrowFloat<float>(ExtendedOf(*this, varSingle), FType, varSingle); }
Double Variant::AsDouble() const { return NarrowFloat<double>(ExtendedOf(*this, varDouble), FType, varDouble); }
Extended Variant::AsExtended() const { return ExtendedOf(*this, varDouble); }

vn::Currency Variant::AsCurrency() const {
  switch (FType) {
    case varCurrency:
      return Currency::FromRaw(FData.I);
    case varOleStr: case varUString: case varString: {
      Currency c;
      if (TryStrToCurr(StringOf(*this), c)) return c;
      Extended f;
      if (TryStrToFloat(StringOf(*this), f)) RaiseOverflow(FType, varCurrency);
      RaiseCastError(FType, varCurrency);
    }
    default: {
      long double value = ExtendedOf(*this, varCurrency);
      constexpr long double kLimit = kInt64Limit / Currency::Scale;
      if (!(value > -kLimit && value < kLimit)) RaiseOverflow(FType, varCurrency);
      return Currency::FromDouble(value);
    }
  }
}

TDateTime Variant::AsDateTime() const {
  if (IsStringType(FType)) {
    UnicodeString text = StringOf(*this);
    TDateTime d;
    if (TryTextToDate(text, d)) return d;
    Extended f;
    if (TryStrToFloat(text, f)) return static_cast<TDateTime>(f);
    RaiseCastError(FType, varDate);
  }
  return NarrowFloat<double>(ExtendedOf(*this, varDate), FType, varDate);
}

UnicodeString Variant::AsString() const {
  switch (FType) {
    case varEmpty:
      return {};
    case varBoolean:
      return FData.B ? u"True" : u"False";
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64:
      return IntToStr(FData.I);
    case varUInt64:
      return UIntToStr(FData.U);
    case varSingle:
      return SingleToText(FData.S);
    case varDouble:
      return FloatToStr(FData.D);
    case varCurrency:
      return CurrToStr(Currency::FromRaw(FData.I));
    case varDate:
      return DateToText(FData.D);
    case varOleStr: case varUString: case varString:
      return StringOf(*this);
    default:
      RaiseCastError(FType, varUString);
  }
}

RawByteString Variant::AsAnsiString() const {
  if (FType == varString) return FData.AStr;
  if (FType == varNull) RaiseCastError(FType, varString);
  return UnicodeToUtf8(AsString());
}

IPtr<IInterface> Variant::AsInterface() const {
  if (FType == varUnknown || FType == varDispatch) return IPtr<IInterface>(FData.Intf);
  if (FType == varEmpty) return {};
  RaiseCastError(FType, varUnknown);
}

// ---- free functions ----

Variant VarAsType(const Variant& V, TVarType AVarType) {
  const TVarType from = V.VarType();
  if (AVarType == from || AVarType == varVariant) return V;
  if (AVarType & varArray) RaiseCastError(from, AVarType);
  switch (AVarType) {
    case varEmpty: return Variant();
    case varNull: return Variant::Null();
    case varSmallint: return Variant(V.AsSmallInt());
    case varInteger: return Variant(V.AsInteger());
    case varSingle: return Variant(V.AsSingle());
    case varDouble: return Variant(V.AsDouble());
    case varCurrency: return Variant(V.AsCurrency());
    case varDate: return Variant::FromDate(V.AsDateTime());
    case varOleStr: return Variant::FromOleStr(V.AsString());
    case varBoolean: return Variant(V.AsBoolean());
    case varShortInt: return Variant(V.AsShortInt());
    case varByte: return Variant(V.AsByte());
    case varWord: return Variant(V.AsWord());
    case varLongWord: return Variant(V.AsCardinal());
    case varInt64: return Variant(V.AsInt64());
    case varUInt64: return Variant(V.AsUInt64());
    case varUString: return Variant(V.AsString());
    case varString: return Variant(V.AsAnsiString());
    case varUnknown: return Variant(V.AsInterface());
    case varDispatch: return Variant::FromDispatch(V.AsInterface());
    case varError: RaiseCastError(from, AVarType);
    default: RaiseBadVarType();
  }
}

UnicodeString VarToStr(const Variant& V) { return VarIsNull(V) ? UnicodeString() : V.AsString(); }

UnicodeString VarToStrDef(const Variant& V, std::u16string_view ADefault) {
  return VarIsNull(V) ? UnicodeString(ADefault) : V.AsString();
}

TDateTime VarToDateTime(const Variant& V) { return V.AsDateTime(); }

}  // namespace vn
