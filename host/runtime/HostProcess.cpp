#include "host/runtime/HostProcess.h"

#include "host/plugins/PluginLoader.h"
#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DefaultServices.h"

namespace Galley {

namespace {

std::unique_ptr<Platform::Linux::DefaultServices> installServices(Presenter& presenter) {
    int status = Platform::Status::ok;
    auto services = Platform::Linux::DefaultServices::install(HostProcess::busName, status);
    if (status == Platform::Status::permissionDenied) {
        services.reset();
        services = Platform::Linux::DefaultServices::install("", status);
        presenter.status(std::string("another Galley owns ") + HostProcess::busName +
                         "; the font manager's news goes to that one");
    } else if (status != Platform::Status::ok) {
        presenter.status("no session bus: the font manager cannot be reached");
    }
    return services;
}

} // namespace

HostProcess::HostProcess(Presenter& presenter)
    : services_(installServices(presenter)), session_(fontSystem_) {}

HostProcess::~HostProcess() = default;

std::unique_ptr<Runtime> HostProcess::startRuntime(EventLoop& loop, Presenter& presenter,
                                                   Runtime::Options options,
                                                   const std::string& executable) {
    options.bus = services_ ? services_->bus() : nullptr;
    if (options.bus)
        options.bus->setNoticeHandler(
            [&presenter](const std::string& text) { presenter.notice(text); });
    auto runtime = std::make_unique<Runtime>(loop, session_, presenter, options);
    runtime->plugins().load(PluginLoader::defaultSearchPath(executable));
    return runtime;
}

} // namespace Galley
