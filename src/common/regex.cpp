// TRegEx: searching, match iteration, replacement and splitting over a shared compiled pattern.
#define PCRE2_CODE_UNIT_WIDTH 16
#include "vnxml/common/regex.h"

#include <pcre2.h>

#include "regex_pattern.h"
#include "vnxml/common/sysutils.h"

namespace vn {
namespace detail {

// Owns the per-search match data; compiled code is shared, match data never is.
class RegExMatchData {
 public:
  explicit RegExMatchData(const RegExPattern& APattern)
      : FData(pcre2_match_data_create_from_pattern(static_cast<pcre2_code*>(APattern.Code), nullptr)) {
    if (FData == nullptr) throw EOutOfMemory(u"Out of memory");
  }
  RegExMatchData(const RegExMatchData&) = delete;
  RegExMatchData& operator=(const RegExMatchData&) = delete;
  ~RegExMatchData() { pcre2_match_data_free(FData); }
  pcre2_match_data* Get() const noexcept { return FData; }

 private:
  pcre2_match_data* FData;
};

struct RegExMatchState {
  // Searches AInput from AStart. After an empty match at AStart the next match may not be empty
  // there, else iteration would stand still. Returns false when there is no further match.
  static bool Search(const RegExPattern& APattern, std::u16string_view AInput, size_t AStart,
                     bool AAfterEmpty, RegExMatchData& AData) {
    if (AStart > AInput.size()) return false;
    uint32_t options = APattern.MatchOptions;
    if (AAfterEmpty) options |= PCRE2_NOTEMPTY_ATSTART;
    const int rc =
        pcre2_match(static_cast<pcre2_code*>(APattern.Code), reinterpret_cast<PCRE2_SPTR>(AInput.data()),
                    AInput.size(), AStart, options, AData.Get(), nullptr);
    if (rc == PCRE2_ERROR_NOMATCH) return false;
    if (rc < 0) throw ERegularExpressionError(cRegExMatchError, {RegExErrorText(rc)});
    return true;
  }

  static TMatch MakeMatch(const std::shared_ptr<const RegExPattern>& APattern,
                          const std::shared_ptr<const UnicodeString>& AInput, const RegExMatchData& AData) {
    TMatch match;
    const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(AData.Get());
    const uint32_t pairs = APattern->CaptureCount + 1;
    match.FGroups.FGroups.resize(pairs);
    for (uint32_t i = 0; i < pairs; ++i) {
      const PCRE2_SIZE start = ovector[2 * i];
      const PCRE2_SIZE end = ovector[2 * i + 1];
      if (start == PCRE2_UNSET || end < start) continue;
      TGroup& group = match.FGroups.FGroups[i];
      group.FIndex = static_cast<Integer>(start + 1);
      group.FLength = static_cast<Integer>(end - start);
      group.FValue = AInput->substr(start, end - start);
    }
    // The whole match always took part, even when it is empty.
    if (match.FGroups.FGroups[0].FIndex == 0)
      match.FGroups.FGroups[0].FIndex = static_cast<Integer>(ovector[0] + 1);
    match.FGroups.FPattern = APattern;
    match.FInput = AInput;
    match.FEnd = ovector[1];
    match.FEmpty = ovector[1] == ovector[0];
    return match;
  }

  static TMatch Next(const std::shared_ptr<const RegExPattern>& APattern,
                     const std::shared_ptr<const UnicodeString>& AInput, size_t AStart, bool AAfterEmpty) {
    RegExMatchData data(*APattern);
    if (!Search(*APattern, *AInput, AStart, AAfterEmpty, data)) return TMatch();
    return MakeMatch(APattern, AInput, data);
  }

