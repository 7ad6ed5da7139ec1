// json_document.h: the JSON tree of unit uVnJSON: TVnJSONBase and its node classes, their
// counted interfaces, TVnJSONDocument, VnFormatJSON.
//
// Every operation of the family is declared on TVnJSONBase, so a node can be driven without
// knowing its kind; a kind that lacks one raises EVnJSONException 9 "Instances of <class> do not
// support the <word> method!". A node is a plain object and its own counted interface: in a tree
// it has automatic destruction off and dies with its owner; taken out (FreeObject) while an
// interface holds it, it dies with the last release.
//
// Rules of this library where the C++ form asks for one:
// - TVnJSONDocument's FindMember, GetMember and Item forward to the root value also when reached
//   through a TVnJSONBase reference (C++ has no non-virtual form beside a virtual one of the same
//   signature); without a root they raise EVnJSONParseError 10.
// - TVnJSONDocument::SaveToStream(stream, formatted, code page, mark) hides the node form
//   SaveToStream(stream, formatted, level, indent), which stays reachable through TVnJSONBase.
// - SetAsValue and GetAsValue raise by the not-supported scheme on every class.
// - A member without a value (AddMember(name), jsoCreate) writes "null".
// - A top-level value loaded into an object with no member yet raises EVnJSONException 0
//   "oeps?", as a load into a value that cannot hold it does.
// - Deep trees are freed, copied and saved without recursion.
// - A loaded container makes the nodes of its children when it is first opened (Child,
//   ChildArray, Item, a member lookup, a path step, an edit); ChildCount and saving open
//   nothing. Reading can therefore change the tree's memory: a tree is used by one thread at a
//   time, for reading too.
// - CreateNodeList and SelectSingleNode take their raise flag as a bool only, so that an option
//   set such as {jsoRaise} (whose first value is 0) is never read as the flag false.
#pragma once

#include <concepts>
#include <memory>

#include "vnxml/common/set.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/value.h"
#include "vnxml/common/variant.h"
#include "vnxml/common/vn_object.h"
#include "vnxml/dom_storage.h"
#include "vnxml/json_contract.h"

// Each node class answers one interface of its own beside those of its base; the counting
// slots of every interface base lead to the one count of the object.
#define VN_JSON_NODE_INTERFACE(Base, Intf)                                     \
 public:                                                                       \
  ::vn::HRESULT QueryInterface(const ::vn::TGUID& AIID, void** AObj) override { \
    if (AIID == Intf::IID) {                                                   \
      Base::_AddRef();                                                         \
      *AObj = static_cast<Intf*>(this);                                        \
      return ::vn::S_OK;                                                       \
    }                                                                          \
    return Base::QueryInterface(AIID, AObj);                                   \
  }                                                                            \
  int32_t _AddRef() override { return Base::_AddRef(); }                       \
  int32_t _Release() override { return Base::_Release(); }                     \
  ::vn::TObject* Implementor() override { return Base::Implementor(); }        \
                                                                               \
 private:

