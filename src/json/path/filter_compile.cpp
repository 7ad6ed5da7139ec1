// Reading a filter "?(...)" into a tree of terms, once per selection.
#include "json/path/path_program.h"

#include "vnxml/common/sysutils.h"

namespace vn::detail::jsonpath {

namespace {

constexpr std::u16string_view kOperatorChars = u"!&)<=>|";

// The end of an operand that starts at APos: its first character is taken as it is; then up to
// an operator character or the end, passing over "[...]" and "(...)" with what they nest.
size_t OperandEnd(std::u16string_view AText, size_t APos) {
  if (APos < AText.size()) ++APos;
  while (APos < AText.size()) {
    const char16_t c = AText[APos];
    if (kOperatorChars.find(c) != std::u16string_view::npos) break;
    if (c != u'[' && c != u'(') {
      ++APos;
      continue;
    }
    for (int depth = 0; APos < AText.size(); ++APos) {
      const char16_t d = AText[APos];
      if (d == u'[' || d == u'(') ++depth;
      if ((d == u']' || d == u')') && --depth == 0) break;
    }
    if (APos < AText.size()) ++APos;
  }
  return APos;
}

UnicodeString CharText(std::u16string_view AText, size_t APos) {
  return APos < AText.size() ? UnicodeString(1, AText[APos]) : UnicodeString();
}

// The comparison operator at APos and its length; 0 when there is none (the operand stands
// alone). A "=" or "!" not followed by "=" is a fault.
size_t ReadOperator(std::u16string_view AText, size_t APos, TVnExpValueHasNodeWithValueOp& AOp, PathFault& AFault) {
  if (APos >= AText.size()) return 0;
  const char16_t c = AText[APos];
  const char16_t next = APos + 1 < AText.size() ? AText[APos + 1] : u'\0';
  switch (c) {
    case u'=':
    case u'!':
      if (next != u'=') {
        AFault = PathFault::Make(cVnJSONErrInvalidCharInPath1, _cVnJSONInvalidCharInPath1,
                                 {u"=", CharText(AText, APos + 1)});
        return 0;
      }
      AOp = c == u'=' ? opEqual : opUnequal;
      return 2;
    case u'<':
      if (next == u'>') return AOp = opUnequal, 2;
      if (next == u'=') return AOp = opSmallerEqual, 2;
      return AOp = opSmaller, 1;
    case u'>':
      if (next == u'=') return AOp = opGreaterEqual, 2;
      return AOp = opGreater, 1;
    default: return 0;
  }
}

}  // namespace

std::unique_ptr<TVnBoolExpression> CompileFilter(std::u16string_view AItem, bool ACaseInsensitive, int ANesting,
                                                 PathFault& AFault) {
  if (AItem.substr(0, 2) != cVnJSONPathFilterExpected) {
    AFault = PathFault::Make(cVnJSONErrInvalidCharInPath1, _cVnJSONInvalidCharInPath1,
                             {cVnJSONPathFilterExpected, AItem.substr(0, 2)});
    return nullptr;
  }
  const auto tooComplex = [&] {
    AFault = PathFault::Make(cVnJSONErrScriptExprTooComplex, _cVnJSONScriptExprTooComplex);
    return nullptr;
  };
  int depth = ANesting + 1;
  if (depth > cVnJSONPathMaxNesting) return tooComplex();
  const std::u16string_view text = AItem.size() > 3 ? AItem.substr(2, AItem.size() - 3) : std::u16string_view();

  auto top = std::make_unique<TVnBoolExpression>();
  TVnBoolExpression* current = top.get();
  // The operand of a "!" is complete after one operand or group: its holder is current again.
  const auto closeNots = [&] {
    while (FilterScope::NotOperand(current)) {
      current = FilterScope::Parent(current);
      --depth;
    }
  };
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t mark = pos;
    const char16_t c = text[pos];
    if (c == u'(' || c == u'!') {
      if (c == u'(')
        current->SetValue(new TVnExpressionValueChild(current));
      else
        current->SetValue(new TVnExpressionValueNot(current));
      current = current->AddFirstChild();
      FilterScope::NotOperand(current) = c == u'!';
      if (++depth > cVnJSONPathMaxNesting) return tooComplex();
      ++pos;
    } else if (c == u')') {
      current = FilterScope::Parent(current);
      if (!current) return tooComplex();
      --depth;
      ++pos;
      closeNots();
    } else if (c == u'&' || c == u'|') {
      if (pos + 1 >= text.size() || text[pos + 1] != c) {
        AFault = PathFault::Make(cVnJSONErrInvalidCharInPath1, _cVnJSONInvalidCharInPath1,
                                 {UnicodeString(1, c), CharText(text, pos + 1)});
        return nullptr;
      }
      current = current->AddSibling(c == u'&' ? opAnd : opOr);
      pos += 2;
    } else {
      pos = OperandEnd(text, mark);
      const UnicodeString first = Trim(text.substr(mark, pos - mark));
      TVnExpValueHasNodeWithValueOp op = opEqual;
      const size_t length = ReadOperator(text, pos, op, AFault);
      if (AFault) return nullptr;
      if (length == 0) {
        current->SetValue(FilterScope::MakeExists(current, first, ACaseInsensitive, depth));
      } else {
        const size_t second = pos + length;
        pos = OperandEnd(text, second);
        current->SetValue(FilterScope::MakeCompare(current, first, Trim(text.substr(second, pos - second)), op,
                                                   ACaseInsensitive, depth));
      }
      closeNots();
    }
    while (pos < text.size() && text[pos] == u' ') ++pos;
  }
  return top;
}

}  // namespace vn::detail::jsonpath
