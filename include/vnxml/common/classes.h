// classes.h: the platform's basic classes: TPersistent, TComponent, TList and TObjectList.
// A TComponent frees the components it owns when it is freed; a TObjectList frees its items when
// it owns them (the default). String lists are in string_list.h, generic containers in
// generics.h, TCriticalSection in sync_objs.h. List failures raise EListError.
#pragma once

#include <functional>
#include <vector>

#include "vnxml/common/exception.h"
#include "vnxml/common/object.h"
#include "vnxml/common/persistent.h"
#include "vnxml/common/string_list.h"

namespace vn {

// ---- TComponent ----

enum TOperation : uint8_t { opInsert, opRemove };

/// The platform's plain event: the object that fires it.
using TNotifyEvent = std::function<void(TObject* ASender)>;

class TComponent : public TPersistent {
  VN_DECLARE_CLASS(TComponent, TPersistent)
 public:
  /// Creates a component; AOwner, when given, owns it and frees it with itself.
  explicit TComponent(TComponent* AOwner = nullptr);
  TComponent(const TComponent&) = delete;
  TComponent& operator=(const TComponent&) = delete;
  /// Frees the owned components (the last first) and leaves the owner.
  ~TComponent() override;

  TComponent* GetOwner() const { return FOwner; }
  const UnicodeString& GetName() const { return FName; }
  /// Renames; raises EComponentError for a name that is not an identifier or is taken in the owner.
  virtual void SetName(const UnicodeString& ANewName);
  NativeInt GetTag() const { return FTag; }
  void SetTag(NativeInt ATag) { FTag = ATag; }

  Integer GetComponentCount() const { return static_cast<Integer>(FComponents.size()); }
  /// The owned component at AIndex (0-based); raises EListError when out of range.
  TComponent* GetComponents(Integer AIndex) const;
  /// The position of this component in its owner's list, -1 without owner.
  Integer GetComponentIndex() const;
  /// The owned component of that name (case-insensitive), or nullptr.
  TComponent* FindComponent(std::u16string_view AName) const;
  /// Takes AComponent into this owner (removing it from its previous owner).
  void InsertComponent(TComponent* AComponent);
  /// Releases AComponent from this owner without freeing it.
  void RemoveComponent(TComponent* AComponent);
  /// Frees every owned component.
  void DestroyComponents();
  /// True while the destructor runs.
  bool IsDestroying() const { return FDestroying; }

  /// Asks to be told (Notification with opRemove) when AComponent is freed, and vice versa.
  void FreeNotification(TComponent* AComponent);
  void RemoveFreeNotification(TComponent* AComponent);

  std::vector<TComponent*>::const_iterator begin() const { return FComponents.begin(); }
  std::vector<TComponent*>::const_iterator end() const { return FComponents.end(); }

  UnicodeString GetNamePath() const override { return FName; }

 protected:
  /// Told when AComponent joins or leaves this owner, or is freed; passes it on to owned components.
  virtual void Notification(TComponent* AComponent, TOperation AOperation);
  /// Raises when ANewName is taken by another component of this owner.
  virtual void ValidateRename(TComponent* AComponent, std::u16string_view ACurName, std::u16string_view ANewName);

 private:
  TComponent* FOwner = nullptr;
  UnicodeString FName;
  NativeInt FTag = 0;
  bool FDestroying = false;
  std::vector<TComponent*> FComponents;
  std::vector<TComponent*> FFreeNotifies;

  void RemoveNotification(TComponent* AComponent);
};

// ---- TList, TObjectList ----

enum TListNotification : uint8_t { lnAdded, lnExtracted, lnDeleted };
using TListSortCompare = Integer (*)(void* AItem1, void* AItem2);

/// A list of untyped pointers; it never frees what they point to.
class TList : public TObject {
  VN_DECLARE_CLASS(TList, TObject)
 public:
  TList() = default;
  TList(const TList&) = delete;
  TList& operator=(const TList&) = delete;
  ~TList() override;

