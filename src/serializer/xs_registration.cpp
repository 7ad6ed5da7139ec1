// The XS serializer pairs, registered for the nineteen XS types in both notations at start-up.
#include "serializer/serializer_startup.h"
#include "serializer/xs_table.h"
#include "vnxml/xs_serializer.h"

namespace vn::detail {

void RegisterXsSerializers() {
  for (const XsTypeOps& type : XsTypes()) {
    VnRegisterSerializer(dsfXML, type.Type, TVnXMLXsSerializer::StaticClass(),
                         TVnXMLXsDeserializer::StaticClass());
    VnRegisterSerializer(dsfJSON, type.Type, TVnJSONXsSerializer::StaticClass(),
                         TVnJSONXsDeserializer::StaticClass());
  }
}

}  // namespace vn::detail
