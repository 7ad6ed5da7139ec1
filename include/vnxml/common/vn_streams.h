// vn_streams.h: the common package's streams (unit rVnCommon).
// TVnMemoryStream: a growable memory stream, or a read-only view of a caller's block (no copy).
// TVnStringStream: text in one code page, appended by writers with Add and read back as a string.
// TVnUTF8StreamAdapter: UTF-16 text in, UTF-8 bytes out to another stream (and the reverse on read).
#pragma once

#include <string>
#include <string_view>

#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"

namespace vn {

class TVnEncoding;

class TVnMemoryStream : public TMemoryStream {
  VN_DECLARE_CLASS(TVnMemoryStream, TMemoryStream)
 public:
  TVnMemoryStream() = default;
  /// An empty stream with room for ACapacity bytes.
  explicit TVnMemoryStream(Int64 ACapacity);
  /// A read-only view of ASize bytes at AMemory, which must outlive the stream; nothing is
  /// copied. Write gives 0 (so WriteBuffer raises "Stream write error"), SetSize raises.
  TVnMemoryStream(const void* AMemory, Int64 ASize);
  /// True for a view of a caller's block.
  bool IsReadOnly() const { return !OwnsMemory(); }
  Int64 Write(const void* ABuffer, Int64 ACount) override;
  void SetSize(Int64 ANewSize) override;
};

/// An output buffer of text in one code page; also a stream that readers can parse.
/// Add and AddChar write at the position, which writers leave at the end.
class TVnStringStream : public TVnMemoryStream {
  VN_DECLARE_CLASS(TVnStringStream, TVnMemoryStream)
 public:
  /// An empty UTF-16 stream.
  TVnStringStream() : TVnStringStream(cVnCodePageUTF16LE) {}
  /// An empty stream for text in ACodePage (0: this system's 8-bit default, UTF-8).
  explicit TVnStringStream(Word ACodePage, Int64 ACapacity = 0);
  /// A UTF-16 stream (code page 1200) holding a copy of AText, positioned at the start.
  explicit TVnStringStream(std::u16string_view AText);
  /// A stream holding a copy of ABytes, text already in ACodePage, positioned at the start.
  TVnStringStream(std::string_view ABytes, Word ACodePage);

  Word GetCodePage() const { return FCodePage; }

  /// Writes AText converted to the stream's code page.
  void Add(std::u16string_view AText);
  /// Writes 8-bit text that is already in the stream's code page (for a UTF-16 or UTF-32
  /// stream: in the 8-bit default, UTF-8), converting only where the stream is wide.
  void Add(std::string_view ABytes);
  void AddChar(char16_t AChar);

  /// The whole content as text.
  UnicodeString GetWString() const;
  /// The whole content as 8-bit text: the bytes themselves for an 8-bit code page, else UTF-8.
  RawByteString GetAString() const;
  /// The whole content as UTF-8 bytes.
  UTF8String GetAsUTF8() const;
  /// The whole content as bytes of ACodePage.
  RawByteString StringData(Word ACodePage) const;
  /// The content as it is stored, GetSize() bytes.
  std::string_view GetBytesView() const;

 private:
  void AddUtf16(std::u16string_view AText);
  void AddUtf8(std::u16string_view AText);
  Word FCodePage;
  const TVnEncoding* FEncoding;
};

/// Stands in front of a stream that holds UTF-8: what is written is UTF-16LE text, stored in
/// the inner stream as UTF-8; what is read is the inner stream's UTF-8 given back as UTF-16LE.
/// A character split across two writes or reads is carried over. Seek only reports the
/// position (bytes of UTF-16 passed through); any real move raises EStreamError.
class TVnUTF8StreamAdapter : public TStream {
  VN_DECLARE_CLASS(TVnUTF8StreamAdapter, TStream)
 public:
  /// With AWriteBOM, the UTF-8 byte-order mark is written to AStream at once.
  /// With AOwnsStream, the adapter frees AStream when it is freed.
  explicit TVnUTF8StreamAdapter(TStream* AStream, bool AWriteBOM = false, bool AOwnsStream = false);
  TVnUTF8StreamAdapter(const TVnUTF8StreamAdapter&) = delete;
  TVnUTF8StreamAdapter& operator=(const TVnUTF8StreamAdapter&) = delete;
  /// Writes what a last odd write left pending (a lone high surrogate becomes U+FFFD).
  ~TVnUTF8StreamAdapter() override;

  Int64 Read(void* ABuffer, Int64 ACount) override;
  Int64 Write(const void* ABuffer, Int64 ACount) override;
  Int64 Seek(Int64 AOffset, TSeekOrigin AOrigin) override;
  /// The bytes of UTF-16 passed through so far.
  Int64 GetSize() override { return FPosition; }
  /// Writes out a pending half character, as if the text ended here.
  void Flush();
  TStream* GetStream() const { return FStream; }

 private:
  TStream* FStream;
  bool FOwnsStream;
  Int64 FPosition = 0;
  std::string FPendingIn;    // bytes of an incomplete UTF-16 unit or surrogate pair from Write
  std::string FReadBytes;    // UTF-8 read from the inner stream, not yet decoded
  std::u16string FDecoded;   // decoded text not yet handed out by Read
  size_t FDecodedPos = 0;    // bytes of FDecoded already handed out
  bool FInnerAtEnd = false;
};

}  // namespace vn
