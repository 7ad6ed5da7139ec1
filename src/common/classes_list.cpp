// TList (untyped pointers) and TObjectList (objects, optionally owned).
#include <algorithm>

#include "vnxml/common/classes.h"
#include "vnxml/common/rtl_messages.h"

namespace vn {

// ---- TList ----

TList::~TList() { Clear(); }

void TList::Error(const char16_t* AMessage, Int64 AData) { throw EListError(AMessage, {AData}); }

void TList::CheckIndex(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= GetCount()) Error(cRtlListIndexError, AIndex);
}

void TList::Notify(void*, TListNotification) {}

Integer TList::Add(void* AItem) {
  FItems.push_back(AItem);
  if (AItem) Notify(AItem, lnAdded);
  return GetCount() - 1;
}

void TList::Insert(Integer AIndex, void* AItem) {
  if (AIndex < 0 || AIndex > GetCount()) Error(cRtlListIndexError, AIndex);
  FItems.insert(FItems.begin() + AIndex, AItem);
  if (AItem) Notify(AItem, lnAdded);
}

void TList::Delete(Integer AIndex) {
  CheckIndex(AIndex);
  void* item = FItems[static_cast<size_t>(AIndex)];
  FItems.erase(FItems.begin() + AIndex);
  if (item) Notify(item, lnDeleted);
}

Integer TList::Remove(void* AItem) {
  const Integer index = IndexOf(AItem);
  if (index >= 0) Delete(index);
  return index;
}

void* TList::Extract(void* AItem) {
  const Integer index = IndexOf(AItem);
  if (index < 0) return nullptr;
  FItems.erase(FItems.begin() + index);
  Notify(AItem, lnExtracted);
  return AItem;
}

Integer TList::IndexOf(const void* AItem) const {
  auto it = std::find(FItems.begin(), FItems.end(), AItem);
  return it == FItems.end() ? -1 : static_cast<Integer>(it - FItems.begin());
}

void TList::Clear() {
  SetCount(0);
  FItems.shrink_to_fit();
}

void TList::Exchange(Integer AIndex1, Integer AIndex2) {
  CheckIndex(AIndex1);
  CheckIndex(AIndex2);
  std::swap(FItems[static_cast<size_t>(AIndex1)], FItems[static_cast<size_t>(AIndex2)]);
}

void TList::Move(Integer ACurIndex, Integer ANewIndex) {
  if (ACurIndex == ANewIndex) return;
  CheckIndex(ACurIndex);
  CheckIndex(ANewIndex);
  // A move is no deletion: no notification.
  void* item = FItems[static_cast<size_t>(ACurIndex)];
  FItems.erase(FItems.begin() + ACurIndex);
  FItems.insert(FItems.begin() + ANewIndex, item);
}

void TList::Pack() { std::erase(FItems, nullptr); }

void TList::Sort(TListSortCompare ACompare) {
  if (!ACompare) return;
  std::stable_sort(FItems.begin(), FItems.end(), [&](void* a, void* b) { return ACompare(a, b) < 0; });
}

void TList::SetCount(Integer ANewCount) {
  if (ANewCount < 0) Error(cRtlListCountError, ANewCount);
  if (ANewCount >= GetCount()) {
    FItems.resize(static_cast<size_t>(ANewCount), nullptr);
    return;
  }
  // Deleting from the end tells each item's removal, last first.
  for (Integer i = GetCount() - 1; i >= ANewCount; --i) Delete(i);
}

void TList::SetCapacity(Integer ANewCapacity) {
  if (ANewCapacity < GetCount()) Error(cRtlListCapacityError, ANewCapacity);
  if (static_cast<size_t>(ANewCapacity) > FItems.capacity())
    FItems.reserve(static_cast<size_t>(ANewCapacity));
  else
    FItems.shrink_to_fit();
}

void* TList::GetItem(Integer AIndex) const {
  CheckIndex(AIndex);
  return FItems[static_cast<size_t>(AIndex)];
}

void TList::SetItem(Integer AIndex, void* AItem) {
  CheckIndex(AIndex);
  void*& slot = FItems[static_cast<size_t>(AIndex)];
  if (slot == AItem) return;
  void* old = slot;
  slot = AItem;
  if (old) Notify(old, lnDeleted);
  if (AItem) Notify(AItem, lnAdded);
}

// ---- TObjectList ----

TObjectList::~TObjectList() { Clear(); }  // here, while Notify still frees owned items

void TObjectList::Notify(void* AItem, TListNotification AAction) {
  if (AAction == lnDeleted && FOwnsObjects) delete static_cast<TObject*>(AItem);
  TList::Notify(AItem, AAction);
}

Integer TObjectList::FindInstanceOf(TClass AClass, bool AExact, Integer AStartAt) const {
  for (Integer i = std::max(AStartAt, 0); i < GetCount(); ++i) {
    const TObject* o = GetItem(i);
    if (o && (AExact ? o->ClassType() == AClass : o->InheritsFrom(AClass))) return i;
  }
  return -1;
}

}  // namespace vn
