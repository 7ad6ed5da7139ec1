// TVnDOMElement: typed child bookkeeping, building, lookups by name, text and xml:space.
#include <vector>

#include "dom/node_extras.h"
#include "dom/ns_scope.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"
#include "vnxml/xml_escape.h"

namespace vn {

namespace {
TVnDOMNode* NextIn(const detail::PtrVector<TVnDOMNode>& AItems, const TVnDOMNode* ANode) {
  int64_t i = AItems.IndexOf(ANode);
  if (i < 0) return AItems.empty() ? nullptr : AItems.front();
  auto n = static_cast<uint32_t>(i + 1);
  return n < AItems.size() ? AItems[n] : nullptr;
}

TVnDOMNode* PreviousIn(const detail::PtrVector<TVnDOMNode>& AItems, const TVnDOMNode* ANode) {
  int64_t i = AItems.IndexOf(ANode);
  if (i < 0) throw EListError(cVnDomRefNodeNotInList);
  return i == 0 ? nullptr : AItems[static_cast<uint32_t>(i - 1)];
}

template <class T>
T* MakeNode() {
  return new T();
}
}  // namespace

TVnDOMElement::TVnDOMElement() {
  FNodeType = ntElement;
  FPreserveSpace = DefaultPreserveCase;
}

TVnDOMElement::~TVnDOMElement() {
  EnsureBeforeDestruction();
  if (!FScopeHeld) detail::Release(FScope);
}

void TVnDOMElement::ForgetAllChildren() {
  FAttrs.reset();
  FElems.reset();
  FChars.reset();
}

// ---- child bookkeeping ----

void TVnDOMElement::OpenFor(const TVnDOMNode* AChild) {
  // The typed lists change first: the load's records must be nodes by then. An attribute
  // decides how every record below reads.
  if (AChild->GetNodeType() == ntAttribute)
    Changing();
  else
    EnsureOpen();
}

TVnDOMNode* TVnDOMElement::AddChild(TVnDOMNode* ANode, TVnDOMNode* ARefNode, TVnDOMPosition APosition) {
  if (!ANode) return nullptr;
  if (ANode->GetParent()) throw EVnDomHierarchyRequest(cVnDomHasParent);
  if (ANode == this) throw EVnDomHierarchyRequest(cVnDomAddToItself);
  OpenFor(ANode);
  detail::PtrVector<TVnDOMNode>* typed = TypedListFor(ANode);
  if (typed) detail::InsertByPosition(*typed, ANode, ARefNode, APosition);
  try {
    return TVnDOMNode::AddChild(ANode, ARefNode, APosition);
  } catch (...) {
    if (typed && ANode->GetParent() != this) {
      int64_t i = typed->IndexOf(ANode, true);
      if (i >= 0) typed->erase(static_cast<uint32_t>(i));
    }
    throw;
  }
}

void TVnDOMElement::RemoveChild(TVnDOMNode* ANode) {
  if (!ANode) return;
  VnAssert(ANode->GetParent() == this, cVnDomNotAChild);
  OpenFor(ANode);
  bool declaration = ANode->GetNodeType() == ntAttribute && static_cast<TVnDOMAttribute*>(ANode)->IsNamespace();
  if (ANode == FNamespace) FNamespace = nullptr;
  if (detail::PtrVector<TVnDOMNode>* typed = TypedListFor(ANode)) {
    int64_t i = typed->IndexOf(ANode, true);
    if (i >= 0) typed->erase(static_cast<uint32_t>(i));
  }
  TVnDOMNode::RemoveChild(ANode);
  // Descendants may point at the declaration that just left.
  if (declaration && !FDestroying) RefreshNamespaces();
}

// ---- typed lists ----

TVnDOMAttrList* TVnDOMElement::GetAttributes() {
  auto& x = Extras();
  if (!x.Attributes) x.Attributes = std::make_unique<TVnDOMAttrList>(this, &FAttrs);
  return x.Attributes.get();
}

TVnDOMElementList* TVnDOMElement::GetElements() {
  auto& x = Extras();
  EnsureOpen();
  if (!x.Elements) x.Elements = std::make_unique<TVnDOMElementList>(this, &FElems);
  return x.Elements.get();
}

TVnDOMNodeList* TVnDOMElement::GetCharNodes() {
  auto& x = Extras();
  EnsureOpen();
  if (!x.CharNodes) x.CharNodes = std::make_unique<TVnDOMNodeList>(this, &FChars);
  return x.CharNodes.get();
}

TVnDOMAttrList* TVnDOMElement::GetNamespaces() {
  auto& x = Extras();
  if (!x.Namespaces) x.Namespaces = std::make_unique<TVnDOMAttrList>(this, nullptr);
  // The list object holds a snapshot; the scope itself is shared with relatives.
  std::vector<TVnDOMAttribute*> all;
  detail::Flatten(FScope, all);
  x.Namespaces->SetSnapshot(all);
  return x.Namespaces.get();
}

TVnDOMCDATA* TVnDOMElement::GetCDATA(Integer AIndex) {
  EnsureOpen();
  Integer n = 0;
  for (TVnDOMNode* c : FChars)
    if (c->GetNodeType() == ntCDATA) {
      if (n == AIndex) return static_cast<TVnDOMCDATA*>(c);
      ++n;
    }
  if (AIndex == n) return AddCDATA(u"");
  throw EListError(cVnDomNoCDATAIndex, {AIndex});
}

Integer TVnDOMElement::GetCDATACount() const {
  EnsureOpen();
  Integer n = 0;
  for (TVnDOMNode* c : FChars)
    if (c->GetNodeType() == ntCDATA) ++n;
  return n;
}

// ---- building ----

TVnDOMComment* TVnDOMElement::AddComment(std::u16string_view AText) { return InsertComment(AText, rdpLast, nullptr); }
TVnDOMText* TVnDOMElement::AddText(std::u16string_view AText) { return InsertText(AText, rdpLast, nullptr); }
TVnDOMCDATA* TVnDOMElement::AddCDATA(std::u16string_view AText) { return InsertCDATA(AText, rdpLast, nullptr); }

TVnDOMComment* TVnDOMElement::InsertComment(std::u16string_view AText, TVnDOMPosition APosition,
                                            TVnDOMNode* ARefNode) {
  std::unique_ptr<TVnDOMComment> n(MakeNode<TVnDOMComment>());
  AddChild(n.get(), ARefNode, APosition);
  n->SetNodeValue(AText);
  return n.release();
}

TVnDOMText* TVnDOMElement::InsertText(std::u16string_view AText, TVnDOMPosition APosition, TVnDOMNode* ARefNode) {
  std::unique_ptr<TVnDOMText> n(MakeNode<TVnDOMText>());
  AddChild(n.get(), ARefNode, APosition);
  n->SetNodeValue(AText);
  return n.release();
}

TVnDOMCDATA* TVnDOMElement::InsertCDATA(std::u16string_view AText, TVnDOMPosition APosition, TVnDOMNode* ARefNode) {
  std::unique_ptr<TVnDOMCDATA> n(MakeNode<TVnDOMCDATA>());
  AddChild(n.get(), ARefNode, APosition);
  n->SetNodeValue(AText);
  return n.release();
}

TVnDOMElement* TVnDOMElement::AddElement(std::u16string_view AName) { return InsertElement(AName, rdpLast, nullptr); }

TVnDOMElement* TVnDOMElement::AddElement(std::u16string_view AURI, std::u16string_view AName) {
  return InsertElement(AURI, AName, rdpLast, nullptr);
}

TVnDOMElement* TVnDOMElement::InsertElement(std::u16string_view AName, TVnDOMPosition APosition,
                                            TVnDOMNode* ARefNode) {
  std::unique_ptr<TVnDOMElement> e(MakeNode<TVnDOMElement>());
  e->SetQualifiedNameIn(FDOMDocument, AName);
  AddChild(e.get(), ARefNode, APosition);
  return e.release();
}

TVnDOMElement* TVnDOMElement::InsertElement(std::u16string_view AURI, std::u16string_view AName,
                                            TVnDOMPosition APosition, TVnDOMNode* ARefNode) {
  std::unique_ptr<TVnDOMElement> e(MakeNode<TVnDOMElement>());
  e->SetQualifiedNameIn(FDOMDocument, AName);
  e->SetNamespaceURI(AURI);
  AddChild(e.get(), ARefNode, APosition);
  return e.release();
}

TVnDOMAttribute* TVnDOMElement::AddAttribute(std::u16string_view AName) {
  std::unique_ptr<TVnDOMAttribute> a(MakeNode<TVnDOMAttribute>());
  a->SetQualifiedNameIn(FDOMDocument, AName);
  AppendChild(a.get());
  return a.release();
}

TVnDOMAttribute* TVnDOMElement::AddAttribute(std::u16string_view AURI, std::u16string_view AName) {
  std::unique_ptr<TVnDOMAttribute> a(MakeNode<TVnDOMAttribute>());
  a->SetQualifiedNameIn(FDOMDocument, AName);
  a->SetNamespaceURI(AURI);
  AppendChild(a.get());
  return a.release();
}

void TVnDOMElement::RemoveElement(TVnDOMElement* AElement) { RemoveChild(AElement); }

void TVnDOMElement::RemoveElement(std::u16string_view AName) {
  if (TVnDOMNode* e = detail::FindInItems(ElementsView(), *this, AName, {soQualifiedName})) RemoveChild(e);
}

void TVnDOMElement::RemoveElement(std::u16string_view AURI, std::u16string_view ALocalName) {
  RemoveChild(ElementByName(AURI, ALocalName, coRaise));
}

void TVnDOMElement::RemoveAttribute(TVnDOMAttribute* AAttribute) { RemoveChild(AAttribute); }

void TVnDOMElement::RemoveAttribute(std::u16string_view AName) {
  if (TVnDOMNode* a = detail::FindInItems(FAttrs, *this, AName, {soQualifiedName})) RemoveChild(a);
}

void TVnDOMElement::RemoveAttribute(std::u16string_view AURI, std::u16string_view ALocalName) {
  RemoveChild(AttributeByName(AURI, ALocalName));
}

// ---- lookups ----

TVnDOMNode* TVnDOMElement::NodeByName(TVnDOMNodeListBase* AList, std::u16string_view AName,
                                      TVnDOMSelectOptions AOptions, TClass ANodeClass) {
  TVnDOMNode* n = AList->Find(AName, AOptions - TVnDOMSelectOptions{soCreate, soRaise});
  if (n) return n;
  if (AOptions.Contains(soRaise)) throw EVnDomNotFound(cVnDomNoChildNamed, {AName});
  if (!AOptions.Contains(soCreate)) return nullptr;
  if (!ANodeClass) throw Exception(cVnDomNodeClassRequired);
  n = AddChild(ANodeClass, nullptr, rdpLast);
  n->SetQualifiedName(AName);
  return n;
}

TVnDOMNode* TVnDOMElement::NodeByName(TVnDOMNodeListBase* AList, std::u16string_view ANamespaceURI,
                                      std::u16string_view ALocalName, TVnDOMSelectCheckOption ACheckOption) {
  if (TVnDOMNode* n = AList->Find(ANamespaceURI, ALocalName)) return n;
  switch (ACheckOption) {
    case coReturnNil:
      return nullptr;
    case coRaise:
      throw EVnDomNotFound(cVnDomNoChildLocalNS, {ALocalName, ANamespaceURI});
    case coCreate:
      break;
  }
  if (TVnDOMAttribute* decl = FindScopeNamespace(ANamespaceURI)) {
    UnicodeString prefix = decl->NamespacePrefix();
    return AddElement(prefix.empty() ? UnicodeString(ALocalName) : prefix + u':' + UnicodeString(ALocalName));
  }
  return AddElement(ANamespaceURI, ALocalName);
}

TVnDOMNode* TVnDOMElement::NodeByName(TVnDOMNodeListBase* AList, std::u16string_view ANamespaceURI,
                                      std::u16string_view ALocalName, bool ACreate, TClass ANodeClass) {
  std::u16string_view local = ALocalName;
  if (size_t c = local.find(u':'); c != std::u16string_view::npos) local = local.substr(c + 1);
  if (TVnDOMNode* n = AList->Find(ANamespaceURI, local)) return n;
  if (!ACreate || !ANodeClass) throw EVnDomNotFound(cVnDomNoChildLocalNS, {ALocalName, ANamespaceURI});
  std::unique_ptr<TObject> obj(CreateInstance(ANodeClass));
  auto* node = CastObject<TVnDOMNode>(obj.get());
  if (!node) throw EInvalidCast(cRtlInvalidCast);
  node->SetQualifiedName(ALocalName);
  AddChild(node, nullptr, rdpLast);
  obj.release();
  bool isElement = node->GetNodeType() == ntElement;
  auto* owner = isElement ? static_cast<TVnDOMElement*>(node) : this;
  if (!owner->FindNamespace(ANamespaceURI)) {
    std::u16string_view prefix = node->PrefixView();
    std::unique_ptr<TVnDOMAttribute> decl(MakeNode<TVnDOMAttribute>());
    decl->SetQualifiedName(prefix.empty() ? UnicodeString(u"xmlns") : u"xmlns:" + UnicodeString(prefix));
    decl->SetNodeValue(ANamespaceURI);
    owner->AddChild(decl.get(), isElement ? nullptr : node, isElement ? rdpLast : rdpBefore);
    decl.release();
    // The new declaration must be seen by the node it was made for.
    owner->RefreshNamespaces();
  }
  return node;
}

TVnDOMElement* TVnDOMElement::FindElement(std::u16string_view AName, TVnDOMSelectOptions AOptions) {
  return static_cast<TVnDOMElement*>(detail::FindInItems(ElementsView(), *this, AName, AOptions));
}

TVnDOMElement* TVnDOMElement::FindElement(std::u16string_view AURI, std::u16string_view ALocalName) {
  return static_cast<TVnDOMElement*>(detail::FindInItems(ElementsView(), *this, AURI, ALocalName));
}

TVnDOMElement* TVnDOMElement::ElementByName(std::u16string_view AURI, std::u16string_view ALocalName,
                                            TVnDOMSelectCheckOption ACheck) {
  return static_cast<TVnDOMElement*>(NodeByName(GetElements(), AURI, ALocalName, ACheck));
}

TVnDOMElement* TVnDOMElement::ElementByName(std::u16string_view AURI, std::u16string_view AQName, bool ACreate) {
  return static_cast<TVnDOMElement*>(NodeByName(GetElements(), AURI, AQName, ACreate, TVnDOMElement::StaticClass()));
}

TVnDOMElement* TVnDOMElement::ElementByName(std::u16string_view AName, TVnDOMSelectOptions AOptions,
                                            TClass ANodeClass) {
  return static_cast<TVnDOMElement*>(
      NodeByName(GetElements(), AName, AOptions, ANodeClass ? ANodeClass : TVnDOMElement::StaticClass()));
}

TVnDOMAttribute* TVnDOMElement::FindAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions) {
  return static_cast<TVnDOMAttribute*>(detail::FindInItems(FAttrs, *this, AName, AOptions));
}

