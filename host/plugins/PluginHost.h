#pragma once

#include "host/dialogs/DialogResources.h"
#include "host/plugins/PluginLoader.h"
#include "host/plugins/StringTable.h"
#include "sdk/ResourceName.h"

#include <memory>
#include <string>
#include <vector>

class CActionComponent;
class CResponder;
class CServiceProvider;
class IDocument;
class IObserver;
class ISignalMgr;

namespace Galley {

class GalleySession;
class IdleTasks;
class PluginCalls;

// The plug-ins of a Galley process: loads them, makes the session objects they registered
// (responders, observers, idle tasks, the action component) in order, guards every call into
// them, supplies their dialogs' resources and texts, and shuts them down in reverse.
class PluginHost : public DialogResources {
public:
    PluginHost(PluginCalls& calls, IdleTasks& idleTasks, GalleySession& session,
               PMLocaleId locale = {});
    ~PluginHost() override;
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    // Loads the plug-ins of the search path and makes their session objects. Failures are
    // reported and leave the other plug-ins running.
    void load(const std::vector<std::string>& searchPath);
    const std::vector<std::unique_ptr<LoadedPlugin>>& plugins() const { return plugins_; }
    // Runs plug-in code under the guard; false when it threw.
    bool call(const std::string& what, const std::function<void()>& code);

    // Sends a signal to every responder whose provider offers `service`.
    void respond(ServiceID service, ISignalMgr& signal);
    // The session observer a plug-in registered for `iid`; null when none.
    IObserver* sessionObserver(PMIID iid) const;

    // The plug-ins' menu entries, and invoking one by its name or action ID.
    struct MenuItem {
        ActionID action = 0;
        std::string name;
        std::string title;
        std::string plugin;
    };
    std::vector<MenuItem> menu() const;
    // False when no entry has that name or ID.
    bool invokeAction(const std::string& nameOrID, IDocument* frontDocument);

    // Stops the idle tasks, runs `closeDialogs`, detaches the plug-ins' observers, destroys
    // their objects in the reverse order of creation and calls their stop handlers. Once.
    void shutdown(const std::function<void()>& closeDialogs);

    // DialogResources
    DialogEntry dialogEntry(const RsrcSpec& spec) const override;
    std::string widgetResourceFile(const RsrcSpec& spec) const override;
    void makeAddIns(WidgetID widget, IPMUnknown* owner, const AddInSink& add) override;
    IPMUnknown* dialogAddIn(RsrcID dialog, PMIID iid) const override;
    std::string displayText(const PMString& text) const override;

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

    void start(LoadedPlugin& plugin);
    void loadStrings(const LoadedPlugin& plugin);
    IPMUnknown* makeSessionObject(LoadedPlugin& plugin, PMIID iid, RsrcID dialog,
                                  PluginFactory factory, const char* what);
    void destroySessionObjects();
    const LoadedPlugin* pluginFor(const RsrcSpec& spec, bool dialog) const;

    PluginCalls& calls_;
    IdleTasks& idleTasks_;
    GalleySession& session_;
    PMLocaleId locale_;
    StringTable strings_;
    std::vector<std::unique_ptr<LoadedPlugin>> plugins_;
    std::vector<SessionObject> objects_; // in the order of creation
    std::vector<ResponderPair> responders_;
    std::vector<std::pair<std::string, CActionComponent*>> actionComponents_;
    bool shutDown_ = false;
};

} // namespace Galley
