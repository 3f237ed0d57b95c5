#pragma once

#include "foundation/IXmlNode.h"
#include "foundation/SmartPointer.h"

#include <libxml/tree.h>

namespace Tamrik {

class LibXmlParser;

// Wraps one libxml2 node. Child and sibling wrappers are made on first request and owned
// by this wrapper, so the same wrapper comes back for the same node. Wrappers never free
// libxml2 nodes: the document owns them.
//
// Wrappers reached by navigation live in the parser's own tree and point back at it
// without counting, which would otherwise make a reference cycle between the parser and
// its root. A wrapper handed out by addChild() belongs to the caller and holds a counted
// handle, so the document stays alive while the caller keeps it.
class LibXmlNode : public IXmlNode, public SmartPointable {
public:
    LibXmlNode(LibXmlParser* parser, xmlNodePtr node, LibXmlNode* parent, bool keepsParserAlive);
    ~LibXmlNode() override;
    LibXmlNode(const LibXmlNode&) = delete;
    LibXmlNode& operator=(const LibXmlNode&) = delete;

    using IXmlNode::getFirstChild;

    bool hasParent() const override { return parent != nullptr; }
    bool hasChildren() const override;
    bool hasNextNode() const override;
    bool isText() const override;
    bool isComment() const override;
    IXmlNode* getParent() const override { return parent; }
    IXmlNode* getFirstChild() const override;
    IXmlNode* getNextNode() const override;
    std::string getName() const override;
    std::string getAttribute(const std::string& name,
                             const std::string& defaultValue) const override;
    std::string getContent() const override;
    void setAttribute(const std::string& name, const std::string& value) override;
    IXmlNode* addChild(const std::string& name) override;
    void setContent(const std::string& text) override;
    void setContentCDATA(const std::string& text) override;

    void setParent(LibXmlNode* newParent) { parent = newParent; }
    xmlNodePtr getXmlNode() const { return node; }

private:
    LibXmlParser* parser;
    SmartPointer<LibXmlParser> parserHandle;
    LibXmlNode* parent;
    mutable LibXmlNode* firstChild = nullptr;
    mutable LibXmlNode* nextSibling = nullptr;
    xmlNodePtr node;
};

} // namespace Tamrik
