#include "fontmanager/Postgres.h"

#include "fontmanager/Libpq.h"

#include <algorithm>
#include <cstdlib>

namespace Vellumine {

namespace {

const std::string insufficientPrivilege = "42501";
constexpr auto reconnectPause = std::chrono::seconds(3);

std::string firstLine(std::string text) {
    text = text.substr(0, text.find('\n'));
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

// "INSERT INTO faces …" → "INSERT": the right a statement needs, for the permission message.
std::string statementVerb(const std::string& sql) {
    const auto start = sql.find_first_not_of(" \n");
    const auto end = sql.find_first_of(" \n", start);
    return start == std::string::npos ? std::string() : sql.substr(start, end - start);
}

} // namespace

bool PostgresError::isTransient() const {
    // serialization failure, deadlock, and a referenced row deleted meanwhile
    return state == "40001" || state == "40P01" || state == "23503";
}

void PgResult::clear(pg_result* result) {
    libpq().PQclear(result);
}

int PgResult::rows() const {
    return libpq().PQntuples(handle.get());
}

std::string PgResult::text(int row, int column) const {
    return std::string(libpq().PQgetvalue(handle.get(), row, column),
                       static_cast<std::size_t>(libpq().PQgetlength(handle.get(), row, column)));
}

std::int64_t PgResult::integer(int row, int column) const {
    return std::strtoll(libpq().PQgetvalue(handle.get(), row, column), nullptr, 10);
}

bool PgResult::isNull(int row, int column) const {
    return libpq().PQgetisnull(handle.get(), row, column) != 0;
}

PgConnection::PgConnection(std::string conninfo, std::string shown)
    : conninfo(std::move(conninfo)), where("library " + std::move(shown)) {
    connect();
}

PgConnection::~PgConnection() {
    libpq().PQfinish(connection);
}

void PgConnection::connect() {
    libpq().PQfinish(connection);
    connection = nullptr;
    prepared.clear();
    if (remembering && std::chrono::steady_clock::now() < retryAfter) {
        throw PostgresUnreachable(lastFailure, "08001");
    }
    // A library behind a dead host must not hold a command (or the server) for minutes: a
    // time-out the URL does not set itself.
    const char* const keywords[] = {"connect_timeout", "dbname", nullptr};
    const char* const values[] = {"10", conninfo.c_str(), nullptr};
    connection = libpq().PQconnectdbParams(keywords, values, 1);
    if (libpq().PQstatus(connection) != CONNECTION_OK) {
        lastFailure = where + " is unreachable: " + firstLine(libpq().PQerrorMessage(connection));
        libpq().PQfinish(connection);
        connection = nullptr;
        retryAfter = std::chrono::steady_clock::now() + reconnectPause;
        throw PostgresUnreachable(lastFailure, "08001");
    }
    // Notices (NOTICE: relation exists, skipping) are the database's business, not the user's.
    libpq().PQsetNoticeProcessor(
        connection, [](void*, const char*) {}, nullptr);
}

bool PgConnection::isOpen() const {
    return connection != nullptr && libpq().PQstatus(connection) == CONNECTION_OK;
}

void PgConnection::ensureOpen() {
    if (!isOpen()) {
        connect();
    }
}

int PgConnection::socket() const {
    return isOpen() ? libpq().PQsocket(connection) : -1;
}

void PgConnection::fail(pg_result* result, const std::string& sql) {
    const char* code =
        result != nullptr ? libpq().PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    const std::string state = code != nullptr ? code : "";
    const char* primary =
        result != nullptr ? libpq().PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY) : nullptr;
    const std::string message =
        primary != nullptr ? std::string(primary) : firstLine(libpq().PQerrorMessage(connection));
    libpq().PQclear(result);
    if (libpq().PQstatus(connection) != CONNECTION_OK) {
        throw PostgresUnreachable(where + " is unreachable: " + message, state);
    }
    if (state == insufficientPrivilege) {
        throw PostgresError(where + ": role " + currentUser() + " lacks the " + statementVerb(sql) +
                                " right (" + message +
                                "); changing the library needs `vellumine grant ROLE write`",
                            state);
    }
    throw PostgresError(where + ": " + message, state);
}

std::string PgConnection::currentUser() {
    return libpq().PQuser(connection) != nullptr ? libpq().PQuser(connection) : "?";
}

void PgConnection::execute(const std::string& sql) {
    ensureOpen();
    PGresult* result = libpq().PQexec(connection, sql.c_str());
    const auto status = libpq().PQresultStatus(result);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        fail(result, sql);
    }
    libpq().PQclear(result);
}

