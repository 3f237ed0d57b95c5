#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace Galley {

// `galley replace FILE.idml FROM TO [--styles] [--output OUT.idml]`: replaces a face
// throughout the document's text (and with --styles in its styles) by an installed one and
// saves. Exit status 0 when the result misses no font, 1 when fonts remain missing, 2 on an
// error, which writes nothing.
int runReplaceCommand(const std::vector<std::string>& arguments);
void printReplaceUsage(std::ostream& out);

} // namespace Galley
