// stream.h: the platform's streams: TStream, memory, bytes, string and file streams.
// A stream never belongs to the code that reads or writes it: the caller creates and frees it.
// Failures: EReadError/EWriteError from ReadBuffer/WriteBuffer, EFOpenError/EFCreateError when a
// file can't be opened or created (with the system's reason), EStreamError for invalid sizes.
#pragma once

#include <string>
#include <string_view>

#include "vnxml/common/exception.h"
#include "vnxml/common/object.h"
#include "vnxml/common/types.h"

namespace vn {

enum TSeekOrigin : uint8_t { soBeginning, soCurrent, soEnd };

/// Message texts of the stream classes, as the platform words them.
inline constexpr std::u16string_view cSReadError = u"Stream read error";
inline constexpr std::u16string_view cSWriteError = u"Stream write error";
inline constexpr std::u16string_view cSFOpenErrorEx = u"Cannot open file \"%s\". %s";
inline constexpr std::u16string_view cSFCreateErrorEx = u"Cannot create file \"%s\". %s";
inline constexpr std::u16string_view cSMemoryStreamError = u"Out of memory while expanding memory stream";

class TStream : public TObject {
  VN_DECLARE_CLASS(TStream, TObject)
 public:
  /// Reads up to ACount bytes at the position; returns how many were read (0 at the end).
  virtual Int64 Read(void* ABuffer, Int64 ACount) = 0;
  /// Writes up to ACount bytes at the position; returns how many were written.
  virtual Int64 Write(const void* ABuffer, Int64 ACount) = 0;
  /// Moves the position relative to AOrigin and returns the new position from the start.
  virtual Int64 Seek(Int64 AOffset, TSeekOrigin AOrigin) = 0;

  Int64 GetPosition() { return Seek(0, soCurrent); }
  void SetPosition(Int64 APosition) { Seek(APosition, soBeginning); }
  /// Size in bytes; the base asks Seek for the end and comes back.
  virtual Int64 GetSize();
  /// Grows or cuts the stream; the base can't and does nothing, as the platform's.
  virtual void SetSize(Int64 ANewSize);

  /// Reads exactly ACount bytes, or raises EReadError "Stream read error".
  void ReadBuffer(void* ABuffer, Int64 ACount);
  /// Writes exactly ACount bytes, or raises EWriteError "Stream write error".
  void WriteBuffer(const void* ABuffer, Int64 ACount);
  /// Copies ACount bytes from ASource's position; ACount <= 0 copies all of ASource from its start.
  /// Works in blocks of ABufferSize bytes (0: a default of 1 MiB); returns the bytes copied.
  Int64 CopyFrom(TStream* ASource, Int64 ACount = 0, Int64 ABufferSize = 0);
};

/// A stream over one block of memory; Memory() is valid until the next write or size change.
class TCustomMemoryStream : public TStream {
  VN_DECLARE_CLASS(TCustomMemoryStream, TStream)
 public:
  Int64 Read(void* ABuffer, Int64 ACount) override;
  Int64 Seek(Int64 AOffset, TSeekOrigin AOrigin) override;
  Int64 GetSize() override { return FSize; }
  /// The size, also on a const stream.
  Int64 GetMemorySize() const { return FSize; }
  /// The bytes of the stream, GetSize() of them; scan them in place instead of reading.
  void* GetMemory() const { return FMemory; }
  /// Writes the whole content to AStream (from the start, whatever the position).
  void SaveToStream(TStream* AStream);
  /// Writes the whole content to a new file; raises EFCreateError when it can't be created.
  void SaveToFile(std::u16string_view AFileName);

 protected:
  /// Points the stream at a block of ASize bytes without taking it over.
  void SetPointer(void* APtr, Int64 ASize) {
    FMemory = APtr;
    FSize = ASize;
  }
  /// The position, without the virtual call of GetPosition.
  Int64 FPosition = 0;

 private:
  void* FMemory = nullptr;
  Int64 FSize = 0;
};

/// A growable stream in memory that owns its block.
class TMemoryStream : public TCustomMemoryStream {
  VN_DECLARE_CLASS(TMemoryStream, TCustomMemoryStream)
 public:
  TMemoryStream() = default;
  TMemoryStream(const TMemoryStream&) = delete;
  TMemoryStream& operator=(const TMemoryStream&) = delete;
  ~TMemoryStream() override;

