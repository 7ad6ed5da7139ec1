// Running a read path over a tree: one loop with an explicit stack of (node, step) entries, so
// neither depth nor a long path costs call stack.
#include <unordered_set>
#include <utility>

#include "json/path/path_program.h"
#include "vnxml/common/sysutils.h"

namespace vn::detail::jsonpath {

namespace {

thread_local uint64_t tWork = 0;
thread_local uint64_t tFilterRuns = 0;
thread_local uint64_t tFilterRun = 0;
thread_local Cardinal tSelectionLimit = cVnJSONPathMaxSelected;

// A selection and the nodes still to be worked on stay within the limit: repeats multiply.
void CheckSelectionSize(size_t ACount) {
  if (ACount > tSelectionLimit)
    throw EVnJSONException(cVnJSONErrScriptExprTooComplex,
                           Format(cVnJSONPathTooManyNodes, {static_cast<Int64>(tSelectionLimit)}));
}

struct Entry {
  TVnJSONBase* FNode;
  uint32_t FStep;
  bool FRecursive;
};

// The lists of one run. Filters run paths inside a run, so the lists are kept per nesting level
// and reused: a filter over many candidates allocates nothing per candidate.
struct RunLists {
  std::vector<Entry> FStack;
  std::vector<TVnJSONBase*> FWork, FFound;
  TVnJSONNodeList FCandidates;
};

thread_local std::vector<std::unique_ptr<RunLists>> tLists;
thread_local size_t tLevel = 0;

class BorrowLists {
 public:
  BorrowLists() {
    if (tLevel == tLists.size()) tLists.push_back(std::make_unique<RunLists>());
    FLists = tLists[tLevel++].get();
  }
  ~BorrowLists() {
    // A large search leaves large lists: give their memory back rather than keep it.
    constexpr size_t kKeep = 1 << 14;
    if (FLists->FStack.capacity() > kKeep) std::vector<Entry>().swap(FLists->FStack);
    if (FLists->FWork.capacity() > kKeep) std::vector<TVnJSONBase*>().swap(FLists->FWork);
    if (FLists->FFound.capacity() > kKeep) std::vector<TVnJSONBase*>().swap(FLists->FFound);
    FLists->FStack.clear();
    FLists->FWork.clear();
    FLists->FFound.clear();
    FLists->FCandidates.Clear();
    --tLevel;
  }
  BorrowLists(const BorrowLists&) = delete;
  BorrowLists& operator=(const BorrowLists&) = delete;
  RunLists* operator->() const noexcept { return FLists; }

