// TVnJSONObject and TVnJSONArray: members in order, values in order.
#include "vnxml/common/sysutils.h"
#include "vnxml/common/var_utils.h"
#include "vnxml/common/vn_types.h"
#include "vnxml/common/variant_array.h"
#include "vnxml/json_document.h"
#include "vnxml/json_values.h"
#include "vnxml/xml_values.h"
#include "json/doc_messages.h"

namespace vn {

namespace {
template <class I, class T>
IPtr<I> AsIntf(T* ANode) {
  return ANode ? IPtr<I>(static_cast<I*>(ANode)) : IPtr<I>();
}

TVnJSONBase* NodeOf(IInterface* AIntf) { return dynamic_cast<TVnJSONBase*>(VnImplementor(AIntf)); }

// AddMember(name, kind, text) and AddValue(kind, text): the text goes in as a string variant and
// the kind is set; only a simple value can take it.
void StoreText(TVnJSONBase* ANode, TVnJSONDataType AKind, std::u16string_view AText) {
  auto* simple = dynamic_cast<TVnJSONSimpleType*>(ANode);
  if (!simple) throw EInvalidCast(UnicodeString(detail::cJSONInvalidCast));
  simple->StoreVariant(Variant(AText), AKind);
}
}  // namespace

// Kept apart from the allocation functions: seen together, the compiler takes the node's own
// delete for a mismatch with the global new inside them.
TVnJSONBase* TVnJSONBase::CreateValueNode(TVnJSONDataType AKind) {
  if (AKind == jdtObject) return new TVnJSONObject(this);
  if (AKind == jdtArray) return new TVnJSONArray(this);
  return new TVnJSONSimpleType(this);
}

// ---- TVnJSONObject ----

TVnJSONObject::TVnJSONObject(TVnJSONBase* AOwner) : TVnJSONBase(AOwner, DeferInsert{}) {
  FJSONType = jdtObject;
  FNodeClass = detail::JSONNodeClass::Object;
  Attach();
}

void TVnJSONObject::InsertObject(TVnJSONBase* AChild) {
  VnAssert(AChild->NodeClass() == detail::JSONNodeClass::Member, detail::cJSONMembersOnly);
  TVnJSONBase::InsertObject(AChild);
}

void TVnJSONObject::RemoveObject(TVnJSONBase* AChild) {
  TVnJSONBase::RemoveObject(AChild);
  if (FLastMember == AChild) FLastMember = nullptr;
}

UnicodeString TVnJSONObject::GetName() { return u"<object>"; }

TVnJSONMember* TVnJSONObject::AddMember(std::u16string_view AName) {
  auto* member = new TVnJSONMember(this);
  member->SetName(AName);
  FLastMember = member;
  return member;
}

TVnJSONMember* TVnJSONObject::AddMember(std::u16string_view AName, TVnJSONDataType AKind) {
  TVnJSONMember* member = AddMember(AName);
  member->CreateValue(AKind);
  return member;
}

TVnJSONMember* TVnJSONObject::AddMember(std::u16string_view AName, TVnJSONDataType AKind, std::u16string_view AText) {
  TVnJSONMember* member = AddMember(AName, AKind);
  StoreText(member->GetValueObj(), AKind, AText);
  return member;
}

TVnJSONMember* TVnJSONObject::AddMember(std::u16string_view AName, const Variant& AValue) {
  switch (TVnTypes::VarMainTypeKind(AValue)) {
    // 64 bits wide, so that a large integer keeps its digits (the same text for 32-bit values)
    case vmkInteger: return AddMember(AName, jdtNumber, VnInt64ToXML(VnVarToInt64(AValue)));
    case vmkFloat: return AddMember(AName, jdtNumber, VnDoubleToXML(VnVarToDouble(AValue)));
    case vmkString: return AddMember(AName, jdtString, VarToUStr(AValue));
    case vmkBoolean: return AddMember(AName, jdtBoolean, VnBoolToXML(VnVarToBool(AValue)));
    case vmkDateTime: return AddMember(AName, jdtString, VnDateTimeToXML(VarToDateTime(AValue), tzfNone));
    case vmkArray: {
      TVnJSONMember* member = AddMember(AName, jdtArray);
      TVnJSONBase* array = member->GetValueObj();
      int32_t low = VarArrayLowBound(AValue, 1), high = VarArrayHighBound(AValue, 1);
      for (int32_t i = low; i <= high; ++i) array->AddValue(VarArrayGet(AValue, {i}));
      return member;
    }
    default: return AddMember(AName, jdtNull, VarToUStr(AValue));
  }
}

void TVnJSONObject::DeleteMember(Integer AIndex) { CheckedChild(AIndex)->FreeObject(); }
void TVnJSONObject::RemoveMember(TVnJSONMember* AMember) { AMember->FreeObject(); }

TVnJSONMember* TVnJSONObject::FindMember(std::u16string_view AName, bool ACaseInsensitive) {
  UnicodeString name;
  for (TVnJSONBase* child : Kids()) {
    auto* member = static_cast<TVnJSONMember*>(child);  // an object holds members only
    if (member->RawName().Equals(AName, ACaseInsensitive)) return member;
  }
  return nullptr;
}

TVnJSONMember* TVnJSONObject::GetMember(std::u16string_view AName, TVnJDOCSelectOptions AOptions) {
  if (TVnJSONMember* m = FindMember(AName, AOptions.Contains(jsoCaseInsensitive))) return m;
  if (AOptions.Contains(jsoCreate)) return AddMember(AName);
  if (AOptions.Contains(jsoRaise))
    throw EVnJSONException(cVnJSONErrNoMember, _cVnJSONNoMember, {AName});
  return nullptr;
}

TVnJSONBase* TVnJSONObject::Item(Integer AIndex) { return CheckedChild(AIndex); }

UnicodeString TVnJSONObject::GetPath() {
  UnicodeString path;
  // Names from this object up to the root, then reversed into "#/a/b".
  std::vector<UnicodeString> names;
  for (TVnJSONBase* n = this; n; n = n->GetOwner())
    if (auto* m = dynamic_cast<TVnJSONMember*>(n)) names.push_back(m->GetName());
  path = u"#/";
  for (size_t i = names.size(); i-- > 0;) {
    path += names[i];
    if (i) path += u"/";
  }
  return path;
}

IPtr<IVnJSONMember> TVnJSONObject::AddMemberIntf1(std::u16string_view AName) {
  return AsIntf<IVnJSONMember>(AddMember(AName));
}
IPtr<IVnJSONMember> TVnJSONObject::AddMemberIntf2(std::u16string_view AName, TVnJSONDataType AKind) {
  return AsIntf<IVnJSONMember>(AddMember(AName, AKind));
}
IPtr<IVnJSONMember> TVnJSONObject::AddMemberIntf3(std::u16string_view AName, TVnJSONDataType AKind,
                                                  std::u16string_view AText) {
  return AsIntf<IVnJSONMember>(AddMember(AName, AKind, AText));
}
IPtr<IVnJSONMember> TVnJSONObject::AddMemberIntf4(std::u16string_view AName, const Variant& AValue) {
  return AsIntf<IVnJSONMember>(AddMember(AName, AValue));
}
void TVnJSONObject::RemoveMemberIntf(const IPtr<IVnJSONMember>& AMember) {
  if (auto* m = dynamic_cast<TVnJSONMember*>(NodeOf(AMember.Get()))) RemoveMember(m);
}

// ---- TVnJSONArray ----

TVnJSONArray::TVnJSONArray(TVnJSONBase* AOwner) : TVnJSONBase(AOwner, DeferInsert{}) {
  FJSONType = jdtArray;
  FDestroyChilds = AOwner != nullptr;
  FNodeClass = detail::JSONNodeClass::Array;
  Attach();
}

TVnJSONBase* TVnJSONArray::AddValue(TVnJSONDataType AKind) {
  TVnJSONBase* node = CreateValueNode(AKind);
  node->FJSONType = AKind;
  return node;
}

TVnJSONBase* TVnJSONArray::AddValue(TVnJSONDataType AKind, std::u16string_view AText) {
  TVnJSONBase* node = AddValue(AKind);
  StoreText(node, AKind, AText);
  return node;
}

TVnJSONBase* TVnJSONArray::AddValue(const Variant& AValue) {
  TVnJSONDataType kind = VnVarTypeToJSONType(AValue);
  TVnJSONBase* node = AddValue(kind);
  auto* simple = dynamic_cast<TVnJSONSimpleType*>(node);
  if (!simple) throw EInvalidCast(UnicodeString(detail::cJSONInvalidCast));
  simple->StoreVariant(AValue, kind);
  return node;
}

void TVnJSONArray::RemoveValue(TVnJSONBase* AValue) { AValue->FreeObject(); }
void TVnJSONArray::DeleteValue(Integer AIndex) { CheckedChild(AIndex)->FreeObject(); }
TVnJSONBase* TVnJSONArray::Item(Integer AIndex) { return CheckedChild(AIndex); }

void TVnJSONArray::Exchange(Integer AIndex1, Integer AIndex2) {
  TVnJSONBase* a = CheckedChild(AIndex1);
  TVnJSONBase* b = CheckedChild(AIndex2);
  TVnJSONBase** items = Kids().begin();
  items[AIndex1] = b;
  items[AIndex2] = a;
}

void TVnJSONArray::AddReference(TVnJSONBase* ANode) { FObjects.push_back(ANode); }

IPtr<IVnJSONBase> TVnJSONArray::AddValueIntf1(TVnJSONDataType AKind) { return AsIntf<IVnJSONBase>(AddValue(AKind)); }
IPtr<IVnJSONBase> TVnJSONArray::AddValueIntf2(TVnJSONDataType AKind, std::u16string_view AText) {
  return AsIntf<IVnJSONBase>(AddValue(AKind, AText));
}
IPtr<IVnJSONBase> TVnJSONArray::AddValueIntf3(const Variant& AValue) { return AsIntf<IVnJSONBase>(AddValue(AValue)); }
void TVnJSONArray::RemoveValueIntf(const IPtr<IVnJSONBase>& AValue) {
  if (TVnJSONBase* n = NodeOf(AValue.Get())) RemoveValue(n);
}

}  // namespace vn
