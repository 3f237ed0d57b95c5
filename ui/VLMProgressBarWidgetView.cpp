#include "ui/VLMProgressBarWidgetView.h"

#include <algorithm>

namespace VLMProgressBarWidgetView {

Contents layout(const Rect& frame, int16 minimum, int16 maximum, int16 value, const std::string& text) {
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

} // namespace VLMProgressBarWidgetView
