#pragma once

#include "fontmanager/Cli.h"

namespace Vellumine::Window {

// `vellumine window [--show PSNAME] [--container ID]`: the window, one per session. When
// another window owns the window's bus name already, the face is handed to it instead.
int runWindow(const CliArguments& arguments, std::ostream& out, std::ostream& errors);

// `vellumine open-url URL`: hands an http or https address to the desktop's browser
// through QDesktopServices (xdg-open, else $BROWSER), which needs a Qt GUI application;
// the server starts it for a buy request.
int openUrl(const CliArguments& arguments, std::ostream& out, std::ostream& errors);

} // namespace Vellumine::Window
