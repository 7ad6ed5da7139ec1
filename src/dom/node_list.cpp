// The node lists: positions, neighbours, edits and lookups by name (the last match wins).
#include "dom/node_extras.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/variant.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"
#include "vnxml/dom_path.h"
#include "vnxml/xml_escape.h"

namespace vn {

namespace detail {
/// The collation and match that the options choose for a lookup on AObject.
struct NameMatch {
  TVnXPathCollationClass Collation;
  bool LocalName;

  NameMatch(const TVnDOMObject& AObject, TVnDOMSelectOptions AOptions) {
    bool cs = AOptions.Contains(soCaseSensitive), ci = AOptions.Contains(soCaseInsensitive);
    if (cs && ci) throw Exception(cVnDomBothCaseOptions);
    Collation = cs ? TVnXPathCollationCodepoint::Class()
                   : ci ? TVnXPathCollationASCIICI::Class() : AObject.GetCollation();
    if (AOptions.Contains(soLocalName))
      LocalName = true;
    else if (AOptions.Contains(soQualifiedName))
      LocalName = false;
    else
      LocalName = AObject.GetSelectMatchOption() == soLocalName;
  }
  bool Matches(const TVnDOMNode& ANode, std::u16string_view AName) const {
    return Collation->SameText(LocalName ? ANode.LocalNameView() : ANode.QualifiedNameView(), AName);
  }
};

TVnDOMNode* FindInItems(const PtrVector<TVnDOMNode>& AItems, const TVnDOMObject& ACtx,
                        std::u16string_view ANamespaceURI, std::u16string_view ALocalName) {
  TVnXPathCollationClass coll = ACtx.GetCollation();
  for (uint32_t i = AItems.size(); i-- > 0;) {
    TVnDOMNode* n = AItems[i];
    if (!coll->SameText(n->LocalNameView(), ALocalName)) continue;
    if (!ANamespaceURI.empty() && n->GetNamespaceURI() != ANamespaceURI) continue;
    return n;
  }
  return nullptr;
}

TVnDOMNode* FindInItems(const PtrVector<TVnDOMNode>& AItems, const TVnDOMObject& ACtx, std::u16string_view AName,
                        TVnDOMSelectOptions AOptions) {
  NameMatch match(ACtx, AOptions);
  if (AOptions.Contains(soCreate)) throw Exception(cVnDomNoCreateInFind);
  for (uint32_t i = AItems.size(); i-- > 0;)
    if (match.Matches(*AItems[i], AName)) return AItems[i];
  if (AOptions.Contains(soRaise)) throw EVnDomNotFound(cVnDomNoNodeForName, {AName});
  return nullptr;
}

}  // namespace detail

// ---- TVnDOMNodeListBase ----

TVnDOMNodeListBase::TVnDOMNodeListBase() : FItems(&FOwnItems) {}

TVnDOMNodeListBase::TVnDOMNodeListBase(TVnDOMNode* AOwner, detail::PtrVector<TVnDOMNode>* AItems)
    : FItems(AItems ? AItems : &FOwnItems) {
  // No FDOMDocument here: the owner may change documents, or outlive its own.
  FParent = AOwner;
}

TVnDOMDocument* TVnDOMNodeListBase::GetOwnerDocument() const noexcept {
  return FParent ? FParent->GetDOMDocument() : nullptr;
}

TVnDOMNodeListBase::~TVnDOMNodeListBase() { EnsureBeforeDestruction(); }

bool TVnDOMNodeListBase::CanAutoDestroy() const {
  if (FHasImpl || !TVnDOMObject::CanAutoDestroy()) return false;
  return FParent == nullptr;
}

TVnXPathCollationClass TVnDOMNodeListBase::GetCollation() const {
  return FParent ? FParent->GetCollation() : TVnDOMObject::GetCollation();
}

TVnDOMSelectMatchOption TVnDOMNodeListBase::GetSelectMatchOption() const {
  return FParent ? FParent->GetSelectMatchOption() : TVnDOMObject::GetSelectMatchOption();
}

TVnDOMNode* TVnDOMNodeListBase::GetItem(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= Count()) throw EListError(cRtlListIndexError, {AIndex});
  return (*FItems)[static_cast<uint32_t>(AIndex)];
}

// ---- edits: on a node's own list they are edits of the tree ----

bool TVnDOMNodeListBase::HoldsKind(const TVnDOMNode&) const { return true; }

void TVnDOMNodeListBase::CheckWritable() const {
  if (FParent && !IsChildView()) throw EVnDomNotSupported(cVnDomListReadOnly);
}

