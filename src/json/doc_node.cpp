// TVnJSONBase: ownership of children, automatic destruction, the not-supported scheme, and the
// forms every kind shares.
#include <vector>

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/json_document.h"
#include "json/doc_store.h"

namespace vn {

// ---- memory ----

void* TVnJSONBase::operator new(size_t ASize) { return ::operator new(ASize); }

void TVnJSONBase::operator delete(void* APtr) noexcept { ::operator delete(APtr); }

void TVnJSONBase::operator delete(TVnJSONBase* ANode, std::destroying_delete_t) noexcept {
  detail::DestroyNode(ANode, ANode->FInPool);
}

void TVnJSONBase::operator delete(void* APtr, detail::NodePool& APool) noexcept { APool.FreeNode(APtr, 0); }

// ---- ownership ----

TVnJSONBase::TVnJSONBase(TVnJSONBase* AOwner) : FOwner(AOwner) {
  if (AOwner) {
    SetAutoDestroy(false);
    AOwner->InsertObject(this);
  }
}

TVnJSONBase::TVnJSONBase(TVnJSONBase* AOwner, DeferInsert) : FOwner(AOwner) {
  if (AOwner) SetAutoDestroy(false);
}

void TVnJSONBase::Attach() {
  if (FOwner) FOwner->InsertObject(this);
}

TVnJSONBase::~TVnJSONBase() {
  DestroyObjects();
  FObjects.reset();
  if (FOwner) {
    TVnJSONBase* owner = std::exchange(FOwner, nullptr);
    owner->RemoveObject(this);
  }
}

void TVnJSONBase::InsertObject(TVnJSONBase* AChild) {
  Kids().push_back(AChild);
  AChild->_AddRef();
}

void TVnJSONBase::RemoveObject(TVnJSONBase* AChild) {
  int64_t i = Kids().IndexOf(AChild, true);
  if (i < 0) return;
  FObjects.erase(static_cast<uint32_t>(i));
  // Counted down by hand: a node in a tree never frees itself here, FreeObject decides.
  --AChild->FRefCount;
}

void TVnJSONBase::FreeObject() {
  if (FOwner) {
    TVnJSONBase* owner = std::exchange(FOwner, nullptr);
    owner->RemoveObject(this);
  }
  if (FRefCount > 0)
    SetAutoDestroy(true);
  else
    delete this;
}

void TVnJSONBase::DestroyObjects() {
  detail::JSONLazy::DropRecords(*this);  // children still in records are no nodes yet
  if (!FDestroyChilds || FObjects.empty()) {
    FObjects.clear();
    ChildrenCleared();
    return;
  }
  // Iterative over depth: a dying node's children join the work list instead of being freed by
  // its destructor, so a deep tree costs no call stack. A child that an interface still holds is
  // only let go; it dies with its last release.
  std::vector<TVnJSONBase*> work(FObjects.begin(), FObjects.end());
  FObjects.clear();
  ChildrenCleared();
  while (!work.empty()) {
    TVnJSONBase* node = work.back();
    work.pop_back();
    node->FOwner = nullptr;
    if (--node->FRefCount > 0) {
      node->SetAutoDestroy(true);
      continue;
    }
    detail::JSONLazy::DropRecords(*node);
    if (node->FDestroyChilds && !node->FObjects.empty()) {
      work.insert(work.end(), node->FObjects.begin(), node->FObjects.end());
      node->FObjects.clear();
    }
    if (!node->GiveBackToPool()) delete node;
  }
}

bool TVnJSONBase::GiveBackToPool() noexcept {
  // A node that a load made and nobody changed holds nothing but memory of its pool, so its
  // destructor would free nothing: the pool takes the memory back without it. Loads make the
  // library's own classes only, each with this base at the start of the object.
  if (!FInPool || FObjects.OwnsBlock()) return false;
  size_t size = 0;
  switch (FNodeClass) {
    case detail::JSONNodeClass::Simple: {
      auto* simple = static_cast<TVnJSONSimpleType*>(this);
      if (simple->FVar || simple->FRaw.Owned) return false;
      size = sizeof(TVnJSONSimpleType);
      break;
    }
    case detail::JSONNodeClass::Member:
      if (static_cast<TVnJSONMember*>(this)->FName.Owned) return false;
      size = sizeof(TVnJSONMember);
      break;
    case detail::JSONNodeClass::Object: size = sizeof(TVnJSONObject); break;
    case detail::JSONNodeClass::Array: size = sizeof(TVnJSONArray); break;
    default: return false;
  }
  detail::NodePool::Of(this)->FreeNode(this, size);
  return true;
}

TVnJSONDocument* TVnJSONBase::GetDocument() {
  for (TVnJSONBase* n = this; n; n = n->FOwner)
    if (auto* doc = dynamic_cast<TVnJSONDocument*>(n)) return doc;
  return nullptr;
}

// ---- the not-supported scheme ----

void TVnJSONBase::NotSupported(const char16_t* AWord) const {
  throw EVnJSONException(cVnJSONErrMethodNotSupported, _cVnJSONMethodNotSupported, {ClassName(), AWord});
}

UnicodeString TVnJSONBase::GetName() { NotSupported(u"GetName"); }
TVnJSONBase* TVnJSONBase::GetValueObj() { NotSupported(u"GetValue"); }
void TVnJSONBase::SetValue(TVnJSONBase*) { NotSupported(u"SetValue"); }
void TVnJSONBase::SetName(std::u16string_view) { NotSupported(u"SetName"); }
bool TVnJSONBase::GetAsBoolean() { NotSupported(u"GetAsBoolean"); }
double TVnJSONBase::GetAsDouble() { NotSupported(u"GetAsDouble"); }
Integer TVnJSONBase::GetAsInteger() { NotSupported(u"GetAsInteger"); }
Int64 TVnJSONBase::GetAsLargeInt() { NotSupported(u"GetAsLargeInt"); }
UnicodeString TVnJSONBase::GetAsString() { NotSupported(u"GetAsString"); }
Variant TVnJSONBase::GetAsVariant() { NotSupported(u"GetAsVariant"); }
TValue TVnJSONBase::GetAsValue() { NotSupported(u"GetAsValue"); }
void TVnJSONBase::SetAsValue(const TValue&) { NotSupported(u"SetAsValue"); }

TVnJSONObject* TVnJSONBase::GetAsObject() {
  if (auto* o = dynamic_cast<TVnJSONObject*>(this)) return o;
  NotSupported(u"GetAsObject");
}

TVnJSONArray* TVnJSONBase::GetAsArray() {
  if (auto* a = dynamic_cast<TVnJSONArray*>(this)) return a;
  NotSupported(u"GetAsArray");
}

void TVnJSONBase::SetAsBoolean(bool) { NotSupported(u"SetAsBoolean"); }
void TVnJSONBase::SetAsDouble(double) { NotSupported(u"SetAsDouble"); }
void TVnJSONBase::SetAsInteger(Integer) { NotSupported(u"SetAsInteger"); }
void TVnJSONBase::SetAsString(std::u16string_view) { NotSupported(u"SetAsString"); }
void TVnJSONBase::SetAsLargeInt(Int64) { NotSupported(u"SetAsLargeInt"); }
void TVnJSONBase::SetAsVariant(const Variant&) { NotSupported(u"SetAsVariant"); }
Integer TVnJSONBase::Count() { NotSupported(u"Count"); }

TVnJSONBase* TVnJSONBase::AddValue(TVnJSONDataType AKind) {
  if (auto* member = dynamic_cast<TVnJSONMember*>(this); member && !member->GetValueObj())
    return member->CreateValue(AKind);
  NotSupported(u"AddValue");
}
TVnJSONBase* TVnJSONBase::AddValue(TVnJSONDataType, std::u16string_view) { NotSupported(u"AddValue"); }
TVnJSONBase* TVnJSONBase::AddValue(const Variant&) { NotSupported(u"AddValue"); }
void TVnJSONBase::RemoveValue(TVnJSONBase*) { NotSupported(u"RemoveValue"); }
void TVnJSONBase::DeleteValue(Integer) { NotSupported(u"DeleteValue"); }
TVnJSONMember* TVnJSONBase::AddMember(std::u16string_view) { NotSupported(u"AddMember"); }
TVnJSONMember* TVnJSONBase::AddMember(std::u16string_view, TVnJSONDataType) { NotSupported(u"AddMember"); }
TVnJSONMember* TVnJSONBase::AddMember(std::u16string_view, TVnJSONDataType, std::u16string_view) {
  NotSupported(u"AddMember");
}
TVnJSONMember* TVnJSONBase::AddMember(std::u16string_view, const Variant&) { NotSupported(u"AddMember"); }
void TVnJSONBase::DeleteMember(Integer) { NotSupported(u"DeleteMember"); }
void TVnJSONBase::RemoveMember(TVnJSONMember*) { NotSupported(u"RemoveMember"); }
TVnJSONMember* TVnJSONBase::FindMember(std::u16string_view, bool) { NotSupported(u"FindMember"); }
TVnJSONMember* TVnJSONBase::GetMember(std::u16string_view, TVnJDOCSelectOptions) { NotSupported(u"Member"); }
TVnJSONBase* TVnJSONBase::Item(Integer) { NotSupported(u"Item"); }

// ---- list access shared by containers ----

TVnJSONBase* TVnJSONBase::CheckedChild(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= ChildCount()) throw EListError(cRtlListIndexError, {AIndex});
  return Kids()[static_cast<uint32_t>(AIndex)];
}

