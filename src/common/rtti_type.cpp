// Reflection objects: member lists and lookups, reading and writing members, invoking methods.
#include "vnxml/common/rtti.h"
#include "vnxml/common/sysutils.h"

namespace vn {

namespace {

void* CheckedInstance(void* AInstance) {
  if (!AInstance) throw EInvalidPointer(u"Invalid pointer operation");
  return AInstance;
}

/// Own members first, then each ancestor's, as the platform lists them.
template <class M>
std::vector<M*> Flatten(const TRttiType* AType, const std::vector<std::unique_ptr<M>>& (*ADeclared)(const TRttiType*)) {
  std::vector<M*> result;
  for (const TRttiType* t = AType; t; t = t->BaseType())
    for (const auto& m : ADeclared(t)) result.push_back(m.get());
  return result;
}

template <class M>
M* FindByName(const TRttiType* AType, std::u16string_view AName,
              const std::vector<std::unique_ptr<M>>& (*ADeclared)(const TRttiType*)) {
  for (const TRttiType* t = AType; t; t = t->BaseType())
    for (const auto& m : ADeclared(t))
      if (SameText(m->Name(), AName)) return m.get();
  return nullptr;
}

}  // namespace

// ---- TRttiObject ----

TRttiObject::~TRttiObject() {
  for (TCustomAttribute* a : FAttributes) delete a;
}

void TRttiObject::AddAttribute(TCustomAttribute* AAttribute) {
  if (AAttribute) FAttributes.push_back(AAttribute);
}

// ---- fields and properties ----

TValue TRttiField::GetValue(void* AInstance) const { return TValue::Make(GetAddress(CheckedInstance(AInstance)), FType); }

void TRttiField::SetValue(void* AInstance, const TValue& AValue) const {
  void* address = GetAddress(CheckedInstance(AInstance));
  // A value of the field's own type is assigned straight from its payload, with no copy between.
  if (AValue.TypeInfo() == FType) return FType->Ops->Assign(address, AValue.GetReferenceToRawData());
  const TValue converted = AValue.Cast(FType);
  FType->Ops->Assign(address, converted.GetReferenceToRawData());
}

TValue TRttiProperty::GetValue(void* AInstance) const {
  if (!IsReadable()) throw EPropertyError(u"Property %s is write-only", {Name()});
  return DoGetValue(CheckedInstance(AInstance));
}

void TRttiProperty::SetValue(void* AInstance, const TValue& AValue) const {
  if (!IsWritable()) throw EPropertyError(u"Property %s is read-only", {Name()});
  if (AValue.TypeInfo() == FType) return DoSetValue(CheckedInstance(AInstance), AValue);
  DoSetValue(CheckedInstance(AInstance), AValue.Cast(FType));
}

TValue TRttiIndexedProperty::GetValue(void* AInstance, const TValue& AIndex) const {
  if (!IsReadable()) throw EPropertyError(u"Property %s is write-only", {Name()});
  return DoGetValue(CheckedInstance(AInstance), AIndex.Cast(FIndexType));
}

void TRttiIndexedProperty::SetValue(void* AInstance, const TValue& AIndex, const TValue& AValue) const {
  if (!IsWritable()) throw EPropertyError(u"Property %s is read-only", {Name()});
  DoSetValue(CheckedInstance(AInstance), AIndex.Cast(FIndexType), AValue.Cast(FType));
}

// ---- methods ----

void TRttiMethod::AddParameter(UnicodeString AName, const TTypeInfo* AType) {
  FParameters.push_back(std::make_unique<TRttiParameter>(std::move(AName), AType));
}

TValue TRttiMethod::CallChecked(void* AInstance, TClass AClass, std::span<const TValue> AArgs) const {
  if (AArgs.size() != FParameters.size()) throw EInvocationError(u"Parameter count mismatch");
  std::vector<TValue> converted;
  converted.reserve(AArgs.size());
  for (size_t i = 0; i < AArgs.size(); ++i) converted.push_back(AArgs[i].Cast(FParameters[i]->ParamTypeInfo()));
  return DoInvoke(AInstance, AClass, converted);
}

TValue TRttiMethod::Invoke(void* AInstance, std::span<const TValue> AArgs) const {
  if (!IsStatic() && !AInstance) throw EInvocationError(u"Method %s needs an instance", {Name()});
  return CallChecked(IsStatic() ? nullptr : AInstance, nullptr, AArgs);
}

TValue TRttiMethod::Invoke(TClass AClass, std::span<const TValue> AArgs) const {
  if (!IsStatic()) throw EInvocationError(u"Method %s needs an instance", {Name()});
  return CallChecked(nullptr, AClass, AArgs);
}

// ---- TRttiType ----

TRttiType::TRttiType(TTypeInfo* AHandle) : TRttiNamedObject(AHandle->Name), FHandle(AHandle) {}

TRttiType::~TRttiType() = default;

bool TRttiType::IsOrdinal() const noexcept {
  switch (TypeKind()) {
    case tkInteger: case tkChar: case tkWChar: case tkEnumeration: case tkInt64: return true;
    default: return false;
  }
}

TRttiType* TRttiType::BaseType() const {
  if (TypeKind() != tkClass || !FHandle->ClassType || !FHandle->ClassType->Parent) return nullptr;
  return TRttiContext::GetType(FHandle->ClassType->Parent);
}

TRttiType* TRttiType::GetElementType() const {
  return FHandle->ElementType ? FHandle->ElementType->RttiType : nullptr;
}

size_t TRttiType::TypeSize() const noexcept { return FHandle->Ops ? FHandle->Ops->Size : 0; }

namespace {
const std::vector<std::unique_ptr<TRttiField>>& DeclaredFields(const TRttiType* T) { return T->GetDeclaredFields(); }
const std::vector<std::unique_ptr<TRttiProperty>>& DeclaredProperties(const TRttiType* T) { return T->GetDeclaredProperties(); }
const std::vector<std::unique_ptr<TRttiMethod>>& DeclaredMethods(const TRttiType* T) { return T->GetDeclaredMethods(); }
}  // namespace

const std::vector<std::unique_ptr<TRttiIndexedProperty>>& TRttiType::DeclaredIndexed(const TRttiType* T) {
  return T->FIndexedProperties;
}

std::vector<TRttiField*> TRttiType::GetFields() const { return Flatten(this, &DeclaredFields); }
std::vector<TRttiProperty*> TRttiType::GetProperties() const { return Flatten(this, &DeclaredProperties); }
std::vector<TRttiIndexedProperty*> TRttiType::GetIndexedProperties() const { return Flatten(this, &DeclaredIndexed); }
std::vector<TRttiMethod*> TRttiType::GetMethods() const { return Flatten(this, &DeclaredMethods); }

TRttiField* TRttiType::GetField(std::u16string_view AName) const { return FindByName(this, AName, &DeclaredFields); }
TRttiProperty* TRttiType::GetProperty(std::u16string_view AName) const {
  return FindByName(this, AName, &DeclaredProperties);
}
TRttiIndexedProperty* TRttiType::GetIndexedProperty(std::u16string_view AName) const {
  return FindByName(this, AName, &DeclaredIndexed);
}
TRttiMethod* TRttiType::GetMethod(std::u16string_view AName) const { return FindByName(this, AName, &DeclaredMethods); }

TRttiField* TRttiType::AddField(std::unique_ptr<TRttiField> AField) {
  FFields.push_back(std::move(AField));
  return FFields.back().get();
}
TRttiProperty* TRttiType::AddProperty(std::unique_ptr<TRttiProperty> AProperty) {
  FProperties.push_back(std::move(AProperty));
  return FProperties.back().get();
}
TRttiIndexedProperty* TRttiType::AddIndexedProperty(std::unique_ptr<TRttiIndexedProperty> AProperty) {
  FIndexedProperties.push_back(std::move(AProperty));
  return FIndexedProperties.back().get();
}
TRttiMethod* TRttiType::AddMethod(std::unique_ptr<TRttiMethod> AMethod) {
  FMethods.push_back(std::move(AMethod));
  return FMethods.back().get();
}

}  // namespace vn
