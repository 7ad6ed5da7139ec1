// generics.h: the platform's generic containers TList<T>, TObjectList<T>, TDictionary<K,V> and
// TObjectDictionary<K,V>, in namespace vn::generics (vn::TList is the list of pointers).
// Owning forms free their objects when they are removed, replaced, cleared or the container dies;
// Extract hands an object back without freeing it. Index failures raise
// EArgumentOutOfRangeException; a duplicate key raises EListError "Duplicates not allowed" and a
// missing one EListError "Item not found". A dictionary enumerates in insertion order.
#pragma once

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vnxml/common/exception.h"
#include "vnxml/common/object.h"
#include "vnxml/common/rtl_messages.h"

namespace vn::generics {

enum TCollectionNotification : uint8_t { cnAdded, cnRemoved, cnExtracted };

namespace detail {
// Each instantiation gets its own class record; the reflection registration may rename it
// ("TObjectList<uShop.TItem>"), which is why the record is not const.
template <class Self>
::vn::TClass GenericClass(const char16_t* ADefaultName, ::vn::TClass AParent, ::vn::TClassInfo*& ARecord) {
  static ::vn::TClassInfo info{ADefaultName, AParent, &::vn::detail::CreateDefault<Self>, nullptr, nullptr, sizeof(Self)};
  ARecord = &info;
  return &info;
}
}  // namespace detail

// Class record of a generic container; SetClassName names the instantiation for the class system.
#define VN_DECLARE_GENERIC_CLASS(Self, DefaultName, Parent)                                         \
 public:                                                                                            \
  static ::vn::TClass StaticClass() {                                                               \
    ::vn::TClassInfo* record = nullptr;                                                             \
    return ::vn::generics::detail::GenericClass<Self>(DefaultName, Parent::StaticClass(), record); \
  }                                                                                                 \
  ::vn::TClass ClassType() const override { return StaticClass(); }                                \
  /** Names this instantiation ("TList<uShop.TItem>"); AName must outlive the program. */         \
  static void SetClassName(const char16_t* AName) {                                                 \
    ::vn::TClassInfo* record = nullptr;                                                             \
    ::vn::generics::detail::GenericClass<Self>(DefaultName, Parent::StaticClass(), record);         \
    record->Name = AName;                                                                           \
  }                                                                                                 \
                                                                                                    \
 private:

// ---- TList<T> ----

template <class T>
class TList : public ::vn::TObject {
  VN_DECLARE_GENERIC_CLASS(TList, u"TList<T>", ::vn::TObject)
 public:
  using const_iterator = typename std::vector<T>::const_iterator;

  TList() = default;
  TList(const TList&) = delete;
  TList& operator=(const TList&) = delete;
  ~TList() override { FItems.clear(); }

