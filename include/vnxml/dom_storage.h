// dom_storage.h: the compact containers inside DOM nodes (unit uVnXMLDOM, internal).
// Nodes are many and small, so each container here is one pointer: a child array is a single
// heap block (none while empty), a name is a counted record shared by every node of a document
// with that qualified name, and a stored value is one block holding its length and characters.
// A load carves nodes, values and arrays out of a NodePool instead of the heap; containers mark
// such blocks and never free them, the pool goes when its last node does.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace vn {
class TVnDOMNode;
}

namespace vn::detail {

struct NameRec;
struct NsScope;
class LoadTape;

/// Memory for the nodes of one load and everything they hold, carved front to back from large
/// blocks. Each node made here counts on the pool; the values and arrays of those nodes ride
/// along uncounted. The loader holds the pool until Seal; after that the last node freed frees
/// every block at once. Like the trees it serves (and their shared names), a pool is used by one
/// thread at a time: the count is plain.
/// Blocks are aligned to kChunk and every chunk of kChunk bytes starts with the pool's address,
/// and no carved piece crosses a chunk's end: the pool of a node is found from the node's
/// address alone, so nodes carry no pointer to it. Pieces too large for a chunk get blocks of
/// their own (never nodes).
class NodePool {
 public:
  static constexpr size_t kChunk = 4096;

  static NodePool* Create();
  NodePool(const NodePool&) = delete;
  NodePool& operator=(const NodePool&) = delete;

  /// ABytes of memory aligned to 8, valid while the pool lives.
  void* Allocate(size_t ABytes) {
    ABytes = (ABytes + 7) & ~static_cast<size_t>(7);
    if (static_cast<size_t>(FEnd - FNext) < ABytes) return AllocateSlow(ABytes);
    char* p = FNext;
    FNext += ABytes;
    Unpoison(p, ABytes);
    return p;
  }
  /// Memory for a node of ASize bytes; the node counts on the pool until FreeNode.
  void* AllocateNode(size_t ASize) {
    void* p = Allocate(ASize);
    ++FLive;
    return p;
  }
  /// Gives back the memory of a node made by AllocateNode; the last one frees the pool.
  void FreeNode(void* ANode, size_t ASize) noexcept;
  /// The loader is done: from now on the nodes alone keep the pool.
  void Seal() noexcept;
  /// A loader goes on making nodes here (opening content left on the tape), until Seal.
  void Reopen() noexcept { ++FLive; }
  /// The tape of the load's content not yet made into nodes, freed with the pool.
  void HoldTape(LoadTape* ATape) noexcept { FTape = ATape; }
  /// Every element is open: the tape goes.
  void DropTape() noexcept;
  LoadTape* Tape() const noexcept { return FTape; }

  // ---- freeing a loaded tree in one step ----
  // While pristine, every node of the pool is where its load put it (below one target) and owns
  // nothing but pool memory and what the pool holds for it: its name, its namespace scope and
  // its extras. Freeing the target may then drop the pool without visiting a node.
  /// Something may have changed a node of this pool: from now on its nodes are freed one by one.
  void Touch() noexcept { FPristine = false; }
  /// Sealed and never touched.
  bool Pristine() const noexcept { return FPristine && FLive != 0 && FSealed; }
  /// ARec's name is given to nodes of this pool uncounted; the pool keeps one count on it.
  /// ARec comes with a count for the pool: it is kept, or dropped when the pool holds one already.
  void HoldName(NameRec* ARec);
  /// AScope, with a count for the pool, is given to elements of this pool uncounted.
  void HoldScope(NsScope* AScope);
  /// ANode, of this pool, got extras; a drop must take them away.
  void NoteExtras(TVnDOMNode* ANode);
  /// The nodes that got extras; valid while pristine.
  size_t ExtrasCount() const noexcept;
  TVnDOMNode* ExtrasAt(size_t AIndex) const noexcept;
  /// Frees the pool with every node in it; only when pristine, by the owner of its target.
  void Drop() noexcept;
  /// The pool of a node made in one: the address at the start of the node's chunk.
  static NodePool* Of(const void* ANode) noexcept {
    return *reinterpret_cast<NodePool* const*>(reinterpret_cast<uintptr_t>(ANode) & ~(kChunk - 1));
  }

 private:
  struct Block;
  struct Large;
  struct Held;
  NodePool() = default;
  ~NodePool();
  void* AllocateSlow(size_t ABytes);
  void* AllocateLarge(size_t ABytes);
  static void Unpoison(void* APtr, size_t ABytes) noexcept;

