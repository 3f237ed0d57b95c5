#include "foundation/IXmlNode.h"

namespace Tamrik {

namespace {

bool isTag(const IXmlNode* node) {
    return !node->isText() && !node->isComment();
}

} // namespace

IXmlNode* IXmlNode::getFirstTagChild() const {
    IXmlNode* child = getFirstChild();
    while (child != nullptr && !isTag(child)) {
        child = child->getNextNode();
    }
    return child;
}

IXmlNode* IXmlNode::getNextTagNode() const {
    IXmlNode* sibling = getNextNode();
    while (sibling != nullptr && !isTag(sibling)) {
        sibling = sibling->getNextNode();
    }
    return sibling;
}

IXmlNode* IXmlNode::getFirstChild(const std::string& name) const {
    for (IXmlNode* child = getFirstChild(); child != nullptr; child = child->getNextNode()) {
        if (child->getName() == name) {
            return child;
        }
    }
    return nullptr;
}

std::vector<IXmlNode*> IXmlNode::getChildren() const {
    std::vector<IXmlNode*> children;
    for (IXmlNode* child = getFirstChild(); child != nullptr; child = child->getNextNode()) {
        children.push_back(child);
    }
    return children;
}

std::vector<IXmlNode*> IXmlNode::getChildren(const std::string& name) const {
    std::vector<IXmlNode*> children;
    for (IXmlNode* child = getFirstChild(); child != nullptr; child = child->getNextNode()) {
        if (child->getName() == name) {
            children.push_back(child);
        }
    }
    return children;
}

} // namespace Tamrik
