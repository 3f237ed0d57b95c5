#include "fontmanager/ContainerID.h"

namespace Vellumine {

std::optional<std::int64_t> parseContainerID(const std::string& text) {
    if (text.empty() || text.size() > 18) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
    }
    if (value <= 0) {
        return std::nullopt;
    }
    return value;
}

} // namespace Vellumine
