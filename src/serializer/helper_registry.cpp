// The helper registry: helper classes by class, nearest class first, and by generic pattern.
#include <mutex>
#include <vector>

#include "serializer/serializer_startup.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/serializer.h"
#include "vnxml/serializer_helpers.h"

namespace vn {

namespace {

struct HelperNode {
  const TVnTypeInfo* TypeInfo = nullptr;
  TClass ClassRef = nullptr;  ///< nil for a pattern
  UnicodeString Name;         ///< the class's qualified name, or the pattern
  TClass SerializerHelper = nullptr;
  TClass DeserializerHelper = nullptr;
};

/// The registrations in lookup order: descendants before their ancestors, patterns behind the
/// classes registered after them.
struct HelperList {
  std::mutex Lock;
  std::vector<HelperNode> Nodes;
};

HelperList& Helpers() {
  static HelperList list;
  return list;
}

void CheckHelperClass(TClass AHelper, TClass ABase) {
  if (AHelper && !ClassInheritsFrom(AHelper, ABase)) throw EAssertionFailed(cVnNotAHelperClass, {ClassNameOf(AHelper)});
}

/// The name a generic class is matched by; other classes have none.
UnicodeString PatternOf(TClass AClass) {
  const TVnTypeInfo* type = TVnTypes::GetTypeInfo(AClass);
  const UnicodeString name = type ? type->Name() : ClassNameOf(AClass);
  return name.find(u'<') == name.npos ? UnicodeString() : VnGenericPattern(name);
}

/// The helper class that decides for AClass, picked by AField of the first fitting node.
template <class Pick>
TClass FindHelper(TClass AClass, Pick APick) {
  if (!AClass) return nullptr;
  detail::EnsureSerializerStartup();
  const UnicodeString pattern = PatternOf(AClass);
  HelperList& list = Helpers();
  std::lock_guard lock(list.Lock);
  if (!pattern.empty())
    for (const HelperNode& node : list.Nodes)
      if (!node.ClassRef && node.Name == pattern) return APick(node);
  for (const HelperNode& node : list.Nodes)
    if (node.ClassRef && ClassInheritsFrom(AClass, node.ClassRef)) return APick(node);
  return nullptr;
}

template <class T>
std::unique_ptr<T> CreateHelper(TClass AClass) {
  return std::unique_ptr<T>(AClass ? CastObject<T>(CreateInstance(AClass)) : nullptr);
}

}  // namespace

void TVnSerializerHelper::Serialize(TVnCustomSerializer*, const UnicodeString&, const TVnTypeInfo*, const TValue&,
                                    bool& AHandled) {
  AHandled = true;
}

TVnCanDeserialize TVnDeserializerHelper::CanDeserialize(TVnCustomSerializer*, UnicodeString&, UnicodeString&,
                                                        UnicodeString&) {
  return desNo;
}
void TVnDeserializerHelper::DeserializeStartType(TVnCustomSerializer*) {}
void TVnDeserializerHelper::DeserializeValue(TVnCustomSerializer*, const UnicodeString&, const UnicodeString&,
                                             const UnicodeString&, const UnicodeString&, bool&) {}
void TVnDeserializerHelper::DeserializeEndType(TVnCustomSerializer*) {}

UnicodeString VnGenericPattern(std::u16string_view AName) {
  const size_t open = AName.find(u'<');
  if (open == AName.npos) return UnicodeString(AName);
  UnicodeString pattern(AName.substr(0, open));
  pattern += u"<T";
  // Commas of nested arguments belong to their argument: only the outer level counts.
  size_t i = open + 1;
  for (int depth = 0; i < AName.size(); ++i) {
    const char16_t c = AName[i];
    if (c == u'<') ++depth;
    if (c == u'>' && depth-- == 0) break;
    if (c == u',' && depth == 0) pattern += u",T";
  }
  pattern += AName.substr(i);
  return pattern;
}

void VnRegisterSerializerHelper(TClass AClass, TVnSerializerHelperClass ASerializerHelper,
                                TVnDeserializerHelperClass ADeserializerHelper) {
  VnAssert(AClass != nullptr, Format(cVnClassInfoUnknown, {u"nil"}));
  CheckHelperClass(ASerializerHelper, TVnSerializerHelper::StaticClass());
  CheckHelperClass(ADeserializerHelper, TVnDeserializerHelper::StaticClass());
  detail::EnsureSerializerStartup();
  const TVnTypeInfo* type = TVnTypes::GetTypeInfo(AClass);
  HelperList& list = Helpers();
  std::lock_guard lock(list.Lock);
  auto& nodes = list.Nodes;
  auto at = nodes.begin();
  for (; at != nodes.end(); ++at) {
    if (at->ClassRef == AClass && at->SerializerHelper == ASerializerHelper) {
      VnAssert(!at->DeserializerHelper || at->DeserializerHelper == ADeserializerHelper, cVnInvalidHelperCombination);
      at->DeserializerHelper = ADeserializerHelper;
      return;
    }
    if (!at->ClassRef || ClassInheritsFrom(AClass, at->ClassRef)) break;
  }
  // With no ancestor and no pattern the class goes last: descendants registered before it stay
  // in front of it.
  nodes.insert(at, HelperNode{type, AClass, type ? type->QualifiedName() : ClassNameOf(AClass), ASerializerHelper,
                              ADeserializerHelper});
}

void VnRegisterSerializerHelper(std::u16string_view APattern, TVnSerializerHelperClass ASerializerHelper,
                                TVnDeserializerHelperClass ADeserializerHelper) {
  CheckHelperClass(ASerializerHelper, TVnSerializerHelper::StaticClass());
  CheckHelperClass(ADeserializerHelper, TVnDeserializerHelper::StaticClass());
  detail::EnsureSerializerStartup();
  HelperList& list = Helpers();
  std::lock_guard lock(list.Lock);
  list.Nodes.insert(list.Nodes.begin(),
                    HelperNode{nullptr, nullptr, UnicodeString(APattern), ASerializerHelper, ADeserializerHelper});
}

std::unique_ptr<TVnSerializerHelper> VnCreateSerializerHelper(TClass AClass) {
  return CreateHelper<TVnSerializerHelper>(FindHelper(AClass, [](const HelperNode& n) { return n.SerializerHelper; }));
}

std::unique_ptr<TVnDeserializerHelper> VnCreateDeserializerHelper(TClass AClass) {
  return CreateHelper<TVnDeserializerHelper>(
      FindHelper(AClass, [](const HelperNode& n) { return n.DeserializerHelper; }));
}

}  // namespace vn
