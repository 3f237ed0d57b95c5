#pragma once

#include <string>
#include <vector>

namespace Galley {

// `galley --batch FILE.idml [--timeout SECONDS] [ACTION...]`: opens the document with the
// plug-ins loaded, lets them respond, plays the actions against the dialogs in front, and
// answers 0 when no font is missing at the end, 1 when fonts remain missing, 2 on an error
// (a document that cannot be read, an action that cannot be played, a plug-in failure).
int runBatchCommand(const std::vector<std::string>& arguments, const std::string& executable);
void printBatchUsage(std::ostream& out);

} // namespace Galley
