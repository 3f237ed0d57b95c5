#pragma once

#include "sdk/HostTypes.h"
#include "sdk/IPMUnknown.h"
#include "sdk/PMString.h"

class TreeViewDataNode;

// The data behind the fonts dialog's tree view, kept on the tree widget as the add-in
// IID_ITREEVIEWDATAMODEL. Null node arguments get neutral answers (null, 0 or -1).
class ITreeViewDataModel : public IPMUnknown {
public:
    virtual TreeViewDataNode* GetRootNode() const = 0;
    // Lookup by text is not offered: always null.
    virtual TreeViewDataNode* GetNode(const PMString& name) const = 0;
    virtual const TreeViewDataNode* GetParentNode(const TreeViewDataNode* node) const = 0;
    virtual int32 GetChildCount(const TreeViewDataNode* node) const = 0;
    virtual TreeViewDataNode* GetNthChildNode(const TreeViewDataNode* node,
                                              long position) const = 0;
    // The position of `child` among `parent`'s children, by identity; -1 if none.
    virtual int32 GetChildIndexFor(const TreeViewDataNode* parent,
                                   const TreeViewDataNode* child) const = 0;
    virtual void Rebuild() = 0;
    virtual bool NeedRebuild() = 0;
};
