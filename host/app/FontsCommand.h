#pragma once

#include <string>
#include <vector>

namespace Galley {

// `galley fonts FILE.idml [--json]`: prints the document's font usage.
// Exit status 1 when fonts are missing, 0 when none, 2 on error.
int runFontsCommand(const std::vector<std::string>& arguments);

} // namespace Galley
