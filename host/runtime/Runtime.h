#pragma once

#include "host/base/PluginCalls.h"
#include "host/dialogs/DialogManager.h"
#include "host/loop/IdleTasks.h"
#include "host/loop/MainLoop.h"
#include "host/plugins/PluginHost.h"
#include "host/runtime/DocumentHub.h"
#include "host/runtime/Presenter.h"
#include "sdk/HostHooks.h"
#include "sdk/ISession.h"

#include <chrono>
#include <memory>
#include <optional>

namespace Platform::Linux {
class DBusAppEvents;
}

namespace Galley {

class BusAttachment;
class GalleySession;

// Galley's application runtime, put together: the main loop with the session bus and idle
// tasks, the plug-in host, the dialog manager and the document hub, each of which knows only
// what it is handed here. It is the SDK's host hooks and application while it lives. One per
// process, on the main thread.
class Runtime : public IHostHooks, public IApplication, private IAlertPresenter {
public:
    struct Options {
        // Bounds every modal wait: when it passes, the dialogs in front are cancelled.
        std::optional<std::chrono::steady_clock::time_point> deadline;
        // The session bus to dispatch (null: no bus, as when none can be reached).
        Platform::Linux::DBusAppEvents* bus = nullptr;
        // How the font folders are watched (off in tests that drive font changes themselves).
        FolderWatching fontFolders = FolderWatching::inotify;
    };

    Runtime(EventLoop& loop, GalleySession& session, Presenter& presenter, Options options);
    ~Runtime() override;
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    MainLoop& loop() { return loop_; }
    GalleySession& session() { return session_; }
    IdleTasks& idleTasks() { return idleTasks_; }
    PluginHost& plugins() { return plugins_; }
    DialogManager& dialogs() { return dialogs_; }
    DocumentHub& documents() { return documents_; }
    int pluginFailures() const { return calls_.failures(); }
    // Invokes a plug-in's menu action, by its name or ID, on the front document.
    bool invokeAction(const std::string& nameOrID) {
        return plugins_.invokeAction(nameOrID, documents_.GetFrontDocument());
    }

    // Stops idle tasks, closes dialogs, detaches the plug-ins' session observers, destroys
    // every plug-in object in the reverse order of creation and closes the document. Run
    // before the session goes away; the destructor runs it too.
    void shutdown();

    // IHostHooks
    void installIdleTask(CIdleTask* task, uint32 delayMilliseconds) override;
    void uninstallIdleTask(CIdleTask* task) override;
    bool isIdleTaskInstalled(const CIdleTask* task) const override;
    IAlertPresenter& alerts() override { return *this; }
    IControlView* createRowWidget(IControlView* tree, const RsrcSpec& row) override;
    PMLocaleId locale() const override { return {}; }

    // IApplication
    IDialogMgr* GetDialogMgr() override { return &dialogs_; }

private:
    int16 present(Kind kind, const PMString& message, const PMString buttons[3],
                  int16 defaultButton, int16 iconType) override;
    bool guarded(const std::string& what, const std::function<void()>& call) {
        return calls_.guarded("", what, call);
    }

    GalleySession& session_;
    Presenter& presenter_;
    MainLoop loop_;
    PluginCalls calls_;
    IdleTasks idleTasks_;
    PluginHost plugins_;
    DialogManager dialogs_;
    DocumentHub documents_;
    std::unique_ptr<BusAttachment> bus_;
    bool shutDown_ = false;
};

} // namespace Galley
