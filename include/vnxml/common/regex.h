// regex.h: the platform's regular expressions, TRegEx, on PCRE2 (common platform layer).
// Patterns are PCRE syntax over UTF-16; a surrogate pair is one character, and a lone surrogate in
// the input is tolerated (it matches nothing but itself). Positions count from 1, lengths in code units.
// Compiled patterns are immutable and shared: a TRegEx, TMatch or static call may run on any thread.
// Failures: ERegularExpressionError, with PCRE's message for a bad pattern or a failed match.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "vnxml/common/exception.h"
#include "vnxml/common/set.h"
#include "vnxml/common/types.h"

namespace vn {

// The fixed texts of ERegularExpressionError.
inline constexpr char16_t cRegExExpressionError[] = u"Error in regular expression at offset %d: %s";
inline constexpr char16_t cRegExMatchError[] = u"Error matching the regex: %s";
inline constexpr char16_t cRegExMissingExpression[] = u"A regular expression specified in RegEx is required";
inline constexpr char16_t cRegExIndexOutOfBounds[] = u"Index out of bounds (%d)";
inline constexpr char16_t cRegExInvalidGroupName[] = u"Invalid group name (%s)";

enum TRegExOption : uint8_t {
  roNone,
  roIgnoreCase,
  roMultiLine,
  roExplicitCapture,
  roCompiled,
  roSingleLine,
  roIgnorePatternSpace,
  roNotEmpty
};

/// A set of TRegExOption: TRegExOptions{roIgnoreCase, roMultiLine}.
using TRegExOptions = TSet<TRegExOption>;

namespace detail {
struct RegExPattern;
struct RegExMatchState;
}  // namespace detail

/// One capture group of a match.
class TGroup {
 public:
  /// 1-based position in the input; 0 when the group took no part in the match.
  Integer GetIndex() const noexcept { return FIndex; }
  Integer GetLength() const noexcept { return FLength; }
  bool GetSuccess() const noexcept { return FIndex > 0; }
  const UnicodeString& GetValue() const noexcept { return FValue; }

 private:
  friend struct detail::RegExMatchState;
  Integer FIndex = 0;
  Integer FLength = 0;
  UnicodeString FValue;
};

/// The groups of a match: item 0 is the whole match, then the groups in pattern order.
class TGroupCollection {
 public:
  Integer GetCount() const noexcept { return static_cast<Integer>(FGroups.size()); }
  /// Raises ERegularExpressionError for an index outside 0..Count-1.
  const TGroup& GetItem(Integer AIndex) const;
  /// The group of that name; raises ERegularExpressionError when the pattern has no such name.
  const TGroup& GetItem(std::u16string_view AName) const;
  const TGroup& operator[](Integer AIndex) const { return GetItem(AIndex); }
  const TGroup& operator[](std::u16string_view AName) const { return GetItem(AName); }
  auto begin() const noexcept { return FGroups.begin(); }
  auto end() const noexcept { return FGroups.end(); }

 private:
  friend class TMatch;
  friend struct detail::RegExMatchState;
  std::vector<TGroup> FGroups;
  std::shared_ptr<const detail::RegExPattern> FPattern;
};

/// One match; an unsuccessful match has Success false, Index 0 and no groups.
class TMatch {
 public:
  TMatch() = default;
  Integer GetIndex() const noexcept { return FGroups.GetCount() ? FGroups.FGroups[0].GetIndex() : 0; }
  Integer GetLength() const noexcept { return FGroups.GetCount() ? FGroups.FGroups[0].GetLength() : 0; }
  bool GetSuccess() const noexcept { return FGroups.GetCount() > 0; }
  /// The matched text; empty for an unsuccessful match.
  UnicodeString GetValue() const {
    return FGroups.GetCount() ? FGroups.FGroups[0].GetValue() : UnicodeString();
  }
  const TGroupCollection& GetGroups() const noexcept { return FGroups; }
  /// The next match in the same input; an unsuccessful match when there is none.
  TMatch NextMatch() const;

