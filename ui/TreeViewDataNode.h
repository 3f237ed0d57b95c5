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
    void AddChild(TreeViewDataNode* child) { children.push_back(child); }
    int32 ChildCount() const { return static_cast<int32>(children.size()); }

    const TreeViewDataNode* GetParent() const { return parent; }
    void SetParent(const TreeViewDataNode* node) { parent = node; }

    void SetData(const Tamrik::SmartPointer<VLMFontInfo>& record) { data = record; }
    Tamrik::SmartPointer<VLMFontInfo> GetData() const { return data; }

    // The font manager's container from which this row's font would be activated.
    std::string GetContainerID() const { return containerID; }
    void SetContainerID(const std::string& id) { containerID = id; }

    int32 GetLevel() const { return level; }
    void SetLevel(int32 value) { level = value; }
    int32 GetSequenceNumber() const { return sequenceNumber; }
    void SetSequenceNumber(int32 value) { sequenceNumber = value; }

private:
    K2Vector<TreeViewDataNode*> children;
    Tamrik::SmartPointer<VLMFontInfo> data;
    const TreeViewDataNode* parent = nullptr;
    std::string containerID;
    int32 level = 1;
    int32 sequenceNumber = -1;
};
