// rtti_register.h: registration of types for reflection, beside the type's declaration.
// A class, record or enumeration joins with VN_REGISTER_TYPE(Type, u"uUnit") { b.... } right
// after its declaration (in the header, so every user sees it), or with VN_DECLARE_TYPE in the
// header and VN_IMPLEMENT_TYPE in one source file. The body names members through the builder b:
//   b.Published(u"Name", &TShop::GetName, &TShop::SetName)  // property: getter and/or setter
//    .Public(u"FItems", &TShop::FItems)                     // field: one data member pointer
//    .Attr<SerializerHint>(shoName, u"items")              // on the member just added
//    .Method(mvPublic, u"Add", &TShop::Add, {u"AItem"});
// Sets (TSet<E>), dynamic arrays (std::vector<E>), static arrays (std::array<E, N>), class
// references (TClassRef<C>) and interfaces (IPtr<I>) need no registration of their own; their
// element type does. A registration that breaks the rules is an EAssertionFailed.
#pragma once

#include <array>
#include <atomic>
#include <concepts>
#include <mutex>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "vnxml/common/rtti.h"
#include "vnxml/common/set.h"
#include "vnxml/common/sysutils.h"

namespace vn {

template <class T>
class TTypeBuilder;

/// A class reference that knows its base class (the platform's "class of TItem"); it holds a TClass.
template <class C>
struct TClassRef {
  using Base = C;
  TClass Value = nullptr;
  TClassRef() = default;
  TClassRef(TClass AClass) : Value(AClass) {}
  operator TClass() const noexcept { return Value; }
};

/// "TObjectList<uShop.TItem>": a generic type's name from its arguments' qualified names.
UnicodeString GenericTypeName(std::u16string_view ABaseName, std::initializer_list<const TTypeInfo*> AArguments);

namespace detail {

struct TypeNames {
  const char16_t* Name;
  const char16_t* Unit;
};
/// Names a type exactly: a pointer would let a derived class find its base's names.
template <class T>
struct TypeTag {};

// Blockers so that only argument-dependent lookup finds the registrations of host types.
void VnTypeNames() = delete;
void VnRegisterType() = delete;

template <class T>
concept HasTypeNames = requires(TypeTag<T> ATag) {
  { VnTypeNames(ATag) } -> std::convertible_to<TypeNames>;
};
template <class T>
concept HasRegistration = requires(TTypeBuilder<T>& ABuilder) { VnRegisterType(ABuilder); };

template <class T> struct IsStdVector : std::false_type {};
template <class E, class A> struct IsStdVector<std::vector<E, A>> : std::true_type {};
template <class T> struct IsStdArray : std::false_type {};
template <class E, size_t N> struct IsStdArray<std::array<E, N>> : std::true_type {};
template <class T> struct IsTSet : std::false_type {};
template <class E> struct IsTSet<TSet<E>> : std::true_type {};
template <class T> struct IsIPtr : std::false_type {};
template <class I> struct IsIPtr<IPtr<I>> : std::true_type {
  using Interface = I;
};
template <class T> struct IsClassRef : std::false_type {};
template <class C> struct IsClassRef<TClassRef<C>> : std::true_type {};

template <class T>
concept ObjectClass = std::is_base_of_v<TObject, T>;
template <class T>
concept ObjectPointer = std::is_pointer_v<T> && ObjectClass<std::remove_cv_t<std::remove_pointer_t<T>>>;

/// The instance address of reflection (TObject* for classes) as the declaring type.
template <class C>
C* InstanceAs(void* AInstance) {
  if constexpr (ObjectClass<C>)
    return static_cast<C*>(static_cast<TObject*>(AInstance));
  else
    return static_cast<C*>(AInstance);
}

// ---- value operations of a C++ type ----
template <class T>
constexpr TypeOps MakeOps() {
  TypeOps ops;
  ops.Size = sizeof(T);
  ops.Align = alignof(T);
  ops.Trivial = std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>;
  ops.Construct = [](void* AData) { ::new (AData) T(); };
  ops.CopyConstruct = [](void* AData, const void* ASource) { ::new (AData) T(*static_cast<const T*>(ASource)); };
  ops.Assign = [](void* AData, const void* ASource) { *static_cast<T*>(AData) = *static_cast<const T*>(ASource); };
  ops.Destroy = [](void* AData) { static_cast<T*>(AData)->~T(); };
  if constexpr (IsStdVector<T>::value) {
    static_assert(!std::is_same_v<typename T::value_type, bool>, "use std::vector<Boolean> of bytes, not bits");
    ops.Length = [](const void* AArray) { return static_cast<const T*>(AArray)->size(); };
    ops.SetLength = [](void* AArray, size_t ALength) { static_cast<T*>(AArray)->resize(ALength); };
    ops.Element = [](void* AArray, size_t AIndex) -> void* { return &(*static_cast<T*>(AArray))[AIndex]; };
  } else if constexpr (IsStdArray<T>::value) {
    ops.Length = [](const void*) { return std::tuple_size_v<T>; };
    ops.Element = [](void* AArray, size_t AIndex) -> void* { return &(*static_cast<T*>(AArray))[AIndex]; };
  } else if constexpr (ObjectPointer<T>) {
    using C = std::remove_cv_t<std::remove_pointer_t<T>>;
    ops.ToObject = [](const void* AData) -> TObject* { return *static_cast<C* const*>(AData); };
    ops.FromObject = [](void* AData, TObject* AObject) { *static_cast<C**>(AData) = static_cast<C*>(AObject); };
  } else if constexpr (IsIPtr<T>::value) {
    ops.ToInterface = [](const void* AData) -> IInterface* { return static_cast<const T*>(AData)->Get(); };
    ops.FromInterface = [](void* AData, IInterface* AIntf) {
      T& target = *static_cast<T*>(AData);
      target = nullptr;
      if (!AIntf) return true;
      void* found = nullptr;
      if (AIntf->QueryInterface(IsIPtr<T>::Interface::IID, &found) != S_OK || !found) return false;
      target = T::Attach(static_cast<typename IsIPtr<T>::Interface*>(found));
      return true;
    };
  }
  return ops;
}
template <class T>
inline constexpr TypeOps kOps = MakeOps<T>();

// ---- the registry (rtti_registry.cpp) ----
std::recursive_mutex& RttiLock();
/// A new type record with its reflection object, owned by the registry.
TTypeInfo* NewTypeInfo(TTypeKind AKind, UnicodeString AName, UnicodeString AUnit, const TypeOps* AOps);
/// Renames a record and updates the name index.
void RenameTypeInfo(TTypeInfo* AInfo, UnicodeString AName, UnicodeString AUnit);
/// The record of a class, made on first use (as ClassTypeInfo), for the registration to fill.
TTypeInfo* MutableClassTypeInfo(TClass AClass);

template <class T>
struct TypeSlot {
  static inline std::atomic<const TTypeInfo*> Ready{nullptr};
  static inline TTypeInfo* Building = nullptr;
};

template <class T>
TTypeInfo* CreateShell();
template <class T>
void Populate(TTypeInfo* AInfo);

/// The record of T, made and registered on first use. A type asked for again while its own
/// registration runs (a class with a field of its own type) gets its record as far as it is built.
template <class T>
const TTypeInfo* TypeOf() {
  using Slot = TypeSlot<T>;
  if (const TTypeInfo* ready = Slot::Ready.load(std::memory_order_acquire)) return ready;
  std::lock_guard lock(RttiLock());
  if (const TTypeInfo* ready = Slot::Ready.load(std::memory_order_relaxed)) return ready;
  if (Slot::Building) return Slot::Building;
  TTypeInfo* info = CreateShell<T>();
  Slot::Building = info;
  Populate<T>(info);
  Slot::Ready.store(info, std::memory_order_release);
  return info;
}

inline UnicodeString DefaultUnitOf(const TTypeInfo* AElement) {
  return AElement->UnitName.empty() ? UnicodeString(u"System") : AElement->UnitName;
}
/// "array[0..2] of Integer".
UnicodeString StaticArrayName(size_t ACount, const TTypeInfo* AElement);

template <class T>
TTypeInfo* CreateShell() {
  TTypeInfo* info = nullptr;
  if constexpr (ObjectClass<T>) {
    if constexpr (requires { typename T::inherited; }) TypeInfoOf<typename T::inherited>();
    info = MutableClassTypeInfo(T::StaticClass());
    info->Ops = &kOps<T*>;
  } else if constexpr (std::is_enum_v<T>) {
    static_assert(HasTypeNames<T>, "register the enumeration with VN_REGISTER_TYPE");
    info = NewTypeInfo(tkEnumeration, {}, {}, &kOps<T>);
    using U = std::underlying_type_t<T>;
    info->OrdType = sizeof(U) == 1 ? (std::is_signed_v<U> ? otSByte : otUByte)
                    : sizeof(U) == 2 ? (std::is_signed_v<U> ? otSWord : otUWord)
                                     : (std::is_signed_v<U> ? otSLong : otULong);
    static_assert(sizeof(U) <= 4, "an enumeration is stored in up to 32 bits");
  } else if constexpr (IsTSet<T>::value) {
    const TTypeInfo* element = TypeOf<typename T::Element>();
    info = NewTypeInfo(tkSet, u"set of " + element->Name, DefaultUnitOf(element), &kOps<T>);
    info->ElementType = element;
  } else if constexpr (IsStdVector<T>::value) {
    const TTypeInfo* element = TypeInfoOf<typename T::value_type>();
    info = NewTypeInfo(tkDynArray, GenericTypeName(u"TArray", {element}), u"System", &kOps<T>);
    info->ElementType = element;
  } else if constexpr (IsStdArray<T>::value) {
    const TTypeInfo* element = TypeInfoOf<typename T::value_type>();
    constexpr size_t count = std::tuple_size_v<T>;
    static_assert(count > 0, "a static array has at least one element");
    info = NewTypeInfo(tkArray, StaticArrayName(count, element), DefaultUnitOf(element), &kOps<T>);
    info->ElementType = element;
    info->ElementCount = count;
  } else if constexpr (IsClassRef<T>::value) {
    static_assert(sizeof(T) == sizeof(TClass));
    using C = typename T::Base;
    const TTypeInfo* target = TypeOf<C>();
    info = NewTypeInfo(tkClassRef, target->Name + u"Class", DefaultUnitOf(target), &kOps<T>);
    info->ClassType = C::StaticClass();
  } else if constexpr (IsIPtr<T>::value) {
    using I = typename IsIPtr<T>::Interface;
    static_assert(HasTypeNames<I> || std::is_same_v<I, IInterface>, "register the interface with VN_REGISTER_TYPE");
    info = NewTypeInfo(tkInterface, u"IInterface", u"System", &kOps<T>);
    info->Guid = I::IID;
  } else if constexpr (std::is_pointer_v<T>) {
    info = NewTypeInfo(tkPointer, u"Pointer", u"System", &kOps<T>);
  } else {
    static_assert(std::is_class_v<T>, "this C++ type has no reflection type");
    static_assert(HasTypeNames<T>, "register the record with VN_REGISTER_TYPE");
    info = NewTypeInfo(tkRecord, {}, {}, &kOps<T>);
  }
  if constexpr (IsIPtr<T>::value) {
    if constexpr (HasTypeNames<typename IsIPtr<T>::Interface>) {
      TypeNames names = VnTypeNames(TypeTag<typename IsIPtr<T>::Interface>{});
      RenameTypeInfo(info, names.Name, names.Unit);
    }
  } else if constexpr (HasTypeNames<T>) {
    TypeNames names = VnTypeNames(TypeTag<T>{});
    RenameTypeInfo(info, names.Name, names.Unit);
  }
  return info;
}

template <class T>
void Populate(TTypeInfo* AInfo) {
  if constexpr (IsIPtr<T>::value) {
    using I = typename IsIPtr<T>::Interface;
    if constexpr (HasRegistration<I>) {
      TTypeBuilder<I> builder(AInfo);
      VnRegisterType(builder);
    }
  } else if constexpr (HasRegistration<T>) {
    TTypeBuilder<T> builder(AInfo);
    VnRegisterType(builder);
    builder.Finish();
  }
}

/// Touches a type's record at start-up, so that lookups by name find it.
template <class T>
struct TypeRegistrar {
  TypeRegistrar() { TypeInfoOf<T>(); }
};

// ---- member function traits ----
template <class F> struct MemberFn;
#define VN_RTTI_MEMBER_FN(Qualifiers, IsConstFn)                         \
  template <class R, class C, class... A>                               \
  struct MemberFn<R (C::*)(A...) Qualifiers> {                          \
    using Result = R;                                                   \
    using Class = C;                                                    \
    using Args = std::tuple<A...>;                                      \
    static constexpr bool IsConst = IsConstFn;                          \
  };
VN_RTTI_MEMBER_FN(, false)
VN_RTTI_MEMBER_FN(const, true)
VN_RTTI_MEMBER_FN(noexcept, false)
VN_RTTI_MEMBER_FN(const noexcept, true)
#undef VN_RTTI_MEMBER_FN

template <class F> struct FreeFn;
template <class R, class... A> struct FreeFn<R (*)(A...)> {
  using Result = R;
  using Args = std::tuple<A...>;
};
template <class R, class... A> struct FreeFn<R (*)(A...) noexcept> : FreeFn<R (*)(A...)> {};

template <class M> struct DataMember;
template <class U, class C> struct DataMember<U C::*> {
  using Type = U;
  using Class = C;
};

/// The value type a getter reads or a setter writes.
template <class G, class S>
auto PropertyValueType() {
  if constexpr (std::is_member_object_pointer_v<G>)
    return std::type_identity<typename DataMember<G>::Type>{};
  else if constexpr (std::is_member_function_pointer_v<G>)
    return std::type_identity<std::remove_cvref_t<typename MemberFn<G>::Result>>{};
  else if constexpr (std::is_member_object_pointer_v<S>)
    return std::type_identity<typename DataMember<S>::Type>{};
  else
    return std::type_identity<std::remove_cvref_t<std::tuple_element_t<0, typename MemberFn<S>::Args>>>{};
}
template <class G, class S>
auto PropertyClass() {
  if constexpr (std::is_member_object_pointer_v<G>)
    return std::type_identity<typename DataMember<G>::Class>{};
  else if constexpr (std::is_member_function_pointer_v<G>)
    return std::type_identity<typename MemberFn<G>::Class>{};
  else if constexpr (std::is_member_object_pointer_v<S>)
    return std::type_identity<typename DataMember<S>::Class>{};
  else
    return std::type_identity<typename MemberFn<S>::Class>{};
}

/// An argument that Invoke has converted to the parameter's type already (a var parameter
/// writes into that converted copy).
template <class A>
std::remove_cvref_t<A>& ArgAs(const TValue& AValue) {
  return *static_cast<std::remove_cvref_t<A>*>(const_cast<void*>(AValue.GetReferenceToRawData()));
}

template <class C, class U>
class FieldImpl final : public TRttiField {
 public:
  FieldImpl(UnicodeString AName, TMemberVisibility AVisibility, U C::*AField)
      : TRttiField(std::move(AName), AVisibility, TypeInfoOf<U>()), FField(AField) {}
  void* GetAddress(void* AInstance) const override { return &(InstanceAs<C>(AInstance)->*FField); }

