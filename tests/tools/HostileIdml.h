#pragma once

#include <functional>
#include <string>
#include <vector>

// Hostile IDML packages, each small when compressed (well under 1 MB), for the tests, the
// benchmark and the fuzzer's seeds.
namespace IdmlTestKit {

struct HostileCase {
    std::string name;
    std::string part;   // the part the refusal names; empty when the package must open
    std::string detail; // a piece of the refusal; empty when the package must open
    std::function<void(const std::string& path)> write;
};

// Every kind of attack, with what Galley's default limits must make of it.
std::vector<HostileCase> hostileCases();

// Overwrites the CRC-32 that the container records for `part`, in its local and central
// headers alike, so that only the data disagrees.
void corruptCrc(const std::string& path, const std::string& part);

} // namespace IdmlTestKit
