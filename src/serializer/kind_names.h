// The reflection's kind names ("tkRecord"), as the serializers' messages quote them.
#pragma once

#include "vnxml/common/type_info.h"

namespace vn::detail {

const char16_t* TypeKindName(TTypeKind AKind);

}  // namespace vn::detail
