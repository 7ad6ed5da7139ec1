// vnx check: loads a document; prints "ok" with its element count, or the failure with its line
// and column on standard error and exits with 1.
#include <cstdio>

#include "commands.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vnx {

int Check(const std::vector<std::string>& AArgs) {
  if (AArgs.size() != 1) {
    std::fprintf(stderr, "usage: vnx check FILE|-\n");
    return kExitUsage;
  }
  Input input;
  if (!input.Open(AArgs[0])) {
    std::fprintf(stderr, "vnx check: cannot read %s\n", AArgs[0].c_str());
    return kExitUsage;
  }
  try {
    vn::TVnDOMDocument doc;
    doc.LoadFromStream(input.Stream());
    // Count elements with an explicit stack: documents may be deep.
    size_t elements = 0;
    std::vector<vn::TVnDOMElement*> stack;
    if (doc.GetRootNode()) stack.push_back(doc.GetRootNode());
    while (!stack.empty()) {
      vn::TVnDOMElement* e = stack.back();
      stack.pop_back();
      ++elements;
      for (vn::TVnDOMNode* c : e->ElementsView()) stack.push_back(static_cast<vn::TVnDOMElement*>(c));
    }
    std::printf("ok: %zu elements\n", elements);
  } catch (const vn::Exception& e) {
    // The message of a syntax failure starts with "Line L, column C: ".
    std::fprintf(stderr, "%s: %s\n", AArgs[0].c_str(), vn::UnicodeToUtf8(e.Message()).c_str());
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace vnx
