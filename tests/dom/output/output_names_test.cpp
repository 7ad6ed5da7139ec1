// Round trips: what the writer writes loads back to the same tree, and a name that the reader
// would read back differently is refused instead of written.
#include <gtest/gtest.h>

#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_messages.h"

namespace vn {
namespace {

// The string form and a stream in another code page, each expected to refuse with AMessage (or
// to pass when it is empty).
void ExpectOutputs(TVnDOMDocument& ADoc, std::u16string_view AMessage) {
  const UnicodeString expected = AMessage.empty() ? UnicodeString(u"(nothing raised)") : UnicodeString(AMessage);
  EXPECT_EQ(test::MessageOf<EVnDomInvalidCharacter>([&] { (void)ADoc.GetXML(); }), expected);
  TVnStringStream s(cVnCodePageUTF8);
  EXPECT_EQ(test::MessageOf<EVnDomInvalidCharacter>([&] { ADoc.SaveToStream(s, cVnCodePageUTF8, true, true); }),
            expected);
}

TEST(OutputNames, LoadSaveReloadGivesTheSameTreeOrTheSaveRefuses) {
  // Each text with the attribute name refused, or nil where the round trip holds.
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"<a p::b=\"1\" c:d=\"2\" e:=\"3\"/>", nullptr},
      {u"<c =\"\" x=\"1\" =\"2\"/>", nullptr},  // empty names read back empty
      {u"<a b/c=\"1\" d\"e=\"2\" f g=\"3\"/>", nullptr}, {u"<a\t b \t= '1'\r\nc='x\"y'/>", nullptr},
      {u"<a\x14/=\"\" x=\"1\"/>", u"/"},       // would end the tag: x is lost
      {u"<a\n/=\"\"><a>", u"/"},               // would end the tag: two roots
      {u"<c =\"\":\"=\"\">", u"\""},          // a quote behind a value is skipped
      {u"<a x=\"1\"::y=\"2\"/>", u":y"},      // one colon in front is dropped
  };
  for (const auto& [xml, refused] : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(xml));
    TVnDOMDocument doc;
    doc.LoadXML(xml);
    if (refused) {
      ExpectOutputs(doc, Format(cVnDomAttributeNameNotWritable, {refused}));
      continue;
    }
    ExpectOutputs(doc, u"");
    const UnicodeString saved = doc.GetXML();
    auto again = TVnDOMDocument::FromXML(saved);
    EXPECT_EQ(again->GetXML(), saved);
    EXPECT_EQ(again->GetRootNode()->AttributeCount(), doc.GetRootNode()->AttributeCount());
  }
}

TEST(OutputNames, NamesGivenByProgramAreCheckedLikeLoadedOnes) {
  const std::tuple<bool, const char16_t*, bool> cases[] = {  // element or attribute, name, writable
      {true, u"a:b:c", true},  {true, u"_x.y-z", true}, {true, u"\u00e9t\u00e9", true},
      {true, u"a b", false},   {true, u"1a", false},    {true, u"a:", false},
      {true, u"a:1", false},   {true, u"a/b", false},   {true, u"<a", false},
      {true, u"", false},      {false, u"a<b", false},  {false, u"a=b", false},
      {false, u" a", false},   {false, u"a\t", false},  {false, u"'a", false},
  };
  for (const auto& [element, name, writable] : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(name));
    TVnDOMDocument doc;
    TVnDOMElement* root = doc.CreateRootNode(u"r");
    if (element)
      root->AddElement(name);
    else
      root->AddAttribute(name)->SetNodeValue(u"v");
    const char16_t* message = element ? cVnDomElementNameNotWritable : cVnDomAttributeNameNotWritable;
    ExpectOutputs(doc, writable ? UnicodeString() : Format(message, {name}));
  }
}

TEST(OutputNames, TextsThatWouldEndTheirNodeEarlyAreRefused) {
  using Add = void (*)(TVnDOMDocument&, const char16_t*);
  auto cdata = [](TVnDOMDocument& d, const char16_t* v) { d.GetRootNode()->AddCDATA(v); };
  auto comment = [](TVnDOMDocument& d, const char16_t* v) { d.GetRootNode()->AddComment(v); };
  auto instruction = [](TVnDOMDocument& d, const char16_t* v) { d.SetProcessingInstruction(u"pi", v); };
  auto target = [](TVnDOMDocument& d, const char16_t* v) { d.SetProcessingInstruction(v, u"d"); };
  const std::tuple<const char16_t*, const char16_t*, Add> cases[] = {  // value, message (nullptr: written), how
      {u"a]]b>", nullptr, cdata},      {u"a]]>b", cVnDomCDATANotWritable, cdata},
      {u"a--b-", nullptr, comment},    {u"a-->b", cVnDomCommentNotWritable, comment},
      {u"a>b", nullptr, instruction},  {u"a?b>", cVnDomInstructionNotWritable, instruction},
      {u"a?>b", cVnDomInstructionNotWritable, instruction}, {u" a", cVnDomInstructionNotWritable, instruction},
      {u"p i", cVnDomInstructionTargetNotWritable, target}, {u"p?", cVnDomInstructionTargetNotWritable, target},
  };
  for (const auto& [value, message, add] : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(value));
    TVnDOMDocument doc;
    doc.CreateRootNode(u"r");
    add(doc, value);
    ExpectOutputs(doc, message ? Format(message, {value}) : UnicodeString());
  }
}

}  // namespace
}  // namespace vn
