#include "PrivatePostgres.h"

#include "fontmanager/LibraryLocation.h"
#include "fontmanager/Postgres.h"

#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <pwd.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace VellumineTest {

namespace {

// Debian installs the server's programs per major version (/usr/lib/postgresql/15/bin);
// the newest one wins.
std::filesystem::path serverPrograms() {
    if (const char* own = std::getenv("VELLUMINE_TEST_PG_BIN")) {
        return own;
    }
    std::filesystem::path best;
    int bestVersion = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator entries("/usr/lib/postgresql", error), end;
         !error && entries != end; entries.increment(error)) {
        const int version = std::atoi(entries->path().filename().c_str());
        if (version > bestVersion && std::filesystem::exists(entries->path() / "bin" / "pg_ctl")) {
            best = entries->path() / "bin";
            bestVersion = version;
        }
    }
    return best;
}

} // namespace

PrivatePostgres::PrivatePostgres() : bin(serverPrograms()) {
    std::string folder = "/tmp/vlm-pg-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) {
        problem = "cannot make a temporary folder";
        return;
    }
    create(folder);
}

PrivatePostgres::PrivatePostgres(const std::filesystem::path& folder, Use use)
    : bin(serverPrograms()) {
    if (use == Use::attach) {
        root = folder;
        owning = false;
        asPostgresUser = geteuid() == 0;
        ready = running = std::filesystem::exists(folder / ".s.PGSQL.5432");
        if (!ready) {
            problem = "no server at " + folder.string();
        }
        return;
    }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    create(folder);
}

void PrivatePostgres::create(const std::filesystem::path& folder) {
    root = folder;
    if (bin.empty() || !std::filesystem::exists(bin / "initdb")) {
        problem = "the PostgreSQL server's programs (initdb, pg_ctl) are not installed; "
                  "install Debian's postgresql package to run these tests";
        return;
    }
    asPostgresUser = geteuid() == 0;
    if (asPostgresUser) {
        const passwd* postgres = getpwnam("postgres");
        if (postgres == nullptr) {
            problem = "running as root, and there is no postgres system user to run the server";
            return;
        }
        if (chown(root.c_str(), postgres->pw_uid, postgres->pw_gid) != 0) {
            problem = "cannot give " + root.string() + " to the postgres user";
            return;
        }
    }
    if (run({"initdb", "-D", (root / "data").string(), "-A", "trust", "-U", superuser, "--no-sync",
             "-E", "UTF8"},
            "initdb.log") != 0) {
        problem = "initdb failed; see " + (root / "initdb.log").string();
        return;
    }
    start();
    ready = running;
    if (!ready) {
        problem = "the private PostgreSQL server did not start; see " + (root / "log").string();
    }
}

PrivatePostgres::~PrivatePostgres() {
    if (!owning) {
        return;
    }
    stop();
    if (!root.empty() && ready) {
        std::error_code error;
        std::filesystem::remove_all(root, error);
    }
}

PrivatePostgres& PrivatePostgres::shared() {
    // Under CTest, one cluster started for the whole run (a fixture) serves every test
    // process; a test program run on its own starts its own.
    static PrivatePostgres cluster = [] {
        const char* running = std::getenv("VELLUMINE_TEST_PG_HOST");
        if (running != nullptr &&
            std::filesystem::exists(std::filesystem::path(running) / ".s.PGSQL.5432")) {
            return PrivatePostgres(running, Use::attach);
        }
        return PrivatePostgres();
    }();
    return cluster;
}

// Runs a program of the server's (as the postgres user when root), its output into `log`.
int PrivatePostgres::run(std::vector<std::string> arguments, const std::string& log) const {
    arguments.insert(arguments.begin(), (bin / arguments.front()).string());
    arguments.erase(arguments.begin() + 1);
    if (asPostgresUser) {
        arguments.insert(arguments.begin(), {"runuser", "-u", "postgres", "--"});
    }
    const pid_t child = fork();
    if (child == 0) {
        const int output = open((root / log).c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        dup2(output, 1);
        dup2(output, 2);
        std::vector<char*> argv;
        for (auto& argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void PrivatePostgres::start() {
    if (running) {
        return;
    }
    // fsync off: the cluster is thrown away after the tests, and they should be quick.
    running =
        run({"pg_ctl", "-D", (root / "data").string(), "-l", (root / "log").string(), "-w", "-o",
             "-c listen_addresses='' -c unix_socket_directories=" + root.string() +
                 " -c fsync=off -c max_connections=40",
             "start"},
            "pg_ctl.log") == 0;
}

void PrivatePostgres::stop() {
    if (!running) {
        return;
    }
    run({"pg_ctl", "-D", (root / "data").string(), "-m", "fast", "-w", "stop"}, "pg_ctl.log");
    running = false;
}

std::string PrivatePostgres::url(const std::string& database, const std::string& role) const {
    return "postgresql:///" + database + "?host=" + root.string() + "&user=" + role;
}

void PrivatePostgres::execute(const std::string& database, const std::string& sql) const {
    const auto location = Vellumine::LibraryLocation::parse(url(database), "test");
    Vellumine::PgConnection connection(location.url, location.shown());
    connection.execute(sql);
}

std::string PrivatePostgres::createDatabase() {
    // Unique across the processes that share one cluster.
    const std::string name =
        "library_" + std::to_string(getpid()) + "_" + std::to_string(++databases);
    execute("postgres", "CREATE DATABASE " + name);
    return url(name);
}

std::string databaseOf(const std::string& url) {
    const auto start = url.find(":///") + 4;
    return url.substr(start, url.find('?') - start);
}

} // namespace VellumineTest