  // Nodes made and not yet freed, plus one for the loader until Seal.
  size_t FLive = 1;
  bool FPristine = true;
  bool FSealed = false;
  Held* FHeld = nullptr;
  LoadTape* FTape = nullptr;
  Block* FBlocks = nullptr;
  Large* FLarge = nullptr;
  char* FNext = nullptr;
  char* FEnd = nullptr;       // the end of the chunk being carved
  char* FBlockEnd = nullptr;  // the end of the block being carved
};

/// The destroying delete of the nodes of either tree: ANode, made on the heap or (AInPool) in a
/// pool, is destroyed and its memory given back where it came from. The flag is read first, as
/// the node is gone after its destructor.
template <class T>
void DestroyNode(T* ANode, bool AInPool) noexcept {
  NodePool* pool = AInPool ? NodePool::Of(ANode) : nullptr;
  const size_t size = pool ? ANode->ClassType()->InstanceSize : 0;
  ANode->~T();
  if (pool)
    pool->FreeNode(ANode, size);
  else
    ::operator delete(ANode);
}

/// A growable array of pointers that owns nothing it points at; one null pointer while empty.
/// Growing with a pool takes the new block from it; a block from a pool is never freed here.
template <class T>
class PtrVector {
 public:
  PtrVector() noexcept = default;
  PtrVector(const PtrVector&) = delete;
  PtrVector& operator=(const PtrVector&) = delete;
  ~PtrVector() { FreeBlock(); }

  uint32_t size() const noexcept { return FBlock ? FBlock->Size : 0; }
  bool empty() const noexcept { return !FBlock || FBlock->Size == 0; }
  T* operator[](uint32_t AIndex) const noexcept { return Items()[AIndex]; }
  T** begin() const noexcept { return FBlock ? Items() : nullptr; }
  T** end() const noexcept { return FBlock ? Items() + FBlock->Size : nullptr; }
  T* front() const noexcept { return Items()[0]; }
  T* back() const noexcept { return Items()[FBlock->Size - 1]; }

  /// Room for ACapacity items; from APool when given, else from the heap.
  void reserve(uint32_t ACapacity, NodePool* APool = nullptr) {
    if (ACapacity <= Capacity()) return;
    if (ACapacity > kCapMask) throw std::bad_alloc();
    uint32_t size = this->size();
    size_t bytes = sizeof(Header) + sizeof(T*) * ACapacity;
    Header* block;
    if (!APool && !(FBlock && FBlock->Cap & kPooled)) {
      block = static_cast<Header*>(std::realloc(FBlock, bytes));
      if (!block) throw std::bad_alloc();
    } else {
      block = static_cast<Header*>(APool ? APool->Allocate(bytes) : std::malloc(bytes));
      if (!block) throw std::bad_alloc();
      if (size) std::memcpy(block + 1, Items(), sizeof(T*) * size);
      FreeBlock();
    }
    FBlock = block;
    FBlock->Size = size;
    FBlock->Cap = ACapacity | (APool ? kPooled : 0);
  }
  /// Bytes of a pool block for ACount items (see Adopt).
  static constexpr size_t BlockBytes(uint32_t ACount) noexcept { return sizeof(Header) + sizeof(T*) * ACount; }
  /// Takes ABlock, BlockBytes(ACount) of a pool's memory, as its array of ACount items, which the
  /// caller fills through the pointer returned; the array held before is given up.
  T** Adopt(void* ABlock, uint32_t ACount) noexcept {
    FreeBlock();
    FBlock = static_cast<Header*>(ABlock);
    FBlock->Size = ACount;
    FBlock->Cap = ACount | kPooled;
    return Items();
  }
  /// Adds the ACount items at AItems at the end; room for them must be reserved.
  void append_reserved(T* const* AItems, uint32_t ACount) noexcept {
    if (!ACount) return;
    std::memcpy(Items() + FBlock->Size, AItems, sizeof(T*) * ACount);
    FBlock->Size += ACount;
  }
  void push_back(T* AItem, NodePool* APool = nullptr) {
    Grow(APool);
    Items()[FBlock->Size++] = AItem;
  }
  void insert(uint32_t AIndex, T* AItem) {
    Grow(nullptr);
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
    FreeBlock();
    FBlock = nullptr;
  }
  /// True when the array is a heap block of its own (not empty, not a pool's).
  bool OwnsBlock() const noexcept { return FBlock && !(FBlock->Cap & kPooled); }
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

