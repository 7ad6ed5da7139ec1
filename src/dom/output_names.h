// output_names.h: the names that the XML writer can write so that the reader reads them back
// unchanged (internal). The reader takes names as they stand, without escapes, so a name that
// its own rules would cut, trim or end early cannot be written at all.
#pragma once

#include <cstdint>
#include <string_view>

namespace vn::detail {

/// Whether ` AName="..."` inside a start tag reads back as an attribute of that very name, in
/// any place among the attributes.
bool AttributeNameReadsBack(std::u16string_view AName) noexcept;

/// Whether `<AName` and `</AName>` read back as an element of that very name.
bool ElementNameReadsBack(std::u16string_view AName) noexcept;

/// The verdicts for the names of one write: names are shared within a document, so most
/// checks end at a pointer comparison.
class NameCheck {
 public:
  bool Attribute(std::u16string_view AName) noexcept { return Check(AName, FAttributes, AttributeNameReadsBack); }
  bool Element(std::u16string_view AName) noexcept { return Check(AName, FElements, ElementNameReadsBack); }

 private:
  static constexpr size_t cSize = 64;
  struct Seen {
    const char16_t* FData = nullptr;
    size_t FSize = 0;
  };
  static bool Check(std::u16string_view AName, Seen (&ASeen)[cSize], bool (*ARule)(std::u16string_view) noexcept) {
    Seen& s = ASeen[(reinterpret_cast<uintptr_t>(AName.data()) >> 3) % cSize];
    if (s.FData == AName.data() && s.FSize == AName.size() && s.FData) return true;
    if (!ARule(AName)) return false;
    s = {AName.data(), AName.size()};
    return true;
  }
  Seen FAttributes[cSize];
  Seen FElements[cSize];
};

}  // namespace vn::detail
