// The regular expression functions (matches, replace, tokenize), on TRegEx with PCRE syntax.
#include "vnxml/common/regex.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace {

using namespace detail;

// Each flag letter is looked up through the selection's collation, so with the default collation
// "I" means the same as "i". Letters without a meaning are ignored.
TRegExOptions FlagOptions(std::u16string_view AFlags, TVnXPathCollationClass ACollation) {
  static constexpr struct {
    char16_t Letter[2];
    TRegExOption Option;
  } flags[] = {{u"s", roSingleLine},
               {u"m", roMultiLine},
               {u"i", roIgnoreCase},
               {u"x", roIgnorePatternSpace},
               {u"q", roExplicitCapture}};
  TRegExOptions options;
  for (const auto& flag : flags)
    if (ACollation->Pos(flag.Letter, AFlags) > 0) options.Include(flag.Option);
  return options;
}

// The tokens as one text, each in double quotes: ("a", "b").
UnicodeString QuotedList(const std::vector<UnicodeString>& ATokens) {
  UnicodeString result = u"(";
  for (size_t i = 0; i < ATokens.size(); ++i) {
    if (i > 0) result += u", ";
    result += u'"' + ATokens[i] + u'"';
  }
  return result + u")";
}

VN_XPATH_FUNCTION(TVnXPathFnMatches, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnReplace, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnTokenize, TVnXPathFunction)

Variant TVnXPathFnMatches::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 3, cFnMatchesArity);
  TRegExOptions options = ParamCount() > 2 ? FlagOptions(ParamString(2, AList, AIndex), Collation()) : TRegExOptions{};
  return TRegEx::IsMatch(ParamString(0, AList, AIndex), ParamString(1, AList, AIndex), options);
}

Variant TVnXPathFnReplace::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(3, 4, cFnReplaceArity);
  TRegExOptions options = ParamCount() > 3 ? FlagOptions(ParamString(3, AList, AIndex), Collation()) : TRegExOptions{};
  return TRegEx::Replace(ParamString(0, AList, AIndex), ParamString(1, AList, AIndex),
                         ParamString(2, AList, AIndex), options);
}

Variant TVnXPathFnTokenize::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 3, cFnTokenizeArity);
  UnicodeString text = ParamString(0, AList, AIndex);
  std::vector<UnicodeString> tokens;
  if (ParamCount() == 1) {
    // Without a pattern: the text's blank-separated words (blank 32 only).
    size_t start = 0;
    while (start < text.size()) {
      size_t end = text.find(u' ', start);
      if (end == UnicodeString::npos) end = text.size();
      if (end > start) tokens.push_back(text.substr(start, end - start));
      start = end + 1;
    }
  } else {
    TRegExOptions options =
        ParamCount() > 2 ? FlagOptions(ParamString(2, AList, AIndex), Collation()) : TRegExOptions{};
    tokens = TRegEx::Split(text, ParamString(1, AList, AIndex), options);
  }
  return QuotedList(tokens);
}

const XPathFnEntry cRegexFunctions[] = {
    {u"matches", &TVnXPathFunctionTerm::Create<TVnXPathFnMatches>},
    {u"replace", &TVnXPathFunctionTerm::Create<TVnXPathFnReplace>},
    {u"tokenize", &TVnXPathFunctionTerm::Create<TVnXPathFnTokenize>},
};

}  // namespace

std::span<const detail::XPathFnEntry> detail::RegexFunctionTable() { return cRegexFunctions; }

}  // namespace vn
