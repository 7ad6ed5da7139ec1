// Object graph to JSON text and back, over a member of every shape: each row changes one member,
// the text must show it in the notation's form, and reading the text into a new object must give
// the same text again.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <functional>

#include "json_domain.h"
#include "vnxml/json_document.h"

namespace jsondomain {
namespace {

// Fragment: what the text must hold
struct Shape { const char* Name; std::function<void(TShapes&)> Set; const char* Fragment; };

const Shape kShapes[] = {
    {"byte", [](TShapes& o) { o.B = 255; }, R"("b":255)"},
    {"word", [](TShapes& o) { o.W = 65535; }, R"("w":65535)"},
    {"longword", [](TShapes& o) { o.LW = UINT32_MAX; }, R"("lW":4294967295)"},
    {"uint64", [](TShapes& o) { o.U64 = UINT64_MAX; }, R"("u64":18446744073709551615)"},
    {"shortint", [](TShapes& o) { o.SI = -128; }, R"("sI":-128)"},
    {"smallint", [](TShapes& o) { o.SM = -32768; }, R"("sM":-32768)"},
    {"integer", [](TShapes& o) { o.I = INT32_MIN; }, R"("i":-2147483648)"},
    {"int64", [](TShapes& o) { o.I64 = INT64_MIN; }, R"("i64":-9223372036854775808)"},
    {"single", [](TShapes& o) { o.F32 = 0.1f; }, R"("f32":0.1)"},
    {"double", [](TShapes& o) { o.F64 = -1e-300; }, R"("f64":-1E-300)"},
    {"extended", [](TShapes& o) { o.F80 = 3.14159265358979323846L; }, R"("f80":3.14159265358979)"},
    {"NaN, which has no JSON number", [](TShapes& o) { o.F64 = std::numeric_limits<Double>::quiet_NaN(); }, R"("f64":null)"},
    {"char", [](TShapes& o) { o.C = u'\u00e9'; }, "\"c\":\"\xc3\xa9\""},
    {"string escapes", [](TShapes& o) { o.S = u"\"\\/\b\f\n\r\t"; }, R"("s":"\"\\\/\b\f\n\r\t")"},
    {"string beyond Latin-1", [](TShapes& o) { o.S = u"\u20ac\U0001F600"; }, R"("s":"\u20AC\uD83D\uDE00")"},
    {"boolean", [](TShapes& o) { o.Flag = true; }, R"("flag":true)"},
    {"enumeration", [](TShapes& o) { o.Tone = toHigh; }, R"("tone":{"className":"TTone","asString":"toHigh","asInt":2})"},
    {"enumeration with prefix", [](TShapes& o) { o.Shade = shDark; }, R"("asString":"Dark","asInt":1})"},
    {"set", [](TShapes& o) { o.Tones = TTones{toLow, toHigh}; }, R"("asString":"[toLow,toHigh]","asInt":5})"},
    {"date", [](TShapes& o) { o.Day = 45000; }, R"("day":"2023-03-15")"},
    {"time", [](TShapes& o) { o.Clock = 0.5; }, R"("clock":"12:00:00.000")"},
    {"date-time", [](TShapes& o) { o.Stamp = 45000.25; }, R"("stamp":"2023-03-15T06:00:00.000")"},
    {"variant integer", [](TShapes& o) { o.V = Variant(Integer(7)); }, R"("v":7)"},
    {"variant string", [](TShapes& o) { o.V = Variant(UnicodeString(u"x\"")); }, R"("v":"x\"")"},
    {"variant double", [](TShapes& o) { o.V = Variant(2.5); }, R"("v":2.5)"},
    {"variant boolean", [](TShapes& o) { o.V = Variant(true); }, R"("v":true)"},
    {"dynamic array", [](TShapes& o) { o.Ints = {-1, 0, INT32_MAX}; }, R"("ints":[-1,0,2147483647])"},
    {"static array", [](TShapes& o) { o.Fixed = {1, 2, 3}; }, R"("fixed":[1,2,3])"},
    {"array of strings", [](TShapes& o) { o.Words = {u"a", u"b c", u"\"q\""}; }, R"("words":["a","b c","\"q\""])"},
    {"array of enumerations", [](TShapes& o) { o.ToneList = {toMid}; }, R"("toneList":[{"className":"TTone","asString":"toMid","asInt":1}])"},
    {"record", [](TShapes& o) { o.Point = {3, -4}; }, R"("point":{"className":"TPoint","x":3,"y":-4})"},
    {"array of records", [](TShapes& o) { o.Points = {{1, 2}, {3, 4}}; }, R"("points":[{"className":"TPoint","x":1,"y":2},{"className":"TPoint","x":3,"y":4}])"},
    {"object of the declared class", [](TShapes& o) { o.Pet = new TPet(u"Rex"); }, R"("pet":{"className":"TPet","name":"Rex","legs":4,"friend":{}})"},
    {"object of a subclass", [](TShapes& o) { o.Pet = new TCat(u"Tom"); }, R"("pet":{"className":"TCat","purrs":false,"name":"Tom")"},
    {"array of objects", [](TShapes& o) { o.Pets = {new TPet(u"a"), new TCat(u"b")}; }, R"("pets":[{"className":"TPet","name":"a","legs":4,"friend":{}},{"className":"TCat")"},
    // created objects have the class the text names
    {"object and array of objects",
     [](TShapes& o) { o.Pet = new TCat(u"Tom"); o.Pets = {new TPet(u"a"), new TCat(u"b")}; },
     R"("pet":{"className":"TCat")"},
    {"string list", [](TShapes& o) { o.Notes->Add(u"a"); o.Notes->Add(u"b\n"); }, R"("notes":{"className":"StringList","items":["a","b\n"]})"},
    {"stream", [](TShapes& o) { o.Data->WriteBuffer("\0\1\xff", 3); }, R"("data":{"className":"TMemoryStream","data":"AAH/"})"},
    {"TValue integer", [](TShapes& o) { o.Any = TValue::From<Int64>(5); }, R"("any":5)"},
    {"TValue float", [](TShapes& o) { o.Any = TValue::From<Extended>(2.5L); }, R"("any":2.5)"},
    {"TValue string", [](TShapes& o) { o.Any = TValue::From(UnicodeString(u"s")); }, R"("any":"s")"},
    {"TValue enumeration", [](TShapes& o) { o.Any = TValue::From(toMid); }, R"("any":{"className":"TTone","asString":"toMid","asInt":1})"},
    {"TValue set", [](TShapes& o) { o.Any = TValue::From(TTones{toLow, toHigh}); }, R"("any":{"className":"SetOfTTone","asString":"[toLow,toHigh]","asInt":5})"},
    {"TValue record", [](TShapes& o) { o.Any = TValue::From(TPoint{1, 2}); }, R"("any":{"className":"TPoint","x":1,"y":2})"},
    {"JSON document", [](TShapes& o) { o.Doc = new TVnJSONDocument(u"{\"a\":[1,{\"b\":\"\\u20AC\"}]}"); }, R"("doc":{"a": [1, {"b": "\u20AC"}]})"},
    {"JSON document holding an array", [](TShapes& o) { o.Doc = new TVnJSONDocument(u"[true,null]"); }, R"("doc":[true, null])"},
    {"published property", [](TShapes& o) { o.SetProp(9); }, R"("prop":9)"},
    {"JSON string kept as written", [](TShapes& o) { o.Raw = VnJSONString(u"plain"); }, R"("raw":"plain")"},
};

TEST(JSONRoundTrip, TextShowsEachMemberAndReadsBackToTheSameText) {
  for (const Shape& shape : kShapes) {
    SCOPED_TRACE(shape.Name);
    TShapes blank, source, copy;
    shape.Set(source);
    const std::string text = ToJSON(source);
    EXPECT_NE(text, ToJSON(blank));
    EXPECT_NE(text.find(shape.Fragment), std::string::npos) << text;
    FromJSON(copy, text);
    EXPECT_EQ(ToJSON(copy), text);
  }
}

TEST(JSONRoundTrip, TValueNumbersKeepTheirKind) {
  TShapes o;
  for (const auto& [text, kind] : {std::pair(R"({"any":5})", tkInt64), std::pair(R"({"any":5.0})", tkFloat)}) {
    FromJSON(o, text);
    EXPECT_EQ(o.Any.Kind(), kind) << text;
  }
  FromJSON(o, R"({"any":null,"v":null})");
  EXPECT_TRUE(VarIsNull(o.Any.AsVariant()) && VarIsNull(o.V));
}

TEST(JSONRoundTrip, ATValueTakesAnObjectOnlyForACallerThatListsCreatedObjects) {
  const std::string text = R"({"any":{"className":"TCat","name":"Tom","purrs":true},"doc":{"className":"x"}})";
  TShapes plain, listed;
  FromJSON(plain, text);
  EXPECT_TRUE(plain.Any.IsEmpty());
  TObjectList created(true);
  VnDeserialize(dsfJSON, TValue::FromObject(&listed), text, &created);
  ASSERT_EQ(created.GetCount(), 2) << "the cat and the document";
  ASSERT_TRUE(listed.Any.IsObject());
  EXPECT_EQ(std::tuple(listed.Any.AsObject(), static_cast<TCat*>(listed.Any.AsObject())->Purrs,
                       listed.Doc->GetAsJSON()),
            std::tuple(created.GetItem(0), true, u"{\"className\": \"x\"}"));
  created.Extract(listed.Doc);
  // Given twice, the member keeps the later object; the earlier one is freed and unlisted.
  TShapes twice;
  TObjectList madeTwice(true);
  VnDeserialize(dsfJSON, TValue::FromObject(&twice),
                R"({"any":{"className":"TCat","name":"Tom"},"any":{"className":"TCat","name":"Kit"}})", &madeTwice);
  ASSERT_EQ(madeTwice.GetCount(), 1);
  EXPECT_EQ(std::tuple(twice.Any.AsObject(), static_cast<TCat*>(twice.Any.AsObject())->Name),
            std::tuple(madeTwice.GetItem(0), u"Kit"));
  TShapes textLast;
  TObjectList madeThenText(true);
  VnDeserialize(dsfJSON, TValue::FromObject(&textLast), R"({"any":{"className":"TCat"},"any":"x"})", &madeThenText);
  EXPECT_EQ(std::tuple(madeThenText.GetCount(), textLast.Any.AsString()), std::tuple(0, u"x"));
  // A failed read frees the object again and empties the value.
  TShapes failed;
  TObjectList none(false);
  EXPECT_NE(MessageOf([&] { VnDeserialize(dsfJSON, TValue::FromObject(&failed), text + "x", &none); }), u"(nothing raised)");
  EXPECT_EQ(std::tuple(failed.Any.IsEmpty(), none.GetCount()), std::tuple(true, 0));
}

TEST(JSONRoundTrip, DocumentsAndStreamsAsTheirOwnText) {
  // A JSON document is the text its own writer gives; with "excluderoot" without the brackets.
  TVnJSONDocument doc, back;
  VnDeserialize(dsfJSON, TValue::FromObject(&doc), TVnSerializedData(R"({"a":[1,"x"],"b":null})"));
  EXPECT_EQ(VnSerialize(dsfJSON, &doc), R"({"a": [1, "x"], "b": null})");
  EXPECT_EQ(test::SerializeWith(dsfJSON, TValue::FromObject(&doc), {{u"excluderoot", u"true"}}),
            R"("a": [1, "x"], "b": null)");
  // A stream member also reads from a bare Base64 string.
  TShapes o;
  FromJSON(o, R"({"data":"AAH/"})");
  EXPECT_EQ(std::string(static_cast<const char*>(o.Data->GetMemory()), static_cast<size_t>(o.Data->GetSize())),
            std::string("\0\1\xFF", 3));
}

}  // namespace
}  // namespace jsondomain
