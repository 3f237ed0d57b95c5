#include "host/idml/IdmlPackage.h"

#include "host/idml/IdmlError.h"

#include <zip.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sys/stat.h>

namespace Galley {

namespace {

std::string errorText(zip_error_t* error) {
    return zip_error_strerror(error);
}

std::string readFile(const std::string& path, std::size_t limit) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        throw IdmlError(path, "", std::string("cannot read the file: ") + std::strerror(errno));
    if (!S_ISREG(info.st_mode))
        throw IdmlError(path, "", "not a readable IDML package (not a regular file)");
    if (static_cast<std::size_t>(info.st_size) > limit)
        throw IdmlError(path, "",
                        "package file is too large (" + std::to_string(info.st_size) +
                            " bytes, limit " + std::to_string(limit) + ")");
    std::ifstream in(path, std::ios::binary);
    std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
    if (!in || !in.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw IdmlError(path, "", "cannot read the file");
    return bytes;
}

// Fails when the part holds more than its declared size. libzip checks the CRC-32 when a
// read reaches the end of the entry, so the end is read explicitly.
void expectEnd(zip_file_t* file, const std::string& path, const std::string& name) {
    char extra = 0;
    zip_int64_t got = zip_fread(file, &extra, 1);
    if (got > 0)
        throw IdmlError(path, name, "part holds more data than its header declares");
    if (got < 0)
        throw IdmlError(path, name, std::string("corrupt part (") + zip_file_strerror(file) + ")");
}

} // namespace

void IdmlPackage::ArchiveClose::operator()(zip_t* archive) const {
    zip_discard(archive);
}

IdmlPackage::IdmlPackage() = default;
IdmlPackage::IdmlPackage(IdmlPackage&&) noexcept = default;
IdmlPackage& IdmlPackage::operator=(IdmlPackage&&) noexcept = default;
IdmlPackage::~IdmlPackage() = default;

IdmlPackage IdmlPackage::read(const std::string& path, const PackageLimits& limits) {
    return fromBytes(path, readFile(path, limits.maxPackageBytes), limits);
}

IdmlPackage IdmlPackage::fromBytes(std::string path, std::string bytes,
                                   const PackageLimits& limits) {
    if (bytes.empty())
        throw IdmlError(path, "", "not a readable IDML package (the file is empty)");
    IdmlPackage package;
    package.path_ = std::move(path);
    package.limits_ = limits;
    package.bytes_ = std::make_unique<std::string>(std::move(bytes));

    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source =
        zip_source_buffer_create(package.bytes_->data(), package.bytes_->size(), 0, &error);
    zip_t* archive =
        source ? zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error) : nullptr;
    if (!archive) {
        std::string reason = errorText(&error);
        zip_source_free(source);
        zip_error_fini(&error);
        throw IdmlError(package.path_, "", "not a readable IDML package (" + reason + ")");
    }
    zip_error_fini(&error);
    package.archive_.reset(archive);

    zip_int64_t count = zip_get_num_entries(archive, 0);
    if (count < 0 || static_cast<std::size_t>(count) > limits.maxParts)
        throw IdmlError(package.path_, "", "too many parts in the package");
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* rawName = zip_get_name(archive, static_cast<zip_uint64_t>(i), ZIP_FL_ENC_GUESS);
        std::string name = rawName ? rawName : "";
        if (name.empty() || name.back() == '/')
            continue; // folders carry no content
        if (package.index_.emplace(name, static_cast<std::size_t>(i)).second)
            package.names_.push_back(std::move(name));
    }
    return package;
}

std::string IdmlPackage::inflate(const std::string& name) const {
    auto found = index_.find(name);
    if (found == index_.end())
        throw IdmlError(path_, name, "the package lacks this part");
    const zip_uint64_t entry = found->second;
    zip_stat_t stat;
    if (zip_stat_index(archive_.get(), entry, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_SIZE))
        throw IdmlError(path_, name, "cannot read the part's size");
    if (stat.size > limits_.maxPartBytes)
        throw IdmlError(path_, name,
                        "part is too large (" + std::to_string(stat.size) + " bytes, limit " +
                            std::to_string(limits_.maxPartBytes) + ")");
    const bool first = !inflated_.count(name);
    if (first && inflatedBytes_ + stat.size > limits_.maxTotalBytes)
        throw IdmlError(path_, name,
                        "package is too large when uncompressed (limit " +
                            std::to_string(limits_.maxTotalBytes) + " bytes)");

    zip_file_t* file = zip_fopen_index(archive_.get(), entry, 0);
    if (!file)
        throw IdmlError(path_, name,
                        std::string("cannot open part: ") + zip_strerror(archive_.get()));
    std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> closer(file, zip_fclose);
    std::string data(stat.size, '\0');
    zip_int64_t got = data.empty() ? 0 : zip_fread(file, data.data(), data.size());
    if (got < 0 || static_cast<zip_uint64_t>(got) != stat.size)
        throw IdmlError(path_, name,
                        "corrupt compressed data" +
                            (got < 0 ? " (" + std::string(zip_file_strerror(file)) + ")" : ""));
    expectEnd(file, path_, name);
    if (first) {
        inflated_.insert(name);
        inflatedBytes_ += stat.size;
    }
    return data;
}

} // namespace Galley
