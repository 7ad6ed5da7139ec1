// The encoding an 8-bit text names in its first tag: one routine for the reader's prolog and
// the document loader, which look for it in two ways.
#pragma once

#include <string_view>

#include "vnxml/common/types.h"

namespace vn::detail {

enum class DeclarationRule : uint8_t {
  /// The reader: "<?xml " (lower case, one space) at the first "<", up to the first ">"; the
  /// value after "encoding=" in whichever quote opens it.
  Prolog,
  /// A document load: the text starts with "<"; its first tag, at most 1025 characters, in any
  /// case; the value only in double quotes, else nothing is found at this step.
  FirstTag,
};

/// The declared name, trimmed; empty when there is none.
UnicodeString DeclaredEncoding(std::string_view AText, DeclarationRule ARule);

}  // namespace vn::detail
