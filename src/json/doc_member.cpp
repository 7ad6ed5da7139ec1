// TVnJSONMember: a name and the one value it owns.
#include "vnxml/common/vn_types.h"
#include "vnxml/json_document.h"
#include "vnxml/json_values.h"

namespace vn {

TVnJSONMember::~TVnJSONMember() { FName.Free(); }

TVnJSONBase* TVnJSONMember::CreateValue(TVnJSONDataType AKind) {
  if (FValue && FValue->GetOwner() == this && !FValue->GetAutoDestroy()) {
    TVnJSONBase* old = std::exchange(FValue, nullptr);
    old->FreeObject();
  }
  FValue = CreateValueNode(AKind);
  return FValue;
}

void TVnJSONMember::RemoveObject(TVnJSONBase* AChild) {
  TVnJSONBase::RemoveObject(AChild);
  if (FValue == AChild) FValue = nullptr;
}

UnicodeString TVnJSONMember::GetName() { return FName.Wide(); }
void TVnJSONMember::SetName(std::u16string_view AName) { FName.AssignOwned(AName); }

TVnJSONSimpleType* TVnJSONMember::SimpleValue(const char16_t* AWord) {
  if (auto* simple = dynamic_cast<TVnJSONSimpleType*>(FValue)) return simple;
  NotSupported(AWord);
}

TVnJSONSimpleType* TVnJSONMember::SimpleValueFor(TVnJSONDataType AKind, const char16_t* AWord) {
  if (!FValue) CreateValue(AKind);
  return SimpleValue(AWord);
}

bool TVnJSONMember::GetAsBoolean() { return SimpleValue(u"GetAsBoolean")->GetAsBoolean(); }
double TVnJSONMember::GetAsDouble() { return SimpleValue(u"GetAsDouble")->GetAsDouble(); }
Integer TVnJSONMember::GetAsInteger() { return SimpleValue(u"GetAsInteger")->GetAsInteger(); }
Int64 TVnJSONMember::GetAsLargeInt() { return SimpleValue(u"GetAsLargeInt")->GetAsLargeInt(); }
UnicodeString TVnJSONMember::GetAsString() { return SimpleValue(u"GetAsString")->GetAsString(); }
Variant TVnJSONMember::GetAsVariant() { return SimpleValue(u"GetAsVariant")->GetAsVariant(); }

TVnJSONObject* TVnJSONMember::GetAsObject() {
  if (!FValue) CreateValue(jdtObject);
  if (auto* o = dynamic_cast<TVnJSONObject*>(FValue)) return o;
  NotSupported(u"GetAsObject");
}

TVnJSONArray* TVnJSONMember::GetAsArray() {
  if (!FValue) CreateValue(jdtArray);
  if (auto* a = dynamic_cast<TVnJSONArray*>(FValue)) return a;
  NotSupported(u"GetAsArray");
}

void TVnJSONMember::SetAsBoolean(bool AValue) { SimpleValueFor(jdtBoolean, u"SetAsBoolean")->SetAsBoolean(AValue); }
void TVnJSONMember::SetAsDouble(double AValue) { SimpleValueFor(jdtNumber, u"SetAsDouble")->SetAsDouble(AValue); }
void TVnJSONMember::SetAsInteger(Integer AValue) { SimpleValueFor(jdtNumber, u"SetAsInteger")->SetAsInteger(AValue); }
void TVnJSONMember::SetAsLargeInt(Int64 AValue) {
  SimpleValueFor(jdtNumber, u"SetAsLargeInt")->SetAsLargeInt(AValue);
}
void TVnJSONMember::SetAsString(std::u16string_view AValue) {
  SimpleValueFor(jdtString, u"SetAsString")->SetAsString(AValue);
}
void TVnJSONMember::SetAsVariant(const Variant& AValue) {
  SimpleValueFor(VnVarTypeToJSONType(AValue), u"SetAsVariant")->SetAsVariant(AValue);
}

TVnJSONBase* TVnJSONMember::AddValue(TVnJSONDataType AKind) {
  if (!FValue) return CreateValue(AKind);
  NotSupported(u"AddValue");
}

IPtr<IVnJSONBase> TVnJSONMember::CreateValueIntf(TVnJSONDataType AKind) {
  return IPtr<IVnJSONBase>(static_cast<IVnJSONBase*>(CreateValue(AKind)));
}

}  // namespace vn
