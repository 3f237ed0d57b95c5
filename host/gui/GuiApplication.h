#pragma once

#include <string>

class QApplication;
class QTranslator;

namespace Galley {

// `galley [FILE.idml]` with a display: the window, the same plug-ins and dialogs as batch
// mode. Returns the exit status.
int runGui(int argc, char** argv, const std::string& document, const std::string& executable);
// Names, version, icon and translations of the application, as the window and the tests
// set them up.
void setUpApplication(QApplication& application, QTranslator& translator);
// Whether a window can be shown (a display, or a Qt platform chosen explicitly).
bool guiAvailable();

} // namespace Galley
