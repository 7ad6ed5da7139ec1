// Reading containers back: round trips of every element kind in both notations, what a read
// appends to, and texts of the wrong shape (which raise or are passed over, never leak).
#include <gtest/gtest.h>

#include <functional>

#include "containers_domain.h"
#include "vnxml/serializer_builder.h"

namespace {

using namespace containersdomain;

TEST(ContainerReading, EveryKindComesBackInBothNotations) {
  const std::tuple<const char*, bool, std::function<void(TBasket&)>> cases[] = {
      {"object list with a descendant, platform list, empty list", true, [](auto& b) {
         (b.Items = new TItemList())->Add(new TItem(u"a<1>", 2));
         b.Items->Add(new TGift());
         (b.Plain = new TObjectList())->Add(new TGift());
       }},
      {"empty object list", true, [](auto& b) { b.Items = new TItemList(); }},
      {"numbers at their limits", true, [](auto& b) {
         (b.Ints = new TIntList())->Values = {-2147483647 - 1, 0};
         (b.Int64s = new TInt64List())->Values = {9007199254740993LL};
         (b.Floats = new TFloatList())->Values = {-0.125, 1e300};
       }},
      {"texts with escapes and an empty one, booleans, a string list", true, [](auto& b) {
         (b.Texts = new TTextList())->Values = {u"\"<&>\u00e9\r\n", u""};
         (b.Flags = new TFlagList())->Values = {true, false};
         (b.Lines = new TStringList())->Add(u"l&1");
       }},
      {"simple wrappers", true, [](auto& b) {
         (b.Price = new TMoney())->Amount = 0.5;
         (b.Tone = new TToneBox())->Tone = toHigh;
       }},
      {"nil elements keep their places", true, [](auto& b) {
         (b.Items = new TItemList())->Add(nullptr);
         b.Items->Add(new TItem(u"n", 1));
         b.Items->Add(nullptr);
       }},
      // JSON writes enumerations as objects, which a value list passes over.
      {"enumerations", false, [](auto& b) { (b.Tones = new TToneList())->Values = {toMid}; }},
  };
  for (const auto& [name, json, fill] : cases) {
    for (TVnDataSerializationFormatType format : {dsfXML, dsfJSON}) {
      if (format == dsfJSON && !json) continue;
      SCOPED_TRACE(std::string(name) + (format == dsfXML ? " in XML" : " in JSON"));
      TBasket basket, copy;
      fill(basket);
      const std::string text = Text(format, basket);
      Read(format, copy, text);
      EXPECT_EQ(Text(format, copy), text);
    }
  }
}

TEST(ContainerReading, ListsAppendToWhatTheyHold) {
  TBasket basket;
  (basket.Ints = new TIntList())->Add(1);
  (basket.Items = new TItemList())->Add(new TItem(u"old", 1));
  Read(dsfXML, basket, R"(<object xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><Ints><int>2</int>)"
                       R"(<int>3</int></Ints><Items><TItem xsi:type="TGift"/></Items></object>)");
  Read(dsfJSON, basket, R"({"ints":["4",5.0],"items":[{"className":"TItem","sku":"new"}]})");
  EXPECT_EQ(basket.Ints->Values, (std::vector<Integer>{1, 2, 3, 4, 5}));
  ASSERT_EQ(basket.Items->Count(), 3);
  EXPECT_EQ(std::tuple(basket.Items->GetItem(1)->Is<TGift>(), basket.Items->GetItem(2)->Sku), std::tuple(true, u"new"));
}

TEST(ContainerReading, AWrapperConvertsTheTextStraightFirst) {
  // The notation's own conversion of an enumeration takes neither the name nor the ordinal.
  for (const char* text : {"<object><Tone>toHigh</Tone></object>", "<object><Tone>2</Tone></object>"}) {
    TBasket basket;
    Read(dsfXML, basket, text);
    ASSERT_NE(basket.Tone, nullptr) << text;
    EXPECT_EQ(basket.Tone->Tone, toHigh) << text;
  }
}

TEST(ContainerReading, ElementsThatCannotBeMadeArePassedOver) {
  // A class the registry does not know, one the list refuses, no type mark, scalars, arrays.
  for (const char* text : {R"(<object xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><Items>)"
                           R"(<TItem xsi:type="TNoSuch"><Sku>q</Sku></TItem><TItem xsi:type="TStone"/>)"
                           R"(<TItem><Sku>r</Sku></TItem></Items></object>)",
                           R"({"items":[{"className":"TNoSuch","sku":"q"},{"className":"TStone"},{"sku":"r"},7,null,[1]]})"}) {
    TBasket basket;
    Read(FormatOf(text), basket, text);
    ASSERT_NE(basket.Items, nullptr) << text;
    EXPECT_EQ(basket.Items->Count(), 0) << text;
  }
  // A list that owns nothing takes nothing, and raises nothing.
  TBasket basket;
  basket.Items = new TItemList(false);
  Read(dsfXML, basket, R"(<object xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><Items>)"
                       R"(<TItem xsi:type="TItem"/></Items></object>)");
  EXPECT_EQ(basket.Items->Count(), 0);
}

TEST(ContainerReading, DictionariesDoNotReadBack) {
  TBasket source;
  (source.Notes = new TTextMap())->Add(u"a", u"b");
  // XML: the pairs meet the member lookup, which knows no "item"; a dictionary the read made is freed.
  for (bool existing : {false, true}) {
    TBasket basket;
    if (existing) basket.Notes = new TTextMap();
    EXPECT_EQ(MessageOf([&] { Read(dsfXML, basket, Text(dsfXML, source)); }),
              Format(cVnUnknownMember,
                     {u"System.Generics.Collections.TObjectDictionary<System.string,System.string>", u"item"}));
    EXPECT_EQ(basket.Notes != nullptr, existing);
  }
  // JSON: the pairs are passed over.
  TBasket basket;
  Read(dsfJSON, basket, Text(dsfJSON, source));
  ASSERT_NE(basket.Notes, nullptr);
  EXPECT_EQ(basket.Notes->Count(), 0);
}

TEST(ContainerReading, TextsOfTheWrongShapeRaise) {
  for (const char* text : {R"(<object xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><Ints>)"
                           R"(<int xsi:type="xsd:int">x</int></Ints></object>)",
                           "<object><Ints>5</Ints></object>", "<object><Price>abc</Price></object>",
                           R"({"ints":["x"]})", R"({"ints":5})", R"({"price":[1]})"}) {
    TBasket basket;
    EXPECT_THROW(Read(FormatOf(text), basket, text), Exception) << text;
  }
}

}  // namespace
