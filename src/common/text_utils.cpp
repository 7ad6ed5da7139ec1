// Unicode normalization and simplification over ICU's normalizers, and literal quote stripping.
#include "vnxml/common/text_utils.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include "vnxml/common/exception.h"
#include "vnxml/common/utf.h"

namespace vn {
namespace {

const UNormalizer2* Normalizer(TVnNormalizationForm AForm) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* normalizer = nullptr;
  switch (AForm) {
    case nfC:
      normalizer = unorm2_getNFCInstance(&status);
      break;
    case nfD:
      normalizer = unorm2_getNFDInstance(&status);
      break;
    case nfKC:
      normalizer = unorm2_getNFKCInstance(&status);
      break;
    case nfKD:
      normalizer = unorm2_getNFKDInstance(&status);
      break;
  }
  if (U_FAILURE(status) || normalizer == nullptr)
    throw Exception(u"Unicode normalization is not available: " + AsciiToUnicode(u_errorName(status)));
  return normalizer;
}

UnicodeString Normalize(const UNormalizer2* ANormalizer, std::u16string_view AText) {
  if (AText.size() > static_cast<size_t>(INT32_MAX / 4)) throw EOutOfMemory(u"Text too long to normalize");
  const auto length = static_cast<int32_t>(AText.size());
  UErrorCode status = U_ZERO_ERROR;
  // Most text is already normalized: answer it with one scan and one copy.
  const int32_t normalPrefix = unorm2_spanQuickCheckYes(ANormalizer, AText.data(), length, &status);
  if (U_SUCCESS(status) && normalPrefix == length) return UnicodeString(AText);
  UnicodeString out(AText.size() + AText.size() / 2 + 8, u'\0');
  status = U_ZERO_ERROR;
  int32_t written = unorm2_normalize(ANormalizer, AText.data(), length, out.data(),
                                     static_cast<int32_t>(out.size()), &status);
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    out.assign(static_cast<size_t>(written), u'\0');
    status = U_ZERO_ERROR;
    written = unorm2_normalize(ANormalizer, AText.data(), length, out.data(),
                               static_cast<int32_t>(out.size()), &status);
  }
  if (U_FAILURE(status))
    throw Exception(u"Unicode normalization failed: " + AsciiToUnicode(u_errorName(status)));
  out.resize(static_cast<size_t>(written));
  return out;
}

// Latin letters with a mark that is part of the letter itself, so no decomposition removes it.
struct BaseLetter {
  char16_t Letter;
  std::u16string_view Base;
};
constexpr BaseLetter kBaseLetters[] = {
    {u'\u00D8', u"O"},  {u'\u00F8', u"o"},  {u'\u0141', u"L"},  {u'\u0142', u"l"},  {u'\u0110', u"D"},
    {u'\u0111', u"d"},  {u'\u00D0', u"D"},  {u'\u00F0', u"d"},  {u'\u0126', u"H"},  {u'\u0127', u"h"},
    {u'\u0131', u"i"},  {u'\u00DF', u"ss"}, {u'\u1E9E', u"SS"}, {u'\u00C6', u"AE"}, {u'\u00E6', u"ae"},
    {u'\u0152', u"OE"}, {u'\u0153', u"oe"}, {u'\u00DE', u"TH"}, {u'\u00FE', u"th"},
};

std::u16string_view BaseLetters(UChar32 ACh) {
  for (const BaseLetter& entry : kBaseLetters)
    if (entry.Letter == ACh) return entry.Base;
  return {};
}

}  // namespace

UnicodeString VnNormalizeString(std::u16string_view AText, TVnNormalizationForm AForm) {
  return Normalize(Normalizer(AForm), AText);
}

bool VnNormalizationFormFromName(std::u16string_view AName, TVnNormalizationForm& AForm) noexcept {
  if (AName == u"NFC")
    AForm = nfC;
  else if (AName == u"NFD")
    AForm = nfD;
  else if (AName == u"NFKC")
    AForm = nfKC;
  else if (AName == u"NFKD")
    AForm = nfKD;
  else
    return false;
  return true;
}

UnicodeString VnSimplifyString(std::u16string_view AText) {
  const UnicodeString decomposed = Normalize(Normalizer(nfKD), AText);
  UnicodeString stripped;
  stripped.reserve(decomposed.size());
  const auto length = static_cast<int32_t>(decomposed.size());
  for (int32_t i = 0; i < length;) {
    const int32_t start = i;
    UChar32 ch = 0;
    U16_NEXT(decomposed.data(), i, length, ch);
    if (u_charType(ch) == U_NON_SPACING_MARK) continue;
    const std::u16string_view base = BaseLetters(ch);
    if (!base.empty())
      stripped.append(base);
    else
      stripped.append(decomposed, static_cast<size_t>(start), static_cast<size_t>(i - start));
  }
  // Recompose what decomposition split without marks, such as Hangul syllables.
  return Normalize(Normalizer(nfC), stripped);
}

UnicodeString VnStripLiterals(std::u16string_view AText) {
  if (AText.empty() || (AText.front() != u'\'' && AText.front() != u'"')) return UnicodeString(AText);
  const char16_t quote = AText.front();
  if (AText.size() >= 2 && AText.back() == quote) return UnicodeString(AText.substr(1, AText.size() - 2));
  return UnicodeString(AText.substr(1));
}

}  // namespace vn
