// sax_xml_parser.h: TVnXMLParser, the character layer under the XML reader (unit uVnSAX).
// It settles the text's encoding (byte-order mark, the caller's code page, or the prolog's
// declaration, in that order), binds comparing and skipping to the encoding in force, and
// judges the first character of a name. Failures raise EVnXMLParseError.
#pragma once

#include "vnxml/common/text_parser.h"
#include "vnxml/sax_contract.h"

namespace vn {

class TVnXMLParser;
/// Bound skip: an operator and a pointer to one of the parser's character constants.
using TVnXMLTextParserSkipFunc = void (TVnXMLParser::*)(TVnTextParserSkipOp AOperator, const void* ACharPtr);
/// Bound check: true when the current code unit equals the constant at ACharPtr.
using TVnXMLTextParserCheckFunc = bool (TVnXMLParser::*)(const void* ACharPtr, bool ARaise);

class TVnXMLParser : public TVnTextParser {
  VN_DECLARE_CLASS(TVnXMLParser, TVnTextParser)
 public:
  /// With ADetectBOM a byte-order mark decides first, then ACodePage; with neither, the
  /// declaration `<?xml ... encoding="..."?>` does, and no declaration means UTF-8.
  /// An encoding name nobody knows raises VnCodePage's EVnException.
  TVnXMLParser(TStream* AStream, bool AOwnsStream, bool ADetectBOM, Word ACodePage);

  /// Re-binds the constants and the two callbacks to the new character set.
  void SetCharacterSetType(TVnCharacterSetType ASet) override;

  using TVnTextParser::SkipWhile;
  /// Skips as AOperator says against the constant at ACharPtr (FLt, FGt ...).
  void SkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) { (this->*FSkipWhile)(AOperator, ACharPtr); }
  /// True when the current code unit equals the constant; with ARaise a mismatch raises code 2.
  bool CheckCurrChar(const void* ACharPtr, bool ARaise) { return (this->*FCheckCurrChar)(ACharPtr, ARaise); }
  /// Raises code 3 unless the current character may start a name (a colon has its own message).
  void CheckValidNameStartChar();
  /// True for a UTF-16 unit that may start a name (no colon, no surrogate).
  static bool IsNameStartChar(char16_t AChar);

  // The targets of the two callbacks, one per encoding.
  void SrcASkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr);
  void SrcUSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr);
  void SrcWSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr);
  bool SrcACheckCurrChar(const void* ACharPtr, bool ARaise);
  bool SrcUCheckCurrChar(const void* ACharPtr, bool ARaise);
  bool SrcWCheckCurrChar(const void* ACharPtr, bool ARaise);

  /// Raises code 2 naming the expected character and the current one.
  [[noreturn]] void RaiseNotWellFormed(char16_t AExpected) const;

  // The characters in the width of the text's code units, set by SetCharacterSetType.
  const void* FAmp = nullptr;
  const void* FApos = nullptr;
  const void* FEqual = nullptr;
  const void* FGt = nullptr;
  const void* FLt = nullptr;
  const void* FQuest = nullptr;
  const void* FQuote = nullptr;
  const void* FSlash = nullptr;
  const void* FSpace = nullptr;
  const void* FExcl = nullptr;
  const void* FLine = nullptr;
  const void* FColon = nullptr;
  const void* FSemiColon = nullptr;
  const void* FBracketOA = nullptr;
  const void* FBracketCA = nullptr;

 private:
  void DetectDeclaredEncoding();

  TVnXMLTextParserSkipFunc FSkipWhile = nullptr;
  TVnXMLTextParserCheckFunc FCheckCurrChar = nullptr;
};

}  // namespace vn
