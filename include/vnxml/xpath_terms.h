// xpath_terms.h: the equation and term classes of the filter language (unit uVnXMLDOM).
// A filter "[...]" is parsed into a small tree of equations: each equation holds one operand (a
// term) and links to the next operand of its and/or chain and to the inside of a group. Terms
// give Variants per candidate: Value(List, Index) looks at the candidate List[Index]. The
// function library (xpath.h) derives its function terms from TVnXPathFunctionTerm and reads its
// parameters through TVnXPathFilterParser and TVnXPathEquation::ReadTerm.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "vnxml/common/object.h"
#include "vnxml/common/variant.h"
#include "vnxml/dom_names.h"

namespace vn {

class TVnDOMNode;
class TVnDOMObjectList;
class TVnDOMNodeList;
class TVnXPathEquation;
class TVnXPathBaseTerm;

namespace detail {
class PathProgram;
}

/// How an operand joins the next one of its chain.
enum TVnXPathBoolOperator : uint8_t { opNA, opAnd, opOr };
enum TVnXPathValueComparisonOperator : uint8_t {
  opUnequal,
  opEqual,
  opSmaller,
  opSmallerEqual,
  opGreater,
  opGreaterEqual
};

/// A cursor over the text of one filter. Only the blank (32) separates tokens.
class TVnXPathFilterParser {
 public:
  explicit TVnXPathFilterParser(std::u16string_view AText) noexcept : FText(AText) {}

  /// The whole filter text, brackets included.
  std::u16string_view GetText() const noexcept { return FText; }
  /// Zero-based offset of the cursor.
  size_t GetPosition() const noexcept { return FPos; }
  void SetPosition(size_t APos) noexcept { FPos = APos < FText.size() ? APos : FText.size(); }
  bool Eof() const noexcept { return FPos >= FText.size(); }
  /// The character AOffset places behind the cursor; 0 past the end.
  char16_t Peek(size_t AOffset = 0) const noexcept {
    return FPos + AOffset < FText.size() ? FText[FPos + AOffset] : u'\0';
  }
  /// Moves the cursor on by ACount characters, never past the end.
  void Step(size_t ACount = 1) noexcept { SetPosition(FPos + ACount); }
  /// Steps over blanks (32 only; tabs and line ends are no separators).
  void SkipBlanks() noexcept {
    while (FPos < FText.size() && FText[FPos] == u' ') ++FPos;
  }
  /// Steps over AChar when it stands at the cursor; tells whether it did.
  bool SkipChar(char16_t AChar) noexcept {
    if (Peek() != AChar) return false;
    ++FPos;
    return true;
  }
  /// With the cursor behind a "(": steps over the text up to and including the matching ")".
  void SkipParenthesised() noexcept;
  /// The text from the cursor to the end.
  std::u16string_view Rest() const noexcept { return FText.substr(FPos); }

 private:
  std::u16string_view FText;
  size_t FPos = 0;
};

/// One operand of a boolean chain, with the group inside it and the next operand beside it.
class TVnXPathEquation {
 public:
  TVnXPathEquation(TVnDOMSelectMatchOption AMatchOption, TVnXPathCollationClass ACollation) noexcept
      : FMatchOption(AMatchOption), FCollation(ACollation) {}
  /// Frees term, group and the whole sibling chain.
  ~TVnXPathEquation();
  TVnXPathEquation(const TVnXPathEquation&) = delete;
  TVnXPathEquation& operator=(const TVnXPathEquation&) = delete;

  /// Takes ATerm as this operand's term, freeing the former one.
  void SetValue(std::unique_ptr<TVnXPathBaseTerm> ATerm);
  /// A new equation at the front of the group, with this one as parent.
  TVnXPathEquation* AddFirstChild();
  /// A new next operand, joined to this one by AOp, with the same parent.
  TVnXPathEquation* AddSibling(TVnXPathBoolOperator AOp);
  /// The options for selections made by terms: case from the collation, match from FMatchOption.
  TVnDOMSelectOptions GetSelectOptions() const;

