// dom_storage.h: the compact containers inside DOM nodes (unit uVnXMLDOM, internal).
// Nodes are many and small, so each container here is one pointer: a child array is a single
// heap block (none while empty), a name is a counted record shared by every node of a document
// with that qualified name, and a stored value is one block holding its length and characters.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace vn::detail {

/// A growable array of pointers that owns nothing it points at; one null pointer while empty.
template <class T>
class PtrVector {
 public:
  PtrVector() noexcept = default;
  PtrVector(const PtrVector&) = delete;
  PtrVector& operator=(const PtrVector&) = delete;
  PtrVector(PtrVector&& AOther) noexcept { Swap(AOther); }
  PtrVector& operator=(PtrVector&& AOther) noexcept {
    PtrVector(std::move(AOther)).Swap(*this);
    return *this;
  }
  ~PtrVector() { std::free(FBlock); }

  uint32_t size() const noexcept { return FBlock ? FBlock->Size : 0; }
  bool empty() const noexcept { return !FBlock || FBlock->Size == 0; }
  T* operator[](uint32_t AIndex) const noexcept { return Items()[AIndex]; }
  T** begin() const noexcept { return FBlock ? Items() : nullptr; }
  T** end() const noexcept { return FBlock ? Items() + FBlock->Size : nullptr; }
  T* front() const noexcept { return Items()[0]; }
  T* back() const noexcept { return Items()[FBlock->Size - 1]; }

  void reserve(uint32_t ACapacity) {
    if (ACapacity <= Capacity()) return;
    uint32_t size = this->size();
    void* p = std::realloc(FBlock, sizeof(Header) + sizeof(T*) * ACapacity);
    if (!p) throw std::bad_alloc();
    FBlock = static_cast<Header*>(p);
    FBlock->Size = size;
    FBlock->Cap = ACapacity;
  }
  void push_back(T* AItem) {
    Grow();
    Items()[FBlock->Size++] = AItem;
  }
  void insert(uint32_t AIndex, T* AItem) {
    Grow();
    T** items = Items();
    std::memmove(items + AIndex + 1, items + AIndex, sizeof(T*) * (FBlock->Size - AIndex));
    items[AIndex] = AItem;
    ++FBlock->Size;
  }
  void erase(uint32_t AIndex) noexcept {
    T** items = Items();
    std::memmove(items + AIndex, items + AIndex + 1, sizeof(T*) * (FBlock->Size - AIndex - 1));
    --FBlock->Size;
  }
  void pop_back() noexcept { --FBlock->Size; }
  void clear() noexcept {
    if (FBlock) FBlock->Size = 0;
  }
  /// Frees the array as well.
  void reset() noexcept {
    std::free(FBlock);
    FBlock = nullptr;
  }
  /// Index of the first AItem, or -1. Searches from the end first when AFromEnd (recent items).
  int64_t IndexOf(const T* AItem, bool AFromEnd = false) const noexcept {
    uint32_t n = size();
    T** items = begin();
    if (AFromEnd) {
      for (uint32_t i = n; i-- > 0;)
        if (items[i] == AItem) {
          // the first occurrence is wanted; duplicates are rare, so look on only before this one
          for (uint32_t j = 0; j < i; ++j)
            if (items[j] == AItem) return j;
          return i;
        }
      return -1;
    }
    for (uint32_t i = 0; i < n; ++i)
      if (items[i] == AItem) return i;
    return -1;
  }
  void Swap(PtrVector& AOther) noexcept { std::swap(FBlock, AOther.FBlock); }

 private:
  struct Header {
    uint32_t Size;
    uint32_t Cap;
  };
  T** Items() const noexcept { return reinterpret_cast<T**>(FBlock + 1); }
  uint32_t Capacity() const noexcept { return FBlock ? FBlock->Cap : 0; }
  void Grow() {
    uint32_t cap = Capacity();
    // most nodes have one or two children: start small, then double
    if (size() == cap) reserve(cap ? cap * 2 : 2);
  }

  Header* FBlock = nullptr;
};

