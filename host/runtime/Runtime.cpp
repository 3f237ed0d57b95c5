#include "host/runtime/Runtime.h"

#include "host/document/IdmlDocument.h"
#include "host/runtime/BusAttachment.h"
#include "host/runtime/FontFolderWatch.h"
#include "host/session/GalleySession.h"
#include "sdk/CServiceProvider.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IActionComponent.h"
#include "sdk/IIdleTask.h"
#include "sdk/ISignalMgr.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace Galley {

namespace {

class DocumentSignal : public ISignalMgr, public IDocumentSignalData {
public:
    DocumentSignal(ServiceID service, IDocument* document)
        : service_(service), document_(document) {}
    ServiceID GetServiceID() const override { return service_; }
    IDocumentSignalData* GetDocumentSignalData() const override {
        return const_cast<DocumentSignal*>(this);
    }
    IDocument* GetDocument() const override { return document_; }

private:
    ServiceID service_;
    IDocument* document_;
};

class FrontContext : public IActiveContext {
public:
    explicit FrontContext(IDocument* document) : document_(document) {}
    IDocument* GetContextDocument() const override { return document_; }

private:
    IDocument* document_;
};

std::string hexID(uint32 id) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", id);
    return text;
}

// A font-list update waits this long on the watch when nothing has changed yet: one tick.
constexpr int changeWaitMilliseconds = 16;

} // namespace

Runtime::Runtime(EventLoop& loop, GalleySession& session, Presenter& presenter, Options options)
    : events_(loop), loop_(loop), session_(session), presenter_(presenter), options_(options),
      calls_([this](const std::string& message) { report(message); }),
      idleTasks_(loop, [this](const std::string& what, const std::function<void()>& call) {
          callPlugin(what, call);
      }) {
    SetHostHooks(this);
    session_.attachRuntime(this, this, this, [this](PMIID iid) -> IObserver* {
        for (auto& object : objects_)
            if (object.iid == iid && object.dialog == 0)
                if (auto* observer = dynamic_cast<IObserver*>(object.object.get()))
                    return observer;
        return nullptr;
    });
    if (options_.bus)
        bus_ = std::make_unique<BusAttachment>(
            loop_, *options_.bus,
            [this](const std::string& what, const std::function<void()>& call) {
                callPlugin(what, call);
            });
    if (options_.watchFontFolders) {
        try {
            fontWatch_ = std::make_unique<FontFolderWatch>(events_, [this] {
                // Coalesced: one reload however many events a burst of links brought.
                if (!fontChangePending_) {
                    fontChangePending_ = true;
                    loop_.post([this] { fontFoldersChanged(); });
                }
            });
            refreshFontWatch();
            session_.fonts().setChangeWait([this] {
                if (fontWatch_)
                    fontWatch_->waitForChange(changeWaitMilliseconds);
            });
        } catch (const std::exception& error) {
            report(std::string(error.what()) + "; fonts activated while Galley runs are seen only "
                                               "when the font list is updated");
        }
    }
}

Runtime::~Runtime() {
    shutdown();
    session_.fonts().setChangeWait(nullptr);
    session_.attachRuntime(nullptr, nullptr, nullptr, nullptr);
    if (GetHostHooks() == this)
        SetHostHooks(nullptr);
}

void Runtime::refreshFontWatch() {
    if (fontWatch_)
        fontWatch_->watch(session_.fonts().source().watchedFolders());
}

bool Runtime::fontChangesPending() const {
    return fontChangePending_ || (fontWatch_ && fontWatch_->waitForChange(0));
}

void Runtime::fontFoldersChanged() {
    fontChangePending_ = false;
    // The font manager announces the change to its observers (plug-ins among them).
    callPlugin("the font-system change", [&] { session_.fonts().UpdateFontList(); });
    refreshFontWatch();
}

// --- plug-ins -------------------------------------------------------------------------

void Runtime::loadPlugins(const std::vector<std::string>& searchPath) {
    PluginLoader loader(calls_);
    for (auto& plugin : loader.loadAll(searchPath)) {
        plugins_.push_back(std::move(plugin));
        if (plugins_.back()->state == LoadedPlugin::State::registered)
            startPlugin(*plugins_.back());
    }
}

IPMUnknown* Runtime::makeSessionObject(LoadedPlugin& plugin, PMIID iid, RsrcID dialog,
                                       PluginFactory factory, const char* what) {
    std::unique_ptr<IPMUnknown> made;
    callPlugin(std::string("making its ") + what, [&] { made = factory(nullptr); });
    if (!made)
        return nullptr;
    objects_.push_back({plugin.name(), iid, dialog, std::move(made)});
    return objects_.back().object.get();
}

