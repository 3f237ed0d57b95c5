#pragma once

#include <filesystem>
#include <string>

namespace Vellumine {

// Where the library's catalog lives, as a library URL: "sqlite:PATH" for an SQLite file, or
// a libpq connection URI ("postgresql://…", "postgres://…") for a PostgreSQL database.
struct LibraryLocation {
    enum class Kind { sqlite, postgresql };

    Kind kind = Kind::sqlite;
    std::string url;            // as given, a relative SQLite path made absolute
    std::filesystem::path file; // the SQLite file; empty for PostgreSQL
    std::string source;         // where the URL came from, for messages

    // Throws std::invalid_argument naming the URL and `source` when it is neither kind.
    static LibraryLocation parse(const std::string& url, const std::string& source);
    // The user's own SQLite file.
    static LibraryLocation sqliteFile(const std::filesystem::path& file);

    // The URL as messages show it: a password in it is masked.
    std::string shown() const;
};

} // namespace Vellumine
