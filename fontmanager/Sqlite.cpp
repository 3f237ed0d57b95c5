#include "fontmanager/Sqlite.h"

#include <sqlite3.h>
#include <stdexcept>

namespace Vellumine {

namespace {

// How long a writer waits for another process (the CLI beside a running server) to
// finish its transaction before giving up.
constexpr int busyTimeoutMillis = 10000;

[[noreturn]] void fail(sqlite3* database, const std::string& what) {
    throw std::runtime_error("catalog: " + what + ": " + sqlite3_errmsg(database));
}

} // namespace

SqliteStatement::SqliteStatement(sqlite3* database, const std::string& sql) : database(database) {
    if (sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size()), &handle, nullptr) !=
        SQLITE_OK) {
        fail(database, "cannot prepare statement");
    }
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(handle);
}

SqliteStatement& SqliteStatement::reset() {
    sqlite3_reset(handle);
    sqlite3_clear_bindings(handle);
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, const std::string& value) {
    if (sqlite3_bind_text(handle, index, value.data(), static_cast<int>(value.size()),
                          SQLITE_TRANSIENT) != SQLITE_OK) {
        fail(database, "cannot bind text");
    }
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, std::int64_t value) {
    if (sqlite3_bind_int64(handle, index, value) != SQLITE_OK) {
        fail(database, "cannot bind integer");
    }
    return *this;
}

SqliteStatement& SqliteStatement::bindNull(int index) {
    if (sqlite3_bind_null(handle, index) != SQLITE_OK) {
        fail(database, "cannot bind null");
    }
    return *this;
}

bool SqliteStatement::step() {
    const int result = sqlite3_step(handle);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result == SQLITE_DONE) {
        sqlite3_reset(handle); // ends the implicit read transaction at once
        return false;
    }
    const std::string message = sqlite3_errmsg(database);
    sqlite3_reset(handle);
    throw std::runtime_error("catalog: " + message);
}

void SqliteStatement::run() {
    while (step()) {
    }
}

std::int64_t SqliteStatement::singleInteger() {
    const std::int64_t value = step() ? integer(0) : 0;
    sqlite3_reset(handle);
    return value;
}

std::int64_t SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(handle, column);
}

std::string SqliteStatement::text(int column) const {
    const auto* bytes = sqlite3_column_text(handle, column);
    if (bytes == nullptr) {
        return {};
    }
    return std::string(reinterpret_cast<const char*>(bytes),
                       static_cast<std::size_t>(sqlite3_column_bytes(handle, column)));
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(handle, column) == SQLITE_NULL;
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file) {
    if (sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        const std::string message = handle != nullptr ? sqlite3_errmsg(handle) : "out of memory";
        sqlite3_close(handle);
        throw std::runtime_error("catalog: cannot open " + file.string() + ": " + message);
    }
    sqlite3_busy_timeout(handle, busyTimeoutMillis);
}

SqliteDatabase::~SqliteDatabase() {
    statements.clear(); // statements must be finalized before the connection closes
    sqlite3_close(handle);
}

void SqliteDatabase::execute(const std::string& sql) {
    char* error = nullptr;
    if (sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        const std::string message = error != nullptr ? error : sqlite3_errmsg(handle);
        sqlite3_free(error);
        throw std::runtime_error("catalog: " + message);
    }
}

SqliteStatement& SqliteDatabase::prepare(const std::string& sql) {
    auto found = statements.find(sql);
    if (found == statements.end()) {
        found = statements.emplace(sql, std::make_unique<SqliteStatement>(handle, sql)).first;
    }
    return found->second->reset();
}

std::int64_t SqliteDatabase::lastInsertedRow() const {
    return sqlite3_last_insert_rowid(handle);
}

int SqliteDatabase::changes() const {
    return sqlite3_changes(handle);
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database, Mode mode) : database(database) {
    database.execute(mode == Mode::write ? "BEGIN IMMEDIATE" : "BEGIN");
}

SqliteTransaction::~SqliteTransaction() {
    if (!finished) {
        try {
            database.execute("ROLLBACK");
        } catch (const std::exception&) {
            // nothing more can be done from a destructor; SQLite rolls back on close
        }
    }
}

void SqliteTransaction::commit() {
    database.execute("COMMIT");
    finished = true;
}

} // namespace Vellumine
