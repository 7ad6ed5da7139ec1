// Compiling patterns with PCRE2's 16-bit library, and the cache that keeps the static TRegEx forms
// from compiling the same pattern at every call (path filters run them once per candidate node).
#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include <list>
#include <mutex>
#include <unordered_map>

#include "regex_pattern.h"
#include "vnxml/common/exception.h"

namespace vn::detail {
namespace {

uint32_t CompileOptions(TRegExOptions AOptions) {
  // Invalid UTF-16 in a subject (a lone surrogate) must not make a match fail outright.
  uint32_t options = PCRE2_UTF | PCRE2_MATCH_INVALID_UTF;
  if (AOptions.Contains(roIgnoreCase)) options |= PCRE2_CASELESS;
  if (AOptions.Contains(roMultiLine)) options |= PCRE2_MULTILINE;
  if (AOptions.Contains(roExplicitCapture)) options |= PCRE2_NO_AUTO_CAPTURE;
  if (AOptions.Contains(roSingleLine)) options |= PCRE2_DOTALL;
  if (AOptions.Contains(roIgnorePatternSpace)) options |= PCRE2_EXTENDED;
  return options;
}

void ReadGroupNames(pcre2_code* ACode, RegExPattern& APattern) {
  uint32_t count = 0;
  uint32_t entrySize = 0;
  PCRE2_SPTR table = nullptr;
  pcre2_pattern_info(ACode, PCRE2_INFO_NAMECOUNT, &count);
  if (count == 0) return;
  pcre2_pattern_info(ACode, PCRE2_INFO_NAMEENTRYSIZE, &entrySize);
  pcre2_pattern_info(ACode, PCRE2_INFO_NAMETABLE, &table);
  // Each entry: the group number in the first code unit, then the zero-terminated name.
  for (uint32_t i = 0; i < count; ++i) {
    PCRE2_SPTR entry = table + static_cast<size_t>(i) * entrySize;
    const auto* name = reinterpret_cast<const char16_t*>(entry + 1);
    APattern.Names.emplace_back(UnicodeString(name), static_cast<uint32_t>(entry[0]));
  }
}

class PatternCache {
 public:
  std::shared_ptr<const RegExPattern> Get(std::u16string_view APattern, TRegExOptions AOptions) {
    UnicodeString key;
    key.reserve(APattern.size() + 1);
    key.push_back(static_cast<char16_t>(AOptions.Bits()));
    key.append(APattern);
    {
      std::lock_guard lock(FMutex);
      auto it = FIndex.find(key);
      if (it != FIndex.end()) {
        FOrder.splice(FOrder.begin(), FOrder, it->second);
        return it->second->second;
      }
    }
    // Compile outside the lock: a slow pattern must not hold up other threads.
    auto compiled = CompileRegEx(APattern, AOptions);
    std::lock_guard lock(FMutex);
    auto it = FIndex.find(key);
    if (it != FIndex.end()) return it->second->second;
    FOrder.emplace_front(key, compiled);
    FIndex.emplace(std::move(key), FOrder.begin());
    if (FOrder.size() > TRegEx::CacheCapacity) {
      FIndex.erase(FOrder.back().first);
      FOrder.pop_back();
    }
    return compiled;
  }

 private:
  using Entry = std::pair<UnicodeString, std::shared_ptr<const RegExPattern>>;
  std::mutex FMutex;
  std::list<Entry> FOrder;  // most recently used first
  std::unordered_map<UnicodeString, std::list<Entry>::iterator> FIndex;
};

}  // namespace

RegExPattern::~RegExPattern() { pcre2_code_free(static_cast<pcre2_code*>(Code)); }

int32_t RegExPattern::GroupNumber(std::u16string_view AName) const noexcept {
  for (const auto& [name, number] : Names)
    if (name == AName) return static_cast<int32_t>(number);
  return -1;
}

UnicodeString RegExErrorText(int AErrorCode) {
  PCRE2_UCHAR buffer[256];
  const int n = pcre2_get_error_message(AErrorCode, buffer, std::size(buffer));
  if (n < 0) return u"unknown error";
  return UnicodeString(reinterpret_cast<const char16_t*>(buffer), static_cast<size_t>(n));
}

std::shared_ptr<const RegExPattern> CompileRegEx(std::u16string_view APattern, TRegExOptions AOptions) {
  int errorCode = 0;
  PCRE2_SIZE errorOffset = 0;
  pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(APattern.data()), APattern.size(),
                                   CompileOptions(AOptions), &errorCode, &errorOffset, nullptr);
  if (code == nullptr)
    throw ERegularExpressionError(cRegExExpressionError,
                                  {static_cast<Integer>(errorOffset), RegExErrorText(errorCode)});
  auto pattern = std::make_shared<RegExPattern>();
  pattern->Code = code;
  pattern->Source = UnicodeString(APattern);
  pcre2_pattern_info(code, PCRE2_INFO_CAPTURECOUNT, &pattern->CaptureCount);
  ReadGroupNames(code, *pattern);
  if (AOptions.Contains(roNotEmpty)) pattern->MatchOptions |= PCRE2_NOTEMPTY;
  // Without JIT support the interpreter runs the same pattern; only speed differs.
  if (AOptions.Contains(roCompiled)) pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
  return pattern;
}

std::shared_ptr<const RegExPattern> CompileRegExCached(std::u16string_view APattern, TRegExOptions AOptions) {
  static PatternCache cache;
  return cache.Get(APattern, AOptions);
}

}  // namespace vn::detail
