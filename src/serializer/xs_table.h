// The nineteen XS types as the bindings see them: how each is cleared, handed to the base
// writer and read from a text.
#pragma once

#include <span>
#include <string_view>

#include "vnxml/common/value.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/json_contract.h"
#include "vnxml/serializer_formats.h"

namespace vn::detail {

struct XsTypeOps {
  const TTypeInfo* Type;
  void (*Clear)(void* ARecord);
  /// The type and the value the base writer gets; an empty value for a null record.
  void (*Write)(const void* ARecord, TVnDataSerializationFormatType AFormat, const TVnTypeInfo*& AType,
                TValue& AValue);
  /// Makes a fresh record of AText and copies it over ARecord. XML text comes as the reader gave
  /// it; JSON text as its event gave it, of the kind AJSONType.
  void (*Read)(void* ARecord, std::u16string_view AText, TVnDataSerializationFormatType AFormat,
               TVnJSONDataType AJSONType);
};

/// The entry of AType; nullptr for any type outside the nineteen.
const XsTypeOps* XsFindType(const TTypeInfo* AType);
/// The nineteen, in the order of their table.
std::span<const XsTypeOps> XsTypes();
/// The entry of AType; raises Exception cVnXsNotAnXsType for any other type.
const XsTypeOps& XsTypeOf(const TVnTypeInfo* AType);

}  // namespace vn::detail
