#include "host/runtime/Runtime.h"

#include "host/dialogs/Widget.h"
#include "host/loop/BusAttachment.h"
#include "host/session/GalleySession.h"

namespace Galley {

Runtime::Runtime(EventLoop& loop, GalleySession& session, Presenter& presenter, Options options)
    : session_(session), presenter_(presenter), loop_(loop),
      calls_([this](const std::string& message) { presenter_.status(message); }),
      idleTasks_(loop, [this](const std::string& what,
                              const std::function<void()>& call) { guarded(what, call); }),
      plugins_(calls_, idleTasks_, session),
      dialogs_(loop_, idleTasks_, calls_, plugins_, presenter, options.deadline),
      documents_(
          loop, loop_, session, presenter, calls_,
          [this](ServiceID service, ISignalMgr& signal) { plugins_.respond(service, signal); },
          options.fontFolders) {
    SetHostHooks(this);
    session_.attachRuntime(this, &documents_, &documents_,
                           [this](PMIID iid) { return plugins_.sessionObserver(iid); });
    if (options.bus)
        bus_ = std::make_unique<BusAttachment>(
            loop_, *options.bus,
            [this](const std::string& what, const std::function<void()>& call) {
                guarded(what, call);
            });
}

Runtime::~Runtime() {
    shutdown();
    session_.attachRuntime(nullptr, nullptr, nullptr, nullptr);
    if (GetHostHooks() == this)
        SetHostHooks(nullptr);
}

void Runtime::shutdown() {
    if (shutDown_)
        return;
    shutDown_ = true;
    plugins_.shutdown([this] { dialogs_.closeAll(); });
    documents_.close();
}

void Runtime::installIdleTask(CIdleTask* task, uint32 delayMilliseconds) {
    if (!shutDown_)
        idleTasks_.install(task, delayMilliseconds);
}

void Runtime::uninstallIdleTask(CIdleTask* task) {
    idleTasks_.uninstall(task);
}

bool Runtime::isIdleTaskInstalled(const CIdleTask* task) const {
    return idleTasks_.isInstalled(task);
}

IControlView* Runtime::createRowWidget(IControlView* tree, const RsrcSpec& row) {
    auto* widget = dynamic_cast<Widget*>(tree);
    return widget ? widget->makeRowWidget(row) : nullptr;
}

int16 Runtime::present(Kind kind, const PMString& message, const PMString buttons[3],
                       int16 defaultButton, int16) {
    const std::string texts[3] = {plugins_.displayText(buttons[0]),
                                  plugins_.displayText(buttons[1]),
                                  plugins_.displayText(buttons[2])};
    return presenter_.alert(kind, plugins_.displayText(message), texts, defaultButton);
}

} // namespace Galley
