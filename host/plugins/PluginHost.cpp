#include "host/plugins/PluginHost.h"

#include "host/base/PluginCalls.h"
#include "host/loop/IdleTasks.h"
#include "host/session/GalleySession.h"
#include "sdk/CServiceProvider.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IActionComponent.h"
#include "sdk/IIdleTask.h"
#include "sdk/IObserver.h"
#include "sdk/ISignalMgr.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace Galley {

namespace {

std::string hexID(uint32 id) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", id);
    return text;
}

class FrontContext : public IActiveContext {
public:
    explicit FrontContext(IDocument* document) : document_(document) {}
    IDocument* GetContextDocument() const override { return document_; }

private:
    IDocument* document_;
};

} // namespace

PluginHost::PluginHost(PluginCalls& calls, IdleTasks& idleTasks, GalleySession& session,
                       PMLocaleId locale)
    : calls_(calls), idleTasks_(idleTasks), session_(session), locale_(std::move(locale)) {}

PluginHost::~PluginHost() {
    shutdown([] {});
}

void PluginHost::load(const std::vector<std::string>& searchPath) {
    PluginLoader loader(calls_);
    for (auto& plugin : loader.loadAll(searchPath)) {
        plugins_.push_back(std::move(plugin));
        if (plugins_.back()->state == LoadedPlugin::State::registered)
            start(*plugins_.back());
    }
}

bool PluginHost::call(const std::string& what, const std::function<void()>& code) {
    return calls_.guarded("", what, code);
}

void PluginHost::loadStrings(const LoadedPlugin& plugin) {
    for (const auto& [language, file] : plugin.registrations.stringTables) {
        const std::string path = plugin.resourceFolder + "/" + file;
        if (language == locale_.language && !strings_.load(path))
            calls_.report("plug-in " + plugin.name() + ": string table " + path +
                          " cannot be read; its texts show as keys");
    }
}

IPMUnknown* PluginHost::makeSessionObject(LoadedPlugin& plugin, PMIID iid, RsrcID dialog,
                                          PluginFactory factory, const char* what) {
    std::unique_ptr<IPMUnknown> made;
    call(std::string("making its ") + what, [&] { made = factory(nullptr); });
    if (!made)
        return nullptr;
    objects_.push_back({plugin.name(), iid, dialog, std::move(made)});
    return objects_.back().object.get();
}

void PluginHost::start(LoadedPlugin& plugin) {
    const PluginRegistrations& reg = plugin.registrations;
    loadStrings(plugin);
    for (const auto& entry : reg.responders) {
        auto* provider = dynamic_cast<CServiceProvider*>(
            makeSessionObject(plugin, 0, 0, entry.provider, "service provider"));
        auto* responder = dynamic_cast<CResponder*>(
            makeSessionObject(plugin, 0, 0, entry.responder, "responder"));
        if (provider && responder)
            responders_.push_back({plugin.name(), provider, responder});
    }
    for (const auto& entry : reg.sessionObservers)
        makeSessionObject(plugin, entry.iid, 0, entry.factory, "observer");
    for (const auto& entry : reg.idleTasks)
        makeSessionObject(plugin, entry.iid, entry.dialog, entry.factory, "idle task");
    if (reg.actionComponent)
        if (auto* component = dynamic_cast<CActionComponent*>(
                makeSessionObject(plugin, 0, 0, reg.actionComponent, "action component")))
            actionComponents_.emplace_back(plugin.name(), component);
    plugin.state = LoadedPlugin::State::running;
}

void PluginHost::respond(ServiceID service, ISignalMgr& signal) {
    // A copy: a responder may make the host load or stop things while it runs.
    for (const auto& pair : std::vector<ResponderPair>(responders_)) {
        K2Vector<ServiceID> services;
        call("its service provider", [&] {
            if (pair.provider->HasMultipleIDs())
                pair.provider->GetServiceIDs(services);
            else
                services.push_back(pair.provider->GetServiceID());
        });
        if (std::find(services.begin(), services.end(), service) == services.end())
            continue;
        call("its responder to signal " + std::to_string(service),
             [&] { pair.responder->Respond(&signal); });
    }
}

IObserver* PluginHost::sessionObserver(PMIID iid) const {
    for (const auto& object : objects_)
        if (object.iid == iid && object.dialog == 0)
            if (auto* observer = dynamic_cast<IObserver*>(object.object.get()))
                return observer;
    return nullptr;
}

std::vector<PluginHost::MenuItem> PluginHost::menu() const {
    std::vector<MenuItem> items;
    for (const auto& plugin : plugins_) {
        if (plugin->state != LoadedPlugin::State::running)
            continue;
        for (const auto& entry : plugin->registrations.menu)
            items.push_back(
                {entry.action, entry.name, strings_.lookup(entry.titleKey), plugin->name()});
    }
    return items;
}