namespace vn {

class TVnJSONBase;
class TVnJSONSimpleType;
class TVnJSONMember;
class TVnJSONObject;
class TVnJSONArray;
class TVnJSONDocument;

enum TVnJDOCSelectOption : uint8_t { jsoRaise, jsoCreate, jsoCaseInsensitive };
using TVnJDOCSelectOptions = TSet<TVnJDOCSelectOption>;

struct IVnJSONMember;
struct IVnJSONObject;
struct IVnJSONArray;

struct IVnJSONBase : IVnObject {
  static constexpr TGUID IID = TGUID::Parse("3EF637B1-BB9E-45A6-8C8F-17A1E3C2F73E");
  virtual bool GetAsBoolean() = 0;
  virtual double GetAsDouble() = 0;
  virtual Integer GetAsInteger() = 0;
  virtual Int64 GetAsLargeInt() = 0;
  virtual UnicodeString GetAsString() = 0;
  virtual Variant GetAsVariant() = 0;
  virtual TValue GetAsValue() = 0;
  virtual IPtr<IVnJSONObject> GetAsObjectIntf() = 0;
  virtual IPtr<IVnJSONArray> GetAsArrayIntf() = 0;
  virtual UnicodeString GetName() = 0;
  virtual IPtr<IVnJSONBase> GetValue() = 0;
  virtual TVnJSONDataType GetJSONType() = 0;
  virtual UnicodeString GetAsJSON() = 0;
  virtual IPtr<IVnJSONMember> GetMemberEx(std::u16string_view AName) = 0;
  virtual IPtr<IVnJSONBase> GetItem(Integer AIndex) = 0;
  virtual void SetAsBoolean(bool AValue) = 0;
  virtual void SetAsDouble(double AValue) = 0;
  virtual void SetAsInteger(Integer AValue) = 0;
  virtual void SetAsString(std::u16string_view AValue) = 0;
  virtual void SetAsLargeInt(Int64 AValue) = 0;
  virtual void SetAsJSON(std::u16string_view AText) = 0;
  virtual void SetAsVariant(const Variant& AValue) = 0;
  virtual void SetAsValue(const TValue& AValue) = 0;
  virtual void SetName(std::u16string_view AName) = 0;
  virtual Integer Count() = 0;
  virtual IPtr<IVnJSONArray> SelectIntf(std::u16string_view APath, TVnJDOCSelectOptions AOptions) = 0;
  virtual IPtr<IVnJSONMember> FindMemberIntf(std::u16string_view AName, bool ACaseInsensitive) = 0;
  virtual bool HasMember(std::u16string_view AName, bool ACaseInsensitive) = 0;
  virtual IPtr<IVnJSONMember> GetMemberIntf(std::u16string_view AName, TVnJDOCSelectOptions AOptions) = 0;

 protected:
  ~IVnJSONBase() = default;
};

struct IVnJSONSimpleType : virtual IVnJSONBase {
  static constexpr TGUID IID = TGUID::Parse("DD48E68D-2C8D-4946-ACB8-B8781173009C");
  // GetAsVariant and SetAsVariant come from IVnJSONBase.

 protected:
  ~IVnJSONSimpleType() = default;
};

struct IVnJSONMember : IVnObject {
  static constexpr TGUID IID = TGUID::Parse("F93249D2-95EC-46CC-A0AF-11253F2BCDD3");
  virtual IPtr<IVnJSONBase> GetValue() = 0;
  virtual UnicodeString GetName() = 0;
  virtual Integer GetAsInteger() = 0;
  virtual double GetAsDouble() = 0;
  virtual UnicodeString GetAsString() = 0;
  virtual bool GetAsBoolean() = 0;
  virtual Int64 GetAsLargeInt() = 0;
  virtual Variant GetAsVariant() = 0;
  virtual IPtr<IVnJSONObject> GetAsObjectIntf() = 0;
  virtual IPtr<IVnJSONArray> GetAsArrayIntf() = 0;
  virtual void SetName(std::u16string_view AName) = 0;
  virtual void SetAsInteger(Integer AValue) = 0;
  virtual void SetAsDouble(double AValue) = 0;
  virtual void SetAsString(std::u16string_view AValue) = 0;
  virtual void SetAsBoolean(bool AValue) = 0;
  virtual void SetAsLargeInt(Int64 AValue) = 0;
  virtual void SetAsVariant(const Variant& AValue) = 0;
  virtual IPtr<IVnJSONBase> CreateValueIntf(TVnJSONDataType AKind) = 0;

 protected:
  ~IVnJSONMember() = default;
};

struct IVnJSONObject : virtual IVnJSONBase {
  static constexpr TGUID IID = TGUID::Parse("0CD42232-D5C8-4922-95C5-389E812FC605");
  virtual IPtr<IVnJSONMember> AddMemberIntf1(std::u16string_view AName) = 0;
  virtual IPtr<IVnJSONMember> AddMemberIntf2(std::u16string_view AName, TVnJSONDataType AKind) = 0;
  virtual IPtr<IVnJSONMember> AddMemberIntf3(std::u16string_view AName, TVnJSONDataType AKind,
                                             std::u16string_view AText) = 0;
  virtual IPtr<IVnJSONMember> AddMemberIntf4(std::u16string_view AName, const Variant& AValue) = 0;
  virtual void DeleteMember(Integer AIndex) = 0;
  virtual void RemoveMemberIntf(const IPtr<IVnJSONMember>& AMember) = 0;

