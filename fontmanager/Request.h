#pragma once

#include <string>
#include <vector>

namespace Vellumine {

// One <font> block of a request, with the raw (unescaped) values the application wrote.
struct RequestFont {
    std::string syncID;
    std::string psName;
    std::string type;
    std::string familyName;
    std::string styleName;
    std::string containerID;
};

// A request as the plug-in sends it: "fontRequest", "activationRequest", "showRequest"
// or "buyRequest", with its header elements and fonts in request order.
struct Request {
    std::string command;
    std::string targetApp;
    std::string targetClass;
    std::string protocolVersion;
    std::vector<RequestFont> fonts;
};

} // namespace Vellumine
