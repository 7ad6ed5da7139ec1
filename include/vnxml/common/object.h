// object.h: TObject and TClass, the root of every class, and counted interfaces (common platform layer).
// A class joins the class system with VN_DECLARE_CLASS in its body; RegisterClass, called from
// one source file, makes it findable by name through GetClass.
// Interfaces derive from IInterface, carry `static constexpr TGUID IID`, and are held by IPtr<I>.
#pragma once

#include <atomic>
#include <type_traits>
#include <utility>

#include "vnxml/common/guid.h"
#include "vnxml/common/types.h"

namespace vn {

class TObject;
struct TTypeInfo;

/// The class record behind a TClass: name, parent, virtual constructor and reflection data.
struct TClassInfo {
  const char16_t* Name;
  const TClassInfo* Parent;
  /// Creates an instance with its default constructor; returns nullptr for abstract classes.
  TObject* (*Factory)();
  /// Filled by the reflection registration of the class; may stay nullptr.
  mutable const TTypeInfo* TypeInfo = nullptr;
  /// Unit-qualified name for reflection ("uShop.TItem"); empty when not registered.
  mutable const char16_t* QualifiedName = nullptr;
  /// Bytes of an instance of exactly this class.
  size_t InstanceSize = 0;
};
using TClass = const TClassInfo*;

class TObject {
 public:
  TObject() = default;
  TObject(const TObject&) = default;
  TObject& operator=(const TObject&) = default;
  virtual ~TObject() = default;

  static TClass StaticClass();
  virtual TClass ClassType() const { return StaticClass(); }
  UnicodeString ClassName() const;
  TClass ClassParent() const { return ClassType()->Parent; }
  bool InheritsFrom(TClass AClass) const;
  template <class T>
  bool Is() const { return InheritsFrom(T::StaticClass()); }
  /// The object's reflection record, when its class is registered for reflection.
  const TTypeInfo* ClassInfo() const { return ClassType()->TypeInfo; }

  /// The platform's Free: deletes a non-null object.
  static void Free(TObject* AObject) { delete AObject; }
};

UnicodeString ClassNameOf(TClass AClass);
bool ClassInheritsFrom(TClass AClass, TClass AAncestor);
/// Creates an object of AClass through its virtual constructor; raises EAbstractError for abstract classes.
TObject* CreateInstance(TClass AClass);

/// Registers AClass for GetClass; registering one name twice keeps the first class.
void RegisterClass(TClass AClass);
void UnRegisterClass(TClass AClass);
/// The registered class of that short name (case-insensitive), or nullptr.
TClass GetClass(std::u16string_view AClassName);
/// As GetClass, but raises EClassNotFound "Class %s not found".
TClass FindClass(std::u16string_view AClassName);

template <class T>
T* CastObject(TObject* AObject) {
  return AObject && AObject->InheritsFrom(T::StaticClass()) ? static_cast<T*>(AObject) : nullptr;
}

namespace detail {
template <class T>
TObject* CreateDefault() {
  if constexpr (std::is_default_constructible_v<T> && !std::is_abstract_v<T>)
    return new T();
  else
    return nullptr;
}
}  // namespace detail

}  // namespace vn

// In the class body: declares the class record (name, parent, virtual constructor) and
// overrides ClassType. The record is a function-local static: no start-up order issues.
#define VN_DECLARE_CLASS(Name, Parent)                                                      \
 public:                                                                                    \
  using inherited = Parent;                                                                 \
  static ::vn::TClass StaticClass() {                                                       \
    static const ::vn::TClassInfo info{u"" #Name, Parent::StaticClass(),                    \
                                       &::vn::detail::CreateDefault<Name>, nullptr, nullptr, \
                                       sizeof(Name)};                                       \
    return &info;                                                                           \
  }                                                                                         \
  ::vn::TClass ClassType() const override { return StaticClass(); }                        \
                                                                                            \
 private:

#include "vnxml/common/interface.h"
