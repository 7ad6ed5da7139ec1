// input_kind.h: whether vnx reads its input as XML or as JSON. Every subcommand that takes both
// asks here, so that they all decide alike.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vnx {

enum class InputKind { Xml, Json };

/// Removes --json and --xml from AArgs; the last one given wins. None: the input decides.
std::optional<InputKind> TakeInputKindOption(std::vector<std::string>& AArgs);

/// AForced when given; otherwise the first significant character of ABytes decides: "<" is XML,
/// anything else (an empty text too) JSON. A byte-order mark, white space and NUL bytes (the
/// other half of UTF-16 units) are passed over to find it.
InputKind ChooseInputKind(std::optional<InputKind> AForced, std::string_view ABytes);

}  // namespace vnx
