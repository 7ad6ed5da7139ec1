// Round trips: what the writer writes loads back to the same tree, and a name that the reader
// would read back differently is refused instead of written.
#include <gtest/gtest.h>

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
  struct Case {
    const char16_t* FXML;
    const char16_t* FRefused;  // the attribute name refused, or nil where the round trip holds
  };
  const Case cases[] = {
      {u"<a p::b=\"1\" c:d=\"2\" e:=\"3\"/>", nullptr},
      {u"<c =\"\" x=\"1\" =\"2\"/>", nullptr},  // empty names read back empty
      {u"<a b/c=\"1\" d\"e=\"2\" f g=\"3\"/>", nullptr}, {u"<a\t b \t= '1'\r\nc='x\"y'/>", nullptr},
      {u"<a\x14/=\"\" x=\"1\"/>", u"/"},       // would end the tag: x is lost
      {u"<a\n/=\"\"><a>", u"/"},               // would end the tag: two roots
      {u"<c =\"\":\"=\"\">", u"\""},          // a quote behind a value is skipped
      {u"<a x=\"1\"::y=\"2\"/>", u":y"},      // one colon in front is dropped
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(c.FXML));
    TVnDOMDocument doc;
    doc.LoadXML(c.FXML);
    if (c.FRefused) {
      ExpectOutputs(doc, Format(cVnDomAttributeNameNotWritable, {c.FRefused}));
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
  struct Case {
    bool FElement;
    const char16_t* FName;
    bool FWritable;
  };
  const Case cases[] = {
      {true, u"a:b:c", true},  {true, u"_x.y-z", true}, {true, u"\u00e9t\u00e9", true},
      {true, u"a b", false},   {true, u"1a", false},    {true, u"a:", false},
      {true, u"a:1", false},   {true, u"a/b", false},   {true, u"<a", false},
      {true, u"", false},      {false, u"a<b", false},  {false, u"a=b", false},
      {false, u" a", false},   {false, u"a\t", false},  {false, u"'a", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(c.FName));
    TVnDOMDocument doc;
    TVnDOMElement* root = doc.CreateRootNode(u"r");
    if (c.FElement)
      root->AddElement(c.FName);
    else
      root->AddAttribute(c.FName)->SetNodeValue(u"v");
    const char16_t* message = c.FElement ? cVnDomElementNameNotWritable : cVnDomAttributeNameNotWritable;
    ExpectOutputs(doc, c.FWritable ? UnicodeString() : Format(message, {c.FName}));
  }
}

TEST(OutputNames, TextsThatWouldEndTheirNodeEarlyAreRefused) {
  struct Case {
    const char16_t* FValue;
    const char16_t* FMessage;  // nullptr: written
    void (*FAdd)(TVnDOMDocument&, const char16_t*);
  };
  auto cdata = [](TVnDOMDocument& d, const char16_t* v) { d.GetRootNode()->AddCDATA(v); };
  auto comment = [](TVnDOMDocument& d, const char16_t* v) { d.GetRootNode()->AddComment(v); };
  auto instruction = [](TVnDOMDocument& d, const char16_t* v) { d.SetProcessingInstruction(u"pi", v); };
  auto target = [](TVnDOMDocument& d, const char16_t* v) { d.SetProcessingInstruction(v, u"d"); };
  const Case cases[] = {
      {u"a]]b>", nullptr, cdata},      {u"a]]>b", cVnDomCDATANotWritable, cdata},
      {u"a--b-", nullptr, comment},    {u"a-->b", cVnDomCommentNotWritable, comment},
      {u"a>b", nullptr, instruction},  {u"a?b>", cVnDomInstructionNotWritable, instruction},
      {u"a?>b", cVnDomInstructionNotWritable, instruction}, {u" a", cVnDomInstructionNotWritable, instruction},
      {u"p i", cVnDomInstructionTargetNotWritable, target}, {u"p?", cVnDomInstructionTargetNotWritable, target},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << UnicodeToUtf8(c.FValue));
    TVnDOMDocument doc;
    doc.CreateRootNode(u"r");
    c.FAdd(doc, c.FValue);
    ExpectOutputs(doc, c.FMessage ? Format(c.FMessage, {c.FValue}) : UnicodeString());
  }
}

}  // namespace
}  // namespace vn
