// TVnTextParser: construction, encodings and reading one character at a time.
#include <algorithm>
#include <cstring>
#include <vector>

#include "common/text_parser_scan.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/text_parser.h"
#include "vnxml/common/utf.h"

namespace vn {

namespace {
constexpr Word cpUTF16LE = 1200;
constexpr Word cpUTF16BE = 1201;
constexpr Word cpUTF32LE = 12000;
constexpr Word cpUTF32BE = 12001;
constexpr Word cpUTF8 = 65001;
constexpr size_t cReadBlock = size_t(1) << 20;

void PutUnit(std::vector<char16_t>& AOut, uint32_t ACode) {
  if (ACode > 0x10FFFF || (ACode >= 0xD800 && ACode <= 0xDFFF)) ACode = 0xFFFD;
  if (ACode >= 0x10000) {
    ACode -= 0x10000;
    AOut.push_back(static_cast<char16_t>(0xD800 + (ACode >> 10)));
    AOut.push_back(static_cast<char16_t>(0xDC00 + (ACode & 0x3FF)));
  } else {
    AOut.push_back(static_cast<char16_t>(ACode));
  }
}
}  // namespace

TVnTextParser::TVnTextParser(TStream* AStream, bool AOwnsStream, Word ACodePage)
    : FCodePage(ACodePage), FStream(AStream), FOwnsStream(AOwnsStream) {
  if (auto* mem = CastObject<TCustomMemoryStream>(AStream)) {
    // Memory streams are scanned where they stand: no copy of the text.
    Int64 pos = std::clamp<Int64>(mem->GetPosition(), 0, mem->GetSize());
    InitFromMemory(static_cast<const Byte*>(mem->GetMemory()) + pos, static_cast<size_t>(mem->GetSize() - pos),
                   false);
    return;
  }
  // Read once into the buffer the scanner keeps: sized by what the stream says is left, plus
  // room to see the end; it grows only for a stream that doesn't know its size.
  size_t capacity = 1, have = 0;
  if (AStream) capacity = static_cast<size_t>(std::max<Int64>(AStream->GetSize() - AStream->GetPosition(), 0)) + 1;
  std::unique_ptr<Byte[]> buffer(new Byte[capacity]);
  while (AStream) {
    if (have == capacity) {
      std::unique_ptr<Byte[]> grown(new Byte[capacity * 2 + cReadBlock]);
      std::memcpy(grown.get(), buffer.get(), have);
      buffer = std::move(grown);
      capacity = capacity * 2 + cReadBlock;
    }
    Int64 got = AStream->Read(buffer.get() + have, static_cast<Int64>(std::min(capacity - have, cReadBlock)));
    if (got <= 0) break;
    have += static_cast<size_t>(got);
  }
  FOwned = std::move(buffer);
  InitFromMemory(FOwned.get(), have, false);
}

TVnTextParser::TVnTextParser(const void* AMemory, size_t ASize, Word ACodePage) : FCodePage(ACodePage) {
  InitFromMemory(AMemory, AMemory ? ASize : 0, false);
}

TVnTextParser::~TVnTextParser() {
  if (FOwnsStream) delete FStream;
}

void TVnTextParser::InitFromMemory(const void* AMemory, size_t ASize, bool ACopy) {
  const auto* src = static_cast<const Byte*>(AMemory);
  if (ACopy) {
    FOwned.reset(new Byte[ASize + 2]);
    if (ASize) std::memcpy(FOwned.get(), src, ASize);
    src = FOwned.get();
  }
  FCursor.Begin = FCursor.Cur = src;
  FCursor.End = src + ASize;
  PrepareUnits();
}

// Brings the text into the code units the scanner walks: UTF-16 must be native and aligned;
// UTF-16BE and UTF-32 are converted once here, so the loops never swap or decode ahead.
void TVnTextParser::PrepareUnits() {
  const Byte* b = FCursor.Begin;
  size_t size = static_cast<size_t>(FCursor.End - b);
  if (FCodePage == cpUTF32LE || FCodePage == cpUTF32BE) {
    std::vector<char16_t> units;
    units.reserve(size / 4 + 1);
    bool be = FCodePage == cpUTF32BE;
    for (size_t i = 0; i + 4 <= size; i += 4) {
      uint32_t c = be ? (uint32_t(b[i]) << 24 | uint32_t(b[i + 1]) << 16 | uint32_t(b[i + 2]) << 8 | b[i + 3])
                      : (uint32_t(b[i + 3]) << 24 | uint32_t(b[i + 2]) << 16 | uint32_t(b[i + 1]) << 8 | b[i]);
      PutUnit(units, c);
    }
    if (size % 4) units.push_back(u'\uFFFD');
    std::unique_ptr<Byte[]> owned(new Byte[units.size() * 2 + 2]);
    if (!units.empty()) std::memcpy(owned.get(), units.data(), units.size() * 2);
    FOwned = std::move(owned);
    FCursor.Begin = FCursor.Cur = FOwned.get();
    FCursor.End = FCursor.Begin + units.size() * 2;
    FCodePage = cpUTF16LE;
    FCharacterSetType = csUTF16;
  } else if (FCodePage == cpUTF16LE || FCodePage == cpUTF16BE) {
    FCharacterSetType = csUTF16;
    bool swap = FCodePage == cpUTF16BE;
    bool aligned = reinterpret_cast<uintptr_t>(b) % alignof(char16_t) == 0;
    if (swap || !aligned || size % 2) {
      // A cut last unit becomes U+FFFD rather than vanishing.
      size_t units = (size + 1) / 2;
      std::unique_ptr<Byte[]> owned(new Byte[units * 2 + 2]);
      for (size_t i = 0; i + 1 < size; i += 2) {
        owned[i] = swap ? b[i + 1] : b[i];
        owned[i + 1] = swap ? b[i] : b[i + 1];
      }
      if (size % 2) {
        char16_t bad = u'\uFFFD';
        std::memcpy(owned.get() + size - 1, &bad, 2);
      }
      FOwned = std::move(owned);
      FCursor.Begin = FCursor.Cur = FOwned.get();
      FCursor.End = FCursor.Begin + units * 2;
    }
    FCodePage = cpUTF16LE;
  } else if (FCodePage == cpUTF8) {
    FCharacterSetType = csUTF8;
  } else {
    FCharacterSetType = csAnsi;
  }
  FLinePos = FCursor.Begin;
  SetContentCodePage(FCodePage);
}

void TVnTextParser::SetCharacterSetType(TVnCharacterSetType ASet) {
  if (ASet == FCharacterSetType) return;
  if (ASet == csUTF16) {
    // Bytes read as UTF-16 from here on: the units must be aligned and whole.
    const Byte* b = FCursor.Begin;
    size_t size = static_cast<size_t>(FCursor.End - b);
    Int64 at = (FCursor.Cur - b) & ~Int64(1);
    if (reinterpret_cast<uintptr_t>(b) % 2 || size % 2) {
      size_t units = (size + 1) / 2;
      std::unique_ptr<Byte[]> owned(new Byte[units * 2 + 2]);
      if (size) std::memcpy(owned.get(), b, size);
      if (size % 2) {
        char16_t bad = u'\uFFFD';
        std::memcpy(owned.get() + size - 1, &bad, 2);
      }
      FOwned = std::move(owned);
      FCursor.Begin = FOwned.get();
      FCursor.End = FCursor.Begin + units * 2;
    }
    FCursor.Cur = FCursor.Begin + at;
    FLinePos = FCursor.Begin;
    FLineNr = FLineCol = 1;
    FLineUnits = 0;
  } else if (FCharacterSetType == csUTF16) {
    FLinePos = FCursor.Begin;
    FLineNr = FLineCol = 1;
    FLineUnits = 0;
  }
  FCharacterSetType = ASet;
  BindDecoder();
}

void TVnTextParser::SetContentCodePage(Word ACodePage) {
  FContentCodePage = ACodePage;
  BindDecoder();
}

// ---- reading one character ----

const Byte* TVnTextParser::NextPtr(const Byte* AFrom) const {
  if (AFrom >= FCursor.End) return FCursor.End;
  switch (FCharacterSetType) {
    case csUTF16: return AFrom + 2;
    case csUTF8: return detail::Utf8Next(AFrom, FCursor.End);
    default: return AFrom + 1;
  }
}

const Byte* TVnTextParser::PrevPtr(const Byte* AFrom) const {
  if (AFrom <= FCursor.Begin) return FCursor.Begin;
  switch (FCharacterSetType) {
    case csUTF16: return AFrom - 2;
    case csUTF8: {
      // Back over at most three continuation bytes to the lead byte that owns them.
      const Byte* p = AFrom - 1;
      for (int i = 0; i < 3 && p > FCursor.Begin && (*p & 0xC0) == 0x80; ++i) --p;
      return detail::Utf8Next(p, FCursor.End) == AFrom ? p : AFrom - 1;
    }
    default: return AFrom - 1;
  }
}

WideChar TVnTextParser::CharAt(const Byte* AAt) const {
  if (AAt >= FCursor.End) return 0;
  switch (FCharacterSetType) {
    case csUTF16: return *reinterpret_cast<const char16_t*>(AAt);
    case csUTF8: {
      if (*AAt < 0x80) return *AAt;
      std::u16string one;
      detail::AppendUtf8(AAt, detail::Utf8Next(AAt, FCursor.End), one);
      return one.empty() ? u'\uFFFD' : one[0];
    }
    default:
      if (FByteTable) return (*FByteTable)[*AAt];
      if (*AAt < 0x80) return *AAt;
      std::u16string one;
      DecodeSpanView(AAt, AAt + 1, one);
      return one.empty() ? u'\uFFFD' : one[0];
  }
}

AnsiChar TVnTextParser::CurrCharA() const {
  if (_GetEOF()) return 0;
  if (FCharacterSetType == csUTF16) return static_cast<AnsiChar>(*reinterpret_cast<const char16_t*>(FCursor.Cur));
  return static_cast<AnsiChar>(*FCursor.Cur);
}

WideChar TVnTextParser::CurrCharW() const { return CharAt(FCursor.Cur); }

AnsiChar TVnTextParser::ReadCharA() {
  AnsiChar c = CurrCharA();
  FCursor.Cur = NextPtr(FCursor.Cur);
  return c;
}

WideChar TVnTextParser::ReadCharW() {
  WideChar c = CurrCharW();
  FCursor.Cur = NextPtr(FCursor.Cur);
  return c;
}

WideChar TVnTextParser::PeekCharW() const {
  if (_GetEOF()) return 0;
  return CharAt(NextPtr(FCursor.Cur));
}

WideChar TVnTextParser::PrevCharW() const {
  if (FCursor.Cur <= FCursor.Begin) return 0;
  return CharAt(PrevPtr(FCursor.Cur));
}

void TVnTextParser::RaiseEOF() { throw EVnTextParserEOF(u"Unexpected end of the text!"); }

void TVnTextParser::NextChar() {
  if (_GetEOF()) RaiseEOF();
  FCursor.Cur = NextPtr(FCursor.Cur);
}

void TVnTextParser::SkipChars(Integer ACount) {
  for (Integer i = 0; i < ACount; ++i) NextChar();
}

AnsiString TVnTextParser::PeekString(Integer ACount) const {
  const Byte* e = FCursor.Cur;
  for (Integer i = 0; i < ACount && e < FCursor.End; ++i) e = NextPtr(e);
  if (FCharacterSetType == csUTF16)
    return UnicodeToUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(FCursor.Cur),
                                             static_cast<size_t>(e - FCursor.Cur) / 2));
  return AnsiString(reinterpret_cast<const char*>(FCursor.Cur), static_cast<size_t>(e - FCursor.Cur));
}

UnicodeString TVnTextParser::PeekStringW(Integer ACount) const {
  const Byte* e = FCursor.Cur;
  for (Integer i = 0; i < ACount && e < FCursor.End; ++i) e = NextPtr(e);
  std::u16string buf;
  return UnicodeString(DecodeSpanView(FCursor.Cur, e, buf));
}

void TVnTextParser::First() { FCursor.Cur = FCursor.Begin; }

void TVnTextParser::Last() { FCursor.Cur = FCursor.End; }

void TVnTextParser::CheckEOF() const {
  if (_GetEOF()) RaiseEOF();
}

}  // namespace vn