void Runtime::startPlugin(LoadedPlugin& plugin) {
    const PluginRegistrations& reg = plugin.registrations;
    for (const auto& [language, file] : reg.stringTables)
        if (language == locale().language && !strings_.load(plugin.resourceFolder + "/" + file))
            report("plug-in " + plugin.name() + ": string table " + plugin.resourceFolder + "/" +
                   file + " cannot be read; its texts show as keys");
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

void Runtime::shutdown() {
    if (shutDown_)
        return;
    shutDown_ = true;
    for (auto& object : objects_)
        if (auto* task = dynamic_cast<CIdleTask*>(object.object.get()))
            idleTasks_.uninstall(task);
    for (Dialog* dialog : std::vector<Dialog*>(openOrder_.rbegin(), openOrder_.rend()))
        dialog->Close();
    dialogs_.clear();
    openOrder_.clear();
    for (auto it = objects_.rbegin(); it != objects_.rend(); ++it) {
        if (auto* observer = dynamic_cast<IObserver*>(it->object.get())) {
            // Observers of the session may still be attached to its subjects.
            callPlugin("detaching its observer", [&] { observer->AutoDetach(); });
            if (ISubject* fonts = session_.fonts().GetSubject())
                fonts->DetachObserver(observer, IID_IFONTMGR);
        }
    }
    responders_.clear();
    actionComponents_.clear();
    while (!objects_.empty()) {
        callPlugin("destroying its objects", [&] { objects_.back().object.reset(); });
        objects_.pop_back();
    }
    for (auto& plugin : plugins_) {
        if (plugin->state != LoadedPlugin::State::running)
            continue;
        for (auto stop : plugin->registrations.stopHandlers)
            callPlugin("stopping", [&] { stop(); });
        plugin->state = LoadedPlugin::State::stopped;
    }
    document_.reset();
}

bool Runtime::callPlugin(const std::string& what, const std::function<void()>& call) {
    return calls_.guarded("", what, call);
}

// --- documents and signals ------------------------------------------------------------

IdmlDocument& Runtime::openDocument(const std::string& path) {
    auto opened = IdmlDocument::open(path, session_.fonts());
    document_ = std::move(opened);
    // Shown first, so that the plug-ins' dialogs come up in front of the document.
    presenter_.documentChanged(*document_);
    sendDocumentSignal(kAfterOpenDocSignalResponderService, document_.get());
    return *document_;
}

void Runtime::sendDocumentSignal(ServiceID service, IDocument* document) {
    DocumentSignal signal(service, document);
    for (const auto& pair : std::vector<ResponderPair>(responders_)) {
        K2Vector<ServiceID> services;
        callPlugin("its service provider", [&] {
            if (pair.provider->HasMultipleIDs())
                pair.provider->GetServiceIDs(services);
            else
                services.push_back(pair.provider->GetServiceID());
        });
        if (std::find(services.begin(), services.end(), service) == services.end())
            continue;
        callPlugin("its responder to signal " + std::to_string(service),
                   [&] { pair.responder->Respond(&signal); });
    }
}

IDocument* Runtime::GetFrontDocument() const {
    return document_.get();
}

void Runtime::UpdateViews(bool immediately) {
    auto update = [this] {
        if (!viewsOutOfDate_)
            return;
        viewsOutOfDate_ = false;
        if (document_) {
            document_->usage().Update();
            presenter_.documentChanged(*document_);
        }
    };
    if (immediately)
        update();
    else
        loop_.post(update);
}

// --- menu -----------------------------------------------------------------------------

std::vector<Runtime::MenuItem> Runtime::menu() const {
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

bool Runtime::invokeAction(const std::string& nameOrID) {
    for (const auto& item : menu()) {
        if (item.name != nameOrID && hexID(item.action) != nameOrID &&
            std::to_string(item.action) != nameOrID)
            continue;
        FrontContext context(document_.get());
        for (const auto& [plugin, component] : actionComponents_)
            if (plugin == item.plugin)
                callPlugin("the action " + item.name,
                           [&] { component->DoAction(&context, item.action, Point{}, nullptr); });
        return true;
    }
    return false;
}

// --- host hooks -----------------------------------------------------------------------

void Runtime::installIdleTask(CIdleTask* task, uint32 delayMilliseconds) {
    if (!shutDown_)
        idleTasks_.install(task, delayMilliseconds);
}

void Runtime::uninstallIdleTask(CIdleTask* task) {
    idleTasks_.uninstall(task);
}

bool Runtime::isIdleTaskInstalled(const CIdleTask* task) const {
    return idleTasks_.isInstalled(task);
}

IControlView* Runtime::createRowWidget(IControlView* tree, const RsrcSpec& row) {
    auto* widget = dynamic_cast<Widget*>(tree);
    return widget ? widget->makeRowWidget(row) : nullptr;
}

int16 Runtime::present(Kind kind, const PMString& message, const PMString buttons[3],
                       int16 defaultButton, int16) {
    const std::string texts[3] = {displayText(buttons[0]), displayText(buttons[1]),
                                  displayText(buttons[2])};
    return presenter_.alert(kind, displayText(message), texts, defaultButton);
}

std::string Runtime::displayText(const PMString& text) const {
    const std::string utf8 = text.GetUTF8String();
    return text.IsTranslatable() ? strings_.lookup(utf8) : utf8;
}

// --- dialogs --------------------------------------------------------------------------

const LoadedPlugin* Runtime::pluginFor(const RsrcSpec& spec, bool dialog) const {
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

DialogHost::DialogResource Runtime::dialogResource(const RsrcSpec& spec) {
    const LoadedPlugin* plugin = pluginFor(spec, true);
    if (!plugin)
        throw std::runtime_error("no plug-in has a dialog resource " + std::to_string(spec.rsrcID) +
                                 " (plug-in " + hexID(spec.pluginID) + ")");
    const auto& entry = plugin->registrations.dialogs.at(spec.rsrcID);
    const std::string file = plugin->resourceFolder + "/" + entry.description;
    auto cached = descriptions_.find(file);
    if (cached == descriptions_.end())
        cached = descriptions_.emplace(file, readUiDescription(file)).first;
    return {plugin->name(), file, cached->second, entry.controller, entry.observer};
}

WidgetSpec Runtime::widgetResource(const RsrcSpec& spec) {
    const LoadedPlugin* plugin = pluginFor(spec, false);
    if (!plugin) {
        const std::string why = "no plug-in has a widget resource " + std::to_string(spec.rsrcID);
        report(why);
        throw std::runtime_error(why);
    }
    const std::string file =
        plugin->resourceFolder + "/" + plugin->registrations.widgetResources.at(spec.rsrcID);
    auto cached = descriptions_.find(file);
    if (cached == descriptions_.end()) {
        try {
            cached = descriptions_.emplace(file, readUiDescription(file)).first;
        } catch (const std::exception& error) {
            report(error.what());
            throw;
        }
    }
    return cached->second;
}

void Runtime::addWidgetAddIns(Widget& widget) {
    if (widget.GetWidgetID() == kInvalidWidgetID)
        return;
    for (const auto& plugin : plugins_) {
        if (plugin->state != LoadedPlugin::State::running)
            continue;
        auto [first, last] = plugin->registrations.widgetAddIns.equal_range(widget.GetWidgetID());
        for (auto it = first; it != last; ++it) {
            std::unique_ptr<IPMUnknown> made;
            callPlugin("making a widget's " + hexID(it->second.impl),
                       [&] { made = it->second.factory(&widget); });
            if (made)
                widget.addAddIn(it->second.iid, std::move(made));
        }
    }
}

IPMUnknown* Runtime::dialogAddIn(RsrcID dialog, PMIID iid) const {
    for (const auto& object : objects_)
        if (object.dialog == dialog && object.iid == iid)
            return object.object.get();
    return nullptr;
}

IDialog* Runtime::CreateNewDialog(const RsrcSpec& spec, IDialog::DialogType mode) {
    if (shutDown_)
        return nullptr;
    try {
        dialogs_.push_back(std::make_unique<Dialog>(*this, spec, mode));
    } catch (const std::exception& error) {
        report(error.what());
        return nullptr;
    }
    Dialog* made = dialogs_.back().get();
    // A dialog a plug-in made but never opened goes once control is back in the host.
    if (calls_.depth() > 0)
        scheduleSweep();
    return made;
}

Dialog* Runtime::frontDialog() const {
    return openOrder_.empty() ? nullptr : openOrder_.back();
}

void Runtime::scheduleSweep() {
    // At the next turn of the loop, and then only once no plug-in code is on the stack:
    // whoever closed a dialog may still be reading it.
    loop_.post([this] { calls_.deferUntilHostLevel([this] { sweepDialogs(); }); });
}

void Runtime::sweepDialogs() {
    // Closed dialogs are destroyed only here, when no plug-in code can still hold them.
    std::vector<std::unique_ptr<Dialog>> closed;
    for (auto& dialog : dialogs_)
        if (!dialog->IsOpen() && !dialog->isWaitedFor())
            closed.push_back(std::move(dialog));
    std::erase(dialogs_, nullptr);
    closed.clear();
}

void Runtime::dialogOpened(Dialog& dialog) {
    openOrder_.push_back(&dialog);
    presenter_.dialogOpened(dialog);
}

void Runtime::dialogChanged(Dialog& dialog, Widget& widget) {
    presenter_.dialogChanged(dialog, widget);
}

void Runtime::dialogClosed(Dialog& dialog) {
    std::erase(openOrder_, &dialog);
    presenter_.dialogClosed(dialog);
    scheduleSweep();
}

void Runtime::waitUntil(const std::function<bool()>& done, bool allowIdleTasks) {
    if (!allowIdleTasks)
        idleTasks_.hold();
    const bool finished = loop_.runUntil(done, options_.deadline);
    if (!allowIdleTasks)
        idleTasks_.release();
    if (finished)
        return;
    // Out of time (or quitting): cancel every dialog in front, which ends every wait.
    timedOut_ = timedOut_ || !loop_.quitting();
    for (Dialog* dialog : std::vector<Dialog*>(openOrder_.rbegin(), openOrder_.rend()))
        dialog->cancel();
}

} // namespace Galley
