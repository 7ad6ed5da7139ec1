// types.h: the platform's scalar and string types (part of the common platform layer).
// Strings are UTF-16 code units; 8-bit strings hold bytes in a code page chosen by their user.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vn {

using UnicodeString = std::u16string;
using WideString = std::u16string;
using AnsiString = std::string;
using RawByteString = std::string;
using UTF8String = std::string;
using Char = char16_t;
using WideChar = char16_t;
using AnsiChar = char;
using PChar = const char16_t*;

using Integer = int32_t;
using Cardinal = uint32_t;
using LongInt = int32_t;
using LongWord = uint32_t;
using Int64 = int64_t;
using UInt64 = uint64_t;
using NativeInt = intptr_t;
using NativeUInt = uintptr_t;
using Word = uint16_t;
using Byte = uint8_t;
using ShortInt = int8_t;
using SmallInt = int16_t;
using Single = float;
using Double = double;
using Extended = long double;
using Boolean = bool;
using WordBool = int16_t;

/// Days since 1899-12-30; the fraction is the time of day.
using TDateTime = double;
using TDate = double;
using TTime = double;

using TBytes = std::vector<uint8_t>;

/// Text in XML form: nothing decoded; serializers write it without escaping.
struct VnXMLString : std::u16string {
  using std::u16string::basic_string;
  VnXMLString() = default;
  VnXMLString(const std::u16string& s) : std::u16string(s) {}
  VnXMLString(std::u16string&& s) noexcept : std::u16string(std::move(s)) {}
};

/// Text in JSON form: nothing decoded; serializers write it without escaping.
struct VnJSONString : std::u16string {
  using std::u16string::basic_string;
  VnJSONString() = default;
  VnJSONString(const std::u16string& s) : std::u16string(s) {}
  VnJSONString(std::u16string&& s) noexcept : std::u16string(std::move(s)) {}
};

}  // namespace vn
