// TVnTypeInfo: what the kinds of a record mean, and its schema name.
#include "vnxml/common/vn_type_info.h"
#include "vnxml/common/vn_types.h"

namespace vn {

bool TVnTypeInfo::GetIsSimpleType() const noexcept {
  switch (FKind) {
    case vtkStaticArray: case vtkDynArray: case vtkRecord: case vtkClass: case vtkInterface: return false;
    default: return true;
  }
}

TVnMainTypeKind TVnTypeInfo::GetMainTypeKind() const noexcept {
  if (FKind >= vtkByte && FKind <= vtkInt64) return mtkInteger;
  if (FKind >= vtkSingle && FKind <= vtkExtended) return mtkFloat;
  if (FKind >= vtkText1 && FKind <= vtkText6) return mtkString;
  if (FKind == vtkBoolean) return mtkBoolean;
  if (FKind >= vtkDate && FKind <= vtkDateTime) return mtkDateTime;
  if (FKind == vtkStaticArray || FKind == vtkDynArray) return mtkArray;
  return mtkUnknown;
}

const TVnTypeInfo* TVnTypeInfo::StoredElementType() const {
  if (!FElementType || !FHandle->ElementType || FElementType->FHandle == FHandle->ElementType) return FElementType;
  return TVnTypes::GetTypeInfo(FHandle->ElementType);
}

UnicodeString TVnTypeInfo::SchemaName(std::u16string_view APrefix) const {
  if (APrefix.empty()) return FSchemaName;
  UnicodeString name(APrefix);
  name += u':';
  name += FSchemaName;
  return name;
}

}  // namespace vn
