// What the XML reader builds from text, and what bad text does: the failure, and nothing left
// half-linked or leaked.
#include <gtest/gtest.h>

#include "../serial_domain.h"
#include "vnxml/common/classes.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "support/raises.h"
#include "support/work_counter.h"
#include "vnxml/xml_serializer.h"

VN_TEST_COUNT_ALLOCATIONS()

namespace {

using namespace serialdomain;

/// The message of what ACall raises, with its class name in front.
template <class F>
std::string Failure(F ACall) {
  try {
    ACall();
  } catch (const Exception& e) {
    return UnicodeToUtf8(e.ClassName() + u": " + e.Message());
  }
  return "<no exception>";
}

std::string Read(TAll& ATarget, const std::string& AInner, const char* ARootAttributes = "") {
  return Failure([&] {
    VnDeserialize(dsfXML, TValue::FromObject(&ATarget),
                  std::string("<object ") + ARootAttributes + ">" + AInner + "</object>");
  });
}

using vn::test::U8;

TEST(XMLReader, MembersFromElementsAndRootAttributes) {
  TAll all;
  const TAddress* const home = all.Home = new TAddress();
  EXPECT_EQ(Read(all,
                 "<type>ignored</type><className>x</className>"
                 "<Home><City>Rome</City></Home><Other xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                 "xsi:type=\"xsd:TPostBox\"><Box>4</Box></Other><Missing xsi:nil=\"true\" "
                 "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"/><Kind>2</Kind><Color>Blue</Color>"
                 "<Colors>[Red,Green]</Colors><Text>a&amp;b</Text><Markup><b>x</b></Markup><Notes><item>n</item>"
                 "<item></item></Notes><Numbers><int>4</int><int>5</int></Numbers><Grid><a><int>1</int></a></Grid>",
                 "I32=\"42\" Unknown=\"1\" Title=\"T\""), "<no exception>");
  EXPECT_EQ(all.Home, home) << "an assigned member is filled in place";
  ASSERT_NE(CastObject<TPostBox>(all.Other), nullptr);
  EXPECT_EQ(std::tuple(all.I32, all.GetTitle(), all.Home->City, static_cast<TPostBox*>(all.Other)->Box, all.Missing),
            std::tuple(42, u"T", u"Rome", 4, nullptr));
  EXPECT_EQ(std::tuple(all.Kind, all.Color, all.Colors, all.Text, all.Markup, all.Notes->GetCount()),
            std::tuple(kStaff, clBlue, TColors{clRed, clGreen}, u"a&b", u"<b>x</b>", 2));
  EXPECT_EQ(std::tuple(all.Numbers, all.Grid),
            std::tuple(std::vector<Integer>{4, 5}, std::vector<std::vector<Integer>>{{1}}));
}

TEST(XMLReader, EnumerationTextsAndEmptyTexts) {
  const std::pair<const char*, TKind> cases[] = {
      {"<Kind>2</Kind>", kStaff}, {"<Kind>kBoss</Kind>", kBoss}, {"<Kind></Kind>", kStaff}};
  for (const auto& [text, kind] : cases) {
    TAll all;
    all.Kind = kStaff;
    EXPECT_EQ((std::tuple{Read(all, text), all.Kind}), std::tuple("<no exception>", kind)) << text;
  }
}

TEST(XMLReader, BadTextRaisesTheRightFailure) {
  const std::string setFailure = "Exception: " + U8(Format(cVnFailedToSetValue, {u"abc"}));
  // Expected: the whole text, or its start when it ends in "..."
  struct Case { const char* Inner; std::string Expected; } cases[] = {
      {"<Nope>1</Nope>", "EVnSerializeException: " + U8(Format(cVnUnknownMember, {u"uSerial.TAll", u"Nope"}))},
      {"<I32>abc</I32>", setFailure + "..."}, {"<Kind>abc</Kind>", setFailure + "..."},
      {"<U8>300</U8>", "Exception: " + U8(Format(cVnFailedToSetValue, {u"300"})) + "..."},
      {"<Home xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:type=\"xsd:TNoSuch\"/>",
       "ENotSupportedException: " + U8(Format(cVnFailedToCreateMember, {u"xsd:TNoSuch"}))},
      {"<Home xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:type=\"xsd:TStranger\"/>",
       "EVnSerializeException: " + U8(Format(cVnClassNotADescendant, {u"TStranger", u"TAddress"}))},
      {"<Triple><int>1</int><int>2</int><int>3</int><int>4</int></Triple>",
       "EVnSerializeException: " + U8(Format(cVnArrayFull, {u"Triple[3]", u"3"}))},
      {"<I32>1</I32", "EParserError: Line 1..."},
      {"<Boxed xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:type=\"xsd:ArrayOfTAddress\"><TAddress/></Boxed>",
       "EVnSerializeException: " + U8(Format(cVnBoxedObjectUnowned, {u"[0]"}))},
      {"<Numbers xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:type=\"xsd:int\">1</Numbers>",
       "EVnSerializeException: " + U8(Format(cVnArrayExpected, {u"Numbers", u"1"}))},
  };
  for (const Case& c : cases) {
    TAll all;
    const size_t compared = c.Expected.ends_with("...") ? c.Expected.size() - 3 : std::string::npos;
    EXPECT_EQ(Read(all, c.Inner).substr(0, compared), c.Expected.substr(0, compared)) << c.Inner;
  }
}

TEST(XMLReader, AFailedReadFreesAndUnlinksWhatItCreated) {
  TAll original;
  Fill(original, 0);
  const std::string text = VnSerialize(dsfXML, &original);
  // Cut the text at many places: each read fails, and no member keeps a created object.
  for (size_t cut = 1; cut < text.size(); cut += 37) {
    TAll all;
    TObjectList created(false);
    std::string failure = Failure([&] { VnDeserialize(dsfXML, TValue::FromObject(&all), text.substr(0, cut), &created); });
    EXPECT_NE(failure, "<no exception>") << cut << text.substr(cut > 60 ? cut - 60 : 0, 60);
    EXPECT_EQ(std::tuple(all.Home, all.Other, created.GetCount()), std::tuple(nullptr, nullptr, 0)) << cut;
    EXPECT_TRUE(all.Places.empty() || all.Places.size() == 2) << cut;
  }
}

TEST(XMLReader, CreatedObjectsGoToTheListAndTheMembers) {
  TAll original;
  Fill(original, 0);
  TAll all;
  TObjectList created(false);
  VnDeserialize(dsfXML, TValue::FromObject(&all), VnSerialize(dsfXML, &original), &created);
  EXPECT_EQ(std::tuple(created.GetCount(), created.IndexOf(all.Home)), std::tuple(4, 0));  // Home, Other, 2 places
  // An array read again, shorter, keeps the objects beyond it: none is dropped unfreed.
  TAll twice;
  VnDeserialize(dsfXML, TValue::FromObject(&twice),
                "<object><Places><TAddress/><TAddress/></Places><Places><TAddress/></Places></object>");
  EXPECT_EQ(twice.Places.size(), 2u);
}

TEST(XMLReader, CreateFromTheClassTheTextNames) {
  TPostBox box(u"Bergen", 3);
  std::unique_ptr<TObject> made = VnCreateFrom(dsfXML, VnSerialize(dsfXML, &box));
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(VnSerialize(dsfXML, made.get()), VnSerialize(dsfXML, &box));  // its type mark names the class
  EXPECT_EQ(Failure([] { VnCreateFrom(dsfXML, "<object><City>x</City></object>"); }),
            "Exception: " + U8(cVnNoClassNameInStream));
  EXPECT_EQ(Failure([] { VnCreateFrom(dsfXML, "<object xsi:type=\"xsd:TNoSuch\"></object>"); }),
            "Exception: " + U8(Format(cVnNoClassOfType, {u"xsd:TNoSuch"})));
}

TEST(XMLReader, RootArraysAndRecordsByAddress) {
  std::vector<Integer> numbers{9};
  VnDeserialize(dsfXML, &numbers, TypeInfoOf<std::vector<Integer>>(), "<array><int>1</int><int>2</int></array>");
  EXPECT_EQ(numbers, (std::vector<Integer>{1, 2}));
  TPoint point;
  VnDeserialize(dsfXML, &point, TypeInfoOf<TPoint>(), "<record X=\"5\"><Label>q</Label></record>");
  EXPECT_EQ(point, (TPoint{5, 0, u"q"}));
}

TEST(XMLReader, DeepTextEndsInAnErrorWithWorkInProportion) {
  // A self-referencing type read from ever deeper text: an orderly failure past the bound.
  auto nested = [](int ADepth) {
    std::string text = "<object>";
    for (int i = 0; i < ADepth; ++i) text += "<Next>";
    for (int i = 0; i < ADepth; ++i) text += "</Next>";
    return text + "</object>";
  };
  TChain chain;
  EXPECT_EQ(Failure([&] { VnDeserialize(dsfXML, TValue::FromObject(&chain), nested(cVnMaxNesting - 2)); }),
            "<no exception>");
  TChain deep;
  const std::string failure = Failure([&] { VnDeserialize(dsfXML, TValue::FromObject(&deep), nested(100000)); });
  EXPECT_TRUE(failure.starts_with("EVnSerializeException: ")) << failure;
  EXPECT_NE(failure.find("The nesting is too deep!"), std::string::npos);
  EXPECT_EQ(deep.Next, nullptr);
}

TEST(XMLReader, WideAndLongValuesTakeWorkInProportionBothWays) {
  auto roundTrip = [](size_t ACount) {
    TAll all;
    all.Words.assign(ACount, u"word");
    all.Points.assign(ACount, TPoint{1, 2, u"p"});
    for (size_t i = 0; i < ACount; ++i) all.Notes->Add(u"n");
    TAll copy;
    VnDeserialize(dsfXML, TValue::FromObject(&copy), VnSerialize(dsfXML, &all));
    ASSERT_EQ(copy.Points.size(), ACount);
  };
  vn::test::ExpectLinearWork(roundTrip, 500);
}

}  // namespace
