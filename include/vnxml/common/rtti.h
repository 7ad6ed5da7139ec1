// rtti.h: the reflection service: types, fields, properties, methods and attributes.
// Reflection objects belong to the process-wide registry and live as long as it; callers never
// free them. An instance address is the object (TObject*) for classes and the record's address
// for records. Members are listed own first, then the ancestors'; names compare without case.
// Types register beside their declaration with VN_REGISTER_TYPE (rtti_register.h).
#pragma once

#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

#include "vnxml/common/type_info.h"
#include "vnxml/common/value.h"

namespace vn {

/// Ordered: private < protected < public < published.
enum TMemberVisibility : uint8_t { mvPrivate, mvProtected, mvPublic, mvPublished };

/// Base of the attributes that types and members carry; the reflection record owns them.
class TCustomAttribute : public TObject {
  VN_DECLARE_CLASS(TCustomAttribute, TObject)
};

class TRttiType;

/// Anything that carries attributes, in the order they were declared.
class TRttiObject {
 public:
  TRttiObject() = default;
  TRttiObject(const TRttiObject&) = delete;
  TRttiObject& operator=(const TRttiObject&) = delete;
  virtual ~TRttiObject();

  const std::vector<TCustomAttribute*>& GetAttributes() const noexcept { return FAttributes; }
  /// Adopts AAttribute, appended after those already there.
  void AddAttribute(TCustomAttribute* AAttribute);

 private:
  std::vector<TCustomAttribute*> FAttributes;
};

class TRttiNamedObject : public TRttiObject {
 public:
  explicit TRttiNamedObject(UnicodeString AName) : FName(std::move(AName)) {}
  const UnicodeString& Name() const noexcept { return FName; }

 protected:
  void SetName(UnicodeString AName) { FName = std::move(AName); }

 private:
  UnicodeString FName;
};

/// A field, property or method of a class or record.
class TRttiMember : public TRttiNamedObject {
 public:
  TRttiMember(UnicodeString AName, TMemberVisibility AVisibility)
      : TRttiNamedObject(std::move(AName)), FVisibility(AVisibility) {}
  TMemberVisibility Visibility() const noexcept { return FVisibility; }
  /// The type that declares the member.
  TRttiType* Parent() const noexcept { return FParent; }
  void SetParent(TRttiType* AParent) noexcept { FParent = AParent; }

 private:
  TMemberVisibility FVisibility;
  TRttiType* FParent = nullptr;
};

class TRttiField : public TRttiMember {
 public:
  TRttiField(UnicodeString AName, TMemberVisibility AVisibility, const TTypeInfo* AType)
      : TRttiMember(std::move(AName), AVisibility), FType(AType) {}
  TRttiType* FieldType() const noexcept { return FType->RttiType; }
  const TTypeInfo* FieldTypeInfo() const noexcept { return FType; }
  /// Overrides the field's type with one of the same storage (TDateTime over Double).
  void SetFieldType(const TTypeInfo* AType) noexcept { FType = AType; }
  /// The address of the field inside the instance.
  virtual void* GetAddress(void* AInstance) const = 0;
  /// A copy of the field's value.
  TValue GetValue(void* AInstance) const;
  TValue GetValue(const TObject* AInstance) const { return GetValue(static_cast<void*>(const_cast<TObject*>(AInstance))); }
  /// Stores AValue, converted to the field's type (EInvalidCast when it does not convert).
  void SetValue(void* AInstance, const TValue& AValue) const;
  void SetValue(TObject* AInstance, const TValue& AValue) const { SetValue(static_cast<void*>(AInstance), AValue); }

 private:
  const TTypeInfo* FType;
};

class TRttiProperty : public TRttiMember {
 public:
  TRttiProperty(UnicodeString AName, TMemberVisibility AVisibility, const TTypeInfo* AType)
      : TRttiMember(std::move(AName), AVisibility), FType(AType) {}
  TRttiType* PropertyType() const noexcept { return FType->RttiType; }
  const TTypeInfo* PropertyTypeInfo() const noexcept { return FType; }
  void SetPropertyType(const TTypeInfo* AType) noexcept { FType = AType; }
  virtual bool IsReadable() const noexcept = 0;
  virtual bool IsWritable() const noexcept = 0;
  /// A copy of the value the getter gives; raises EPropertyError for a property without getter.
  TValue GetValue(void* AInstance) const;
  TValue GetValue(const TObject* AInstance) const { return GetValue(static_cast<void*>(const_cast<TObject*>(AInstance))); }
  /// Passes AValue, converted to the property's type, to the setter.
  void SetValue(void* AInstance, const TValue& AValue) const;
  void SetValue(TObject* AInstance, const TValue& AValue) const { SetValue(static_cast<void*>(AInstance), AValue); }

