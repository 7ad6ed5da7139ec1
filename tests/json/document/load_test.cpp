// Loading: the handler's road and the document's own road give the same tree and the same
// failures; the handler's rules; very deep input.
#include <gtest/gtest.h>

#include <memory>

#include "common/message_of.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"
#include "vnxml/json_handler.h"
#include "vnxml/json_reader.h"

namespace vn {
namespace {

// A subclass takes the handler's road: it might have its own forms of what the handler calls.
class THandlerRoadDocument : public TVnJSONDocument {};

// Failure: class, code and message; empty when the load went through
struct Outcome { UnicodeString Tree; UnicodeString Failure; };

Outcome Load(TVnJSONDocument& ADoc, std::string_view ABytes, Word ACodePage) {
  Outcome out;
  try {
    TVnStringStream stream(ABytes, ACodePage);
    ADoc.LoadFromStream(stream, ACodePage, false);
  } catch (const Exception& e) {
    const auto* coded = dynamic_cast<const EVnException*>(&e);
    out.Failure = e.ClassName() + u" " + (coded ? IntToStr(coded->GetCode()) + u" " : u"") + e.Message();
  }
  out.Tree = ADoc.GetAsJSON();
  // UTF-8 output has a direct road for loaded UTF-8 strings; it must write what UTF-16 does
  TVnStringStream utf8(cVnCodePageUTF8);
  ADoc.SaveToStream(utf8, false, cVnCodePageUTF8, false);
  out.Tree += u"|" + Utf8ToUnicode(utf8.GetBytesView());
  return out;
}

TEST(JsonLoad, BothRoadsGiveTheSameTreeAndFailure) {
  const char* inputs[] = {
      "", "[1,{\"a\":[2]}]", "{\"a\":{}}{\"b\":[]}", "[truex, nul]", "5", "[\"\\q\"]",
      "[\"a\\tb\", \"\\u00e9\\ud800\"]", "[\"\xC3\xA9\xE2\x82\xAC\", \"\xFF\xFE\xC3\"]", "[{\"a\"", "{\"a\":1,}",
      "[\"\xC2\xA0\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\", "
      "\"\xED\xA0\x80\xC0\xAF\xF5\x80\"]",
      "[\"\b\f\n\r\t\x7f\x00\\b\\/\\\\\\\"\", \"\xE2\x82\"]",
      "[1,{\"a\":\"\\uqqqq\"}]",  // a bad escape fails the load where it stands
  };
  for (const char* input : inputs) {
    SCOPED_TRACE(input);
    for (Word codePage : {cVnCodePageUTF8, cVnCodePageUTF16LE}) {
      std::string bytes = input;
      if (codePage == cVnCodePageUTF16LE) {
        UnicodeString wide = Utf8ToUnicode(input);
        bytes.assign(reinterpret_cast<const char*>(wide.data()), wide.size() * 2);
      }
      TVnJSONDocument fast;
      THandlerRoadDocument slow;
      const Outcome a = Load(fast, bytes, codePage), b = Load(slow, bytes, codePage);
      // and a load over an existing root behaves alike too
      const Outcome again = Load(fast, bytes, codePage), againSlow = Load(slow, bytes, codePage);
      EXPECT_EQ(std::tuple(a.Tree, a.Failure, again.Tree), std::tuple(b.Tree, b.Failure, againSlow.Tree));
    }
  }
}

TEST(JsonLoad, HandlerRulesLoadsIntoOtherNodesFollowTheTable) {
  // the walk up passes the member and ends on the document
  TVnJSONDocument doc;
  TVnJSONReader reader;
  auto handler = std::make_unique<TVnJSONHandler>(&reader, &doc);
  handler->SetAutoDestroy(false);
  reader.SetContentHandler(IPtr<IVnJSONContentHandler>(static_cast<IVnJSONContentHandler*>(handler.get())));
  reader.SetErrorHandler(IPtr<IVnJSONErrorHandler>(static_cast<IVnJSONErrorHandler*>(handler.get())));
  reader.Parse(u"[1,{\"a\":[2]}]");
  EXPECT_EQ(handler->GetCurrValue(), &doc);
  reader.SetContentHandler(nullptr);
  reader.SetErrorHandler(nullptr);

  const UnicodeString cut = Format(_cVnJSONNotWellFormed, {cVnJSONValueStartExpected, u""});
  // Tree: of the document afterwards; Failure: message
  struct Case { const char16_t* Input; const char16_t* Tree; const char16_t* Failure; };
  const Case cases[] = {
      {u"[1][2]", u"[2]", u"(nothing raised)"}, {u"5", u"", u"oeps?"},
      {u"{\"a\":[1,{\"b\":", u"{\"a\": [1, {\"b\": null}]}", cut.c_str()},
  };
  for (const Case& c : cases) {
    TVnJSONDocument d;
    const UnicodeString failure = test::MessageOf([&] { d.SetAsJSON(c.Input); });
    EXPECT_EQ(std::tuple(failure, d.GetAsJSON()), std::tuple(c.Failure, c.Tree));
  }
  // Loads into other nodes follow the handler's table.
  TVnJSONDocument target(u"{\"m\":1,\"a\":[0]}");
  TVnJSONBase* root = target.GetRootValue();
  root->FindMember(u"a")->GetValueObj()->SetAsJSON(u"[1,2]");  // into an array: appended
  root->FindMember(u"m")->SetAsJSON(u"{\"x\":true}");           // into a member: its value
  EXPECT_EQ(target.GetAsJSON(), u"{\"m\": {\"x\": true}, \"a\": [0, [1, 2]]}");
  root->SetAsJSON(u"[3]");  // into an object: the value of its last member
  EXPECT_EQ(target.GetAsJSON(), u"{\"m\": {\"x\": true}, \"a\": [3]}");
  TVnJSONObject empty;
  EXPECT_THROW(empty.SetAsJSON(u"[1]"), EVnJSONException);
  target.SetAsJSON(u"");  // an empty text clears
  EXPECT_EQ(target.GetRootValue(), nullptr);
}

TEST(JsonLoad, MillionDeepInputLoadsSavesAndFrees) {
  const size_t depth = 1000000;
  // arrays and objects alternating: both kinds of level, the member between them too
  std::string text, closing;
  for (size_t i = 0; i < depth; ++i) {
    text += i % 2 ? "{\"k\":" : "[";
    closing += i % 2 ? '}' : ']';
  }
  text += "1";
  text.append(closing.rbegin(), closing.rend());
  TVnJSONDocument doc(RawByteString(text), cVnCodePageUTF8);
  TVnMemoryStream out;
  doc.SaveToStream(out, false, cVnCodePageUTF8, false);
  EXPECT_GT(out.GetSize(), static_cast<Int64>(2 * depth));
}

}  // namespace
}  // namespace vn