 private:
  static constexpr uint32_t kPooled = 0x80000000u;
  static constexpr uint32_t kCapMask = 0x7FFFFFFFu;
  struct Header {
    uint32_t Size;
    uint32_t Cap;  // capacity, with kPooled for a block of a pool
  };
  T** Items() const noexcept { return reinterpret_cast<T**>(FBlock + 1); }
  uint32_t Capacity() const noexcept { return FBlock ? FBlock->Cap & kCapMask : 0; }
  void FreeBlock() noexcept {
    if (FBlock && !(FBlock->Cap & kPooled)) std::free(FBlock);
  }
  void Grow(NodePool* APool) {
    uint32_t cap = Capacity();
    // most nodes have one or two children: start small, then double
    if (size() == cap) reserve(cap ? cap * 2 : 2, APool);
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
  /// The last pool that took a count on the record for its nodes (see NodePool::HoldName).
  const void* Holder;
};

class NameTable;

/// A node's name: one pointer to a shared NameRec; "" until set. A name given by a load is held
/// by the load's pool (the low bit of the pointer says so) and counts nothing itself.
class NameRef {
 public:
  NameRef() noexcept = default;
  NameRef(const NameRef&) = delete;
  NameRef& operator=(const NameRef&) = delete;
  ~NameRef() { Drop(); }

  std::u16string_view Qualified() const noexcept {
    const NameRec* r = Rec();
    return r ? std::u16string_view(r->Chars, r->Length) : std::u16string_view();
  }
  std::u16string_view Local() const noexcept {
    const NameRec* r = Rec();
    if (!r) return {};
    if (r->Colon == NameRec::kNoColon) return {r->Chars, r->Length};
    return {r->Chars + r->Colon + 1, r->Length - r->Colon - 1};
  }
  std::u16string_view Prefix() const noexcept {
    const NameRec* r = Rec();
    if (!r || r->Colon == NameRec::kNoColon) return {};
    return {r->Chars, r->Colon};
  }
  /// Splits at the first colon; an empty prefix leaves the local name alone. With a table the
  /// record is shared through it.
  void Set(std::u16string_view AName, NameTable* ATable = nullptr);
  /// As Set through ATable, the record held by APool instead of counted here.
  void SetHeld(std::u16string_view AName, NameTable& ATable, NodePool& APool);
  /// Takes ARec, which the pool of this node holds already, uncounted (a load's repeated names).
  void TakeHeld(NameRec* ARec) noexcept {
    Take(ARec);
    FBits |= kHeld;
  }
  void SetParts(std::u16string_view APrefix, std::u16string_view ALocal, NameTable* ATable = nullptr);
  void SetPrefix(std::u16string_view APrefix, NameTable* ATable = nullptr);
  /// A record that lives for the whole program (the fixed names "#text", "#comment", ...).
  void SetStatic(const NameRec& ARec) noexcept;
  /// Moves the name into ATable's record of the same text, unless it is there already.
  void Rehome(NameTable* ATable);
  /// The table the record belongs to, or nil.
  const void* OwnerTable() const noexcept {
    const NameRec* r = Rec();
    return r && r->Refs != NameRec::kStatic ? r->Owner : nullptr;
  }
  /// Drops one count of a record, freeing it at 0; static records stay.
  static void Release(NameRec* ARec) noexcept;
  /// The record's address: equal for names that share a record, so a search can remember what
  /// it found out about a name without reading the name again.
  const void* Key() const noexcept { return Rec(); }

 private:
  static constexpr uintptr_t kHeld = 1;
  NameRec* Rec() const noexcept { return reinterpret_cast<NameRec*>(FBits & ~kHeld); }
  /// Gives up the record: released when counted here, left to the pool when held.
  void Drop() noexcept {
    if (!(FBits & kHeld)) Release(Rec());
    FBits = 0;
  }
  void Take(NameRec* ARec) noexcept {
    Drop();
    FBits = reinterpret_cast<uintptr_t>(ARec);
  }
  uintptr_t FBits = 0;
};

/// A stored text in one block: its length, then its code units; one null pointer while empty.
/// A load from UTF-8 keeps its text as the input's bytes (checked to be well-formed UTF-8), so
/// that loading copies instead of widening and a UTF-8 save copies back; anything else is kept
/// in UTF-16. Readers take either form (Visit) or the text decoded to UTF-16 (str).
/// A block taken from a pool (AssignIn) is left to the pool when the text changes or goes.
/// Most loaded values are a few bytes: up to seven bytes of UTF-8 stand in the pointer itself,
/// behind a tag byte (its low bit set, which no block address has), and take no block.
class CompactString {
 public:
  CompactString() noexcept = default;
  CompactString(const CompactString& AOther) { CopyFrom(AOther); }
  CompactString& operator=(const CompactString& AOther) {
    if (this != &AOther) CopyFrom(AOther);
    return *this;
  }
  CompactString& operator=(std::u16string_view AText) {
    assign(AText);
    return *this;
  }
  ~CompactString() { FreeBlock(); }

