#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

typedef struct zip zip_t;

namespace Galley {

// Bounds that keep a hostile package from exhausting memory or time. Bytes count what the
// parts hold uncompressed; nodes count what their XML trees hold (see NodeBudget). Only
// the parts Galley reads count: a package may carry large parts it never touches.
struct PackageLimits {
    std::size_t maxPackageBytes = 256u << 20; // the package file itself
    std::size_t maxPartBytes = 32u << 20;     // one part read, uncompressed
    std::size_t maxTotalBytes = 64u << 20;    // all parts read together
    std::size_t maxParts = 100000;
    std::size_t maxPartNodes = 500000;
    std::size_t maxTotalNodes = 1000000;
};

// One file of the ZIP container, uncompressed.
struct PackagePart {
    std::string name;
    std::string data;
};

// An IDML package. The container is kept in memory as it was read, so that a save never
// depends on the original file still being there, and each part is inflated only when
// asked for.
class IdmlPackage {
public:
    using Parts = std::vector<PackagePart>;

    // Throws IdmlError naming `path` when the container cannot be read.
    static IdmlPackage read(const std::string& path, const PackageLimits& limits = {});
    // A package from the bytes of its container; `path` names it in messages.
    static IdmlPackage fromBytes(std::string path, std::string bytes,
                                 const PackageLimits& limits = {});

    IdmlPackage();
    IdmlPackage(IdmlPackage&&) noexcept;
    IdmlPackage& operator=(IdmlPackage&&) noexcept;
    ~IdmlPackage();

    const std::string& path() const { return path_; }
    const PackageLimits& limits() const { return limits_; }
    // The names of the parts that hold content, in the container's order.
    const std::vector<std::string>& partNames() const { return names_; }
    bool contains(const std::string& name) const { return index_.count(name) > 0; }

    // The part's content, inflated now. Checks the declared size against the limits before
    // inflating, never inflates more than was declared, and checks the CRC-32. The first
    // inflation of each part counts towards maxTotalBytes. Throws IdmlError naming the part.
    std::string inflate(const std::string& name) const;

private:
    struct ArchiveClose {
        void operator()(zip_t* archive) const;
    };

    std::string path_;
    PackageLimits limits_;
    std::unique_ptr<std::string> bytes_; // the container; the archive reads from it
    std::unique_ptr<zip_t, ArchiveClose> archive_;
    std::vector<std::string> names_;
    std::unordered_map<std::string, std::size_t> index_; // name -> entry of the archive
    mutable std::unordered_set<std::string> inflated_;
    mutable std::size_t inflatedBytes_ = 0;
};

} // namespace Galley
