// json_reader.h: TVnJSONTextParser, the character layer under the JSON reader, and
// TVnJSONReader, the forgiving one-pass reader (unit uVnJSON).
// The reader reports structure and the raw text of each value to an IVnJSONContentHandler; it
// synchronises on the next structural character instead of validating what lies between
// tokens, so it accepts more than RFC 8259 (junk after a value up to the next "," or closing
// bracket, any run of number characters, a trailing comma in an array, several top-level
// values in a row) and a little less (no tab or line break before the first value, no white
// space after a top-level array or object).
// Depth: one flat loop with a stack of open containers; nesting costs no call stack, so any
// depth is read (the stack takes one byte per open level).
// End of text: moving past the end raises EVnTextParserEOF (the text was cut inside a
// container or after a member name); a string cut short at the top level ends quietly.
// Lifetime: a reader is a plain object (reference counting off): its creator frees it. It holds
// its handlers by counted reference and owns its scanner for the length of one parse.
#pragma once

#include <memory>
#include <string>

#include "vnxml/common/text_parser.h"
#include "vnxml/common/vn_object.h"
#include "vnxml/json_contract.h"

namespace vn {

class TVnJSONTextParser;
class TVnJSONReader;

/// Bound skip: an operator and a pointer to one of the parser's character constants.
using TVnJSONTextParserSkipFunc = void (TVnJSONTextParser::*)(TVnTextParserSkipOp AOperator, const void* ACharPtr);
/// Bound check: true when the current character equals the constant at ACharPtr.
using TVnJSONTextParserCheckFunc = bool (TVnJSONTextParser::*)(const void* ACharPtr, bool ARaise);

/// The scanner of one JSON text. Encoding: code page 1200 means UTF-16 little-endian, and a
/// multi-byte code page (UTF-8, UTF-16BE, UTF-32, the East Asian pages) is taken as the scanner
/// takes it. A single-byte code page, 0 included, is never used for decoding: the first four
/// bytes decide between UTF-8 and UTF-16 little-endian by where they hold NUL, and the NUL
/// patterns of UTF-32 and big-endian UTF-16 raise a plain Exception (_cVnJSONEncodingNotSupported).
class TVnJSONTextParser : public TVnTextParser {
  VN_DECLARE_CLASS(TVnJSONTextParser, TVnTextParser)
 public:
  TVnJSONTextParser(TStream* AStream, bool AOwnsStream, Word ACodePage);

  /// Re-binds the constants and the two callbacks to the new character set.
  void SetCharacterSetType(TVnCharacterSetType ASet) override;

  using TVnTextParser::SkipWhile;
  /// Skips as AOperator says against the constant at ACharPtr (FQuote, FColon ...).
  void SkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) { (this->*FSkipWhile)(AOperator, ACharPtr); }
  /// True when the current character equals the constant; with ARaise a mismatch raises
  /// EVnJSONParseError code 2 naming both.
  bool CheckCurrChar(const void* ACharPtr, bool ARaise) { return (this->*FCheckCurrChar)(ACharPtr, ARaise); }

  // The targets of the two callbacks, one per encoding.
  void SrcASkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr);
  void SrcUSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr);
  void SrcWSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr);
  bool SrcACheckCurrChar(const void* ACharPtr, bool ARaise);
  bool SrcUCheckCurrChar(const void* ACharPtr, bool ARaise);
  bool SrcWCheckCurrChar(const void* ACharPtr, bool ARaise);

  /// Raises code 2: AExpected, and the current character (empty at the end of the text).
  [[noreturn]] void RaiseNotWellFormed(std::u16string_view AExpected) const;

  // The characters in the width of the text's code units, set by SetCharacterSetType.
  const void* FApos = nullptr;
  const void* FQuote = nullptr;
  const void* FSpace = nullptr;
  const void* FColon = nullptr;
  const void* FBackSlash = nullptr;
  const void* FBracketO = nullptr;
  const void* FBracketC = nullptr;
  const void* FBraceO = nullptr;
  const void* FBraceC = nullptr;
  const void* FEqual = nullptr;

 private:
  TVnJSONTextParserSkipFunc FSkipWhile = nullptr;
  TVnJSONTextParserCheckFunc FCheckCurrChar = nullptr;
};

