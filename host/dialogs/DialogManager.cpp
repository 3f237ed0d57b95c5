#include "host/dialogs/DialogManager.h"

#include "host/base/PluginCalls.h"
#include "host/dialogs/DialogPresenter.h"
#include "host/dialogs/DialogResources.h"
#include "host/dialogs/Widget.h"
#include "host/loop/IdleTasks.h"
#include "host/loop/MainLoop.h"

#include <stdexcept>

namespace Galley {

DialogManager::DialogManager(MainLoop& loop, IdleTasks& idleTasks, PluginCalls& calls,
                             DialogResources& resources, DialogPresenter& presenter,
                             Deadline deadline)
    : loop_(loop), idleTasks_(idleTasks), calls_(calls), resources_(resources),
      presenter_(presenter), deadline_(deadline) {}

DialogManager::~DialogManager() {
    closeAll();
}

Dialog* DialogManager::frontDialog() const {
    return openOrder_.empty() ? nullptr : openOrder_.back();
}

void DialogManager::closeAll() {
    closed_ = true;
    for (Dialog* dialog : std::vector<Dialog*>(openOrder_.rbegin(), openOrder_.rend()))
        dialog->Close();
    dialogs_.clear();
    openOrder_.clear();
}

IDialog* DialogManager::CreateNewDialog(const RsrcSpec& spec, IDialog::DialogType mode) {
    if (closed_)
        return nullptr;
    try {
        dialogs_.push_back(std::make_unique<Dialog>(*this, spec, mode));
    } catch (const std::exception& error) {
        calls_.report(error.what());
        return nullptr;
    }
    Dialog* made = dialogs_.back().get();
    // A dialog a plug-in made but never opened goes once control is back in the host.
    if (calls_.depth() > 0)
        scheduleSweep();
    return made;
}

const WidgetSpec& DialogManager::description(const std::string& file) {
    auto cached = descriptions_.find(file);
    if (cached == descriptions_.end())
        cached = descriptions_.emplace(file, readUiDescription(file)).first;
    return cached->second;
}

DialogHost::DialogResource DialogManager::dialogResource(const RsrcSpec& spec) {
    const DialogResources::DialogEntry entry = resources_.dialogEntry(spec);
    return {entry.plugin, entry.file, description(entry.file), entry.controller, entry.observer};
}

WidgetSpec DialogManager::widgetResource(const RsrcSpec& spec) {
    try {
        return description(resources_.widgetResourceFile(spec));
    } catch (const std::exception& error) {
        calls_.report(error.what());
        throw;
    }
}

void DialogManager::addWidgetAddIns(Widget& widget) {
    if (widget.GetWidgetID() == kInvalidWidgetID)
        return;
    resources_.makeAddIns(widget.GetWidgetID(), &widget,
                          [&](PMIID iid, std::unique_ptr<IPMUnknown> addIn) {
                              widget.addAddIn(iid, std::move(addIn));
                          });
}

IPMUnknown* DialogManager::dialogAddIn(RsrcID dialog, PMIID iid) const {
    return resources_.dialogAddIn(dialog, iid);
}

std::string DialogManager::displayText(const PMString& text) const {
    return resources_.displayText(text);
}

bool DialogManager::callPlugin(const std::string& what, const std::function<void()>& call) {
    return calls_.guarded("", what, call);
}

void DialogManager::waitUntil(const std::function<bool()>& done, bool allowIdleTasks) {
    if (!allowIdleTasks)
        idleTasks_.hold();
    const bool finished = loop_.runUntil(done, deadline_);
    if (!allowIdleTasks)
        idleTasks_.release();
    if (finished)
        return;
    // Out of time (or quitting): cancel every dialog in front, which ends every wait.
    timedOut_ = timedOut_ || !loop_.quitting();
    for (Dialog* dialog : std::vector<Dialog*>(openOrder_.rbegin(), openOrder_.rend()))
        dialog->cancel();
}

void DialogManager::dialogOpened(Dialog& dialog) {
    openOrder_.push_back(&dialog);
    presenter_.dialogOpened(dialog);
}

void DialogManager::dialogChanged(Dialog& dialog, Widget& widget) {
    presenter_.dialogChanged(dialog, widget);
}

void DialogManager::dialogClosed(Dialog& dialog) {
    std::erase(openOrder_, &dialog);
    presenter_.dialogClosed(dialog);
    scheduleSweep();
}

void DialogManager::scheduleSweep() {
    // At the next turn of the loop, and then only once no plug-in code is on the stack:
    // whoever closed a dialog may still be reading it.
    loop_.post([this] { calls_.deferUntilHostLevel([this] { sweep(); }); });
}

void DialogManager::sweep() {
    // Closed dialogs are destroyed only here, when no plug-in code can still hold them.
    std::vector<std::unique_ptr<Dialog>> closed;
    for (auto& dialog : dialogs_)
        if (!dialog->IsOpen() && !dialog->isWaitedFor())
            closed.push_back(std::move(dialog));
    std::erase(dialogs_, nullptr);
    closed.clear();
}

} // namespace Galley
