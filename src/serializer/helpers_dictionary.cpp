// Dictionaries: an array of key and value pairs, written under the pair record's own form.
#include "serializer/helpers_common.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/serializer_containers.h"
#include "vnxml/serializer_walker.h"

namespace vn {

namespace {

/// The elements of a dynamic array as values; a TValue element stands for itself.
std::vector<TValue> ElementsOf(const TValue& AArray) {
  std::vector<TValue> elements;
  const TTypeInfo* type = AArray.TypeInfo();
  if (!type || type->Kind != tkDynArray || !type->ElementType) return elements;
  void* data = const_cast<void*>(AArray.GetReferenceToRawData());
  const size_t count = type->Ops->Length(data);
  elements.reserve(count);
  const bool boxed = type->ElementType == TypeInfoOf<TValue>();
  for (size_t i = 0; i < count; ++i) {
    void* item = type->Ops->Element(data, i);
    elements.push_back(boxed ? *static_cast<const TValue*>(item) : TValue::Make(item, type->ElementType));
  }
  return elements;
}

}  // namespace

void TVnDictionarySerializerHelper::Serialize(TVnCustomSerializer* ASerializer, const UnicodeString& AName,
                                              const TVnTypeInfo*, const TValue& AValue, bool& AHandled) {
  TObject* dictionary = AValue.AsObject();
  if (!dictionary) return;  // the walk writes it as any nil object
  auto* serializer = static_cast<TVnSerializer*>(ASerializer);
  const UnicodeString name = AName.empty() ? UnicodeString(u"Items") : AName;
  const TVnTypeInfo* arrayType = TVnTypes::GetTypeInfo<TSchemaDictionary>();
  const TVnTypeInfo* pairType = TVnTypes::GetTypeInfo<TSchemaPair>();
  const std::vector<TValue> keys = ElementsOf(detail::ContainerProperty(dictionary, u"Keys")->GetValue(dictionary));
  const std::vector<TValue> values =
      ElementsOf(detail::ContainerProperty(dictionary, u"Values")->GetValue(dictionary));

  serializer->SerializeName(name, smtProperty, vtkClass, vtkDynArray);
  TVnSerializer* child = nullptr;
  IPtr<IVnSerializer> hold =
      serializer->CreateChildSerializer(dictionary, TVnTypes::GetTypeInfo(dictionary->ClassType()), child);
  child->SerializeStartType(name, arrayType, -1);
  for (size_t i = 0; i < keys.size() && i < values.size(); ++i) {
    TSchemaPair pair{keys[i], values[i]};
    child->SerializeChild(u"item", u"KeyAndValue", &pair, pairType, static_cast<Integer>(i));
  }
  child->SerializeEndType(name, arrayType, -1);
  AHandled = true;
}

}  // namespace vn