  /// The text is held as UTF-8 bytes (Utf8), else as UTF-16 units (Wide).
  bool IsUtf8() const noexcept { return IsInline() || (FBits && Block()->Flags & kUtf8); }
  std::u16string_view Wide() const noexcept {
    if (!FBits || IsInline()) return {};
    return std::u16string_view(reinterpret_cast<const char16_t*>(Block() + 1), Block()->Length);
  }
  std::string_view Utf8() const noexcept {
    if (IsInline()) return std::string_view(reinterpret_cast<const char*>(&FBits) + 1, (FBits & 0xFF) >> 1);
    return FBits ? std::string_view(reinterpret_cast<const char*>(Block() + 1), Block()->Length) : std::string_view();
  }
  /// AFunc(Utf8()) or AFunc(Wide()), whichever form the text is in.
  template <class F>
  decltype(auto) Visit(F&& AFunc) const {
    if (IsUtf8()) return AFunc(Utf8());
    return AFunc(Wide());
  }
  bool empty() const noexcept { return !FBits; }
  /// The text in UTF-16.
  std::u16string str() const {
    if (IsUtf8()) return DecodeUtf8Text(Utf8());
    return std::u16string(Wide());
  }
  void assign(std::u16string_view AText) {
    if (AText.empty()) {
      Set(0);
      return;
    }
    // AText may point into this very block: build the new one before freeing the old
    Set(reinterpret_cast<uintptr_t>(Fill(std::malloc(Bytes(AText.size(), 0)), AText.data(), AText.size(), 0)));
  }
  /// Stores AText in a block of APool.
  void AssignIn(NodePool& APool, std::u16string_view AText) {
    Set(AText.empty() ? 0
                      : reinterpret_cast<uintptr_t>(
                            Fill(APool.Allocate(Bytes(AText.size(), 0)), AText.data(), AText.size(), kPooled)));
  }
  /// Stores the UTF-8 bytes AText, which must be well-formed UTF-8, in a block of APool (or
  /// in place when short).
  void AssignUtf8In(NodePool& APool, std::string_view AText) {
    if (AText.size() <= kInlineBytes) {
      Set(InlineBits(AText));
      return;
    }
    Set(reinterpret_cast<uintptr_t>(
        Fill(APool.Allocate(Bytes(AText.size(), kUtf8)), AText.data(), AText.size(), kPooled | kUtf8)));
  }
  /// The well-formed UTF-8 bytes AText in UTF-16 (out of line: the library's decoder).
  static std::u16string DecodeUtf8Text(std::string_view AText);

 private:
  static_assert(std::endian::native == std::endian::little, "the tag byte must be the pointer's low byte");
  static constexpr uint32_t kPooled = 1;
  static constexpr uint32_t kUtf8 = 2;
  static constexpr size_t kInlineBytes = sizeof(uintptr_t) - 1;
  struct Header {
    uint32_t Length;  // in code units of the form
    uint32_t Flags;
  };
  bool IsInline() const noexcept { return FBits & 1; }
  Header* Block() const noexcept { return reinterpret_cast<Header*>(FBits); }
  /// The bits of AText in place: the tag byte (length and the low bit), then the bytes.
  static uintptr_t InlineBits(std::string_view AText) noexcept {
    if (AText.empty()) return 0;
    unsigned char bytes[sizeof(uintptr_t)] = {static_cast<unsigned char>(AText.size() << 1 | 1)};
    std::memcpy(bytes + 1, AText.data(), AText.size());
    uintptr_t bits;
    std::memcpy(&bits, bytes, sizeof bits);
    return bits;
  }
  static size_t Bytes(size_t ALength, uint32_t AFlags) noexcept {
    return sizeof(Header) + ALength * (AFlags & kUtf8 ? 1 : sizeof(char16_t));
  }
  static Header* Fill(void* ABlock, const void* AUnits, size_t ALength, uint32_t AFlags) {
    if (!ABlock) throw std::bad_alloc();
    if (ALength > UINT32_MAX) throw std::bad_alloc();
    auto* block = static_cast<Header*>(ABlock);
    block->Length = static_cast<uint32_t>(ALength);
    block->Flags = AFlags;
    std::memcpy(block + 1, AUnits, Bytes(ALength, AFlags) - sizeof(Header));
    return block;
  }
  void CopyFrom(const CompactString& AOther) {
    if (!AOther.FBits || AOther.IsInline()) {
      Set(AOther.FBits);
      return;
    }
    const Header* from = AOther.Block();
    const uint32_t flags = from->Flags & kUtf8;
    Set(reinterpret_cast<uintptr_t>(Fill(std::malloc(Bytes(from->Length, flags)), from + 1, from->Length, flags)));
  }
  /// Takes ABits, freeing the block held before.
  void Set(uintptr_t ABits) noexcept {
    FreeBlock();
    FBits = ABits;
  }
  void FreeBlock() noexcept {
    if (FBits && !IsInline() && !(Block()->Flags & kPooled)) std::free(Block());
  }
  uintptr_t FBits = 0;
};

inline bool operator==(const CompactString& A, std::u16string_view B) {
  return A.IsUtf8() ? A.str() == B : A.Wide() == B;
}

}  // namespace vn::detail
