#pragma once

#include "host/dialogs/Dialog.h"
#include "host/dialogs/DialogHost.h"
#include "sdk/IDialog.h"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Galley {

class DialogPresenter;
class DialogResources;
class IdleTasks;
class MainLoop;
class PluginCalls;

// The plug-ins' dialogs: made from their descriptions (each file read once), shown through
// the presenter, waited for modally on the main loop (bounded by the deadline, past which
// the dialogs in front are cancelled), and destroyed once closed and no plug-in code can
// still hold them.
class DialogManager : public DialogHost, public IDialogMgr {
public:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;
    DialogManager(MainLoop& loop, IdleTasks& idleTasks, PluginCalls& calls,
                  DialogResources& resources, DialogPresenter& presenter, Deadline deadline);
    ~DialogManager() override;
    DialogManager(const DialogManager&) = delete;
    DialogManager& operator=(const DialogManager&) = delete;

    Dialog* frontDialog() const;
    std::vector<Dialog*> openDialogs() const { return openOrder_; }
    // True once a wait ran into the deadline and cancelled dialogs.
    bool timedOut() const { return timedOut_; }
    // Closes every open dialog, front first, destroys them all and makes no more.
    void closeAll();

    // IDialogMgr
    IDialog* CreateNewDialog(const RsrcSpec& spec, IDialog::DialogType mode) override;
    IDialog* GetFrontDialog() const override { return frontDialog(); }

    // DialogHost
    DialogResource dialogResource(const RsrcSpec& spec) override;
    WidgetSpec widgetResource(const RsrcSpec& spec) override;
    void addWidgetAddIns(Widget& widget) override;
    IPMUnknown* dialogAddIn(RsrcID dialog, PMIID iid) const override;
    std::string displayText(const PMString& text) const override;
    bool callPlugin(const std::string& what, const std::function<void()>& call) override;
    void waitUntil(const std::function<bool()>& done, bool allowIdleTasks) override;
    void dialogOpened(Dialog& dialog) override;
    void dialogChanged(Dialog& dialog, Widget& widget) override;
    void dialogClosed(Dialog& dialog) override;

private:
    const WidgetSpec& description(const std::string& file);
    void scheduleSweep();
    void sweep();

    MainLoop& loop_;
    IdleTasks& idleTasks_;
    PluginCalls& calls_;
    DialogResources& resources_;
    DialogPresenter& presenter_;
    Deadline deadline_;
    std::map<std::string, WidgetSpec> descriptions_; // read once per file
    std::vector<std::unique_ptr<Dialog>> dialogs_;
    std::vector<Dialog*> openOrder_;
    bool timedOut_ = false;
    bool closed_ = false;
};

} // namespace Galley