 private:
  friend class TRegEx;
  friend struct detail::RegExMatchState;
  TGroupCollection FGroups;
  std::shared_ptr<const UnicodeString> FInput;
  size_t FEnd = 0;  // where the next search starts, in code units
  bool FEmpty = false;
};

/// All matches of one search, in input order.
class TMatchCollection {
 public:
  Integer GetCount() const noexcept { return static_cast<Integer>(FItems.size()); }
  /// Raises ERegularExpressionError for an index outside 0..Count-1.
  const TMatch& GetItem(Integer AIndex) const;
  const TMatch& operator[](Integer AIndex) const { return GetItem(AIndex); }
  auto begin() const noexcept { return FItems.begin(); }
  auto end() const noexcept { return FItems.end(); }

 private:
  friend class TRegEx;
  friend struct detail::RegExMatchState;
  std::vector<TMatch> FItems;
};

using TMatchEvaluator = std::function<UnicodeString(const TMatch&)>;

/// A compiled pattern. Static forms compile through a bounded, shared cache.
/// Replacement texts: $0 $& or \0 the match; $1..$99 and \1..\99 groups (two digits when that group
/// exists); ${name} ${12} named or numbered groups; $` before, $' after the match, $_ the whole input;
/// $$ a dollar, \\ a backslash. A reference to a group the pattern lacks stays as written.
class TRegEx {
 public:
  /// An empty regex: every operation raises ERegularExpressionError until one is assigned.
  TRegEx() = default;
  explicit TRegEx(std::u16string_view APattern, TRegExOptions AOptions = {});

  bool IsMatch(std::u16string_view AInput) const;
  /// Searches from the 1-based position AStartPos.
  bool IsMatch(std::u16string_view AInput, Integer AStartPos) const;
  TMatch Match(std::u16string_view AInput) const;
  TMatch Match(std::u16string_view AInput, Integer AStartPos) const;
  TMatchCollection Matches(std::u16string_view AInput) const;
  TMatchCollection Matches(std::u16string_view AInput, Integer AStartPos) const;
  /// Replaces every match; with ACount > 0 only the first ACount.
  UnicodeString Replace(std::u16string_view AInput, std::u16string_view AReplacement,
                        Integer ACount = 0) const;
  UnicodeString Replace(std::u16string_view AInput, const TMatchEvaluator& AEvaluator,
                        Integer ACount = 0) const;
  /// The texts between matches, empty ones included; with ACount > 0 at most ACount pieces, the
  /// last holding the rest. An empty input gives one empty piece.
  std::vector<UnicodeString> Split(std::u16string_view AInput, Integer ACount = 0) const;

  static bool IsMatch(std::u16string_view AInput, std::u16string_view APattern, TRegExOptions AOptions = {});
  static TMatch Match(std::u16string_view AInput, std::u16string_view APattern, TRegExOptions AOptions = {});
  static TMatchCollection Matches(std::u16string_view AInput, std::u16string_view APattern,
                                  TRegExOptions AOptions = {});
  static UnicodeString Replace(std::u16string_view AInput, std::u16string_view APattern,
                               std::u16string_view AReplacement, TRegExOptions AOptions = {});
  static std::vector<UnicodeString> Split(std::u16string_view AInput, std::u16string_view APattern,
                                          TRegExOptions AOptions = {});
  /// Quotes the metacharacters of AText; with AUseWildCards, '*' and '?' become ".*" and ".".
  static UnicodeString Escape(std::u16string_view AText, bool AUseWildCards = false);

  /// How many compiled patterns the static forms keep at most; drops the least recently used.
  static constexpr size_t CacheCapacity = 128;

 private:
  const detail::RegExPattern& Pattern() const;
  std::shared_ptr<const detail::RegExPattern> FPattern;
  TRegExOptions FOptions;
};

}  // namespace vn
