// The names of a document, one record per distinct qualified name, shared by its nodes.
// The table holds a count on each record; a node that outlives the document keeps its own.
#pragma once

#include <string_view>
#include <vector>

#include "vnxml/dom_storage.h"

namespace vn::detail {

class NameTable {
 public:
  NameTable() = default;
  NameTable(const NameTable&) = delete;
  NameTable& operator=(const NameTable&) = delete;
  ~NameTable();

  /// The record of AName, made on first use; the caller gets one count on it.
  NameRec* Acquire(std::u16string_view AName);
  size_t Count() const noexcept { return FCount; }

 private:
  void GrowSlots();
  // Names met lately, by length and end units: a load meets the same few names over and over,
  // and finds them here without hashing the whole name. A miss just takes the table's way.
  static constexpr size_t kRecent = 64;
  static size_t RecentSlot(std::u16string_view AName) noexcept {
    return (AName.size() * 31 + AName.front() * 7 + AName.back()) & (kRecent - 1);
  }
  NameRec* FRecent[kRecent] = {};
  std::vector<NameRec*> FSlots;
  size_t FCount = 0;
};

/// A new record of its own (Owner nil, one count).
NameRec* NewNameRec(std::u16string_view AName, uint32_t AHash);
uint32_t HashName(std::u16string_view AName) noexcept;

}  // namespace vn::detail
