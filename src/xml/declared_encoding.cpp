// DeclaredEncoding: the value behind "encoding" in the first tag of an 8-bit text.
#include "xml/declared_encoding.h"

#include "vnxml/common/sysutils.h"

namespace vn::detail {

namespace {
constexpr size_t kFirstTagWindow = 1025;

bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

// Where "encoding" stands in AText, in any case.
size_t FindEncodingWord(std::string_view AText) {
  static constexpr std::string_view kWord = "encoding";
  for (size_t i = 0; i + kWord.size() <= AText.size(); ++i) {
    size_t k = 0;
    while (k < kWord.size() && (AText[i + k] | 0x20) == kWord[k]) ++k;
    if (k == kWord.size()) return i;
  }
  return std::string_view::npos;
}
}  // namespace

UnicodeString DeclaredEncoding(std::string_view AText, DeclarationRule ARule) {
  std::string_view tag;
  if (ARule == DeclarationRule::Prolog) {
    size_t lt = AText.find('<');
    if (lt == std::string_view::npos || AText.substr(lt, 6) != "<?xml ") return {};
    tag = AText.substr(lt);
  } else {
    if (AText.empty() || AText.front() != '<') return {};
    tag = AText.substr(0, kFirstTagWindow);
  }
  tag = tag.substr(0, tag.find('>'));
  size_t at = FindEncodingWord(tag);
  if (at == std::string_view::npos) return {};
  std::string_view rest = tag.substr(at + 8);
  size_t eq = rest.find('=');
  if (eq == std::string_view::npos) {
    // The reader reads from the word itself on; its first character serves as the quote.
    if (ARule == DeclarationRule::FirstTag) return {};
    rest = tag.substr(at);
  } else {
    rest = rest.substr(eq + 1);
  }
  while (!rest.empty() && IsBlank(rest.front())) rest.remove_prefix(1);
  while (!rest.empty() && IsBlank(rest.back())) rest.remove_suffix(1);
  if (rest.size() < 2) return {};
  const char quote = rest.front();
  if (ARule == DeclarationRule::FirstTag && quote != '"') return {};
  rest.remove_prefix(1);
  size_t close = rest.find(quote);
  if (close == std::string_view::npos) return {};
  UnicodeString name;
  for (char c : rest.substr(0, close)) name.push_back(static_cast<unsigned char>(c));
  return Trim(name);
}

}  // namespace vn::detail
