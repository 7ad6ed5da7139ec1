// Lists of owned objects: each element tagged by the declared element type and typed by its
// run-time class, so a descendant comes back as itself.
#include "serializer/helpers_common.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/serializer_builder.h"
#include "vnxml/serializer_containers.h"
#include "vnxml/serializer_walker.h"

namespace vn {

namespace {

/// The count and the elements of the platform list directly, of a generic one by reflection.
class ObjectListItems {
 public:
  explicit ObjectListItems(TObject* AList) : FPlain(CastObject<TObjectList>(AList)), FList(AList) {
    if (FPlain) return;
    FCount = detail::ContainerProperty(AList, u"Count")->GetValue(AList).AsInteger();
    FItems = detail::ContainerIndexed(AList, u"Items");
  }
  Integer Count() const { return FPlain ? FPlain->GetCount() : FCount; }
  TObject* Item(Integer AIndex) const {
    return FPlain ? FPlain->GetItem(AIndex) : FItems->GetValue(FList, TValue::From(AIndex)).AsObject();
  }

 private:
  TObjectList* FPlain;
  TObject* FList;
  Integer FCount = 0;
  const TRttiIndexedProperty* FItems = nullptr;
};

}  // namespace

void TVnObjectListSerializerHelper::Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName,
                                              const TVnTypeInfo* AType, const TValue& AValue, bool& AHandled) {
  TObject* list = AValue.AsObject();
  if (!list) return;  // the walk writes it as any nil object
  auto* serializer = static_cast<TVnSerializer*>(ASerializer);
  const UnicodeString name = AName.empty() ? UnicodeString(u"Items") : AName;
  const UnicodeString elementName = detail::ContainerElementName(TVnTypes::GetTypeInfo(list->ClassType())->Name());
  const TVnTypeInfo* arrayType = TVnTypes::GetTypeInfo(AType->VirtualType(sdtArray));
  const TVnTypeInfo* elementType = TVnTypes::GetTypeInfo(elementName, tntSchemaName, false, mtkUnknown);
  const ObjectListItems items(list);

  serializer->SerializeName(name, smtProperty, vtkClass, vtkDynArray);
  TVnSerializer* child = nullptr;
  IPtr<IVnSerializer> hold = serializer->CreateChildSerializer(list, AType, child);
  child->SerializeStartType(name, arrayType, -1);
  for (Integer i = 0; i < items.Count(); ++i) {
    TObject* element = items.Item(i);
    if (!element) {
      child->SerializeValue(elementName, elementType, TValue(), i, {});
      continue;
    }
    const TVnTypeInfo* type = TVnTypes::GetTypeInfo(element->ClassType());
    child->SerializeChild(elementName, type->SchemaName(), element, type, i);
  }
  child->SerializeEndType(name, arrayType, -1);
  AHandled = true;
}

TVnCanDeserialize TVnObjectListDeserializerHelper::CanDeserialize(TVnCustomSerializer* ADeserializer,
                                                                  UnicodeString&, UnicodeString& AName,
                                                                  UnicodeString& ADataType) {
  auto* deserializer = static_cast<TVnDeserializer*>(ADeserializer);
  auto* list = static_cast<TObject*>(deserializer->GetInstancePtr());
  if (!list || !detail::ContainerProperty(list, u"OwnsObjects")->GetValue(list).AsBoolean()) return desNo;
  const TRttiMethod* add = detail::ContainerMethod(deserializer->GetInstanceTypeInfo(), u"Add");
  UnicodeString named;
  if (deserializer->ReadClassName(named) && named.empty()) {
    // A nil element keeps its place.
    add->Invoke(list, {TValue::FromObject(nullptr)});
    return desIgnore;
  }
  const TVnTypeInfo* type = TVnTypes::GetTypeInfo(ADataType, tntQualifiedName, false, mtkUnknown);
  if (!type || type->Kind() != vtkClass) return desNo;
  std::unique_ptr<TObject> object;
  try {
    object.reset(CreateInstance(type->Handle()->ClassType));
    add->Invoke(list, {TValue::FromObject(object.get())});
  } catch (const Exception&) {
    return desNo;  // a class that cannot be made or that the list refuses: the element is passed over
  }
  TObject* added = object.release();  // the list owns it now
  deserializer->CreateChildDeserializer(AName, added, TVnTypes::GetTypeInfo(added->ClassType()), nullptr);
  return desYes;
}

}  // namespace vn
