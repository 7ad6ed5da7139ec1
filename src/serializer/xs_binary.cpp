// The two encodings of TXsBinaryString: Base64 and hexadecimal text to bytes on a stream and back.
#include <vector>

#include "serializer/json_base64.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/xs_binary.h"

namespace vn {

namespace {

std::string ReadRest(TStream& AStream) {
  std::string bytes;
  std::vector<char> block(0x10000);
  while (const Int64 n = AStream.Read(block.data(), static_cast<Int64>(block.size())))
    bytes.append(block.data(), static_cast<size_t>(n));
  return bytes;
}

void WriteAll(TStream& AStream, const std::string& ABytes) {
  if (!ABytes.empty()) AStream.WriteBuffer(ABytes.data(), static_cast<Int64>(ABytes.size()));
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

void TXsBinaryStringB64Encoding::DecodeToStream(const RawByteString& AEncoded, TStream& AStream) {
  WriteAll(AStream, detail::Base64Decode(AEncoded));
}

RawByteString TXsBinaryStringB64Encoding::EncodeFromStream(TStream& AStream) {
  return detail::Base64Encode(ReadRest(AStream));
}

void TXsBinaryStringHexEncoding::DecodeToStream(const RawByteString& AEncoded, TStream& AStream) {
  // Decoded whole before the first write: a bad text writes nothing.
  std::string bytes;
  bytes.reserve(AEncoded.size() / 2);
  for (size_t i = 0; i < AEncoded.size(); i += 2) {
    const int high = HexDigit(AEncoded[i]);
    const int low = i + 1 < AEncoded.size() ? HexDigit(AEncoded[i + 1]) : -1;
    if (high < 0 || low < 0)
      throw EConvertError(cVnXsInvalidHex, {UnicodeString(AEncoded.begin(), AEncoded.end())});
    bytes += static_cast<char>(high << 4 | low);
  }
  WriteAll(AStream, bytes);
}

RawByteString TXsBinaryStringHexEncoding::EncodeFromStream(TStream& AStream) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  const std::string bytes = ReadRest(AStream);
  RawByteString text;
  text.reserve(bytes.size() * 2);
  for (unsigned char b : bytes) text += {kDigits[b >> 4], kDigits[b & 15]};
  return text;
}

}  // namespace vn
