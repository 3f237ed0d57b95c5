#include "host/idml/IdmlPackage.h"

#include "host/idml/IdmlError.h"

#include <zip.h>

#include <memory>

namespace Galley {

namespace {

struct ArchiveCloser {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, ArchiveCloser>;

std::string openErrorText(int code) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    std::string text = zip_error_strerror(&error);
    zip_error_fini(&error);
    return text;
}

Archive openArchive(const std::string& path) {
    int code = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (!archive)
        throw IdmlError(path, "", "not a readable IDML package (" + openErrorText(code) + ")");
    return Archive(archive);
}

std::string readPart(zip_t* archive, zip_uint64_t index, const std::string& path,
                     const std::string& name, std::size_t limit) {
    zip_stat_t stat;
    if (zip_stat_index(archive, index, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_SIZE))
        throw IdmlError(path, name, "cannot read the part's size");
    if (stat.size > limit)
        throw IdmlError(path, name,
                        "part is too large (" + std::to_string(stat.size) + " bytes, limit " +
                            std::to_string(limit) + ")");
    zip_file_t* file = zip_fopen_index(archive, index, 0);
    if (!file)
        throw IdmlError(path, name, std::string("cannot open part: ") + zip_strerror(archive));
    std::string data(stat.size, '\0');
    zip_int64_t got = data.empty() ? 0 : zip_fread(file, data.data(), data.size());
    std::string failure = got < 0 ? zip_file_strerror(file) : "";
    zip_fclose(file);
    if (got < 0 || static_cast<zip_uint64_t>(got) != stat.size)
        throw IdmlError(path, name,
                        "corrupt compressed data" + (failure.empty() ? "" : " (" + failure + ")"));
    return data;
}

} // namespace

IdmlPackage IdmlPackage::read(const std::string& path, const PackageLimits& limits) {
    Archive archive = openArchive(path);
    zip_int64_t count = zip_get_num_entries(archive.get(), 0);
    if (count < 0 || static_cast<std::size_t>(count) > limits.maxParts)
        throw IdmlError(path, "", "too many parts in the package");

    IdmlPackage package;
    package.path_ = path;
    std::size_t total = 0;
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* rawName = zip_get_name(archive.get(), i, ZIP_FL_ENC_GUESS);
        std::string name = rawName ? rawName : "";
        if (name.empty() || name.back() == '/')
            continue; // folders carry no content
        std::string data = readPart(archive.get(), i, path, name, limits.maxPartBytes);
        total += data.size();
        if (total > limits.maxTotalBytes)
            throw IdmlError(path, name, "package is too large when uncompressed");
        package.parts_.push_back({std::move(name), std::move(data)});
    }
    return package;
}

IdmlPackage IdmlPackage::fromParts(std::string path, Parts parts) {
    IdmlPackage package;
    package.path_ = std::move(path);
    package.parts_ = std::move(parts);
    return package;
}

const PackagePart* IdmlPackage::find(const std::string& name) const {
    for (const auto& part : parts_) {
        if (part.name == name)
            return &part;
    }
    return nullptr;
}

} // namespace Galley
