#pragma once

#include "foundation/IXmlNode.h"
#include "foundation/SmartPointer.h"

#include <string>

namespace Tamrik {

// An XML document. The parser owns the document and every node wrapper it hands out;
// node pointers become invalid at the next read, build, or the parser's destruction.
class IXmlParser : public SmartPointable {
public:
    ~IXmlParser() override = default;

    virtual void parse(const std::string& path) = 0;
    virtual void parseString(const std::string& text) = 0;
    virtual IXmlNode* getRootNode() const = 0;
    virtual void write(const std::string& path) const = 0;
    // Does nothing: out is left as it is.
    virtual void writeString(std::string& out) const = 0;
    virtual IXmlNode* createRootNode(const std::string& name, const std::string& namespaceUri) = 0;

    // "LibXmlParser" gives a new libxml2 parser; any other kind a null handle.
    static SmartPointer<IXmlParser> getInstance(const std::string& kind);
};

} // namespace Tamrik