  /// Appends AValue and returns its index.
  Integer Add(const T& AValue) {
    FItems.push_back(AValue);
    Notify(FItems.back(), cnAdded);
    return Count() - 1;
  }
  void AddRange(std::initializer_list<T> AValues) {
    for (const T& v : AValues) Add(v);
  }
  void Insert(Integer AIndex, const T& AValue) {
    if (AIndex < 0 || AIndex > Count()) OutOfRange();
    FItems.insert(FItems.begin() + AIndex, AValue);
    Notify(FItems[static_cast<size_t>(AIndex)], cnAdded);
  }
  void Delete(Integer AIndex) {
    CheckIndex(AIndex);
    T item = std::move(FItems[static_cast<size_t>(AIndex)]);
    FItems.erase(FItems.begin() + AIndex);
    Notify(item, cnRemoved);
  }
  void DeleteRange(Integer AIndex, Integer ACount) {
    if (AIndex < 0 || ACount < 0 || AIndex + ACount > Count()) OutOfRange();
    std::vector<T> removed(std::make_move_iterator(FItems.begin() + AIndex),
                           std::make_move_iterator(FItems.begin() + AIndex + ACount));
    FItems.erase(FItems.begin() + AIndex, FItems.begin() + AIndex + ACount);
    for (const T& item : removed) Notify(item, cnRemoved);
  }
  /// Deletes the first item equal to AValue; returns its former index or -1.
  Integer Remove(const T& AValue) {
    const Integer index = IndexOf(AValue);
    if (index >= 0) Delete(index);
    return index;
  }
  /// Takes the first item equal to AValue out without the removal notification (an owner does not free it).
  T Extract(const T& AValue) {
    const Integer index = IndexOf(AValue);
    if (index < 0) return T();
    T item = std::move(FItems[static_cast<size_t>(index)]);
    FItems.erase(FItems.begin() + index);
    Notify(item, cnExtracted);
    return item;
  }
  void Clear() {
    while (!FItems.empty()) Delete(Count() - 1);
  }
  Integer IndexOf(const T& AValue) const {
    auto it = std::find(FItems.begin(), FItems.end(), AValue);
    return it == FItems.end() ? -1 : static_cast<Integer>(it - FItems.begin());
  }
  Integer LastIndexOf(const T& AValue) const {
    for (Integer i = Count() - 1; i >= 0; --i)
      if (FItems[static_cast<size_t>(i)] == AValue) return i;
    return -1;
  }
  bool Contains(const T& AValue) const { return IndexOf(AValue) >= 0; }
  void Exchange(Integer AIndex1, Integer AIndex2) {
    CheckIndex(AIndex1);
    CheckIndex(AIndex2);
    std::swap(FItems[static_cast<size_t>(AIndex1)], FItems[static_cast<size_t>(AIndex2)]);
  }
  void Move(Integer ACurIndex, Integer ANewIndex) {
    if (ACurIndex == ANewIndex) return;
    CheckIndex(ACurIndex);
    CheckIndex(ANewIndex);
    T item = std::move(FItems[static_cast<size_t>(ACurIndex)]);
    FItems.erase(FItems.begin() + ACurIndex);
    FItems.insert(FItems.begin() + ANewIndex, std::move(item));
  }
  void Reverse() { std::reverse(FItems.begin(), FItems.end()); }
  /// Sorts with operator< or with AComparer returning <0, 0, >0 (stable).
  void Sort() { std::stable_sort(FItems.begin(), FItems.end()); }
  void Sort(const std::function<Integer(const T&, const T&)>& AComparer) {
    std::stable_sort(FItems.begin(), FItems.end(), [&](const T& a, const T& b) { return AComparer(a, b) < 0; });
  }
  /// Binary search of a sorted list: true when found; AIndex is the item or where it would go.
  bool BinarySearch(const T& AValue, Integer& AIndex) const {
    auto it = std::lower_bound(FItems.begin(), FItems.end(), AValue);
    AIndex = static_cast<Integer>(it - FItems.begin());
    return it != FItems.end() && !(AValue < *it);
  }
  std::vector<T> ToArray() const { return FItems; }

  Integer Count() const { return static_cast<Integer>(FItems.size()); }
  Integer GetCount() const { return Count(); }
  Integer GetCapacity() const { return static_cast<Integer>(FItems.capacity()); }
  void SetCapacity(Integer AValue) {
    if (AValue < Count()) OutOfRange();
    FItems.reserve(static_cast<size_t>(AValue));
  }
  const T& First() const { return GetItem(0); }
  const T& Last() const { return GetItem(Count() - 1); }
  const T& GetItem(Integer AIndex) const {
    CheckIndex(AIndex);
    return FItems[static_cast<size_t>(AIndex)];
  }
  /// Replaces the item at AIndex: the old one is told removed, the new one added.
  void SetItem(Integer AIndex, const T& AValue) {
    CheckIndex(AIndex);
    T old = std::exchange(FItems[static_cast<size_t>(AIndex)], AValue);
    Notify(old, cnRemoved);
    Notify(FItems[static_cast<size_t>(AIndex)], cnAdded);
  }
  const T& operator[](Integer AIndex) const { return GetItem(AIndex); }

  const_iterator begin() const { return FItems.begin(); }
  const_iterator end() const { return FItems.end(); }

