#pragma once

#include "link/FontInfo.h"
#include "sdk/ITreeView.h"

#include <vector>

class TreeViewDataNode;

// The fonts dialog's view of the tree's selection.
namespace FontTreeSelection {

// The nodes of the selected rows in selection order, up to the first identity that is not
// a font node.
std::vector<const TreeViewDataNode*> selectedNodes(const NodeIDList& selected);

// The records the buttons act on: one per selected row whose font is neither pending in
// the font manager nor replaced. Each record is set to activate from its row's container,
// so a selected match row makes its font activate from that match.
VLMFontList selectedRecords(const NodeIDList& selected);

} // namespace FontTreeSelection
