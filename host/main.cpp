#include "host/app/FontsCommand.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

void printUsage(std::ostream& out) {
    out << "usage: galley fonts FILE.idml [--json]   print the document's fonts, missing first\n";
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty() || arguments[0] == "--help" || arguments[0] == "-h") {
        printUsage(arguments.empty() ? std::cerr : std::cout);
        return arguments.empty() ? 2 : 0;
    }
    if (arguments[0] == "fonts")
        return Galley::runFontsCommand({arguments.begin() + 1, arguments.end()});
    // Opening a document in a window and `--batch` belong to the application runtime, which
    // this build does not contain yet.
    std::cerr << "galley: \"" << arguments[0] << "\": only the fonts command is available\n";
    printUsage(std::cerr);
    return 2;
}
