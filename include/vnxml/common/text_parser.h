// text_parser.h: TVnTextParser, the text scanner of the common package (unit rVnCommon).
// The scanner walks a text in the source's own code units: bytes for ANSI and UTF-8, 16-bit units
// for UTF-16 (big-endian text is swapped once up front, UTF-32 is converted once up front).
// A character is one byte in ANSI, one UTF-8 sequence, one 16-bit unit in UTF-16. Lines end at
// LF; columns and GetPosition count UTF-16 units, so one text gives the same figures in every
// encoding. Reads at the end give NUL; moving past the end raises EVnTextParserEOF.
// Ownership: a stream is freed with the scanner only when AOwnsStream is true; a memory block
// stays the caller's and must outlive the scanner.
#pragma once

#include <array>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "vnxml/common/exception.h"
#include "vnxml/common/object.h"
#include "vnxml/common/types.h"
#include "vnxml/common/vn_exception.h"

namespace vn {

class TStream;
class TVnEncoding;

/// Raised by CheckEOF at the end of the text, and when a move would pass the end.
VN_EXCEPTION(EVnTextParserEOF, EVnException)

enum TVnCharacterSetType : uint8_t { csAnsi, csUTF16, csUTF8 };

enum TVnTextParserSkipOp : uint8_t { soEqual, soNotEqual, soLessEqual, soInSet, soNotInSet };

enum TVnTextParserPosType : uint8_t { tpPrev, tpCurrent, tpNext, tpMark1, tpMark2, tpMark3 };

/// A set of ANSI characters (the platform's `set of AnsiChar`), kept as a 256-entry table.
class TVnAnsiCharSet {
 public:
  constexpr TVnAnsiCharSet() = default;
  /// The set of the given characters.
  constexpr TVnAnsiCharSet(std::string_view AChars) {
    for (char c : AChars) FHas[static_cast<uint8_t>(c)] = true;
  }
  /// Adds every character from AFirst to ALast, both included.
  constexpr TVnAnsiCharSet& AddRange(uint8_t AFirst, uint8_t ALast) {
    for (unsigned c = AFirst; c <= ALast; ++c) FHas[c] = true;
    return *this;
  }
  constexpr TVnAnsiCharSet& Add(char AChar) {
    FHas[static_cast<uint8_t>(AChar)] = true;
    return *this;
  }
  constexpr bool Contains(uint8_t AChar) const { return FHas[AChar]; }
  /// True for a 16-bit unit below 256 that is in the set.
  constexpr bool ContainsW(char16_t AChar) const { return AChar < 256 && FHas[AChar]; }
  /// True when every member is ASCII, so that bytewise skipping in UTF-8 text stays on boundaries.
  constexpr bool IsAscii() const {
    for (unsigned c = 0x80; c < 256; ++c)
      if (FHas[c]) return false;
    return true;
  }

 private:
  std::array<bool, 256> FHas{};
};

namespace detail {
/// The scanner's raw state, shared with the readers of this library for their inner loops.
/// Cur and End point into one buffer of code units; for UTF-16 they are aligned to 2 bytes.
struct TextCursor {
  const Byte* Begin = nullptr;
  const Byte* Cur = nullptr;
  const Byte* End = nullptr;
};
}  // namespace detail

class TVnTextParser : public TObject {
  VN_DECLARE_CLASS(TVnTextParser, TObject)
 public:
  /// Scans AStream from its current position to its end; code page 0 leaves the encoding open.
  /// A memory stream is scanned in place, any other stream is read once in large blocks.
  TVnTextParser(TStream* AStream, bool AOwnsStream, Word ACodePage);
  /// Scans a memory block that stays the caller's.
  TVnTextParser(const void* AMemory, size_t ASize, Word ACodePage);
  TVnTextParser(const TVnTextParser&) = delete;
  TVnTextParser& operator=(const TVnTextParser&) = delete;
  ~TVnTextParser() override;

  // ---- encoding ----
  /// Changes how code units are read; a derived class re-binds its own dispatch here.
  /// Note: C++ constructors don't dispatch virtually, so a derived class calls this itself.
  virtual void SetCharacterSetType(TVnCharacterSetType ASet);
  TVnCharacterSetType GetCharacterSetType() const { return FCharacterSetType; }
  /// Sets the code page that selections are decoded with.
  void SetContentCodePage(Word ACodePage);
  Word GetContentCodePage() const { return FContentCodePage; }
  /// The code page given to the constructor (or found in a conversion up front).
  Word GetCodePage() const { return FCodePage; }

  // ---- reading ----
  /// The raw byte (ANSI, UTF-8) or the unit truncated to 8 bits (UTF-16) at the current place; NUL at the end.
  AnsiChar CurrCharA() const;
  /// The current character as UTF-16 (a high surrogate for a character above U+FFFF); NUL at the end.
  WideChar CurrCharW() const;
  /// CurrCharA, then a move to the next character unless at the end.
  AnsiChar ReadCharA();
  /// CurrCharW, then a move to the next character unless at the end.
  WideChar ReadCharW();
  /// The character after the current one; NUL when there is none.
  WideChar PeekCharW() const;
  /// The character before the current one; NUL at the start.
  WideChar PrevCharW() const;
  /// Moves to the next character; raises EVnTextParserEOF at the end.
  void NextChar();
  /// Moves ACount characters on; raises EVnTextParserEOF when the end comes first.
  void SkipChars(Integer ACount);
  /// The next ACount characters as their raw bytes (UTF-16: as UTF-8), fewer at the end.
  AnsiString PeekString(Integer ACount) const;
  /// The next ACount characters decoded, fewer at the end.
  UnicodeString PeekStringW(Integer ACount) const;

