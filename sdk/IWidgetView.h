#pragma once

#include "sdk/IControlView.h"
#include "sdk/IPMUnknown.h"

#include <string>

// A rectangle in a widget's own coordinates (points; y grows downwards).
struct PMRect {
    double left = 0, top = 0, right = 0, bottom = 0;
    double Width() const { return right - left; }
    double Height() const { return bottom - top; }
};

// Where a plug-in's view draws: the host's painter for one widget.
class IGraphicsPort {
public:
    virtual ~IGraphicsPort() = default;
    virtual void FillRect(const PMRect& rect, const RGBColor& colour) = 0;
    // Text centred in `rect`, in the named font (the host's default when it has none by that
    // name) at `pointSize`.
    virtual void DrawText(const std::string& utf8, const PMRect& rect, const std::string& fontName,
                          double pointSize, const RGBColor& colour) = 0;
};

// A plug-in's drawing of a widget, registered as the widget's add-in under IID_IWIDGETVIEW:
// where the host shows the widget in a window, it lets the view draw it.
class IWidgetView : public IPMUnknown {
public:
    virtual void Draw(IGraphicsPort* port, const PMRect& frame, IControlView* widget) = 0;
};