  /// Reads one term at the cursor (a constant, a list, a function call or a path).
  std::unique_ptr<TVnXPathBaseTerm> ReadTerm(TVnXPathFilterParser& AParser);

  /// The truth of this operand and the rest of its chain for the candidate AList[AIndex];
  /// false as soon as a term on the way has no value.
  bool Evaluate(const TVnDOMObjectList& AList, Integer AIndex);
  /// The same; AIsEmpty is set when a term had no value (the result is then false).
  bool Evaluate(const TVnDOMObjectList& AList, Integer AIndex, bool& AIsEmpty);

  TVnDOMSelectMatchOption GetMatchOption() const noexcept { return FMatchOption; }
  TVnXPathCollationClass GetCollation() const noexcept { return FCollation; }
  TVnXPathBoolOperator GetOperation() const noexcept { return FOperation; }
  TVnXPathEquation* GetParent() const noexcept { return FParent; }
  TVnXPathEquation* GetSibling() const noexcept { return FSibling.get(); }
  TVnXPathBaseTerm* GetTerm() const noexcept { return FTerm.get(); }
  Integer ChildCount() const noexcept { return static_cast<Integer>(FChilds.size()); }
  TVnXPathEquation* GetChild(Integer AIndex) const noexcept { return FChilds[static_cast<size_t>(AIndex)].get(); }

 private:
  TVnDOMSelectMatchOption FMatchOption;
  TVnXPathCollationClass FCollation;
  TVnXPathBoolOperator FOperation = opNA;
  TVnXPathEquation* FParent = nullptr;
  std::unique_ptr<TVnXPathEquation> FSibling;
  std::vector<std::unique_ptr<TVnXPathEquation>> FChilds;
  std::unique_ptr<TVnXPathBaseTerm> FTerm;
};

/// The common class of the terms: a value per candidate.
class TVnXPathBaseTerm : public TObject {
  VN_DECLARE_CLASS(TVnXPathBaseTerm, TObject)
 public:
  explicit TVnXPathBaseTerm(TVnXPathEquation* AEquation) noexcept : FEquation(AEquation) {}

  /// The term's value for the candidate AList[AIndex]; Null or Unassigned when it has none.
  virtual Variant Value(const TVnDOMObjectList& AList, Integer AIndex) = 0;

  TVnXPathEquation* GetEquation() const noexcept { return FEquation; }
  /// The term is a test (group, not, index, node test) rather than a value.
  bool GetIsBoolean() const noexcept { return FIsBoolean; }
  /// The candidate AList[AIndex] as a node.
  static TVnDOMNode* Candidate(const TVnDOMObjectList& AList, Integer AIndex);

 protected:
  TVnXPathEquation* FEquation;
  bool FIsBoolean = false;
};

/// A number or a string written in the filter.
class TVnXPathConstantTerm : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathConstantTerm, TVnXPathBaseTerm)
 public:
  /// Reads the literal at the cursor: digits and "." as a number, or a "..." string.
  TVnXPathConstantTerm(TVnXPathEquation* AEquation, TVnXPathFilterParser& AParser);
  TVnXPathConstantTerm(TVnXPathEquation* AEquation, Variant AValue) noexcept
      : TVnXPathBaseTerm(AEquation), FValue(std::move(AValue)) {}
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;

 protected:
  Variant FValue;
};

/// A path run from the candidate: its node's value, an array for several, Null for none.
class TVnXPathValueTerm : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathValueTerm, TVnXPathBaseTerm)
 public:
  TVnXPathValueTerm(TVnXPathEquation* AEquation, UnicodeString APath);
  ~TVnXPathValueTerm() override;
  /// The nodes that the path selects from the candidate, in a new list that the caller owns.
  std::unique_ptr<TVnDOMNodeList> Nodes(const TVnDOMObjectList& AList, Integer AIndex);
  /// The same into a plain vector (cleared first); no list object is made.
  void SelectNodes(const TVnDOMObjectList& AList, Integer AIndex, std::vector<TVnDOMNode*>& ANodes);
  /// Whether the path selects any node from the candidate.
  bool HasNodes(const TVnDOMObjectList& AList, Integer AIndex);
  /// Whether the path selects any node from ANode.
  bool HasNodesFrom(TVnDOMNode* ANode);
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
  const UnicodeString& GetPath() const noexcept { return FPath; }

 protected:
  /// The path, read once and run per candidate.
  detail::PathProgram& Program();
  // A search for "*[@name]" tests its candidates with the program's own attribute step.
  friend class detail::PathProgram;
  UnicodeString FPath;
  std::unique_ptr<detail::PathProgram> FProgram;
};

