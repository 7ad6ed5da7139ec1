// xs_binary.h: TXsBinaryString<TEncoding>, nullable binary data kept in its encoded text (unit
// uVnXSTypes), with the encodings TXsBinaryStringB64Encoding (Base64, "=" padded) and
// TXsBinaryStringHexEncoding (two hexadecimal digits a byte, upper case when written).
// FValue holds the encoded text, not the bytes: conversions and + store and give that text and
// check nothing. Only SaveBinaryData and LoadBinaryData go through the encoding. A text that is
// no valid encoding raises EConvertError in SaveBinaryData, before any byte is written.
#pragma once

#include "vnxml/common/stream.h"
#include "vnxml/xs_simple.h"

namespace vn {

struct TXsBinaryStringB64Encoding {
  /// Writes the bytes that AEncoded stands for to AStream.
  static void DecodeToStream(const RawByteString& AEncoded, TStream& AStream);
  /// The text of the bytes of AStream from its position to its end.
  static RawByteString EncodeFromStream(TStream& AStream);
};

struct TXsBinaryStringHexEncoding {
  static void DecodeToStream(const RawByteString& AEncoded, TStream& AStream);
  static RawByteString EncodeFromStream(TStream& AStream);
};

template <class TEncoding>
struct TXsBinaryString {
  RawByteString FValue;
  UnicodeString FHasValue;

  TXsBinaryString() = default;
  TXsBinaryString(RawByteString AEncoded) : FValue(std::move(AEncoded)), FHasValue(cVnXsHasValue) {}
  static TXsBinaryString Create(RawByteString AEncoded) { return TXsBinaryString(std::move(AEncoded)); }
  void Clear() {
    FValue.clear();
    FHasValue.clear();
  }
  bool IsNull() const noexcept { return FHasValue != cVnXsHasValue; }
  /// The encoded text; empty for a null record.
  operator RawByteString() const { return IsNull() ? RawByteString() : FValue; }
  /// The encoded text with AEncoded appended; null stays null.
  TXsBinaryString operator+(const RawByteString& AEncoded) const {
    TXsBinaryString result(*this);
    if (!IsNull()) result.FValue += AEncoded;
    return result;
  }
  /// Writes the decoded bytes to AStream (none for a null record).
  void SaveBinaryData(TStream& AStream) const {
    if (!IsNull()) TEncoding::DecodeToStream(FValue, AStream);
  }
  /// Encodes the rest of AStream into the record.
  void LoadBinaryData(TStream& AStream) {
    FValue = TEncoding::EncodeFromStream(AStream);
    FHasValue = cVnXsHasValue;
  }
  /// The encoded text as a string Variant; Null for a null record.
  Variant ToVariant() const {
    return IsNull() ? Variant::Null() : Variant(UnicodeString(FValue.begin(), FValue.end()));
  }
};

using TXsBase64Binary = TXsBinaryString<TXsBinaryStringB64Encoding>;
using TXsHexBinary = TXsBinaryString<TXsBinaryStringHexEncoding>;

VN_XS_REGISTER_TYPE(TXsBase64Binary, u"TXsBinaryString<rVnCommon.TXsBinaryStringB64Encoding>")
VN_XS_REGISTER_TYPE(TXsHexBinary, u"TXsBinaryString<rVnCommon.TXsBinaryStringHexEncoding>")

}  // namespace vn
