// TVnDOMDocument: the root element, the tree's settings, and building by program.
#include "vnxml/dom_document.h"

#include "vnxml/dom_messages.h"

namespace vn {

TVnDOMDocument::TVnDOMDocument()
    : FCollation(DefaultXPathCollation),
      FSelectMatchOption(DefaultSelectMatchOption),
      FSelectCheckOption(DefaultSelectCheckOption) {
  FNodeType = ntDocument;
  FName.Set(u"#document");
  FDOMDocument = this;
}

TVnDOMDocument::~TVnDOMDocument() {
  EnsureBeforeDestruction();
  FDOMDocument = nullptr;
}

bool TVnDOMDocument::GetCaseSensitive() const { return FCollation != TVnXPathCollationASCIICI::Class(); }

void TVnDOMDocument::SetCaseSensitive(bool AValue) {
  if (!AValue)
    FCollation = TVnXPathCollationASCIICI::Class();
  else if (FCollation == TVnXPathCollationASCIICI::Class())
    FCollation = TVnXPathCollationCodepoint::Class();
}

TVnDOMElement* TVnDOMDocument::CreateRootNode(std::u16string_view AName) {
  if (FRootNode) throw EVnDomException(cVnDomHasRoot);
  auto root = std::make_unique<TVnDOMElement>();
  root->SetQualifiedName(AName);
  AppendChild(root.get());
  return root.release();
}

TVnDOMElement* TVnDOMDocument::CreateRootNode(std::u16string_view AURI, std::u16string_view AName) {
  TVnDOMElement* root = CreateRootNode(AName);
  std::u16string_view prefix = root->PrefixView();
  root->SetAttribute(prefix.empty() ? UnicodeString(u"xmlns") : u"xmlns:" + UnicodeString(prefix), AURI);
  return root;
}

TVnDOMComment* TVnDOMDocument::AddComment(std::u16string_view AText) {
  auto c = std::make_unique<TVnDOMComment>();
  AppendChild(c.get());
  c->SetNodeValue(AText);
  return c.release();
}

TVnDOMNode* TVnDOMDocument::AppendChild(TVnDOMNode* ANode) {
  TVnDOMNode::AppendChild(ANode);
  if (!FRootNode && ANode && ANode->GetNodeType() == ntElement) FRootNode = static_cast<TVnDOMElement*>(ANode);
  return ANode;
}

void TVnDOMDocument::RemoveChild(TVnDOMNode* ANode) {
  // The root pointer must not outlive the root.
  if (ANode && ANode == FRootNode) FRootNode = nullptr;
  TVnDOMNode::RemoveChild(ANode);
}

void TVnDOMDocument::Clear() {
  TVnDOMNode::Clear();
  FRootNode = nullptr;
}

std::unique_ptr<TVnDOMNode> TVnDOMDocument::CreateClone() const { throw EVnDomNotSupported(cVnDomNoDocumentClone); }

}  // namespace vn