  Int64 Write(const void* ABuffer, Int64 ACount) override;
  /// Sets the size (growing keeps the new bytes undefined); the position is clipped to it.
  void SetSize(Int64 ANewSize) override;
  Int64 GetCapacity() const { return FCapacity; }
  /// Reserves room for ANewCapacity bytes; never cuts below the size.
  void SetCapacity(Int64 ANewCapacity);
  /// Frees the memory: size, capacity and position become 0.
  void Clear();
  /// Replaces the content by all of AStream from its start; the position becomes 0.
  void LoadFromStream(TStream* AStream);
  /// Replaces the content by the bytes of a file; raises EFOpenError when it can't be opened.
  void LoadFromFile(std::u16string_view AFileName);

 protected:
  /// Makes the size ANewSize, growing the block geometrically when it must.
  void EnsureSize(Int64 ANewSize);
  /// Drops the block (freeing it when owned) and leaves an empty owned stream.
  void ReleaseMemory();
  /// Shows a caller's block that this stream must neither grow nor free.
  void SetForeignMemory(const void* AMemory, Int64 ASize);
  bool OwnsMemory() const { return FOwnsMemory; }

 private:
  Int64 FCapacity = 0;
  bool FOwnsMemory = true;
};

/// A memory stream made from, and giving back, a byte array.
class TBytesStream : public TMemoryStream {
  VN_DECLARE_CLASS(TBytesStream, TMemoryStream)
 public:
  TBytesStream() = default;
  explicit TBytesStream(const TBytes& ABytes);
  /// A copy of the content, GetSize() bytes.
  TBytes GetBytes() const;
};

/// A memory stream of text: built from a string and read back as one.
/// Text is stored as UTF-8 unless a code page is given (TVnEncoding converts).
class TStringStream : public TBytesStream {
  VN_DECLARE_CLASS(TStringStream, TBytesStream)
 public:
  TStringStream() = default;
  explicit TStringStream(std::u16string_view AText, Word ACodePage = 65001);
  /// Bytes taken as they are, already in ACodePage.
  explicit TStringStream(std::string_view ABytes, Word ACodePage = 65001);
  Word GetCodePage() const { return FCodePage; }
  /// The whole content decoded from the stream's code page.
  UnicodeString GetDataString() const;
  /// Appends text at the position, in the stream's code page.
  void WriteString(std::u16string_view AText);

 private:
  Word FCodePage = 65001;
};

// File modes of TFileStream: one access mode, optionally or-ed with one share mode.
inline constexpr Word fmCreate = 0xFF00;
inline constexpr Word fmOpenRead = 0x0000;
inline constexpr Word fmOpenWrite = 0x0001;
inline constexpr Word fmOpenReadWrite = 0x0002;
/// With fmCreate: fail when the file already exists.
inline constexpr Word fmExclusive = 0x0004;
inline constexpr Word fmShareCompat = 0x0000;
inline constexpr Word fmShareExclusive = 0x0010;
inline constexpr Word fmShareDenyWrite = 0x0020;
inline constexpr Word fmShareDenyRead = 0x0030;
inline constexpr Word fmShareDenyNone = 0x0040;

/// A stream over a file. fmCreate creates or truncates (read-write); the fmOpen* modes open an
/// existing file. Share modes hold an advisory lock for the life of the stream: fmShareExclusive
/// an exclusive one, fmShareDenyWrite a shared one; the others none.
class THandleStream : public TStream {
  VN_DECLARE_CLASS(THandleStream, TStream)
 public:
  /// Uses an open file descriptor without taking it over.
  explicit THandleStream(int AHandle) : FHandle(AHandle) {}
  Int64 Read(void* ABuffer, Int64 ACount) override;
  Int64 Write(const void* ABuffer, Int64 ACount) override;
  Int64 Seek(Int64 AOffset, TSeekOrigin AOrigin) override;
  /// Truncates or extends the file; raises EStreamError with the system's reason on failure.
  void SetSize(Int64 ANewSize) override;
  int GetHandle() const { return FHandle; }

 protected:
  int FHandle = -1;
};

class TFileStream : public THandleStream {
  VN_DECLARE_CLASS(TFileStream, THandleStream)
 public:
  /// Opens or creates AFileName; raises EFOpenError or EFCreateError with the system's reason.
  TFileStream(std::u16string_view AFileName, Word AMode);
  TFileStream(const TFileStream&) = delete;
  TFileStream& operator=(const TFileStream&) = delete;
  ~TFileStream() override;
  const UnicodeString& GetFileName() const { return FFileName; }

 private:
  UnicodeString FFileName;
};

}  // namespace vn
