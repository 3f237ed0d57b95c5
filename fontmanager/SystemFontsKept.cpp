// The system's fonts kept in a file from one server to the next: SystemFontsCache's
// keep() and readKept().
#include "fontmanager/FaceType.h"
#include "fontmanager/SystemFonts.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace Vellumine {

// The kept list: a version line, then one record per line of fields in the form
// <length>:<bytes> (so that any byte may appear in a name or path). Anything unexpected
// makes the whole file count as absent.
namespace {

constexpr const char* keptVersion = "vellumine system fonts 1";

void field(std::string& out, const std::string& text) {
    out += std::to_string(text.size());
    out += ':';
    out += text;
}

void fieldList(std::string& out, const std::vector<std::string>& items) {
    field(out, std::to_string(items.size()));
    for (const auto& item : items) {
        field(out, item);
    }
}

class FieldReader {
public:
    explicit FieldReader(const std::string& text) : text(text) {}

    bool atEnd() const { return at == text.size(); }
    std::optional<std::string> next() {
        const std::size_t colon = text.find(':', at);
        if (colon == std::string::npos || colon == at || colon - at > 9) {
            return std::nullopt;
        }
        const std::string digits = text.substr(at, colon - at);
        if (!std::all_of(digits.begin(), digits.end(),
                         [](char c) { return c >= '0' && c <= '9'; })) {
            return std::nullopt;
        }
        const std::size_t length = std::stoul(digits);
        if (length > text.size() - colon - 1) {
            return std::nullopt;
        }
        at = colon + 1 + length;
        return text.substr(colon + 1, length);
    }
    // A count, then that many fields.
    std::optional<std::vector<std::string>> list() {
        const auto count = number();
        if (!count || *count < 0) {
            return std::nullopt;
        }
        std::vector<std::string> items;
        for (std::int64_t n = 0; n < *count; ++n) {
            auto item = next();
            if (!item) {
                return std::nullopt;
            }
            items.push_back(std::move(*item));
        }
        return items;
    }
    std::optional<std::int64_t> number() {
        const auto digits = next();
        if (!digits || digits->empty() || digits->size() > 19) {
            return std::nullopt;
        }
        std::int64_t value = 0;
        const bool negative = digits->front() == '-';
        for (std::size_t i = negative ? 1 : 0; i < digits->size(); ++i) {
            const char c = (*digits)[i];
            if (c < '0' || c > '9') {
                return std::nullopt;
            }
            value = value * 10 + (c - '0');
        }
        return negative ? -value : value;
    }

private:
    const std::string& text;
    std::size_t at = 0;
};

} // namespace

void SystemFontsCache::keep(const Snapshot& snapshot) const {
    if (keptIn.empty()) {
        return;
    }
    const std::lock_guard<std::mutex> lock(keeping);
    std::string text = std::string(keptVersion) + "\n";
    field(text, snapshot.environment);
    field(text, snapshot.folder.string());
    field(text, snapshot.reloadNext ? "1" : "0");
    field(text, std::to_string(snapshot.stamps.size()));
    for (const auto& stamp : snapshot.stamps) {
        field(text, std::to_string(stamp.modified));
        field(text, stamp.path.string());
    }
    field(text, std::to_string(snapshot.fonts.all().size()));
    for (const auto& face : snapshot.fonts.all()) {
        field(text, face.record.file.string());
        field(text, std::to_string(face.record.faceIndex));
        field(text, face.record.postScriptName);
        field(text, wireText(face.record.type));
        fieldList(text, face.families);
        fieldList(text, face.styles);
    }
    // Written beside and moved into place: a reader never sees half a list.
    std::error_code error;
    std::filesystem::create_directories(keptIn.parent_path(), error);
    const auto partial = keptIn.string() + ".new-" + std::to_string(getpid());
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out << text;
        if (!out.flush()) {
            std::filesystem::remove(partial, error);
            return; // a list not kept costs the next start some milliseconds, nothing more
        }
    }
    std::filesystem::rename(partial, keptIn, error);
    if (error) {
        std::filesystem::remove(partial, error);
    }
}

std::optional<SystemFontsCache::Snapshot> SystemFontsCache::readKept() const {
    if (keptIn.empty()) {
        return std::nullopt;
    }
    std::ifstream in(keptIn, std::ios::binary);
    std::string version;
    if (!std::getline(in, version) || version != keptVersion) {
        return std::nullopt;
    }
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    FieldReader fields(text);
    Snapshot snapshot;
    const auto environment = fields.next();
    const auto folder = fields.next();
    const auto reloadNext = fields.next();
    const auto stamps = fields.number();
    if (!environment || !folder || !reloadNext || !stamps || *stamps < 0) {
        return std::nullopt;
    }
    snapshot.environment = *environment;
    snapshot.folder = *folder;
    snapshot.reloadNext = *reloadNext != "0";
    for (std::int64_t i = 0; i < *stamps; ++i) {
        const auto modified = fields.number();
        const auto path = fields.next();
        if (!modified || !path) {
            return std::nullopt;
        }
        snapshot.stamps.push_back({*path, *modified});
    }
    const auto faces = fields.number();
    if (!faces || *faces < 0) {
        return std::nullopt;
    }
    for (std::int64_t i = 0; i < *faces; ++i) {
        SystemFace face;
        const auto file = fields.next();
        const auto index = fields.number();
        const auto name = fields.next();
        const auto typeText = fields.next();
        const auto type = typeText ? faceTypeFromWireText(*typeText) : std::nullopt;
        auto families = fields.list();
        auto styles = fields.list();
        if (!file || !index || !name || !type || !families || families->empty() || !styles) {
            return std::nullopt;
        }
        face.families = std::move(*families);
        face.styles = std::move(*styles);
        FaceRecord& record = face.record;
        record.file = *file;
        record.faceIndex = static_cast<long>(*index);
        record.postScriptName = *name;
        record.type = *type;
        record.family = face.families.front();
        record.style = face.styles.empty() ? "" : face.styles.front();
        record.active = true;
        record.onSystem = true;
        snapshot.fonts.add(std::move(face));
    }
    if (!fields.atEnd()) {
        return std::nullopt;
    }
    return snapshot;
}

} // namespace Vellumine
