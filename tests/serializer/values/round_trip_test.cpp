// Every kind of value to text and back, at the limits of each kind.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <vector>

#include "vnxml/common/currency.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/json_reflected_values.h"
#include "vnxml/xml_utils.h"

namespace roundtrip {

using namespace vn;

enum TLevel : uint8_t { lvLow, lvMid, lvHigh };
VN_REGISTER_TYPE(TLevel, u"uRoundTrip") { b.Values({u"lvLow", u"lvMid", u"lvHigh"}); }
using TLevels = TSet<TLevel>;
VN_REGISTER_TYPE(TLevels, u"uRoundTrip") {}

namespace {

template <class T>
TValue Of(const T& AValue, const char16_t* ATypeName) {
  return TValue::Make(&AValue, FindTypeInfo(ATypeName));
}

std::vector<TValue> ValuesAtTheirLimits() {
  return {TValue::From<Byte>(0), TValue::From<Byte>(255), TValue::From<Word>(65535),
          TValue::From<LongWord>(UINT32_MAX), TValue::From<UInt64>(UINT64_MAX), TValue::From<ShortInt>(-128),
          TValue::From<ShortInt>(127), TValue::From<SmallInt>(-32768), TValue::From<Integer>(INT32_MIN),
          TValue::From<Int64>(INT64_MIN), TValue::From<Int64>(INT64_MAX),
          TValue::From<Single>(FLT_MAX), TValue::From<Single>(-FLT_TRUE_MIN), TValue::From<Single>(0.1f),
          TValue::From<Double>(DBL_MAX), TValue::From<Double>(DBL_TRUE_MIN), TValue::From<Double>(-0.1),
          TValue::From<Extended>(LDBL_MAX), TValue::From<Extended>(3.14159265358979323846L),
          TValue::From<Extended>(-1e-300L), TValue::From<Currency>(Currency::FromRaw(INT64_MAX)),
          TValue::From<Currency>(Currency::FromRaw(INT64_MIN + 1)), TValue::From<bool>(false),
          TValue::From<bool>(true), TValue::From<char16_t>(u'<'), TValue::From<char16_t>(u'\u20ac'),
          TValue::From<char>('\''), TValue::From<UnicodeString>(u""),
          TValue::From<UnicodeString>(u"a <b> & \"c\" 'd' \u00e9\U0001F600"), TValue::From<AnsiString>("x&y"),
          Of<WideString>(u"w<\u4e2d", u"WideString"), Of<ShortString>(ShortString(255, 'z'), u"ShortString"),
          TValue::From<TLevel>(lvLow), TValue::From<TLevel>(lvHigh), TValue::From<TLevels>({}),
          TValue::From<TLevels>({lvLow, lvMid, lvHigh}), Of<TDateTime>(EncodeDate(1, 1, 1), u"TDate"),
          Of<TDateTime>(EncodeDate(9999, 12, 31), u"TDate"), Of<TDateTime>(EncodeTime(23, 59, 59, 999), u"TTime"),
          Of<TDateTime>(EncodeDate(9999, 12, 31) + EncodeTime(23, 59, 59, 999), u"TDateTime"),
          Of<TDateTime>(EncodeDate(1899, 12, 30), u"TDateTime"), TValue::From(Variant(u"v<&amp;"))};
}

/// The value read back has the type and the text of the value written; floats are equal too.
void ExpectSameValue(const TValue& AWritten, const TValue& ARead, const UnicodeString& AText) {
  ASSERT_EQ(ARead.TypeInfo(), AWritten.TypeInfo());
  EXPECT_EQ(VnValToXML(ARead), VnValToXML(AWritten));
  if (AWritten.Kind() == tkFloat) {
    EXPECT_EQ(ARead.AsExtended(), AWritten.AsExtended()) << UnicodeToUtf8(AText);
  }
}

TEST(ReflectedRoundTrip, XMLAtEveryKindsLimits) {
  for (const TValue& value : ValuesAtTheirLimits()) {
    const UnicodeString text = VnValToXML(value);
    SCOPED_TRACE(UnicodeToUtf8(value.TypeInfo()->Name + u": " + text));
    ExpectSameValue(value, VnXMLToValue(text, value.TypeInfo()), text);
  }
}

/// JSON writes enumerations and sets as objects through the serializer: they are read by name.
TEST(ReflectedRoundTrip, JSONAtEveryKindsLimits) {
  for (const TValue& value : ValuesAtTheirLimits()) {
    if (value.Kind() == tkSet || (value.Kind() == tkEnumeration && value.TypeInfo() != TypeInfoOf<bool>())) continue;
    const UnicodeString text = VnValToJSON(value);
    SCOPED_TRACE(UnicodeToUtf8(value.TypeInfo()->Name + u": " + text));
    ExpectSameValue(value, VnJSONToVal(text, value.TypeInfo(), true), text);
  }
}

/// Element values in schema-instance mode carry the type's schema name, which reads back as the
/// same type, in memory and after a save and load.
TEST(ReflectedRoundTrip, SchemaInstanceElementsAtEveryKindsLimits) {
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"r");
  doc.SetUseSchemaInstance(true);
  const std::vector<TValue> values = ValuesAtTheirLimits();
  for (const TValue& value : values) root->AddElement(u"v")->SetAsValue(value);
  std::unique_ptr<TVnDOMDocument> loaded = TVnDOMDocument::FromXML(doc.GetXML());
  for (TVnDOMElement* parent : {root, loaded->GetRootNode()}) {
    for (size_t i = 0; i < values.size(); ++i) {
      TVnDOMElement* e = parent->GetElements()->GetItem(static_cast<Integer>(i));
      SCOPED_TRACE(UnicodeToUtf8(e->GetXML()));
      ExpectSameValue(values[i], e->GetAsValue(), e->GetNodeValue());
    }
  }
}

}  // namespace
}  // namespace roundtrip
