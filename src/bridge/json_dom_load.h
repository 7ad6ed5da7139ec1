// The DOM loader's way into JSON: a text whose first significant character is not "<" is read
// as JSON, through the JSON reader of the SAX frame.
#pragma once

#include <cstddef>
#include <memory>

#include "vnxml/common/types.h"

namespace vn {
class TVnSAXReader;
}

namespace vn::detail {

class TreeBuilder;
class LoadRecorder;

/// Whether the text at AData, standing on its first significant character in units of
/// ACodePage, is JSON for the loader: it has such a character, and it isn't "<".
bool IsJSONLoadText(const void* AData, size_t ASize, Word ACodePage);
/// A JSON reader that builds its elements with ABuilder, straight from the scan, or records
/// them with ARecorder when one is given (a deferred document load); with a null ABuilder, a
/// plain TVnSAXJSONReader whose handlers hear every event.
std::unique_ptr<TVnSAXReader> MakeJSONLoadReader(TreeBuilder* ABuilder, LoadRecorder* ARecorder);

}  // namespace vn::detail
