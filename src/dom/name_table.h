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
  std::vector<NameRec*> FSlots;
  size_t FCount = 0;
};

/// A new record of its own (Owner nil, one count).
NameRec* NewNameRec(std::u16string_view AName, uint32_t AHash);
uint32_t HashName(std::u16string_view AName) noexcept;

}  // namespace vn::detail
