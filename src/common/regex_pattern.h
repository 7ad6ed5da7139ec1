// A compiled PCRE2 pattern as TRegEx shares it, and the bounded cache behind TRegEx's static forms.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "vnxml/common/regex.h"

namespace vn::detail {

struct RegExPattern {
  RegExPattern() = default;
  RegExPattern(const RegExPattern&) = delete;
  RegExPattern& operator=(const RegExPattern&) = delete;
  ~RegExPattern();

  void* Code = nullptr;  // pcre2_code_16*; kept opaque so that only the .cpp files see PCRE2
  uint32_t CaptureCount = 0;
  uint32_t MatchOptions = 0;
  std::vector<std::pair<UnicodeString, uint32_t>> Names;  // group name -> number
  UnicodeString Source;

  /// Number of the group named AName, or -1.
  int32_t GroupNumber(std::u16string_view AName) const noexcept;
};

/// Compiles APattern; raises ERegularExpressionError with PCRE's message and offset on failure.
std::shared_ptr<const RegExPattern> CompileRegEx(std::u16string_view APattern, TRegExOptions AOptions);
/// Same, through the shared cache of recently used patterns.
std::shared_ptr<const RegExPattern> CompileRegExCached(std::u16string_view APattern, TRegExOptions AOptions);
/// PCRE's text for an error code.
UnicodeString RegExErrorText(int AErrorCode);

}  // namespace vn::detail
