// Namespace scopes: chains of shared declaration lists, with hash indexes for large ones.
#include "dom/ns_scope.h"

#include <algorithm>
#include <iterator>

#include "vnxml/dom_document.h"
#include "vnxml/dom_leaves.h"

namespace vn::detail {

namespace {
std::atomic<uint64_t> gEpochSource{0};
// Nodes outside any document: few, and their caches are rarely asked.
std::atomic<uint64_t> gDetachedEpoch{gEpochSource.fetch_add(1) + 1};
}  // namespace

uint64_t NextNamespaceEpoch() noexcept { return gEpochSource.fetch_add(1, std::memory_order_relaxed) + 1; }

uint64_t NamespaceEpoch(const TVnDOMDocument* ADocument) noexcept {
  return ADocument ? ADocument->FNamespaceEpoch : gDetachedEpoch.load(std::memory_order_relaxed);
}

void NamespacesChanged(TVnDOMDocument* ADocument) noexcept {
  if (ADocument)
    ADocument->FNamespaceEpoch = NextNamespaceEpoch();
  else
    gDetachedEpoch.store(NextNamespaceEpoch(), std::memory_order_relaxed);
}

namespace {
// Below this many entries a plain scan beats building an index.
constexpr size_t kIndexThreshold = 24;

bool IsHidden(const std::vector<const NsScope*>& AChain, size_t AFrom, const TVnDOMAttribute* AAttr) {
  for (size_t i = 0; i < AFrom; ++i) {
    const auto& h = AChain[i]->Hidden;
    if (!h.empty() && std::find(h.begin(), h.end(), AAttr) != h.end()) return true;
  }
  return false;
}

void Chain(const NsScope* AScope, std::vector<const NsScope*>& AOut) {
  for (const NsScope* s = AScope; s; s = s->Parent) AOut.push_back(s);
}

const NsScope::Index& IndexOf(const NsScope* AScope, TVnXPathCollationClass ACollation, uint64_t epoch) {
  auto& idx = AScope->Lookup;
  if (idx && idx->Epoch == epoch && idx->Collation == ACollation) return *idx;
  auto fresh = std::make_unique<NsScope::Index>();
  fresh->Epoch = epoch;
  fresh->Collation = ACollation;
  std::vector<TVnDOMAttribute*> all;
  Flatten(AScope, all);
  for (TVnDOMAttribute* a : all) {
    fresh->ByName[ACollation->SortKey(a->QualifiedNameView())] = a;
    fresh->ByURI.emplace(ACollation->SortKey(a->GetNodeValue()), a);
  }
  idx = std::move(fresh);
  return *idx;
}
}  // namespace

NsScope* Retain(NsScope* AScope) noexcept {
  if (AScope) ++AScope->Refs;
  return AScope;
}

void Release(NsScope* AScope) noexcept {
  while (AScope && --AScope->Refs == 0) {
    NsScope* parent = AScope->Parent;
    delete AScope;
    AScope = parent;
  }
}

void Flatten(const NsScope* AScope, std::vector<TVnDOMAttribute*>& AOut) {
  std::vector<const NsScope*> chain;
  Chain(AScope, chain);
  for (size_t i = chain.size(); i-- > 0;)
    for (TVnDOMAttribute* a : chain[i]->Own)
      if (!IsHidden(chain, i, a)) AOut.push_back(a);
}

namespace {
// Is AAttr redeclared (hidden) by one of the scopes from AFrom up to, not including, AUpTo?
bool HiddenBetween(const NsScope* AFrom, const NsScope* AUpTo, const TVnDOMAttribute* AAttr) {
  for (const NsScope* s = AFrom; s != AUpTo; s = s->Parent) {
    const auto& h = s->Hidden;
    if (!h.empty() && std::find(h.begin(), h.end(), AAttr) != h.end()) return true;
  }
  return false;
}

// The decoded value of AAttr equals AURI under ACollation; values without references are
// compared as they are stored.
bool ValueIs(const TVnDOMAttribute* AAttr, std::u16string_view AURI, TVnXPathCollationClass ACollation) {
  const UnicodeString stored = AAttr->GetStoredValue();
  if (stored.find(u'&') == std::u16string_view::npos) return ACollation->SameText(stored, AURI);
  return ACollation->SameText(AAttr->GetNodeValue(), AURI);
}
}  // namespace

namespace {
TVnDOMAttribute* SearchByName(const NsScope* AScope, std::u16string_view AQName, TVnXPathCollationClass ACollation,
                              uint64_t AEpoch) {
  if (AScope->Count > kIndexThreshold) {
    const auto& idx = IndexOf(AScope, ACollation, AEpoch);
    auto it = idx.ByName.find(ACollation->SortKey(AQName));
    return it == idx.ByName.end() ? nullptr : it->second;
  }
  for (const NsScope* s = AScope; s; s = s->Parent) {
    const auto& own = s->Own;
    for (size_t j = own.size(); j-- > 0;)
      if (ACollation->SameText(own[j]->QualifiedNameView(), AQName) && !HiddenBetween(AScope, s, own[j]))
        return own[j];
  }
  return nullptr;
}
}  // namespace

TVnDOMAttribute* FindByName(const NsScope* AScope, std::u16string_view AQName, TVnXPathCollationClass ACollation,
                            uint64_t epoch) {
  if (!AScope) return nullptr;
  for (const NsScope::NameHit& hit : AScope->NameHits)
    if (hit.Epoch == epoch && hit.Collation == ACollation && hit.Name == AQName) return hit.Found;
  TVnDOMAttribute* found = SearchByName(AScope, AQName, ACollation, epoch);
  NsScope::NameHit& slot = AScope->NameHits[AScope->NextNameHit];
  AScope->NextNameHit = static_cast<uint8_t>((AScope->NextNameHit + 1) % NsScope::kNameHits);
  slot.Epoch = epoch;
  slot.Collation = ACollation;
  slot.Name.assign(AQName);
  slot.Found = found;
  return found;
}

TVnDOMAttribute* FindByURI(const NsScope* AScope, std::u16string_view AURI, TVnXPathCollationClass ACollation,
                           uint64_t AEpoch) {
  if (!AScope) return nullptr;
  if (AScope->Count > kIndexThreshold) {
    const auto& idx = IndexOf(AScope, ACollation, AEpoch);
    auto it = idx.ByURI.find(ACollation->SortKey(AURI));
    return it == idx.ByURI.end() ? nullptr : it->second;
  }
  // Small scopes hold few entries in a short chain: walk it top down without a copy.
  const NsScope* chain[16];
  size_t depth = 0;
  for (const NsScope* s = AScope; s; s = s->Parent) {
    if (depth == std::size(chain)) {
      std::vector<TVnDOMAttribute*> all;
      Flatten(AScope, all);
      for (TVnDOMAttribute* a : all)
        if (ValueIs(a, AURI, ACollation)) return a;
      return nullptr;
    }
    chain[depth++] = s;
  }
  for (size_t i = depth; i-- > 0;)
    for (TVnDOMAttribute* a : chain[i]->Own)
      if (ValueIs(a, AURI, ACollation) && !HiddenBetween(AScope, chain[i], a)) return a;
  return nullptr;
}

}  // namespace vn::detail
