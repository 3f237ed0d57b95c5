#pragma once

#include <string>
#include <vector>

namespace Galley {

class IdmlDocument;

// One line of `galley fonts`.
struct FontReportEntry {
    std::string family;
    std::string style;
    std::string postscriptName;
    std::string type; // the host's type name
    bool missing = false;
};

// The document's font usage: missing faces first, then installed ones, each in usage order.
std::vector<FontReportEntry> fontReport(IdmlDocument& document);

std::string formatFontTable(const std::vector<FontReportEntry>& entries);
std::string formatFontJson(const std::string& documentPath,
                           const std::vector<FontReportEntry>& entries);

} // namespace Galley