 private:
  U C::*FField;
};

template <class C, class V, class G, class S>
class PropertyImpl final : public TRttiProperty {
 public:
  PropertyImpl(UnicodeString AName, TMemberVisibility AVisibility, G AGetter, S ASetter)
      : TRttiProperty(std::move(AName), AVisibility, TypeInfoOf<V>()), FGetter(AGetter), FSetter(ASetter) {}
  bool IsReadable() const noexcept override { return !std::is_null_pointer_v<G>; }
  bool IsWritable() const noexcept override { return !std::is_null_pointer_v<S>; }

 protected:
  TValue DoGetValue(void* AInstance) const override {
    C* object = InstanceAs<C>(AInstance);
    if constexpr (std::is_member_object_pointer_v<G>) {
      return TValue::Make(&(object->*FGetter), PropertyTypeInfo());
    } else if constexpr (std::is_member_function_pointer_v<G>) {
      const V value = (object->*FGetter)();
      return TValue::Make(&value, PropertyTypeInfo());
    } else {
      return TValue();
    }
  }
  void DoSetValue(void* AInstance, const TValue& AValue) const override {
    C* object = InstanceAs<C>(AInstance);
    const V& value = *static_cast<const V*>(AValue.GetReferenceToRawData());
    if constexpr (std::is_member_object_pointer_v<S>)
      object->*FSetter = value;
    else if constexpr (std::is_member_function_pointer_v<S>)
      (object->*FSetter)(value);
  }

