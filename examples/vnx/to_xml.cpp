// vnx to-xml: loads a JSON text into a document through the bridge (a text that starts with "<"
// loads as XML) and writes the document as XML, formatted unless --plain, in UTF-8.
#include <cstdio>

#include "bridge_input.h"
#include "commands.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vnx {

int ToXml(const std::vector<std::string>& AArgs) {
  bool formatted;
  std::string path;
  if (!TakeBridgeArgs(AArgs, formatted, path)) {
    std::fprintf(stderr, "usage: vnx to-xml [--plain] FILE|-\n");
    return kExitUsage;
  }
  vn::TVnDOMDocument doc;
  doc.SetDeferChildren(false);  // all of it is written: every node is made during the load
  if (int code = LoadForBridge("to-xml", path, doc); code >= 0) return code;
  vn::TVnStringStream out(vn::cVnCodePageUTF8);
  doc.SaveToStream(out, vn::cVnCodePageUTF8, formatted, false);
  if (formatted) out.Add(std::u16string_view(u"\r\n"));
  std::string_view text = out.GetBytesView();
  std::fwrite(text.data(), 1, text.size(), stdout);
  return kExitOk;
}

}  // namespace vnx
