// TVnTypes: the records of types, their lookups by handle, class and name, aliases and the
// serializer pairs. One registry object, made on first use, guards everything with one lock.
#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include "vnxml/common/classes.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_types.h"

namespace vn {
namespace detail {

namespace {

struct BuiltinSchemaName {
  const TTypeInfo* Type;
  TVnSchemaDataType SchemaType;
  const char16_t* Name;
};

UnicodeString UpperFirst(UnicodeString AText) {
  if (!AText.empty() && AText[0] >= u'a' && AText[0] <= u'z') AText[0] = static_cast<char16_t>(AText[0] - 32);
  return AText;
}

bool IsNameChar(char16_t ACh) {
  return (ACh >= u'a' && ACh <= u'z') || (ACh >= u'A' && ACh <= u'Z') || (ACh >= u'0' && ACh <= u'9') ||
         ACh == u'_' || ACh == u'-' || ACh == u'.' || ACh > 0x7F;
}

/// The arguments of a generic name between its first '<' and last '>', split at the commas of
/// the outer level ("string,TList<uShop.TItem>" gives two).
std::vector<std::u16string_view> GenericArguments(std::u16string_view AName) {
  std::vector<std::u16string_view> args;
  const size_t open = AName.find(u'<');
  const size_t close = AName.rfind(u'>');
  if (open == AName.npos || close == AName.npos || close <= open) return args;
  std::u16string_view inner = AName.substr(open + 1, close - open - 1);
  int depth = 0;
  size_t start = 0;
  for (size_t i = 0; i < inner.size(); ++i) {
    if (inner[i] == u'<') ++depth;
    if (inner[i] == u'>') --depth;
    if (inner[i] == u',' && depth == 0) {
      args.push_back(inner.substr(start, i - start));
      start = i + 1;
    }
  }
  args.push_back(inner.substr(start));
  return args;
}

UnicodeString KeyOf(std::u16string_view AName) { return UpperCase(AName); }

}  // namespace

/// Kinds given to types by TVnTypes::RegisterTypeKind. Apart from the registry and its lock:
/// a type's own registration adds its kind while the reflection lock is held.
struct KindOverrides {
  std::mutex Lock;
  std::unordered_map<const TTypeInfo*, TVnTypeKind> Kinds;
  static KindOverrides& Get() {
    static KindOverrides overrides;
    return overrides;
  }
  bool Find(const TTypeInfo* AType, TVnTypeKind& AKind) {
    std::lock_guard lock(Lock);
    auto it = Kinds.find(AType);
    if (it == Kinds.end()) return false;
    AKind = it->second;
    return true;
  }
};

class VnTypeRegistry {
 public:
  static VnTypeRegistry& Get() {
    static VnTypeRegistry registry;
    return registry;
  }

  const TVnTypeInfo* ForType(const TTypeInfo* AType) {
    if (!AType) return nullptr;
    // The record of a type never changes once made, so each thread keeps the ones it asked
    // for last and finds them again without the lock.
    struct Recent {
      const TTypeInfo* Type = nullptr;
      const TVnTypeInfo* Info = nullptr;
    };
    constexpr size_t kRecent = 64;
    thread_local Recent recent[kRecent];
    Recent& slot = recent[(reinterpret_cast<uintptr_t>(AType) >> 4) % kRecent];
    if (slot.Type == AType) return slot.Info;
    std::lock_guard lock(FLock);
    const TVnTypeInfo* info = ForTypeLocked(AType);
    slot = {AType, info};
    return info;
  }

  const TVnTypeInfo* ByName(std::u16string_view AName, TVnTypeNameType ANameType, bool ACreate,
                            TVnMainTypeKind AMainKind) {
    std::lock_guard lock(FLock);
    const TVnTypeInfo* found = ByNameLocked(AName, ANameType, ACreate);
    if (found && AMainKind != mtkUnknown && found->GetMainTypeKind() != AMainKind) return nullptr;
    return found;
  }

  const TVnTypeInfo* BySchemaType(TVnSchemaDataType ASchemaType) {
    for (const BuiltinSchemaName& b : FBuiltins)
      if (b.SchemaType == ASchemaType) return ForType(b.Type);
    return nullptr;
  }

