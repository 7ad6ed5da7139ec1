// TVnDOMDocument: the root element, the tree's settings, and building by program.
#include "vnxml/dom_document.h"
#include "vnxml/dom_path.h"

#include "dom/ns_scope.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_messages.h"

namespace vn {

TVnDOMDocument::TVnDOMDocument()
    : FCollation(DefaultXPathCollation),
      FSelectMatchOption(DefaultSelectMatchOption),
      FSelectCheckOption(DefaultSelectCheckOption),
      FNamespaceEpoch(detail::NextNamespaceEpoch()) {
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
  OpenSubtree();  // records still waiting are read by the names' old rules
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

TVnDOMNode* TVnDOMDocument::AddChild(TVnDOMNode* ANode, TVnDOMNode* ARefNode, TVnDOMPosition APosition) {
  TVnDOMNode::AddChild(ANode, ARefNode, APosition);
  if (!FRootNode && ANode && ANode->GetNodeType() == ntElement) FRootNode = static_cast<TVnDOMElement*>(ANode);
  return ANode;
}

TVnDOMNode* TVnDOMDocument::AppendChild(TVnDOMNode* ANode) { return AddChild(ANode, nullptr, rdpLast); }

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

void TVnDOMDocument::SetUseSchemaInstance(bool AValue) {
  FUseSchemaInstance = AValue;
  if (!AValue || !FRootNode) return;
  if (!FRootNode->FindNamespace(cVnXSINamespaceURI)) FRootNode->SetAttribute(u"xmlns:xsi", cVnXSINamespaceURI);
  if (!FRootNode->FindNamespace(cVnXSDNamespaceURI)) FRootNode->SetAttribute(u"xmlns:xsd", cVnXSDNamespaceURI);
}

// ---- processing instructions and the encoding ----

namespace {

// Where the value behind "encoding" stands in AData: between the next two double quotes. A
// declaration in single quotes gives nothing; npos when there is no such word.
bool FindEncodingValue(std::u16string_view AData, size_t& AStart, size_t& ALength) {
  UnicodeString lower = LowerCase(AData);
  size_t word = lower.find(u"encoding");
  if (word == UnicodeString::npos) return false;
  size_t open = lower.find(u'"', word);
  size_t close = open == UnicodeString::npos ? open : lower.find(u'"', open + 1);
  if (close == UnicodeString::npos) {
    AStart = AData.size();
    ALength = 0;
    return true;
  }
  AStart = open + 1;
  ALength = close - open - 1;
  return true;
}

}  // namespace

TVnDOMProcessingInstruction* TVnDOMDocument::FindProcessingInstruction(std::u16string_view ATarget) const {
  for (TVnDOMNode* c : FChildren)
    if (c->GetNodeType() == ntProcessingInstruction && SameText(c->QualifiedNameView(), ATarget))
      return static_cast<TVnDOMProcessingInstruction*>(c);
  return nullptr;
}

UnicodeString TVnDOMDocument::GetProcessingInstruction(std::u16string_view ATarget) const {
  TVnDOMProcessingInstruction* pi = FindProcessingInstruction(ATarget);
  if (!pi) throw EVnDomNotFound(cVnDomNoProcessingInstruction, {UnicodeString(ATarget)});
  return UnicodeString(pi->GetData());
}

void TVnDOMDocument::SetProcessingInstruction(std::u16string_view ATarget, std::u16string_view AData) {
  TVnDOMProcessingInstruction* pi = FindProcessingInstruction(ATarget);
  if (!pi) {
    auto made = std::make_unique<TVnDOMProcessingInstruction>();
    made->SetQualifiedName(ATarget);
    pi = made.get();
    TVnDOMProcessingInstruction* xml = SameText(ATarget, u"xml") ? nullptr : FindProcessingInstruction(u"xml");
    if (xml)
      AddChild(made.release(), xml, rdpAfter);
    else
      AddChild(made.release(), FChildren.empty() ? nullptr : FChildren[0], rdpBefore);
  }
  pi->SetData(AData);
  if (SameText(ATarget, u"xml")) ReCalcEncoding();
}

void TVnDOMDocument::ReCalcEncoding() {
  FEncoding = u"UTF-8";
  TVnDOMProcessingInstruction* xml = FindProcessingInstruction(u"xml");
  size_t start = 0, length = 0;
  if (!xml || !FindEncodingValue(xml->GetData(), start, length)) return;
  FEncoding = Trim(LowerCase(std::u16string_view(xml->GetData()).substr(start, length)));
  FCodePage = VnCodePage(FEncoding);
}

void TVnDOMDocument::SetCodePage(Word AValue) {
  FCodePage = AValue;
  FEncoding = VnCodePage(AValue);
}

void TVnDOMDocument::SetEncoding(std::u16string_view AValue) {
  if (AValue.empty()) {
    FCodePage = cVnCodePageUTF8;
    FEncoding = u"UTF-8";
  } else {
    FCodePage = VnCodePage(AValue);
    FEncoding.assign(AValue);
  }
  TVnDOMProcessingInstruction* xml = FindProcessingInstruction(u"xml");
  if (!xml) {
    auto made = std::make_unique<TVnDOMProcessingInstruction>();
    made->SetQualifiedName(u"xml");
    made->SetData(Format(u"version=\"1.0\" encoding=\"%s\"", {FEncoding}));
    AddChild(made.release(), FChildren.empty() ? nullptr : FChildren[0], rdpBefore);
    return;
  }
  UnicodeString data(xml->GetData());
  size_t start = 0, length = 0;
  if (FindEncodingValue(data, start, length)) {
    // The old name's first occurrence, in any case, gives way to the new one.
    UnicodeString old = Trim(LowerCase(std::u16string_view(data).substr(start, length)));
    UnicodeString lower = LowerCase(data);
    size_t at = old.empty() ? UnicodeString::npos : lower.find(old);
    if (at != UnicodeString::npos) data.replace(at, old.size(), FEncoding);
    xml->SetData(data);
  } else {
    xml->SetData(Trim(data + Format(u" encoding=\"%s\"", {FEncoding})));
  }
}

// ---- selection ----

std::unique_ptr<TVnDOMElementList> TVnDOMDocument::CreateElementList(std::u16string_view APath,
                                                                     TVnDOMSelectOptions AOptions) {
  return vn::CreateElementList(this, APath, AOptions);
}

TVnDOMElement* TVnDOMDocument::SelectSingleElement(std::u16string_view APath, TVnDOMSelectOptions AOptions) {
  return vn::SelectSingleElement(this, APath, AOptions);
}

}  // namespace vn
