// Element values: typed readers and writers, and the xsi:type / xsi:nil marks of the
// schema-instance mode.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/currency.h"
#include "vnxml/common/rtti_register.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"
#include "vnxml/xml_utils.h"

namespace elementvalues {

using namespace vn;

enum TLevel : uint8_t { lvLow, lvMid, lvHigh };
VN_REGISTER_TYPE(TLevel, u"uElementValues") { b.Values({u"lvLow", u"lvMid", u"lvHigh"}); }

class TWidget : public TObject {
  VN_DECLARE_CLASS(TWidget, TObject)
};
VN_REGISTER_TYPE(TWidget, u"uElementValues") {}

namespace {

/// A document in schema-instance mode: the root declares xsi and xsd.
struct SchemaDoc {
  SchemaDoc() {
    Root = Doc.CreateRootNode(u"root");
    Doc.SetUseSchemaInstance(true);
  }
  TVnDOMElement* Add() { return Root->AddElement(u"v"); }
  TVnDOMDocument Doc;
  TVnDOMElement* Root;
};

UnicodeString TypeOf(TVnDOMElement* AElement) {
  TVnDOMAttribute* a = AElement->FindAttribute(cVnXSINamespaceURI, u"type");
  return a ? a->GetNodeValue() : UnicodeString(u"<none>");
}

bool HasNil(TVnDOMElement* AElement) { return AElement->FindAttribute(cVnXSINamespaceURI, u"nil") != nullptr; }

/// One Variant of each kind that has a text form.
std::vector<Variant> VariantsOfEveryKind() {
  return {Variant(short(-2)), Variant(123456), Variant(0.5f), Variant(-1.25e-7), Variant(Currency::FromDouble(99.5)),
          Variant::FromDate(EncodeDateTime(2023, 7, 1, 8, 9, 10, 11)), Variant::FromOleStr(u"ole <&>"), Variant(true),
          Variant(static_cast<signed char>(-100)), Variant(static_cast<unsigned char>(200)),
          Variant(static_cast<unsigned short>(60000)), Variant(4000000000u), Variant(-9000000000LL),
          Variant(18000000000000000000ULL), Variant(std::string("ansi \xC3\xA9")),
          Variant(u"text with \"quotes\" and 'apostrophes' <&>"), VarArrayOf({Variant(1), Variant(u"two")}),
          VarArrayFromBytes(TBytes{0, 0x7F, 0xFF})};
}

TEST(ElementValues, EveryVariantKindComesBackTypedWritersMarkTheTypeNullMarksNil) {
  SchemaDoc d;
  const std::vector<Variant> values = VariantsOfEveryKind();
  for (const Variant& v : values) d.Add()->SetAsVariant(v);
  // The same again from the saved text; arrays are written as markup, so they are left out there.
  std::unique_ptr<TVnDOMDocument> loaded = TVnDOMDocument::FromXML(d.Doc.GetXML());
  for (TVnDOMElement* root : {d.Root, loaded->GetRootNode()}) {
    ASSERT_EQ(root->ElementCount(), static_cast<Integer>(values.size()));
    for (size_t i = 0; i < values.size(); ++i) {
      if (root != d.Root && VarIsArray(values[i])) continue;
      TVnDOMElement* e = root->GetElements()->GetItem(static_cast<Integer>(i));
      SCOPED_TRACE(UnicodeToUtf8(VarTypeAsText(values[i].VarType()) + u" " + e->GetXML()));
      EXPECT_EQ(TypeOf(e).rfind(u"xsd:", 0), 0u);
      const Variant back = e->GetAsVariant();
      EXPECT_EQ(back.VarType(), values[i].VarType());
      EXPECT_EQ(VnVariantToXML(back), VnVariantToXML(values[i]));
    }
  }

  // Typed writers mark the type.
  TVnDOMElement* e = d.Add();
  e->SetAsInteger(5);
  EXPECT_EQ(e->GetXML(), u"<v xsi:type=\"xsd:int\">5</v>");
  const std::pair<void (*)(TVnDOMElement*), const char16_t*> writers[] = {
      {[](TVnDOMElement* AE) { AE->SetAsInt64(5); }, u"xsd:long"},
      {[](TVnDOMElement* AE) { AE->SetAsDouble(0.5); }, u"xsd:double"},
      {[](TVnDOMElement* AE) { AE->SetAsBoolean(true); }, u"xsd:boolean"},
      {[](TVnDOMElement* AE) { AE->SetAsDateTime(EncodeDate(2020, 5, 6)); }, u"xsd:dateTime"}};
  for (const auto& [write, type] : writers) {
    write(e);
    EXPECT_EQ(TypeOf(e), type);
  }
  // A string is escaped once, not twice.
  e->SetAsString(u"a<b&c");
  EXPECT_EQ(e->GetXML(), u"<v xsi:type=\"xsd:string\">a&lt;b&amp;c</v>");
  EXPECT_EQ(e->GetAsString(), u"a<b&c");

  // Null sets nil, a later value removes it, and nil wins over text and type.
  e->SetAsInteger(1);
  e->AddComment(u"note");
  e->SetAsVariant(Variant::Null());
  // The comment went with the text.
  EXPECT_EQ((std::tuple{HasNil(e), e->GetText(), VarIsNull(e->GetAsVariant())}), std::tuple(true, u"", true));
  e->SetAsInteger(7);
  EXPECT_FALSE(HasNil(e));
  e->SetAsVariant(Variant());  // Unassigned counts as null too
  EXPECT_TRUE(HasNil(e));

  // Read, nil wins over text and type.
  std::unique_ptr<TVnDOMDocument> doc = TVnDOMDocument::FromXML(
      u"<r xmlns:i=\"http://www.w3.org/2001/XMLSchema-instance\">"
      u"<a i:nil=\"false\" i:type=\"xs:int\">12</a><b>12</b><c/><d i:type=\"xs:int\">12</d></r>");
  TVnDOMElement* r = doc->GetRootNode();
  // Without a type the text is a string (b), even when it looks like a number. The prefix of the
  // type name doesn't matter (d), only the declaration of xsi.
  EXPECT_EQ((std::tuple{VarIsNull(r->GetChildElementValue(0)), r->GetElements()->GetItem(0)->GetAsValue().IsEmpty(),
                        r->GetChildElementValue(1).VarType(), VarIsNull(r->GetChildElementValue(u"c")),
                        r->GetChildElementValue(u"d").VarType()}),
            std::tuple(true, true, varUString, true, varInteger));
}

TEST(ElementValues, NoMarksWithoutBothDeclarationsOrOutsideTheMode) {
  // The xsi declaration alone is not enough.
  TVnDOMDocument doc;
  TVnDOMElement* root = doc.CreateRootNode(u"root");
  root->SetAttribute(u"xmlns:xsi", cVnXSINamespaceURI);
  doc.SetUseSchemaInstance(true);
  root->RemoveAttribute(u"xmlns:xsd");
  TVnDOMElement* e = root->AddElement(u"v");
  e->SetAsInteger(5);
  e->SetAsVariant(Variant::Null());
  EXPECT_EQ(e->AttributeCount(), 0);
  e->SetAsVariant(Variant(u"a<b"));
  EXPECT_EQ((std::tuple{e->AttributeCount(), e->GetXML()}), std::tuple(0, u"<v>a&lt;b</v>"));
  // Outside the mode nothing is marked, declarations or not.
  doc.SetUseSchemaInstance(false);
  root->SetAttribute(u"xmlns:xsd", cVnXSDNamespaceURI);
  root->SetAsValue(TValue::From<Integer>(6));
  EXPECT_EQ((std::tuple{root->AttributeCount(), root->GetAsInteger()}), std::tuple(2, 6));
}

TEST(ElementValues, TypeAttributeDecidesTheVariantKind) {
  std::unique_ptr<TVnDOMDocument> doc = TVnDOMDocument::FromXML(
      u"<r xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\">"
      u"<t xsi:type=\"xsd:time\">12:00:00</t>"
      u"<o xsi:type=\"xsd:TWidget\">&lt;x/&gt;</o>"
      u"<b xsi:type=\"xsd:base64Binary\">QUJD</b>"
      u"<u xsi:type=\"xsd:unknownType\">kept &amp; as text</u>"
      u"<e xsi:type=\"\">1</e>"
      u"<n xsi:type=\"xsd:int\">abc</n></r>");
  TVnDOMElement* r = doc->GetRootNode();
  const Variant time = r->GetChildElementValue(u"t"), o = r->GetChildElementValue(u"o"),
                b = r->GetChildElementValue(u"b");
  EXPECT_DOUBLE_EQ(time.AsDouble(), 0.5);
  EXPECT_EQ((std::tuple{time.VarType(), o.VarType(), o.AsString(), b.VarType(), b.AsAnsiString(),
                        r->GetChildElementValue(u"u").AsString()}),
            std::tuple(varDate, varUString, u"<x/>", varString, "QUJD", u"kept & as text"));
  EXPECT_EQ(test::MessageOf<EVnDomException>([&] { r->GetChildElementValue(u"e"); }), cVnDomInvalidTypeInfo);
  EXPECT_THROW(r->GetElements()->GetItem(4)->GetAsValue(), EVnDomException);
  // Typed readers give their default on a bad form; the Variant reader raises.
  EXPECT_EQ(r->GetElements()->GetItem(5)->GetAsInteger(), 0);
  EXPECT_THROW(r->GetChildElementValue(u"n"), EConvertError);
}

TEST(ElementValues, ValuesComeBackWithTheirTypesEnumerationsAlsoFromTheValueAttribute) {
  SchemaDoc d;
  const TDateTime moment = EncodeDateTime(2022, 3, 4, 5, 6, 7, 8);
  const TValue values[] = {
      TValue::From<Integer>(-42),
      TValue::From<UnicodeString>(u"<tag> & \"q\""),
      TValue::From<TLevel>(lvHigh),
      TValue::Make(&moment, FindTypeInfo(u"TDateTime")),
  };
  for (const TValue& v : values) {
    TVnDOMElement* e = d.Add();
    e->SetAsValue(v);
    SCOPED_TRACE(UnicodeToUtf8(e->GetXML()));
    const TValue back = e->GetAsValue();
    ASSERT_EQ(back.TypeInfo(), v.TypeInfo());
    EXPECT_EQ(back.ToString(), v.ToString());
  }
  TVnDOMElement* e = d.Add();
  e->SetAsValue(TValue());
  EXPECT_EQ((std::tuple{HasNil(e), e->GetAsValue().IsEmpty()}), std::tuple(true, true));
  // An object is written by the XML serializer.
  TWidget widget;
  EXPECT_NO_THROW(d.Add()->SetAsValue(TValue::FromObject(&widget)));

  // An enumeration without text takes the value attribute.
  std::unique_ptr<TVnDOMDocument> doc = TVnDOMDocument::FromXML(
      u"<r xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
      u"<a xsi:type=\"xsd:TLevel\" VALUE=\"1\"/><b xsi:type=\"xsd:int\" value=\"1\"/><c/></r>");
  TVnDOMElementList* children = doc->GetRootNode()->GetElements();
  const TValue a = children->GetItem(0)->GetAsValue();
  ASSERT_EQ(a.TypeInfo(), TypeInfoOf<TLevel>());
  EXPECT_EQ(a.AsOrdinal(), 1);
  for (Integer i : {1, 2}) EXPECT_TRUE(children->GetItem(i)->GetAsValue().IsEmpty()) << i;
}

TEST(ElementValues, InterfaceFormsForwardToTheElement) {
  IPtr<IVnDOMDocument> doc = (new TVnDOMDocument())->As<IVnDOMDocument>();
  IPtr<IVnDOMElement> root = doc->CreateRootNode(u"root");
  IPtr<IVnDOMElement> child = root->AddElement(u"c");
  child->SetAsVariant(Variant(3));
  EXPECT_EQ(root->GetChildElementValue(Variant(0)).AsString(), u"3");
  child->SetAsValue(TValue::From<UnicodeString>(u"x&y"));
  EXPECT_EQ(child->GetAsValue().AsString(), u"x&y");
  child->SetAsAnsiString("\xE2\x82\xAC");
  EXPECT_EQ(child->GetAsAnsiString(), "\xE2\x82\xAC");
  EXPECT_TRUE(VarIsStr(child->GetAsVariant()));
}

}  // namespace
}  // namespace elementvalues
