// text_utils.h: Unicode normal forms, simplified text and literal quotes (common package, rVnCommon).
// All functions are pure; invalid UTF-16 (a lone surrogate) passes through unchanged.
#pragma once

#include <cstdint>
#include <string_view>

#include "vnxml/common/types.h"

namespace vn {

/// The four Unicode normalization forms.
enum TVnNormalizationForm : uint8_t { nfC, nfD, nfKC, nfKD };

/// AText in normalization form AForm.
UnicodeString VnNormalizeString(std::u16string_view AText, TVnNormalizationForm AForm = nfC);
/// The form named exactly "NFC", "NFD", "NFKC" or "NFKD"; false for any other text.
bool VnNormalizationFormFromName(std::u16string_view AName, TVnNormalizationForm& AForm) noexcept;

/// Text reduced to its base letters for lenient comparison: "Crème Brûlée" gives "Creme Brulee".
/// Compatibility forms are unfolded (ligature "ﬁ" gives "fi", full-width "Ａ" gives "A"), combining
/// marks are removed, and Latin letters whose mark is part of the letter lose it too (ø o, ł l, đ d,
/// ħ h, ı i; ß ss, æ ae, œ oe, þ th, ð d). Case is kept. The result is in form NFC.
UnicodeString VnSimplifyString(std::u16string_view AText);

/// The text of a literal without its quotes: 'abc' and "abc" give abc. A leading quote without a
/// matching end quote is removed alone (the literal ran to the end); a text that does not begin with
/// a quote is returned unchanged, also when it ends with one. Quotes inside stay as they are.
UnicodeString VnStripLiterals(std::u16string_view AText);

}  // namespace vn
