// TVnTypes and Variants: the main kinds of a Variant, the type code that stands for a type and
// the type that stands for a Variant's value.
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/vn_types.h"

namespace vn {

namespace {

/// The type of a Variant's value of type code AVarType (no array flag); nullptr when none fits.
const TTypeInfo* TypeOfVarType(TVarType AVarType) {
  switch (AVarType) {
    case varSmallint: return TypeInfoOf<SmallInt>();
    case varInteger: return TypeInfoOf<Integer>();
    case varSingle: return TypeInfoOf<Single>();
    case varDouble: return TypeInfoOf<Double>();
    case varCurrency: return TypeInfoOf<Currency>();
    case varDate: return FindTypeInfo(u"System.TDateTime");
    case varOleStr: return FindTypeInfo(u"System.WideString");
    case varBoolean: return TypeInfoOf<bool>();
    case varShortInt: return TypeInfoOf<ShortInt>();
    case varByte: return TypeInfoOf<Byte>();
    case varWord: return TypeInfoOf<Word>();
    case varLongWord: return TypeInfoOf<Cardinal>();
    case varInt64: return TypeInfoOf<Int64>();
    case varUInt64: return TypeInfoOf<UInt64>();
    case varString: return TypeInfoOf<AnsiString>();
    case varUString: return TypeInfoOf<UnicodeString>();
    case varUnknown: case varDispatch: return TypeInfoOf<IInterface>();
    case varVariant: return TypeInfoOf<Variant>();
    default: return nullptr;
  }
}

}  // namespace

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

TVarType TVnTypes::GetVarType(std::u16string_view AName, TVnTypeNameType ANameType, TVarType ADefault) {
  return GetVarType(GetTypeInfo(AName, ANameType, false, mtkUnknown), ADefault);
}

TVarType TVnTypes::GetVarType(const TVnTypeInfo* AType, TVarType ADefault) {
  if (!AType) return ADefault;
  switch (AType->Kind()) {
    case vtkByte: return varByte;
    case vtkWord: return varWord;
    case vtkLongWord: return varLongWord;
    case vtkUInt64: return varUInt64;
    case vtkShortInt: return varShortInt;
    case vtkSmallInt: return varSmallint;
    case vtkInteger: return varInteger;
    case vtkInt64: return varInt64;
    case vtkSingle: return varSingle;
    case vtkDouble: return varDouble;
    case vtkExtended: return AType->Handle() == TypeInfoOf<Currency>() ? varCurrency : varDouble;
    case vtkText1: case vtkText3: return varUString;
    case vtkText2: case vtkText4: case vtkText5: return varString;
    case vtkText6: return AType->GetKind() == tkWString ? varOleStr : varUString;
    case vtkBoolean: return varBoolean;
    case vtkDate: case vtkTime: case vtkDateTime: return varDate;
    case vtkVariant: return varVariant;
    case vtkStaticArray: case vtkDynArray: {
      // An element with a Variant form makes a typed variant array; others leave the text as it is.
      const TVarType element = GetVarType(AType->ElementType(), varEmpty);
      const bool simple = element != varEmpty && element != varRecord && element != varObject &&
                          element != varUnknown && (element & varArray) == 0;
      return simple ? TVarType(varArray | element) : varArray;
    }
    case vtkRecord: return varRecord;
    case vtkClass: return varObject;
    case vtkInterface: return varUnknown;
    default: return ADefault;
  }
}

const TVnTypeInfo* TVnTypes::VarTypeInfo(const Variant& AValue) {
  const TVarType t = AValue.VarType();
  if (t & varArray) {
    const TVnTypeInfo* element = GetTypeInfo(TypeOfVarType(t & varTypeMask));
    if (!element) element = GetTypeInfo(TypeInfoOf<Variant>());
    return GetTypeInfo(element->VirtualType(sdtArray));
  }
  const TTypeInfo* type = TypeOfVarType(t);
  return GetTypeInfo(type ? type : TypeInfoOf<Variant>());
}

}  // namespace vn
