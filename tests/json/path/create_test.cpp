// jsoCreate: a missing name becomes a member with a null value, once.
#include "json/path/path_helpers.h"

#include "vnxml/common/sysutils.h"

namespace vn {
namespace {

using test::Sel;

TEST(JsonPathCreate, MissingNamesBecomeNullMembersOnce) {
  struct Case {
    const char16_t* FJSON;
    const char16_t* FPath;
    const char* FSelected;
    const char16_t* FAfter;
  };
  const Case cases[] = {
      {u"{}", u"$.a", "null", u"{\"a\": null}"},
      // null is no container: the next step finds nothing to work on
      {u"{}", u"$.a.b", "", u"{\"a\": null}"},
      {u"{}", u"$['a','b']", "null", u"{\"a\": null}"},
      {u"{\"A\":1}", u"$.a", "null", u"{\"A\": 1, \"a\": null}"},
      {u"{\"x\":{}}", u"$.x.y | $.x.z", "null null", u"{\"x\": {\"y\": null, \"z\": null}}"},
      {u"{\"b\":{}}", u"$..a", "null null", u"{\"b\": {\"a\": null}, \"a\": null}"},
      {u"{\"a\":1}", u"$.*", "1", u"{\"a\": 1}"},
      {u"{\"a\":[1]}", u"$.a[3]", "", u"{\"a\": [1]}"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(UnicodeToUtf8(c.FPath));
    TVnJSONDocument doc(c.FJSON);
    EXPECT_EQ(Sel(doc, c.FPath, {jsoCreate}), c.FSelected);
    EXPECT_EQ(doc.GetAsJSON(), c.FAfter);
    Sel(doc, c.FPath, {jsoCreate});
    EXPECT_EQ(doc.GetAsJSON(), c.FAfter);  // a second run creates nothing new
  }
  TVnJSONDocument doc(u"{\"a\":{}}");
  ASSERT_NE(doc.SelectSingleNode(u"$.a.B", {jsoCreate, jsoRaise}), nullptr);
  EXPECT_EQ(doc.SelectSingleNode(u"$.A.b", {jsoCreate, jsoCaseInsensitive}), doc.SelectSingleNode(u"$.a.B"));
  TVnJSONDocument array(u"{\"list\":[]}");
  test::ExpectFailure([&] { array.CreateNodeList(u"$.list.x", {jsoCreate}); }, cVnJSONErrMethodNotSupported,
                      Format(_cVnJSONMethodNotSupported, {u"TVnJSONArray", u"AddMember"}));
}

}  // namespace
}  // namespace vn
