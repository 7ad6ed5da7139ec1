// generics_rtti.h: reflection of the generic object containers (unit rVnCommon).
// An instantiation of TObjectList<T> or TObjectDictionary<K,V> describes itself on the first
// use of its type record: it is named after its arguments ("TObjectList<uShop.TItem>", unit
// System.Generics.Collections), so that generic patterns and element names work, and it offers
// the public members the serializer's container helpers reach by reflection: Count, Items,
// OwnsObjects and Add of a list; Count, Keys and Values of a dictionary, where Keys and Values
// are dynamic arrays in insertion order (they stand for the key and value collections, whose
// Count is the array's length and whose ToArray is the array itself).
// Public members are not written by the walker, so this changes no text of a plain object.
#pragma once

#include "vnxml/common/generics.h"
#include "vnxml/common/rtti_register.h"

namespace vn::generics {

inline constexpr char16_t cGenericsUnit[] = u"System.Generics.Collections";

namespace detail {
/// Names the instantiation's class record and type record alike.
template <class C>
void NameGeneric(::vn::TTypeBuilder<C>& b, std::u16string_view ABase,
                 std::initializer_list<const ::vn::TTypeInfo*> AArguments) {
  static const UnicodeString name = ::vn::GenericTypeName(ABase, AArguments);  // outlives the class record's use
  C::SetClassName(name.c_str());
  b.Name(name, cGenericsUnit);
}
}  // namespace detail

// Found by argument-dependent lookup from the registry's first use of the type record.
template <class T>
void VnRegisterType(::vn::TTypeBuilder<TObjectList<T>>& b) {
  using L = TObjectList<T>;
  detail::NameGeneric(b, u"TObjectList", {::vn::TypeInfoOf<T>()});
  b.Public(u"Count", &L::GetCount)
      .Public(u"OwnsObjects", &L::GetOwnsObjects, &L::SetOwnsObjects)
      .Indexed(::vn::mvPublic, u"Items", &L::GetItem)
      .Method(::vn::mvPublic, u"Add", &L::Add, {u"AValue"});
}

template <class K, class V, class H, class E>
void VnRegisterType(::vn::TTypeBuilder<TObjectDictionary<K, V, H, E>>& b) {
  using D = TObjectDictionary<K, V, H, E>;
  detail::NameGeneric(b, u"TObjectDictionary", {::vn::TypeInfoOf<K>(), ::vn::TypeInfoOf<V>()});
  b.Public(u"Count", &D::GetCount)
      .Public(u"Keys", &D::Keys)
      .Public(u"Values", &D::Values);
}

}  // namespace vn::generics
