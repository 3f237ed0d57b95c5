#include "fontmanager/Workstation.h"

#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace Vellumine {

namespace {

std::string trimmed(std::string text) {
    const auto end = text.find_last_not_of(" \t\r\n");
    text.erase(end == std::string::npos ? 0 : end + 1);
    return text;
}

} // namespace

std::string workstationId() {
    if (const char* own = std::getenv("VELLUMINE_MACHINE_ID"); own != nullptr && *own != '\0') {
        return own;
    }
    std::ifstream file("/etc/machine-id");
    std::string id;
    if (std::getline(file, id) && !trimmed(id).empty()) {
        return trimmed(id);
    }
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    return std::string("host:") + host;
}

} // namespace Vellumine
