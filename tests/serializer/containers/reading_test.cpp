// Reading containers back: round trips of every element kind in both notations, what a read
// appends to, and texts of the wrong shape (which raise or are passed over, never leak).
#include <gtest/gtest.h>

#include <functional>

#include "containers_domain.h"
#include "vnxml/serializer_builder.h"

namespace {

using namespace containersdomain;

struct RoundTrip {
  const char* Name;
  std::function<void(TBasket&)> Fill;
  bool Json;  ///< false: the JSON form of these elements does not read back
};

TEST(ContainerReading, EveryKindComesBackInBothNotations) {
  const RoundTrip cases[] = {
      {"object list with a descendant",
       [](TBasket& b) {
         b.Items = new TItemList();
         b.Items->Add(new TItem(u"a<1>", 2));
         auto* gift = new TGift();
         gift->Note = u"wrap & tie";
         b.Items->Add(gift);
       },
       true},
      {"platform object list, empty object list",
       [](TBasket& b) {
         b.Plain = new TObjectList();
         b.Plain->Add(new TGift());
         b.Items = new TItemList();
       },
       true},
      {"integers, 64-bit integers, floats",
       [](TBasket& b) {
         b.Ints = new TIntList();
         b.Ints->Add(-2147483647 - 1);
         b.Ints->Add(0);
         b.Int64s = new TInt64List();
         b.Int64s->Add(9007199254740993LL);
         b.Floats = new TFloatList();
         b.Floats->Add(-0.125);
         b.Floats->Add(1e300);
       },
       true},
      {"texts with escapes and an empty one, booleans, a string list",
       [](TBasket& b) {
         b.Texts = new TTextList();
         b.Texts->Add(u"\"<&>\u00e9\r\n");
         b.Texts->Add(u"");
         b.Flags = new TFlagList();
         b.Flags->Add(true);
         b.Flags->Add(false);
         b.Lines = new TStringList();
         b.Lines->Add(u"l&1");
       },
       true},
      {"simple wrappers, set and empty", [](TBasket& b) {
         b.Price = new TMoney();
         b.Price->Amount = 0.5;
         b.Tone = new TToneBox();
         b.Tone->Tone = toHigh;
       },
       true},
      {"enumerations, and a nil element", [](TBasket& b) {
         b.Tones = new TToneList();
         b.Tones->Add(toMid);
         b.Items = new TItemList();
         b.Items->Add(nullptr);
       },
       false},
  };
  for (const RoundTrip& c : cases) {
    for (TVnDataSerializationFormatType format : {dsfXML, dsfJSON}) {
      if (format == dsfJSON && !c.Json) continue;
      SCOPED_TRACE(std::string(c.Name) + " in " + FormatName(format));
      TBasket basket;
      c.Fill(basket);
      const std::string text = Text(format, basket);
      TBasket copy;
      Read(format, copy, text);
      EXPECT_EQ(Text(format, copy), text);
    }
  }
}

TEST(ContainerReading, ListsAppendToWhatTheyHold) {
  TBasket basket;
  basket.Ints = new TIntList();
  basket.Ints->Add(1);
  basket.Items = new TItemList();
  basket.Items->Add(new TItem(u"old", 1));
  Read(dsfXML, basket, R"(<object xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><Ints><int>2</int><int>3</int></Ints><Items><TItem xsi:type="TGift"/></Items></object>)");
  Read(dsfJSON, basket, R"({"ints":["4",5.0],"items":[{"className":"TItem","sku":"new"}]})");
  EXPECT_EQ(basket.Ints->Values, (std::vector<Integer>{1, 2, 3, 4, 5}));
  ASSERT_EQ(basket.Items->Count(), 3);
  EXPECT_TRUE(basket.Items->GetItem(1)->Is<TGift>());
  EXPECT_EQ(basket.Items->GetItem(2)->Sku, u"new");
}

TEST(ContainerReading, AWrapperConvertsTheTextStraightFirst) {
  // The enumeration's name and its ordinal convert directly; the notation's own conversion of
  // an enumeration would take neither name.
  for (const char* text : {"<object><Tone>toHigh</Tone></object>", "<object><Tone>2</Tone></object>"}) {
    TBasket basket;
    Read(dsfXML, basket, text);
    ASSERT_NE(basket.Tone, nullptr) << text;
    EXPECT_EQ(basket.Tone->Tone, toHigh) << text;
  }
  TBasket basket;
  EXPECT_THROW(Read(dsfXML, basket, "<object><Price>abc</Price></object>"), Exception);
}

TEST(ContainerReading, ElementsThatCannotBeMadeArePassedOver) {
  const char* texts[] = {
      // a class the registry does not know, one the list refuses, no type mark at all
      R"(<object><Items xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><TItem xsi:type="TNoSuch"><Sku>q</Sku></TItem><TItem xsi:type="TStone"/><TItem><Sku>r</Sku></TItem></Items></object>)",
      R"({"items":[{"className":"TNoSuch","sku":"q"},{"className":"TStone"},{"sku":"r"},7,null,[1]]})",
  };
  for (const char* text : texts) {
    TBasket basket;
    Read(text[0] == '<' ? dsfXML : dsfJSON, basket, text);
    ASSERT_NE(basket.Items, nullptr) << text;
    EXPECT_EQ(basket.Items->Count(), 0) << text;
  }
  // A list that owns nothing takes nothing, and raises nothing.
  TBasket basket;
  basket.Items = new TItemList(false);
  Read(dsfXML, basket, R"(<object><Items><TItem xsi:type="TItem" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"/></Items></object>)");
  EXPECT_EQ(basket.Items->Count(), 0);
}

TEST(ContainerReading, DictionariesDoNotReadBack) {
  TBasket source;
  source.Notes = new TTextMap();
  source.Notes->Add(u"a", u"b");
  // XML: the pairs meet the member lookup, which knows no "item"; what the read made is freed.
  for (bool existing : {false, true}) {
    TBasket basket;
    if (existing) basket.Notes = new TTextMap();
    try {
      Read(dsfXML, basket, Text(dsfXML, source));
      ADD_FAILURE() << "no failure";
    } catch (const Exception& e) {
      EXPECT_EQ(e.Message(), Format(cVnUnknownMember, {u"System.Generics.Collections.TObjectDictionary<System.string,System.string>", u"item"}));
    }
    EXPECT_EQ(basket.Notes != nullptr, existing);
  }
  // JSON: the pairs are passed over.
  TBasket basket;
  Read(dsfJSON, basket, Text(dsfJSON, source));
  ASSERT_NE(basket.Notes, nullptr);
  EXPECT_EQ(basket.Notes->Count(), 0);
}

TEST(ContainerReading, TextsOfTheWrongShapeRaise) {
  const char* texts[] = {
      R"(<object><Ints xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><int xsi:type="xsd:int">x</int></Ints></object>)",
      R"(<object><Ints>5</Ints></object>)",
      R"({"ints":["x"]})",
      R"({"ints":5})",
      R"({"price":[1]})",
  };
  for (const char* text : texts) {
    TBasket basket;
    EXPECT_THROW(Read(text[0] == '<' ? dsfXML : dsfJSON, basket, text), Exception) << text;
  }
}

}  // namespace
