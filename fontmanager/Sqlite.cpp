#include "fontmanager/Sqlite.h"

#include <sqlite3.h>

namespace Vellumine {

namespace {

// How long a writer waits for another process (the CLI beside a running server) to
// finish its transaction before giving up with SqliteBusy.
constexpr int busyTimeoutMillis = 10000;

bool isBusy(int code) {
    const int primary = code & 0xFF;
    return primary == SQLITE_BUSY || primary == SQLITE_LOCKED;
}

[[noreturn]] void raise(int code, const std::string& where, const std::string& message) {
    if (isBusy(code)) {
        throw SqliteBusy(where + " is busy (another vellumine holds it): " + message);
    }
    throw SqliteError(where + ": " + message);
}

} // namespace

SqliteStatement::SqliteStatement(sqlite3* database, const std::string& sql,
                                 const std::string& where)
    : database(database), where(where) {
    if (sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size()), &handle, nullptr) !=
        SQLITE_OK) {
        fail("cannot prepare statement");
    }
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(handle);
}

void SqliteStatement::fail(const std::string& what) const {
    raise(sqlite3_extended_errcode(database), where, what + ": " + sqlite3_errmsg(database));
}

SqliteStatement& SqliteStatement::reset() {
    sqlite3_reset(handle);
    sqlite3_clear_bindings(handle);
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, const std::string& value) {
    if (sqlite3_bind_text(handle, index, value.data(), static_cast<int>(value.size()),
                          SQLITE_TRANSIENT) != SQLITE_OK) {
        fail("cannot bind text");
    }
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, std::int64_t value) {
    if (sqlite3_bind_int64(handle, index, value) != SQLITE_OK) {
        fail("cannot bind integer");
    }
    return *this;
}

SqliteStatement& SqliteStatement::bindNull(int index) {
    if (sqlite3_bind_null(handle, index) != SQLITE_OK) {
        fail("cannot bind null");
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
    const int code = sqlite3_extended_errcode(database);
    sqlite3_reset(handle);
    raise(code, where, message);
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

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, Access access)
    : path(file), access(access), where("catalog " + file.string()) {
    if (access == Access::readWrite) {
        open(file.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        return;
    }
    // A catalog in WAL mode needs its shared-memory file to be read; where the user may not
    // create that file, it is read as immutable instead (nobody can write it then anyway).
    try {
        open(file.string(), SQLITE_OPEN_READONLY);
        prepare("SELECT count(*) FROM sqlite_master").singleInteger();
    } catch (const SqliteError&) {
        statements.clear();
        sqlite3_close(handle);
        handle = nullptr;
        open("file:" + file.string() + "?immutable=1", SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    }
}

void SqliteDatabase::open(const std::string& name, int flags) {
    if (sqlite3_open_v2(name.c_str(), &handle, flags, nullptr) != SQLITE_OK) {
        const std::string message = handle != nullptr ? sqlite3_errmsg(handle) : "out of memory";
        sqlite3_close(handle);
        handle = nullptr;
        throw SqliteError("cannot open " + where + ": " + message);
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
        raise(sqlite3_extended_errcode(handle), where, message);
    }
}

SqliteStatement& SqliteDatabase::prepare(const std::string& sql) {
    auto found = statements.find(sql);
    if (found == statements.end()) {
        found =
            statements.emplace(sql, std::make_unique<SqliteStatement>(handle, sql, where)).first;
    }
    return found->second->reset();
}

std::int64_t SqliteDatabase::lastInsertedRow() const {
    return sqlite3_last_insert_rowid(handle);
}

int SqliteDatabase::changes() const {
    return sqlite3_changes(handle);
}

bool SqliteDatabase::inTransaction() const {
    return sqlite3_get_autocommit(handle) == 0;
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database, Mode mode) : database(database) {
    joined = database.inTransaction();
    if (!joined) {
        database.execute(mode == Mode::write ? "BEGIN IMMEDIATE" : "BEGIN");
    }
}

SqliteTransaction::~SqliteTransaction() {
    if (!finished && !joined) {
        try {
            database.execute("ROLLBACK");
        } catch (const std::exception&) {
            // nothing more can be done from a destructor; SQLite rolls back on close
        }
    }
}

void SqliteTransaction::commit() {
    if (!joined) {
        database.execute("COMMIT");
    }
    finished = true;
}

} // namespace Vellumine
