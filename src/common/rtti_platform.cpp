// Reflection of the platform classes (TPersistent, TComponent, lists, string lists), registered
// when the registry starts, so that their records carry unit names and members from the outset.
#include "rtti_registry.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/rtti_register.h"

namespace vn::detail {

namespace {

constexpr const char16_t* kClassesUnit = u"System.Classes";

/// A builder on the class's record; the registration fills it in place, as VN_REGISTER_TYPE would.
template <class T>
TTypeBuilder<T> PlatformClass() {
  TTypeInfo* info = MutableClassTypeInfo(T::StaticClass());
  info->Ops = &kOps<T*>;
  RenameTypeInfo(info, info->Name, kClassesUnit);
  return TTypeBuilder<T>(info);
}

}  // namespace

void AddPlatformClassTypes() {
  PlatformClass<TPersistent>();
  PlatformClass<TComponent>()
      .Published(u"Name", &TComponent::GetName, &TComponent::SetName)
      .Published(u"Tag", &TComponent::GetTag, &TComponent::SetTag)
      .Public(u"Owner", &TComponent::GetOwner)
      .Constructor<TComponent*>({u"AOwner"});
  PlatformClass<TList>();
  // What the serializer's object-list reader reaches by reflection.
  PlatformClass<TObjectList>()
      .Public(u"OwnsObjects", &TObjectList::GetOwnsObjects, &TObjectList::SetOwnsObjects)
      .Method(mvPublic, u"Add", &TObjectList::Add, {u"AObject"});
  PlatformClass<TStrings>();
  PlatformClass<TStringList>();
}

}  // namespace vn::detail
