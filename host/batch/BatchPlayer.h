#pragma once

#include "host/batch/BatchScript.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace Galley {

class Dialog;
class Runtime;
class TerminalPresenter;
class IdmlDocument;

// Plays batch actions from the main loop, at whatever depth of modal waits the document's
// plug-ins have reached: an action that needs a dialog plays once one is in front, a save
// waits until no dialog is open. When the actions are used up, a dialog in front that needs
// a user's decision is cancelled; one that ends by itself (a progress dialog) is left to
// finish within the time-out. The cancelling waits until a second has passed without an
// action, so that a dialog the last action set going (an activation whose fonts are on
// their way) can still end by itself.
class BatchPlayer {
public:
    BatchPlayer(Runtime& runtime, TerminalPresenter& view, std::vector<BatchAction> actions);
    ~BatchPlayer();

    // Everything played (or stopped by an error) and no dialog open.
    bool finished() const;
    // The first action that failed, with what exists; empty when none failed.
    const std::string& error() const { return error_; }

private:
    void consider();
    void play(const BatchAction& action);
    void fail(const std::string& message);
    Dialog* front() const;

    void select(Dialog& dialog, const std::string& text);
    void deselect(Dialog& dialog);
    void press(Dialog& dialog, const std::string& button);
    void pick(Dialog& dialog, const std::string& text, bool doubleClick);
    void invoke(const std::string& action);
    void saveAs(const std::string& path);

    Runtime& runtime_;
    TerminalPresenter& view_;
    std::vector<BatchAction> actions_;
    std::size_t next_ = 0;
    bool posted_ = false;
    int hook_ = 0;
    std::string error_;
    std::chrono::steady_clock::time_point lastAction_ = std::chrono::steady_clock::now();
};

} // namespace Galley
