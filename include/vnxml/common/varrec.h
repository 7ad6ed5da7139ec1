// varrec.h: TVarRec, one argument of the platform's "array of const" (Format, CreateFmt).
#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "vnxml/common/types.h"

namespace vn {

class TVarRec {
 public:
  enum TKind : uint8_t { vtInteger, vtUInt64, vtExtended, vtString, vtChar, vtBoolean, vtPointer };

  template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char16_t> && !std::same_as<T, char>)
  TVarRec(T AValue) {
    if constexpr (std::is_unsigned_v<T> && sizeof(T) >= 8) {
      FKind = vtUInt64;
      FUInt = AValue;
    } else {
      FKind = vtInteger;
      FInt = static_cast<Int64>(AValue);
    }
  }
  TVarRec(bool AValue) : FKind(vtBoolean), FInt(AValue ? 1 : 0) {}
  TVarRec(float AValue) : FKind(vtExtended), FExt(AValue) {}
  TVarRec(double AValue) : FKind(vtExtended), FExt(AValue) {}
  TVarRec(long double AValue) : FKind(vtExtended), FExt(AValue) {}
  TVarRec(char16_t AValue) : FKind(vtChar), FInt(AValue) {}
  TVarRec(char AValue) : FKind(vtChar), FInt(static_cast<uint8_t>(AValue)) {}
  TVarRec(std::u16string_view AValue) : FKind(vtString), FStr(AValue) {}
  TVarRec(const std::u16string& AValue) : FKind(vtString), FStr(AValue) {}
  TVarRec(const char16_t* AValue) : FKind(vtString), FStr(AValue ? AValue : u"") {}
  /// 8-bit text is taken as UTF-8.
  TVarRec(std::string_view AValue);
  TVarRec(const std::string& AValue) : TVarRec(std::string_view(AValue)) {}
  TVarRec(const char* AValue) : TVarRec(std::string_view(AValue ? AValue : "")) {}
  TVarRec(const void* AValue) : FKind(vtPointer), FPtr(AValue) {}

  TKind Kind() const { return FKind; }
  Int64 AsInt64() const { return FInt; }
  UInt64 AsUInt64() const { return FUInt; }
  long double AsExtended() const { return FExt; }
  const std::u16string& AsString() const { return FStr; }
  const void* AsPointer() const { return FPtr; }

 private:
  TKind FKind;
  union {
    Int64 FInt;
    UInt64 FUInt;
    long double FExt;
    const void* FPtr;
  };
  std::u16string FStr;
};

}  // namespace vn
