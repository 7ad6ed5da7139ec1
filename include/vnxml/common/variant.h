// variant.h: Variant, the platform's tagged value (common platform layer).
// A Variant holds one value of a kind named by a type code (varInteger, varUString, ...) or a
// variant array (variant_array.h). Values copy by value; arrays share storage until written.
// Conversions follow the platform: numbers <-> text through IntToStr/FloatToStr/StrToFloat,
// True is -1 as a number and "True" as text, Empty is 0 / "" / False, and Null converts to
// nothing (EVariantTypeCastError "Could not convert variant of type (Null) into type (Integer)").
// Other failures: EVariantOverflowError (out of range), EVariantInvalidOpError (operator on an
// array or interface), EDivByZero / EZeroDivide (division by zero).
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "vnxml/common/currency.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/interface.h"
#include "vnxml/common/types.h"

namespace vn {

// ---- type codes ----
using TVarType = uint16_t;
inline constexpr TVarType varEmpty = 0x0000;
inline constexpr TVarType varNull = 0x0001;
inline constexpr TVarType varSmallint = 0x0002;
inline constexpr TVarType varInteger = 0x0003;
inline constexpr TVarType varSingle = 0x0004;
inline constexpr TVarType varDouble = 0x0005;
inline constexpr TVarType varCurrency = 0x0006;
inline constexpr TVarType varDate = 0x0007;
inline constexpr TVarType varOleStr = 0x0008;
inline constexpr TVarType varDispatch = 0x0009;
inline constexpr TVarType varError = 0x000A;
inline constexpr TVarType varBoolean = 0x000B;
inline constexpr TVarType varVariant = 0x000C;
inline constexpr TVarType varUnknown = 0x000D;
inline constexpr TVarType varShortInt = 0x0010;
inline constexpr TVarType varByte = 0x0011;
inline constexpr TVarType varWord = 0x0012;
inline constexpr TVarType varLongWord = 0x0013;
inline constexpr TVarType varInt64 = 0x0014;
inline constexpr TVarType varUInt64 = 0x0015;
inline constexpr TVarType varString = 0x0100;
inline constexpr TVarType varUString = 0x0102;
inline constexpr TVarType varTypeMask = 0x0FFF;
inline constexpr TVarType varArray = 0x2000;
inline constexpr TVarType varByRef = 0x4000;

// ---- the platform's texts of Variant failures ----
inline constexpr char16_t cRtlVarTypeCouldNotConvert[] = u"Could not convert variant of type (%s) into type (%s)";
inline constexpr char16_t cRtlVarTypeConvertOverflow[] = u"Overflow while converting variant of type (%s) into type (%s)";
inline constexpr char16_t cRtlVarInvalidOp[] = u"Invalid variant operation";
inline constexpr char16_t cRtlVarArrayBounds[] = u"Variant or safe array index out of bounds";
inline constexpr char16_t cRtlVarArrayLocked[] = u"Variant or safe array is locked";
inline constexpr char16_t cRtlVarArrayCreate[] = u"Error creating variant or safe array";
inline constexpr char16_t cRtlVarInvalidArg[] = u"Invalid argument";
inline constexpr char16_t cRtlVarBadType[] = u"Invalid variant type";
inline constexpr char16_t cRtlDivByZero[] = u"Division by zero";
inline constexpr char16_t cRtlZeroDivide[] = u"Floating point division by zero";

// A failure the shared exception header does not name.
VN_EXCEPTION(EVariantArrayCreateError, EVariantError)

/// Result of VarCompareValue; vrNotEqual when only one side is Null (or a NaN is involved).
enum TVariantRelationship : uint8_t { vrEqual, vrLessThan, vrGreaterThan, vrNotEqual };

namespace detail {
struct VarArrayData;
}

class Variant {
 public:
  Variant() noexcept { FData.I = 0; }
  Variant(const Variant& AOther);
  Variant(Variant&& AOther) noexcept;
  Variant& operator=(const Variant& AOther);
  Variant& operator=(Variant&& AOther) noexcept;
  ~Variant() { Clear(); }