  const TVnTypeInfo* ArrayOf(const TVnTypeInfo* AElement) {
    std::lock_guard lock(FLock);
    return VirtualArrayLocked(AElement);
  }

  void AddAliases(const TTypeInfo* AType, std::initializer_list<std::u16string_view> ANames) {
    std::lock_guard lock(FLock);
    TVnTypeInfo* info = ForTypeLocked(AType);
    if (!info) return;
    bool first = true;
    for (std::u16string_view name : ANames) {
      if (name.empty()) continue;
      FByAlias.insert_or_assign(KeyOf(name), info);
      if (first && info->FSchemaType == sdtNone) {
        info->FSchemaName.assign(name);
        FBySchemaName.emplace(KeyOf(name), info);
      }
      first = false;
    }
  }

  void SetSerializers(const TTypeInfo* AType, TVnSerializeFormat AFormat, const TVnSerializerPair& APair) {
    VnAssert(AFormat < cVnSerializeFormatCount, u"There is no serialization format of that number");
    std::lock_guard lock(FLock);
    if (AType)
      FSerializers.insert_or_assign(SerializerKey{AType, AFormat}, APair);
    else
      FDefaults[AFormat] = APair;
    FSerializersGeneration.fetch_add(1, std::memory_order_release);
  }

  const TVnSerializerPair* FindSerializers(const TVnTypeInfo* AType, TVnSerializeFormat AFormat) {
    if (AFormat >= cVnSerializeFormatCount) return nullptr;
    // A read asks for the same few pairs once per nested value; each thread keeps the answers
    // it got until a registration changes the table.
    struct Recent {
      const TVnTypeInfo* Type = nullptr;
      TVnSerializeFormat Format{};
      uint64_t Generation = 0;
      TVnSerializerPair Pair;
      bool Found = false;
    };
    constexpr size_t kRecent = 32;
    thread_local Recent recent[kRecent];
    Recent& slot = recent[((reinterpret_cast<uintptr_t>(AType) >> 4) + AFormat) % kRecent];
    const uint64_t generation = FSerializersGeneration.load(std::memory_order_acquire);
    if (slot.Generation == generation && slot.Type == AType && slot.Format == AFormat && generation != 0)
      return slot.Found ? &slot.Pair : nullptr;
    const TVnSerializerPair* pair = FindSerializersLocked(AType, AFormat);
    slot.Type = AType;
    slot.Format = AFormat;
    slot.Generation = generation;
    slot.Found = pair != nullptr;
    if (pair) slot.Pair = *pair;
    return slot.Found ? &slot.Pair : nullptr;
  }

  const TVnSerializerPair* FindSerializersLocked(const TVnTypeInfo* AType, TVnSerializeFormat AFormat) {
    std::lock_guard lock(FLock);
    if (AType) {
      if (const TVnSerializerPair* pair = FindPairLocked(AType->Handle(), AFormat)) return pair;
      if (AType->GetKind() == tkClass && AType->Handle()->ClassType) {
        for (TClass c = AType->Handle()->ClassType->Parent; c; c = c->Parent)
          if (const TVnSerializerPair* pair = FindPairLocked(ClassTypeInfo(c), AFormat)) return pair;
      }
    }
    return FDefaults[AFormat] ? &*FDefaults[AFormat] : nullptr;
  }

 private:
  using SerializerKey = std::pair<const TTypeInfo*, TVnSerializeFormat>;