// ---- interface forms ----

namespace {
template <class I, class T>
IPtr<I> AsIntf(T* ANode) {
  return ANode ? IPtr<I>(static_cast<I*>(ANode)) : IPtr<I>();
}
}  // namespace

IPtr<IVnJSONObject> TVnJSONBase::GetAsObjectIntf() { return AsIntf<IVnJSONObject>(GetAsObject()); }
IPtr<IVnJSONArray> TVnJSONBase::GetAsArrayIntf() { return AsIntf<IVnJSONArray>(GetAsArray()); }
IPtr<IVnJSONBase> TVnJSONBase::GetValue() { return AsIntf<IVnJSONBase>(GetValueObj()); }
IPtr<IVnJSONMember> TVnJSONBase::GetMemberEx(std::u16string_view AName) {
  return AsIntf<IVnJSONMember>(GetMember(AName, {jsoCreate}));
}
IPtr<IVnJSONBase> TVnJSONBase::GetItem(Integer AIndex) { return AsIntf<IVnJSONBase>(Item(AIndex)); }
IPtr<IVnJSONMember> TVnJSONBase::FindMemberIntf(std::u16string_view AName, bool ACaseInsensitive) {
  return AsIntf<IVnJSONMember>(FindMember(AName, ACaseInsensitive));
}
IPtr<IVnJSONMember> TVnJSONBase::GetMemberIntf(std::u16string_view AName, TVnJDOCSelectOptions AOptions) {
  return AsIntf<IVnJSONMember>(GetMember(AName, AOptions));
}

}  // namespace vn