void TVnDOMNodeListBase::CheckAdd(const TVnDOMNode* ANode) const {
  CheckWritable();
  if (!ANode) return;
  bool fits = HoldsKind(*ANode);
  // A typed view of an element shows one kind of child; what AddChild would put into another
  // view (or into none) would vanish from this one.
  if (fits && IsChildView() && FItems != &GetOwner()->ChildrenView()) {
    const auto* e = static_cast<const TVnDOMElement*>(GetOwner());
    switch (ANode->GetNodeType()) {
      case ntAttribute: fits = FItems == &e->AttributesView(); break;
      case ntElement: fits = FItems == &e->ElementsView(); break;
      case ntText:
      case ntCDATA:
      case ntComment: fits = FItems == &e->CharNodesView(); break;
      default: fits = false; break;
    }
  }
  if (!fits) throw EVnDomHierarchyRequest(cVnDomListWrongKind, {VnDOMNodeTypes[ANode->GetNodeType()]});
}

void TVnDOMNodeListBase::Clear() {
  CheckWritable();
  if (!IsChildView()) {
    FItems->clear();
    return;
  }
  TVnDOMNode* owner = GetOwner();
  if (FItems == &owner->ChildrenView()) {
    owner->Clear();
    return;
  }
  while (!FItems->empty()) {
    TVnDOMNode* c = FItems->back();
    owner->RemoveChild(c);
    // a child that RemoveChild could not take out would loop forever
    if (!FItems->empty() && FItems->back() == c) FItems->pop_back();
  }
}

TVnDOMNode* TVnDOMNodeListBase::Add(TVnDOMNode* ANode, TVnDOMNode* ARefNode, TVnDOMPosition APosition) {
  CheckAdd(ANode);
  if (!ANode) return nullptr;
  if (IsChildView()) return GetOwner()->AddChild(ANode, ARefNode, APosition);
  detail::InsertByPosition(*FItems, ANode, ARefNode, APosition);
  return ANode;
}

TVnDOMNode* TVnDOMNodeListBase::Delete(TVnDOMNode* ANode) {
  CheckWritable();
  int64_t i = FItems->IndexOf(ANode);
  if (i < 0) return nullptr;
  if (IsChildView()) {
    // RemoveChild frees the node unless an interface holds it.
    bool livesOn = ANode->GetDOMImpl() != nullptr;
    GetOwner()->RemoveChild(ANode);
    return livesOn ? ANode : nullptr;
  }
  FItems->erase(static_cast<uint32_t>(i));
  return ANode;
}

void TVnDOMNodeListBase::SetSnapshot(const std::vector<TVnDOMAttribute*>& AItems) {
  FItems->clear();
  FItems->reserve(static_cast<uint32_t>(AItems.size()));
  for (TVnDOMAttribute* a : AItems) FItems->push_back(a);
}

TVnDOMNode* TVnDOMNodeListBase::First() const {
  if (FItems->empty()) throw EVnDomNotFound(cVnDomListEmpty);
  return FItems->front();
}

TVnDOMNode* TVnDOMNodeListBase::Last() const {
  if (FItems->empty()) throw EVnDomNotFound(cVnDomListEmpty);
  return FItems->back();
}

TVnDOMNode* TVnDOMNodeListBase::Next(const TVnDOMNode* ANode) const {
  int64_t i = FItems->IndexOf(ANode);
  if (i < 0) return FItems->empty() ? nullptr : FItems->front();
  auto n = static_cast<uint32_t>(i + 1);
  return n < FItems->size() ? (*FItems)[n] : nullptr;
}

TVnDOMNode* TVnDOMNodeListBase::Previous(const TVnDOMNode* ANode) const {
  int64_t i = FItems->IndexOf(ANode);
  if (i < 0) throw EListError(cVnDomRefNodeNotInList);
  return i == 0 ? nullptr : (*FItems)[static_cast<uint32_t>(i - 1)];
}

bool TVnDOMNodeListBase::ContainsNode(const TVnDOMNode* ANode) const { return FItems->IndexOf(ANode) >= 0; }

Integer TVnDOMNodeListBase::IndexOf(const TVnDOMNode* ANode) const {
  return static_cast<Integer>(FItems->IndexOf(ANode));
}

TVnDOMNode* TVnDOMNodeListBase::Find(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) const {
  return detail::FindInItems(*FItems, *this, ANamespaceURI, ALocalName);
}

TVnDOMNode* TVnDOMNodeListBase::Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) const {
  return detail::FindInItems(*FItems, *this, AName, AOptions);
}

TVnDOMNode* TVnDOMNodeListBase::Delete(std::u16string_view AName, TVnDOMSelectOptions AOptions) {
  TVnDOMNode* n = Find(AName, AOptions);
  return n ? Delete(n) : nullptr;
}

TVnDOMNode* TVnDOMNodeListBase::Delete(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) {
  TVnDOMNode* n = Find(ANamespaceURI, ALocalName);
  return n ? Delete(n) : nullptr;
}

// ---- TVnDOMElementList ----

TVnDOMElement* TVnDOMElementListEnumerator::GetCurrent() const {
  return static_cast<TVnDOMElement*>(TVnDOMNodeListBaseEnumerator::GetCurrent());
}

