// The member names of a JSON write from an XML tree, each made once per write and then copied.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/json_text_put.h"
#include "dom/output_writer.h"

namespace vn::detail {

/// The member names of one UTF-8 write as they go out, `"name": `, found again by the address of
/// the names they are made of: names are shared within a document, so each is made once and
/// then copied. The tree is read only meanwhile, so an address keeps its text.
class NamePieces {
 public:
  enum Form : uint8_t { Member, ArrayName, AttributeName };
  /// The bytes readable behind each piece.
  static constexpr size_t kSlack = 32;
  struct Piece {
    std::string_view Bytes;
    std::u16string_view Name;  // the name itself, for the attribute form only
  };

  Piece Get(Form AForm, std::u16string_view AFirst, std::u16string_view ASecond = {}) {
    if (Count * 2 >= Table.size()) Grow();
    const size_t mask = Table.size() - 1;
    size_t i = Slot(AForm, AFirst.data(), ASecond.data(), mask);
    for (; Table[i].Used; i = (i + 1) & mask) {
      const Entry& e = Table[i];
      if (e.First == AFirst.data() && e.Second == ASecond.data() && e.FirstSize == AFirst.size() &&
          e.SecondSize == ASecond.size() && e.F == AForm)
        return PieceOf(e);
    }
    Table[i] = Make(AForm, AFirst, ASecond);
    ++Count;
    return PieceOf(Table[i]);
  }

 private:
  struct Entry {
    const char16_t* First = nullptr;
    const char16_t* Second = nullptr;
    uint32_t FirstSize = 0, SecondSize = 0;
    uint32_t BytesAt = 0, BytesSize = 0, NameAt = 0, NameSize = 0;
    Form F = Member;
    bool Used = false;
  };
  static size_t Slot(Form AForm, const char16_t* AFirst, const char16_t* ASecond, size_t AMask) noexcept {
    const uint64_t h = (reinterpret_cast<uintptr_t>(AFirst) ^ (reinterpret_cast<uintptr_t>(ASecond) * 31) ^ AForm) *
                       0x9E3779B97F4A7C15ull;
    return static_cast<size_t>(h >> 40) & AMask;
  }
  Piece PieceOf(const Entry& AEntry) const noexcept {
    return {std::string_view(Bytes).substr(AEntry.BytesAt, AEntry.BytesSize),
            std::u16string_view(Names).substr(AEntry.NameAt, AEntry.NameSize)};
  }
  [[gnu::noinline]] void Grow() {
    std::vector<Entry> old(Table.size() < 64 ? 64 : Table.size() * 2);
    old.swap(Table);
    const size_t mask = Table.size() - 1;
    for (const Entry& e : old) {
      if (!e.Used) continue;
      size_t i = Slot(e.F, e.First, e.Second, mask);
      while (Table[i].Used) i = (i + 1) & mask;
      Table[i] = e;
    }
  }
  /// The name of the form: an element's local name with dots as "_" for a member, as it is for
  /// an array; the owner's local name, "_" and the attribute's, dots as "_", for an attribute.
  [[gnu::noinline]] Entry Make(Form AForm, std::u16string_view AFirst, std::u16string_view ASecond) {
    Entry e{AFirst.data(), ASecond.data(), static_cast<uint32_t>(AFirst.size()), static_cast<uint32_t>(ASecond.size())};
    e.F = AForm;
    e.Used = true;
    e.NameAt = static_cast<uint32_t>(Names.size());
    Names.append(AFirst);
    if (AForm == AttributeName) {
      Names += u'_';
      Names.append(ASecond);
    }
    if (AForm != ArrayName) std::replace(Names.begin() + e.NameAt, Names.end(), u'.', u'_');
    const std::u16string_view name = std::u16string_view(Names).substr(e.NameAt);
    e.BytesAt = static_cast<uint32_t>(Bytes.size());
    Bytes.resize(Bytes.size() + name.size() * 6 + 4);
    char* out = Bytes.data() + e.BytesAt;
    *out++ = '"';
    out = NeedsEscape(name) ? PutJSONUtf8(out, name) : PutUtf8(out, name);
    std::memcpy(out, "\": ", 3);
    out += 3;
    e.BytesSize = static_cast<uint32_t>(out - Bytes.data() - e.BytesAt);
    // room behind every piece, so that a short one can be copied in one fixed-size step
    Bytes.resize(e.BytesAt + e.BytesSize + kSlack);
    if (AForm == AttributeName) {
      e.NameSize = static_cast<uint32_t>(name.size());
    } else {
      Names.resize(e.NameAt);  // only the attribute form asks for its name again
    }
    return e;
  }

  std::vector<Entry> Table;
  size_t Count = 0;
  std::string Bytes;
  std::u16string Names;
};

}  // namespace vn::detail
