#include "ui/FontTreeSelection.h"

#include "resources/VellumineIDs.h"
#include "ui/TreeViewDataNode.h"
#include "ui/VLMFontNodeID.h"

namespace FontTreeSelection {

std::vector<const TreeViewDataNode*> selectedNodes(const NodeIDList& selected) {
    std::vector<const TreeViewDataNode*> nodes;
    for (const NodeID& id : selected) {
        const TreeViewDataNode* node = VLMFontNodeID::NodeOf(id);
        if (!id.IsValid() || id.Get()->GetNodeType() != kVLMFontNodeType || !node)
            break;
        nodes.push_back(node);
    }
    return nodes;
}

VLMFontList selectedRecords(const NodeIDList& selected) {
    VLMFontList records;
    for (const TreeViewDataNode* node : selectedNodes(selected)) {
        auto record = node->GetData();
        if (!record || record->font.isTypeMatchingActive || record->stateFlag1)
            continue;
        record->selectedContainerID = node->GetContainerID();
        records.push_back(record);
    }
    return records;
}

} // namespace FontTreeSelection
