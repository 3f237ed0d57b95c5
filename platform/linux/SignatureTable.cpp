#include "platform/linux/SignatureTable.h"

namespace Platform::Linux {

const std::vector<SignatureEntry>& signatureTable() {
    static const std::vector<SignatureEntry> table = {
        {"VLMQ", "org.vellumine.Vellumine", "the font manager"},
        {"InDn", "org.galley.Galley", "Galley"},
    };
    return table;
}

std::optional<std::string> busNameForSignature(const std::string& signature) {
    for (const auto& entry : signatureTable()) {
        if (entry.signature == signature) {
            return entry.busName;
        }
    }
    return std::nullopt;
}

std::optional<std::string> signatureForBusName(const std::string& busName) {
    for (const auto& entry : signatureTable()) {
        if (entry.busName == busName) {
            return entry.signature;
        }
    }
    return std::nullopt;
}

std::optional<std::string> resolveTarget(const std::string& target) {
    if (auto name = busNameForSignature(target)) {
        return name;
    }
    // Every bus name holds a dot; a four-character signature never needs one.
    if (target.find('.') != std::string::npos) {
        return target;
    }
    return std::nullopt;
}

std::string describeApplication(const std::string& busName) {
    for (const auto& entry : signatureTable()) {
        if (entry.busName == busName) {
            return entry.role + " (" + busName + ")";
        }
    }
    return busName;
}

} // namespace Platform::Linux
