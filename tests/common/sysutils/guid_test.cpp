// GUID text form: exact layout both ways and refusal of near misses.
#include <gtest/gtest.h>

#include "common/message_of.h"
#include "vnxml/common/guid.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

using namespace vn;

TEST(GUID, TextRoundTripAndNearMisses) {
  constexpr TGUID g = TGUID::Parse("{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}");
  EXPECT_EQ(GUIDToString(g), u"{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}");
  EXPECT_EQ(StringToGUID(u"{0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9}"), g);
  EXPECT_EQ(GUIDToString(TGUID{}), u"{00000000-0000-0000-0000-000000000000}");

  // Near misses are refused.
  const char16_t* bad[] = {
      u"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9",     // no braces
      u"{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F}",    // short
      u"{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8FG}",   // not hex
      u"{0A1B2C3D 4E5F-6071-8293-A4B5C6D7E8F9}",   // separator
      u"{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9",    // no closing brace
      u"",
  };
  for (const char16_t* text : bad)
    EXPECT_EQ(test::MessageOf<EConvertError>([&] { StringToGUID(text); }), Format(cRtlInvalidGUID, {text}));
}
