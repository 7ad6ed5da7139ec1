// TVnEncoding: the in-place Unicode and single-byte codecs, the ICU-backed rest, and the
// per-code-page cache behind GetEncoding.
#include "vnxml/common/encoding.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

#include <bit>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "vnxml/common/vn_exception.h"

namespace vn {

static_assert(std::endian::native == std::endian::little, "UTF-16LE is copied as it is in memory");

namespace {

constexpr char16_t cReplacement = u'\uFFFD';

inline bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
inline bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// ---- Unicode encodings, converted here ----

class Utf8Encoding final : public TVnEncoding {
 public:
  Utf8Encoding() : TVnEncoding(cVnCodePageUTF8) {}
  void AppendString(std::string_view ABytes, UnicodeString& AOut) const override {
    detail::AppendUtf8AsUtf16(ABytes, AOut);
  }
  void AppendBytes(std::u16string_view AText, RawByteString& AOut) const override {
    detail::AppendUtf16AsUtf8(AText, AOut);
  }
  Integer GetMaxByteCount() const override { return 3; }
};

class Utf16Encoding final : public TVnEncoding {
 public:
  explicit Utf16Encoding(bool ABigEndian)
      : TVnEncoding(ABigEndian ? cVnCodePageUTF16BE : cVnCodePageUTF16LE), FBigEndian(ABigEndian) {}
  void AppendString(std::string_view ABytes, UnicodeString& AOut) const override {
    const size_t units = ABytes.size() / 2;
    const size_t base = AOut.size();
    AOut.resize(base + units);
    if (units) std::memcpy(AOut.data() + base, ABytes.data(), units * 2);  // an empty view may be null
    if (FBigEndian)
      for (size_t i = base; i < base + units; ++i) AOut[i] = static_cast<char16_t>((AOut[i] >> 8) | (AOut[i] << 8));
    // A truncated tail is a broken character, not something to read past.
    if (ABytes.size() % 2) AOut.push_back(cReplacement);
  }
  void AppendBytes(std::u16string_view AText, RawByteString& AOut) const override {
    const size_t base = AOut.size();
    AOut.resize(base + AText.size() * 2);
    if (!AText.empty()) std::memcpy(AOut.data() + base, AText.data(), AText.size() * 2);
    if (FBigEndian)
      for (size_t i = base; i < AOut.size(); i += 2) std::swap(AOut[i], AOut[i + 1]);
  }
  Integer GetMaxByteCount() const override { return 2; }

 private:
  bool FBigEndian;
};

class Utf32Encoding final : public TVnEncoding {
 public:
  explicit Utf32Encoding(bool ABigEndian)
      : TVnEncoding(ABigEndian ? cVnCodePageUTF32BE : cVnCodePageUTF32LE), FBigEndian(ABigEndian) {}
  void AppendString(std::string_view ABytes, UnicodeString& AOut) const override {
    const auto* b = reinterpret_cast<const uint8_t*>(ABytes.data());
    const size_t n = ABytes.size() / 4;
    AOut.reserve(AOut.size() + n);
    for (size_t i = 0; i < n; ++i, b += 4) {
      const uint32_t cp = FBigEndian ? (uint32_t{b[0]} << 24 | uint32_t{b[1]} << 16 | uint32_t{b[2]} << 8 | b[3])
                                     : (uint32_t{b[3]} << 24 | uint32_t{b[2]} << 16 | uint32_t{b[1]} << 8 | b[0]);
      if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        AOut.push_back(cReplacement);
      } else if (cp >= 0x10000) {
        AOut.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
        AOut.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
      } else {
        AOut.push_back(static_cast<char16_t>(cp));
      }
    }
    if (ABytes.size() % 4) AOut.push_back(cReplacement);
  }
  void AppendBytes(std::u16string_view AText, RawByteString& AOut) const override {
    AOut.reserve(AOut.size() + AText.size() * 4);
    for (size_t i = 0; i < AText.size(); ++i) {
      uint32_t cp = AText[i];
      if (IsHighSurrogate(AText[i]) && i + 1 < AText.size() && IsLowSurrogate(AText[i + 1]))
        cp = 0x10000 + ((cp - 0xD800) << 10) + (AText[++i] - 0xDC00u);
      else if (cp >= 0xD800 && cp <= 0xDFFF)
        cp = 0xFFFD;
      const char bytes[4] = {static_cast<char>(cp), static_cast<char>(cp >> 8), static_cast<char>(cp >> 16),
                             static_cast<char>(cp >> 24)};
      if (FBigEndian)
        AOut.append({bytes[3], bytes[2], bytes[1], bytes[0]});
      else
        AOut.append(bytes, 4);
    }
  }
  Integer GetMaxByteCount() const override { return 4; }

