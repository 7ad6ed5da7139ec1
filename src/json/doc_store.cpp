// Loaded containers open on first access: their records become nodes of the load's pool, so
// that a node handed out once is the same node ever after.
#include "json/doc_store.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace vn {

Integer TVnJSONBase::LazyCount() const noexcept { return static_cast<Integer>(FStore->At(FRec).Length); }

void TVnJSONBase::Expand() const { detail::JSONLazy::Expand(const_cast<TVnJSONBase&>(*this)); }

}  // namespace vn

namespace vn::detail {

// ---- the store ----

JSONStore::~JSONStore() {
  for (uint32_t i = 0; i < FChunkCount; ++i) std::free(FChunks[i]);
  std::free(FChunks);
  std::free(FText);
}

uint32_t JSONStore::Add(JSONNodeClass AClass) {
  if ((FCount & kChunkMask) == 0) {
    if (FCount == UINT32_MAX) throw std::bad_alloc();
    if (FChunkCount == FChunkCap) {
      const uint32_t cap = FChunkCap ? FChunkCap * 2 : 16;
      auto* table = static_cast<JSONRec**>(std::realloc(FChunks, sizeof(JSONRec*) * cap));
      if (!table) throw std::bad_alloc();
      FChunks = table;
      FChunkCap = cap;
    }
    auto* chunk = static_cast<JSONRec*>(std::malloc(sizeof(JSONRec) << kChunkShift));
    if (!chunk) throw std::bad_alloc();
    FChunks[FChunkCount++] = chunk;
  }
  const uint32_t index = FCount++;
  At(index) = JSONRec{0, 0, FCount, AClass, static_cast<uint8_t>(jdtNull), JSONText::kPlainUnknown, 0};
  return index;
}

void JSONStore::ReserveText(size_t AUnits) {
  if (AUnits <= FTextCap) return;
  // Offsets are 32 bits wide.
  if (AUnits > UINT32_MAX) AUnits = UINT32_MAX;
  if (AUnits <= FTextUsed) throw std::bad_alloc();
  auto* block = static_cast<char*>(std::realloc(FText, AUnits * FWidth));
  if (!block) throw std::bad_alloc();
  FText = block;
  FTextCap = AUnits;
}

void* JSONStore::Room(JSONRec& ARec, size_t AUnits) {
  if (FTextUsed + AUnits > FTextCap) ReserveText(std::max(FTextCap * 2, FTextUsed + AUnits));
  if (FTextUsed + AUnits > FTextCap) throw std::bad_alloc();
  ARec.Text = static_cast<uint32_t>(FTextUsed);
  ARec.Length = static_cast<uint32_t>(AUnits);
  ARec.Flags = JSONRec::kHasText;
  void* p = FText + FTextUsed * FWidth;
  FTextUsed += AUnits;
  return p;
}

// ---- opening containers ----

// Kept apart from the allocation functions: seen together, the compiler takes the node's own
// delete for a mismatch with the global new inside them.
TVnJSONBase* JSONLazy::NewNode(NodePool& APool, JSONNodeClass AClass) {
  TVnJSONBase* node;
  switch (AClass) {
    case JSONNodeClass::Object: node = new (APool) TVnJSONObject(); break;
    case JSONNodeClass::Array: node = new (APool) TVnJSONArray(); break;
    case JSONNodeClass::Member: node = new (APool) TVnJSONMember(); break;
    default: node = new (APool) TVnJSONSimpleType(); break;
  }
  node->FInPool = true;
  return node;
}

namespace {

// A record's text for a node: into the pool, so that the node outlives the store.
JSONText PoolText(NodePool& APool, const JSONStore& AStore, const JSONRec& ARec) {
  JSONText t = AStore.TextOf(ARec);
  if (!(ARec.Flags & JSONRec::kHasText)) return t;
  const size_t bytes = size_t{t.Length} * t.Width;
  void* p = APool.Allocate(bytes ? bytes : 1);
  if (bytes) std::memcpy(p, t.Data, bytes);
  t.Data = p;
  return t;
}

TVnJSONBase* NewValue(NodePool& APool, JSONStore& AStore, uint32_t ARec) {
  const JSONRec& rec = AStore.At(ARec);
  if (rec.Class != JSONNodeClass::Simple) return JSONLazy::NewContainer(APool, AStore, ARec);
  auto* simple = static_cast<TVnJSONSimpleType*>(JSONLazy::NewNode(APool, JSONNodeClass::Simple));
  simple->StoreRaw(PoolText(APool, AStore, rec), static_cast<TVnJSONDataType>(rec.Type));
  return simple;
}
}  // namespace

TVnJSONBase* JSONLazy::NewContainer(NodePool& APool, JSONStore& AStore, uint32_t ARec) {
  const JSONRec& rec = AStore.At(ARec);
  TVnJSONBase* node = NewNode(APool, rec.Class);
  if (rec.Length) {
    AStore.AddRef();
    node->FStore = &AStore;
    node->FRec = ARec;
  }
  return node;
}

void JSONLazy::Expand(TVnJSONBase& ANode) {
  JSONStore& store = *ANode.FStore;
  const JSONRec& rec = store.At(ANode.FRec);
  const uint32_t count = rec.Length;
  NodePool& pool = *NodePool::Of(&ANode);
  // Room first: should it fail, the node stays as it was.
  ANode.FObjects.reserve(count, &pool);
  // The node keeps the store until its children are made: should one fail to come (memory),
  // those made so far stay and the rest are given up, so the tree stays whole.
  ANode.FStore = nullptr;
  struct Hold {
    JSONStore& S;
    ~Hold() { S.Release(); }
  } hold{store};
  uint32_t i = ANode.FRec + 1;
  for (uint32_t k = 0; k < count; ++k) {
    const JSONRec& child = store.At(i);
    if (child.Class == JSONNodeClass::Member) {
      auto* member = static_cast<TVnJSONMember*>(NewNode(pool, JSONNodeClass::Member));
      Counted(member, &ANode);
      ANode.FObjects.push_back(member, &pool);
      static_cast<TVnJSONObject&>(ANode).FLastMember = member;
      member->FName = PoolText(pool, store, child);
      TVnJSONBase* value = NewValue(pool, store, i + 1);  // a loaded member always has its value
      Counted(value, member);
      member->FObjects.reserve(1, &pool);
      member->FObjects.push_back(value, &pool);
      member->FValue = value;
    } else {
      TVnJSONBase* node = NewValue(pool, store, i);
      Counted(node, &ANode);
      ANode.FObjects.push_back(node, &pool);
    }
    i = child.Next;
  }
}

}  // namespace vn::detail
