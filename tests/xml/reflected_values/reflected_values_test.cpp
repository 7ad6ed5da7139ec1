// Values whose type is known at run time, to XML text and back.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "vnxml/common/currency.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_type_info_value.h"
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

UnicodeString MessageOf(auto ACall) {
  try {
    ACall();
  } catch (const Exception& e) {
    return e.Message();
  }
  return u"<no exception>";
}

const TTypeInfo* Named(std::u16string_view AName) { return FindTypeInfo(AName); }

TEST(ValToXML, TextByKind) {
  EXPECT_EQ(VnValToXML(TValue::From<UnicodeString>(u"a\"b'c<d&")), u"a&quot;b&apos;c&lt;d&amp;");
  EXPECT_EQ(VnValToXML(TValue::From<char16_t>(u'<')), u"&lt;");
  EXPECT_EQ(VnValToXML(TValue::From<TSize>(szLarge)), u"szLarge");
  const auto outside = static_cast<TSize>(7);
  EXPECT_EQ(VnValToXML(TValue::Make(&outside, TypeInfoOf<TSize>())), u"7");
  EXPECT_EQ(VnValToXML(TValue::From(VarArrayFromBytes(TBytes{0xAB, 1}))), u"AB01");
  EXPECT_EQ(VnValToXML(TValue()), u"");
  const TDateTime moment = EncodeDateTime(2024, 2, 29, 13, 5, 6, 7);
  EXPECT_EQ(VnValToXML(TValue::Make(&moment, Named(u"TDateTime"))), u"2024-02-29T13:05:06.007");
  EXPECT_EQ(VnValToXML(TValue::Make(&moment, Named(u"TDate"))), u"2024-02-29");
  EXPECT_EQ(VnValToXML(TValue::Make(&moment, Named(u"TTime"))), u"13:05:06.007");
}

TEST(ValToXML, ComplexKindsGoThroughTheXMLSerializer) {
  TThing thing;
  EXPECT_NE(VnValToXML(TValue::FromObject(&thing)).find(u"<object"), UnicodeString::npos);
  EXPECT_NE(VnValToXML(TValue::From(TPair{})).find(u"<record"), UnicodeString::npos);
  EXPECT_NE(VnValToXML(TValue::From(std::vector<Integer>{1})).find(u"<array"), UnicodeString::npos);
}

/// Each value written and read back under its own type gives the same value.
TEST(XMLToValue, EveryKindReadsBackWhatValToXMLWrote) {
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
}

TEST(XMLToValue, EnumerationsAndSets) {
  const TTypeInfo* size = TypeInfoOf<TSize>();
  EXPECT_EQ(VnXMLToValue(u"1", size).AsOrdinal(), 1);
  EXPECT_EQ(VnXMLToValue(u"szlarge", size).AsOrdinal(), 2);
  EXPECT_EQ(MessageOf([&] { VnXMLToValue(u"szHuge", size); }),
            u"Failed to convert the value \"szHuge\" to a value of type TSize!");
  EXPECT_EQ(MessageOf([&] { VnXMLToValue(u"9", size); }),
            u"Failed to convert the value \"9\" to a value of type TSize!");

  const TTypeInfo* sizes = TypeInfoOf<TSizes>();
  EXPECT_EQ(VnXMLToValue(u"6", sizes).AsOrdinal(), 6);
  EXPECT_EQ(VnXMLToValue(u"[szMedium]", sizes).AsOrdinal(), 2);
  EXPECT_EQ(VnXMLToValue(u"", sizes).AsOrdinal(), 0);
  EXPECT_THROW(VnXMLToValue(u"[szHuge]", sizes), EPropertyConvertError);
}

TEST(XMLToValue, UnsupportedKindsAndBadText) {
  EXPECT_EQ(MessageOf([] { VnXMLToValue(u"<A>1</A>", TypeInfoOf<TPair>()); }),
            u"Failed to convert \"<A>1</A>\" into a TValue!\r\nThe type TPair is not supported.");
  EXPECT_EQ(MessageOf([] { VnXMLToValue(u"x", static_cast<const TTypeInfo*>(nullptr)); }),
            u"Failed to convert \"x\" into a TValue!\r\nThe type nil is not supported.");
  EXPECT_THROW(VnXMLToValue(u"abc", TypeInfoOf<Integer>()), EConvertError);
  // A character that an 8-bit character can't hold becomes '?'; an empty text gives NUL.
  EXPECT_EQ(VnXMLToValue(u"\u20ac", TypeInfoOf<char>()).AsOrdinal(), '?');
  EXPECT_EQ(VnXMLToValue(u"", TypeInfoOf<char16_t>()).AsOrdinal(), 0);
}

TEST(XMLToValue, ByTypeName) {
  EXPECT_EQ(VnXMLToValue(u"szLarge", u"TSize").AsOrdinal(), 2);
  EXPECT_EQ(VnXMLToValue(u"a&amp;b", u"string").AsString(), u"a&b");
  EXPECT_EQ(MessageOf([] { VnXMLToValue(u"1", u"TNoSuchType"); }),
            u"Failed to convert \"1\" into a TValue!\r\nThe type TNoSuchType is not supported.");
}

TEST(XMLToVariant, ByTypeNameAndByKind) {
  EXPECT_EQ(VnXMLToVariant(u"12", u"Integer").VarType(), varInteger);
  EXPECT_EQ(VnXMLToVariant(u"2020-01-02", u"TDateTime").VarType(), varDate);
  // An unknown name leaves the text as it is.
  const Variant unknown = VnXMLToVariant(u"a&amp;b", u"TNoSuchType");
  EXPECT_EQ(unknown.VarType(), varUString);
  EXPECT_EQ(unknown.AsString(), u"a&amp;b");

  const std::tuple<TVnTypeKind, const char16_t*, TVarType> cases[] = {
      {vtkByte, u"1", varByte},       {vtkLongWord, u"1", varLongWord}, {vtkUInt64, u"1", varUInt64},
      {vtkShortInt, u"-1", varShortInt}, {vtkInt64, u"1", varInt64},    {vtkSingle, u"1.5", varSingle},
      {vtkExtended, u"1.5", varDouble}, {vtkBoolean, u"true", varBoolean}, {vtkDate, u"2020-01-02", varDate}};
  for (const auto& [kind, text, varType] : cases) EXPECT_EQ(VnXMLToVariant(text, kind).VarType(), varType) << int(kind);
  const Variant decoded = VnXMLToVariant(u"a&amp;b", vtkText5);
  EXPECT_EQ(decoded.VarType(), varUString);
  EXPECT_EQ(decoded.AsString(), u"a&b");
  EXPECT_DOUBLE_EQ(VnXMLToVariant(u"12:00:00", vtkTime).AsDouble(), 0.5);
  EXPECT_EQ(MessageOf([] { VnXMLToVariant(u"x", vtkClass); }),
            u"Failed to convert the value \"x\" to a variant value of type vtkClass!");
  EXPECT_THROW(VnXMLToVariant(u"x", vtkInteger), EConvertError);
}

}  // namespace
}  // namespace reflected