  // Calls AOnMatch(start, end, data) for each match in order until it returns false.
  template <typename Fn>
  static void ForEach(const RegExPattern& APattern, std::u16string_view AInput, size_t AStart,
                      Fn&& AOnMatch) {
    RegExMatchData data(APattern);
    size_t position = AStart;
    bool afterEmpty = false;
    while (Search(APattern, AInput, position, afterEmpty, data)) {
      const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(data.Get());
      const size_t start = ovector[0];
      const size_t end = ovector[1] < start ? start : ovector[1];
      if (!AOnMatch(start, end, data)) return;
      afterEmpty = end == start;
      position = end;
    }
  }
};

namespace {

size_t StartOffset(std::u16string_view AInput, Integer AStartPos) {
  if (AStartPos < 1 || static_cast<size_t>(AStartPos) > AInput.size() + 1)
    throw ERegularExpressionError(cRegExIndexOutOfBounds, {AStartPos});
  return static_cast<size_t>(AStartPos - 1);
}

bool IsDigit(char16_t ACh) { return ACh >= u'0' && ACh <= u'9'; }

// Expands one replacement text for the match in AData.
void AppendReplacement(UnicodeString& AOut, std::u16string_view AReplacement, const RegExPattern& APattern,
                       std::u16string_view AInput, const RegExMatchData& AData) {
  const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(AData.Get());
  auto appendGroup = [&](uint32_t AGroup) {
    const PCRE2_SIZE start = ovector[2 * AGroup];
    const PCRE2_SIZE end = ovector[2 * AGroup + 1];
    if (start != PCRE2_UNSET && end >= start) AOut.append(AInput.substr(start, end - start));
  };
  const size_t n = AReplacement.size();
  size_t i = 0;
  while (i < n) {
    const char16_t c = AReplacement[i];
    if ((c != u'$' && c != u'\\') || i + 1 == n) {
      AOut.push_back(c);
      ++i;
      continue;
    }
    const char16_t next = AReplacement[i + 1];
    if (next == c) {  // "$$" or "\\"
      AOut.push_back(c);
      i += 2;
    } else if (IsDigit(next)) {
      uint32_t group = static_cast<uint32_t>(next - u'0');
      size_t used = 2;
      if (i + 2 < n && IsDigit(AReplacement[i + 2])) {
        const uint32_t two = group * 10 + static_cast<uint32_t>(AReplacement[i + 2] - u'0');
        if (two <= APattern.CaptureCount) {
          group = two;
          used = 3;
        }
      }
      if (group <= APattern.CaptureCount)
        appendGroup(group);
      else
        AOut.append(AReplacement.substr(i, used));
      i += used;
    } else if (c == u'$' && next == u'{') {
      const size_t close = AReplacement.find(u'}', i + 2);
      if (close == std::u16string_view::npos) {
        AOut.push_back(c);
        ++i;
        continue;
      }
      const std::u16string_view name = AReplacement.substr(i + 2, close - i - 2);
      int32_t group = APattern.GroupNumber(name);
      if (group < 0 && !name.empty() && name.find_first_not_of(u"0123456789") == std::u16string_view::npos &&
          name.size() < 6) {
        const Integer number = StrToInt(name);
        if (static_cast<uint32_t>(number) <= APattern.CaptureCount) group = number;
      }
      if (group >= 0)
        appendGroup(static_cast<uint32_t>(group));
      else
        AOut.append(AReplacement.substr(i, close + 1 - i));
      i = close + 1;
    } else if (c == u'$' && next == u'&') {
      appendGroup(0);
      i += 2;
    } else if (c == u'$' && next == u'`') {
      AOut.append(AInput.substr(0, ovector[0]));
      i += 2;
    } else if (c == u'$' && next == u'\'') {
      AOut.append(AInput.substr(ovector[1]));
      i += 2;
    } else if (c == u'$' && next == u'_') {
      AOut.append(AInput);
      i += 2;
    } else {
      AOut.push_back(c);
      ++i;
    }
  }
}

}  // namespace
}  // namespace detail

// ---- groups and matches ----

const TGroup& TGroupCollection::GetItem(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= GetCount()) throw ERegularExpressionError(cRegExIndexOutOfBounds, {AIndex});
  return FGroups[static_cast<size_t>(AIndex)];
}

const TGroup& TGroupCollection::GetItem(std::u16string_view AName) const {
  const int32_t number = FPattern ? FPattern->GroupNumber(AName) : -1;
  if (number < 0 || number >= GetCount()) throw ERegularExpressionError(cRegExInvalidGroupName, {AName});
  return FGroups[static_cast<size_t>(number)];
}

TMatch TMatch::NextMatch() const {
  if (!GetSuccess()) return TMatch();
  return detail::RegExMatchState::Next(FGroups.FPattern, FInput, FEnd, FEmpty);
}

const TMatch& TMatchCollection::GetItem(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= GetCount()) throw ERegularExpressionError(cRegExIndexOutOfBounds, {AIndex});
  return FItems[static_cast<size_t>(AIndex)];
}

// ---- TRegEx ----

TRegEx::TRegEx(std::u16string_view APattern, TRegExOptions AOptions)
    : FPattern(detail::CompileRegExCached(APattern, AOptions)), FOptions(AOptions) {}

const detail::RegExPattern& TRegEx::Pattern() const {
  if (!FPattern) throw ERegularExpressionError(UnicodeString(cRegExMissingExpression));
  return *FPattern;
}

bool TRegEx::IsMatch(std::u16string_view AInput) const { return IsMatch(AInput, 1); }

bool TRegEx::IsMatch(std::u16string_view AInput, Integer AStartPos) const {
  const detail::RegExPattern& pattern = Pattern();
  detail::RegExMatchData data(pattern);
  return detail::RegExMatchState::Search(pattern, AInput, detail::StartOffset(AInput, AStartPos), false,
                                         data);
}

TMatch TRegEx::Match(std::u16string_view AInput) const { return Match(AInput, 1); }