PgResult PgConnection::query(const std::string& sql, const std::vector<PgParam>& params) {
    return run(sql, params, 0);
}

PgResult PgConnection::queryBinary(const std::string& sql, const std::vector<PgParam>& params) {
    return run(sql, params, 1);
}

// A bound on the answers remembered: a server's queries repeat (the same names asked for
// again), so the bound is reached only by unusual use, and then memory starts afresh.
constexpr std::size_t rememberedAnswers = 20000;

PgResult PgConnection::run(const std::string& sql, const std::vector<PgParam>& params,
                           int resultFormat) {
    if (!remembering || statementVerb(sql) != "SELECT") {
        return runOnServer(sql, params, resultFormat);
    }
    std::string key = sql + '\0' + std::to_string(resultFormat);
    for (const auto& param : params) {
        key += (param.isNull ? '\1' : '\0') + param.value + '\0';
    }
    try {
        PgResult result = runOnServer(sql, params, resultFormat);
        if (answers.size() >= rememberedAnswers) {
            answers.clear();
        }
        answers[key] = result.handle;
        return result;
    } catch (const PostgresUnreachable&) {
        const auto known = answers.find(key);
        if (known == answers.end()) {
            throw;
        }
        return PgResult(known->second);
    }
}

PgResult PgConnection::runOnServer(const std::string& sql, const std::vector<PgParam>& params,
                                   int resultFormat) {
    ensureOpen();
    auto name = prepared.find(sql);
    if (name == prepared.end()) {
        const std::string statement = "vlm" + std::to_string(prepared.size());
        PGresult* result =
            libpq().PQprepare(connection, statement.c_str(), sql.c_str(), 0, nullptr);
        if (libpq().PQresultStatus(result) != PGRES_COMMAND_OK) {
            fail(result, sql);
        }
        libpq().PQclear(result);
        name = prepared.emplace(sql, statement).first;
    }
    std::vector<const char*> values;
    std::vector<int> lengths;
    std::vector<int> formats;
    for (const auto& param : params) {
        values.push_back(param.isNull ? nullptr : param.value.data());
        lengths.push_back(static_cast<int>(param.value.size()));
        formats.push_back(param.binary ? 1 : 0);
    }
    PGresult* result =
        libpq().PQexecPrepared(connection, name->second.c_str(), static_cast<int>(params.size()),
                               values.data(), lengths.data(), formats.data(), resultFormat);
    const auto status = libpq().PQresultStatus(result);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        fail(result, sql);
    }
    return PgResult(result);
}

std::vector<std::string> PgConnection::takeNotifications() {
    std::vector<std::string> payloads;
    if (!isOpen()) {
        return payloads;
    }
    if (libpq().PQconsumeInput(connection) == 0) {
        throw PostgresUnreachable(
            where + " is unreachable: " + firstLine(libpq().PQerrorMessage(connection)), "08006");
    }
    while (PGnotify* notice = libpq().PQnotifies(connection)) {
        payloads.emplace_back(notice->extra);
        libpq().PQfreemem(notice);
    }
    return payloads;
}

std::string PgConnection::quoteIdentifier(const std::string& name) {
    ensureOpen();
    char* quoted = libpq().PQescapeIdentifier(connection, name.data(), name.size());
    if (quoted == nullptr) {
        throw PostgresError(where + ": cannot quote '" + name + "'", "");
    }
    std::string result = quoted;
    libpq().PQfreemem(quoted);
    return result;
}

} // namespace Vellumine
