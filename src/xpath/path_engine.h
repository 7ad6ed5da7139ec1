// path_engine.h: the path interpreter behind SelectSingleNode and CreateNodeList (internal).
// A path text is cut into steps lazily, the first time a step actually runs, and each cut step
// and each parsed filter is kept for the rest of the selection: a step runs on many context
// nodes and a filter on many candidates, but both are read once. Errors of a step are kept too
// and raised each time the step runs, so a step that never runs never fails.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vnxml/dom_path.h"
#include "vnxml/xpath_terms.h"

namespace vn::detail {

/// Selected nodes in order of discovery, each once.
class NodeSet {
 public:
  void Add(TVnDOMNode* ANode);
  /// Adds ANodes, which hold no node twice, in order; cheaper than one by one into an empty set.
  void AddDistinct(std::vector<TVnDOMNode*>& ANodes);
  bool Empty() const noexcept { return FItems.empty(); }
  std::vector<TVnDOMNode*>& Items() noexcept { return FItems; }

 private:
  /// Inserts into the open-addressing table; false when the node is there already.
  bool Insert(TVnDOMNode* ANode);
  void Grow();

  std::vector<TVnDOMNode*> FItems;
  std::vector<TVnDOMNode*> FTable;  ///< empty while the list is short enough to search
  bool FTableDue = false;            ///< items came in by AddDistinct: the table is made on the next Add
};

/// Remembers, per name text in the tree, whether it matched a step's name. Names in a document
/// share their text, so most lookups end in a pointer comparison instead of the collation.
class NameMemo {
 public:
  template <class F>
  bool Matches(std::u16string_view AName, F&& ACompare) {
    for (const Entry& e : FEntries)
      if (e.FData == AName.data() && e.FSize == AName.size()) return e.FMatch;
    bool match = ACompare(AName);
    FEntries[FNext] = {AName.data(), AName.size(), match};
    FNext = (FNext + 1) % cSize;
    return match;
  }

 private:
  static constexpr size_t cSize = 8;
  struct Entry {
    const char16_t* FData = nullptr;
    size_t FSize = 0;
    bool FMatch = false;
  };
  Entry FEntries[cSize];
  size_t FNext = 0;
};

/// Remembers a test that depends on a node's name alone, by the node's name record: one
/// pointer comparison per node, without reading the name. Records are only made, never freed,
/// while a selection runs, so what it remembers holds for one selection (Renew).
class NameKeyMemo {
 public:
  /// Forgets everything unless ASelection is the selection it remembers for.
  void Renew(uint64_t ASelection) noexcept {
    if (FSelection == ASelection) return;
    FSelection = ASelection;
    FUsed = 0;
    FNext = 0;
  }
  template <class F>
  bool Test(const TVnDOMNode* ANode, F&& ATest) {
    const void* key = ANode->NameKey();
    for (uint32_t i = 0; i < FUsed; ++i)
      if (FKeys[i] == key) return FResults[i];
    bool result = ATest(ANode);
    const uint32_t slot = FUsed < cSize ? FUsed++ : (FNext++ % cSize);
    FKeys[slot] = key;
    FResults[slot] = result;
    return result;
  }

 private:
  static constexpr uint32_t cSize = 8;
  const void* FKeys[cSize] = {};
  bool FResults[cSize] = {};
  uint32_t FUsed = 0;
  uint32_t FNext = 0;
  uint64_t FSelection = 0;
};

struct PathStep;
class PathProgram;

/// The pairs of a step and a node that the step has run on, within one run into one result.
class StepRuns {
 public:
  /// True the first time AStep runs on ANode; false when it has run there before.
  bool First(const PathStep* AStep, const TVnDOMNode* ANode);

