#include "fontmanager/LibrarySelection.h"

#include "fontmanager/LibraryPaths.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace Vellumine {

namespace {

std::optional<std::string> libraryOption;

std::string trimmed(const std::string& text) {
    const auto start = text.find_first_not_of(" \t\r");
    if (start == std::string::npos) {
        return {};
    }
    return text.substr(start, text.find_last_not_of(" \t\r") - start + 1);
}

} // namespace

std::optional<std::string> configuredLibrary(const std::filesystem::path& configFile) {
    std::error_code error;
    if (configFile.empty() || !std::filesystem::exists(configFile, error)) {
        return std::nullopt;
    }
    std::ifstream in(configFile);
    if (!in) {
        throw std::runtime_error("cannot read " + configFile.string());
    }
    std::optional<std::string> url;
    for (std::string line; std::getline(in, line);) {
        line = trimmed(line);
        const auto equals = line.find('=');
        if (line.empty() || line[0] == '#' || equals == std::string::npos) {
            continue;
        }
        if (trimmed(line.substr(0, equals)) == "library") {
            url = trimmed(line.substr(equals + 1)); // the last one counts, as in most files
        }
    }
    return url;
}

LibraryLocation selectLibrary(const LibrarySources& sources) {
    if (sources.environment && !sources.environment->empty()) {
        return LibraryLocation::parse(*sources.environment, "VELLUMINE_LIBRARY");
    }
    if (sources.option) {
        return LibraryLocation::parse(*sources.option, "--library");
    }
    if (const auto configured = configuredLibrary(sources.configFile)) {
        return LibraryLocation::parse(*configured, sources.configFile.string());
    }
    return LibraryLocation::sqliteFile(sources.defaultFile);
}

std::filesystem::path defaultConfigFile() {
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    if (xdg != nullptr && std::filesystem::path(xdg).is_absolute()) {
        return std::filesystem::path(xdg) / "vellumine" / "vellumine.conf";
    }
    const char* home = std::getenv("HOME");
    if (home != nullptr && std::filesystem::path(home).is_absolute()) {
        return std::filesystem::path(home) / ".config" / "vellumine" / "vellumine.conf";
    }
    return {};
}

void setLibraryOption(std::optional<std::string> url) {
    libraryOption = std::move(url);
}

std::vector<std::string> libraryArguments() {
    if (!libraryOption) {
        return {};
    }
    return {"--library", *libraryOption};
}

LibraryLocation currentLibrary() {
    LibrarySources sources;
    if (const char* environment = std::getenv("VELLUMINE_LIBRARY")) {
        sources.environment = environment;
    }
    sources.option = libraryOption;
    sources.configFile = defaultConfigFile();
    sources.defaultFile = LibraryPaths::fromEnvironment().catalogFile();
    return selectLibrary(sources);
}

} // namespace Vellumine
