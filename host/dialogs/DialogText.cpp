#include "host/dialogs/DialogText.h"

#include "foundation/AsciiCase.h"

#include "host/dialogs/Dialog.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace Galley {

namespace {

using Kind = Widget::Kind;

// The display width of UTF-8 text: its code points.
std::size_t columns(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

std::string padded(const std::string& text, std::size_t width) {
    const std::size_t used = columns(text);
    return used >= width ? text : text + std::string(width - used, ' ');
}

void collectTexts(const Widget& widget, std::vector<std::string>& texts) {
    if ((widget.kind() == Kind::label || widget.kind() == Kind::editText) && widget.IsVisible())
        texts.push_back(widget.displayText());
    for (const auto& child : widget.children())
        collectTexts(*child, texts);
}

void renderWidget(Widget& widget, std::vector<std::string>& lines, std::string& buttons) {
    if (!widget.IsVisible())
        return;
    switch (widget.kind()) {
    case Kind::label:
    case Kind::editText:
        if (!widget.displayText().empty())
            lines.push_back(widget.displayText());
        return;
    case Kind::button: {
        const std::string caption =
            widget.displayText().empty() ? widget.GetName() : widget.displayText();
        // Appended piece by piece: GCC 12 warns falsely (-Wrestrict) of "literal" + string.
        if (!buttons.empty())
            buttons += ' ';
        buttons += widget.IsEnabled() ? '[' : '(';
        buttons += caption;
        buttons += widget.IsEnabled() ? ']' : ')';
        return;
    }
    case Kind::progressBar:
        lines.push_back(renderProgressBar(widget));
        return;
    case Kind::treeView: {
        const auto table = renderTree(widget);
        lines.insert(lines.end(), table.begin(), table.end());
        return;
    }
    case Kind::listBox: {
        K2Vector<int32> selected;
        widget.GetSelected(selected);
        for (int32 n = 0; n < widget.Length(); ++n) {
            const auto* element = static_cast<const Widget*>(widget.GetElement(n));
            std::vector<std::string> texts;
            collectTexts(*element, texts);
            const bool isSelected =
                std::find(selected.begin(), selected.end(), n) != selected.end();
            lines.push_back(std::string(isSelected ? "* " : "  ") +
                            (texts.empty() ? "" : texts.front()));
        }
        return;
    }
    case Kind::panel:
        for (const auto& child : widget.children())
            renderWidget(*child, lines, buttons);
        return;
    }
}

} // namespace

std::vector<std::string> widgetTexts(const Widget& widget) {
    std::vector<std::string> texts;
    collectTexts(widget, texts);
    return texts;
}

std::string renderProgressBar(const Widget& bar, int width) {
    const int range = std::max(0, bar.GetMaximum() - bar.GetMinimum());
    const int value = std::clamp(bar.GetValue() - bar.GetMinimum(), 0, range);
    const int filled = range == 0 ? 0 : value * width / range;
    // Only the bar: the counts are the dialog's to say in its own words (its range before
    // the first update is a placeholder a user should not read as a count).
    std::string text = "[";
    text.append(static_cast<std::size_t>(filled), '#');
    text.append(static_cast<std::size_t>(width - filled), '.');
    return text += ']';
}

namespace {

void collectCells(const Widget& widget, std::vector<const Widget*>& cells) {
    if ((widget.kind() == Kind::label || widget.kind() == Kind::editText) && widget.IsVisible())
        cells.push_back(&widget);
    for (const auto& child : widget.children())
        collectCells(*child, cells);
}

std::string headerOf(const std::string& name) {
    std::string header;
    for (char c : name) {
        if (std::isupper(static_cast<unsigned char>(c)) && !header.empty()) {
            header += ' ';
            header += AsciiCase::lower(c);
        } else {
            header += c;
        }
    }
    if (!header.empty())
        header[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(header[0])));
    return header;
}

} // namespace

