// XS members in both notations: each row sets one member, the text must show its bare value,
// and reading the text into a fresh object must give the same text again. Null members, empty
// elements, facets on reading, and a record type outside the nineteen.
#include <gtest/gtest.h>

#include <functional>

#include "common/message_of.h"
#include "serializer/domain_support.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/utf.h"
#include "vnxml/serializer.h"
#include "vnxml/xs_serializer.h"

namespace xsdomain {

using namespace vn;

// clang-format off
class TXsHolder : public TObject {
  VN_DECLARE_CLASS(TXsHolder, TObject)
 public:
  TXsBoolean Flag; TXsInteger<ShortInt> I8; TXsInteger<SmallInt> I16; TXsInteger<Integer> Amount;
  TXsInteger<Int64> I64; TXsInteger<Byte> U8; TXsInteger<Word> U16; TXsInteger<Cardinal> U32;
  TXsInteger<UInt64> U64; TXsRational<Single> F32; TXsRational<Double> F64; TXsRational<Extended> F80;
  TXsString Text; TXsBase64Binary B64; TXsHexBinary Hex; TXsDateTime Stamp; TXsDate Due; TXsTime Clock;
  TXsDuration Span; std::vector<TXsInteger<Integer>> Counts;
};
VN_REGISTER_TYPE(TXsHolder, u"uXsTest") {
  b VN_TEST_PUBLIC(TXsHolder, Flag, I8, I16, Amount, I64, U8, U16, U32, U64, F32, F64, F80, Text, B64, Hex, Stamp, Due,
                   Clock, Span, Counts);
}
// clang-format on

/// A record of no XS type that a host wrongly gave the XS serializers.
struct TNotXs { Integer Value = 0; };
VN_REGISTER_TYPE(TNotXs, u"uXsTest") { b.Public(u"Value", &TNotXs::Value); }
class TNotXsHolder : public TObject {
  VN_DECLARE_CLASS(TNotXsHolder, TObject)
 public:
  TNotXs Inner;
};
VN_REGISTER_TYPE(TNotXsHolder, u"uXsTest") { b.Public(u"Inner", &TNotXsHolder::Inner); }

namespace {

std::string Write(TVnDataSerializationFormatType AFormat, TXsHolder& AHolder) {
  return VnSerialize(AFormat, &AHolder);
}
void Read(TVnDataSerializationFormatType AFormat, TXsHolder& AHolder, const std::string& AText) {
  VnDeserialize(AFormat, TValue::FromObject(&AHolder), AText);
}

struct Row { const char* Name; std::function<void(TXsHolder&)> Set; const char* Xml; const char* Json; };

const Row kRows[] = {
    {"boolean", [](auto& h) { h.Flag = true; }, R"(<Flag xsi:type="xsd:boolean">true</Flag>)", R"("flag":true)"},
    {"shortint", [](auto& h) { h.I8 = -128; }, R"(<I8 xsi:type="xsd:byte">-128</I8>)", R"("i8":-128)"},
    {"smallint", [](auto& h) { h.I16 = -32768; }, R"(<I16 xsi:type="xsd:short">-32768</I16>)", R"("i16":-32768)"},
    {"integer", [](auto& h) { h.Amount = 42; }, R"(<Amount xsi:type="xsd:int">42</Amount>)", R"("amount":42)"},
    {"int64", [](auto& h) { h.I64 = INT64_MIN; }, R"(>-9223372036854775808</I64>)", R"("i64":-9223372036854775808)"},
    {"byte", [](auto& h) { h.U8 = 255; }, R"(<U8 xsi:type="xsd:unsignedByte">255</U8>)", R"("u8":255)"},
    {"word", [](auto& h) { h.U16 = 65535; }, R"(>65535</U16>)", R"("u16":65535)"},
    {"cardinal", [](auto& h) { h.U32 = UINT32_MAX; },
     R"(<U32 xsi:type="xsd:unsignedInt">4294967295</U32>)", R"("u32":4294967295)"},
    {"uint64", [](auto& h) { h.U64 = UINT64_MAX; }, R"(>18446744073709551615</U64>)", R"("u64":18446744073709551615)"},
    {"single", [](auto& h) { h.F32 = 0.5f; }, R"(<F32 xsi:type="xsd:float">0.5</F32>)", R"("f32":0.5)"},
    {"double", [](auto& h) { h.F64 = -1e-300; }, R"(>-1E-300</F64>)", R"("f64":-1E-300)"},
    {"extended", [](auto& h) { h.F80 = 2.25L; }, R"(>2.25</F80>)", R"("f80":2.25)"},
    {"string", [](auto& h) { h.Text = u"a<\"b\">"; },
     R"(<Text xsi:type="xsd:string">a&lt;&quot;b&quot;&gt;</Text>)", R"("text":"a<\"b\">")"},
    {"base64", [](auto& h) { h.B64 = RawByteString("AAH+/w=="); }, R"(>AAH+/w==</B64>)", R"("b64":"AAH+\/w==")"},
    {"hex", [](auto& h) { h.Hex = RawByteString("00FF"); }, R"(>00FF</Hex>)", R"("hex":"00FF")"},
    {"date", [](auto& h) { h.Due = 45000; }, R"(<Due xsi:type="xsd:date">2023-03-15)", R"("due":"2023-03-15)"},
    {"date-time", [](auto& h) { h.Stamp = 45000.25; }, R"(>2023-03-15T06:00:00)", R"("stamp":"2023-03-15T06:00:00)"},
    {"time", [](auto& h) { h.Clock = 0.5; }, R"(<Clock xsi:type="xsd:time">12:00:00)", R"("clock":"12:00:00)"},
    {"duration", [](auto& h) { h.Span = u"P1MT2.5S"; }, R"(<Span xsi:type="xsd:string">P1MT2.5S</Span>)",
     R"("span":{"className":"TVnDuration","negative":false,"monthts":1,"seconds":2.5})"},
    {"negative duration", [](auto& h) { h.Span = u"-P1D"; }, R"(>-P1D</Span>)",
     R"("span":{"className":"TVnDuration","negative":true,"monthts":0,"seconds":86400})"},
    {"array", [](auto& h) { h.Counts = {TXsInteger<Integer>(1), TXsInteger<Integer>(), TXsInteger<Integer>(3)}; },
     R"(<TXsIntegerOfInt xsi:type="xsd:int">1</TXsIntegerOfInt><TXsIntegerOfInt xsi:type="xsd:int" xsi:nil="true"/>)",
     R"("counts":[1,null,3])"},
};

TEST(XsBindings, EveryTypeRoundTripsAsItsBareValue) {
  for (const Row& row : kRows) {
    for (TVnDataSerializationFormatType format : {dsfXML, dsfJSON}) {
      SCOPED_TRACE(std::string(row.Name) + (format == dsfXML ? " XML" : " JSON"));
      TXsHolder holder;
      row.Set(holder);
      const std::string text = Write(format, holder);
      EXPECT_NE(text.find(format == dsfXML ? row.Xml : row.Json), std::string::npos) << text;
      TXsHolder copy;
      Read(format, copy, text);
      EXPECT_EQ(Write(format, copy), text);
    }
  }
}

TEST(XsBindings, NullMembers) {
  TXsHolder holder;
  const std::string xml = Write(dsfXML, holder);
  for (const char* fragment :
       {R"(<Amount xsi:type="xsd:int" xsi:nil="true"/>)", R"(<Due xsi:type="xsd:date" xsi:nil="true"/>)",
        R"(<Span xsi:type="xsd:string" xsi:nil="true"/>)", R"(<Text xsi:type="xsd:string" xsi:nil="true"/>)"})
    EXPECT_NE(xml.find(fragment), std::string::npos) << fragment << "\n" << xml;
  const std::string json = Write(dsfJSON, holder);
  for (const char* fragment :
       {R"("amount":null,)", R"("due":null,)", R"("span":{})", R"("text":null,)", R"("b64":null,)"})
    EXPECT_NE(json.find(fragment), std::string::npos) << fragment << "\n" << json;
  TXsHolder copy;
  Read(dsfJSON, copy, json);
  EXPECT_TRUE(copy.Amount.IsNull() && copy.Text.IsNull() && copy.Span.IsNull());
}

TEST(XsBindings, EmptyXMLLeavesTheMemberAndJSONNullClearsIt) {
  TXsHolder holder;
  holder.Amount = 7;
  holder.Text = u"kept";
  Read(dsfXML, holder,
      R"(<object><Amount/><Text xsi:nil="true" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"/></object>)");
  EXPECT_EQ(std::tuple(Integer(holder.Amount), UnicodeString(holder.Text)), std::tuple(7, u"kept"));
  // An empty string is an empty element, and so reads back as no change.
  holder.Text = u"";
  TXsHolder copy;
  copy.Text = u"old";
  Read(dsfXML, copy, Write(dsfXML, holder));
  EXPECT_EQ(UnicodeString(copy.Text), u"old");
  Read(dsfXML, holder, R"(<object><Amount> 8 </Amount><Text><![CDATA[<x>]]></Text></object>)");
  EXPECT_EQ(std::tuple(Integer(holder.Amount), UnicodeString(holder.Text)), std::tuple(8, u"<x>"));
  Read(dsfJSON, holder, R"({"amount":null,"text":"a\u0041"})");
  EXPECT_EQ(std::tuple(holder.Amount.IsNull(), UnicodeString(holder.Text)), std::tuple(true, u"aA"));
  Read(dsfJSON, holder, R"({"amount":{"x":[1,{"y":2}]},"u8":3})");  // an object in place of a value clears
  EXPECT_EQ(std::tuple(holder.Amount.IsNull(), Byte(holder.U8)), std::tuple(true, 3));
}

TEST(XsBindings, ReadingReplacesFacetsAndChecksNothing) {
  for (TVnDataSerializationFormatType format : {dsfXML, dsfJSON}) {
    TXsHolder holder;
    holder.U8.Restrictions.MaxInclusive = 10;
    Read(format, holder, format == dsfXML ? "<object><U8>200</U8></object>" : R"({"u8":200})");
    EXPECT_EQ(std::tuple(Byte(holder.U8), holder.U8.Restrictions.MaxInclusive.IsNull()), std::tuple(200, true));
  }
}

TEST(XsBindings, BadTextAndForeignTypesFailClearly) {
  TXsHolder holder;
  holder.Amount = 1;
  EXPECT_THROW(Read(dsfXML, holder, "<object><Amount>1x</Amount></object>"), Exception);
  EXPECT_THROW(Read(dsfJSON, holder, R"({"amount":"1x"})"), Exception);
  EXPECT_THROW(Read(dsfJSON, holder, R"({"amount":[1]})"), EVnSerializeException);
  EXPECT_EQ(Integer(holder.Amount), 1);
  for (TVnDataSerializationFormatType format : {dsfXML, dsfJSON}) {
    VnRegisterSerializer(format, TypeInfoOf<TNotXs>(),
                         format == dsfXML ? TVnXMLXsSerializer::StaticClass() : TVnJSONXsSerializer::StaticClass(),
                         format == dsfXML ? TVnXMLXsDeserializer::StaticClass() : TVnJSONXsDeserializer::StaticClass());
    TNotXsHolder foreign;
    EXPECT_EQ(test::MessageOf([&] { VnSerialize(format, &foreign); }), cVnXsNotAnXsType);
  }
}

}  // namespace
}  // namespace xsdomain
