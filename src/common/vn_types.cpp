// TVnTypes: the main kinds of Variants.
#include "vnxml/common/vn_types.h"

namespace vn {

TVnVarMainTypeKind TVnTypes::VarMainTypeKind(const Variant& AValue) noexcept {
  const TVarType t = AValue.VarType();
  if (t & varArray) return vmkArray;
  switch (t) {
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64: case varUInt64:
      return vmkInteger;
    case varSingle: case varDouble: case varCurrency:
      return vmkFloat;
    case varOleStr: case varString: case varUString:
      return vmkString;
    case varBoolean:
      return vmkBoolean;
    case varDate:
      return vmkDateTime;
    default:
      return vmkOther;
  }
}

}  // namespace vn