TMatch TRegEx::Match(std::u16string_view AInput, Integer AStartPos) const {
  Pattern();
  const size_t start = detail::StartOffset(AInput, AStartPos);
  // The match keeps its own copy of the input, so that NextMatch outlives the caller's text.
  return detail::RegExMatchState::Next(FPattern, std::make_shared<const UnicodeString>(AInput), start, false);
}

TMatchCollection TRegEx::Matches(std::u16string_view AInput) const { return Matches(AInput, 1); }

TMatchCollection TRegEx::Matches(std::u16string_view AInput, Integer AStartPos) const {
  const detail::RegExPattern& pattern = Pattern();
  const size_t start = detail::StartOffset(AInput, AStartPos);
  auto input = std::make_shared<const UnicodeString>(AInput);
  TMatchCollection result;
  detail::RegExMatchState::ForEach(
      pattern, *input, start, [&](size_t, size_t, const detail::RegExMatchData& AData) {
        result.FItems.push_back(detail::RegExMatchState::MakeMatch(FPattern, input, AData));
        return true;
      });
  return result;
}

UnicodeString TRegEx::Replace(std::u16string_view AInput, std::u16string_view AReplacement,
                              Integer ACount) const {
  const detail::RegExPattern& pattern = Pattern();
  UnicodeString out;
  size_t copied = 0;
  Integer done = 0;
  detail::RegExMatchState::ForEach(pattern, AInput, 0,
                                   [&](size_t AStart, size_t AEnd, const detail::RegExMatchData& AData) {
                                     out.append(AInput.substr(copied, AStart - copied));
                                     detail::AppendReplacement(out, AReplacement, pattern, AInput, AData);
                                     copied = AEnd;
                                     return ACount <= 0 || ++done < ACount;
                                   });
  out.append(AInput.substr(copied));
  return out;
}

UnicodeString TRegEx::Replace(std::u16string_view AInput, const TMatchEvaluator& AEvaluator,
                              Integer ACount) const {
  const detail::RegExPattern& pattern = Pattern();
  auto input = std::make_shared<const UnicodeString>(AInput);
  UnicodeString out;
  size_t copied = 0;
  Integer done = 0;
  detail::RegExMatchState::ForEach(
      pattern, *input, 0, [&](size_t AStart, size_t AEnd, const detail::RegExMatchData& AData) {
        out.append(AInput.substr(copied, AStart - copied));
        out.append(AEvaluator(detail::RegExMatchState::MakeMatch(FPattern, input, AData)));
        copied = AEnd;
        return ACount <= 0 || ++done < ACount;
      });
  out.append(AInput.substr(copied));
  return out;
}

std::vector<UnicodeString> TRegEx::Split(std::u16string_view AInput, Integer ACount) const {
  const detail::RegExPattern& pattern = Pattern();
  std::vector<UnicodeString> pieces;
  size_t copied = 0;
  if (ACount != 1) {
    detail::RegExMatchState::ForEach(pattern, AInput, 0,
                                     [&](size_t AStart, size_t AEnd, const detail::RegExMatchData&) {
                                       pieces.emplace_back(AInput.substr(copied, AStart - copied));
                                       copied = AEnd;
                                       return ACount <= 0 || static_cast<Integer>(pieces.size()) + 1 < ACount;
                                     });
  }
  pieces.emplace_back(AInput.substr(copied));
  return pieces;
}

bool TRegEx::IsMatch(std::u16string_view AInput, std::u16string_view APattern, TRegExOptions AOptions) {
  return TRegEx(APattern, AOptions).IsMatch(AInput);
}

TMatch TRegEx::Match(std::u16string_view AInput, std::u16string_view APattern, TRegExOptions AOptions) {
  return TRegEx(APattern, AOptions).Match(AInput);
}

TMatchCollection TRegEx::Matches(std::u16string_view AInput, std::u16string_view APattern,
                                 TRegExOptions AOptions) {
  return TRegEx(APattern, AOptions).Matches(AInput);
}

UnicodeString TRegEx::Replace(std::u16string_view AInput, std::u16string_view APattern,
                              std::u16string_view AReplacement, TRegExOptions AOptions) {
  return TRegEx(APattern, AOptions).Replace(AInput, AReplacement);
}

std::vector<UnicodeString> TRegEx::Split(std::u16string_view AInput, std::u16string_view APattern,
                                         TRegExOptions AOptions) {
  return TRegEx(APattern, AOptions).Split(AInput);
}

UnicodeString TRegEx::Escape(std::u16string_view AText, bool AUseWildCards) {
  static constexpr std::u16string_view kMeta = u"\\^$.|?*+()[]{}-#";
  UnicodeString out;
  out.reserve(AText.size() * 2);
  for (char16_t c : AText) {
    if (AUseWildCards && c == u'*') {
      out.append(u".*");
    } else if (AUseWildCards && c == u'?') {
      out.push_back(u'.');
    } else {
      if (kMeta.find(c) != std::u16string_view::npos) out.push_back(u'\\');
      out.push_back(c);
    }
  }
  return out;
}

}  // namespace vn
