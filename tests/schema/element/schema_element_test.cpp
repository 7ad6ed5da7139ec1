// The schema element tree: creation in the order of the table, the rows that create on read, the
// typed accessors, lookups by name, removal and the event's re-entry guard.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "support/raises.h"
#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/schema_element.h"

namespace {

using namespace vn;
using test::ExpectRaises;
using test::U8;

// A wrapper over a document's root, with its protected containers in reach.
struct TTestSchema : TVnXMLSchemaElement {
  using TVnXMLSchemaElement::FArrayElements;
  using TVnXMLSchemaElement::FSubElements;
  using TVnXMLSchemaElement::TVnXMLSchemaElement;
};

// A document's root wrapped, with element rows from index 0 named AElements.
struct Fixture {
  explicit Fixture(std::u16string_view AXML, std::initializer_list<const char16_t*> AElements = {})
      : Doc(TVnDOMDocument::FromXML(AXML)) {
    Integer index = 0;
    for (const char16_t* name : AElements) Schema.AddSchemaInfo(index++, ntElement, name);
  }
  std::unique_ptr<TVnDOMDocument> Doc;
  TTestSchema Schema{Doc->GetRootNode()->As<IVnDOMElement>()};
  std::string XML() { return U8(Schema.GetXML()); }
};

TEST(SchemaElement, NewElementsGoInTheOrderOfTheTable) {
  struct Case { const char16_t* Start; std::vector<Integer> Created; const char* Expected; } cases[] = {
      {u"<r><c/></r>", {1, 0}, "<r><a /><b /><c /></r>"},  // no earlier row exists: at the front
      {u"<r><x/><a/><y/></r>", {2, 1}, "<r><x /><a /><b /><c /><y /></r>"},
  };
  for (const Case& c : cases) {
    Fixture f(c.Start, {u"a", u"b", u"c"});
    for (Integer i : c.Created) ASSERT_TRUE(f.Schema.GetNodeByIndex(i, true));
    EXPECT_EQ(f.XML(), c.Expected) << U8(c.Start);
  }
}

TEST(SchemaElement, ReadingCreatesRequiredRowsAndElementsOfAtLeastOneEmptyWritesNothing) {
  struct Case { TVnDOMNodeType Type; Integer MinOccurs; bool Required; const char* Expected; } cases[] = {
      {ntElement, 0, false, "<r />"},   {ntElement, 1, false, "<r><x /></r>"},
      {ntElement, 2, false, "<r />"},   {ntElement, 0, true, "<r><x /></r>"},
      {ntAttribute, 1, false, "<r />"}, {ntAttribute, 0, true, "<r x=\"\" />"},
  };
  for (const Case& c : cases) {
    Fixture f(u"<r/>");
    f.Schema.AddSchemaInfo(0, c.Type, u"x", c.MinOccurs, 1, c.Required);
    UnicodeString value = u"old";
    const bool created = f.Schema.GetValue(0, value);
    EXPECT_EQ(std::tuple(created, value, f.XML()), std::tuple(std::string(c.Expected) != "<r />", u"", c.Expected))
        << c.Type << " min " << c.MinOccurs;
  }
  // An empty value written to a missing node creates nothing.
  Fixture f(u"<r/>", {u"s"});
  f.Schema.AddSchemaInfo(1, ntAttribute, u"t");
  f.Schema.SetStringValue(0, u"");
  f.Schema.SetStringValue(1, u"");
  EXPECT_EQ(f.XML(), "<r />");
}

TEST(SchemaElement, TypedAccessorsWriteTheirTextAndReadItBackMissingNodesZero) {
  const TDateTime day = EncodeDate(1999, 10, 20);
  const TGUID guid = TGUID::Parse("01234567-89ab-cdef-0123-456789abcdef");
  // Each case writes through one accessor and reads back through an alias of it.
  struct Case { const char16_t* Stored; std::function<bool(TTestSchema&)> WriteRead; } cases[] = {
      {u"255", [](auto& s) { return s.SetByteValue(0, 255), s.GetUnsignedByteValue(0) == 255; }},
      {u"-32768", [](auto& s) { return s.SetShortValue(0, -32768), s.GetShortValue(0) == -32768; }},
      {u"-7", [](auto& s) { return s.SetIntegerValue(0, -7), s.GetIntValue(0) == -7; }},
      {u"-9223372036854775808",
       [](auto& s) { return s.SetInt64Value(0, INT64_MIN), s.GetLongValue(0) == INT64_MIN; }},
      {u"65535", [](auto& s) { return s.SetUnsignedShortValue(0, 65535), s.GetUnsignedShortValue(0) == 65535; }},
      {u"4294967295",
       [](auto& s) { return s.SetNonNegativeIntegerValue(0, UINT32_MAX), s.GetUnsignedIntValue(0) == UINT32_MAX; }},
      {u"18446744073709551615",
       [](auto& s) { return s.SetUnsignedLongValue(0, UINT64_MAX), s.GetUnsignedLongValue(0) == UINT64_MAX; }},
      {u"1.5", [](auto& s) { return s.SetDecimalValue(0, 1.5), s.GetFloatValue(0) == 1.5; }},
      {u"0.25", [](auto& s) { return s.SetDoubleValue(0, 0.25L), s.GetDoubleValue(0) == 0.25L; }},
      {u"true", [](auto& s) { return s.SetBooleanValue(0, true), s.GetBooleanValue(0); }},
      {u"12:00:00.000", [](auto& s) { return s.SetTimeValue(0, 0.5), s.GetTimeValue(0) == 0.5; }},
      {u"1999-10-20T12:00:00.000",
       [&](auto& s) { return s.SetTimeInstantValue(0, day + 0.5), s.GetDatetimeValue(0) == day + 0.5; }},
      {u"{01234567-89AB-CDEF-0123-456789ABCDEF}",
       [&](auto& s) { return s.SetGuidValue(0, guid), s.GetGuidValue(0) == guid; }},
      {u"QUJD", [](auto& s) { return s.SetBase64binaryValue(0, "QUJD"), s.GetBase64binaryValue(0) == "QUJD"; }},
      {u"a<b", [](auto& s) { return s.SetAnyUriValue(0, u"a<b"), s.GetLanguageValue(0) == u"a<b"; }},
  };
  for (const Case& c : cases) {
    Fixture f(u"<r/>", {u"v"});
    EXPECT_TRUE(c.WriteRead(f.Schema)) << U8(c.Stored);
    EXPECT_EQ(U8(f.Doc->GetRootNode()->FirstElement()->GetNodeValue()), U8(c.Stored));
  }
  // Datetime writes in UTC, TimeInstant without a zone, though both read alike.
  Fixture f(u"<r/>");
  f.Schema.AddSchemaInfo(0, ntAttribute, u"d");
  f.Schema.SetDatetimeValue(0, day);
  EXPECT_EQ(f.Schema.GetXmlValue(0).back(), u'Z');

  // Missing nodes read as zero; strings decode twice.
  Fixture m(u"<r><s>&amp;amp;</s></r>", {u"missing", u"s"});
  EXPECT_EQ(std::tuple(m.Schema.GetIntValue(0), m.Schema.GetDatetimeValue(0), m.Schema.GetStringValue(0),
                       m.Schema.GetGuidValue(0) == TGUID{}, m.Schema.GetBooleanValue(0)),
            std::tuple(0, 0.0, u"", true, false));
  EXPECT_EQ(std::tuple(m.XML(), m.Schema.GetXmlValue(1), m.Schema.GetStringValue(1)),
            std::tuple("<r><s>&amp;amp;</s></r>", u"&amp;", u"&"));
}

TEST(SchemaElement, RefusedIndexesNamesAndTexts) {
  Fixture f(u"<r><n>abc</n></r>", {u"n"});
  UnicodeString v;
  for (auto call : std::initializer_list<std::function<void()>>{
           [&] { f.Schema.GetValue(9, v); }, [&] { f.Schema.SetValue(9, u"x"); },
           [&] { f.Schema.GetNodeByIndex(-1, false); }})
    ExpectRaises<EListError>(call, cVnSchemaInvalidIndex);
  ExpectRaises<EListError>([&] { f.Schema.GetNode(u"zz"); }, Format(cVnSchemaNodeNotInSchema, {u"zz"}));
  ExpectRaises<EListError>([&] { f.Schema.AddSchemaInfo(0, ntElement, u"other"); }, cRtlDuplicateItem);
  EXPECT_THROW(f.Schema.GetIntValue(0), EConvertError);
  EXPECT_THROW(f.Schema.GetGuidValue(0), EConvertError);
  EXPECT_EQ(std::tuple(static_cast<bool>(f.Schema.FindNode(u"zz")), f.Schema.FindSchemaInfo(u"zz"), f.XML()),
            std::tuple(false, nullptr, "<r><n>abc</n></r>"));
}

TEST(SchemaElement, NamesMatchWithAndWithoutPrefix) {
  Fixture f(u"<r xmlns:p=\"u\"><p:b>1</p:b></r>", {u"p:b"});
  EXPECT_EQ(TVnDOMObjectImpl::Node(f.Schema.GetNode(u"").Get()), f.Doc->GetRootNode());
  EXPECT_EQ(TVnDOMObjectImpl::Node(f.Schema.FindNode(u"").Get()), f.Doc->GetRootNode());
  ASSERT_TRUE(f.Schema.FindNode(u"b"));
  // Exact in FindNode, ASCII case-blind in FindSchemaInfo.
  EXPECT_EQ(std::tuple(f.Schema.FindNode(u"b")->GetNodeValue(), static_cast<bool>(f.Schema.FindNode(u"B")),
                       f.Schema.FindSchemaInfo(u"b")), std::tuple(u"1", false, nullptr));
  ASSERT_NE(f.Schema.FindSchemaInfo(u"P:B"), nullptr);
  EXPECT_EQ(f.Schema.FindSchemaInfo(u"P:B")->FName, u"p:b");
}

TEST(SchemaElement, EventFiresOncePerRowAndMayReadItsOwnRow) {
  Fixture f(u"<r><a>1</a><b>2</b></r>", {u"a", u"b"});
  std::vector<UnicodeString> fired;
  f.Schema.FOnGetValue = [&](TVnXMLSchemaElement* ASender, TVnXMLSchemaInfo* AInfo) {
    fired.push_back(AInfo->FName);
    EXPECT_EQ(ASender, &f.Schema);
    ASender->GetIntValue(0);  // its own row for a, another row (fired too) for b
  };
  EXPECT_EQ((std::tuple{f.Schema.GetIntValue(0), fired}), std::tuple(1, std::vector<UnicodeString>{u"a"}));
  fired.clear();
  EXPECT_EQ((std::tuple{f.Schema.GetIntValue(1), fired}), std::tuple(2, std::vector<UnicodeString>{u"b", u"a"}));
}

TEST(SchemaElement, RemoveNodeDropsTheNodeAndItsWrappers) {
  Fixture f(u"<r><Item>1</Item><keep/></r>");
  auto item = f.Doc->GetRootNode()->FirstElement()->As<IVnDOMElement>();
  f.Schema.FSubElements.Add(new TTestSchema(item));
  f.Schema.FSubElements.Add(new TTestSchema(f.Doc->GetRootNode()->LastElement()->As<IVnDOMElement>()));
  f.Schema.FSubElements.Add(new TTestSchema(item));
  f.Schema.RemoveNode(u"absent");
  EXPECT_EQ(f.Schema.FSubElements.Count(), 3);
  f.Schema.RemoveNode(u"ITEM");
  EXPECT_EQ(std::tuple(f.Schema.FSubElements.Count(), f.XML()), std::tuple(1, "<r><keep /></r>"));
  // The removed element lives on in the interface held here; its last release frees it.
  EXPECT_EQ(item->GetNodeValue(), u"1");
}

TEST(SchemaElement, ClearAndAssignKeepTheTable) {
  Fixture from(u"<r><a>1</a></r>", {u"a"}), to(u"<r><a>2</a><z/></r>", {u"a"});
  to.Schema.FArrayElements.Add(0, TValue::FromObject(new TObject()));  // disposed by Clear
  to.Schema.FSubElements.Add(new TTestSchema(to.Doc->GetRootNode()->LastElement()->As<IVnDOMElement>()));
  to.Schema.Assign(&from.Schema);
  EXPECT_EQ(std::tuple(to.XML(), to.Schema.FArrayElements.Count() + to.Schema.FSubElements.Count(),
                       to.Schema.GetIntValue(0)), std::tuple("<r><a>1</a></r>", 0, 1));
  to.Schema.Clear();
  EXPECT_EQ(to.XML(), "<r />");
  TVnObjectEx plain;
  ExpectRaises<EConvertError>([&] { plain.Assign(&from.Schema); },
                              Format(cRtlAssignError, {u"TVnXMLSchemaElement", u"TVnObjectEx"}));
}

}  // namespace
