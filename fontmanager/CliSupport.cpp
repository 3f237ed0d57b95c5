#include "fontmanager/CliCommands.h"

#include "fontmanager/ContainerID.h"
#include "fontmanager/FontRequestHandler.h"
#include "fontmanager/LibrarySelection.h"
#include "fontmanager/OpenCatalog.h"

#include <ctime>

namespace Vellumine {

std::unique_ptr<Catalog> openForWriting(std::ostream& errors) {
    return openCatalog(currentLibrary(), [&errors](const std::string& message) {
        errors << "vellumine: " << message << "\n";
    });
}

std::unique_ptr<Catalog> openForReading() {
    return openCatalogForReading(currentLibrary());
}

std::string field(const std::string& value) {
    static const char* const hex = "0123456789abcdef";
    std::string text;
    for (const char c : value) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\') {
            text += "\\\\";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c == '\n') {
            text += "\\n";
        } else if (byte < 0x20 || byte == 0x7F) {
            text += std::string("\\x") + hex[byte >> 4] + hex[byte & 0xF];
        } else {
            text += c;
        }
    }
    return text;
}

std::string formatTime(std::int64_t unixTime) {
    const std::time_t time = static_cast<std::time_t>(unixTime);
    std::tm parts{};
    localtime_r(&time, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    return text;
}

void printFace(const FaceRecord& face, std::ostream& out) {
    out << face.id << "\t" << wireText(face.type) << "\t" << (face.active ? "active" : "inactive")
        << "\t" << field(face.postScriptName) << "\t" << field(face.family) << "\t"
        << field(face.style) << "\t" << field(face.file.string())
        << (face.faceIndex > 0 ? "#" + std::to_string(face.faceIndex) : "") << "\n";
}

bool resolveFaces(Catalog& catalog, const std::string& argument, bool all,
                  std::vector<std::int64_t>& ids, std::ostream& errors) {
    if (const auto id = parseContainerID(argument)) {
        ids.push_back(*id);
        return true;
    }
    const auto faces = catalog.facesByPostScriptName(argument);
    if (faces.empty()) {
        errors << "no face with container id or PostScript name '" << argument << "'\n";
        return false;
    }
    if (faces.size() > 1 && !all) {
        errors << argument << " names " << faces.size()
               << " faces; name one by its container id:\n";
        for (const auto& face : faces) {
            errors << "  " << face.id << "\t" << describeFace(face) << "\n";
        }
        return false;
    }
    for (const auto& face : faces) {
        ids.push_back(face.id);
    }
    return true;
}

} // namespace Vellumine
