#pragma once

#include "sdk/PMString.h"
#include "sdk/PluginRegistry.h"
#include "sdk/ResourceName.h"

#include <functional>
#include <memory>
#include <string>

namespace Galley {

// What dialogs need of the plug-ins that describe them: the description and the controller
// and observer of each dialog, widget resources, add-ins, session objects and texts. The
// plug-in host supplies them; tests can supply their own.
class DialogResources {
public:
    virtual ~DialogResources() = default;

    struct DialogEntry {
        std::string plugin; // for messages
        std::string file;   // the description's file
        PluginFactory controller = nullptr;
        PluginFactory observer = nullptr;
    };
    // The dialog registered as `spec`; throws std::runtime_error naming the plug-in when
    // none is.
    virtual DialogEntry dialogEntry(const RsrcSpec& spec) const = 0;
    // The description file of a widget resource (row, list element); throws likewise.
    virtual std::string widgetResourceFile(const RsrcSpec& spec) const = 0;
    // Makes every add-in the plug-ins registered for the widget ID, owned by `owner`.
    using AddInSink = std::function<void(PMIID iid, std::unique_ptr<IPMUnknown> addIn)>;
    virtual void makeAddIns(WidgetID widget, IPMUnknown* owner, const AddInSink& add) = 0;
    // An object of the session a plug-in made reachable from `dialog` (its idle task).
    virtual IPMUnknown* dialogAddIn(RsrcID dialog, PMIID iid) const = 0;
    // A text in the user's language: a key looked up in the plug-ins' string tables.
    virtual std::string displayText(const PMString& text) const = 0;
};

} // namespace Galley