 protected:
  /// Told of every item that enters or leaves the list.
  virtual void Notify(const T& /*AItem*/, TCollectionNotification /*AAction*/) {}
  void CheckIndex(Integer AIndex) const {
    if (AIndex < 0 || AIndex >= Count()) OutOfRange();
  }
  [[noreturn]] static void OutOfRange() { throw EArgumentOutOfRangeException(UnicodeString(cRtlArgumentOutOfRange)); }

 private:
  std::vector<T> FItems;
};

// ---- TObjectList<T> ----

/// A list of T* (T a TObject descendant); when it owns its objects (the default) it frees removed ones.
template <class T>
class TObjectList : public TList<T*> {
  VN_DECLARE_GENERIC_CLASS(TObjectList, u"TObjectList<T>", TList<T*>)
 public:
  TObjectList() = default;
  explicit TObjectList(bool AOwnsObjects) : FOwnsObjects(AOwnsObjects) {}
  ~TObjectList() override { this->Clear(); }  // here, while Notify still frees owned items

  bool GetOwnsObjects() const { return FOwnsObjects; }
  void SetOwnsObjects(bool AValue) { FOwnsObjects = AValue; }

 protected:
  void Notify(T* const& AItem, TCollectionNotification AAction) override {
    if (AAction == cnRemoved && FOwnsObjects) delete AItem;
  }

 private:
  bool FOwnsObjects = true;
};

// ---- TDictionary<K,V> ----

template <class K, class V>
struct TPair {
  K Key;
  V Value;
};

enum TDictionaryOwnership : uint8_t { doOwnsKeys = 1, doOwnsValues = 2 };
using TDictionaryOwnerships = uint8_t;

template <class K, class V, class Hash = std::hash<K>, class KeyEqual = std::equal_to<K>>
class TDictionary : public ::vn::TObject {
  VN_DECLARE_GENERIC_CLASS(TDictionary, u"TDictionary<T,T>", ::vn::TObject)
 public:
  using TPairType = TPair<K, V>;
  using const_iterator = typename std::vector<TPairType>::const_iterator;

  TDictionary() = default;
  TDictionary(const TDictionary&) = delete;
  TDictionary& operator=(const TDictionary&) = delete;
  ~TDictionary() override = default;

  /// Adds a new key; raises EListError "Duplicates not allowed" when it is present.
  void Add(const K& AKey, const V& AValue) {
    if (FIndex.count(AKey)) throw EListError(UnicodeString(cRtlDuplicateItem));
    FIndex.emplace(AKey, FPairs.size());
    FPairs.push_back(TPairType{AKey, AValue});
    KeyNotify(AKey, cnAdded);
    ValueNotify(AValue, cnAdded);
  }
  /// Adds the key or replaces its value (the old value is told removed).
  void AddOrSetValue(const K& AKey, const V& AValue) {
    auto it = FIndex.find(AKey);
    if (it == FIndex.end())
      Add(AKey, AValue);
    else
      SetItem(AKey, AValue);
  }
  /// Removes the key and its value, if present.
  void Remove(const K& AKey) {
    auto it = FIndex.find(AKey);
    if (it == FIndex.end()) return;
    TPairType pair = TakeAt(it->second);
    KeyNotify(pair.Key, cnRemoved);
    ValueNotify(pair.Value, cnRemoved);
  }
  /// Takes the pair out without the removal notification (an owner frees neither part).
  TPairType ExtractPair(const K& AKey) {
    auto it = FIndex.find(AKey);
    if (it == FIndex.end()) return TPairType{AKey, V()};
    TPairType pair = TakeAt(it->second);
    KeyNotify(pair.Key, cnExtracted);
    ValueNotify(pair.Value, cnExtracted);
    return pair;
  }
  void Clear() {
    std::vector<TPairType> old;
    old.swap(FPairs);
    FIndex.clear();
    for (const TPairType& pair : old) {
      KeyNotify(pair.Key, cnRemoved);
      ValueNotify(pair.Value, cnRemoved);
    }
  }
  bool TryGetValue(const K& AKey, V& AValue) const {
    auto it = FIndex.find(AKey);
    if (it == FIndex.end()) {
      AValue = V();
      return false;
    }
    AValue = FPairs[it->second].Value;
    return true;
  }
  bool ContainsKey(const K& AKey) const { return FIndex.count(AKey) != 0; }
  bool ContainsValue(const V& AValue) const {
    return std::any_of(FPairs.begin(), FPairs.end(), [&](const TPairType& p) { return p.Value == AValue; });
  }
  /// The value of AKey; raises EListError "Item not found" when absent.
  const V& GetItem(const K& AKey) const {
    auto it = FIndex.find(AKey);
    if (it == FIndex.end()) throw EListError(UnicodeString(cRtlItemNotFound));
    return FPairs[it->second].Value;
  }
  /// Replaces the value of an existing key; raises EListError "Item not found" when absent.
  void SetItem(const K& AKey, const V& AValue) {
    auto it = FIndex.find(AKey);
    if (it == FIndex.end()) throw EListError(UnicodeString(cRtlItemNotFound));
    V old = std::exchange(FPairs[it->second].Value, AValue);
    ValueNotify(old, cnRemoved);
    ValueNotify(AValue, cnAdded);
  }
  const V& operator[](const K& AKey) const { return GetItem(AKey); }