  VnTypeRegistry() {
    FBuiltins = {
        {TypeInfoOf<ShortInt>(), sdtByte, u"byte"},
        {TypeInfoOf<SmallInt>(), sdtShort, u"short"},
        {TypeInfoOf<Integer>(), sdtInt, u"int"},
        {TypeInfoOf<Int64>(), sdtLong, u"long"},
        {TypeInfoOf<Byte>(), sdtUnsignedByte, u"unsignedByte"},
        {TypeInfoOf<Word>(), sdtUnsignedShort, u"unsignedShort"},
        {TypeInfoOf<Cardinal>(), sdtUnsignedInt, u"unsignedInt"},
        {TypeInfoOf<UInt64>(), sdtUnsignedLong, u"unsignedLong"},
        {TypeInfoOf<Single>(), sdtFloat, u"float"},
        {TypeInfoOf<Double>(), sdtDouble, u"double"},
        {TypeInfoOf<Currency>(), sdtDecimal, u"decimal"},
        {TypeInfoOf<UnicodeString>(), sdtString, u"string"},
        {TypeInfoOf<bool>(), sdtBoolean, u"boolean"},
        {FindTypeInfo(u"System.TDate"), sdtDate, u"date"},
        {FindTypeInfo(u"System.TTime"), sdtTime, u"time"},
        {FindTypeInfo(u"System.TDateTime"), sdtDateTime, u"dateTime"},
        {TypeInfoOf<Variant>(), sdtAnyType, u"anyType"},
    };
    FBoolean = TypeInfoOf<bool>();
    FDate = FindTypeInfo(u"System.TDate");
    FTime = FindTypeInfo(u"System.TTime");
    FDateTime = FindTypeInfo(u"System.TDateTime");
    std::lock_guard lock(FLock);
    for (const BuiltinSchemaName& b : FBuiltins) ForTypeLocked(b.Type);
    // The string list is written under its short alias.
    const TTypeInfo* stringList = ClassTypeInfo(TStringList::StaticClass());
    TVnTypeInfo* info = ForTypeLocked(stringList);
    FByAlias.insert_or_assign(KeyOf(u"StringList"), info);
    info->FSchemaName = u"StringList";
    FBySchemaName.emplace(KeyOf(u"StringList"), info);
  }

  TVnTypeKind KindOf(const TTypeInfo* AType) const {
    switch (AType->Kind) {
      case tkInteger:
        switch (AType->OrdType) {
          case otSByte: return vtkShortInt;
          case otUByte: return vtkByte;
          case otSWord: return vtkSmallInt;
          case otUWord: return vtkWord;
          case otSLong: return vtkInteger;
          case otULong: return vtkLongWord;
        }
        return vtkInteger;
      case tkInt64: return AType->IsUnsigned ? vtkUInt64 : vtkInt64;
      case tkFloat:
        if (AType == FDate) return vtkDate;
        if (AType == FTime) return vtkTime;
        if (AType == FDateTime) return vtkDateTime;
        switch (AType->FloatType) {
          case ftSingle: return vtkSingle;
          case ftDouble: return vtkDouble;
          default: return vtkExtended;
        }
      case tkWChar: return vtkText1;
      case tkChar: return vtkText2;
      case tkString: return vtkText4;
      case tkLString: return vtkText5;
      case tkWString: case tkUString: return vtkText6;
      case tkEnumeration: return AType == FBoolean ? vtkBoolean : vtkEnumeration;
      case tkSet: return vtkSet;
      case tkVariant: return vtkVariant;
      case tkArray: return vtkStaticArray;
      case tkDynArray: return vtkDynArray;
      case tkRecord: case tkMRecord: return vtkRecord;
      case tkClass: return vtkClass;
      case tkInterface: return vtkInterface;
      case tkMethod: return vtkOther30;
      case tkPointer: return vtkPointer;
      case tkProcedure: return vtkOther32;
      case tkClassRef: return vtkClassRef;
      default: return vtkUnknown;
    }
  }

  static UnicodeString ArrayName(const TVnTypeInfo* AElement) { return u"ArrayOf" + UpperFirst(AElement->FSchemaName); }

  /// A name fit for XML: a generic type is named after its arguments' schema names
  /// ("TObjectList<uShop.TItem>" gives "TObjectListOfTItem"); other characters that no XML name
  /// holds are dropped.
  UnicodeString SchemaNameOf(std::u16string_view AName) {
    const size_t open = AName.find(u'<');
    if (open == AName.npos) {
      UnicodeString name;
      for (char16_t c : AName)
        if (IsNameChar(c)) name += c;
      return name;
    }
    UnicodeString name = SchemaNameOf(AName.substr(0, open)) + u"Of";
    bool first = true;
    for (std::u16string_view arg : GenericArguments(AName)) {
      if (!first) name += u"And";
      first = false;
      if (const TTypeInfo* t = FindTypeInfo(arg)) {
        name += UpperFirst(ForTypeLocked(t)->FSchemaName);
      } else {
        const size_t dot = arg.find(u'<') == arg.npos ? arg.rfind(u'.') : arg.npos;
        name += UpperFirst(SchemaNameOf(dot == arg.npos ? arg : arg.substr(dot + 1)));
      }
    }
    return name;
  }

