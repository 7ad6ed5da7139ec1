// Escaping and unescaping of JSON string text.
#include "json/json_escape.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/json_values.h"

namespace vn {

namespace detail {

namespace {


constexpr char16_t kHex[] = u"0123456789ABCDEF";

// The code of up to ACount characters read as hexadecimal, the platform's way ("$" and
// StrToInt), so bad digits raise its EConvertError.
char16_t HexUnit(std::u16string_view AText, size_t AAt, size_t ACount) {
  UnicodeString digits = u"$";
  digits.append(AText.substr(AAt, ACount));
  return static_cast<char16_t>(StrToInt(digits));
}

}  // namespace

void AppendStrToJSON(std::u16string_view AText, std::u16string& AOut) {
  size_t run = 0;
  for (size_t i = 0; i < AText.size(); ++i) {
    const char16_t c = AText[i];
    const char16_t e = kStrToJSONEscapes[c];
    if (e == 0) continue;
    AOut.append(AText.substr(run, i - run));
    run = i + 1;
    if (e == 1) continue;
    AOut += u'\\';
    if (e != 0xFFFF) {
      AOut += e;
    } else {
      AOut += u'u';
      for (int shift = 12; shift >= 0; shift -= 4) AOut += kHex[(c >> shift) & 0xF];
    }
  }
  AOut.append(AText.substr(run));
}

void AppendJSONtoStr(std::u16string_view AText, TVnJSONDataType AType, std::u16string& AOut) {
  const size_t n = AText.size();
  size_t i = 0;
  while (i < n) {
    // Copy up to the next backslash or percent sign at once.
    size_t j = i;
    while (j < n && AText[j] != u'\\' && AText[j] != u'%') ++j;
    AOut.append(AText.substr(i, j - i));
    if (j >= n) break;
    if (AText[j] == u'%') {
      if (AType == jdtNumber) {
        AOut += HexUnit(AText, j + 1, 2);
        i = j + 3;
      } else {
        AOut += u'%';
        i = j + 1;
      }
      continue;
    }
    if (j + 1 >= n) {
      AOut += u'\\';  // nothing follows: the backslash is all there is to keep
      break;
    }
    const char16_t c = AText[j + 1];
    i = j + 2;
    switch (c) {
      case u'b': AOut += u'\b'; break;
      case u'f': AOut += u'\f'; break;
      case u'n': AOut += u'\n'; break;
      case u'r': AOut += u'\r'; break;
      case u't': AOut += u'\t'; break;
      case u'u':
        AOut += HexUnit(AText, i, 4);
        i += 4;
        break;
      case u'%':
        AOut += HexUnit(AText, i, 2);
        i += 2;
        break;
      default: AOut += c; break;
    }
  }
}

}  // namespace detail

UnicodeString VnStrToJSON(std::u16string_view AText) {
  UnicodeString out;
  out.reserve(AText.size());
  detail::AppendStrToJSON(AText, out);
  return out;
}

UnicodeString VnJSONtoStr(std::u16string_view AText, TVnJSONDataType AType) {
  UnicodeString out;
  out.reserve(AText.size());
  detail::AppendJSONtoStr(AText, AType, out);
  return out;
}

}  // namespace vn
