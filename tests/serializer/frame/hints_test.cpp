// Hints on types and members, and the helper classes a hint names.
#include <gtest/gtest.h>

#include "frame_domain.h"

namespace {

using namespace vn;
using namespace framedomain;

TEST(SerializerHints, FirstHintOfAnOptionInDeclaredOrder) {
  TRttiType* type = TRttiContext::GetType(TypeInfoOf<THinted>());
  SerializerHint* hint = nullptr;
  ASSERT_TRUE(GetSerializerHint(type->GetField(u"named"), shoName, hint));
  EXPECT_EQ(hint->GetValue(), u"first");
  ASSERT_TRUE(GetSerializerHint(type, shoDoNotSerialize, hint));
  EXPECT_EQ(hint->GetValue(), u"");
  // The member's hints are not the type's, and a missing option clears the out parameter.
  EXPECT_FALSE(GetSerializerHint(type, shoName, hint));
  EXPECT_EQ(hint, nullptr);
  EXPECT_FALSE(GetSerializerHint(type->GetField(u"Plain"), shoName, hint));
  EXPECT_FALSE(GetSerializerHint(nullptr, shoName, hint));
  // The array form sees other attributes and skips them.
  TCustomAttribute other;
  SerializerHint timezone(shoTimezoneFormat, u"tzfUTC");
  TCustomAttribute* attributes[] = {&other, &timezone};
  ASSERT_TRUE(GetSerializerHint(attributes, shoTimezoneFormat, hint));
  EXPECT_EQ(hint, &timezone);
}

TEST(SerializerHints, HelperClassesByQualifiedName) {
  TRttiField* field = TRttiContext::GetType(TypeInfoOf<THinted>())->GetField(u"Named");
  SerializerHint* hint = nullptr;
  ASSERT_TRUE(GetSerializerHint(field, shoSerializerHelper, hint));
  EXPECT_EQ(hint->GetSerializerHelperClass(), TAnimalWriter::StaticClass());
  EXPECT_EQ(SerializerHint(shoDeserializerHelper, u"uFrame.TAnimalReader").GetDeserializerHelperClass(),
            TAnimalReader::StaticClass());

  ASSERT_TRUE(GetSerializerHint(field, shoDeserializerHelper, hint));
  try {
    hint->GetDeserializerHelperClass();
    ADD_FAILURE() << "a writer was taken as a reader";
  } catch (const EAssertionFailed&) {
    ADD_FAILURE() << "a wrong base is no programming fault";
  } catch (const Exception& e) {
    EXPECT_EQ(e.Message(), cVnNotADeserializerHelper);
  }
  try {
    SerializerHint(shoSerializerHelper, u"uFrame.TAnimalReader").GetSerializerHelperClass();
    ADD_FAILURE();
  } catch (const Exception& e) {
    EXPECT_EQ(e.Message(), cVnNotASerializerHelper);
  }
  for (const char16_t* name : {u"uFrame.TNoSuchHelper", u"", u"uFrame.THinted"}) {
    try {
      SerializerHint(shoSerializerHelper, name).GetSerializerHelperClass();
      ADD_FAILURE() << "no fault for an unregistered helper";
    } catch (const EAssertionFailed& e) {
      EXPECT_EQ(e.Message(), cVnHelperClassNotRegistered);
    }
  }
}

}  // namespace
