#pragma once

#include "sdk/HostTypes.h"

#include <string>
#include <vector>

namespace Galley {

// One widget of a dialog description (a Qt Designer .ui file): its Qt class, its name, its
// identifier (the dynamic property `widgetID`), its text and its children (layouts are
// looked through; spacers are dropped).
struct WidgetSpec {
    enum class Kind { panel, label, editText, button, progressBar, treeView, listBox };

    Kind kind = Kind::panel;
    std::string qtClass;
    std::string name;
    WidgetID id = kInvalidWidgetID;
    std::string text;
    std::string accessibleName; // a short name for the widget (a table column's title)
    bool isDefault = false;
    bool enabled = true;
    int minimumWidth = 0;
    std::vector<WidgetSpec> children;
};

// Reads a description. Throws std::runtime_error naming the file (and the line) for a
// file that cannot be read, is not a .ui description, holds a widget class Galley does not
// know, a `widgetID` that is not a number, or an interactive widget (button, edit field,
// progress bar, tree, list) or a top-level widget without an identifier.
WidgetSpec readUiDescription(const std::string& path);
WidgetSpec parseUiDescription(const std::string& xml, const std::string& nameForMessages);

} // namespace Galley
