#include "foundation/LibXmlNode.h"

#include "foundation/LibXmlParser.h"

#include <libxml/entities.h>

namespace Tamrik {

namespace {

std::string takeXmlString(xmlChar* text) {
    if (text == nullptr) {
        return "";
    }
    std::string result(reinterpret_cast<const char*>(text));
    xmlFree(text);
    return result;
}

} // namespace

LibXmlNode::LibXmlNode(LibXmlParser* parser, xmlNodePtr node, LibXmlNode* parent,
                       bool keepsParserAlive)
    : parser(parser), parent(parent), node(node) {
    if (keepsParserAlive) {
        parserHandle = parser;
    }
}

LibXmlNode::~LibXmlNode() {
    delete firstChild;
    // Siblings are released in a loop, not through each other's destructors: a reply with
    // tens of thousands of elements must not take as many stack frames.
    LibXmlNode* sibling = nextSibling;
    nextSibling = nullptr;
    while (sibling != nullptr) {
        LibXmlNode* after = sibling->nextSibling;
        sibling->nextSibling = nullptr;
        delete sibling;
        sibling = after;
    }
}

bool LibXmlNode::hasChildren() const {
    return node->children != nullptr;
}

bool LibXmlNode::hasNextNode() const {
    return node->next != nullptr;
}

bool LibXmlNode::isText() const {
    return xmlNodeIsText(node) != 0;
}

bool LibXmlNode::isComment() const {
    return node->type == XML_COMMENT_NODE;
}

IXmlNode* LibXmlNode::getFirstChild() const {
    if (firstChild == nullptr && node->children != nullptr) {
        firstChild = new LibXmlNode(parser, node->children, const_cast<LibXmlNode*>(this), false);
    }
    return firstChild;
}

IXmlNode* LibXmlNode::getNextNode() const {
    if (nextSibling == nullptr && node->next != nullptr) {
        nextSibling = new LibXmlNode(parser, node->next, parent, false);
    }
    return nextSibling;
}

std::string LibXmlNode::getName() const {
    if (node->name == nullptr) {
        return "";
    }
    return reinterpret_cast<const char*>(node->name);
}

std::string LibXmlNode::getAttribute(const std::string& name,
                                     const std::string& defaultValue) const {
    if (xmlHasProp(node, BAD_CAST name.c_str()) == nullptr) {
        return defaultValue;
    }
    return takeXmlString(xmlGetProp(node, BAD_CAST name.c_str()));
}

std::string LibXmlNode::getContent() const {
    return takeXmlString(xmlNodeGetContent(node));
}

void LibXmlNode::setAttribute(const std::string& name, const std::string& value) {
    xmlNewProp(node, BAD_CAST name.c_str(), BAD_CAST value.c_str());
}

IXmlNode* LibXmlNode::addChild(const std::string& name) {
    xmlNodePtr child = xmlNewChild(node, nullptr, BAD_CAST name.c_str(), nullptr);
    return new LibXmlNode(parser, child, this, true);
}

void LibXmlNode::setContent(const std::string& text) {
    xmlNodeAddContent(node, BAD_CAST text.c_str());
}

void LibXmlNode::setContentCDATA(const std::string& text) {
    xmlChar* escaped = xmlEncodeSpecialChars(node->doc, BAD_CAST text.c_str());
    xmlNodeSetContent(node, escaped);
    xmlFree(escaped);
}

} // namespace Tamrik