TreeTable tableOf(const Widget& tree) {
    std::map<WidgetID, std::string> identified; // column ID -> header
    std::size_t anonymous = 0;
    std::vector<std::vector<const Widget*>> rowCells;
    for (const auto& row : tree.rows()) {
        std::vector<const Widget*> cells;
        if (row.widget)
            collectCells(*row.widget, cells);
        std::size_t unnamed = 0;
        for (const Widget* cell : cells) {
            if (cell->GetWidgetID() != kInvalidWidgetID)
                identified.emplace(cell->GetWidgetID(), cell->accessibleName().empty()
                                                            ? headerOf(cell->GetName())
                                                            : cell->accessibleName());
            else
                ++unnamed;
        }
        anonymous = std::max(anonymous, unnamed);
        rowCells.push_back(std::move(cells));
    }
    TreeTable table;
    std::map<WidgetID, std::size_t> columnOf;
    for (const auto& [id, header] : identified) {
        columnOf[id] = table.headers.size();
        table.headers.push_back(header);
    }
    const std::size_t firstAnonymous = table.headers.size();
    table.headers.resize(firstAnonymous + anonymous);
    for (const auto& cells : rowCells) {
        std::vector<const Widget*> placed(table.headers.size(), nullptr);
        std::size_t unnamed = 0;
        for (const Widget* cell : cells)
            placed[cell->GetWidgetID() != kInvalidWidgetID ? columnOf[cell->GetWidgetID()]
                                                           : firstAnonymous + unnamed++] = cell;
        table.cells.push_back(std::move(placed));
    }
    return table;
}

std::vector<std::string> renderTree(const Widget& tree) {
    NodeIDList selection;
    tree.GetSelectedItems(selection);
    const TreeTable table = tableOf(tree);
    std::vector<std::vector<std::string>> cells;
    std::vector<std::size_t> widths;
    for (std::size_t r = 0; r < tree.rows().size(); ++r) {
        const auto& row = tree.rows()[r];
        std::vector<std::string> texts;
        for (const Widget* cell : table.cells[r])
            texts.push_back(cell ? cell->displayText() : "");
        if (texts.empty())
            texts.push_back(row.node.Get() ? row.node.Get()->GetDescription().GetUTF8String() : "");
        texts.front() = std::string(static_cast<std::size_t>(row.level) * 2, ' ') + texts.front();
        widths.resize(std::max(widths.size(), texts.size()), 0);
        for (std::size_t c = 0; c < texts.size(); ++c)
            widths[c] = std::max(widths[c], columns(texts[c]));
        cells.push_back(std::move(texts));
    }
    std::vector<std::string> lines;
    if (!cells.empty() && table.headers.size() > 1) {
        std::string header = "  ";
        for (std::size_t c = 0; c < table.headers.size(); ++c)
            header += c + 1 < table.headers.size() ? padded(table.headers[c], widths[c] + 2)
                                                   : table.headers[c];
        lines.push_back(header);
    }
    for (std::size_t r = 0; r < cells.size(); ++r) {
        const bool isSelected =
            std::find(selection.begin(), selection.end(), tree.rows()[r].node) != selection.end();
        std::string line = isSelected ? "* " : "  ";
        for (std::size_t c = 0; c < cells[r].size(); ++c)
            line += (c + 1 < cells[r].size() ? padded(cells[r][c], widths[c] + 2) : cells[r][c]);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    if (lines.empty())
        lines.push_back("  (no rows)");
    return lines;
}

std::vector<std::string> renderDialog(Dialog& dialog) {
    std::vector<std::string> lines;
    lines.push_back(
        "== " + (dialog.title().empty() ? "dialog" : dialog.displayText(PMString(dialog.title()))) +
        " ==");
    std::string buttons;
    for (const auto& child : dialog.root().children())
        renderWidget(*child, lines, buttons);
    if (!buttons.empty())
        lines.push_back(buttons);
    return lines;
}

} // namespace Galley