 private:
  RunLists* FLists;
};

bool IsContainer(const TVnJSONBase* ANode) {
  const JSONNodeClass kind = ANode->NodeClass();
  return kind == JSONNodeClass::Object || kind == JSONNodeClass::Array;
}

// The value a child stands for: a member's value (nil without one), an element itself.
TVnJSONBase* ValueOf(TVnJSONBase* AChild) {
  return AChild->NodeClass() == JSONNodeClass::Member ? AChild->GetValueObj() : AChild;
}

// A stored name against a name of the path. Raw UTF-8 of anything but ASCII has more bytes
// than its UTF-16 form has units, so an ASCII name of the path matches only a stored name of
// its length, byte by byte.
bool NameIs(const JSONText& AName, const PathItem& AItem, bool ACaseInsensitive) {
  if (ACaseInsensitive || AName.Width != 1 || !AItem.FAsciiName) return AName.Equals(AItem.FName, ACaseInsensitive);
  if (AName.Length != AItem.FName.size()) return false;
  const auto* p = static_cast<const uint8_t*>(AName.Data);
  for (size_t i = 0; i < AItem.FName.size(); ++i)
    if (p[i] != AItem.FName[i]) return false;
  return true;
}

void AddValues(TVnJSONBase* ANode, std::vector<TVnJSONBase*>& AWork) {
  TVnJSONBase* const* children = ANode->ChildArray();
  for (Integer i = 0, n = ANode->ChildCount(); i < n; ++i)
    if (TVnJSONBase* value = ValueOf(children[i])) AWork.push_back(value);
}

void AddIndex(TVnJSONBase* ANode, int64_t AIndex, std::vector<TVnJSONBase*>& AWork) {
  const int64_t count = ANode->ChildCount();
  if (AIndex < 0) AIndex += count;
  if (AIndex >= 0 && AIndex < count) AWork.push_back(ANode->Child(static_cast<Integer>(AIndex)));
}

void AddSlice(TVnJSONBase* ANode, const PathItem& AItem, std::vector<TVnJSONBase*>& AWork) {
  const int64_t count = ANode->ChildCount();
  int64_t index = AItem.FStart < 0 ? AItem.FStart + count : AItem.FStart;
  const int64_t step = AItem.FStep == 0 ? 1 : AItem.FStep;
  const int64_t end = AItem.FEnd == 0 ? count : AItem.FEnd;
  if (index < 0 || index >= count) return;
  // The first element is taken without looking at the end.
  do {
    AWork.push_back(ANode->Child(static_cast<Integer>(index)));
    index += step;
  } while (index >= 0 && index < count && index < end);
}

void FilterInto(TVnJSONBase* ANode, TVnBoolExpression& AFilter, RunLists& ALists) {
  TVnJSONNodeList& candidates = ALists.FCandidates;
  candidates.Clear();
  TVnJSONBase* const* children = ANode->ChildArray();
  for (Integer i = 0, n = ANode->ChildCount(); i < n; ++i)
    if (TVnJSONBase* value = ValueOf(children[i])) candidates.Add(value);
  FilterNodes(AFilter, candidates);
  std::vector<TVnJSONBase*>& work = ALists.FWork;
  if (work.empty()) {  // candidates are distinct: nothing to leave out
    work.insert(work.end(), candidates.begin(), candidates.end());
    return;
  }
  std::unordered_set<TVnJSONBase*> present(work.begin(), work.end());
  for (TVnJSONBase* node : candidates)
    if (present.insert(node).second) work.push_back(node);
}

// The working list of one step on a container (the items in order).
void RunItems(TVnJSONBase* ANode, const PathSteps& ASteps, const PathStep& AStep, TVnJDOCSelectOptions AOptions,
              RunLists& ALists) {
  std::vector<TVnJSONBase*>& work = ALists.FWork;
  work.clear();
  const bool isArray = ANode->NodeClass() == JSONNodeClass::Array;
  const bool caseInsensitive = AOptions.Contains(jsoCaseInsensitive);
  for (uint32_t i = AStep.FFirst; i < AStep.FFirst + AStep.FCount; ++i) {
    const PathItem& item = ASteps.FItems[i];
    switch (item.FKind) {
      case PathItem::Failure: item.FFault.Raise();
      case PathItem::Filter: FilterInto(ANode, *item.FFilter, ALists); break;
      case PathItem::Slice:
        if (isArray) AddSlice(ANode, item, work);
        break;
      case PathItem::Index:
        if (isArray) AddIndex(ANode, item.FStart, work);
        break;
      case PathItem::LengthIndex: {
        const int64_t index = (isArray ? ANode->ChildCount() : 0) + int64_t{item.FStart};
        if (isArray && index >= INT32_MIN && index <= INT32_MAX) AddIndex(ANode, index, work);
        break;
      }
      case PathItem::Wildcard: AddValues(ANode, work); break;
      case PathItem::Name:
        if (!isArray) {
          TVnJSONBase* const* children = ANode->ChildArray();
          for (Integer c = 0, n = ANode->ChildCount(); c < n; ++c) {
            auto* member = static_cast<TVnJSONMember*>(children[c]);  // an object holds members only
            if (NameIs(member->RawName(), item, caseInsensitive))
              if (TVnJSONBase* value = member->GetValueObj()) work.push_back(value);
          }
        }
        if (work.empty() && AOptions.Contains(jsoCreate))
          work.push_back(ANode->AddMember(item.FName)->CreateValue(jdtNull));  // an array refuses
        break;
    }
  }
}

TVnJSONBase* StartNode(const PathAlternative& AAlt, TVnJSONBase* ANode) {
  const auto rootOf = [](TVnJSONBase* ADoc) { return static_cast<TVnJSONDocument*>(ADoc)->GetRootValue(); };
  if (!AAlt.FFromRoot) return ANode->NodeClass() == JSONNodeClass::Document ? rootOf(ANode) : ANode;
  if (ANode->GetOwner() && ANode->GetOwner()->NodeClass() == JSONNodeClass::Document) return ANode;
  for (TVnJSONBase* n = ANode; n; n = n->GetOwner())
    if (n->NodeClass() == JSONNodeClass::Document) return rootOf(n);
  return nullptr;
}

}  // namespace

uint64_t JSONPathWork() noexcept { return tWork; }

}  // namespace vn::detail::jsonpath

namespace vn {
Cardinal VnSetJSONPathSelectionLimit(Cardinal ALimit) {
  return std::exchange(detail::jsonpath::tSelectionLimit, ALimit ? ALimit : cVnJSONPathMaxSelected);
}
}  // namespace vn

