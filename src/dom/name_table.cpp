// Shared name records and the per-document table that interns them.
#include "dom/name_table.h"

#include <random>

namespace vn::detail {

namespace {
const char kSeedAnchor = 0;

// Names are short: a word at a time, without a call.
bool SameUnits(const char16_t* A, const char16_t* B, size_t AUnits) noexcept {
  for (; AUnits >= 4; A += 4, B += 4, AUnits -= 4) {
    uint64_t a, b;
    std::memcpy(&a, A, sizeof a);
    std::memcpy(&b, B, sizeof b);
    if (a != b) return false;
  }
  for (; AUnits; ++A, ++B, --AUnits)
    if (*A != *B) return false;
  return true;
}  // its address varies between runs (ASLR)
}  // namespace

uint32_t HashName(std::u16string_view AName) noexcept {
  // Four units per step: names are short, and a load hashes every one it meets.
  const char16_t* p = AName.data();
  size_t n = AName.size();
  // Seeded per process, so that a document cannot be made of names that collide on purpose.
  static const uint64_t seed = [] {
    try {
      std::random_device device;
      return (uint64_t(device()) << 32) ^ device();
    } catch (...) {
      return uint64_t(reinterpret_cast<uintptr_t>(&kSeedAnchor));
    }
  }();
  uint64_t h = (0x9E3779B97F4A7C15ull ^ seed) ^ n;
  for (; n >= 4; p += 4, n -= 4) {
    uint64_t w;
    std::memcpy(&w, p, sizeof w);
    h = (h ^ w) * 0xBF58476D1CE4E5B9ull;
    h ^= h >> 29;
  }
  uint64_t w = 0;
  if (n) std::memcpy(&w, p, n * sizeof(char16_t));
  h = (h ^ w) * 0x94D049BB133111EBull;
  return static_cast<uint32_t>(h ^ (h >> 32));
}

NameRec* NewNameRec(std::u16string_view AName, uint32_t AHash) {
  void* p = std::malloc(sizeof(NameRec) + AName.size() * sizeof(char16_t));
  if (!p) throw std::bad_alloc();
  auto* rec = static_cast<NameRec*>(p);
  auto* chars = reinterpret_cast<char16_t*>(rec + 1);
  if (!AName.empty()) std::memcpy(chars, AName.data(), AName.size() * sizeof(char16_t));
  size_t colon = AName.find(u':');
  rec->Refs = 1;
  rec->Length = static_cast<uint32_t>(AName.size());
  rec->Colon = colon == std::u16string_view::npos ? NameRec::kNoColon : static_cast<uint32_t>(colon);
  rec->Hash = AHash;
  rec->Owner = nullptr;
  rec->Chars = chars;
  rec->Holder = nullptr;
  return rec;
}

NameTable::~NameTable() {
  for (NameRec* rec : FSlots) {
    if (!rec) continue;
    if (rec->Refs == 1) {
      std::free(rec);
    } else {
      // nodes that outlive the document keep the record as their own
      --rec->Refs;
      rec->Owner = nullptr;
    }
  }
}

void NameTable::GrowSlots() {
  std::vector<NameRec*> slots(FSlots.empty() ? 64 : FSlots.size() * 2, nullptr);
  size_t mask = slots.size() - 1;
  for (NameRec* rec : FSlots) {
    if (!rec) continue;
    size_t i = rec->Hash & mask;
    while (slots[i]) i = (i + 1) & mask;
    slots[i] = rec;
  }
  FSlots.swap(slots);
}

NameRec* NameTable::Acquire(std::u16string_view AName) {
  NameRec** recent = nullptr;
  if (!AName.empty()) {
    recent = &FRecent[RecentSlot(AName)];
    // the table holds a count on each of its records, so a remembered one is still alive
    if (NameRec* rec = *recent; rec && rec->Length == AName.size() && SameUnits(rec->Chars, AName.data(), AName.size())) {
      ++rec->Refs;
      return rec;
    }
  }
  if ((FCount + 1) * 2 > FSlots.size()) GrowSlots();
  uint32_t hash = HashName(AName);
  size_t mask = FSlots.size() - 1;
  size_t i = hash & mask;
  while (NameRec* rec = FSlots[i]) {
    if (rec->Hash == hash && std::u16string_view(rec->Chars, rec->Length) == AName) {
      ++rec->Refs;
      if (recent) *recent = rec;
      return rec;
    }
    i = (i + 1) & mask;
  }
  NameRec* rec = NewNameRec(AName, hash);
  rec->Owner = this;
  rec->Refs = 2;  // the table's and the caller's
  FSlots[i] = rec;
  ++FCount;
  if (recent) *recent = rec;
  return rec;
}

// ---- NameRef ----

void NameRef::Release(NameRec* ARec) noexcept {
  if (!ARec || ARec->Refs == NameRec::kStatic) return;
  if (--ARec->Refs == 0) std::free(ARec);
}

void NameRef::Set(std::u16string_view AName, NameTable* ATable) {
  if (!AName.empty() && AName[0] == u':') AName.remove_prefix(1);  // an empty prefix is no prefix
  if (const NameRec* r = Rec(); r && Qualified() == AName && (!ATable || r->Owner == ATable)) return;
  NameRec* rec = ATable ? ATable->Acquire(AName) : NewNameRec(AName, HashName(AName));
  Take(rec);
}

void NameRef::SetHeld(std::u16string_view AName, NameTable& ATable, NodePool& APool) {
  if (!AName.empty() && AName[0] == u':') AName.remove_prefix(1);
  NameRec* rec = ATable.Acquire(AName);
  APool.HoldName(rec);
  Take(rec);
  FBits |= kHeld;
}

void NameRef::SetParts(std::u16string_view APrefix, std::u16string_view ALocal, NameTable* ATable) {
  if (APrefix.empty()) return Set(ALocal, ATable);
  std::u16string s;
  s.reserve(APrefix.size() + 1 + ALocal.size());
  s.append(APrefix).append(1, u':').append(ALocal);
  Set(s, ATable);
}

void NameRef::SetPrefix(std::u16string_view APrefix, NameTable* ATable) {
  std::u16string local(Local());
  SetParts(APrefix, local, ATable);
}

void NameRef::SetStatic(const NameRec& ARec) noexcept { Take(const_cast<NameRec*>(&ARec)); }

void NameRef::Rehome(NameTable* ATable) {
  const NameRec* r = Rec();
  if (!r || r->Refs == NameRec::kStatic || r->Owner == ATable) return;
  // leaving a document: the record stays valid on its own count, or on its pool's, which
  // lasts as long as the node
  if (!ATable) return;
  NameRec* rec = ATable->Acquire(Qualified());
  Take(rec);
}

}  // namespace vn::detail
