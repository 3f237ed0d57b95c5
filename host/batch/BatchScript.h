#pragma once

#include <string>
#include <vector>

namespace Galley {

// The actions of `galley --batch`, as words on the command line:
//   select TEXT        add the tree row showing TEXT (or the only one starting with it) to the
//   selection;
//                      TEXT/N selects the N-th row under it (a candidate of that font)
//   deselect           clear the tree's selection
//   press BUTTON       press a button, by its name in the dialog description or its caption
//   pick TEXT          select the list entry showing TEXT
//   double-click TEXT  double-click the list entry showing TEXT
//   menu ACTION        invoke a plug-in's menu action, by name or action ID
//   wait               wait until no dialog is open
//   save-as PATH       save the document as a new IDML package at PATH
struct BatchAction {
    enum class Kind { select, deselect, press, pick, doubleClick, menu, wait, saveAs };
    Kind kind = Kind::wait;
    std::string argument;

    bool needsDialog() const {
        return kind == Kind::select || kind == Kind::deselect || kind == Kind::press ||
               kind == Kind::pick || kind == Kind::doubleClick;
    }
    std::string describe() const;
};

// Parses the action words; throws std::invalid_argument with a message naming the word at
// fault and what was expected.
std::vector<BatchAction> parseBatchActions(const std::vector<std::string>& words);

} // namespace Galley
