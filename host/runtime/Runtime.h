#pragma once

#include "host/dialogs/Dialog.h"
#include "host/dialogs/DialogHost.h"
#include "host/runtime/IdleTasks.h"
#include "host/runtime/MainLoop.h"
#include "host/runtime/PluginCalls.h"
#include "host/runtime/PluginLoader.h"
#include "host/runtime/Presenter.h"
#include "host/runtime/StringTable.h"
#include "sdk/HostHooks.h"
#include "sdk/IDialog.h"
#include "sdk/ISession.h"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform::Linux {
class DBusAppEvents;
}

class CActionComponent;
class CResponder;
class CServiceProvider;
class IDocument;

namespace Galley {

class BusAttachment;
class FontFolderWatch;
class GalleySession;
class IdmlDocument;

// Galley's application runtime: the plug-ins and the objects made from their
// registrations, the main loop with the session bus, idle tasks and the font-folder watch,
// document signals, menu actions, dialogs and alerts. One per process, on the main thread.
class Runtime : public IHostHooks,
                public DialogHost,
                public IApplication,
                public IDialogMgr,
                public ILayoutUIUtils,
                public IDocumentViews,
                private IAlertPresenter {
public:
    struct Options {
        // Bounds every modal wait: when it passes, the dialogs in front are cancelled.
        std::optional<std::chrono::steady_clock::time_point> deadline;
        // The session bus to dispatch (null: no bus, as when none can be reached).
        Platform::Linux::DBusAppEvents* bus = nullptr;
        // Watch the font folders (off in tests that drive font changes themselves).
        bool watchFontFolders = true;
    };

    Runtime(EventLoop& loop, GalleySession& session, Presenter& presenter, Options options);
    ~Runtime() override;
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    // Loads the plug-ins of the search path and makes their session objects. Failures are
    // reported and leave the other plug-ins running.
    void loadPlugins(const std::vector<std::string>& searchPath);
    const std::vector<std::unique_ptr<LoadedPlugin>>& plugins() const { return plugins_; }

    // Opens a document and, once it is fully built, sends the after-open signal to every
    // responder registered for it. Throws IdmlError for a document that cannot be read.
    IdmlDocument& openDocument(const std::string& path);
    IdmlDocument* frontDocument() const { return document_.get(); }
    void sendDocumentSignal(ServiceID service, IDocument* document);

    // The plug-ins' menu entries, and invoking one by its name or action ID.
    struct MenuItem {
        ActionID action = 0;
        std::string name;
        std::string title;
        std::string plugin;
    };
    std::vector<MenuItem> menu() const;
    // False when no entry has that name or ID.
    bool invokeAction(const std::string& nameOrID);

    MainLoop& loop() { return loop_; }
    IdleTasks& idleTasks() { return idleTasks_; }
    PluginCalls& calls() { return calls_; }
    Dialog* frontDialog() const;
    std::vector<Dialog*> openDialogs() const { return openOrder_; }
    // True once a wait ran into the deadline and cancelled dialogs.
    bool timedOut() const { return timedOut_; }
    int pluginFailures() const { return calls_.failures(); }
    // Processes font-folder changes now (as the watch would).
    void fontFoldersChanged();
    // True while a change of the font folders waits to be processed: what the dialogs show
    // is about to change.
    bool fontChangesPending() const;

    // Stops idle tasks, closes dialogs, detaches the plug-ins' session observers and
    // destroys every plug-in object in the reverse order of creation. Run before the
    // session goes away; the destructor runs it too.
    void shutdown();

    // IHostHooks
    void installIdleTask(CIdleTask* task, uint32 delayMilliseconds) override;
    void uninstallIdleTask(CIdleTask* task) override;
    bool isIdleTaskInstalled(const CIdleTask* task) const override;
    IAlertPresenter& alerts() override { return *this; }
    IControlView* createRowWidget(IControlView* tree, const RsrcSpec& row) override;
    PMLocaleId locale() const override { return {}; }

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

    // IApplication
    IDialogMgr* GetDialogMgr() override { return this; }
    // IDialogMgr
    IDialog* CreateNewDialog(const RsrcSpec& spec, IDialog::DialogType mode) override;
    IDialog* GetFrontDialog() const override { return frontDialog(); }
    // ILayoutUIUtils
    IDocument* GetFrontDocument() const override;
    // IDocumentViews: the open document's font usage is read again (and shown again).
    void InvalidateAllViews() override { viewsOutOfDate_ = true; }
    void UpdateViews(bool immediately) override;

private:
    struct SessionObject {
        std::string plugin;
        PMIID iid = 0;
        RsrcID dialog = 0;
        std::unique_ptr<IPMUnknown> object;
    };
    struct ResponderPair {
        std::string plugin;
        CServiceProvider* provider = nullptr;
        CResponder* responder = nullptr;
    };

    int16 present(Kind kind, const PMString& message, const PMString buttons[3],
                  int16 defaultButton, int16 iconType) override;
    void startPlugin(LoadedPlugin& plugin);
    IPMUnknown* makeSessionObject(LoadedPlugin& plugin, PMIID iid, RsrcID dialog,
                                  PluginFactory factory, const char* what);
    const LoadedPlugin* pluginFor(const RsrcSpec& spec, bool dialog) const;
    void scheduleSweep();
    void sweepDialogs();
    void refreshFontWatch();
    void report(const std::string& message) const { presenter_.status(message); }

    EventLoop& events_;
    MainLoop loop_;
    GalleySession& session_;
    Presenter& presenter_;
    Options options_;
    PluginCalls calls_;
    IdleTasks idleTasks_;
    std::unique_ptr<BusAttachment> bus_;
    std::unique_ptr<FontFolderWatch> fontWatch_;
    bool fontChangePending_ = false;
    StringTable strings_;
    std::vector<std::unique_ptr<LoadedPlugin>> plugins_;
    std::vector<SessionObject> objects_; // in the order of creation
    std::vector<ResponderPair> responders_;
    std::vector<std::pair<std::string, CActionComponent*>> actionComponents_;
    std::map<std::string, WidgetSpec> descriptions_; // read once per file
    std::vector<std::unique_ptr<Dialog>> dialogs_;
    std::vector<Dialog*> openOrder_;
    std::unique_ptr<IdmlDocument> document_;
    bool timedOut_ = false;
    bool viewsOutOfDate_ = false;
    bool shutDown_ = false;
};

} // namespace Galley
