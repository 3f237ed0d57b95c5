#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace VellumineTest {

// A PostgreSQL cluster of the tests' own: initdb and pg_ctl in a temporary folder, a unix
// socket there and no TCP port, trust authentication, stopped and removed with the object.
// As root (CI) the server runs as the `postgres` system user, which owns the folder; as
// anyone else it runs as that user. Every test takes a database of its own from it.
//
// When the server's programs are missing, available() is false and whyNot() says what to
// install, so that the tests skip instead of failing.
class PrivatePostgres {
public:
    enum class Use { create, attach };

    // A new cluster in a new temporary folder.
    PrivatePostgres();
    // create: a new cluster in `folder` (absent or empty), left running when detach()ed;
    // attach: the cluster running there, which this object neither stops nor removes.
    PrivatePostgres(const std::filesystem::path& folder, Use use);
    ~PrivatePostgres();
    PrivatePostgres(const PrivatePostgres&) = delete;
    PrivatePostgres& operator=(const PrivatePostgres&) = delete;

    // The cluster of the whole CTest run (VELLUMINE_TEST_PG_HOST names its folder), else
    // one of this program's, started on first use and stopped at exit. A test that stops
    // the database takes a cluster of its own instead, since others use this one.
    static PrivatePostgres& shared();
    // Leaves the cluster running after this object (for the CTest fixture that starts it).
    void detach() { owning = false; }
    // Stops and removes an attached cluster with this object (for the fixture's end).
    void adopt() { owning = true; }

    bool available() const { return ready; }
    const std::string& whyNot() const { return problem; }

    // A new, empty database; returns its library URL for the superuser.
    std::string createDatabase();
    // The library URL of `database` for `role` ("postgresql:///db?host=…&user=…").
    std::string url(const std::string& database, const std::string& role = superuser) const;
    // Runs SQL as the superuser in `database`; throws on failure.
    void execute(const std::string& database, const std::string& sql) const;

    void stop();
    void start();

    static constexpr const char* superuser = "postgres";

private:
    void create(const std::filesystem::path& folder);
    int run(std::vector<std::string> arguments, const std::string& log) const;

    std::filesystem::path bin;
    std::filesystem::path root;
    bool ready = false;
    bool running = false;
    bool asPostgresUser = false;
    bool owning = true;
    std::string problem;
    int databases = 0;
};

// The database name of a library URL made by PrivatePostgres ("postgresql:///db3?…" → "db3").
std::string databaseOf(const std::string& url);

} // namespace VellumineTest
