// Fuzz target of the path language: arbitrary path texts run on a fixed document. The first byte
// picks the options (case, name match, soCreate, the single or the list form); the rest is the
// path in UTF-8. A library exception is an answer; anything else, or a crash, is a finding.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"

namespace {

constexpr char16_t cDocument[] =
    u"<?xml version='1.0'?>"
    u"<root xmlns='urn:d' xmlns:x='urn:x' a='1' x:b='2'>"
    u"<item id='1' price='10.5'><name>One</name><tag>a</tag><tag>b</tag></item>"
    u"<item id='2' price='7'><name>Two</name><x:tag>c</x:tag><!--c--></item>"
    u"<x:item id='3'>text<![CDATA[raw]]><?pi data?><deep><deeper><deepest n='5'/></deeper></deep></x:item>"
    u"<empty/>"
    u"</root>";

vn::TVnDOMDocument& SharedDocument() {
  static auto* doc = [] {
    auto* d = new vn::TVnDOMDocument();
    d->LoadXML(cDocument);
    return d;
  }();
  return *doc;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t mode = data[0];
  const vn::UnicodeString path = vn::Utf8ToUnicode(std::string_view(reinterpret_cast<const char*>(data + 1), size - 1));
  vn::TVnDOMSelectOptions options;
  if (mode & 1) options = options + vn::TVnDOMSelectOptions{vn::soCaseSensitive};
  if (mode & 2) options = options + vn::TVnDOMSelectOptions{vn::soLocalName};
  if (mode & 4) options = options + vn::TVnDOMSelectOptions{vn::soCreate};
  if (mode & 8) options = options + vn::TVnDOMSelectOptions{vn::soRaise};
  const bool single = (mode & 16) != 0;
  const bool fromElement = (mode & 32) != 0;

  // soCreate changes the tree: such runs get a document of their own.
  std::unique_ptr<vn::TVnDOMDocument> own;
  vn::TVnDOMDocument* doc = &SharedDocument();
  if (mode & 4) {
    own = std::make_unique<vn::TVnDOMDocument>();
    own->LoadXML(cDocument);
    doc = own.get();
  }
  vn::TVnDOMNode* context = fromElement ? static_cast<vn::TVnDOMNode*>(doc->GetRootNode()) : doc;
  try {
    if (single) {
      vn::TVnDOMNode* node = vn::SelectSingleNode(context, path, options);
      if (node) (void)node->GetNodeValue();
    } else {
      auto list = vn::CreateNodeList(context, path, options);
      for (vn::TVnDOMNode* n : *list) (void)n->GetNodeType();
    }
  } catch (const vn::Exception&) {
    // An orderly answer to bad input.
  } catch (const std::exception& e) {
    std::fprintf(stderr, "unexpected exception: %s\n", e.what());
    std::abort();
  }
  return 0;
}
