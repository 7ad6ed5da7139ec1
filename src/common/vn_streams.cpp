// TVnMemoryStream and TVnStringStream: memory streams with a read-only view mode and a text
// buffer whose Add writes straight into the block, without a temporary string.
#include "vnxml/common/vn_streams.h"

#include <cstring>

#include "vnxml/common/encoding.h"

namespace vn {

// ---- TVnMemoryStream ----

TVnMemoryStream::TVnMemoryStream(Int64 ACapacity) { SetCapacity(ACapacity); }

TVnMemoryStream::TVnMemoryStream(const void* AMemory, Int64 ASize) { SetForeignMemory(AMemory, ASize); }

Int64 TVnMemoryStream::Write(const void* ABuffer, Int64 ACount) {
  return IsReadOnly() ? 0 : TMemoryStream::Write(ABuffer, ACount);
}

void TVnMemoryStream::SetSize(Int64 ANewSize) {
  if (IsReadOnly()) throw EStreamError(UnicodeString(cSWriteError));
  TMemoryStream::SetSize(ANewSize);
}

// ---- TVnStringStream ----

TVnStringStream::TVnStringStream(Word ACodePage, Int64 ACapacity)
    : FCodePage(ACodePage), FEncoding(TVnEncoding::GetEncoding(ACodePage)) {
  if (ACapacity > 0) SetCapacity(ACapacity);
}

TVnStringStream::TVnStringStream(std::u16string_view AText) : TVnStringStream(cVnCodePageUTF16LE) {
  AddUtf16(AText);
  FPosition = 0;
}

TVnStringStream::TVnStringStream(std::string_view ABytes, Word ACodePage) : TVnStringStream(ACodePage) {
  if (!ABytes.empty()) WriteBuffer(ABytes.data(), static_cast<Int64>(ABytes.size()));
  FPosition = 0;
}

void TVnStringStream::AddUtf16(std::u16string_view AText) {
  if (AText.empty()) return;  // an empty view may carry a null pointer, which memcpy must not see
  if (FPosition > GetMemorySize()) {
    // Behind a seek past the end: Write fills the gap.
    WriteBuffer(AText.data(), static_cast<Int64>(AText.size() * 2));
    return;
  }
  const auto count = static_cast<Int64>(AText.size() * 2);
  const Int64 end = FPosition + count;
  if (end > GetMemorySize()) EnsureSize(end);
  std::memcpy(static_cast<char*>(GetMemory()) + FPosition, AText.data(), static_cast<size_t>(count));
  FPosition = end;
}

void TVnStringStream::AddUtf8(std::u16string_view AText) {
  const Int64 oldSize = GetMemorySize();
  if (FPosition != oldSize) {
    // Overwriting inside the text: the byte count isn't known ahead, so go through a string.
    const RawByteString bytes = FEncoding->GetBytes(AText);
    WriteBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
    return;
  }
  EnsureSize(oldSize + static_cast<Int64>(AText.size()) * 3);
  char* start = static_cast<char*>(GetMemory()) + FPosition;
  char* end = detail::EncodeUtf16AsUtf8(AText.data(), AText.data() + AText.size(), start);
  FPosition += end - start;
  SetPointer(GetMemory(), FPosition);
}

void TVnStringStream::Add(std::u16string_view AText) {
  if (AText.empty()) return;
  if (IsReadOnly()) throw EWriteError(UnicodeString(cSWriteError));
  switch (FEncoding->GetCodePage()) {
    case cVnCodePageUTF16LE: AddUtf16(AText); return;
    case cVnCodePageUTF8: AddUtf8(AText); return;
    default: {
      const RawByteString bytes = FEncoding->GetBytes(AText);
      WriteBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
    }
  }
}

void TVnStringStream::Add(std::string_view ABytes) {
  if (ABytes.empty()) return;
  if (VnIsWideCodePage(FCodePage)) {
    Add(TVnEncoding::ConvertA(ABytes, cVnCodePageDefault));
    return;
  }
  WriteBuffer(ABytes.data(), static_cast<Int64>(ABytes.size()));
}

void TVnStringStream::AddChar(char16_t AChar) {
  if (FCodePage == cVnCodePageUTF16LE && !IsReadOnly() && FPosition + 2 <= GetCapacity() &&
      FPosition <= GetMemorySize()) {
    // The common case of a writer's single '<' or '"': no encoder, no growth check beyond this.
    std::memcpy(static_cast<char*>(GetMemory()) + FPosition, &AChar, 2);
    FPosition += 2;
    if (FPosition > GetMemorySize()) SetPointer(GetMemory(), FPosition);
    return;
  }
  Add(std::u16string_view(&AChar, 1));
}

std::string_view TVnStringStream::GetBytesView() const {
  return {static_cast<const char*>(GetMemory()), static_cast<size_t>(GetMemorySize())};
}

UnicodeString TVnStringStream::GetWString() const { return FEncoding->GetString(GetBytesView()); }

RawByteString TVnStringStream::GetAString() const {
  if (!VnIsWideCodePage(FCodePage)) return RawByteString(GetBytesView());
  return TVnEncoding::ConvertW(GetWString(), cVnCodePageDefault);
}

UTF8String TVnStringStream::GetAsUTF8() const { return StringData(cVnCodePageUTF8); }

RawByteString TVnStringStream::StringData(Word ACodePage) const {
  const TVnEncoding* target = TVnEncoding::GetEncoding(ACodePage);
  if (target == FEncoding) return RawByteString(GetBytesView());
  if (FEncoding->GetCodePage() == cVnCodePageUTF16LE) {
    const std::string_view bytes = GetBytesView();
    // The block may be unaligned for char16_t only in theory (malloc aligns), but copy to be safe.
    UnicodeString text(bytes.size() / 2, u'\0');
    if (!text.empty()) std::memcpy(text.data(), bytes.data(), text.size() * 2);
    return target->GetBytes(text);
  }
  return target->GetBytes(GetWString());
}

}  // namespace vn