 private:
  struct Key {
    const PathStep* FStep = nullptr;
    const TVnDOMNode* FNode = nullptr;
  };
  void Grow();
  std::vector<Key> FTable;
  size_t FCount = 0;
};

/// One run of a path into a result. A node reached again with the same rest of the path adds
/// nothing that the first time did not add, so steps whose context nodes can repeat remember
/// where they ran (see PathStep::FRemember).
struct PathRun {
  NodeSet& FResult;
  StepRuns FRuns;
};

/// What a step collects from its node.
enum class StepForm : uint8_t { Group, Node, Text, Attribute, Star, Dot, Parent, AllChildren, Name, Error };

/// One step of a path text P, cut from the front of P, with the rest of P behind it. The texts
/// are views into P, which the program keeps for as long as its steps live.
struct PathStep {
  /// Cuts AText ("a[x]/b//c") into this step and its rest; nothing raises here.
  PathStep(std::u16string_view AText, bool ALocalNameMatch);

  /// The rest of the path behind this step, cut on first use.
  PathStep& Rest(bool ALocalNameMatch);
  /// Whether the candidates of this step, over all its context nodes, can hold a node twice, or
  /// a node and one of its descendants.
  bool CandidatesRepeat() const noexcept;
  bool CandidatesNest() const noexcept;

  // An error found while cutting, raised when the step runs: rule order is kept by the runner.
  bool FStartsWithSlash = false;
  bool FRestIsSlash = false;
  std::u16string_view FRestText;
  bool FNextDeep = false;
  bool FHasRest = false;
  bool FIsDot = false;  ///< the step text is exactly "."
  std::u16string_view FNamePart;
  std::u16string_view FFilterText;
  std::u16string_view FPrefix;  ///< "*" for any prefix
  std::u16string_view FLocal;   ///< without the "@" of an attribute step
  StepForm FForm = StepForm::Name;
  const char16_t* FFormError = nullptr;  ///< message of StepForm::Error, formatted with the name part
  bool FCreatable = false;               ///< soCreate may add an element for this step
  std::vector<std::u16string_view> FFilters;
  std::vector<std::unique_ptr<TVnXPathEquation>> FEquations;  ///< parsed on first use, beside FFilters
  std::vector<Integer> FBareIndexes;  ///< per filter: n for a bare index "[n]", else -1
  std::vector<TVnXPathValueTerm*> FExistsPaths;  ///< per filter: its path when it only asks whether that exists
  std::u16string_view FGroupText;                ///< the path inside "( )"
  std::unique_ptr<PathStep> FGroup;
  std::unique_ptr<PathStep> FRest;
  /// The first filter is a bare index "[n]": collecting may stop after n + 1 candidates.
  size_t FCollectLimit = SIZE_MAX;
  /// The step may run on the same node more than once in one run (behind "..", a group, or a
  /// "//" whose starting nodes nest): it remembers where it ran and runs there only once. A
  /// "//" search that meets such a node again skips its subtree too, which was searched then.
  bool FRemember = false;
  /// The nodes this step runs on may include a node and one of its descendants.
  bool FContextsNest = false;
  NameMemo FLocalMemo;
  /// Of an attribute step: whether an attribute with a given name record passes it.
  NameKeyMemo FAttributeMemo;
  /// For a "//" search: whether the step is "*" with one filter that asks for an attribute by
  /// name (-1: not yet known), and that filter's program and attribute step.
  int8_t FAttributeSearch = -1;
  PathProgram* FAttributeProgram = nullptr;
  PathStep* FAttributeStep = nullptr;
};

/// Counts nested step runs and selections on this thread; too deep a nesting raises EVnDomSyntax.
class DepthGuard {
 public:
  DepthGuard();
  ~DepthGuard();
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;
};

/// One path text with the options of a selection, ready to run from any context node.
class PathProgram {
 public:
  PathProgram(std::u16string_view APath, bool ALocalNameMatch, TVnXPathCollationClass ACollation);
  ~PathProgram();
  PathProgram(const PathProgram&) = delete;
  PathProgram& operator=(const PathProgram&) = delete;

  /// Runs every alternative from AContext into AResult; AFirstOnly stops after the first that
  /// found something.
  void Run(TVnDOMNode* AContext, bool AFirstOnly, bool ACreateMissing, NodeSet& AResult);

