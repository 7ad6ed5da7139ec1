// Base64 for the byte payload of streams in JSON.
#include "serializer/json_base64.h"

#include "vnxml/common/sysutils.h"

namespace vn::detail {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char16_t cInvalidBase64[] = u"Invalid Base64 text!";

int Digit(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

}  // namespace

std::string Base64Encode(std::string_view ABytes) {
  std::string out;
  out.reserve((ABytes.size() + 2) / 3 * 4);
  size_t i = 0;
  for (; i + 3 <= ABytes.size(); i += 3) {
    const unsigned v = static_cast<unsigned char>(ABytes[i]) << 16 | static_cast<unsigned char>(ABytes[i + 1]) << 8 |
                       static_cast<unsigned char>(ABytes[i + 2]);
    out += {kAlphabet[v >> 18], kAlphabet[(v >> 12) & 63], kAlphabet[(v >> 6) & 63], kAlphabet[v & 63]};
  }
  if (const size_t rest = ABytes.size() - i) {
    unsigned v = static_cast<unsigned char>(ABytes[i]) << 16;
    if (rest == 2) v |= static_cast<unsigned char>(ABytes[i + 1]) << 8;
    out += {kAlphabet[v >> 18], kAlphabet[(v >> 12) & 63], rest == 2 ? kAlphabet[(v >> 6) & 63] : '=', '='};
  }
  return out;
}

std::string Base64Decode(std::string_view AText) {
  std::string out;
  out.reserve(AText.size() / 4 * 3);
  unsigned bits = 0;
  int count = 0, padding = 0;
  for (char c : AText) {
    if (c == ' ' || c == '\r' || c == '\n' || c == '\t') continue;
    if (c == '=') {
      ++padding;
      continue;
    }
    const int d = Digit(c);
    if (d < 0 || padding) throw EConvertError(cInvalidBase64);
    bits = bits << 6 | static_cast<unsigned>(d);
    if (++count == 4) {
      out += {static_cast<char>(bits >> 16), static_cast<char>(bits >> 8), static_cast<char>(bits)};
      bits = 0;
      count = 0;
    }
  }
  if (count == 1 || padding > 2) throw EConvertError(cInvalidBase64);
  if (count == 2) out += static_cast<char>(bits >> 4);
  if (count == 3) out += {static_cast<char>(bits >> 10), static_cast<char>(bits >> 2)};
  return out;
}

}  // namespace vn::detail