 private:
  bool FBigEndian;
};

// ---- Latin-1 and US-ASCII: one byte is one character below a limit ----

class SingleByteEncoding final : public TVnEncoding {
 public:
  SingleByteEncoding(Word ACodePage, char16_t ALimit) : TVnEncoding(ACodePage), FLimit(ALimit) {}
  void AppendString(std::string_view ABytes, UnicodeString& AOut) const override {
    const size_t base = AOut.size();
    AOut.resize(base + ABytes.size());
    char16_t* out = AOut.data() + base;
    for (char c : ABytes) {
      const auto b = static_cast<uint8_t>(c);
      *out++ = b <= FLimit ? b : cReplacement;
    }
  }
  void AppendBytes(std::u16string_view AText, RawByteString& AOut) const override {
    AOut.reserve(AOut.size() + AText.size());
    for (size_t i = 0; i < AText.size(); ++i) {
      const char16_t c = AText[i];
      if (c <= FLimit) {
        AOut.push_back(static_cast<char>(c));
      } else {
        // A surrogate pair is one character, so one '?'.
        if (IsHighSurrogate(c) && i + 1 < AText.size() && IsLowSurrogate(AText[i + 1])) ++i;
        AOut.push_back('?');
      }
    }
  }
  Integer GetMaxByteCount() const override { return 1; }

 private:
  char16_t FLimit;
};

// ---- everything else: an ICU converter, one per code page, used under a lock ----

void ToUnicodeReplacement(const void*, UConverterToUnicodeArgs* AArgs, const char*, int32_t,
                          UConverterCallbackReason AReason, UErrorCode* AErr) {
  if (AReason > UCNV_IRREGULAR) return;  // resets and closes: nothing to write
  static const UChar replacement = 0xFFFD;
  *AErr = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(AArgs, &replacement, 1, 0, AErr);
}

class IcuEncoding final : public TVnEncoding {
 public:
  IcuEncoding(Word ACodePage, UConverter* AConverter) : TVnEncoding(ACodePage), FConverter(AConverter) {
    UErrorCode err = U_ZERO_ERROR;
    ucnv_setToUCallBack(FConverter, &ToUnicodeReplacement, nullptr, nullptr, nullptr, &err);
    err = U_ZERO_ERROR;
    ucnv_setSubstChars(FConverter, "?", 1, &err);  // may fail for stateful encodings: keep ICU's
    FMaxBytes = ucnv_getMaxCharSize(FConverter);
  }
  ~IcuEncoding() override { ucnv_close(FConverter); }

  void AppendString(std::string_view ABytes, UnicodeString& AOut) const override {
    if (ABytes.empty()) return;
    std::lock_guard lock(FLock);
    ucnv_resetToUnicode(FConverter);
    const char* source = ABytes.data();
    const char* sourceEnd = source + ABytes.size();
    size_t base = AOut.size();
    size_t room = ABytes.size() + 16;
    for (;;) {
      AOut.resize(base + room);
      UChar* target = reinterpret_cast<UChar*>(AOut.data() + base);
      UChar* targetStart = target;
      UErrorCode err = U_ZERO_ERROR;
      ucnv_toUnicode(FConverter, &target, targetStart + room, &source, sourceEnd, nullptr, true, &err);
      base += static_cast<size_t>(target - targetStart);
      if (err != U_BUFFER_OVERFLOW_ERROR) break;
      room = static_cast<size_t>(sourceEnd - source) * 2 + 16;
    }
    AOut.resize(base);
  }

