// The byte side of the XML writer: pieces of UTF-16 text are encoded into the output code page
// one by one and reach the stream in large blocks, so the tree walk never makes a small write.
// Each piece is encoded on its own, as a write of its own would be: a surrogate pair split
// between two pieces stays two broken characters, and stateful code pages start afresh.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "vnxml/common/code_page.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/types.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vn::detail {

/// Where encoded bytes go: straight into the block of a plain memory stream that is written at
/// its end, else into a buffer handed to the stream in large blocks. The stream's size and
/// position catch up at Flush.
class OutputSink {
 public:
  explicit OutputSink(TStream& AStream) : FStream(AStream) {}
  OutputSink(const OutputSink&) = delete;
  OutputSink& operator=(const OutputSink&) = delete;
  /// Bytes not flushed are dropped: after a failure the output is partial anyway.
  ~OutputSink();

  TStream& Stream() const noexcept { return FStream; }
  /// Makes room for ABytes bytes at the cursor and returns it.
  char* Reserve(size_t ABytes) {
    if (static_cast<size_t>(FEnd - FCursor) < ABytes) MakeRoom(ABytes);
    return FCursor;
  }
  /// Marks the reserved bytes up to AEnd as written.
  void Advance(char* AEnd) noexcept { FCursor = AEnd; }
  void Put(const void* ABytes, size_t ALength) {
    char* out = Reserve(ALength);
    if (ALength != 0) std::memcpy(out, ABytes, ALength);  // an empty piece may come with a null pointer
    FCursor = out + ALength;
  }
  /// The stream position of the next byte.
  Int64 Position();
  /// Hands everything written to the stream; its size and position are then up to date.
  void Flush();
  /// After Flush, when something else has moved in or written to the stream.
  void Resync() noexcept;

 private:
  enum class Mode : uint8_t { Undecided, InPlace, Buffered };
  void MakeRoom(size_t ABytes);
  bool AttachInPlace(size_t ABytes);
  void AttachBuffer(size_t ABytes);

  TStream& FStream;
  Mode FMode = Mode::Undecided;
  TMemoryStream* FMemory = nullptr;  // the stream, while writing in place
  std::unique_ptr<char[]> FBuffer;
  size_t FBufferSize = 0;
  char* FStart = nullptr;   // first byte not yet in the stream
  char* FCursor = nullptr;  // next byte
  char* FEnd = nullptr;     // end of the room
  Int64 FBase = -1;         // stream position of FStart; -1 while unknown
};

/// UTF-16 to UTF-8 at AOut, which has room for 3 bytes a unit; the end. A lone surrogate
/// becomes U+FFFD. Markup is mostly ASCII, which is narrowed inline, 8 units at a time where
/// it can; from the first other character on the codec takes over.
inline char* PutUtf8(char* AOut, std::u16string_view AText) noexcept {
  const char16_t* p = AText.data();
  const char16_t* end = p + AText.size();
#if defined(__SSE2__)
  const __m128i nonAscii = _mm_set1_epi16(static_cast<short>(0xFF80));
  while (end - p >= 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, nonAscii), _mm_setzero_si128())) != 0xFFFF) break;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(AOut), _mm_packus_epi16(v, v));
    p += 8;
    AOut += 8;
  }
#endif
  while (p < end && *p < 0x80) *AOut++ = static_cast<char>(*p++);
  return p == end ? AOut : EncodeUtf16AsUtf8(p, end, AOut);
}

/// Text in UTF-8.
class Utf8Output : public OutputSink {
 public:
  using OutputSink::OutputSink;
  void Text(std::u16string_view AText) { Advance(PutUtf8(Reserve(AText.size() * 3), AText)); }
  /// Markup made of ASCII characters.
  void Ascii(std::string_view AText) { Put(AText.data(), AText.size()); }
  /// AMarkup, AText, then ATail in one step: the common shape of a name or value in a tag.
  void Framed(std::string_view AMarkup, std::u16string_view AText, std::string_view ATail) {
    char* out = Reserve(AMarkup.size() + AText.size() * 3 + ATail.size());
    std::memcpy(out, AMarkup.data(), AMarkup.size());
    out = PutUtf8(out + AMarkup.size(), AText);
    std::memcpy(out, ATail.data(), ATail.size());
    Advance(out + ATail.size());
  }
  /// As Framed for text already in UTF-8.
  void FramedBytes(std::string_view AMarkup, std::string_view AText, std::string_view ATail) {
    char* out = Reserve(AMarkup.size() + AText.size() + ATail.size());
    std::memcpy(out, AMarkup.data(), AMarkup.size());
    out += AMarkup.size();
    std::memcpy(out, AText.data(), AText.size());
    out += AText.size();
    std::memcpy(out, ATail.data(), ATail.size());
    Advance(out + ATail.size());
  }
  /// ACopies of the two-space indentation step.
  void Indent(size_t ACopies) {
    char* out = Reserve(ACopies * 2);
    std::memset(out, ' ', ACopies * 2);
    Advance(out + ACopies * 2);
  }
};

/// Text in UTF-16 little endian, as it is in memory.
class Utf16Output : public OutputSink {
 public:
  using OutputSink::OutputSink;
  void Text(std::u16string_view AText) { Put(AText.data(), AText.size() * sizeof(char16_t)); }
  void Ascii(std::string_view AText) { Advance(Widen(Reserve(AText.size() * 2), AText)); }
  void Framed(std::string_view AMarkup, std::u16string_view AText, std::string_view ATail) {
    char* out = Reserve((AMarkup.size() + AText.size() + ATail.size()) * 2);
    out = Widen(out, AMarkup);
    if (!AText.empty()) std::memcpy(out, AText.data(), AText.size() * 2);
    Advance(Widen(out + AText.size() * 2, ATail));
  }
  void Indent(size_t ACopies) {
    char* out = Reserve(ACopies * 4);
    for (size_t i = 0; i < ACopies * 2; ++i) {
      out[2 * i] = ' ';
      out[2 * i + 1] = 0;
    }
    Advance(out + ACopies * 4);
  }

 private:
  static char* Widen(char* AOut, std::string_view AText) noexcept {
    for (char c : AText) {
      *AOut++ = c;
      *AOut++ = 0;
    }
    return AOut;
  }
};

/// Text in any other code page, through TVnEncoding.
class ConvertingOutput : public OutputSink {
 public:
  /// The first piece raises EVnException "Unsupported code page %d" when no converter exists.
  ConvertingOutput(TStream& AStream, Word ACodePage) : OutputSink(AStream), FCodePage(ACodePage) {}
  void Text(std::u16string_view AText);
  void Ascii(std::string_view AText);
  void Framed(std::string_view AMarkup, std::u16string_view AText, std::string_view ATail) {
    Ascii(AMarkup);
    Text(AText);
    Ascii(ATail);
  }
  void Indent(size_t ACopies);

 private:
  Word FCodePage;
  // Looked up at the first piece: a walk that writes nothing raises nothing.
  const TVnEncoding* FEncoding = nullptr;
  RawByteString FBytes;
  std::u16string FWide;
};

}  // namespace vn::detail
