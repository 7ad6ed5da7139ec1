// Loaded containers open on first access: their records become nodes of the load's pool, so
// that a node handed out once is the same node ever after.
#include "json/doc_store.h"

namespace vn {

Integer TVnJSONBase::LazyCount() const noexcept { return static_cast<Integer>(FStore->At(FRec).Length); }

void TVnJSONBase::Expand() const { detail::JSONLazy::Expand(const_cast<TVnJSONBase&>(*this)); }

}  // namespace vn

namespace vn::detail {

namespace {
// Kept apart from the allocation functions: seen together, the compiler takes the node's own
// delete for a mismatch with the global new inside them.
TVnJSONBase* NewNode(NodePool& APool, JSONNodeClass AClass) {
  switch (AClass) {
    case JSONNodeClass::Object: return new (APool) TVnJSONObject();
    case JSONNodeClass::Array: return new (APool) TVnJSONArray();
    case JSONNodeClass::Member: return new (APool) TVnJSONMember();
    default: return new (APool) TVnJSONSimpleType();
  }
}
}  // namespace

TVnJSONBase* JSONLazy::NewContainer(JSONStore& AStore, uint32_t ARec) {
  const JSONRec& rec = AStore.At(ARec);
  TVnJSONBase* node = NewNode(*AStore.Pool, rec.Class);
  if (rec.Length) {
    node->FStore = &AStore;
    node->FRec = ARec;
  }
  return node;
}

void JSONLazy::Expand(TVnJSONBase& ANode) {
  JSONStore& store = *ANode.FStore;
  const JSONRec& rec = store.At(ANode.FRec);
  const uint32_t count = rec.Length;
  NodePool& pool = *store.Pool;
  // Room first: should it fail, the node stays as it was.
  ANode.FObjects.reserve(count, &pool);
  // A node made from a record may fail to come (memory): the children made so far are in the
  // list and the rest of the records are given up, so the tree stays whole.
  ANode.FStore = nullptr;
  uint32_t i = ANode.FRec + 1;
  for (uint32_t k = 0; k < count; ++k) {
    const JSONRec& child = store.At(i);
    TVnJSONBase* node;
    if (child.Class == JSONNodeClass::Member) {
      auto* member = static_cast<TVnJSONMember*>(NewNode(pool, JSONNodeClass::Member));
      Counted(member, &ANode);
      member->FName = store.TextOf(child);
      ANode.FObjects.push_back(member, &pool);
      const uint32_t v = i + 1;
      const JSONRec& value = store.At(v);
      TVnJSONBase* valueNode = value.Class == JSONNodeClass::Simple ? NewNode(pool, JSONNodeClass::Simple)
                                                                     : NewContainer(store, v);
      Counted(valueNode, member);
      if (value.Class == JSONNodeClass::Simple) {
        auto* simple = static_cast<TVnJSONSimpleType*>(valueNode);
        simple->FRaw = store.TextOf(value);
        simple->FJSONType = static_cast<TVnJSONDataType>(value.Type);
      }
      member->FObjects.reserve(1, &pool);
      member->FObjects.push_back(valueNode, &pool);
      member->FValue = valueNode;
      static_cast<TVnJSONObject&>(ANode).FLastMember = member;
      i = child.Next;
      continue;
    }
    if (child.Class == JSONNodeClass::Simple) {
      auto* simple = static_cast<TVnJSONSimpleType*>(NewNode(pool, JSONNodeClass::Simple));
      simple->FRaw = store.TextOf(child);
      simple->FJSONType = static_cast<TVnJSONDataType>(child.Type);
      node = simple;
    } else {
      node = NewContainer(store, i);
    }
    Counted(node, &ANode);
    ANode.FObjects.push_back(node, &pool);
    i = child.Next;
  }
}

}  // namespace vn::detail
