#pragma once

#include "fontmanager/CatalogError.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct pg_conn;
struct pg_result;

namespace Vellumine {

// A failure of a PostgreSQL library; the message names the library (password masked).
class PostgresError : public CatalogError {
public:
    PostgresError(const std::string& message, std::string sqlState)
        : CatalogError(message), state(std::move(sqlState)) {}
    // The SQLSTATE code ("42501"), empty when the server gave none.
    const std::string& sqlState() const { return state; }
    // A serialization failure or deadlock: the transaction may simply be tried again.
    bool isTransient() const;

private:
    std::string state;
};

// The server cannot be reached (not running, refused, or the connection broke).
class PostgresUnreachable : public PostgresError {
public:
    using PostgresError::PostgresError;
};

// One value for a parameterised statement: text, an integer, SQL NULL, or raw bytes.
struct PgParam {
    std::string value;
    bool isNull = false;
    bool binary = false;

    PgParam(std::string text) : value(std::move(text)) {}
    PgParam(const char* text) : value(text) {}
    PgParam(std::int64_t number) : value(std::to_string(number)) {}
    static PgParam null() {
        PgParam param("");
        param.isNull = true;
        return param;
    }
    static PgParam bytes(std::string data) {
        PgParam param(std::move(data));
        param.binary = true;
        return param;
    }
};

// A query's rows; values come as text (integers parsed), bytea columns as raw bytes when
// the statement asked for binary results.
class PgResult {
public:
    explicit PgResult(pg_result* result) : handle(result, &clear) {}
    explicit PgResult(std::shared_ptr<pg_result> result) : handle(std::move(result)) {}
    int rows() const;
    std::string text(int row, int column) const;
    std::int64_t integer(int row, int column) const;
    bool isNull(int row, int column) const;
    // The first column of the first row as an integer, 0 without rows.
    std::int64_t single() const { return rows() > 0 ? integer(0, 0) : 0; }

private:
    static void clear(pg_result* result);
    friend class PgConnection;
    std::shared_ptr<pg_result> handle; // shared with remembered answers
};

// One libpq connection for the catalog: parameters always bound, never spliced into SQL;
// statements prepared once per connection. Errors become PostgresError naming the
// library; a broken connection is made again on the next call outside a transaction.
class PgConnection {
public:
    // `conninfo` goes to libpq as given; `shown` is the library URL as messages show it.
    PgConnection(std::string conninfo, std::string shown);
    ~PgConnection();
    PgConnection(const PgConnection&) = delete;
    PgConnection& operator=(const PgConnection&) = delete;

    // Runs SQL without parameters (transaction control, schema).
    void execute(const std::string& sql);
    PgResult query(const std::string& sql, const std::vector<PgParam>& params = {});
    // As query(), the results in binary (for bytea columns only).
    PgResult queryBinary(const std::string& sql, const std::vector<PgParam>& params);

    // The notifications that arrived ("channel" payloads), after reading what the socket has.
    std::vector<std::string> takeNotifications();
    // The connection's socket, -1 while it is broken.
    int socket() const;
    bool isOpen() const;
    // Connects anew when the connection broke; throws PostgresUnreachable when it cannot.
    void ensureOpen();
    // "library postgresql:///fonts?host=/run/postgresql"
    const std::string& description() const { return where; }
    // An identifier quoted for SQL ("ann" → "\"ann\"").
    std::string quoteIdentifier(const std::string& name);
    std::string currentUser();
    // From now on, a query that reads (SELECT) and cannot reach the server answers as it
    // last did, when it did; what changes anything still fails. For a server that keeps
    // answering its applications while the database is away: it also waits a few seconds
    // between attempts to connect, so that a silent host does not stall every query.
    void rememberAnswers() { remembering = true; }
    bool remembersAnswers() const { return remembering; }

private:
    void connect();
    PgResult run(const std::string& sql, const std::vector<PgParam>& params, int resultFormat);
    PgResult runOnServer(const std::string& sql, const std::vector<PgParam>& params,
                         int resultFormat);
    [[noreturn]] void fail(pg_result* result, const std::string& sql);

    std::string conninfo;
    std::string where;
    pg_conn* connection = nullptr;
    std::map<std::string, std::string> prepared; // SQL → statement name
    bool remembering = false;
    // While remembering: after a failed connection, when to try again, and why it failed.
    std::chrono::steady_clock::time_point retryAfter{};
    std::string lastFailure;
    std::map<std::string, std::shared_ptr<pg_result>> answers; // SQL and parameters → rows
};

} // namespace Vellumine
