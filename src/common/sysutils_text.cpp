// Text helpers of the platform: trimming, case folding, comparison, search, quoting, replacing.
#include <unicode/ucol.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include "vnxml/common/sysutils.h"

namespace vn {

namespace {

char16_t AsciiUpper(char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c; }
char16_t AsciiLower(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; }

// Simple (one unit to one unit) case folding keeps positions aligned with the original text,
// which search and replace need.
char16_t FoldUnit(char16_t c) {
  if (c < 0x80) return AsciiLower(c);
  if (c >= 0xD800 && c <= 0xDFFF) return c;
  return static_cast<char16_t>(u_foldCase(c, U_FOLD_CASE_DEFAULT));
}

UnicodeString FoldUnits(std::u16string_view AText) {
  UnicodeString s(AText);
  for (auto& c : s) c = FoldUnit(c);
  return s;
}

using CaseMapper = int32_t (*)(UChar*, int32_t, const UChar*, int32_t, const char*, UErrorCode*);

UnicodeString MapCase(std::u16string_view AText, CaseMapper AMapper) {
  if (AText.empty()) return {};
  UnicodeString out(AText.size(), u'\0');
  UErrorCode err = U_ZERO_ERROR;
  int32_t len = AMapper(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()),
                        reinterpret_cast<const UChar*>(AText.data()), static_cast<int32_t>(AText.size()), "", &err);
  if (err == U_BUFFER_OVERFLOW_ERROR) {
    // Some characters map to several (German sharp s to "SS"): size the buffer and map again.
    out.assign(static_cast<size_t>(len), u'\0');
    err = U_ZERO_ERROR;
    len = AMapper(reinterpret_cast<UChar*>(out.data()), len, reinterpret_cast<const UChar*>(AText.data()),
                  static_cast<int32_t>(AText.size()), "", &err);
  }
  if (U_FAILURE(err)) return UnicodeString(AText);
  out.resize(static_cast<size_t>(len));
  return out;
}

int32_t ToUpperMapper(UChar* d, int32_t dc, const UChar* s, int32_t sc, const char* l, UErrorCode* e) {
  return u_strToUpper(d, dc, s, sc, l, e);
}
int32_t ToLowerMapper(UChar* d, int32_t dc, const UChar* s, int32_t sc, const char* l, UErrorCode* e) {
  return u_strToLower(d, dc, s, sc, l, e);
}

// Root collators, created once; ICU allows concurrent use of a collator for comparing.
UCollator* OpenCollator(UColAttributeValue AStrength) {
  UErrorCode err = U_ZERO_ERROR;
  UCollator* c = ucol_open("", &err);
  if (U_FAILURE(err)) return nullptr;
  ucol_setStrength(c, AStrength);
  return c;
}

Integer Collate(std::u16string_view A, std::u16string_view B, bool ACaseSensitive) {
  static UCollator* const caseSensitive = OpenCollator(UCOL_TERTIARY);
  static UCollator* const caseInsensitive = OpenCollator(UCOL_SECONDARY);
  UCollator* c = ACaseSensitive ? caseSensitive : caseInsensitive;
  if (!c) return 0;
  return ucol_strcoll(c, reinterpret_cast<const UChar*>(A.data()), static_cast<int32_t>(A.size()),
                      reinterpret_cast<const UChar*>(B.data()), static_cast<int32_t>(B.size()));
}

Integer FoldCompare(std::u16string_view A, std::u16string_view B) {
  UErrorCode err = U_ZERO_ERROR;
  return u_strCaseCompare(reinterpret_cast<const UChar*>(A.data()), static_cast<int32_t>(A.size()),
                          reinterpret_cast<const UChar*>(B.data()), static_cast<int32_t>(B.size()),
                          U_FOLD_CASE_DEFAULT, &err);
}

}  // namespace

// ---- trimming ----

UnicodeString Trim(std::u16string_view AText) {
  size_t b = 0, e = AText.size();
  while (b < e && AText[b] <= u' ') ++b;
  while (e > b && AText[e - 1] <= u' ') --e;
  return UnicodeString(AText.substr(b, e - b));
}

UnicodeString TrimLeft(std::u16string_view AText) {
  size_t b = 0;
  while (b < AText.size() && AText[b] <= u' ') ++b;
  return UnicodeString(AText.substr(b));
}

UnicodeString TrimRight(std::u16string_view AText) {
  size_t e = AText.size();
  while (e > 0 && AText[e - 1] <= u' ') --e;
  return UnicodeString(AText.substr(0, e));
}

// ---- case ----

UnicodeString UpperCase(std::u16string_view AText) {
  UnicodeString s(AText);
  for (auto& c : s) c = AsciiUpper(c);
  return s;
}

UnicodeString LowerCase(std::u16string_view AText) {
  UnicodeString s(AText);
  for (auto& c : s) c = AsciiLower(c);
  return s;
}

Integer CompareText(std::u16string_view A, std::u16string_view B) {
  const size_t n = std::min(A.size(), B.size());
  for (size_t i = 0; i < n; ++i) {
    const char16_t a = AsciiUpper(A[i]), b = AsciiUpper(B[i]);
    if (a != b) return static_cast<Integer>(a) - static_cast<Integer>(b);
  }
  return static_cast<Integer>(A.size()) - static_cast<Integer>(B.size());
}

bool SameText(std::u16string_view A, std::u16string_view B) { return A.size() == B.size() && CompareText(A, B) == 0; }

