// TVnTextParser: the bulk skips, one form per encoding.
#include "common/text_parser_scan.h"
#include "vnxml/common/text_parser.h"

namespace vn {

namespace {

// Skips over code units while the operator holds; AChar is compared unit by unit.
template <class U>
const U* SkipUnits(const U* p, const U* e, TVnTextParserSkipOp AOperator, U AChar) {
  switch (AOperator) {
    case soEqual:
    case soInSet: return detail::SkipEqual(p, e, AChar);
    case soNotEqual:
    case soNotInSet: return detail::FindUnit(p, e, AChar);
    case soLessEqual: return detail::SkipAtMost(p, e, AChar);
  }
  return p;
}

template <class U>
const U* SkipUnitsInSet(const U* p, const U* e, TVnTextParserSkipOp AOperator, const TVnAnsiCharSet& ASet) {
  if (AOperator == soInSet)
    while (p < e && ASet.ContainsW(*p)) ++p;
  else
    while (p < e && !ASet.ContainsW(*p)) ++p;
  return p;
}

bool Holds(TVnTextParserSkipOp AOperator, WideChar ACurr, WideChar AChar) {
  switch (AOperator) {
    case soEqual:
    case soInSet: return ACurr == AChar;
    case soNotEqual:
    case soNotInSet: return ACurr != AChar;
    case soLessEqual: return ACurr <= AChar;
  }
  return false;
}

}  // namespace

void TVnTextParser::SkipWhile(TVnTextParserSkipOp AOperator, WideChar AChar) {
  switch (FCharacterSetType) {
    case csUTF16: SrcWSkipWhileW(AOperator, AChar); return;
    case csUTF8:
      if (AChar < 0x100) {
        SrcUSkipWhileA(AOperator, static_cast<AnsiChar>(AChar));
        return;
      }
      break;
    default:
      if (AChar < 0x80 || (AChar < 0x100 && !FByteTable && FDecodeKind == TDecodeKind::Latin1)) {
        SrcASkipWhileA(AOperator, static_cast<AnsiChar>(AChar));
        return;
      }
      break;
  }
  // A character outside the bytes' reach is compared character by character, decoded.
  while (!_GetEOF() && Holds(AOperator, CurrCharW(), AChar)) FCursor.Cur = NextPtr(FCursor.Cur);
}

void TVnTextParser::SrcASkipWhileA(TVnTextParserSkipOp AOperator, AnsiChar AChar) {
  FCursor.Cur = SkipUnits<uint8_t>(FCursor.Cur, FCursor.End, AOperator, static_cast<uint8_t>(AChar));
}

void TVnTextParser::SrcUSkipWhileA(TVnTextParserSkipOp AOperator, AnsiChar AChar) {
  auto c = static_cast<uint8_t>(AChar);
  if (c < 0x80) {
    // An ASCII byte never occurs inside a sequence, so bytewise skipping stops on a boundary.
    FCursor.Cur = SkipUnits<uint8_t>(FCursor.Cur, FCursor.End, AOperator, c);
    return;
  }
  while (!_GetEOF() && Holds(AOperator, CurrCharW(), c)) FCursor.Cur = NextPtr(FCursor.Cur);
}

void TVnTextParser::SrcWSkipWhileW(TVnTextParserSkipOp AOperator, WideChar AChar) {
  auto* p = reinterpret_cast<const char16_t*>(FCursor.Cur);
  auto* e = reinterpret_cast<const char16_t*>(FCursor.End);
  FCursor.Cur = reinterpret_cast<const Byte*>(SkipUnits<char16_t>(p, e, AOperator, AChar));
}

void TVnTextParser::SkipWhileSet(TVnTextParserSkipOp AOperator, const TVnAnsiCharSet& ASet) {
  if (AOperator != soInSet && AOperator != soNotInSet) return;
  switch (FCharacterSetType) {
    case csUTF16: {
      auto* p = reinterpret_cast<const char16_t*>(FCursor.Cur);
      auto* e = reinterpret_cast<const char16_t*>(FCursor.End);
      FCursor.Cur = reinterpret_cast<const Byte*>(SkipUnitsInSet(p, e, AOperator, ASet));
      return;
    }
    case csUTF8:
      if (ASet.IsAscii()) break;  // bytes of a sequence are never members: bytewise is exact
      while (!_GetEOF() && ASet.ContainsW(CurrCharW()) == (AOperator == soInSet)) FCursor.Cur = NextPtr(FCursor.Cur);
      return;
    default: break;
  }
  FCursor.Cur = SkipUnitsInSet<uint8_t>(FCursor.Cur, FCursor.End, AOperator, ASet);
}

}  // namespace vn
