// Stored texts: the UTF-8 check of the loader and decoding on demand.
#include "dom/stored_text.h"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "common/text_parser_scan.h"
#include "vnxml/xml_escape.h"

namespace vn::detail {

bool IsWellFormedUtf8(std::string_view AText) noexcept {
  const auto* p = reinterpret_cast<const uint8_t*>(AText.data());
  const uint8_t* e = p + AText.size();
  // Most values are short and ASCII: eight bytes a step settle them.
  for (; e - p >= 8; p += 8) {
    uint64_t word;
    std::memcpy(&word, p, 8);
    if (word & 0x8080808080808080ull) break;
  }
  while (p < e) {
#if defined(__SSE2__)
    // Values are mostly ASCII: sixteen bytes a step until a byte above 0x7F.
    while (e - p >= 16 && !_mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))) p += 16;
#endif
    while (p < e && *p < 0x80) ++p;
    if (p >= e) return true;
    const uint8_t c = *p;
    int more;
    uint8_t lo = 0x80, hi = 0xBF;  // bounds of the byte after the lead
    if (c >= 0xC2 && c <= 0xDF) {
      more = 1;
    } else if (c >= 0xE0 && c <= 0xEF) {
      more = 2;
      if (c == 0xE0) lo = 0xA0;
      if (c == 0xED) hi = 0x9F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      more = 3;
      if (c == 0xF0) lo = 0x90;
      if (c == 0xF4) hi = 0x8F;
    } else {
      return false;
    }
    if (e - p <= more) return false;
    if (p[1] < lo || p[1] > hi) return false;
    for (int i = 2; i <= more; ++i)
      if ((p[i] & 0xC0) != 0x80) return false;
    p += more + 1;
  }
  return true;
}

std::u16string CompactString::DecodeUtf8Text(std::string_view AText) {
  const auto* p = reinterpret_cast<const uint8_t*>(AText.data());
  const uint8_t* e = p + AText.size();
  // Read on every value access: ASCII is widened in place, sixteen bytes a step, into a string
  // of its final size; the first sequence hands the rest to the library's decoder.
  std::u16string out(AText.size(), u'\0');
  char16_t* d = out.data();
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  for (; e - p >= 16; p += 16, d += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    if (_mm_movemask_epi8(v)) break;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_unpacklo_epi8(v, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 8), _mm_unpackhi_epi8(v, zero));
  }
#endif
  while (p < e && *p < 0x80) *d++ = *p++;
  if (p == e) return out;
  out.resize(static_cast<size_t>(d - out.data()));
  AppendUtf8(p, e, out);
  return out;
}

UnicodeString QuotesAsReferences(std::u16string_view AValue) {
  UnicodeString out;
  out.reserve(AValue.size() + 8);
  for (char16_t c : AValue) {
    if (c == u'"')
      out += u"&quot;";
    else
      out.push_back(c);
  }
  return out;
}

UnicodeString DecodeEscaped(const CompactString& AStored) {
  if (!AStored.IsUtf8()) return VnXMLToStr(AStored.Wide());
  const std::string_view bytes = AStored.Utf8();
  UnicodeString text = CompactString::DecodeUtf8Text(bytes);
  if (std::memchr(bytes.data(), '&', bytes.size()) == nullptr) return text;
  return VnXMLToStr(text);
}

}  // namespace vn::detail
