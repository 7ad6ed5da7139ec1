// What a document load keeps instead of nodes: one 16-byte record per value and per member, in
// document order, and the raw text of all of them in one block, both in the load's pool. A
// container stays a record until someone opens it (Child, ChildArray, a path step, an edit);
// then its children become nodes, each container among them again holding only its records.
// The writer walks records of containers nobody opened without making a node.
#pragma once

#include <cstdint>

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

struct JSONStore {
  static constexpr uint32_t kChunkShift = 12, kChunkMask = (1u << kChunkShift) - 1;
  JSONRec** Chunks;  // records by index: Chunks[i >> kChunkShift][i & kChunkMask]
  const void* Text;
  NodePool* Pool;
  uint8_t Width;  // of the text's code units: 1 (UTF-8 bytes) or 2

  const JSONRec& At(uint32_t AIndex) const noexcept { return Chunks[AIndex >> kChunkShift][AIndex & kChunkMask]; }
  /// A record's raw text as a node would hold it (never owned).
  JSONText TextOf(const JSONRec& ARec) const noexcept {
    JSONText t;
    if (ARec.Flags & JSONRec::kLiteral) {
      static constexpr char cNull[] = "null", cTrue[] = "true", cFalse[] = "false";
      t.Data = ARec.Type == jdtNull ? cNull : ARec.Length == 4 ? cTrue : cFalse;
      t.Width = 1;
    } else if (ARec.Flags & JSONRec::kHasText) {
      t.Data = static_cast<const char*>(Text) + size_t{ARec.Text} * Width;
      t.Width = Width;
    } else {
      return t;
    }
    t.Length = ARec.Length;
    t.Plain = ARec.Plain;
    return t;
  }
};

/// Makes nodes out of records; the node classes let it set what a load sets.
class JSONLazy {
 public:
  /// A container node for record ARec that opens on first access (or an empty one made now).
  static TVnJSONBase* NewContainer(JSONStore& AStore, uint32_t ARec);
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
