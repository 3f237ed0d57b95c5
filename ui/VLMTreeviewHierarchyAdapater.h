#pragma once

#include "sdk/ITreeView.h"

class ITreeViewDataModel;

// The host tree view's walk over the font tree model (the model on the same tree widget),
// in font node identities.
class VLMTreeviewHierarchyAdapater : public ITreeViewHierarchyAdapter {
public:
    explicit VLMTreeviewHierarchyAdapater(IPMUnknown* treeWidget) : treeWidget_(treeWidget) {}

    NodeID GetRootNode() const override;
    NodeID GetParentNode(const NodeID& node) const override;
    int32 GetNumChildren(const NodeID& node) const override;
    NodeID GetNthChild(const NodeID& node, const int32& nth) const override;
    int32 GetChildIndex(const NodeID& parent, const NodeID& child) const override;
    NodeID GetGenericNodeID() const override;

private:
    ITreeViewDataModel* model() const;
    IPMUnknown* treeWidget_;
};