TVnDOMElement* TVnDOMElementList::GetItem(Integer AIndex) const {
  return static_cast<TVnDOMElement*>(TVnDOMNodeListBase::GetItem(AIndex));
}

TVnDOMElement* TVnDOMElementList::Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) const {
  return static_cast<TVnDOMElement*>(TVnDOMNodeListBase::Find(AName, AOptions));
}

TVnDOMElement* TVnDOMElementList::Find(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) const {
  return static_cast<TVnDOMElement*>(TVnDOMNodeListBase::Find(ANamespaceURI, ALocalName));
}

bool TVnDOMElementList::HoldsKind(const TVnDOMNode& ANode) const { return ANode.GetNodeType() == ntElement; }

TVnDOMElement* TVnDOMElementList::GetItem(const Variant& AIndex) const {
  TVnDOMDocument* doc = GetOwnerDocument();
  return GetItemEx(AIndex, doc ? doc->GetSelectCheckOption() : DefaultSelectCheckOption);
}

TVnDOMElement* TVnDOMElementList::GetItemEx(const Variant& AIndex, TVnDOMSelectCheckOption ACheck) const {
  switch (AIndex.VarType() & varTypeMask) {
    case varSmallint:
    case varInteger:
    case varShortInt:
    case varByte:
    case varWord:
    case varLongWord:
    case varInt64:
    case varUInt64:
      return GetItem(AIndex.AsInteger());
    case varOleStr:
    case varString:
    case varUString:
      return GetItemEx(std::u16string_view(AIndex.AsString()), ACheck);
    default:
      throw EListError(cVnDomInvalidIdx);
  }
}

TVnDOMElement* TVnDOMElementList::GetItemEx(std::u16string_view AName, TVnDOMSelectCheckOption ACheck) const {
  auto* owner = CastObject<TVnDOMElement>(GetOwner());
  if (AName == u".") return owner;
  TVnDOMSelectOptions opts;
  TVnDOMDocument* doc = GetOwnerDocument();
  bool caseSensitive = doc ? doc->GetCaseSensitive() : DefaultXPathCollation != TVnXPathCollationASCIICI::Class();
  opts = opts + TVnDOMSelectOptions{caseSensitive ? soCaseSensitive : soCaseInsensitive};
  if (ACheck == coCreate) opts = opts + TVnDOMSelectOptions{soCreate};
  if (ACheck == coRaise) opts = opts + TVnDOMSelectOptions{soRaise};
  opts = opts + TVnDOMSelectOptions{AName.find(u':') != std::u16string_view::npos ? soQualifiedName : soLocalName};
  TVnDOMElement* result = nullptr;
  if (AName.find(u'/') != std::u16string_view::npos || ACheck == coCreate) {
    // Paths and creation go through the path engine, from the owner element.
    if (!owner) throw EVnDomNotSupported(cVnDomListNeedsOwner);
    result = SelectSingleElement(owner, AName, opts - TVnDOMSelectOptions{soRaise});
  } else {
    result = Find(AName, opts - TVnDOMSelectOptions{soRaise});
  }
  if (!result && ACheck == coRaise) throw EListError(cVnDomNoChildElementNamed, {AName});
  return result;
}

// ---- TVnDOMAttrList ----

bool TVnDOMAttrList::HoldsKind(const TVnDOMNode& ANode) const { return ANode.GetNodeType() == ntAttribute; }

TVnDOMAttribute* TVnDOMAttrList::GetAttribute(Integer AIndex) const {
  return static_cast<TVnDOMAttribute*>(GetItem(AIndex));
}

TVnDOMAttribute* TVnDOMAttrList::Find(std::u16string_view AName, TVnDOMSelectOptions AOptions) const {
  return static_cast<TVnDOMAttribute*>(TVnDOMNodeListBase::Find(AName, AOptions));
}

TVnDOMAttribute* TVnDOMAttrList::Find(std::u16string_view ANamespaceURI, std::u16string_view ALocalName) const {
  return static_cast<TVnDOMAttribute*>(TVnDOMNodeListBase::Find(ANamespaceURI, ALocalName));
}

TVnDOMAttribute* TVnDOMAttrList::FindNamespace(std::u16string_view AURI) const {
  TVnXPathCollationClass coll = GetCollation();
  for (TVnDOMNode* n : *FItems) {
    auto* a = static_cast<TVnDOMAttribute*>(n);
    if (a->IsNamespace() && coll->SameText(a->GetNodeValue(), AURI)) return a;
  }
  return nullptr;
}

// ---- TVnDOMObjectList ----

TVnDOMObject* TVnDOMObjectList::GetItem(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= Count()) throw EListError(cRtlListIndexError, {AIndex});
  return FItems[static_cast<size_t>(AIndex)];
}

void TVnDOMObjectList::Assign(const TVnDOMObjectList& AList) {
  if (&AList == this) return;
  FItems.clear();
  FItems.reserve(AList.FItems.size());
  for (TVnDOMObject* o : AList.FItems) FItems.push_back(o);
}

}  // namespace vn
