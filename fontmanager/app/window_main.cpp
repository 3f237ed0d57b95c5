// vellumine-window: the commands that need Qt and a display (window, open-url), which the
// vellumine program hands over to this one with its own arguments. It is the whole command
// line, so that every option vellumine understands means the same here.
#include "fontmanager/Cli.h"
#include "fontmanager/window/WindowCommands.h"

#include <iostream>

int main(int argc, char** argv) {
    const Vellumine::GuiCommands gui{Vellumine::Window::runWindow, Vellumine::Window::openUrl};
    return Vellumine::runCli(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr,
                             gui);
}
