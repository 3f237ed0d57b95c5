#pragma once

#include "sdk/PluginRegistry.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Galley {

// What one plug-in registered through its entry point. A second registration under an
// implementation ID already taken is refused and recorded as the plug-in's error.
class PluginRegistrations : public IPluginRegistry {
public:
    struct Responder {
        ImplementationID providerImpl = 0;
        PluginFactory provider = nullptr;
        ImplementationID responderImpl = 0;
        PluginFactory responder = nullptr;
    };
    struct SessionObject {
        ImplementationID impl = 0;
        PMIID iid = 0;
        PluginFactory factory = nullptr;
        RsrcID dialog = 0; // idle tasks: the dialog they are also reachable from
    };
    struct MenuEntry {
        ActionID action = 0;
        std::string name;
        std::string titleKey;
    };
    struct Dialog {
        std::string description;
        PluginFactory controller = nullptr;
        PluginFactory observer = nullptr;
    };
    struct WidgetAddIn {
        PMIID iid = 0;
        ImplementationID impl = 0;
        PluginFactory factory = nullptr;
    };

    void SetPluginInfo(const std::string& name, PluginID prefix) override;
    void RegisterResponder(ImplementationID providerImpl, PluginFactory provider,
                           ImplementationID responderImpl, PluginFactory responder) override;
    void RegisterSessionObserver(ImplementationID impl, PMIID iid, PluginFactory factory) override;
    void RegisterIdleTask(ImplementationID impl, PluginFactory factory, RsrcID dialog,
                          PMIID iid) override;
    void RegisterActionComponent(ImplementationID impl, PluginFactory factory) override;
    void RegisterMenuEntry(ActionID action, const std::string& name,
                           const std::string& titleKey) override;
    void RegisterDialog(RsrcID dialog, const std::string& description,
                        ImplementationID controllerImpl, PluginFactory controller,
                        ImplementationID observerImpl, PluginFactory observer) override;
    void RegisterWidgetResource(RsrcID resource, const std::string& description) override;
    void RegisterWidgetAddIn(WidgetID widget, PMIID iid, ImplementationID impl,
                             PluginFactory factory) override;
    void RegisterStringTable(const std::string& language, const std::string& file) override;
    void RegisterStopHandler(void (*stop)()) override { stopHandlers.push_back(stop); }

    std::string name;
    PluginID prefix = 0;
    std::vector<Responder> responders;
    std::vector<SessionObject> sessionObservers;
    std::vector<SessionObject> idleTasks;
    ImplementationID actionImpl = 0;
    PluginFactory actionComponent = nullptr;
    std::vector<MenuEntry> menu;
    std::map<RsrcID, Dialog> dialogs;
    std::map<RsrcID, std::string> widgetResources;
    std::multimap<WidgetID, WidgetAddIn> widgetAddIns;
    std::map<std::string, std::string> stringTables;
    std::vector<void (*)()> stopHandlers;
    // The first refusal, empty when every registration was taken.
    std::string error;

private:
    bool claim(ImplementationID impl, PluginFactory factory, const char* what);
    std::set<ImplementationID> claimed_;
};

} // namespace Galley
