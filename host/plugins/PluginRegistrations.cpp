#include "host/plugins/PluginRegistrations.h"

#include <cstdio>

namespace Galley {

namespace {

std::string hex(ImplementationID id) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", id);
    return text;
}

} // namespace

bool PluginRegistrations::claim(ImplementationID impl, PluginFactory factory, const char* what) {
    std::string refusal;
    if (!factory)
        refusal = std::string(what) + " " + hex(impl) + " was registered without a factory";
    else if (!claimed_.insert(impl).second)
        refusal = std::string(what) + " " + hex(impl) + " is registered twice";
    if (refusal.empty())
        return true;
    if (error.empty())
        error = refusal;
    return false;
}

void PluginRegistrations::SetPluginInfo(const std::string& pluginName, PluginID pluginPrefix) {
    name = pluginName;
    prefix = pluginPrefix;
}

void PluginRegistrations::RegisterResponder(ImplementationID providerImpl, PluginFactory provider,
                                            ImplementationID responderImpl,
                                            PluginFactory responder) {
    if (claim(providerImpl, provider, "service provider") &&
        claim(responderImpl, responder, "responder"))
        responders.push_back({providerImpl, provider, responderImpl, responder});
}

void PluginRegistrations::RegisterSessionObserver(ImplementationID impl, PMIID iid,
                                                  PluginFactory factory) {
    if (claim(impl, factory, "observer"))
        sessionObservers.push_back({impl, iid, factory, 0});
}

void PluginRegistrations::RegisterIdleTask(ImplementationID impl, PluginFactory factory,
                                           RsrcID dialog, PMIID iid) {
    if (claim(impl, factory, "idle task"))
        idleTasks.push_back({impl, iid, factory, dialog});
}

void PluginRegistrations::RegisterActionComponent(ImplementationID impl, PluginFactory factory) {
    if (actionComponent && error.empty())
        error = "a second action component " + hex(impl) + " was registered";
    else if (claim(impl, factory, "action component")) {
        actionImpl = impl;
        actionComponent = factory;
    }
}

void PluginRegistrations::RegisterMenuEntry(ActionID action, const std::string& entryName,
                                            const std::string& titleKey) {
    menu.push_back({action, entryName, titleKey});
}

void PluginRegistrations::RegisterDialog(RsrcID dialog, const std::string& description,
                                         ImplementationID controllerImpl, PluginFactory controller,
                                         ImplementationID observerImpl, PluginFactory observer) {
    if (claim(controllerImpl, controller, "dialog controller") &&
        claim(observerImpl, observer, "dialog observer"))
        dialogs[dialog] = {description, controller, observer};
}

void PluginRegistrations::RegisterWidgetResource(RsrcID resource, const std::string& description) {
    widgetResources[resource] = description;
}

void PluginRegistrations::RegisterWidgetAddIn(WidgetID widget, PMIID iid, ImplementationID impl,
                                              PluginFactory factory) {
    if (claim(impl, factory, "widget add-in"))
        widgetAddIns.insert({widget, {iid, impl, factory}});
}

void PluginRegistrations::RegisterStringTable(const std::string& language,
                                              const std::string& file) {
    stringTables[language] = file;
}

} // namespace Galley