  bool LocalNameMatch() const noexcept { return FLocalNameMatch; }
  TVnXPathCollationClass Collation() const noexcept { return FCollation; }
  bool CreateMissing() const noexcept { return FCreateMissing; }
  /// Runs the step text of one alternative (or group) from ANode.
  void RunPath(std::u16string_view AText, std::unique_ptr<PathStep>& ACompiled, TVnDOMNode* ANode, bool ADeep,
               PathRun& ARun);
  /// Runs AStep on ANode and, with ADeep, on every descendant that is not an attribute.
  void RunStep(PathStep& AStep, TVnDOMNode* ANode, bool APrevWasDot, bool ADeep, PathRun& ARun);
  /// The nodes selected from AContext, as Run without options would give them, into ANodes.
  /// A path whose every alternative starts at the document gives the same nodes from every
  /// candidate of a selection: it runs once per document and outermost selection.
  void Select(TVnDOMNode* AContext, std::vector<TVnDOMNode*>& ANodes);
  /// Whether Run from AContext would select anything.
  bool Exists(TVnDOMNode* AContext);

 private:
  struct Alternative;
  void RunStepAt(PathStep& AStep, TVnDOMNode* ANode, bool APrevWasDot, bool ADeep, PathRun& ARun);
  /// The nodes of an absolute path from AContext's document, from the cache when it holds them.
  const std::vector<TVnDOMNode*>& AbsoluteNodes(TVnDOMNode* AContext);
  void Collect(PathStep& AStep, TVnDOMNode* ANode, bool APrevWasDot, bool ADeep, std::vector<TVnDOMNode*>& ACands,
               size_t ALimit);
  void ApplyFilters(PathStep& AStep, std::vector<TVnDOMNode*>& ACands);
  /// The filter AIndex of AStep, parsed on first use; its path when it only asks whether that exists.
  TVnXPathValueTerm* ParseFilter(PathStep& AStep, size_t AIndex);
  /// Whether AStep is "*" (any prefix or one) with a single filter "[@name]" and nothing behind
  /// it, which a "//" search runs by testing each element's attributes in place.
  bool IsAttributeSearch(PathStep& AStep);
  /// The "//" walk of such a step from ANode: each element below is tested once, when reached.
  void RunAttributeSearch(PathStep& AStep, TVnDOMNode* ANode, PathRun& ARun);
  /// The one step of a path that is a plain name, "*", "@name", node() or text() from the
  /// context node, without filters: it runs without the machinery of a full selection.
  PathStep* SimpleStep();
  /// Whether AStep (a simple step) finds anything at ANode, without collecting.
  bool AnyMatch(PathStep& AStep, TVnDOMNode* ANode);
  /// Whether the attribute step AStep (a name, not "*") finds an attribute of AElement, within
  /// a selection: what it finds out about a name record holds until the selection ends.
  bool AnyAttribute(PathStep& AStep, const TVnDOMElement* AElement, bool AAnyPrefix);

  std::vector<std::unique_ptr<Alternative>> FAlternatives;
  TVnXPathCollationClass FCollation;
  bool FLocalNameMatch;
  bool FCreateMissing = false;
  bool FAbsolute = false;  ///< every alternative starts at the document
  int8_t FSimple = -1;     ///< SimpleStep not yet decided (-1), no (0), yes (1)
  /// "//" searches under way: soCreate adds nothing while one runs, since what it added could
  /// feed the search without end ("//*/b").
  int FSearching = 0;
  // The result of an absolute path, for one document within one outermost selection.
  uint64_t FCacheSelection = 0;
  TVnDOMNode* FCacheDocument = nullptr;
  std::vector<TVnDOMNode*> FCacheNodes;
};

/// Nodes that steps have visited on this thread, counted for tests that compare the work of two
/// input sizes.
uint64_t PathWork() noexcept;

/// The collation that options choose; both case options together raise.
TVnXPathCollationClass CollationFor(const TVnDOMObject* AObject, TVnDOMSelectOptions AOptions);
/// The name match that options choose: soLocalName wins over soQualifiedName.
bool LocalNameMatchFor(const TVnDOMObject* AObject, TVnDOMSelectOptions AOptions);
/// The document a path starting with "/" runs from: the node's document, else its topmost ancestor.
TVnDOMNode* DocumentOf(TVnDOMNode* ANode) noexcept;

}  // namespace vn::detail
