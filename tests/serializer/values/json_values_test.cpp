// Reflected values in JSON: what differs from XML, the complex kinds, and JSON-schema names.
#include <gtest/gtest.h>

#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/utf.h"
#include "vnxml/json_reflected_values.h"
#include "vnxml/serializer.h"

namespace jsonvalues {

using namespace vn;

enum TTone : uint8_t { tnSoft, tnLoud };
VN_REGISTER_TYPE(TTone, u"uJSONValues") { b.Values({u"tnSoft", u"tnLoud"}); }
struct TSpot { Integer X = 0; };
VN_REGISTER_TYPE(TSpot, u"uJSONValues") { b.Public(u"X", &TSpot::X); }

namespace {

using test::MessageOf;

TEST(JSONValues, TextsThatDifferFromXML) {
  EXPECT_EQ(VnValToJSON(TValue::From<bool>(true)), u"true");
  // Without decoding the escapes stay.
  EXPECT_EQ(VnJSONToVal(u"a\\nb", TypeInfoOf<UnicodeString>(), false).AsString(), u"a\\nb");
  EXPECT_EQ(std::tuple(VnJSONToVal(u"\\u00e9", TypeInfoOf<char>(), true).AsOrdinal(),
                      VnJSONToVal(u"\\u20ac", TypeInfoOf<char>(), true).AsOrdinal()),
            std::tuple(Int64(0xE9), Int64('?')));
  const TDateTime epochDay = 25569;  // 1970-01-01
  EXPECT_EQ(VnJSONToVal(u"/Date(86400000)/", u"TDate", true).AsExtended(), epochDay + 1);
}

TEST(JSONValues, EnumerationsAndComplexKinds) {
  EXPECT_EQ(std::tuple(VnJSONToVal(u"tnLoud", TypeInfoOf<TTone>()).AsOrdinal(),
                      VnJSONToVal(u"0", u"uJSONValues.TTone").AsOrdinal()), std::tuple(Int64(1), Int64(0)));
  for (const char16_t* bad : {u"tnQuiet", u"2"})
    EXPECT_EQ(MessageOf([&] { VnJSONToVal(bad, TypeInfoOf<TTone>()); }), Format(cVnJSONToValueFailed, {bad, u"TTone"}));
  EXPECT_EQ(MessageOf([] { VnJSONToVal(u"{}", TypeInfoOf<TSpot>()); }),
            Format(cVnJSONToValueUnsupported, {u"{}", u"TSpot"}));
  EXPECT_EQ(MessageOf([] { VnJSONToVal(u"1", u"TNoSuchType"); }),
            Format(cVnJSONToValueUnsupported, {u"1", u"TNoSuchType"}));

  // A record is serialized: a pair without a serializer says so.
  VnRegisterSerializer(dsfJSON, TypeInfoOf<TSpot>(), nullptr, nullptr);
  EXPECT_EQ(MessageOf([] { VnValToJSON(TValue::From(TSpot{})); }), Format(cVnNoSerializerForValue, {u"JSON"}));
}

TEST(JSONValues, SchemaNames) {
  // One row per branch: names looked up, names by rule, kinds by name, the default.
  const std::tuple<const char16_t*, const char16_t*, const char16_t*, TVnSchemaDataType> cases[] = {
      {u"ShortInt", u"integer", u"int32", sdtByte},        {u"Cardinal", u"integer", u"int32", sdtUnsignedInt},
      {u"Int64", u"integer", u"int64", sdtLong},           {u"UInt64", u"integer", u"int64", sdtUnsignedLong},
      {u"TDate", u"date", u"date", sdtDate},               {u"TTime", u"dateTime", u"date-time", sdtTime},
      {u"Single", u"float", u"float", sdtFloat},           {u"Currency", u"double", u"double", sdtDouble},
      {u"VnXMLString", u"xml", u"", sdtNone},              {u"AnsiChar", u"string", u"", sdtString},
      {u"Boolean", u"boolean", u"", sdtBoolean},           {u"uJSONValues.TTone", u"TTone", u"", sdtNone},
      {u"Variant", u"anyType", u"", sdtAnyType}};
  for (const auto& [type, name, format, schema] : cases) {
    SCOPED_TRACE(UnicodeToUtf8(type));
    UnicodeString actualFormat = u"stale";
    TVnSchemaDataType actualSchema = sdtArray;
    EXPECT_EQ(VnJSONType(TRttiContext::FindType(type), actualFormat, &actualSchema), name);
    EXPECT_EQ(std::tuple(actualFormat, actualSchema), std::tuple(UnicodeString(format), schema));
  }
  UnicodeString format = u"stale";
  EXPECT_EQ(VnJSONType(TVnTypes::GetTypeInfo(TypeInfoOf<IInterface>()), format), u"any");
  EXPECT_EQ(VnJSONType(static_cast<const TVnTypeInfo*>(nullptr), format), u"");
  EXPECT_EQ(format, u"");
}

}  // namespace
}  // namespace jsonvalues
