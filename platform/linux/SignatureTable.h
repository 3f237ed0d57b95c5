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
    std::string role; // what the application is to the user, for messages
};

// {"VLMQ", "org.vellumine.Vellumine", "the font manager"}, {"InDn", "org.galley.Galley",
// "Galley"}, in this order.
const std::vector<SignatureEntry>& signatureTable();

std::optional<std::string> busNameForSignature(const std::string& signature);
std::optional<std::string> signatureForBusName(const std::string& busName);

// A send target is either a signature from the table or a bus name (unique ":1.42" or
// well-known "org.example.App"). Returns the bus name, or nothing when `target` is neither.
std::optional<std::string> resolveTarget(const std::string& target);

// How messages to the user name the application owning `busName`: "the font manager
// (org.vellumine.Vellumine)", or the bus name alone when it is not in the table.
std::string describeApplication(const std::string& busName);

} // namespace Platform::Linux
