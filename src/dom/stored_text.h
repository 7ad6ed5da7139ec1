// Stored texts of the tree in either form: the checks and decoders that the loader, the
// readers of values and the writer share.
#pragma once

#include <string_view>

#include "vnxml/common/types.h"
#include "vnxml/dom_storage.h"

namespace vn::detail {

/// AText is well-formed UTF-8: no overlong, surrogate, cut or out-of-range sequence, so that
/// decoding it and encoding the result again gives the same bytes.
bool IsWellFormedUtf8(std::string_view AText) noexcept;

/// An attribute value as stored, written back in double quotes: its double quotes as "&quot;".
UnicodeString QuotesAsReferences(std::u16string_view AValue);

/// A text stored escaped (text nodes, attributes), decoded: references resolved, in UTF-16.
UnicodeString DecodeEscaped(const CompactString& AStored);

}  // namespace vn::detail
