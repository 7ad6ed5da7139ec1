// The string functions: code points, comparison, concatenation, substrings and case.
#include <algorithm>
#include <cstdint>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/text_utils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/dom_node.h"
#include "xpath/fn_messages.h"
#include "xpath/fn_registry.h"

namespace vn {
namespace {

using namespace detail;

bool IsStringKind(const Variant& AValue) noexcept { return TVnTypes::VarMainTypeKind(AValue) == vmkString; }
bool IsIntegerKind(const Variant& AValue) noexcept { return TVnTypes::VarMainTypeKind(AValue) == vmkInteger; }

// Runs of blanks (32 only) become one blank; blanks at both ends go.
UnicodeString NormalizeBlanks(std::u16string_view AText) {
  UnicodeString result;
  result.reserve(AText.size());
  bool pendingBlank = false;
  for (char16_t c : AText) {
    if (c == u' ') {
      pendingBlank = !result.empty();
      continue;
    }
    if (pendingBlank) result += u' ';
    pendingBlank = false;
    result += c;
  }
  return result;
}

VN_XPATH_FUNCTION(TVnXPathFnCodepointsToString, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnStringToCodepoints, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnCompare, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnCodepointEqual, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnConcat, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnStringJoin, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnSubstring, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnStringLength, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnNormalizeSpace, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnNormalizeUnicode, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnSimplify, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnUpperCase, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnLowerCase, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnTranslate, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnContains, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnStartsWith, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnEndsWith, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnSubstringBefore, TVnXPathFunction)
VN_XPATH_FUNCTION(TVnXPathFnSubstringAfter, TVnXPathFunction)

Variant TVnXPathFnCodepointsToString::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 1, cFnCodepointsToStringArity);
  if (ParamCount() == 0) return Variant::Null();
  auto* sequence = CastObject<TVnXPathSequenceTerm>(GetParam(0));
  if (!sequence) throw EVnDomSyntax(cFnCodepointsToStringList);
  UnicodeString result;
  for (Integer i = 0; i < sequence->Count(); ++i) {
    Variant code = sequence->GetTerm(i)->Value(AList, AIndex);
    if (!IsIntegerKind(code)) return Variant::Null();
    // One 16-bit code unit per entry, as the strings of the library count characters.
    result += static_cast<char16_t>(code.AsInt64());
  }
  return result;
}

Variant TVnXPathFnStringToCodepoints::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 1, cFnStringToCodepointsArity);
  Variant value = ParamValue(0, AList, AIndex);
  if (!IsStringKind(value)) return Variant::Null();
  UnicodeString result = u"(";
  for (char16_t c : VnVarToStr(value)) {
    if (result.size() > 1) result += u", ";
    result += IntToStr(static_cast<Integer>(c));
  }
  return result + u")";
}

Variant TVnXPathFnCompare::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  if (ParamCount() < 2) throw EVnDomSyntax(cFnCompareTooFew);
  if (ParamCount() > 3) throw EVnDomSyntax(cFnCompareTooMany);
  Variant v1 = ParamValue(0, AList, AIndex);
  Variant v2 = ParamValue(1, AList, AIndex);
  if (VnVarIsEmpty(v1) || VnVarIsEmpty(v2)) return Variant::Null();
  TVnXPathCollationClass collation =
      ParamCount() > 2 ? VnFindXPathCollation(ParamString(2, AList, AIndex)) : Collation();
  Integer order = collation->Compare(VnVarToStr(v1), VnVarToStr(v2));
  return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

Variant TVnXPathFnCodepointEqual::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnCodepointEqualArity);
  Variant v1 = ParamValue(0, AList, AIndex);
  Variant v2 = ParamValue(1, AList, AIndex);
  if (!IsStringKind(v1) || !IsStringKind(v2)) return Variant::Null();
  return v1 == v2;
}

