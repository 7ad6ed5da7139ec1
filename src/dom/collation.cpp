// The two name collations on ICU's root collator, with fast paths for the names a tree usually holds.
#include <unicode/ucol.h>

#include <memory>

#include "vnxml/common/exception.h"
#include "vnxml/dom_messages.h"
#include "vnxml/dom_names.h"

namespace vn {
namespace {

struct CollatorCloser {
  void operator()(UCollator* c) const noexcept { ucol_close(c); }
};

// The root collator is immutable after set-up, and ucol_strcoll on a shared collator is thread-safe.
UCollator* OpenRoot(UColAttributeValue AStrength) {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* c = ucol_open("", &status);
  if (U_FAILURE(status)) throw Exception(cVnDomNoCollator);
  ucol_setStrength(c, AStrength);
  return c;
}

UCollator* CaseInsensitiveCollator() {
  static std::unique_ptr<UCollator, CollatorCloser> c(OpenRoot(UCOL_SECONDARY));
  return c.get();
}

UCollator* CaseSensitiveCollator() {
  static std::unique_ptr<UCollator, CollatorCloser> c(OpenRoot(UCOL_TERTIARY));
  return c.get();
}

// ASCII that the root collation never ignores: tab to carriage return and the printable range.
// Other controls are completely ignorable there, so "a\x01" equals "a"; those go to ICU.
bool IsPlainAscii(std::u16string_view S) noexcept {
  for (char16_t c : S)
    if (c > 0x7E || (c < 0x20 && (c < 0x09 || c > 0x0D))) return false;
  return true;
}

char16_t FoldAscii(char16_t c) noexcept { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; }

Integer IcuCompare(UCollator* AColl, std::u16string_view S1, std::u16string_view S2) {
  UCollationResult r = ucol_strcoll(AColl, S1.data(), static_cast<int32_t>(S1.size()), S2.data(),
                                    static_cast<int32_t>(S2.size()));
  return r == UCOL_LESS ? -1 : r == UCOL_GREATER ? 1 : 0;
}

std::string IcuSortKey(UCollator* AColl, std::u16string_view S) {
  std::string key(S.size() * 2 + 16, '\0');
  auto fill = [&] {
    return ucol_getSortKey(AColl, S.data(), static_cast<int32_t>(S.size()), reinterpret_cast<uint8_t*>(key.data()),
                           static_cast<int32_t>(key.size()));
  };
  int32_t n = fill();
  if (n > static_cast<int32_t>(key.size())) {
    key.resize(static_cast<size_t>(n));
    n = fill();
  }
  key.resize(n > 0 ? static_cast<size_t>(n) : 0);
  return key;
}

Integer PlainPos(std::u16string_view ASubStr, std::u16string_view AText) noexcept {
  if (ASubStr.empty()) return 0;
  size_t p = AText.find(ASubStr);
  return p == std::u16string_view::npos ? 0 : static_cast<Integer>(p + 1);
}

}  // namespace

// ---- case-insensitive ----

constinit const TVnXPathCollationASCIICI TVnXPathCollationASCIICI::FInstance{};

TVnXPathCollationClass TVnXPathCollationASCIICI::Class() noexcept { return &FInstance; }

Integer TVnXPathCollationASCIICI::Compare(std::u16string_view S1, std::u16string_view S2) const {
  if (S1 == S2) return 0;
  return IcuCompare(CaseInsensitiveCollator(), S1, S2);
}

bool TVnXPathCollationASCIICI::SameText(std::u16string_view S1, std::u16string_view S2) const {
  if (S1 == S2) return true;
  if (IsPlainAscii(S1) && IsPlainAscii(S2)) {
    if (S1.size() != S2.size()) return false;
    for (size_t i = 0; i < S1.size(); ++i)
      if (FoldAscii(S1[i]) != FoldAscii(S2[i])) return false;
    return true;
  }
  return IcuCompare(CaseInsensitiveCollator(), S1, S2) == 0;
}

Integer TVnXPathCollationASCIICI::Pos(std::u16string_view ASubStr, std::u16string_view AText) const {
  std::u16string sub(ASubStr), text(AText);
  for (auto& c : sub) c = FoldAscii(c);
  for (auto& c : text) c = FoldAscii(c);
  return PlainPos(sub, text);
}

std::string TVnXPathCollationASCIICI::SortKey(std::u16string_view AText) const {
  return IcuSortKey(CaseInsensitiveCollator(), AText);
}

// ---- case-sensitive ----

constinit const TVnXPathCollationCodepoint TVnXPathCollationCodepoint::FInstance{};

TVnXPathCollationClass TVnXPathCollationCodepoint::Class() noexcept { return &FInstance; }

Integer TVnXPathCollationCodepoint::Compare(std::u16string_view S1, std::u16string_view S2) const {
  if (S1 == S2) return 0;
  return IcuCompare(CaseSensitiveCollator(), S1, S2);
}

bool TVnXPathCollationCodepoint::SameText(std::u16string_view S1, std::u16string_view S2) const {
  if (S1 == S2) return true;
  if (IsPlainAscii(S1) && IsPlainAscii(S2)) return false;
  return IcuCompare(CaseSensitiveCollator(), S1, S2) == 0;
}

Integer TVnXPathCollationCodepoint::Pos(std::u16string_view ASubStr, std::u16string_view AText) const {
  return PlainPos(ASubStr, AText);
}

std::string TVnXPathCollationCodepoint::SortKey(std::u16string_view AText) const {
  return IcuSortKey(CaseSensitiveCollator(), AText);
}

}  // namespace vn
