// Selection by path: steps, items, the order of recursive results, starts, alternatives, and
// jsoCreate (a missing name becomes a member with a null value, once).
#include "json/path/path_helpers.h"

#include <utility>

#include "vnxml/common/sysutils.h"

namespace vn {
namespace {

using test::Sel;

constexpr char16_t kStore[] =
    u"{\"store\":{\"book\":[{\"title\":\"A\",\"price\":8},{\"title\":\"B\",\"price\":12,\"tags\":[\"x\",\"y\"]},"
    u"{\"title\":\"C\",\"price\":\"na\"},{\"title\":\"D\"}],\"bicycle\":{\"price\":20}},"
    u"\"a.b\":1,\"0\":\"zero\",\"list\":[10,11,12,13],\"x\":{\"0\":\"m\"},\"a$\":true}";

TEST(JsonPathSelect, StepsItemsAndRecursiveSteps) {
  TVnJSONDocument doc(kStore);
  const std::pair<const char16_t*, const char*> cases[] = {
      {u"$.store.book[*].title", "\"A\" \"B\" \"C\" \"D\""},
      {u"$.list[]", ""}, {u"$.list[-1]", "13"}, {u"$.list[-5]", ""},
      {u"$.list[(@.length-1)]", "13"}, {u"$.list[(@.length-5)]", "13"},
      // slices: start, end, step; the first element is taken without looking at the end
      {u"$.list[:2]", "10 11"}, {u"$.list[-2:]", "12 13"}, {u"$.list[0::2]", "10 12"},
      {u"$.list[2:1]", "12"},   {u"$.list[4:]", ""},
      {u"$.list[0]$", ""},  // the rest is looked at on containers only
  };
  for (const auto& [path, expected] : cases) EXPECT_EQ(Sel(doc, path), expected) << UnicodeToUtf8(path);
  EXPECT_EQ(Sel(doc, u"  $ "), UnicodeToUtf8(doc.GetRootValue()->GetAsJSON()));

  // Recursive steps give a node's matches before its children's.
  TVnJSONDocument prices(u"{\"price\":1,\"a\":{\"b\":{\"price\":3},\"price\":2}}");
  TVnJSONDocument nested(u"{\"a\":{\"a\":{\"a\":1}}}");
  EXPECT_EQ(std::tuple(Sel(prices, u"$..price"), Sel(nested, u"$..a.a")), std::tuple("1 2 3", "{\"a\": 1} 1"));
}

TEST(JsonPathSelect, StartsOptionsAndForms) {
  TVnJSONDocument doc(kStore);
  TVnJSONBase* bicycle = doc.SelectSingleNode(u"$.store.bicycle");
  ASSERT_NE(bicycle, nullptr);
  // "$" is the document's root from anywhere; a member stands for its value.
  EXPECT_EQ(std::tuple(Sel(*bicycle, u"@.price"), Sel(*bicycle, u"$.list[0]"),
                       Sel(*doc.GetRootValue()->FindMember(u"x"), u"@['0']")), std::tuple("20", "10", "\"m\""));
  EXPECT_EQ(std::tuple(Sel(doc, u"$.STORE.Bicycle.PRICE"), Sel(doc, u"$.STORE.Bicycle.PRICE", {jsoCaseInsensitive})),
            std::tuple("", "20"));

  // Nothing to start from: no document, or a document without root.
  TVnJSONDocument empty;
  TVnJSONObject loose;
  loose.AddMember(u"a", jdtNumber, u"1");
  EXPECT_EQ(std::tuple(Sel(empty, u"$.a"), Sel(loose, u"$.a"), Sel(loose, u"@.a")), std::tuple("", "", "1"));

  // The forms: first node, raise flag, interface; a result owns none of its nodes.
  EXPECT_EQ(std::tuple(doc.SelectSingleNode(u"$.list[*]")->GetAsInteger(),
                       doc.SelectSingleNode(u"$.nope | $.list[1]", false)->GetAsInteger(),
                       doc.CreateNodeList(u"$.list[1:]", true)->Count()), std::tuple(10, 11, 3));
  {
    IPtr<IVnJSONArray> list = doc.SelectIntf(u"$..title", {});
    ASSERT_EQ(list->Count(), 4);
    EXPECT_EQ(list->GetItem(3)->GetAsString(), u"D");
  }
  EXPECT_EQ(doc.SelectSingleNode(u"$.store.book[3].title")->GetAsString(), u"D");
  TVnJSONArray result;
  doc.GetRootValue()->_SelectNodes(result, u".price", true, {});
  EXPECT_EQ(std::tuple(result.Count(), doc._CreateNodeList(u"$.nope | $.list[0] | $.list[1]", true, {})->Count()),
            std::tuple(4, 1));

  // Repeated names: every member counts, and the first node may lie behind a later one.
  TVnJSONDocument twice(u"{\"a\":{\"x\":1},\"a\":{\"b\":2},\"a\":{\"b\":3}}");
  EXPECT_EQ(std::tuple(twice.SelectSingleNode(u"$.a.b")->GetAsInteger(), Sel(twice, u"$.a.b")), std::tuple(2, "2 3"));
  EXPECT_EQ(twice.SelectSingleNode(u"$.A.B"), nullptr);  // the same text read again, other options
  EXPECT_EQ(twice.SelectSingleNode(u"$.A.B", {jsoCaseInsensitive})->GetAsInteger(), 2);
}

TEST(JsonPathCreate, MissingNamesBecomeNullMembersOnce) {
  TVnJSONDocument once(u"{\"A\":1}");
  EXPECT_EQ(Sel(once, u"$.a", {jsoCreate}), "null");
  EXPECT_EQ(once.GetAsJSON(), u"{\"A\": 1, \"a\": null}");
  Sel(once, u"$.a", {jsoCreate});
  EXPECT_EQ(once.GetAsJSON(), u"{\"A\": 1, \"a\": null}");  // a second run creates nothing new
  TVnJSONDocument doc(u"{\"a\":{}}");
  ASSERT_NE(doc.SelectSingleNode(u"$.a.B", {jsoCreate, jsoRaise}), nullptr);
  EXPECT_EQ(doc.SelectSingleNode(u"$.A.b", {jsoCreate, jsoCaseInsensitive}), doc.SelectSingleNode(u"$.a.B"));
  TVnJSONDocument array(u"{\"list\":[]}");
  test::ExpectFailure([&] { array.CreateNodeList(u"$.list.x", {jsoCreate}); }, cVnJSONErrMethodNotSupported,
                      Format(_cVnJSONMethodNotSupported, {u"TVnJSONArray", u"AddMember"}));
}

}  // namespace
}  // namespace vn
