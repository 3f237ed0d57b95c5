#pragma once

#include "sdk/ITreeView.h"

// Makes the font tree's rows: a font row (resource 303) for a document font and a match
// row (resource 304) for each matching font under it, and fills them from the node's
// record. Rows are not indented: the tree's own disclosure shows the level.
class VLMTreeViewWidgetMgr : public CTreeViewWidgetMgr {
public:
    using CTreeViewWidgetMgr::CTreeViewWidgetMgr;

    IControlView* CreateWidgetForNode(const NodeID& node) const override;
    WidgetID GetWidgetTypeForNode(const NodeID& node) const override;
    bool ApplyNodeIDToWidget(const NodeID& node, IControlView* widget,
                             int32 message = 0) const override;
    double GetIndentForNode(const NodeID&) const override { return 0.0; }
};