  // ---- moving ----
  void First();
  /// Goes to the end of the text.
  void Last();
  bool _GetEOF() const { return FCursor.Cur >= FCursor.End; }
  /// Raises EVnTextParserEOF when at the end of the text.
  void CheckEOF() const;

  // ---- skipping (each stops at the end of the text) ----
  /// Skips while the current character compares with AChar as AOperator says; the set
  /// operators take AChar as a set of one.
  void SkipWhile(TVnTextParserSkipOp AOperator, WideChar AChar);
  /// Skips while the current character is (soInSet) or is not (soNotInSet) in ASet.
  void SkipWhileSet(TVnTextParserSkipOp AOperator, const TVnAnsiCharSet& ASet);
  /// The ANSI form: bytes compared with AChar.
  void SrcASkipWhileA(TVnTextParserSkipOp AOperator, AnsiChar AChar);
  /// The UTF-8 form: AChar is a code point up to U+00FF; whole sequences are skipped.
  void SrcUSkipWhileA(TVnTextParserSkipOp AOperator, AnsiChar AChar);
  /// The UTF-16 form: units compared with AChar.
  void SrcWSkipWhileW(TVnTextParserSkipOp AOperator, WideChar AChar);

  // ---- positions, marks and selections ----
  void SetMark(TVnTextParserPosType AMark);
  void ClearMark(TVnTextParserPosType AMark);
  bool IsMarkSet(TVnTextParserPosType AMark) const;
  /// Offset in code units from the start of the text; -1 for a mark that isn't set.
  Int64 GetPos(TVnTextParserPosType APos) const;
  Int64 GetCurPos() const { return (FCursor.Cur - FCursor.Begin) / UnitSize(); }
  /// 1-based place of the current character, counted in UTF-16 units.
  Integer GetPosition() const;
  /// 1-based line of the current character.
  Integer GetLineNr() const;
  /// 1-based column of the current character, counted in UTF-16 units.
  Integer GetColNr() const;
  /// Line and column of any offset in code units (as GetPos gives it).
  void GetLineCol(Int64 AOffset, Integer& ALine, Integer& ACol) const;
  /// The decoded text from AStart up to, not including, AEnd; AClear forgets the start mark.
  /// An unset mark or an end before the start gives the empty text.
  UnicodeString Selected(TVnTextParserPosType AStart, TVnTextParserPosType AEnd, bool AClear);
  /// As Selected, as the raw bytes of the span (UTF-16 text comes as UTF-8).
  AnsiString SelectedA(TVnTextParserPosType AStart, TVnTextParserPosType AEnd, bool AClear);
  UnicodeString SelectedW(TVnTextParserPosType AStart, TVnTextParserPosType AEnd, bool AClear) {
    return Selected(AStart, AEnd, AClear);
  }
  /// Decodes the code units from offset AFrom to ATo (as GetPos gives them) into AOut.
  void DecodeSpan(Int64 AFrom, Int64 ATo, std::u16string& AOut) const;
  /// The code units of the span decoded: for native UTF-16 a view into the text, otherwise
  /// into ABuffer. Valid until ABuffer or the scanner changes.
  std::u16string_view DecodeSpanView(const Byte* AFrom, const Byte* ATo, std::u16string& ABuffer) const;

  /// Raw state for the inner loops of this library's readers.
  detail::TextCursor& Cursor() { return FCursor; }
  const detail::TextCursor& Cursor() const { return FCursor; }
  /// Bytes per code unit: 2 for UTF-16, else 1.
  int UnitSize() const { return FCharacterSetType == csUTF16 ? 2 : 1; }

  /// Raises EVnTextParserEOF with the scanner's message.
  [[noreturn]] static void RaiseEOF();

 private:
  void InitFromMemory(const void* AMemory, size_t ASize, bool ACopy);
  void PrepareUnits();
  void BindDecoder();
  const Byte* NextPtr(const Byte* AFrom) const;
  const Byte* PrevPtr(const Byte* AFrom) const;
  WideChar CharAt(const Byte* AAt) const;
  const Byte* PosPtr(TVnTextParserPosType APos) const;
  void AdvanceLineCache(const Byte* ATo) const;
  Integer UnitsBetween(const Byte* AFrom, const Byte* ATo) const;

  detail::TextCursor FCursor;
  TVnCharacterSetType FCharacterSetType = csAnsi;
  Word FCodePage = 0;
  Word FContentCodePage = 0;
  TStream* FStream = nullptr;
  bool FOwnsStream = false;
  std::unique_ptr<Byte[]> FOwned;  // the text, when it could not be scanned in place
  std::array<Int64, 3> FMarks{-1, -1, -1};
  // How byte spans decode: UTF-8, bytes as code points, a table for single-byte pages, or the
  // code page's converter for multi-byte pages (owned by the encoding cache).
  enum class TDecodeKind : uint8_t { Utf8, Latin1, Table, Converter };
  TDecodeKind FDecodeKind = TDecodeKind::Latin1;
  std::unique_ptr<std::array<char16_t, 256>> FByteTable;
  const TVnEncoding* FEncoding = nullptr;
  // Line/column cache: moving forward counts only the new stretch; a move back restarts.
  mutable const Byte* FLinePos = nullptr;
  mutable const Byte* FLineStart = nullptr;
  mutable Integer FLineNr = 1;
  mutable Integer FLineCol = 1;  // column at FLinePos
  mutable Int64 FLineUnits = 0;  // UTF-16 units before FLinePos
};

}  // namespace vn
