// filter_parse.cpp: reading a filter "[...]" into equations and terms.
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_utils.h"
#include "vnxml/dom_path.h"
#include "vnxml/xpath_terms.h"
#include "path_engine.h"

namespace vn {

namespace {

// Groups and nots nest equations; their evaluation and destruction recurse once per level.
constexpr int cMaxFilterNesting = 200;

bool IsDigit(char16_t C) noexcept { return C >= u'0' && C <= u'9'; }

bool IsNameStop(char16_t C) noexcept {
  switch (C) {
    case u'=': case u'<': case u'>': case u'!': case u'(': case u')':
    case u'[': case u']': case u'"': case u' ': case u',':
      return true;
    default:
      return false;
  }
}

/// The keyword AWord at the cursor: its first letter exactly, the others in any case, and a
/// blank, "(", digit or "@" behind it.
bool KeywordAt(const TVnXPathFilterParser& AParser, std::u16string_view AWord) {
  std::u16string_view rest = AParser.Rest();
  if (rest.size() <= AWord.size() || rest[0] != AWord[0]) return false;
  if (!VnSameText(rest.substr(1, AWord.size() - 1), AWord.substr(1))) return false;
  char16_t next = rest[AWord.size()];
  return next == u' ' || next == u'(' || next == u'@' || IsDigit(next);
}

bool IsOperatorChar(char16_t C) noexcept { return C == u'=' || C == u'<' || C == u'>' || C == u'!'; }

bool OperatorAt(const TVnXPathFilterParser& AParser) {
  std::u16string_view rest = AParser.Rest();
  return !rest.empty() && (IsOperatorChar(rest[0]) || rest.starts_with(u"&lt;") || rest.starts_with(u"&gt;"));
}

/// Reads a comparison operator; a run of "=<>!" that is no operator raises.
TVnXPathValueComparisonOperator ReadOperator(TVnXPathFilterParser& AParser) {
  size_t start = AParser.GetPosition();
  UnicodeString op;
  if (AParser.Rest().starts_with(u"&lt;")) {
    op = u"<";
    AParser.Step(4);
  } else if (AParser.Rest().starts_with(u"&gt;")) {
    op = u">";
    AParser.Step(4);
  }
  while (IsOperatorChar(AParser.Peek())) {
    op += AParser.Peek();
    AParser.Step();
  }
  if (op == u"=") return opEqual;
  if (op == u"!=" || op == u"<>") return opUnequal;
  if (op == u"<") return opSmaller;
  if (op == u"<=") return opSmallerEqual;
  if (op == u">") return opGreater;
  if (op == u">=") return opGreaterEqual;
  std::u16string_view written = AParser.GetText().substr(start, AParser.GetPosition() - start);
  throw EVnDomSyntax(cVnFilterInvalidCompare, {AParser.GetText(), written});
}

[[noreturn]] void RaiseInvalid(const TVnXPathFilterParser& AParser) {
  throw Exception(cVnFilterInvalid, {AParser.GetText()});
}

}  // namespace

// ---- the parser's cursor ----

void TVnXPathFilterParser::SkipParenthesised() noexcept {
  int level = 1;
  while (!Eof()) {
    char16_t c = FText[FPos++];
    if (c == u'(') ++level;
    else if (c == u')' && --level == 0) return;
  }
}

// ---- terms read from text ----

TVnXPathConstantTerm::TVnXPathConstantTerm(TVnXPathEquation* AEquation, TVnXPathFilterParser& AParser)
    : TVnXPathBaseTerm(AEquation) {
  char16_t c = AParser.Peek();
  if (c == u'"') {
    AParser.Step();
    std::u16string_view rest = AParser.Rest();
    size_t close = rest.find(u'"');
    if (close == std::u16string_view::npos) throw EVnDomSyntax(cVnFilterStatementInvalid);
    FValue = Variant(rest.substr(0, close));
    AParser.Step(close + 1);
    return;
  }
  if (!IsDigit(c) && c != u'.') throw EVnDomSyntax(cVnFilterNumberOfString);
  size_t start = AParser.GetPosition();
  while (IsDigit(AParser.Peek()) || AParser.Peek() == u'.') AParser.Step();
  std::u16string_view number = AParser.GetText().substr(start, AParser.GetPosition() - start);
  Int64 i;
  Double d;
  if (TryStrToInt64(number, i)) FValue = Variant(static_cast<long long>(i));
  else if (TryStrToFloat(number, d)) FValue = Variant(d);
  else throw EVnDomSyntax(cVnFilterNumberExpected);
}

void TVnXPathListTerm::ReadItems(TVnXPathFilterParser& AParser, char16_t AClose) {
  // Sequences and arrays nest through ReadTerm; reading, evaluating and freeing them recurse.
  detail::DepthGuard guard;
  AParser.SkipBlanks();
  if (AParser.Peek() != AClose) {
    for (;;) {
      Add(FEquation->ReadTerm(AParser));
      AParser.SkipChar(u',');
      if (AParser.Eof() || AParser.Peek() == AClose) break;
    }
  }
  AParser.SkipChar(AClose);
}

void TVnXPathFunctionTerm::ParseParams(TVnXPathFilterParser& AParser) { AParser.SkipParenthesised(); }

std::unique_ptr<TVnXPathBaseTerm> TVnXPathEquation::ReadTerm(TVnXPathFilterParser& AParser) {
  AParser.SkipBlanks();
  char16_t c = AParser.Peek();
  if (IsDigit(c) || c == u'"' || (c == u'.' && IsDigit(AParser.Peek(1))))
    return std::make_unique<TVnXPathConstantTerm>(this, AParser);
  if (c == u'(' || c == u'[') {
    std::unique_ptr<TVnXPathListTerm> list;
    if (c == u'(') list = std::make_unique<TVnXPathSequenceTerm>(this);
    else list = std::make_unique<TVnXPathArrayTerm>(this);
    AParser.Step();
    list->ReadItems(AParser, c == u'(' ? u')' : u']');
    return list;
  }

  size_t start = AParser.GetPosition();
  while (!AParser.Eof() && !IsNameStop(AParser.Peek())) AParser.Step();
  UnicodeString name(AParser.GetText().substr(start, AParser.GetPosition() - start));
  AParser.SkipBlanks();
  if (name.empty()) throw EVnDomSyntax(cVnFilterStatementInvalid);

  if (AParser.Peek() == u'(') {
    AParser.Step();
    std::u16string_view fn = name;
    if (fn.starts_with(u"fn:")) fn.remove_prefix(3);
    if (fn == u"first") return TVnXPathFunctionTerm::Create<TVnXPathFirstNode>(this, &AParser);
    if (fn == u"last") return TVnXPathFunctionTerm::Create<TVnXPathLastNode>(this, &AParser);
    if (fn == u"position") return TVnXPathFunctionTerm::Create<TVnXPathFnPositionTerm>(this, &AParser);
    if (fn == u"node") return TVnXPathFunctionTerm::Create<TVnXPathFnNodeTerm>(this, &AParser);
    return CreateFunctionTerm(fn, this, AParser);
  }
  if (AParser.Peek() == u'[') {
    // One bracket group belongs to the path: "a[1]" is one term.
    size_t from = AParser.GetPosition();
    int level = 0;
    do {
      char16_t b = AParser.Peek();
      if (b == u'[') ++level;
      else if (b == u']') --level;
      AParser.Step();
    } while (level > 0 && !AParser.Eof());
    name += AParser.GetText().substr(from, AParser.GetPosition() - from);
    AParser.SkipBlanks();
  }
  return std::make_unique<TVnXPathValueTerm>(this, std::move(name));
}

// ---- the filter ----

std::unique_ptr<TVnXPathEquation> VnParseXPathFilter(std::u16string_view AFilter, TVnDOMSelectMatchOption AMatchOption,
                                                     TVnXPathCollationClass ACollation) {
  TVnXPathFilterParser parser(AFilter);
  if (!parser.SkipChar(u'[')) RaiseInvalid(parser);
  auto root = std::make_unique<TVnXPathEquation>(AMatchOption, ACollation);
  TVnXPathEquation* current = root.get();
  int nesting = 0;
  auto descend = [&] {
    if (++nesting > cMaxFilterNesting) throw EVnDomSyntax(cVnPathTooDeep);
    current = current->AddFirstChild();
  };
  for (;;) {
    parser.SkipBlanks();
    const bool hasTerm = current->GetTerm() != nullptr;
    if (!hasTerm && parser.Peek() == u'(') {
      current->SetValue(std::make_unique<TVnXPathChildTerm>(current));
      descend();
      parser.Step();
    } else if (!hasTerm && KeywordAt(parser, u"not")) {
      parser.Step(3);
      parser.SkipBlanks();
      current->SetValue(std::make_unique<TVnXPathNot>(current));
      descend();
      parser.SkipChar(u'(');
    } else if (hasTerm && (KeywordAt(parser, u"and") || KeywordAt(parser, u"or"))) {
      bool isAnd = parser.Peek() == u'a';
      parser.Step(isAnd ? 3 : 2);
      parser.SkipBlanks();
      current = current->AddSibling(isAnd ? opAnd : opOr);
    } else if (parser.Peek() == u')') {
      if (!current->GetParent()) RaiseInvalid(parser);
      current = current->GetParent();
      --nesting;
      parser.Step();
    } else if (!hasTerm) {
      if (IsDigit(parser.Peek())) {
        size_t start = parser.GetPosition();
        while (IsDigit(parser.Peek())) parser.Step();
        Integer index;
        if (!TryStrToInt(parser.GetText().substr(start, parser.GetPosition() - start), index)) RaiseInvalid(parser);
        current->SetValue(std::make_unique<TVnXPathChildNodeX>(current, index));
      } else {
        std::unique_ptr<TVnXPathBaseTerm> term = current->ReadTerm(parser);
        parser.SkipBlanks();
        if (OperatorAt(parser)) {
          TVnXPathValueComparisonOperator op = ReadOperator(parser);
          parser.SkipBlanks();
          std::unique_ptr<TVnXPathBaseTerm> second = current->ReadTerm(parser);
          parser.SkipBlanks();
          current->SetValue(
              std::make_unique<TVnXPathValueComparison>(current, std::move(term), op, std::move(second)));
        } else if (dynamic_cast<TVnXPathValueTerm*>(term.get())) {
          current->SetValue(std::make_unique<TVnXPathHasNode>(current, std::move(term)));
        } else {
          current->SetValue(std::move(term));
        }
      }
    } else {
      RaiseInvalid(parser);
    }
    parser.SkipBlanks();
    if (parser.Eof() || parser.Peek() == u']') break;
  }
  return root;
}

}  // namespace vn
