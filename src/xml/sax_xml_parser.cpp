// TVnXMLParser: the encoding decision, the per-encoding dispatch and the name-start check.
#include "vnxml/common/code_page.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/vn_chars.h"
#include "vnxml/sax_xml_parser.h"
#include "xml/declared_encoding.h"

namespace vn {

namespace {

// The constants live in static storage so that their addresses can stand for them.
struct WideConstants {
  static constexpr char16_t Amp = cVnAmpW, Apos = cVnAposW, Equal = cVnEqualW, Gt = cVnGtW, Lt = cVnLtW,
                            Quest = cVnQuestW, Quote = cVnQuoteW, Slash = cVnSlashW, Space = cVnSpaceW,
                            Excl = cVnExclW, Line = cVnLineW, Colon = cVnColonW, SemiColon = cVnSemiColonW,
                            BracketO = cVnBracketOW, BracketC = cVnBracketCW;
};
struct ByteConstants {
  static constexpr char Amp = cVnAmpA, Apos = cVnAposA, Equal = cVnEqualA, Gt = cVnGtA, Lt = cVnLtA,
                        Quest = cVnQuestA, Quote = cVnQuoteA, Slash = cVnSlashA, Space = cVnSpaceA,
                        Excl = cVnExclA, Line = cVnLineA, Colon = cVnColonA, SemiColon = cVnSemiColonA,
                        BracketO = cVnBracketOA, BracketC = cVnBracketCA;
};

Word ChooseCodePage(TStream* AStream, bool ADetectBOM, Word ACodePage) {
  Word cp = ADetectBOM && AStream ? VnGetCodePage(AStream) : Word(0);
  return cp ? cp : ACodePage;
}

}  // namespace

TVnXMLParser::TVnXMLParser(TStream* AStream, bool AOwnsStream, bool ADetectBOM, Word ACodePage)
    : TVnTextParser(AStream, AOwnsStream, ChooseCodePage(AStream, ADetectBOM, ACodePage)) {
  SetCharacterSetType(GetCharacterSetType());
  // A byte-order mark or the caller's code page wins over whatever the text declares.
  if (GetCodePage() == 0) DetectDeclaredEncoding();
}

void TVnXMLParser::DetectDeclaredEncoding() {
  // Without a code page the text is read in bytes: the declaration is ASCII in every such encoding.
  const detail::TextCursor& c = Cursor();
  UnicodeString name = detail::DeclaredEncoding(
      std::string_view(reinterpret_cast<const char*>(c.Cur), static_cast<size_t>(c.End - c.Cur)),
      detail::DeclarationRule::Prolog);
  Word cp;
  if (name.empty() || SameText(name, u"UTF-8")) {
    if (GetCharacterSetType() == csAnsi) SetCharacterSetType(csUTF8);
    cp = cVnCodePageUTF8;
  } else {
    cp = VnCodePage(name);
  }
  SetContentCodePage(cp);
}

void TVnXMLParser::SetCharacterSetType(TVnCharacterSetType ASet) {
  TVnTextParser::SetCharacterSetType(ASet);
  if (ASet == csUTF16) {
    using K = WideConstants;
    FAmp = &K::Amp, FApos = &K::Apos, FEqual = &K::Equal, FGt = &K::Gt, FLt = &K::Lt, FQuest = &K::Quest;
    FQuote = &K::Quote, FSlash = &K::Slash, FSpace = &K::Space, FExcl = &K::Excl, FLine = &K::Line;
    FColon = &K::Colon, FSemiColon = &K::SemiColon, FBracketOA = &K::BracketO, FBracketCA = &K::BracketC;
    FSkipWhile = &TVnXMLParser::SrcWSkipWhile;
    FCheckCurrChar = &TVnXMLParser::SrcWCheckCurrChar;
    return;
  }
  using K = ByteConstants;
  FAmp = &K::Amp, FApos = &K::Apos, FEqual = &K::Equal, FGt = &K::Gt, FLt = &K::Lt, FQuest = &K::Quest;
  FQuote = &K::Quote, FSlash = &K::Slash, FSpace = &K::Space, FExcl = &K::Excl, FLine = &K::Line;
  FColon = &K::Colon, FSemiColon = &K::SemiColon, FBracketOA = &K::BracketO, FBracketCA = &K::BracketC;
  if (ASet == csUTF8) {
    FSkipWhile = &TVnXMLParser::SrcUSkipWhile;
    FCheckCurrChar = &TVnXMLParser::SrcUCheckCurrChar;
  } else {
    FSkipWhile = &TVnXMLParser::SrcASkipWhile;
    FCheckCurrChar = &TVnXMLParser::SrcACheckCurrChar;
  }
}

// ---- the callbacks' targets ----

void TVnXMLParser::SrcASkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) {
  SrcASkipWhileA(AOperator, *static_cast<const char*>(ACharPtr));
}

void TVnXMLParser::SrcUSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) {
  SrcUSkipWhileA(AOperator, *static_cast<const char*>(ACharPtr));
}

void TVnXMLParser::SrcWSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) {
  SrcWSkipWhileW(AOperator, *static_cast<const char16_t*>(ACharPtr));
}

bool TVnXMLParser::SrcACheckCurrChar(const void* ACharPtr, bool ARaise) {
  char expected = *static_cast<const char*>(ACharPtr);
  bool same = !_GetEOF() && static_cast<char>(*Cursor().Cur) == expected;
  if (!same && ARaise) RaiseNotWellFormed(static_cast<uint8_t>(expected));
  return same;
}

bool TVnXMLParser::SrcUCheckCurrChar(const void* ACharPtr, bool ARaise) { return SrcACheckCurrChar(ACharPtr, ARaise); }

bool TVnXMLParser::SrcWCheckCurrChar(const void* ACharPtr, bool ARaise) {
  char16_t expected = *static_cast<const char16_t*>(ACharPtr);
  bool same = !_GetEOF() && *reinterpret_cast<const char16_t*>(Cursor().Cur) == expected;
  if (!same && ARaise) RaiseNotWellFormed(expected);
  return same;
}

void TVnXMLParser::RaiseNotWellFormed(char16_t AExpected) const {
  throw EVnXMLParseError(cVnXMLErrNotWellFormed, _cVnXMLNotWellFormed,
                         {UnicodeString(1, AExpected), UnicodeString(1, CurrCharW())});
}

// ---- names ----

bool TVnXMLParser::IsNameStartChar(char16_t c) {
  // The name-start production of XML 1.0 without the colon and without the astral planes.
  if (c < 0x80) return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
  return (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF) ||
         (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) || (c >= 0x200C && c <= 0x200D) ||
         (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) ||
         (c >= 0xF900 && c <= 0xFDCF) || (c >= 0xFDF0 && c <= 0xFFFD);
}

void TVnXMLParser::CheckValidNameStartChar() {
  char16_t c = CurrCharW();
  if (IsNameStartChar(c)) return;
  UnicodeString shown(1, c);
  if (c == u':') throw EVnXMLParseError(cVnXMLErrInvalidNameStartChar, _cVnXMLInvalidNameStartchar1, {shown});
  throw EVnXMLParseError(cVnXMLErrInvalidNameStartChar, _cVnXMLInvalidNameStartchar2, {shown});
}

}  // namespace vn
