// idml_fuzz_seeds DIR: writes the IDML package fuzzer's seeds into DIR: the sample documents
// from their descriptions, and every hostile package small enough to mutate quickly.
#include "HostileIdml.h"
#include "IdmlBuilder.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: idml_fuzz_seeds DIR\n";
        return 2;
    }
    const fs::path dir = argv[1];
    fs::create_directories(dir);
    constexpr std::uintmax_t kLargestSeed = 64 * 1024;
    try {
        for (const auto& entry : fs::directory_iterator(GALLEY_TEST_DATA)) {
            if (entry.path().extension() != ".idmldesc")
                continue;
            std::stringstream text;
            text << std::ifstream(entry.path()).rdbuf();
            IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(text.str()),
                                   dir / (entry.path().stem().string() + ".idml"));
        }
        for (const auto& hostile : IdmlTestKit::hostileCases()) {
            const fs::path path = dir / ("hostile-" + hostile.name + ".idml");
            hostile.write(path);
            if (fs::file_size(path) > kLargestSeed)
                fs::remove(path);
        }
    } catch (const std::exception& error) {
        std::cerr << "idml_fuzz_seeds: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
