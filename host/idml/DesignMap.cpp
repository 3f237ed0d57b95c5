#include "host/idml/DesignMap.h"

#include "host/idml/IdmlError.h"

#include <charconv>
#include <unordered_set>

namespace Galley {

DesignMap DesignMap::parse(const std::string& file, xmlDoc* doc) {
    const xmlNode* root = xmlDocGetRootElement(doc);
    if (!isElement(root, "Document"))
        throw IdmlError(file, "designmap.xml", "root element is not <Document>");

    DesignMap map;
    map.domVersion = attribute(root, "DOMVersion").value_or("");
    std::unordered_set<std::string> listed;
    for (const xmlNode* child = root->children; child; child = child->next) {
        auto source = attribute(child, "src");
        if (!source)
            continue;
        if (isElement(child, "Story")) {
            if (listed.insert(*source).second)
                map.storyParts.push_back(*source);
        } else if (isElement(child, "Fonts"))
            map.fontsPart = *source;
        else if (isElement(child, "Styles"))
            map.stylesPart = *source;
    }
    return map;
}

bool isConvertedOnOpen(const std::string& domVersion) {
    int major = 0;
    const char* end = domVersion.data() + domVersion.size();
    auto result = std::from_chars(domVersion.data(), end, major);
    if (result.ec != std::errc() || result.ptr == domVersion.data())
        return true;
    return major < kNativeDomVersionMajor;
}

} // namespace Galley