TVnDOMAttribute* TVnDOMElement::FindAttribute(std::u16string_view AURI, std::u16string_view ALocalName) {
  return static_cast<TVnDOMAttribute*>(detail::FindInItems(FAttrs, *this, AURI, ALocalName));
}

TVnDOMAttribute* TVnDOMElement::AttributeByName(std::u16string_view AURI, std::u16string_view ALocalName) {
  return AttributeByName(AURI, ALocalName, false);
}

TVnDOMAttribute* TVnDOMElement::AttributeByName(std::u16string_view AURI, std::u16string_view AQName, bool ACreate) {
  return static_cast<TVnDOMAttribute*>(
      NodeByName(GetAttributes(), AURI, AQName, ACreate, TVnDOMAttribute::StaticClass()));
}

TVnDOMAttribute* TVnDOMElement::AttributeByName(std::u16string_view AName, TVnDOMSelectOptions AOptions) {
  return static_cast<TVnDOMAttribute*>(NodeByName(GetAttributes(), AName, AOptions, TVnDOMAttribute::StaticClass()));
}

bool TVnDOMElement::HasChildElement(std::u16string_view AName, TVnDOMSelectOptions AOptions) {
  return FindElement(AName, AOptions) != nullptr;
}
bool TVnDOMElement::HasChildElement(std::u16string_view AURI, std::u16string_view ALocalName) {
  return FindElement(AURI, ALocalName) != nullptr;
}
bool TVnDOMElement::HasAttribute(std::u16string_view AName, TVnDOMSelectOptions AOptions) {
  return FindAttribute(AName, AOptions) != nullptr;
}
bool TVnDOMElement::HasAttribute(std::u16string_view AURI, std::u16string_view ALocalName) {
  return FindAttribute(AURI, ALocalName) != nullptr;
}

