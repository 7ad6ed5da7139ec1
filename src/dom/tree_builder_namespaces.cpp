// TreeBuilder: the namespaces of loaded elements, worked out from stacks of the declarations
// in force, so that a load costs the same per declaration at any depth.
#include <algorithm>

#include "dom/node_extras.h"
#include "dom/ns_scope.h"
#include "dom/tree_builder.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/dom_document.h"

namespace vn::detail {

namespace {

// The reader matches prefixes as SameText does: A-Z folded, nothing else.
std::u16string FoldedPrefix(std::u16string_view APrefix) {
  std::u16string key(APrefix);
  for (char16_t& c : key)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
  return key;
}

// The prefix a declaration binds, as the reader reads it: "xmlns" binds the empty one.
std::u16string_view DeclaredPrefix(const TVnDOMAttribute* AAttr) {
  return AAttr->PrefixView().empty() ? std::u16string_view() : AAttr->LocalNameView();
}

bool HasEmptyURI(const TVnDOMAttribute* AAttr) {
  const UnicodeString stored = AAttr->GetStoredValue();
  if (stored.find(u'&') == std::u16string_view::npos) return stored.empty();
  return AAttr->GetNodeValue().empty();
}

bool DecodedEquals(const TVnDOMAttribute* AAttr, std::u16string_view AURI) {
  const UnicodeString stored = AAttr->GetStoredValue();
  if (stored.find(u'&') == std::u16string_view::npos) return stored == AURI;
  return AAttr->GetNodeValue() == AURI;
}

// "xmlns" or "xmlns:" and the prefix, on the stack for the usual short prefixes.
class DeclarationName {
 public:
  explicit DeclarationName(std::u16string_view APrefix) {
    if (APrefix.empty()) {
      FView = u"xmlns";
    } else if (APrefix.size() + 6 <= std::size(FBuffer)) {
      std::char_traits<char16_t>::copy(FBuffer, u"xmlns:", 6);
      std::char_traits<char16_t>::copy(FBuffer + 6, APrefix.data(), APrefix.size());
      FView = std::u16string_view(FBuffer, APrefix.size() + 6);
    } else {
      FLong = u"xmlns:" + UnicodeString(APrefix);
      FView = FLong;
    }
  }
  operator std::u16string_view() const { return FView; }

