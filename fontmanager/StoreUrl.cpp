#include "fontmanager/StoreUrl.h"

#include "fontmanager/FaceDetails.h"
#include "fontmanager/FaceFiles.h"

#include <cctype>

namespace Vellumine {

bool isWebAddress(const std::string& text) {
    const auto startsWith = [&](const char* prefix) { return text.rfind(prefix, 0) == 0; };
    return (startsWith("https://") || startsWith("http://")) &&
           text.find_first_of(" \t\r\n\"'<>") == std::string::npos;
}

std::string storeSearchUrl(const std::string& urlTemplate, const std::string& name) {
    static const char* const hex = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 || c == '-' || c == '_' || c == '.' || c == '~') {
            encoded += c;
        } else {
            encoded += std::string("%") + hex[byte >> 4] + hex[byte & 0xF];
        }
    }
    std::string url = isWebAddress(urlTemplate) ? urlTemplate : defaultStoreUrl;
    for (auto at = url.find("%s"); at != std::string::npos; at = url.find("%s", at)) {
        url.replace(at, 2, encoded);
        at += encoded.size();
    }
    return url;
}

std::string buyUrl(Catalog& catalog, const std::string& postScriptName) {
    std::string name = postScriptName;
    for (const auto& face : catalog.facesByPostScriptName(postScriptName)) {
        const FaceDetails details =
            readFaceDetails(FaceFiles(catalog).readable(face), face.faceIndex);
        if (isWebAddress(details.vendorUrl)) {
            return details.vendorUrl;
        }
        name = face.family + " " + face.style;
    }
    return storeSearchUrl(catalog.storeUrl(), name);
}

} // namespace Vellumine
