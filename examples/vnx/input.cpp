// The input of a command: a file read through the library's file stream (the loader reads it
// once, into one block), or standard input read into one block that is scanned in place.
#include <algorithm>
#include <cstdio>

#include "commands.h"
#include "vnxml/common/utf.h"

namespace vnx {

bool Input::Open(const std::string& APath) {
  if (APath == "-") {
    char block[1 << 16];
    size_t got;
    while ((got = std::fread(block, 1, sizeof block, stdin)) > 0) FBytes.append(block, got);
    if (std::ferror(stdin)) return false;
    FStream = std::make_unique<vn::TVnMemoryStream>(FBytes.data(), static_cast<vn::Int64>(FBytes.size()));
    return true;
  }
  try {
    FStream = std::make_unique<vn::TFileStream>(vn::Utf8ToUnicode(APath), vn::fmOpenRead | vn::fmShareDenyWrite);
  } catch (const vn::Exception&) {
    return false;
  }
  return true;
}

InputKind Input::Kind(std::optional<InputKind> AForced) {
  if (AForced) return *AForced;
  // Read only as far as the first significant byte: a large file is read once, by its loader.
  std::string head;
  char block[1 << 12];
  FStream->SetPosition(0);
  for (;;) {
    const auto got = static_cast<size_t>(FStream->Read(block, sizeof block));
    head.append(block, got);
    const bool found = std::any_of(head.begin() + static_cast<std::ptrdiff_t>(std::min<size_t>(head.size(), 3)),
                                   head.end(), [](char c) { return static_cast<unsigned char>(c) > ' '; });
    if (found || got == 0) break;
  }
  FStream->SetPosition(0);
  return ChooseInputKind(std::nullopt, head);
}

}  // namespace vnx
