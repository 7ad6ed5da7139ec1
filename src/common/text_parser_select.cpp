// TVnTextParser: decoding of spans, marks and selections, line and column.
#include <algorithm>
#include <bit>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "common/text_parser_scan.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"

namespace vn {

namespace detail {

namespace {
// Decodes [p, e) to d, which has room for e - p units; returns the end of the output, or nil
// at the first four-byte or malformed sequence with p left on it.
char16_t* DecodeUtf8Common(const uint8_t*& p, const uint8_t* e, char16_t* d) {
  while (p < e) {
#if defined(__SSE2__)
    // Sixteen ASCII bytes at a time: the common case of markup and most text. A block with a
    // sequence in it is stored whole too and counts up to the sequence's lead byte: d has room
    // for as many units as bytes are left, and that is at least sixteen here.
    const __m128i zero = _mm_setzero_si128();
    while (e - p >= 16) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_unpacklo_epi8(v, zero));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 8), _mm_unpackhi_epi8(v, zero));
      if (const auto high = static_cast<uint32_t>(_mm_movemask_epi8(v))) {
        const auto k = static_cast<unsigned>(std::countr_zero(high));
        d += k;
        p += k;
        break;
      }
      d += 16;
      p += 16;
    }
#endif
    while (p < e && *p < 0x80) *d++ = *p++;
    if (p >= e) break;
    uint8_t c = *p;
    if (c >= 0xC2 && c <= 0xDF && e - p >= 2 && (p[1] & 0xC0) == 0x80) {
      *d++ = static_cast<char16_t>((c & 0x1F) << 6 | (p[1] & 0x3F));
      p += 2;
    } else if (c >= 0xE0 && c <= 0xEF && e - p >= 3 && (p[1] & 0xC0) == 0x80 && (p[2] & 0xC0) == 0x80 &&
               (c != 0xE0 || p[1] >= 0xA0) && (c != 0xED || p[1] <= 0x9F)) {
      *d++ = static_cast<char16_t>((c & 0x0F) << 12 | (p[1] & 0x3F) << 6 | (p[2] & 0x3F));
      p += 3;
    } else {
      return nullptr;
    }
  }
  return d;
}
}  // namespace

void AppendUtf8(const uint8_t* p, const uint8_t* e, std::u16string& AOut) {
  size_t base = AOut.size();
  AOut.resize(base + static_cast<size_t>(e - p));  // never more units than bytes
  const uint8_t* q = p;
  if (char16_t* d = DecodeUtf8Common(q, e, AOut.data() + base)) {
    AOut.resize(static_cast<size_t>(d - AOut.data()));
    return;
  }
  // Four-byte and malformed sequences are rare: the shared decoder does the whole span.
  AOut.resize(base);
  AppendUtf8AsUtf16(std::string_view(reinterpret_cast<const char*>(p), static_cast<size_t>(e - p)), AOut);
}

std::u16string_view DecodeUtf8(const uint8_t* p, const uint8_t* e, std::u16string& AScratch) {
  auto n = static_cast<size_t>(e - p);
  // The scratch only grows, so that most calls neither allocate nor clear.
  if (AScratch.size() < n) AScratch.resize(std::max(n, 2 * AScratch.size()));
  const uint8_t* q = p;
  if (char16_t* d = DecodeUtf8Common(q, e, AScratch.data()))
    return {AScratch.data(), static_cast<size_t>(d - AScratch.data())};
  AScratch.clear();
  AppendUtf8AsUtf16(std::string_view(reinterpret_cast<const char*>(p), n), AScratch);
  return AScratch;
}

std::u16string_view DecodeUtf8Rest(const uint8_t* AStart, const uint8_t* p, const uint8_t* e,
                                   std::u16string& AScratch, size_t AKept) {
  const size_t need = AKept + static_cast<size_t>(e - p);
  if (AScratch.size() < need) AScratch.resize(std::max(need, 2 * AScratch.size()));
  const uint8_t* q = p;
  if (char16_t* d = DecodeUtf8Common(q, e, AScratch.data() + AKept))
    return {AScratch.data(), static_cast<size_t>(d - AScratch.data())};
  return DecodeUtf8(AStart, e, AScratch);
}

}  // namespace detail

