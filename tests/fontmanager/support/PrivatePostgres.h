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
    PrivatePostgres();
    ~PrivatePostgres();
    PrivatePostgres(const PrivatePostgres&) = delete;
    PrivatePostgres& operator=(const PrivatePostgres&) = delete;

    // One cluster per test program: started on first use, stopped at exit.
    static PrivatePostgres& shared();

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
    int run(std::vector<std::string> arguments, const std::string& log) const;

    std::filesystem::path bin;
    std::filesystem::path root;
    bool ready = false;
    bool running = false;
    bool asPostgresUser = false;
    std::string problem;
    int databases = 0;
};

// The database name of a library URL made by PrivatePostgres ("postgresql:///db3?…" → "db3").
std::string databaseOf(const std::string& url);

} // namespace VellumineTest