/// A call "name(...)" in a filter. Construct through Create, which reads the parameters.
class TVnXPathFunctionTerm : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathFunctionTerm, TVnXPathBaseTerm)
 public:
  using TVnXPathBaseTerm::TVnXPathBaseTerm;
  /// Reads the parameters: the cursor stands behind "(" and is left behind the matching ")".
  /// This form skips them unread, as first(), last(), position() and node() do.
  virtual void ParseParams(TVnXPathFilterParser& AParser);

  /// The virtual constructor: a new T, whose ParseParams runs when a parser is given.
  template <class T>
  static std::unique_ptr<TVnXPathBaseTerm> Create(TVnXPathEquation* AEquation, TVnXPathFilterParser* AParser) {
    auto term = std::make_unique<T>(AEquation);
    if (AParser) term->ParseParams(*AParser);
    return term;
  }
};

/// first(): true for the first candidate.
class TVnXPathFirstNode : public TVnXPathFunctionTerm {
  VN_DECLARE_CLASS(TVnXPathFirstNode, TVnXPathFunctionTerm)
 public:
  using TVnXPathFunctionTerm::TVnXPathFunctionTerm;
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
};

/// last(): true for the last candidate.
class TVnXPathLastNode : public TVnXPathFunctionTerm {
  VN_DECLARE_CLASS(TVnXPathLastNode, TVnXPathFunctionTerm)
 public:
  using TVnXPathFunctionTerm::TVnXPathFunctionTerm;
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
};

/// position(): the one-based place of the candidate.
class TVnXPathFnPositionTerm : public TVnXPathFunctionTerm {
  VN_DECLARE_CLASS(TVnXPathFnPositionTerm, TVnXPathFunctionTerm)
 public:
  using TVnXPathFunctionTerm::TVnXPathFunctionTerm;
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
};

/// node(): always true.
class TVnXPathFnNodeTerm : public TVnXPathFunctionTerm {
  VN_DECLARE_CLASS(TVnXPathFnNodeTerm, TVnXPathFunctionTerm)
 public:
  using TVnXPathFunctionTerm::TVnXPathFunctionTerm;
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
};

/// "( ... )": the value of the group in the equation's first child.
class TVnXPathChildTerm : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathChildTerm, TVnXPathBaseTerm)
 public:
  explicit TVnXPathChildTerm(TVnXPathEquation* AEquation) noexcept : TVnXPathBaseTerm(AEquation) {
    FIsBoolean = true;
  }
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;

 protected:
  /// The group's truth; false when a term inside had no value.
  bool GroupValue(const TVnDOMObjectList& AList, Integer AIndex, const char16_t* AMessage);
};

/// "not ...": the negated value of its group; still false when a term inside had no value.
class TVnXPathNot : public TVnXPathChildTerm {
  VN_DECLARE_CLASS(TVnXPathNot, TVnXPathChildTerm)
 public:
  using TVnXPathChildTerm::TVnXPathChildTerm;
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
};

/// A bare number "[n]": true for the candidate at the zero-based place n.
class TVnXPathChildNodeX : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathChildNodeX, TVnXPathBaseTerm)
 public:
  TVnXPathChildNodeX(TVnXPathEquation* AEquation, Integer AIndex) noexcept
      : TVnXPathBaseTerm(AEquation), FIndex(AIndex) {
    FIsBoolean = true;
  }
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
  Integer GetIndex() const noexcept { return FIndex; }

 protected:
  Integer FIndex;
};