/// A qualified name shared by nodes: counted, immutable, split at its first colon.
struct NameRec {
  static constexpr uint32_t kNoColon = UINT32_MAX;
  static constexpr uint32_t kStatic = UINT32_MAX;  // Refs of a record that is never freed
  uint32_t Refs;
  uint32_t Length;
  uint32_t Colon;
  uint32_t Hash;
  /// The table that interned the record, or nil for a record of its own.
  const void* Owner;
  const char16_t* Chars;
};

class NameTable;

/// A node's name: one pointer to a shared NameRec; "" until set.
class NameRef {
 public:
  NameRef() noexcept = default;
  NameRef(const NameRef&) = delete;
  NameRef& operator=(const NameRef&) = delete;
  ~NameRef() { Release(FRec); }

  std::u16string_view Qualified() const noexcept {
    return FRec ? std::u16string_view(FRec->Chars, FRec->Length) : std::u16string_view();
  }
  std::u16string_view Local() const noexcept {
    if (!FRec) return {};
    if (FRec->Colon == NameRec::kNoColon) return {FRec->Chars, FRec->Length};
    return {FRec->Chars + FRec->Colon + 1, FRec->Length - FRec->Colon - 1};
  }
  std::u16string_view Prefix() const noexcept {
    if (!FRec || FRec->Colon == NameRec::kNoColon) return {};
    return {FRec->Chars, FRec->Colon};
  }
  /// Splits at the first colon; an empty prefix leaves the local name alone. With a table the
  /// record is shared through it.
  void Set(std::u16string_view AName, NameTable* ATable = nullptr);
  void SetParts(std::u16string_view APrefix, std::u16string_view ALocal, NameTable* ATable = nullptr);
  void SetPrefix(std::u16string_view APrefix, NameTable* ATable = nullptr);
  /// A record that lives for the whole program (the fixed names "#text", "#comment", ...).
  void SetStatic(const NameRec& ARec) noexcept;
  /// Moves the name into ATable's record of the same text, unless it is there already.
  void Rehome(NameTable* ATable);
  /// The table the record belongs to, or nil.
  const void* OwnerTable() const noexcept { return FRec && FRec->Refs != NameRec::kStatic ? FRec->Owner : nullptr; }

 private:
  static void Release(NameRec* ARec) noexcept;
  NameRec* FRec = nullptr;
};

/// A stored text in one block: its length, then its characters; one null pointer while empty.
class CompactString {
 public:
  CompactString() noexcept = default;
  CompactString(const CompactString& AOther) { assign(AOther.view()); }
  CompactString& operator=(const CompactString& AOther) {
    if (this != &AOther) assign(AOther.view());
    return *this;
  }
  CompactString& operator=(std::u16string_view AText) {
    assign(AText);
    return *this;
  }
  ~CompactString() { std::free(FBlock); }

  std::u16string_view view() const noexcept {
    return FBlock ? std::u16string_view(Chars(), FBlock->Length) : std::u16string_view();
  }
  operator std::u16string_view() const noexcept { return view(); }
  size_t size() const noexcept { return FBlock ? FBlock->Length : 0; }
  bool empty() const noexcept { return size() == 0; }
  std::u16string str() const { return std::u16string(view()); }
  void assign(std::u16string_view AText) {
    if (AText.empty()) {
      std::free(FBlock);
      FBlock = nullptr;
      return;
    }
    // AText may point into this very block: build the new one before freeing the old
    auto* block = static_cast<Header*>(std::malloc(sizeof(Header) + AText.size() * sizeof(char16_t)));
    if (!block) throw std::bad_alloc();
    block->Length = AText.size();
    std::memcpy(reinterpret_cast<char16_t*>(block + 1), AText.data(), AText.size() * sizeof(char16_t));
    std::free(FBlock);
    FBlock = block;
  }

 private:
  struct Header {
    size_t Length;
  };
  const char16_t* Chars() const noexcept { return reinterpret_cast<const char16_t*>(FBlock + 1); }
  Header* FBlock = nullptr;
};

inline bool operator==(const CompactString& A, std::u16string_view B) noexcept { return A.view() == B; }

}  // namespace vn::detail