UnicodeString TVnDOMElement::GetAttribute(std::u16string_view AName) {
  // the common case finds the attribute without making the list object
  TVnDOMAttribute* a = FindAttribute(AName, {soQualifiedName});
  if (!a) a = AttributeByName(AName, {soCreate, soQualifiedName});
  return a->GetNodeValue();
}

void TVnDOMElement::SetAttribute(std::u16string_view AName, std::u16string_view AValue) {
  TVnDOMAttribute* a = FindAttribute(AName, {soQualifiedName});
  if (!a) a = AttributeByName(AName, {soCreate, soQualifiedName});
  a->SetNodeValue(AValue);
}

UnicodeString TVnDOMElement::GetAttributeNS(std::u16string_view AURI, std::u16string_view AName) {
  return AttributeByName(AURI, AName, false)->GetNodeValue();
}

void TVnDOMElement::SetAttributeNS(std::u16string_view AURI, std::u16string_view AName, std::u16string_view AValue) {
  AttributeByName(AURI, AName, true)->SetNodeValue(AValue);
}

TVnDOMElement* TVnDOMElement::FirstElement() const {
  if (ElementsView().empty()) throw EVnDomNotFound(cVnDomListEmpty);
  return static_cast<TVnDOMElement*>(FElems.front());
}
TVnDOMElement* TVnDOMElement::LastElement() const {
  if (ElementsView().empty()) throw EVnDomNotFound(cVnDomListEmpty);
  return static_cast<TVnDOMElement*>(FElems.back());
}
TVnDOMAttribute* TVnDOMElement::FirstAttribute() const {
  if (FAttrs.empty()) throw EVnDomNotFound(cVnDomListEmpty);
  return static_cast<TVnDOMAttribute*>(FAttrs.front());
}
TVnDOMAttribute* TVnDOMElement::LastAttribute() const {
  if (FAttrs.empty()) throw EVnDomNotFound(cVnDomListEmpty);
  return static_cast<TVnDOMAttribute*>(FAttrs.back());
}