/// A term standing alone as an operand: true when its path selects a node (or its value is set).
class TVnXPathHasNode : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathHasNode, TVnXPathBaseTerm)
 public:
  TVnXPathHasNode(TVnXPathEquation* AEquation, std::unique_ptr<TVnXPathBaseTerm> APath);
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
  TVnXPathBaseTerm* GetPath() const noexcept { return FPath.get(); }
  /// The path when the term is one, else nil.
  TVnXPathValueTerm* GetValuePath() const noexcept { return FValuePath; }

 protected:
  std::unique_ptr<TVnXPathBaseTerm> FPath;
  TVnXPathValueTerm* FValuePath;  ///< FPath when it is a path
};

/// "a op b": true, false, or Null when a side has no value.
class TVnXPathValueComparison : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathValueComparison, TVnXPathBaseTerm)
 public:
  TVnXPathValueComparison(TVnXPathEquation* AEquation, std::unique_ptr<TVnXPathBaseTerm> AValue1,
                          TVnXPathValueComparisonOperator AOperator,
                          std::unique_ptr<TVnXPathBaseTerm> AValue2) noexcept
      : TVnXPathBaseTerm(AEquation),
        FValue1(std::move(AValue1)),
        FValue2(std::move(AValue2)),
        FOperator(AOperator) {}
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
  /// One comparison of two plain values under ACollation: true, false or Null.
  static Variant CompareValues(const Variant& V1, const Variant& V2, TVnXPathValueComparisonOperator AOperator,
                               TVnXPathCollationClass ACollation);
  TVnXPathValueComparisonOperator GetOperator() const noexcept { return FOperator; }

 protected:
  std::unique_ptr<TVnXPathBaseTerm> FValue1;
  std::unique_ptr<TVnXPathBaseTerm> FValue2;
  TVnXPathValueComparisonOperator FOperator;
};

/// Terms separated by ",": the values as strings joined with ", ".
class TVnXPathListTerm : public TVnXPathBaseTerm {
  VN_DECLARE_CLASS(TVnXPathListTerm, TVnXPathBaseTerm)
 public:
  using TVnXPathBaseTerm::TVnXPathBaseTerm;
  Variant Value(const TVnDOMObjectList& AList, Integer AIndex) override;
  Integer Count() const noexcept { return static_cast<Integer>(FList.size()); }
  TVnXPathBaseTerm* GetTerm(Integer AIndex) const noexcept { return FList[static_cast<size_t>(AIndex)].get(); }
  void Add(std::unique_ptr<TVnXPathBaseTerm> ATerm) { FList.push_back(std::move(ATerm)); }
  /// Reads terms separated by "," up to AClose; the cursor stands behind the opening bracket.
  void ReadItems(TVnXPathFilterParser& AParser, char16_t AClose);

 protected:
  std::vector<std::unique_ptr<TVnXPathBaseTerm>> FList;
};

/// "(a, b)".
class TVnXPathSequenceTerm : public TVnXPathListTerm {
  VN_DECLARE_CLASS(TVnXPathSequenceTerm, TVnXPathListTerm)
 public:
  using TVnXPathListTerm::TVnXPathListTerm;
};

/// "[a, b]".
class TVnXPathArrayTerm : public TVnXPathListTerm {
  VN_DECLARE_CLASS(TVnXPathArrayTerm, TVnXPathListTerm)
 public:
  using TVnXPathListTerm::TVnXPathListTerm;
};

/// Parses the filter text AFilter ("[...]") into a root equation under the given match and collation.
std::unique_ptr<TVnXPathEquation> VnParseXPathFilter(std::u16string_view AFilter, TVnDOMSelectMatchOption AMatchOption,
                                                     TVnXPathCollationClass ACollation);

/// The function library's factory, defined with it (xpath.h): a registered function by its name
/// (without "fn:"), its parameters read from AParser, whose cursor stands behind the "(". An unknown
/// name raises EVnDomSyntax "The filter contains an unsupported function (%s)!".
std::unique_ptr<TVnXPathBaseTerm> CreateFunctionTerm(std::u16string_view AName, TVnXPathEquation* AEquation,
                                                     TVnXPathFilterParser& AParser);

}  // namespace vn
