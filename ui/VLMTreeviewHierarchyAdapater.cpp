#include "ui/VLMTreeviewHierarchyAdapater.h"

#include "resources/VellumineIDs.h"
#include "sdk/IControlView.h"
#include "ui/ITreeViewDataModel.h"
#include "ui/TreeViewDataNode.h"
#include "ui/VLMFontNodeID.h"

namespace {

NodeID identityOf(const TreeViewDataNode* node) {
    return node ? VLMFontNodeID::Create(node) : NodeID();
}

} // namespace

ITreeViewDataModel* VLMTreeviewHierarchyAdapater::model() const {
    return QueryAddInAs<ITreeViewDataModel>(dynamic_cast<IControlView*>(treeWidget_),
                                            IID_ITREEVIEWDATAMODEL);
}

NodeID VLMTreeviewHierarchyAdapater::GetRootNode() const {
    ITreeViewDataModel* tree = model();
    return tree ? identityOf(tree->GetRootNode()) : NodeID();
}

NodeID VLMTreeviewHierarchyAdapater::GetParentNode(const NodeID& node) const {
    ITreeViewDataModel* tree = model();
    return tree ? identityOf(tree->GetParentNode(VLMFontNodeID::NodeOf(node))) : NodeID();
}

int32 VLMTreeviewHierarchyAdapater::GetNumChildren(const NodeID& node) const {
    ITreeViewDataModel* tree = model();
    return tree ? tree->GetChildCount(VLMFontNodeID::NodeOf(node)) : 0;
}

NodeID VLMTreeviewHierarchyAdapater::GetNthChild(const NodeID& node, const int32& nth) const {
    ITreeViewDataModel* tree = model();
    return tree ? identityOf(tree->GetNthChildNode(VLMFontNodeID::NodeOf(node), nth)) : NodeID();
}

int32 VLMTreeviewHierarchyAdapater::GetChildIndex(const NodeID& parent, const NodeID& child) const {
    ITreeViewDataModel* tree = model();
    return tree
               ? tree->GetChildIndexFor(VLMFontNodeID::NodeOf(parent), VLMFontNodeID::NodeOf(child))
               : -1;
}

NodeID VLMTreeviewHierarchyAdapater::GetGenericNodeID() const {
    return VLMFontNodeID::Create();
}