TVnDOMElement* TVnDOMElement::NextElement() const {
  auto* p = CastObject<TVnDOMElement>(FParent);
  return p ? static_cast<TVnDOMElement*>(NextIn(p->FElems, this)) : nullptr;
}

TVnDOMElement* TVnDOMElement::PreviousElement() const {
  auto* p = CastObject<TVnDOMElement>(FParent);
  return p ? static_cast<TVnDOMElement*>(PreviousIn(p->FElems, this)) : nullptr;
}

// ---- element lists ----

std::unique_ptr<TVnDOMElementList> TVnDOMElement::CreateElementList(std::u16string_view AQName, bool ARecursive,
                                                                    TVnDOMSelectOptions AOptions) {
  std::u16string_view prefix, local = AQName;
  if (size_t c = AQName.find(u':'); c != std::u16string_view::npos) {
    prefix = AQName.substr(0, c);
    local = AQName.substr(c + 1);
  }
  auto list = std::make_unique<TVnDOMElementList>();
  _GetChildElements(*list, prefix, AOptions, ARecursive, local);
  return list;
}

void TVnDOMElement::_GetChildElements(TVnDOMElementList& AList, std::u16string_view APrefix,
                                      TVnDOMSelectOptions AOptions, bool ARecursive, std::u16string_view ALocalName) {
  if (AOptions.Contains(soCaseSensitive) && AOptions.Contains(soCaseInsensitive))
    throw Exception(cVnDomBothCaseOptions);
  if (AOptions.Contains(soRaise) || AOptions.Contains(soCreate)) throw Exception(cVnDomNoRaiseOrCreate);
  TVnXPathCollationClass coll = AOptions.Contains(soCaseSensitive)     ? TVnXPathCollationCodepoint::Class()
                                : AOptions.Contains(soCaseInsensitive) ? TVnXPathCollationASCIICI::Class()
                                                                       : GetCollation();
  bool localOnly = AOptions.Contains(soLocalName)       ? true
                   : AOptions.Contains(soQualifiedName) ? false
                                                        : GetSelectMatchOption() == soLocalName;
  auto matches = [&](const TVnDOMNode* e) {
    if (ALocalName != u"*" && !coll->SameText(e->LocalNameView(), ALocalName)) return false;
    return localOnly || APrefix == u"*" || coll->SameText(e->PrefixView(), APrefix);
  };
  std::vector<TVnDOMElement*> stack{this};
  while (!stack.empty()) {
    TVnDOMElement* e = stack.back();
    stack.pop_back();
    if (matches(e)) AList.Add(e);
    if (!ARecursive) break;
    const auto& elems = e->ElementsView();
    for (uint32_t i = elems.size(); i-- > 0;) stack.push_back(static_cast<TVnDOMElement*>(elems[i]));
  }
}