 private:
  G FGetter;
  S FSetter;
};

template <class C, class V, class I, class G, class S>
class IndexedPropertyImpl final : public TRttiIndexedProperty {
 public:
  IndexedPropertyImpl(UnicodeString AName, TMemberVisibility AVisibility, G AGetter, S ASetter)
      : TRttiIndexedProperty(std::move(AName), AVisibility, TypeInfoOf<V>(), TypeInfoOf<I>()),
        FGetter(AGetter), FSetter(ASetter) {}
  bool IsReadable() const noexcept override { return !std::is_null_pointer_v<G>; }
  bool IsWritable() const noexcept override { return !std::is_null_pointer_v<S>; }

 protected:
  TValue DoGetValue(void* AInstance, const TValue& AIndex) const override {
    if constexpr (std::is_null_pointer_v<G>) {
      return TValue();
    } else {
      const V value = (InstanceAs<C>(AInstance)->*FGetter)(ArgAs<I>(AIndex));
      return TValue::Make(&value, PropertyTypeInfo());
    }
  }
  void DoSetValue(void* AInstance, const TValue& AIndex, const TValue& AValue) const override {
    if constexpr (!std::is_null_pointer_v<S>) (InstanceAs<C>(AInstance)->*FSetter)(ArgAs<I>(AIndex), ArgAs<V>(AValue));
  }

