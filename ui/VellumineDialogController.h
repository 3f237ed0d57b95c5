#pragma once

#include "link/FontInfo.h"
#include "sdk/IDialog.h"

#include <map>
#include <string>

class IControlView;
class ITreeViewController;
class ITreeViewDataModel;
class ITreeViewMgr;

// The main fonts dialog: the tree of the document's missing fonts and the buttons that
// activate, show, buy and replace the selected ones. Replacements are collected by the
// document font's PostScript name and reach the document only on OK.
class VellumineDialogController : public CDialogController {
public:
    using CDialogController::CDialogController;

    void InitializeDialogFields(IActiveContext* context) override;
    void ApplyDialogFields(IActiveContext* context, const WidgetID& widget) override;

    // Rebuilds the tree when its fonts changed (or always, with `force`), then brings the
    // buttons up to date.
    void synchronizeDialog(bool force);
    // Enables the buttons and sets the activate button's caption for the selection.
    void selectionSync();
    // Runs the replacement dialog; the chosen font's name, or empty when none was chosen.
    std::string DoReplacerDialog();
    void DoFontReplacements();

    // Document font PostScript name to the name of its replacement.
    const std::map<std::string, std::string>& replacements() const { return replacements_; }

private:
    struct Tree {
        IControlView* widget = nullptr;
        ITreeViewDataModel* model = nullptr;
        ITreeViewMgr* rows = nullptr;
        ITreeViewController* selection = nullptr;
        bool complete() const;
    };
    Tree findTree() const;
    void replaceSelected(const VLMFontList& selected);
    void activate(const VLMFontList& selected, bool nothingSelected);

    std::map<std::string, std::string> replacements_;
};
