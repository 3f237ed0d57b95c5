#include "fontmanager/FaceFiles.h"

#include "fontmanager/LibraryPaths.h"
#include "fontmanager/Sha256.h"
#include "foundation/Logger.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace Vellumine {

namespace {

// Writes the bytes to a new file beside `file` and renames it into place, so that a reader
// (fontconfig, another vellumine) never sees half a font.
bool writeAtomically(const std::filesystem::path& file, const std::string& bytes,
                     std::string& problem) {
    std::string temporary = file.string() + ".XXXXXX";
    const int descriptor = mkstemp(temporary.data());
    if (descriptor < 0) {
        problem = "cannot write " + file.parent_path().string() + ": " + std::strerror(errno);
        return false;
    }
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            problem = "cannot write " + temporary + ": " + std::strerror(errno);
            ::close(descriptor);
            ::unlink(temporary.c_str());
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    // fontconfig runs as the user too, but other users' tools may read the cache.
    fchmod(descriptor, 0644);
    ::close(descriptor);
    if (std::rename(temporary.c_str(), file.c_str()) != 0) {
        problem = "cannot rename " + temporary + ": " + std::strerror(errno);
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}

} // namespace

FaceFiles::FaceFiles(Catalog& catalog, std::filesystem::path cacheFolder)
    : catalog(catalog), folder(std::move(cacheFolder)) {}

std::filesystem::path FaceFiles::defaultCacheFolder() {
    const std::filesystem::path cacheHome = LibraryPaths::xdgFolder("XDG_CACHE_HOME", ".cache");
    if (cacheHome.empty()) {
        throw std::runtime_error("neither XDG_CACHE_HOME nor HOME names an absolute folder for "
                                 "the library's font cache");
    }
    return cacheHome / "vellumine" / "store";
}

std::filesystem::path FaceFiles::cached(const std::string& hash) {
    if (folder.empty()) {
        folder = defaultCacheFolder();
    }
    return folder / hash;
}

std::filesystem::path FaceFiles::fontFile(const FaceRecord& face) {
    return face.contentHash.empty() ? face.file : cached(face.contentHash);
}

std::filesystem::path FaceFiles::metricsFile(const FaceRecord& face) {
    return face.metricsHash.empty() ? face.metricsFile : cached(face.metricsHash);
}

bool FaceFiles::fetch(const FaceRecord& face, std::string& problem) {
    return (face.contentHash.empty() || materialise(face.contentHash, problem)) &&
           (face.metricsHash.empty() || materialise(face.metricsHash, problem));
}

std::filesystem::path FaceFiles::readable(const FaceRecord& face) {
    if (face.contentHash.empty()) {
        return face.file;
    }
    std::string problem;
    try {
        if (materialise(face.contentHash, problem)) {
            return cached(face.contentHash);
        }
    } catch (const std::exception& error) {
        problem = error.what();
    }
    Logger::log("vellumine-cache", face.postScriptName + ": " + problem);
    return face.file;
}

bool FaceFiles::materialise(const std::string& hash, std::string& problem) {
    const std::filesystem::path file = cached(hash);
    std::error_code error;
    if (std::filesystem::exists(file, error)) {
        if (Sha256::ofFile(file) == hash) {
            return true;
        }
        Logger::log("vellumine-cache",
                    file.string() + " does not match its hash; fetching it again");
    }
    const auto bytes = catalog.storedContent(hash);
    if (!bytes) {
        problem = "the library no longer holds the file " + hash;
        return false;
    }
    if (Sha256::of(*bytes) != hash) {
        problem = "the library's copy of " + hash + " does not match its hash";
        return false;
    }
    std::filesystem::create_directories(folder, error);
    return writeAtomically(file, *bytes, problem);
}

} // namespace Vellumine
