#include "host/app/FontsReport.h"

#include "host/app/PrintableText.h"
#include "host/document/IdmlDocument.h"
#include "host/fonts/FontTypes.h"

#include <algorithm>

namespace Galley {

namespace {

// Width on screen, counting each UTF-8 sequence as one column.
std::size_t columns(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

} // namespace

std::vector<FontReportEntry> fontReport(IdmlDocument& document) {
    document.usage().Update();
    std::vector<FontReportEntry> entries;
    const FontResolver& resolver = document.resolver();
    for (bool missing : {true, false}) {
        const auto& list = missing ? document.usage().missing() : document.usage().used();
        for (const auto& entry : list)
            entries.push_back({entry.key.family, entry.key.style,
                               resolver.postscriptName(entry.key),
                               fontTypeDisplayName(resolver.type(entry.key)), missing});
    }
    return entries;
}

std::string formatFontTable(const std::vector<FontReportEntry>& entries) {
    std::vector<std::vector<std::string>> rows{
        {"FAMILY", "STYLE", "POSTSCRIPT NAME", "TYPE", "STATUS"}};
    for (const auto& e : entries)
        rows.push_back({printableText(e.family), printableText(e.style),
                        e.postscriptName.empty() ? "-" : printableText(e.postscriptName), e.type,
                        e.missing ? "missing" : "installed"});
    std::vector<std::size_t> widths(5, 0);
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columns(row[i]));
    }
    std::string out;
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            out += row[i];
            if (i + 1 < row.size())
                out += std::string(widths[i] - columns(row[i]) + 2, ' ');
        }
        out += '\n';
    }
    return out;
}

std::string formatFontJson(const std::string& documentPath,
                           const std::vector<FontReportEntry>& entries) {
    std::string out = "{\"document\": " + jsonString(documentPath) + ", \"fonts\": [";
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto& e = entries[i];
        out += std::string(i ? ", " : "") + "{\"family\": " + jsonString(e.family) +
               ", \"style\": " + jsonString(e.style) +
               ", \"postscriptName\": " + jsonString(e.postscriptName) +
               ", \"type\": " + jsonString(e.type) +
               ", \"status\": " + jsonString(e.missing ? "missing" : "installed") + "}";
    }
    return out + "]}\n";
}

} // namespace Galley