Integer CompareStr(std::u16string_view A, std::u16string_view B) {
  const size_t n = std::min(A.size(), B.size());
  for (size_t i = 0; i < n; ++i)
    if (A[i] != B[i]) return static_cast<Integer>(A[i]) - static_cast<Integer>(B[i]);
  return static_cast<Integer>(A.size()) - static_cast<Integer>(B.size());
}

UnicodeString AnsiUpperCase(std::u16string_view AText) { return MapCase(AText, &ToUpperMapper); }
UnicodeString AnsiLowerCase(std::u16string_view AText) { return MapCase(AText, &ToLowerMapper); }

bool AnsiSameText(std::u16string_view A, std::u16string_view B) {
  return (A.size() == B.size() && SameText(A, B)) || FoldCompare(A, B) == 0;
}

Integer AnsiCompareStr(std::u16string_view A, std::u16string_view B) {
  if (A == B) return 0;
  const Integer r = Collate(A, B, true);
  // Texts the collation cannot tell apart (ignorable characters) still get a fixed order.
  return r != 0 ? r : (CompareStr(A, B) < 0 ? -1 : 1);
}

Integer AnsiCompareText(std::u16string_view A, std::u16string_view B) {
  const Integer folded = FoldCompare(A, B);
  if (folded == 0) return 0;
  const Integer r = Collate(A, B, false);
  return r != 0 ? r : (folded < 0 ? -1 : 1);
}

// ---- quoting ----

UnicodeString QuotedStr(std::u16string_view AText, char16_t AQuote) {
  UnicodeString s;
  s.reserve(AText.size() + 2);
  s += AQuote;
  for (char16_t c : AText) {
    s += c;
    if (c == AQuote) s += c;
  }
  s += AQuote;
  return s;
}

UnicodeString AnsiDequotedStr(std::u16string_view AText, char16_t AQuote) {
  // Extract as the platform does: up to the first single quote, doubled quotes halved. The text
  // comes back unchanged when it is not fully quoted and nothing (or everything) was extracted.
  UnicodeString extracted;
  size_t i = 0;
  bool stoppedInside = false;  // the closing quote was followed by more text
  if (!AText.empty() && AText[0] == AQuote) {
    i = 1;
    while (i < AText.size()) {
      if (AText[i] == AQuote) {
        if (i + 1 < AText.size() && AText[i + 1] == AQuote) {
          extracted += AQuote;
          i += 2;
          continue;
        }
        ++i;
        break;
      }
      extracted += AText[i++];
    }
    stoppedInside = i < AText.size();
  }
  if ((extracted.empty() || !stoppedInside) && !AText.empty() &&
      (AText.front() != AQuote || AText.back() != AQuote))
    return UnicodeString(AText);
  return extracted;
}

// ---- search and replace ----

Integer Pos(std::u16string_view ASub, std::u16string_view AText, Integer AOffset) {
  if (ASub.empty() || AOffset < 1 || static_cast<size_t>(AOffset) > AText.size()) return 0;
  const size_t at = AText.find(ASub, static_cast<size_t>(AOffset - 1));
  return at == std::u16string_view::npos ? 0 : static_cast<Integer>(at + 1);
}

UnicodeString Copy(std::u16string_view AText, Integer AIndex, Integer ACount) {
  if (AIndex < 1) AIndex = 1;
  if (ACount <= 0 || static_cast<size_t>(AIndex) > AText.size()) return {};
  return UnicodeString(AText.substr(static_cast<size_t>(AIndex - 1), static_cast<size_t>(ACount)));
}

UnicodeString StringReplace(std::u16string_view AText, std::u16string_view AOld, std::u16string_view ANew,
                            unsigned AFlags) {
  if (AOld.empty()) return UnicodeString(AText);
  const bool ignoreCase = (AFlags & rfIgnoreCase) != 0;
  const UnicodeString foldedText = ignoreCase ? FoldUnits(AText) : UnicodeString();
  const UnicodeString foldedOld = ignoreCase ? FoldUnits(AOld) : UnicodeString();
  const std::u16string_view hay = ignoreCase ? std::u16string_view(foldedText) : AText;
  const std::u16string_view needle = ignoreCase ? std::u16string_view(foldedOld) : AOld;

  UnicodeString out;
  size_t from = 0;
  while (true) {
    const size_t at = hay.find(needle, from);
    if (at == std::u16string_view::npos) break;
    out.append(AText.substr(from, at - from));
    out.append(ANew);
    from = at + needle.size();
    if (!(AFlags & rfReplaceAll)) break;
  }
  out.append(AText.substr(from));
  return out;
}

bool StartsStr(std::u16string_view ASubText, std::u16string_view AText) { return AText.starts_with(ASubText); }
bool EndsStr(std::u16string_view ASubText, std::u16string_view AText) { return AText.ends_with(ASubText); }

bool StartsText(std::u16string_view ASubText, std::u16string_view AText) {
  return ASubText.size() <= AText.size() && FoldUnits(AText.substr(0, ASubText.size())) == FoldUnits(ASubText);
}

bool EndsText(std::u16string_view ASubText, std::u16string_view AText) {
  return ASubText.size() <= AText.size() &&
         FoldUnits(AText.substr(AText.size() - ASubText.size())) == FoldUnits(ASubText);
}

bool ContainsText(std::u16string_view AText, std::u16string_view ASubText) {
  return FoldUnits(AText).find(FoldUnits(ASubText)) != UnicodeString::npos;
}

UnicodeString StringOfChar(char16_t ACh, Integer ACount) {
  return ACount > 0 ? UnicodeString(static_cast<size_t>(ACount), ACh) : UnicodeString();
}

}  // namespace vn