 private:
  G FGetter;
  S FSetter;
};

template <class R>
const TTypeInfo* ReturnTypeInfo() {
  if constexpr (std::is_void_v<R>)
    return nullptr;
  else
    return TypeInfoOf<std::remove_cvref_t<R>>();
}

template <class R, class Call>
TValue ResultOf(Call&& ACall) {
  if constexpr (std::is_void_v<R>) {
    ACall();
    return TValue();
  } else {
    const std::remove_cvref_t<R> result = ACall();
    return TValue::Make(&result, TypeInfoOf<std::remove_cvref_t<R>>());
  }
}

template <class F>
class MethodImpl final : public TRttiMethod {
  using Traits = MemberFn<F>;
  using R = typename Traits::Result;
  using C = typename Traits::Class;

 public:
  MethodImpl(UnicodeString AName, TMemberVisibility AVisibility, F AFunction)
      : TRttiMethod(std::move(AName), AVisibility, std::is_void_v<R> ? mkProcedure : mkFunction, ReturnTypeInfo<R>()),
        FFunction(AFunction) {}

 protected:
  TValue DoInvoke(void* AInstance, TClass, std::span<const TValue> AArgs) const override {
    return Call(InstanceAs<C>(AInstance), AArgs, std::make_index_sequence<std::tuple_size_v<typename Traits::Args>>{});
  }

