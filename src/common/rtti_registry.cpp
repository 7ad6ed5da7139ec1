// The reflection registry: type records by name, class records made on demand, TRttiContext.
#include "rtti_registry.h"

#include "vnxml/common/rtti_register.h"
#include "vnxml/common/sysutils.h"

namespace vn {
namespace detail {

Registry::Registry() { AddBuiltinTypes(*this); }

TTypeInfo* Registry::Add(TTypeKind AKind, UnicodeString AName, UnicodeString AUnit, const TypeOps* AOps) {
  auto info = std::make_unique<TTypeInfo>();
  info->Kind = AKind;
  info->Ops = AOps;
  TTypeInfo* raw = info.get();
  Infos.push_back(std::move(info));
  Types.push_back(std::make_unique<TRttiType>(raw));
  raw->RttiType = Types.back().get();
  Rename(raw, std::move(AName), std::move(AUnit));
  return raw;
}

void Registry::Rename(TTypeInfo* AInfo, UnicodeString AName, UnicodeString AUnit) {
  for (const UnicodeString* old : {&AInfo->Name, &AInfo->QualifiedName}) {
    auto it = ByName.find(UpperCase(*old));
    if (it != ByName.end() && it->second == AInfo) ByName.erase(it);
  }
  AInfo->Name = std::move(AName);
  AInfo->UnitName = std::move(AUnit);
  AInfo->QualifiedName = AInfo->UnitName.empty() ? AInfo->Name : AInfo->UnitName + u"." + AInfo->Name;
  AInfo->RttiType->SyncName();
  if (AInfo->Name.empty()) return;
  // The first type of a short name keeps it; qualified names are unique by construction.
  ByName.emplace(UpperCase(AInfo->Name), AInfo);
  ByName.insert_or_assign(UpperCase(AInfo->QualifiedName), AInfo);
  if (AInfo->Kind == tkClass && AInfo->ClassType) AInfo->ClassType->QualifiedName = AInfo->QualifiedName.c_str();
}

void Registry::AddAlias(TTypeInfo* AInfo, std::u16string_view AName) { ByName.emplace(UpperCase(AName), AInfo); }

TTypeInfo* Registry::ForClass(TClass AClass) {
  if (!AClass) return nullptr;
  if (AClass->TypeInfo) return const_cast<TTypeInfo*>(AClass->TypeInfo);
  if (AClass->Parent) ForClass(AClass->Parent);
  // Until a registration says otherwise the class is stored as TObject*.
  TTypeInfo* info = Add(tkClass, {}, {}, &kOps<TObject*>);
  info->ClassType = AClass;
  AClass->TypeInfo = info;
  Rename(info, AClass->Name, AClass->Parent ? UnicodeString() : UnicodeString(u"System"));
  return info;
}

TTypeInfo* Registry::Find(std::u16string_view AName) const {
  auto it = ByName.find(UpperCase(AName));
  return it == ByName.end() ? nullptr : it->second;
}

Registry& GetRegistry() {
  static Registry registry;
  if (!registry.MembersReady.load(std::memory_order_acquire)) {
    std::lock_guard lock(registry.Lock);
    // A call from inside AddBuiltinMembers finds MembersStarted set and goes on.
    if (!registry.MembersStarted) {
      registry.MembersStarted = true;
      AddBuiltinMembers();
      registry.MembersReady.store(true, std::memory_order_release);
    }
  }
  return registry;
}

const BuiltinTypes& Builtins() { return GetRegistry().Builtins; }

std::recursive_mutex& RttiLock() { return GetRegistry().Lock; }

TTypeInfo* NewTypeInfo(TTypeKind AKind, UnicodeString AName, UnicodeString AUnit, const TypeOps* AOps) {
  Registry& r = GetRegistry();
  std::lock_guard lock(r.Lock);
  return r.Add(AKind, std::move(AName), std::move(AUnit), AOps);
}

void RenameTypeInfo(TTypeInfo* AInfo, UnicodeString AName, UnicodeString AUnit) {
  Registry& r = GetRegistry();
  std::lock_guard lock(r.Lock);
  r.Rename(AInfo, std::move(AName), std::move(AUnit));
}

TTypeInfo* MutableClassTypeInfo(TClass AClass) {
  Registry& r = GetRegistry();
  std::lock_guard lock(r.Lock);
  return r.ForClass(AClass);
}

UnicodeString StaticArrayName(size_t ACount, const TTypeInfo* AElement) {
  return u"array[0.." + IntToStr(static_cast<Int64>(ACount) - 1) + u"] of " + AElement->Name;
}

}  // namespace detail

UnicodeString GenericTypeName(std::u16string_view ABaseName, std::initializer_list<const TTypeInfo*> AArguments) {
  UnicodeString name(ABaseName);
  name += u'<';
  bool first = true;
  for (const TTypeInfo* arg : AArguments) {
    if (!first) name += u',';
    first = false;
    name += arg->QualifiedName;
  }
  name += u'>';
  return name;
}

const TTypeInfo* ClassTypeInfo(TClass AClass) { return detail::MutableClassTypeInfo(AClass); }

const TTypeInfo* FindTypeInfo(std::u16string_view AName) {
  detail::Registry& r = detail::GetRegistry();
  std::lock_guard lock(r.Lock);
  return r.Find(AName);
}

TRttiType* TRttiContext::GetType(TClass AClass) {
  const TTypeInfo* info = ClassTypeInfo(AClass);
  return info ? info->RttiType : nullptr;
}

TRttiType* TRttiContext::FindType(std::u16string_view AName) {
  const TTypeInfo* info = FindTypeInfo(AName);
  return info ? info->RttiType : nullptr;
}

std::vector<TRttiType*> TRttiContext::GetTypes() {
  detail::Registry& r = detail::GetRegistry();
  std::lock_guard lock(r.Lock);
  std::vector<TRttiType*> types;
  types.reserve(r.Types.size());
  for (const auto& t : r.Types) types.push_back(t.get());
  return types;
}

}  // namespace vn
