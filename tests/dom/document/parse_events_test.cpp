// The failure events of loads: each node that text is loaded into has its own, so a fragment
// parsed into a detached element can be watched as a whole document can.
#include <gtest/gtest.h>

#include <tuple>

#include "common/message_of.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/sax_contract.h"

namespace vn {
namespace {

TEST(DomParseEvents, EachLoadReachesTheEventsOfItsTargetNode) {
  enum Target { Detached, InDocument, Document };
  enum Answer { Leave, Handle, Raise };
  using Case = std::pair<Target, Answer>;
  for (auto [into, hook] : {Case{Detached, Leave}, Case{Detached, Handle}, Case{Detached, Raise},
                            Case{InDocument, Leave}, Case{Document, Handle}}) {
    SCOPED_TRACE(testing::Message() << "target " << into << ", answer " << hook);
    TVnDOMDocument doc;
    TVnDOMElement detached;
    TVnDOMElement* element = into == Detached ? &detached : doc.CreateRootNode(u"r");
    TVnDOMNode* target = into == Document ? static_cast<TVnDOMNode*>(&doc) : element;
    int targetCalls = 0, otherCalls = 0;
    Integer line = 0;
    UnicodeString message;
    target->SetOnParseFatalError([&](IVnSAXLocator* ALocator, std::u16string_view AErrMsg, bool& AHandled) {
      ++targetCalls;
      line = ALocator->GetLineNr();
      message = AErrMsg;
      if (hook == Raise) throw EVnSAXNotSupportedException(u"stop");
      AHandled = hook == Handle;
    });
    // Events of other nodes stay silent: the document's hears nothing of a load into its element.
    TVnDOMNode* other = target == &doc ? static_cast<TVnDOMNode*>(element) : &doc;
    other->SetOnParseFatalError([&](IVnSAXLocator*, std::u16string_view, bool&) { ++otherCalls; });

    auto load = [&] {
      if (target == &doc)
        doc.LoadXML(u"<a>\r\n<b x=/></a>");
      else
        element->SetInnerXML(u"<a/>\r\n<b x=/>");
    };
    switch (hook) {
      case Leave: {
        const UnicodeString raised = test::MessageOf<EVnDomSyntax>(load);
        EXPECT_EQ(raised.rfind(u"Line 2, column ", 0), 0u) << UnicodeToUtf8(raised);
        EXPECT_NE(raised.find(message), UnicodeString::npos);
        break;
      }
      case Handle: EXPECT_THROW(load(), EVnXMLParseError); break;
      case Raise: EXPECT_THROW(load(), EVnSAXException); break;
    }
    EXPECT_EQ((std::tuple{targetCalls, otherCalls, line, message.empty()}), std::tuple(1, 0, 2, false));
    // What was read before the failure stays in the target.
    EXPECT_EQ((target == &doc ? doc.GetRootNode() : element->FirstElement())->GetQualifiedName(), u"a");
  }
}

}  // namespace
}  // namespace vn
