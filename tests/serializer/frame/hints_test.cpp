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
  EXPECT_TRUE(GetSerializerHint(type, shoDoNotSerialize, hint));
  // The member's hints are not the type's; a miss clears the out parameter.
  EXPECT_EQ((std::tuple{GetSerializerHint(type, shoName, hint), hint}), std::tuple(false, nullptr));
  // The array form passes over attributes of other classes.
  TCustomAttribute other;
  SerializerHint zone(shoTimezoneFormat, u"tzfUTC");
  TCustomAttribute* attributes[] = {&other, &zone};
  ASSERT_TRUE(GetSerializerHint(attributes, shoTimezoneFormat, hint));
  EXPECT_EQ(hint, &zone);
}

TEST(SerializerHints, HelperClassesByQualifiedName) {
  EXPECT_EQ(std::tuple(SerializerHint(shoSerializerHelper, u"uFrame.TAnimalWriter").GetSerializerHelperClass(),
                       SerializerHint(shoDeserializerHelper, u"uFrame.TAnimalReader").GetDeserializerHelperClass()),
            std::tuple(TAnimalWriter::StaticClass(), TAnimalReader::StaticClass()));
  // A class of the wrong base is bad input (Exception); an unknown name a broken hint (assertion).
  EXPECT_EQ(MessageOf([] { SerializerHint(shoDeserializerHelper, u"uFrame.TAnimalWriter").GetDeserializerHelperClass(); }),
            cVnNotADeserializerHelper);
  EXPECT_EQ(MessageOf([] { SerializerHint(shoSerializerHelper, u"uFrame.TAnimalReader").GetSerializerHelperClass(); }),
            cVnNotASerializerHelper);
  for (const char16_t* name : {u"uFrame.TNoSuchHelper", u"", u"uFrame.THinted"})
    EXPECT_THROW(SerializerHint(shoSerializerHelper, name).GetSerializerHelperClass(), EAssertionFailed);
  EXPECT_EQ(MessageOf([] { SerializerHint(shoSerializerHelper, u"uFrame.THinted").GetSerializerHelperClass(); }),
            cVnHelperClassNotRegistered);
}

}  // namespace
