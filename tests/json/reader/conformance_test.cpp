// The conformance corpora: every JSONTestSuite file decided by its prefix (y_ accepted, n_
// refused, i_ accepted here), except the files the forgiving reader decides otherwise, each
// traced below to the rule that causes it; and every file of tricky-json ends normally or
// with the library's own exception.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <vector>

#include "json_recorder.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"

using namespace vn;
namespace fs = std::filesystem;

namespace {

const fs::path kCorpora = VNXML_CORPORA_DIR "/conformance";

// The reader's rules that make it depart from a file's prefix.
enum Rule {
  // Any run of 0-9 + - . E e is a number, starting with any of them.
  kNumberRun,
  // After a value, text up to the next "," or closing bracket is passed over.
  kSkipAfterValue,
  // A "," right before "]" ends the array with nothing more.
  kArrayTrailingComma,
  // After "{" and after "," in an object, text up to the next quote (or "}") is passed over.
  kSkipToName,
  // Strings end at the closing quote only: control characters and any \u digits are kept raw.
  kRawStrings,
  // White space is every character up to U+0020, vertical tab and form feed included.
  kControlIsWhiteSpace,
  // The top level is a sequence of values, possibly empty.
  kTopLevelSequence,
  // After a top-level number, the first character past the skipped text is passed over unseen.
  kTopLevelSkip,
  // Nothing but a value may follow a top-level array or object, white space included; and a
  // value is due where a tab or line break stands before the first one.
  kNoSpaceAroundContainer,
  // The NUL pattern of big-endian UTF-16 ends in the encoding failure.
  kNoBigEndian,
};

// Files (without ".json") whose verdict departs from their prefix, by the rule that causes it.
const std::map<Rule, std::vector<std::string>> kDepartures = {
    {kNoBigEndian, {"i_string_utf16BE_no_BOM"}},
    {kSkipAfterValue, {"n_array_1_true_without_comma", "n_array_colon_instead_of_comma",
      "n_array_items_separated_by_semicolon", "n_multidigit_number_then_00", "n_number_+Inf", "n_number_-NaN",
      "n_number_1_000", "n_number_hex_1_digit", "n_number_hex_2_digits", "n_number_invalid-negative-real",
      "n_number_invalid-utf-8-in-bigger-int", "n_number_invalid-utf-8-in-exponent", "n_number_minus_infinity",
      "n_number_minus_sign_with_trailing_garbage", "n_number_minus_space_1", "n_number_neg_with_garbage_at_end",
      "n_number_real_garbage_after_e", "n_number_real_with_invalid_utf8_after_e", "n_number_with_alpha",
      "n_number_with_alpha_char", "n_object_garbage_at_end"}},
    {kArrayTrailingComma, {"n_array_extra_comma", "n_array_number_and_comma"}},
    {kNumberRun, {"n_array_just_minus", "n_number_++", "n_number_+1", "n_number_-01", "n_number_-1.0.", "n_number_-2.",
      "n_number_.-1", "n_number_.2e-3", "n_number_0.1.2", "n_number_0.3e+", "n_number_0.3e", "n_number_0.e1",
      "n_number_0_capital_E+", "n_number_0_capital_E", "n_number_0e+", "n_number_0e", "n_number_1.0e+",
      "n_number_1.0e-", "n_number_1.0e", "n_number_1eE2", "n_number_2.e+3", "n_number_2.e-3", "n_number_2.e3",
      "n_number_9.e+", "n_number_expression", "n_number_invalid+-", "n_number_neg_int_starting_with_zero",
      "n_number_neg_real_without_int_part", "n_number_real_without_fractional_part", "n_number_starting_with_dot",
      "n_number_with_leading_zero"}},
    {kControlIsWhiteSpace, {"n_array_spaces_vertical_tab_formfeed", "n_structure_whitespace_formfeed"}},
    {kSkipToName, {"n_object_emoji", "n_object_key_with_single_quotes", "n_object_non_string_key",
      "n_object_non_string_key_but_huge_number_instead", "n_object_repeated_null_null", "n_object_single_quote",
      "n_object_two_commas_in_a_row"}},
    {kRawStrings, {"n_string_incomplete_escaped_character", "n_string_invalid_unicode_escape",
      "n_string_unescaped_ctrl_char", "n_string_unescaped_newline", "n_string_unescaped_tab"}},
    {kTopLevelSequence, {"n_structure_UTF8_BOM_no_data", "n_structure_double_array", "n_structure_no_data"}},
    {kTopLevelSkip, {"n_structure_close_unopened_array", "n_structure_number_with_trailing_garbage"}},
    {kNoSpaceAroundContainer, {"y_array_with_trailing_space", "y_number_double_close_to_zero",
      "y_structure_trailing_newline", "y_structure_whitespace_array"}},
};

enum class Outcome { Accepted, Refused, Foreign };

// Files are read as a caller reads them: ParseFile, a byte-order mark deciding.
Outcome ReadFile(const fs::path& APath, std::string& AWhat) {
  vntest::RecordingJsonReader r;
  try {
    r.Reader.ParseFile(Utf8ToUnicode(APath.string()), fmOpenRead, u"");
    return Outcome::Accepted;
  } catch (const Exception& e) {
    if (dynamic_cast<const EVnJSONException*>(&e) || dynamic_cast<const EVnTextParserEOF*>(&e) ||
        e.Message() == _cVnJSONEncodingNotSupported) return Outcome::Refused;
    AWhat = UnicodeToUtf8(e.Message());
  } catch (const std::exception& e) {
    AWhat = e.what();
  }
  return Outcome::Foreign;
}

TEST(JsonConformance, TestSuiteVerdicts) {
  std::map<std::string, Rule> departing;
  for (const auto& [rule, names] : kDepartures)
    for (const std::string& name : names) departing[name + ".json"] = rule;
  std::set<std::string> seen;
  for (const auto& entry : fs::directory_iterator(kCorpora / "json-test-suite/test_parsing")) {
    const std::string name = entry.path().filename().string();
    std::string what;
    const Outcome got = ReadFile(entry.path(), what);
    ASSERT_NE(got, Outcome::Foreign) << name << ": " << what;
    const bool accepted = (name[0] != 'n') != (departing.count(name) != 0);  // a departure flips the prefix
    EXPECT_EQ(got, accepted ? Outcome::Accepted : Outcome::Refused) << name;
    seen.insert(name);
  }
  EXPECT_EQ(seen.size(), 318u);
  for (const auto& [name, rule] : departing) EXPECT_TRUE(seen.count(name)) << "no file " << name;
}

TEST(JsonConformance, EveryOtherFileEndsInOrder) {
  size_t files = 0;
  for (const fs::path& dir : {kCorpora / "tricky-json", kCorpora / "json-test-suite/test_transform"})
    for (const auto& entry : fs::recursive_directory_iterator(dir)) {
      if (!entry.is_regular_file()) continue;
      std::string what;
      EXPECT_NE(ReadFile(entry.path(), what), Outcome::Foreign) << entry.path() << ": " << what;
      ++files;
    }
  EXPECT_GT(files, 370u);
}

}  // namespace
