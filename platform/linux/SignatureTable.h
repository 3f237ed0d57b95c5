#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Platform::Linux {

// Four-character application signatures and the well-known session-bus names that the
// applications behind them own. An application runs exactly when its name has an owner.
struct SignatureEntry {
    std::string signature;
    std::string busName;
};

// {"VLMQ", "org.vellumine.Vellumine"} (the font manager), {"InDn", "org.galley.Galley"} (the
// host), in this order.
const std::vector<SignatureEntry>& signatureTable();

std::optional<std::string> busNameForSignature(const std::string& signature);
std::optional<std::string> signatureForBusName(const std::string& busName);

// A send target is either a signature from the table or a bus name (unique ":1.42" or
// well-known "org.example.App"). Returns the bus name, or nothing when `target` is neither.
std::optional<std::string> resolveTarget(const std::string& target);

} // namespace Platform::Linux
