// code_page.h: code page numbers, their names, and byte-order marks (unit rVnCommon).
// Numbers are the platform's (65001 UTF-8, 1200 UTF-16LE, 1201 UTF-16BE, 28591 ISO-8859-1 ...);
// 0 means "not set": as an encoding it is this system's 8-bit default, which is UTF-8.
#pragma once

#include <string_view>

#include "vnxml/common/types.h"

namespace vn {

class TStream;

inline constexpr Word cVnCodePageDefault = 0;
inline constexpr Word cVnCodePageUTF8 = 65001;
inline constexpr Word cVnCodePageUTF16LE = 1200;
inline constexpr Word cVnCodePageUTF16BE = 1201;
inline constexpr Word cVnCodePageUTF32LE = 12000;
inline constexpr Word cVnCodePageUTF32BE = 12001;
inline constexpr Word cVnCodePageASCII = 20127;
inline constexpr Word cVnCodePageLatin1 = 28591;

/// Byte-order marks, as written in front of a text.
inline constexpr std::string_view cVnUTF8 = "\xEF\xBB\xBF";
inline constexpr std::string_view cVnUTF16LE = "\xFF\xFE";
inline constexpr std::string_view cVnUTF16BE = "\xFE\xFF";
inline constexpr std::string_view cVnUTF32LE{"\xFF\xFE\x00\x00", 4};
inline constexpr std::string_view cVnUTF32BE{"\x00\x00\xFE\xFF", 4};

/// Error code of EVnException raised for an encoding name that no converter knows.
inline constexpr Integer cVnErrUnknownEncoding = 1;

/// Reads a byte-order mark at the stream's position and returns its code page (65001, 1200,
/// 1201, 12000, 12001), leaving the stream behind the mark; without one returns 0 and leaves
/// the stream where it was. A stream that can't seek back must be read from the start.
Word VnGetCodePage(TStream* AStream);

/// The code page of an encoding name, case-insensitive, common aliases included ("utf8",
/// "latin1", "ucs-2", "cp1252", "sjis" ...). Names that only the converter library knows give
/// their Windows or IBM number. An empty name gives 0; a name nobody knows raises EVnException
/// "Unsupported encoding \"%s\"" with code cVnErrUnknownEncoding.
Word VnCodePage(std::u16string_view AName);
/// The preferred name of a code page ("UTF-8", "UTF-16", "ISO-8859-1", "windows-1252",
/// "Shift_JIS" ...); "cpNNN" for numbers only the converter library knows; empty for 0 or unknown.
UnicodeString VnCodePage(Word ACodePage);

/// True for the code pages whose characters are 2 or 4 bytes wide (UTF-16, UTF-32).
bool VnIsWideCodePage(Word ACodePage);

}  // namespace vn
