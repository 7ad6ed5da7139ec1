// The JSON tree's text writer: one walk with an explicit stack, pieces encoded into large
// blocks by the XML writer's output classes.
#pragma once

#include "vnxml/json_document.h"

namespace vn::detail {

enum class JSONOutputKind : uint8_t { Utf16, Utf8, Converted };

class JSONWriter {
 public:
  /// Writes ANode as its SaveToStream(AFormatted, ALevel, AIndent) would, in AKind (ACodePage
  /// for Converted).
  static void Write(TVnJSONBase& ANode, TStream& AStream, JSONOutputKind AKind, Word ACodePage, bool AFormatted,
                    Integer ALevel, bool AIndent);
};

}  // namespace vn::detail
