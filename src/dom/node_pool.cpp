// Where nodes live: the pool a load carves its nodes from (blocks that double in size, freed
// all at once), and the allocation functions of nodes, which tell a pool's node from a heap
// node by its flag and find its pool by its address.
#include <sys/mman.h>

#include <algorithm>
#include <mutex>

#include <vector>

#include "dom/load_tape.h"
#include "dom/ns_scope.h"
#include "internal/huge_pages.h"
#include "vnxml/dom_element.h"
#include "vnxml/dom_storage.h"

#if defined(__SANITIZE_ADDRESS__)
#define VNXML_POOL_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VNXML_POOL_ASAN 1
#endif
#endif

#ifdef VNXML_POOL_ASAN
#include <sanitizer/asan_interface.h>
#endif

namespace vn::detail {

namespace {
// Small loads (a fragment, a short message) stay small; large ones soon get large blocks.
// Sizes count the whole block; every one is a multiple of a chunk and aligned to one.
constexpr size_t kChunk = NodePool::kChunk;
constexpr size_t kFirstBlock = kChunk;
constexpr size_t kLargestBlock = 1024 * 1024;
// Pieces above this size get blocks of their own: carving them from chunks would waste the rest
// of a chunk each.
constexpr size_t kLargePiece = kChunk / 4;
static_assert(kHugePage % kChunk == 0);

void Poison([[maybe_unused]] void* APtr, [[maybe_unused]] size_t ABytes) noexcept {
#ifdef VNXML_POOL_ASAN
  // Carved memory is invisible to the sanitizer otherwise: free space and freed nodes are
  // marked, so a stray access into them is still reported.
  ASAN_POISON_MEMORY_REGION(APtr, ABytes);
#endif
}
}  // namespace

struct NodePool::Block {
  NodePool* Pool;  // the header of the block's first chunk
  Block* Next;
  size_t Size;  // bytes of the whole block, this header included
};

// A piece too large for a chunk, in a heap block of its own.
struct NodePool::Large {
  Large* Next;
  size_t Size;  // bytes behind this header
};

// What the pool holds for its nodes: one count per name record and scope they use uncounted,
// and the nodes that got extras.
struct NodePool::Held {
  std::vector<NameRec*> Names;
  std::vector<NsScope*> Scopes;
  std::vector<TVnDOMNode*> WithExtras;
};

namespace {
// Blocks of freed pools, kept for the next load: fresh memory from the system costs a page
// fault per page, more than the rest of a load. Only the standard sizes are kept, up to a bound.
class BlockCache {
 public:
  static BlockCache& Instance() {
    // Never destroyed: pools may be freed by static destructors after this one would run.
    static BlockCache& cache = *new BlockCache;
    return cache;
  }
  static int SizeClass(size_t ASize) noexcept {
    int c = 0;
    for (size_t s = kFirstBlock; s <= kLargestBlock; s *= 2, ++c)
      if (s == ASize) return c;
    return ASize == kHugePage ? kClasses - 1 : -1;
  }
  void* Take(size_t ASize) {
    int c = SizeClass(ASize);
    if (c < 0) return nullptr;
    std::lock_guard<std::mutex> guard(FLock);
    void* b = FFree[c];
    if (b) {
      FFree[c] = *static_cast<void**>(b);
      FBytes -= ASize;
    } else if (c == kClasses - 1 && FLentCount) {
      b = FLent[--FLentCount];
    }
    return b;
  }
  bool Keep(void* ABlock, size_t ASize) {
    int c = SizeClass(ASize);
    if (c < 0) return false;
    std::lock_guard<std::mutex> guard(FLock);
    if (FBytes + ASize > kCacheBytes) return Lend(ABlock, c);
    *static_cast<void**>(ABlock) = FFree[c];
    FFree[c] = ABlock;
    FBytes += ASize;
    return true;
  }

 private:
  // Huge blocks past the bound are lent to the system instead of unmapped: it takes their pages
  // back when it needs memory, and until then a large load that follows reuses them without a
  // fault. The block's own memory may be gone when it comes back, so the list is kept here.
  bool Lend([[maybe_unused]] void* ABlock, [[maybe_unused]] int AClass) noexcept {
#ifdef MADV_FREE
    if (AClass != kClasses - 1 || FLentCount == kLentBlocks) return false;
    if (madvise(ABlock, kHugePage, MADV_FREE) != 0) return false;
    FLent[FLentCount++] = ABlock;
    return true;
#else
    return false;
#endif
  }

