#pragma once

#include "fontmanager/CatalogError.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace Vellumine {

// A catalog error; the message names the catalog file.
class SqliteError : public CatalogError {
public:
    using CatalogError::CatalogError;
};

// Another process held the catalog's write lock for longer than the busy time-out. The
// work did not happen and may be tried again.
class SqliteBusy : public SqliteError {
public:
    using SqliteError::SqliteError;
};

// A thin, exception-based face of SQLite for the catalog: one connection, prepared
// statements kept for reuse, values always bound, never spliced into SQL text.
class SqliteStatement {
public:
    SqliteStatement(sqlite3* database, const std::string& sql, const std::string& where);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    // Clears bindings and rewinds; called before every use.
    SqliteStatement& reset();
    SqliteStatement& bind(int index, const std::string& value);
    SqliteStatement& bind(int index, std::int64_t value);
    SqliteStatement& bindNull(int index);

    // True while a row is available; throws on errors.
    bool step();
    // Runs a statement that returns no rows.
    void run();
    // The first column of the first row (0 without rows); ends the statement, so that no
    // read snapshot stays open and changes of other processes become visible.
    std::int64_t singleInteger();

    std::int64_t integer(int column) const;
    std::string text(int column) const;
    bool isNull(int column) const;

private:
    [[noreturn]] void fail(const std::string& what) const;

    sqlite3* database;
    sqlite3_stmt* handle = nullptr;
    const std::string& where; // the database's description for messages
};

class SqliteDatabase {
public:
    enum class Access { readWrite, readOnly };

    // Opens (read-write: creates) the file. Read-only access also reads a catalog whose file
    // or folder the user may not write, as long as nobody writes it meanwhile.
    explicit SqliteDatabase(const std::filesystem::path& file, Access access = Access::readWrite);
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    // Runs SQL without parameters (schema, pragmas, transaction control).
    void execute(const std::string& sql);
    // The statement for this SQL, prepared on first use and reset for this one.
    SqliteStatement& prepare(const std::string& sql);
    std::int64_t lastInsertedRow() const;
    int changes() const;
    bool inTransaction() const;
    bool isReadOnly() const { return access == Access::readOnly; }
    const std::filesystem::path& file() const { return path; }
    // "catalog /path/library.db", the prefix of every error message.
    const std::string& description() const { return where; }

private:
    void open(const std::string& name, int flags);

    std::filesystem::path path;
    Access access;
    std::string where;
    sqlite3* handle = nullptr;
    std::unordered_map<std::string, std::unique_ptr<SqliteStatement>> statements;
};

// BEGIN IMMEDIATE on construction, ROLLBACK on destruction unless committed: a multi-row
// change is all or nothing, also when an exception leaves the scope. A read transaction
// (plain BEGIN) gives many queries one snapshot and one set of locks instead of one each.
// Inside an open transaction a new one joins it: the outermost commits or rolls back.
class SqliteTransaction {
public:
    enum class Mode { write, read };
    explicit SqliteTransaction(SqliteDatabase& database, Mode mode = Mode::write);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;
    void commit();

private:
    SqliteDatabase& database;
    bool finished = false;
    bool joined = false;
};

} // namespace Vellumine
