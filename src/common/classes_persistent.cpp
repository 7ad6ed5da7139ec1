// TPersistent (Assign/AssignTo) and TComponent (ownership, names, free notifications).
#include <algorithm>

#include "vnxml/common/classes.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {

// ---- TPersistent ----

void TPersistent::Assign(const TPersistent* ASource) {
  if (ASource)
    ASource->AssignTo(this);
  else
    AssignError(nullptr);
}

void TPersistent::AssignTo(TPersistent* ADest) const { ADest->AssignError(this); }

void TPersistent::AssignError(const TPersistent* ASource) const {
  const UnicodeString sourceName = ASource ? ASource->ClassName() : UnicodeString(u"nil");
  throw EConvertError(cRtlAssignError, {sourceName, ClassName()});
}

UnicodeString TPersistent::GetNamePath() const { return ClassName(); }

// ---- TComponent ----

namespace {

bool IsIdentStart(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_' || c >= 0x80; }
bool IsIdentChar(char16_t c) { return IsIdentStart(c) || (c >= u'0' && c <= u'9'); }

bool IsValidIdent(std::u16string_view AName) {
  if (AName.empty() || !IsIdentStart(AName[0])) return false;
  return std::all_of(AName.begin() + 1, AName.end(), IsIdentChar);
}

void EraseOne(std::vector<TComponent*>& AList, TComponent* AItem) {
  auto it = std::find(AList.begin(), AList.end(), AItem);
  if (it != AList.end()) AList.erase(it);
}

}  // namespace

TComponent::TComponent(TComponent* AOwner) {
  if (AOwner) AOwner->InsertComponent(this);
}

TComponent::~TComponent() {
  FDestroying = true;
  // Tell every component that asked; each answer removes this one from its own list.
  while (!FFreeNotifies.empty()) {
    TComponent* other = FFreeNotifies.back();
    FFreeNotifies.pop_back();
    other->Notification(this, opRemove);
  }
  DestroyComponents();
  if (FOwner) FOwner->RemoveComponent(this);
}

void TComponent::SetName(const UnicodeString& ANewName) {
  if (FName == ANewName) return;
  if (!ANewName.empty() && !IsValidIdent(ANewName)) throw EComponentError(cRtlInvalidName, {ANewName});
  if (FOwner)
    FOwner->ValidateRename(this, FName, ANewName);
  else
    ValidateRename(nullptr, FName, ANewName);
  FName = ANewName;
}

void TComponent::ValidateRename(TComponent* AComponent, std::u16string_view ACurName, std::u16string_view ANewName) {
  if (AComponent && !SameText(ACurName, ANewName) && !ANewName.empty()) {
    TComponent* existing = FindComponent(ANewName);
    if (existing && existing != AComponent) throw EComponentError(cRtlDuplicateName, {ANewName});
  }
}

TComponent* TComponent::GetComponents(Integer AIndex) const {
  if (AIndex < 0 || AIndex >= GetComponentCount()) throw EListError(cRtlListIndexError, {AIndex});
  return FComponents[static_cast<size_t>(AIndex)];
}

Integer TComponent::GetComponentIndex() const {
  if (!FOwner) return -1;
  auto& list = FOwner->FComponents;
  return static_cast<Integer>(std::find(list.begin(), list.end(), this) - list.begin());
}

TComponent* TComponent::FindComponent(std::u16string_view AName) const {
  if (AName.empty()) return nullptr;
  for (TComponent* c : FComponents)
    if (SameText(c->FName, AName)) return c;
  return nullptr;
}

void TComponent::InsertComponent(TComponent* AComponent) {
  if (!AComponent || AComponent->FOwner == this) return;
  ValidateRename(AComponent, u"", AComponent->FName);
  if (AComponent->FOwner) AComponent->FOwner->RemoveComponent(AComponent);
  FComponents.push_back(AComponent);
  AComponent->FOwner = this;
  Notification(AComponent, opInsert);
}

void TComponent::RemoveComponent(TComponent* AComponent) {
  if (!AComponent || AComponent->FOwner != this) return;
  Notification(AComponent, opRemove);
  EraseOne(FComponents, AComponent);
  AComponent->FOwner = nullptr;
}

void TComponent::DestroyComponents() {
  while (!FComponents.empty()) {
    TComponent* c = FComponents.back();
    FComponents.pop_back();
    c->FOwner = nullptr;
    delete c;
  }
}

void TComponent::Notification(TComponent* AComponent, TOperation AOperation) {
  if (AOperation == opRemove && AComponent) RemoveFreeNotification(AComponent);
  // By index from the end, re-checked: a component told of a change may free others.
  for (size_t i = FComponents.size(); i-- > 0;)
    if (i < FComponents.size()) FComponents[i]->Notification(AComponent, AOperation);
}

void TComponent::FreeNotification(TComponent* AComponent) {
  if (!AComponent || AComponent == this) return;
  // Components of one owner are freed together and need no notice of each other.
  if (FOwner && AComponent->FOwner == FOwner) return;
  if (std::find(FFreeNotifies.begin(), FFreeNotifies.end(), AComponent) != FFreeNotifies.end()) return;
  FFreeNotifies.push_back(AComponent);
  AComponent->FreeNotification(this);
}

void TComponent::RemoveFreeNotification(TComponent* AComponent) {
  RemoveNotification(AComponent);
  AComponent->RemoveNotification(this);
}

void TComponent::RemoveNotification(TComponent* AComponent) { EraseOne(FFreeNotifies, AComponent); }

}  // namespace vn
