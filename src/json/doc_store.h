// What a document load keeps instead of nodes: one 16-byte record per value and per member, in
// document order, and the raw text of all of them in one block. A
// container stays a record until someone opens it (Child, ChildArray, a path step, an edit);
// then its children become nodes, each container among them again holding only its records.
// The writer walks records of containers nobody opened without making a node.
#pragma once

#include <cstdint>
#include <utility>

#include "vnxml/json_document.h"

namespace vn::detail {

struct JSONRec {
  uint32_t Text;    // offset of the raw text in the store's text block, in code units
  uint32_t Length;  // of the text in code units; a container: how many children it has
  uint32_t Next;    // the record after this one and everything inside it
  JSONNodeClass Class;  // Simple, Member, Object or Array
  uint8_t Type;         // a simple value's TVnJSONDataType
  uint8_t Plain;        // JSONText's mark
  uint8_t Flags;
  static constexpr uint8_t kHasText = 1, kLiteral = 2;
};
static_assert(sizeof(JSONRec) == 16);

/// The records and text of one load, on the heap apart from the load's pool: pool blocks grow
/// to huge pages, of which a small tree would leave most unused. Counted by the containers that
/// still hold records; nodes made from records copy their text into the pool.
struct JSONStore {
 public:
  static constexpr uint32_t kChunkShift = 12, kChunkMask = (1u << kChunkShift) - 1;

  explicit JSONStore(uint8_t AWidth) noexcept : FWidth(AWidth) {}
  JSONStore(const JSONStore&) = delete;
  JSONStore& operator=(const JSONStore&) = delete;

  void AddRef() noexcept { ++FRefs; }
  /// The last release frees the store.
  void Release() noexcept {
    if (--FRefs == 0) delete this;
  }

  JSONRec& At(uint32_t AIndex) const noexcept { return FChunks[AIndex >> kChunkShift][AIndex & kChunkMask]; }
  uint32_t Count() const noexcept { return FCount; }
  uint8_t Width() const noexcept { return FWidth; }
  /// A new record at the end, its Next the index after it.
  uint32_t Add(JSONNodeClass AClass);
  /// Room for AUnits code units at the end of the text; ARec points at it.
  void* Room(JSONRec& ARec, size_t AUnits);
  /// Space for AUnits code units of text in all.
  void ReserveText(size_t AUnits);

  /// A record's raw text as a node would hold it (never owned, valid while the store lives).
  JSONText TextOf(const JSONRec& ARec) const noexcept {
    JSONText t;
    if (ARec.Flags & JSONRec::kLiteral) {
      static constexpr char cNull[] = "null", cTrue[] = "true", cFalse[] = "false";
      t.Data = ARec.Type == jdtNull ? cNull : ARec.Length == 4 ? cTrue : cFalse;
      t.Width = 1;
    } else if (ARec.Flags & JSONRec::kHasText) {
      t.Data = FText + size_t{ARec.Text} * FWidth;
      t.Width = FWidth;
    } else {
      return t;
    }
    t.Length = ARec.Length;
    t.Plain = ARec.Plain;
    return t;
  }

 private:
  ~JSONStore();
  JSONRec** FChunks = nullptr;
  uint32_t FChunkCount = 0, FChunkCap = 0;
  uint32_t FCount = 0;
  uint32_t FRefs = 1;  // the loader's
  uint8_t FWidth;
  char* FText = nullptr;
  size_t FTextUsed = 0, FTextCap = 0;
};

/// Makes nodes out of records; the node classes let it set what a load sets.
class JSONLazy {
 public:
  /// A node of class AClass made in APool.
  static TVnJSONBase* NewNode(NodePool& APool, JSONNodeClass AClass);
  /// A container node of APool for record ARec that opens on first access (or an empty one).
  static TVnJSONBase* NewContainer(NodePool& APool, JSONStore& AStore, uint32_t ARec);
  /// Lets go of ANode's records (it dies or was emptied).
  static void DropRecords(TVnJSONBase& ANode) noexcept {
    if (JSONStore* store = std::exchange(ANode.FStore, nullptr)) store->Release();
  }
  /// Turns ANode's records into child nodes.
  static void Expand(TVnJSONBase& ANode);
  /// What a node made by a load starts as: in its owner's list, counted once by it.
  static void Counted(TVnJSONBase* ANode, TVnJSONBase* AOwner) noexcept {
    ANode->FOwner = AOwner;
    ANode->FDestroyChilds = true;  // made without an owner, an array would think it lists a path result
    ANode->SetAutoDestroy(false);
    ANode->FRefCount = 1;  // the owner's reference
  }
  /// The store and record of a container nobody opened, or nil.
  static const JSONStore* StoreOf(const TVnJSONBase& ANode, uint32_t& ARec) noexcept {
    ARec = ANode.FRec;
    return ANode.FStore;
  }
};

}  // namespace vn::detail