 protected:
  ~IVnJSONObject() = default;
};

struct IVnJSONArray : virtual IVnJSONBase {
  static constexpr TGUID IID = TGUID::Parse("635753D5-75E8-4BE1-A993-9268029F9E9F");
  virtual IPtr<IVnJSONBase> AddValueIntf1(TVnJSONDataType AKind) = 0;
  virtual IPtr<IVnJSONBase> AddValueIntf2(TVnJSONDataType AKind, std::u16string_view AText) = 0;
  virtual IPtr<IVnJSONBase> AddValueIntf3(const Variant& AValue) = 0;
  virtual void DeleteValue(Integer AIndex) = 0;
  virtual void RemoveValueIntf(const IPtr<IVnJSONBase>& AValue) = 0;
  virtual void Exchange(Integer AIndex1, Integer AIndex2) = 0;

 protected:
  ~IVnJSONArray() = default;
};

struct IVnJSONDocument : IVnObject {
  static constexpr TGUID IID = TGUID::Parse("A2B0E47C-6F38-40E3-8F5B-81561A589AFA");
  virtual IPtr<IVnJSONBase> GetRootValueIntf() = 0;
  virtual UnicodeString GetAsJSON() = 0;
  virtual UnicodeString GetFormattedJSON() = 0;
  virtual void SetAsJSON(std::u16string_view AText) = 0;
  virtual IPtr<IVnJSONBase> CreateRootValueIntf(TVnJSONDataType AKind) = 0;
  virtual IPtr<IVnJSONMember> FindMemberIntf(std::u16string_view AName, bool ACaseInsensitive) = 0;
  virtual IPtr<IVnJSONMember> GetMemberIntf(std::u16string_view AName, TVnJDOCSelectOptions AOptions) = 0;
  virtual IPtr<IVnJSONArray> SelectIntf(std::u16string_view APath, TVnJDOCSelectOptions AOptions) = 0;
  virtual void LoadFromStream(TStream& AStream, Word ACodePage, bool AFormURLEncoded) = 0;
  virtual void LoadFromFile(const UnicodeString& AFileName, Word AMode) = 0;
  virtual void SaveToFile(const UnicodeString& AFileName, bool AFormatted) = 0;
  virtual void SaveToStream(TStream& AStream, bool AFormatted, Word ACodePage, bool AWriteBOM) = 0;

 protected:
  ~IVnJSONDocument() = default;
};

namespace detail {
class JSONTreeBuilder;
class JSONLazy;
struct JSONStore;
/// Which of the library's classes a node is (or descends from): a tag read where a walk over
/// many nodes would otherwise ask the class system.
enum class JSONNodeClass : uint8_t { Base, Simple, Member, Object, Array, Document };
class JSONWriter;

/// A stored name or loaded value: the reader's raw text in the input's code units (Width 1:
/// UTF-8 bytes, 2: UTF-16 units), or (Width 2, Owned) a copy the node frees. Empty: no text.
struct JSONText {
  const void* Data = nullptr;
  uint32_t Length = 0;  // in code units
  uint8_t Width = 2;
  bool Owned = false;
  /// Whether the writer may copy the text as it stands (set by a load; unknown: it looks).
  static constexpr uint8_t kPlainUnknown = 0, kPlainYes = 1, kPlainNo = 2;
  uint8_t Plain = kPlainUnknown;
  bool IsSet() const noexcept { return Data != nullptr; }
  /// The text as UTF-16, undecoded (escapes stay).
  UnicodeString Wide() const;
  void Free() noexcept;
  void AssignOwned(std::u16string_view AText);
  /// Compares the text as stored (undecoded) with AName; SameText with ACaseInsensitive.
  bool Equals(std::u16string_view AName, bool ACaseInsensitive) const;
};
}  // namespace detail

class TVnJSONBase : public TVnObject, public virtual IVnJSONBase {
  VN_DECLARE_CLASS(TVnJSONBase, TVnObject)
  VN_JSON_NODE_INTERFACE(TVnObject, IVnJSONBase)

 public:
  explicit TVnJSONBase(TVnJSONBase* AOwner = nullptr);
  ~TVnJSONBase() override;

  // A node is made on the heap or, by a load, in the load's pool; its flag tells which, and the
  // pool is found from the node's address. Delete reads the flag before the destructor runs.
  static void* operator new(size_t ASize);
  static void* operator new(size_t ASize, detail::NodePool& APool) { return APool.AllocateNode(ASize); }
  static void operator delete(TVnJSONBase* ANode, std::destroying_delete_t) noexcept;
  /// For a constructor that throws.
  static void operator delete(void* APtr) noexcept;
  static void operator delete(void* APtr, detail::NodePool& APool) noexcept;

