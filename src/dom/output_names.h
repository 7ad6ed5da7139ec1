// output_names.h: the names that the XML writer can write so that the reader reads them back
// unchanged (internal). The reader takes names as they stand, without escapes, so a name that
// its own rules would cut, trim or end early cannot be written at all.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace vn::detail {

/// Whether ` AName="..."` inside a start tag reads back as an attribute of that very name, in
/// any place among the attributes.
bool AttributeNameReadsBack(std::u16string_view AName) noexcept;

/// Whether `<AName` and `</AName>` read back as an element of that very name.
bool ElementNameReadsBack(std::u16string_view AName) noexcept;

/// The names of one write that passed their check. Names are shared within a document, so most
/// names are checked once per write and found again by their address.
class NameCheck {
 public:
  bool Attribute(std::u16string_view AName) { return FAttributes.Check(AName, AttributeNameReadsBack); }
  bool Element(std::u16string_view AName) { return FElements.Check(AName, ElementNameReadsBack); }

 private:
  class Passed {
   public:
    bool Check(std::u16string_view AName, bool (*ARule)(std::u16string_view) noexcept) {
      if (!FTable.empty()) {
        const size_t mask = FTable.size() - 1;
        for (size_t i = Slot(AName.data(), mask); FTable[i].FData; i = (i + 1) & mask)
          if (FTable[i].FData == AName.data() && FTable[i].FSize == AName.size()) return true;
      }
      return CheckNew(AName, ARule);
    }

   private:
    struct Entry {
      const char16_t* FData = nullptr;
      size_t FSize = 0;
    };
    static size_t Slot(const char16_t* AData, size_t AMask) noexcept {
      return (reinterpret_cast<uintptr_t>(AData) * 0x9E3779B97F4A7C15ull >> 40) & AMask;
    }
    /// A name not met before in this write: its rule decides, and a name that passed is kept.
    bool CheckNew(std::u16string_view AName, bool (*ARule)(std::u16string_view) noexcept);
    std::vector<Entry> FTable;
    size_t FCount = 0;
  };
  Passed FAttributes, FElements;
};

}  // namespace vn::detail
