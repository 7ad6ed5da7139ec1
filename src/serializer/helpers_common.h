// What the container helpers share: the element name of a list type, and the reflected members
// they reach, whose absence is a programming fault of the container's registration.
#pragma once

#include <string_view>

#include "vnxml/common/rtti.h"
#include "vnxml/common/vn_type_info.h"

namespace vn::detail {

/// The element name of a list whose short type name is AShortName: the schema name of the type
/// argument of a generic name ("TList<System.Integer>" gives "int"), else that of TObject.
UnicodeString ContainerElementName(std::u16string_view AShortName);

/// The reflected property, indexed property or method AName of AObject's run-time class.
TRttiProperty* ContainerProperty(const TObject* AObject, std::u16string_view AName);
TRttiIndexedProperty* ContainerIndexed(const TObject* AObject, std::u16string_view AName);
TRttiMethod* ContainerMethod(const TVnTypeInfo* AType, std::u16string_view AName);

}  // namespace vn::detail