  // ---- tree ----
  TVnJSONBase* GetOwner() const noexcept { return FOwner; }
  bool GetDestroyChilds() const noexcept { return FDestroyChilds; }
  /// Takes this node out of its owner; frees it now unless an interface still holds it.
  void FreeObject();
  /// Frees every child (FreeObject, last to first) when this node owns them; empties the list.
  void DestroyObjects();
  TVnJSONDocument* GetDocument();
  /// The child at AIndex without the kind's check (what Item checks for containers).
  TVnJSONBase* Child(Integer AIndex) const { return Kids()[static_cast<uint32_t>(AIndex)]; }
  Integer ChildCount() const noexcept {
    return FStore ? LazyCount() : static_cast<Integer>(FObjects.size());
  }
  detail::JSONNodeClass NodeClass() const noexcept { return FNodeClass; }
  /// The children in order, ChildCount() of them; valid until the list changes.
  TVnJSONBase* const* ChildArray() const { return Kids().begin(); }

  // ---- the operations of the family, in slot order ----
  virtual void InsertObject(TVnJSONBase* AChild);
  virtual void RemoveObject(TVnJSONBase* AChild);
  UnicodeString GetAsJSON() override;
  void SetAsJSON(std::u16string_view AText) override;
  UnicodeString GetName() override;
  virtual TVnJSONBase* GetValueObj();
  virtual void SetValue(TVnJSONBase* AValue);
  void SetName(std::u16string_view AName) override;
  bool GetAsBoolean() override;
  double GetAsDouble() override;
  Integer GetAsInteger() override;
  Int64 GetAsLargeInt() override;
  UnicodeString GetAsString() override;
  Variant GetAsVariant() override;
  TValue GetAsValue() override;
  virtual TVnJSONObject* GetAsObject();
  virtual TVnJSONArray* GetAsArray();
  IPtr<IVnJSONObject> GetAsObjectIntf() override;
  IPtr<IVnJSONArray> GetAsArrayIntf() override;
  void SetAsBoolean(bool AValue) override;
  void SetAsDouble(double AValue) override;
  void SetAsInteger(Integer AValue) override;
  void SetAsString(std::u16string_view AValue) override;
  void SetAsLargeInt(Int64 AValue) override;
  void SetAsVariant(const Variant& AValue) override;
  /// Loads JSON text into this node (Part of the tree handler's table decides where it goes).
  virtual void LoadFromStream(TStream& AStream, Word ACodePage, bool AFormURLEncoded);
  /// Writes this node as 16-bit little-endian code units.
  virtual void SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent);
  Integer Count() override;
  virtual TVnJSONBase* AddValue(TVnJSONDataType AKind);
  virtual TVnJSONBase* AddValue(TVnJSONDataType AKind, std::u16string_view AText);
  virtual TVnJSONBase* AddValue(const Variant& AValue);
  virtual void RemoveValue(TVnJSONBase* AValue);
  virtual void DeleteValue(Integer AIndex);
  virtual TVnJSONMember* AddMember(std::u16string_view AName);
  virtual TVnJSONMember* AddMember(std::u16string_view AName, TVnJSONDataType AKind);
  virtual TVnJSONMember* AddMember(std::u16string_view AName, TVnJSONDataType AKind, std::u16string_view AText);
  virtual TVnJSONMember* AddMember(std::u16string_view AName, const Variant& AValue);
  virtual void DeleteMember(Integer AIndex);
  virtual void RemoveMember(TVnJSONMember* AMember);
  virtual TVnJSONMember* FindMember(std::u16string_view AName, bool ACaseInsensitive = false);
  virtual TVnJSONMember* GetMember(std::u16string_view AName, TVnJDOCSelectOptions AOptions = {});
  virtual TVnJSONBase* Item(Integer AIndex);

