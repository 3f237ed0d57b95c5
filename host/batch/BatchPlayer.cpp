#include "host/batch/BatchPlayer.h"

#include "foundation/AsciiCase.h"

#include "host/batch/NamedItem.h"
#include "host/batch/TerminalPresenter.h"
#include "host/dialogs/Dialog.h"
#include "host/dialogs/DialogText.h"
#include "host/document/DocumentSaver.h"
#include "host/document/IdmlDocument.h"
#include "host/runtime/Runtime.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace Galley {

namespace {

constexpr auto quietPeriod = std::chrono::seconds(1);

std::string joined(const std::vector<std::string>& items) {
    if (items.empty())
        return "(none)";
    std::string text;
    for (const auto& item : items)
        text += (text.empty() ? "" : ", ") + item;
    return text;
}

Widget* firstOfKind(Dialog& dialog, Widget::Kind kind) {
    Widget* found = nullptr;
    dialog.root().forEach([&](Widget& widget) {
        if (!found && widget.kind() == kind && widget.IsVisible())
            found = &widget;
    });
    return found;
}

} // namespace

BatchPlayer::BatchPlayer(Runtime& runtime, TerminalPresenter& view,
                         std::vector<BatchAction> actions)
    : runtime_(runtime), view_(view), actions_(std::move(actions)) {
    hook_ = runtime_.loop().addPrepareHook([this] { consider(); });
}

BatchPlayer::~BatchPlayer() {
    runtime_.loop().removePrepareHook(hook_);
}

Dialog* BatchPlayer::front() const {
    return runtime_.dialogs().frontDialog();
}

bool BatchPlayer::finished() const {
    return (next_ >= actions_.size() || !error_.empty()) && !front() && !posted_;
}

void BatchPlayer::consider() {
    if (posted_)
        return;
    Dialog* dialog = front();
    if (next_ >= actions_.size() || !error_.empty()) {
        const bool quiet = std::chrono::steady_clock::now() - lastAction_ >= quietPeriod;
        if (dialog && ((!dialog->closesByItself() && quiet) || !error_.empty())) {
            posted_ = true;
            runtime_.loop().post([this] {
                posted_ = false;
                if (Dialog* open = front())
                    open->cancel();
            });
        }
        return;
    }
    const BatchAction& action = actions_[next_];
    const bool ready = action.needsDialog()                     ? dialog != nullptr
                       : action.kind == BatchAction::Kind::menu ? true
                                                                : dialog == nullptr;
    // Fonts that have arrived are taken in first, so that an action meets the dialog as it
    // stands once they are, not a tree about to be rebuilt under its selection.
    if (!ready || runtime_.documents().fontChangesPending())
        return;
    posted_ = true;
    runtime_.loop().post([this] {
        posted_ = false;
        const BatchAction current = actions_[next_++];
        play(current);
        lastAction_ = std::chrono::steady_clock::now();
    });
}

void BatchPlayer::fail(const std::string& message) {
    if (error_.empty())
        error_ = message;
}

void BatchPlayer::play(const BatchAction& action) {
    Dialog* dialog = front();
    if (action.needsDialog() && !dialog) {
        --next_; // the dialog closed before the action's turn came: wait for the next one
        return;
    }
    std::cout << "> " << action.describe() << '\n';
    try {
        switch (action.kind) {
        case BatchAction::Kind::select:
            select(*dialog, action.argument);
            break;
        case BatchAction::Kind::deselect:
            deselect(*dialog);
            break;
        case BatchAction::Kind::press:
            press(*dialog, action.argument);
            break;
        case BatchAction::Kind::pick:
            pick(*dialog, action.argument, false);
            break;
        case BatchAction::Kind::doubleClick:
            pick(*dialog, action.argument, true);
            break;
        case BatchAction::Kind::menu:
            invoke(action.argument);
            break;
        case BatchAction::Kind::saveAs:
            saveAs(action.argument);
            break;
        case BatchAction::Kind::wait:
            break;
        }
    } catch (const std::exception& error) {
        fail(action.describe() + ": " + error.what());
    }
    if (!error_.empty())
        return;
    // Show what the action changed (a pressed button may have closed the dialog).
    if (Dialog* now = front(); now && now == dialog && now->IsOpen() && action.needsDialog())
        view_.show(*now);
}

