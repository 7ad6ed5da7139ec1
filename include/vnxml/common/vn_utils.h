// vn_utils.h: small text helpers of the common package (unit rVnCommon).
#pragma once

#include <string_view>
#include <vector>

#include "vnxml/common/types.h"
#include "vnxml/common/vn_chars.h"

namespace vn {

/// True when AChar is below 256 and in ASet.
inline bool VnCharInSet(char16_t AChar, const TSysCharSet& ASet) { return ASet.Contains(AChar); }
inline bool VnCharInSet(char AChar, const TSysCharSet& ASet) { return ASet.Contains(AChar); }

/// Equal texts when the letters A-Z are folded to lower case (no other folding).
bool VnSameText(std::u16string_view A, std::u16string_view B);
bool VnSameText(std::string_view A, std::string_view B);

/// ATrue when ACondition holds, else AFalse (both are evaluated).
template <class T>
constexpr T VnIf(bool ACondition, T ATrue, T AFalse) {
  return ACondition ? ATrue : AFalse;
}

/// Cuts AText at each occurrence of ASeparator, left to right, without regard to quotes or
/// brackets. Empty tokens are kept ("a||b" with "|" gives "a", "", "b"); an empty text gives
/// no token; an empty separator gives the whole text as one token.
std::vector<UnicodeString> VnTokenize(std::u16string_view AText, std::u16string_view ASeparator);

/// The text of a file: a byte-order mark decides its encoding, else ACodePage (0: UTF-8).
/// Raises EFOpenError when the file can't be opened.
UnicodeString VnLoadStringFromFile(std::u16string_view AFileName, Word ACodePage = 0);

}  // namespace vn