  // Each C++ scalar maps to the kind of its width and sign (int -> varInteger, uint8_t -> varByte).
  Variant(bool AValue) noexcept : FType(varBoolean) { FData.B = AValue; }
  Variant(signed char AValue) noexcept : FType(varShortInt) { FData.I = AValue; }
  Variant(short AValue) noexcept : FType(varSmallint) { FData.I = AValue; }
  Variant(int AValue) noexcept : FType(varInteger) { FData.I = AValue; }
  Variant(long AValue) noexcept : FType(sizeof(long) == 8 ? varInt64 : varInteger) { FData.I = AValue; }
  Variant(long long AValue) noexcept : FType(varInt64) { FData.I = AValue; }
  Variant(unsigned char AValue) noexcept : FType(varByte) { FData.I = AValue; }
  Variant(unsigned short AValue) noexcept : FType(varWord) { FData.I = AValue; }
  Variant(unsigned AValue) noexcept : FType(varLongWord) { FData.I = AValue; }
  Variant(unsigned long AValue) noexcept : FType(sizeof(long) == 8 ? varUInt64 : varLongWord) {
    FData.U = AValue;
  }
  Variant(unsigned long long AValue) noexcept : FType(varUInt64) { FData.U = AValue; }
  Variant(float AValue) noexcept : FType(varSingle) { FData.S = AValue; }
  Variant(double AValue) noexcept : FType(varDouble) { FData.D = AValue; }
  Variant(long double AValue) noexcept : FType(varDouble) { FData.D = static_cast<double>(AValue); }
  Variant(Currency AValue) noexcept : FType(varCurrency) { FData.I = AValue.Raw(); }
  /// A one-character varUString.
  Variant(char16_t AValue);
  Variant(const char16_t* AValue);
  Variant(std::u16string_view AValue);
  Variant(const UnicodeString& AValue);
  Variant(UnicodeString&& AValue) noexcept;
  /// 8-bit strings become varString holding the bytes as given (read as UTF-8 when converted).
  Variant(const char* AValue);
  Variant(std::string_view AValue);
  Variant(const std::string& AValue);
  Variant(std::string&& AValue) noexcept;
  /// A varUnknown holding a counted reference.
  Variant(const IPtr<IInterface>& AValue);
  // A char is ambiguous between a byte and a character; say which by casting.
  Variant(char) = delete;
  // Any other pointer would silently become a Boolean.
  template <class T>
  Variant(T*) = delete;
  Variant(std::nullptr_t) = delete;

  static Variant Null() noexcept;
  static Variant Unassigned() noexcept { return Variant(); }
  /// A varDate; TDateTime is a double, so dates are made explicitly.
  static Variant FromDate(TDateTime AValue) noexcept;
  static Variant FromOleStr(UnicodeString AValue);
  static Variant FromDispatch(const IPtr<IInterface>& AValue);
  static Variant FromError(int32_t ACode) noexcept;

  TVarType VarType() const noexcept { return FType; }
  /// Back to Unassigned.
  void Clear() noexcept;

  // ---- conversions (raise EVariantTypeCastError / EVariantOverflowError on failure) ----
  bool AsBoolean() const;
  ShortInt AsShortInt() const;
  SmallInt AsSmallInt() const;
  Integer AsInteger() const;
  Int64 AsInt64() const;
  Byte AsByte() const;
  Word AsWord() const;
  Cardinal AsCardinal() const;
  UInt64 AsUInt64() const;
  Single AsSingle() const;
  Double AsDouble() const;
  Extended AsExtended() const;
  vn::Currency AsCurrency() const;
  TDateTime AsDateTime() const;
  /// Text of the value; Null raises (use VarToStr for Null as "").
  UnicodeString AsString() const;
  /// 8-bit text: the bytes of a varString, UTF-8 of anything else.
  RawByteString AsAnsiString() const;
  /// The interface of a varUnknown or varDispatch; empty for Empty.
  IPtr<IInterface> AsInterface() const;

  // ---- one-dimensional array shortcuts (see variant_array.h for the general forms) ----
  Variant GetItem(Integer AIndex) const;
  void SetItem(Integer AIndex, const Variant& AValue);

  // ---- arithmetic and logic: the platform's operators. Integers stay Integer while they fit,
  // then Int64, then Double; a text meets a number as a Double; + of two texts concatenates;
  // a Date plus or minus a number stays a Date; Null in an operand gives Null. ----
  friend Variant operator+(const Variant& A, const Variant& B);
  friend Variant operator-(const Variant& A, const Variant& B);
  friend Variant operator*(const Variant& A, const Variant& B);
  /// Division with a float result (Currency stays Currency).
  friend Variant operator/(const Variant& A, const Variant& B);
  /// The platform's mod; integer remainder.
  friend Variant operator%(const Variant& A, const Variant& B);
  friend Variant operator&(const Variant& A, const Variant& B);
  friend Variant operator|(const Variant& A, const Variant& B);
  friend Variant operator^(const Variant& A, const Variant& B);
  /// The platform's not: logical for booleans, bitwise for integers.
  friend Variant operator!(const Variant& A);
  friend Variant operator-(const Variant& A);
  Variant& operator+=(const Variant& B) { return *this = *this + B; }
  Variant& operator-=(const Variant& B) { return *this = *this - B; }
  Variant& operator*=(const Variant& B) { return *this = *this * B; }
  Variant& operator/=(const Variant& B) { return *this = *this / B; }