  TVnTypeInfo* ForTypeLocked(const TTypeInfo* AType) {
    if (!AType) return nullptr;
    auto it = FByHandle.find(AType);
    if (it != FByHandle.end()) return it->second;
    auto owned = std::unique_ptr<TVnTypeInfo>(new TVnTypeInfo());
    TVnTypeInfo* info = owned.get();
    FInfos.push_back(std::move(owned));
    FByHandle.emplace(AType, info);
    info->FHandle = AType;
    info->FKind = KindOf(AType);
    KindOverrides::Get().Find(AType, info->FKind);
    if (AType->Kind == tkSet || AType->Kind == tkArray || AType->Kind == tkDynArray)
      info->FElementType = ForTypeLocked(AType->ElementType);
    for (const BuiltinSchemaName& b : FBuiltins) {
      if (b.Type == AType) {
        info->FSchemaType = b.SchemaType;
        info->FSchemaName = b.Name;
      }
    }
    if (info->FSchemaName.empty()) {
      if (info->FElementType && AType->Kind == tkDynArray) {
        info->FSchemaType = sdtArray;
        info->FSchemaName = ArrayName(info->FElementType);
      } else if (info->FElementType && AType->Kind == tkArray) {
        // The bounds are part of the type: "Array3OfInt" stays apart from "ArrayOfInt".
        info->FSchemaType = sdtArray;
        info->FSchemaName = u"Array" + IntToStr(static_cast<Int64>(AType->ElementCount)) + u"Of" +
                            UpperFirst(info->FElementType->FSchemaName);
      } else if (info->FElementType) {
        info->FSchemaName = u"SetOf" + UpperFirst(info->FElementType->FSchemaName);
      } else {
        info->FSchemaName = SchemaNameOf(AType->Name);
      }
    }
    FBySchemaName.emplace(KeyOf(info->FSchemaName), info);
    return info;
  }

  /// An array of AElement that no platform type stands for: its storage is an array of
  /// Variants, so a value of it is safe to make, while its record names the real element.
  const TVnTypeInfo* VirtualArrayLocked(const TVnTypeInfo* AElement) {
    auto it = FVirtualArrays.find(AElement);
    if (it != FVirtualArrays.end()) return it->second;
    const UnicodeString name = ArrayName(AElement);
    TTypeInfo* record = NewTypeInfo(tkDynArray, name, u"uVnCommon", &kOps<std::vector<Variant>>);
    record->ElementType = TypeInfoOf<Variant>();
    auto owned = std::unique_ptr<TVnTypeInfo>(new TVnTypeInfo());
    TVnTypeInfo* info = owned.get();
    FInfos.push_back(std::move(owned));
    info->FHandle = record;
    info->FKind = vtkDynArray;
    info->FSchemaType = sdtArray;
    info->FElementType = AElement;
    info->FSchemaName = name;
    FByHandle.emplace(record, info);
    FBySchemaName.emplace(KeyOf(name), info);
    FVirtualArrays.emplace(AElement, info);
    return info;
  }

  const TVnTypeInfo* FindSchemaLocked(std::u16string_view AName) const {
    auto it = FBySchemaName.find(KeyOf(AName));
    return it == FBySchemaName.end() ? nullptr : it->second;
  }

  /// Gives every reflection type made since the last call its record, so that schema names
  /// derived from other names (generics) can be found.
  void SyncLocked() {
    const std::vector<TRttiType*> types = TRttiContext::GetTypes();
    for (size_t i = FSynced; i < types.size(); ++i) ForTypeLocked(types[i]->Handle());
    FSynced = types.size();
  }

  const TVnTypeInfo* ByNameLocked(std::u16string_view AName, TVnTypeNameType ANameType, bool ACreate) {
    if (ANameType == tntSchemaName) {
      const size_t colon = AName.find(u':');
      if (colon != AName.npos) AName.remove_prefix(colon + 1);
    }
    if (AName.empty()) return nullptr;
    if (ANameType == tntSchemaName)
      if (const TVnTypeInfo* found = FindSchemaLocked(AName)) return found;
    auto alias = FByAlias.find(KeyOf(AName));
    if (alias != FByAlias.end()) return alias->second;
    if (const TTypeInfo* t = FindTypeInfo(AName)) return ForTypeLocked(t);
    if (ANameType != tntSchemaName) return nullptr;
    SyncLocked();
    if (const TVnTypeInfo* found = FindSchemaLocked(AName)) return found;
    constexpr std::u16string_view arrayOf = u"ArrayOf";
    if (ACreate && AName.size() > arrayOf.size() && StartsText(arrayOf, AName)) {
      const TVnTypeInfo* element = ByNameLocked(AName.substr(arrayOf.size()), tntSchemaName, true);
      if (element) return VirtualArrayLocked(element);
    }
    return nullptr;
  }

