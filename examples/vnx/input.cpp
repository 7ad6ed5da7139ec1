// The input of a command: a file read through the library's file stream (the loader reads it
// once, into one block), or standard input read into one block that is scanned in place.
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

}  // namespace vnx
