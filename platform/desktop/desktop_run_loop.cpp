#include "platform/desktop/desktop_run_loop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>

namespace zelmora::platform {

namespace {

constexpr auto kRunBlocks = QEvent::User;
constexpr auto kRunBlocksLater = static_cast<QEvent::Type>(QEvent::User + 1);
constexpr int kDelayMilliseconds = 40; // a coarse timer may take 5 % more

} // namespace

DesktopRunLoop::DesktopRunLoop() {
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &_receiver, [this] { notify(beforeWaiting); });
}

int DesktopRunLoop::run() {
    const int status = QCoreApplication::exec();
    notify(exit);
    return status;
}

void DesktopRunLoop::stop(int status) {
    // Through the queue, for a loop that is not running yet would not hear it.
    mainQueue().async([status] { QCoreApplication::exit(status); });
}

void DesktopRunLoop::wakeUp() {
    // One event for each block, though the first to arrive runs them all: when a block opens a
    // window with a loop of its own, those behind it need an event that is still to come.
    QCoreApplication::postEvent(&_receiver, new QEvent(kRunBlocks));
}

void DesktopRunLoop::wakeUpLater() {
    QCoreApplication::postEvent(&_receiver, new QEvent(kRunBlocksLater));
}

bool DesktopRunLoop::Receiver::event(QEvent* event) {
    switch (static_cast<int>(event->type())) {
    case kRunBlocksLater: // only this thread may start a timer
        if (!_later.isActive())
            _later.start(kDelayMilliseconds, this);
        return true;
    case QEvent::Timer:
        _later.stop();
        [[fallthrough]];
    case kRunBlocks:
        _loop.mainQueue().drain();
        return true;
    default:
        return QObject::event(event);
    }
}

} // namespace zelmora::platform
