// path_step.cpp: cutting a path text into its first step, the step's name and filters, and the rest.
#include "vnxml/common/sysutils.h"
#include "xpath/path_engine.h"

namespace vn::detail {

namespace {

/// AText without the blanks and control characters at both ends, as Trim cuts them.
std::u16string_view TrimView(std::u16string_view AText) {
  while (!AText.empty() && AText.front() <= u' ') AText.remove_prefix(1);
  while (!AText.empty() && AText.back() <= u' ') AText.remove_suffix(1);
  return AText;
}

/// Offset of the first "/" outside a filter, from AFrom; a "[" jumps to the next "]" without
/// balancing, so a slash behind a nested "]" separates.
size_t FindStepEnd(std::u16string_view AText, size_t AFrom) {
  for (size_t i = AFrom; i < AText.size(); ++i) {
    if (AText[i] == u'/') return i;
    if (AText[i] == u'[') {
      size_t close = AText.find(u']', i + 1);
      if (close == std::u16string_view::npos) return std::u16string_view::npos;
      i = close;
    }
  }
  return std::u16string_view::npos;
}

/// Offset behind the ")" matching the "(" at AText[0], or the end of the text.
size_t SkipGroup(std::u16string_view AText) {
  int level = 0;
  for (size_t i = 0; i < AText.size(); ++i) {
    if (AText[i] == u'(') ++level;
    else if (AText[i] == u')' && --level == 0) return i + 1;
  }
  return AText.size();
}

/// The "[...]" groups of a filter text, balanced by counting; text between groups is skipped.
std::vector<std::u16string_view> SplitFilters(std::u16string_view AText) {
  std::vector<std::u16string_view> filters;
  size_t i = AText.find(u'[');
  while (i != std::u16string_view::npos) {
    int level = 0;
    size_t end = AText.size();
    for (size_t j = i; j < AText.size(); ++j) {
      if (AText[j] == u'[') ++level;
      else if (AText[j] == u']' && --level == 0) {
        end = j + 1;
        break;
      }
    }
    filters.push_back(TrimView(AText.substr(i, end - i)));
    i = AText.find(u'[', end);
  }
  return filters;
}

/// The number of a filter that is nothing but a bare index, "[ 3 ]"; -1 for any other filter.
Integer BareIndex(std::u16string_view AFilter) {
  if (AFilter.size() < 3 || AFilter.front() != u'[' || AFilter.back() != u']') return -1;
  std::u16string_view inner = AFilter.substr(1, AFilter.size() - 2);
  while (!inner.empty() && inner.front() == u' ') inner.remove_prefix(1);
  while (!inner.empty() && inner.back() == u' ') inner.remove_suffix(1);
  if (inner.empty() || inner.size() > 9) return -1;
  Integer n = 0;
  for (char16_t c : inner) {
    if (c < u'0' || c > u'9') return -1;
    n = n * 10 + (c - u'0');
  }
  return n;
}

bool IsFunctionStep(std::u16string_view ALocal, char16_t AFirst, std::u16string_view AName) {
  return !ALocal.empty() && ALocal[0] == AFirst && SameText(ALocal, AName);
}

}  // namespace

PathStep::PathStep(std::u16string_view AText, bool ALocalNameMatch) {
  if (!AText.empty() && AText[0] == u'/') {
    FStartsWithSlash = true;
    return;
  }
  // Split into step and rest. A leading group is skipped whole; if a "/" follows it, the group
  // is dropped and only what stands between ")" and "/" is the step.
  size_t groupEnd = !AText.empty() && AText[0] == u'(' ? SkipGroup(AText) : 0;
  size_t slash = FindStepEnd(AText, groupEnd);
  std::u16string_view step;
  if (slash == std::u16string_view::npos) {
    step = TrimView(AText);
  } else {
    step = TrimView(AText.substr(groupEnd, slash - groupEnd));
    std::u16string_view rest = AText.substr(slash);
    if (rest == u"/") {
      FRestIsSlash = true;
      return;
    }
    FNextDeep = rest.starts_with(u"//");
    FRestText = rest.substr(FNextDeep ? 2 : 1);
    FHasRest = !FRestText.empty() || FNextDeep;
    groupEnd = 0;
  }
  FIsDot = step == u".";

  // Name part and filters; a group keeps the brackets inside its parentheses.
  size_t searchFrom = groupEnd > 0 ? SkipGroup(step) : 0;
  size_t bracket = step.find(u'[', searchFrom);
  if (bracket == std::u16string_view::npos) {
    FNamePart = step;
  } else {
    FNamePart = TrimView(step.substr(0, bracket));
    FFilterText = TrimView(step.substr(bracket));
    FFilters = SplitFilters(FFilterText);
    FEquations.resize(FFilters.size());
    FExistsPaths.resize(FFilters.size());
    for (std::u16string_view filter : FFilters) FBareIndexes.push_back(BareIndex(filter));
    if (FBareIndexes.front() >= 0) FCollectLimit = static_cast<size_t>(FBareIndexes.front()) + 1;
  }

  if (!FNamePart.empty() && FNamePart[0] == u'(') {
    FForm = StepForm::Group;
    std::u16string_view inner = FNamePart.substr(1);
    if (!inner.empty() && inner.back() == u')') inner.remove_suffix(1);
    FGroupText = TrimView(inner);
    return;
  }

  std::u16string_view name = FNamePart;
  size_t colon = name.find(u':');
  std::u16string_view prefix = colon == std::u16string_view::npos ? std::u16string_view{} : name.substr(0, colon);
  std::u16string_view local = colon == std::u16string_view::npos ? name : name.substr(colon + 1);
  FPrefix = prefix;
  if (prefix.empty() && (ALocalNameMatch || local == u"*" || local == u".")) FPrefix = u"*";
  bool attribute = false;
  if (!FPrefix.empty() && FPrefix[0] == u'@') {
    FPrefix.remove_prefix(1);
    attribute = true;
  } else if (!local.empty() && local[0] == u'@') {
    local.remove_prefix(1);
    attribute = true;
  }
  FLocal = local;

  if (attribute) {
    FForm = StepForm::Attribute;
    if (ALocalNameMatch || (FLocal == u"*" && FPrefix.empty())) FPrefix = u"*";
  } else if (IsFunctionStep(local, u'n', u"node()")) {
    FForm = StepForm::Node;
  } else if (IsFunctionStep(local, u't', u"text()")) {
    FForm = StepForm::Text;
  } else if (local == u"*") {
    FForm = StepForm::Star;
  } else if (!local.empty() && local[0] == u'*') {
    FForm = StepForm::Error;
    FFormError = cVnPathAfterStar;
  } else if (local == u".") {
    FForm = StepForm::Dot;
  } else if (local == u"..") {
    FForm = StepForm::Parent;
  } else if (!local.empty() && local[0] == u'.') {
    FForm = StepForm::Error;
    FFormError = cVnPathAfterDots;
  } else if (local.empty()) {
    FForm = StepForm::AllChildren;
  } else {
    FForm = StepForm::Name;
    // Only a plain name step creates; "@a", "*" and the like leave the path too complex.
    FCreatable = true;
  }
}

PathStep& PathStep::Rest(bool ALocalNameMatch) {
  if (!FRest) {
    FRest = std::make_unique<PathStep>(FRestText, ALocalNameMatch);
    // The rest runs on this step's candidates, and with "//" on everything below them.
    FRest->FRemember = CandidatesRepeat() || (FNextDeep && CandidatesNest());
    FRest->FContextsNest = CandidatesNest() || FNextDeep;
  }
  return *FRest;
}

bool PathStep::CandidatesRepeat() const noexcept {
  // Children of distinct nodes are distinct; but siblings share their parent, a group's path may
  // reach anything, and a document answers "@" with its root element's attributes.
  return FRemember || FForm == StepForm::Parent || FForm == StepForm::Group ||
         (FForm == StepForm::Attribute && FContextsNest);
}

bool PathStep::CandidatesNest() const noexcept { return CandidatesRepeat() || FContextsNest; }

}  // namespace vn::detail