  // ---- comparison: numbers across kinds, texts as texts, a text against a number as a number,
  // True as -1. Null = Null holds and Null = anything else does not; in an ordering Null acts as
  // Unassigned. Arrays and interfaces raise EVariantInvalidOpError (interfaces allow == by identity).
  // A text that is no number against a number raises EVariantTypeCastError. ----
  friend bool operator==(const Variant& A, const Variant& B);
  friend bool operator<(const Variant& A, const Variant& B);
  friend bool operator<=(const Variant& A, const Variant& B);
  friend bool operator>(const Variant& A, const Variant& B);
  friend bool operator>=(const Variant& A, const Variant& B);

  // ---- raw access for the library's own code: no conversion, the kind must match ----
  const UnicodeString& RawUString() const noexcept { return FData.WStr; }
  const std::string& RawAnsiString() const noexcept { return FData.AStr; }
  Int64 RawInt64() const noexcept { return FData.I; }
  UInt64 RawUInt64() const noexcept { return FData.U; }
  double RawDouble() const noexcept { return FData.D; }
  float RawSingle() const noexcept { return FData.S; }
  bool RawBoolean() const noexcept { return FData.B; }
  detail::VarArrayData* RawArray() const noexcept { return FData.Arr; }
  IInterface* RawInterface() const noexcept { return FData.Intf; }

  /// Adopts array storage (one reference already counted for this Variant).
  static Variant AdoptArray(detail::VarArrayData* AData) noexcept;
  /// Makes the array storage this Variant's own before a write (copy-on-write).
  detail::VarArrayData* UniqueArray();

 private:
  TVarType FType = varEmpty;
  // Integers of every width live in I (unsigned 64 in U), Currency as its raw Int64, Date in D.
  union Data {
    Data() noexcept : I(0) {}
    ~Data() {}
    Int64 I;
    UInt64 U;
    double D;
    float S;
    bool B;
    IInterface* Intf;
    detail::VarArrayData* Arr;
    UnicodeString WStr;
    std::string AStr;
  } FData;
};

// ---- predicates ----
inline TVarType VarType(const Variant& V) noexcept { return V.VarType(); }
inline bool VarIsType(const Variant& V, TVarType AVarType) noexcept { return V.VarType() == AVarType; }
inline bool VarIsEmpty(const Variant& V) noexcept { return V.VarType() == varEmpty; }
inline bool VarIsNull(const Variant& V) noexcept { return V.VarType() == varNull; }
/// Empty, or an interface kind holding no interface.
bool VarIsClear(const Variant& V) noexcept;
inline bool VarIsArray(const Variant& V) noexcept { return (V.VarType() & varArray) != 0; }
/// Integer kinds and Boolean.
bool VarIsOrdinal(const Variant& V) noexcept;
/// Single, Double, Currency (not Date).
bool VarIsFloat(const Variant& V) noexcept;
/// Ordinal or float.
bool VarIsNumeric(const Variant& V) noexcept;
/// OleStr, String, UString.
bool VarIsStr(const Variant& V) noexcept;
bool VarTypeIsValidElementType(TVarType AVarType) noexcept;

/// The platform's name of a type code: "Integer", "UnicodeString", "Array Variant", "$0042".
UnicodeString VarTypeAsText(TVarType AVarType);

// ---- conversions ----
/// A copy converted to AVarType (varEmpty and varNull give Unassigned and Null).
Variant VarAsType(const Variant& V, TVarType AVarType);
/// Text of the value; Null gives "".
UnicodeString VarToStr(const Variant& V);
inline UnicodeString VarToUStr(const Variant& V) { return VarToStr(V); }
inline UnicodeString VarToWideStr(const Variant& V) { return VarToStr(V); }
/// Text of the value; Null gives ADefault.
UnicodeString VarToStrDef(const Variant& V, std::u16string_view ADefault);
TDateTime VarToDateTime(const Variant& V);

/// vrEqual, vrLessThan, vrGreaterThan; vrNotEqual when exactly one side is Null.
TVariantRelationship VarCompareValue(const Variant& A, const Variant& B);
/// The platform's div: integer quotient.
Variant VarIntDiv(const Variant& A, const Variant& B);

}  // namespace vn

#include "vnxml/common/variant_array.h"
