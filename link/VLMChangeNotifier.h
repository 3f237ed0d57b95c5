#pragma once

#include <string>

namespace VLM {

// A listener to the font manager's news. The listeners are the dialogs' observers; once
// the host's dialog classes exist this interface also becomes their closing-dialog
// observer, so that a listener is always a dialog observer.
class IVLMChangeNotifier {
public:
    virtual ~IVLMChangeNotifier() = default;
    virtual void OnVLMNotify(const std::string& text) = 0;
};

} // namespace VLM