// Variant addition, as the function has always been defined: two texts concatenate, but a text
// meeting a number is read as a number, so concat("a", 1) raises the cast error and concat("1", 2)
// gives 3. Hosts that need text joins of numbers pass them through string().
Variant TVnXPathFnConcat::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  Variant result = UnicodeString();
  for (Integer i = 0; i < ParamCount(); ++i) result = result + ParamValue(i, AList, AIndex);
  return result;
}

Variant TVnXPathFnStringJoin::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  if (ParamCount() < 1) throw EVnDomSyntax(cFnStringJoinTooFew);
  if (ParamCount() > 2) throw EVnDomSyntax(cFnStringJoinTooMany);
  UnicodeString separator = ParamCount() > 1 ? ParamString(1, AList, AIndex) : UnicodeString();
  UnicodeString result;
  if (auto* sequence = CastObject<TVnXPathSequenceTerm>(GetParam(0))) {
    for (Integer i = 0; i < sequence->Count(); ++i) {
      if (i > 0) result += separator;
      result += VnVarToStr(sequence->GetTerm(i)->Value(AList, AIndex));
    }
    return result;
  }
  // Any other argument is taken as text and joined character by character.
  UnicodeString text = ParamString(0, AList, AIndex);
  for (size_t i = 0; i < text.size(); ++i) {
    if (i > 0) result += separator;
    result += text[i];
  }
  return result;
}

Variant TVnXPathFnSubstring::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 3, cFnSubstringArity);
  if (ParamCount() == 0) return UnicodeString();
  Variant text = ParamValue(0, AList, AIndex);
  if (!IsStringKind(text)) return Variant::Null();
  if (ParamCount() == 1) return UnicodeString();
  // Only integers count: a float start or length is not rounded, it gives Null.
  Variant start = ParamValue(1, AList, AIndex);
  if (!IsIntegerKind(start)) return Variant::Null();
  Int64 length = INT32_MAX;
  if (ParamCount() > 2) {
    Variant len = ParamValue(2, AList, AIndex);
    if (!IsIntegerKind(len)) return Variant::Null();
    length = len.AsInt64();
  }
  Int64 from = start.AsInt64();
  if (from < 1) from = 1;
  if (length <= 0 || from > INT32_MAX) return UnicodeString();
  return Copy(VnVarToStr(text), static_cast<Integer>(from), static_cast<Integer>(std::min<Int64>(length, INT32_MAX)));
}

Variant TVnXPathFnStringLength::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 1, cFnStringLengthArity);
  return static_cast<Integer>(OptionalStringParam(AList, AIndex).size());
}

Variant TVnXPathFnNormalizeSpace::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(0, 1, cFnNormalizeSpaceArity);
  return NormalizeBlanks(OptionalStringParam(AList, AIndex));
}

Variant TVnXPathFnNormalizeUnicode::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 2, cFnNormalizeUnicodeArity);
  TVnNormalizationForm form = nfC;
  if (ParamCount() > 1 && !VnNormalizationFormFromName(ParamString(1, AList, AIndex), form))
    throw EVnDomSyntax(cFnNormalizeUnicodeForm);
  return VnNormalizeString(ParamString(0, AList, AIndex), form);
}

Variant TVnXPathFnSimplify::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 1, cFnSimplifyArity);
  Variant value = ParamValue(0, AList, AIndex);
  return IsStringKind(value) ? Variant(VnSimplifyString(VnVarToStr(value))) : Variant::Null();
}

Variant TVnXPathFnUpperCase::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 1, cFnUpperCaseArity);
  Variant value = ParamValue(0, AList, AIndex);
  return IsStringKind(value) ? Variant(UpperCase(VnVarToStr(value))) : Variant::Null();
}

Variant TVnXPathFnLowerCase::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(1, 1, cFnLowerCaseArity);
  Variant value = ParamValue(0, AList, AIndex);
  return IsStringKind(value) ? Variant(LowerCase(VnVarToStr(value))) : Variant::Null();
}

// A substring replacement, not the per-character map of its namesake.
Variant TVnXPathFnTranslate::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(3, 3, cFnTranslateArity);
  UnicodeString text = ParamString(0, AList, AIndex);
  UnicodeString search = ParamString(1, AList, AIndex);
  if (search.empty()) return text;
  return StringReplace(text, search, ParamString(2, AList, AIndex), rfReplaceAll);
}

