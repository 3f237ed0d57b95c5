// Starts and stops the private PostgreSQL cluster that a CTest run shares between its test
// processes (the `postgres_cluster` fixture):
//
//   private_postgres start FOLDER    a new cluster in FOLDER, left running
//   private_postgres stop FOLDER     stops it and removes FOLDER
//
// Without the server's programs, start says so and succeeds: the tests then skip.
#include "PrivatePostgres.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    if (argc != 3 || (std::strcmp(argv[1], "start") != 0 && std::strcmp(argv[1], "stop") != 0)) {
        std::fprintf(stderr, "usage: private_postgres start|stop FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[2];
    using VellumineTest::PrivatePostgres;
    if (std::strcmp(argv[1], "stop") == 0) {
        PrivatePostgres cluster(folder, PrivatePostgres::Use::attach);
        cluster.adopt();
        return 0;
    }
    {
        // What a run that was killed left behind.
        PrivatePostgres old(folder, PrivatePostgres::Use::attach);
        old.adopt();
    }
    std::error_code error;
    std::filesystem::remove_all(folder, error);
    PrivatePostgres cluster(folder, PrivatePostgres::Use::create);
    if (!cluster.available()) {
        std::printf("no shared cluster: %s\n", cluster.whyNot().c_str());
        return 0;
    }
    cluster.detach();
    std::printf("cluster running in %s\n", folder.c_str());
    return 0;
}
