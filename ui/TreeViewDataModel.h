#pragma once

#include "ui/ITreeViewDataModel.h"
#include "ui/TreeViewDataNode.h"

#include <memory>
#include <vector>

// The font tree built from the document font suite's missing fonts: a root, one node per
// missing font, and under a font one node per matching font when the font manager can
// supply its type.
//
// Lifetime of nodes: the model owns every node of the tree it built and frees the whole
// tree when it builds the next one or is destroyed. That is safe because a tree is only
// replaced after the tree view dropped its rows, its selection and the identities they
// kept (ITreeViewMgr::ClearTree, which the dialog calls before every Rebuild), the tree
// widget destroys its rows before its add-ins, and the dialog reads the identities of a
// selection only within one call, never after a nested wait. So no identity can reach a
// discarded tree, and nothing of it leaks.
class TreeViewDataModel : public ITreeViewDataModel {
public:
    explicit TreeViewDataModel(IPMUnknown* treeWidget) : treeWidget_(treeWidget) {}
    ~TreeViewDataModel() override { deleteTree(); }
    TreeViewDataModel(const TreeViewDataModel&) = delete;
    TreeViewDataModel& operator=(const TreeViewDataModel&) = delete;

    TreeViewDataNode* GetRootNode() const override { return root_; }
    TreeViewDataNode* GetNode(const PMString&) const override { return nullptr; }
    const TreeViewDataNode* GetParentNode(const TreeViewDataNode* node) const override;
    int32 GetChildCount(const TreeViewDataNode* node) const override;
    TreeViewDataNode* GetNthChildNode(const TreeViewDataNode* node, long position) const override;
    int32 GetChildIndexFor(const TreeViewDataNode* parent,
                           const TreeViewDataNode* child) const override;
    void Rebuild() override;
    // True when the set of fonts or their replaced state differs from the tree's. The test
    // runs one way only, from the longer list into the shorter: other changes of state are
    // shown by refreshing the existing rows, not by a rebuild.
    bool NeedRebuild() override;

private:
    TreeViewDataNode* newNode(const Tamrik::SmartPointer<VLMFontInfo>& record, int32 level,
                              const TreeViewDataNode* parent, int32 sequence,
                              const std::string& container);
    void deleteTree();

    IPMUnknown* treeWidget_;
    TreeViewDataNode* root_ = nullptr;
    std::vector<std::unique_ptr<TreeViewDataNode>> nodes_; // every node of the current tree
};
