#pragma once

#include "sdk/IControlView.h"
#include "sdk/IWidgetView.h"

#include <string>

// What the progress dialog's bar draws, worked out apart from any painting so that every
// view (the terminal, the GUI) draws the same: a bar filled in proportion to its value
// within its range, and the widget's text over it in 12-point Lucida Grande.
namespace VLMProgressBarWidgetView {

struct Rect {
    double left = 0, top = 0, width = 0, height = 0;
    friend bool operator==(const Rect&, const Rect&) = default;
};

struct Contents {
    Rect filled; // the part of the frame that shows progress
    Rect empty;  // the rest of the frame
    RGBColor filledColour{0.2, 0.6, 0.4};
    RGBColor emptyColour{0.85, 0.85, 0.85};
    std::string text; // drawn centred over the bar when not empty
    std::string fontName = "LucidaGrande";
    double pointSize = 12;
};

// A value outside the range is held to it; an empty or reversed range shows nothing filled.
Contents layout(const Rect& frame, int16 minimum, int16 maximum, int16 value,
                const std::string& text);

// The progress bar's view in a window: draws the layout above with the host's painter,
// from the bar's range, value and own text.
class View : public IWidgetView {
public:
    void Draw(IGraphicsPort* port, const PMRect& frame, IControlView* widget) override;
};

} // namespace VLMProgressBarWidgetView
