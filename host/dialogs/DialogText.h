#pragma once

#include <string>
#include <vector>

namespace Galley {

class Dialog;
class Widget;

// Dialogs as text, for batch mode on a terminal or in a log.
//
// A dialog is its title, then its widgets in description order: labels and edit fields as
// their text, a progress bar as "[#####.....]", a tree as a table (one line per row,
// indented two spaces per level, the row's texts in aligned columns, "*" before selected
// rows), a list box as its entries ("*" before the selected one), and the buttons on one
// line ("[Activate]", "(Buy)" when disabled). Given a width (a terminal's columns), every line
// fits it: labels and buttons are wrapped between words and buttons, and the tree's widest
// columns (the candidates' descriptions first) are narrowed, their texts cut with "…".
// 0 leaves every line whole (a log, a pipe).
std::vector<std::string> renderDialog(Dialog& dialog, std::size_t width = 0);
std::vector<std::string> renderTree(const Widget& tree, std::size_t width = 0);
// A line cut to the width with "…" (0: whole).
std::string fitToWidth(const std::string& text, std::size_t width);
std::string renderProgressBar(const Widget& bar, int width = 30);
// The texts a row or element shows, in description order.
std::vector<std::string> widgetTexts(const Widget& widget);

// A tree's rows as a table: one column per text widget ID that any row has (in ascending ID
// order), so that the texts of different row descriptions line up under the same column;
// text widgets without an ID follow in description order. Cells a row lacks are null.
struct TreeTable {
    std::vector<std::string> headers; // accessible names, else names ("fontName": "Font name")
    std::vector<std::vector<const Widget*>> cells; // per row of the tree
};
TreeTable tableOf(const Widget& tree);

} // namespace Galley
