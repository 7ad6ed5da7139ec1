// filter_eval.cpp: the equation tree and the values of the terms, per candidate.
#include "vnxml/common/var_utils.h"
#include "xpath/path_engine.h"

namespace vn {

// ---- equations ----

TVnXPathEquation::~TVnXPathEquation() {
  // Long and/or chains are unlinked one by one rather than freed by recursion.
  std::unique_ptr<TVnXPathEquation> next = std::move(FSibling);
  while (next) next = std::move(next->FSibling);
}

void TVnXPathEquation::SetValue(std::unique_ptr<TVnXPathBaseTerm> ATerm) { FTerm = std::move(ATerm); }

TVnXPathEquation* TVnXPathEquation::AddFirstChild() {
  auto child = std::make_unique<TVnXPathEquation>(FMatchOption, FCollation);
  child->FParent = this;
  TVnXPathEquation* result = child.get();
  FChilds.insert(FChilds.begin(), std::move(child));
  return result;
}

TVnXPathEquation* TVnXPathEquation::AddSibling(TVnXPathBoolOperator AOp) {
  FSibling = std::make_unique<TVnXPathEquation>(FMatchOption, FCollation);
  FSibling->FParent = FParent;
  FOperation = AOp;
  return FSibling.get();
}

TVnDOMSelectOptions TVnXPathEquation::GetSelectOptions() const {
  return TVnDOMSelectOptions{FCollation == TVnXPathCollationASCIICI::Class() ? soCaseInsensitive : soCaseSensitive,
                             FMatchOption == soLocalName ? soLocalName : soQualifiedName};
}

bool TVnXPathEquation::Evaluate(const TVnDOMObjectList& AList, Integer AIndex) {
  bool isEmpty = false;
  bool result = Evaluate(AList, AIndex, isEmpty);
  return result && !isEmpty;
}

bool TVnXPathEquation::Evaluate(const TVnDOMObjectList& AList, Integer AIndex, bool& AIsEmpty) {
  // Equal rank, strictly from left to right: "a or b and c" is "(a or b) and c". A first operand
  // without value ends the chain at once; a later one counts as false and the chain goes on, as
  // the chain would when each operand evaluated the rest of the chain behind it.
  auto operand = [&](TVnXPathEquation* AEquation, bool& AResult) {
    Variant value = AEquation->FTerm ? AEquation->FTerm->Value(AList, AIndex) : Variant();
    if (VnVarIsEmpty(value)) {
      AIsEmpty = true;
      AResult = false;
      return false;
    }
    AResult = VnVarToBool(value, false, false);
    return true;
  };
  bool result = false;
  if (!operand(this, result)) return false;
  for (TVnXPathEquation* e = this; e->FSibling; e = e->FSibling.get()) {
    switch (e->FOperation) {
      case opAnd:
        if (result) operand(e->FSibling.get(), result);
        break;
      case opOr:
        if (!result) operand(e->FSibling.get(), result);
        break;
      case opNA:
        throw Exception(cVnFilterInvalidOperation);
    }
  }
  return result;
}

// ---- terms ----

TVnDOMNode* TVnXPathBaseTerm::Candidate(const TVnDOMObjectList& AList, Integer AIndex) {
  return static_cast<TVnDOMNode*>(AList.GetItem(AIndex));
}

Variant TVnXPathConstantTerm::Value(const TVnDOMObjectList&, Integer) { return FValue; }

Variant TVnXPathFirstNode::Value(const TVnDOMObjectList&, Integer AIndex) { return AIndex == 0; }

Variant TVnXPathLastNode::Value(const TVnDOMObjectList& AList, Integer AIndex) { return AIndex == AList.Count() - 1; }

Variant TVnXPathFnPositionTerm::Value(const TVnDOMObjectList&, Integer AIndex) { return AIndex + 1; }

Variant TVnXPathFnNodeTerm::Value(const TVnDOMObjectList&, Integer) { return true; }

Variant TVnXPathChildNodeX::Value(const TVnDOMObjectList&, Integer AIndex) { return AIndex == FIndex; }

bool TVnXPathChildTerm::GroupValue(const TVnDOMObjectList& AList, Integer AIndex, const char16_t* AMessage) {
  if (!FEquation || FEquation->ChildCount() != 1) throw Exception(AMessage);
  bool isEmpty = false;
  bool result = FEquation->GetChild(0)->Evaluate(AList, AIndex, isEmpty);
  return isEmpty ? false : result;
}

Variant TVnXPathChildTerm::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  return GroupValue(AList, AIndex, cVnFilterCheckParenthesis);
}

