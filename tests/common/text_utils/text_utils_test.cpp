// Normal forms, simplified text and literal quotes.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "vnxml/common/text_utils.h"

namespace vn {
namespace {

std::string Narrow(std::u16string_view AText) { return std::string(AText.begin(), AText.end()); }

TEST(VnNormalizeString, GivesEachOfTheFourFormsByExactName) {
  const std::tuple<std::u16string_view, TVnNormalizationForm, std::u16string_view> cases[] = {
      {u"", nfC, u""}, {u"plain", nfKD, u"plain"}, {u"e\u0301", nfC, u"\u00E9"}, {u"\u00E9", nfD, u"e\u0301"},
      {u"\uFB01", nfC, u"\uFB01"},  // a ligature survives canonical forms...
      {u"\uFB01", nfKC, u"fi"},     // ...but not compatibility forms
      {u"\uD55C", nfD, u"\u1112\u1161\u11AB"},  // Hangul syllable to jamo
      {u"a\xD800\u0301", nfC, u"a\xD800\u0301"},  // a lone surrogate passes through
  };
  for (const auto& [input, form, expected] : cases)
    EXPECT_EQ(VnNormalizeString(input, form), expected) << Narrow(input) << " form " << int(form);
  EXPECT_EQ(VnNormalizeString(u"e\u0301"), u"\u00E9");  // NFC unless told otherwise

  // Form names are exact.
  TVnNormalizationForm form = nfC;
  EXPECT_EQ((std::tuple{VnNormalizationFormFromName(u"NFKD", form), form}), std::tuple(true, nfKD));
  EXPECT_EQ((std::tuple{VnNormalizationFormFromName(u"NFD", form), form}), std::tuple(true, nfD));
  for (std::u16string_view bad : {u"nfc", u"NFC ", u"", u"NFKX", u"FULLY-NORMALIZED"})
    EXPECT_FALSE(VnNormalizationFormFromName(bad, form)) << Narrow(bad);
}

TEST(TextUtils, SimplifyKeepsBaseLettersAndStripRemovesEnclosingQuotes) {
  using TextFn = UnicodeString (*)(std::u16string_view);
  const TextFn simplify = VnSimplifyString, strip = VnStripLiterals;
  const std::tuple<TextFn, std::u16string_view, std::u16string_view> cases[] = {
      {simplify, u"Cr\u00E8me Br\u00FBl\u00E9e", u"Creme Brulee"},
      {simplify, u"\uFB01anc\u00E9", u"fiance"}, {simplify, u"\uFF21\uFF22\uFF23", u"ABC"},
      {simplify, u"\u00D8resund \u0141\u00F3d\u017A stra\u00DFe", u"Oresund Lodz strasse"},
      {simplify, u"\u00C6sir \u0153uvre", u"AEsir oeuvre"},
      {simplify, u"\uD55C\uAD6D\uC5B4", u"\uD55C\uAD6D\uC5B4"},  // Hangul recomposes after decomposition
      {simplify, u"\U0001F600\u0301", u"\U0001F600"}, {simplify, u"", u""},
      {strip, u"'abc'", u"abc"}, {strip, u"\"abc\"", u"abc"}, {strip, u"''", u""},
      {strip, u"'", u""},            // an opening quote alone
      {strip, u"'abc", u"abc"},      // unterminated: the opening quote goes
      {strip, u"'abc\"", u"abc\""},  // the end quote must be the same kind
      {strip, u"abc'", u"abc'"},     // no opening quote: unchanged
      {strip, u" 'abc' ", u" 'abc' "},  // blanks are not trimmed
      {strip, u"'it''s'", u"it''s"},    // inner quotes stay
      {strip, u"", u""},
  };
  for (const auto& [fn, input, expected] : cases) EXPECT_EQ(fn(input), expected) << Narrow(input);
}

}  // namespace
}  // namespace vn
