#pragma once

#include "host/fonts/FontconfigFontSystem.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"

#include <memory>
#include <string>

namespace Platform::Linux {
class DefaultServices;
}

namespace Galley {

// What a Galley process with plug-ins runs on, set up the same way for the window and for
// batch mode: the platform services on the session bus under Galley's name (without the name,
// and said so, when another Galley owns it), the font system on fontconfig and the session.
class HostProcess {
public:
    // Tells `presenter` what the user should know about the bus.
    explicit HostProcess(Presenter& presenter);
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    GalleySession& session() { return session_; }

    // The runtime on `loop`, with the plug-ins of the default search path loaded.
    std::unique_ptr<Runtime> startRuntime(EventLoop& loop, Presenter& presenter,
                                          Runtime::Options options, const std::string& executable);

    static constexpr const char* busName = "org.galley.Galley";

private:
    std::unique_ptr<Platform::Linux::DefaultServices> services_;
    FontconfigFontSystem fontSystem_;
    GalleySession session_;
};

} // namespace Galley