void TVnTextParser::BindDecoder() {
  FByteTable.reset();
  FEncoding = nullptr;
  Word cp = FContentCodePage;
  if (FCharacterSetType == csUTF8 && cp == 0) cp = cVnCodePageUTF8;
  if (cp == cVnCodePageUTF8) {
    FDecodeKind = TDecodeKind::Utf8;
  } else if (cp == 0 || cp == cVnCodePageLatin1 || FCharacterSetType == csUTF16) {
    FDecodeKind = TDecodeKind::Latin1;
  } else {
    const TVnEncoding* enc = TVnEncoding::GetEncoding(cp);
    if (enc->GetMaxByteCount() == 1) {
      // A single-byte page decodes through a table built once: no converter call per span.
      auto table = std::make_unique<std::array<char16_t, 256>>();
      for (unsigned b = 0; b < 256; ++b) {
        char one = static_cast<char>(b);
        UnicodeString u = enc->GetString(std::string_view(&one, 1));
        (*table)[b] = u.size() == 1 ? u[0] : u'\uFFFD';
      }
      FByteTable = std::move(table);
      FDecodeKind = TDecodeKind::Table;
    } else {
      FEncoding = enc;
      FDecodeKind = TDecodeKind::Converter;
    }
  }
}

std::u16string_view TVnTextParser::DecodeSpanView(const Byte* AFrom, const Byte* ATo, std::u16string& ABuffer) const {
  if (ATo <= AFrom) return {};
  if (FCharacterSetType == csUTF16)
    return {reinterpret_cast<const char16_t*>(AFrom), static_cast<size_t>(ATo - AFrom) / 2};
  ABuffer.clear();
  switch (FDecodeKind) {
    case TDecodeKind::Utf8: detail::AppendUtf8(AFrom, ATo, ABuffer); break;
    case TDecodeKind::Latin1: detail::AppendLatin1(AFrom, ATo, ABuffer); break;
    case TDecodeKind::Table: {
      ABuffer.resize(static_cast<size_t>(ATo - AFrom));
      char16_t* d = ABuffer.data();
      for (const Byte* p = AFrom; p < ATo; ++p) *d++ = (*FByteTable)[*p];
      break;
    }
    case TDecodeKind::Converter:
      FEncoding->AppendString(std::string_view(reinterpret_cast<const char*>(AFrom), static_cast<size_t>(ATo - AFrom)),
                              ABuffer);
      break;
  }
  return ABuffer;
}

void TVnTextParser::DecodeSpan(Int64 AFrom, Int64 ATo, std::u16string& AOut) const {
  Int64 units = (FCursor.End - FCursor.Begin) / UnitSize();
  AFrom = std::clamp<Int64>(AFrom, 0, units) * UnitSize();
  ATo = std::clamp<Int64>(ATo, 0, units) * UnitSize();
  std::u16string_view v = DecodeSpanView(FCursor.Begin + AFrom, FCursor.Begin + ATo, AOut);
  if (v.data() != AOut.data()) AOut.assign(v);
  else if (v.empty()) AOut.clear();
}

// ---- marks and positions ----

void TVnTextParser::SetMark(TVnTextParserPosType AMark) {
  if (AMark >= tpMark1) FMarks[AMark - tpMark1] = GetCurPos();
}

void TVnTextParser::ClearMark(TVnTextParserPosType AMark) {
  if (AMark >= tpMark1) FMarks[AMark - tpMark1] = -1;
}

bool TVnTextParser::IsMarkSet(TVnTextParserPosType AMark) const {
  return AMark < tpMark1 || FMarks[AMark - tpMark1] >= 0;
}

const Byte* TVnTextParser::PosPtr(TVnTextParserPosType APos) const {
  switch (APos) {
    case tpPrev: return PrevPtr(FCursor.Cur);
    case tpCurrent: return FCursor.Cur;
    case tpNext: return NextPtr(FCursor.Cur);
    default: {
      Int64 at = FMarks[APos - tpMark1] * UnitSize();
      if (at < 0 || at > FCursor.End - FCursor.Begin) return nullptr;
      return FCursor.Begin + at;
    }
  }
}