bool PluginHost::invokeAction(const std::string& nameOrID, IDocument* frontDocument) {
    for (const auto& item : menu()) {
        if (item.name != nameOrID && hexID(item.action) != nameOrID &&
            std::to_string(item.action) != nameOrID)
            continue;
        FrontContext context(frontDocument);
        for (const auto& [plugin, component] : actionComponents_)
            if (plugin == item.plugin)
                call("the action " + item.name,
                     [&] { component->DoAction(&context, item.action, Point{}, nullptr); });
        return true;
    }
    return false;
}

void PluginHost::shutdown(const std::function<void()>& closeDialogs) {
    if (shutDown_)
        return;
    shutDown_ = true;
    for (auto& object : objects_)
        if (auto* task = dynamic_cast<CIdleTask*>(object.object.get()))
            idleTasks_.uninstall(task);
    closeDialogs();
    destroySessionObjects();
    for (auto& plugin : plugins_) {
        if (plugin->state != LoadedPlugin::State::running)
            continue;
        for (auto stop : plugin->registrations.stopHandlers)
            call("stopping", [&] { stop(); });
        plugin->state = LoadedPlugin::State::stopped;
    }
}

void PluginHost::destroySessionObjects() {
    for (auto it = objects_.rbegin(); it != objects_.rend(); ++it) {
        if (auto* observer = dynamic_cast<IObserver*>(it->object.get())) {
            // Observers of the session may still be attached to its subjects.
            call("detaching its observer", [&] { observer->AutoDetach(); });
            if (ISubject* fonts = session_.fonts().GetSubject())
                fonts->DetachObserver(observer, IID_IFONTMGR);
        }
    }
    responders_.clear();
    actionComponents_.clear();
    while (!objects_.empty()) {
        call("destroying its objects", [&] { objects_.back().object.reset(); });
        objects_.pop_back();
    }
}

// --- resources of the plug-ins' dialogs -----------------------------------------------

const LoadedPlugin* PluginHost::pluginFor(const RsrcSpec& spec, bool dialog) const {
    for (const auto& plugin : plugins_) {
        if (plugin->state != LoadedPlugin::State::running &&
            plugin->state != LoadedPlugin::State::registered)
            continue;
        const auto& reg = plugin->registrations;
        if (spec.pluginID != 0 && reg.prefix != spec.pluginID)
            continue;
        if (dialog ? reg.dialogs.count(spec.rsrcID) : reg.widgetResources.count(spec.rsrcID))
            return plugin.get();
    }
    return nullptr;
}

DialogResources::DialogEntry PluginHost::dialogEntry(const RsrcSpec& spec) const {
    const LoadedPlugin* plugin = pluginFor(spec, true);
    if (!plugin)
        throw std::runtime_error("no plug-in has a dialog resource " + std::to_string(spec.rsrcID) +
                                 " (plug-in " + hexID(spec.pluginID) + ")");
    const auto& entry = plugin->registrations.dialogs.at(spec.rsrcID);
    return {plugin->name(), plugin->resourceFolder + "/" + entry.description, entry.controller,
            entry.observer};
}

std::string PluginHost::widgetResourceFile(const RsrcSpec& spec) const {
    const LoadedPlugin* plugin = pluginFor(spec, false);
    if (!plugin)
        throw std::runtime_error("no plug-in has a widget resource " + std::to_string(spec.rsrcID));
    return plugin->resourceFolder + "/" + plugin->registrations.widgetResources.at(spec.rsrcID);
}

void PluginHost::makeAddIns(WidgetID widget, IPMUnknown* owner, const AddInSink& add) {
    for (const auto& plugin : plugins_) {
        if (plugin->state != LoadedPlugin::State::running)
            continue;
        auto [first, last] = plugin->registrations.widgetAddIns.equal_range(widget);
        for (auto it = first; it != last; ++it) {
            std::unique_ptr<IPMUnknown> made;
            call("making a widget's " + hexID(it->second.impl),
                 [&] { made = it->second.factory(owner); });
            if (made)
                add(it->second.iid, std::move(made));
        }
    }
}

IPMUnknown* PluginHost::dialogAddIn(RsrcID dialog, PMIID iid) const {
    for (const auto& object : objects_)
        if (object.dialog == dialog && object.iid == iid)
            return object.object.get();
    return nullptr;
}

std::string PluginHost::displayText(const PMString& text) const {
    const std::string utf8 = text.GetUTF8String();
    return text.IsTranslatable() ? strings_.lookup(utf8) : utf8;
}

} // namespace Galley
