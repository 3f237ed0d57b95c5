#include "host/document/DocumentSaver.h"

#include "host/document/IdmlDocument.h"
#include "host/idml/IdmlError.h"

#include <zip.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>
#include <unordered_map>

namespace Galley {

namespace {

constexpr const char* kMimeTypePart = "mimetype";
constexpr const char* kIdmlMimeType = "application/vnd.adobe.indesign-idml-package";

std::string folderOf(const std::string& path) {
    auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
}

std::string baseName(const std::string& path) {
    auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

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

std::string readWritten(const std::string& path, const std::string& target) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    if (!in)
        throw IdmlError(target, "", "cannot read back the written package");
    return bytes.str();
}

class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& target) {
        std::string pattern = folderOf(target) + "/." + baseName(target) + ".saving-XXXXXX";
        int fd = ::mkstemp(pattern.data());
        if (fd < 0)
            throw IdmlError(target, "",
                            std::string("cannot create a temporary file: ") + std::strerror(errno));
        ::close(fd);
        path_ = pattern;
    }
    ~TemporaryFile() {
        if (!path_.empty())
            ::unlink(path_.c_str());
    }
    const std::string& path() const { return path_; }
    void release() { path_.clear(); }

private:
    std::string path_;
};

void writeZip(const std::string& path, const IdmlPackage::Parts& parts, const std::string& target) {
    int code = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!archive)
        throw IdmlError(target, "", "cannot create the package");
    for (const PackagePart& part : parts) {
        zip_source_t* source = zip_source_buffer(archive, part.data.data(), part.data.size(), 0);
        zip_int64_t index =
            source ? zip_file_add(archive, part.name.c_str(), source, ZIP_FL_ENC_UTF_8) : -1;
        if (index < 0) {
            zip_source_free(source);
            std::string reason = zip_strerror(archive);
            zip_discard(archive);
            throw IdmlError(target, part.name, "cannot add the part: " + reason);
        }
        zip_set_file_compression(archive, index,
                                 part.name == kMimeTypePart ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
    }
    if (zip_close(archive) != 0) {
        std::string reason = zip_strerror(archive);
        zip_discard(archive);
        throw IdmlError(target, "", "cannot write the package: " + reason);
    }
}

void syncPath(const std::string& path, int flags) {
    int fd = ::open(path.c_str(), flags);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

} // namespace

void saveDocumentAs(IdmlDocument& document, const std::string& target, const SaveOptions& options) {
    if (!options.overwriteOriginal && sameFile(target, document.path()))
        throw IdmlError(target, "",
                        "this is the document's original file; it is overwritten "
                        "only when that is asked for explicitly");
    IdmlPackage::Parts parts = partsToWrite(document);
    TemporaryFile temporary(target);
    writeZip(temporary.path(), parts, target);
    syncPath(temporary.path(), O_RDONLY);
    IdmlPackage written = IdmlPackage::fromBytes(target, readWritten(temporary.path(), target),
                                                 document.package().limits());
    if (::rename(temporary.path().c_str(), target.c_str()) != 0)
        throw IdmlError(target, "",
                        std::string("cannot replace the file: ") + std::strerror(errno));
    temporary.release();
    syncPath(folderOf(target), O_RDONLY | O_DIRECTORY);
    document.adoptSavedPackage(std::move(written));
}

} // namespace Galley
