// The process-wide reflection registry: owner of every type record and reflection object.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "vnxml/common/rtti.h"

namespace vn::detail {

/// Records of the built-in types, made when the registry starts.
struct BuiltinTypes {
  TTypeInfo *Integer, *Cardinal, *ShortInt, *SmallInt, *Byte, *Word, *Int64, *UInt64;
  TTypeInfo *Single, *Double, *Extended, *Currency, *Comp, *DateTime, *Date, *Time;
  TTypeInfo *Boolean, *Char, *AnsiChar, *String, *AnsiString, *WideString, *ShortString;
  TTypeInfo *XMLString, *JSONString, *Variant, *Value, *GUID, *Pointer, *Class, *Object;
};

struct Registry {
  Registry();
  /// A new record; the name index learns its names. Caller holds Lock.
  TTypeInfo* Add(TTypeKind AKind, UnicodeString AName, UnicodeString AUnit, const TypeOps* AOps);
  void Rename(TTypeInfo* AInfo, UnicodeString AName, UnicodeString AUnit);
  /// An extra name for a record ("UnicodeString" for "string").
  void AddAlias(TTypeInfo* AInfo, std::u16string_view AName);
  TTypeInfo* ForClass(TClass AClass);
  TTypeInfo* Find(std::u16string_view AName) const;

  std::recursive_mutex Lock;
  std::vector<std::unique_ptr<TTypeInfo>> Infos;
  std::vector<std::unique_ptr<TRttiType>> Types;
  std::unordered_map<UnicodeString, TTypeInfo*> ByName;  // upper-cased qualified and short names
  BuiltinTypes Builtins{};
  std::atomic<bool> MembersReady{false};
  bool MembersStarted = false;
};

/// The registry, with the members of the built-in classes registered.
Registry& GetRegistry();
const BuiltinTypes& Builtins();
/// Fills the records of the built-in types (rtti_builtin.cpp); runs inside the registry's constructor.
void AddBuiltinTypes(Registry& ARegistry);
/// Registers the members of the built-in classes (TObject's Create); runs once after construction.
void AddBuiltinMembers();
/// Registers TPersistent, TComponent (Name, Tag, Owner, Create(AOwner)), the lists and string lists.
void AddPlatformClassTypes();

}  // namespace vn::detail
