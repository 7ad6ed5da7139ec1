// The two roads of a load into the JSON tree.
#pragma once

#include "vnxml/json_document.h"
#include "vnxml/json_reader.h"

namespace vn::detail {

/// Through TVnJSONHandler over the reader's events: any node, any subclass.
void LoadWithHandler(TVnJSONBase& ATarget, TStream& AStream, Word ACodePage, bool AFormURLEncoded);
/// Straight from the reader's scan into a TVnJSONDocument, nodes carved from a pool of the load.
/// Same tree and same failures as LoadWithHandler.
void LoadDocumentFast(TVnJSONDocument& ADoc, TStream& AStream, Word ACodePage);

/// Raises what decoding AText would raise (a bad hexadecimal escape): the tree keeps raw text
/// and decodes it on reading, yet a load fails where decoding at load time would.
void CheckJSONText(std::u16string_view AText, TVnJSONDataType AKind);

}  // namespace vn::detail
