#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

class IControlView;
class IPanelControlData;

// Adds, empties and reads the selection of a list box of a dialog, whose elements are
// made from one of the plug-in's element resources.
class SDKListBoxHelper {
public:
    SDKListBoxHelper(IPanelControlData* owner, PluginID plugin, WidgetID listBox,
                     RsrcID elementResource)
        : owner_(owner), plugin_(plugin), listBox_(listBox), element_(elementResource) {}

    IControlView* FindCurrentListBox() const;
    void EmptyCurrentListBox();
    // False when the element could not be made (nothing was added).
    bool AddElement(const PMString& text, WidgetID textWidget, int position);
    // The first selected position, or -1.
    int getSelected() const;

private:
    IPanelControlData* owner_;
    PluginID plugin_;
    WidgetID listBox_;
    RsrcID element_;
};