  void AppendBytes(std::u16string_view AText, RawByteString& AOut) const override {
    if (AText.empty()) return;
    std::lock_guard lock(FLock);
    ucnv_resetFromUnicode(FConverter);
    const UChar* source = reinterpret_cast<const UChar*>(AText.data());
    const UChar* sourceEnd = source + AText.size();
    size_t base = AOut.size();
    size_t room = AText.size() * static_cast<size_t>(FMaxBytes) + 16;
    for (;;) {
      AOut.resize(base + room);
      char* target = AOut.data() + base;
      char* targetStart = target;
      UErrorCode err = U_ZERO_ERROR;
      ucnv_fromUnicode(FConverter, &target, targetStart + room, &source, sourceEnd, nullptr, true, &err);
      base += static_cast<size_t>(target - targetStart);
      if (err != U_BUFFER_OVERFLOW_ERROR) break;
      room = static_cast<size_t>(sourceEnd - source) * static_cast<size_t>(FMaxBytes) + 64;
    }
    AOut.resize(base);
  }

  Integer GetMaxByteCount() const override { return FMaxBytes; }

 private:
  UConverter* FConverter;
  mutable std::mutex FLock;
  Integer FMaxBytes = 1;
};

UConverter* OpenConverter(Word ACodePage) {
  // ICU knows most Windows code pages as "windows-N"; the rest by their usual or IBM names.
  const std::string candidates[] = {"windows-" + std::to_string(ACodePage), [&] {
                                      const UnicodeString name = VnCodePage(ACodePage);
                                      return std::string(name.begin(), name.end());
                                    }(),
                                    "ibm-" + std::to_string(ACodePage)};
  for (const std::string& name : candidates) {
    if (name.empty()) continue;
    UErrorCode err = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name.c_str(), &err);
    if (U_SUCCESS(err) && converter) return converter;
  }
  return nullptr;
}

}  // namespace

TVnEncoding* TVnEncoding::GetEncoding(Word ACodePage) {
  static Utf8Encoding utf8;
  static Utf16Encoding utf16le(false), utf16be(true);
  static Utf32Encoding utf32le(false), utf32be(true);
  static SingleByteEncoding latin1(cVnCodePageLatin1, 0xFF), ascii(cVnCodePageASCII, 0x7F);
  switch (ACodePage) {
    case cVnCodePageDefault:
    case cVnCodePageUTF8: return &utf8;
    case cVnCodePageUTF16LE: return &utf16le;
    case cVnCodePageUTF16BE: return &utf16be;
    case cVnCodePageUTF32LE: return &utf32le;
    case cVnCodePageUTF32BE: return &utf32be;
    case cVnCodePageLatin1: return &latin1;
    case cVnCodePageASCII: return &ascii;
    default: break;
  }
  static std::mutex lock;
  static std::map<Word, std::unique_ptr<TVnEncoding>> cache;
  std::lock_guard guard(lock);
  auto& slot = cache[ACodePage];
  if (!slot) {
    UConverter* converter = OpenConverter(ACodePage);
    if (!converter) {
      cache.erase(ACodePage);
      throw EVnException(cVnErrUnknownEncoding, u"Unsupported code page %d", {ACodePage});
    }
    slot = std::make_unique<IcuEncoding>(ACodePage, converter);
  }
  return slot.get();
}

UnicodeString TVnEncoding::ConvertA(std::string_view ABytes, Word ACodePage) {
  return GetEncoding(ACodePage)->GetString(ABytes);
}

RawByteString TVnEncoding::ConvertW(std::u16string_view AText, Word ACodePage) {
  return GetEncoding(ACodePage)->GetBytes(AText);
}

UnicodeString TVnEncoding::GetEncodingName() const { return VnCodePage(FCodePage); }

std::string_view TVnEncoding::GetPreamble() const {
  switch (FCodePage) {
    case cVnCodePageUTF8: return cVnUTF8;
    case cVnCodePageUTF16LE: return cVnUTF16LE;
    case cVnCodePageUTF16BE: return cVnUTF16BE;
    case cVnCodePageUTF32LE: return cVnUTF32LE;
    case cVnCodePageUTF32BE: return cVnUTF32BE;
    default: return {};
  }
}

UnicodeString TVnEncoding::GetString(std::string_view ABytes) const {
  UnicodeString text;
  AppendString(ABytes, text);
  return text;
}

UnicodeString TVnEncoding::GetString(const TBytes& ABytes) const {
  return GetString(std::string_view(reinterpret_cast<const char*>(ABytes.data()), ABytes.size()));
}

RawByteString TVnEncoding::GetBytes(std::u16string_view AText) const {
  RawByteString bytes;
  AppendBytes(AText, bytes);
  return bytes;
}

}  // namespace vn