namespace vn::detail::jsonpath {

uint64_t CurrentFilterRun() noexcept { return tFilterRun; }

void RunSteps(const PathSteps& ASteps, TVnJSONBase* ANode, std::vector<TVnJSONBase*>& AResult, bool ARecursive,
              TVnJDOCSelectOptions AOptions, bool AStopAtFirst) {
  BorrowLists lists;
  std::vector<Entry>& stack = lists->FStack;
  const auto last = static_cast<uint32_t>(ASteps.FSteps.size());
  stack.push_back({ANode, 0, ARecursive});
  while (!stack.empty()) {
    Entry e = stack.back();
    stack.pop_back();
    ++tWork;
    if (e.FNode->NodeClass() == JSONNodeClass::Member && !(e.FNode = e.FNode->GetValueObj())) continue;
    if (e.FStep == last) {
      AResult.push_back(e.FNode);
      if (AStopAtFirst) return;
      continue;
    }
    if (!IsContainer(e.FNode)) continue;
    const PathStep& step = ASteps.FSteps[e.FStep];
    if (step.FFault) step.FFault.Raise();
    if (step.FNamesOnly && e.FNode->NodeClass() == JSONNodeClass::Array && !AOptions.Contains(jsoCreate))
      lists->FWork.clear();  // names select nothing in an array
    else
      RunItems(e.FNode, ASteps, step, AOptions, *lists.operator->());
    // This node's matches come before those of its children: the children go below.
    // A child that is no container ends there (the step has nothing to work on): not stacked.
    if (e.FRecursive || step.FRecursive) {
      TVnJSONBase* const* children = e.FNode->ChildArray();
      for (Integer i = e.FNode->ChildCount(); i-- > 0;)
        if (TVnJSONBase* value = ValueOf(children[i]); value && IsContainer(value))
          stack.push_back({value, e.FStep, true});
    }
    std::vector<TVnJSONBase*>& work = lists->FWork;
    CheckSelectionSize(AResult.size() + stack.size() + work.size());
    if (e.FStep + 1 == last) {
      AResult.insert(AResult.end(), work.begin(), work.end());
      if (AStopAtFirst && !AResult.empty()) return;
    } else {
      for (size_t i = work.size(); i-- > 0;) stack.push_back({work[i], e.FStep + 1, false});
    }
  }
}

void RunPath(const PathProgram& AProgram, TVnJSONBase* ANode, std::vector<TVnJSONBase*>& AResult, bool AFirstOnly,
             TVnJDOCSelectOptions AOptions, bool AStopAtFirst) {
  // Stopping early skips work that could fail or create later: only a pure path may.
  AStopAtFirst = AStopAtFirst && AProgram.FPure && !AOptions.Contains(jsoCreate);
  for (const PathAlternative& alt : AProgram.FAlternatives) {
    if (alt.FFault) alt.FFault.Raise();
    if (TVnJSONBase* start = StartNode(alt, ANode)) RunSteps(alt.FSteps, start, AResult, false, AOptions, AStopAtFirst);
    if ((AFirstOnly || AStopAtFirst) && !AResult.empty()) return;
  }
}

namespace {
// The first node of a chain by the first member of each name. When that reaches the end it is
// the first node of the whole search too, which tries the first member first; a dead end
// (behind a repeated name a later member may go on) leaves the answer to the whole search.
bool FirstOfChain(const PathProgram& AProgram, TVnJSONBase* ANode, bool ACaseInsensitive, TVnJSONBase*& AFound) {
  const PathAlternative& alt = AProgram.FAlternatives[0];
  TVnJSONBase* node = StartNode(alt, ANode);
  for (const PathStep& step : alt.FSteps.FSteps) {
    if (node && node->NodeClass() == JSONNodeClass::Member) node = node->GetValueObj();
    if (!node || !IsContainer(node)) return false;
    const PathItem& item = alt.FSteps.FItems[step.FFirst];
    TVnJSONBase* next = nullptr;
    if (node->NodeClass() == JSONNodeClass::Array) {
      if (item.FKind != PathItem::Index) return false;
      const int64_t count = node->ChildCount();
      const int64_t index = item.FStart < 0 ? item.FStart + count : item.FStart;
      if (index >= 0 && index < count) next = node->Child(static_cast<Integer>(index));
    } else if (item.FKind == PathItem::Name) {
      TVnJSONBase* const* children = node->ChildArray();
      for (Integer c = 0, n = node->ChildCount(); c < n && !next; ++c) {
        auto* member = static_cast<TVnJSONMember*>(children[c]);
        if (NameIs(member->RawName(), item, ACaseInsensitive)) next = member->GetValueObj();
      }
    }
    if (!next) return false;
    node = next;
  }
  if (node && node->NodeClass() == JSONNodeClass::Member) node = node->GetValueObj();
  AFound = node;
  return node != nullptr;
}
}  // namespace

TVnJSONBase* FirstNode(const PathProgram& AProgram, TVnJSONBase* ANode, TVnJDOCSelectOptions AOptions) {
  TVnJSONBase* found = nullptr;
  if (AProgram.FChain && !AOptions.Contains(jsoCreate) &&
      FirstOfChain(AProgram, ANode, AOptions.Contains(jsoCaseInsensitive), found))
    return found;
  BorrowLists lists;
  RunPath(AProgram, ANode, lists->FFound, false, AOptions, true);
  return lists->FFound.empty() ? nullptr : lists->FFound.front();
}

void FilterNodes(TVnBoolExpression& AFilter, TVnJSONNodeList& ACandidates) {
  // Paths from "$" are kept for the run; the number is restored for a filter around this one.
  const uint64_t outer = std::exchange(tFilterRun, ++tFilterRuns);
  try {
    TVnJSONNodeList kept;
    for (Integer i = 0, n = ACandidates.Count(); i < n; ++i)
      if (AFilter.Evaluate(ACandidates, i)) kept.Add(ACandidates[i]);
    ACandidates.Assign(kept);
  } catch (...) {
    tFilterRun = outer;
    throw;
  }
  tFilterRun = outer;
}

}  // namespace vn::detail::jsonpath
