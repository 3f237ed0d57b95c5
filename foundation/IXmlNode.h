#pragma once

#include <string>
#include <vector>

namespace Tamrik {

// A node of an IXmlParser's document. The navigation helpers marked "derived" are built
// from getFirstChild() and getNextNode().
class IXmlNode {
public:
    virtual ~IXmlNode() = default;

    virtual bool hasParent() const = 0;
    virtual bool hasChildren() const = 0;
    virtual bool hasNextNode() const = 0;
    virtual bool isText() const = 0;
    virtual bool isComment() const = 0;
    virtual IXmlNode* getParent() const = 0;
    virtual IXmlNode* getFirstChild() const = 0;
    // derived: first child that is neither text nor comment
    virtual IXmlNode* getFirstTagChild() const;
    virtual IXmlNode* getNextNode() const = 0;
    // derived: next sibling that is neither text nor comment
    virtual IXmlNode* getNextTagNode() const;
    virtual std::string getName() const = 0;
    virtual std::string getAttribute(const std::string& name,
                                     const std::string& defaultValue) const = 0;
    virtual std::string getContent() const = 0;
    // Adds an attribute even when one of that name exists already.
    virtual void setAttribute(const std::string& name, const std::string& value) = 0;
    // The returned wrapper belongs to the caller.
    virtual IXmlNode* addChild(const std::string& name) = 0;
    // Appends to the content.
    virtual void setContent(const std::string& text) = 0;
    // Escapes the text and replaces the content with it (no CDATA section is made).
    virtual void setContentCDATA(const std::string& text) = 0;
    // derived: first child of any type with exactly this name
    virtual IXmlNode* getFirstChild(const std::string& name) const;
    // derived: every child in document order, text and comments included
    virtual std::vector<IXmlNode*> getChildren() const;
    // derived: every child with exactly this name
    virtual std::vector<IXmlNode*> getChildren(const std::string& name) const;
};

} // namespace Tamrik