void BatchPlayer::select(Dialog& dialog, const std::string& text) {
    Widget* tree = firstOfKind(dialog, Widget::Kind::treeView);
    if (!tree)
        throw std::runtime_error("the dialog has no tree");
    std::string name = text;
    int child = 0;
    if (const auto slash = text.rfind('/');
        slash != std::string::npos && slash + 1 < text.size() &&
        text.find_first_not_of("0123456789", slash + 1) == std::string::npos) {
        name = text.substr(0, slash);
        child = std::stoi(text.substr(slash + 1));
    }
    const auto& rows = tree->rows();
    std::vector<std::vector<std::string>> shown;
    for (const auto& row : rows)
        shown.push_back(row.widget ? widgetTexts(*row.widget) : std::vector<std::string>());
    const NamedItem named = findNamedItem(shown, name);
    if (!named.ambiguous.empty())
        throw std::runtime_error("several rows start with \"" + name +
                                 "\": " + joined(named.ambiguous) + "; name one in full");
    if (named.index == NamedItem::none) {
        std::vector<std::string> names;
        for (const auto& texts : shown)
            if (!texts.empty())
                names.push_back(texts.front());
        throw std::runtime_error("no row shows \"" + name + "\"; the rows are: " + joined(names));
    }
    const std::size_t r = named.index;
    if (child == 0) {
        tree->Select(rows[r].node, true, true);
        return;
    }
    int seen = 0;
    for (std::size_t c = r + 1; c < rows.size() && rows[c].level > rows[r].level; ++c)
        if (rows[c].level == rows[r].level + 1 && ++seen == child) {
            tree->Select(rows[c].node, true, true);
            return;
        }
    throw std::runtime_error("the row \"" + name + "\" has " + std::to_string(seen) +
                             " rows under it");
}

void BatchPlayer::deselect(Dialog& dialog) {
    if (Widget* tree = firstOfKind(dialog, Widget::Kind::treeView))
        tree->DeselectAll(true);
}

namespace {

// A caption as a user types it: no access-key marker, no ellipsis, case ignored ("press
// replace" finds "&Replace…").
std::string typedCaption(const std::string& caption) {
    std::string text;
    for (char c : caption)
        if (c != '&')
            text += c;
    for (const std::string ellipsis : {"\u2026", "..."})
        if (text.ends_with(ellipsis))
            text.erase(text.size() - ellipsis.size());
    return AsciiCase::lowered(text);
}

} // namespace

void BatchPlayer::press(Dialog& dialog, const std::string& button) {
    std::vector<std::string> known;
    Widget* found = nullptr;
    dialog.root().forEach([&](Widget& widget) {
        if (widget.kind() != Widget::Kind::button || !widget.IsVisible())
            return;
        known.push_back(widget.GetName() + " (\"" + widget.displayText() + "\")");
        if (!found && (widget.GetName() == button ||
                       typedCaption(widget.displayText()) == typedCaption(button)))
            found = &widget;
    });
    if (!found)
        throw std::runtime_error("no button \"" + button + "\"; the buttons are: " + joined(known));
    if (!dialog.pressButton(*found))
        throw std::runtime_error("the button \"" + button + "\" is disabled");
}

void BatchPlayer::pick(Dialog& dialog, const std::string& text, bool doubleClick) {
    Widget* list = firstOfKind(dialog, Widget::Kind::listBox);
    if (!list)
        throw std::runtime_error("the dialog has no list");
    std::vector<std::vector<std::string>> entries;
    for (int32 n = 0; n < list->Length(); ++n) {
        auto texts = widgetTexts(*static_cast<Widget*>(list->GetElement(n)));
        entries.push_back(texts.empty() ? std::vector<std::string>{""}
                                        : std::vector<std::string>{texts.front()});
    }
    const NamedItem named = findNamedItem(entries, text);
    if (named.index != NamedItem::none) {
        const auto n = static_cast<int32>(named.index);
        if (doubleClick)
            list->doubleClickElement(n);
        else
            list->Select(n, true);
        return;
    }
    if (!named.ambiguous.empty()) {
        std::vector<std::string> some(named.ambiguous.begin(),
                                      named.ambiguous.begin() +
                                          std::min<std::size_t>(named.ambiguous.size(), 40));
        throw std::runtime_error("several entries start with \"" + text + "\": " + joined(some) +
                                 "; name one in full");
    }
    std::vector<std::string> some;
    for (std::size_t n = 0; n < entries.size() && n < 40; ++n)
        some.push_back(entries[n].front());
    throw std::runtime_error("no entry \"" + text + "\" among the " +
                             std::to_string(list->Length()) + " entries: " + joined(some));
}

void BatchPlayer::invoke(const std::string& action) {
    if (runtime_.invokeAction(action))
        return;
    std::vector<std::string> names;
    for (const auto& item : runtime_.plugins().menu())
        names.push_back(item.name + " (\"" + item.title + "\")");
    throw std::runtime_error("no menu action \"" + action +
                             "\"; the actions are: " + joined(names));
}

void BatchPlayer::saveAs(const std::string& path) {
    IdmlDocument* document = runtime_.documents().front();
    if (!document)
        throw std::runtime_error("no document is open");
    saveDocumentAs(*document, path);
    std::cout << "saved " << path << '\n';
}

} // namespace Galley
