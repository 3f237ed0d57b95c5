#include "host/app/FontsCommand.h"
#include "host/app/ReplaceCommand.h"
#include "host/batch/BatchCommand.h"
#ifdef GALLEY_WITH_GUI
#include "host/gui/GuiApplication.h"
#endif

#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

void printUsage(std::ostream& out) {
    out << "usage: galley --batch FILE.idml [--timeout SECONDS] [ACTION...]\n"
           "       galley fonts FILE.idml [--json]\n"
           "       galley replace FILE.idml FROM TO [--styles] [--output OUT.idml]\n"
           "       galley [FILE.idml]\n"
           "       galley --version | --help\n"
           "\n"
           "  --batch   open the document without a window; the plug-ins respond and their "
           "dialogs\n"
           "            are shown as text (galley --batch --help for the actions)\n"
           "  fonts     print the document's fonts, missing first (no plug-ins)\n"
           "  replace   set the text in font FROM in the installed font TO and save\n"
           "            (galley replace --help for more)\n"
           "  --version print Galley's version\n"
           "  --help    print this help\n"
           "\n"
           "Example: galley --batch brochure.idml\n";
}

std::string executablePath(const char* argv0) {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0)
        return argv0;
    return std::string(path, static_cast<std::size_t>(length));
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    // Answered before anything else, with or without a display.
    if (!arguments.empty() && (arguments[0] == "--version" || arguments[0] == "-V")) {
        std::cout << "galley " << GALLEY_VERSION << '\n';
        return 0;
    }
#ifdef GALLEY_WITH_GUI
    // Without a document, the window opens empty (File ▸ Open).
    if (arguments.empty() && Galley::guiAvailable())
        return Galley::runGui(argc, argv, {}, executablePath(argv[0]));
#endif
    if (arguments.empty() || arguments[0] == "--help" || arguments[0] == "-h") {
        printUsage(arguments.empty() ? std::cerr : std::cout);
        return arguments.empty() ? 2 : 0;
    }
    if (arguments[0] == "fonts")
        return Galley::runFontsCommand({arguments.begin() + 1, arguments.end()});
    if (arguments[0] == "replace")
        return Galley::runReplaceCommand({arguments.begin() + 1, arguments.end()});
    if (arguments[0] == "--batch") {
        if (arguments.size() > 1 && (arguments[1] == "--help" || arguments[1] == "-h")) {
            Galley::printBatchUsage(std::cout);
            return 0;
        }
        return Galley::runBatchCommand({arguments.begin() + 1, arguments.end()},
                                       executablePath(argv[0]));
    }
    const std::string document = arguments[0];
#ifdef GALLEY_WITH_GUI
    if (Galley::guiAvailable())
        return Galley::runGui(argc, argv, document, executablePath(argv[0]));
    std::cerr << "galley: no display to open a window on; open the document without one:\n";
#else
    std::cerr << "galley: this build has no window; open the document without one:\n";
#endif
    std::cerr << "  galley --batch " << document
              << "\n(galley --batch --help for what batch mode can do)\n";
    return 2;
}
