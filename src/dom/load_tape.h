// LoadTape: what a document load read below its root element, kept as compact records instead
// of nodes. An element whose content is still on the tape makes its children on first access
// (see TVnDOMNode::EnsureOpen), through the same builder steps the load would have taken, so a
// loaded document costs records until somebody looks.
//
// Records follow each other in blocks, front to back, in the order the reader reported them:
//   Begin        name, where the element's content ends; its attributes follow, then its content
//   Attr         name, value (UTF-8 bytes or UTF-16 units, as the reader gave it)
//   Text/Space   the value
//   CDATA, Comment, Instruction (target name, data)
// An element's content is everything between its last attribute and its end; a Begin inside it
// lets the replay jump over a whole grandchild.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vn::detail {

struct NameRec;

class LoadTape {
 public:
  enum Kind : uint8_t {
    kEnd = 0,  // nothing written here yet
    kBegin,
    kAttr,      // UTF-16 value
    kAttrUtf8,  // UTF-8 value
    kText,
    kTextUtf8,
    kSpace,
    kSpaceUtf8,
    kCData,
    kCDataUtf8,
    kComment,
    kInstruction,
    kJump,  // the records go on in the next block
  };
  enum Flag : uint8_t {
    kMayHoldQuote = 1,
    kHigh = 2,
    kJoinFails = 4,  // a Begin whose element failed to join (a declaration that does not decode)
  };

  /// Every record starts with one word: kind, flags and the length of its value.
  struct Head {
    uint64_t Word;
    Kind GetKind() const noexcept { return static_cast<Kind>(Word & 0xFF); }
    uint8_t Flags() const noexcept { return static_cast<uint8_t>(Word >> 8); }
    size_t Length() const noexcept { return static_cast<size_t>(Word >> 16); }
  };
  struct Begin {
    Head H;
    const NameRec* Name;    // nil for the empty name
    const char* ContentEnd;  // where the element's content ends (patched by its end tag)
  };
  struct Named {
    Head H;
    const NameRec* Name;
    // the value follows
  };

  LoadTape() = default;
  LoadTape(const LoadTape&) = delete;
  LoadTape& operator=(const LoadTape&) = delete;
  ~LoadTape();

  // ---- writing ----
  /// The position the next record takes.
  const char* Position() const noexcept { return FNext; }
  Begin* AddBegin(const NameRec* AName) {
    auto* b = reinterpret_cast<Begin*>(AddHead(kBegin, 0, 0, sizeof(Begin), 0));
    b->Name = AName;
    b->ContentEnd = nullptr;
    return b;
  }
  static void SetFlag(Head* ARec, Flag AFlag) noexcept { ARec->Word |= uint64_t{AFlag} << 8; }
  void AddAttr(const NameRec* AName, std::u16string_view AValue, bool AMayHoldQuote);
  void AddAttrUtf8(const NameRec* AName, std::string_view AValue, bool AMayHoldQuote, bool AHigh) {
    const uint8_t flags = (AMayHoldQuote ? kMayHoldQuote : 0) | (AHigh ? kHigh : 0);
    char* p = AddHead(kAttrUtf8, flags, AValue.size(), sizeof(Named), AValue.size());
    reinterpret_cast<Named*>(p)->Name = AName;
    if (!AValue.empty()) std::memcpy(p + sizeof(Named), AValue.data(), AValue.size());
  }
  void AddText(Kind AKind, std::u16string_view AValue);
  void AddTextUtf8(Kind AKind, std::string_view AValue, bool AHigh) {
    char* p = AddHead(AKind, AHigh ? kHigh : 0, AValue.size(), sizeof(Head), AValue.size());
    if (!AValue.empty()) std::memcpy(p + sizeof(Head), AValue.data(), AValue.size());
  }
  void AddInstruction(const NameRec* ATarget, std::u16string_view AData);
  /// Drops every record from APosition on (a start tag cut short).
  void Truncate(const char* APosition) noexcept;

  /// Elements whose content is still here: none left, and nothing needs opening.
  size_t Lazy = 0;
  /// A start tag below the load's root declared a namespace.
  bool Declarations = false;
  /// The record of each element left lazy, kept once it is open: its declarations as read are
  /// asked for while its descendants open.
  std::unordered_map<const void*, const char*> Begins;
  /// What the builder of the last open knew, for the next one (the builder's own type).
  std::shared_ptr<void> Resume;

  // ---- reading ----
  // A position read back is resolved before it is compared: the end of a block and the start
  // of the next are the same place.
  static const char* Resolve(const char* APosition) noexcept {
    if (reinterpret_cast<const Head*>(APosition)->GetKind() == kJump) [[unlikely]]
      std::memcpy(&APosition, APosition + sizeof(Head), sizeof(char*));
    return APosition;
  }
  /// The record at APosition, passing over block jumps; APosition moves past it.
  static const Head* Next(const char*& APosition) noexcept {
    APosition = Resolve(APosition);
    auto* h = reinterpret_cast<const Head*>(APosition);
    const Kind kind = h->GetKind();
    size_t size;
    if (kind == kBegin) {
      size = sizeof(Begin);
    } else {
      // attribute and instruction records carry a name before their value; UTF-16 values
      // take two bytes a unit
      constexpr uint32_t kNamed = 1u << kAttr | 1u << kAttrUtf8 | 1u << kInstruction;
      constexpr uint32_t kWide = 1u << kAttr | 1u << kText | 1u << kSpace | 1u << kCData | 1u << kComment |
                                 1u << kInstruction;
      size = ((kNamed >> kind) & 1 ? sizeof(Named) : sizeof(Head)) + (h->Length() << ((kWide >> kind) & 1));
    }
    APosition += (size + 7) & ~size_t{7};
    return h;
  }
  /// The value of a record that has one.
  static std::u16string_view Units(const Head* ARec) noexcept;
  static std::string_view Bytes(const Head* ARec) noexcept;
  /// The name of a Begin, Attr or Instruction record.
  static std::u16string_view NameOf(const Head* ARec) noexcept;

 private:
  // a jump record closes every block, so each block keeps room for one
  static constexpr size_t kJumpBytes = sizeof(Head) + sizeof(char*);
  static constexpr uint64_t kMaxLength = (uint64_t{1} << 48) - 1;

  char* Reserve(size_t ABytes) {
    if (static_cast<size_t>(FEnd - FNext) < ABytes + kJumpBytes) return ReserveInNewBlock(ABytes);
    char* p = FNext;
    FNext += ABytes;
    reinterpret_cast<Head*>(FNext)->Word = 0;  // the end, until a record or a jump comes
    return p;
  }
  char* ReserveInNewBlock(size_t ABytes);
  char* AddHead(Kind AKind, uint8_t AFlags, size_t ALength, size_t AExtra, size_t APayload) {
    if (ALength > kMaxLength) TooLong();
    char* p = Reserve((AExtra + APayload + 7) & ~size_t{7});
    reinterpret_cast<Head*>(p)->Word = AKind | (uint64_t{AFlags} << 8) | (uint64_t{ALength} << 16);
    return p;
  }
  [[noreturn]] static void TooLong();
  static size_t PayloadOffset(Kind AKind) noexcept;

  struct Block {
    char* Start;
    size_t Size;
  };
  std::vector<Block> FBlocks;
  char* FNext = nullptr;
  char* FEnd = nullptr;
};

}  // namespace vn::detail