Variant TVnXPathFnContains::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnContainsArity);
  return Collation()->Pos(ParamString(1, AList, AIndex), ParamString(0, AList, AIndex)) > 0;
}

Variant TVnXPathFnStartsWith::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnStartsWithArity);
  return Collation()->Pos(ParamString(1, AList, AIndex), ParamString(0, AList, AIndex)) == 1;
}

// Always case-sensitive, unlike contains and starts-with.
Variant TVnXPathFnEndsWith::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnEndsWithArity);
  UnicodeString text = ParamString(0, AList, AIndex);
  UnicodeString tail = ParamString(1, AList, AIndex);
  return tail.size() <= text.size() && std::u16string_view(text).substr(text.size() - tail.size()) == tail;
}

Variant TVnXPathFnSubstringBefore::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnSubstringBeforeArity);
  UnicodeString text = ParamString(0, AList, AIndex);
  Integer at = Collation()->Pos(ParamString(1, AList, AIndex), text);
  return at > 0 ? text.substr(0, static_cast<size_t>(at - 1)) : UnicodeString();
}

Variant TVnXPathFnSubstringAfter::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  CheckParamCount(2, 2, cFnSubstringAfterArity);
  UnicodeString text = ParamString(0, AList, AIndex);
  UnicodeString search = ParamString(1, AList, AIndex);
  Integer at = Collation()->Pos(search, text);
  if (at <= 0) return UnicodeString();
  size_t from = std::min(text.size(), static_cast<size_t>(at - 1) + search.size());
  return text.substr(from);
}

const XPathFnEntry cStringFunctions[] = {
    {u"codepoints-to-string", &TVnXPathFunctionTerm::Create<TVnXPathFnCodepointsToString>},
    {u"string-to-codepoints", &TVnXPathFunctionTerm::Create<TVnXPathFnStringToCodepoints>},
    {u"compare", &TVnXPathFunctionTerm::Create<TVnXPathFnCompare>},
    {u"codepoint-equal", &TVnXPathFunctionTerm::Create<TVnXPathFnCodepointEqual>},
    {u"concat", &TVnXPathFunctionTerm::Create<TVnXPathFnConcat>},
    {u"string-join", &TVnXPathFunctionTerm::Create<TVnXPathFnStringJoin>},
    {u"substring", &TVnXPathFunctionTerm::Create<TVnXPathFnSubstring>},
    {u"string-length", &TVnXPathFunctionTerm::Create<TVnXPathFnStringLength>},
    {u"normalize-space", &TVnXPathFunctionTerm::Create<TVnXPathFnNormalizeSpace>},
    {u"normalize-unicode", &TVnXPathFunctionTerm::Create<TVnXPathFnNormalizeUnicode>},
    {u"simplify", &TVnXPathFunctionTerm::Create<TVnXPathFnSimplify>},
    {u"upper-case", &TVnXPathFunctionTerm::Create<TVnXPathFnUpperCase>},
    {u"lower-case", &TVnXPathFunctionTerm::Create<TVnXPathFnLowerCase>},
    {u"translate", &TVnXPathFunctionTerm::Create<TVnXPathFnTranslate>},
    {u"contains", &TVnXPathFunctionTerm::Create<TVnXPathFnContains>},
    {u"starts-with", &TVnXPathFunctionTerm::Create<TVnXPathFnStartsWith>},
    {u"ends-with", &TVnXPathFunctionTerm::Create<TVnXPathFnEndsWith>},
    {u"substring-before", &TVnXPathFunctionTerm::Create<TVnXPathFnSubstringBefore>},
    {u"substring-after", &TVnXPathFunctionTerm::Create<TVnXPathFnSubstringAfter>},
};

}  // namespace

std::span<const detail::XPathFnEntry> detail::StringFunctionTable() { return cStringFunctions; }

}  // namespace vn
