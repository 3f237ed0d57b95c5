#pragma once

#include <string>

namespace Galley {

// `galley [FILE.idml]` with a display: the window, the same plug-ins and dialogs as batch
// mode. Returns the exit status.
int runGui(int argc, char** argv, const std::string& document, const std::string& executable);
// Whether a window can be shown (a display, or a Qt platform chosen explicitly).
bool guiAvailable();

} // namespace Galley
