// Output helpers of the serializers.
#include "serializer/walker_output.h"

namespace vn::detail {

void AppendUtf8(std::string& AOut, std::u16string_view AText) {
  const size_t n = AText.size();
  size_t i = 0;
  // Most text is ASCII: copy runs of it without branching per kind.
  while (i < n) {
    size_t run = i;
    while (run < n && AText[run] < 0x80) ++run;
    if (run > i) {
      const size_t start = AOut.size();
      AOut.resize(start + (run - i));
      char* out = AOut.data() + start;
      for (size_t k = i; k < run; ++k) *out++ = static_cast<char>(AText[k]);
      i = run;
      if (i == n) break;
    }
    char32_t c = AText[i++];
    if (c >= 0xD800 && c <= 0xDBFF && i < n && AText[i] >= 0xDC00 && AText[i] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (AText[i++] - 0xDC00);
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x800) {
      AOut += static_cast<char>(0xC0 | (c >> 6));
      AOut += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      AOut += static_cast<char>(0xE0 | (c >> 12));
      AOut += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      AOut += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      AOut += static_cast<char>(0xF0 | (c >> 18));
      AOut += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      AOut += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      AOut += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
}

Int64 StringSinkStream::Seek(Int64 AOffset, TSeekOrigin AOrigin) {
  // Write-only and append-only: the position is always the end.
  (void)AOffset;
  (void)AOrigin;
  return static_cast<Int64>(FData.size());
}

}  // namespace vn::detail
