// Text of the wrong shape, unknown names and classes, cut text: a failure that names the member,
// and nothing created is left linked or leaked.
#include <gtest/gtest.h>

#include "json_domain.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

namespace jsondomain {
namespace {

UnicodeString At(std::u16string_view APath, const UnicodeString& AMessage) {
  return UnicodeString(cVnJSONFailureAtPrefix) + u"\"" + UnicodeString(APath) + u"\"\r\n" + AMessage;
}
UnicodeString Shape(std::u16string_view APath, std::u16string_view AExpected, std::u16string_view AFound) {
  return vn::Format(cVnJSONShapeMismatch, {APath, AExpected, AFound});
}

struct TBox { TValue Inner; TPet* Pet = nullptr; };
VN_REGISTER_TYPE(TBox, u"uJSONTest") { b.Public(u"Inner", &TBox::Inner).Public(u"Pet", &TBox::Pet); }

TEST(JSONBadInput, FailsNamingTheMember) {
  const std::pair<const char*, UnicodeString> cases[] = {
      {R"({"i":{}})", Shape(u"i", u"a value of Integer", u"an object")},
      {R"({"i":[1]})", Shape(u"i", u"a value of Integer", u"an array")},
      {R"({"ints":{}})", Shape(u"ints", u"an array of Integer", u"an object")},
      {R"({"ints":5})", Shape(u"ints", u"an array of Integer", u"a number")},
      {R"({"ints":"5"})", Shape(u"ints", u"an array of Integer", u"a string")},
      {R"({"point":5})", Shape(u"point", u"an object of TPoint", u"a number")},
      {R"({"point":[]})", Shape(u"point", u"an object of TPoint", u"an array")},
      {R"({"ints":[[1]]})", Shape(u"ints[-1]", u"a value of Integer", u"an array")},
      {R"([1])", Shape(u"", u"an object of TShapes", u"an array")},
      {"", Shape(u"", u"an object of TShapes", u"the end of the text")},
      {R"({"i":1}{"i":2})", Shape(u"i", u"the end of the text", u"a further value")},
      {R"({"point":null})", At(u"point", cVnJSONRecordNotNillable)},
      {R"({"point":"5"})", At(u"point", cVnJSONObjectDataExpected)},
      {R"({"tone":{"bad":1}})", At(u"tone", vn::Format(cVnJSONEnumMemberExpected, {u"bad"}))},
      {R"({"nosuch":1})", At(u"nosuch", vn::Format(cVnUnknownMember, {u"uJSONTest.TShapes", u"nosuch"}))},
      {R"({"any":{"className":"TBox","pet":{"className":"TPet"}}})", vn::Format(cVnBoxedObjectUnowned, {u"pet"})},
      {R"({"pet":{"className":"TNoSuch"}})", At(u"pet", vn::Format(cVnFailedToCreateMember, {u"TNoSuch"}))},
      {R"({"pet":{"className":"TRock"}})", At(u"pet", vn::Format(cVnClassNotADescendant, {u"TRock", u"TPet"}))},
      {R"({"pets":[{"className":"TPet"},{"className":"TRock","weight":1}]})",
       At(u"pets[1]", vn::Format(cVnClassNotADescendant, {u"TRock", u"TPet"}))},
  };
  for (const auto& [text, message] : cases)
    EXPECT_EQ(MessageOf([&] { TShapes o; FromJSON(o, text); }), message) << text;
}

TEST(JSONBadInput, ConversionFailuresKeepTheirCauseBehindThePath) {
  const std::pair<const char*, const char16_t*> cases[] = {
      {R"({"i":"abc"})", u"i"}, {R"({"points":[{"x":"q"}]})", u"points[0].x"},
      {R"({"pet":{"className":"TPet","legs":"many"}})", u"pet.legs"},
      {R"({"tone":7})", u"tone"}, {R"({"data":{"data":"**"}})", u"data"},
      {R"({"any":{"className":"TTone","asInt":9}})", u"any"},
      {R"({"any":{"className":"SetOfTTone","asInt":8}})", u"any"},
  };
  for (const auto& [text, path] : cases) {
    const UnicodeString message = MessageOf([&] { TShapes o; FromJSON(o, text); });
    EXPECT_TRUE(message.starts_with(At(path, u""))) << text << " gave " << UnicodeToUtf8(message);
  }
}

TEST(JSONBadInput, ReservedAndUnknownNamesInPlaces) {
  TShapes o;
  // Reserved names the class lacks are passed over, with their values of any shape.
  FromJSON(o, R"({"className":"TShapes","type":{"a":[1,{"b":2}]},"owner":[1],"parent":null,"i":3})");
  EXPECT_EQ(o.I, 3);
  // A nil object whose text names no class stays nil and its members are passed over.
  FromJSON(o, R"({"spare":{},"pet":{"className":"TPet","name":"x"}})");
  EXPECT_EQ(o.Spare, nullptr);
  ASSERT_NE(o.Pet, nullptr);
  // An object given as a string fills the object that is there.
  FromJSON(o, R"({"pet":"{\"className\":\"TPet\",\"name\":\"y\"}"})");
  EXPECT_EQ(o.Pet->Name, u"y");
  // So does an array's own text.
  FromJSON(o, R"({"ints":" [4,5]","points":"[{\"x\":1}]"})");
  EXPECT_EQ(std::tuple(o.Ints, o.Points), std::tuple(std::vector<Integer>{4, 5}, std::vector<TPoint>{{1, 0}}));
  // An enumeration by name or number, a set by its names; asInt decides when it comes last.
  FromJSON(o, R"({"tone":"toMid","tones":{"asString":"[toMid]"},"shade":{"asString":"Light","asInt":1}})");
  EXPECT_EQ(std::tuple(o.Tone, o.Tones, o.Shade), std::tuple(toMid, TTones{toMid}, shDark));
}

TEST(JSONBadInput, CutTextFailsAndLeavesNoCreatedObjectLinked) {
  TShapes source;
  source.Pet = new TCat;
  source.Pets = {new TPet, new TCat};
  source.Notes->Add(u"n");
  source.Points = {{1, 2}};
  const std::string text = ToJSON(source);
  for (size_t cut = 0; cut + 1 < text.size(); ++cut) {
    TShapes o;
    EXPECT_NE(MessageOf([&] { FromJSON(o, text.substr(0, cut)); }), u"(nothing raised)") << cut;
    // Created objects are gone again: none hangs in a member (ASan sees a double free otherwise).
    EXPECT_EQ(o.Pet, nullptr) << cut;
    for (TPet* p : o.Pets) EXPECT_EQ(p, nullptr) << cut;
  }
}

TEST(JSONBadInput, DeepTextEndsInAFailureNotInTheStack) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += R"({"className":"TPet","friend":)";
  TShapes o;
  // Records boxed in TValue members are read by readers of their own: their depth is bounded too.
  std::string boxed = R"({"any":)";
  for (int i = 0; i < 100; ++i) boxed += R"({"className":"TBox","inner":)";
  for (const std::string& text : {R"({"pets":[)" + deep, boxed + "1" + std::string(101, '}')}) {
    const UnicodeString message = MessageOf([&] { FromJSON(o, text); });
    EXPECT_NE(message.find(u"nesting is too deep"), UnicodeString::npos) << UnicodeToUtf8(message);
  }
  EXPECT_TRUE(o.Pets.empty() && o.Any.IsEmpty());
}

TEST(JSONBadInput, FormTextThroughTheUrlEncodedParameter) {
  TShapes o;
  IPtr<IVnDeserializer> reader = VnCreateDeserializer(dsfJSON, &o, TypeInfoOf<TShapes>());
  reader->SetParam(u"UrlEncoded", u"true");
  reader->Deserialize(TVnSerializedData("i=5&s=a+b%21&ints[]=1&ints[]=2&point[x]=3"));
  EXPECT_EQ(std::tuple(o.I, o.S, o.Ints, o.Point.X), std::tuple(5, u"a b!", std::vector<Integer>{1, 2}, 3));
}

}  // namespace
}  // namespace jsondomain
