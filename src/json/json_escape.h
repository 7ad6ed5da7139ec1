// The string escaping of JSON text, appending to a caller's buffer: the writer of the JSON
// document and VnStrToJSON share it.
#pragma once

#include <string>
#include <string_view>

#include "vnxml/json_contract.h"

namespace vn::detail {

/// Appends AText escaped as VnStrToJSON does; unchanged runs are copied whole.
void AppendStrToJSON(std::u16string_view AText, std::u16string& AOut);
/// Appends AText decoded as VnJSONtoStr does.
void AppendJSONtoStr(std::u16string_view AText, TVnJSONDataType AType, std::u16string& AOut);

}  // namespace vn::detail
