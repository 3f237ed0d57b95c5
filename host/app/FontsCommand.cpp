#include "host/app/FontsCommand.h"

#include "host/app/FontsReport.h"
#include "host/app/PrintableText.h"
#include "host/document/IdmlDocument.h"
#include "host/fonts/FontconfigFontSystem.h"
#include "host/session/GalleySession.h"

#include <algorithm>
#include <exception>
#include <iostream>

namespace Galley {

int runFontsCommand(const std::vector<std::string>& arguments) {
    std::string path;
    bool json = false;
    for (const std::string& argument : arguments) {
        if (argument == "--json")
            json = true;
        else if (path.empty() && !argument.starts_with("--"))
            path = argument;
        else {
            std::cerr << "galley fonts: unexpected argument \"" << argument << "\"\n";
            return 2;
        }
    }
    if (path.empty()) {
        std::cerr << "usage: galley fonts FILE.idml [--json]\n";
        return 2;
    }
    try {
        FontconfigFontSystem fontconfig;
        GalleySession session(fontconfig);
        auto document = IdmlDocument::open(path, session.fonts());
        auto entries = fontReport(*document);
        std::cout << (json ? formatFontJson(path, entries) : formatFontTable(entries));
        bool missing =
            std::any_of(entries.begin(), entries.end(), [](auto& e) { return e.missing; });
        return missing ? 1 : 0;
    } catch (const std::exception& error) {
        std::cerr << "galley: " << printableText(error.what()) << '\n';
        return 2;
    }
}

} // namespace Galley