  const TVnSerializerPair* FindPairLocked(const TTypeInfo* AType, TVnSerializeFormat AFormat) const {
    auto it = FSerializers.find(SerializerKey{AType, AFormat});
    return it == FSerializers.end() ? nullptr : &it->second;
  }

  std::recursive_mutex FLock;
  std::vector<BuiltinSchemaName> FBuiltins;
  const TTypeInfo* FBoolean = nullptr;
  const TTypeInfo* FDate = nullptr;
  const TTypeInfo* FTime = nullptr;
  const TTypeInfo* FDateTime = nullptr;
  std::vector<std::unique_ptr<TVnTypeInfo>> FInfos;
  std::unordered_map<const TTypeInfo*, TVnTypeInfo*> FByHandle;
  /// Counts registrations of serializer pairs: answers kept from before are stale.
  std::atomic<uint64_t> FSerializersGeneration{1};
  std::unordered_map<UnicodeString, TVnTypeInfo*> FBySchemaName;  // upper-cased; the first type keeps a name
  std::unordered_map<UnicodeString, TVnTypeInfo*> FByAlias;       // upper-cased
  std::unordered_map<const TVnTypeInfo*, const TVnTypeInfo*> FVirtualArrays;
  size_t FSynced = 0;
  std::map<SerializerKey, TVnSerializerPair> FSerializers;
  std::array<std::optional<TVnSerializerPair>, cVnSerializeFormatCount> FDefaults;
};

}  // namespace detail

const TVnTypeInfo* TVnTypes::GetTypeInfo(const TTypeInfo* AType) { return detail::VnTypeRegistry::Get().ForType(AType); }

const TVnTypeInfo* TVnTypes::GetTypeInfo(const TRttiType* AType) {
  return AType ? GetTypeInfo(AType->Handle()) : nullptr;
}

const TVnTypeInfo* TVnTypes::GetTypeInfo(TClass AClass) { return AClass ? GetTypeInfo(ClassTypeInfo(AClass)) : nullptr; }

const TVnTypeInfo* TVnTypes::GetTypeInfo(std::u16string_view AName, TVnTypeNameType ANameType, bool ACreate,
                                         TVnMainTypeKind AMainKind) {
  return detail::VnTypeRegistry::Get().ByName(AName, ANameType, ACreate, AMainKind);
}

void TVnTypes::RegisterTypeKind(const TTypeInfo* AType, TVnTypeKind AKind) {
  detail::KindOverrides& overrides = detail::KindOverrides::Get();
  std::lock_guard lock(overrides.Lock);
  overrides.Kinds.insert_or_assign(AType, AKind);
}

void TVnTypes::RegisterTypeAlias(const TTypeInfo* AType, std::initializer_list<std::u16string_view> ANames) {
  detail::VnTypeRegistry::Get().AddAliases(AType, ANames);
}

void TVnTypes::RegisterTypeSerializers(const TTypeInfo* AType, TVnSerializeFormat AFormat,
                                       const TVnSerializerPair& APair) {
  detail::VnTypeRegistry::Get().SetSerializers(AType, AFormat, APair);
}

const TVnSerializerPair* TVnTypes::FindSerializers(const TVnTypeInfo* AType, TVnSerializeFormat AFormat) {
  return detail::VnTypeRegistry::Get().FindSerializers(AType, AFormat);
}

const TTypeInfo* TVnTypeInfo::VirtualType(TVnSchemaDataType ASchemaType) const {
  detail::VnTypeRegistry& registry = detail::VnTypeRegistry::Get();
  const TVnTypeInfo* type = ASchemaType == sdtArray ? registry.ArrayOf(this) : registry.BySchemaType(ASchemaType);
  return type ? type->Handle() : nullptr;
}

}  // namespace vn