  // ---- non-virtual operations ----
  UnicodeString GetFormattedJSON();
  /// Loads with the code page VnGetCodePage finds in the stream.
  void LoadFromStream(TStream& AStream);
  TVnJSONMember* Member(std::u16string_view AName, TVnJDOCSelectOptions AOptions = {}) {
    return GetMember(AName, AOptions);
  }
  TVnJSONMember* GetMemberEx1(std::u16string_view AName) { return GetMember(AName, {jsoCreate}); }
  bool HasMember(std::u16string_view AName, bool ACaseInsensitive = false) override {
    return FindMember(AName, ACaseInsensitive) != nullptr;
  }
  TVnJSONDataType GetJSONType() override { return FJSONType; }
  void SetAsValue(const TValue& AValue) override;

  // ---- selection by path (the language: json_path.h) ----
  /// The nodes APath selects, in a new array that lists them without owning them; the caller
  /// owns the array. Empty with jsoRaise: EVnJSONException 11.
  std::unique_ptr<TVnJSONArray> CreateNodeList(std::u16string_view APath, TVnJDOCSelectOptions AOptions = {});
  /// As above, ARaise meaning [jsoRaise]. Only a bool picks this form: {jsoRaise} is a set.
  template <std::same_as<bool> B>
  std::unique_ptr<TVnJSONArray> CreateNodeList(std::u16string_view APath, B ARaise) {
    return CreateNodeList(APath, ARaise ? TVnJDOCSelectOptions{jsoRaise} : TVnJDOCSelectOptions{});
  }
  /// The first node APath selects, or nil; nothing with jsoRaise: EVnJSONException 11.
  TVnJSONBase* SelectSingleNode(std::u16string_view APath, TVnJDOCSelectOptions AOptions = {});
  template <std::same_as<bool> B>
  TVnJSONBase* SelectSingleNode(std::u16string_view APath, B ARaise) {
    return SelectSingleNode(APath, ARaise ? TVnJDOCSelectOptions{jsoRaise} : TVnJDOCSelectOptions{});
  }
  /// The worker: with AFirstOnly, alternatives after the first that selects a node are not run.
  std::unique_ptr<TVnJSONArray> _CreateNodeList(std::u16string_view APath, bool AFirstOnly,
                                                TVnJDOCSelectOptions AOptions);
  /// Runs the steps APath (no "$" or "@" in front) from this node into AResult; ARecursive runs
  /// the first step on every descendant as well.
  void _SelectNodes(TVnJSONArray& AResult, std::u16string_view APath, bool ARecursive,
                    TVnJDOCSelectOptions AOptions);

  // ---- interface forms ----
  IPtr<IVnJSONBase> GetValue() override;
  IPtr<IVnJSONMember> GetMemberEx(std::u16string_view AName) override;
  IPtr<IVnJSONBase> GetItem(Integer AIndex) override;
  IPtr<IVnJSONArray> SelectIntf(std::u16string_view APath, TVnJDOCSelectOptions AOptions) override;
  IPtr<IVnJSONMember> FindMemberIntf(std::u16string_view AName, bool ACaseInsensitive) override;
  IPtr<IVnJSONMember> GetMemberIntf(std::u16string_view AName, TVnJDOCSelectOptions AOptions) override;

 protected:
  struct DeferInsert {};
  /// Stores the owner without joining its list yet: a class whose owner checks the kind of its
  /// children (an object takes members only) joins by Attach at the end of its constructor.
  TVnJSONBase(TVnJSONBase* AOwner, DeferInsert);
  void Attach();
  /// The children are gone (DestroyObjects): a kind drops what pointed at them.
  virtual void ChildrenCleared() {}
  /// The child at AIndex; EListError for a bad index.
  TVnJSONBase* CheckedChild(Integer AIndex) const;
  /// Raises EVnJSONException 9 for this instance's class and AWord.
  [[noreturn]] void NotSupported(const char16_t* AWord) const;
  /// A child of the kind: an object, an array, or (any other kind) a simple value.
  TVnJSONBase* CreateValueNode(TVnJSONDataType AKind);

  /// The child list, made first from the load's records when this container has not been
  /// opened yet.
  detail::PtrVector<TVnJSONBase>& Kids() const {
    if (FStore) Expand();
    return const_cast<detail::PtrVector<TVnJSONBase>&>(FObjects);
  }

  TVnJSONBase* FOwner = nullptr;
  detail::PtrVector<TVnJSONBase> FObjects;
  // A loaded container that nobody opened yet: its children are still records of the load
  // (FRec in FStore) and become nodes on first access.
  detail::JSONStore* FStore = nullptr;
  uint32_t FRec = 0;
  TVnJSONDataType FJSONType = jdtNull;
  bool FDestroyChilds = true;
  bool FInPool = false;  // made by a load in its pool
  detail::JSONNodeClass FNodeClass = detail::JSONNodeClass::Base;

