// path_program.cpp: running a path: alternatives, steps over the tree, filters and soCreate.
#include <algorithm>
#include <bit>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_utils.h"
#include "xpath/path_engine.h"

namespace vn::detail {

namespace {

// Each level of nesting (a step, a group, a path inside a filter) costs a few frames; this bound
// keeps hostile paths well inside the default stack, sanitizers included.
constexpr int cMaxDepth = 400;
thread_local int tDepth = 0;
thread_local uint64_t tWork = 0;
// Numbers the outermost selections of this thread; caches of absolute paths in filters last
// for one of them.
thread_local uint64_t tSelection = 0;

// Below this size a linear search is cheaper than hashing.
constexpr size_t cLinearLimit = 16;

// Buffers by nesting depth: a step reuses the candidate list and filter list of the last step
// that ran at its depth, so a search over a large tree allocates next to nothing per node.
template <class T>
T& DepthBuffer() {
  thread_local std::vector<std::unique_ptr<T>> pool;
  auto depth = static_cast<size_t>(tDepth);
  while (pool.size() <= depth) pool.push_back(std::make_unique<T>());
  return *pool[depth];
}

// Every node of type ntElement is a TVnDOMElement; the type is cheaper to ask than the class.
TVnDOMElement* AsElement(TVnDOMNode* ANode) noexcept {
  return ANode->GetNodeType() == ntElement ? static_cast<TVnDOMElement*>(ANode) : nullptr;
}

// Candidates are scattered over the heap, and a filter reads each one, its attribute array and
// its first attribute, one after the other. Asking for them some places ahead lets the memory
// fetch several at once; short lists get all their nodes asked for before the loop.
constexpr size_t cPrefetchNode = 16, cPrefetchArray = 4, cPrefetchFirst = 2;

void PrefetchArrays(TVnDOMNode* ANode, bool AFirstAttribute) {
  if (TVnDOMElement* e = AsElement(ANode)) {
    const auto& attrs = e->AttributesView();
    if (!AFirstAttribute) {
      if (attrs.begin()) __builtin_prefetch(attrs.begin());
    } else if (attrs.size() > 0) {
      __builtin_prefetch(attrs[0]);
    }
  }
}

void PrefetchStart(const std::vector<TVnDOMNode*>& ACands) {
  for (size_t i = 0; i < ACands.size() && i < cPrefetchNode; ++i) __builtin_prefetch(ACands[i]);
  for (size_t i = 0; i < ACands.size() && i < cPrefetchArray; ++i) PrefetchArrays(ACands[i], false);
  for (size_t i = 0; i < ACands.size() && i < cPrefetchFirst; ++i) PrefetchArrays(ACands[i], true);
}

void PrefetchAhead(const std::vector<TVnDOMNode*>& ACands, size_t AIndex) {
  const size_t count = ACands.size();
  if (AIndex + cPrefetchNode < count) __builtin_prefetch(ACands[AIndex + cPrefetchNode]);
  if (AIndex + cPrefetchArray < count) PrefetchArrays(ACands[AIndex + cPrefetchArray], false);
  if (AIndex + cPrefetchFirst < count) PrefetchArrays(ACands[AIndex + cPrefetchFirst], true);
}

std::vector<TVnDOMNode*>& Candidates() {
  auto& cands = DepthBuffer<std::vector<TVnDOMNode*>>();
  cands.clear();
  return cands;
}

}  // namespace

DepthGuard::DepthGuard() {
  if (++tDepth > cMaxDepth) {
    --tDepth;
    throw EVnDomSyntax(cVnPathTooDeep);
  }
}

DepthGuard::~DepthGuard() { --tDepth; }

uint64_t PathWork() noexcept { return tWork; }

void NodeSet::AddDistinct(std::vector<TVnDOMNode*>& ANodes) {
  if (!FItems.empty()) {
    for (TVnDOMNode* n : ANodes) Add(n);
    return;
  }
  FItems.swap(ANodes);
  FTable.clear();
  FTableDue = FItems.size() >= cLinearLimit;
}

void NodeSet::Add(TVnDOMNode* ANode) {
  if (FTableDue) {
    FTableDue = false;
    Grow();
  }
  if (FTable.empty()) {
    for (TVnDOMNode* n : FItems)
      if (n == ANode) return;
    FItems.push_back(ANode);
    if (FItems.size() == cLinearLimit) Grow();
    return;
  }
  if (Insert(ANode)) {
    FItems.push_back(ANode);
    if (FItems.size() * 2 > FTable.size()) Grow();
  }
}

bool NodeSet::Insert(TVnDOMNode* ANode) {
  const size_t mask = FTable.size() - 1;
  size_t i = (reinterpret_cast<uintptr_t>(ANode) >> 4) * 0x9E3779B97F4A7C15ull >> 20 & mask;
  while (FTable[i]) {
    if (FTable[i] == ANode) return false;
    i = (i + 1) & mask;
  }
  FTable[i] = ANode;
  return true;
}

bool StepRuns::First(const PathStep* AStep, const TVnDOMNode* ANode) {
  if ((FCount + 1) * 2 > FTable.size()) Grow();
  const size_t mask = FTable.size() - 1;
  uint64_t h = (reinterpret_cast<uintptr_t>(ANode) >> 4) * 0x9E3779B97F4A7C15ull ^
               (reinterpret_cast<uintptr_t>(AStep) >> 3) * 0xC2B2AE3D27D4EB4Full;
  for (size_t i = (h >> 20) & mask;; i = (i + 1) & mask) {
    Key& k = FTable[i];
    if (!k.FNode) {
      k = {AStep, ANode};
      ++FCount;
      return true;
    }
    if (k.FNode == ANode && k.FStep == AStep) return false;
  }
}

void StepRuns::Grow() {
  std::vector<Key> old = std::move(FTable);
  FTable.assign(std::max<size_t>(64, old.size() * 2), Key{});
  FCount = 0;
  for (const Key& k : old)
    if (k.FNode) First(k.FStep, k.FNode);
}

void NodeSet::Grow() {
  FTable.assign(std::bit_ceil(std::max<size_t>(64, FItems.size() * 4)), nullptr);
  for (TVnDOMNode* n : FItems) Insert(n);
}

TVnXPathCollationClass CollationFor(const TVnDOMObject* AObject, TVnDOMSelectOptions AOptions) {
  if (AOptions.Contains(soCaseSensitive) && AOptions.Contains(soCaseInsensitive))
    throw Exception(cVnDomBothCaseOptions);
  if (AOptions.Contains(soCaseSensitive)) return TVnXPathCollationCodepoint::Class();
  if (AOptions.Contains(soCaseInsensitive)) return TVnXPathCollationASCIICI::Class();
  return AObject ? AObject->GetCollation() : DefaultXPathCollation;
}

bool LocalNameMatchFor(const TVnDOMObject* AObject, TVnDOMSelectOptions AOptions) {
  if (AOptions.Contains(soLocalName)) return true;
  if (AOptions.Contains(soQualifiedName)) return false;
  return (AObject ? AObject->GetSelectMatchOption() : DefaultSelectMatchOption) == soLocalName;
}

TVnDOMNode* DocumentOf(TVnDOMNode* ANode) noexcept {
  if (TVnDOMDocument* doc = ANode->Document()) return doc;
  while (ANode->ParentNode()) ANode = ANode->ParentNode();
  return ANode;
}

// ---- the program ----

struct PathProgram::Alternative {
  UnicodeString FText;
  std::unique_ptr<PathStep> FStep;
};

PathProgram::PathProgram(std::u16string_view APath, bool ALocalNameMatch, TVnXPathCollationClass ACollation)
    : FCollation(ACollation), FLocalNameMatch(ALocalNameMatch) {
  if (APath.find(u'|') == std::u16string_view::npos) {
    FAlternatives.push_back(std::make_unique<Alternative>(Alternative{Trim(APath), nullptr}));
  } else {
    for (UnicodeString& text : VnTokenize(APath, u"|"))
      FAlternatives.push_back(std::make_unique<Alternative>(Alternative{Trim(text), nullptr}));
  }
  // "/" alone is the context node itself; anything else behind a "/" starts at the document.
  FAbsolute = std::all_of(FAlternatives.begin(), FAlternatives.end(), [](const auto& AAlt) {
    return AAlt->FText.size() > 1 && AAlt->FText[0] == u'/';
  });
}

PathProgram::~PathProgram() = default;

void PathProgram::Run(TVnDOMNode* AContext, bool AFirstOnly, bool ACreateMissing, NodeSet& AResult) {
  if (tDepth == 0) ++tSelection;
  DepthGuard guard;
  FCreateMissing = ACreateMissing;
  PathRun run{AResult, {}};
  for (auto& alt : FAlternatives) {
    RunPath(alt->FText, alt->FStep, AContext, false, run);
    if (AFirstOnly && !AResult.Empty()) break;
  }
}

void PathProgram::RunPath(std::u16string_view AText, std::unique_ptr<PathStep>& ACompiled, TVnDOMNode* ANode,
                          bool ADeep, PathRun& ARun) {
  if (AText == u"/") {
    ARun.FResult.Add(ANode);
    return;
  }
  bool fromDocument = !AText.empty() && AText[0] == u'/';
  bool deep = fromDocument ? AText.starts_with(u"//") : ADeep;
  if (!ACompiled) {
    std::u16string_view steps = fromDocument ? AText.substr(deep ? 2 : 1) : AText;
    ACompiled = std::make_unique<PathStep>(steps, FLocalNameMatch);
    ACompiled->FContextsNest = deep;
  }
  RunStep(*ACompiled, fromDocument ? DocumentOf(ANode) : ANode, false, deep, ARun);
}

void PathProgram::RunStep(PathStep& AStep, TVnDOMNode* ANode, bool APrevWasDot, bool ADeep, PathRun& ARun) {
  if (!ADeep) {
    ++tWork;
    if (!AStep.FRemember || ARun.FRuns.First(&AStep, ANode)) RunStepAt(AStep, ANode, APrevWasDot, false, ARun);
    return;
  }
  // A group without filters searches below its context itself, so from any node below it would
  // only find again what it finds from here: one run covers the whole walk, in the same order.
  if (AStep.FForm == StepForm::Group && AStep.FFilters.empty()) {
    ++tWork;
    if (!AStep.FRemember || ARun.FRuns.First(&AStep, ANode)) RunStepAt(AStep, ANode, APrevWasDot, true, ARun);
    return;
  }
  // The same step on this node and then on each child, depth first and in document order; an
  // explicit stack keeps deep trees off the call stack.
  // These forms find nothing on a node without children that is no element, so the walk leaves
  // such nodes out once the step has run (and passed its checks) on the first node.
  const bool skipLeaves = AStep.FForm == StepForm::Name || AStep.FForm == StepForm::Star ||
                          AStep.FForm == StepForm::Attribute || AStep.FForm == StepForm::Node ||
                          AStep.FForm == StepForm::Text || AStep.FForm == StepForm::AllChildren;
  if (IsAttributeSearch(AStep)) {
    RunAttributeSearch(AStep, ANode, ARun);
    return;
  }
  struct Searching {
    int& FCount;
    explicit Searching(int& ACount) : FCount(++ACount) {}
    ~Searching() { --FCount; }
  } searching(FSearching);
  std::vector<TVnDOMNode*> stack{ANode};
  while (!stack.empty()) {
    TVnDOMNode* node = stack.back();
    stack.pop_back();
    ++tWork;
    // A node this step has run on was searched with all that lies below it.
    if (AStep.FRemember && !ARun.FRuns.First(&AStep, node)) continue;
    RunStepAt(AStep, node, APrevWasDot, true, ARun);
    // Below an element only elements can hold children: its element list spares the walk a
    // look at every text node.
    TVnDOMElement* element = skipLeaves ? AsElement(node) : nullptr;
    const auto& children = element ? element->ElementsView() : node->ChildrenView();
    for (size_t i = children.size(); i-- > 0;) {
      TVnDOMNode* child = children[i];
      TVnDOMNodeType type = child->GetNodeType();
      if (type == ntAttribute || (skipLeaves && type != ntElement && !child->HasChilds())) continue;
      // Its element list is read when the child's turn comes.
      if (type == ntElement && static_cast<TVnDOMElement*>(child)->ElementsView().begin())
        __builtin_prefetch(static_cast<TVnDOMElement*>(child)->ElementsView().begin());
      stack.push_back(child);
    }
  }
}

bool PathProgram::IsAttributeSearch(PathStep& AStep) {
  if (AStep.FAttributeSearch < 0) {
    AStep.FAttributeSearch = 0;
    if (AStep.FForm != StepForm::Star || AStep.FHasRest || AStep.FStartsWithSlash || AStep.FRestIsSlash ||
        AStep.FFilters.size() != 1 || AStep.FBareIndexes[0] >= 0)
      return false;
    // A filter that does not parse fails where it always did: when a candidate meets it.
    TVnXPathValueTerm* exists = nullptr;
    try {
      exists = ParseFilter(AStep, 0);
    } catch (...) {
      return false;
    }
    if (!exists) return false;
    PathProgram& inner = exists->Program();
    PathStep* attribute = inner.FAbsolute ? nullptr : inner.SimpleStep();
    if (!attribute || attribute->FForm != StepForm::Attribute || attribute->FLocal == u"*") return false;
    AStep.FAttributeProgram = &inner;
    AStep.FAttributeStep = attribute;
    AStep.FAttributeSearch = 1;
  }
  // Steps that remember where they ran, and soCreate, keep the general road.
  return AStep.FAttributeSearch == 1 && !AStep.FRemember && !FCreateMissing;
}

void PathProgram::RunAttributeSearch(PathStep& AStep, TVnDOMNode* ANode, PathRun& ARun) {
  // The general walk with RunStepAt inlined for this one form: the candidates of "*" at a node
  // are its child elements (the root element at a document), each kept when the filter's
  // attribute step finds something on it.
  DepthGuard guard;
  PathProgram& inner = *AStep.FAttributeProgram;
  PathStep& attribute = *AStep.FAttributeStep;
  const bool anyPrefix = AStep.FPrefix == u"*";
  // The general walk tests the children of each node it reaches, together. A loaded tree lies
  // in memory in document order, which that order reads by leaps over whole subtrees; here each
  // element is tested when the walk reaches it, which reads the tree front to back, and is
  // marked with the number of the node whose child it is. Sorting what was found by that
  // number (stable) gives the general walk's order.
  constexpr uint32_t kNoParent = UINT32_MAX;
  struct Visit {
    TVnDOMNode* FNode;
    uint32_t FParent;  // the number of the node that offers it as a candidate, or kNoParent
  };
  struct Found {
    uint32_t FParent;
    TVnDOMNode* FNode;
  };
  // Every element is a candidate once, from its one parent: what is found holds no node twice.
  std::vector<Found> found;
  attribute.FAttributeMemo.Renew(tSelection);
  const bool anyAttributePrefix = attribute.FPrefix == u"*";
  auto test = [&](TVnDOMElement* ACand, uint32_t AParent) {
    if (!anyPrefix && !FCollation->SameText(ACand->PrefixView(), AStep.FPrefix)) return;
    if (inner.AnyAttribute(attribute, ACand, anyAttributePrefix)) found.push_back({AParent, ACand});
  };
  std::vector<Visit> stack{{ANode, kNoParent}};
  uint32_t number = 0;
  while (!stack.empty()) {
    const Visit visit = stack.back();
    stack.pop_back();
    if (number == kNoParent) throw std::bad_alloc();
    const uint32_t self = number++;
    TVnDOMNode* node = visit.FNode;
    if (TVnDOMElement* element = AsElement(node)) {
      if (visit.FParent != kNoParent) test(element, visit.FParent);
      const auto& elements = element->ElementsView();
      for (uint32_t i = elements.size(); i-- > 0;) stack.push_back({elements[i], self});
      continue;
    }
    if (node->GetNodeType() == ntDocument) {
      if (TVnDOMElement* root = static_cast<TVnDOMDocument*>(node)->GetRootNode()) test(root, self);
    }
    const auto& children = node->ChildrenView();
    for (size_t i = children.size(); i-- > 0;) {
      TVnDOMNode* child = children[i];
      TVnDOMNodeType type = child->GetNodeType();
      if (type == ntAttribute || (type != ntElement && !child->HasChilds())) continue;
      stack.push_back({child, kNoParent});
    }
  }
  tWork += number;
  std::vector<TVnDOMNode*> ordered(found.size());
  const bool inOrder = std::is_sorted(found.begin(), found.end(),
                                      [](const Found& A, const Found& B) { return A.FParent < B.FParent; });
  if (inOrder) {
    for (size_t i = 0; i < found.size(); ++i) ordered[i] = found[i].FNode;
  } else {
    // A counting sort: linear in the nodes walked.
    std::vector<uint32_t> starts(size_t(number) + 1, 0);
    for (const Found& f : found) ++starts[f.FParent + 1];
    for (uint32_t i = 0; i < number; ++i) starts[i + 1] += starts[i];
    for (const Found& f : found) ordered[starts[f.FParent]++] = f.FNode;
  }
  ARun.FResult.AddDistinct(ordered);
}

void PathProgram::RunStepAt(PathStep& AStep, TVnDOMNode* ANode, bool APrevWasDot, bool ADeep, PathRun& ARun) {
  DepthGuard guard;
  if (AStep.FStartsWithSlash) throw EVnDomSyntax(cVnPathStartsWithSlash);
  if (AStep.FRestIsSlash) throw EVnDomSyntax(cVnPathNoDomNode);
  if (AStep.FNamePart.empty() && !ADeep) throw EVnDomSyntax(cVnPathInvalid);

  std::vector<TVnDOMNode*>& cands = Candidates();
  Collect(AStep, ANode, APrevWasDot, ADeep, cands, AStep.FCollectLimit);
  if (!cands.empty() && !AStep.FFilters.empty()) ApplyFilters(AStep, cands);

  if (cands.empty() && FCreateMissing && (AStep.FFilterText.empty() || AStep.FFilterText == u"[0]")) {
    if (TVnDOMElement* element = AsElement(ANode)) {
      if (ADeep) throw Exception(cVnPathCreateDeep);
      if (AStep.FCreatable) {
        UnicodeString name(AStep.FLocal);
        if (!AStep.FPrefix.empty() && AStep.FPrefix != u"*") name = UnicodeString(AStep.FPrefix) + u':' + name;
        if (FSearching > 0) throw Exception(cVnPathCreateDeep);
        cands.push_back(element->AddElement(name));
      }
    }
  }

  if (AStep.FHasRest) {
    PathStep& rest = AStep.Rest(FLocalNameMatch);
    for (TVnDOMNode* c : cands) RunStep(rest, c, AStep.FIsDot, AStep.FNextDeep, ARun);
  } else {
    for (TVnDOMNode* c : cands) ARun.FResult.Add(c);
  }
}

void PathProgram::Collect(PathStep& AStep, TVnDOMNode* ANode, bool APrevWasDot, bool ADeep,
                          std::vector<TVnDOMNode*>& ACands, size_t ALimit) {
  const bool anyPrefix = AStep.FPrefix == u"*";
  auto localMatches = [&](std::u16string_view AName) { return FCollation->SameText(AName, AStep.FLocal); };
  auto prefixMatches = [&](const TVnDOMNode* n) {
    return anyPrefix || FCollation->SameText(n->PrefixView(), AStep.FPrefix);
  };
  switch (AStep.FForm) {
    case StepForm::Group: {
      NodeSet inner;
      PathRun innerRun{inner, {}};
      RunPath(AStep.FGroupText, AStep.FGroup, ANode, ADeep, innerRun);
      ACands = std::move(inner.Items());
      return;
    }
    case StepForm::Node:
      for (TVnDOMNode* c : ANode->ChildrenView())
        if (c->GetNodeType() != ntAttribute && (ACands.push_back(c), ACands.size() >= ALimit)) return;
      return;
    case StepForm::Text:
      for (TVnDOMNode* c : ANode->ChildrenView())
        if (CastObject<TVnDOMText>(c) && (ACands.push_back(c), ACands.size() >= ALimit)) return;
      return;
    case StepForm::Attribute: {
      TVnDOMElement* element = AsElement(ANode);
      if (!element && ANode->GetNodeType() == ntDocument) element = static_cast<TVnDOMDocument*>(ANode)->GetRootNode();
      if (!element) return;
      const bool anyLocal = AStep.FLocal == u"*";
      for (TVnDOMNode* a : element->AttributesView()) {
        if (!anyLocal && !AStep.FLocalMemo.Matches(a->LocalNameView(), localMatches)) continue;
        if (!FLocalNameMatch && static_cast<TVnDOMAttribute*>(a)->IsNamespace()) continue;
        if (prefixMatches(a) && (ACands.push_back(a), ACands.size() >= ALimit)) return;
      }
      return;
    }
    case StepForm::Star:
      if (TVnDOMElement* element = AsElement(ANode)) {
        for (TVnDOMNode* e : element->ElementsView())
          if (prefixMatches(e) && (ACands.push_back(e), ACands.size() >= ALimit)) return;
      } else if (ANode->GetNodeType() == ntDocument) {
        TVnDOMElement* root = static_cast<TVnDOMDocument*>(ANode)->GetRootNode();
        if (root && prefixMatches(root)) ACands.push_back(root);
      }
      return;
    case StepForm::Error:
      throw EVnDomSyntax(AStep.FFormError, {AStep.FNamePart});
    case StepForm::Dot:
      if (!(APrevWasDot && !ADeep)) ACands.push_back(ANode);
      return;
    case StepForm::Parent:
      if (ADeep) throw EVnDomSyntax(cVnPathDeepParent, {AStep.FNamePart});
      if (TVnDOMNode* parent = ANode->ParentNode()) ACands.push_back(parent);
      return;
    case StepForm::AllChildren:
      if (ADeep) {
        for (TVnDOMNode* c : ANode->ChildrenView())
          if (c->GetNodeType() != ntAttribute) ACands.push_back(c);
      }
      return;
    case StepForm::Name:
      for (TVnDOMNode* c : ANode->ChildrenView()) {
        if (c->GetNodeType() == ntAttribute) continue;
        if (AStep.FLocalMemo.Matches(c->LocalNameView(), localMatches) && prefixMatches(c) &&
            (ACands.push_back(c), ACands.size() >= ALimit))
          return;
      }
      return;
  }
}

TVnXPathValueTerm* PathProgram::ParseFilter(PathStep& AStep, size_t AIndex) {
  auto& equation = AStep.FEquations[AIndex];
  if (!equation) {
    equation = VnParseXPathFilter(AStep.FFilters[AIndex], FLocalNameMatch ? soLocalName : soQualifiedName, FCollation);
    // A filter that only asks whether a path exists skips the Variant round trip.
    if (!equation->GetSibling())
      if (auto* has = dynamic_cast<TVnXPathHasNode*>(equation->GetTerm())) AStep.FExistsPaths[AIndex] = has->GetValuePath();
  }
  return AStep.FExistsPaths[AIndex];
}

void PathProgram::ApplyFilters(PathStep& AStep, std::vector<TVnDOMNode*>& ACands) {
  for (size_t f = 0; f < AStep.FFilters.size() && !ACands.empty(); ++f) {
    // A bare index keeps the candidate at that place; nothing else in it can fail or differ.
    if (Integer n = AStep.FBareIndexes[f]; n >= 0) {
      if (static_cast<size_t>(n) < ACands.size()) {
        ACands[0] = ACands[static_cast<size_t>(n)];
        ACands.resize(1);
      } else {
        ACands.clear();
      }
      continue;
    }
    TVnXPathValueTerm* exists = ParseFilter(AStep, f);
    auto& equation = AStep.FEquations[f];
    const size_t count = ACands.size();
    size_t kept = 0;
    PrefetchStart(ACands);
    if (exists) {
      for (size_t i = 0; i < count; ++i) {
        PrefetchAhead(ACands, i);
        if (exists->HasNodesFrom(ACands[i])) ACands[kept++] = ACands[i];
      }
    } else {
      // The list stays as it was while the filter runs, so last() and position() see all candidates.
      TVnDOMObjectList& list = DepthBuffer<TVnDOMObjectList>();
      list.Clear();
      for (TVnDOMNode* c : ACands) list.Add(c);
      for (size_t i = 0; i < count; ++i) {
        PrefetchAhead(ACands, i);
        if (equation->Evaluate(list, static_cast<Integer>(i))) ACands[kept++] = ACands[i];
      }
    }
    ACands.resize(kept);
  }
}

PathStep* PathProgram::SimpleStep() {
  if (FSimple < 0) {
    FSimple = 0;
    if (FAlternatives.size() == 1 && !FAlternatives[0]->FText.empty() && FAlternatives[0]->FText[0] != u'/') {
      Alternative& alt = *FAlternatives[0];
      if (!alt.FStep) alt.FStep = std::make_unique<PathStep>(alt.FText, FLocalNameMatch);
      const PathStep& s = *alt.FStep;
      bool plainForm = s.FForm == StepForm::Name || s.FForm == StepForm::Star || s.FForm == StepForm::Attribute ||
                       s.FForm == StepForm::Node || s.FForm == StepForm::Text;
      if (plainForm && !s.FStartsWithSlash && !s.FRestIsSlash && !s.FHasRest && s.FFilters.empty() &&
          !s.FNamePart.empty())
        FSimple = 1;
    }
  }
  return FSimple ? FAlternatives[0]->FStep.get() : nullptr;
}

const std::vector<TVnDOMNode*>& PathProgram::AbsoluteNodes(TVnDOMNode* AContext) {
  TVnDOMNode* document = DocumentOf(AContext);
  // Outside a selection (a host evaluating a filter itself) the tree may change between calls.
  if (tDepth == 0 || FCacheSelection != tSelection || FCacheDocument != document) {
    FCacheSelection = 0;
    NodeSet result;
    Run(AContext, false, false, result);
    FCacheNodes = std::move(result.Items());
    FCacheDocument = document;
    FCacheSelection = tDepth == 0 ? 0 : tSelection;
  }
  return FCacheNodes;
}

void PathProgram::Select(TVnDOMNode* AContext, std::vector<TVnDOMNode*>& ANodes) {
  ANodes.clear();
  if (FAbsolute) {
    ANodes = AbsoluteNodes(AContext);
    return;
  }
  if (PathStep* step = SimpleStep()) {
    // The children of one node: distinct by nature, so no set is needed.
    DepthGuard guard;
    Collect(*step, AContext, false, false, ANodes, SIZE_MAX);
    return;
  }
  NodeSet result;
  Run(AContext, false, false, result);
  ANodes = std::move(result.Items());
}

bool PathProgram::AnyMatch(PathStep& AStep, TVnDOMNode* ANode) {
  const bool anyPrefix = AStep.FPrefix == u"*";
  auto matches = [&](const TVnDOMNode* n) {
    return AStep.FLocalMemo.Matches(n->LocalNameView(),
                                    [&](std::u16string_view AName) { return FCollation->SameText(AName, AStep.FLocal); }) &&
           (anyPrefix || FCollation->SameText(n->PrefixView(), AStep.FPrefix));
  };
  TVnDOMElement* element = AsElement(ANode);
  if (AStep.FForm == StepForm::Attribute && element && AStep.FLocal != u"*") {
    // Outside a selection (a host evaluating a filter itself) the tree may change between calls.
    if (tDepth == 0) {
      const auto& attributes = element->AttributesView();
      return std::any_of(attributes.begin(), attributes.end(), [&](const TVnDOMNode* a) {
        return matches(a) && (FLocalNameMatch || !static_cast<const TVnDOMAttribute*>(a)->IsNamespace());
      });
    }
    AStep.FAttributeMemo.Renew(tSelection);
    return AnyAttribute(AStep, element, anyPrefix);
  }
  if (AStep.FForm == StepForm::Name && element) {
    for (TVnDOMNode* c : element->ChildrenView())
      if (c->GetNodeType() != ntAttribute && matches(c)) return true;
    return false;
  }
  DepthGuard guard;
  std::vector<TVnDOMNode*>& cands = Candidates();
  Collect(AStep, ANode, false, false, cands, 1);
  return !cands.empty();
}

bool PathProgram::AnyAttribute(PathStep& AStep, const TVnDOMElement* AElement, bool AAnyPrefix) {
  // The test depends on the attribute's name alone, which its document shares between nodes.
  auto passes = [&](const TVnDOMNode* a) {
    return AStep.FLocalMemo.Matches(a->LocalNameView(),
                                    [&](std::u16string_view AName) { return FCollation->SameText(AName, AStep.FLocal); }) &&
           (AAnyPrefix || FCollation->SameText(a->PrefixView(), AStep.FPrefix)) &&
           (FLocalNameMatch || !static_cast<const TVnDOMAttribute*>(a)->IsNamespace());
  };
  for (TVnDOMNode* a : AElement->AttributesView())
    if (AStep.FAttributeMemo.Test(a, passes)) return true;
  return false;
}

bool PathProgram::Exists(TVnDOMNode* AContext) {
  if (FAbsolute) return !AbsoluteNodes(AContext).empty();
  if (PathStep* step = SimpleStep()) return AnyMatch(*step, AContext);
  NodeSet result;
  Run(AContext, false, false, result);
  return !result.Empty();
}

}  // namespace vn::detail
