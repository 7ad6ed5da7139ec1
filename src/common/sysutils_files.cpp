// File name helpers and FileExists. Both '/' and '\' end a folder name, so that names written
// on either kind of system split the same way.
#include <sys/stat.h>

#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

namespace vn {

namespace {

size_t NameStart(std::u16string_view AFileName) {
  const size_t at = AFileName.find_last_of(u"/\\");
  return at == std::u16string_view::npos ? 0 : at + 1;
}

}  // namespace

bool FileExists(std::u16string_view AFileName) {
  if (AFileName.empty()) return false;
  struct stat st {};
  return ::stat(UnicodeToUtf8(AFileName).c_str(), &st) == 0 && !S_ISDIR(st.st_mode);
}

UnicodeString ExtractFileName(std::u16string_view AFileName) {
  return UnicodeString(AFileName.substr(NameStart(AFileName)));
}

UnicodeString ExtractFilePath(std::u16string_view AFileName) {
  return UnicodeString(AFileName.substr(0, NameStart(AFileName)));
}

UnicodeString ExtractFileExt(std::u16string_view AFileName) {
  const size_t start = NameStart(AFileName);
  const size_t dot = AFileName.rfind(u'.');
  return dot == std::u16string_view::npos || dot < start ? UnicodeString() : UnicodeString(AFileName.substr(dot));
}

}  // namespace vn
