#include "ui/TreeViewDataModel.h"

#include "document/IDFontSuite.h"
#include "sdk/IControlView.h"

#include <algorithm>

namespace {

VLMFontList currentMissingFonts() {
    VLM::IDFontSuite* suite = VLM::IDFontSuite::getFontSuite(false);
    return suite->getMissingFonts(suite->documentFonts, false);
}

// Whether `record` has a partner in `others` with the same syncID and replaced state.
bool hasPartner(const VLMFontInfo& record, const VLMFontList& others) {
    return std::any_of(others.begin(), others.end(),
                       [&](const Tamrik::SmartPointer<VLMFontInfo>& other) {
                           return other->font.syncID == record.font.syncID &&
                                  other->stateFlag1 == record.stateFlag1;
                       });
}

} // namespace

const TreeViewDataNode* TreeViewDataModel::GetParentNode(const TreeViewDataNode* node) const {
    return node ? node->GetParent() : nullptr;
}

int32 TreeViewDataModel::GetChildCount(const TreeViewDataNode* node) const {
    return node ? node->ChildCount() : 0;
}

TreeViewDataNode* TreeViewDataModel::GetNthChildNode(const TreeViewDataNode* node,
                                                     long position) const {
    return node ? node->GetNthChild(position) : nullptr;
}

int32 TreeViewDataModel::GetChildIndexFor(const TreeViewDataNode* parent,
                                          const TreeViewDataNode* child) const {
    if (!parent || !child)
        return -1;
    const int32 position = child->GetPositionInParent();
    return position >= 0 && position < parent->ChildCount() &&
                   parent->GetNthChild(position) == child
               ? position
               : -1;
}

TreeViewDataNode* TreeViewDataModel::newNode(const Tamrik::SmartPointer<VLMFontInfo>& record,
                                             int32 level, const TreeViewDataNode* parent,
                                             int32 sequence, const std::string& container) {
    nodes_.push_back(std::make_unique<TreeViewDataNode>());
    TreeViewDataNode* node = nodes_.back().get();
    node->SetData(record);
    node->SetLevel(level);
    node->SetParent(parent);
    node->SetSequenceNumber(sequence);
    node->SetContainerID(container);
    return node;
}

void TreeViewDataModel::Rebuild() {
    deleteTree();
    auto* tree = dynamic_cast<IControlView*>(treeWidget_);
    if (!tree || !tree->GetTreeViewMgr())
        return; // no tree view to show it: the tree stays empty
    const VLMFontList fonts = currentMissingFonts();

    root_ = newNode(new VLMFontInfo(), 1, nullptr, 0, "");
    // A font and its first match share a sequence number; their levels tell them apart.
    int32 counter = 1;
    for (const auto& record : fonts) {
        TreeViewDataNode* font = newNode(record, 2, root_, counter, record->selectedContainerID);
        if (record->hasTypeMatching) {
            const auto matches = record->font.fontInfo;
            for (const auto& match : matches) {
                TreeViewDataNode* candidate = newNode(record, 3, font, counter, match.first);
                candidate->SetDescription(match.second);
                font->AddChild(candidate);
                ++counter;
            }
        }
        root_->AddChild(font);
        ++counter;
    }
}

bool TreeViewDataModel::NeedRebuild() {
    if (!root_)
        return true;
    const VLMFontList fresh = currentMissingFonts();
    VLMFontList shown;
    for (int32 position = 0; position < root_->ChildCount(); ++position)
        shown.push_back(root_->GetNthChild(position)->GetData());
    const bool freshIsLonger = fresh.size() >= shown.size();
    const VLMFontList& longer = freshIsLonger ? fresh : shown;
    const VLMFontList& shorter = freshIsLonger ? shown : fresh;
    return !std::all_of(longer.begin(), longer.end(),
                        [&](const Tamrik::SmartPointer<VLMFontInfo>& record) {
                            return hasPartner(*record, shorter);
                        });
}

void TreeViewDataModel::deleteTree() {
    root_ = nullptr;
    nodes_.clear();
}
