#pragma once

#include "sdk/HostTypes.h"
#include "sdk/IPMUnknown.h"
#include "sdk/K2Vector.h"
#include "sdk/PMString.h"
#include "sdk/ResourceName.h"

#include <memory>

class IControlView;
class IPMStream;

// The identity of one row of a tree view, defined by the plug-in that fills the tree.
// The host keeps identities for its rows and finds rows again by Compare() == 0.
class NodeIDClass {
public:
    virtual ~NodeIDClass() = default;
    virtual int32 GetNodeType() const = 0;
    // <0, 0 or >0: the host's order of two rows; 0 means the same row.
    virtual int32 Compare(const NodeIDClass* other) const = 0;
    virtual NodeIDClass* Clone() const = 0;
    virtual void Read(IPMStream* stream) = 0;
    virtual void Write(IPMStream* stream) const = 0;
    virtual PMString GetDescription() const = 0;
};

// Owns one NodeIDClass; copies clone it. An empty NodeID names no row.
class NodeID {
public:
    NodeID() = default;
    NodeID(NodeIDClass* adopted) : node_(adopted) {} // NOLINT: the host's holder converts
    NodeID(const NodeID& other) : node_(other.node_ ? other.node_->Clone() : nullptr) {}
    NodeID(NodeID&&) noexcept = default;
    NodeID& operator=(const NodeID& other) {
        if (this != &other)
            node_.reset(other.node_ ? other.node_->Clone() : nullptr);
        return *this;
    }
    NodeID& operator=(NodeID&&) noexcept = default;

    const NodeIDClass* Get() const { return node_.get(); }
    bool IsValid() const { return node_ != nullptr; }
    friend bool operator==(const NodeID& a, const NodeID& b) {
        if (!a.node_ || !b.node_)
            return a.node_ == b.node_;
        return a.node_->GetNodeType() == b.node_->GetNodeType() && a.node_->Compare(b.Get()) == 0;
    }

private:
    std::unique_ptr<NodeIDClass> node_;
};

using NodeIDList = K2Vector<NodeID>;

// The plug-in's view of its tree data, as the host walks it.
class ITreeViewHierarchyAdapter : public IPMUnknown {
public:
    virtual NodeID GetRootNode() const = 0;
    // An empty NodeID for the root.
    virtual NodeID GetParentNode(const NodeID& node) const = 0;
    virtual int32 GetNumChildren(const NodeID& node) const = 0;
    virtual NodeID GetNthChild(const NodeID& node, const int32& nth) const = 0;
    virtual int32 GetChildIndex(const NodeID& parent, const NodeID& child) const = 0;
    virtual NodeID GetGenericNodeID() const = 0;
    // Whether the host shows the root as a row (most trees hide it).
    virtual bool ShouldShowRootNode() const { return false; }
};

// Makes and fills the row widgets of a tree view.
class ITreeViewWidgetMgr : public IPMUnknown {
public:
    virtual IControlView* CreateWidgetForNode(const NodeID& node) const = 0;
    virtual WidgetID GetWidgetTypeForNode(const NodeID& node) const = 0;
    virtual bool ApplyNodeIDToWidget(const NodeID& node, IControlView* widget,
                                     int32 message = 0) const = 0;
    virtual double GetIndentForNode(const NodeID& node) const = 0;
};

// The base of a plug-in's widget manager: it lives on the tree widget and makes rows from
// the plug-in's row resources.
class CTreeViewWidgetMgr : public ITreeViewWidgetMgr {
public:
    explicit CTreeViewWidgetMgr(IPMUnknown* treeWidget) : treeWidget_(treeWidget) {}
    IControlView* GetTreeWidget() const;
    // A new row widget made from `row`, owned by the tree view; null when the resource
    // cannot be had.
    IControlView* CreateRowWidget(const RsrcSpec& row) const;

private:
    IPMUnknown* treeWidget_;
};

// The rows of a tree view.
class ITreeViewMgr {
public:
    virtual ~ITreeViewMgr() = default;
    // Drops every row (and the identities it kept), so no row outlives the data it shows.
    virtual void ClearTree(bool invalidate = true) = 0;
    // Makes the rows again from the hierarchy adapter's root.
    virtual void ChangeRoot(bool invalidate = true) = 0;
    // Makes the row of `node` show its data again (ApplyNodeIDToWidget).
    virtual void NodeChanged(const NodeID& node) = 0;
    virtual int32 RowCount() const = 0;
};

// A tree view's selection. Selection changes are announced on the tree widget's subject
// as kListSelectionChangedMessage on IID_ILISTCONTROLDATA.
class ITreeViewController {
public:
    virtual ~ITreeViewController() = default;
    // The selected rows, in the order they were selected.
    virtual void GetSelectedItems(NodeIDList& items) const = 0;
    virtual void Select(const NodeID& node, bool addToSelection = true, bool notify = true) = 0;
    virtual void Deselect(const NodeID& node, bool notify = true) = 0;
    virtual void DeselectAll(bool notify = true) = 0;
};
