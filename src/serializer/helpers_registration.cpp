// The start-up registration of the container helpers and of the names their forms use.
#include "serializer/serializer_startup.h"
#include "vnxml/common/classes.h"
#include "vnxml/serializer_containers.h"

namespace vn::detail {

void RegisterContainerHelpers() {
  TVnTypes::RegisterTypeAlias(TypeInfoOf<TSchemaPair>(), {u"KeyValuePair"});
  TVnTypes::RegisterTypeAlias(TypeInfoOf<TSchemaDictionary>(), {u"ArrayOfKeysAndValues"});
  VnRegisterSerializerHelper(TVnCustomSimpleType::StaticClass(), TVnSimpleTypeSerializerHelper::StaticClass(),
                             TVnSimpleTypeDeserializerHelper::StaticClass());
  VnRegisterSerializerHelper(TList::StaticClass(), TVnListSerializerHelper::StaticClass(),
                             TVnListDeserializerHelper::StaticClass());
  VnRegisterSerializerHelper(TObjectList::StaticClass(), TVnObjectListSerializerHelper::StaticClass(),
                             TVnObjectListDeserializerHelper::StaticClass());
  VnRegisterSerializerHelper(u"TObjectList<T>", TVnObjectListSerializerHelper::StaticClass(),
                             TVnObjectListDeserializerHelper::StaticClass());
  VnRegisterSerializerHelper(u"TObjectDictionary<T,T>", TVnDictionarySerializerHelper::StaticClass(), nullptr);
}

}  // namespace vn::detail
