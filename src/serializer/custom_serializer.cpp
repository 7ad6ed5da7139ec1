// TVnCustomSerializer: the instance a serializer works on, and its parameters.
#include <iterator>

#include "serializer/kind_names.h"
#include "vnxml/common/classes.h"
#include "vnxml/serializer.h"

namespace vn {

namespace detail {

const char16_t* const kTypeKindNames[] = {
    u"tkUnknown", u"tkInteger",   u"tkChar",   u"tkEnumeration", u"tkFloat",   u"tkString",
    u"tkSet",     u"tkClass",     u"tkMethod", u"tkWChar",       u"tkLString", u"tkWString",
    u"tkVariant", u"tkArray",     u"tkRecord", u"tkInterface",   u"tkInt64",   u"tkDynArray",
    u"tkUString", u"tkClassRef",  u"tkPointer", u"tkProcedure",  u"tkMRecord"};

const char16_t* TypeKindName(TTypeKind AKind) {
  return AKind < std::size(kTypeKindNames) ? kTypeKindNames[AKind] : u"tkUnknown";
}

}  // namespace detail

using detail::TypeKindName;

TVnCustomSerializer::TVnCustomSerializer() : FParams(std::make_unique<TStringList>()), FName(u"root") {}

TVnCustomSerializer::~TVnCustomSerializer() = default;

void TVnCustomSerializer::Create(const TValue& AValue) {
  FValue = AValue;
  void* instance = nullptr;
  switch (FValue.Kind()) {
    case tkUnknown:
    case tkChar: case tkWChar: case tkString: case tkLString: case tkWString: case tkUString:
      break;
    case tkInteger: case tkInt64: case tkEnumeration: case tkFloat: case tkSet: case tkVariant:
    case tkArray: case tkRecord: case tkMRecord: case tkDynArray:
      instance = FValue.GetReferenceToRawData();
      break;
    case tkClass:
      instance = FValue.AsObject();
      break;
    default:
      throw Exception(cVnValueCannotBeSerialized, {TypeKindName(FValue.Kind())});
  }
  Create(instance, FValue.TypeInfo());
}

void TVnCustomSerializer::Create(void* AInstance, const TTypeInfo* AType) {
  if (!FValue.TypeInfo() && AType && AInstance) {
    switch (AType->Kind) {
      case tkInteger: case tkChar: case tkEnumeration: case tkFloat: case tkWChar: case tkVariant: case tkInt64:
      case tkString: case tkLString: case tkWString: case tkUString:
        FValue = TValue::Make(AInstance, AType);
        break;
      case tkSet:
        // The set is read from the copy from here on.
        FValue = TValue::Make(AInstance, AType);
        AInstance = FValue.GetReferenceToRawData();
        break;
      default:
        break;
    }
  }
  FInstancePtr = AInstance;
  FInstanceTypeInfo = TVnTypes::GetTypeInfo(AType);
  FParent = nullptr;
  FName = u"root";
}

void TVnCustomSerializer::SetParent(TVnCustomSerializer* AParent) { FParent = AParent; }

UnicodeString TVnCustomSerializer::GetParam(std::u16string_view AName) {
  const Integer index = FParams->IndexOfName(AName);
  if (index >= 0) return FParams->GetValueFromIndex(index);
  return FParent && FParent != this ? FParent->GetParam(AName) : UnicodeString();
}

bool TVnCustomSerializer::HasParam(std::u16string_view AName) const {
  if (FParams->IndexOfName(AName) >= 0 || FParams->IndexOf(AName) >= 0) return true;
  return FParent && FParent != this && FParent->HasParam(AName);
}

TObject* TVnCustomSerializer::GetObjParam(std::u16string_view AName) {
  const Integer index = FParams->IndexOf(AName);
  if (index >= 0) return FParams->GetObjects(index);
  return FParent && FParent != this ? FParent->GetObjParam(AName) : nullptr;
}

void TVnCustomSerializer::SetParam(std::u16string_view AName, std::u16string_view AValue) {
  FParams->SetValues(AName, UnicodeString(AValue));
}

void TVnCustomSerializer::SetObjParam(std::u16string_view AName, TObject* AObject) {
  const Integer index = FParams->IndexOf(AName);
  if (index >= 0)
    FParams->SetObjects(index, AObject);
  else
    FParams->AddObject(UnicodeString(AName), AObject);
}

void TVnCustomSerializer::SetParams(const TStrings& AList) {
  for (Integer i = 0; i < AList.GetCount(); ++i) {
    const UnicodeString name = AList.GetNames(i);
    if (!name.empty()) {
      SetParam(name, AList.GetValueFromIndex(i));
      if (TObject* object = AList.GetObjects(i)) FParams->SetObjects(FParams->IndexOfName(name), object);
    } else {
      SetObjParam(AList.GetStrings(i), AList.GetObjects(i));
    }
  }
}

}  // namespace vn
