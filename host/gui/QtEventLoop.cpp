#include "host/gui/QtEventLoop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <poll.h>

#include <algorithm>

namespace Galley {

QtEventLoop::QtEventLoop() : waitLimit_(std::make_unique<QTimer>()) {
    waitLimit_->setSingleShot(true);
    waitLimit_->setTimerType(Qt::PreciseTimer);
}

QtEventLoop::~QtEventLoop() = default;

EventLoop::SourceId QtEventLoop::watchFd(int fd, std::uint32_t events, Callback onReady) {
    auto source = std::make_unique<Source>();
    const SourceId id = nextId_++;
    source->callback = std::move(onReady);
    source->read = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    source->write = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
    for (QSocketNotifier* notifier : {source->read.get(), source->write.get()})
        QObject::connect(notifier, &QSocketNotifier::activated, this, [this, id] {
            // Level-triggered: quiet the notifier until the callback has run.
            auto found = sources_.find(id);
            if (found != sources_.end()) {
                found->second->read->setEnabled(false);
                found->second->write->setEnabled(false);
            }
            ready_.mark(id);
        });
    sources_[id] = std::move(source);
    setFdEvents(id, events);
    return id;
}

void QtEventLoop::setFdEvents(SourceId id, std::uint32_t events) {
    auto found = sources_.find(id);
    if (found == sources_.end() || !found->second->read)
        return;
    found->second->events = events;
    found->second->read->setEnabled((events & POLLIN) != 0);
    found->second->write->setEnabled((events & POLLOUT) != 0);
}

EventLoop::SourceId QtEventLoop::addTimer(Callback onExpiry) {
    auto source = std::make_unique<Source>();
    const SourceId id = nextId_++;
    source->callback = std::move(onExpiry);
    source->timer = std::make_unique<QTimer>();
    source->timer->setSingleShot(true);
    source->timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(source->timer.get(), &QTimer::timeout, this, [this, id] { ready_.mark(id); });
    sources_[id] = std::move(source);
    return id;
}

void QtEventLoop::armTimer(SourceId id, std::uint64_t usecFromNow) {
    auto found = sources_.find(id);
    if (found == sources_.end() || !found->second->timer)
        return;
    if (usecFromNow == noTimeout) {
        found->second->timer->stop();
        return;
    }
    found->second->timer->start(
        static_cast<int>(std::min<std::uint64_t>((usecFromNow + 999) / 1000, INT32_MAX)));
}

void QtEventLoop::remove(SourceId id) {
    sources_.erase(id);
    ready_.forget(id);
}

bool QtEventLoop::iterate(std::uint64_t timeoutUsec) {
    if (ready_.empty()) {
        if (timeoutUsec != noTimeout)
            waitLimit_->start(
                static_cast<int>(std::min<std::uint64_t>((timeoutUsec + 999) / 1000, INT32_MAX)));
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        waitLimit_->stop();
    }
    // Deferred deletions of Qt objects happen at this level too.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ready_.runAll([this](SourceId id) {
        auto found = sources_.find(id);
        if (found == sources_.end())
            return;
        Callback callback = found->second->callback;
        callback();
        found = sources_.find(id); // the callback may have removed it
        if (found != sources_.end() && found->second->read)
            setFdEvents(id, found->second->events);
    });
    return true;
}

void QtEventLoop::serviceWindows() {
    // Timers that fire here only mark their sources ready (see addTimer); socket notifiers
    // and input stay queued. What remains is painting and the window system's own messages,
    // the _NET_WM_PING of the window manager among them.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                    QEventLoop::ExcludeSocketNotifiers);
}

void QtEventLoop::wakeUp() {
    if (auto* dispatcher =
            QAbstractEventDispatcher::instance(QCoreApplication::instance()->thread()))
        dispatcher->wakeUp();
}

} // namespace Galley