 private:
  char16_t FBuffer[64];
  UnicodeString FLong;
  std::u16string_view FView;
};

}  // namespace

void TreeBuilder::ResolveNamespaces(TVnDOMNode* AParent, TVnDOMElement* AElement) {
  auto* pe = AParent->FNodeType == ntElement ? static_cast<TVnDOMElement*>(AParent) : nullptr;
  const bool declares = !FDeclaredURIs.empty();
  // Nothing declared here and nothing in force above (most documents): no scope, no namespace.
  if (!declares && (!pe || (!pe->FScope && !pe->FNamespace))) return;

  TVnXPathCollationClass coll = FDocument->GetCollation();
  const std::u16string_view prefix = AElement->PrefixView();

  // The reader resolves the element's prefix after its attributes; the declaration among them
  // that gives that URI is the element's own (the last one, as each replaces the one before).
  TVnDOMAttribute* old = nullptr;
  if (declares) {
    size_t i = 0;
    for (TVnDOMNode* n : AElement->FAttrs) {
      auto* a = static_cast<TVnDOMAttribute*>(n);
      if (!a->IsNamespace()) continue;
      auto& stack = FByPrefix[FoldedPrefix(DeclaredPrefix(a))];
      // The reader reports a declaration's value as it stands; URIs are compared decoded, so
      // a declaration written with references is its element's own as one without them is.
      UnicodeString& read = FDeclaredURIs[i++];
      stack.push_back(read.find(u'&') == read.npos ? std::move(read) : a->GetNodeValue());
      FPushed.push_back({nullptr, &stack});
    }
    auto it = FByPrefix.find(FoldedPrefix(prefix));
    std::u16string_view uri;
    if (it != FByPrefix.end() && !it->second.empty()) uri = it->second.back();
    for (TVnDOMNode* n : AElement->FAttrs) {
      auto* a = static_cast<TVnDOMAttribute*>(n);
      if (a->IsNamespace() && DecodedEquals(a, uri)) old = a;
    }
    FDeclaredURIs.clear();
  }

  TVnDOMAttribute* ns = nullptr;
  bool setAgain = true;
  NsScope* base = pe ? pe->FScope : nullptr;
  if (pe && ((prefix.empty() && pe->PrefixView().empty()) || coll->SameText(prefix, pe->PrefixView()))) {
    ns = pe->FNamespace;
    setAgain = false;
    // An unprefixed child doesn't inherit its parent's default namespace; it keeps the empty
    // URI, declared as such only where a declaration of "" by another name would hide it.
    if (prefix.empty() && ns && (!old || HasEmptyURI(old))) {
      ns = nullptr;
      TVnDOMAttribute* found = FirstEmptyDeclaration();
      if (found ? !found->PrefixView().empty() : old != nullptr) ns = EmptyDefaultDeclaration(AElement);
    }
  }

  // Own declarations: each replaces an entry of the same name, whether inherited or own.
  std::vector<TVnDOMAttribute*> own, hidden;
  if (declares || ns) {
    std::unordered_map<std::string, size_t> ownByName;  // only for elements with many declarations
    const bool useMap = AElement->FAttrs.size() > 16;
    for (TVnDOMNode* n : AElement->FAttrs) {
      auto* a = static_cast<TVnDOMAttribute*>(n);
      if (!a->IsNamespace()) continue;
      if (a == old) {
        // Kept as the pending URI too: a later refresh tells by it that the element has one.
        ns = a;
        AElement->FNamespaceSet = true;
        AElement->Extras().NamespaceURI = a->GetNodeValue();
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
        dup = DeclarationInScope(a->QualifiedNameView());
        if (dup && std::find(hidden.begin(), hidden.end(), dup) == hidden.end())
          hidden.push_back(dup);
        else
          dup = nullptr;
      }
      if (dup && dup == ns) {
        ns = nullptr;
        setAgain = true;
      }
      if (useMap) ownByName[key] = own.size();
      own.push_back(a);
    }
    std::erase(own, nullptr);
  }
  // Every element of the load leaves its scope to the pool, which keeps one count on each
  // scope made here and on the target's; the elements count nothing.
  if (!own.empty() || !hidden.empty()) {
    auto* scope = new NsScope();
    scope->Parent = Retain(base);
    scope->Count = (base ? base->Count : 0) - hidden.size() + own.size();
    FPool->HoldScope(scope);
    AElement->FScope = scope;
    AElement->FScopeHeld = true;
    for (TVnDOMAttribute* a : own) PushDeclaration(a);
    scope->Own = std::move(own);
    scope->Hidden = std::move(hidden);
  } else if (base) {
    if (AParent == FTarget) FPool->HoldScope(Retain(base));
    AElement->FScope = base;
    AElement->FScopeHeld = true;
  } else {
    AElement->FScope = nullptr;
  }
  if (!AElement->FScope) {
    AElement->FNamespace = nullptr;
    return;
  }
  if (setAgain) ns = DeclarationForPrefix(prefix);
  AElement->FNamespace = ns;
  for (TVnDOMNode* n : AElement->FAttrs) {
    auto* a = static_cast<TVnDOMAttribute*>(n);
    a->FNamespace = DeclarationForPrefix(a->PrefixView());
  }
}

TVnDOMAttribute* TreeBuilder::DeclarationForPrefix(std::u16string_view APrefix) {
  // Most names have no prefix: their answer holds until a declaration comes or goes. Prefixed
  // names of a load come from its shared name records, so a prefix asked for again mostly comes
  // at the same address: its answer holds as long.
  if (!APrefix.empty()) {
    if (FPrefixHit.Generation != FGeneration || FPrefixHit.Data != APrefix.data() ||
        FPrefixHit.Size != APrefix.size())
      FPrefixHit = {FGeneration, APrefix.data(), APrefix.size(), DeclarationInScope(DeclarationName(APrefix))};
    return FPrefixHit.Found;
  }
  if (FDefaultGeneration != FGeneration) {
    FDefault = DeclarationInScope(u"xmlns");
    FDefaultGeneration = FGeneration;
  }
  return FDefault;
}

TVnDOMAttribute* TreeBuilder::DeclarationInScope(std::u16string_view AQName) {
  // Most lookups ask for the same few names while nothing is declared or undeclared.
  for (const Hit& hit : FHits)
    if (hit.Generation == FGeneration && hit.Name == AQName) return hit.Found;
  TVnXPathCollationClass coll = FDocument->GetCollation();
  TVnDOMAttribute* found = nullptr;
  auto it = FByName.find(coll->SortKey(AQName));
  if (it != FByName.end() && !it->second.empty())
    found = it->second.back().Attr;
  else if (FTargetScope)
    found = FindByName(FTargetScope, AQName, coll, NamespaceEpoch(FDocument));
  Hit& slot = FHits[FNextHit];
  FNextHit = static_cast<uint8_t>((FNextHit + 1) % std::size(FHits));
  slot = {FGeneration, std::u16string(AQName), found};
  return found;
}

TVnDOMAttribute* TreeBuilder::FirstEmptyDeclaration() {
  TVnXPathCollationClass coll = FDocument->GetCollation();
  // The target's entries come first, unless the load redeclares their name.
  if (!FTargetEmptyKnown) {
    FTargetEmptyKnown = true;
    std::vector<TVnDOMAttribute*> all;
    Flatten(FTargetScope, all);
    for (TVnDOMAttribute* a : all)
      if (HasEmptyURI(a)) FTargetEmpty.push_back(a);
  }
  for (TVnDOMAttribute* a : FTargetEmpty) {
    auto it = FByName.find(coll->SortKey(a->QualifiedNameView()));
    if (it == FByName.end() || it->second.empty()) return a;
  }
  return FVisibleEmpty.empty() ? nullptr : FVisibleEmpty.begin()->second;
}

TVnDOMAttribute* TreeBuilder::EmptyDefaultDeclaration(TVnDOMElement* AElement) {
  TVnDOMAttribute* decl = nullptr;
  for (TVnDOMNode* n : AElement->FAttrs)
    if (AElement->GetCollation()->SameText(n->QualifiedNameView(), u"xmlns")) decl = static_cast<TVnDOMAttribute*>(n);
  if (!decl) {
    decl = MakeAttribute();
    decl->FParent = AElement;
    SetName(decl, u"xmlns");
    AElement->FAttrs.reserve(AElement->FAttrs.size() + 1, FPool);
    AElement->FAttrs.append_reserved(reinterpret_cast<TVnDOMNode* const*>(&decl), 1);
  }
  if (!decl->FNodeValue.empty()) decl->FNodeValue.AssignIn(*FPool, u"");
  return decl;
}

void TreeBuilder::PushDeclaration(TVnDOMAttribute* AAttr) {
  auto& stack = FByName[FDocument->GetCollation()->SortKey(AAttr->QualifiedNameView())];
  if (!stack.empty() && stack.back().Empty) FVisibleEmpty.erase(stack.back().Seq);
  const bool empty = HasEmptyURI(AAttr);
  stack.push_back({AAttr, ++FSeq, empty});
  if (empty) FVisibleEmpty.emplace(FSeq, AAttr);
  FPushed.push_back({&stack, nullptr});
  ++FGeneration;
}

void TreeBuilder::PopDeclarations(uint32_t AMark) {
  if (FPushed.size() == AMark) return;
  while (FPushed.size() > AMark) {
    Pushed p = FPushed.back();
    FPushed.pop_back();
    if (p.ByPrefix) {
      p.ByPrefix->pop_back();
      continue;
    }
    if (p.ByName->back().Empty) FVisibleEmpty.erase(p.ByName->back().Seq);
    p.ByName->pop_back();
    if (!p.ByName->empty() && p.ByName->back().Empty) FVisibleEmpty.emplace(p.ByName->back().Seq, p.ByName->back().Attr);
  }
  ++FGeneration;
}

}  // namespace vn::detail
