// A document load that leaves its root's content as records gives, on first access, the tree a
// load making every node at once gives: as read, after changes that decide how the records
// read, and when the load fails.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "dom/tree_builder.h"
#include "support/same_tree.h"
#include "vnxml/common/exception.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"

namespace vn {
namespace {

using Edit = std::function<void(TVnDOMDocument&)>;

// The document of AXML loaded eagerly or deferred, AEdit applied before anything is read; the
// failure's message, if any.
std::pair<std::unique_ptr<TVnDOMDocument>, std::string> Load(const std::u16string& AXML, bool ADefer,
                                                             const Edit& AEdit) {
  auto doc = std::make_unique<TVnDOMDocument>();
  doc->SetDeferChildren(ADefer);
  try {
    doc->LoadXML(AXML);
  } catch (const Exception& e) {
    return {std::move(doc), UnicodeToUtf8(e.Message())};
  }
  if (AEdit) AEdit(*doc);
  return {std::move(doc), ""};
}

void ExpectSameLoad(const std::u16string& AXML, const Edit& AEdit = {}) {
  const std::string where = UnicodeToUtf8(AXML);
  // these texts are small: every level waits for its reader
  const ptrdiff_t small = std::exchange(detail::SmallContentBytes, 0);
  auto [eager, eagerError] = Load(AXML, false, AEdit);
  auto [deferred, deferredError] = Load(AXML, true, AEdit);
  EXPECT_EQ(deferredError, eagerError) << where;
  test::ExpectSameTree(eager.get(), deferred.get(), where);
  EXPECT_EQ(deferred->GetXML(), eager->GetXML()) << where;
  detail::SmallContentBytes = small;
}

TEST(DomDeferredLoad, OpensToTheTreeAnEagerLoadMakes) {
  for (const char16_t* xml : {
           u"<a><b x='1'>t<c/>u</b><!--n--><?p d?><![CDATA[<z>]]></a>",
           // the reader's view of a prefix declared above picks the element's own declaration
           u"<a xmlns:p='u'><p:b xmlns:q='u'><c xmlns:r='u'><p:d/></c></p:b></a>",
           u"<a xmlns='d0'><b xmlns='d1'><c xmlns=''><d><e xmlns:n='x'/></d></c></b></a>",
           u"<a XMLNS:P='u'><P:b><p:c xmlns:p='v'><p:d/></p:c></P:b></a>",
           u"<a xmlns:p='a&amp;b'><b xmlns:q=\"&#x41;\"><p:c q:x='1'/></b></a>",
           u"<a xmlns:p=\"u\"><b xmlns:p='\"v\"'><p:c/></b></a>",
           // space kept where xml:space says so, and nowhere else
           u"<a> <b xml:space='preserve'> <c> </c> </b> <d> </d> </a>",
           u"<a xml:space='preserve'> <b> <c xml:space='default'> </c> </b> </a>",
           u"<r><x>caf\u00e9 &amp; \"q\"</x><\u00e9l \u00e9='\u00e0'/></r>",
           // cut short: open elements keep what they got, the last start tag goes
           u"<a><b x='1'><c>t</c>u<d y='2' z",
           // a declaration that does not decode fails the load where its element joins
           u"<r><b/><a xmlns:p=\"&#;\"><c/></a></r>",
           u"<r><g xmlns='&#x-1\"2\"'><c/></g></r>",
       })
    ExpectSameLoad(xml);
}

TEST(DomDeferredLoad, ChangesMakeTheRecordsBelowNodesFirst) {
  const std::u16string xml =
      u"<r xmlns:p='u'><p:a k='1'> <p:b><c xml:space='preserve'> </c></p:b></p:a><a2><d/></a2></r>";
  auto first = [](TVnDOMDocument& d) { return d.GetRootNode()->FirstElement(); };
  const std::pair<const char*, Edit> edits[] = {
      {"declaration changed", [](TVnDOMDocument& d) { d.GetRootNode()->SetAttribute(u"xmlns:p", u"w"); }},
      {"declaration added", [&](TVnDOMDocument& d) { first(d)->SetAttribute(u"xmlns:p", u"v"); }},
      {"declaration removed", [](TVnDOMDocument& d) { d.GetRootNode()->RemoveAttribute(u"xmlns:p"); }},
      {"renamed", [&](TVnDOMDocument& d) { first(d)->SetPrefix(u"q"); }},
      {"space", [&](TVnDOMDocument& d) { first(d)->SetPreseveSpace(true); }},
      {"collation", [](TVnDOMDocument& d) { d.SetCaseSensitive(true); }},
      {"moved", [&](TVnDOMDocument& d) { d.GetRootNode()->LastElement()->AppendChild(first(d)->CloneNode(true).release()); }},
      {"removed", [&](TVnDOMDocument& d) { d.GetRootNode()->RemoveChild(first(d)); }},
      {"loaded into", [&](TVnDOMDocument& d) { first(d)->SetInnerXML(u"<p:n/>"); }},
  };
  for (const auto& [name, edit] : edits) {
    SCOPED_TRACE(name);
    ExpectSameLoad(xml, edit);
  }

  // A node held past its document takes its part of the records along, made into nodes.
  auto held = [&](bool ADefer) {
    IPtr<IVnDOMElement> element;
    {
      TVnDOMDocument doc;
      doc.SetDeferChildren(ADefer);
      doc.LoadXML(xml);
      element = first(doc)->As<IVnDOMElement>();
    }
    return std::tuple{TVnDOMObjectImpl::Node(element.Get())->GetXML(), element->GetNamespaceURI()};
  };
  EXPECT_EQ(held(true), held(false));
  EXPECT_EQ(std::get<0>(held(true)), u"<p:a k=\"1\"><p:b><c xml:space=\"preserve\"> </c></p:b></p:a>");
}

}  // namespace
}  // namespace vn
