#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Vellumine {

// SHA-256 (FIPS 180-4), the content address of a font file in a PostgreSQL library. Kept
// here rather than taken from a crypto library: the library only needs one digest, and
// nothing else of vellumine would use one.
class Sha256 {
public:
    Sha256();
    void update(const void* data, std::size_t size);
    void update(std::string_view data) { update(data.data(), data.size()); }
    // The digest as 64 lowercase hex digits; the object is spent afterwards.
    std::string hexDigest();

    static std::string of(std::string_view data);
    // The digest of a file's bytes, or nothing when it cannot be read.
    static std::optional<std::string> ofFile(const std::filesystem::path& file);

private:
    void compress(const std::uint8_t* block);

    std::array<std::uint32_t, 8> state;
    std::array<std::uint8_t, 64> buffer{};
    std::size_t buffered = 0;
    std::uint64_t totalBytes = 0;
};

} // namespace Vellumine
