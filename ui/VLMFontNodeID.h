#pragma once

#include "sdk/ITreeView.h"

#include <string>

class TreeViewDataNode;

// The identity of one row of the font tree, as the host's tree view keeps it: a plain
// pointer to the model's node, valid as long as the tree it points into.
class VLMFontNodeID : public NodeIDClass {
public:
    static NodeID Create(const TreeViewDataNode* node, int unused = 0);
    static NodeID Create();
    // The node behind `id`, or null when it is not one of ours or names no node.
    static const TreeViewDataNode* NodeOf(const NodeID& id);

    int32 GetNodeType() const override;
    // Higher levels order first, lower sequence numbers first, then names.
    int32 Compare(const NodeIDClass* other) const override;
    NodeIDClass* Clone() const override { return new VLMFontNodeID(node_); }
    // Identities live in memory only: the stream carries a placeholder text, never the node.
    void Read(IPMStream* stream) override;
    void Write(IPMStream* stream) const override;
    PMString GetDescription() const override { return {}; }

    std::string GetContainerID() const;
    const TreeViewDataNode* GetNode() const { return node_; }

private:
    explicit VLMFontNodeID(const TreeViewDataNode* node) : node_(node) {}
    const TreeViewDataNode* node_;
};
