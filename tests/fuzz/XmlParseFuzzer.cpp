// Feeds arbitrary bytes to IXmlParser::parseString and walks whatever tree comes back the
// way the reply parsers do. A parse may fail only with Tamrik::Exception.
#include "foundation/Exception.h"
#include "foundation/IXmlParser.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

// Visits every node through the same calls the protocol's parsers make.
std::size_t walk(Tamrik::IXmlNode* node, int depth) {
    std::size_t visited = 0;
    for (; node != nullptr; node = node->getNextNode()) {
        ++visited;
        const std::string name = node->getName();
        visited += node->getContent().size() & 1;
        visited += node->getAttribute("cmd", "").size() & 1;
        if (node->getFirstTagChild() != nullptr) {
            visited += node->getChildren(name).size();
        }
        if (depth < 64) {
            visited += walk(node->getFirstChild(), depth + 1);
        }
    }
    return visited;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Tamrik::SmartPointer<Tamrik::IXmlParser> parser =
        Tamrik::IXmlParser::getInstance("LibXmlParser");
    try {
        parser->parseString(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const Tamrik::Exception&) {
        return 0;
    }
    walk(parser->getRootNode(), 0);
    return 0;
}
