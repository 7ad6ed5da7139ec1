// path_select.cpp: the selection operations of nodes, elements and documents, with their option rules.
#include "vnxml/common/sysutils.h"
#include "xpath/path_engine.h"

namespace vn {

namespace {

struct Selection {
  TVnXPathCollationClass FCollation;
  bool FLocalNameMatch;
  bool FCreate;
};

// The option rules, in their order: both case options, both soRaise and soCreate, then the
// collation and the match.
Selection CheckOptions(const TVnDOMNode* ANode, TVnDOMSelectOptions AOptions) {
  if (AOptions.Contains(soCaseSensitive) && AOptions.Contains(soCaseInsensitive))
    throw Exception(cVnDomBothCaseOptions);
  if (AOptions.Contains(soRaise) && AOptions.Contains(soCreate)) throw Exception(cVnPathBothRaiseCreate);
  return {detail::CollationFor(ANode, AOptions), detail::LocalNameMatchFor(ANode, AOptions),
          AOptions.Contains(soCreate)};
}

std::vector<TVnDOMNode*> Select(TVnDOMNode* ANode, std::u16string_view APath, TVnDOMSelectOptions AOptions,
                                bool AFirstOnly) {
  Selection sel = CheckOptions(ANode, AOptions);
  detail::PathProgram program(APath, sel.FLocalNameMatch, sel.FCollation);
  detail::NodeSet result;
  program.Run(ANode, AFirstOnly, sel.FCreate, result);
  return std::move(result.Items());
}

[[noreturn]] void RaiseNothingFound(std::u16string_view APath, TVnDOMSelectOptions AOptions,
                                    const char16_t* ARaiseMessage) {
  if (AOptions.Contains(soRaise)) throw EVnDomNotFound(ARaiseMessage, {APath});
  throw EVnDomNotFound(cVnPathTooComplex, {APath});
}

template <class TList>
std::unique_ptr<TList> MakeList(TVnDOMNode* ANode, std::u16string_view APath, TVnDOMSelectOptions AOptions,
                                const char16_t* ARaiseMessage) {
  std::vector<TVnDOMNode*> nodes = Select(ANode, APath, AOptions, false);
  if (nodes.empty() && (AOptions.Contains(soRaise) || AOptions.Contains(soCreate)))
    RaiseNothingFound(APath, AOptions, ARaiseMessage);
  auto list = std::make_unique<TList>();
  for (TVnDOMNode* n : nodes) list->Add(n);
  return list;
}

}  // namespace

std::unique_ptr<TVnDOMNodeList> CreateNodeList(TVnDOMNode* ANode, std::u16string_view APath,
                                               TVnDOMSelectOptions AOptions) {
  return MakeList<TVnDOMNodeList>(ANode, APath, AOptions, cVnPathNoNodes);
}

TVnDOMNode* SelectSingleNode(TVnDOMNode* ANode, std::u16string_view APath, TVnDOMSelectOptions AOptions) {
  std::vector<TVnDOMNode*> nodes = Select(ANode, APath, AOptions, true);
  if (!nodes.empty()) return nodes.front();
  if (AOptions.Contains(soRaise) || AOptions.Contains(soCreate)) RaiseNothingFound(APath, AOptions, cVnPathNoNode);
  return nullptr;
}

std::unique_ptr<TVnDOMElementList> CreateElementList(TVnDOMElement* AElement, std::u16string_view APath,
                                                     TVnDOMSelectOptions AOptions) {
  return MakeList<TVnDOMElementList>(AElement, APath, AOptions, cVnPathNoElements);
}

TVnDOMElement* SelectSingleElement(TVnDOMElement* AElement, std::u16string_view APath,
                                   TVnDOMSelectOptions AOptions) {
  TVnDOMNode* node = SelectSingleNode(AElement, APath, AOptions);
  if (node && !CastObject<TVnDOMElement>(node)) throw EInvalidCast(u"Invalid class typecast");
  return static_cast<TVnDOMElement*>(node);
}

std::unique_ptr<TVnDOMElementList> CreateElementList(TVnDOMDocument* ADocument, std::u16string_view APath,
                                                     TVnDOMSelectOptions AOptions) {
  if (TVnDOMElement* root = ADocument->GetRootNode()) return CreateElementList(root, APath, AOptions);
  if (AOptions.Contains(soRaise)) throw EVnDomNotFound(cVnPathNoRootRaise, {APath});
  if (AOptions.Contains(soCreate)) throw EVnDomNotFound(cVnPathNoRootCreate);
  return std::make_unique<TVnDOMElementList>();
}

TVnDOMElement* SelectSingleElement(TVnDOMDocument* ADocument, std::u16string_view APath,
                                   TVnDOMSelectOptions AOptions) {
  if (APath.empty()) throw EVnDomNotFound(cVnPathEmpty);
  if (TVnDOMElement* root = ADocument->GetRootNode()) return SelectSingleElement(root, APath, AOptions);
  if (AOptions.Contains(soRaise)) throw EVnDomNotFound(cVnPathNoRootRaise, {APath});
  if (AOptions.Contains(soCreate)) throw EVnDomNotFound(cVnPathNoRootCreate);
  return nullptr;
}

}  // namespace vn
