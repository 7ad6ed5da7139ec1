// encoding.h: TVnEncoding, conversion between UTF-16 text and bytes of a code page (unit rVnCommon).
// UTF-8, UTF-16LE/BE, UTF-32, Latin-1 and US-ASCII are converted in place; other code pages go
// through a converter of the ICU library, kept per code page for the life of the process.
// Bad input never fails and never reads past the buffer: undecodable bytes become U+FFFD,
// characters a code page can't hold become '?' (for UTF-8/16/32: a lone surrogate gives U+FFFD).
#pragma once

#include <string_view>

#include "vnxml/common/code_page.h"
#include "vnxml/common/object.h"
#include "vnxml/common/types.h"

namespace vn {

class TVnEncoding : public TObject {
  VN_DECLARE_CLASS(TVnEncoding, TObject)
 public:
  TVnEncoding(const TVnEncoding&) = delete;
  TVnEncoding& operator=(const TVnEncoding&) = delete;

  /// The shared encoding of a code page (0: this system's default, UTF-8). The result belongs
  /// to the library and lives as long as the process; raises EVnException with code
  /// cVnErrUnknownEncoding "Unsupported code page %d" when no converter exists.
  static TVnEncoding* GetEncoding(Word ACodePage);
  static TVnEncoding* UTF8() { return GetEncoding(cVnCodePageUTF8); }
  static TVnEncoding* Unicode() { return GetEncoding(cVnCodePageUTF16LE); }
  static TVnEncoding* BigEndianUnicode() { return GetEncoding(cVnCodePageUTF16BE); }
  static TVnEncoding* Latin1() { return GetEncoding(cVnCodePageLatin1); }
  static TVnEncoding* ASCII() { return GetEncoding(cVnCodePageASCII); }

  /// Bytes of ACodePage to text.
  static UnicodeString ConvertA(std::string_view ABytes, Word ACodePage);
  /// Text to bytes of ACodePage.
  static RawByteString ConvertW(std::u16string_view AText, Word ACodePage);

  Word GetCodePage() const { return FCodePage; }
  /// The preferred name of the code page, as VnCodePage gives it.
  UnicodeString GetEncodingName() const;
  /// The byte-order mark that announces this encoding; empty for 8-bit code pages.
  std::string_view GetPreamble() const;

  /// Decodes ABytes.
  UnicodeString GetString(std::string_view ABytes) const;
  UnicodeString GetString(const TBytes& ABytes) const;
  /// Encodes AText.
  RawByteString GetBytes(std::u16string_view AText) const;
  /// Decodes ABytes and appends the text to AOut (no allocation when AOut has room).
  virtual void AppendString(std::string_view ABytes, UnicodeString& AOut) const = 0;
  /// Encodes AText and appends the bytes to AOut.
  virtual void AppendBytes(std::u16string_view AText, RawByteString& AOut) const = 0;
  /// At most this many bytes encode one UTF-16 code unit (to size buffers ahead).
  virtual Integer GetMaxByteCount() const = 0;

 protected:
  explicit TVnEncoding(Word ACodePage) : FCodePage(ACodePage) {}

 private:
  Word FCodePage;
};

namespace detail {
/// UTF-8 to UTF-16, appended; malformed sequences become U+FFFD, one per maximal bad subpart.
void AppendUtf8AsUtf16(std::string_view ABytes, UnicodeString& AOut);
/// UTF-16 to UTF-8, appended; an unpaired surrogate becomes U+FFFD.
void AppendUtf16AsUtf8(std::u16string_view AText, RawByteString& AOut);
/// UTF-16 [ABegin, AEnd) to UTF-8 at AOut, which has room for 3 bytes a unit; returns the end.
char* EncodeUtf16AsUtf8(const char16_t* ABegin, const char16_t* AEnd, char* AOut);
/// Length of the longest prefix of ABytes that ends on a UTF-8 sequence boundary (an incomplete
/// but still valid sequence at the end is left out), so that text can be decoded in blocks.
size_t Utf8CompletePrefix(std::string_view ABytes);
}  // namespace detail

}  // namespace vn
