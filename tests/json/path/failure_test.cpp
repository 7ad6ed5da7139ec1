// Failures: each with its class, code and message, raised when a selection reaches it.
#include "json/path/path_helpers.h"

#include "vnxml/common/rtl_messages.h"
#include "vnxml/common/sysutils.h"

namespace vn {
namespace {

using test::ExpectFailure;

UnicodeString CharFault(std::u16string_view AExpected, std::u16string_view AFound) {
  return Format(_cVnJSONInvalidCharInPath1, {AExpected, AFound});
}

TEST(JsonPathFailure, MalformedPathsAndFilters) {
  TVnJSONDocument doc(u"{\"list\":[{\"a\":1,\"o\":{}},2],\"s\":\"t\"}");
  const UnicodeString invalid(_cVnJSONInvalidPath), complex(_cVnJSONScriptExprTooComplex);
  struct Case { const char16_t* FPath; Integer FCode; UnicodeString FMessage; };
  const Case cases[] = {
      {u"", 13, invalid}, {u"  ", 13, invalid}, {u"list", 13, invalid}, {u"$.list | ", 13, invalid},
      {u"$x", 14, CharFault(u". or [", u"x")}, {u"$.list[0", 14, CharFault(u"]", u"")},
      {u"$.list[0]@", 15, Format(_cVnJSONInvalidCharInPath2, {u"@"})},
      {u"$.list[0]$", 15, Format(_cVnJSONInvalidCharInPath2, {u"$"})},
      {u"$.list[(abc)]", 17, complex}, {u"$.list[(@.length)]", 17, complex},
      {u"$.list[?@.a]", 14, CharFault(u"?(", u"?@")}, {u"$.list[?(@.a & @.b)]", 14, CharFault(u"&", u" ")},
      {u"$.list[?(@.a |)]", 14, CharFault(u"|", u"")}, {u"$.list[?(@.a = 1)]", 14, CharFault(u"=", u" ")},
      {u"$.list[?(@.a !x)]", 14, CharFault(u"=", u"x")}, {u"$.list[?(@.a))]", 17, complex},
      // reached only when evaluated: empty terms, a path without start, a container as a text
      {u"$.list[?()]", 17, complex}, {u"$.list[?(@.a==2 ||)]", 17, complex}, {u"$.list[?(a)]", 13, invalid},
      {u"$.list[?(@.o==1)]", 9, Format(_cVnJSONMethodNotSupported, {u"TVnJSONObject", u"GetValue"})},
      {u"$.list[?(@.a==$x)]", 14, CharFault(u". or [", u"x")},
      {u"$.nope", 11, UnicodeString(_cVnJSONInvalidPathNoNodes)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(UnicodeToUtf8(c.FPath));
    ExpectFailure([&] { doc.CreateNodeList(c.FPath, {jsoRaise}); }, c.FCode, c.FMessage);
    ExpectFailure([&] { doc.SelectSingleNode(c.FPath, true); }, c.FCode, c.FMessage);
  }
  // The platform's own failure for an index that is no integer.
  ExpectFailure([&] { doc.CreateNodeList(u"$.list[1-2]"); }, -1, Format(cRtlInvalidInteger, {u"1-2"}),
                u"EConvertError");
  // A deeper nesting than the library reads is "too complex".
  UnicodeString deep = u"$.list[?(";
  for (int i = 0; i < cVnJSONPathMaxNesting; ++i) deep += u"(";
  ExpectFailure([&] { doc.CreateNodeList(deep + u"@.a)]"); }, 17, complex);
}

TEST(JsonPathFailure, AStepFailsOnlyWhereItRuns) {
  TVnJSONDocument doc(u"{\"list\":[{\"a\":1}],\"s\":\"t\"}");
  const char16_t* const quiet[] = {
      u"$.nope$",            // a name "nope$"
      u"$.nope[0]$",         // nothing to run the rest on
      u"$.s[0]x",            // a text is no container
      u"$.nope[?(@.a & 1)]", // the filter never runs
      u"$.list[?(@.a==1 || @.b==)]",  // the term that can't compare is never reached
  };
  for (const char16_t* path : quiet) EXPECT_NO_THROW(doc.CreateNodeList(path)) << UnicodeToUtf8(path);
  // With the first-only flag the alternatives after a selecting one are not run.
  EXPECT_EQ(std::tuple(doc.CreateNodeList(u"$.list[?(@.a==1 || @.b==)]")->Count(),
                       doc._CreateNodeList(u"$.list | x", true, {})->Count()), std::tuple(1, 1));
}

}  // namespace
}  // namespace vn
