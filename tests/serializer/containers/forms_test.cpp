// What each container writes, in both notations: element names from the type argument, type
// marks from the run-time class, empty and nil containers, nil elements, keys that need escaping.
#include <gtest/gtest.h>

#include <functional>

#include "containers_domain.h"
#include "vnxml/common/utf.h"

namespace {

using namespace containersdomain;

struct FormCase { const char* Name; std::function<void(TBasket&)> Fill; const char* Xml; const char* Json; };

TEST(ContainerForms, EachKindInBothNotations) {
  const FormCase cases[] = {
      {"object list: tag of T, type of the run-time class, a nil element", [](auto& b) {
         (b.Items = new TItemList())->Add(new TItem(u"a1", 2));
         b.Items->Add(new TGift());
         b.Items->Add(nullptr);
       },
       R"(<Items xsi:type="xsd:ArrayOfTObjectListOfTItem"><TItem xsi:type="xsd:TItem"><Sku xsi:type="xsd:string">a1</Sku><Qty xsi:type="xsd:int">2</Qty></TItem><TItem xsi:type="xsd:TGift"><Note xsi:type="xsd:string"></Note><Sku xsi:type="xsd:string"></Sku><Qty xsi:type="xsd:int">0</Qty></TItem><TItem xsi:type="xsd:TItem" xsi:nil="true"/></Items>)",
       R"("items":[{"className":"TItem","sku":"a1","qty":2},{"className":"TGift","note":"","sku":"","qty":0},{}])"},
      {"empty object list of the platform", [](auto& b) { b.Plain = new TObjectList(); },
       R"(<Plain xsi:type="xsd:ArrayOfTObjectList"></Plain>)", R"("plain":[])"},
      {"value list: ArrayOf the element's schema name", [](auto& b) { (b.Ints = new TIntList())->Values = {1, -7}; },
       R"(<Ints xsi:type="xsd:ArrayOfInt"><int xsi:type="xsd:int">1</int><int xsi:type="xsd:int">-7</int></Ints>)",
       R"("ints":[1,-7])"},
      {"text list with escapes and an empty text",
       [](auto& b) { (b.Texts = new TTextList())->Values = {u"x&<\"y", u""}; },
       R"(<Texts xsi:type="xsd:ArrayOfString"><string xsi:type="xsd:string">x&amp;&lt;&quot;y</string><string xsi:type="xsd:string"></string></Texts>)",
       R"("texts":["x&<\"y",""])"},
      {"nil list: any nil object",
       [](auto&) {}, R"(<Ints xsi:type="xsd:TValueListOfInt" xsi:nil="true"/>)", R"("ints":{})"},
      {"simple wrapper: the value under its type", [](auto& b) { (b.Price = new TMoney())->Amount = 12.5; },
       R"(<Price xsi:type="xsd:double">12.5</Price>)", R"("price":12.5)"},
      {"simple wrapper holding nothing, and a nil one",
       [](auto& b) { b.Price = new TMoney(); }, R"(<Price xsi:type="xsd:double" xsi:nil="true"/>)", R"("price":null)"},
      {"dictionary with a key and a value that need escaping",
       [](auto& b) { (b.Notes = new TTextMap())->Add(u"a<\"b", u"c&d"); },
       R"(<Notes xsi:type="xsd:ArrayOfKeyValuePair"><item xsi:type="xsd:KeyValuePair"><Key xsi:type="xsd:string">a&lt;&quot;b</Key><Value xsi:type="xsd:string">c&amp;d</Value></item></Notes>)",
       R"("notes":[{"className":"KeyValuePair","key":"a<\"b","value":"c&d"}])"},
      {"dictionary of objects, a nil value among them", [](auto& b) {
         (b.ById = new TItemMap(generics::doOwnsValues))->Add(7, new TItem(u"s7", 1));
         b.ById->Add(8, nullptr);
       },
       R"(<ById xsi:type="xsd:ArrayOfKeyValuePair"><item xsi:type="xsd:KeyValuePair"><Key xsi:type="xsd:int">7</Key><Value xsi:type="xsd:TItem"><Sku xsi:type="xsd:string">s7</Sku><Qty xsi:type="xsd:int">1</Qty></Value></item><item xsi:type="xsd:KeyValuePair"><Key xsi:type="xsd:int">8</Key><Value xsi:type="xsd:TItem" xsi:nil="true"/></item></ById>)",
       R"("byId":[{"className":"KeyValuePair","key":7,"value":{"className":"TItem","sku":"s7","qty":1}},{"className":"KeyValuePair","key":8,"value":{}}])"},
      {"dictionary with object keys; an empty one writes its bounds", [](auto& b) {
         (b.ByItem = new TItemKeys(generics::doOwnsKeys))->Add(new TItem(u"k", 3), 2.5);
         b.Notes = new TTextMap();
       },
       R"(<Notes xsi:type="xsd:ArrayOfKeyValuePair"></Notes><ById xsi:type="xsd:TObjectDictionaryOfIntAndTItem" xsi:nil="true"/><ByItem xsi:type="xsd:ArrayOfKeyValuePair"><item xsi:type="xsd:KeyValuePair"><Key xsi:type="xsd:TItem"><Sku xsi:type="xsd:string">k</Sku><Qty xsi:type="xsd:int">3</Qty></Key><Value xsi:type="xsd:double">2.5</Value></item></ByItem>)",
       R"("notes":[],"byId":{},"byItem":[{"className":"KeyValuePair","key":{"className":"TItem","sku":"k","qty":3},"value":2.5}])"},
  };
  for (const FormCase& c : cases) {
    SCOPED_TRACE(c.Name);
    TBasket basket;
    c.Fill(basket);
    EXPECT_NE(Text(dsfXML, basket).find(c.Xml), std::string::npos) << Text(dsfXML, basket);
    EXPECT_NE(Text(dsfJSON, basket).find(c.Json), std::string::npos) << Text(dsfJSON, basket);
  }
}

TEST(ContainerForms, RootsAndFields) {
  // A root object list is named "Items"; a root value list passes its empty name on.
  TItemList items;
  items.Add(new TItem(u"r", 1));
  EXPECT_EQ(Text(dsfJSON, items), R"({"className":"TObjectListOfTItem","items":[{"className":"TItem","sku":"r","qty":1}]})");
  EXPECT_NE(Text(dsfXML, items).find(R"(<Items xsi:type="xsd:ArrayOfTObjectListOfTItem"><TItem xsi:type="xsd:TItem">)"),
            std::string::npos);
  TIntList ints;
  ints.Add(3);
  EXPECT_EQ(Text(dsfJSON, ints), R"({"className":"TValueListOfInt","":[3]})");
  // A container in a field is walked as a plain object: helpers serve properties.
  TShelf shelf;
  shelf.Items->Add(new TItem(u"f", 1));
  EXPECT_EQ(Text(dsfJSON, shelf), R"({"className":"TShelf","items":{"className":"TObjectListOfTItem"}})");
}

TEST(ContainerForms, ARegistrationWithoutTheReflectedMembersIsAFault) {
  TBareList bare;
  EXPECT_EQ(MessageOf<EAssertionFailed>([&] { Text(dsfXML, bare); }),
            Format(cVnContainerMemberMissing, {u"TBareList", u"Count"}));
}

}  // namespace
