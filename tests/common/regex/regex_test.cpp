// TRegEx: options, UTF-16 handling, matches and groups, replacement references, splitting,
// failures, and the shared pattern cache under concurrent use.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "common/message_of.h"
#include "vnxml/common/regex.h"
#include "vnxml/common/sysutils.h"

namespace vn {
namespace {

std::string Narrow(std::u16string_view AText) { return std::string(AText.begin(), AText.end()); }

// ---- options ----

TEST(TRegEx, OptionsChangeWhatMatchesAndShapeTheMatch) {
  // Pattern, options, input, whether it matches.
  const std::tuple<std::u16string_view, TRegExOptions, std::u16string_view, bool> cases[] = {
      {u"b", {}, u"ABC", false}, {u"b", {roIgnoreCase}, u"ABC", true}, {u"^b$", {}, u"a\nb", false},
      {u"^b$", {roMultiLine}, u"a\nb", true}, {u"a.b", {}, u"a\nb", false},
      {u"a.b", {roSingleLine}, u"a\nb", true}, {u"a b  c # comment", {}, u"abc", false},
      {u"a b  c # comment", {roIgnorePatternSpace}, u"abc", true},
      {u"a+b", {roCompiled, roIgnoreCase}, u"XAAB", true},
      {u"\u00E9", {roIgnoreCase}, u"\u00C9", true},  // case folding beyond ASCII
      {u"", {}, u"anything", true},
  };
  for (const auto& [pattern, options, input, expected] : cases)
    EXPECT_EQ(TRegEx::IsMatch(input, pattern, options), expected) << Narrow(pattern);

  // Explicit capture and not-empty shape the match.
  const std::u16string pattern = u"(a)(?<n>b)(c)";
  EXPECT_EQ(TRegEx(pattern).Match(u"abc").GetGroups().GetCount(), 4);
  const TMatch explicitOnly = TRegEx(pattern, {roExplicitCapture}).Match(u"abc");
  ASSERT_EQ(explicitOnly.GetGroups().GetCount(), 2);
  EXPECT_EQ(explicitOnly.GetGroups()[u"n"].GetValue(), u"b");

  EXPECT_EQ(TRegEx(u"a*").Match(u"baa").GetIndex(), 1);
  const TMatch m = TRegEx(u"a*", {roNotEmpty}).Match(u"baa");
  EXPECT_EQ((std::tuple{m.GetIndex(), m.GetValue()}), std::tuple(2, u"aa"));
}

// ---- UTF-16 ----

TEST(TRegEx, SurrogatePairsAreOneCharacterLoneOnesNoFailure) {
  // Positions count code units (the third); lone surrogates in the input do not fail (the last two).
  const std::u16string lone = u"a\xD800" u"b";
  EXPECT_EQ((std::tuple{TRegEx::IsMatch(u"\U0001F600", u"^.$"), TRegEx::IsMatch(u"x\U0001F600", u"\\x{1F600}"),
                        TRegEx::Match(u"\U0001F600bc", u"b.").GetIndex(), TRegEx::IsMatch(lone, u"b"),
                        TRegEx::IsMatch(u"\xDC00", u"x")}),
            std::tuple(true, true, 3, true, false));
  // Empty matches step over a whole pair, never into it.
  EXPECT_EQ((std::tuple{TRegEx::Replace(u"a\U0001F600b", u".", u"-"), TRegEx::Replace(u"\U0001F600", u"x*", u"-"),
                        TRegEx::Replace(lone, u"[ab]", u"x")}),
            std::tuple(u"---", u"-\U0001F600-", u"x\xD800x"));
}

// ---- matches and groups ----

TEST(TRegEx, MatchReportsPositionValueAndGroups) {
  const TMatch m = TRegEx::Match(u"x 12-ab y", u"(\\d+)-(?<word>\\w+)");
  ASSERT_TRUE(m.GetSuccess());
  EXPECT_EQ((std::tuple{m.GetIndex(), m.GetLength(), m.GetValue()}), std::tuple(3, 5, u"12-ab"));
  ASSERT_EQ(m.GetGroups().GetCount(), 3);
  const TGroup number = m.GetGroups()[1], word = m.GetGroups()[u"word"];
  EXPECT_EQ((std::tuple{number.GetValue(), number.GetIndex(), word.GetValue(), word.GetIndex()}),
            std::tuple(u"12", 3, u"ab", 6));

  const TMatch alternative = TRegEx::Match(u"b", u"(a)|(b)");
  EXPECT_EQ((std::tuple{alternative.GetGroups()[1].GetSuccess(), alternative.GetGroups()[1].GetIndex(),
                        alternative.GetGroups()[2].GetSuccess()}),
            std::tuple(false, 0, true));

  const TMatch none = TRegEx::Match(u"abc", u"\\d");
  EXPECT_EQ((std::tuple{none.GetSuccess(), none.GetIndex(), none.GetValue(), none.NextMatch().GetSuccess()}),
            std::tuple(false, 0, u"", false));
}

TEST(TRegEx, NextMatchAndMatchesWalkTheInput) {
  // The input is a temporary: the match keeps its own copy of it.
  TMatch m = TRegEx(u"\\d+").Match(std::u16string(u"a1b22c333"));
  std::vector<std::u16string> found;
  for (; m.GetSuccess(); m = m.NextMatch()) found.push_back(m.GetValue());
  EXPECT_EQ(found, (std::vector<std::u16string>{u"1", u"22", u"333"}));

  // Matches include empty ones, once per position.
  const TMatchCollection all = TRegEx(u"x*").Matches(u"abc");
  ASSERT_EQ(all.GetCount(), 4);
  for (Integer i = 0; i < all.GetCount(); ++i)
    EXPECT_EQ((std::tuple{all[i].GetIndex(), all[i].GetLength()}), std::tuple(i + 1, 0));
  // Matches and IsMatch from a 1-based start position.
  EXPECT_EQ((std::tuple{TRegEx::Matches(u"one two  three", u"\\w+")[2].GetValue(),
                        TRegEx(u"o").Matches(u"foo boo", 4).GetCount(), TRegEx(u"c").IsMatch(u"abc", 3),
                        TRegEx(u"a").IsMatch(u"abc", 2)}),
            std::tuple(u"three", 2, true, false));
}

// ---- replacement and splitting ----

TEST(TRegEx, ReplacementReferencesCountEvaluatorAndSplitting) {
  // Pattern, input, replacement, result.
  const std::tuple<std::u16string_view, std::u16string_view, std::u16string_view, std::u16string_view> cases[] = {
      {u"(\\w+)@(\\w+)", u"joe@host", u"$2 at \\1", u"host at joe"},
      {u"b+", u"abbc", u"[$0|$&|\\0]", u"a[bb|bb|bb]c"},
      {u"(?<y>\\d{4})-(\\d\\d)", u"2024-05", u"${2}/${y}", u"05/2024"}, {u"b", u"abc", u"$$\\\\", u"a$\\c"},
      {u"(b)", u"abc", u"$9\\7${x}", u"a$9\\7${x}c"},  // no such group: stays as written
      {u"(b)", u"abc", u"$10", u"ab0c"},               // one group: "$1" then "0"
      {u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", u"abcdefghij", u"$10$1", u"ja"},
      {u"(a)|(b)", u"b", u"[$1]", u"[]"},  // a group that took no part gives nothing
      {u"b", u"abc", u"<$`|$'|$_>", u"a<a|c|abc>c"}, {u"x*", u"abc", u"-", u"-a-b-c-"},
      {u"b", u"abc", u"$", u"a$c"}, {u"b", u"abc", u"${", u"a${c"}, {u"\\s+", u"a  b\t\tc", u" ", u"a b c"},
  };
  for (const auto& [pattern, input, replacement, expected] : cases)
    EXPECT_EQ(TRegEx::Replace(input, pattern, replacement), expected) << Narrow(replacement);

  const TRegEx digits(u"\\d");
  const std::pair<UnicodeString, const char16_t*> results[] = {
      {digits.Replace(u"1a2b3", u"#", 2), u"#a#b3"}, {digits.Replace(u"1a2b3", u"#"), u"#a#b#"},
      {digits.Replace(u"1a2b3", [](const TMatch& m) { return m.GetValue() + m.GetValue(); }), u"11a22b33"},
      {TRegEx(u"\\w+").Replace(u"ab cd", [](const TMatch& m) { return UpperCase(m.GetValue()); }, 1), u"AB cd"}};
  for (const auto& [result, expected] : results) EXPECT_EQ(result, expected);

  // Splitting keeps empty pieces.
  using Pieces = std::vector<UnicodeString>;
  const std::pair<Pieces, Pieces> splits[] = {
      {TRegEx::Split(u"a,b,,c", u","), {u"a", u"b", u"", u"c"}}, {TRegEx::Split(u"abc", u"x"), {u"abc"}},
      {TRegEx::Split(u"", u","), {u""}}, {TRegEx(u",").Split(u"a,b,c,d", 2), {u"a", u"b,c,d"}},
      {TRegEx(u",").Split(u"a,b", 1), {u"a,b"}}, {TRegEx::Split(u"A1b2C", u"\\d", {roIgnoreCase}), {u"A", u"b", u"C"}}};
  for (size_t i = 0; i < std::size(splits); ++i) EXPECT_EQ(splits[i].first, splits[i].second) << i;
}

// ---- failures ----

TEST(TRegEx, BadPatternsMisuseAndRunawayBacktrackingRaise) {
  for (std::u16string_view bad : {u"(", u"[a", u"a{2,1}", u"\\", u"(?<n>a)(?<n>b)", u"\xD800"}) {
    const UnicodeString message = test::MessageOf<ERegularExpressionError>([&] { TRegEx::IsMatch(u"a", bad); });
    EXPECT_EQ(message.rfind(u"Error in regular expression at offset ", 0), 0u) << Narrow(bad) << Narrow(message);
  }
  EXPECT_EQ(test::MessageOf<ERegularExpressionError>([] { TRegEx(u"ab(c"); }),
            u"Error in regular expression at offset 4: missing closing parenthesis");

  // Misuse raises instead of crashing.
  const TRegEx none{}, any(u"(a)");
  EXPECT_FALSE(any.IsMatch(u"abc", 4));  // just behind the end is a valid start
  const TMatch m = any.Match(u"a");
  // No pattern, a start outside the input, a group or match that isn't there.
  const std::function<void()> misuses[] = {
      [&] { none.IsMatch(u"a"); },       [&] { none.Split(u"a"); },       [&] { any.IsMatch(u"abc", 0); },
      [&] { any.IsMatch(u"abc", 5); },   [&] { m.GetGroups()[2]; },       [&] { m.GetGroups()[-1]; },
      [&] { m.GetGroups()[u"nope"]; },   [&] { any.Matches(u"aa")[2]; }};
  for (size_t i = 0; i < std::size(misuses); ++i) EXPECT_THROW(misuses[i](), ERegularExpressionError) << i;
  // Runaway backtracking stops with an error too.
  EXPECT_THROW(TRegEx::IsMatch(std::u16string(40, u'a') + u"b", u"^(a|aa)+$"), ERegularExpressionError);
}

TEST(TRegEx, ArbitraryPatternsCompileOrRaise) {
  const std::u16string alphabet = u"()[]{}*+?|\\^$.-,:<>=!ab1 \xD800\U0001F600";
  std::mt19937 random(11);
  for (int round = 0; round < 2000; ++round) {
    std::u16string pattern(random() % 12, u' ');
    for (char16_t& c : pattern) c = alphabet[random() % alphabet.size()];
    try {
      const TRegEx regex(pattern, {roIgnoreCase});
      regex.Matches(u"ab1 a(b) \U0001F600 \xD800 bb");
      regex.Replace(u"a1b", u"[$1$&]");
      regex.Split(u"aab");
    } catch (const ERegularExpressionError&) {
    }
  }
}

// ---- cache and threads ----

TEST(TRegEx, StaticFormsStayCorrectPastTheCacheCapacityAndShareItAcrossThreads) {
  for (size_t i = 0; i < TRegEx::CacheCapacity * 2 + 5; ++i) {
    const UnicodeString number = IntToStr(static_cast<Int64>(i));
    ASSERT_TRUE(TRegEx::IsMatch(u"n" + number + u"!", u"^n" + number + u"!$"));
    ASSERT_FALSE(TRegEx::IsMatch(u"n" + number + u"?", u"^n" + number + u"!$"));
  }
  // The same pattern under other options is another entry.
  EXPECT_FALSE(TRegEx::IsMatch(u"N1!", u"^n1!$"));
  EXPECT_TRUE(TRegEx::IsMatch(u"N1!", u"^n1!$", {roIgnoreCase}));

  // Concurrent static calls share the cache.
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([t, &failures] {
      for (int i = 0; i < 300; ++i) {
        const UnicodeString key = IntToStr(static_cast<Int64>((i * 7 + t) % 150));
        if (TRegEx::Replace(u"id=" + key + u";", u"id=(" + key + u");", u"<$1>") != u"<" + key + u">")
          ++failures[static_cast<size_t>(t)];
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, (std::vector<int>{0, 0, 0, 0}));
}

TEST(TRegEx, EscapeQuotesMetacharacters) {
  const UnicodeString text = u"a.b*c+(d)[e]{f}^$|?\\-#";
  EXPECT_EQ((std::tuple{TRegEx::IsMatch(text, u"^" + TRegEx::Escape(text) + u"$"),
                        TRegEx::IsMatch(u"aXb", TRegEx::Escape(u"a.b")), TRegEx::Escape(u"*.txt?", true),
                        TRegEx::IsMatch(u"notes.txt", u"^" + TRegEx::Escape(u"*.tx?", true) + u"$")}),
            std::tuple(true, false, u".*\\.txt.", true));
}

}  // namespace
}  // namespace vn
