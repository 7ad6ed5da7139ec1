// TStringStream: a bytes stream whose content is text in one code page.
#include "vnxml/common/encoding.h"
#include "vnxml/common/stream.h"

namespace vn {

TStringStream::TStringStream(std::u16string_view AText, Word ACodePage) : FCodePage(ACodePage) {
  WriteString(AText);
  FPosition = 0;
}

TStringStream::TStringStream(std::string_view ABytes, Word ACodePage) : FCodePage(ACodePage) {
  if (!ABytes.empty()) WriteBuffer(ABytes.data(), static_cast<Int64>(ABytes.size()));
  FPosition = 0;
}

UnicodeString TStringStream::GetDataString() const {
  return TVnEncoding::ConvertA({static_cast<const char*>(GetMemory()), static_cast<size_t>(GetMemorySize())},
                               FCodePage);
}

void TStringStream::WriteString(std::u16string_view AText) {
  const RawByteString bytes = TVnEncoding::ConvertW(AText, FCodePage);
  if (!bytes.empty()) WriteBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
}

}  // namespace vn
