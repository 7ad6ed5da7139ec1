// TVnSerializer: the entry points, the member and array walks, and the children.
#include <memory>

#include "serializer/kind_names.h"
#include "serializer/member_plan.h"
#include "serializer/walker_output.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/serializer_walker.h"

namespace vn {

namespace {

bool IsTValueType(const TVnTypeInfo* AType) { return AType && AType->Handle() == TypeInfoOf<TValue>(); }

const TValue& InnerValue(const TValue& AValue) { return *static_cast<const TValue*>(AValue.GetReferenceToRawData()); }

/// Calls AfterSerialize also when the walk fails, so that a host's lock is left.
class AfterSerializeGuard {
 public:
  AfterSerializeGuard(IVnSerializerHelper* AHelper, IVnSerializer* ASerializer) : FHelper(AHelper), FSerializer(ASerializer) {}
  AfterSerializeGuard(const AfterSerializeGuard&) = delete;
  AfterSerializeGuard& operator=(const AfterSerializeGuard&) = delete;
  ~AfterSerializeGuard() noexcept(false) {
    if (FHelper) FHelper->AfterSerialize(FSerializer);
  }

 private:
  IVnSerializerHelper* FHelper;
  IVnSerializer* FSerializer;
};

}  // namespace

TVnSerializer::~TVnSerializer() = default;

void TVnSerializer::Create(void* AInstance, const TTypeInfo* AType) {
  TVnCustomSerializer::Create(AInstance, AType);
  FHelper = AType && AType->Kind == tkClass && AInstance
                ? dynamic_cast<IVnSerializerHelper*>(static_cast<TObject*>(AInstance))
                : nullptr;
}

void TVnSerializer::SetParent(TVnCustomSerializer* AParent) {
  TVnCustomSerializer::SetParent(AParent);
  if (auto* parent = CastObject<TVnSerializer>(AParent)) {
    FStream = parent->FStream;
    FDepth = parent->FDepth + 1;
    if (FParams->GetCount() == 0) {
      // Nothing set here: the parent's reading of the parameters holds.
      FTypeAttributes = parent->FTypeAttributes;
      FExcludeChildren = parent->FExcludeChildren;
      return;
    }
    FTypeAttributes = &FOwnTypeAttributes;
  } else {
    FTypeAttributes = &FOwnTypeAttributes;
    FOwnTypeAttributes.clear();
  }
  FExcludeChildren = ParamIsTrue(u"excludechildren");
}

bool TVnSerializer::ParamIsTrue(std::u16string_view AName) { return SameText(GetParam(AName), u"true"); }

// ---- writers: nothing here ----

void TVnSerializer::SerializeStartType(std::u16string_view, const TVnTypeInfo*, Integer) {}
void TVnSerializer::SerializeEndType(std::u16string_view, const TVnTypeInfo*, Integer) {}
void TVnSerializer::SerializeName(std::u16string_view, TVnSerializerMemberType, TVnTypeKind, TVnTypeKind) {}
void TVnSerializer::SerializeValue(std::u16string_view, const TVnTypeInfo*, const TValue&, Integer, TVnAttributes) {}

// ---- output ----

void TVnSerializer::Write(std::string_view ABytes) {
  if (!ABytes.empty()) FStream->WriteBuffer(ABytes.data(), static_cast<Int64>(ABytes.size()));
}

void TVnSerializer::Write(std::u16string_view AText) {
  FScratch.clear();
  detail::AppendUtf8(FScratch, AText);
  Write(std::string_view(FScratch));
}

// ---- entry points ----

TVnSerializedData TVnSerializer::Serialize() {
  detail::StringSinkStream stream;
  Serialize(stream);
  return stream.Take();
}

void TVnSerializer::Serialize(TStream& AStream) {
  FStream = &AStream;
  SetParent(nullptr);
  FDepth = 0;
  const bool bounds =
      FInstanceTypeInfo && !FInstanceTypeInfo->GetIsSimpleType() && !ParamIsTrue(u"excluderoot");
  if (bounds) SerializeStartType({}, FInstanceTypeInfo, -1);
  {
    bool handled = false;
    if (FHelper) FHelper->BeforeSerialize(this, handled);
    AfterSerializeGuard after(FHelper, this);
    if (!handled && FInstancePtr && FInstanceTypeInfo && FInstanceTypeInfo->GetKind() == tkClass) {
      auto* object = static_cast<TObject*>(FInstancePtr);
      if (std::unique_ptr<TVnSerializerHelper> helper = VnCreateSerializerHelper(object->ClassType()))
        helper->Serialize(this, {}, FInstanceTypeInfo, TValue::FromObject(object), handled);
    }
    if (!handled) DoSerialize(this, {}, {});
  }
  if (bounds) SerializeEndType({}, FInstanceTypeInfo, -1);
}

void TVnSerializer::Serialize(TStream& AStream, const TRttiMethod& AMethod, std::u16string_view AName,
                              std::span<const TValue> AValues, Integer AHighIndex) {
  const auto& params = AMethod.GetParameters();
  if (static_cast<Integer>(params.size()) - 1 != AHighIndex || static_cast<Integer>(AValues.size()) - 1 != AHighIndex)
    throw Exception(cVnEventParamCount);
  FStream = &AStream;
  SetParent(nullptr);
  FName = AName;
  // The arguments are the members of the event's own type, a method type: no notation writes a
  // start or end for it, so they stand bare.
  static const TTypeInfo* const kInvokable = [] {
    static TTypeInfo type;
    type.Kind = tkMethod;
    type.Name = u"TMethod";
    type.QualifiedName = u"System.TMethod";
    return &type;
  }();
  FInstanceTypeInfo = TVnTypes::GetTypeInfo(kInvokable);
  SerializeStartType(FName, FInstanceTypeInfo, -1);
  for (size_t i = 0; i < params.size(); ++i)
    SerializeFieldOrProp(params[i]->Name(), TVnTypes::GetTypeInfo(params[i]->ParamTypeInfo()), AValues[i], {});
  SerializeEndType({}, FInstanceTypeInfo, -1);
}

// ---- the walk ----

void TVnSerializer::DoSerialize(TVnSerializer*, std::u16string_view AName, std::u16string_view APath) {
  FMemberName = AName;
  if (AName.empty()) {
    FPath.clear();
  } else if (APath.empty()) {
    FPath = AName;
  } else {
    FPath.assign(APath).append(1, u'.').append(AName);
  }
  if (!FInstanceTypeInfo) {
    SerializeValue(AName, nullptr, FValue, -1, {});
    return;
  }
  switch (FInstanceTypeInfo->Kind()) {
    case vtkRecord:
    case vtkClass:
      WalkMembers();
      return;
    case vtkStaticArray:
    case vtkDynArray:
      WalkArray();
      return;
    case vtkPointer:
      return;
    default:
      SerializeValue(AName, FInstanceTypeInfo, FValue, -1, {});
  }
}

bool TVnSerializer::MemberPasses(const TVnTypeInfo* AType, const TValue& AValue) const {
  const TVnTypeKind kind = AType->Kind();
  if ((kind == vtkRecord || kind == vtkClass || kind == vtkInterface) && FExcludeChildren) return false;
  return kind != vtkClass || !IsOnChain(AValue.AsObject());
}

void TVnSerializer::WalkMembers() {
  if (!FInstancePtr) return;
  for (const detail::PlannedMember& member : detail::PlanOf(FInstanceTypeInfo).Written) {
    TValue value = member.Field ? member.Field->GetValue(FInstancePtr) : member.Prop->GetValue(FInstancePtr);
    const TVnTypeInfo* memberType = member.Type;
    if (member.IsTValue) {
      TValue inner = InnerValue(value);
      value = std::move(inner);
      memberType = VnTypeInfo(value);
      if (!memberType) continue;  // an empty TValue writes nothing
    }
    if (member.Prop) {
      const TVnTypeKind kind = memberType->Kind();
      if (kind == vtkUnknown || kind == vtkPointer || kind == vtkOther32 || kind == vtkClassRef) continue;
    }
    if (!MemberPasses(memberType, value)) continue;
    if (member.Field) {
      SerializeFieldOrProp(member.Name, memberType, value, member.Attributes);
      continue;
    }
    std::unique_ptr<TVnSerializerHelper> helper;
    if (member.HelperHint) {
      helper.reset(static_cast<TVnSerializerHelper*>(CreateInstance(member.HelperHint->GetSerializerHelperClass())));
    } else if (memberType->Kind() == vtkClass) {
      TObject* object = value.AsObject();
      helper = VnCreateSerializerHelper(object ? object->ClassType() : memberType->Handle()->ClassType);
    }
    bool handled = false;
    if (helper) helper->Serialize(this, UnicodeString(member.Name), memberType, value, handled);
    if (!handled) SerializeFieldOrProp(member.Name, memberType, value, member.Attributes);
  }
}

void TVnSerializer::WalkArray() {
  // The array is read where it stands, at the instance address: no copy, and arrays of
  // arrays or renamed array properties are written like any other.
  if (!FInstancePtr) return;
  const TTypeInfo* arrayType = FInstanceTypeInfo->Handle();
  const TVnTypeInfo* element = FInstanceTypeInfo->StoredElementType();
  if (!element) return;
  const TTypeInfo* elementType = element->Handle();
  const UnicodeString elementName = FInstanceTypeInfo->ElementType()->SchemaName();
  const NativeInt count = DynArraySize(FInstancePtr, arrayType);
  const bool isTValue = IsTValueType(element);
  for (NativeInt i = 0; i < count; ++i) {
    void* item = arrayType->Ops->Element(FInstancePtr, static_cast<size_t>(i));
    const auto index = static_cast<Integer>(i);
    switch (elementType->Kind) {
      case tkClass:
        SerializeClass(elementName, elementType->ClassType, elementType->Ops->ToObject(item), index);
        break;
      case tkArray:
      case tkDynArray:
        SerializeArray(elementName, element, item, element, index);
        break;
      case tkRecord:
      case tkMRecord:
        if (isTValue) {
          const auto& inner = *static_cast<const TValue*>(item);
          SerializeValue(elementName, inner.IsEmpty() ? element : VnTypeInfo(inner), inner, index, {});
        } else {
          SerializeRecord(elementName, element, item, element, index);
        }
        break;
      default:
        SerializeValue(elementName, element, TValue::Make(item, elementType), index, {});
    }
  }
}

// ---- children ----

bool TVnSerializer::IsOnChain(const TObject* AObject) const {
  if (!AObject) return false;
  for (const TVnCustomSerializer* s = this; s; s = s->GetParent()) {
    const TVnTypeInfo* type = s->GetInstanceTypeInfo();
    if (type && type->GetKind() == tkClass && const_cast<TVnCustomSerializer*>(s)->GetInstancePtr() == AObject) return true;
  }
  return false;
}

void TVnSerializer::CheckNesting() const {
  if (FDepth >= cVnMaxNesting) throw EVnSerializeException(cVnNestingTooDeep, {FPath});
}

IPtr<IVnSerializer> TVnSerializer::CreateChildSerializer(void* AInstance, const TVnTypeInfo* AType,
                                                         TVnSerializer*& AChild) {
  CheckNesting();
  IPtr<IVnSerializer> result = VnCreateSerializerEx(Format(), AInstance, AType);
  AChild = CastObject<TVnSerializer>(VnImplementor(result.Get()));
  AChild->SetParent(this);
  return result;
}

void TVnSerializer::SerializeChild(std::u16string_view AName, std::u16string_view, void* AInstance,
                                   const TVnTypeInfo* AType, Integer AIndex) {
  TVnSerializer* child = nullptr;
  IPtr<IVnSerializer> hold = CreateChildSerializer(AInstance, AType, child);
  child->SerializeStartType(AName, AType, AIndex);
  {
    bool handled = false;
    if (child->FHelper) child->FHelper->BeforeSerialize(child, handled);
    AfterSerializeGuard after(child->FHelper, child);
    if (!handled) child->DoSerialize(this, AName, FPath);
  }
  child->SerializeEndType(AName, AType, AIndex);
}

void TVnSerializer::SerializeClass(std::u16string_view AName, TClass AClass, TObject* AObject, Integer AIndex) {
  const TVnTypeInfo* type = TVnTypes::GetTypeInfo(AObject ? AObject->ClassType() : AClass);
  bool write = !FExcludeChildren;
  auto* component = CastObject<TComponent>(AObject);
  const bool componentClass = component || (AClass && ClassInheritsFrom(AClass, TComponent::StaticClass()));
  if (write && componentClass) {
    const TObject* self = FInstanceTypeInfo && FInstanceTypeInfo->GetKind() == tkClass
                              ? static_cast<const TObject*>(FInstancePtr)
                              : nullptr;
    write = component && (!component->GetOwner() || component->GetOwner() == self);
  }
  if (write) {
    UnicodeString typeName;
    if (FHelper && !FHelper->CanSerializeChild(this, AObject, AClass, typeName)) return;
    if (AObject)
      SerializeChild(AName, typeName, AObject, type, AIndex);
    else
      SerializeValue(AName, type, TValue(), AIndex, {});
  } else {
    SerializeValue(AName, type, TValue::From(component ? component->GetName() : UnicodeString()), AIndex, {});
  }
}

void TVnSerializer::SerializeRecord(std::u16string_view AName, const TVnTypeInfo*, void* AInstance,
                                    const TVnTypeInfo* AValueType, Integer AIndex) {
  if (FExcludeChildren)
    SerializeValue(AName, AValueType, TValue(), AIndex, {});
  else
    SerializeChild(AName, {}, AInstance, AValueType, AIndex);
}

void TVnSerializer::SerializeArray(std::u16string_view AName, const TVnTypeInfo* AType, void* AInstance,
                                   const TVnTypeInfo* AValueType, Integer AIndex) {
  SerializeChild(AName, AType->Name(), AInstance, AValueType, AIndex);
}

void TVnSerializer::SerializeFieldOrProp(std::u16string_view AName, const TVnTypeInfo* AType, const TValue& AValue,
                                         TVnAttributes AAttributes) {
  SerializeName(AName, smtField, FInstanceTypeInfo ? FInstanceTypeInfo->Kind() : vtkUnknown, AType->Kind());
  switch (AType->GetKind()) {
    case tkClass:
      SerializeClass(AName, AType->Handle()->ClassType, AValue.AsObject(), -1);
      return;
    case tkRecord:
    case tkMRecord:
      if (IsTValueType(AType)) {
        const TValue& inner = InnerValue(AValue);
        if (!inner.IsEmpty() || inner.TypeInfo()) SerializeValue(AName, VnTypeInfo(inner), inner, -1, {});
      } else {
        SerializeRecord(AName, AType, const_cast<void*>(AValue.GetReferenceToRawData()), AType, -1);
      }
      return;
    case tkArray:
    case tkDynArray:
      SerializeArray(AName, AType, const_cast<void*>(AValue.GetReferenceToRawData()), AType, -1);
      return;
    case tkInterface: {
      IPtr<IInterface> intf = AValue.AsInterface();
      if (!intf) {
        SerializeInterface(AName, AType, nullptr, -1);
      } else if (intf.As<IVnSerializable>()) {
        SerializeInterface(AName, AType, intf.Get(), -1);
      } else if (IPtr<IVnObject> object = intf.As<IVnObject>()) {
        TObject* implementor = object->Implementor();
        SerializeClass(AName, implementor->ClassType(), implementor, -1);
      } else {
        throw EVnSerializeException(cVnFieldCannotBeSerialized, {FPath, UnicodeString(AName), AType->QualifiedName()});
      }
      return;
    }
    case tkPointer: {
      const auto bits = static_cast<UInt64>(reinterpret_cast<uintptr_t>(*static_cast<void* const*>(AValue.GetReferenceToRawData())));
      SerializeValue(AName, AType, TValue::From(bits), -1, {});
      return;
    }
    default:
      SerializeValue(AName, AType, AValue, -1, AAttributes);
  }
}

void TVnSerializer::SerializeInterface(std::u16string_view AName, const TVnTypeInfo* AType, IInterface* AIntf,
                                       Integer AIndex) {
  if (!AIntf || FExcludeChildren) {
    SerializeValue(AName, AType, TValue(), AIndex, {});
    return;
  }
  IPtr<IVnSerializable> serializable = IPtr<IInterface>(AIntf).As<IVnSerializable>();
  if (!serializable)
    throw EVnSerializeException(cVnFieldCannotBeSerializedRecord,
                                {FPath, UnicodeString(AName), detail::TypeKindName(FInstanceTypeInfo->GetKind())});
  TVnSerializer* child = nullptr;
  IPtr<IVnSerializer> hold = CreateChildSerializer(AIntf, AType, child);
  const bool bounds = FInstanceTypeInfo->Kind() == vtkRecord || !ParamIsTrue(u"excluderoot");
  if (bounds) child->SerializeStartType(AName, AType, AIndex);
  Write(std::string_view(serializable->Serialize(Format(), FParams.get())));
  if (bounds) child->SerializeEndType(AName, AType, AIndex);
}

}  // namespace vn