 private:
  template <size_t... Is>
  TValue Call(C* AObject, std::span<const TValue> AArgs, std::index_sequence<Is...>) const {
    return ResultOf<R>([&]() -> R { return (AObject->*FFunction)(ArgAs<std::tuple_element_t<Is, typename Traits::Args>>(AArgs[Is])...); });
  }
  F FFunction;
};

template <class F>
class StaticMethodImpl final : public TRttiMethod {
  using Traits = FreeFn<F>;
  using R = typename Traits::Result;

 public:
  StaticMethodImpl(UnicodeString AName, TMemberVisibility AVisibility, F AFunction)
      : TRttiMethod(std::move(AName), AVisibility, std::is_void_v<R> ? mkClassProcedure : mkClassFunction,
                    ReturnTypeInfo<R>()),
        FFunction(AFunction) {}

 protected:
  TValue DoInvoke(void*, TClass, std::span<const TValue> AArgs) const override {
    return Call(AArgs, std::make_index_sequence<std::tuple_size_v<typename Traits::Args>>{});
  }

 private:
  template <size_t... Is>
  TValue Call(std::span<const TValue> AArgs, std::index_sequence<Is...>) const {
    return ResultOf<R>([&]() -> R { return FFunction(ArgAs<std::tuple_element_t<Is, typename Traits::Args>>(AArgs[Is])...); });
  }
  F FFunction;
};

template <class T, class... A>
class ConstructorImpl final : public TRttiMethod {
 public:
  ConstructorImpl(UnicodeString AName, TMemberVisibility AVisibility)
      : TRttiMethod(std::move(AName), AVisibility, mkConstructor, TypeInfoOf<T>()) {}

 protected:
  TValue DoInvoke(void*, TClass, std::span<const TValue> AArgs) const override {
    return Call(AArgs, std::index_sequence_for<A...>{});
  }

