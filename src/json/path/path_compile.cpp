// Reading a path: alternatives, their start, steps cut at "." and "[", and the items of a step.
#include "json/path/path_program.h"

#include <algorithm>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_utils.h"

namespace vn::detail::jsonpath {

namespace {

constexpr std::u16string_view kAlternativeBar = u" | ";
constexpr std::u16string_view kLength = u"@.length";

// Trim without a copy: characters at or below the space go at both ends.
std::u16string_view TrimView(std::u16string_view AText) {
  while (!AText.empty() && AText.front() <= u' ') AText.remove_prefix(1);
  while (!AText.empty() && AText.back() <= u' ') AText.remove_suffix(1);
  return AText;
}

bool IsIndexText(std::u16string_view AText) {
  if (AText.empty()) return false;
  for (char16_t c : AText)
    if ((c < u'0' || c > u'9') && c != u'-') return false;
  return true;
}

// The platform's Copy(s, 2, Length(s) - 2): the text without its first and last character.
std::u16string_view Inner(std::u16string_view AText) {
  return AText.size() < 2 ? std::u16string_view() : AText.substr(1, AText.size() - 2);
}

void CompileSlice(std::u16string_view AItem, PathItem& AOut) {
  UnicodeString text = AItem.front() == u':' ? u"0" + UnicodeString(AItem) : UnicodeString(AItem);
  std::vector<UnicodeString> parts = VnTokenize(text, u":");
  auto part = [&](size_t i) { return i < parts.size() ? StrToIntDef(parts[i], 0) : 0; };
  AOut.FKind = PathItem::Slice;
  AOut.FStart = part(0);
  AOut.FEnd = part(1);
  AOut.FStep = part(2);
}

void CompileItem(std::u16string_view AText, bool ACaseInsensitive, int ANesting, PathItem& AOut, bool& APure) {
  const std::u16string_view item = TrimView(AText);
  if (!item.empty() && item.front() == u'?') {
    AOut.FKind = PathItem::Filter;
    AOut.FFilter = CompileFilter(item, ACaseInsensitive, ANesting, AOut.FFault);
    if (AOut.FFault) AOut.FKind = PathItem::Failure;
    APure = false;
    return;
  }
  if (!item.empty() && item.front() == u'(') {
    UnicodeString inside(Inner(item));
    size_t at = inside.find(kLength);
    Integer value = 0;
    if (at != UnicodeString::npos) inside.erase(at, kLength.size());
    if (!TryStrToInt(inside, value)) {
      AOut.FFault = PathFault::Make(cVnJSONErrScriptExprTooComplex, _cVnJSONScriptExprTooComplex);
      APure = false;
      return;
    }
    AOut.FKind = at != UnicodeString::npos ? PathItem::LengthIndex : PathItem::Index;
    AOut.FStart = value;
    return;
  }
  if (item.find(u':') != std::u16string_view::npos) return CompileSlice(item, AOut);
  if (IsIndexText(item)) {
    if (TryStrToInt(item, AOut.FStart)) {
      AOut.FKind = PathItem::Index;
    } else {
      AOut.FFault.FKind = PathFault::Convert;
      AOut.FFault.FMessage = UnicodeString(item);
      APure = false;
    }
    return;
  }
  std::u16string_view name = item;
  if (!name.empty() && name.front() == u'\'') name = Inner(name);
  if (name.empty() || name == u"*") {
    AOut.FKind = PathItem::Wildcard;
  } else {
    AOut.FKind = PathItem::Name;
    AOut.FName = name;
    AOut.FAsciiName = std::all_of(name.begin(), name.end(), [](char16_t c) { return c < 0x80; });
  }
}

// The inside of "[...]" cut at commas outside single quotes, each item trimmed; an empty last
// item is dropped, so "[]" has none.
void CompileItems(std::u16string_view AInside, bool ACaseInsensitive, int ANesting, PathSteps& ASteps) {
  PathStep& step = ASteps.FSteps.back();
  step.FFirst = static_cast<uint32_t>(ASteps.FItems.size());
  bool quoted = false;
  size_t start = 0;
  for (size_t i = 0; i <= AInside.size(); ++i) {
    if (i < AInside.size() && AInside[i] == u'\'') quoted = !quoted;
    if (i < AInside.size() && (AInside[i] != u',' || quoted)) continue;
    const std::u16string_view item = TrimView(AInside.substr(start, i - start));
    start = i + 1;
    if (i == AInside.size() && item.empty()) break;
    CompileItem(item, ACaseInsensitive, ANesting, ASteps.FItems.emplace_back(), ASteps.FPure);
  }
  step.FCount = static_cast<uint32_t>(ASteps.FItems.size()) - step.FFirst;
}

// The end of a "[" step at APos: one past the "]" that closes it; an inner "[" is passed over
// up to its next "]". npos without a closing "]".
size_t BracketEnd(std::u16string_view AText, size_t APos) {
  for (size_t i = APos + 1; i < AText.size(); ++i) {
    if (AText[i] == u']') return i + 1;
    if (AText[i] == u'[') {
      i = AText.find(u']', i + 1);
      if (i == std::u16string_view::npos) return i;
    }
  }
  return std::u16string_view::npos;
}

}  // namespace

[[noreturn]] void PathFault::Raise() const {
  if (FKind == Convert) StrToInt(FMessage);  // raises the platform's own failure
  throw EVnJSONException(FCode, FMessage);
}

PathFault PathFault::Make(Integer ACode, std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs) {
  PathFault fault;
  fault.FKind = Json;
  fault.FCode = ACode;
  fault.FMessage = AArgs.size() ? Format(AFormat, AArgs) : UnicodeString(AFormat);
  return fault;
}

namespace {
void MarkNames(PathSteps& ASteps) {
  PathStep& step = ASteps.FSteps.back();
  for (uint32_t i = step.FFirst; i < step.FFirst + step.FCount; ++i)
    step.FNamesOnly = step.FNamesOnly && ASteps.FItems[i].FKind == PathItem::Name;
}
}  // namespace

void CompileSteps(std::u16string_view AText, PathSteps& ASteps, int ANesting, bool ACaseInsensitive) {
  size_t pos = 0, marks = 0;
  for (char16_t c : AText) marks += c == u'.' || c == u'[';
  ASteps.FSteps.reserve(marks);
  ASteps.FItems.reserve(marks);
  while (pos < AText.size()) {
    PathStep& step = ASteps.FSteps.emplace_back();
    const char16_t c = AText[pos];
    std::u16string_view text;
    if (c == u'$' || c == u'@') {
      const char16_t found[2] = {c, 0};
      step.FFault = PathFault::Make(cVnJSONErrInvalidCharInPath2, _cVnJSONInvalidCharInPath2, {found});
    } else if (c == u'.') {
      size_t start = pos + 1;
      if (start < AText.size() && AText[start] == u'.') {
        step.FRecursive = true;
        ++start;
      }
      pos = start < AText.size() ? start + 1 : start;  // at least one character
      while (pos < AText.size() && AText[pos] != u'.' && AText[pos] != u'[') ++pos;
      text = AText.substr(start, pos - start);
    } else if (c == u'[') {
      size_t end = BracketEnd(AText, pos);
      if (end == std::u16string_view::npos)
        step.FFault = PathFault::Make(cVnJSONErrInvalidCharInPath1, _cVnJSONInvalidCharInPath1, {u"]", u""});
      else
        text = AText.substr(pos, end - pos);
      pos = end;
    } else {
      const char16_t found[2] = {c, 0};
      step.FFault = PathFault::Make(cVnJSONErrInvalidCharInPath1, _cVnJSONInvalidCharInPath1,
                                    {cVnJSONPathStepExpected, found});
    }
    if (step.FFault) {
      ASteps.FPure = false;
      return;  // nothing after a step that can't be read is ever run
    }
    if (!text.empty() && text.front() == u'[') {
      CompileItems(Inner(text), ACaseInsensitive, ANesting, ASteps);
    } else {
      step.FFirst = static_cast<uint32_t>(ASteps.FItems.size());
      step.FCount = 1;
      CompileItem(text, ACaseInsensitive, ANesting, ASteps.FItems.emplace_back(), ASteps.FPure);
    }
    MarkNames(ASteps);
  }
}

void CompilePath(std::u16string_view APath, bool ACaseInsensitive, int ANesting, PathProgram& AProgram) {
  // Alternatives are cut at " | " without regard to brackets or quotes.
  for (size_t start = 0;;) {
    const size_t bar = APath.find(kAlternativeBar, start);
    const std::u16string_view text = TrimView(APath.substr(start, bar == std::u16string_view::npos ? bar : bar - start));
    PathAlternative& alt = AProgram.FAlternatives.emplace_back();
    if (text.empty() || (text.front() != u'$' && text.front() != u'@')) {
      alt.FFault = PathFault::Make(cVnJSONErrInvalidPath, _cVnJSONInvalidPath);
      AProgram.FPure = false;
    } else {
      alt.FFromRoot = text.front() == u'$';
      AProgram.FRootOnly = AProgram.FRootOnly && alt.FFromRoot;
      CompileSteps(text.substr(1), alt.FSteps, ANesting, ACaseInsensitive);
      AProgram.FPure = AProgram.FPure && alt.FSteps.FPure;
    }
    if (bar == std::u16string_view::npos) break;
    start = bar + kAlternativeBar.size();
  }
  const auto plain = [&](const PathStep& AStep) {
    if (AStep.FRecursive || AStep.FCount != 1) return false;
    const PathItem::Kind kind = AProgram.FAlternatives[0].FSteps.FItems[AStep.FFirst].FKind;
    return kind == PathItem::Name || kind == PathItem::Index;
  };
  AProgram.FChain = AProgram.FAlternatives.size() == 1 && AProgram.FPure &&
                    std::all_of(AProgram.FAlternatives[0].FSteps.FSteps.begin(),
                                AProgram.FAlternatives[0].FSteps.FSteps.end(), plain);
}

std::shared_ptr<const HeldProgram> ProgramOf(std::u16string_view APath, bool ACaseInsensitive) {
  constexpr size_t kKept = 16, kLongest = 256;
  thread_local std::vector<std::shared_ptr<const HeldProgram>> tKept;
  thread_local size_t tNext = 0;
  for (const auto& held : tKept)
    if (held->FCaseInsensitive == ACaseInsensitive && held->FText == APath) return held;
  auto held = std::make_shared<HeldProgram>();
  held->FText = UnicodeString(APath);
  held->FCaseInsensitive = ACaseInsensitive;
  CompilePath(held->FText, ACaseInsensitive, 0, held->FProgram);  // views of FText
  if (APath.size() <= kLongest) {
    if (tKept.size() < kKept)
      tKept.push_back(held);
    else
      tKept[tNext++ % kKept] = held;
  }
  return held;
}

std::unique_ptr<PathProgram> CompilePath(std::u16string_view APath, bool ACaseInsensitive, int ANesting) {
  auto program = std::make_unique<PathProgram>();
  CompilePath(APath, ACaseInsensitive, ANesting, *program);
  return program;
}

}  // namespace vn::detail::jsonpath
