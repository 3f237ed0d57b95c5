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

// One row per face; names are printed with control characters escaped, so that no name can
// add or break a row.
std::string formatFontTable(const std::vector<FontReportEntry>& entries);
// Valid JSON whatever bytes the path and the names hold.
std::string formatFontJson(const std::string& documentPath,
                           const std::vector<FontReportEntry>& entries);

} // namespace Galley
