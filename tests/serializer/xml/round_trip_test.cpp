// Object graph to XML and back, over a member of every shape.
#include <gtest/gtest.h>

#include "../serial_domain.h"
#include "common/message_of.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom_document.h"
#include "vnxml/dom_element.h"
#include "vnxml/xml_serializer.h"

namespace {

using namespace serialdomain;

TEST(XMLRoundTrip, EveryShapeComesBackEqualAndWritesTheSameText) {
  for (int variant : {0, 1, 2}) {
    SCOPED_TRACE(variant);
    TAll original;
    Fill(original, variant);
    const TVnSerializedData text = VnSerialize(dsfXML, &original);
    TAll copy;
    VnDeserialize(dsfXML, TValue::FromObject(&copy), text);
    ExpectSame(original, copy);
    EXPECT_EQ(text, VnSerialize(dsfXML, &copy));
    if (HasFailure()) {
      std::cout << text << "\n";
      return;
    }
  }
}

TEST(XMLRoundTrip, DocumentsAndElementsAreTheirOwnText) {
  TVnDOMDocument document;
  document.LoadXML(u"<menu a=\"1\"><dish>Soup &amp; bread</dish></menu>");
  const TVnSerializedData text = VnSerialize(dsfXML, &document);
  EXPECT_NE(text.find("<menu a=\"1\"><dish>Soup &amp; bread</dish></menu>"), std::string::npos);
  TVnDOMDocument copy;
  VnDeserialize(dsfXML, TValue::FromObject(&copy), text);
  EXPECT_EQ(VnSerialize(dsfXML, &copy), text);
  std::unique_ptr<TObject> made(static_cast<TObject*>(
      VnDeserialize(dsfXML, nullptr, TypeInfoOf<TVnDOMDocument>(), text)));
  EXPECT_EQ(VnSerialize(dsfXML, made.get()), text);
  EXPECT_EQ(VnSerialize(dsfXML, document.GetRootNode()), "<menu a=\"1\"><dish>Soup &amp; bread</dish></menu>");
}

TEST(XMLRoundTrip, ATValueHoldsWhatItsTypeMarkNames) {
  auto* home = new TAddress(u"Rome");
  const std::unique_ptr<TAddress> owned(home);
  const std::pair<const char*, TValue> cases[] = {
      {"enumeration", TValue::From(kStaff)},
      // Names written without the prefix their type's hint names.
      {"enumeration of a prefixed type", TValue::From(clBlue)},
      {"set of a prefixed type", TValue::From(TColors{clRed, clBlue})},
      {"record", TValue::From(TPoint{1, 2, u"a<b"})}, {"array", TValue::From(std::vector<Integer>{3, 4})},
      {"object", TValue::FromObject(home)},
  };
  for (const auto& [name, value] : cases) {
    SCOPED_TRACE(name);
    TAll original;
    original.Boxed = value;
    const TVnSerializedData text = VnSerialize(dsfXML, &original);
    TObjectList created(true);
    TAll copy;
    VnDeserialize(dsfXML, TValue::FromObject(&copy), text, &created);
    EXPECT_EQ(VnSerialize(dsfXML, &copy), text);
    EXPECT_EQ(created.GetCount(), value.IsObject() ? 1 : 0);
    if (value.IsObject()) {
      const size_t from = text.find("<Boxed"), to = text.find("</Boxed>") + 8;
      std::string oslo = text.substr(from, to - from);
      oslo.replace(oslo.find("Rome"), 4, "Oslo");
      // A later element of the member, the objects the read leaves made, the value shown after it.
      const std::tuple<std::string, Integer, UnicodeString> laterOnes[] = {
          {oslo, 1, u"Oslo"},  // given twice, the later object stays; the earlier one is freed and unlisted
          {"<Boxed>x</Boxed>", 0, u"x"},  // a later text: the object goes
          // Markup under a type that takes none: the value is left empty, never dangling.
          {"<Boxed xsi:type=\"xsd:TKind\"><k/></Boxed>", 0, u"(empty)"},
      };
      for (const auto& [later, made, shown] : laterOnes) {
        TObjectList listed(true);
        TAll again;
        VnDeserialize(dsfXML, TValue::FromObject(&again), text.substr(0, to) + later + text.substr(to), &listed);
        const TValue& boxed = again.Boxed;
        const UnicodeString got = boxed.IsEmpty()    ? u"(empty)"
                                  : boxed.IsObject() ? static_cast<TAddress*>(boxed.AsObject())->City
                                                     : boxed.AsString();
        EXPECT_EQ(std::tuple(listed.GetCount(), got), std::tuple(made, shown)) << later;
      }
    }
    // Without the caller's list no object is made for it, and the value stays empty.
    TAll unlisted;
    VnDeserialize(dsfXML, TValue::FromObject(&unlisted), text);
    EXPECT_EQ(unlisted.Boxed.IsEmpty(), value.IsObject());
  }
}

TEST(XMLRoundTrip, AnArrayOfNoPlatformTypeHoldsItsElementsAsVariants) {
  // "ArrayOf" and a type with no array type registered: the slots are Variants, read and
  // written as such; an object named as its element has nothing to own it.
  // Such a type exists once something asked for it by name, as a list's writer does.
  for (const char16_t* name : {u"ArrayOfTKind", u"ArrayOfTPostBox"})
    ASSERT_NE(TVnTypes::GetTypeInfo(name, tntSchemaName, true, mtkArray), nullptr);
  const std::string head = "<object xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"><Boxed xsi:type=\"xsd:";
  TAll kinds;
  VnDeserialize(dsfXML, TValue::FromObject(&kinds),
                head + "ArrayOfTKind\"><TKind xsi:type=\"xsd:TKind\">kBoss</TKind><TKind>x</TKind></Boxed></object>");
  const TVnSerializedData text = VnSerialize(dsfXML, &kinds);
  EXPECT_NE(text.find("<TKind xsi:type=\"xsd:string\">kBoss</TKind><TKind xsi:type=\"xsd:string\">x</TKind>"),
            std::string::npos) << text;
  TAll again;
  VnDeserialize(dsfXML, TValue::FromObject(&again), text);
  EXPECT_EQ(VnSerialize(dsfXML, &again), text);
  TObjectList created(true);
  TAll objects;
  EXPECT_EQ(test::MessageOf([&] {
              VnDeserialize(dsfXML, TValue::FromObject(&objects), head + "ArrayOfTPostBox\"><TPostBox/></Boxed></object>",
                            &created);
            }), Format(cVnBoxedObjectUnowned, {u"[0]"}));
}

struct TBox { TValue Inner; };
VN_REGISTER_TYPE(TBox, u"uSerial") { b.Public(u"Inner", &TBox::Inner); }

TEST(XMLRoundTrip, BoxedValuesNestOnlySoDeep) {
  // Each boxed record is read by a reader of its own: the depth of those reads is bounded.
  std::string text = "<object xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"><Boxed xsi:type=\"xsd:TBox\">";
  for (int i = 0; i < 100; ++i) text += "<Inner xsi:type=\"xsd:TBox\">";
  for (int i = 0; i < 100; ++i) text += "</Inner>";
  TAll all;
  const UnicodeString failure = test::MessageOf<EVnSerializeException>(
      [&] { VnDeserialize(dsfXML, TValue::FromObject(&all), text + "</Boxed></object>"); });
  EXPECT_NE(failure.find(u"nesting is too deep"), UnicodeString::npos) << UnicodeToUtf8(failure);
  EXPECT_TRUE(all.Boxed.IsEmpty());
}

}  // namespace