  /// Appends AItem and returns its index.
  Integer Add(void* AItem);
  void Insert(Integer AIndex, void* AItem);
  void Delete(Integer AIndex);
  /// Deletes the first occurrence of AItem; returns its former index or -1.
  Integer Remove(void* AItem);
  /// Takes the first occurrence of AItem out of the list without the delete notification.
  void* Extract(void* AItem);
  Integer IndexOf(const void* AItem) const;
  void Clear();
  void Exchange(Integer AIndex1, Integer AIndex2);
  void Move(Integer ACurIndex, Integer ANewIndex);
  /// Removes every nil item.
  void Pack();
  void Sort(TListSortCompare ACompare);
  void* First() const { return GetItem(0); }
  void* Last() const { return GetItem(GetCount() - 1); }

  Integer GetCount() const { return static_cast<Integer>(FItems.size()); }
  /// Grows with nil items or shrinks by deleting from the end.
  void SetCount(Integer ANewCount);
  Integer GetCapacity() const { return static_cast<Integer>(FItems.capacity()); }
  void SetCapacity(Integer ANewCapacity);
  void* GetItem(Integer AIndex) const;
  void SetItem(Integer AIndex, void* AItem);
  void* operator[](Integer AIndex) const { return GetItem(AIndex); }

  std::vector<void*>::const_iterator begin() const { return FItems.begin(); }
  std::vector<void*>::const_iterator end() const { return FItems.end(); }

 protected:
  /// Told of every non-nil item that enters or leaves the list.
  virtual void Notify(void* AItem, TListNotification AAction);
  [[noreturn]] static void Error(const char16_t* AMessage, Int64 AData);
  void CheckIndex(Integer AIndex) const;

 private:
  std::vector<void*> FItems;
};

namespace detail {
// Iterates a pointer vector handing out the items as T*.
template <class T>
class CastIterator {
 public:
  using Base = std::vector<void*>::const_iterator;
  explicit CastIterator(Base AIt) : FIt(AIt) {}
  T* operator*() const { return static_cast<T*>(*FIt); }
  CastIterator& operator++() {
    ++FIt;
    return *this;
  }
  bool operator==(const CastIterator& AOther) const { return FIt == AOther.FIt; }
  bool operator!=(const CastIterator& AOther) const { return FIt != AOther.FIt; }

 private:
  Base FIt;
};
}  // namespace detail

/// A list of objects; when it owns them (the default) it frees each one that it deletes.
class TObjectList : public TList {
  VN_DECLARE_CLASS(TObjectList, TList)
 public:
  TObjectList() = default;
  explicit TObjectList(bool AOwnsObjects) : FOwnsObjects(AOwnsObjects) {}
  ~TObjectList() override;

  Integer Add(TObject* AObject) { return TList::Add(AObject); }
  void Insert(Integer AIndex, TObject* AObject) { TList::Insert(AIndex, AObject); }
  Integer Remove(TObject* AObject) { return TList::Remove(AObject); }
  TObject* Extract(TObject* AObject) { return static_cast<TObject*>(TList::Extract(AObject)); }
  Integer IndexOf(const TObject* AObject) const { return TList::IndexOf(AObject); }
  /// The index of the first item of class AClass (exactly, or a descendant when AExact is false), from AStartAt.
  Integer FindInstanceOf(TClass AClass, bool AExact = true, Integer AStartAt = 0) const;
  TObject* First() const { return GetItem(0); }
  TObject* Last() const { return GetItem(GetCount() - 1); }
  TObject* GetItem(Integer AIndex) const { return static_cast<TObject*>(TList::GetItem(AIndex)); }
  void SetItem(Integer AIndex, TObject* AObject) { TList::SetItem(AIndex, AObject); }
  TObject* operator[](Integer AIndex) const { return GetItem(AIndex); }

  bool GetOwnsObjects() const { return FOwnsObjects; }
  void SetOwnsObjects(bool AValue) { FOwnsObjects = AValue; }

  detail::CastIterator<TObject> begin() const { return detail::CastIterator<TObject>(TList::begin()); }
  detail::CastIterator<TObject> end() const { return detail::CastIterator<TObject>(TList::end()); }

 protected:
  void Notify(void* AItem, TListNotification AAction) override;

 private:
  bool FOwnsObjects = true;
};

}  // namespace vn