 private:
  friend class detail::JSONTreeBuilder;
  friend class detail::JSONLazy;
  Integer LazyCount() const noexcept;
  void Expand() const;
  friend class detail::JSONWriter;
  friend class TVnJSONMember;
  friend class TVnJSONArray;
  // Frees a dying node that holds only memory of its pool without running its destructor;
  // false, having done nothing, for any other node.
  bool GiveBackToPool() noexcept;
};

class TVnJSONSimpleType : public TVnJSONBase, public IVnJSONSimpleType {
  friend class TVnJSONBase;
  friend class detail::JSONLazy;
  VN_DECLARE_CLASS(TVnJSONSimpleType, TVnJSONBase)
  VN_JSON_NODE_INTERFACE(TVnJSONBase, IVnJSONSimpleType)

 public:
  explicit TVnJSONSimpleType(TVnJSONBase* AOwner = nullptr) : TVnJSONBase(AOwner, DeferInsert{}) {
    FNodeClass = detail::JSONNodeClass::Simple;
    Attach();
  }
  ~TVnJSONSimpleType() override;

  bool GetAsBoolean() override;
  double GetAsDouble() override;
  Integer GetAsInteger() override;
  Int64 GetAsLargeInt() override;
  UnicodeString GetAsString() override;
  Variant GetAsVariant() override;
  void SetAsBoolean(bool AValue) override;
  void SetAsDouble(double AValue) override;
  void SetAsInteger(Integer AValue) override;
  void SetAsString(std::u16string_view AValue) override;
  void SetAsLargeInt(Int64 AValue) override;
  void SetAsVariant(const Variant& AValue) override;
  void SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) override;

  /// The value as the writer writes it, without padding.
  UnicodeString ValueText();
  /// Stores AValue and sets the kind (no rule applied: the loaders and AddValue use it).
  void StoreVariant(const Variant& AValue, TVnJSONDataType AKind);
  /// Takes over loaded raw text (a pool's, or owned) as the value.
  void StoreRaw(const detail::JSONText& AText, TVnJSONDataType AKind);
  const detail::JSONText& RawValue() const noexcept { return FRaw; }
  bool HasVariant() const noexcept { return FVar != nullptr; }

 private:
  friend class detail::JSONTreeBuilder;
  friend class detail::JSONWriter;
  // FValue of the model: a loaded value keeps its raw text (decoded on reading, as a string
  // variant would give), a stored one a Variant on the heap; neither: a null Variant.
  void ClearValue() noexcept;
  Variant CurrentValue() const;
  detail::JSONText FRaw;
  Variant* FVar = nullptr;
};

class TVnJSONMember : public TVnJSONBase, public IVnJSONMember {
  friend class TVnJSONBase;
  friend class detail::JSONLazy;
  VN_DECLARE_CLASS(TVnJSONMember, TVnJSONBase)
  VN_JSON_NODE_INTERFACE(TVnJSONBase, IVnJSONMember)

 public:
  explicit TVnJSONMember(TVnJSONBase* AOwner = nullptr) : TVnJSONBase(AOwner, DeferInsert{}) {
    FNodeClass = detail::JSONNodeClass::Member;
    Attach();
  }
  ~TVnJSONMember() override;

