// TVnDOMElement: namespace declarations in scope, the element's own namespace link, pending URIs
// across detachment, and what happens when an element joins or leaves a parent.
#include <algorithm>
#include <unordered_map>
#include <vector>

#include "dom/node_extras.h"
#include "dom/ns_scope.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_messages.h"

namespace vn {

namespace {
// Under the default collation a plain ASCII name of another length than "xml:space", or without
// its colon, can't be it: elements whose attributes are all such skip the search.
bool MayHaveXmlSpace(const TVnDOMElement& AElement, const detail::PtrVector<TVnDOMNode>& AAttrs) {
  if (AAttrs.empty()) return false;
  if (AElement.GetCollation() != TVnXPathCollationASCIICI::Class()) return true;
  for (TVnDOMNode* a : AAttrs) {
    std::u16string_view name = a->QualifiedNameView();
    if (name.size() == 9 && name[3] == u':') return true;
    for (char16_t c : name)
      if (c >= 0x80) return true;
  }
  return false;
}

UnicodeString DeclarationName(std::u16string_view APrefix) {
  return APrefix.empty() ? UnicodeString(u"xmlns") : u"xmlns:" + UnicodeString(APrefix);
}
}  // namespace

TVnDOMAttribute* TVnDOMElement::FindScopeDeclaration(std::u16string_view AQName) const {
  return detail::FindByName(FScope, AQName, GetCollation(), detail::NamespaceEpoch(FDOMDocument));
}

TVnDOMAttribute* TVnDOMElement::FindScopeNamespace(std::u16string_view AURI) const {
  return detail::FindByURI(FScope, AURI, GetCollation(), detail::NamespaceEpoch(FDOMDocument));
}

TVnDOMAttribute* TVnDOMElement::FindNamespace(std::u16string_view AURI) const {
  for (const TVnDOMElement* e = this; e; e = CastObject<TVnDOMElement>(e->FParent)) {
    TVnXPathCollationClass coll = e->GetCollation();
    for (TVnDOMNode* n : e->FAttrs) {
      auto* a = static_cast<TVnDOMAttribute*>(n);
      if (a->IsNamespace() && coll->SameText(a->GetNodeValue(), AURI)) return a;
    }
  }
  return nullptr;
}

UnicodeString TVnDOMElement::GetNamespaceURI() const {
  if (FNamespace) return FNamespace->GetNodeValue();
  if (FParent) return {};
  if (detail::NodeExtras* x = ExtrasIfAny()) return x->NamespaceURI;
  return {};
}

void TVnDOMElement::SetPrefix(std::u16string_view AValue) {
  TVnDOMNode::SetPrefix(AValue);
  FNamespace = FindScopeDeclaration(DeclarationName(PrefixView()));
}

void TVnDOMElement::SetNamespaceURI(std::u16string_view AURI) {
  if (!FParent) {
    Extras().NamespaceURI.assign(AURI);
    FNamespaceSet = true;
    return;
  }
  bool wanted;
  if (TVnDOMAttribute* found = FindScopeNamespace(AURI)) {
    bool isDefault = found->PrefixView().empty();
    bool hasPrefix = !PrefixView().empty();
    wanted = isDefault == hasPrefix;
  } else {
    wanted = FNamespaceSet;
  }
  if (!wanted) return;
  UnicodeString uri(AURI);  // AURI may live in the pending value cleared below
  TVnDOMAttribute* decl = AttributeByName(DeclarationName(PrefixView()), {soCreate, soQualifiedName});
  FNamespace = decl;
  decl->SetNodeValue(uri);
  if (detail::NodeExtras* x = ExtrasIfAny()) x->NamespaceURI.clear();
  FNamespaceSet = false;
}

void TVnDOMElement::RefreshNamespacesSelf() {
  detail::NsScope* previous = FScope;
  FScope = nullptr;
  // a scope the pool holds is not ours to release; the one made here is
  const bool previousHeld = FScopeHeld;
  FScopeHeld = false;
  TVnDOMNode* parent = ParentNode();
  if (!parent) {
    if (!previousHeld) detail::Release(previous);
    if (FNamespace && FAttrs.IndexOf(FNamespace) < 0) FNamespace = nullptr;
    return;
  }
  bool declares = false;
  for (TVnDOMNode* n : FAttrs)
    if (static_cast<TVnDOMAttribute*>(n)->IsNamespace()) {
      declares = true;
      break;
    }
  // Nothing declared here and nothing in force above (most documents): no scope, no namespace.
  if (!previous && !declares) {
    auto* pe = parent->GetNodeType() == ntElement ? static_cast<TVnDOMElement*>(parent) : nullptr;
    if (!pe || (!pe->FScope && !pe->FNamespace)) {
      FNamespace = nullptr;
      return;
    }
  }
  TVnXPathCollationClass coll = GetCollation();
  bool setAgain = true;
  TVnDOMAttribute* old = FNamespace;
  FNamespace = nullptr;
  detail::NsScope* base = nullptr;
  if (parent->GetNodeType() == ntElement) {
    auto* pe = static_cast<TVnDOMElement*>(parent);
    base = pe->FScope;
    FScope = detail::Retain(base);
    std::u16string_view prefix = PrefixView(), parentPrefix = pe->PrefixView();
    if ((prefix.empty() && parentPrefix.empty()) || coll->SameText(prefix, parentPrefix)) {
      FNamespace = pe->FNamespace;
      setAgain = false;
      detail::NodeExtras* x = ExtrasIfAny();
      bool pendingEmpty = !x || x->NamespaceURI.empty();
      if (PrefixView().empty() && pendingEmpty && FNamespace) {
        FNamespace = nullptr;
        SetNamespaceURI(u"");
      }
    }
  }
  if (!previousHeld) detail::Release(previous);

  // Own declarations: each replaces an entry of the same name, whether inherited or own.
  if (declares) {
    std::vector<TVnDOMAttribute*> own, hidden;
    std::unordered_map<std::string, size_t> ownByName;  // only filled for elements with many declarations
    bool useMap = FAttrs.size() > 16;
    for (TVnDOMNode* n : FAttrs) {
      auto* a = static_cast<TVnDOMAttribute*>(n);
      if (!a->IsNamespace()) continue;
      if (a == old) {
        FNamespace = a;
        FNamespaceSet = true;
        Extras().NamespaceURI = a->GetNodeValue();
      }
      TVnDOMAttribute* dup = nullptr;
      std::string key;
      if (useMap) {
        key = coll->SortKey(a->QualifiedNameView());
        if (auto it = ownByName.find(key); it != ownByName.end() && own[it->second]) {
          dup = own[it->second];
          own[it->second] = nullptr;
        }
      } else {
        for (size_t i = own.size(); i-- > 0;)
          if (own[i] && coll->SameText(own[i]->QualifiedNameView(), a->QualifiedNameView())) {
            dup = own[i];
            own[i] = nullptr;
            break;
          }
      }
      if (!dup) {
        dup = detail::FindByName(base, a->QualifiedNameView(), coll, detail::NamespaceEpoch(FDOMDocument));
        if (dup && std::find(hidden.begin(), hidden.end(), dup) == hidden.end())
          hidden.push_back(dup);
        else
          dup = nullptr;
      }
      if (dup && dup == FNamespace) {
        FNamespace = nullptr;
        setAgain = true;
      }
      if (useMap) ownByName[key] = own.size();
      own.push_back(a);
    }
    std::erase(own, nullptr);
    if (!own.empty() || !hidden.empty()) {
      auto* scope = new detail::NsScope();
      scope->Parent = base ? detail::Retain(base) : nullptr;
      scope->Count = (base ? base->Count : 0) - hidden.size() + own.size();
      scope->Own = std::move(own);
      scope->Hidden = std::move(hidden);
      detail::Release(FScope);
      FScope = scope;
    }
  }
  if (setAgain) FNamespace = FindScopeDeclaration(DeclarationName(PrefixView()));
}

void TVnDOMElement::InheritPreserveSpace(const TVnDOMElement* AParentElement) {
  if (TVnDOMNode* space = MayHaveXmlSpace(*this, FAttrs) ? detail::FindInItems(FAttrs, *this, u"xml:space", {soQualifiedName})
                                                           : nullptr) {
    FPreserveSpace = SameText(static_cast<TVnDOMAttribute*>(space)->GetStoredValue(), u"preserve");
    _SetPreseveSpace(FPreserveSpace);
  } else {
    bool wanted = AParentElement ? AParentElement->FPreserveSpace : DefaultPreserveCase;
    if (wanted != FPreserveSpace) _SetPreseveSpace(wanted);
  }
}

void TVnDOMElement::SetParentNode(TVnDOMObject* AParent) {
  TVnDOMObject* old = FParent;
  bool hadNamespace = FNamespace != nullptr;
  if (!FDestroying) {
    if (FNamespace) {
      Extras().NamespaceURI = FNamespace->GetNodeValue();
      FNamespaceSet = true;
    } else if (old && !AParent) {
      UnicodeString uri = GetNamespaceURI();
      Extras().NamespaceURI = std::move(uri);
      FNamespaceSet = true;
    }
  }
  TVnDOMNode::SetParentNode(AParent);
  if (FDestroying) return;
  InheritPreserveSpace(CastObject<TVnDOMElement>(AParent));
  detail::NodeExtras* x = ExtrasIfAny();
  if ((!old || hadNamespace) && AParent && x && !x->NamespaceURI.empty()) {
    UnicodeString uri = x->NamespaceURI;
    SetNamespaceURI(uri);
  }
}

}  // namespace vn