Variant TVnXPathNot::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  if (!FEquation || FEquation->ChildCount() != 1) throw Exception(cVnFilterNotNeedsChild);
  bool isEmpty = false;
  bool result = FEquation->GetChild(0)->Evaluate(AList, AIndex, isEmpty);
  return isEmpty ? false : !result;
}

TVnXPathHasNode::TVnXPathHasNode(TVnXPathEquation* AEquation, std::unique_ptr<TVnXPathBaseTerm> APath)
    : TVnXPathBaseTerm(AEquation), FPath(std::move(APath)), FValuePath(dynamic_cast<TVnXPathValueTerm*>(FPath.get())) {
  FIsBoolean = true;
}

Variant TVnXPathHasNode::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  if (FValuePath) return FValuePath->HasNodes(AList, AIndex);
  return !VnVarIsEmpty(FPath->Value(AList, AIndex));
}

Variant TVnXPathListTerm::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  UnicodeString text;
  for (auto& term : FList) {
    text += u", ";
    text += VnVarToStr(term->Value(AList, AIndex), u"", false);
  }
  return text.size() >= 2 ? text.substr(2) : text;
}

// ---- paths inside filters ----

TVnXPathValueTerm::TVnXPathValueTerm(TVnXPathEquation* AEquation, UnicodeString APath)
    : TVnXPathBaseTerm(AEquation), FPath(std::move(APath)) {}

TVnXPathValueTerm::~TVnXPathValueTerm() = default;

detail::PathProgram& TVnXPathValueTerm::Program() {
  if (!FProgram) {
    // The options of a nested CreateNodeList(FPath, GetSelectOptions), read once.
    TVnDOMSelectOptions options = FEquation ? FEquation->GetSelectOptions() : TVnDOMSelectOptions{};
    FProgram = std::make_unique<detail::PathProgram>(FPath, detail::LocalNameMatchFor(nullptr, options),
                                                     detail::CollationFor(nullptr, options));
  }
  return *FProgram;
}

void TVnXPathValueTerm::SelectNodes(const TVnDOMObjectList& AList, Integer AIndex,
                                    std::vector<TVnDOMNode*>& ANodes) {
  Program().Select(Candidate(AList, AIndex), ANodes);
}

std::unique_ptr<TVnDOMNodeList> TVnXPathValueTerm::Nodes(const TVnDOMObjectList& AList, Integer AIndex) {
  std::vector<TVnDOMNode*> nodes;
  SelectNodes(AList, AIndex, nodes);
  auto list = std::make_unique<TVnDOMNodeList>();
  for (TVnDOMNode* n : nodes) list->Add(n);
  return list;
}

bool TVnXPathValueTerm::HasNodes(const TVnDOMObjectList& AList, Integer AIndex) {
  return Program().Exists(Candidate(AList, AIndex));
}

bool TVnXPathValueTerm::HasNodesFrom(TVnDOMNode* ANode) { return Program().Exists(ANode); }

namespace {

Variant NodeValue(TVnDOMNode* ANode) {
  if (ANode->GetNodeType() == ntAttribute && static_cast<TVnDOMAttribute*>(ANode)->IsNamespace())
    return Variant::Null();
  return ANode->GetNodeValue();
}

}  // namespace

Variant TVnXPathValueTerm::Value(const TVnDOMObjectList& AList, Integer AIndex) {
  std::vector<TVnDOMNode*> nodes;
  SelectNodes(AList, AIndex, nodes);
  if (nodes.empty()) return Variant::Null();
  if (nodes.size() == 1) return NodeValue(nodes.front());
  std::vector<Variant> values;
  values.reserve(nodes.size());
  for (TVnDOMNode* n : nodes) values.push_back(NodeValue(n));
  return VarArrayOf(values);
}

}  // namespace vn
