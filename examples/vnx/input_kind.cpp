// The choice between XML and JSON input.
#include "input_kind.h"

#include <algorithm>

namespace vnx {

std::optional<InputKind> TakeInputKindOption(std::vector<std::string>& AArgs) {
  std::optional<InputKind> kind;
  std::erase_if(AArgs, [&](const std::string& arg) {
    if (arg == "--json") kind = InputKind::Json;
    else if (arg == "--xml") kind = InputKind::Xml;
    else return false;
    return true;
  });
  return kind;
}

InputKind ChooseInputKind(std::optional<InputKind> AForced, std::string_view ABytes) {
  if (AForced) return *AForced;
  for (std::string_view bom : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
    if (ABytes.starts_with(bom)) {
      ABytes.remove_prefix(bom.size());
      break;
    }
  }
  for (char c : ABytes)
    if (static_cast<unsigned char>(c) > ' ') return c == '<' ? InputKind::Xml : InputKind::Json;
  return InputKind::Json;
}

}  // namespace vnx
