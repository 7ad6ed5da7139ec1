// Normal forms, simplified text and literal quotes.
#include <gtest/gtest.h>

#include <string>

#include "vnxml/common/text_utils.h"

namespace vn {
namespace {

std::string Narrow(std::u16string_view AText) { return std::string(AText.begin(), AText.end()); }

struct NormalizeCase {
  std::u16string_view Input;
  TVnNormalizationForm Form;
  std::u16string_view Expected;
};

TEST(VnNormalizeString, GivesEachOfTheFourForms) {
  const NormalizeCase cases[] = {
      {u"", nfC, u""}, {u"plain", nfKD, u"plain"}, {u"e\u0301", nfC, u"\u00E9"}, {u"\u00E9", nfD, u"e\u0301"},
      {u"\uFB01", nfC, u"\uFB01"},  // a ligature survives canonical forms...
      {u"\uFB01", nfKC, u"fi"},     // ...but not compatibility forms
      {u"\uD55C", nfD, u"\u1112\u1161\u11AB"},  // Hangul syllable to jamo
      {u"a\xD800\u0301", nfC, u"a\xD800\u0301"},  // a lone surrogate passes through
  };
  for (const NormalizeCase& c : cases)
    EXPECT_EQ(VnNormalizeString(c.Input, c.Form), c.Expected) << Narrow(c.Input) << " form " << int(c.Form);
  EXPECT_EQ(VnNormalizeString(u"e\u0301"), u"\u00E9");  // NFC unless told otherwise
}

TEST(VnNormalizeString, FormNamesAreExact) {
  TVnNormalizationForm form = nfC;
  EXPECT_TRUE(VnNormalizationFormFromName(u"NFKD", form));
  EXPECT_EQ(form, nfKD);
  EXPECT_TRUE(VnNormalizationFormFromName(u"NFD", form));
  EXPECT_EQ(form, nfD);
  for (std::u16string_view bad : {u"nfc", u"NFC ", u"", u"NFKX", u"FULLY-NORMALIZED"})
    EXPECT_FALSE(VnNormalizationFormFromName(bad, form)) << Narrow(bad);
}

TEST(VnSimplifyString, RemovesMarksAndKeepsBaseLetters) {
  const std::pair<std::u16string_view, std::u16string_view> cases[] = {
      {u"Cr\u00E8me Br\u00FBl\u00E9e", u"Creme Brulee"},
      {u"\uFB01anc\u00E9", u"fiance"}, {u"\uFF21\uFF22\uFF23", u"ABC"},
      {u"\u00D8resund \u0141\u00F3d\u017A stra\u00DFe", u"Oresund Lodz strasse"},
      {u"\u00C6sir \u0153uvre", u"AEsir oeuvre"},
      {u"\uD55C\uAD6D\uC5B4", u"\uD55C\uAD6D\uC5B4"},  // Hangul recomposes after decomposition
      {u"\U0001F600\u0301", u"\U0001F600"}, {u"", u""},
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(VnSimplifyString(input), expected) << Narrow(input);
}

TEST(VnStripLiterals, RemovesEnclosingQuotes) {
  const std::pair<std::u16string_view, std::u16string_view> cases[] = {
      {u"'abc'", u"abc"}, {u"\"abc\"", u"abc"}, {u"''", u""},
      {u"'", u""},            // an opening quote alone
      {u"'abc", u"abc"},      // unterminated: the opening quote goes
      {u"'abc\"", u"abc\""},  // the end quote must be the same kind
      {u"abc'", u"abc'"},     // no opening quote: unchanged
      {u" 'abc' ", u" 'abc' "},  // blanks are not trimmed
      {u"'it''s'", u"it''s"},    // inner quotes stay
      {u"", u""},
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(VnStripLiterals(input), expected) << Narrow(input);
}

}  // namespace
}  // namespace vn