  /// Gives the member a new value of AKind, freeing the one it owned.
  TVnJSONBase* CreateValue(TVnJSONDataType AKind);
  /// The name as stored: raw with its escapes when loaded.
  UnicodeString GetName() override;
  void SetName(std::u16string_view AName) override;
  TVnJSONBase* GetValueObj() override { return FValue; }
  bool GetAsBoolean() override;
  double GetAsDouble() override;
  Integer GetAsInteger() override;
  Int64 GetAsLargeInt() override;
  UnicodeString GetAsString() override;
  Variant GetAsVariant() override;
  TVnJSONObject* GetAsObject() override;
  TVnJSONArray* GetAsArray() override;
  void SetAsBoolean(bool AValue) override;
  void SetAsDouble(double AValue) override;
  void SetAsInteger(Integer AValue) override;
  void SetAsString(std::u16string_view AValue) override;
  void SetAsLargeInt(Int64 AValue) override;
  void SetAsVariant(const Variant& AValue) override;
  void SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) override;
  using TVnJSONBase::AddValue;
  TVnJSONBase* AddValue(TVnJSONDataType AKind) override;
  void RemoveObject(TVnJSONBase* AChild) override;
  void ChildrenCleared() override { FValue = nullptr; }

  // IVnJSONMember
  IPtr<IVnJSONBase> GetValue() override { return TVnJSONBase::GetValue(); }
  IPtr<IVnJSONObject> GetAsObjectIntf() override { return TVnJSONBase::GetAsObjectIntf(); }
  IPtr<IVnJSONArray> GetAsArrayIntf() override { return TVnJSONBase::GetAsArrayIntf(); }
  IPtr<IVnJSONBase> CreateValueIntf(TVnJSONDataType AKind) override;

  const detail::JSONText& RawName() const noexcept { return FName; }

 private:
  friend class detail::JSONTreeBuilder;
  friend class detail::JSONWriter;
  TVnJSONSimpleType* SimpleValue(const char16_t* AWord);
  TVnJSONSimpleType* SimpleValueFor(TVnJSONDataType AKind, const char16_t* AWord);
  detail::JSONText FName;
  TVnJSONBase* FValue = nullptr;
};

class TVnJSONObject : public TVnJSONBase, public IVnJSONObject {
  VN_DECLARE_CLASS(TVnJSONObject, TVnJSONBase)
  VN_JSON_NODE_INTERFACE(TVnJSONBase, IVnJSONObject)

 public:
  explicit TVnJSONObject(TVnJSONBase* AOwner = nullptr);

  void InsertObject(TVnJSONBase* AChild) override;
  void RemoveObject(TVnJSONBase* AChild) override;
  /// "<object>".
  UnicodeString GetName() override;
  void SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) override;
  Integer Count() override { return ChildCount(); }
  using TVnJSONBase::AddMember;
  TVnJSONMember* AddMember(std::u16string_view AName) override;
  TVnJSONMember* AddMember(std::u16string_view AName, TVnJSONDataType AKind) override;
  TVnJSONMember* AddMember(std::u16string_view AName, TVnJSONDataType AKind, std::u16string_view AText) override;
  TVnJSONMember* AddMember(std::u16string_view AName, const Variant& AValue) override;
  void DeleteMember(Integer AIndex) override;
  void RemoveMember(TVnJSONMember* AMember) override;
  TVnJSONMember* FindMember(std::u16string_view AName, bool ACaseInsensitive = false) override;
  TVnJSONMember* GetMember(std::u16string_view AName, TVnJDOCSelectOptions AOptions = {}) override;
  TVnJSONBase* Item(Integer AIndex) override;
  TVnJSONMember* GetLastMember() const {
    Kids();
    return FLastMember;
  }
  void ChildrenCleared() override { FLastMember = nullptr; }
  /// "#/" and the member names from the root down to this object, joined by "/".
  UnicodeString GetPath();

  // IVnJSONObject
  IPtr<IVnJSONMember> AddMemberIntf1(std::u16string_view AName) override;
  IPtr<IVnJSONMember> AddMemberIntf2(std::u16string_view AName, TVnJSONDataType AKind) override;
  IPtr<IVnJSONMember> AddMemberIntf3(std::u16string_view AName, TVnJSONDataType AKind,
                                     std::u16string_view AText) override;
  IPtr<IVnJSONMember> AddMemberIntf4(std::u16string_view AName, const Variant& AValue) override;
  void RemoveMemberIntf(const IPtr<IVnJSONMember>& AMember) override;

 private:
  friend class detail::JSONTreeBuilder;
  friend class detail::JSONLazy;
  TVnJSONMember* FLastMember = nullptr;
};

class TVnJSONArray : public TVnJSONBase, public IVnJSONArray {
  VN_DECLARE_CLASS(TVnJSONArray, TVnJSONBase)
  VN_JSON_NODE_INTERFACE(TVnJSONBase, IVnJSONArray)

 public:
  /// Without an owner the array lists nodes of another tree and frees none of them.
  explicit TVnJSONArray(TVnJSONBase* AOwner = nullptr);

