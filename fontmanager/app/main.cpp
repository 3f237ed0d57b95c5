// vellumine: the font manager's command line and server, without Qt; the window and the
// browser open through vellumine-window.
#include "fontmanager/Cli.h"
#include "fontmanager/app/WindowProgram.h"

#include <iostream>

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const Vellumine::GuiCommands gui{Vellumine::windowProgramCommand("window", arguments),
                                     Vellumine::windowProgramCommand("open-url", arguments)};
    return Vellumine::runCli(arguments, std::cout, std::cerr, gui);
}