  Integer Count() const { return static_cast<Integer>(FPairs.size()); }
  Integer GetCount() const { return Count(); }
  std::vector<K> Keys() const {
    std::vector<K> keys;
    keys.reserve(FPairs.size());
    for (const TPairType& p : FPairs) keys.push_back(p.Key);
    return keys;
  }
  std::vector<V> Values() const {
    std::vector<V> values;
    values.reserve(FPairs.size());
    for (const TPairType& p : FPairs) values.push_back(p.Value);
    return values;
  }

  const_iterator begin() const { return FPairs.begin(); }
  const_iterator end() const { return FPairs.end(); }

 protected:
  virtual void KeyNotify(const K& /*AKey*/, TCollectionNotification /*AAction*/) {}
  virtual void ValueNotify(const V& /*AValue*/, TCollectionNotification /*AAction*/) {}

 private:
  std::vector<TPairType> FPairs;  // in insertion order
  std::unordered_map<K, size_t, Hash, KeyEqual> FIndex;

  TPairType TakeAt(size_t APos) {
    TPairType pair = std::move(FPairs[APos]);
    FIndex.erase(pair.Key);
    FPairs.erase(FPairs.begin() + static_cast<std::ptrdiff_t>(APos));
    for (size_t i = APos; i < FPairs.size(); ++i) FIndex[FPairs[i].Key] = i;
    return pair;
  }
};

// ---- TObjectDictionary<K,V> ----

/// A dictionary that frees its keys (doOwnsKeys) and/or values (doOwnsValues), which must then be TObject pointers.
template <class K, class V, class Hash = std::hash<K>, class KeyEqual = std::equal_to<K>>
class TObjectDictionary : public TDictionary<K, V, Hash, KeyEqual> {
  using Base = TDictionary<K, V, Hash, KeyEqual>;
  VN_DECLARE_GENERIC_CLASS(TObjectDictionary, u"TObjectDictionary<T,T>", Base)
 public:
  TObjectDictionary() = default;
  explicit TObjectDictionary(TDictionaryOwnerships AOwnerships) : FOwnerships(AOwnerships) {}
  ~TObjectDictionary() override { this->Clear(); }  // here, while the notifications still free

  TDictionaryOwnerships GetOwnerships() const { return FOwnerships; }

 protected:
  void KeyNotify(const K& AKey, TCollectionNotification AAction) override {
    if constexpr (std::is_pointer_v<K>)
      if (AAction == cnRemoved && (FOwnerships & doOwnsKeys)) delete AKey;
  }
  void ValueNotify(const V& AValue, TCollectionNotification AAction) override {
    if constexpr (std::is_pointer_v<V>)
      if (AAction == cnRemoved && (FOwnerships & doOwnsValues)) delete AValue;
  }

 private:
  TDictionaryOwnerships FOwnerships = 0;
};

}  // namespace vn::generics
