// The selection operations of TVnJSONBase: each call reads its path once (or takes it as a
// recent call read it) and runs it.
#include "json/path/path_program.h"

namespace vn {

namespace {
[[noreturn]] void RaiseNoNodes() {
  throw EVnJSONException(cVnJSONErrInvalidPathNoNodes, UnicodeString(_cVnJSONInvalidPathNoNodes));
}

std::unique_ptr<TVnJSONArray> ListOf(const std::vector<TVnJSONBase*>& ANodes) {
  auto list = std::make_unique<TVnJSONArray>();
  for (TVnJSONBase* node : ANodes) list->AddReference(node);
  return list;
}
}  // namespace

std::unique_ptr<TVnJSONArray> TVnJSONBase::_CreateNodeList(std::u16string_view APath, bool AFirstOnly,
                                                           TVnJDOCSelectOptions AOptions) {
  const auto held = detail::jsonpath::ProgramOf(APath, AOptions.Contains(jsoCaseInsensitive));
  std::vector<TVnJSONBase*> nodes;
  detail::jsonpath::RunPath(held->FProgram, this, nodes, AFirstOnly, AOptions);
  return ListOf(nodes);
}

void TVnJSONBase::_SelectNodes(TVnJSONArray& AResult, std::u16string_view APath, bool ARecursive,
                               TVnJDOCSelectOptions AOptions) {
  detail::jsonpath::PathSteps steps;
  detail::jsonpath::CompileSteps(APath, steps, 0, AOptions.Contains(jsoCaseInsensitive));
  std::vector<TVnJSONBase*> nodes;
  detail::jsonpath::RunSteps(steps, this, nodes, ARecursive, AOptions, false);
  for (TVnJSONBase* node : nodes) AResult.AddReference(node);
}

std::unique_ptr<TVnJSONArray> TVnJSONBase::CreateNodeList(std::u16string_view APath, TVnJDOCSelectOptions AOptions) {
  std::unique_ptr<TVnJSONArray> list = _CreateNodeList(APath, false, AOptions);
  if (list->ChildCount() == 0 && AOptions.Contains(jsoRaise)) RaiseNoNodes();
  return list;
}

TVnJSONBase* TVnJSONBase::SelectSingleNode(std::u16string_view APath, TVnJDOCSelectOptions AOptions) {
  // The whole list is made, as CreateNodeList makes it, unless nothing after the first node
  // could fail or create.
  const auto held = detail::jsonpath::ProgramOf(APath, AOptions.Contains(jsoCaseInsensitive));
  TVnJSONBase* node = detail::jsonpath::FirstNode(held->FProgram, this, AOptions);
  if (!node && AOptions.Contains(jsoRaise)) RaiseNoNodes();
  return node;
}

IPtr<IVnJSONArray> TVnJSONBase::SelectIntf(std::u16string_view APath, TVnJDOCSelectOptions AOptions) {
  return IPtr<IVnJSONArray>(static_cast<IVnJSONArray*>(CreateNodeList(APath, AOptions).release()));
}

}  // namespace vn
