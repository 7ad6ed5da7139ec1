// vnx format: loads a document and writes it again, formatted unless --plain, in the code page
// of --encoding (default UTF-8), with a byte-order mark when --bom is given.
#include <cstdio>
#include <cstring>

#include "commands.h"
#include "input_kind.h"
#include "vnxml/common/code_page.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/dom.h"

namespace vnx {

namespace {
int FormatUsage() {
  std::fprintf(stderr, "usage: vnx format [--json|--xml] [--plain] [--encoding NAME] [--bom] FILE|-\n");
  return kExitUsage;
}
}  // namespace

int Format(const std::vector<std::string>& AArgs) {
  std::vector<std::string> args = AArgs;
  const std::optional<InputKind> forced = TakeInputKindOption(args);
  bool formatted = true, bom = false;
  std::string encoding = "UTF-8", path;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--plain") {
      formatted = false;
    } else if (args[i] == "--bom") {
      bom = true;
    } else if (args[i] == "--encoding" && i + 1 < args.size()) {
      encoding = args[++i];
    } else if (path.empty() && (args[i] == "-" || args[i].rfind("--", 0) != 0)) {
      path = args[i];
    } else {
      return FormatUsage();
    }
  }
  if (path.empty()) return FormatUsage();
  Input input;
  if (!input.Open(path)) {
    std::fprintf(stderr, "vnx format: cannot read %s\n", path.c_str());
    return kExitUsage;
  }
  vn::Word codePage = 0;
  try {
    codePage = vn::VnCodePage(vn::Utf8ToUnicode(encoding));
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "vnx format: %s\n", vn::UnicodeToUtf8(e.Message()).c_str());
    return kExitUsage;
  }
  if (input.Kind(forced) == InputKind::Json) return JsonFormat(input.Stream(), formatted, codePage, bom);
  try {
    vn::TVnDOMDocument doc;
    doc.SetDeferChildren(false);  // all of it is written: every node is made during the load
    doc.LoadFromStream(input.Stream());
    vn::TVnStringStream out(codePage);
    doc.SaveToStream(out, codePage, formatted, bom);
    // A formatted text ends with a line end, in the output's own code page.
    if (formatted) out.Add(std::u16string_view(u"\r\n"));
    std::string_view text = out.GetBytesView();
    std::fwrite(text.data(), 1, text.size(), stdout);
  } catch (const vn::Exception& e) {
    std::fprintf(stderr, "%s\n", vn::UnicodeToUtf8(e.Message()).c_str());
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace vnx
