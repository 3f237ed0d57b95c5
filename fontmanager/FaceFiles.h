#pragma once

#include "fontmanager/Catalog.h"

#include <filesystem>
#include <string>

namespace Vellumine {

// Where a face's file is on this workstation. An SQLite library records paths: the file is
// where it was added. A library that holds the bytes (FaceRecord::contentHash) is read
// through a local cache, $XDG_CACHE_HOME/vellumine/store/<sha256>, filled on demand and
// checked against the hash before anything links or reads it; a cached file that fails the
// check (damaged, truncated, replaced) is fetched again.
class FaceFiles {
public:
    // `cacheFolder` empty: the default below, looked up only when a face needs it.
    explicit FaceFiles(Catalog& catalog, std::filesystem::path cacheFolder = {});

    // The face's outlines and metrics as activation links them (not fetched: see fetch()).
    std::filesystem::path fontFile(const FaceRecord& face);
    std::filesystem::path metricsFile(const FaceRecord& face);
    // Makes fontFile() and metricsFile() present and verified; false with `problem` when the
    // library no longer holds the bytes or the cache cannot be written.
    bool fetch(const FaceRecord& face, std::string& problem);
    // The outlines to read (details, previews): fetched when needed; where that fails, the
    // path as added, whose reading then reports the problem.
    std::filesystem::path readable(const FaceRecord& face);

    // $XDG_CACHE_HOME/vellumine/store, else ~/.cache/vellumine/store.
    static std::filesystem::path defaultCacheFolder();

private:
    std::filesystem::path cached(const std::string& hash);
    bool materialise(const std::string& hash, std::string& problem);

    Catalog& catalog;
    std::filesystem::path folder;
};

} // namespace Vellumine
