// What to-json and to-xml share: their arguments and the load of their input.
#pragma once

#include <string>
#include <vector>

#include "vnxml/dom_document.h"

namespace vnx {

/// --plain and one FILE|-; false on anything else.
bool TakeBridgeArgs(const std::vector<std::string>& AArgs, bool& AFormatted, std::string& APath);
/// Loads FILE|- into ADocument as it is set up; on failure prints the reason and gives the exit code, else -1.
int LoadForBridge(const std::string& ACommand, const std::string& APath, vn::TVnDOMDocument& ADocument);

}  // namespace vnx
