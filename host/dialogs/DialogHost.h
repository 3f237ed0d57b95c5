#pragma once

#include "host/dialogs/UiDescription.h"
#include "sdk/PMString.h"
#include "sdk/PluginRegistry.h"
#include "sdk/ResourceName.h"

#include <functional>
#include <memory>
#include <string>

namespace Galley {

class Dialog;
class Widget;
class WidgetServices;

// What dialogs need from the runtime around them: plug-in registrations and resources,
// the guard for plug-in calls, the loop for modal waits, and whoever shows them.
class DialogHost {
public:
    virtual ~DialogHost() = default;

    struct DialogResource {
        std::string plugin; // for messages
        std::string file;   // the description's file
        WidgetSpec description;
        PluginFactory controller = nullptr;
        PluginFactory observer = nullptr;
    };
    // The dialog registered as `spec` (its description read); throws std::runtime_error
    // naming the plug-in and the file when it cannot be had.
    virtual DialogResource dialogResource(const RsrcSpec& spec) = 0;
    // A widget resource (row, list element); throws like dialogResource.
    virtual WidgetSpec widgetResource(const RsrcSpec& spec) = 0;
    // Makes the plug-ins' add-ins for `widget` (by its widget ID) and those of `dialog`.
    virtual void addWidgetAddIns(Widget& widget) = 0;
    // An object of the session the plug-in made reachable from `dialog` (its idle task).
    virtual IPMUnknown* dialogAddIn(RsrcID dialog, PMIID iid) const = 0;

    virtual std::string displayText(const PMString& text) const = 0;
    virtual bool callPlugin(const std::string& what, const std::function<void()>& call) = 0;
    // Runs the loop until `done` (bounded in batch mode); idle tasks wait unless allowed.
    virtual void waitUntil(const std::function<bool()>& done, bool allowIdleTasks) = 0;

    // Whoever shows dialogs (the terminal, the GUI, a test) hears of every change.
    virtual void dialogOpened(Dialog& dialog) = 0;
    virtual void dialogChanged(Dialog& dialog, Widget& widget) = 0;
    virtual void dialogClosed(Dialog& dialog) = 0;
};

} // namespace Galley
