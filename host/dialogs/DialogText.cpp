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

// The text cut to `width` columns, its last one an ellipsis when it was cut.
std::string fitted(const std::string& text, std::size_t width) {
    if (columns(text) <= width)
        return text;
    std::string kept;
    std::size_t used = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool starts = (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
        if (starts && ++used > width - 1)
            break;
        kept += text[i];
    }
    return kept + "\u2026";
}

// The text in lines of at most `width` columns, broken between words (0: one line).
std::vector<std::string> wrapped(const std::string& text, std::size_t width) {
    if (width == 0 || columns(text) <= width)
        return {text};
    std::vector<std::string> lines(1);
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        std::string& line = lines.back();
        if (!line.empty() && columns(line) + 1 + columns(word) > width)
            lines.push_back(fitted(word, width));
        else
            line += (line.empty() ? "" : " ") + fitted(word, width);
        at = end + 1;
    }
    return lines;
}

// Narrows the widest column, one character at a time, until a row of them (with two blanks
// between columns and two before the first) fits `width`; a column keeps two characters.
void narrowToFit(std::vector<std::size_t>& widths, std::size_t width) {
    constexpr std::size_t narrowest = 2;
    const auto total = [&] {
        std::size_t sum = 2;
        for (std::size_t w : widths)
            sum += w + 2;
        return sum - 2;
    };
    while (width > 0 && total() > width) {
        auto widest = std::max_element(widths.begin(), widths.end());
        if (widest == widths.end() || *widest <= narrowest)
            return;
        --*widest;
    }
}

void collectTexts(const Widget& widget, std::vector<std::string>& texts) {
    if ((widget.kind() == Kind::label || widget.kind() == Kind::editText) && widget.IsVisible())
        texts.push_back(widget.displayText());
    for (const auto& child : widget.children())
        collectTexts(*child, texts);
}

void renderWidget(Widget& widget, std::vector<std::string>& lines,
                  std::vector<std::string>& buttons, std::size_t width) {
    if (!widget.IsVisible())
        return;
    switch (widget.kind()) {
    case Kind::label:
    case Kind::editText:
        if (!widget.displayText().empty())
            for (std::string& line : wrapped(widget.displayText(), width))
                lines.push_back(std::move(line));
        return;
    case Kind::button: {
        const std::string caption =
            widget.displayText().empty() ? widget.GetName() : widget.displayText();
        // Built piece by piece: GCC 12 warns falsely (-Wrestrict) of "literal" + string.
        std::string button(1, widget.IsEnabled() ? '[' : '(');
        button += caption;
        button += widget.IsEnabled() ? ']' : ')';
        buttons.push_back(std::move(button));
        return;
    }
    case Kind::progressBar:
        lines.push_back(renderProgressBar(widget));
        return;
    case Kind::treeView: {
        const auto table = renderTree(widget, width);
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
            const std::string entry = texts.empty() ? "" : texts.front();
            lines.push_back(std::string(isSelected ? "* " : "  ") +
                            (width > 2 ? fitted(entry, width - 2) : entry));
        }
        return;
    }
    case Kind::panel:
        for (const auto& child : widget.children())
            renderWidget(*child, lines, buttons, width);
        return;
    }
}

// The buttons on as few lines as the width allows, never one cut in two.
void appendButtons(const std::vector<std::string>& buttons, std::size_t width,
                   std::vector<std::string>& lines) {
    std::string line;
    for (const std::string& button : buttons) {
        if (!line.empty() && width > 0 && columns(line) + 1 + columns(button) > width) {
            lines.push_back(line);
            line.clear();
        }
        line += (line.empty() ? "" : " ") + button;
    }
    if (!line.empty())
        lines.push_back(line);
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

std::vector<std::string> renderTree(const Widget& tree, std::size_t width) {
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
    const bool headed = !cells.empty() && table.headers.size() > 1;
    if (headed) {
        widths.resize(std::max(widths.size(), table.headers.size()), 0);
        for (std::size_t c = 0; c < table.headers.size(); ++c)
            widths[c] = std::max(widths[c], columns(table.headers[c]));
    }
    narrowToFit(widths, width);
    const auto rowLine = [&](const char* mark, const std::vector<std::string>& texts) {
        std::string line = mark;
        for (std::size_t c = 0; c < texts.size(); ++c) {
            const std::string text = fitted(texts[c], widths[c]);
            line += c + 1 < texts.size() ? padded(text, widths[c] + 2) : text;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        return line;
    };
    std::vector<std::string> lines;
    if (headed)
        lines.push_back(rowLine("  ", table.headers));
    for (std::size_t r = 0; r < cells.size(); ++r) {
        const bool isSelected =
            std::find(selection.begin(), selection.end(), tree.rows()[r].node) != selection.end();
        lines.push_back(rowLine(isSelected ? "* " : "  ", cells[r]));
    }
    if (lines.empty())
        lines.push_back("  (no rows)");
    return lines;
}

std::vector<std::string> renderDialog(Dialog& dialog, std::size_t width) {
    std::vector<std::string> lines;
    lines.push_back(
        "== " + (dialog.title().empty() ? "dialog" : dialog.displayText(PMString(dialog.title()))) +
        " ==");
    std::vector<std::string> buttons;
    for (const auto& child : dialog.root().children())
        renderWidget(*child, lines, buttons, width);
    appendButtons(buttons, width, lines);
    return lines;
}

std::string fitToWidth(const std::string& text, std::size_t width) {
    return width == 0 ? text : fitted(text, width);
}

} // namespace Galley
