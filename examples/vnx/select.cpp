// vnx select: the nodes a path selects, one per line: each node's XML (or JSON), or its value
// with --value. --create adds what the path names and the document lacks.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "input_kind.h"
#include "vnxml/common/utf.h"
#include "vnxml/dom.h"
#include "vnxml/dom_path.h"
#include "vnxml/json_path.h"

namespace vnx {

namespace {
// The JSON branch: the JSON path language, each node as compact JSON or (--value) a simple
// value's decoded text.
int SelectJson(Input& AInput, const std::string& APath, bool AValueOnly, vn::TVnJDOCSelectOptions AOptions) {
  try {
    vn::TVnJSONDocument doc;
    doc.LoadFromStream(AInput.Stream());
    std::unique_ptr<vn::TVnJSONArray> nodes = doc.CreateNodeList(vn::Utf8ToUnicode(APath), AOptions);
    for (vn::Integer i = 0; i < nodes->ChildCount(); ++i) {
      vn::TVnJSONBase* node = nodes->Child(i);
      const bool simple = node->NodeClass() == vn::detail::JSONNodeClass::Simple;
      std::printf("%s\n", vn::UnicodeToUtf8(AValueOnly && simple ? node->GetAsString() : node->GetAsJSON()).c_str());
    }
    if (nodes->ChildCount() == 0) {
      std::fprintf(stderr, "vnx: nothing selected\n");
      return kExitFailed;
    }
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "vnx: %s\n", e.what());
    return kExitFailed;
  }
  return kExitOk;
}
}  // namespace

int Select(const std::vector<std::string>& AArgs) {
  bool valueOnly = false;
  vn::TVnDOMSelectOptions options;
  vn::TVnJDOCSelectOptions jsonOptions;
  bool xmlOnly = false;
  std::vector<std::string> operands;
  std::vector<std::string> args = AArgs;
  const std::optional<InputKind> forced = TakeInputKindOption(args);
  for (const std::string& arg : args) {
    if (arg == "--value") {
      valueOnly = true;
    } else if (arg == "--create") {
      options = options + vn::TVnDOMSelectOptions{vn::soCreate};
      jsonOptions.Include(vn::jsoCreate);
    } else if (arg == "--case-sensitive") {
      options = options + vn::TVnDOMSelectOptions{vn::soCaseSensitive};
    } else if (arg == "--ignore-case") {
      jsonOptions.Include(vn::jsoCaseInsensitive);
    } else if (arg == "--local-name") {
      options = options + vn::TVnDOMSelectOptions{vn::soLocalName};
      xmlOnly = true;
    } else {
      operands.push_back(arg);
    }
  }
  if (operands.size() != 2) {
    std::fprintf(stderr,
                 "usage: vnx select [--json|--xml] [--value] [--create] [--case-sensitive] [--ignore-case] "
                 "[--local-name] FILE|- PATH\n");
    return kExitUsage;
  }
  Input input;
  if (!input.Open(operands[0])) {
    std::fprintf(stderr, "vnx: cannot read %s\n", operands[0].c_str());
    return kExitUsage;
  }
  if (input.Kind(forced) == InputKind::Json) {
    if (xmlOnly) {
      std::fprintf(stderr, "vnx select: --local-name applies to XML only\n");
      return kExitUsage;
    }
    return SelectJson(input, operands[1], valueOnly, jsonOptions);
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