 protected:
  virtual TValue DoGetValue(void* AInstance) const = 0;
  /// AValue has the property's type already.
  virtual void DoSetValue(void* AInstance, const TValue& AValue) const = 0;

 private:
  const TTypeInfo* FType;
};

/// A property reached by one index (Items[i]).
class TRttiIndexedProperty : public TRttiMember {
 public:
  TRttiIndexedProperty(UnicodeString AName, TMemberVisibility AVisibility, const TTypeInfo* AType,
                       const TTypeInfo* AIndexType)
      : TRttiMember(std::move(AName), AVisibility), FType(AType), FIndexType(AIndexType) {}
  TRttiType* PropertyType() const noexcept { return FType->RttiType; }
  const TTypeInfo* PropertyTypeInfo() const noexcept { return FType; }
  const TTypeInfo* IndexTypeInfo() const noexcept { return FIndexType; }
  virtual bool IsReadable() const noexcept = 0;
  virtual bool IsWritable() const noexcept = 0;
  /// The element at AIndex.
  TValue GetValue(void* AInstance, const TValue& AIndex) const;
  TValue GetValue(const TObject* AInstance, const TValue& AIndex) const {
    return GetValue(static_cast<void*>(const_cast<TObject*>(AInstance)), AIndex);
  }
  void SetValue(void* AInstance, const TValue& AIndex, const TValue& AValue) const;
  void SetValue(TObject* AInstance, const TValue& AIndex, const TValue& AValue) const {
    SetValue(static_cast<void*>(AInstance), AIndex, AValue);
  }

 protected:
  virtual TValue DoGetValue(void* AInstance, const TValue& AIndex) const = 0;
  virtual void DoSetValue(void* AInstance, const TValue& AIndex, const TValue& AValue) const = 0;

 private:
  const TTypeInfo* FType;
  const TTypeInfo* FIndexType;
};

class TRttiParameter : public TRttiNamedObject {
 public:
  TRttiParameter(UnicodeString AName, const TTypeInfo* AType) : TRttiNamedObject(std::move(AName)), FType(AType) {}
  TRttiType* ParamType() const noexcept { return FType->RttiType; }
  const TTypeInfo* ParamTypeInfo() const noexcept { return FType; }

 private:
  const TTypeInfo* FType;
};

enum TMethodKind : uint8_t { mkProcedure, mkFunction, mkConstructor, mkClassProcedure, mkClassFunction };

class TRttiMethod : public TRttiMember {
 public:
  TRttiMethod(UnicodeString AName, TMemberVisibility AVisibility, TMethodKind AKind, const TTypeInfo* AReturnType)
      : TRttiMember(std::move(AName), AVisibility), FKind(AKind), FReturnType(AReturnType) {}
  TMethodKind MethodKind() const noexcept { return FKind; }
  bool IsConstructor() const noexcept { return FKind == mkConstructor; }
  /// Runs without an instance: constructors and class methods.
  bool IsStatic() const noexcept { return FKind >= mkConstructor; }
  /// The result type; nullptr for procedures. A constructor gives its class.
  TRttiType* ReturnType() const noexcept { return FReturnType ? FReturnType->RttiType : nullptr; }
  const std::vector<std::unique_ptr<TRttiParameter>>& GetParameters() const noexcept { return FParameters; }
  void AddParameter(UnicodeString AName, const TTypeInfo* AType);

  /// Calls the method on the object or record at AInstance; arguments are converted to the
  /// parameter types. Raises EInvocationError "Parameter count mismatch" on a wrong count.
  TValue Invoke(void* AInstance, std::span<const TValue> AArgs) const;
  TValue Invoke(TObject* AInstance, std::span<const TValue> AArgs) const { return Invoke(static_cast<void*>(AInstance), AArgs); }
  TValue Invoke(TObject* AInstance, std::initializer_list<TValue> AArgs) const {
    return Invoke(static_cast<void*>(AInstance), std::span(AArgs.begin(), AArgs.size()));
  }
  /// Calls a constructor or class method; a constructor gives the new object (the caller's).
  /// The parameterless Create of TObject creates an object of AClass through its virtual constructor.
  TValue Invoke(TClass AClass, std::span<const TValue> AArgs) const;
  TValue Invoke(TClass AClass, std::initializer_list<TValue> AArgs) const {
    return Invoke(AClass, std::span(AArgs.begin(), AArgs.size()));
  }

