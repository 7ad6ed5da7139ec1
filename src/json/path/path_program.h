// path_program.h: a JSON path read once into alternatives, steps and items (internal). Reading
// never fails: a fault is kept where it stands and raised when a selection reaches it, so that a
// step that never runs on a container never fails.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vnxml/json_path.h"

namespace vn::detail::jsonpath {

/// A fault kept for later: nothing, an EVnJSONException with its code, or the platform's
/// failure of StrToInt on the kept text.
struct PathFault {
  enum Kind : uint8_t { None, Json, Convert };
  Kind FKind = None;
  Integer FCode = 0;
  UnicodeString FMessage;  // Json: the message; Convert: the text StrToInt refuses
  explicit operator bool() const noexcept { return FKind != None; }
  [[noreturn]] void Raise() const;
  static PathFault Make(Integer ACode, std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs = {});
};

// Texts in a program (names) are views of the path text, which outlives the program: a program
// lives for one call, or beside the text it was read from.
struct PathItem {
  enum Kind : uint8_t { Filter, Slice, Index, LengthIndex, Name, Wildcard, Failure };
  Kind FKind = Failure;
  Integer FStart = 0, FEnd = 0, FStep = 1;  // Slice; Index in FStart; LengthIndex adds FStart to the count
  std::u16string_view FName;                // Name
  bool FAsciiName = false;                  // FName is ASCII only
  std::unique_ptr<TVnBoolExpression> FFilter;
  PathFault FFault;  // Failure
};

struct PathStep {
  bool FRecursive = false;
  uint32_t FFirst = 0, FCount = 0;  // its items in PathSteps::FItems
  bool FNamesOnly = true;           // every item is a name: an array gives nothing (unless created)
  PathFault FFault;                 // the step itself can't be read: raised before any item runs
};

/// The steps after "$" or "@" (or the text of _SelectNodes).
struct PathSteps {
  std::vector<PathStep> FSteps;
  std::vector<PathItem> FItems;
  /// No step can fail or create, and none holds a filter: a search for the first node may stop
  /// at it without changing what the caller sees.
  bool FPure = true;
};

struct PathAlternative {
  bool FFromRoot = false;  // "$"; else "@"
  PathSteps FSteps;
  PathFault FFault;  // empty, or no "$" or "@" in front
};

struct PathProgram {
  std::vector<PathAlternative> FAlternatives;
  bool FPure = true;      // every alternative is
  bool FRootOnly = true;  // every alternative starts at "$": the same nodes from any candidate
  bool FChain = false;    // one alternative of plain names and indexes, one a step, none recursive
};

/// A program with the text it was read from, as a call keeps it.
struct HeldProgram {
  UnicodeString FText;
  bool FCaseInsensitive = false;
  PathProgram FProgram;
};

/// The program of APath: read now, or kept from a recent call of this thread with the same
/// text (short paths only). Hosts call with the same few paths again and again.
std::shared_ptr<const HeldProgram> ProgramOf(std::u16string_view APath, bool ACaseInsensitive);

/// Reads a whole path (alternatives). ACaseInsensitive: the option its filters compare with;
/// ANesting: filters and groups already open around it.
std::unique_ptr<PathProgram> CompilePath(std::u16string_view APath, bool ACaseInsensitive, int ANesting = 0);
void CompilePath(std::u16string_view APath, bool ACaseInsensitive, int ANesting, PathProgram& AProgram);
/// Reads the steps of a path without its start.
void CompileSteps(std::u16string_view AText, PathSteps& ASteps, int ANesting, bool ACaseInsensitive);
/// Reads the item of a filter ("?(...)") into a tree of terms; a fault ends in AFault.
std::unique_ptr<TVnBoolExpression> CompileFilter(std::u16string_view AItem, bool ACaseInsensitive, int ANesting,
                                                 PathFault& AFault);

/// Runs AProgram from ANode into AResult (AFirstOnly: stop after the first alternative that
/// selects a node; with AStopAtFirst and a pure program, stop at the first node).
void RunPath(const PathProgram& AProgram, TVnJSONBase* ANode, std::vector<TVnJSONBase*>& AResult, bool AFirstOnly,
             TVnJDOCSelectOptions AOptions, bool AStopAtFirst = false);
/// Runs steps from ANode; ARecursive applies the first step to every descendant too.
void RunSteps(const PathSteps& ASteps, TVnJSONBase* ANode, std::vector<TVnJSONBase*>& AResult, bool ARecursive,
              TVnJDOCSelectOptions AOptions, bool AStopAtFirst);
/// The first node of AProgram from ANode, as SelectSingleNode gives it, or nil.
TVnJSONBase* FirstNode(const PathProgram& AProgram, TVnJSONBase* ANode, TVnJDOCSelectOptions AOptions);

/// Applies a compiled filter to ACandidates, keeping those it holds for.
void FilterNodes(TVnBoolExpression& AFilter, TVnJSONNodeList& ACandidates);

/// Entries a selection has run (node and step pairs), for tests that compare two sizes.
uint64_t JSONPathWork() noexcept;

}  // namespace vn::detail::jsonpath

namespace vn::detail::jsonpath {

/// How a text compares: the classes of a comparison, found once for a literal.
struct Comparand {
  UnicodeString FText;
  bool FQuoted = false;  // begins with ' or "
  bool FIsInt = false, FIsFloat = false, FIsBool = false;
  Integer FInt = 0;
  Extended FFloat = 0;
  bool FBool = false;
  void Classify();
};

/// One operand of a filter term: a path from the candidate, or a literal.
struct FilterOperand {
  UnicodeString FText;
  std::unique_ptr<PathProgram> FProgram;  // "$" or "@" in front
  Comparand FLiteral;                   // otherwise, classified once
  // A path from "$" gives the same node for every candidate of one filter run: kept for it.
  uint64_t FRun = 0;
  TVnJSONBase* FNode = nullptr;
  /// The node the path selects from ACandidate (first only), or nil.
  TVnJSONBase* Select(TVnJSONBase* ACandidate, TVnJDOCSelectOptions AOptions);
};

/// Builds and reads the filter classes' private parts.
struct FilterScope {
  static TVnBoolExpression* Parent(TVnBoolExpression* ATerm) { return ATerm->FParent; }
  static bool& NotOperand(TVnBoolExpression* ATerm) { return ATerm->FNotOperand; }
  static TVnExpressionValueExists* MakeExists(TVnBoolExpression* ATerm, std::u16string_view APath,
                                              bool ACaseInsensitive, int ANesting);
  static TVnExpValueHasNodeWithValue* MakeCompare(TVnBoolExpression* ATerm, std::u16string_view AValue1,
                                                  std::u16string_view AValue2, TVnExpValueHasNodeWithValueOp AOp,
                                                  bool ACaseInsensitive, int ANesting);
};

/// Makes an operand; ANesting as for CompilePath. AAlwaysPath: a path even without "$" or "@"
/// in front (it then fails as a path does).
std::unique_ptr<FilterOperand> MakeOperand(std::u16string_view AText, bool ACaseInsensitive, int ANesting,
                                           bool AAlwaysPath = false);

/// A number for each run of a filter over a candidate list, for FilterOperand's keeping.
uint64_t CurrentFilterRun() noexcept;

}  // namespace vn::detail::jsonpath
