// vnx to-json: loads a document (XML, or JSON through the bridge) and writes its root element
// as JSON, formatted unless --plain, in UTF-8.
#include <cstdio>

#include "bridge_input.h"
#include "commands.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"
#include "vnxml/dom_json_writer.h"

namespace vnx {

/// The one FILE|- argument and --plain; false on anything else.
bool TakeBridgeArgs(const std::vector<std::string>& AArgs, bool& AFormatted, std::string& APath) {
  AFormatted = true;
  for (const std::string& a : AArgs) {
    if (a == "--plain")
      AFormatted = false;
    else if (APath.empty() && (a == "-" || a.rfind("--", 0) != 0))
      APath = a;
    else
      return false;
  }
  return !APath.empty();
}

/// Loads FILE|- into ADocument; prints the reason and gives the exit code on failure, else -1.
int LoadForBridge(const std::string& ACommand, const std::string& APath, vn::TVnDOMDocument& ADocument) {
  Input input;
  if (!input.Open(APath)) {
    std::fprintf(stderr, "vnx %s: cannot read %s\n", ACommand.c_str(), APath.c_str());
    return kExitUsage;
  }
  try {
    ADocument.LoadFromStream(input.Stream());
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "%s: %s\n", APath.c_str(), vn::UnicodeToUtf8(e.Message()).c_str());
    return kExitFailed;
  }
  return -1;
}

int ToJson(const std::vector<std::string>& AArgs) {
  bool formatted;
  std::string path;
  if (!TakeBridgeArgs(AArgs, formatted, path)) {
    std::fprintf(stderr, "usage: vnx to-json [--plain] FILE|-\n");
    return kExitUsage;
  }
  // The load keeps the root's content as records, and the JSON is written from them: no node is
  // made of it.
  vn::TVnDOMDocument doc;
  if (int code = LoadForBridge("to-json", path, doc); code >= 0) return code;
  if (!doc.GetRootNode()) {
    std::fprintf(stderr, "%s: no root element\n", path.c_str());
    return kExitFailed;
  }
  try {
    vn::TVnStringStream out(vn::cVnCodePageUTF8);
    vn::SaveToJSONStream(*doc.GetRootNode(), out, vn::cVnCodePageUTF8, formatted);
    if (formatted) out.Add(std::u16string_view(u"\r\n"));
    std::string_view text = out.GetBytesView();
    std::fwrite(text.data(), 1, text.size(), stdout);
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), vn::UnicodeToUtf8(e.Message()).c_str());
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace vnx