std::unique_ptr<TVnDOMElementList> TVnDOMElement::CreateElementList(std::u16string_view AURI,
                                                                    std::u16string_view ALocalName, bool ARecursive) {
  auto list = std::make_unique<TVnDOMElementList>();
  std::vector<TVnDOMElement*> stack{this};
  while (!stack.empty()) {
    TVnDOMElement* e = stack.back();
    stack.pop_back();
    TVnXPathCollationClass coll = e->GetCollation();
    if (coll->SameText(e->LocalNameView(), ALocalName) && coll->SameText(e->GetNamespaceURI(), AURI)) list->Add(e);
    if (!ARecursive) break;
    const auto& elems = e->ElementsView();
    for (uint32_t i = elems.size(); i-- > 0;) stack.push_back(static_cast<TVnDOMElement*>(elems[i]));
  }
  return list;
}

// ---- text ----

UnicodeString TVnDOMElement::GetNodeValue() const {
  UnicodeString s;
  for (TVnDOMNode* c : CharNodesView())
    if (c->GetNodeType() != ntComment) s += c->GetNodeValue();
  return s;
}

UnicodeString TVnDOMElement::GetText() const {
  UnicodeString s;
  std::vector<const TVnDOMElement*> stack{this};
  while (!stack.empty()) {
    const TVnDOMElement* e = stack.back();
    stack.pop_back();
    for (TVnDOMNode* c : e->CharNodesView()) s += c->GetNodeValue();
    for (uint32_t i = e->FElems.size(); i-- > 0;) stack.push_back(static_cast<const TVnDOMElement*>(e->FElems[i]));
  }
  return s;
}

