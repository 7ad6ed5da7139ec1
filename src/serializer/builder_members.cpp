// TVnDeserializer: finding a member, making its child, converting and storing its value.
#include <cstring>

#include "common/rtti_value_internal.h"
#include "serializer/kind_names.h"
#include "serializer/member_plan.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/serializer_builder.h"
#include "vnxml/serializer_enums.h"
#include "vnxml/serializer_walker.h"

namespace vn {

namespace {

bool IsArrayKind(TVnTypeKind AKind) { return AKind == vtkStaticArray || AKind == vtkDynArray; }

/// Whether a member is read into a copy of its current value: nested values, and records that
/// are written as one value (an empty element leaves them as they are).
bool NeedsCurrentValue(const TVnTypeInfo* AType) {
  return !AType->GetIsSimpleType() || AType->GetKind() == tkRecord || AType->GetKind() == tkMRecord;
}

bool IsReserved(std::u16string_view AName) {
  using detail::SameName;
  return SameName(AName, u"className") || SameName(AName, u"parent") || SameName(AName, u"owner") ||
         SameName(AName, u"type");
}

/// AValue as a value of AType: the casts of TValue, then the registry's text conversions.
TValue ConvertTo(TValue&& AValue, const TTypeInfo* AType) {
  TValue result;
  if (AValue.TypeInfo() == AType) return std::move(AValue);
  if (AValue.TryCast(AType, result) || ToType(AValue, AType, result)) return result;
  throw EInvalidCast(u"Invalid class typecast");
}

/// Reads AValue into the storage of a simple type at ATarget when it is one the texts hold most
/// (integers, floats, strings, Booleans, enumerations), with no TValue in between. False when
/// the type is another or the value does not fit: the general path then stores or raises.
bool StoreDirect(TVnDeserializer& AReader, void* ATarget, const TVnTypeInfo* AType, std::u16string_view AValue) {
  const TTypeInfo* type = AType->Handle();
  switch (type->Kind) {
    case tkInteger: {
      const Int64 number = AReader.ValueToInt64(AValue);
      if (!detail::OrdinalInRange(type, number)) return false;
      detail::WriteOrdinal(ATarget, type, number);
      return true;
    }
    case tkInt64:
      if (type->IsUnsigned) return false;
      *static_cast<Int64*>(ATarget) = AReader.ValueToInt64(AValue);
      return true;
    case tkFloat: {
      const TVnTypeKind kind = AType->Kind();
      const Extended number = kind == vtkDate       ? AReader.ValueToDate(AValue)
                              : kind == vtkTime     ? AReader.ValueToTime(AValue)
                              : kind == vtkDateTime ? AReader.ValueToDateTime(AValue)
                                                    : AReader.ValueToFloat(AValue);
      return detail::WriteFloat(ATarget, type, number);
    }
    case tkUString:
      if (type != TypeInfoOf<UnicodeString>()) return false;
      *static_cast<UnicodeString*>(ATarget) = AReader.ValueToStr(AValue);
      return true;
    case tkEnumeration: {
      if (AType->Kind() == vtkBoolean) {
        if (type != TypeInfoOf<bool>()) return false;
        *static_cast<bool*>(ATarget) = AReader.ValueToBool(AValue);
        return true;
      }
      const UnicodeString text = AReader.ValueToStr(AValue);
      const Int64 ordinal = VnEnumOrdinal(type, text, VnEnumPrefix(type));
      if (ordinal < 0 || !detail::OrdinalInRange(type, ordinal)) return false;
      detail::WriteOrdinal(ATarget, type, ordinal);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace

// ---- finding the member ----

TVnCanDeserialize TVnDeserializer::CanDeserialize(UnicodeString& AURI, UnicodeString& AName, UnicodeString& ADataType,
                                                  bool ARaiseOnUnknown) {
  ReleaseChild();
  if (FCHelper) return FCHelper->CanDeserialize(this, AURI, AName, ADataType);
  TVnCanDeserialize result = FIHelper ? FIHelper->CanDeserialize(this, AURI, AName, ADataType) : desNo;
  if (result == desNo) {
    FMemberField = nullptr;
    FMemberProp = nullptr;
    FMemberTypeInfo = nullptr;
    FMemberValue = TValue();
    FMemberName = AName;
    const TVnTypeKind kind = FInstanceTypeInfo ? FInstanceTypeInfo->Kind() : vtkUnknown;
    if ((kind == vtkRecord || kind == vtkClass) && FInstancePtr) {
      const detail::MemberPlan& plan = detail::PlanOf(FInstanceTypeInfo);
      auto find = [&](const std::vector<detail::NamedMember>& AList) -> const detail::NamedMember* {
        for (const detail::NamedMember& m : AList)
          if (detail::SameName(m.Name, AName)) return &m;
        return nullptr;
      };
      // Texts mostly list the fields in their declared order: the one after the last is tried first.
      const detail::NamedMember* found = nullptr;
      if (FNextField < plan.Fields.size() && plan.Fields[FNextField].FirstOfName &&
          detail::SameName(plan.Fields[FNextField].Name, AName))
        found = &plan.Fields[FNextField];
      else
        found = find(plan.Fields);
      if (found) FNextField = static_cast<size_t>(found - plan.Fields.data()) + 1;
      if (!found && kind == vtkClass) found = find(plan.Properties);
      if (!found && kind == vtkClass) found = find(plan.HintNamed);
      if (found && found->Field) {
        FMemberField = found->Field;
        FMemberTypeInfo = found->Type;
        // A simple member's value is replaced whole: only nested values need the current one.
        if (NeedsCurrentValue(FMemberTypeInfo)) FMemberValue = found->Field->GetValue(FInstancePtr);
      } else if (found) {
        TRttiProperty* property = found->Prop;
        FMemberProp = property;
        if (property->Visibility() >= mvPublic) {
          FMemberTypeInfo = found->Type;
          if (NeedsCurrentValue(FMemberTypeInfo))
            FMemberValue = property->IsReadable() ? property->GetValue(FInstancePtr)
                                                  : TValue::Make(nullptr, property->PropertyTypeInfo());
        }
      }
      if (found) {
        if (ADataType.empty() && FMemberTypeInfo) ADataType = FMemberTypeInfo->QualifiedName();
        result = desYes;
      }
    }
    if (result == desNo && !IsReserved(AName) && ARaiseOnUnknown)
      throw EVnSerializeException(cVnUnknownMember,
                                  {FInstanceTypeInfo ? FInstanceTypeInfo->QualifiedName() : UnicodeString(), AName});
  }
  if (result == desYes) {
    CreateChildDeserializerIfNeeded(AName);
    // A read-only property takes no text (a component's Owner): only a nested value it holds
    // is filled in place.
    if (FMemberProp && !FMemberProp->IsWritable() && !FChild) result = desIgnore;
  }
  return result;
}

// ---- children ----

TVnDeserializer* TVnDeserializer::CreateChildDeserializerIfNeeded(std::u16string_view AName) {
  if (!FMemberTypeInfo) return nullptr;
  const bool inArray = IsArraySerializer();
  if (!inArray && !FMemberField && !FMemberProp) throw Exception(cVnUnknownSerializerName);
  const std::u16string_view childName = inArray ? std::u16string_view(u"ArrayElm") : AName;
  SerializerHint* hint = nullptr;
  if (!inArray && FMemberProp) GetSerializerHint(FMemberProp, shoDeserializerHelper, hint);
  switch (FMemberTypeInfo->GetKind()) {
    case tkClass: {
      TObject* object = FMemberValue.AsObject();
      if (!object) {
        UnicodeString named;
        const bool hasName = ReadClassName(named);
        const TVnTypeInfo* type = nullptr;
        if (hasName && !named.empty()) {
          type = TVnTypes::GetTypeInfo(named, tntSchemaName, false, mtkUnknown);
          // A container or simple wrapper is typed by what it holds: its own class is made.
          if (type && type->GetKind() != tkClass && VnCreateSerializerHelper(FMemberTypeInfo->Handle()->ClassType))
            type = FMemberTypeInfo;
          if (!type || type->GetKind() != tkClass) throw ENotSupportedException(cVnFailedToCreateMember, {named});
          // Only the member's class or a descendant: a text never chooses an unrelated class.
          if (!ClassInheritsFrom(type->Handle()->ClassType, FMemberTypeInfo->Handle()->ClassType))
            throw EVnSerializeException(cVnClassNotADescendant, {type->Name(), FMemberTypeInfo->Name()});
        } else if (!hasName) {
          type = FMemberTypeInfo;
        }
        if (type) {
          TRttiMethod* create = type->RttiType()->GetMethod(u"Create");
          if (!create || create->GetParameters().empty()) {
            object = CreateInstance(type);
            FMemberValue = TValue::FromObject(object, FMemberTypeInfo->Handle());
            StoreMemberValue();
            if (!inArray && FInstanceTypeInfo->GetKind() == tkClass) RecordLink(FInstancePtr, FMemberField, FMemberProp);
            else if (!inArray && !FParentDeserializer) RecordLink(FInstancePtr, FMemberField, FMemberProp);
          } else if (hasName) {
            throw ENotSupportedException(cVnFailedToCreateMember, {named});
          }
        }
        if (!object) return nullptr;
      } else if (auto* component = CastObject<TComponent>(object)) {
        // A component is entered only when the object being read owns it.
        const TObject* self = FInstanceTypeInfo->GetKind() == tkClass ? static_cast<TObject*>(FInstancePtr) : nullptr;
        if (component->GetOwner() != self) return nullptr;
      }
      return CreateChildDeserializer(childName, object, TVnTypes::GetTypeInfo(object->ClassType()), hint);
    }
    case tkArray:
    case tkRecord:
    case tkDynArray:
    case tkMRecord: {
      // Inside an array the element is filled where it stands; a member is read into the copy
      // in FMemberValue, which goes back at the child's end.
      void* instance = inArray ? FInstanceTypeInfo->Handle()->Ops->Element(FInstancePtr, static_cast<size_t>(FArrIdx))
                               : FMemberValue.GetReferenceToRawData();
      return CreateChildDeserializer(childName, instance, FMemberTypeInfo, hint);
    }
    default:
      return nullptr;
  }
}

TVnDeserializer* TVnDeserializer::AdoptChild(IPtr<IVnDeserializer> AChild, std::u16string_view AName,
                                             const TVnTypeInfo* AType, const SerializerHint* AHint) {
  auto* child = static_cast<TVnDeserializer*>(VnImplementor(AChild.Get()));
  child->FName = AName;
  if (AHint) {
    child->FCHelper.reset(static_cast<TVnDeserializerHelper*>(vn::CreateInstance(AHint->GetDeserializerHelperClass())));
  } else if (AType && AType->GetKind() == tkClass) {
    child->FCHelper = VnCreateDeserializerHelper(AType->Handle()->ClassType);
  }
  child->SetParent(this);
  child->FDepth = FDepth + 1;
  if (child->FDepth >= cVnMaxNesting) throw EVnSerializeException(cVnNestingTooDeep, {GetPath()});
  child->FCreatedAtStart = CreatedCount();
  FChildRef = std::move(AChild);
  FChild = child;
  child->DeserializeStartType();
  return child;
}

TVnDeserializer* TVnDeserializer::CreateChildDeserializer(std::u16string_view AName, void* AInstance,
                                                          const TVnTypeInfo* AType, const SerializerHint* AHint) {
  ReleaseChild();
  // The class is made directly; the registry's general path stays for its message when none is found.
  if (TClass deserializer = VnFindDeserializerClassEx(Format(), AType))
    return CreateChildDeserializer(deserializer, AName, AInstance, AType, AHint);
  return AdoptChild(VnCreateDeserializerEx(Format(), AInstance, AType), AName, AType, AHint);
}

TVnDeserializer* TVnDeserializer::CreateChildDeserializer(std::u16string_view AName, const TValue& AValue,
                                                          const SerializerHint* AHint) {
  ReleaseChild();
  return AdoptChild(VnCreateDeserializer(Format(), AValue), AName, VnTypeInfo(AValue), AHint);
}

TVnDeserializer* TVnDeserializer::CreateChildDeserializer(TClass AClass, std::u16string_view AName, void* AInstance,
                                                          const TVnTypeInfo* AType, const SerializerHint* AHint) {
  ReleaseChild();
  IPtr<IVnDeserializer> ref;
  TVnDeserializer* child = nullptr;
  if (FSpare && FSpare->ClassType() == AClass) {
    // The nested values of a read come in runs of one class: the last one's deserializer serves.
    child = FSpare;
    ref = std::move(FSpareRef);
    FSpare = nullptr;
  } else {
    std::unique_ptr<TObject> object(vn::CreateInstance(AClass));
    child = CastObject<TVnDeserializer>(object.get());
    if (!child) VnAssert(false, vn::Format(cVnNotASerializerClass, {ClassNameOf(AClass)}));
    object.release();
    ref = IPtr<IVnDeserializer>(static_cast<IVnDeserializer*>(child));
  }
  child->Create(AInstance, AType ? AType->Handle() : nullptr);
  return AdoptChild(std::move(ref), AName, AType, AHint);
}

void TVnDeserializer::DeserializeStartType() {
  if (FCHelper) FCHelper->DeserializeStartType(this);
  if (FIHelper) FIHelper->BeforeDeserialize(this);
  FStarted = true;
  if (FIsArray) {
    if (!FParentDeserializer) VnAssert(false, cVnParentIsArray);
    if (!FParentDeserializer->FMemberTypeInfo) VnAssert(false, cVnParentMemberTypeUnset);
    FArrIdx = -1;
    FMemberTypeInfo = FInstanceTypeInfo->StoredElementType();
  }
}

bool TVnDeserializer::IsArraySerializer(TVnTypeKind* AKind) const {
  if (!FParentDeserializer || !FIsArray) return false;
  if (!FMemberTypeInfo) VnAssert(false, cVnArrayMemberTypeUnset);
  if (AKind) *AKind = FMemberTypeInfo->Kind();
  return true;
}

// An array of objects read again over a longer one keeps the objects beyond its new length: they
// belong to the graph, and dropping their slots would lose them unfreed.
bool TVnDeserializer::HoldsObjectsFrom(Int64 AIndex) const {
  const TTypeInfo* arrayType = FInstanceTypeInfo->Handle();
  if (FInstanceTypeInfo->StoredElementType()->Handle()->Kind != tkClass) return false;
  const Int64 size = DynArraySize(FInstancePtr, arrayType);
  for (Int64 i = AIndex; i < size; ++i)
    if (*static_cast<TObject* const*>(arrayType->Ops->Element(FInstancePtr, static_cast<size_t>(i)))) return true;
  return false;
}

void* TVnDeserializer::InitializeArrayElement(std::u16string_view, std::u16string_view AName) {
  if (!IsArraySerializer()) return nullptr;
  ReleaseChild();
  const TTypeInfo* arrayType = FInstanceTypeInfo->Handle();
  const TVnTypeInfo* element = FInstanceTypeInfo->StoredElementType();
  ++FArrIdx;
  // An array of no platform type stores Variants: an object named as its element would have
  // nothing to own it.
  if (element != FInstanceTypeInfo->ElementType() && FInstanceTypeInfo->ElementType()->GetKind() == tkClass)
    throw EVnSerializeException(cVnBoxedObjectUnowned, {GetPath()});
  FMemberField = nullptr;
  FMemberProp = nullptr;
  FMemberTypeInfo = element;
  if (arrayType->Kind == tkDynArray) {
    if (!HoldsObjectsFrom(FArrIdx + 1)) DynArraySetLength(FInstancePtr, arrayType, FArrIdx + 1);
  } else if (FArrIdx >= DynArraySize(FInstancePtr, arrayType)) {
    throw EVnSerializeException(cVnArrayFull, {GetPath(), IntToStr(static_cast<Int64>(FArrIdx))});
  }
  void* item = arrayType->Ops->Element(FInstancePtr, static_cast<size_t>(FArrIdx));
  switch (element->Handle()->Kind) {
    case tkArray:
    case tkRecord:
    case tkDynArray:
    case tkMRecord:
      // Filled where it stands by its child: a copy of it would only be thrown away.
      FMemberValue = TValue();
      CreateChildDeserializerIfNeeded(AName);
      return item;
    default:
      FMemberValue = TValue::Make(item, element->Handle());
      CreateChildDeserializerIfNeeded(AName);
      return FMemberValue.GetReferenceToRawData();
  }
}

UnicodeString TVnDeserializer::GetPath() const {
  UnicodeString path;
  for (const TVnDeserializer* d = this; d; d = d->FParentDeserializer) {
    UnicodeString step;
    if (d->FInstanceTypeInfo && IsArrayKind(d->FInstanceTypeInfo->Kind()) && d->FParentDeserializer)
      step = u"[" + IntToStr(static_cast<Int64>(d->FArrIdx)) + u"]";
    else if (d->FMemberTypeInfo || d == this)
      step = d->FMemberName;
    if (step.empty()) continue;
    if (!path.empty() && path.front() != u'[') step += u'.';
    path = step + path;
  }
  return path;
}

// ---- values ----

void TVnDeserializer::StoreMemberValue() {
  if (IsArraySerializer()) {
    const TTypeInfo* element = FMemberTypeInfo->Handle();
    void* item = FInstanceTypeInfo->Handle()->Ops->Element(FInstancePtr, static_cast<size_t>(FArrIdx));
    if (FMemberValue.TypeInfo() == element) {
      element->Ops->Assign(item, FMemberValue.GetReferenceToRawData());
    } else {
      const TValue value = ConvertTo(TValue(FMemberValue), element);
      element->Ops->Assign(item, value.GetReferenceToRawData());
    }
  } else if (FMemberField) {
    FMemberField->SetValue(FInstancePtr, FMemberValue);
  } else if (FMemberProp) {
    FMemberProp->SetValue(FInstancePtr, FMemberValue);
  }
}

void TVnDeserializer::DeserializeValue(std::u16string_view AURI, std::u16string_view AName, std::u16string_view AValue,
                                       std::u16string_view ADataType) {
  if (FCHelper || FIHelper) {
    bool handled = false;
    const UnicodeString uri(AURI), name(AName), value(AValue), dataType(ADataType);
    if (FCHelper) FCHelper->DeserializeValue(this, uri, name, value, dataType, handled);
    if (FIHelper) FIHelper->DeserializeValue(this, uri, name, value, dataType, handled);
    if (handled) return;
  }
  // Text standing where the array's elements should be (a simple xsi:type on an array member)
  // belongs to no element.
  if (FArrIdx < 0 && IsArraySerializer())
    throw EVnSerializeException(cVnArrayExpected, {FParentDeserializer->GetPath(), UnicodeString(AValue)});
  try {
    if (!FMemberTypeInfo) {
      const TVnTypeKind kind = FInstanceTypeInfo ? FInstanceTypeInfo->Kind() : vtkUnknown;
      if (FInstancePtr && (IsArrayKind(kind) || kind == vtkRecord || kind == vtkClass) && AURI.empty() && AName.empty()) {
        VnDeserializeEx(Format(), FInstancePtr, FInstanceTypeInfo, UnicodeToUtf8(AValue));
      }
      return;
    }
    // A field or an array element of a common simple type is written where it stands.
    void* direct = IsArraySerializer() ? FInstanceTypeInfo->Handle()->Ops->Element(FInstancePtr, static_cast<size_t>(FArrIdx))
                   : FMemberField && FInstancePtr ? FMemberField->GetAddress(FInstancePtr)
                                                  : nullptr;
    if (direct && StoreDirect(*this, direct, FMemberTypeInfo, AValue)) return;
    const TTypeInfo* type = FMemberTypeInfo->Handle();
    switch (type->Kind) {
      case tkInteger:
        FMemberValue = ConvertTo(TValue::From(ValueToInt64(AValue)), type);
        break;
      case tkInt64:
        FMemberValue = type->IsUnsigned ? ConvertTo(TValue::From(ValueToStr(AValue)), type)
                                        : TValue::From(ValueToInt64(AValue));
        break;
      case tkFloat: {
        const TVnTypeKind kind = FMemberTypeInfo->Kind();
        const Extended number = kind == vtkDate       ? ValueToDate(AValue)
                                : kind == vtkTime     ? ValueToTime(AValue)
                                : kind == vtkDateTime ? ValueToDateTime(AValue)
                                                      : ValueToFloat(AValue);
        FMemberValue = ConvertTo(TValue::From(number), type);
        break;
      }
      case tkChar:
      case tkWChar: {
        const UnicodeString text = ValueToStr(AValue);
        FMemberValue = ConvertTo(TValue::From(text.empty() ? char16_t(0) : text[0]), type);
        break;
      }
      case tkString:
      case tkLString:
      case tkWString:
      case tkUString:
        FMemberValue = ConvertTo(TValue::From(ValueToStr(AValue)), type);
        break;
      case tkVariant:
        FMemberValue = TValue::From(ValueToVar(AValue, ADataType));
        break;
      case tkEnumeration: {
        if (FMemberTypeInfo->Kind() == vtkBoolean) {
          FMemberValue = ConvertTo(TValue::From(ValueToBool(AValue)), type);
          break;
        }
        const UnicodeString text = ValueToStr(AValue);
        const Int64 ordinal = VnEnumOrdinal(type, text, VnEnumPrefix(type));
        if (ordinal < 0) throw EVnSerializeException(cVnEnumValueUnknown + text);
        FMemberValue = TValue::FromOrdinal(type, ordinal);
        break;
      }
      case tkSet: {
        const UnicodeString text = ValueToStr(AValue);
        UInt64 bits = 0;
        if (!VnSetBits(type, text, VnEnumPrefix(type), bits)) throw EVnSerializeException(cVnEnumValueUnknown + text);
        TValue value = TValue::Make(nullptr, type);
        std::memcpy(value.GetReferenceToRawData(), &bits, type->Ops->Size < sizeof bits ? type->Ops->Size : sizeof bits);
        FMemberValue = std::move(value);
        break;
      }
      case tkClass:
        if (AValue.empty()) {
          FMemberValue = TValue::FromObject(nullptr, type);
          break;
        }
        [[fallthrough]];
      default:
        throw Exception(cVnValueNotSupported, {UnicodeString(AValue), detail::TypeKindName(type->Kind)});
    }
    StoreMemberValue();
  } catch (const Exception& e) {
    // The cause's text goes after the formatted part, so a % in it is never read as a format.
    throw Exception(vn::Format(cVnFailedToSetValue, {UnicodeString(AValue)}) + e.Message());
  }
}

void TVnDeserializer::DeserializeEndType() {
  if (FCHelper) FCHelper->DeserializeEndType(this);
  if (FIHelper) FIHelper->AfterDeserialize(this);
  FStarted = false;
  TVnDeserializer* parent = FParentDeserializer;
  if (!parent || parent->IsArraySerializer() || !parent->FMemberTypeInfo) return;
  switch (parent->FMemberTypeInfo->GetKind()) {
    case tkArray:
    case tkRecord:
    case tkDynArray:
    case tkMRecord:
      parent->StoreMemberValue();
      // The copy went back into the parent; if it holds new objects, a failure must undo it.
      if (CreatedCount() > FCreatedAtStart &&
          ((parent->FInstanceTypeInfo && parent->FInstanceTypeInfo->GetKind() == tkClass) || !parent->FParentDeserializer))
        RecordLink(parent->FInstancePtr, parent->FMemberField, parent->FMemberProp);
      break;
    default:
      break;
  }
}

}  // namespace vn
