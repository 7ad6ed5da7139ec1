// Values whose type is known at run time, to XML text and back.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "common/message_of.h"
#include "vnxml/common/currency.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"
#include "vnxml/serializer.h"
#include "vnxml/xml_utils.h"

namespace reflected {

using namespace vn;

enum TSize : uint8_t { szSmall, szMedium, szLarge };
VN_REGISTER_TYPE(TSize, u"uReflected") { b.Values({u"szSmall", u"szMedium", u"szLarge"}); }
using TSizes = TSet<TSize>;
VN_REGISTER_TYPE(TSizes, u"uReflected") {}

struct TPair {
  Integer A = 0;
};
VN_REGISTER_TYPE(TPair, u"uReflected") { b.Public(u"A", &TPair::A); }

class TThing : public TObject {
  VN_DECLARE_CLASS(TThing, TObject)
};
VN_REGISTER_TYPE(TThing, u"uReflected") {}

namespace {

using test::MessageOf;

const TTypeInfo* Named(std::u16string_view AName) { return FindTypeInfo(AName); }

TEST(ValToXML, TextByKindAndComplexKinds) {
  const auto outside = static_cast<TSize>(7);
  const TDateTime moment = EncodeDateTime(2024, 2, 29, 13, 5, 6, 7);
  const std::pair<TValue, const char16_t*> cases[] = {
      {TValue::From<UnicodeString>(u"a\"b'c<d&"), u"a&quot;b&apos;c&lt;d&amp;"}, {TValue::From<char16_t>(u'<'), u"&lt;"},
      {TValue::From<TSize>(szLarge), u"szLarge"}, {TValue::Make(&outside, TypeInfoOf<TSize>()), u"7"},
      {TValue::From(VarArrayFromBytes(TBytes{0xAB, 1})), u"AB01"}, {TValue(), u""},
      {TValue::Make(&moment, Named(u"TDateTime")), u"2024-02-29T13:05:06.007"},
      {TValue::Make(&moment, Named(u"TDate")), u"2024-02-29"}, {TValue::Make(&moment, Named(u"TTime")), u"13:05:06.007"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(VnValToXML(value), text) << UnicodeToUtf8(text);
  // Complex kinds go through the XML serializer.
  TThing thing;
  EXPECT_NE(VnValToXML(TValue::FromObject(&thing)).find(u"<object"), UnicodeString::npos);
  EXPECT_NE(VnValToXML(TValue::From(TPair{})).find(u"<record"), UnicodeString::npos);
  EXPECT_NE(VnValToXML(TValue::From(std::vector<Integer>{1})).find(u"<array"), UnicodeString::npos);
}

/// Each value written and read back under its own type gives the same value.
TEST(XMLToValue, EveryKindReadsBackByTypeOrNameOthersFailClearly) {
  const TDateTime moment = EncodeDateTime(2001, 12, 31, 23, 59, 58, 999);
  const TDateTime day = EncodeDate(1999, 1, 2);
  const TDateTime clock = EncodeTime(6, 7, 8, 9);
  const UnicodeString wide = u"w<>&\"'\u00e9";
  const std::vector<TValue> values = {
      TValue::From<Byte>(255), TValue::From<UInt64>(UINT64_MAX), TValue::From<ShortInt>(-128),
      TValue::From<Int64>(INT64_MIN), TValue::From<Single>(0.1f), TValue::From<Double>(0.1),
      TValue::From<Currency>(Currency::FromDouble(12.3456)), TValue::From<bool>(true), TValue::From<char16_t>(u'&'),
      TValue::From<UnicodeString>(u"a <b> & \"c\" 'd'"), TValue::From<AnsiString>("caf\xC3\xA9"),
      TValue::Make(&wide, Named(u"WideString")), TValue::From<TSize>(szMedium), TValue::From<TSizes>({szSmall, szLarge}),
      TValue::Make(&moment, Named(u"TDateTime")), TValue::Make(&day, Named(u"TDate")),
      TValue::Make(&clock, Named(u"TTime")), TValue::From(Variant(u"v<"))};
  for (const TValue& v : values) {
    const UnicodeString text = VnValToXML(v);
    SCOPED_TRACE(UnicodeToUtf8(v.TypeInfo()->Name + u" " + text));
    const TValue back = VnXMLToValue(text, v.TypeInfo());
    ASSERT_EQ(back.TypeInfo(), v.TypeInfo());
    if (v.Kind() == tkFloat)
      EXPECT_EQ(back.AsExtended(), v.AsExtended());
    else if (v.Kind() == tkVariant)
      EXPECT_EQ(VarToStr(back.AsVariant()), VarToStr(v.AsVariant()));
    else
      EXPECT_EQ(back.ToString(), v.ToString());
  }

  // Enumerations and sets also by name or number.
  const TTypeInfo* size = TypeInfoOf<TSize>();
  EXPECT_EQ((std::tuple{VnXMLToValue(u"1", size).AsOrdinal(), VnXMLToValue(u"szlarge", size).AsOrdinal()}),
            std::tuple(1, 2));
  for (const char16_t* bad : {u"szHuge", u"9"})
    EXPECT_EQ(MessageOf([&] { VnXMLToValue(bad, size); }), Format(cVnXMLToValueFailed, {bad, u"TSize"}));

  const TTypeInfo* sizes = TypeInfoOf<TSizes>();
  EXPECT_EQ((std::tuple{VnXMLToValue(u"6", sizes).AsOrdinal(), VnXMLToValue(u"[szMedium]", sizes).AsOrdinal(),
                        VnXMLToValue(u"", sizes).AsOrdinal()}),
            std::tuple(6, 2, 0));
  EXPECT_THROW(VnXMLToValue(u"[szHuge]", sizes), EPropertyConvertError);

  // Unsupported kinds and bad texts fail clearly.
  EXPECT_EQ(MessageOf([] { VnXMLToValue(u"<A>1</A>", TypeInfoOf<TPair>()); }),
            Format(cVnXMLToValueUnsupported, {u"<A>1</A>", u"TPair"}));
  EXPECT_EQ(MessageOf([] { VnXMLToValue(u"x", static_cast<const TTypeInfo*>(nullptr)); }),
            Format(cVnXMLToValueUnsupported, {u"x", u"nil"}));
  EXPECT_THROW(VnXMLToValue(u"abc", TypeInfoOf<Integer>()), EConvertError);
  // A character that an 8-bit character can't hold becomes '?'; an empty text gives NUL.
  EXPECT_EQ((std::tuple{VnXMLToValue(u"\u20ac", TypeInfoOf<char>()).AsOrdinal(),
                        VnXMLToValue(u"", TypeInfoOf<char16_t>()).AsOrdinal()}),
            std::tuple('?', 0));
  // By type name.
  EXPECT_EQ((std::tuple{VnXMLToValue(u"szLarge", u"TSize").AsOrdinal(),
                        VnXMLToValue(u"a&amp;b", u"string").AsString()}),
            std::tuple(2, u"a&b"));
  EXPECT_EQ(MessageOf([] { VnXMLToValue(u"1", u"TNoSuchType"); }),
            Format(cVnXMLToValueUnsupported, {u"1", u"TNoSuchType"}));
}

TEST(XMLToVariant, ByTypeNameAndByKind) {
  // An unknown name leaves the text as it is.
  const Variant unknown = VnXMLToVariant(u"a&amp;b", u"TNoSuchType");
  EXPECT_EQ((std::tuple{VnXMLToVariant(u"12", u"Integer").VarType(),
                        VnXMLToVariant(u"2020-01-02", u"TDateTime").VarType(), unknown.VarType(), unknown.AsString()}),
            std::tuple(varInteger, varDate, varUString, u"a&amp;b"));

  const std::tuple<TVnTypeKind, const char16_t*, TVarType> cases[] = {
      {vtkByte, u"1", varByte},       {vtkLongWord, u"1", varLongWord}, {vtkUInt64, u"1", varUInt64},
      {vtkShortInt, u"-1", varShortInt}, {vtkInt64, u"1", varInt64},    {vtkSingle, u"1.5", varSingle},
      {vtkExtended, u"1.5", varDouble}, {vtkBoolean, u"true", varBoolean}, {vtkDate, u"2020-01-02", varDate}};
  for (const auto& [kind, text, varType] : cases) EXPECT_EQ(VnXMLToVariant(text, kind).VarType(), varType) << int(kind);
  const Variant decoded = VnXMLToVariant(u"a&amp;b", vtkText5);
  EXPECT_EQ((std::tuple{decoded.VarType(), decoded.AsString()}), std::tuple(varUString, u"a&b"));
  EXPECT_DOUBLE_EQ(VnXMLToVariant(u"12:00:00", vtkTime).AsDouble(), 0.5);
  EXPECT_EQ(MessageOf([] { VnXMLToVariant(u"x", vtkClass); }), Format(cVnXMLToVariantFailed, {u"x", u"vtkClass"}));
  EXPECT_THROW(VnXMLToVariant(u"x", vtkInteger), EConvertError);
}

}  // namespace
}  // namespace reflected
