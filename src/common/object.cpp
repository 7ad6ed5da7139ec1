// TObject, the class registry behind RegisterClass/GetClass.
#include "vnxml/common/object.h"

#include <map>
#include <mutex>

#include "internal/platform_classes.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/sysutils.h"

namespace vn {

TClass TObject::StaticClass() {
  static const TClassInfo info{u"TObject", nullptr, &detail::CreateDefault<TObject>, nullptr, nullptr, sizeof(TObject)};
  return &info;
}

UnicodeString TObject::ClassName() const { return ClassNameOf(ClassType()); }

bool TObject::InheritsFrom(TClass AClass) const { return ClassInheritsFrom(ClassType(), AClass); }

UnicodeString ClassNameOf(TClass AClass) { return AClass ? UnicodeString(AClass->Name) : UnicodeString(); }

bool ClassInheritsFrom(TClass AClass, TClass AAncestor) {
  for (TClass c = AClass; c; c = c->Parent)
    if (c == AAncestor) return true;
  return false;
}

TObject* CreateInstance(TClass AClass) {
  // The factory of an abstract class exists but makes nothing.
  TObject* obj = AClass && AClass->Factory ? AClass->Factory() : nullptr;
  if (!obj) throw EAbstractError(u"Abstract Error");
  return obj;
}

namespace {
struct ClassRegistry {
  std::mutex Lock;
  std::map<UnicodeString, TClass> ByName;  // key: upper-cased name
};
ClassRegistry& Registry() {
  static ClassRegistry r;
  return r;
}
}  // namespace

void RegisterClass(TClass AClass) {
  if (!AClass) return;
  auto& r = Registry();
  std::lock_guard g(r.Lock);
  r.ByName.emplace(UpperCase(AClass->Name), AClass);
}

void UnRegisterClass(TClass AClass) {
  if (!AClass) return;
  auto& r = Registry();
  std::lock_guard g(r.Lock);
  auto it = r.ByName.find(UpperCase(AClass->Name));
  if (it != r.ByName.end() && it->second == AClass) r.ByName.erase(it);
}

TClass GetClass(std::u16string_view AClassName) {
  static const bool platformClassesRegistered = (detail::RegisterPlatformClasses(), true);
  (void)platformClassesRegistered;
  auto& r = Registry();
  std::lock_guard g(r.Lock);
  auto it = r.ByName.find(UpperCase(AClassName));
  return it == r.ByName.end() ? nullptr : it->second;
}

TClass FindClass(std::u16string_view AClassName) {
  TClass c = GetClass(AClassName);
  if (!c) throw EClassNotFound(u"Class %s not found", {AClassName});
  return c;
}

}  // namespace vn