 private:
  template <size_t... Is>
  TValue Call(std::span<const TValue> AArgs, std::index_sequence<Is...>) const {
    if constexpr (ObjectClass<T>) {
      T* object = new T(ArgAs<A>(AArgs[Is])...);
      return TValue::Make(&object, TypeInfoOf<T*>());
    } else {
      const T record(ArgAs<A>(AArgs[Is])...);
      return TValue::Make(&record, TypeInfoOf<T>());
    }
  }
};

}  // namespace detail

/// The record of a C++ type: registered classes, records and enumerations, and the sets,
/// arrays, class references and interfaces over them. T* of a class is the class's record.
template <class T>
const TTypeInfo* TypeInfoOf() {
  if constexpr (!std::is_same_v<T, std::remove_cv_t<T>>)
    return TypeInfoOf<std::remove_cv_t<T>>();
  else if constexpr (detail::ObjectPointer<T>)
    return TypeInfoOf<std::remove_cv_t<std::remove_pointer_t<T>>>();
  else if constexpr (detail::ObjectClass<T>)
    return detail::TypeOf<T>();
  else if constexpr (std::is_base_of_v<IInterface, T>)
    return detail::TypeOf<IPtr<T>>();
  else
    return detail::TypeOf<T>();
}

/// Fluent registration of one type's names, members and attributes; see the top of this file.
template <class T>
class TTypeBuilder {
 public:
  explicit TTypeBuilder(TTypeInfo* AInfo) : FInfo(AInfo), FType(AInfo->RttiType) {}

  // ---- fields (one data member pointer) and properties (getter and setter, either nullptr) ----
  template <class... A>
  TTypeBuilder& Published(std::u16string_view AName, A... AAccessors) { return Member(mvPublished, AName, AAccessors...); }
  template <class... A>
  TTypeBuilder& Public(std::u16string_view AName, A... AAccessors) { return Member(mvPublic, AName, AAccessors...); }
  template <class... A>
  TTypeBuilder& Protected(std::u16string_view AName, A... AAccessors) { return Member(mvProtected, AName, AAccessors...); }
  template <class... A>
  TTypeBuilder& Private(std::u16string_view AName, A... AAccessors) { return Member(mvPrivate, AName, AAccessors...); }

  /// A property with one index: getter V (C::*)(I) const, setter void (C::*)(I, V); either may be nullptr.
  template <class G, class S = std::nullptr_t>
  TTypeBuilder& Indexed(TMemberVisibility AVisibility, std::u16string_view AName, G AGetter, S ASetter = nullptr) {
    using C = typename decltype(IndexedClass<G, S>())::type;
    using V = typename decltype(IndexedValue<G, S>())::type;
    using I = typename decltype(IndexedIndex<G, S>())::type;
    auto* p = FType->AddIndexedProperty(
        std::make_unique<detail::IndexedPropertyImpl<C, V, I, G, S>>(UnicodeString(AName), AVisibility, AGetter, ASetter));
    return Last(p);
  }

  /// A method (member function) or class method (static function); parameter names are optional.
  template <class F>
  TTypeBuilder& Method(TMemberVisibility AVisibility, std::u16string_view AName, F AFunction,
                       std::initializer_list<const char16_t*> AParamNames = {}) {
    if constexpr (std::is_member_function_pointer_v<F>) {
      auto* m = FType->AddMethod(std::make_unique<detail::MethodImpl<F>>(UnicodeString(AName), AVisibility, AFunction));
      AddParameters<typename detail::MemberFn<F>::Args>(m, AParamNames);
      return Last(m);
    } else {
      auto* m = FType->AddMethod(std::make_unique<detail::StaticMethodImpl<F>>(UnicodeString(AName), AVisibility, AFunction));
      AddParameters<typename detail::FreeFn<F>::Args>(m, AParamNames);
      return Last(m);
    }
  }

  /// A constructor T(A...), by default public and named "Create".
  template <class... A>
  TTypeBuilder& Constructor(std::initializer_list<const char16_t*> AParamNames = {}, std::u16string_view AName = u"Create",
                            TMemberVisibility AVisibility = mvPublic) {
    auto* m = FType->AddMethod(std::make_unique<detail::ConstructorImpl<T, A...>>(UnicodeString(AName), AVisibility));
    AddParameters<std::tuple<A...>>(m, AParamNames);
    return Last(m);
  }

