#pragma once

#include "link/FontInfo.h"
#include "sdk/HostTypes.h"
#include "sdk/K2Vector.h"

#include <string>

// One node of the font tree: the invisible root (level 1), a document font (level 2) or a
// matching font the font manager holds for it (level 3). A node does not own its
// children; the tree model owns every node of the tree it built.
class TreeViewDataNode {
public:
    TreeViewDataNode() = default;
    TreeViewDataNode(const TreeViewDataNode&) = delete;
    TreeViewDataNode& operator=(const TreeViewDataNode&) = delete;
    virtual ~TreeViewDataNode() = default;

    // No bounds check: callers pass positions below ChildCount().
    TreeViewDataNode* GetNthChild(long position) const {
        return children[static_cast<std::size_t>(position)];
    }
    void AddChild(TreeViewDataNode* child) {
        child->positionInParent = ChildCount();
        children.push_back(child);
    }
    int32 ChildCount() const { return static_cast<int32>(children.size()); }
    // Where AddChild put this node among its parent's children (-1 before), so that a row's
    // index is found without searching its siblings: a font may have thousands.
    int32 GetPositionInParent() const { return positionInParent; }

    const TreeViewDataNode* GetParent() const { return parent; }
    void SetParent(const TreeViewDataNode* node) { parent = node; }

    void SetData(const Tamrik::SmartPointer<VLMFontInfo>& record) { data = record; }
    Tamrik::SmartPointer<VLMFontInfo> GetData() const { return data; }

    // The font manager's container from which this row's font would be activated.
    std::string GetContainerID() const { return containerID; }
    void SetContainerID(const std::string& id) { containerID = id; }
    // A matching font's row: the font manager's description of its face (file, folder,
    // state). Kept on the node because the container does not tell candidates apart: the
    // faces the system has share an empty one.
    const std::string& GetDescription() const { return description; }
    void SetDescription(const std::string& text) { description = text; }

    int32 GetLevel() const { return level; }
    void SetLevel(int32 value) { level = value; }
    int32 GetSequenceNumber() const { return sequenceNumber; }
    void SetSequenceNumber(int32 value) { sequenceNumber = value; }

private:
    K2Vector<TreeViewDataNode*> children;
    Tamrik::SmartPointer<VLMFontInfo> data;
    const TreeViewDataNode* parent = nullptr;
    std::string containerID;
    std::string description;
    int32 level = 1;
    int32 sequenceNumber = -1;
    int32 positionInParent = -1;
};
