// A host that links the library and calls no initialiser: the first lookup runs the built-in
// registrations. Alone in its executable so that nothing else has touched the registries.
#include <gtest/gtest.h>

#include "vnxml/serializer.h"

namespace {

using namespace vn;

TEST(SerializerStartup, FirstLookupRegistersTheBuiltIns) {
  EXPECT_EQ(GetClass(u"TVnSerializableComponent"), nullptr);
  VnFindSerializerClass(dsfXML, nullptr);
  EXPECT_EQ(GetClass(u"TVnSerializableComponent"), TVnSerializableComponent::StaticClass());
  EXPECT_EQ(TVnTypes::GetTypeInfo(u"StringList", tntSchemaName, false, mtkUnknown),
            TVnTypes::GetTypeInfo(TStringList::StaticClass()));
}

}  // namespace
