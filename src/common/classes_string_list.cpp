// TStringList: lines with objects in a vector, optionally sorted, optionally owning the objects.
#include <algorithm>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/sysutils.h"

namespace vn {

TStringList::TStringList(TDuplicates ADuplicates, bool ASorted, bool ACaseSensitive)
    : FDuplicates(ADuplicates), FSorted(ASorted), FCaseSensitive(ACaseSensitive) {}

TStringList::~TStringList() { Clear(); }

void TStringList::CheckIndex(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= GetCount()) Error(cRtlListIndexError, AIndex);
}

Integer TStringList::CompareStrings(std::u16string_view A, std::u16string_view B) const {
  return FCaseSensitive ? AnsiCompareStr(A, B) : AnsiCompareText(A, B);
}

UnicodeString TStringList::Get(Integer AIndex) const {
  CheckIndex(AIndex);
  return FList[static_cast<size_t>(AIndex)].FString;
}

void TStringList::Put(Integer AIndex, const UnicodeString& AText) {
  if (FSorted) Error(cRtlSortedListError, 0);
  CheckIndex(AIndex);
  FList[static_cast<size_t>(AIndex)].FString = AText;
}

TObject* TStringList::GetObject(Integer AIndex) const {
  CheckIndex(AIndex);
  return FList[static_cast<size_t>(AIndex)].FObject;
}

void TStringList::PutObject(Integer AIndex, TObject* AObject) {
  CheckIndex(AIndex);
  FList[static_cast<size_t>(AIndex)].FObject = AObject;
}

Integer TStringList::AddObject(const UnicodeString& AText, TObject* AObject) {
  Integer index = GetCount();
  if (FSorted && Find(AText, index)) {
    switch (FDuplicates) {
      case dupIgnore:
        return index;
      case dupError:
        throw EStringListError(UnicodeString(cRtlDuplicateString));
      case dupAccept:
        break;
    }
  }
  InsertItem(index, AText, AObject);
  return index;
}

void TStringList::Insert(Integer AIndex, const UnicodeString& AText) { InsertObject(AIndex, AText, nullptr); }

void TStringList::InsertObject(Integer AIndex, const UnicodeString& AText, TObject* AObject) {
  if (FSorted) Error(cRtlSortedListError, 0);
  if (AIndex < 0 || AIndex > GetCount()) Error(cRtlListIndexError, AIndex);
  InsertItem(AIndex, AText, AObject);
}

void TStringList::InsertItem(Integer AIndex, const UnicodeString& AText, TObject* AObject) {
  FList.insert(FList.begin() + AIndex, Item{AText, AObject});
}

void TStringList::Delete(Integer AIndex) {
  CheckIndex(AIndex);
  TObject* object = FList[static_cast<size_t>(AIndex)].FObject;
  FList.erase(FList.begin() + AIndex);
  if (FOwnsObjects) delete object;
}

void TStringList::Clear() {
  if (FList.empty()) return;
  std::vector<Item> old;
  old.swap(FList);  // the list is already empty while the objects are freed
  if (FOwnsObjects)
    for (auto& item : old) delete item.FObject;
}

void TStringList::Exchange(Integer AIndex1, Integer AIndex2) {
  CheckIndex(AIndex1);
  CheckIndex(AIndex2);
  std::swap(FList[static_cast<size_t>(AIndex1)], FList[static_cast<size_t>(AIndex2)]);
}

bool TStringList::Find(std::u16string_view AText, Integer& AIndex) const {
  // Lower bound: with accepted duplicates this is the first of the equal lines.
  Integer low = 0, high = GetCount() - 1;
  bool found = false;
  while (low <= high) {
    const Integer mid = low + (high - low) / 2;
    const Integer c = CompareStrings(FList[static_cast<size_t>(mid)].FString, AText);
    if (c < 0) {
      low = mid + 1;
    } else {
      high = mid - 1;
      if (c == 0) found = true;
    }
  }
  AIndex = low;
  return found;
}

Integer TStringList::IndexOf(std::u16string_view AText) const {
  if (!FSorted) return TStrings::IndexOf(AText);
  Integer index = 0;
  return Find(AText, index) ? index : -1;
}

void TStringList::Sort() {
  std::stable_sort(FList.begin(), FList.end(),
                   [this](const Item& a, const Item& b) { return CompareStrings(a.FString, b.FString) < 0; });
}

void TStringList::CustomSort(TStringListSortCompare ACompare) {
  if (!ACompare || FList.size() < 2) return;
  // The comparer takes indexes into this list: sort a permutation, then apply it.
  std::vector<Integer> order(FList.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = static_cast<Integer>(i);
  std::stable_sort(order.begin(), order.end(), [&](Integer a, Integer b) { return ACompare(this, a, b) < 0; });
  std::vector<Item> sorted;
  sorted.reserve(FList.size());
  for (Integer i : order) sorted.push_back(std::move(FList[static_cast<size_t>(i)]));
  FList = std::move(sorted);
}

void TStringList::SetSorted(bool AValue) {
  if (AValue == FSorted) return;
  if (AValue) Sort();
  FSorted = AValue;
}

void TStringList::SetCaseSensitive(bool AValue) {
  if (AValue == FCaseSensitive) return;
  FCaseSensitive = AValue;
  if (FSorted) Sort();
}

void TStringList::Assign(const TPersistent* ASource) {
  TStrings::Assign(ASource);
  // As the platform does: the flags come over after the lines, without sorting again.
  if (const auto* source = CastObject<TStringList>(const_cast<TPersistent*>(ASource))) {
    FCaseSensitive = source->FCaseSensitive;
    FDuplicates = source->FDuplicates;
    FSorted = source->FSorted;
  }
}

}  // namespace vn
