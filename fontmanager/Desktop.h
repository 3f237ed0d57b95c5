#pragma once

#include <string>
#include <vector>

namespace Vellumine {

// What the server does on the user's desktop besides answering requests: vellumine's
// window, the browser, desktop notifications, and the watch over the applications whose
// fonts are active only while they run. The server's implementation is BusDesktop; without
// one (tests, or a catalog answered in memory) requests are only answered and recorded.
class Desktop {
public:
    virtual ~Desktop() = default;

    // Whether there is a display to show a window or a browser on.
    virtual bool hasDisplay() = 0;
    // Brings vellumine's window to the front with the face selected: by container
    // identifier when one is given, else by PostScript name.
    virtual void showFace(const std::string& containerID, const std::string& postScriptName) = 0;
    // Opens an http or https address in the desktop's browser.
    virtual void openUrl(const std::string& url) = 0;
    // Faces (PostScript names) were activated automatically for an application.
    virtual void announceAutomaticActivation(const std::string& application,
                                             const std::vector<std::string>& faces) = 0;
    // The application was recorded as asking for faces that are active automatically.
    virtual void requesterRecorded(const std::string& application) = 0;
};

} // namespace Vellumine