  void SaveToStream(TStream& AStream, bool AFormatted, Integer ALevel, bool AIndent) override;
  Integer Count() override { return ChildCount(); }
  TVnJSONBase* AddValue(TVnJSONDataType AKind) override;
  TVnJSONBase* AddValue(TVnJSONDataType AKind, std::u16string_view AText) override;
  TVnJSONBase* AddValue(const Variant& AValue) override;
  void RemoveValue(TVnJSONBase* AValue) override;
  void DeleteValue(Integer AIndex) override;
  TVnJSONBase* Item(Integer AIndex) override;
  void Exchange(Integer AIndex1, Integer AIndex2) override;
  /// Lists ANode without owning it (a path result).
  void AddReference(TVnJSONBase* ANode);

  // IVnJSONArray
  IPtr<IVnJSONBase> AddValueIntf1(TVnJSONDataType AKind) override;
  IPtr<IVnJSONBase> AddValueIntf2(TVnJSONDataType AKind, std::u16string_view AText) override;
  IPtr<IVnJSONBase> AddValueIntf3(const Variant& AValue) override;
  void RemoveValueIntf(const IPtr<IVnJSONBase>& AValue) override;
};

class TVnJSONDocument : public TVnJSONBase, public IVnJSONDocument {
  VN_DECLARE_CLASS(TVnJSONDocument, TVnJSONBase)
  VN_JSON_NODE_INTERFACE(TVnJSONBase, IVnJSONDocument)

 public:
  TVnJSONDocument();
  TVnJSONDocument(const UnicodeString& AFileName, Word AMode);
  explicit TVnJSONDocument(std::u16string_view AText);
  TVnJSONDocument(const RawByteString& AText, Word ACodePage);
  TVnJSONDocument(TStream& AStream, Word ACodePage, bool AFormURLEncoded = false);

  /// Replaces the root by a new value of AKind and returns it.
  TVnJSONBase* CreateRootValue(TVnJSONDataType AKind);
  /// The only child, or nil.
  TVnJSONBase* GetRootValue() const noexcept { return FObjects.size() == 1 ? FObjects[0] : nullptr; }
  TVnJSONMember* FindMember(std::u16string_view AName, bool ACaseInsensitive = false) override;
  TVnJSONMember* GetMember(std::u16string_view AName, TVnJDOCSelectOptions AOptions = {}) override;
  TVnJSONBase* Item(Integer AIndex) override;
  void LoadFromFile(const UnicodeString& AFileName, Word AMode = fmOpenRead | fmShareDenyWrite) override;
  void SaveToFile(const UnicodeString& AFileName, bool AFormatted = false) override;
  /// The document's text in ACodePage (1200, 65001 or any code page the platform converts),
  /// with a byte-order mark when AWriteBOM and the code page is 1200 or 65001.
  void SaveToStream(TStream& AStream, bool AFormatted, Word ACodePage, bool AWriteBOM) override;
  UnicodeString GetAsJSON() override;
  UnicodeString GetFormattedJSON() override { return TVnJSONBase::GetFormattedJSON(); }
  void SetAsJSON(std::u16string_view AText) override { TVnJSONBase::SetAsJSON(AText); }
  using TVnJSONBase::LoadFromStream;
  void LoadFromStream(TStream& AStream, Word ACodePage, bool AFormURLEncoded) override;

  // IVnJSONDocument
  IPtr<IVnJSONBase> GetRootValueIntf() override;
  IPtr<IVnJSONBase> CreateRootValueIntf(TVnJSONDataType AKind) override;
  IPtr<IVnJSONMember> FindMemberIntf(std::u16string_view AName, bool ACaseInsensitive) override {
    return TVnJSONBase::FindMemberIntf(AName, ACaseInsensitive);
  }
  IPtr<IVnJSONMember> GetMemberIntf(std::u16string_view AName, TVnJDOCSelectOptions AOptions) override {
    return TVnJSONBase::GetMemberIntf(AName, AOptions);
  }
  IPtr<IVnJSONArray> SelectIntf(std::u16string_view APath, TVnJDOCSelectOptions AOptions) override {
    return TVnJSONBase::SelectIntf(APath, AOptions);
  }
};

/// Loads AText and returns its compact text.
UnicodeString VnFormatJSON(std::u16string_view AText);
/// Loads 8-bit text (UTF-8) and returns its formatted text.
UnicodeString VnFormatJSON(const RawByteString& AText);

}  // namespace vn
