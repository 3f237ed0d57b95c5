#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Galley {

// Bounds that keep a hostile package from exhausting memory.
struct PackageLimits {
    std::size_t maxPartBytes = 256u << 20;   // one uncompressed part
    std::size_t maxTotalBytes = 1024u << 20; // all parts together
    std::size_t maxParts = 100000;
};

// One file of the ZIP container, uncompressed.
struct PackagePart {
    std::string name;
    std::string data;
};

// The parts of an IDML package, read entirely into memory in the container's order, so
// that a save never depends on the original file still being there.
class IdmlPackage {
public:
    using Parts = std::vector<PackagePart>;

    // Throws IdmlError naming `path` when the container cannot be read.
    static IdmlPackage read(const std::string& path, const PackageLimits& limits = {});

    // A package as it was just written to `path`.
    static IdmlPackage fromParts(std::string path, Parts parts);

    const std::string& path() const { return path_; }
    const std::vector<PackagePart>& parts() const { return parts_; }
    // Null when the package has no part of that name.
    const PackagePart* find(const std::string& name) const;

private:
    std::string path_;
    std::vector<PackagePart> parts_;
};

} // namespace Galley