  /// Adopts an attribute for the member added last, or for the type before any member.
  TTypeBuilder& Attr(TCustomAttribute* AAttribute) {
    (FLast ? FLast : static_cast<TRttiObject*>(FType))->AddAttribute(AAttribute);
    return *this;
  }
  template <class A, class... Args>
  TTypeBuilder& Attr(Args&&... AArgs) {
    return Attr(new A(std::forward<Args>(AArgs)...));
  }
  /// Adopts an attribute for the type itself, wherever it stands.
  template <class A, class... Args>
  TTypeBuilder& TypeAttr(Args&&... AArgs) {
    FType->AddAttribute(new A(std::forward<Args>(AArgs)...));
    return *this;
  }

  /// Gives the field or property added last a type of the same storage: .OfType(u"TDateTime").
  TTypeBuilder& OfType(const TTypeInfo* AType) {
    VnAssert(AType != nullptr && (FLastField || FLastProperty), u"OfType needs a known type after a field or property");
    const TTypeInfo* current = FLastField ? FLastField->FieldTypeInfo() : FLastProperty->PropertyTypeInfo();
    VnAssert(current->Ops->Size == AType->Ops->Size && current->Kind != tkClass && AType->Kind != tkClass,
             u"OfType needs a type of the same storage");
    if (FLastField)
      FLastField->SetFieldType(AType);
    else
      FLastProperty->SetPropertyType(AType);
    return *this;
  }
  TTypeBuilder& OfType(std::u16string_view ATypeName) { return OfType(FindTypeInfo(ATypeName)); }

  /// The value names of an enumeration, from ordinal 0 up.
  TTypeBuilder& Values(std::initializer_list<const char16_t*> ANames)
    requires std::is_enum_v<T>
  {
    FInfo->EnumNames.assign(ANames.begin(), ANames.end());
    FInfo->MinValue = 0;
    FInfo->MaxValue = static_cast<Int64>(ANames.size()) - 1;
    return *this;
  }

  /// Names the type, for generic types whose name follows their arguments.
  TTypeBuilder& Name(UnicodeString AName, UnicodeString AUnit) {
    detail::RenameTypeInfo(FInfo, std::move(AName), std::move(AUnit));
    return *this;
  }
  /// Marks a record as a managed record.
  TTypeBuilder& ManagedRecord() {
    FInfo->Kind = tkMRecord;
    return *this;
  }
  const TTypeInfo* Info() const noexcept { return FInfo; }
  TRttiType* Type() const noexcept { return FType; }

  /// Checks what the registration left behind.
  void Finish() {
    if constexpr (std::is_enum_v<T>) VnAssert(!FInfo->EnumNames.empty(), u"An enumeration needs its value names");
  }

 private:
  template <class A>
  TTypeBuilder& Member(TMemberVisibility AVisibility, std::u16string_view AName, A AAccessor) {
    if constexpr (std::is_member_object_pointer_v<A>) {
      using M = detail::DataMember<A>;
      static_assert(!std::is_base_of_v<TObject, typename M::Type>, "an object field is a pointer");
      auto* f = FType->AddField(std::make_unique<detail::FieldImpl<typename M::Class, typename M::Type>>(
          UnicodeString(AName), AVisibility, AAccessor));
      FLastField = f;
      return Last(f);
    } else {
      static_assert(std::is_member_function_pointer_v<A>, "a field needs a data member pointer, a property a getter");
      return Member(AVisibility, AName, AAccessor, nullptr);
    }
  }
  template <class G, class S>
  TTypeBuilder& Member(TMemberVisibility AVisibility, std::u16string_view AName, G AGetter, S ASetter) {
    static_assert(!(std::is_null_pointer_v<G> && std::is_null_pointer_v<S>), "a property needs a getter or a setter");
    using C = typename decltype(detail::PropertyClass<G, S>())::type;
    using V = typename decltype(detail::PropertyValueType<G, S>())::type;
    auto* p = FType->AddProperty(
        std::make_unique<detail::PropertyImpl<C, V, G, S>>(UnicodeString(AName), AVisibility, AGetter, ASetter));
    FLastProperty = p;
    return Last(p);
  }

