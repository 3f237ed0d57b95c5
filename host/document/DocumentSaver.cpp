#include "host/document/DocumentSaver.h"

#include "host/document/AtomicFileWriter.h"
#include "host/document/IdmlDocument.h"
#include "host/idml/IdmlError.h"

#include <zip.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <unordered_map>

namespace Galley {

namespace {

constexpr const char* kMimeTypePart = "mimetype";
constexpr const char* kIdmlMimeType = "application/vnd.adobe.indesign-idml-package";

bool sameFile(const std::string& a, const std::string& b) {
    char* realA = ::realpath(a.c_str(), nullptr);
    char* realB = ::realpath(b.c_str(), nullptr);
    bool same = realA && realB && std::strcmp(realA, realB) == 0;
    std::free(realA);
    std::free(realB);
    return same;
}

std::vector<CatalogFont> fontsNowUsed(IdmlDocument& document) {
    document.usage().Update();
    std::vector<CatalogFont> fonts;
    for (const auto* list : {&document.usage().missing(), &document.usage().used()}) {
        for (const auto& entry : *list) {
            const FontResolver& resolver = document.resolver();
            fonts.push_back({entry.key.family, entry.key.style, resolver.postscriptName(entry.key),
                             resolver.type(entry.key)});
        }
    }
    return fonts;
}

// The parts to write, mimetype first, with the changed ones replaced. Unchanged parts are
// inflated from the package held in memory and written with their original bytes.
IdmlPackage::Parts partsToWrite(IdmlDocument& document) {
    const IdmlPackage& package = document.package();
    IdmlPackage::Parts parts;
    parts.push_back({kMimeTypePart, package.contains(kMimeTypePart) ? package.inflate(kMimeTypePart)
                                                                    : std::string(kIdmlMimeType)});
    std::unordered_map<std::string, const Story*> changed;
    for (const auto& story : document.stories()) {
        if (story->modified())
            changed.emplace(story->part(), story.get());
    }
    const bool stylesChanged = document.styles().modified();
    const bool modified = !changed.empty() || stylesChanged;
    for (const std::string& name : package.partNames()) {
        if (name == kMimeTypePart)
            continue;
        auto story = changed.find(name);
        if (story != changed.end())
            parts.push_back({name, story->second->serialize()});
        else if (stylesChanged && name == document.designMap().stylesPart)
            parts.push_back({name, document.styles().serialize()});
        else if (modified && name == document.designMap().fontsPart)
            parts.push_back(
                {name, FontsCatalog::write(fontsNowUsed(document), &document.catalog())});
        else
            parts.push_back({name, package.inflate(name)});
    }
    return parts;
}

// The package's container, written in memory with the archive library; the file is then
// written in one go through a descriptor of our own (the library would otherwise write a
// temporary of its own and rename it, out of reach of the save's mode and lock).
std::string archiveBytes(const IdmlPackage::Parts& parts, const std::string& target) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t* archive = buffer ? zip_open_from_source(buffer, ZIP_TRUNCATE, &error) : nullptr;
    if (!archive) {
        std::string reason = zip_error_strerror(&error);
        zip_error_fini(&error);
        zip_source_free(buffer);
        throw IdmlError(target, "", "cannot create the package: " + reason);
    }
    zip_error_fini(&error);
    zip_source_keep(buffer); // read back once the archive is closed
    auto discard = [&](const std::string& part, const std::string& what) {
        std::string reason = zip_strerror(archive);
        zip_discard(archive);
        zip_source_free(buffer);
        throw IdmlError(target, part, what + reason);
    };
    for (const PackagePart& part : parts) {
        zip_source_t* source = zip_source_buffer(archive, part.data.data(), part.data.size(), 0);
        zip_int64_t index =
            source ? zip_file_add(archive, part.name.c_str(), source, ZIP_FL_ENC_UTF_8) : -1;
        if (index < 0) {
            zip_source_free(source);
            discard(part.name, "cannot add the part: ");
        }
        zip_set_file_compression(archive, index,
                                 part.name == kMimeTypePart ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
    }
    if (zip_close(archive) != 0)
        discard("", "cannot write the package: ");
    std::string bytes;
    zip_stat_t stat;
    zip_stat_init(&stat);
    bool read = zip_source_stat(buffer, &stat) == 0 && (stat.valid & ZIP_STAT_SIZE) &&
                zip_source_open(buffer) == 0;
    if (read) {
        bytes.resize(stat.size);
        read =
            zip_source_read(buffer, bytes.data(), stat.size) == static_cast<zip_int64_t>(stat.size);
        zip_source_close(buffer);
    }
    zip_source_free(buffer);
    if (!read)
        throw IdmlError(target, "", "cannot read back the package written in memory");
    return bytes;
}

} // namespace

void saveDocumentAs(IdmlDocument& document, const std::string& target, const SaveOptions& options) {
    if (!options.overwriteOriginal && sameFile(target, document.path()))
        throw IdmlError(target, "",
                        "this is the document's original file; it is overwritten "
                        "only when that is asked for explicitly");
    const std::string bytes = archiveBytes(partsToWrite(document), target);
    // Read as Galley reads any package before anything on disk changes.
    IdmlPackage written = IdmlPackage::fromBytes(target, bytes, document.package().limits());
    try {
        replaceFileAtomically(target, bytes);
    } catch (const std::runtime_error& error) {
        throw IdmlError(target, "", error.what());
    }
    document.adoptSavedPackage(std::move(written));
}

} // namespace Galley
