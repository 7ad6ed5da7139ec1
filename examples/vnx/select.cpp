// vnx select: the nodes a path selects, one per line: each node's XML, or its value with
// --value. --create adds the elements that the path names and the document lacks.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"

namespace vnx {

int Select(const std::vector<std::string>& AArgs) {
  bool valueOnly = false;
  vn::TVnDOMSelectOptions options;
  std::vector<std::string> operands;
  for (const std::string& arg : AArgs) {
    if (arg == "--value")
      valueOnly = true;
    else if (arg == "--create")
      options = options + vn::TVnDOMSelectOptions{vn::soCreate};
    else if (arg == "--case-sensitive")
      options = options + vn::TVnDOMSelectOptions{vn::soCaseSensitive};
    else if (arg == "--local-name")
      options = options + vn::TVnDOMSelectOptions{vn::soLocalName};
    else
      operands.push_back(arg);
  }
  if (operands.size() != 2) {
    std::fprintf(stderr, "usage: vnx select [--value] [--create] [--case-sensitive] [--local-name] FILE|- PATH\n");
    return kExitUsage;
  }
  Input input;
  if (!input.Open(operands[0])) {
    std::fprintf(stderr, "vnx: cannot read %s\n", operands[0].c_str());
    return kExitUsage;
  }
  try {
    vn::TVnDOMDocument doc;
    doc.LoadFromStream(input.Stream());
    std::unique_ptr<vn::TVnDOMNodeList> nodes = vn::CreateNodeList(&doc, vn::Utf8ToUnicode(operands[1]), options);
    for (vn::TVnDOMNode* node : *nodes) {
      vn::UnicodeString text = valueOnly ? node->GetNodeValue() : node->GetXML();
      std::printf("%s\n", vn::UnicodeToUtf8(text).c_str());
    }
    if (nodes->Count() == 0) {
      std::fprintf(stderr, "vnx: nothing selected\n");
      return kExitFailed;
    }
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "vnx: %s\n", e.what());
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace vnx
