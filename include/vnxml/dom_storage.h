// dom_storage.h: the compact containers inside DOM nodes (unit uVnXMLDOM, internal).
// A node keeps its children as a bare array of pointers (16 bytes when empty, no allocation),
// and its name as one string with the position of the colon, so that the qualified name, the
// local name and the prefix are one allocation.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace vn::detail {

/// A growable array of pointers that owns nothing it points at.
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
  ~PtrVector() { std::free(FData); }

  uint32_t size() const noexcept { return FSize; }
  bool empty() const noexcept { return FSize == 0; }
  T* operator[](uint32_t AIndex) const noexcept { return FData[AIndex]; }
  T** begin() const noexcept { return FData; }
  T** end() const noexcept { return FData + FSize; }
  T* front() const noexcept { return FData[0]; }
  T* back() const noexcept { return FData[FSize - 1]; }

  void reserve(uint32_t ACapacity) {
    if (ACapacity <= FCap) return;
    void* p = std::realloc(FData, sizeof(T*) * ACapacity);
    if (!p) throw std::bad_alloc();
    FData = static_cast<T**>(p);
    FCap = ACapacity;
  }
  void push_back(T* AItem) {
    if (FSize == FCap) reserve(FCap ? FCap * 2 : 4);
    FData[FSize++] = AItem;
  }
  void insert(uint32_t AIndex, T* AItem) {
    if (FSize == FCap) reserve(FCap ? FCap * 2 : 4);
    std::memmove(FData + AIndex + 1, FData + AIndex, sizeof(T*) * (FSize - AIndex));
    FData[AIndex] = AItem;
    ++FSize;
  }
  void erase(uint32_t AIndex) noexcept {
    std::memmove(FData + AIndex, FData + AIndex + 1, sizeof(T*) * (FSize - AIndex - 1));
    --FSize;
  }
  void pop_back() noexcept { --FSize; }
  void clear() noexcept { FSize = 0; }
  /// Frees the array as well.
  void reset() noexcept {
    std::free(FData);
    FData = nullptr;
    FSize = FCap = 0;
  }
  /// Index of the first AItem, or -1. Searches from the end first when AFromEnd (recent items).
  int64_t IndexOf(const T* AItem, bool AFromEnd = false) const noexcept {
    if (AFromEnd) {
      for (uint32_t i = FSize; i-- > 0;)
        if (FData[i] == AItem) {
          // the first occurrence is wanted; duplicates are rare, so look on only before this one
          for (uint32_t j = 0; j < i; ++j)
            if (FData[j] == AItem) return j;
          return i;
        }
      return -1;
    }
    for (uint32_t i = 0; i < FSize; ++i)
      if (FData[i] == AItem) return i;
    return -1;
  }
  void Swap(PtrVector& AOther) noexcept {
    std::swap(FData, AOther.FData);
    std::swap(FSize, AOther.FSize);
    std::swap(FCap, AOther.FCap);
  }

 private:
  T** FData = nullptr;
  uint32_t FSize = 0;
  uint32_t FCap = 0;
};

/// A qualified name: "prefix:local" or "local", split at the first colon.
class QName {
 public:
  std::u16string_view Qualified() const noexcept { return FText; }
  std::u16string_view Local() const noexcept {
    return FColon == kNone ? std::u16string_view(FText) : std::u16string_view(FText).substr(FColon + 1);
  }
  std::u16string_view Prefix() const noexcept {
    return FColon == kNone ? std::u16string_view() : std::u16string_view(FText).substr(0, FColon);
  }
  /// Splits at the first colon; an empty prefix leaves the local name alone.
  void Set(std::u16string_view AName) {
    size_t c = AName.find(u':');
    if (c == std::u16string_view::npos)
      SetParts({}, AName);
    else
      SetParts(AName.substr(0, c), AName.substr(c + 1));
  }
  void SetParts(std::u16string_view APrefix, std::u16string_view ALocal) {
    if (APrefix.empty()) {
      FText.assign(ALocal);
      FColon = kNone;
      return;
    }
    std::u16string s;
    s.reserve(APrefix.size() + 1 + ALocal.size());
    s.append(APrefix).append(1, u':').append(ALocal);
    FText = std::move(s);
    FColon = static_cast<uint32_t>(APrefix.size());
  }
  void SetPrefix(std::u16string_view APrefix) {
    std::u16string local(Local());
    SetParts(APrefix, local);
  }

 private:
  static constexpr uint32_t kNone = UINT32_MAX;
  std::u16string FText;
  uint32_t FColon = kNone;
};

}  // namespace vn::detail