void TVnDOMElement::SetNodeValue(std::u16string_view AValue) {
  SetNodeValueEx(VnStrToXML(AValue, true, true));
}

void TVnDOMElement::SetNodeValueEx(std::u16string_view AValue) {
  EnsureOpen();
  for (uint32_t i = FChars.size(); i-- > 0;)
    if (i < FChars.size() && FChars[i]->GetNodeType() != ntCDATA) RemoveChild(FChars[i]);
  std::unique_ptr<TVnDOMText> t(MakeNode<TVnDOMText>());
  AddChild(t.get(), nullptr, rdpAfter);
  t.release()->SetStoredValue(AValue);
}

void TVnDOMElement::NormalizeTextNodes() {
  EnsureOpen();
  if (FChars.size() <= 1) return;
  for (uint32_t i = 0; i + 1 < FChildren.size(); ++i) {
    TVnDOMNode* a = FChildren[i];
    while (i + 1 < FChildren.size() && a->GetNodeType() == ntText && FChildren[i + 1]->GetNodeType() == ntText) {
      TVnDOMNode* b = FChildren[i + 1];
      a->SetNodeValue(a->GetNodeValue() + b->GetNodeValue());
      RemoveChild(b);
    }
  }
}

// SetInnerXML lives with the parser (dom_parser.cpp).

// ---- xml:space ----

void TVnDOMElement::_SetPreseveSpace(bool AValue) {
  std::vector<TVnDOMElement*> stack{this};
  while (!stack.empty()) {
    TVnDOMElement* e = stack.back();
    stack.pop_back();
    if (detail::FindInItems(e->FAttrs, *e, u"xml:space", {soQualifiedName})) continue;
    e->FPreserveSpace = AValue;
    for (TVnDOMNode* c : e->FElems) stack.push_back(static_cast<TVnDOMElement*>(c));
  }
}

void TVnDOMElement::SetPreseveSpace(bool AValue) {
  // the load's records below keep white space as the setting was
  OpenSubtree();
  FPreserveSpace = AValue;
  AttributeByName(u"xml:space", {soCreate, soQualifiedName})->SetNodeValue(AValue ? u"preserve" : u"default");
  _SetPreseveSpace(AValue);
}

}  // namespace vn
