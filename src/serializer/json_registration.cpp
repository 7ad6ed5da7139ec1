// The JSON notation's serializer pairs, registered at the serializer's start-up.
#include "serializer/serializer_startup.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/string_list.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_serializer.h"
#include "vnxml/json_serializer_reader.h"

namespace vn::detail {

void RegisterJSONSerializers() {
  VnRegisterSerializer(dsfJSON, static_cast<const TTypeInfo*>(nullptr), TVnJSONSerializer::StaticClass(),
                       TVnJSONDeserializer::StaticClass());
  VnRegisterSerializer(dsfJSON, TStrings::StaticClass(), TVnJSONStringsSerializer::StaticClass(),
                       TVnJSONStringsDeserializer::StaticClass());
  VnRegisterSerializer(dsfJSON, TComponent::StaticClass(), TVnJSONComponentSerializer::StaticClass(),
                       TVnJSONComponentDeserializer::StaticClass());
  VnRegisterSerializer(dsfJSON, TStream::StaticClass(), TVnJSONStreamSerializer::StaticClass(), nullptr);
  for (TClass stream : {TMemoryStream::StaticClass(), TVnMemoryStream::StaticClass()})
    VnRegisterSerializer(dsfJSON, stream, TVnJSONStreamSerializer::StaticClass(),
                         TVnJSONStreamDeserializer::StaticClass());
  VnRegisterSerializer(dsfJSON, TVnJSONDocument::StaticClass(), TVnJSONDocSerializer::StaticClass(),
                       TVnJSONDocDeserializer::StaticClass());
  VnRegisterSerializer(dsfJSON, TypeInfoOf<TValue>(), TVnJSONSerializer::StaticClass(),
                       TVnJSONValueDeserializer::StaticClass());
}

}  // namespace vn::detail
