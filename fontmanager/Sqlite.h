#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace Vellumine {

// A thin, exception-based face of SQLite for the catalog: one connection, prepared
// statements kept for reuse, values always bound, never spliced into SQL text.
class SqliteStatement {
public:
    SqliteStatement(sqlite3* database, const std::string& sql);
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
    sqlite3* database;
    sqlite3_stmt* handle = nullptr;
};

class SqliteDatabase {
public:
    explicit SqliteDatabase(const std::filesystem::path& file);
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    // Runs SQL without parameters (schema, pragmas, transaction control).
    void execute(const std::string& sql);
    // The statement for this SQL, prepared on first use and reset for this one.
    SqliteStatement& prepare(const std::string& sql);
    std::int64_t lastInsertedRow() const;
    int changes() const;

private:
    sqlite3* handle = nullptr;
    std::unordered_map<std::string, std::unique_ptr<SqliteStatement>> statements;
};

// BEGIN IMMEDIATE on construction, ROLLBACK on destruction unless committed: a multi-row
// change is all or nothing, also when an exception leaves the scope. A read transaction
// (plain BEGIN) gives many queries one snapshot and one set of locks instead of one each.
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
};

} // namespace Vellumine