 protected:
  /// AArgs have the parameter types already; AInstance is the object or record, or the TClass.
  virtual TValue DoInvoke(void* AInstance, TClass AClass, std::span<const TValue> AArgs) const = 0;

 private:
  TValue CallChecked(void* AInstance, TClass AClass, std::span<const TValue> AArgs) const;
  TMethodKind FKind;
  const TTypeInfo* FReturnType;
  std::vector<std::unique_ptr<TRttiParameter>> FParameters;
};

/// The reflection object of a type. Member lists hold own members first, then the ancestors'.
class TRttiType : public TRttiNamedObject {
 public:
  explicit TRttiType(TTypeInfo* AHandle);
  ~TRttiType() override;

  /// Takes the name of the type record again after the registry renamed it.
  void SyncName() { SetName(FHandle->Name); }
  /// The type record.
  const TTypeInfo* Handle() const noexcept { return FHandle; }
  const TTypeInfo* GetHandle() const noexcept { return FHandle; }
  TTypeKind TypeKind() const noexcept { return FHandle->Kind; }
  const UnicodeString& QualifiedName() const noexcept { return FHandle->QualifiedName; }
  bool IsInstance() const noexcept { return TypeKind() == tkClass; }
  bool IsRecord() const noexcept { return TypeKind() == tkRecord || TypeKind() == tkMRecord; }
  bool IsOrdinal() const noexcept;
  bool IsSet() const noexcept { return TypeKind() == tkSet; }
  /// The parent class's type; nullptr for TObject, records and simple types.
  TRttiType* BaseType() const;
  /// The element type of a set, static or dynamic array; nullptr otherwise.
  TRttiType* GetElementType() const;
  /// The class of a class type, or the class a class reference refers to.
  TClass GetMetaclassType() const noexcept { return FHandle->ClassType; }
  /// Byte size of a value of the type.
  size_t TypeSize() const noexcept;

  std::vector<TRttiField*> GetFields() const;
  std::vector<TRttiProperty*> GetProperties() const;
  std::vector<TRttiIndexedProperty*> GetIndexedProperties() const;
  std::vector<TRttiMethod*> GetMethods() const;
  /// Only the members this type declares, in declaration order.
  const std::vector<std::unique_ptr<TRttiField>>& GetDeclaredFields() const noexcept { return FFields; }
  const std::vector<std::unique_ptr<TRttiProperty>>& GetDeclaredProperties() const noexcept { return FProperties; }
  const std::vector<std::unique_ptr<TRttiMethod>>& GetDeclaredMethods() const noexcept { return FMethods; }

  /// The first member of that name, own before inherited; nullptr when there is none.
  TRttiField* GetField(std::u16string_view AName) const;
  TRttiProperty* GetProperty(std::u16string_view AName) const;
  TRttiIndexedProperty* GetIndexedProperty(std::u16string_view AName) const;
  TRttiMethod* GetMethod(std::u16string_view AName) const;

  // Registration (rtti_register.h) adds the members; they are owned here.
  TRttiField* AddField(std::unique_ptr<TRttiField> AField);
  TRttiProperty* AddProperty(std::unique_ptr<TRttiProperty> AProperty);
  TRttiIndexedProperty* AddIndexedProperty(std::unique_ptr<TRttiIndexedProperty> AProperty);
  TRttiMethod* AddMethod(std::unique_ptr<TRttiMethod> AMethod);

 private:
  static const std::vector<std::unique_ptr<TRttiIndexedProperty>>& DeclaredIndexed(const TRttiType* AType);

  TTypeInfo* FHandle;
  std::vector<std::unique_ptr<TRttiField>> FFields;
  std::vector<std::unique_ptr<TRttiProperty>> FProperties;
  std::vector<std::unique_ptr<TRttiIndexedProperty>> FIndexedProperties;
  std::vector<std::unique_ptr<TRttiMethod>> FMethods;
};

/// Entry to the reflection registry.
class TRttiContext {
 public:
  /// The reflection object of a type record; nullptr for nullptr.
  static TRttiType* GetType(const TTypeInfo* ATypeInfo) noexcept { return ATypeInfo ? ATypeInfo->RttiType : nullptr; }
  /// The type of a class; a class that was never registered gets a type without members of its own.
  static TRttiType* GetType(TClass AClass);
  /// A registered type by unit-qualified name, or by short name; case is ignored; nullptr when unknown.
  static TRttiType* FindType(std::u16string_view AName);
  /// Every registered type, in registration order.
  static std::vector<TRttiType*> GetTypes();
};

/// The type record of AClass, made on first use for a class that was never registered.
const TTypeInfo* ClassTypeInfo(TClass AClass);

}  // namespace vn
