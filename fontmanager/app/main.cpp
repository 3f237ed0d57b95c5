#include "fontmanager/Cli.h"
#include "fontmanager/window/WindowCommands.h"

#include <iostream>

int main(int argc, char** argv) {
    const Vellumine::GuiCommands gui{Vellumine::Window::runWindow, Vellumine::Window::openUrl};
    return Vellumine::runCli(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr,
                             gui);
}
