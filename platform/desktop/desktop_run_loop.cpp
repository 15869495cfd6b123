#include "platform/desktop/desktop_run_loop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>

namespace zelmora::platform {

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
    QCoreApplication::postEvent(&_receiver, new QEvent(QEvent::User));
}

bool DesktopRunLoop::Receiver::event(QEvent* event) {
    if (event->type() != QEvent::User)
        return QObject::event(event);
    _loop.mainQueue().drain();
    return true;
}

} // namespace zelmora::platform
