// TVnJSONTextParser: the encoding decision and the per-encoding dispatch.
#include "vnxml/common/code_page.h"
#include "vnxml/common/encoding.h"
#include "vnxml/common/vn_chars.h"
#include "vnxml/json_reader.h"

namespace vn {

namespace {

// The constants live in static storage so that their addresses can stand for them.
template <class C>
struct Constants {
  static constexpr C Apos = '\'', Quote = '"', Space = ' ', Colon = ':', BackSlash = '\\', BracketO = '[',
                     BracketC = ']', BraceO = '{', BraceC = '}', Equal = '=';
};

// Whether the caller's code page is one the NUL patterns overrule: one byte per character.
// 0 stands for the system's 8-bit default; a page no converter knows is treated alike.
bool IsSingleByteCodePage(Word ACodePage) {
  if (ACodePage == 0) return true;
  if (ACodePage == cVnCodePageUTF16LE) return false;
  try {
    return TVnEncoding::GetEncoding(ACodePage)->GetMaxByteCount() == 1;
  } catch (const Exception&) {
    return true;
  }
}

}  // namespace

TVnJSONTextParser::TVnJSONTextParser(TStream* AStream, bool AOwnsStream, Word ACodePage)
    : TVnTextParser(AStream, AOwnsStream, ACodePage) {
  SetCharacterSetType(GetCharacterSetType());
  if (!IsSingleByteCodePage(ACodePage)) return;
  // A read past the end gives NUL, so a text shorter than four bytes matches by that too.
  AnsiChar b[4];
  for (AnsiChar& c : b) c = ReadCharA();
  const bool n0 = b[0] == cVnEOFA, n1 = b[1] == cVnEOFA, n2 = b[2] == cVnEOFA, n3 = b[3] == cVnEOFA;
  if ((n0 && n1 && n2 && !n3) || (n0 && !n1 && n2 && !n3) || (!n0 && n1 && n2 && n3))
    throw Exception(UnicodeString(_cVnJSONEncodingNotSupported));
  if (!n0 && n1 && !n2 && n3) {
    SetCharacterSetType(csUTF16);
    SetContentCodePage(cVnCodePageUTF16LE);
  } else {
    SetCharacterSetType(csUTF8);
    SetContentCodePage(cVnCodePageUTF8);
  }
  First();
}

void TVnJSONTextParser::SetCharacterSetType(TVnCharacterSetType ASet) {
  TVnTextParser::SetCharacterSetType(ASet);
  auto bind = [this](auto constants) {
    using K = decltype(constants);
    FApos = &K::Apos, FQuote = &K::Quote, FSpace = &K::Space, FColon = &K::Colon, FBackSlash = &K::BackSlash;
    FBracketO = &K::BracketO, FBracketC = &K::BracketC, FBraceO = &K::BraceO, FBraceC = &K::BraceC;
    FEqual = &K::Equal;
  };
  switch (ASet) {
    case csUTF16:
      bind(Constants<char16_t>{});
      FSkipWhile = &TVnJSONTextParser::SrcWSkipWhile;
      FCheckCurrChar = &TVnJSONTextParser::SrcWCheckCurrChar;
      break;
    case csUTF8:
      bind(Constants<char>{});
      FSkipWhile = &TVnJSONTextParser::SrcUSkipWhile;
      FCheckCurrChar = &TVnJSONTextParser::SrcUCheckCurrChar;
      break;
    default:
      bind(Constants<char>{});
      FSkipWhile = &TVnJSONTextParser::SrcASkipWhile;
      FCheckCurrChar = &TVnJSONTextParser::SrcACheckCurrChar;
      break;
  }
}

// ---- the callbacks' targets ----

void TVnJSONTextParser::SrcASkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) {
  SrcASkipWhileA(AOperator, *static_cast<const char*>(ACharPtr));
}

void TVnJSONTextParser::SrcUSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) {
  SrcUSkipWhileA(AOperator, *static_cast<const char*>(ACharPtr));
}

void TVnJSONTextParser::SrcWSkipWhile(TVnTextParserSkipOp AOperator, const void* ACharPtr) {
  SrcWSkipWhileW(AOperator, *static_cast<const char16_t*>(ACharPtr));
}

bool TVnJSONTextParser::SrcACheckCurrChar(const void* ACharPtr, bool ARaise) {
  const char expected = *static_cast<const char*>(ACharPtr);
  const bool same = !_GetEOF() && CurrCharA() == expected;
  if (!same && ARaise) RaiseNotWellFormed(UnicodeString(1, static_cast<uint8_t>(expected)));
  return same;
}

bool TVnJSONTextParser::SrcUCheckCurrChar(const void* ACharPtr, bool ARaise) {
  return SrcACheckCurrChar(ACharPtr, ARaise);
}

bool TVnJSONTextParser::SrcWCheckCurrChar(const void* ACharPtr, bool ARaise) {
  const char16_t expected = *static_cast<const char16_t*>(ACharPtr);
  const bool same = !_GetEOF() && CurrCharW() == expected;
  if (!same && ARaise) RaiseNotWellFormed(UnicodeString(1, expected));
  return same;
}

void TVnJSONTextParser::RaiseNotWellFormed(std::u16string_view AExpected) const {
  // One character found, whole in every encoding: a surrogate pair of UTF-16 text too.
  UnicodeString found = PeekStringW(1);
  if (GetCharacterSetType() == csUTF16 && found.size() == 1 && found[0] >= 0xD800 && found[0] < 0xDC00) {
    UnicodeString two = PeekStringW(2);
    if (two.size() == 2 && two[1] >= 0xDC00 && two[1] <= 0xDFFF) found = std::move(two);
  }
  throw EVnJSONParseError(cVnJSONErrNotWellFormed, _cVnJSONNotWellFormed, {UnicodeString(AExpected), found});
}

}  // namespace vn