Int64 TVnTextParser::GetPos(TVnTextParserPosType APos) const {
  const Byte* p = PosPtr(APos);
  return p ? (p - FCursor.Begin) / UnitSize() : -1;
}

Integer TVnTextParser::UnitsBetween(const Byte* AFrom, const Byte* ATo) const {
  if (ATo <= AFrom) return 0;
  if (FCharacterSetType == csUTF16) return static_cast<Integer>((ATo - AFrom) / 2);
  if (FCharacterSetType == csAnsi) return static_cast<Integer>(ATo - AFrom);
  // UTF-8: each lead byte starts a unit, a four-byte lead starts a surrogate pair.
  Integer n = 0;
  for (const Byte* p = AFrom; p < ATo; ++p) n += ((*p & 0xC0) != 0x80) + (*p >= 0xF0);
  return n;
}

void TVnTextParser::AdvanceLineCache(const Byte* ATo) const {
  if (ATo < FLinePos) {
    FLinePos = FCursor.Begin;
    FLineNr = FLineCol = 1;
    FLineUnits = 0;
  }
  const Byte* lastBreak = nullptr;
  if (FCharacterSetType == csUTF16) {
    auto* p = reinterpret_cast<const char16_t*>(FLinePos);
    auto* e = reinterpret_cast<const char16_t*>(ATo);
    while ((p = detail::FindUnit(p, e, u'\n')) < e) {
      ++FLineNr;
      lastBreak = reinterpret_cast<const Byte*>(++p);
    }
  } else {
    const Byte* p = FLinePos;
    while ((p = detail::FindUnit(p, ATo, Byte('\n'))) < ATo) {
      ++FLineNr;
      lastBreak = ++p;
    }
  }
  FLineUnits += UnitsBetween(FLinePos, ATo);
  if (lastBreak)
    FLineCol = 1 + UnitsBetween(lastBreak, ATo);
  else
    FLineCol += UnitsBetween(FLinePos, ATo);
  FLinePos = ATo;
}

Integer TVnTextParser::GetPosition() const {
  AdvanceLineCache(FCursor.Cur);
  return static_cast<Integer>(FLineUnits + 1);
}

Integer TVnTextParser::GetLineNr() const {
  AdvanceLineCache(FCursor.Cur);
  return FLineNr;
}

Integer TVnTextParser::GetColNr() const {
  AdvanceLineCache(FCursor.Cur);
  return FLineCol;
}

void TVnTextParser::GetLineCol(Int64 AOffset, Integer& ALine, Integer& ACol) const {
  AOffset = std::clamp<Int64>(AOffset, 0, (FCursor.End - FCursor.Begin) / UnitSize());
  AdvanceLineCache(FCursor.Begin + AOffset * UnitSize());
  ALine = FLineNr;
  ACol = FLineCol;
}

// ---- selections ----

UnicodeString TVnTextParser::Selected(TVnTextParserPosType AStart, TVnTextParserPosType AEnd, bool AClear) {
  const Byte* s = PosPtr(AStart);
  const Byte* e = PosPtr(AEnd);
  if (AClear) ClearMark(AStart);
  if (!s || !e || e <= s) return {};
  std::u16string buf;
  std::u16string_view v = DecodeSpanView(s, e, buf);
  if (v.data() == buf.data()) return buf;
  return UnicodeString(v);
}

AnsiString TVnTextParser::SelectedA(TVnTextParserPosType AStart, TVnTextParserPosType AEnd, bool AClear) {
  const Byte* s = PosPtr(AStart);
  const Byte* e = PosPtr(AEnd);
  if (AClear) ClearMark(AStart);
  if (!s || !e || e <= s) return {};
  if (FCharacterSetType == csUTF16)
    return UnicodeToUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(s), static_cast<size_t>(e - s) / 2));
  return AnsiString(reinterpret_cast<const char*>(s), static_cast<size_t>(e - s));
}

}  // namespace vn