namespace detail {
/// A reading loop run in place of the handler calls: the library's JSON document builds its
/// nodes straight from the reader's scan (src/json/json_read_loop.h). The reader's framing
/// (scanner, handler checks, failure report) stays.
struct JSONReadLoopOverride {
  void (*Run)(TVnJSONReader& AReader, void* AContext) = nullptr;
  void* Context = nullptr;
};
}  // namespace detail

/// The reader: the five entry points turn a file, buffer, stream or string into a scanner and
/// run InternalParse over it. Every failure inside a parse goes to the error handler's
/// FatalError with the reader as locator, then on to the caller; the handler checks don't.
class TVnJSONReader : public TVnObject, public IVnJSONLocator, public IVnJSONReader {
  VN_DECLARE_CLASS(TVnJSONReader, TVnObject)
  VN_VNOBJECT_INTERFACES(TVnObject, IVnJSONLocator, IVnJSONReader)
 public:
  TVnJSONReader();
  ~TVnJSONReader() override;

  // IVnJSONLocator
  /// The scanner's line during a parse; -1 outside one and after a failure at the end of text.
  Integer GetLineNr() override;
  Integer GetColNr() override;
  /// The last parse's id; before the first one the decimal address of the reader.
  VnJSONString GetPublicID() override { return FPublicID; }

  // IVnJSONReader
  IPtr<IVnJSONContentHandler> GetContentHandler() override { return FContentHandler; }
  IPtr<IVnJSONErrorHandler> GetErrorHandler() override { return FErrorHandler; }
  void SetContentHandler(const IPtr<IVnJSONContentHandler>& AHandler) override { FContentHandler = AHandler; }
  void SetErrorHandler(const IPtr<IVnJSONErrorHandler>& AHandler) override { FErrorHandler = AHandler; }
  void ParseStream(TStream* AStream, Word ACodePage, std::u16string_view APublicID = {}) override;
  void ParseFile(std::u16string_view AFileName, Word AMode, std::u16string_view APublicID = {}) override;
  void ParseBuffer(const void* ABuffer, Cardinal ASize, Word ACodePage, std::u16string_view APublicID = {}) override;
  void Parse(std::u16string_view AText, std::u16string_view APublicID = {}) override;
  void Parse(std::string_view AText, Word ACodePage, std::u16string_view APublicID = {}) override;

  /// The scanner of the running parse, nullptr outside one.
  TVnJSONTextParser* GetParser() const { return FParser.get(); }
  /// True when the last failure was the end of the text coming too early.
  bool GetUnexpectedEOF() const { return FUnexpectedEOF; }
  /// For the library's own loaders: parses run AOverride instead of calling the content
  /// handler, which must still be set (the error handler hears of failures as always).
  void SetLoopOverride(const detail::JSONReadLoopOverride& AOverride) { FLoopOverride = AOverride; }

 protected:
  /// Reads the whole text from the scanner; a form reader replaces it.
  virtual void InternalParse();
  /// The failure path of InternalParse: record an end of text, tell FatalError; the caller re-raises.
  void ReportFailure(const std::exception& AError);

  VnJSONString FPublicID;
  IPtr<IVnJSONContentHandler> FContentHandler;
  IPtr<IVnJSONErrorHandler> FErrorHandler;
  std::unique_ptr<TVnJSONTextParser> FParser;
  bool FUnexpectedEOF = false;
  Integer FLineNr = -1;
  Integer FColNr = -1;

 private:
  void Run(TStream* AStream, Word ACodePage);
  detail::JSONReadLoopOverride FLoopOverride;
};

}  // namespace vn