  static constexpr size_t kCacheBytes = 32 * 1024 * 1024;
  static constexpr size_t kLentBlocks = 128;  // 256 MB of huge pages
  void* FLent[kLentBlocks] = {};
  size_t FLentCount = 0;
  static constexpr int kClasses = 10;  // kFirstBlock .. kLargestBlock, then the huge blocks
  static_assert(kFirstBlock << (kClasses - 2) == kLargestBlock);
  std::mutex FLock;
  void* FFree[kClasses] = {};
  size_t FBytes = 0;
};
}  // namespace

NodePool* NodePool::Create() { return new NodePool(); }

NodePool::~NodePool() {
  delete FTape;
  if (Held* held = FHeld) {
    for (NameRec* rec : held->Names) {
      if (rec->Holder == this) rec->Holder = nullptr;  // another pool may come at this address
      NameRef::Release(rec);
    }
    for (NsScope* scope : held->Scopes) Release(scope);
    delete held;
  }
  while (Large* l = FLarge) {
    FLarge = l->Next;
    Unpoison(l + 1, l->Size);
    std::free(l);
  }
  while (Block* b = FBlocks) {
    FBlocks = b->Next;
    const size_t data = b->Size - sizeof(Block);
    // A kept block stays marked as free space until a pool carves it again.
    Poison(b + 1, data);
    if (BlockCache::Instance().Keep(b, b->Size)) continue;
    if (b->Size == kHugePage) {
      UnmapHugeBlock(b, kHugePage);
      continue;
    }
    Unpoison(b + 1, data);
    std::free(b);
  }
}

void NodePool::Unpoison([[maybe_unused]] void* APtr, [[maybe_unused]] size_t ABytes) noexcept {
#ifdef VNXML_POOL_ASAN
  ASAN_UNPOISON_MEMORY_REGION(APtr, ABytes);
#endif
}

void* NodePool::AllocateSlow(size_t ABytes) {
  if (ABytes > kLargePiece) return AllocateLarge(ABytes);
  if (FEnd == FBlockEnd) {
    size_t size = FBlocks ? std::min(FBlocks->Size * 2, kLargestBlock) : kFirstBlock;
    Block* block = nullptr;
    // A load that has grown to the largest blocks goes on in huge pages.
    if (size == kLargestBlock && ((block = static_cast<Block*>(BlockCache::Instance().Take(kHugePage))) ||
                                  (block = static_cast<Block*>(MapHugeBlock(kHugePage)))))
      size = kHugePage;
    if (!block) block = static_cast<Block*>(BlockCache::Instance().Take(size));
    if (!block) block = static_cast<Block*>(std::aligned_alloc(kChunk, size));
    if (!block) throw std::bad_alloc();
    Unpoison(block, sizeof(Block));
    block->Pool = this;
    block->Size = size;
    block->Next = FBlocks;
    FBlocks = block;
    Poison(block + 1, size - sizeof(Block));
    FNext = reinterpret_cast<char*>(block + 1);
    FEnd = reinterpret_cast<char*>(block) + kChunk;
    FBlockEnd = reinterpret_cast<char*>(block) + size;
  } else {
    // the next chunk of the block, behind its header
    Unpoison(FEnd, sizeof(NodePool*));
    *reinterpret_cast<NodePool**>(FEnd) = this;
    FNext = FEnd + sizeof(NodePool*);
    FEnd += kChunk;
  }
  char* p = FNext;
  FNext += ABytes;
  Unpoison(p, ABytes);
  return p;
}

void* NodePool::AllocateLarge(size_t ABytes) {
  auto* large = static_cast<Large*>(std::malloc(sizeof(Large) + ABytes));
  if (!large) throw std::bad_alloc();
  large->Next = FLarge;
  large->Size = ABytes;
  FLarge = large;
  return large + 1;
}

void NodePool::FreeNode(void* ANode, size_t ASize) noexcept {
  Poison(ANode, ASize);
  if (--FLive == 0) delete this;
}

void NodePool::Seal() noexcept {
  FSealed = true;
  if (--FLive == 0) delete this;
}

void NodePool::HoldName(NameRec* ARec) {
  if (ARec->Holder == this) {
    --ARec->Refs;  // the pool has its count already; the table's keeps the record above 0
    return;
  }
  try {
    if (!FHeld) FHeld = new Held;
    FHeld->Names.push_back(ARec);
  } catch (...) {
    NameRef::Release(ARec);
    throw;
  }
  ARec->Holder = this;
}

void NodePool::HoldScope(NsScope* AScope) {
  if (!AScope) return;
  try {
    if (!FHeld) FHeld = new Held;
    FHeld->Scopes.push_back(AScope);
  } catch (...) {
    Release(AScope);
    throw;
  }
}

void NodePool::NoteExtras(TVnDOMNode* ANode) {
  if (!FPristine) return;  // a touched pool frees node by node, and each node its extras
  try {
    if (!FHeld) FHeld = new Held;
    FHeld->WithExtras.push_back(ANode);
  } catch (...) {
    Touch();
  }
}

size_t NodePool::ExtrasCount() const noexcept { return FHeld ? FHeld->WithExtras.size() : 0; }

TVnDOMNode* NodePool::ExtrasAt(size_t AIndex) const noexcept { return FHeld->WithExtras[AIndex]; }

void NodePool::Drop() noexcept { delete this; }

void NodePool::DropTape() noexcept {
  delete FTape;
  FTape = nullptr;
}

}  // namespace vn::detail

namespace vn {

// ---- memory ----

static_assert(alignof(TVnDOMElement) <= 8);

void* TVnDOMNode::operator new(size_t ASize) { return ::operator new(ASize); }

void TVnDOMNode::operator delete(void* APtr) noexcept { ::operator delete(APtr); }

void TVnDOMNode::operator delete(TVnDOMNode* ANode, std::destroying_delete_t) noexcept {
  detail::DestroyNode(ANode, ANode->FInPool);
}

void TVnDOMNode::operator delete(void* APtr, detail::NodePool& APool) noexcept { APool.FreeNode(APtr, 0); }

}  // namespace vn
