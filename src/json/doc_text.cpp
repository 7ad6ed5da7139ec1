// Stored names and loaded values: the reader's text in the input's own code units.
#include <cstdlib>
#include <cstring>

#include "common/text_parser_scan.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/json_document.h"

namespace vn::detail {

UnicodeString JSONText::Wide() const {
  if (!Data) return {};
  if (Width == 2) return UnicodeString(static_cast<const char16_t*>(Data), Length);
  std::u16string out;
  const auto* p = static_cast<const uint8_t*>(Data);
  AppendUtf8(p, p + Length, out);
  return out;
}

void JSONText::Free() noexcept {
  if (Owned) std::free(const_cast<void*>(Data));
  Data = nullptr;
  Length = 0;
  Owned = false;
}

void JSONText::AssignOwned(std::u16string_view AText) {
  // Never a null pointer, so that an empty name still counts as set.
  void* block = std::malloc(AText.size() * sizeof(char16_t) + sizeof(char16_t));
  if (!block) throw std::bad_alloc();
  if (!AText.empty()) std::memcpy(block, AText.data(), AText.size() * sizeof(char16_t));
  Free();
  Data = block;
  Length = static_cast<uint32_t>(AText.size());
  Width = 2;
  Owned = true;
}

}  // namespace vn::detail

namespace vn::detail {

bool JSONText::Equals(std::u16string_view AName, bool ACaseInsensitive) const {
  if (Width == 2) {
    std::u16string_view mine(static_cast<const char16_t*>(Data), Length);
    return ACaseInsensitive ? SameText(mine, AName) : mine == AName;
  }
  // One byte a unit: plain ASCII compares unit by unit; anything else is decoded first.
  const auto* p = static_cast<const uint8_t*>(Data);
  bool ascii = true;
  for (uint32_t i = 0; i < Length && ascii; ++i) ascii = p[i] < 0x80;
  if (!ascii) {
    UnicodeString wide = Wide();
    return ACaseInsensitive ? SameText(wide, AName) : wide == AName;
  }
  if (AName.size() != Length) return false;
  for (uint32_t i = 0; i < Length; ++i) {
    char16_t a = p[i], b = AName[i];
    if (a == b) continue;
    if (!ACaseInsensitive) return false;
    if (a >= 'a' && a <= 'z') a -= 32;
    if (b >= 'a' && b <= 'z') b -= 32;
    if (a != b) return false;
  }
  return true;
}

}  // namespace vn::detail
