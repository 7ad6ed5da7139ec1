// xml_escape.h: escaping of text into XML character data and decoding back (unit uVnXMLUtils).
// VnStrToXML escapes markup characters and control characters; VnXMLToStr decodes character
// references and the HTML 4.01 entity names, leaving whatever it does not recognise in the text.
// Failures: only VnXMLToStr raises, EConvertError for a numeric reference without valid digits.
#pragma once

#include <cstdint>
#include <string_view>

#include "vnxml/common/types.h"

namespace vn {

class TVnStringStream;

/// Escapes < > & and the characters 1 to 31; apostrophe and quote only when asked. Drops character 0.
UnicodeString VnStrToXML(std::u16string_view S, bool EscapeApostrophe, bool EscapeQuote);
/// The 8-bit form: works on bytes, bytes above 127 and byte 0 pass unchanged.
AnsiString VnStrToXML(std::string_view S, bool EscapeApostrophe, bool EscapeQuote);
/// Appends the escaped form of ALength characters at AText to AStream; character 0 passes unchanged.
void VnStrToXML(const char16_t* AText, Integer ALength, TVnStringStream& AStream, bool EscapeApostrophe,
                bool EscapeQuote);

/// Decodes "&#N;", "&#xN;" and the 253 entity names; unknown, overlong or unterminated ones stay as text.
UnicodeString VnXMLToStr(std::u16string_view S);
/// The 8-bit form: numeric references as above, names only by their first letter (amp apos gt lt quot).
AnsiString VnXMLToStr(std::string_view S);

// Keep string literals on the UTF-16 overloads (a literal would otherwise be ambiguous).
inline UnicodeString VnStrToXML(const char16_t* S, bool EscapeApostrophe, bool EscapeQuote) {
  return VnStrToXML(std::u16string_view(S), EscapeApostrophe, EscapeQuote);
}
inline UnicodeString VnStrToXML(const UnicodeString& S, bool EscapeApostrophe, bool EscapeQuote) {
  return VnStrToXML(std::u16string_view(S), EscapeApostrophe, EscapeQuote);
}
inline UnicodeString VnXMLToStr(const char16_t* S) { return VnXMLToStr(std::u16string_view(S)); }
inline UnicodeString VnXMLToStr(const UnicodeString& S) { return VnXMLToStr(std::u16string_view(S)); }
inline AnsiString VnStrToXML(const char* S, bool EscapeApostrophe, bool EscapeQuote) {
  return VnStrToXML(std::string_view(S), EscapeApostrophe, EscapeQuote);
}
inline AnsiString VnStrToXML(const AnsiString& S, bool EscapeApostrophe, bool EscapeQuote) {
  return VnStrToXML(std::string_view(S), EscapeApostrophe, EscapeQuote);
}
inline AnsiString VnXMLToStr(const char* S) { return VnXMLToStr(std::string_view(S)); }
inline AnsiString VnXMLToStr(const AnsiString& S) { return VnXMLToStr(std::string_view(S)); }

namespace detail {
/// Folds an entity name into its 32-bit lookup key; only the low byte of the first 8 characters counts.
uint32_t XMLEntityKey(std::u16string_view AName) noexcept;
/// Finds the code unit of the entity with key AKey; false when none has it.
bool FindXMLEntity(uint32_t AKey, char16_t& AChar) noexcept;
}  // namespace detail

}  // namespace vn
