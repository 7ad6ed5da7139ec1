// serializer_formats.h: the notations objects are serialized in, and the interface of objects
// that write themselves (unit uVnSerializer). Apart from serializer.h so that the DOM interfaces,
// which nodes serialize through, need nothing more.
#pragma once

#include <cstdint>
#include <string>

#include "vnxml/common/interface.h"

namespace vn {

class TObject;

/// The two text notations of serialization.
enum TVnDataSerializationFormatType : uint8_t { dsfJSON, dsfXML };
/// Serialized text, as UTF-8 bytes.
using TVnSerializedData = std::string;

/// An object that writes itself as text in a notation.
struct IVnSerializable : IInterface {
  static constexpr TGUID IID = TGUID::Parse("fecaa297-a72f-4a54-a230-249c52259587");
  virtual bool CanSerialize(TVnDataSerializationFormatType AFormat) = 0;
  /// AParams: the serializer's parameter list (a TStringList), or nil.
  virtual TVnSerializedData Serialize(TVnDataSerializationFormatType AFormat, TObject* AParams) = 0;

 protected:
  ~IVnSerializable() = default;
};

}  // namespace vn
