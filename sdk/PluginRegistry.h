#pragma once

#include "sdk/HostTypes.h"
#include "sdk/IPMUnknown.h"

#include <memory>
#include <string>

// The boundary between Galley and a plug-in.
//
// A plug-in is a shared library that exports two C symbols:
//   extern "C" const uint32 GalleyPluginSDKVersion;          (must equal kGalleySDKVersion)
//   extern "C" void GalleyPluginMain(IPluginRegistry* registry);
// The host reads the version before it calls anything, then calls the entry once with a
// registry. The plug-in registers factories on it; the host creates the objects from them
// when it needs them, owns them and destroys them. Every call into a plug-in comes from the
// host's main thread and is guarded: an exception that escapes is reported, never fatal.

// Raised whenever an SDK header changes in a way that breaks plug-ins built against it.
inline constexpr uint32 kGalleySDKVersion = 3;

#define GALLEY_PLUGIN_VERSION_SYMBOL "GalleyPluginSDKVersion"
#define GALLEY_PLUGIN_ENTRY_SYMBOL "GalleyPluginMain"

// Creates a plug-in object on `boss`: the dialog or widget it lives on, or null for objects
// of the session.
using PluginFactory = std::unique_ptr<IPMUnknown> (*)(IPMUnknown* boss);

class IPluginRegistry {
public:
    virtual ~IPluginRegistry() = default;

    // The plug-in's name (for messages) and identifier prefix (for its resources).
    virtual void SetPluginInfo(const std::string& name, PluginID prefix) = 0;

    // A service provider and the responder that receives its signals.
    virtual void RegisterResponder(ImplementationID providerImpl, PluginFactory provider,
                                   ImplementationID responderImpl, PluginFactory responder) = 0;
    // An observer made once on the session and found there by `iid` (ISession::QueryObserver).
    virtual void RegisterSessionObserver(ImplementationID impl, PMIID iid,
                                         PluginFactory factory) = 0;
    // An idle task made once on the session; it runs when something installs it. When
    // `dialog` is not 0, the task is also reachable as add-in `iid` of that dialog.
    virtual void RegisterIdleTask(ImplementationID impl, PluginFactory factory, RsrcID dialog,
                                  PMIID iid) = 0;
    // The action component and one menu entry per action (`titleKey` is a string key).
    virtual void RegisterActionComponent(ImplementationID impl, PluginFactory factory) = 0;
    virtual void RegisterMenuEntry(ActionID action, const std::string& name,
                                   const std::string& titleKey) = 0;

    // A dialog: its description (a .ui file of the plug-in's resources), its controller
    // and its observer.
    virtual void RegisterDialog(RsrcID dialog, const std::string& description,
                                ImplementationID controllerImpl, PluginFactory controller,
                                ImplementationID observerImpl, PluginFactory observer) = 0;
    // A widget description used as a row or list element (no controller of its own).
    virtual void RegisterWidgetResource(RsrcID resource, const std::string& description) = 0;
    // An object made on every widget with `widget` ID when the widget is created:
    // tree-view models, adapters, widget managers, observers and event handlers.
    // Observers among them attach and detach with their dialog.
    virtual void RegisterWidgetAddIn(WidgetID widget, PMIID iid, ImplementationID impl,
                                     PluginFactory factory) = 0;
    // A string table of the plug-in's resources ("key = text" lines) for a language.
    virtual void RegisterStringTable(const std::string& language, const std::string& file) = 0;
    // Called once when the host stops the plug-in, after its objects were destroyed and
    // before the platform services go away: the place to stop the plug-in's own threads.
    virtual void RegisterStopHandler(void (*stop)()) = 0;
};

extern "C" {
using GalleyPluginEntry = void (*)(IPluginRegistry*);
}
