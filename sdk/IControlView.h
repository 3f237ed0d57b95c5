#pragma once

#include "sdk/HostTypes.h"
#include "sdk/IPMUnknown.h"
#include "sdk/PMString.h"

class IListBoxController;
class IListControlData;
class IPanelControlData;
class IProgressBarControlData;
class ISubject;
class ITextControlData;
class ITreeViewController;
class ITreeViewMgr;

struct RGBColor {
    double red = 0, green = 0, blue = 0;
    friend bool operator==(const RGBColor&, const RGBColor&) = default;
};

// Named colours of the host's interface.
enum class InterfaceColor { none, menuHighlight };
inline constexpr InterfaceColor kInterfaceMenuHighLight = InterfaceColor::menuHighlight;

// A widget of a dialog (or a row of a tree view, an element of a list box). Each kind of
// widget serves the data interfaces that fit it; the others answer null.
class IControlView : public IPMUnknown, public IAddInHolder {
public:
    virtual WidgetID GetWidgetID() const = 0;
    // The widget's name in its description (Qt Designer's objectName).
    virtual std::string GetName() const = 0;

    virtual void Enable(bool enable = true) = 0;
    void Disable() { Enable(false); }
    virtual bool IsEnabled() const = 0;
    virtual void Show(bool show = true) = 0;
    virtual bool IsVisible() const = 0;
    // Asks for the widget to be drawn again.
    virtual void Invalidate() = 0;

    virtual void SetTextColor(const RGBColor& color) = 0;
    virtual void SetBackgroundColor(InterfaceColor color) = 0;

    // Changes this widget announces (button presses, text and selection changes).
    virtual ISubject* GetSubject() = 0;

    virtual ITextControlData* GetTextControlData() { return nullptr; }
    virtual IPanelControlData* GetPanelControlData() { return nullptr; }
    virtual IProgressBarControlData* GetProgressBarControlData() { return nullptr; }
    virtual ITreeViewMgr* GetTreeViewMgr() { return nullptr; }
    virtual ITreeViewController* GetTreeViewController() { return nullptr; }
    virtual IListControlData* GetListControlData() { return nullptr; }
    virtual IListBoxController* GetListBoxController() { return nullptr; }
};

// A widget that holds others.
class IPanelControlData {
public:
    virtual ~IPanelControlData() = default;
    virtual int32 Length() const = 0;
    virtual IControlView* GetWidget(int32 index) const = 0;
    // The first widget with that ID among the children, searched breadth-first down to
    // `depth` levels (1: the direct children only); null when none.
    virtual IControlView* FindWidget(WidgetID id, int32 depth = 1) const = 0;
};

// A widget's text: a label, a button's caption, an edit field.
class ITextControlData {
public:
    virtual ~ITextControlData() = default;
    // A translatable string is looked up in the plug-in's string tables when shown.
    virtual void SetString(const PMString& text, bool invalidate = true, bool notify = true) = 0;
    virtual PMString GetString() const = 0;
};

// A progress bar's range and value. Values are 16-bit, as the host's controls keep them.
class IProgressBarControlData {
public:
    virtual ~IProgressBarControlData() = default;
    virtual void SetRange(int16 minimum, int16 maximum, bool invalidate = true,
                          bool notify = true) = 0;
    virtual void SetValue(int16 value, bool invalidate = true, bool notify = true) = 0;
    virtual int16 GetMinimum() const = 0;
    virtual int16 GetMaximum() const = 0;
    virtual int16 GetValue() const = 0;
};

// A text and an integer kept on a host object (a dialog's result).
class IStringData {
public:
    virtual ~IStringData() = default;
    virtual void Set(const PMString& text) = 0;
    virtual PMString GetString() const = 0;
};

class IIntData {
public:
    virtual ~IIntData() = default;
    virtual void Set(int32 value) = 0;
    virtual int32 GetInt() const = 0;
};
