#include "ui/VLMProgressBarWidgetView.h"

#include <algorithm>

namespace VLMProgressBarWidgetView {

Contents layout(const Rect& frame, int16 minimum, int16 maximum, int16 value,
                const std::string& text) {
    double fraction = 0;
    if (maximum > minimum) {
        const int held = std::clamp<int>(value, minimum, maximum);
        fraction = static_cast<double>(held - minimum) / static_cast<double>(maximum - minimum);
    }
    Contents contents;
    const double filledWidth = frame.width * fraction;
    contents.filled = {frame.left, frame.top, filledWidth, frame.height};
    contents.empty = {frame.left + filledWidth, frame.top, frame.width - filledWidth, frame.height};
    contents.text = text;
    return contents;
}

void View::Draw(IGraphicsPort* port, const PMRect& frame, IControlView* widget) {
    IProgressBarControlData* bar = widget ? widget->GetProgressBarControlData() : nullptr;
    if (!port || !bar)
        return;
    ITextControlData* ownText = widget->GetTextControlData();
    const Contents contents =
        layout({frame.left, frame.top, frame.Width(), frame.Height()}, bar->GetMinimum(),
               bar->GetMaximum(), bar->GetValue(),
               ownText ? ownText->GetString().GetUTF8String() : std::string());
    const auto rect = [](const Rect& r) {
        return PMRect{r.left, r.top, r.left + r.width, r.top + r.height};
    };
    port->FillRect(rect(contents.empty), contents.emptyColour);
    port->FillRect(rect(contents.filled), contents.filledColour);
    if (!contents.text.empty())
        port->DrawText(contents.text, frame, contents.fontName, contents.pointSize,
                       RGBColor{0, 0, 0});
}

} // namespace VLMProgressBarWidgetView
