// vn_chars.h: the character constants of the scanners and writers, and TSysCharSet (unit rVnCommon).
// Each constant comes as cVnX (Char), cVnXA (AnsiChar) and cVnXW (WideChar).
#pragma once

#include <initializer_list>

#include "vnxml/common/types.h"

namespace vn {

#define VN_CHAR_CONSTANT(Name, Ch)                   \
  inline constexpr char16_t cVn##Name = u##Ch;       \
  inline constexpr char cVn##Name##A = Ch;           \
  inline constexpr char16_t cVn##Name##W = u##Ch;

VN_CHAR_CONSTANT(Lt, '<')
VN_CHAR_CONSTANT(Gt, '>')
VN_CHAR_CONSTANT(Amp, '&')
VN_CHAR_CONSTANT(Apos, '\'')
VN_CHAR_CONSTANT(Quote, '"')
VN_CHAR_CONSTANT(Equal, '=')
VN_CHAR_CONSTANT(Quest, '?')
VN_CHAR_CONSTANT(Excl, '!')
VN_CHAR_CONSTANT(Slash, '/')
VN_CHAR_CONSTANT(Space, ' ')
VN_CHAR_CONSTANT(Colon, ':')
VN_CHAR_CONSTANT(Line, '-')
VN_CHAR_CONSTANT(BracketO, '[')
VN_CHAR_CONSTANT(BracketC, ']')
VN_CHAR_CONSTANT(SemiColon, ';')
VN_CHAR_CONSTANT(EOF, '\0')

#undef VN_CHAR_CONSTANT

/// A set of 8-bit characters (the platform's "set of AnsiChar"), usable in constant expressions:
/// `constexpr TSysCharSet cBlanks{' ', '\t', '\r', '\n'};`, `TSysCharSet::Range('a', 'z')`.
class TSysCharSet {
 public:
  constexpr TSysCharSet() = default;
  constexpr TSysCharSet(std::initializer_list<char> AChars) {
    for (char c : AChars) Include(c);
  }
  /// The characters AFirst to ALast, both included.
  static constexpr TSysCharSet Range(char AFirst, char ALast) {
    TSysCharSet s;
    for (unsigned c = static_cast<uint8_t>(AFirst); c <= static_cast<uint8_t>(ALast); ++c) s.Include(static_cast<char>(c));
    return s;
  }
  constexpr void Include(char AChar) {
    const auto c = static_cast<uint8_t>(AChar);
    FBits[c >> 6] |= uint64_t{1} << (c & 63);
  }
  constexpr void Exclude(char AChar) {
    const auto c = static_cast<uint8_t>(AChar);
    FBits[c >> 6] &= ~(uint64_t{1} << (c & 63));
  }
  /// False for every character above 255.
  constexpr bool Contains(uint32_t AChar) const {
    return AChar < 256 && ((FBits[AChar >> 6] >> (AChar & 63)) & 1) != 0;
  }
  constexpr bool Contains(char AChar) const { return Contains(static_cast<uint32_t>(static_cast<uint8_t>(AChar))); }
  constexpr bool Contains(char16_t AChar) const { return Contains(static_cast<uint32_t>(AChar)); }
  friend constexpr TSysCharSet operator+(TSysCharSet A, const TSysCharSet& B) {
    for (int i = 0; i < 4; ++i) A.FBits[i] |= B.FBits[i];
    return A;
  }
  friend constexpr TSysCharSet operator-(TSysCharSet A, const TSysCharSet& B) {
    for (int i = 0; i < 4; ++i) A.FBits[i] &= ~B.FBits[i];
    return A;
  }
  friend constexpr bool operator==(const TSysCharSet&, const TSysCharSet&) = default;

 private:
  uint64_t FBits[4] = {};
};

}  // namespace vn
