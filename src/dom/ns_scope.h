// The namespace declarations in scope at an element, shared between parent and children.
// A scope is the parent's scope (minus the entries this element redeclares) followed by the
// element's own declarations; an element that declares nothing shares its parent's scope, so
// a wide tree under a root with many declarations costs nothing per child.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vnxml/dom_names.h"

namespace vn {
class TVnDOMAttribute;
}

namespace vn::detail {

/// A value never handed out before: epochs of different documents never meet, so a cache
/// made in one tree can't pass for valid in another.
uint64_t NextNamespaceEpoch() noexcept;

struct NsScope {
  int32_t Refs = 1;
  NsScope* Parent = nullptr;               // counted; nil at the top
  std::vector<TVnDOMAttribute*> Own;       // appended entries, in order
  std::vector<TVnDOMAttribute*> Hidden;    // entries of the parent chain redeclared here
  size_t Count = 0;                        // entries in the whole scope

  struct Index {
    uint64_t Epoch;
    TVnXPathCollationClass Collation;
    std::unordered_map<std::string, TVnDOMAttribute*> ByName;  // last entry of each name
    std::unordered_map<std::string, TVnDOMAttribute*> ByURI;   // first entry of each URI
  };
  mutable std::unique_ptr<Index> Lookup;

  // The last names looked up here and what they found: the elements and attributes of a tree
  // ask their scope for the same few declarations ("xmlns", "xmlns:" and a prefix) again and again.
  struct NameHit {
    uint64_t Epoch = UINT64_MAX;  // never a real epoch: the entry is empty
    TVnXPathCollationClass Collation = nullptr;
    std::u16string Name;
    TVnDOMAttribute* Found = nullptr;
  };
  static constexpr size_t kNameHits = 4;
  mutable NameHit NameHits[kNameHits];
  mutable uint8_t NextNameHit = 0;
};

NsScope* Retain(NsScope* AScope) noexcept;
/// Drops one count, freeing scopes up the chain while their counts reach 0 (no recursion).
void Release(NsScope* AScope) noexcept;
/// All entries in order: parent's first (minus hidden ones), then own.
void Flatten(const NsScope* AScope, std::vector<TVnDOMAttribute*>& AOut);
/// The last entry whose qualified name equals AQName under ACollation; AEpoch is the tree's
/// NamespaceEpoch, against which answers are cached.
TVnDOMAttribute* FindByName(const NsScope* AScope, std::u16string_view AQName, TVnXPathCollationClass ACollation,
                            uint64_t AEpoch);
/// The first entry whose decoded value equals AURI under ACollation.
TVnDOMAttribute* FindByURI(const NsScope* AScope, std::u16string_view AURI, TVnXPathCollationClass ACollation,
                           uint64_t AEpoch);

}  // namespace vn::detail
