#include "ui/VLMTreeViewWidgetMgr.h"

#include "resources/VellumineIDs.h"
#include "sdk/IControlView.h"
#include "ui/FontRowStatus.h"
#include "ui/TreeViewDataNode.h"
#include "ui/VLMFontNodeID.h"

namespace {

bool isFontRow(const NodeID& node) {
    const TreeViewDataNode* data = VLMFontNodeID::NodeOf(node);
    return data && data->GetLevel() == 2;
}

ITextControlData* textOf(IControlView* row, WidgetID id) {
    IPanelControlData* panel = row->GetPanelControlData();
    IControlView* cell = panel ? panel->FindWidget(id, 9999) : nullptr;
    return cell ? cell->GetTextControlData() : nullptr;
}

void setText(IControlView* row, WidgetID id, const std::string& text) {
    if (ITextControlData* cell = textOf(row, id))
        cell->SetString(PMString(text, PMString::kDontTranslateDuringCall));
}

void showFont(IControlView* row, const VLMFontInfo& font) {
    // The name a user knows the font by, and the PostScript name that identifies it.
    const std::string family = font.hostFontName.empty() ? font.font.familyName : font.hostFontName;
    setText(row, kRowNameWidgetID,
            font.font.styleName.empty() ? family : family + " " + font.font.styleName);
    setText(row, kRowPostScriptNameWidgetID, font.font.psName);
    setText(row, kRowTechnologyWidgetID, font.getTechnology());
    IPanelControlData* panel = row->GetPanelControlData();
    IControlView* status = panel ? panel->FindWidget(kRowStatusWidgetID, 9999) : nullptr;
    if (!status)
        return;
    const std::string key = FontRowStatus::textKey(font);
    if (ITextControlData* text = status->GetTextControlData())
        text->SetString(key.empty() ? PMString() : PMString(key.c_str()));
    status->SetTextColor(FontRowStatus::colour(font));
}

// A match row names the font manager's face: the description it gave of that candidate.
void showMatch(IControlView* row, const VLMFontInfo& font, const TreeViewDataNode& candidate) {
    setText(row, kRowNameWidgetID, candidate.GetDescription());
    setText(row, kRowTechnologyWidgetID, font.getTechnology());
}

} // namespace

IControlView* VLMTreeViewWidgetMgr::CreateWidgetForNode(const NodeID& node) const {
    return CreateRowWidget(RsrcSpec(MLocaleSetting::GetLocale(), kVelluminePrefix, kViewRsrcType,
                                    GetWidgetTypeForNode(node)));
}

WidgetID VLMTreeViewWidgetMgr::GetWidgetTypeForNode(const NodeID& node) const {
    return isFontRow(node) ? kFontRowRsrcID : kMatchRowRsrcID;
}

bool VLMTreeViewWidgetMgr::ApplyNodeIDToWidget(const NodeID& node, IControlView* widget,
                                               int32) const {
    const TreeViewDataNode* data = VLMFontNodeID::NodeOf(node);
    const auto record = data ? data->GetData() : Tamrik::SmartPointer<VLMFontInfo>();
    if (!widget || !record)
        return false;
    if (data->GetLevel() == 2)
        showFont(widget, *record);
    else
        showMatch(widget, *record, *data);
    return true;
}
