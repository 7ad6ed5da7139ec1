// Code page names and numbers, and byte-order mark detection.
#include "vnxml/common/code_page.h"

#include <unicode/ucnv.h>

#include <string>
#include <unordered_map>

#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_exception.h"

namespace vn {

namespace {

struct CodePageNames {
  Word CodePage;
  // The preferred name first, then the aliases, '|'-separated; matched ignoring ASCII case.
  const char* Names;
};

// The platform's numbers and the names that documents and callers use for them.
constexpr CodePageNames cCodePageNames[] = {
    {65001, "UTF-8|utf8|unicode-1-1-utf-8|unicode-2-0-utf-8|x-unicode20utf8"},
    {65000, "UTF-7|utf7|unicode-1-1-utf-7|unicode-2-0-utf-7|csunicode11utf7|x-unicode20utf7"},
    {1200, "UTF-16|utf-16le|utf16|utf16le|ucs-2|ucs2|ucs-2le|unicode|iso-10646-ucs-2|csunicode"},
    {1201, "UTF-16BE|utf16be|ucs-2be|unicodefffe"},
    {12000, "UTF-32|utf-32le|utf32|utf32le|ucs-4|ucs4|ucs-4le"},
    {12001, "UTF-32BE|utf32be|ucs-4be"},
    {20127, "US-ASCII|ascii|us|ansi_x3.4-1968|ansi_x3.4-1986|iso646-us|iso_646.irv:1991|iso-ir-6|cp367|ibm367|"
            "csascii"},
    {28591, "ISO-8859-1|iso8859-1|iso_8859-1|iso_8859-1:1987|latin1|latin-1|l1|iso-ir-100|cp819|ibm819|"
            "csisolatin1"},
    {28592, "ISO-8859-2|iso8859-2|iso_8859-2|iso_8859-2:1987|latin2|latin-2|l2|iso-ir-101|csisolatin2"},
    {28593, "ISO-8859-3|iso8859-3|iso_8859-3|iso_8859-3:1988|latin3|latin-3|l3|iso-ir-109|csisolatin3"},
    {28594, "ISO-8859-4|iso8859-4|iso_8859-4|iso_8859-4:1988|latin4|latin-4|l4|iso-ir-110|csisolatin4"},
    {28595, "ISO-8859-5|iso8859-5|iso_8859-5|iso_8859-5:1988|cyrillic|iso-ir-144|csisolatincyrillic"},
    {28596, "ISO-8859-6|iso8859-6|iso_8859-6|iso_8859-6:1987|arabic|iso-ir-127|ecma-114|csisolatinarabic"},
    {28597, "ISO-8859-7|iso8859-7|iso_8859-7|iso_8859-7:1987|greek|greek8|iso-ir-126|ecma-118|elot_928|"
            "csisolatingreek"},
    {28598, "ISO-8859-8|iso8859-8|iso_8859-8|iso_8859-8:1988|hebrew|iso-ir-138|csisolatinhebrew"},
    {28599, "ISO-8859-9|iso8859-9|iso_8859-9|iso_8859-9:1989|latin5|latin-5|l5|iso-ir-148|csisolatin5"},
    {28600, "ISO-8859-10|iso8859-10|iso_8859-10|iso_8859-10:1992|latin6|latin-6|l6|iso-ir-157|csisolatin6"},
    {28601, "ISO-8859-11|iso8859-11|iso_8859-11|thai8"},
    {28603, "ISO-8859-13|iso8859-13|iso_8859-13|latin7|latin-7|l7"},
    {28604, "ISO-8859-14|iso8859-14|iso_8859-14|iso_8859-14:1998|latin8|latin-8|l8|iso-ir-199|iso-celtic"},
    {28605, "ISO-8859-15|iso8859-15|iso_8859-15|latin9|latin-9|l9|latin0|csisolatin9"},
    {28606, "ISO-8859-16|iso8859-16|iso_8859-16|iso_8859-16:2001|latin10|latin-10|l10|iso-ir-226"},
    {1250, "windows-1250|cp1250|x-cp1250"},
    {1251, "windows-1251|cp1251|x-cp1251"},
    {1252, "windows-1252|cp1252|x-cp1252|x-ansi"},
    {1253, "windows-1253|cp1253|x-cp1253"},
    {1254, "windows-1254|cp1254|x-cp1254"},
    {1255, "windows-1255|cp1255|x-cp1255"},
    {1256, "windows-1256|cp1256|x-cp1256"},
    {1257, "windows-1257|cp1257|x-cp1257"},
    {1258, "windows-1258|cp1258|x-cp1258"},
    {874, "windows-874|cp874|dos-874|tis-620|tis620"},
    {932, "Shift_JIS|shift-jis|shiftjis|sjis|ms_kanji|csshiftjis|x-sjis|windows-31j|cswindows31j|cp932|"
          "ms932|x-ms-cp932"},
    {20932, "EUC-JP|eucjp|euc_jp|x-euc-jp|x-euc|cseucpkdfmtjapanese|extended_unix_code_packed_format_for_japanese"},
    {50220, "ISO-2022-JP|iso2022jp|csiso2022jp|jis"},
    {936, "GB2312|gb-2312|gb_2312-80|gbk|cp936|ms936|windows-936|chinese|csgb2312|csiso58gb231280|iso-ir-58|"
          "x-gbk"},
    {54936, "GB18030|gb-18030"},
    {949, "ks_c_5601-1987|ks_c_5601-1989|ks_c_5601|ksc_5601|ksc5601|korean|csksc56011987|iso-ir-149|cp949|"
          "ms949|windows-949"},
    {51949, "EUC-KR|euckr|euc_kr|cseuckr"},
    {950, "Big5|big-5|cn-big5|csbig5|x-x-big5|x-big5|cp950|ms950|windows-950"},
    {20866, "KOI8-R|koi8r|koi8|koi|cskoi8r"},
    {21866, "KOI8-U|koi8u|koi8-ru"},
    {437, "IBM437|ibm-437|cp437|437|cspc8codepage437"},
    {850, "ibm850|ibm-850|cp850|850|cspc850multilingual"},
    {852, "ibm852|ibm-852|cp852|852|cspcp852"},
    {866, "cp866|ibm866|ibm-866|866|csibm866"},
    {10000, "macintosh|mac|macroman|x-mac-roman|csmacintosh"},
};

std::string AsciiLower(std::string_view AText) {
  std::string s(AText);
  for (char& c : s)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return s;
}

struct CodePageTables {
  std::unordered_map<std::string, Word> ByName;  // lower-case name -> code page
  std::unordered_map<Word, std::string_view> PreferredName;
};

const CodePageTables& Tables() {
  static const CodePageTables tables = [] {
    CodePageTables t;
    for (const auto& entry : cCodePageNames) {
      std::string_view names = entry.Names;
      t.PreferredName.emplace(entry.CodePage, names.substr(0, names.find('|')));
      while (!names.empty()) {
        const size_t bar = names.find('|');
        t.ByName.emplace(AsciiLower(names.substr(0, bar)), entry.CodePage);
        names = bar == std::string_view::npos ? std::string_view() : names.substr(bar + 1);
      }
    }
    return t;
  }();
  return tables;
}

// "windows-1252" -> 1252 for the given prefix; 0 when the alias has another form.
Word NumberAfterPrefix(std::string_view AAlias, std::string_view APrefix) {
  if (AAlias.size() <= APrefix.size() || AsciiLower(AAlias.substr(0, APrefix.size())) != APrefix) return 0;
  uint32_t n = 0;
  for (char c : AAlias.substr(APrefix.size())) {
    if (c < '0' || c > '9' || n > 65535) return 0;
    n = n * 10 + static_cast<uint32_t>(c - '0');
  }
  return n <= 65535 ? static_cast<Word>(n) : 0;
}

// Names our table lacks: the converter library's aliases often carry the Windows number
// ("windows-10007" for x-mac-cyrillic) or the IBM one ("ibm-1047").
Word CodePageFromConverterAliases(const std::string& AName) {
  UErrorCode err = U_ZERO_ERROR;
  const uint16_t count = ucnv_countAliases(AName.c_str(), &err);
  if (U_FAILURE(err) || count == 0) return 0;
  Word ibm = 0;
  for (uint16_t i = 0; i < count; ++i) {
    err = U_ZERO_ERROR;
    const char* alias = ucnv_getAlias(AName.c_str(), i, &err);
    if (U_FAILURE(err) || !alias) continue;
    if (Word cp = NumberAfterPrefix(alias, "windows-")) return cp;
    if (!ibm) ibm = NumberAfterPrefix(alias, "ibm-");
  }
  return ibm;
}

}  // namespace

Word VnCodePage(std::u16string_view AName) {
  if (AName.empty()) return 0;
  const std::string name = AsciiLower(UnicodeToUtf8(AName));
  const auto& byName = Tables().ByName;
  if (auto it = byName.find(name); it != byName.end()) return it->second;
  if (Word cp = NumberAfterPrefix(name, "cp")) return cp;
  if (Word cp = CodePageFromConverterAliases(name)) return cp;
  throw EVnException(cVnErrUnknownEncoding, u"Unsupported encoding \"%s\"", {AName});
}

UnicodeString VnCodePage(Word ACodePage) {
  if (ACodePage == 0) return {};
  const auto& names = Tables().PreferredName;
  if (auto it = names.find(ACodePage); it != names.end()) return AsciiToUnicode(it->second);
  const std::string windowsName = "windows-" + std::to_string(ACodePage);
  const std::string ibmName = "ibm-" + std::to_string(ACodePage);
  UErrorCode err = U_ZERO_ERROR;
  if (ucnv_getAlias(windowsName.c_str(), 0, &err) || (err = U_ZERO_ERROR, ucnv_getAlias(ibmName.c_str(), 0, &err)))
    return u"cp" + IntToStr(ACodePage);
  return {};
}

bool VnIsWideCodePage(Word ACodePage) {
  return ACodePage == cVnCodePageUTF16LE || ACodePage == cVnCodePageUTF16BE || ACodePage == cVnCodePageUTF32LE ||
         ACodePage == cVnCodePageUTF32BE;
}

Word VnGetCodePage(TStream* AStream) {
  const Int64 start = AStream->GetPosition();
  uint8_t b[4] = {0, 0, 0, 0};
  const Int64 got = AStream->Read(b, 4);
  Word codePage = 0;
  Int64 markSize = 0;
  if (got >= 3 && b[0] == 0xEF && b[1] == 0xBB && b[2] == 0xBF) {
    codePage = cVnCodePageUTF8;
    markSize = 3;
  } else if (got >= 4 && b[0] == 0xFF && b[1] == 0xFE && b[2] == 0 && b[3] == 0) {
    // Also the UTF-16LE mark followed by a NUL character, which no text document starts with.
    codePage = cVnCodePageUTF32LE;
    markSize = 4;
  } else if (got >= 4 && b[0] == 0 && b[1] == 0 && b[2] == 0xFE && b[3] == 0xFF) {
    codePage = cVnCodePageUTF32BE;
    markSize = 4;
  } else if (got >= 2 && b[0] == 0xFF && b[1] == 0xFE) {
    codePage = cVnCodePageUTF16LE;
    markSize = 2;
  } else if (got >= 2 && b[0] == 0xFE && b[1] == 0xFF) {
    codePage = cVnCodePageUTF16BE;
    markSize = 2;
  }
  AStream->Seek(start + markSize, soBeginning);
  return codePage;
}

}  // namespace vn
