#pragma once

#include "foundation/IXmlParser.h"

#include <libxml/tree.h>

namespace Tamrik {

class LibXmlNode;

// The libxml2 implementation of IXmlParser.
class LibXmlParser : public IXmlParser {
public:
    LibXmlParser() = default;
    ~LibXmlParser() override;

    void parse(const std::string& path) override;
    void parseString(const std::string& text) override;
    IXmlNode* getRootNode() const override;
    void write(const std::string& path) const override;
    void writeString(std::string& out) const override;
    IXmlNode* createRootNode(const std::string& name, const std::string& namespaceUri) override;

private:
    void cleanup();
    // Wraps the document's root element; raises "LibXml: Document empty." without one.
    void createRoot();
    [[noreturn]] static void raiseParseFailure(unsigned long lineWithRecord,
                                               unsigned long lineWithoutRecord);

    xmlDocPtr document = nullptr;
    LibXmlNode* rootNode = nullptr;
};

} // namespace Tamrik