  template <class G, class S>
  static auto IndexedClass() {
    if constexpr (std::is_null_pointer_v<G>)
      return std::type_identity<typename detail::MemberFn<S>::Class>{};
    else
      return std::type_identity<typename detail::MemberFn<G>::Class>{};
  }
  template <class G, class S>
  static auto IndexedValue() {
    if constexpr (std::is_null_pointer_v<G>)
      return std::type_identity<std::remove_cvref_t<std::tuple_element_t<1, typename detail::MemberFn<S>::Args>>>{};
    else
      return std::type_identity<std::remove_cvref_t<typename detail::MemberFn<G>::Result>>{};
  }
  template <class G, class S>
  static auto IndexedIndex() {
    if constexpr (std::is_null_pointer_v<G>)
      return std::type_identity<std::remove_cvref_t<std::tuple_element_t<0, typename detail::MemberFn<S>::Args>>>{};
    else
      return std::type_identity<std::remove_cvref_t<std::tuple_element_t<0, typename detail::MemberFn<G>::Args>>>{};
  }

  template <class Args>
  static void AddParameters(TRttiMethod* AMethod, std::initializer_list<const char16_t*> ANames) {
    AddParametersOf(AMethod, ANames, static_cast<Args*>(nullptr));
  }
  template <class... A>
  static void AddParametersOf(TRttiMethod* AMethod, std::initializer_list<const char16_t*> ANames, std::tuple<A...>*) {
    VnAssert(ANames.size() == 0 || ANames.size() == sizeof...(A), u"Give a name for every parameter or none");
    const TTypeInfo* types[] = {TypeInfoOf<std::remove_cvref_t<A>>()..., nullptr};
    for (size_t i = 0; i < sizeof...(A); ++i)
      AMethod->AddParameter(ANames.size() ? UnicodeString(ANames.begin()[i]) : u"A" + IntToStr(static_cast<Int64>(i) + 1),
                            types[i]);
  }

  template <class M>
  TTypeBuilder& Last(M* AMember) {
    AMember->SetParent(FType);
    FLast = AMember;
    if constexpr (!std::is_same_v<M, TRttiField>) FLastField = nullptr;
    if constexpr (!std::is_same_v<M, TRttiProperty>) FLastProperty = nullptr;
    return *this;
  }

  TTypeInfo* FInfo;
  TRttiType* FType;
  TRttiObject* FLast = nullptr;
  TRttiField* FLastField = nullptr;
  TRttiProperty* FLastProperty = nullptr;
};

}  // namespace vn

#define VN_RTTI_CONCAT_(A, B) A##B
#define VN_RTTI_CONCAT(A, B) VN_RTTI_CONCAT_(A, B)

// Registers Type (a class, record or enumeration, named by a plain identifier) of unit Unit; the
// braces that follow hold the builder calls on b. Place it at namespace scope right after the
// type, in its header. The registrar is named after the type, so registrations of any two
// headers can meet in one unit.
#define VN_REGISTER_TYPE(Type, Unit)                                                           \
  inline ::vn::detail::TypeNames VnTypeNames(::vn::detail::TypeTag<Type>) { return {u"" #Type, Unit}; }        \
  inline void VnRegisterType(::vn::TTypeBuilder<Type>& b);                                     \
  inline const ::vn::detail::TypeRegistrar<Type> VN_RTTI_CONCAT(vnTypeRegistrar_, Type){};     \
  inline void VnRegisterType([[maybe_unused]] ::vn::TTypeBuilder<Type>& b)

// In a class body: lets the registration name the class's protected and private members.
#define VN_REFLECTION_FRIEND(Type) friend void VnRegisterType(::vn::TTypeBuilder<Type>& b);

// The same in two halves: the declaration in the type's header, the body in one source file.
#define VN_DECLARE_TYPE(Type, Unit)                                                     \
  inline ::vn::detail::TypeNames VnTypeNames(::vn::detail::TypeTag<Type>) { return {u"" #Type, Unit}; } \
  void VnRegisterType(::vn::TTypeBuilder<Type>& b);
#define VN_IMPLEMENT_TYPE(Type)                                                                \
  static const ::vn::detail::TypeRegistrar<Type> VN_RTTI_CONCAT(vnTypeRegistrar_, __LINE__){}; \
  void VnRegisterType([[maybe_unused]] ::vn::TTypeBuilder<Type>& b)

// The generic object containers describe themselves through the registration above; every
// unit that can ask for a type record must see that, or instantiations would differ.
#include "vnxml/common/generics_rtti.h"
